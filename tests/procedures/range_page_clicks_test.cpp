// Clicks and keys at every moment of a calibration, on the bench.
#include "procedures/range_page_fixture.h"

#include "links/calibrator.h"
#include "session/procedure.h"

#include <QApplication>

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::Not;
using testing::StartsWith;

/// Two rounds with different words and different readings.
class TwoRounds : public WiredRange
{
protected:
    float slopeBefore = 0;
    float nominalBefore = 0;

    ScriptedOperator &WatchesTwo()
    {
        slopeBefore = NominalSlopeOf(kDc, 32);
        nominalBefore = static_cast<float>(HexValue(NominalWordOf(kDc, 32)));
        ShowsAFirstRound();
        return Calibrates()
            .Does([this] { bench->ShowNext({" 80300."}); })
            .WaitsUntil("the reading drifts", [] { return Cell(0, 5) == "+80300\n-80000"; })
            .Clicks("cmdRepeat")
            .WaitsUntil("round 2 begins", Begins(2))
            .Does([this] { bench->ShowNext({}); })
            .WaitsUntil("round 2 is watched", Watches(2))
            .Does([] {
                ASSERT_EQ(Cell(0, 4), "8A01");
                ASSERT_NE(Cell(1, 4), "8A01");
                ASSERT_NE(Cell(1, 5), Cell(0, 5));
            });
    }

    static std::function<bool()> Chosen(int row)
    {
        return [row] { return Colour(row, 1) == kCyan; };
    }

    /// Word and reading of row 1, both: neither goes with the other row's.
    void LearnedFromRowOne() const
    {
        EXPECT_EQ(WordOf(32), 0x8A01);
        const float nominal = (nominalBefore * 9.0f + 0x8A01) / 10.0f;
        EXPECT_EQ(NominalWordOf(kDc, 32), HexText(RoundHalfEven(static_cast<double>(nominal)), 4));
        const float shown = (0x8A01 - 0x8948) / (80150.0f - 79944.0f);
        EXPECT_FLOAT_EQ(NominalSlopeOf(kDc, 32), (slopeBefore * 9.0f + shown) / 10.0f);
    }
};

// ---- clicks on rows ----

TEST_F(TwoRounds, AcceptOfTheFirstLearnsItsWordAndItsReading)
{
    WatchesTwo()
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("row 1 is chosen", Chosen(0))
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    LearnedFromRowOne();
}

TEST_F(TwoRounds, ClickWhileTheAcceptedWordIsWrittenIsTooLate)
{
    WatchesTwo()
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("row 1 is chosen", Chosen(0))
        .Clicks("cmdAccept")
        .WaitsUntil("its word is written", [this] { return WordOf(32) == 0x8A01; })
        .ClicksCell("msgCalibGrid", 1, 1)
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    LearnedFromRowOne();
}

TEST_F(TwoRounds, ClickWhileTheInputIsRemovedStillChooses)
{
    WatchesTwo()
        .Clicks("cmdAccept")
        .WaitsUntil("the input goes", [this] { return !Operates(); })
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    LearnedFromRowOne();
}

TEST_F(TwoRounds, LastOfTwoClicksInsideASecondChooses)
{
    WatchesTwo()
        .ClicksCell("msgCalibGrid", 0, 1)
        .ClicksCell("msgCalibGrid", 1, 1)
        .WaitsUntil("the live reading ends", IsMarked("frozen"))
        .Waits(2500)
        .Does([] {
            EXPECT_EQ(Colour(0, 1), "");
            EXPECT_EQ(Colour(1, 1), kCyan);
        })
        .ClicksCell("msgCalibGrid", 0, 1)
        .Does([] { EXPECT_EQ(Colour(0, 1), kCyan) << "at once"; });
    EXPECT_TRUE(person->Runs());
}

TEST_F(TwoRounds, AcceptInsideTheSecondOfAClickTakesTheClickedRow)
{
    WatchesTwo().ClicksCell("msgCalibGrid", 0, 1).Clicks("cmdAccept").WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    LearnedFromRowOne();
}

