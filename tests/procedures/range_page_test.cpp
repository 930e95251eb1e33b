#include "procedures/range_page_fixture.h"

#include "links/calibrator.h"
#include "platform/fault.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"

#include <QAbstractButton>

#include <stdexcept>

namespace ombrix::test {
namespace {

using testing::ElementsAre;

// ---- what ends a calibration ----

TEST_F(SimulatedRange, AcceptOpensTheNextStep)
{
    Calibrates(4).Clicks("cmdAccept").WaitsUntil("the next step is open", StandsAt(5)).WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblRangeStep"), "20 V");
    EXPECT_EQ(Rows(), 0);
    EXPECT_TRUE(HasFocus("cmdReady"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(CalStandbyFlag) << "the input was removed";
}

TEST_F(SimulatedRange, AcceptLearnsATenthOfTheWay)
{
    std::uint16_t written = 0;
    Calibrates(4)
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([&written] { written = SimNvm[32]; })
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    const float slopeBefore = NominalSlopeOf(kDc, 32);
    const auto nominal = static_cast<float>(HexValue(NominalWordOf(kDc, 32)));
    ASSERT_TRUE(person->Runs());
    const auto learned = static_cast<std::int32_t>(HexValue(NominalWordOf(kDc, 32)));
    EXPECT_EQ(learned, RoundHalfEven(static_cast<double>((nominal * 9.0f + static_cast<float>(written)) / 10.0f)));
    EXPECT_TRUE(SlopesDirty);
    EXPECT_NE(NominalSlopeOf(kDc, 32), slopeBefore);
    EXPECT_EQ(SimNvm[32], written);
}

TEST_F(SimulatedRange, AcceptOfAnEarlierRowRestoresItsWord)
{
    std::string first;
    Calibrates(4)
        .Does([&first] { first = Cell(0, 4); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([&first] { EXPECT_NE(HexText(SimNvm[32], 4), first); })
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("row 1 is selected", [] { return Colour(0, 1) == kCyan; })
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(HexText(SimNvm[32], 4), first);
}

TEST_F(SimulatedRange, AcceptOfTheLastRowWritesNothing)
{
    Calibrates(4)
        .Does([] { SimNvm[32] = 0x1111; })  // would be seen to be overwritten
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimNvm[32], 0x1111);
}

TEST_F(SimulatedRange, ResetLeavesTheWordAndLearnsNothing)
{
    std::string written;
    Calibrates(4).Does([&written] { written = Cell(0, 4); }).Clicks("cmdStopReset").WaitsFor("cmdReady");
    const std::string nominal = NominalWordOf(kDc, 32);
    SlopesDirty = NominalDirty = false;
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(HexText(SimNvm[32], 4), written);
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
    EXPECT_FALSE(SlopesDirty);
    EXPECT_FALSE(NominalDirty);
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(CurrentStepButton, 4);
    EXPECT_TRUE(HasFocus("cmdReady"));
    EXPECT_EQ(Text("cmdStopReset"), "Stop");
    EXPECT_FALSE(IsEnabled("cmdStopReset"));
    EXPECT_FALSE(IsEnabled("cmdAccept"));
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(SimulatedRange, ReadyAfterAResetGoesOnFromTheWordInTheMeter)
{
    std::string written;
    Calibrates(4)
        .Does([&written] { written = Cell(0, 4); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady")
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Does([&written] {
            EXPECT_EQ(Cell(0, 0), "1");
            EXPECT_EQ(Cell(0, 3), written);
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, StopInTheMiddleOfARoundWritesNoWord)
{
    Establishes();
    Opens(4).Clicks("cmdReady").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimNvm[32], 0x8948);
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(Abort);
    EXPECT_TRUE(HasFocus("cmdReady"));
    EXPECT_EQ(Text("lblInst(0)"), "Set jumpers and apply input\nas shown, then click \"Ready\"");
    EXPECT_TRUE(IsEnabled(StepButton(5)));
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(SimulatedRange, FaultInTheMiddleGivesThePageBack)
{
    Establishes();
    std::string told;
    FaultOutlet = [&told](const std::string &words) { told = words; };
    int outputs = 0;
    outlets.showOutput = [&outputs](const std::string &) {
        if (++outputs == 2)
            throw std::runtime_error("a fault");
    };
    Opens(4).Clicks("cmdReady").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(told, "a fault");
    EXPECT_EQ(Text("lblInst(0)"), "A fault ended this: a fault");
    EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
    EXPECT_EQ(Rows(), 0);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(CalStandbyFlag);
    EXPECT_FALSE(ProcedureRunning());
    person->Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] { EXPECT_NE(Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, FaultOnTheWayInIsToldOnThePageWhichStaysClosed)
{
    Establishes();
    const auto draws = frameHooks.showConnectionDiagram;
    frameHooks.showConnectionDiagram = [](int) { throw std::runtime_error("a fault"); };
    person->Clicks(StepButton(4)).WaitsUntil("the entry ends", [] { return IsEnabled("cmdSetup"); });
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(0)"), "A fault ended this: a fault");
    EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
    EXPECT_FALSE(IsEnabled("cmdReady"));
    frameHooks.showConnectionDiagram = draws;
    Opens(4).Does([] { EXPECT_NE(Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, ReadyClickedTwiceStartsOneCalibration)
{
    Establishes();
    Opens(4)
        .Does([] {
            auto *ready = qobject_cast<QAbstractButton *>(ScriptedOperator::Find("cmdReady"));
            QMetaObject::invokeMethod(ready, "click", Qt::QueuedConnection);
            QMetaObject::invokeMethod(ready, "click", Qt::QueuedConnection);
        })
        .WaitsFor("cmdRepeat")
        .Does([] { EXPECT_EQ(Rows(), 1); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    EXPECT_TRUE(person->Runs());
}

// ---- steps that no other step follows ----

TEST_F(SimulatedRange, AcceptOfDc200MilliVoltKeepsThePageOpen)
{
    std::string written;
    Calibrates(14)
        .Does([&written] { written = Cell(0, 4); })
        .Clicks("cmdAccept")
        .WaitsFor("cmdReady")
        .Does([] {
            EXPECT_EQ(CurrentStepButton, 14);
            EXPECT_EQ(CurrentStepId, 4);
            EXPECT_EQ(Rows(), 0);
            EXPECT_TRUE(HasFocus("cmdReady"));
            EXPECT_TRUE(IsEnabled("cmdSetup"));
            EXPECT_EQ(Text("cmdStopReset"), "Stop");
        })
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Does([&written] { EXPECT_EQ(Cell(0, 3), written); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, AcceptedEarlierRowOfAStepThatStaysOpenIsItsCurrentWord)
{
    std::string first;
    Calibrates(14)
        .Does([&first] { first = Cell(0, 4); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("row 1 is selected", [] { return Colour(0, 1) == kCyan; })
        .Clicks("cmdAccept")
        .WaitsFor("cmdReady")
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Does([&first] { EXPECT_EQ(Cell(0, 3), first); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, AcceptOfLcTouchUpKeepsThePageOpen)
{
    Establishes(0x03, 0xC0);
    Opens(14).Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdAccept").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SCType, kLc);
    EXPECT_EQ(CurrentStepButton, 14);
    EXPECT_EQ(Text("lblRangeStep"), "Touch-Up");
    EXPECT_TRUE(HasFocus("cmdReady"));
}

// ---- words with companions ----

TEST_F(SimulatedRange, OnTcLoGainFillsFourWordsWithOneValue)
{
    Establishes(0x31, 0x40);
    Opens(3).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] {
        EXPECT_EQ(Cell(0, 4), HexText(SimNvm[33], 4));
        EXPECT_EQ(SimNvm[32], SimNvm[33]);
        EXPECT_EQ(SimNvm[31], SimNvm[33]);
        EXPECT_EQ(SimNvm[46], SimNvm[33]);
        EXPECT_EQ(SimNvm[30], 0);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, OnTcHiGainFillsThreeWordsWithOneValue)
{
    Establishes(0x31, 0x40);
    Opens(5).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] {
        EXPECT_EQ(Cell(0, 4), HexText(SimNvm[36], 4));
        EXPECT_EQ(SimNvm[35], SimNvm[36]);
        EXPECT_EQ(SimNvm[34], SimNvm[36]);
        EXPECT_EQ(SimNvm[33], 0x7628);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, OnRtdPt100FillsThreeWordsFromThirtyNineDown)
{
    Establishes(0x41, 0x50);
    Opens(3).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] {
        EXPECT_EQ(Cell(0, 4), HexText(SimNvm[37], 4));
        EXPECT_EQ(SimNvm[38], SimNvm[37]);
        EXPECT_EQ(SimNvm[39], SimNvm[37]);
        EXPECT_EQ(SimNvm[36], 0x7400);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, OnRtdTwentyOhmsFillsWordForty)
{
    Establishes(0x41, 0x50);
    Opens(4).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] {
        EXPECT_EQ(Cell(0, 4), HexText(SimNvm[31], 4));
        EXPECT_EQ(SimNvm[40], SimNvm[31]);
        EXPECT_EQ(SimNvm[32], 0x8948);
    });
    EXPECT_TRUE(person->Runs());
}

// ---- around the page ----

TEST_F(SimulatedRange, EveryRangeStepHasThisPage)
{
    for (int id : {2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 17, 18, 19, 20, 21,
                   22, 23, 24, 25, 26, 28, 29, 52, 53, 54, 55, 56, 57, 58, 59, 60})
        EXPECT_TRUE(RecordOfStep(id).enter) << id;
}

TEST_F(SimulatedRange, EntryTurnsTheSwitchForACurrent)
{
    Establishes();
    Opens(8)
        .Does([] { EXPECT_EQ(Text("lblSwitch"), "11111"); })
        .Clicks(StepButton(4))
        .WaitsForText("lblRangeStep", "2 V");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblSwitch"), "0");
}

TEST_F(SimulatedRange, CableMessageStandsWhileTheOperatorConnects)
{
    Establishes(0x22, 0x80);
    Opens(4)
        .Does([] {
            EXPECT_TRUE(Sees("lblInst(1)"));
            EXPECT_EQ(Text("lblInst(1)"),
                      "Verify that the 2-pin cable is connected between\nthe Calibrator's Voltage pins "
                      "and the AC board.");
        })
        .Clicks("cmdReady")
        .Does([] { EXPECT_FALSE(Sees("lblInst(1)")); })
        .WaitsFor("cmdRepeat")
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady")
        .Does([] { EXPECT_TRUE(Sees("lblInst(1)")); })
        .Clicks(StepButton(3))  // GND, by the same cable
        .WaitsForText("lblRangeStep", "GND")
        .WaitsFor("cmdReady")
        .Does([] { EXPECT_FALSE(Sees("lblInst(1)")); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, LiveReadingStandsWhereItIs)
{
    std::string shown;
    Calibrates(4).Does([&shown] { shown = Cell(0, 5); }).Waits(10'000).Does([&shown] {
        EXPECT_EQ(Cell(0, 5), shown);
        EXPECT_EQ(Mark(), "live");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, InManualModeTheOperatorAppliesEachPolarity)
{
    std::vector<std::string> asked;
    person->onBox = [&asked](const std::string &, const std::string &text) { asked.push_back(text); };
    person->DoubleClicks("lblCalOut").Clicks("optManual").Clicks("cmdEstablish").WaitsFor("cmdSetup");
    Opens(4)
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(asked, ElementsAre("Apply an accurate input signal of 2 V to the Meter",
                                   "Apply an accurate input signal of -2 V to the Meter",
                                   "Apply an accurate input signal of 2 V to the Meter",
                                   "Remove any input signal from the meter"));
}

TEST_F(SimulatedRange, QuitInTheMiddleEndsEverything)
{
    Establishes();
    Opens(4).Clicks("cmdReady").Clicks("cmdQuit");
    person->Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_EQ(SimNvm[32], 0x8948);
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(SimulatedRange, OfARebuiltWindowKnowsNothingOfTheOldOne)
{
    Calibrates(4).Clicks("cmdRepeat").WaitsUntil("round 2 is watched", Watches(2));
    ASSERT_TRUE(person->Runs());  // ends in the middle
    station.reset();
    OpensStation();
    Establishes();
    Opens(5).Does([] {
        EXPECT_EQ(Rows(), 0);
        EXPECT_EQ(Text("cmdStopReset"), "Stop");
    });
    person->Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] {
        EXPECT_EQ(Rows(), 1);
        EXPECT_EQ(Cell(0, 0), "1");
        EXPECT_EQ(Colour(0, 1), kCyan);
    });
    EXPECT_TRUE(person->Runs());
}

}  // namespace
}  // namespace ombrix::test
