#include "links/calibrator_fixture.h"

#include "links/wire_meaning.h"
#include "model/connection_tables.h"

#include <set>

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- opening ----

class CalibratorLink : public LinksTest
{
};

TEST_F(CalibratorLink, OpensResetsTakesRemoteAndAsksForErrors)
{
    calibrator.Answers("ERR?\n", kNoError, 30);
    CalHzFlag = true;
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_THAT(calibrator.Writes(), ElementsAre("*RST ; *CLS\n", "REMOTE\n", "ERR?\n"));
    EXPECT_EQ(calibrator.log.front(), "open");
    EXPECT_FALSE(CalHzFlag);
    EXPECT_TRUE(CalStandbyFlag) << "a reset calibrator is in standby";
    EXPECT_EQ(CalError, "");
    EXPECT_EQ(clock.Elapsed(), 30);
    EXPECT_THAT(waits, ElementsAre("Calibrator: waiting for reply", ""));
}

TEST_F(CalibratorLink, ASilentCalibratorIsNotFound)
{
    EXPECT_EQ(OpenCalibratorLink(), 99);
    EXPECT_EQ(CalError, "Calibrator not found");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(CalibratorLink, AnErrorInItsQueueIsNoFailure)
{
    calibrator.Answers("ERR?\n", "-113,\"Undefined header\"\r\n");
    calibrator.Answers("ERR?\n", kNoError);
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(CalError, "");
}

TEST_F(CalibratorLink, ABusyPortIsAFaultWithItsNumberAndWords)
{
    calibrator.RefusesToOpen(16, "Device or resource busy");
    EXPECT_EQ(OpenCalibratorLink(), 16);
    EXPECT_EQ(CalError, "Device or resource busy");
    EXPECT_FALSE(CalStandbyFlag);
    calibrator.RefusesToOpen(0, "");
    calibrator.Answers("ERR?\n", kNoError);
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(CalError, "");
}

TEST_F(CalibratorLink, ASecondOpeningReopensThePort)
{
    calibrator.Answers("ERR?\n", kNoError);
    EXPECT_EQ(OpenCalibratorLink(), 0);
    calibrator.Forget();
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(calibrator.log[0], "close");
    EXPECT_EQ(calibrator.log[1], "open");
}

TEST_F(CalibratorLink, InManualModeSucceedsWithoutSpeaking)
{
    CalPort = 0;
    CalStandbyFlag = true;
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_THAT(calibrator.log, IsEmpty());
    EXPECT_FALSE(CalStandbyFlag);
    ResetCalibrator();
    CalibratorRemote();
    CalibratorLocal();
    EXPECT_FALSE(CalStandbyFlag) << "no calibrator, no reset";
}

TEST_F(CalibratorLink, OpeningForgetsTheDangerOfTheLastSession)
{
    for (const bool hardware : {true, false}) {
        HardwareMode = hardware;
        calibrator.Answers("ERR?\n", kNoError);
        SetDangerFlag(Danger::Danger);
        EXPECT_EQ(OpenCalibratorLink(), 0);
        flags.clear();
        RaiseDangerFlag(Danger::Warning);
        EXPECT_THAT(flags, ElementsAre(Danger::Warning));
    }
}

TEST_F(CalibratorLink, InSimulationSucceedsWithoutSpeaking)
{
    Simulate();
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_THAT(calibrator.log, IsEmpty());
}

TEST_F(CalibratorLink, NothingIsSentWhileThePortIsClosed)
{
    SendCalibratorCommand("LOCAL");
    EXPECT_THAT(calibrator.log, IsEmpty());
    EXPECT_EQ(ReadCalibratorLine(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

// ---- lines ----

TEST_F(Calibrator, ACommandEndsInLineFeed)
{
    SendCalibratorCommand("REMOTE");
    CalibratorLocal();
    EXPECT_EQ(calibrator.Heard(), "REMOTE\nLOCAL\n");
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Calibrator, NothingIsSentWithoutACalibratorPort)
{
    CalPort = 0;
    SelectRtd();
    SetZComp("WIRE4");
    CalibratorLocal();
    EXPECT_THAT(calibrator.log, IsEmpty());
}

TEST_F(Calibrator, ChunksWaitTheirTime)
{
    EXPECT_EQ(ReceiveCalibratorChunk1s(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
    EXPECT_EQ(CalWaitMs, 1000);
    clock.Restart();
    EXPECT_EQ(ReceiveCalibratorChunk5s(), "");
    EXPECT_EQ(clock.Elapsed(), 5000);
    EXPECT_EQ(CalWaitMs, 5000);
    clock.Restart();
    calibrator.Says("x", 4999);
    EXPECT_EQ(ReceiveCalibratorChunk(), "x");
    EXPECT_EQ(clock.Elapsed(), 4999);
}

TEST_F(Calibrator, InputIsLookedAtBeforeTheLimit)
{
    CallAfter(100, [this] {
        calibrator.Says("1\r\n");
        clock.Advance(9000);
    });
    EXPECT_EQ(ReceiveCalibratorChunk1s(), "1\r\n");
}

TEST_F(Calibrator, ALineEndsInCarriageReturnAndLineFeed)
{
    calibrator.SaysByteByByte("0,\"No Error\"\r\nrest", 50, 1);
    EXPECT_EQ(ReadCalibratorLine(), "0,\"No Error\"");
    EXPECT_EQ(CalReply, "0,\"No Error\"");
    EXPECT_EQ(clock.Elapsed(), 50 + 13);
}

TEST_F(Calibrator, ALineWithoutItsEndIsEmpty)
{
    calibrator.Says("12\r", 300);
    EXPECT_EQ(ReadCalibratorLine(), "");
    EXPECT_EQ(clock.Elapsed(), 1300);
}

TEST_F(Calibrator, AbortEndsALineAtTheEndOfTheChunk)
{
    AbortsAfter(100);
    calibrator.SaysByteByByte(std::string(50, 'x'), 400, 400);
    EXPECT_EQ(ReadCalibratorLine(), "");
    EXPECT_EQ(clock.Elapsed(), 400);
    EXPECT_EQ(ReadCalibratorLine(), "") << "and keeps the next from waiting";
    EXPECT_EQ(clock.Elapsed(), 400);
}

TEST_F(Calibrator, AChatteringLineEnds)
{
    CallAfter(1, [this] {
        for (int i = 0; i < 100; ++i)
            calibrator.Says(std::string(100, 'x'), 100 * i + 1);
    });
    EXPECT_EQ(ReadCalibratorLine(), "");
    EXPECT_EQ(clock.Elapsed(), 4002);
}

TEST_F(Calibrator, AVanishedPortIsPacedSilence)
{
    calibrator.Vanishes();
    EXPECT_EQ(CheckCalibratorErrors(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

// ---- errors ----

TEST_F(Calibrator, TheWholeErrorQueueIsEmptiedAndTheFirstEntryReturned)
{
    calibrator.Answers("ERR?\n", "-113,\"Undefined header\"\r\n");
    calibrator.Answers("ERR?\n", "-222,\"Data out of range\"\r\n");
    calibrator.Answers("ERR?\n", kNoError);
    EXPECT_EQ(CheckCalibratorErrors(), "-113,\"Undefined header\"");
    EXPECT_EQ(Count("ERR?\n"), 3);
}

TEST_F(Calibrator, SilenceBehindAnErrorEndsTheQueue)
{
    calibrator.Answers("ERR?\n", "-113,\"Undefined header\"\r\n");
    calibrator.Answers("ERR?\n", "");
    EXPECT_EQ(CheckCalibratorErrors(), "-113,\"Undefined header\"");
    EXPECT_EQ(Count("ERR?\n"), 2);
}

TEST_F(Calibrator, AnEndlessErrorQueueIsReadAtMost32Times)
{
    calibrator.Answers("ERR?\n", "7,\"Overload\"\r\n", 10);
    EXPECT_EQ(CheckCalibratorErrors(), "7,\"Overload\"");
    EXPECT_EQ(Count("ERR?\n"), 32);
}

TEST_F(Calibrator, AnAnswerThatTellsNoErrorInItsOwnWayEndsTheQueue)
{
    for (const char *answer : {"0,\"No Error\"", "+0,\"No error\"", " 0, none", "0", "ready"}) {
        calibrator.onWrite = [this, answer](const std::string &) { calibrator.Says(answer + kCrLf, 10); };
        Start();
        EXPECT_NE(CheckCalibratorErrors(), "") << answer << ": it is there";
        EXPECT_EQ(Count("ERR?\n"), 1) << answer;
    }
    EXPECT_THAT(remarks, IsEmpty());
}

TEST_F(Calibrator, ErrorsThatItQueuedAreToldAsARemarkWithTheTextOfTheFirst)
{
    calibrator.Answers("ERR?\n", "501,\"Value out of range\"\r\n");
    calibrator.Answers("ERR?\n", "-113,\"Undefined header\"\r\n");
    calibrator.Answers("ERR?\n", kNoError);
    CheckCalibratorErrors();
    EXPECT_THAT(remarks, ElementsAre("Calibrator: 501,\"Value out of range\""));
    CheckCalibratorErrors();
    EXPECT_EQ(remarks.size(), 1u);
}

TEST_F(Calibrator, AbortEndsTheErrorQueue)
{
    calibrator.Answers("ERR?\n", "-113,\"Undefined header\"\r\n", 100);
    AbortsAfter(250);
    CheckCalibratorErrors();
    EXPECT_EQ(Count("ERR?\n"), 3);
}

TEST_F(Calibrator, ALateReplyIsNoAnswerToTheNextQuestion)
{
    calibrator.Says("1\r\n");
    calibrator.Answers("ERR?\n", kNoError, 5);
    EXPECT_EQ(CheckCalibratorErrors(), "0,\"No Error\"");
    EXPECT_EQ(Count("ERR?\n"), 1);
}

// ---- the output ----

TEST_F(Calibrator, AnOutputIsSetPolledAndReadBack)
{
    calibrator.Answers("ERR?\n", kNoError, 20);
    calibrator.Answers("OPER?\n", "0\r\n", 20);
    calibrator.Answers("OPER?\n", "1\r\n", 20);
    calibrator.Answers("OUT?\n", "2.0003E-01,V,0E+00,0,0.00E+00\r\n", 20);
    CalStandbyFlag = true;
    EXPECT_TRUE(SetCalibratorOutput("200 mV", "OPER"));
    EXPECT_THAT(calibrator.Writes(),
                ElementsAre("ERR?\n", "OUT 200 mV ; OPER ; *WAI\n", "OPER?\n", "OPER?\n", "OUT?\n"));
    EXPECT_THAT(calibrator.writeTimes, ElementsAre(0, 20, 520, 1040, 1060));
    EXPECT_EQ(clock.Elapsed(), 1080);
    EXPECT_EQ(panel, "200.0 mV");
    EXPECT_EQ(Flag(), Danger::Warning);
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_THAT(waits, ElementsAre("Calibrator: waiting for reply", "", "Calibrator: waiting for OPER", "",
                                   "Calibrator: waiting for reply", ""));
}

TEST_F(Calibrator, AStandbyIsConfirmedByZero)
{
    CalibratorAnswers("0", "0.0000E+00,V,0E+00,0,0.00E+00");
    EXPECT_TRUE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_EQ(calibrator.Writes()[1], "OUT 0 V ; STBY ; *WAI\n");
    EXPECT_EQ(Count("OPER?\n"), 1);
    EXPECT_EQ(clock.Elapsed(), 500);
    EXPECT_THAT(waits, ::testing::Contains("Calibrator: waiting for STBY"));
}

TEST_F(Calibrator, AReplyToOperWithBlanksAroundItIsTrimmed)
{
    CalibratorAnswers("  1 ", "2,V");
    SetCalibratorOutput("2 V", "OPER");
    EXPECT_EQ(Count("OPER?\n"), 1);
}

TEST_F(Calibrator, ThePanelShowsWhatTheCalibratorSays)
{
    CalibratorAnswers("1", " 6.5998E+02 , V ,0E+00,0,0.00E+00");
    SetCalibratorOutput("2 V", "OPER");
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(Calibrator, AReadBackOfAnotherFormIsPassedOverAndTheNextOneAwaited)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "1\r\n");
    for (const std::string other :
         {"1", "7", "7,", "7,X", "?,V", "V", "\xF0\x83", ",", "  ", "x0.0,V", "\x01\x02 0.0,V", "0.0.0,V", "1 0.0,V"}) {
        calibrator.onWrite = [this, other](const std::string &bytes) {
            if (bytes != "OUT?\n")
                return;
            calibrator.Says(other + kCrLf, 100);
            calibrator.Says("6.6E+02,V,0E+00\r\n", 1000);
        };
        panel.clear();
        EXPECT_TRUE(SetCalibratorOutput("2 V", "OPER"));
        EXPECT_EQ(panel, "660.0 V") << other;
    }
}

TEST_F(Calibrator, WhenNoReadBackOfTheRightFormComesTheRequestedValueStaysWithItsLevel)
{
    for (const std::string other : {"1", "7,X", "\x01\x02\x03 0.0,V"}) {
        CalibratorAnswers("1", other);
        Start();
        SetCalibratorOutput("660 V", "OPER");
        EXPECT_EQ(panel, "660.0 V") << other;
        EXPECT_EQ(Flag(), Danger::Danger) << other;
        EXPECT_EQ(Count("OUT?\n"), 1);
        EXPECT_EQ(clock.Elapsed(), 500 + 1000);
    }
}

TEST_F(Calibrator, AReadBackInAnyUnitThatThePanelKnowsIsShown)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "1\r\n");
    const struct {
        const char *reply;
        const char *text;
    } rows[] = {{"2.0000E-01,V,0E+00,0,0.00E+00", "200.0 mV"},
                {"+.5 , mV", "0.5 mV"},
                {"5,A,", "5.0 A"},
                {"2,mA,x", "2.0 mA"},
                {"100,OHM", "100.0 Ohm"},
                {"2.,KOHM", "2.0 kOhm"},
                {"-25.5,CEL,0E+00", "-25.5 °C"},
                {"1.3564E03,FAR", "1356.4 °F"}};
    for (const auto &row : rows) {
        calibrator.onWrite = [this, row](const std::string &bytes) {
            if (bytes == "OUT?\n")
                calibrator.Says(row.reply + kCrLf);
        };
        SetCalibratorOutput("2 V", "OPER");
        EXPECT_EQ(panel, row.text) << row.reply;
    }
}

TEST_F(Calibrator, TheWorstCaseIs25PollsAndNoError)
{
    CalibratorAnswers("0", "2,V");
    EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_EQ(Count("ERR?\n"), 5);
    EXPECT_EQ(Count("OUT 2 V ; OPER ; *WAI\n"), 5);
    EXPECT_EQ(Count("OPER?\n"), 25);
    EXPECT_EQ(Count("OUT?\n"), 1);
    EXPECT_EQ(clock.Elapsed(), 25 * 500);
    EXPECT_EQ(panel, "2.0 V");
}

TEST_F(Calibrator, AThirdAttemptCanConfirm)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OUT?\n", "2,V\r\n");
    for (int i = 0; i < 11; ++i)
        calibrator.Answers("OPER?\n", "0\r\n");
    calibrator.Answers("OPER?\n", "1\r\n");
    SetCalibratorOutput("2 V", "OPER");
    EXPECT_EQ(Count("OUT 2 V ; OPER ; *WAI\n"), 3);
    EXPECT_EQ(clock.Elapsed(), 12 * 500);
}

TEST_F(Calibrator, AnAnswerHeldBackIsWaitedFor)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "1\r\n", 9500);
    calibrator.Answers("OUT?\n", "2,V\r\n");
    SetCalibratorOutput("2 V", "OPER");
    EXPECT_EQ(Count("OPER?\n"), 1);
    EXPECT_EQ(clock.Elapsed(), 500 + 9500);
}

TEST_F(Calibrator, AWholePollWithoutAByteEndsAnOutputAndTheReadBackIsStillAskedOnce)
{
    EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_THAT(calibrator.Writes(), ElementsAre("ERR?\n", "OUT 2 V ; OPER ; *WAI\n", "OPER?\n", "OUT?\n"));
    EXPECT_THAT(calibrator.writeTimes, ElementsAre(0, 1000, 1500, 11'500));
    EXPECT_EQ(clock.Elapsed(), 12'500);
}

TEST_F(Calibrator, ACalibratorThatFallsSilentIsGivenUpAfterTheSamePoll)
{
    CalibratorAnswers("0", "2,V");
    CallAfter(750, [this] { calibrator.Vanishes(); });
    EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_EQ(clock.Elapsed(), 500 + 10'500 + 1000);
}

TEST_F(Calibrator, OneByteInAPollIsNoSilence)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "1", 9900);  // its end got lost
    calibrator.Answers("OPER?\n", "1\r\n");
    calibrator.Answers("OUT?\n", "2,V\r\n");
    EXPECT_TRUE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_EQ(Count("OPER?\n"), 2);
}

TEST_F(Calibrator, AnEmptyReadBackShowsTheRequestedValue)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "1\r\n");
    SetCalibratorOutput("660 V", "OPER");
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(Calibrator, TheLateAnswerToAPollIsNoReadBack)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "1\r\n");
    calibrator.Answers("OUT?\n", "6.6E+02,V,0E+00,0,0.00E+00\r\n", 200);
    calibrator.onWrite = [this](const std::string &bytes) {
        if (bytes == "OUT?\n")
            calibrator.Says("0\r\n", 50);  // to a poll that was given up
    };
    SetCalibratorOutput("660 V", "OPER");
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
    EXPECT_EQ(Count("OUT?\n"), 1);
}

TEST_F(Calibrator, AnUnconfirmedStandbyWithoutReadBackKeepsTheFlag)
{
    SetDangerFlag(Danger::Danger);
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_EQ(panel, "") << "nobody has said that it is 0.0 V";
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(Calibrator, AConfirmedStandbyWithoutReadBackLowersTheFlag)
{
    calibrator.Answers("ERR?\n", kNoError);
    calibrator.Answers("OPER?\n", "0\r\n");
    SetDangerFlag(Danger::Danger);
    SetCalibratorOutput("0 V", "STBY");
    EXPECT_EQ(Flag(), Danger::Safe);
}

TEST_F(Calibrator, TheFlagRisesBeforeTheOutputIsSwitchedOn)
{
    std::vector<Danger> atSending;
    calibrator.onWrite = [&](const std::string &bytes) {
        if (bytes.starts_with("OUT "))
            atSending = flags;
    };
    CalibratorAnswers("1", "6.6E+02,V");
    SetCalibratorOutput("660 V", "OPER");
    EXPECT_THAT(atSending, ElementsAre(Danger::Danger));
    calibrator.onWrite = nullptr;
}

TEST_F(Calibrator, TheFlagIsNotLoweredBeforeTheReadBack)
{
    SetDangerFlag(Danger::Danger);
    CalibratorAnswers("1", "2.0E-03,V");
    SetCalibratorOutput("2 mV", "OPER");
    EXPECT_THAT(flags, ElementsAre(Danger::Danger, Danger::Warning));
}

TEST_F(Calibrator, WithoutACalibratorPortAnOutputIsNothing)
{
    CalPort = 0;
    EXPECT_TRUE(SetCalibratorOutput("2 V", "OPER"));
    EXPECT_THAT(calibrator.log, IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0);
}

// ---- all that it is ever told ----

TEST_F(Calibrator, IsToldNothingWithoutAMeaning)
{
    CalibratorAnswers("1", "2.0E-01,V");
    EXPECT_EQ(OpenCalibratorLink(), 0);
    for (const char *value : {"200 mV", "100 OHM", "660 V, 50 Hz", "-2 mA"}) {
        ApplyInputValue(value);
        RemoveInput();
    }
    for (int index = 0; ThermocoupleName(index) != ""; ++index)
        SelectThermocouple(index);
    SelectRtd();
    ApplyFahrenheit("212");
    CalStandbyFlag = false;
    CalibratorStandby();
    UutSetup("9600");
    MeterPort = 0;
    MeterQuery('X', 109, 1, "Z");
    CalibratorLocal();
    calibrator.HangsUp();
    calibrator.ComesBack();
    CalibratorStandby();

    std::set<std::string> heads;
    for (const std::string &command : calibrator.Writes()) {
        const auto rows = WireRows({{0, TraceLine::Calibrator, ByteWay::Sent, command}});
        ASSERT_EQ(rows.size(), 1u) << command;
        EXPECT_NE(rows[0].meaning, "") << command;
        heads.insert(command.substr(0, command.find_first_of(" \n")));
    }
    EXPECT_THAT(heads, ElementsAre("*RST", "ERR?", "LOCAL", "OPER?", "OUT", "OUT?", "REMOTE", "RTD_TYPE", "TC_TYPE",
                                   "TSENS_TYPE", "UUT_FLUSH", "UUT_RECV?", "UUT_SEND", "UUT_SET", "ZCOMP"));
}
