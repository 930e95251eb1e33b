// What the operator is told about an output that nobody has confirmed.
#include "links/calibrator_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string kPressStby = " may be on the terminals. Press the calibrator's own STBY key.";

}  // namespace

class LiveOutputAlert : public Calibrator
{
protected:
    void SetUp() override
    {
        Calibrator::SetUp();
        CalibratorHolds("0", "0,V");
        RemoveInput();
    }

    /// From now on each question is answered so; "" is no answer.
    void CalibratorHolds(const std::string &operate, const std::string &output)
    {
        calibrator.onWrite = [this, operate, output](const std::string &bytes) {
            const std::string answer = bytes == "ERR?\n"    ? "0,\"No Error\""
                                       : bytes == "OPER?\n" ? operate
                                       : bytes == "OUT?\n"  ? output
                                                            : "";
            if (!answer.empty())
                calibrator.Says(answer + kCrLf);
        };
    }

    void Stands200V()
    {
        CalibratorHolds("1", "2.0E+02,V,0E+00,0,0.00E+00");
        ASSERT_TRUE(ApplyInput("200 V"));
        ASSERT_TRUE(OutputConfirmed());
        Start();
    }

    void FallsSilent() { CalibratorHolds("", ""); }

    /// As 200 V stand and no answer comes to the standby.
    void StandsUnconfirmed()
    {
        Stands200V();
        calibrator.Vanishes();
        RemoveInput();
        TellLiveOutput();
        calibrator.ComesBack();
        Start();
    }
};

