#include "testbench/meter.h"

#include "bench_fixture.h"
#include "model/images.h"

namespace ombrix::bench {
namespace {

using Meters = BenchTest;

TEST_F(Meters, ComeWithTheFactoryImageAndCalibrationWordsOffIt)
{
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(AskMeter("X415Z"), "0001050300002"
                                 "1D1\r");
    EXPECT_EQ(AskMeter("X110Z"), "0060\r");
    EXPECT_EQ(AskMeter("X43FZ"), "FA2001E0FD700048\r");
    EXPECT_EQ(AskMeter("X6F6Z"), "FA2001E0FD700048FD700048\r");
    const std::string image = DefaultInitImage(board::kDc);
    EXPECT_NE(AskMeter("X119Z"), image.substr((56 - 25) * 4, 4) + "\r");
    EXPECT_EQ(AskMeter("X118Z"), image.substr((56 - 24) * 4, 4) + "\r");
}

struct IdentityRow {
    int board;
    int kind;
    bool xmtr;
    const char *name;
};

TEST_F(StationOnBench, IsIdentifiedForEveryBoardAndKind)
{
    constexpr IdentityRow kRows[] = {
        {board::kDc, 1, false, "DPM"},       {board::kAc, 2, false, "WtMtr"}, {board::kLc, 1, true, "DPM Xmtr"},
        {board::kTc, 2, true, "WtMtr Xmtr"}, {board::kVf, 3, false, "CTR"},   {board::kVf, 3, true, "CTR Xmtr"},
        {board::kAc2, 1, false, "DPM"},      {board::kAc3, 1, false, "DPM"},  {board::kTemp, 1, false, "DPM"},
        {board::kRtd, 1, false, "DPM"},
    };
    for (const IdentityRow &row : kRows) {
        Stands({.board = row.board, .kind = row.kind, .xmtr = row.xmtr});
        Establishes();
        EXPECT_EQ(MeterSCType, row.board) << row.name << BoardName(row.board);
        EXPECT_EQ(MeterName, row.name);
        EXPECT_EQ(MeterRevText, "X2");
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        CloseLinks();
    }
}

TEST_F(Meters, AnswerRunsOfWordsFromTheHighestDownward)
{
    AskMeter("W3051111222233"
             "33Z");
    EXPECT_EQ(AskMeter("X305Z"), "111122223333\r");
    EXPECT_EQ(AskMeter("X104Z"), "2222\r");
    EXPECT_EQ(bench->Nvm()[3], 0x3333);
}

TEST_F(Meters, ReadAndWriteWorkingMemory)
{
    EXPECT_EQ(AskMeter("G130"), "65\r") << "the high byte of word 17";
    EXPECT_EQ(AskMeter("G232"), "21D1\r") << "word 18";
    AskMeter("F28FA55A");
    EXPECT_EQ(AskMeter("G28F"), "A55A\r");
    EXPECT_EQ(bench->Ram()[0x8E], 0x5A);
    AskMeter("X110", 3 * kSecond);
    EXPECT_EQ(AskMeter("G28F"), "0000\r") << "a restart fills it anew";
}

TEST_F(Meters, OfACounterAnswerWord30WhereOthersAnswerWord18)
{
    Stands({.board = board::kVf});
    EXPECT_EQ(AskMeter("G232"), "21D1\r");
    bench->SetWord(30, 0x1234);
    AskMeter("X110", 3 * kSecond);
    EXPECT_EQ(AskMeter("G232"), "1234\r");
    EXPECT_EQ(AskMeter("G130"), "65\r") << "the high byte of word 29";
}

TEST_F(Meters, AreDeafFor1200MsAfterACommandWithoutZ)
{
    AskMeter("W1100060", 11 * 1042);
    EXPECT_EQ(AskMeter("B1"), "");
    EXPECT_EQ(bench->Restarts(), 1);
    ASSERT_EQ(bench->ProtocolErrors().size(), 1u);
    EXPECT_THAT(bench->ProtocolErrors()[0], testing::HasSubstr("while the meter restarts: *1B1"));
    EXPECT_EQ(bench->Transcript().back().note, "lost: the meter restarts");
    Waits(700 * kMs);
    EXPECT_NE(AskMeter("B1"), "");
    EXPECT_EQ(bench->ProtocolErrors().size(), 1u);
}

TEST_F(Meters, LoseAFrameThatBeganWhileTheyWereDeaf)
{
    AskMeter("W1100060", 9 * 1042);
    now += kRestartMicros - 2 * 1042;
    EXPECT_EQ(AskMeter("B1"), "");
    EXPECT_EQ(bench->ProtocolErrors().size(), 1u);
}

TEST_F(Meters, RestartAfterAReadWithoutZWhenTheReplyIsSaid)
{
    EXPECT_EQ(AskMeter("X16D"), "3201\r");
    EXPECT_EQ(AskMeter("X16DZ"), "");
    Waits(kSecond);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(bench->Restarts(), 1);
}

TEST_F(Meters, GoOnAtOnceAfterACommandWithZ)
{
    AskMeter("W1100061Z", 9 * 1042);
    EXPECT_NE(AskMeter("B1"), "");
    EXPECT_EQ(bench->Restarts(), 0);
    EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
}

TEST_F(Meters, TakeWhatWasWrittenWithZIntoEffectWithTheNextRestart)
{
    AskMeter("W1100062Z");
    EXPECT_EQ(bench->Nvm()[16], 0x62);
    EXPECT_EQ(bench->RangeCode(), 0x60);
    AskMeter("W303001000"
             "0400"
             "07",
             2 * kSecond);
    EXPECT_EQ(bench->RangeCode(), 0x62);
}

TEST_F(Meters, OfKindCounterRestartLongerAndGiveASignOfLife)
{
    Stands({.board = board::kVf});
    const Micros frame = 10 * 1042;
    EXPECT_EQ(AskMeter("W11C0081", frame + kCounterRestartMicros + 1000), "");
    EXPECT_EQ(bench->ProtocolErrors().size(), 0u);
    Waits(10 * kMs);
    EXPECT_EQ(bench->Collect(Line::Meter, now), "\r");
    EXPECT_EQ(AskMeter("X16DZ"), "3203\r");
}

TEST_F(Meters, IgnoreBrokenFramesAndTellThem)
{
    EXPECT_EQ(Ask(Line::Meter, "*1X01DZ\r"), "");
    EXPECT_EQ(Ask(Line::Meter, "nonsense\r"), "");
    EXPECT_EQ(Ask(Line::Meter, "*1W1190\r"), "");
    EXPECT_EQ(bench->ProtocolErrors().size(), 3u);
    EXPECT_THAT(bench->ProtocolErrors()[0], testing::HasSubstr("a count beyond 35: *1X01DZ"));
    EXPECT_EQ(bench->Restarts(), 0);
}

TEST_F(Meters, AtAddress2SwitchTheSignal)
{
    Applies("20 mA");
    Ranges("71", 4);
    EXPECT_GT(Counts(), 70000) << "an untouched switch is out of the way";
    Ask(Line::Meter, "*2W305000000100000\r", 2 * kSecond);
    EXPECT_EQ(bench->SwitchPosition(), 'V');
    EXPECT_LT(std::abs(Counts()), 100);
    Ask(Line::Meter, "*2W305002B67100000\r", 2 * kSecond);
    EXPECT_EQ(bench->SwitchPosition(), 'A');
    EXPECT_GT(Counts(), 70000);
    EXPECT_EQ(bench->Nvm()[5], 0) << "the first meter heard none of it";
}

TEST_F(Meters, AtOtherAddressesAreNone)
{
    Stands({.outputSwitch = false});
    EXPECT_EQ(Ask(Line::Meter, "*2X16DZ\r"), "");
    EXPECT_EQ(Ask(Line::Meter, "*3X16DZ\r"), "");
    EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
}

TEST_F(Meters, ShowThePointWhereTheMemoryHasIt)
{
    Applies("0 V");
    for (const auto &[word, places] : {std::pair{0x0501, 0}, {0x0502, 1}, {0x0504, 3}}) {
        bench->SetWord(20, static_cast<std::uint16_t>(word));
        AskMeter("X110", 3 * kSecond);
        const std::string text = Trim(AskMeter("B1"));
        EXPECT_EQ(text.size() - 1 - text.find('.'), static_cast<std::size_t>(places)) << text;
    }
}

TEST_F(Meters, ShowNoDigitWhenOverRange)
{
    Applies("2 V");
    EXPECT_EQ(AskMeter("B1"), " OVERLOAD\r");
    Applies("-2 V");
    EXPECT_EQ(AskMeter("B1"), "-OVERLOAD\r");
    EXPECT_TRUE(std::isinf(bench->DisplayCounts(now)));
}

TEST_F(Meters, SettleWithinASecondAfterAChangeOfInput)
{
    Applies("200 mV");
    Ranges("60", 4);
    const double before = bench->DisplayCounts(now);
    AskCalibrator("OUT -200 mV", 0);
    Waits(12 * 1042 + 200 * kMs + 70 * kMs);
    const double after70Ms = bench->DisplayCounts(now);
    EXPECT_NEAR(after70Ms, -before + 2 * before / std::exp(1), 500);
    Waits(830 * kMs);
    EXPECT_NEAR(bench->DisplayCounts(now), -before, 0.5 + 60);
    const double settled = bench->DisplayCounts(now);
    Waits(kSecond);
    EXPECT_NEAR(bench->DisplayCounts(now), settled, 0.6);
}

TEST_F(Meters, SettleAtOnceOnCz)
{
    Applies("200 mV");
    AskCalibrator("OUT 100 mV", 0);
    Waits(11 * 1042 + 200 * kMs + 10 * kMs);
    EXPECT_GT(bench->DisplayCounts(now), 50'000);
    AskMeter("CZ", 5 * 1042);
    const double settled = bench->DisplayCounts(now);
    Waits(5 * kSecond);
    EXPECT_DOUBLE_EQ(bench->DisplayCounts(now), settled);
}

TEST_F(Meters, FlickerByAboutOneCount)
{
    Applies("200 mV");
    std::vector<long> readings;
    for (int i = 0; i < 40; ++i)
        readings.push_back(Counts());
    const auto [low, high] = std::minmax_element(readings.begin(), readings.end());
    EXPECT_GE(*high - *low, 1);
    EXPECT_LE(*high - *low, 2);
    EXPECT_NEAR(static_cast<double>(*low), bench->DisplayCounts(now), 1.2);
}

TEST_F(Meters, FlickerInTheSameWayForTheSameSeed)
{
    const auto session = [this](unsigned seed) {
        Stands({.seed = seed});
        Applies("200 mV");
        std::string readings;
        for (int i = 0; i < 10; ++i)
            readings += AskMeter("B1");
        return readings;
    };
    EXPECT_EQ(session(5), session(5));
    EXPECT_NE(session(5), session(6));
}

}  // namespace
}  // namespace ombrix::bench
