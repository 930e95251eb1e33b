#include "procedures/range_page_fixture.h"

#include "links/calibrator.h"
#include "session/procedure.h"

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::ElementsAreArray;
using testing::IsSupersetOf;
using testing::Not;

std::vector<std::string> Output(const std::string &value)
{
    return {"cal ERR?", "cal OUT " + value + " ; OPER ; *WAI", "cal OPER?", "cal OUT?"};
}

std::vector<std::string> Reading()
{
    return {"meter 1B1", "meter 1B1", "meter 1B1"};
}

// One log of the pieces in their order.
std::vector<std::string> Joined(const std::vector<std::vector<std::string>> &pieces)
{
    std::vector<std::string> all;
    for (const auto &piece : pieces)
        all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

TEST_F(WiredRange, EntryTurnsTheSwitchThenPutsTheMeterOnItsRangeAndReadsItsWord)
{
    UseSwitch = true;
    bench->words[37] = 0x8123;
    person->Clicks(StepButton(8)).WaitsUntil("the switch turns", [this] { return !bench->log.empty(); }).Does([this] {
        EXPECT_EQ(CurrentStepButton, 8);
        EXPECT_FALSE(Sees("fraCalib(4)")) << "the page comes after the switch";
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->WaitsUntil("the meter is asked", [this] { return bench->log.size() > 1; }).Does([] {
        EXPECT_TRUE(Sees("fraCalib(4)"));
        EXPECT_TRUE(Sees("fraJumperBlock(0)"));
        EXPECT_EQ(Text("lblRangeStep"), "2 mA");
        EXPECT_FALSE(IsEnabled("cmdReady"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(bench->log, ElementsAreArray({"meter 2W305002B67100000", "meter 1G130", "meter 1W21166280070Z",
                                              "meter 1W305000000100004", "meter 1X125"}));
    EXPECT_EQ(GetStepWordHex(), "8123");
    EXPECT_TRUE(HasFocus("cmdReady"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(WiredRange, ResistanceIsAppliedWithFourWires)
{
    bench->words[21] = 0x0041;
    bench->words[16] = 0x0050;
    person->ClicksTab(kTabTc).WaitsUntil("it is an RTD meter", [] { return SCType == kRtd; });
    person->WaitsFor(StepButton(5)).Clicks(StepButton(5)).WaitsFor("cmdReady").Clicks("cmdReady");
    person->WaitsFor("cmdRepeat");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(bench->log, IsSupersetOf({"cal OUT 200 OHM ; OPER ; *WAI", "cal ZCOMP WIRE4"}));
    EXPECT_EQ(Text("lblRangeInput"), "Input 200 Ohm");
}

TEST_F(WiredRange, FirstRoundTurnsTheInputOverTwice)
{
    Opens().Does([this] { bench->log.clear(); }).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([this] {
        EXPECT_THAT(bench->log, ElementsAreArray(Joined({Output("2 V"),
                                                         Reading(),
                                                         Output("-2 V"),
                                                         {"meter 1CZ"},
                                                         Reading(),
                                                         {"meter 1W1208A01"},
                                                         Reading(),
                                                         Output("2 V"),
                                                         {"meter 1CZ"},
                                                         Reading()})));
        EXPECT_EQ(Cell(0, 2), "+79944\n-79944");
        EXPECT_EQ(Cell(0, 4), "8A01");
        EXPECT_EQ(Cell(0, 5), "+80000\n-80000");
        EXPECT_EQ(Cell(0, 6), "0");
        EXPECT_EQ(Cell(0, 7), "0");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, LaterRoundStartsFromTheInputThatStands)
{
    Calibrates()
        .Does([this] { bench->log.clear(); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([this] {
            std::erase(bench->log, "meter 1B1");
            EXPECT_THAT(bench->log, ElementsAreArray(Joined({{"meter 1W1208A01"}, Output("-2 V"), {"meter 1CZ"}})));
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ShowsTheFirstPolarityWhileTheSecondIsTaken)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input is turned over", [this] { return bench->output == "-2 V"; })
        .Does([] { EXPECT_EQ(Cell(0, 2), "+79944\n"); })
        .WaitsFor("cmdRepeat");
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ShowsTheFirstNewReadingWhileTheSecondIsTaken)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("one new reading is there", [] { return Cell(0, 5) == "\n-80000"; })
        .WaitsUntil("both are there", [] { return Cell(0, 5) == "+80000\n-80000"; });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, LiveReadingFollowsTheMeter)
{
    Calibrates()
        .Does([this] { bench->drift = 7; })
        .WaitsUntil("the reading follows", [] { return Cell(0, 5) == "+80007\n-80000"; })
        .Does([] {
            EXPECT_EQ(Cell(0, 6), "4") << "(80007 - 80000) / 2, to the even number";
            EXPECT_EQ(Cell(0, 7), "4");
        })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([] { EXPECT_EQ(Cell(1, 2), "+80007\n-80000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, LiveReadingComesEveryThirdOfASecond)
{
    Calibrates().Does([this] { bench->log.clear(); }).Waits(9050).Does([this] { EXPECT_EQ(bench->log.size(), 30U); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ClickOnARowEndsTheLiveReading)
{
    Calibrates()
        .ClicksCell("msgCalibGrid", 0, 1)
        .Waits(3000)
        .Does([this] { bench->log.clear(); })
        .Waits(20'000)
        .Does([this] {
            EXPECT_TRUE(bench->log.empty());
            EXPECT_EQ(Rows(), 1);
            EXPECT_TRUE(IsEnabled("cmdRepeat"));
        });
    EXPECT_TRUE(person->Runs());
}

// ---- limits ----

TEST_F(WiredRange, CorrectionBeyondTheLimitIsToldInRed)
{
    bench->goodWord = 80000;
    Calibrates()
        .Does([this] {
            EXPECT_EQ(Text("lblInst(0)"), "Required correction exceeds allowable range");
            EXPECT_EQ(ScriptedOperator::Fill("shpInst(0)"), "#ff0000");
            EXPECT_EQ(Cell(0, 4), "FFFF");
            EXPECT_EQ(bench->words[32], 0xFFFF) << "it is written all the same";
            EXPECT_TRUE(IsEnabled("cmdAccept"));
            EXPECT_TRUE(IsEnabled("cmdStopReset"));
            bench->goodWord = 0x8000;
        })
        .WaitsUntil("the reading follows", [] { return Cell(0, 5).starts_with("+90"); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 begins", [] { return Rows() == 2; })
        .Does([] { EXPECT_NE(ScriptedOperator::Fill("shpInst(0)"), "#ff0000"); })
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([] { EXPECT_NE(ScriptedOperator::Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ReversedLeadsGiveTheHighestWordInRed)
{
    bench->target = -80000;
    Calibrates().Does([this] {
        EXPECT_EQ(ScriptedOperator::Fill("shpInst(0)"), "#ff0000");
        EXPECT_EQ(bench->words[32], 0xFFFF);
    });
    EXPECT_TRUE(person->Runs());
}

// ---- clicks ----

TEST_F(WiredRange, RepeatTurnsBothButtonsOffAndResetIntoStopAtOnce)
{
    Calibrates().Clicks("cmdRepeat").Does([] {
        EXPECT_EQ(Rows(), 1) << "the round has not begun";
        EXPECT_FALSE(IsEnabled("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdAccept"));
        EXPECT_EQ(Text("cmdStopReset"), "Stop");
        EXPECT_TRUE(StopRequested);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, AcceptTurnsBothButtonsOffAtOnce)
{
    Calibrates().Clicks("cmdAccept").Does([this] {
        EXPECT_TRUE(bench->operating) << "the acceptance has not begun";
        EXPECT_FALSE(IsEnabled("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdAccept"));
        EXPECT_EQ(Text("cmdStopReset"), "Reset");
        EXPECT_TRUE(StopRequested);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ResetEndsTheLiveReadingAndThenRemovesTheInput)
{
    Calibrates()
        .Clicks("cmdStopReset")
        .Does([this] {
            EXPECT_TRUE(bench->operating);
            EXPECT_TRUE(StopRequested);
        })
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(bench->operating);
    EXPECT_EQ(bench->words[32], 0x8A01);
}

TEST_F(WiredRange, StopInsideTheSecondOfRepeatResets)
{
    Calibrates().Clicks("cmdRepeat").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(bench->operating);
}

TEST_F(WiredRange, ResetInsideTheSecondOfAcceptWins)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Calibrates().Clicks("cmdAccept").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepButton, 4);
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
    EXPECT_FALSE(bench->operating);
}

TEST_F(WiredRange, RepeatGivesTheLiveReadingItsSecond)
{
    std::int64_t clicked = 0;
    Calibrates()
        .Does([&] { clicked = station->clock.Elapsed(); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 begins", [] { return Rows() == 2; })
        .Does([&] {
            EXPECT_GE(station->clock.Elapsed() - clicked, 1000);
            EXPECT_LE(station->clock.Elapsed() - clicked, 2400);
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, AnImpatientSecondStopDoesNotEndTheRemovalOfTheInput)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input stands", [this] { return bench->operating; })
        .Clicks("cmdStopReset")
        .Clicks("cmdStopReset")
        .WaitsUntil("the input goes", [this] { return !bench->operating; })
        .Does([] { EXPECT_TRUE(HasFocus("fraCalib(4)")) << "an impatient Enter presses nothing"; })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(bench->output, "0 V");
    EXPECT_TRUE(CalStandbyFlag) << "confirmed";
}

TEST_F(WiredRange, AfterAStopNoFurtherInputIsApplied)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the first reading is taken", [this] { return bench->log.back() == "meter 1B1"; })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(bench->log, Not(Contains("cal OUT -2 V ; OPER ; *WAI")));
    EXPECT_THAT(bench->log, Not(Contains(testing::StartsWith("meter 1W120"))));
    EXPECT_EQ(bench->log.back(), "cal OUT?");
}

TEST_F(WiredRange, AfterAStopTheMeterIsAskedNothingMore)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input is turned over", [this] { return bench->output == "-2 V"; })
        .Does([this] { bench->log.clear(); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(bench->log, Not(Contains(testing::StartsWith("meter"))));
    EXPECT_FALSE(bench->operating);
}

// ---- silence ----

TEST_F(WiredRange, WithoutTheWordOfTheMeterReadyStaysOff)
{
    bench->meterSilent = true;
    person->Clicks(StepButton(4)).WaitsUntil("the entry ends", [] { return IsEnabled("cmdSetup"); });
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(Sees("fraCalib(4)"));
    EXPECT_FALSE(IsEnabled("cmdReady"));
    EXPECT_EQ(Text("lblInst(0)"), "The meter did not answer:\ncheck its line, then click the step again");
    EXPECT_EQ(ScriptedOperator::Fill("shpInst(0)"), "#ff0000");
    EXPECT_TRUE(IsEnabled(StepButton(4)));

    bench->meterSilent = false;
    Opens().Does([] { EXPECT_NE(ScriptedOperator::Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, SilenceInTheLiveReadingLeavesTheButtons)
{
    Calibrates()
        .Does([this] { bench->displaySilent = true; })
        .WaitsUntil("the live reading ends", [] { return !StopArmed; })
        .Waits(30'000)
        .Does([] {
            EXPECT_EQ(Cell(0, 5), "+80000\n-80000");
            EXPECT_TRUE(IsEnabled("cmdRepeat"));
            EXPECT_EQ(Text("lblInst(0)"), "The meter fell silent, its last reading stands");
            EXPECT_EQ(ScriptedOperator::Fill("shpInst(0)"), "#ff0000");
        })
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, AClickThatEndsTheLiveReadingIsNoSilence)
{
    Calibrates().Clicks("cmdRepeat").WaitsUntil("round 2 is watched", Watches(2)).Does([] {
        EXPECT_THAT(Text("lblRemark"), Not(testing::HasSubstr("silent")));
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, SilenceInARoundIsWaitedOutUntilStop)
{
    bench->displaySilent = true;
    Opens().Clicks("cmdReady").Waits(120'000).Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(bench->words[32], 0x8948);
    EXPECT_FALSE(bench->operating);
    EXPECT_FALSE(SlopesDirty);
}

TEST_F(WiredRange, SilenceOnAPlainStepIsNoReadingEither)
{
    bench->displaySilent = true;
    person->Clicks(StepButton(2)).WaitsFor("cmdReady").Does([this] { bench->words[26] = 0x1234; });
    person->Clicks("cmdReady").Waits(60'000).Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(bench->words[26], 0x1234);
    EXPECT_THAT(bench->log, Not(Contains(testing::StartsWith("meter 1W11A"))));
}

TEST_F(WiredRange, GarbageOnTheDisplayIsReadAgain)
{
    bench->displaySilent = true;
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the display is asked", [this] { return bench->log.back() == "meter 1B1"; })
        .Does([this] { bench->meter.Says("garbage\r"); })
        .Waits(2000)
        .Does([this] {
            EXPECT_EQ(Cell(0, 2), "");
            bench->displaySilent = false;
        })
        .WaitsFor("cmdRepeat")
        .Does([] { EXPECT_EQ(Cell(0, 2), "+79944\n-79944"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, DeadCalibratorDoesNotHoldAStopForEver)
{
    Calibrates().Does([this] { bench->calibrator.Vanishes(); }).Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

// ---- the end of the program ----

TEST_F(WiredRange, QuitInTheMiddlePutsTheCalibratorInStandbyAndWritesNoWord)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input stands", [this] { return bench->operating; })
        .Does([this] { bench->log.clear(); })
        .Clicks("cmdQuit");
    person->Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(bench->operating);
    EXPECT_EQ(bench->words[32], 0x8948);
    EXPECT_THAT(bench->log, Contains("cal OUT 0 V, 0 Hz ; STBY ; *WAI").Times(1));
    EXPECT_THAT(bench->log, Not(Contains(testing::StartsWith("meter 1W120"))));
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(WiredRange, QuitWhileWatchingLearnsNothing)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Calibrates().Clicks("cmdQuit");
    person->Runs();
    EXPECT_FALSE(bench->operating);
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
    EXPECT_FALSE(ProcedureRunning());
}

}  // namespace
}  // namespace ombrix::test
