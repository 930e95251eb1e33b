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
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
    EXPECT_THAT(calibratorLine.log, IsEmpty());
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
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
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
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
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
    meter.words[21] = 0;
    person.Clicks("cmdEstablish").WaitsFor("dlgSCType");
    SignalComes();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(meterLine.Writes(), IsEmpty());
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
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
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
