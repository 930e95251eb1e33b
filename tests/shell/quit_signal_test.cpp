#include "session/live_output.h"
#include "session/state.h"
#include "shell/quit_fixture.h"

#include <csignal>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class QuitUnasked : public QuitProcedure
{
};

class QuitBySystem : public QuitProcedure, public testing::WithParamInterface<int>
{
};

}  // namespace

TEST_F(QuitUnasked, InManualModeTheOperatorIsToldToRemoveTheInput)
{
    Click("optManual");
    EstablishOnLines();
    std::vector<std::string> boxes;
    person.onBox = [&](const std::string &title, const std::string &text) { boxes.push_back(title + ": " + text); };
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(boxes, ElementsAre("Remove Input: Remove any input signal from the meter"));
    EXPECT_THAT(ToMeter(), ElementsAre(kDisplaySetup1));
    EXPECT_EQ(CalibratorOpened(), 0);
}

TEST_F(QuitUnasked, BeforeEstablishInManualModeThereIsNoInputToRemove)
{
    Click("optManual");
    CalStandbyFlag = false;  // as in a fresh program
    std::vector<std::string> boxes;
    person.onBox = [&](const std::string &title, const std::string &) { boxes.push_back(title); };
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(boxes, IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(QuitUnasked, ASignalAsksNobody)
{
    Click("optManual");
    EstablishOnLines();
    SignalComes();
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_THAT(ToMeter(), ElementsAre(kDisplaySetup1));
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_F(QuitUnasked, ASignalEndsTheQuestionOfAQuitThatWaits)
{
    Click("optManual");
    EstablishOnLines();
    ClicksQuit().WaitsUntil("the box is up", [] { return !ScriptedOperator::BoxText().empty(); });
    bool gone = false;
    SignalComes().Does([&] { gone = ScriptedOperator::BoxText().empty(); });
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(gone);
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_THAT(ToMeter(), ElementsAre(kDisplaySetup1));
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_F(QuitUnasked, ASignalClosesAnOpenBoxAndUnwindsWhoWaitsForIt)
{
    Click("optManual");
    EstablishOnLines();
    bool wentOn = false;
    Procedure([&] {
        ApplyInput("660 V");
        wentOn = true;
    });
    person.Clicks(StepButton(4)).WaitsUntil("the box is up", [] { return !ScriptedOperator::BoxText().empty(); });
    SignalComes();
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(ScriptedOperator::BoxText(), "");
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_F(QuitUnasked, ASignalClosesTheBoardDialogUnanswered)
{
    HasBoardCode(0);
    person.Clicks("cmdEstablish").WaitsFor("dlgSCType");
    SignalComes();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(ToMeter(), IsEmpty());
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
}

TEST_F(QuitUnasked, TheCloseBoxIsTheSame)
{
    EstablishOnLines();
    person.Does([this] {
        Forget();
        frmOmbrix->close();
    });
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(ToMeter(), ElementsAre(kDisplaySetup1));
}

namespace {

class QuitUnderAlert : public QuitProcedure
{
protected:
    // 200 V that nobody can vouch for.
    static void Stands()
    {
        CalPort = 2;
        NoteOutputAsked("200.0 V", Danger::Danger);
        TellLiveOutput();
    }

    static bool BoxIsUp() { return ScriptedOperator::BoxText() == kAlert; }

    static constexpr const char *kAlert =
        "Output not confirmed: 200.0 V may be on the terminals. Press the calibrator's own STBY key.";
};

}  // namespace

TEST_F(QuitUnderAlert, ShowsItOnceMoreInABoxThatClosesByItselfAfter10Seconds)
{
    EstablishOnLines();
    Learn();
    Stands();
    testing::internal::CaptureStderr();
    std::int64_t spoken = 0;
    ClicksQuit().WaitsUntil("the alert is shown", BoxIsUp).Does([&] {
        spoken = clock.Elapsed();
        EXPECT_FALSE(comCAL.IsOpen()) << "all else is done by then";
        EXPECT_FALSE(comDPM.IsOpen());
        ExpectSaved();
    });
    person.WaitsUntil("the box is gone", [] { return ScriptedOperator::BoxText().empty(); });
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(std::string("ombrix: ") + kAlert));
    EXPECT_LT(spoken, 4000);
    EXPECT_NEAR(static_cast<double>(clock.Elapsed() - spoken), 10'000, 1) << "and the bench's own last byte";
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(QuitUnderAlert, ItsBoxMayBeClosedAndASignalTakesItAway)
{
    for (const bool signal : {false, true}) {
        Stands();
        ClicksQuit().WaitsUntil("the alert is shown", BoxIsUp);
        if (signal)
            person.Does([] { Quit(QuitBy::Signal); });
        else
            person.Presses(Qt::Key_Escape);
        ASSERT_TRUE(person.Runs());
        EXPECT_LT(clock.Elapsed(), 1000);
        EXPECT_FALSE(frmOmbrix->isVisible());
        CloseStation();
        OpenWholeStation();
    }
}

TEST_F(QuitUnderAlert, ASignalShowsNoBoxAndTheWordsStandInTheTerminal)
{
    EstablishOnLines();
    Stands();
    testing::internal::CaptureStderr();
    bool box = false;
    SignalComes().WaitsUntil("a box comes or not", [&] {
        box = box || BoxIsUp();
        return box || !frmOmbrix->isVisible();
    });
    person.Runs();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(std::string("ombrix: ") + kAlert));
    EXPECT_FALSE(box);
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_P(QuitBySystem, ASignalTakesTheSameRoad)
{
    WatchSignals();
    std::raise(GetParam());
    person.WaitsUntil("the station quits", [] { return Quitting; });
    EXPECT_TRUE(person.Runs());
    StopWatchingSignals();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(frmOmbrix->isVisible());
}

INSTANTIATE_TEST_SUITE_P(Signals, QuitBySystem, testing::Values(SIGTERM, SIGINT, SIGHUP));
