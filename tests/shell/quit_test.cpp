#include "shell/quit.h"

#include "links/calibrator.h"
#include "links/meter_protocol.h"
#include "model/ini_store.h"
#include "model/nominals.h"
#include "platform/fault.h"
#include "session/procedure.h"
#include "shell/main_window.h"
#include "shell/setup_page.h"
#include "shell/shell_fixture.h"

#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>

#include <csignal>

using namespace ombrix;
using namespace ombrix::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr char kStandby[] = "OUT 0 V, 0 Hz ; STBY ; *WAI\n";
constexpr char kLocal[] = "LOCAL\n";
constexpr char kDisplaySetup1[] = "*1W305000000100001\r";

class QuitProcedure : public ShellTest
{
protected:
    /// From the click on Quit on: what is written is remembered, and when.
    ScriptedOperator &ClicksQuit()
    {
        return person.Does([this] { Forget(); }).Clicks("cmdQuit");
    }

    ScriptedOperator &SignalComes()
    {
        return person.Does([this] {
            Forget();
            Quit(QuitBy::Signal);
        });
    }

    void ExpectLastWords()
    {
        EXPECT_THAT(calibratorLine.Writes(), ElementsAre(kStandby, kLocal));
        ASSERT_FALSE(calibratorLine.writeTimes.empty());
        EXPECT_LE(calibratorLine.writeTimes.front(), 1200);
        EXPECT_FALSE(comCAL.IsOpen());
        EXPECT_FALSE(comDPM.IsOpen());
        EXPECT_FALSE(frmOmbrix->isVisible());
        EXPECT_LT(clock.Elapsed(), 4000);
        EXPECT_TRUE(Quitting);
    }

    /// A page's procedure: `body` runs at the click on position 4 of a DC meter.
    void Procedure(std::function<void()> body) { RegisterProbe(5, std::move(body)); }

    static void ExpectSaved()
    {
        LoadIni();
        EXPECT_EQ(IniGet("Gains", "DC.19"), "1.5000");
        EXPECT_EQ(IniGet("CalibValues", "DC.19"), "1234");
    }

    /// Something to save that isn't saved yet.
    static void Learn()
    {
        SetNominalSlopeOf(kDc, 25, 1.5f);
        SetNominalWordOf(kDc, 25, "1234");
    }
};

}  // namespace

TEST_F(QuitProcedure, BeforeEstablishSendsNothingOnEitherPortButSavesGainsAndCalibrationValues)
{
    Learn();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(meterLine.log, IsEmpty());
    EXPECT_THAT(calibratorLine.log, IsEmpty());
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_TRUE(Quitting);
    ExpectSaved();
}

TEST_F(QuitProcedure, EstablishedSpeaksTheLastWordsAndSaves)
{
    EstablishOnLines();
    Learn();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
    ExpectSaved();
}

