// A board on its tab, and probes in the place of its pages.
#pragma once

#include "model/range_tables.h"
#include "shell/shell_fixture.h"
#include "shell/step_buttons.h"

#include <string>
#include <vector>

namespace ombrix::test {

class Steps : public ShellTest
{
protected:
    /// Works on a board as a click on its tab would have it.
    static void Board(int board)
    {
        SCType = board;
        CalibTab = TabOfBoard(board);
        FillStepTable();
    }

    static std::string ColourOf(int position) { return Fill(StepButton(position)); }

    /// Probes for every step id; they say their id.
    void ProbeAll()
    {
        for (int id = 0; id <= 60; id++)
            RegisterProbe(id, [this, id] { opened.push_back(id); });
    }

    std::vector<int> opened;  ///< in the order in which they were opened
};

}  // namespace ombrix::test