TEST_F(TwoRounds, RepeatInsideTheSecondOfAClickStartsARound)
{
    WatchesTwo()
        .ClicksCell("msgCalibGrid", 0, 1)
        .Clicks("cmdRepeat")
        .WaitsUntil("round 3 is watched", Watches(3))
        .Does([] {
            EXPECT_EQ(Colour(0, 1), "");
            EXPECT_EQ(Colour(2, 1), kCyan);
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(TwoRounds, ClickInTheFirstIsForgottenInTheNext)
{
    std::string last;
    ShowsAFirstRound();
    Calibrates()
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("the live reading ends", IsMarked("frozen"))
        .Does([this] { bench->ShowNext({}); })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Clicks("cmdRepeat")
        .WaitsUntil("round 3 is watched", Watches(3))
        .Does([&last] {
            last = Cell(2, 4);
            ASSERT_NE(last, Cell(0, 4));
        })
        .Clicks("cmdAccept")
        .WaitsUntil("the next step is open", StandsAt(5));
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(HexText(WordOf(32), 4), last);
}

TEST_F(TwoRounds, ClickWhileARoundRunsChoosesAtOnceAndDoesNotDisturbIt)
{
    WatchesTwo()
        .Clicks("cmdRepeat")
        .WaitsUntil("round 3 begins", Begins(3))
        .ClicksCell("msgCalibGrid", 0, 1)
        .Does([] {
            EXPECT_EQ(Colour(0, 1), kCyan);
            EXPECT_EQ(Colour(2, 1), "");
        })
        .WaitsUntil("round 3 is watched", Watches(3))
        .Does([this] {
            EXPECT_EQ(Colour(0, 1), kCyan);
            EXPECT_EQ(Cell(2, 4), HexText(WordOf(32), 4));
            EXPECT_EQ(Cell(0, 4), "8A01");
        });
    EXPECT_TRUE(person->Runs());
}

// ---- what a calibration leaves to the next ----

TEST_F(WiredRange, ReadyStartsAtThePlusSideWhereverTheLastRoundEnded)
{
    Calibrates()
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .Does([this] { EXPECT_EQ(Output(), "-2 V"); })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady")
        .Does([this] { Forget(); })
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Does([this] {
            EXPECT_EQ(ToCalibrator().at(1), "OUT 2 V ; OPER ; *WAI");
            EXPECT_THAT(Cell(0, 2), testing::MatchesRegex("\\+[0-9]+\n-[0-9]+"));
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, AnAcceptedCalibrationDoesNotAcceptTheNext)
{
    person
        ->Clicks(StepButton(14))  // 200 mV, which stays open
        .WaitsFor("cmdReady")
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Clicks("cmdAccept")
        .WaitsFor("cmdReady")
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .ClicksCell("msgCalibGrid", 0, 1)
        .WaitsUntil("the live reading ends", IsMarked("frozen"))
        .Waits(10'000)
        .Does([] {
            EXPECT_EQ(Rows(), 1);
            EXPECT_TRUE(IsEnabled("cmdAccept"));
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, ReadyOfTheStepBeforeIsOffWhileTheNextOneIsOpened)
{
    UseSwitch = true;
    Opens()
        .Does([this] { Forget(); })
        .Clicks(StepButton(8))  // 2 mA
        .WaitsUntil("the switch turns", [this] { return !Said().empty(); })
        .Does([] { EXPECT_FALSE(IsEnabled("cmdReady")); })
        .WaitsForText("lblRangeStep", "2 mA")
        .WaitsFor("cmdReady");
    EXPECT_TRUE(person->Runs());
}

// ---- two buttons inside one second ----

TEST_F(WiredRange, InsideTheSecondOfResetNothingElseCanBeAskedFor)
{
    Calibrates().Clicks("cmdStopReset").Does([] {
        EXPECT_FALSE(IsEnabled("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdAccept"));
    });
    person->WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(Operates());
}

TEST_F(WiredRange, ResetInsideTheSecondOfAcceptLearnsNothing)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Calibrates().Clicks("cmdAccept").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepButton, 4);
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
}

TEST_F(WiredRange, EscapeInsideTheSecondOfAcceptLearnsNothing)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Calibrates().Clicks("cmdAccept").Presses(Qt::Key_Escape).WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepButton, 4);
    EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
    EXPECT_FALSE(Operates());
}

TEST_F(WiredRange, EscapeWhileTheReadingIsFollowedEndsTheFollowingAlone)
{
    Calibrates().Presses(Qt::Key_Escape).Presses(Qt::Key_Escape).Waits(60'000).Presses(Qt::Key_Escape).Does([this] {
        EXPECT_EQ(Rows(), 1);
        EXPECT_TRUE(IsEnabled("cmdAccept"));
        EXPECT_TRUE(Operates());
    });
    person->Clicks("cmdAccept").WaitsUntil("the next step is open", StandsAt(5));
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRange, EscapeAgainWhileTheInputIsRemovedLeavesTheCalibratorInStandby)
{
    Calibrates()
        .Clicks("cmdStopReset")
        .WaitsUntil("the input goes", [this] { return !Operates(); })
        .Presses(Qt::Key_Escape)
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Operates());
    EXPECT_TRUE(CalStandbyFlag) << "it is confirmed all the same";
    EXPECT_FALSE(Sees("lblAlert"));
    EXPECT_EQ(Text("lblFlag"), "SAFE");
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    Opens().Clicks("cmdReady").WaitsFor("cmdRepeat");
    EXPECT_TRUE(person->Runs()) << "and nothing of it is left over";
}

// ---- a stop at every moment ----

TEST_F(WiredRange, StopAtAnyMomentGivesThePageBack)
{
    const std::string nominal = NominalWordOf(kDc, 32);
    Opens();
    ASSERT_TRUE(person->Runs());
    for (const bool byKey : {false, true}) {
        bool watched = false;
        for (int ms = 0; !watched; ms += 130) {
            SCOPED_TRACE((byKey ? "Esc after " : "Stop after ") + std::to_string(ms));
            Forget();
            person->Clicks("cmdReady").Waits(ms).Does([&watched] { watched = IsEnabled("cmdRepeat"); });
            person->Does([this, byKey, &watched] {  // what is only followed, Esc leaves as it is
                byKey && !watched ? person->Presses(Qt::Key_Escape) : person->Clicks("cmdStopReset");
                person->WaitsFor("cmdReady");
            });
            ASSERT_TRUE(person->Runs());
            EXPECT_EQ(Rows(), 0);
            EXPECT_FALSE(Operates());
            EXPECT_TRUE(CalStandbyFlag);
            EXPECT_EQ(Text("cmdStopReset"), "Stop");
            EXPECT_FALSE(IsEnabled("cmdStopReset"));
            EXPECT_FALSE(IsEnabled("cmdAccept"));
            EXPECT_TRUE(HasFocus("cmdReady"));
            EXPECT_TRUE(IsEnabled(StepButton(5)));
            EXPECT_TRUE(IsEnabled("cmdSetup"));
            EXPECT_FALSE(StopArmed);
            EXPECT_FALSE(Abort);
            EXPECT_EQ(HexText(WordOf(32), 4), GetStepWordHex()) << "the page knows the word in the meter";
            EXPECT_EQ(NominalWordOf(kDc, 32), nominal);
        }
    }
}

// ---- silence at every reading ----

TEST_F(WiredRange, SilenceAtAnyReadingOfARoundIsWaitedOutUntilStop)
{
    Opens();
    ASSERT_TRUE(person->Runs());
    for (int outputs : {1, 2, 3}) {
        for (const bool written : {false, true}) {
            if ((outputs == 1 && written) || (outputs == 3 && !written))
                continue;
            SCOPED_TRACE("after output " + std::to_string(outputs) + (written ? ", word written" : ""));
            bench->SwitchFault("silent-meter", false);
            bench->SetWord(32, 0x8948);
            Forget();
            const auto said = [this](const char *start) {
                const std::vector<std::string> all = Said();
                return std::count_if(all.begin(), all.end(),
                                     [start](const std::string &line) { return line.starts_with(start); });
            };
            const std::string read = "*1B1";
            person->Clicks("cmdReady")
                .WaitsUntil("it goes silent",
                            [=, this] { return said("OUT ") == outputs && said("*1W120") == (written ? 1 : 0); })
                .Does([this] { bench->SwitchFault("silent-meter", true); })
                .Waits(60'000)
                .Does([&] {
                    EXPECT_EQ(Said().back(), read) << "it is still asked";
                    EXPECT_FALSE(IsEnabled("cmdAccept"));
                    EXPECT_EQ(Text("cmdStopReset"), "Stop");
                })
                .Clicks("cmdStopReset")
                .WaitsFor("cmdReady");
            ASSERT_TRUE(person->Runs());
            EXPECT_EQ(Rows(), 0);
            EXPECT_FALSE(Operates());
            EXPECT_EQ(said("*1W120"), written ? 1 : 0);
        }
    }
}

}  // namespace
}  // namespace ombrix::test
