#include "support/page_test.h"

#include "model/station_settings.h"
#include "platform/text.h"
#include "session/journal.h"
#include "testbench/boards.h"

#include <cmath>

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr int k4To20mA = 2;  // positions
constexpr int k0To10V = 4;

std::string Cell(int row, int column)
{
    return ScriptedOperator::Cell("msgVF", row, column);
}
int Rows()
{
    return ScriptedOperator::Rows("msgVF");
}

class WiredVf : public WiredPage
{
protected:
    std::vector<JournalEvent> events;
    int listener = -1;

    void TearDown() override
    {
        if (listener >= 0)
            StopListening(listener);
        WiredPage::TearDown();
    }

    void Stand(const std::string &low = "5", const std::string &high = "5")
    {
        Stands({.board = bench::board::kVf, .kind = 3});
        VFLow = low;
        VFHigh = high;
        Establishes();
        listener = ListenToJournal([this](const JournalEvent &event) { events.push_back(event); });
        PutsGroup(195, "FFD9B8100000");
        PutsGroup(201, "FF77451428F6");
        Forget();
    }
    void PutsGroup(int word, const std::string &hex)
    {
        for (int i = 0; i < 3; ++i)
            bench->SetWord(word - i,
                           static_cast<std::uint16_t>(HexValue(hex.substr(static_cast<std::size_t>(i) * 4, 4))));
    }
    void Opens(int position = k4To20mA) { person->Clicks(StepButton(position)).WaitsFor("cmdSetup"); }
    /// The display shows these from now on, each until it has settled.
    void Shows(const std::vector<std::string> &readings)
    {
        std::vector<std::string> texts;
        for (const std::string &reading : readings)
            texts.insert(texts.end(), 3, reading);
        bench->ShowNext(texts);
    }
    std::vector<std::string> Writes() const
    {
        std::vector<std::string> writes = ToMeter();
        std::erase_if(writes, [](const std::string &frame) { return frame[2] != 'W'; });
        return writes;
    }
    void Runs() { ASSERT_TRUE(person->Runs()) << person->Trouble(); }
};

TEST_F(WiredVf, EntrySetsTheInputTypeAloneAndReadsTheGroup)
{
    Stand();
    UseSwitch = false;
    bench->SetWord(28, 0x1234);
    Opens();
    Runs();
    EXPECT_THAT(Said(), ElementsAre("*1X11C", "*1W11C1281", "*1X3C3"));
    EXPECT_EQ(Text("lblVFOffset"), "FFD9B8");
    EXPECT_EQ(Text("lblVFGain"), "100000");
    EXPECT_EQ(Text("lblInst(7)"), "Set jumpers and apply input as shown, then click \"Ready\".\n"
                                  "Change the low or high end error limit if desired.");
    EXPECT_EQ(Fill("shpInst(7)"), kCyan);
    EXPECT_TRUE(HasFocus("cmdVFRdyRpt"));
    EXPECT_EQ(Text("txtVFLim(0)"), "5");
}

TEST_F(WiredVf, AGainOutsideItsBoundsGivesWayToTheNominalOne)
{
    struct {
        const char *gain;
        bool kept;
    } constexpr kRows[] = {{"080000", true}, {"200000", true}, {"07FFFF", false}, {"200001", false}};
    Stand();
    for (const auto &row : kRows) {
        PutsGroup(201, "FF7745" + std::string(row.gain));
        person->Does([this] { Forget(); });
        Opens(k0To10V);
        Runs();
        EXPECT_EQ(Text("lblVFGain"), row.kept ? row.gain : "1428F6") << row.gain;
        EXPECT_EQ(Writes().size(), row.kept ? 1u : 2u);
        if (!row.kept) {
            EXPECT_EQ(Writes().back(), "*1W3C9FF77451428F6");
        }
    }
}

TEST_F(WiredVf, AMeterThatTellsNoGroupIsNeitherWrittenNorCalibrated)
{
    Stand();
    bench->AnswerNext(bench::Line::Meter, "FFD9\r", "1X3C3");
    Opens();
    Runs();
    EXPECT_EQ(Text("lblInst(7)"), "The meter did not answer:\ncheck its line, then click the step again");
    EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
    EXPECT_THAT(Writes(), Not(Contains(StartsWith("*1W3"))));
    person->Does([this] {
        Forget();
        bench->SwitchFault("silent-meter", true);
    });
    Opens();
    Runs();
    EXPECT_THAT(Writes(), IsEmpty());
    EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
}

