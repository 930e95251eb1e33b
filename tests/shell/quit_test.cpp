#include "shell/quit.h"

#include "platform/fault.h"
#include "platform/file_faults.h"
#include "platform/text.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "shell/quit_fixture.h"

#include <QDir>
#include <QFile>

#include <cerrno>

using namespace ombrix;
using namespace ombrix::test;

TEST_F(QuitProcedure, BeforeEstablishSendsNothingOnEitherPortButSavesGainsAndCalibrationValues)
{
    Learn();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterOpened(), 0);
    EXPECT_EQ(CalibratorOpened(), 0);
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_TRUE(Quitting);
    ExpectSaved();
}

TEST_F(QuitProcedure, EstablishedSpeaksTheLastWordsAndSaves)
{
    EstablishOnLines();
    ApplyInput("200 V");
    ASSERT_TRUE(bench->CalibratorNow().operating);
    Learn();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(ToMeter(), ElementsAre(kDisplaySetup1));
    EXPECT_LE(TimesOf(kStandby).front(), TimesOf(kDisplaySetup1).front());
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
    EXPECT_THAT(TimesOf(kStandby), ElementsAre(0)) << "the live loop isn't waited for";
    EXPECT_THAT(ToMeter(), ElementsAre(kDisplaySetup1));
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
    EXPECT_THAT(TimesOf(kStandby), ElementsAre(0));
    EXPECT_EQ(unwound, 3);
    EXPECT_EQ(wentOn, 0);
}

