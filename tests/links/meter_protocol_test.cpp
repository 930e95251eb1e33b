#include "links/links_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;

// ---- frames ----

TEST(CountChar, TellsOneTo35AndFallsBackToOne)
{
    const struct {
        int count;
        char text;
    } rows[] = {{-1, '1'}, {0, '1'},  {1, '1'},  {9, '9'},  {10, 'A'}, {18, 'I'},
                {23, 'N'}, {25, 'P'}, {29, 'T'}, {35, 'Z'}, {36, '1'}, {100, '1'}};
    for (const auto &row : rows)
        EXPECT_EQ(CountChar(row.count), row.text) << row.count;
}

TEST(CountChar, Of36ComesOutAs1)
{
    EXPECT_EQ(CountChar(36), '1');
}

TEST(MeterPayload, KeepsTheLastTwoDigitsOfTheAddress)
{
    const struct {
        int address;
        const char *text;
    } rows[] = {{0, "00"},   {5, "05"},   {16, "10"},  {25, "19"},  {109, "6D"}, {127, "7F"},
                {240, "F0"}, {255, "FF"}, {256, "00"}, {300, "2C"}, {-1, "FF"}};
    for (const auto &row : rows)
        EXPECT_EQ(MeterPayload('X', row.address, 1, "Z"), std::string("X1") + row.text + "Z") << row.address;
}

TEST(MeterPayload, IsLetterCountAddressAndText)
{
    EXPECT_EQ(MeterPayload('G', 50, 2, ""), "G232");
    EXPECT_EQ(MeterPayload('W', 5, 3, "000000100004"), "W305000000100004");
}

TEST(LineOf, IsWhatStandsBeforeTheFirstCarriageReturn)
{
    EXPECT_FALSE(HoldsLine(""));
    EXPECT_FALSE(HoldsLine("6565\n"));
    EXPECT_EQ(LineOf("6565"), "");
    EXPECT_TRUE(HoldsLine("6565\r"));
    EXPECT_EQ(LineOf("6565\r"), "6565");
    EXPECT_EQ(LineOf("65\r65\r"), "65");
    EXPECT_EQ(LineOf("\r65"), "");
}

// ---- sending ----

class MeterLine : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        OpenMeterPort();
    }
};

TEST_F(MeterLine, AFrameIsStarAddressPayloadAndCarriageReturn)
{
    SendMeterCommand("X16DZ");
    EXPECT_EQ(meter.Heard(), "*1X16DZ\r");
    EXPECT_EQ(clock.Elapsed(), 0) << "sending waits for nothing";
}

TEST_F(MeterLine, TheFrameCarriesTheAddressInForce)
{
    SetMeterAddress("2");
    SendMeterCommand("B1");
    EXPECT_EQ(meter.Heard(), "*2B1\r");
}

TEST_F(MeterLine, RtsComesBeforeTheFrameAndWhatWaitedIsDropped)
{
    meter.Says("stale\r");
    SendMeterCommand("B1");
    EXPECT_THAT(meter.log, ElementsAre("RTS on", "read", "write *1B1\r"));
    EXPECT_EQ(comDPM.BytesWaiting(), 0u);
}

TEST_F(MeterLine, RtsStaysOnAfterACommandWithoutReply)
{
    SendMeterCommand("C0");
    EXPECT_EQ(meter.log.back(), "write *1C0\r");
}

TEST_F(MeterLine, RtsFramesAnExchange)
{
    meter.Answers("*1B1\r", "12.34\r", 20);
    SendMeterCommand("B1");
    EXPECT_EQ(ReadMeterLine(), "12.34");
    EXPECT_THAT(meter.log, ElementsAre("RTS on", "read", "write *1B1\r", "read", "RTS off"));
    EXPECT_EQ(clock.Elapsed(), 20);
}

