// The moment of each record of the trace: that at which the bytes passed, whenever the links fetched them.
#include "links/links_fixture.h"
#include "platform/wire_trace.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;

namespace {

class TraceMoment : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        OpenTrace(".");
        UseTraceClock([this] { return clock.ElapsedMicros(); });
        OpenMeterPort();
        OpenCalibratorPort();
    }

    void TearDown() override
    {
        CloseTrace();
        UseTraceClock(nullptr);
        LinksTest::TearDown();
    }

    // "20 < 1.0\r": milliseconds, the way, the bytes; anew with each call.
    std::vector<std::string> Said()
    {
        std::vector<std::string> all;
        for (const TraceRecord &record : LastTraceRecords(SIZE_MAX))
            if (record.way != ByteWay::Mark)
                all.push_back(std::to_string(record.micros / 1000) + " " +
                              std::string(1, "><x"[static_cast<int>(record.way)]) + " " + record.bytes);
        OpenTrace(".");
        Start();
        return all;
    }
};

}  // namespace

TEST_F(TraceMoment, OfAnAnswerIsThatAtWhichItCame)
{
    for (const int delay : {20, 480}) {
        meter.onWrite = [this, delay](const std::string &) { meter.Says("3201\r", delay); };
        EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "3201");
        EXPECT_EQ(clock.Elapsed(), 500) << "the pause is what it was";
        EXPECT_THAT(Said(), ElementsAre("0 > *1X16DZ\r", std::to_string(delay) + " < 3201\r"));
    }
}

TEST_F(TraceMoment, OfAnAnswerThatComesInPiecesIsThatOfEach)
{
    meter.onWrite = [this](const std::string &) { meter.SaysByteByByte("12\r", 30, 10); };
    EXPECT_EQ(MeterQuery('B', 1, 1, ""), "12");
    const auto said = Said();
    ASSERT_EQ(said.size(), 4u);
    EXPECT_EQ(said[1], "30 < 1");
    EXPECT_EQ(said[3], "50 < \r");
}

TEST_F(TraceMoment, OfWhatComesUnaskedIsItsOwnAndItIsToldOnce)
{
    meter.Says("late\r", 100);
    calibrator.Says("1\r\n", 200);
    DelayAlways(1000);
    SendMeterCommand("B1");
    SendCalibratorCommand("OPER?");
    DropCalibratorInput();
    EXPECT_THAT(Said(), ElementsAre("100 < late\r", "200 < 1\r\n", "1000 > *1B1\r", "1000 > OPER?\n"));
    meter.Says("fetched\r");
    EXPECT_EQ(ReceiveMeterChunk(), "fetched\r");
    EXPECT_THAT(Said(), ElementsAre("0 < fetched\r"));
}

TEST_F(TraceMoment, OfWhatNobodyHadHeardOfBeforeADropIsThatOfTheDrop)
{
    meter.Says("seen ", 10);
    DelayAlways(100);
    meter.SaysUnseen("unseen\r");
    SendMeterCommand("B1");
    DelayAlways(100);
    EXPECT_THAT(Said(), ElementsAre("10 < seen ", "100 x unseen\r", "100 > *1B1\r"));
}

TEST_F(TraceMoment, OfALineThatIsOpenedAgainBeginsAnew)
{
    meter.Says("lost\r", 10);
    DelayAlways(20);
    meter.HangsUp();
    meter.ComesBack();
    SendMeterCommand("B1");
    meter.Says("1.0\r", 10);
    DelayAlways(20);
    EXPECT_EQ(ReceiveMeterChunk(), "1.0\r");
    EXPECT_THAT(Said(), ElementsAre("10 < lost\r", "20 > *1B1\r", "30 < 1.0\r"));
}
