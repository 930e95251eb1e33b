#include "procedures/range_page_fixture.h"

#include "links/calibrator.h"
#include "session/procedure.h"
#include "testbench/boards.h"

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::ElementsAreArray;
using testing::IsSupersetOf;
using testing::Not;

std::vector<std::string> Applied(const std::string &value)
{
    return {"ERR?", "OUT " + value + " ; OPER ; *WAI", "OPER?", "OUT?"};
}

std::vector<std::string> Reading()
{
    return {"*1B1", "*1B1", "*1B1"};
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
    bench->SetWord(37, 0x8123);
    bench->AnswerNext(bench::Line::Meter, "66\r", "1G130");
    person->Clicks(StepButton(8)).WaitsUntil("the switch turns", [this] { return !Said().empty(); }).Does([this] {
        EXPECT_EQ(CurrentStepButton, 8);
        EXPECT_FALSE(Sees("fraCalib(4)")) << "the page comes after the switch";
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->WaitsUntil("the meter is asked", [this] { return Said().size() > 1; }).Does([] {
        EXPECT_TRUE(Sees("fraCalib(4)"));
        EXPECT_TRUE(Sees("fraJumperBlock(0)"));
        EXPECT_EQ(Text("lblRangeStep"), "2 mA");
        EXPECT_FALSE(IsEnabled("cmdReady"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Said(),
                ElementsAreArray({"*2W305002B67100000", "*1G130", "*1W21166280070Z", "*1W305000000100004", "*1X125"}));
    EXPECT_EQ(GetStepWordHex(), "8123");
    EXPECT_TRUE(HasFocus("cmdReady"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(WiredRange, ResistanceIsAppliedWithFourWires)
{
    Stands({.board = bench::board::kRtd});
    Establishes();
    Calibrates(5);
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToCalibrator(), IsSupersetOf({"OUT 200 OHM ; OPER ; *WAI", "ZCOMP WIRE4"}));
    EXPECT_EQ(bench->CalibratorNow().sensing, "WIRE4");
    EXPECT_EQ(Text("lblRangeInput"), "Input 200 Ohm");
}

TEST_F(WiredRange, FirstRoundTurnsTheInputOverTwice)
{
    ShowsAFirstRound();
    Opens().Does([this] { Forget(); }).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([this] {
        EXPECT_THAT(Said(), ElementsAreArray(Joined({Applied("2 V"),
                                                     Reading(),
                                                     Applied("-2 V"),
                                                     {"*1CZ"},
                                                     Reading(),
                                                     {"*1W1208A01"},
                                                     Reading(),
                                                     Applied("2 V"),
                                                     {"*1CZ"},
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
    ShowsAFirstRound();
    Calibrates()
        .Does([this] { Forget(); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 begins", Begins(2))
        .Does([this] {
            Shows({" 80000.", "-80000."});
        })
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([this] {
            std::vector<std::string> said = Said();
            std::erase(said, "*1B1");
            EXPECT_THAT(said, ElementsAreArray(Joined({{"*1W1208A01"}, Applied("-2 V"), {"*1CZ"}})));
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ShowsTheFirstPolarityWhileTheSecondIsTaken)
{
    ShowsAFirstRound();
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input is turned over", [this] { return Output() == "-2 V"; })
        .Does([] { EXPECT_EQ(Cell(0, 2), "+79944\n"); })
        .WaitsFor("cmdRepeat");
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ShowsTheFirstNewReadingWhileTheSecondIsTaken)
{
    ShowsAFirstRound();
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("one new reading is there", [] { return Cell(0, 5) == "\n-80000"; })
        .WaitsUntil("both are there", [] { return Cell(0, 5) == "+80000\n-80000"; });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, LiveReadingFollowsTheMeter)
{
    ShowsAFirstRound();
    Calibrates()
        .Does([this] { bench->ShowNext({" 80007."}); })
        .WaitsUntil("the reading follows", [] { return Cell(0, 5) == "+80007\n-80000"; })
        .Does([] {
            EXPECT_EQ(Cell(0, 6), "4") << "(80007 - 80000) / 2, to the even number";
            EXPECT_EQ(Cell(0, 7), "4");
        })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 begins", Begins(2))
        .Does([this] { bench->ShowNext({}); })
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([] { EXPECT_EQ(Cell(1, 2), "+80007\n-80000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, LiveReadingComesEveryThirdOfASecond)
{
    Calibrates().Does([this] { Forget(); }).Waits(9050).Does([this] {
        const std::vector<std::int64_t> times = TimesOf("*1B1");
        ASSERT_GE(times.size(), 25U);
        for (std::size_t i = 1; i < times.size(); ++i)
            EXPECT_NEAR(static_cast<double>(times[i] - times[i - 1]), 333, 15) << "after " << i;
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ClickOnARowEndsTheLiveReading)
{
    Calibrates().ClicksCell("msgCalibGrid", 0, 1).Waits(3000).Does([this] { Forget(); }).Waits(20'000).Does([this] {
        EXPECT_TRUE(Said().empty());
        EXPECT_EQ(Rows(), 1);
        EXPECT_TRUE(IsEnabled("cmdRepeat"));
    });
    EXPECT_TRUE(person->Runs());
}

// ---- limits ----

TEST_F(WiredRange, CorrectionBeyondTheLimitIsToldInRed)
{
    Shows({" 68400.", "-68400.", "-76240.", " 76240."});
    Calibrates()
        .Does([this] {
            EXPECT_EQ(Text("lblInst(0)"), "Required correction exceeds allowable range");
            EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
            EXPECT_EQ(Cell(0, 4), "FFFF");
            EXPECT_EQ(WordOf(32), 0xFFFF) << "it is written all the same";
            EXPECT_TRUE(IsEnabled("cmdAccept"));
            EXPECT_TRUE(IsEnabled("cmdStopReset"));
            bench->ShowNext({" 90000."});
        })
        .WaitsUntil("the reading follows", [] { return Cell(0, 5).starts_with("+90"); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 begins", Begins(2))
        .Does([this] {
            EXPECT_NE(Fill("shpInst(0)"), "#ff0000");
            Shows({" 80000.", "-80000."});
        })
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([] { EXPECT_NE(Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ReversedLeadsGiveTheHighestWordInRed)
{
    Shows({"-79944.", " 79944.", " 80000.", "-80000."});
    Calibrates().Does([this] {
        EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
        EXPECT_EQ(WordOf(32), 0xFFFF);
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
        EXPECT_TRUE(Operates()) << "the acceptance has not begun";
        EXPECT_FALSE(IsEnabled("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdAccept"));
        EXPECT_EQ(Text("cmdStopReset"), "Reset");
        EXPECT_TRUE(StopRequested);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ResetEndsTheLiveReadingAndThenRemovesTheInput)
{
    ShowsAFirstRound();
    Calibrates()
        .Clicks("cmdStopReset")
        .Does([this] {
            EXPECT_TRUE(Operates());
            EXPECT_TRUE(StopRequested);
        })
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Operates());
    EXPECT_EQ(WordOf(32), 0x8A01);
}

TEST_F(WiredRange, StopInsideTheSecondOfRepeatResets)
{
    Calibrates().Clicks("cmdRepeat").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(Operates());
}

TEST_F(WiredRange, ResetInsideTheSecondOfAcceptWins)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Calibrates().Clicks("cmdAccept").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepButton, 4);
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
    EXPECT_FALSE(Operates());
}

TEST_F(WiredRange, RepeatGivesTheLiveReadingItsSecond)
{
    std::int64_t clicked = 0;
    Calibrates()
        .Does([&] { clicked = station->clock.Elapsed(); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 begins", Begins(2))
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
        .WaitsUntil("the input stands", [this] { return Operates(); })
        .Clicks("cmdStopReset")
        .Clicks("cmdStopReset")
        .WaitsUntil("the input goes", [this] { return !Operates(); })
        .Does([] { EXPECT_TRUE(HasFocus("fraCalib(4)")) << "an impatient Enter presses nothing"; })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Output(), "0 V");
    EXPECT_TRUE(CalStandbyFlag) << "confirmed";
}

TEST_F(WiredRange, AfterAStopNoFurtherInputIsApplied)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the first reading is taken", [this] { return !TimesOf("*1B1").empty(); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToCalibrator(), Not(Contains("OUT -2 V ; OPER ; *WAI")));
    EXPECT_THAT(ToMeter(), Not(Contains(testing::StartsWith("*1W120"))));
    EXPECT_EQ(Said().back(), "OUT?");
}

TEST_F(WiredRange, AfterAStopTheMeterIsAskedNothingMore)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input is turned over", [this] { return Output() == "-2 V"; })
        .Does([this] { Forget(); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), testing::IsEmpty());
    EXPECT_FALSE(Operates());
}

// ---- silence ----

TEST_F(WiredRange, WithoutTheWordOfTheMeterReadyStaysOff)
{
    bench->SwitchFault("silent-meter", true);
    person->Clicks(StepButton(4)).WaitsUntil("the entry ends", [] { return IsEnabled("cmdSetup"); });
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(Sees("fraCalib(4)"));
    EXPECT_FALSE(IsEnabled("cmdReady"));
    EXPECT_EQ(Text("lblInst(0)"), "The meter did not answer:\ncheck its line, then click the step again");
    EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
    EXPECT_TRUE(IsEnabled(StepButton(4)));

    bench->SwitchFault("silent-meter", false);
    Opens().Does([] { EXPECT_NE(Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, AStepThatEscKeptFromOpeningSaysThatItWasStoppedAndBlamesNoMeter)
{
    person->Clicks(StepButton(4)).Waits(300).Presses(Qt::Key_Escape).WaitsUntil("the entry ends", [] {
        return IsEnabled("cmdSetup");
    });
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(IsEnabled("cmdReady"));
    EXPECT_EQ(Text("lblInst(0)"), "Stopped before the step was open:\nclick the step again");
    EXPECT_NE(Fill("shpInst(0)"), "#ff0000");
    Opens();
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, AClickOnARowLeavesTheSilenceInRed)
{
    ShowsAFirstRound();
    Calibrates()
        .Does([this] { bench->SwitchFault("silent-meter", true); })
        .WaitsUntil("the live reading ends", IsMarked("silent"))
        .Waits(2000)
        .ClicksCell("msgCalibGrid", 0, 1)
        .Does([] {
            EXPECT_EQ(Text("lblInst(0)"), "The meter fell silent, its last reading stands");
            EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
        })
        .Does([this] {
            bench->SwitchFault("silent-meter", false);
            bench->ShowNext({});
        })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([] { EXPECT_NE(Fill("shpInst(0)"), "#ff0000"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, SilenceInTheLiveReadingLeavesTheButtons)
{
    ShowsAFirstRound();
    Calibrates()
        .Does([this] { bench->SwitchFault("silent-meter", true); })
        .WaitsUntil("the live reading ends", IsMarked("silent"))
        .Waits(30'000)
        .Does([] {
            EXPECT_EQ(Cell(0, 5), "+80000\n-80000");
            EXPECT_TRUE(IsEnabled("cmdRepeat"));
            EXPECT_EQ(Text("lblInst(0)"), "The meter fell silent, its last reading stands");
            EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
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
    Opens()
        .Does([this] { bench->SwitchFault("silent-meter", true); })
        .Clicks("cmdReady")
        .Waits(120'000)
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(WordOf(32), 0x8948);
    EXPECT_FALSE(Operates());
    EXPECT_FALSE(SlopesDirty);
}

TEST_F(WiredRange, SilenceAndOverRangeInARoundAreToldInRedForAsLongAsTheyLast)
{
    const auto reads = [] { return !ScriptedOperator::Text("lblInst(0)").starts_with("The "); };
    Opens()
        .Does([this] { bench->SwitchFault("silent-meter", true); })
        .Clicks("cmdReady")
        .WaitsUntil("the display is asked", [this] { return !TimesOf("*1B1").empty(); })
        .Waits(2500)
        .Does([] { EXPECT_EQ(Text("lblInst(0)"), "Click \"Stop\" to stop calibrating this range"); })
        .Waits(2500)
        .Does([] {
            EXPECT_EQ(Text("lblInst(0)"), "The meter does not answer:\ncheck its line, or click \"Stop\"");
            EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
            EXPECT_TRUE(IsEnabled("cmdStopReset"));
        })
        .Waits(15'000)
        .Does([this] {
            EXPECT_THAT(Text("lblWait"), testing::MatchesRegex("Meter: waiting for reply  (19|20|21) s"));
            bench->SwitchFault("silent-meter", false);
            bench->ShowNext(std::vector<std::string>(500, " ------."));
        })
        .WaitsUntil("it is over range", [] { return Text("lblInst(0)").starts_with("The display"); })
        .Does([this] {
            EXPECT_EQ(Text("lblInst(0)"), "The display is over range:\ncheck the input, or click \"Stop\"");
            EXPECT_EQ(Fill("shpInst(0)"), "#ff0000");
            bench->ShowNext({});
        })
        .WaitsUntil("it reads", reads)
        .Does([] {
            EXPECT_EQ(Text("lblInst(0)"), "Click \"Stop\" to stop calibrating this range");
            EXPECT_NE(Fill("shpInst(0)"), "#ff0000");
        })
        .WaitsFor("cmdRepeat");
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, SilenceOnAPlainStepIsNoReadingEither)
{
    Opens(2).Does([this] {
        bench->SetWord(26, 0x1234);
        bench->SwitchFault("silent-meter", true);
    });
    person->Clicks("cmdReady").Waits(60'000).Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(WordOf(26), 0x1234);
    EXPECT_THAT(ToMeter(), Contains("*1B1"));
    EXPECT_THAT(ToMeter(), Not(Contains(testing::StartsWith("*1W11A"))));
}

TEST_F(WiredRange, GarbageOnTheDisplayIsReadAgain)
{
    bench->ShowNext({"garbage"});
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the display is asked", [this] { return !TimesOf("*1B1").empty(); })
        .Waits(2000)
        .Does([this] {
            EXPECT_GT(TimesOf("*1B1").size(), 1U);
            EXPECT_EQ(Cell(0, 2), "");
            ShowsAFirstRound();
        })
        .WaitsFor("cmdRepeat")
        .Does([] { EXPECT_EQ(Cell(0, 2), "+79944\n-79944"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, DeadCalibratorDoesNotHoldAStopForEver)
{
    Calibrates()
        .Does([this] { bench->SwitchFault("calibrator-port-gone", true); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

// ---- the end of the program ----

TEST_F(WiredRange, QuitInTheMiddlePutsTheCalibratorInStandbyAndWritesNoWord)
{
    Opens()
        .Clicks("cmdReady")
        .WaitsUntil("the input stands", [this] { return Operates(); })
        .Does([this] { Forget(); })
        .Clicks("cmdQuit");
    person->Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(Operates());
    EXPECT_EQ(WordOf(32), 0x8948);
    EXPECT_THAT(ToCalibrator(), Contains("OUT 0 V, 0 Hz ; STBY ; *WAI").Times(1));
    EXPECT_THAT(ToMeter(), Not(Contains(testing::StartsWith("*1W120"))));
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(WiredRange, QuitWhileWatchingLearnsNothing)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Calibrates().Clicks("cmdQuit");
    person->Runs();
    EXPECT_FALSE(Operates());
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
    EXPECT_FALSE(ProcedureRunning());
}

}  // namespace
}  // namespace ombrix::test
