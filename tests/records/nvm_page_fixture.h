// View NVM in the station's real window, with the bench's meter behind it.
#pragma once

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/page_frame.h"
#include "support/journal_events.h"
#include "support/page_test.h"

#include <QLineEdit>
#include <QPalette>

#include <string>
#include <vector>

namespace ombrix::test {

/// Colour of a field, "" its own.
inline std::string FieldFill(const std::string &name)
{
    const QWidget *field = ScriptedOperator::Find(name);
    if (!field->testAttribute(Qt::WA_SetPalette) || !field->palette().isBrushSet(QPalette::Active, QPalette::Base))
        return "";
    return field->palette().color(QPalette::Active, QPalette::Base).name().toStdString();
}
inline constexpr char kFieldCyan[] = "#00ffff";
inline constexpr char kFieldRed[] = "#ff0000";

inline std::string ToolTipOf(const std::string &name)
{
    return ScriptedOperator::Find(name)->toolTip().toStdString();
}

class WiredNvm : public WiredPage
{
protected:
    /// A meter of a board, established, its words on the page.
    void Opens(int board)
    {
        bench::BenchSetup setup;
        setup.board = board;
        setup.kind = board == kVf ? kCtr : kDpm;
        Stands(setup);
        Establishes();
        OpensThePage();
    }

    void OpensThePage()
    {
        person->Clicks(ButtonOf(Step::ViewNvm)).WaitsUntil("the meter was read", [] {
            return ScriptedOperator::IsEnabled("cmdSetup");
        });
        ASSERT_TRUE(person->Runs()) << person->Trouble();
        Forget();
    }

    /// Goes on until the meter holds what was written.
    ScriptedOperator &Saves(const std::string &button = "cmdNVMsave(0)")
    {
        return person->Clicks(button).WaitsUntil("it is written", [button] {
            return !ScriptedOperator::IsEnabled(button) && ScriptedOperator::IsEnabled("cmdSetup");
        });
    }

    void Runs() { ASSERT_TRUE(person->Runs()) << person->Trouble(); }

    /// Commands that write words, as they were sent.
    std::vector<std::string> Writes() const
    {
        std::vector<std::string> writes;
        for (const std::string &frame : ToMeter())
            if (frame.size() > 2 && frame[2] == 'W')
                writes.push_back(frame);
        return writes;
    }
};

}  // namespace ombrix::test
