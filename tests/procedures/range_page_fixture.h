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

/// What stands on the range page, for a base of page tests.
template <class Page> class RangePageOn : public Page
{
protected:
    static QTableWidget *TheGrid() { return qobject_cast<QTableWidget *>(ScriptedOperator::Find("msgCalibGrid")); }
    /// Of a cell's background, "" the palette's own.
    static std::string Colour(int row, int column)
    {
        const QBrush brush = TheGrid()->item(row, column)->background();
        return brush.style() == Qt::NoBrush ? "" : brush.color().name().toStdString();
    }
    static std::string Cell(int row, int column) { return ScriptedOperator::Cell("msgCalibGrid", row, column); }
    static int Rows() { return ScriptedOperator::Rows("msgCalibGrid"); }
    /// Beside the number to watch: "live", "frozen", "silent".
    static std::string Mark() { return ScriptedOperator::Text("lblNewReadingMark"); }

    /// What a script waits for: a round that is shown live.
    static std::function<bool()> Watches(int round)
    {
        return [round] { return Rows() == round && ScriptedOperator::IsEnabled("cmdRepeat") && Mark() == "live"; };
    }
    static std::function<bool()> Begins(int round)
    {
        return [round] { return Rows() == round; };
    }
    static std::function<bool()> IsFrozen()
    {
        return [] { return Mark() == "frozen"; };
    }

    ScriptedOperator &OpensStep(int position)
    {
        return this->person->Clicks(StepButton(position)).WaitsFor("cmdReady");
    }
};

/// In simulation.
class SimulatedRange : public RangePageOn<SimulatedPage>
{
protected:
    ScriptedOperator &Opens(int position) { return OpensStep(position); }

    /// Opens the step of a DC meter and lets one round pass.
    ScriptedOperator &Calibrates(int position)
    {
        Establishes();
        return Opens(position).Clicks("cmdReady").WaitsFor("cmdRepeat");
    }
};

/// On the bench, with a DC meter.
class WiredRange : public RangePageOn<WiredPage>
{
protected:
    void SetUp() override
    {
        Stands({});
        bench->SetWord(32, 0x8948);
        Establishes();
    }

    /// The 2 V range.
    ScriptedOperator &Opens() { return OpensStep(4); }
    ScriptedOperator &Calibrates() { return Opens().Clicks("cmdReady").WaitsFor("cmdRepeat"); }

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