TEST_F(MeterLine, NothingIsSentOnAClosedPort)
{
    CloseLinks();
    Start();
    SendMeterCommand("B1");
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_TRUE(meter.log.empty()) << "not even RTS";
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(MeterLine, ASendIsBuiltAndSentAlone)
{
    MeterSend('W', 200, 1, "00C8Z");
    EXPECT_EQ(meter.Heard(), "*1W1C800C8Z\r");
    EXPECT_EQ(clock.Elapsed(), 0);
}

// ---- receiving ----

TEST_F(MeterLine, AChunkIsAllThatWaits)
{
    meter.Says("12");
    meter.Says("34");
    EXPECT_EQ(ReceiveMeterChunk(), "1234");
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(MeterLine, AChunkIsWaitedForUpToOneSecond)
{
    meter.Says("x", 999);
    EXPECT_EQ(ReceiveMeterChunk(), "x");
    EXPECT_EQ(clock.Elapsed(), 999);
    clock.Restart();
    EXPECT_EQ(ReceiveMeterChunk(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(MeterLine, InputIsLookedAtBeforeTheLimit)
{
    // Something else ate the whole second, and the reply came in it.
    CallAfter(100, [this] {
        meter.Says("7.\r");
        clock.Advance(5000);
    });
    EXPECT_EQ(ReceiveMeterChunk(), "7.\r");
}

TEST_F(MeterLine, AbortDoesNotEndAChunk)
{
    AbortsAfter(100);
    meter.Says("x", 600);
    EXPECT_EQ(ReceiveMeterChunk(), "x");
}

TEST_F(MeterLine, IsGatheredByteByByte)
{
    meter.SaysByteByByte("-0012.345\r", 100, 2);
    EXPECT_EQ(ReadMeterLine(), "-0012.345");
    EXPECT_EQ(clock.Elapsed(), 100 + 9 * 2);
    EXPECT_EQ(MeterReply, "-0012.345");
}

TEST_F(MeterLine, EachByteRestartsTheSilenceLimit)
{
    meter.SaysByteByByte("12.3\r", 900, 900);
    EXPECT_EQ(ReadMeterLine(), "12.3");
    EXPECT_EQ(clock.Elapsed(), 5 * 900);
}

TEST_F(MeterLine, IsEmptyWhenNoCarriageReturnComesInsideTheLimitEvenIfBytesCame)
{
    meter.Says("1234", 300);
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(MeterReply, "");
    EXPECT_EQ(clock.Elapsed(), 1300);
    EXPECT_EQ(meter.log.back(), "RTS off");
}

TEST_F(MeterLine, TotalSilenceCostsOneSecond)
{
    MeterReply = "old";
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(MeterReply, "");
    EXPECT_EQ(clock.Elapsed(), 1000);
    EXPECT_EQ(meter.log.back(), "RTS off");
}

TEST_F(MeterLine, BytesBehindTheCarriageReturnAreLostAndTheNextFlushClearsThePort)
{
    meter.Says("12.\r34.\r");
    EXPECT_EQ(ReadMeterLine(), "12.");
    meter.Says("late\r");
    FlushMeterInput();
    EXPECT_EQ(ReadMeterLine(), "");
}

TEST_F(MeterLine, AbortEndsItAtTheEndOfTheChunk)
{
    AbortsAfter(300);
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
    EXPECT_EQ(meter.log.back(), "RTS off");
}

TEST_F(MeterLine, AbortEndsItWhileBytesDribble)
{
    meter.SaysByteByByte(std::string(50, 'x'), 100, 100);
    AbortsAfter(450);
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 500);
}

TEST_F(MeterLine, AbortBeforeItReadsNothing)
{
    Abort = true;
    meter.Says("12.\r");
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(MeterLine, AStreamWithoutCarriageReturnEndsAt4096Characters)
{
    CallAfter(1, [this] {
        for (int i = 0; i < 500; ++i)
            meter.Says(std::string(10, 'x'), 10 * i + 1);
    });
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 4092) << "the 410th chunk passes the limit";
    EXPECT_EQ(meter.log.back(), "RTS off");
}

TEST_F(MeterLine, AVanishedPortIsPacedSilence)
{
    meter.Says("12", 200);
    CallAfter(300, [this] { meter.Vanishes(); });
    meter.Says("34\r", 400);
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 1200);

    clock.Restart();
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
    EXPECT_EQ(clock.Elapsed(), 1500);
}

TEST_F(MeterLine, TheEndOfTheProgramPutsRtsOffOnItsWay)
{
    CallAfter(200, [] { RequestShutdown(); });
    EXPECT_THROW(ReadMeterLine(), Shutdown);
    EXPECT_EQ(meter.log.back(), "RTS off");
}

TEST_F(MeterLine, WaitIsToldToTheOperator)
{
    ReadMeterLine();
    EXPECT_THAT(waits, ElementsAre("Meter: waiting for reply", ""));
}

TEST_F(MeterLine, AReadThatRunsInsideAnotherKeepsItsOwnBytes)
{
    std::string inner;
    CallAfter(100, [&] { inner = ReadMeterLine(); });
    meter.Says("inner\r", 300);
    meter.Says("outer\r", 700);
    EXPECT_EQ(ReadMeterLine(), "outer");
    EXPECT_EQ(inner, "inner");
}

// ---- questions ----

TEST_F(MeterLine, AQuestionFlushesSendsWaits500msAndReads)
{
    meter.Says("stale\r");
    meter.Answers("*1G232\r", "6565\r", 40);
    EXPECT_EQ(MeterQuery('G', 50, 2, ""), "6565");
    EXPECT_EQ(clock.Elapsed(), 500);
    EXPECT_THAT(meter.log, ElementsAre("read", "RTS on", "read", "write *1G232\r", "read", "RTS off"));
    EXPECT_THAT(waits, ElementsAre("Meter: waiting for reply", ""));
}

TEST_F(MeterLine, ASilentQuestionCosts1500ms)
{
    EXPECT_EQ(MeterQuery('X', 109, 1, ""), "");
    EXPECT_EQ(clock.Elapsed(), 1500);
}

TEST_F(MeterLine, AQuestionWaitsOutItsPauseAfterAbort)
{
    AbortsAfter(100);
    EXPECT_EQ(MeterQuery('X', 109, 1, ""), "");
    EXPECT_EQ(clock.Elapsed(), 500);
}

TEST_F(MeterLine, ALateReplyAnswersNoLaterQuestion)
{
    meter.Answers("*1X16D\r", "3201\r", 1700);
    EXPECT_EQ(MeterQuery('X', 109, 1, ""), "");
    DelayAlways(300);
    meter.Answers("*1X115Z\r", "0001\r", 100);
    EXPECT_EQ(MeterQuery('X', 21, 1, "Z"), "0001");
}

// ---- without hardware ----

class SimulatedMeterLine : public LinksTest
{
};

TEST_F(SimulatedMeterLine, ReadMeterLineAfterA1ReturnsThePreviousReplyAgain)
{
    Simulate();
    SendMeterCommand("X16DZ");
    EXPECT_EQ(ReadMeterLine(), "3201");
    SendMeterCommand("A1");
    EXPECT_EQ(ReadMeterLine(), "3201");
}

TEST_F(SimulatedMeterLine, AllReceivesReturnAtOnce)
{
    Simulate();
    EXPECT_EQ(ReceiveMeterChunk(), "");
    EXPECT_EQ(ReceiveCalibratorChunk(), "");
    EXPECT_EQ(ReceiveCalibratorChunk1s(), "");
    EXPECT_EQ(ReceiveCalibratorChunk5s(), "");
    FlushMeterInput();
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(SimulatedMeterLine, NoPortIsTouched)
{
    OpenMeterPort();
    Simulate();
    MeterQuery('X', 109, 1, "Z");
    EXPECT_TRUE(meter.log.empty());
}