TEST_F(QuitProcedure, InTheMiddleOfAnOutputAttemptStandbyIsTheLastThingSaid)
{
    EstablishOnLines();
    Procedure([] { ApplyInput("660 V"); });
    person.Clicks(StepButton(4)).Waits(300);
    person.Does([this] { EXPECT_THAT(ToCalibrator(), testing::Contains("OUT 660 V ; OPER ; *WAI")); });
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
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
    bench->SwitchFault("silent-calibrator", true);
    Procedure([] { ApplyInput("660 V"); });
    person.Clicks(StepButton(4)).Waits(3000);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(QuitProcedure, DuringEstablishTheCalibratorGoesToStandbyAndTheMeterIsLeftAlone)
{
    person.Clicks("cmdEstablish").WaitsUntil("the meter's port is open", [] { return comDPM.IsOpen(); });
    person.Waits(50);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(ToMeter(), IsEmpty());
    EXPECT_FALSE(Established);
    EXPECT_EQ(Text("lblStatus"), "");
}

TEST_F(QuitProcedure, AfterAFailedEstablishTheOpenCalibratorGoesToStandby)
{
    bench->SwitchFault("silent-meter", true);
    Click("cmdEstablish");
    ASSERT_FALSE(Established);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(ToMeter(), IsEmpty());
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
    EXPECT_THAT(ToCalibrator(), ElementsAre(kStandby, kLocal, testing::HasSubstr("*1W305000000100001\\r")));
    EXPECT_THAT(ToMeter(), IsEmpty());
}

TEST_F(QuitProcedure, ACounterKeepsItsDisplaySetup)
{
    Stands({.board = bench::board::kVf});
    EstablishOnLines();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
    EXPECT_THAT(ToMeter(), IsEmpty());
    EXPECT_GE(clock.Elapsed(), 100) << "the last bytes have left before the port closes";
}

TEST_F(QuitProcedure, ThePortsCloseWhenTheLastBytesHaveLeft)
{
    Stands({.board = bench::board::kVf});  // no restart wait follows the calibrator's last word
    EstablishOnLines();
    std::vector<bool> open;
    ClicksQuit().WaitsUntil("the last command has come", [&] {
        if (open.empty() && !TimesOf(kLocal).empty())
            open.push_back(comCAL.IsOpen());
        return !open.empty();
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(open, ElementsAre(true));
    ExpectLastWords();
}

TEST_F(QuitProcedure, InSimulationNothingIsSentAndNothingIsWaitedFor)
{
    EstablishSimulated();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterOpened(), 0);
    EXPECT_EQ(CalibratorOpened(), 0);
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_EQ(SimNvm[3], 1);
}

TEST_F(QuitProcedure, SavesNothingOfWhatSimulatedMetersTaught)
{
    EstablishSimulated();
    Learn();
    EXPECT_EQ(NominalWordOf(kDc, 25), "1234") << "for the session it holds";
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    LoadIni();
    EXPECT_EQ(IniGet("Gains", "DC.19"), Format(DefaultSlopeOf(kDc, 25), 4));
    EXPECT_EQ(IniGet("CalibValues", "DC.19"), DefaultNominalWordOf(kDc, 25));
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

TEST_F(QuitProcedure, NothingStartsWhileTheLastWordsAreSpoken)
{
    EstablishOnLines();
    int started = 0;
    bool tried = false;
    Procedure([&] {
        ArmStop();
        DelayMs(60'000);
    });
    RegisterProbe(Step::Range20V, [&] { ++started; });
    person.Clicks(StepButton(4)).Waits(100).Does([] { SetNavigation(Navigation::Open); });
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
    bench->SwitchFault("port-gone", true);
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectSaved();
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(QuitProcedure, SettingsThatCannotBeSavedAreToldInABoxThatClosesByItself)
{
    static constexpr char kTold[] = "Ombrix.ini can't be written: Is a directory. The settings aren't saved.";
    EstablishOnLines();
    Learn();
    QFile::remove("Ombrix.ini");
    QDir().mkdir("Ombrix.ini");
    testing::internal::CaptureStderr();
    ClicksQuit().WaitsUntil("it is told", [] { return ScriptedOperator::BoxText() == kTold; });
    person.WaitsUntil("the box is gone", [] { return ScriptedOperator::BoxText().empty(); });
    ASSERT_TRUE(person.Runs());
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(std::string("ombrix: ") + kTold));
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(QuitProcedure, ADiskThatTakesNothingMoreIsToldOfTheSettingsAndOfTheJournal)
{
    EstablishOnLines();
    Learn();
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 0}; });
    Click(StepButton(2));
    testing::internal::CaptureStderr();
    SignalComes();
    person.Runs();
    UseFileFaults(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ombrix: Ombrix.ini can't be written: No space left on device. The settings aren't saved.\n"
              "ombrix: What happened last is not recorded: the journal can't be written.\n");
    EXPECT_FALSE(frmOmbrix->isVisible());
    EXPECT_LT(clock.Elapsed(), 4000);
}

TEST_F(QuitProcedure, TheStationOpensAfresh)
{
    EstablishOnLines();
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    CloseStation();
    OpenWholeStation(Painted::No);
    EXPECT_FALSE(Quitting);
    EXPECT_TRUE(IsEnabled("cmdEstablish"));
    EstablishOnLines();
    EXPECT_TRUE(Established);
}

// ---- what isn't saved ----

class UnsavedQuit : public QuitProcedure
{
protected:
    void SetUp() override
    {
        QuitProcedure::SetUp();
        EstablishOnLines();
        SetUnsaved("Words were changed.");
    }
};

TEST_F(UnsavedQuit, AsksOnceAndGoesOnWorkingWhenItIsNotMeant)
{
    ClicksQuit().AnswersBox("Cancel");
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(Quitting);
    EXPECT_TRUE(frmOmbrix->isVisible());
    EXPECT_EQ(Unsaved(), "Words were changed.");
    ClicksQuit().WaitsUntil("the question stands",
                            [] { return ScriptedOperator::BoxText() == "Words were changed.\nQuit without saving?"; });
    person.AnswersBox("OK");
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(UnsavedQuit, ASecondQuitIsAnAnswer)
{
    ClicksQuit().WaitsUntil("the question stands", [] { return ScriptedOperator::Box() != nullptr; });
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(UnsavedQuit, ASignalAsksNobody)
{
    SignalComes();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}

TEST_F(UnsavedQuit, AnotherPageHasNothingUnsaved)
{
    ShowPage(4);
    EXPECT_EQ(Unsaved(), "");
    ClicksQuit();
    ASSERT_TRUE(person.Runs());
    ExpectLastWords();
}
