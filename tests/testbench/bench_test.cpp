#include "testbench/bench.h"

#include "bench_fixture.h"
#include "platform/wire_trace.h"

namespace ombrix::bench {
namespace {

using Benches = BenchTest;

TEST_F(Benches, PaceBothDirectionsAt9600Baud)
{
    const std::string frame = "*1X16DZ\r";
    bench->Receive(Line::Meter, frame, now);
    const Micros heard = now + 8 * kByteMicros;
    const Micros first = heard + kMeterThinksMicros + kByteMicros;
    EXPECT_EQ(bench->NextDue(now), now + kByteMicros) << "the first byte of the frame";
    EXPECT_EQ(bench->NextDue(heard - 1), heard);
    EXPECT_EQ(bench->NextDue(heard), first);
    EXPECT_EQ(bench->Collect(Line::Meter, first - 1), "");
    for (int byte = 0; byte < 5; ++byte)
        EXPECT_EQ(bench->Collect(Line::Meter, first + byte * kByteMicros), std::string(1, "3201\r"[byte]));
    EXPECT_EQ(bench->NextDue(now + kSecond), std::nullopt);
}

TEST_F(Benches, PaceFramesThatAreSentTogether)
{
    bench->Receive(Line::Meter, "*1X16DZ\r*1X110Z\r", now);
    now += 16 * kByteMicros + kMeterThinksMicros + 10 * kByteMicros;
    EXPECT_EQ(bench->Collect(Line::Meter, now), "3201\r0060\r");
}

TEST_F(Benches, DoNothingByThemselvesWhileNobodyAsks)
{
    EXPECT_EQ(bench->NextDue(now), std::nullopt);
    EXPECT_EQ(bench->Collect(Line::Meter, now + 3600 * kSecond), "");
}

TEST_F(Benches, HandOutTheSameHoweverOftenTheyAreLookedAt)
{
    const auto session = [this](Micros look) {
        Stands({.seed = 9});
        Applies("200 mV");
        std::string all;
        bench->Receive(Line::Meter, "*1B1\r*1B1\r*1X219Z\r", now);
        for (const Micros end = now + kSecond; now < end; now += look)
            all += bench->Collect(Line::Meter, now);
        return all;
    };
    EXPECT_EQ(session(100), session(50'000));
}

TEST_F(Benches, KeepATranscriptOfBothDirections)
{
    AskMeter("X16DZ");
    AskCalibrator("OPER?");
    const auto &lines = bench->Transcript();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_TRUE(lines[0].fromStation);
    EXPECT_EQ(lines[0].line, Line::Meter);
    EXPECT_EQ(lines[0].text, "*1X16DZ\\r");
    EXPECT_EQ(lines[0].time, 1000 * kSecond + 8 * kByteMicros);
    EXPECT_FALSE(lines[1].fromStation);
    EXPECT_EQ(lines[1].text, "3201\\r");
    EXPECT_EQ(lines[1].time, lines[0].time + kMeterThinksMicros);
    EXPECT_EQ(lines[2].text, "OPER?\\n");
    EXPECT_EQ(lines[3].text, "0\\r\\n");
    EXPECT_EQ(bench->LastWords(2), "1000.506252 > calibrator OPER?\\n\n1000.518252 < calibrator 0\\r\\n\n");
}

TEST_F(Benches, TellTheTruthOfAPositionAndOfATitle)
{
    const RangeTruth byPosition = bench->TruthOf(4);
    EXPECT_EQ(byPosition.title, "2 V");
    EXPECT_EQ(byPosition.word, 32);
    EXPECT_EQ(byPosition.wordHex, HexText(bench->Nvm()[32], 4));
    EXPECT_EQ(bench->TruthOf("2 V").idealHex, byPosition.idealHex);
    EXPECT_EQ(bench->TruthOf("REF").word, 25) << "the beginning of a title is enough";
    EXPECT_EQ(bench->TruthOf("2 m").word, 37);
    EXPECT_TRUE(std::isnan(bench->RemainingError(0)));
    EXPECT_TRUE(std::isnan(bench->RemainingError("no such step")));
}

TEST_F(Benches, CountTheErrorThatTheIdealWordLeavesAsNextToNothing)
{
    const RangeTruth before = bench->TruthOf("2 V");
    EXPECT_GT(std::fabs(before.error), 100);
    bench->SetWord(32, static_cast<std::uint16_t>(HexValue(before.idealHex)));
    EXPECT_LT(std::fabs(bench->RemainingError("2 V")), 0.3);
    bench->SetWord(32, static_cast<std::uint16_t>(HexValue(before.idealHex) + 335));
    EXPECT_NEAR(bench->RemainingError("2 V"), 100, 6) << "335 word counts at 3.35 for a display count";
}

TEST_F(Benches, TellAnErrorThatTheDisplayShows)
{
    Applies("2 V");
    Ranges("61", 4);
    const double plus = bench->DisplayCounts(now);
    Applies("-2 V");
    const double minus = bench->DisplayCounts(now);
    EXPECT_NEAR((plus - minus) / 2 - 80000, bench->RemainingError("2 V"), 0.001);
    EXPECT_GT(std::fabs(plus + minus), 1) << "the two polarities differ a little";
    EXPECT_LT(std::fabs(plus + minus), 60);
}

TEST_F(Benches, TellTheIdealWordAsTheOtherWordsStand)
{
    const auto ideal = [this] { return HexValue(bench->TruthOf("200 mV").idealHex); };
    const auto before = ideal();
    bench->SetWord(25, static_cast<std::uint16_t>(bench->Nvm()[25] + 1000));
    EXPECT_NEAR(static_cast<double>(before - ideal()), 1000, 120) << "25 and 31 scale one range together";
}

TEST_F(Benches, NoticeCompanionsThatWereLeftBehind)
{
    Stands({.board = board::kTc});
    for (const int word : {33, 32, 31, 46})
        bench->SetWord(word, 0x5000);
    EXPECT_TRUE(bench->TruthOf("56.7 mV").companionsAgree);
    bench->SetWord(46, 0x5001);
    EXPECT_FALSE(bench->TruthOf("56.7 mV").companionsAgree);
}

TEST_F(Benches, TakeSignalsByHandWithoutACalibrator)
{
    Stands({.calibrator = false});
    EXPECT_EQ(AskCalibrator("ERR?"), "");
    EXPECT_TRUE(bench->Apply("200 mV", now));
    Waits(2 * kSecond);
    EXPECT_NEAR(bench->DisplayCounts(now), 80000, 4000);
    EXPECT_FALSE(bench->Apply("much", now));
    EXPECT_EQ(bench->Terminals().value, 0.2);
    bench->Remove(now);
    Waits(2 * kSecond);
    EXPECT_LT(std::fabs(bench->DisplayCounts(now)), 100);
    const auto history = bench->OutputHistory();
    ASSERT_EQ(history.size(), 3u);
    EXPECT_EQ(history[1].text, "200 mV");
    EXPECT_TRUE(history[1].operate);
    EXPECT_FALSE(history[2].operate);
}

TEST_F(Benches, TakeATemperatureByHandAsTheSensorThatTheMeterIsSetTo)
{
    Stands({.board = board::kTemp, .calibrator = false});
    AskMeter("W1100050Z");
    AskMeter("W305000000100001", 2 * kSecond);
    EXPECT_TRUE(bench->Apply("1356.4 FAR", now));
    Waits(2 * kSecond);
    EXPECT_NEAR(bench->DisplayCounts(now), 13564, 400);
}

TEST_F(Benches, ReadTheOtherSignWithSwappedLeads)
{
    Applies("200 mV");
    const double straight = bench->DisplayCounts(now);
    bench->SwapLeads(true, now);
    Waits(2 * kSecond);
    EXPECT_NEAR(bench->DisplayCounts(now), -straight, 60);
    EXPECT_LT(bench->DisplayCounts(now), 0);
}

TEST_F(StationOnBench, IsInitialisedWithAnImageThatReadsBack)
{
    for (const int board : {board::kDc, board::kTemp}) {
        Stands({.board = board});
        Establishes();
        std::string image;
        for (int word = 56; word >= 0; --word)
            image += HexText(word * 257, 4);
        WriteNvmWords(56, image, "");
        EXPECT_EQ(ReadNvmWords(56, 57, ""), image);
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        CloseLinks();
    }
}

TEST_F(StationOnBench, IsTracedWithTheMomentOfEachByte)
{
    Stands({});
    InitLinks();
    Establishes();
    OpenTrace(".");
    UseTraceClock([this] { return clock.NowMicros(); });
    const Micros asked = clock.NowMicros();
    EXPECT_EQ(ReadNvmWords(109, 1, "Z").size(), 4u);
    EXPECT_GE(clock.NowMicros(), asked + 500 * kMs) << "what a meter gets to answer";
    const auto records = LastTraceRecords(SIZE_MAX);
    CloseTrace();
    UseTraceClock(nullptr);
    ASSERT_EQ(records.size(), 6u);
    const Micros first = asked + 8 * kByteMicros + kMeterThinksMicros + kByteMicros;
    for (int byte = 0; byte < 5; ++byte)
        EXPECT_EQ(records[static_cast<std::size_t>(byte) + 1].micros, first + byte * kByteMicros);
}

}  // namespace
}  // namespace ombrix::bench