TEST_F(LiveOutputAlert, AStandbyThatWasNotConfirmedIsToldWithTheValueLastKnown)
{
    Stands200V();
    calibrator.Vanishes();
    EXPECT_FALSE(RemoveInput());
    EXPECT_FALSE(OutputConfirmed());
    EXPECT_EQ(alert, "") << "told by whoever ends the exit";
    TellLiveOutput();
    EXPECT_EQ(alert, "Standby not confirmed: 200.0 V" + kPressStby);
    EXPECT_EQ(AlertText(), alert);
    EXPECT_EQ(panel, "200.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(LiveOutputAlert, AnOutputThatWasNotConfirmedIsTold)
{
    CalibratorHolds("0", "");  // it takes the line and stays where it is
    EXPECT_TRUE(ApplyInput("660 V")) << "it goes on, as no error is raised";
    EXPECT_FALSE(OutputConfirmed());
    TellLiveOutput();
    EXPECT_EQ(alert, "Output not confirmed: 660.0 V" + kPressStby);
    EXPECT_EQ(panel, "660.0 V");
}

TEST_F(LiveOutputAlert, OfTwoValuesTheMoreDangerousOneIsTold)
{
    Stands200V();
    calibrator.Vanishes();
    ApplyInput("2 mV");
    TellLiveOutput();
    EXPECT_EQ(alert, "Output not confirmed: 200.0 V" + kPressStby);
    EXPECT_EQ(panel, "200.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(LiveOutputAlert, NothingIsToldOfAnOutputThatWasConfirmed)
{
    Stands200V();
    TellLiveOutput();
    CalibratorHolds("0", "0,V");
    EXPECT_TRUE(RemoveInput());
    TellLiveOutput();
    EXPECT_THAT(alertTimes, IsEmpty());
    EXPECT_EQ(AlertText(), "");
    EXPECT_TRUE(OutputConfirmed());
}

TEST_F(LiveOutputAlert, NothingLooksSafeWithoutAConfirmation)
{
    Stands200V();
    for (const char *output : {"0,V,0E+00", "", "1.0E-03,V"}) {
        CalibratorHolds("1", output);  // it goes on operating
        flags.clear();
        EXPECT_FALSE(RemoveInput());
        EXPECT_EQ(panel, "200.0 V") << output;
        EXPECT_THAT(flags, IsEmpty()) << output;
    }
}

TEST_F(LiveOutputAlert, AReadBackWithoutConfirmationStillRaises)
{
    CalibratorHolds("1", "6.6E+02,V");
    CalStandbyFlag = false;
    EXPECT_FALSE(RemoveInput());
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
    TellLiveOutput();
    EXPECT_EQ(alert, "Standby not confirmed: 660.0 V" + kPressStby);
}

TEST_F(LiveOutputAlert, ItGoesWhenAStandbyIsConfirmed)
{
    StandsUnconfirmed();
    ASSERT_NE(alert, "");
    CalibratorHolds("0", "0,V");
    EXPECT_TRUE(RemoveInput());
    EXPECT_EQ(alert, "");
    EXPECT_EQ(AlertText(), "");
    EXPECT_EQ(panel, "0.0 V");
    EXPECT_EQ(Flag(), Danger::Safe);
}

TEST_F(LiveOutputAlert, AStopInProgressRaisesNothing)
{
    CalibratorHolds("0", "2.0E+02,V");
    AbortsAfter(1200);
    EXPECT_FALSE(ApplyInput("200 V"));
    EXPECT_THAT(alertTimes, IsEmpty());
    Abort = false;
    CalibratorHolds("0", "0,V");
    RemoveInput();
    TellLiveOutput();
    EXPECT_THAT(alertTimes, IsEmpty()) << "its exit has reached standby";
}

TEST_F(LiveOutputAlert, ComesAtOnceWhenTheLineGoesWhileAnOutputStands)
{
    Stands200V();
    CallAfter(300, [this] { calibrator.HangsUp(); });
    DelayAlways(1000);
    EXPECT_THAT(alertTimes, ElementsAre(300));
    EXPECT_EQ(alert, "Output not confirmed: 200.0 V" + kPressStby);
    EXPECT_FALSE(OutputConfirmed());
    RemoveInput();
    TellLiveOutput();
    EXPECT_EQ(alert, "Standby not confirmed: 200.0 V" + kPressStby);
    EXPECT_EQ(panel, "200.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(LiveOutputAlert, DoesNotComeWhenTheLineGoesInStandby)
{
    calibrator.HangsUp();
    DelayAlways(10);
    TellLiveOutput();
    EXPECT_EQ(alert, "");
    EXPECT_EQ(AlertText(), "");
}

TEST_F(LiveOutputAlert, WhileItStandsNothingIsAppliedThatDoesNotReachStandbyFirst)
{
    StandsUnconfirmed();
    FallsSilent();
    for (const char *value : {"2 V", "20 OHM"}) {
        Abort = false;
        Start();
        EXPECT_FALSE(ApplyInputValue(value));
        EXPECT_TRUE(Abort) << "the procedure unwinds as stopped";
        EXPECT_EQ(Count("OUT 0 V, 0 Hz ; STBY ; *WAI\n"), 1);
        EXPECT_THAT(calibrator.Writes(), ::testing::Not(::testing::Contains(::testing::HasSubstr("OPER ;"))));
        EXPECT_THAT(calibrator.Writes(), ::testing::Not(::testing::Contains("ZCOMP WIRE4\n")));
        EXPECT_EQ(alert, "Standby not confirmed: 200.0 V" + kPressStby);
    }
}

TEST_F(LiveOutputAlert, OnceStandbyIsReachedTheValueIsAppliedAndTheAlertGoes)
{
    StandsUnconfirmed();
    bool operate = false;
    calibrator.onWrite = [this, &operate](const std::string &bytes) {
        if (bytes.starts_with("OUT "))
            operate = bytes.find("OPER ;") != std::string::npos;
        if (bytes == "ERR?\n")
            calibrator.Says(kNoError);
        if (bytes == "OPER?\n")
            calibrator.Says(operate ? "1\r\n" : "0\r\n");
        if (bytes == "OUT?\n")
            calibrator.Says(operate ? "2,V\r\n" : "0,V\r\n");
    };
    EXPECT_TRUE(ApplyInput("2 V"));
    std::vector<std::string> told = calibrator.Writes();
    std::erase_if(told, [](const std::string &write) { return write.ends_with("?\n"); });
    EXPECT_THAT(told, ElementsAre("OUT 0 V, 0 Hz ; STBY ; *WAI\n", "OUT 2 V ; OPER ; *WAI\n"));
    EXPECT_EQ(alert, "");
    EXPECT_EQ(panel, "2.0 V");
    EXPECT_FALSE(Abort);
}

TEST_F(LiveOutputAlert, AnInputIsNotAppliedOverALineThatGoesUnderIt)
{
    CallAfter(300, [this] { calibrator.HangsUp(); });
    EXPECT_FALSE(ApplyInput("200 V"));
    EXPECT_TRUE(Abort);
    EXPECT_EQ(alert, "Output not confirmed: 200.0 V" + kPressStby);
    EXPECT_EQ(panel, "200.0 V");
}

TEST_F(LiveOutputAlert, StandsUntilACalibratorIsResetOrTheOperatorSaysThatTheInputIsRemoved)
{
    StandsUnconfirmed();
    FallsSilent();
    HardwareMode = false;
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_TRUE(ApplyInput("2 V"));
    EXPECT_TRUE(RemoveInput());
    EXPECT_NE(AlertText(), "") << "the simulator doesn't know the terminals";
    HardwareMode = true;
    ByHand();
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_NE(AlertText(), "");
    outlets.promptOperator = [](const std::string &, const std::string &) { return false; };
    EXPECT_FALSE(ApplyInput("2 V"));
    EXPECT_NE(alert, "");
    outlets.promptOperator = [](const std::string &, const std::string &) { return true; };
    Abort = false;
    EXPECT_TRUE(ApplyInput("2 V"));
    EXPECT_EQ(alert, "");
}

TEST_F(LiveOutputAlert, GoesWhenTheCalibratorIsOpenedAnew)
{
    StandsUnconfirmed();
    FallsSilent();
    calibrator.onWrite = nullptr;
    EXPECT_EQ(OpenCalibratorLink(), 99);
    EXPECT_NE(alert, "") << "nobody heard the reset";
    EXPECT_FALSE(CalStandbyFlag);
    CalibratorHolds("0", "0,V");
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(alert, "");
}

TEST_F(LiveOutputAlert, ByHandNobodyIsAskedForAConfirmation)
{
    ByHand();
    ApplyInput("660 V");
    TellLiveOutput();
    EXPECT_EQ(alert, "");
}

TEST_F(LiveOutputAlert, TheEndOfTheProgramTellsOnlyWhatStandsUnknown)
{
    Stands200V();
    Quitting = true;
    CalibratorStandby();
    EXPECT_EQ(AlertText(), "") << "its line is there";
    calibrator.HangsUp();
    EXPECT_EQ(AlertText(), "Standby not confirmed: 200.0 V" + kPressStby);
}

TEST_F(LiveOutputAlert, ThePanelShowsTheAskedValueBeforeItMayStand)
{
    std::string atOutput;
    calibrator.onWrite = [this, &atOutput](const std::string &bytes) {
        if (bytes.starts_with("OUT 200 V"))
            atOutput = panel;
        const std::string answer = bytes == "ERR?\n" ? "0,\"No Error\"" : bytes == "OPER?\n" ? "1" : "";
        if (!answer.empty())
            calibrator.Says(answer + kCrLf);
    };
    ASSERT_TRUE(ApplyInput("200 V"));
    EXPECT_EQ(atOutput, "200.0 V");
}

TEST_F(LiveOutputAlert, OfTwoValuesOfOneKindTheLargerOneIsTold)
{
    Stands200V();
    FallsSilent();
    ApplyInput("20 V");
    TellLiveOutput();
    EXPECT_EQ(alert, "Output not confirmed: 200.0 V" + kPressStby);
    EXPECT_EQ(panel, "200.0 V");
}

TEST_F(LiveOutputAlert, IsDrawnOnceMoreWhenThePanelWasEmptied)
{
    StandsUnconfirmed();
    outlets.showOutput("");
    flags.clear();
    RepeatAlert();
    EXPECT_EQ(panel, "200.0 V");
    EXPECT_THAT(flags, ElementsAre(Danger::Danger));
}

TEST_F(LiveOutputAlert, IsNotTakenAwayByACalibratorWhoseAnswerNobodyUnderstands)
{
    StandsUnconfirmed();
    calibrator.onWrite = [this](const std::string &bytes) {
        if (bytes == "ERR?\n")
            calibrator.Says("\xF0\x83" + std::string("0,\"No") + kCrLf);
    };
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(alert, "Standby not confirmed: 200.0 V" + kPressStby);
    EXPECT_FALSE(CalStandbyFlag);
}
