#include "links/calibrator_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- stopping ----

TEST_F(Calibrator, AbortBeforeAnOutputSendsNothing)
{
    Abort = true;
    CalStandbyFlag = true;
    EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_THAT(calibrator.Writes(), IsEmpty());
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Calibrator, AbortDuringAPollEndsWithinItsPause)
{
    CalibratorAnswers("0", "2,V");
    AbortsAfter(1200);
    EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_EQ(clock.Elapsed(), 1500);
    EXPECT_EQ(Count("OUT?\n"), 0);
    EXPECT_FALSE(CalStandbyFlag);
}

TEST_F(Calibrator, AbortDuringASilentPollEndsWithinASecond)
{
    calibrator.Answers("ERR?\n", kNoError);
    AbortsAfter(3700);
    EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_EQ(clock.Elapsed(), 4500);
}

TEST_F(Calibrator, AbortWhileTheErrorsAreReadSwitchesNothingOn)
{
    AbortsAfter(400);
    EXPECT_FALSE(SetCalibratorOutput("660 V", "OPER"));
    EXPECT_THAT(calibrator.Writes(), ElementsAre("ERR?\n"));
    EXPECT_THAT(flags, IsEmpty());
}

TEST_F(Calibrator, AbortWhileTheErrorsAreReadStillSendsAStandby)
{
    AbortsAfter(400);
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_THAT(calibrator.Writes(), ElementsAre("ERR?\n", "OUT 0 V ; STBY ; *WAI\n"));
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(Calibrator, AStandbyIsSentAlsoWithAbortSet)
{
    CalibratorAnswers("0", "0,V");
    Abort = true;
    for (bool (*leave)() : {RemoveInput, CalibratorStandby}) {
        Start();
        EXPECT_FALSE(leave());
        EXPECT_EQ(calibrator.Writes().size(), 1u);
        EXPECT_THAT(calibrator.Writes().at(0), ::testing::HasSubstr("; STBY ; *WAI"));
        EXPECT_EQ(clock.Elapsed(), 0) << "its confirmation isn't waited for";
        EXPECT_FALSE(CalStandbyFlag) << "so the next removal sends it again";
    }
}

TEST_F(Calibrator, AbortEndsTheAttemptsOfAStandbyAndSendsItOnceMoreForNone)
{
    CalibratorAnswers("1", "2,V");
    AbortsAfter(3700);
    EXPECT_FALSE(RemoveInput());
    EXPECT_EQ(Count("OUT 0 V ; STBY ; *WAI\n"), 2);
    EXPECT_EQ(clock.Elapsed(), 4000);
}

TEST_F(Calibrator, AConfirmedStandbyIsSentOnceOnlyAlsoWithAbortSet)
{
    CalibratorAnswers("0", "0,V");
    EXPECT_TRUE(RemoveInput());
    Abort = true;
    Start();
    EXPECT_TRUE(RemoveInput());
    EXPECT_THAT(calibrator.Writes(), IsEmpty());
}

TEST_F(Calibrator, AStandbyThatNoPollConfirmsIsNone)
{
    CalibratorAnswers("1", "2,V");
    EXPECT_FALSE(RemoveInput());
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_FALSE(CalibratorStandby());
    EXPECT_FALSE(CalStandbyFlag);
}

TEST_F(Calibrator, AbortDuringTheReadBackIsNoEnd)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "0\r\n");
    AbortsAfter(800);
    RemoveInput();
    EXPECT_FALSE(CalStandbyFlag);
}