TEST_F(QuitProcedure, InTheMiddleOfALiveLoopStandbyComesWithin1200MillisecondsAndNothingRunsOn)
{
    EstablishOnLines();
    std::string order;
    Procedure([&] {
        const struct Exit {
            ~Exit() { order += "unwound "; }
            std::string &order;
        } exit{order};
        ArmStop();
        while (!StopRequested)
            PumpEvents(300);
        DisarmStop();
        order += "went on ";
        comDPM.Write("a step more");
    });
    person.Clicks(StepButton(4)).Waits(1000);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_EQ(calibratorLine.writeTimes.front(), 1000) << "the live loop has its time first";
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
    EXPECT_EQ(order, "unwound ");
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(QuitProcedure, WithHandlersOnTopOfHandlersEveryLevelUnwinds)
{
    EstablishOnLines();
    int unwound = 0;
    int wentOn = 0;
    struct Level {
        ~Level() { ++unwound; }
        int &unwound;
    };
    Procedure([&] {
        const Level procedure{unwound};
        CallAfter(500, [&] {
            RunHandler([&] {
                const Level first{unwound};
                CallAfter(100, [&] {
                    RunHandler([&] {
                        const Level second{unwound};
                        DelayMs(5000);
                        ++wentOn;
                    });
                });
                DelayMs(5000);
                ++wentOn;
            });
        });
        DelayMs(5000);
        ++wentOn;
    });
    person.Clicks(StepButton(4)).Waits(1000);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_EQ(calibratorLine.writeTimes.front(), 0);
    EXPECT_EQ(unwound, 3);
    EXPECT_EQ(wentOn, 0);
}

TEST_F(QuitProcedure, InTheMiddleOfAnOutputAttemptStandbyIsTheLastThingSaid)
{
    EstablishOnLines();
    Procedure([] { ApplyInput("660 V"); });
    person.Clicks(StepButton(4)).Waits(300);
    person.Does([this] { EXPECT_THAT(calibratorLine.Writes(), Contains("OUT 660 V ; OPER ; *WAI\n")); });
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_FALSE(calibrator.operating);
}

TEST_F(QuitProcedure, AStopJustBeforeDoesNotKeepStandbyBack)
{
    EstablishOnLines();
    Procedure([] { ApplyInput("660 V"); });
    person.Clicks(StepButton(4)).Waits(300).Does([] { Abort = true; });
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(QuitProcedure, WithADeadCalibratorItTakesNoLonger)
{
    EstablishOnLines();
    calibratorLine.onWrite = nullptr;
    Procedure([] { ApplyInput("660 V"); });
    person.Clicks(StepButton(4)).Waits(3000);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(QuitProcedure, DuringEstablishTheCalibratorGoesToStandbyAndTheMeterIsLeftAlone)
{
    person.Clicks("cmdEstablish").WaitsUntil("the meter's port is open", [] { return comDPM.IsOpen(); });
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(meterLine.Writes(), IsEmpty());
    EXPECT_FALSE(Established);
    EXPECT_EQ(Text("lblStatus"), "");
}

TEST_F(QuitProcedure, AfterAFailedEstablishTheOpenCalibratorGoesToStandby)
{
    meterLine.onWrite = nullptr;
    Click("cmdEstablish");
    ASSERT_FALSE(Established);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(meterLine.Writes(), IsEmpty());
}

TEST_F(QuitProcedure, ACalibratorThatWasDroppedOnTheSetupPageGoesToStandbyAllTheSame)
{
    EstablishOnLines();
    Click("optManual");
    ASSERT_FALSE(Established);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(QuitProcedure, BehindTheCalibratorTheMetersLastWordGoesThroughIt)
{
    EstablishOnLines();
    MeterPort = 0;
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(calibratorLine.Writes(), ElementsAre(kStandby, kLocal, testing::HasSubstr("*1W305000000100001\r")));
    EXPECT_THAT(meterLine.Writes(), IsEmpty());
}

TEST_F(QuitProcedure, ACounterKeepsItsDisplaySetup)
{
    meter.words[109] = 0x3203;
    EstablishOnLines();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(meterLine.Writes(), IsEmpty());
    EXPECT_GE(clock.Elapsed(), 100) << "the last bytes have left before the port closes";
}

TEST_F(QuitProcedure, ThePortsCloseWhenTheLastBytesHaveLeft)
{
    meter.words[109] = 0x3203;  // a counter: no restart wait follows the calibrator's last word
    EstablishOnLines();
    std::vector<bool> open;
    const auto answer = calibratorLine.onWrite;
    calibratorLine.onWrite = [&](const std::string &bytes) {
        answer(bytes);
        if (bytes == kLocal)
            CallAfter(50, [&open] { open.push_back(comCAL.IsOpen()); });
    };
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(open, ElementsAre(true));
    ExpectLastWords();
}

TEST_F(QuitProcedure, InSimulationNothingIsSentAndNothingIsWaitedFor)
{
    EstablishSimulated();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(meterLine.log, IsEmpty());
    EXPECT_THAT(calibratorLine.log, IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_EQ(SimNvm[3], 1);
}

TEST_F(QuitProcedure, InManualModeTheOperatorIsToldToRemoveTheInput)
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

TEST_F(QuitProcedure, ASignalAsksNobody)
{
    Click("optManual");
    EstablishOnLines();
    SignalComes();
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_THAT(meterLine.Writes(), ElementsAre(kDisplaySetup1));
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_F(QuitProcedure, ASignalEndsTheQuestionOfAQuitThatWaits)
{
    Click("optManual");
    EstablishOnLines();
    ClicksQuit().WaitsUntil("the box is up", [] { return !ScriptedOperator::BoxText().empty(); });
    SignalComes();
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_F(QuitProcedure, ASignalClosesAnOpenBoxAndUnwindsWhoWaitsForIt)
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

TEST_F(QuitProcedure, ASignalClosesTheBoardDialogUnanswered)
{
    meter.words[21] = 0;
    person.Clicks("cmdEstablish").WaitsFor("dlgSCType");
    SignalComes();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(meterLine.Writes(), IsEmpty());
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
}

TEST_F(QuitProcedure, TwiceIsOnce)
{
    EstablishOnLines();
    Procedure([] {
        ArmStop();
        DelayMs(60'000);
    });
    person.Clicks(StepButton(4)).Waits(100);
    int again = 0;
    ClicksQuit().Waits(300);
    for (const QuitBy by : {QuitBy::Operator, QuitBy::Signal}) {
        person.Does([&again, by] {
            Quit(by);
            ++again;
        });
    }
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(again, 2);
    ExpectLastWords();
}

TEST_F(QuitProcedure, TheCloseBoxIsTheSame)
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

TEST_F(QuitProcedure, NothingStartsWhileTheLastWordsAreSpoken)
{
    EstablishOnLines();
    int started = 0;
    bool tried = false;
    Procedure([&] {
        ArmStop();
        DelayMs(60'000);
    });
    RegisterProbe(6, [&] { ++started; });
    person.Clicks(StepButton(4)).Waits(100).Does([] { EnableSteps(true); });
    ClicksQuit().Waits(300).Does([&] {
        EXPECT_FALSE(IsEnabled(StepButton(5)));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        RunHandler([&] { ++started; });
        RunProcedure([&] { ++started; });
        RunAfterStop([&] { ++started; });
        tried = true;
    });
    person.Presses(Qt::Key_Escape);
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_TRUE(tried);
    EXPECT_EQ(started, 0);
}

TEST_F(QuitProcedure, SavesEvenWhenALineIsGone)
{
    EstablishOnLines();
    Learn();
    calibratorLine.Vanishes();
    meterLine.Vanishes();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectSaved();
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(QuitProcedure, ASignalOfTheSystemTakesTheSameRoad)
{
    WatchSignals();
    std::raise(SIGTERM);
    person.WaitsUntil("the station quits", [] { return Quitting; });
    EXPECT_TRUE(person.Runs());
    StopWatchingSignals();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(QuitProcedure, TheStationOpensAfresh)
{
    EstablishOnLines();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    CloseStation();
    OpenWholeStation();
    EXPECT_FALSE(Quitting);
    EXPECT_TRUE(IsEnabled("cmdEstablish"));
    EstablishOnLines();
    EXPECT_TRUE(Established);
}
