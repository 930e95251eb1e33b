// A line that is gone: nobody waits for it, and the next exchange opens it again.
#include "links/calibrator_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GoneMeterLine : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        MeterKind = kDpm;
        ombrix::OpenMeterPort(PortDevice(1));
        Start();
    }

    void HangsUpAfter(int ms)
    {
        CallAfter(ms, [this] { meter.HangsUp(); });
    }
};

TEST_F(GoneMeterLine, TheExchangeInWorkEndsAtOnce)
{
    for (const int ms : {200, 900}) {  // inside the pause of a question, and in the wait for its reply
        clock.Restart();
        HangsUpAfter(ms);
        EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
        EXPECT_EQ(clock.Elapsed(), ms);
        EXPECT_TRUE(MeterLineIsGone());
        meter.ComesBack();
        SendMeterCommand("A1");
    }
}

TEST_F(GoneMeterLine, TheNextExchangeOpensItAgainAsAtTheStart)
{
    meter.HangsUp();
    meter.ComesBack();
    meter.Answers("*1X16DZ\r", "3201\r", 20);
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "3201");
    EXPECT_THAT(meter.log, ElementsAre("read", "close", "open", "RTS on", "DTR on", "RTS on", "read", "write *1X16DZ\r",
                                       "read", "RTS off"));
    EXPECT_EQ(clock.Elapsed(), 500);
    EXPECT_FALSE(MeterLineIsGone());
}

TEST_F(GoneMeterLine, AnExchangeOnALineThatStaysAwayEndsAtOnce)
{
    meter.HangsUp();
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
    EXPECT_EQ(ReadRamBytes(48, 1), "");
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_THAT(meter.Writes(), IsEmpty());
}

TEST_F(GoneMeterLine, TheRestartOfACounterIsNotWaitedFor)
{
    MeterKind = kCtr;
    HangsUpAfter(1200);
    WriteNvmWords(200, "00C8", "");
    EXPECT_EQ(clock.Elapsed(), 1200);
}

TEST_F(GoneMeterLine, TheDisplayIsReadAgainOnceASecondUntilTheStop)
{
    meter.HangsUp();
    meter.log.clear();
    AbortsAfter(10'500);
    EXPECT_EQ(ReadDisplay(), "");
    EXPECT_EQ(clock.Elapsed(), 10'500) << "ended at once";
    EXPECT_EQ(std::count(meter.log.begin(), meter.log.end(), "read"), 1)
        << "the first flush: nothing is open behind it";
}

TEST_F(GoneMeterLine, TheDisplayIsReadAsSoonAsTheLineIsBack)
{
    meter.Answers("*1B1\r", "12.34\r", 20);
    meter.HangsUp();
    CallAfter(3500, [this] { meter.ComesBack(); });
    EXPECT_EQ(ReadDisplay(), "12.34");
    EXPECT_EQ(clock.Elapsed(), 4020);
}

TEST_F(GoneMeterLine, AStopEndsThePauseBetweenTwoTries)
{
    meter.HangsUp();
    EXPECT_EQ(ReadDisplayRaw(), "");
    EXPECT_EQ(clock.Elapsed(), 0);
    ArmStop();
    CallAfter(300, [] { StopRequested = true; });
    EXPECT_EQ(ReadDisplayRaw(), "");
    EXPECT_EQ(clock.Elapsed(), 300);
    EXPECT_EQ(ReadDisplayRaw(), "");
    EXPECT_EQ(clock.Elapsed(), 1000) << "who reads on after it does so at the same pace";
}

TEST_F(GoneMeterLine, SilenceOnALineThatIsThereKeepsItsWaits)
{
    meter.Vanishes();
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
    EXPECT_EQ(clock.Elapsed(), 1500);
    EXPECT_FALSE(MeterLineIsGone());
}

TEST_F(GoneMeterLine, InSimulationNoLineIsGone)
{
    meter.HangsUp();
    Simulate();
    EXPECT_FALSE(MeterLineIsGone());
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "3201");
}

// ---- the calibrator's ----

class GoneCalibratorLine : public Calibrator
{
};

TEST_F(GoneCalibratorLine, TheExchangeInWorkEndsAtOnceWithoutAnotherTry)
{
    for (const int ms : {700, 1200, 4000, 11'700}) {  // errors, pause, poll, read-back
        calibrator.ComesBack();
        OpenCalibratorPort();
        calibrator.Answers("ERR?\n", "", 0);
        CallAfter(ms, [this] { calibrator.HangsUp(); });
        EXPECT_FALSE(SetCalibratorOutput("2 V", "OPER"));
        EXPECT_EQ(clock.Elapsed(), ms);
        EXPECT_LE(Count("OPER?\n"), 1);
    }
}

TEST_F(GoneCalibratorLine, NothingIsSwitchedOnWhenItGoesWhileTheErrorsAreRead)
{
    CallAfter(400, [this] {
        calibrator.HangsUp();
        calibrator.ComesBack();
    });
    EXPECT_FALSE(SetCalibratorOutput("660 V", "OPER"));
    EXPECT_THAT(calibrator.Writes(), ElementsAre("ERR?\n"));
    EXPECT_THAT(flags, IsEmpty());
}

TEST_F(GoneCalibratorLine, TheNextExchangeOpensItAgainInRemoteWithoutAReset)
{
    CalibratorAnswers("0", "0,V");
    calibrator.HangsUp();
    calibrator.ComesBack();
    EXPECT_TRUE(RemoveInput());
    EXPECT_THAT(calibrator.Writes(), ElementsAre("REMOTE\n", "ERR?\n", "OUT 0 V ; STBY ; *WAI\n", "OPER?\n", "OUT?\n"));
    EXPECT_EQ(clock.Elapsed(), 500);
    EXPECT_FALSE(CalibratorLineIsGone());
}

TEST_F(GoneCalibratorLine, AStandbyIsTriedAtOnceAgainWhenTheErrorsCouldNotBeRead)
{
    calibrator.HangsUp();
    EXPECT_FALSE(RemoveInput());
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_FALSE(CalStandbyFlag);
    calibrator.ComesBack();
    CalibratorAnswers("0", "0,V");
    EXPECT_TRUE(RemoveInput());
}

TEST_F(GoneCalibratorLine, TheLastWordOpensItAgain)
{
    calibrator.HangsUp();
    calibrator.ComesBack();
    Quitting = true;
    CalibratorStandby();
    CalibratorLocal();
    EXPECT_THAT(calibrator.Writes(), ElementsAre("REMOTE\n", "OUT 0 V, 0 Hz ; STBY ; *WAI\n", "LOCAL\n"));
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(GoneCalibratorLine, TheMeterBehindItIsNotWaitedForEither)
{
    MeterPort = 0;
    MeterKind = kCtr;
    CallAfter(200, [this] { calibrator.HangsUp(); });
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
    EXPECT_EQ(clock.Elapsed(), 200);
    EXPECT_TRUE(MeterLineIsGone());
    WriteNvmWords(200, "00C8", "");
    EXPECT_EQ(clock.Elapsed(), 200);
    AbortsAfter(2500);
    EXPECT_EQ(ReadDisplay(), "");
    EXPECT_EQ(clock.Elapsed(), 2700);
}

TEST_F(GoneCalibratorLine, TheMetersOwnLineIsThereAllTheSame)
{
    OpenMeterPort();
    calibrator.HangsUp();
    EXPECT_FALSE(MeterLineIsGone());
    EXPECT_TRUE(CalibratorLineIsGone());
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
    EXPECT_EQ(clock.Elapsed(), 1500);
}
