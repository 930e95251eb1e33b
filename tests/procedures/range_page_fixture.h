// The range page in the station's real window.
#pragma once

#include "calibration/step_context.h"
#include "calibration/step_state.h"
#include "calibration/step_word.h"
#include "model/nominals.h"
#include "platform/text.h"
#include "session/procedure.h"
#include "support/page_test.h"

#include <QTableWidget>

#include <functional>
#include <string>
#include <vector>

namespace ombrix::test {

// ---- what stands on the page ----

/// Background of a cell, "" the palette's own.
inline std::string Colour(int row, int column)
{
    const auto *grid = qobject_cast<QTableWidget *>(ScriptedOperator::Find("msgCalibGrid"));
    const QBrush brush = grid->item(row, column)->background();
    return brush.style() == Qt::NoBrush ? "" : brush.color().name().toStdString();
}
inline std::string Cell(int row, int column)
{
    return ScriptedOperator::Cell("msgCalibGrid", row, column);
}
inline int Rows()
{
    return ScriptedOperator::Rows("msgCalibGrid");
}
/// Beside the number to watch: "live", "frozen", "silent".
inline std::string Mark()
{
    return ScriptedOperator::Text("lblNewReadingMark");
}

// ---- what a script waits for ----

inline std::function<bool()> Begins(int round)
{
    return [round] { return Rows() == round; };
}
/// A round that is shown live.
inline std::function<bool()> Watches(int round)
{
    return [round] { return Rows() == round && ScriptedOperator::IsEnabled("cmdRepeat") && Mark() == "live"; };
}
inline std::function<bool()> IsMarked(const std::string &mark)
{
    return [mark] { return Mark() == mark; };
}

/// In simulation.
class SimulatedRange : public SimulatedPage
{
protected:
    ScriptedOperator &Opens(int position) { return person->Clicks(StepButton(position)).WaitsFor("cmdReady"); }

    /// Opens the step of a DC meter and lets one round pass.
    ScriptedOperator &Calibrates(int position)
    {
        Establishes();
        return Opens(position).Clicks("cmdReady").WaitsFor("cmdRepeat");
    }
};

/// On the bench, with a DC meter at first.
class WiredRange : public WiredPage
{
protected:
    void SetUp() override
    {
        Stands({});
        bench->SetWord(32, 0x8948);
        Establishes();
    }

    /// The 2 V range when nothing else is told.
    ScriptedOperator &Opens(int position = 4) { return person->Clicks(StepButton(position)).WaitsFor("cmdReady"); }
    ScriptedOperator &Calibrates(int position = 4) { return Opens(position).Clicks("cmdReady").WaitsFor("cmdRepeat"); }

    /// The next readings, each until it has settled; the last one stays.
    void Shows(const std::vector<std::string> &readings)
    {
        std::vector<std::string> texts;
        for (const std::string &reading : readings)
            texts.insert(texts.end(), 3, reading);
        bench->ShowNext(texts);
    }
    /// A first round of the 2 V range, after which the word 8A01 shows the target.
    void ShowsAFirstRound() { Shows({" 79944.", "-79944.", "-80000.", " 80000."}); }
};

}  // namespace ombrix::test