TEST_F(WiredVf, RunsUntilBothEndsAreWithinTheirLimitsAndCorrectsNothingInTheFirstPass)
{
    Stand();
    Opens();
    person->Does([this] {
        Forget();
        Shows({" 12.", " 100030.", "-6.", " 100000.", "-5.", " 100005."});
    });
    person->Clicks("cmdVFRdyRpt").WaitsUntil("a first pass", [] { return Rows() == 1; }).Does([] {
        EXPECT_FALSE(PageTest::Sees("shpInst(7)"));
        EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
        EXPECT_FALSE(IsEnabled("txtVFLim(0)"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->WaitsUntil("a third pass", [] { return Rows() == 3; }).Does([] {
        EXPECT_EQ(Cell(0, 1), "1.");
        EXPECT_EQ(Cell(0, 2), "-9800");
        EXPECT_EQ(Cell(0, 3), "") << "the first pass shows no errors";
        EXPECT_EQ(Cell(1, 1), ".99982");
        EXPECT_EQ(Cell(1, 2), "-9810");
        EXPECT_EQ(Cell(1, 3), "-6") << "beyond its limit";
        EXPECT_EQ(Cell(1, 4), "0");
        EXPECT_EQ(Text("lblVFTrial"), "3");
    });
    person->WaitsFor("cmdVFRdyRpt");
    Runs();
    EXPECT_EQ(Rows(), 3);
    EXPECT_EQ(Cell(2, 3), "-5");
    EXPECT_EQ(Cell(2, 4), "5");
    EXPECT_EQ(Text("lblVFError(0)"), "-5");
    EXPECT_EQ(Text("lblVFError(0)Mark"), "within 5") << "the verdict stands when the run has ended";
    EXPECT_EQ(Fill("lblVFError(0)Mark"), "#00ff00");
    EXPECT_EQ(Text("cmdVFRdyRpt"), "Repeat");
    EXPECT_EQ(Text("lblInst(7)"), "Click \"Repeat\" to make another calibration trial.\n"
                                  "Change the low or high end error limit if desired.");
    EXPECT_EQ(Fill("shpInst(7)"), kCyan);
    EXPECT_TRUE(Operates()) << "a good run leaves its input";
    ASSERT_EQ(Writes().size(), 2u);
    EXPECT_EQ(Writes()[0], "*1W3C3FFD9AE0FFF43");
    EXPECT_EQ(TextOf(events.back(), "how"), "accepted");
    EXPECT_EQ(NumberOf(events.back(), "error"), 5);
}

TEST_F(WiredVf, WithLimitsOfZeroOnlyExactReadingsEndTheRun)
{
    Stand("0", "0");
    Opens();
    person->Does([this] { Shows({" 0.", " 100000.", " 1.", " 100000.", " 0.", " 99999.", " 0.", " 100000."}); });
    person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
    Runs();
    EXPECT_EQ(Rows(), 4);
}

TEST_F(WiredVf, RepeatIsOneTrialWithACorrection)
{
    Stand();
    Opens();
    person->Does([this] { Shows({" 0.", " 100000.", " 0.", " 100000."}); });
    person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt").Does([this] {
        Shows({" 90.", " 100000."});
        Forget();
    });
    person->Clicks("cmdVFRdyRpt").WaitsUntil("a third pass", [] { return Rows() == 3; }).Does([] {
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->WaitsFor("cmdVFRdyRpt");
    Runs();
    EXPECT_EQ(Rows(), 3) << "beyond the limit, and still one trial";
    EXPECT_EQ(Writes().size(), 1u);
    EXPECT_EQ(Text("cmdVFRdyRpt"), "Repeat");
    EXPECT_EQ(Text("lblVFError(0)Mark"), "over 5");
    EXPECT_EQ(Fill("lblVFError(0)Mark"), "#ff0000");
    EXPECT_EQ(TextOf(events.back(), "how"), "outside limits");
    person->Does([this] { Shows({" 12.", " 110012."}); });
    person->Clicks("cmdVFRdyRpt").WaitsUntil("a fourth pass", [] { return Rows() == 4; }).WaitsFor("cmdVFRdyRpt");
    Runs();
    EXPECT_THAT(Text("lblInst(7)"),
                testing::EndsWith("\nReading is far from the target: check input, jumpers and wires"));
    EXPECT_EQ(Fill("shpInst(7)"), "#ff0000");
}

TEST_F(WiredVf, AnEmptiedLimitIsAskedForAfterATrialAndAfterReversedReadings)
{
    Stand();
    Opens();
    const auto empties = [this](const char *caption, const char *prompt) {
        person->Types("txtVFLim(1)", "").Clicks("txtVFLim(0)").Does([caption] {
            EXPECT_EQ(Text("lblInst(7)"), "Enter the acceptable number of low and high end error counts.");
            EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
            EXPECT_EQ(Text("cmdVFRdyRpt"), caption);
            EXPECT_TRUE(HasFocus("txtVFLim(1)"));
        });
        person->Types("txtVFLim(1)", "5").Presses(Qt::Key_Return).WaitsFor("cmdVFRdyRpt").Does([caption, prompt] {
            EXPECT_EQ(Text("cmdVFRdyRpt"), caption);
            EXPECT_THAT(Text("lblInst(7)"), StartsWith(prompt));
            EXPECT_TRUE(HasFocus("cmdVFRdyRpt"));
        });
    };
    person->Does([this] { Shows({" 0.", " 100000.", " 0.", " 100000."}); });
    person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
    empties("Repeat", "Click \"Repeat\" to make another calibration trial.");
    person->Does([this] {
              Shows({" 50.", " 50."});
          })
        .Clicks("cmdVFRdyRpt")
        .WaitsFor("cmdVFRdyRpt")
        .Does([] { EXPECT_THAT(Text("lblInst(7)"), StartsWith("Low reading is greater")); });
    empties("Ready", "Set jumpers and apply input as shown");
    Runs();
}

TEST_F(WiredVf, TheKeysStayInALimitThatTheOperatorHasGoneOnTo)
{
    Stand();
    Opens();
    person->Types("txtVFLim(0)", "7").Presses(Qt::Key_Tab).Does([] {
        EXPECT_EQ(VFLow, "7");
        EXPECT_TRUE(HasFocus("txtVFLim(1)"));
    });
    person->Types("txtVFLim(1)", "8").Presses(Qt::Key_Return).Does([] { EXPECT_TRUE(HasFocus("cmdVFRdyRpt")); });
    Runs();
}

TEST_F(WiredVf, EqualOrReversedReadingsEndTheRunWithoutAWrite)
{
    for (const char *high : {" 50.", " 40."}) {
        Stand();
        Opens();
        person->Does([this, high] {
            Forget();
            Shows({" 50.", high});
        });
        person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
        Runs();
        EXPECT_EQ(Rows(), 1);
        EXPECT_THAT(Writes(), IsEmpty());
        EXPECT_EQ(Text("cmdVFRdyRpt"), "Ready");
        EXPECT_EQ(Text("lblInst(7)"),
                  "Low reading is greater than or equal to high reading.\nCheck all connections and try again.");
        EXPECT_EQ(Fill("shpInst(7)"), "#ff0000");
        EXPECT_FALSE(Operates());
        EXPECT_EQ(TextOf(events.back(), "how"), "readings reversed");
        StopListening(std::exchange(listener, -1));
    }
}

TEST_F(WiredVf, AGainOf16IsWrittenAsItsLimitAndReadOnce)
{
    Stand();
    PutsGroup(201, "FF7745200000");
    Opens(k0To10V);
    person->Does([this] {
        Forget();
        Shows({" 5000.", " 17000.", " 0.", " 100000."});
    });
    person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
    Runs();
    EXPECT_EQ(Rows(), 2);
    ASSERT_EQ(Writes().size(), 1u);
    EXPECT_EQ(Right(Writes()[0], 6), "FFFFFA");
    EXPECT_EQ(Text("lblVFGain"), "FFFFFA");
    EXPECT_EQ(Text("lblInst(7)"), "Calculated gain or offset exceeds allowable range.");
    EXPECT_EQ(Fill("shpInst(7)"), "#ff0000");
    EXPECT_EQ(Text("cmdVFRdyRpt"), "Repeat");
    EXPECT_EQ(TextOf(events.back(), "how"), "out of range");
}

TEST_F(WiredVf, StopAndEscEndTheRunWithNavigationBackAndNothingHalfWritten)
{
    for (const bool byKey : {false, true}) {
        for (const int after : {300, 13000}) {
            SCOPED_TRACE(after);
            Stand("0", "0");
            Opens();
            person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFStop").Waits(after);
            byKey ? person->Presses(Qt::Key_Escape) : person->Clicks("cmdVFStop");
            person->WaitsFor("cmdSetup");
            Runs();
            EXPECT_EQ(Text("cmdVFRdyRpt"), "Ready");
            EXPECT_FALSE(Operates());
            EXPECT_EQ(HexText(WordOf(195), 4) + HexText(WordOf(194), 4) + HexText(WordOf(193), 4),
                      Text("lblVFOffset") + Text("lblVFGain"))
                << "what the page shows is what the meter holds";
            EXPECT_EQ(TextOf(events.back(), "how"), "stopped");
            StopListening(std::exchange(listener, -1));
        }
    }
}

TEST_F(WiredVf, APassThatWasBrokenOffBehindItsCorrectionIsInTheJournal)
{
    for (const char *way : {"cmdVFStop", "cmdQuit"}) {
        Stand();
        Opens();
        person->Does([this] { Shows({" 12.", " 100030.", "-6."}); }).Clicks("cmdVFRdyRpt");
        person->WaitsUntil("the word is written", [this] { return WordOf(193) == 0xFF43; }).Clicks(way);
        if (std::string(way) == "cmdQuit") {
            person->Runs();
        } else {
            person->WaitsFor("cmdSetup");
            Runs();
        }
        ASSERT_GE(events.size(), 2u);
        const JournalEvent &round = events[events.size() - 2];
        EXPECT_EQ(round.kind, "round");
        EXPECT_EQ(NumberOf(round, "round"), 2);
        EXPECT_EQ(TextOf(round, "wordBefore"), "FFD9B8100000");
        EXPECT_EQ(TextOf(round, "wordAfter"), "FFD9AE0FFF43");
        EXPECT_FALSE(FieldOf(round, "error")) << "it has no readings";
        EXPECT_EQ(TextOf(events.back(), "how"), std::string(way) == "cmdQuit" ? "quit" : "stopped");
        EXPECT_EQ(TextOf(events.back(), "stays"), "FFD9AE0FFF43");
        StopListening(std::exchange(listener, -1));
    }
}

TEST_F(WiredVf, AStopBeforeTheGroupIsReadIsNotTakenForSilence)
{
    Stand();
    person->Clicks(StepButton(k4To20mA)).Waits(100).Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(Text("lblInst(7)"), "Stopped before the step was open:\nclick the step again");
    EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
    EXPECT_THAT(Writes(), Not(Contains(StartsWith("*1W3"))));
}

TEST_F(WiredVf, ASilentMeterHoldsTheRunUntilItIsStopped)
{
    Stand();
    Opens();
    person->Clicks("cmdVFRdyRpt").Waits(2000).Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Waits(30000).Does([] {
        EXPECT_TRUE(IsEnabled("cmdVFStop"));
        EXPECT_EQ(Text("lblInst(7)"), "The meter does not answer:\ncheck its line, or click \"Stop\"");
        EXPECT_EQ(Fill("shpInst(7)"), "#ff0000");
    });
    person->Clicks("cmdVFStop").WaitsFor("cmdSetup");
    Runs();
    EXPECT_FALSE(Operates());
    EXPECT_EQ(Rows(), 1);
}

// ---- in simulation ----

class SimulatedVf : public SimulatedPage
{
protected:
    void Opens(const std::string &low, const std::string &high)
    {
        VFLow = low;
        VFHigh = high;
        SimNvm[109] = 0x3203;
        Establishes();
        person->Clicks(StepButton(k4To20mA)).WaitsFor("cmdSetup");
    }
};

TEST_F(SimulatedVf, MissingLimitsAreAskedForOneAfterTheOther)
{
    Opens("", "");
    person->Does([] {
        EXPECT_EQ(Text("lblInst(7)"), "Enter the acceptable number of low and high end error counts.");
        EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
        EXPECT_TRUE(HasFocus("txtVFLim(0)"));
    });
    person->Types("txtVFLim(0)", "7").Presses(Qt::Key_Return).Does([] {
        EXPECT_EQ(VFLow, "7");
        EXPECT_TRUE(HasFocus("txtVFLim(1)"));
        EXPECT_FALSE(IsEnabled("cmdVFRdyRpt"));
    });
    person->Presses(Qt::Key_Return).Does([] {
        EXPECT_EQ(VFHigh, "0") << "Enter in an empty box";
        EXPECT_EQ(Text("txtVFLim(1)"), "0");
        EXPECT_TRUE(IsEnabled("cmdVFRdyRpt"));
        EXPECT_THAT(Text("lblInst(7)"), StartsWith("Set jumpers and apply input as shown"));
    });
    ASSERT_TRUE(person->Runs());
}

TEST_F(SimulatedVf, TheScatterFallsUntilTheRunEnds)
{
    Opens("3", "20");
    person->Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
    ASSERT_TRUE(person->Runs());
    EXPECT_GE(Rows(), 2);
    EXPECT_LE(std::abs(Val(Cell(Rows() - 1, 3))), 3);
    EXPECT_LE(std::abs(Val(Cell(Rows() - 1, 4))), 20);
    EXPECT_LT(SimNoise, 25.0f);
}

}  // namespace
}  // namespace ombrix::test