TEST_F(Calibrator, AnAbortedStandbyIsSentAgain)
{
    CalibratorAnswers("1", "2,V");
    AbortsAfter(700);
    RemoveInput();
    EXPECT_FALSE(CalStandbyFlag);
    Abort = false;
    Start();
    EXPECT_FALSE(RemoveInput());
    EXPECT_EQ(Count("OUT 0 V ; STBY ; *WAI\n"), 5);
    EXPECT_FALSE(CalStandbyFlag) << "the calibrator says that it operates";
    Start();
    calibrator.Answers("OPER?\n", "0\r\n");
    EXPECT_TRUE(RemoveInput());
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(Calibrator, TheEndOfTheProgramLeavesAnOutputAtOnce)
{
    CalibratorAnswers("0", "2,V");
    CallAfter(1200, [] { RequestShutdown(); });
    EXPECT_THROW(SetCalibratorOutput("2 V", "OPER"), Shutdown);
    EXPECT_EQ(clock.Elapsed(), 1200);
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_EQ(waits.back(), "");
}

// ---- applying and removing ----

TEST_F(Calibrator, AnInputIsAppliedInOperate)
{
    CalibratorAnswers("1", "2.0E00,V");
    ApplyInput("2 V, 300 Hz");
    EXPECT_TRUE(CalHzFlag);
    EXPECT_EQ(Count("OUT 2 V, 300 Hz ; OPER ; *WAI\n"), 1);
    ApplyInput("2 V");
    EXPECT_FALSE(CalHzFlag);
    EXPECT_THAT(prompts, IsEmpty());
}

TEST_F(Calibrator, RemoveInputTwiceInARowSendsOneCommand)
{
    CalibratorAnswers("0", "0,V");
    RemoveInput();
    EXPECT_TRUE(CalStandbyFlag);
    RemoveInput();
    EXPECT_EQ(Count("OUT 0 V ; STBY ; *WAI\n"), 1);
}

TEST_F(Calibrator, AnAcInputIsRemovedAt1mVAndStaysAc)
{
    CalibratorAnswers("0", "1.0E-03,V");
    CalHzFlag = true;
    RemoveInput();
    EXPECT_EQ(Count("OUT 1 mV ; STBY ; *WAI\n"), 1);
    EXPECT_TRUE(CalHzFlag);
}

TEST_F(Calibrator, StandbyAfterAnAcOutputThatIsAlreadyInStandbyStillSendsZeroHertz)
{
    CalibratorAnswers("0", "0,V");
    CalHzFlag = true;
    RemoveInput();
    EXPECT_TRUE(CalStandbyFlag);
    Start();
    CalibratorStandby();
    EXPECT_EQ(Count("OUT 0 V, 0 Hz ; STBY ; *WAI\n"), 1);
    EXPECT_FALSE(CalHzFlag);
    EXPECT_TRUE(CalStandbyFlag);
    Start();
    CalibratorStandby();
    EXPECT_THAT(calibrator.Writes(), IsEmpty());
}

TEST_F(Calibrator, AnAbortedFullStandbyIsNoStandby)
{
    CalibratorAnswers("1", "2,V");
    AbortsAfter(700);
    CalibratorStandby();
    EXPECT_FALSE(CalStandbyFlag);
    Abort = false;
    Start();
    CalibratorStandby();
    EXPECT_GT(Count("OUT 0 V, 0 Hz ; STBY ; *WAI\n"), 0);
}

// ---- by hand ----

TEST_F(Calibrator, ByHandTheOperatorIsAskedToApply)
{
    ByHand();
    CalStandbyFlag = true;
    ApplyInput("2 V, 300 Hz");
    EXPECT_THAT(prompts, ElementsAre("Apply Input Signal: Apply an accurate input signal of 2 V, 300 Hz to the Meter"));
    EXPECT_EQ(panel, "2.0 V");
    EXPECT_TRUE(CalHzFlag);
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_THAT(calibrator.log, IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Calibrator, ByHand100KohmShows100Point0kOhmOnThePanel)
{
    ByHand();
    ApplyInput("100 KOHM");
    EXPECT_EQ(panel, "100.0 kOhm");
    EXPECT_EQ(Flag(), Danger::Safe);
}

TEST_F(Calibrator, ByHandTheFlagRisesBeforeTheBoxOpensAndTheValueComesWithOk)
{
    ByHand();
    outlets.promptOperator = [this](const std::string &, const std::string &) {
        EXPECT_EQ(panel, "");
        EXPECT_EQ(Flag(), Danger::Danger);
        return true;
    };
    EXPECT_TRUE(ApplyInput("660 V"));
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(Calibrator, ByHandTheHigherLevelStandsUntilTheLowerValueIsThere)
{
    ByHand();
    ApplyInput("660 V");
    outlets.promptOperator = [this](const std::string &, const std::string &) {
        EXPECT_EQ(panel, "660.0 V");
        EXPECT_EQ(Flag(), Danger::Danger);
        return true;
    };
    ApplyInput("2 V");
    EXPECT_EQ(panel, "2.0 V");
    EXPECT_EQ(Flag(), Danger::Warning);
}

TEST_F(Calibrator, AnInputThatTheOperatorSaysIsNotAppliedKeepsTheHigherLevelAndTheOldValue)
{
    ByHand();
    RemoveInput();
    ASSERT_EQ(panel, "0.0 V");
    outlets.promptOperator = [](const std::string &, const std::string &) { return false; };
    EXPECT_FALSE(ApplyInput("660 V"));
    EXPECT_EQ(panel, "0.0 V");
    EXPECT_EQ(Flag(), Danger::Danger) << "he may have applied it";
    EXPECT_TRUE(Abort);
    EXPECT_FALSE(CalStandbyFlag) << "so it is to be removed";
    EXPECT_FALSE(ApplyInputValue("20 OHM"));
}

TEST_F(Calibrator, AnInputThatTheOperatorSaysIsNotRemovedStandsAsItWas)
{
    ByHand();
    ApplyInput("660 V");
    flags.clear();
    int asked = 0;
    outlets.promptOperator = [&](const std::string &, const std::string &) { return ++asked > 2; };
    EXPECT_FALSE(RemoveInput());
    EXPECT_FALSE(CalibratorStandby());
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_THAT(flags, IsEmpty());
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_FALSE(Abort);
    EXPECT_TRUE(RemoveInput()) << "asked again";
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(panel, "0.0 V");
    EXPECT_EQ(Flag(), Danger::Safe);
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(Calibrator, ByHandTheOperatorIsAskedToRemoveOnce)
{
    ByHand();
    RemoveInput();
    EXPECT_THAT(prompts, ElementsAre("Remove Input: Remove any input signal from the meter"));
    EXPECT_EQ(panel, "0.0 V");
    EXPECT_TRUE(CalStandbyFlag);
    RemoveInput();
    CalHzFlag = true;
    CalibratorStandby();
    EXPECT_EQ(prompts.size(), 1u);
    EXPECT_FALSE(CalHzFlag);
}

// ---- quitting ----

TEST_F(Calibrator, QuittingSendsStandbyOnceAndReturnsAtOnce)
{
    Quitting = true;
    EXPECT_FALSE(SetCalibratorOutput("660 V", "OPER")) << "nobody has confirmed it";
    EXPECT_THAT(calibrator.Writes(), ElementsAre("OUT 0 V, 0 Hz ; STBY ; *WAI\n"));
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Calibrator, QuittingSendsStandbyWhateverTheFlagsSay)
{
    Quitting = true;
    for (const bool standby : {false, true})
        for (const bool hertz : {false, true})
            for (const bool abort : {false, true}) {
                for (bool (*leave)() : {RemoveInput, CalibratorStandby}) {
                    CalStandbyFlag = standby;
                    CalHzFlag = hertz;
                    Abort = abort;
                    Start();
                    leave();
                    EXPECT_THAT(calibrator.Writes(), ElementsAre("OUT 0 V, 0 Hz ; STBY ; *WAI\n"));
                    EXPECT_EQ(clock.Elapsed(), 0);
                }
            }
}

TEST_F(Calibrator, QuittingByHandStillAsksToRemoveTheInput)
{
    ByHand();
    Quitting = true;
    CalibratorStandby();
    EXPECT_THAT(prompts, ElementsAre("Remove Input: Remove any input signal from the meter"));
    EXPECT_THAT(calibrator.log, IsEmpty());
}

TEST_F(Calibrator, QuittingByHandAsksNothingWhenNothingIsApplied)
{
    ByHand();
    CalStandbyFlag = true;
    Quitting = true;
    CalibratorStandby();
    EXPECT_THAT(prompts, IsEmpty());
}

// ---- sensors ----

TEST_F(Calibrator, AThermocoupleIsSelectedByTheFirstLetterOfItsName)
{
    CalibratorAnswers("1", "0,CEL");
    const char *letters[] = {"J", "T", "J", "J", "T", "T"};
    for (int i = 0; i < 6; ++i) {
        Start();
        SelectThermocouple(i);
        EXPECT_THAT(calibrator.Writes(), ElementsAre("TSENS_TYPE TC\n", std::string("TC_TYPE ") + letters[i] + "\n",
                                                     "ERR?\n", "OUT 0 CEL ; OPER ; *WAI\n", "OPER?\n", "OUT?\n"))
            << i;
        EXPECT_EQ(panel, "0.0 °C");
    }
}

TEST_F(Calibrator, AnIndexWithoutThermocoupleDoesNothing)
{
    for (int i : {-1, 6, 7, 8, 9, 10})
        SelectThermocouple(i);
    EXPECT_THAT(calibrator.log, IsEmpty());
}

TEST_F(Calibrator, AnRtdIsSensedWithFourWires)
{
    SelectRtd();
    EXPECT_THAT(calibrator.Writes(), ElementsAre("TSENS_TYPE RTD\n", "RTD_TYPE PT385\n", "ZCOMP WIRE4\n"));
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Calibrator, DegreesFahrenheitAreAppliedWithFourWires)
{
    CalibratorAnswers("1", "1356.4,FAR");
    ApplyFahrenheit("1356.4");
    EXPECT_EQ(Count("OUT 1356.4 FAR ; OPER ; *WAI\n"), 1);
    EXPECT_EQ(calibrator.Writes().back(), "ZCOMP WIRE4\n");
    EXPECT_EQ(panel, "1356.4 °F");
}

TEST_F(Calibrator, AnInputThatWasStoppedHasNoSenseWires)
{
    Abort = true;
    EXPECT_FALSE(ApplyInputValue("20 OHM"));
    EXPECT_FALSE(ApplyFahrenheit("32"));
    EXPECT_THAT(calibrator.Writes(), IsEmpty());
}

TEST_F(Calibrator, OnlyAResistanceIsAppliedWithFourWires)
{
    CalibratorAnswers("1", "2,V");
    ApplyInputValue("2 V");
    EXPECT_EQ(Count("ZCOMP WIRE4\n"), 0);
    ApplyInputValue("20 OHM");
    EXPECT_EQ(Count("ZCOMP WIRE4\n"), 1);
    ApplyInputValue("2 KOHM");
    EXPECT_EQ(Count("ZCOMP WIRE4\n"), 2);
}

struct ToldInput {
    const char *asked;
    const char *told;
    bool stands;
};

class ToldByTheCalibrator : public Calibrator, public testing::WithParamInterface<ToldInput>
{
};

TEST_P(ToldByTheCalibrator, AnInputStandsWhenItIsTheValueThatWasAsked)
{
    CalibratorAnswers("1", GetParam().told);
    ApplyInput(GetParam().asked);
    EXPECT_EQ(InputStands(), GetParam().stands) << GetParam().asked << " and " << GetParam().told;
}

INSTANTIATE_TEST_SUITE_P(Values, ToldByTheCalibrator,
                         testing::Values(ToldInput{"200 mV", "2.0000E-01,V", true},
                                         ToldInput{"-200 mV", "2.0000E-01,V", false},
                                         ToldInput{"2 V, 10 KHz", "2,V,0,10000,0", true}, ToldInput{"5 A", "5,A", true},
                                         ToldInput{"5 A", "0,V", false}, ToldInput{"100 OHM", "100.2,OHM", true},
                                         ToldInput{"2 KOHM", "2000,OHM", true}, ToldInput{"2 KOHM", "0,V", false},
                                         ToldInput{"0 CEL", "32,FAR", true}, ToldInput{"0 CEL", "0,V", false}));

TEST_F(Calibrator, AnInputThatItDoesNotSwitchOnDoesNotStand)
{
    CalibratorAnswers("0", "2,V");
    ApplyInput("2 V");
    EXPECT_FALSE(InputStands());
}

// ---- without hardware ----

TEST_F(Calibrator, InSimulationAnInputStandsAtOnce)
{
    Simulate();
    ApplyInput("660 V");
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(SimCalOper, "1");
    RemoveInput();
    EXPECT_EQ(panel, "0.0 V");
    EXPECT_EQ(SimCalOper, "0");
    EXPECT_TRUE(CalStandbyFlag);
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_THAT(calibrator.log, IsEmpty()) << "the port isn't touched";
}
