#include "calibration/first_cycle.h"

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ombrix::test {
namespace {

using testing::ElementsAre;

std::string Bytes(std::string_view hex)
{
    std::string bytes;
    for (const std::string &byte : Split(hex, ' '))
        if (!byte.empty())
            bytes += static_cast<char>(HexValue(byte));
    return bytes;
}

CountWord WordOf(int low)
{
    return {'!', 0, static_cast<std::uint8_t>(low >> 8), static_cast<std::uint8_t>(low)};
}

// ---- the points ----

std::vector<std::string> Values(int tab, int board)
{
    std::vector<std::string> values;
    for (const FirstCyclePoint &point : FirstCyclePoints(tab, board))
        values.push_back(point.value);
    return values;
}

TEST(FirstCyclePoints, AreFiveWithSignsOrThreeWithout)
{
    EXPECT_THAT(Values(kTabDc, kDc), ElementsAre("+200 mV", "+100 mV", "0 V", "-100 mV", "-200 mV"));
    EXPECT_THAT(Values(kTabLc, kLc), ElementsAre("+200 mV", "+100 mV", "0 V", "-100 mV", "-200 mV"));
    EXPECT_THAT(Values(kTabTc, kTc), ElementsAre("+56 mV", "+28 mV", "0 V", "-28 mV", "-56 mV"));
    EXPECT_THAT(Values(kTabTc, kTemp), ElementsAre("+76 mV", "+38 mV", "0 V", "-38 mV", "-76 mV"));
    EXPECT_THAT(Values(kTabTc, kRtd), ElementsAre("76 mV", "38 mV", "0 V"));
    EXPECT_THAT(Values(kTabAc, kAc), ElementsAre("200 mV, 300 Hz", "100 mV, 300 Hz", "1 mV, 300 Hz"));
}

TEST(FirstCyclePoints, OfTheAcTabAreNamedWithoutTheirFrequency)
{
    std::vector<std::string> heads;
    for (const FirstCyclePoint &point : FirstCyclePoints(kTabAc, kAc))
        heads.push_back(point.head);
    EXPECT_THAT(heads, ElementsAre("200 mV", "100 mV", "1 mV"));
}

TEST(FirstCyclePoints, AreReadOnTheFirstRangeAndOnLoadCellsOnTheFourth)
{
    const auto code = [](int tab, int board) {
        SCType = board;
        return RangeCodeText(FirstCycleRangeIndex(tab));
    };
    EXPECT_EQ(code(kTabDc, kDc), "60");
    EXPECT_EQ(code(kTabLc, kLc), "D3");
    EXPECT_EQ(code(kTabAc, kAc), "80");
    EXPECT_EQ(code(kTabTc, kTc), "60");
    EXPECT_EQ(code(kTabTc, kTemp), "60");
    EXPECT_EQ(code(kTabTc, kRtd), "E0");
    SCType = kDc;
}

// ---- the records ----

struct Read {
    std::vector<std::string> records;
    bool sawNoStart = false;
    std::size_t left = 0;
};

// Until `count` records or silence, the bytes in pieces of so many.
Read ReadAll(RecordReader &reader, const std::string &bytes, std::size_t count, std::size_t piece)
{
    Read read;
    CountWord word;
    std::size_t sent = 0;
    while (read.records.size() < count) {
        switch (reader.Next(word)) {
        case RecordAnswer::Record:
            read.records.push_back(std::string(word.begin(), word.end()));
            break;
        case RecordAnswer::BeforeStart:
            read.sawNoStart = true;
            break;
        case RecordAnswer::Noise:
            break;
        case RecordAnswer::NeedsMore:
            if (sent == bytes.size()) {
                read.left = reader.Waiting();
                return read;
            }
            reader.Take(std::string_view(bytes).substr(sent, piece));
            sent = std::min(sent + piece, bytes.size());
            break;
        }
    }
    read.left = reader.Waiting() + bytes.size() - sent;
    return read;
}

constexpr const char *kStart = "21 00 00 00 FF ";

struct StreamRow {
    const char *bytes;
    std::size_t count;
    bool synced;
    bool whole;
    bool sawNoStart;
    std::vector<const char *> records;
    std::size_t left;
};

TEST(Records, AreFoundInTheStreamInWhateverPiecesItComes)
{
    const StreamRow rows[] = {
        {"21 01 02 03 FF 21", 1, false, true, false, {"21 01 02 03"}, 1},
        {"21 01 02 03 FF", 1, false, false, false, {}, 5},
        {"20 01 02 03 FF 21 04 05 06 FF 30", 1, false, true, true, {"21 04 05 06"}, 1},
        {"AA 21 01 02 03 FF 00", 1, false, true, false, {"21 01 02 03"}, 1},
        {"20 01 02 03 FF 22 01 02 03 FF 23", 1, false, false, true, {}, 1},
        {"01 02 03 04 05 06 07 08", 1, false, false, false, {}, 5},
        {"40 01 02 03 FF 41 05 06 07 FF 42", 2, true, true, false, {"40 01 02 03", "41 05 06 07"}, 1},
        {"21 01 02 03 FF AA 41 05 06 07 FF 42", 2, false, true, false, {"21 01 02 03", "41 05 06 07"}, 1},
        {"21 01 FF 03 FF 22 FF FF FF FF 23", 2, false, true, false, {"21 01 FF 03", "22 FF FF FF"}, 1},
        {"", 1, false, false, false, {}, 0},
    };
    for (const StreamRow &row : rows) {
        for (const std::size_t piece : {1u, 2u, 3u, 5u, 7u, 100u}) {
            SCOPED_TRACE(std::string(row.bytes) + " by " + std::to_string(piece));
            const std::string stream = Bytes((row.synced ? kStart : "") + std::string(row.bytes));
            RecordReader reader;
            Read read = ReadAll(reader, stream, row.count + (row.synced ? 1 : 0), piece);
            if (row.synced)
                read.records.erase(read.records.begin());
            std::vector<std::string> wanted;
            for (const char *record : row.records)
                wanted.push_back(Bytes(record));
            EXPECT_EQ(read.records, wanted);
            EXPECT_EQ(read.records.size() == row.count, row.whole);
            EXPECT_EQ(read.sawNoStart, row.sawNoStart);
            EXPECT_EQ(read.left, row.left);
        }
    }
}

TEST(Records, NeedAStartAgainAfterTheReaderWasCleared)
{
    RecordReader reader;
    ReadAll(reader, Bytes("21 00 00 00 FF 00"), 1, 6);
    reader.Clear();
    EXPECT_EQ(reader.Waiting(), 0u);
    EXPECT_THAT(ReadAll(reader, Bytes("40 01 02 03 FF 41"), 1, 6).records, testing::IsEmpty());
}

// ---- the counts ----

TEST(Counts, DifferSurvivingOneWrapOfTheCounter)
{
    struct Row {
        int a, b, difference;
        bool fault;
    };
    const Row rows[] = {
        {65530, 3, -9, false},       {3, 65530, 9, false},     {5000, 0, 5000, false},   {5001, 0, 5001, true},
        {0, 5000, -5000, false},     {0, 5001, -5001, true},   {32768, 0, -32768, true}, {0, 32768, -32768, true},
        {40000, 7000, -32536, true}, {12345, 12345, 0, false},
    };
    for (const Row &row : rows) {
        const std::int32_t difference = CounterDifference(WordOf(row.a), WordOf(row.b));
        EXPECT_EQ(difference, row.difference) << row.a << " - " << row.b;
        EXPECT_EQ(IsCounterFault(difference), row.fault) << row.a << " - " << row.b;
    }
}

TEST(Counts, GiveTheirUpperSixteenBitsAsThePhase)
{
    EXPECT_EQ(CounterHighValue({0x21, 1, 2, 3}), 258);
    EXPECT_EQ(CounterHighValue({'0', '0', '0', '0'}), 12336);
    EXPECT_EQ(CounterHighValue({0x21, 0xFF, 0xFF, 0xFF}), 65535);
    EXPECT_EQ(CounterHighValue({0x7F, 0x80, 0, 1}), 32768);
    EXPECT_EQ(CounterHighValue({0, 0, 1, 0}), 1);
    EXPECT_EQ(CounterHighValue({0x21, 0x12, 0x34, 0x56}), 4660);
}

// Fifteen frames of which the sum over five groups of channel TGND is `sum`, all others 0.
FirstCycleFrames FramesOfSum(int sum)
{
    FirstCycleFrames frames;
    for (FirstCycleFrame &frame : frames)
        frame.fill({'!', 0, 0, 0});
    for (std::size_t group = 0; group < 5; ++group) {
        const int share = sum / 5 + (static_cast<int>(group) < std::abs(sum % 5) ? (sum > 0 ? 1 : -1) : 0);
        frames[group * 3][0] = WordOf(share & 0xFFFF);
    }
    return frames;
}

TEST(Averages, RoundHalfToEvenAfterTheHalfIsAdded)
{
    const std::pair<int, int> rows[] = {{0, 0},    {5, 2}, {10, 2}, {15, 4}, {-5, 0}, {-10, -2},
                                        {-15, -2}, {1, 1}, {2, 1},  {3, 1},  {-1, 0}, {-3, 0}};
    for (const auto &[sum, average] : rows)
        EXPECT_EQ(AverageOfFrames(FramesOfSum(sum))->at(0), average) << sum;
}

TEST(Averages, TakeEachChannelFromItsPlaceInTheGroup)
{
    FirstCycleFrames frames;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const int base = static_cast<int>(i % 3) * 20;
        frames[i] = {WordOf(1010 + base), CountWord{'$', 0x10, static_cast<std::uint8_t>(i % 3), 0}, WordOf(1500),
                     CountWord{'$', 0x20, static_cast<std::uint8_t>(i % 3), 8}};
        frames[i][0][2] = static_cast<std::uint8_t>(i % 3);  // near the second word, so no difference is too large
        frames[i][2][2] = static_cast<std::uint8_t>(i % 3);
    }
    const auto averages = AverageOfFrames(frames);
    ASSERT_TRUE(averages);
    const auto rounded = [](int exact) { return exact % 2 == 0 ? exact : exact + 1; };
    const int low = 1010 % 256;
    EXPECT_THAT(*averages,
                ElementsAre(rounded(low), rounded(1500 % 256 - 8), rounded((1030 % 256)), rounded(1500 % 256 - 8),
                            rounded(1050 % 256), rounded(1500 % 256 - 8), 0x1000, 0x1002, 0x1002, 0x2000));
}

TEST(Averages, AreNoneWhenOneDifferenceIsTooLarge)
{
    FirstCycleFrames frames = FramesOfSum(0);
    frames[14][2] = WordOf(5000);
    EXPECT_TRUE(AverageOfFrames(frames));
    frames[14][2] = WordOf(5001);
    EXPECT_FALSE(AverageOfFrames(frames));
    frames = FramesOfSum(0);
    frames[4][0] = WordOf(5001);
    EXPECT_FALSE(AverageOfFrames(frames));
}

TEST(Averages, OfSimulatedFramesAreZeroAnd12336)
{
    FirstCycleFrames frames;
    for (FirstCycleFrame &frame : frames)
        frame.fill({'0', '0', '0', '0'});
    EXPECT_THAT(*AverageOfFrames(frames), ElementsAre(0, 0, 0, 0, 0, 0, 12336, 12336, 12336, 12336));
}

TEST(Averages, ThatAreExactAndOddComeOutOneHigh)
{
    FirstCycleFrames frames = FramesOfSum(0);
    for (std::size_t group = 0; group < 5; ++group)
        frames[group * 3][1] = {'!', 0x30, 0x31, 0x00};
    for (FirstCycleFrame &frame : frames)
        frame[0] = frame[1];
    EXPECT_EQ(AverageOfFrames(frames)->at(6), 12338) << "12337 is odd";
}

// ---- M and B ----

using Rows = std::vector<std::vector<int>>;

// Every phase of the own sources is 20000; the signal's moves by 1280 from point to point.
std::vector<FirstCycleAverages> TableOf(const Rows &rows)
{
    const std::size_t count = rows[0].size();
    std::vector<FirstCycleAverages> points(count);
    for (std::size_t p = 0; p < count; ++p) {
        for (std::size_t row = 0; row < 6; ++row)
            points[p][row] = rows[row % rows.size()][p];
        for (const std::size_t own : {6u, 7u, 8u})
            points[p][own] = 20000;
        points[p][9] = 20000 - (2560 - 1280 * static_cast<int>(p));
    }
    return points;
}

struct Correction {
    const char *name;
    Rows rows;  // in turn for the six
    float m1, b1, m2, b2, sumM, sumB;
    int m, b;
    const char *word;
};

TEST(FirstCycle, FindsMAndBInTheAverages)
{
    const Correction rows[] = {
        {"every m -22, every b 40",
         {{260, 150, 40, -70, -180}, {-180, -70, 40, 150, 260}},
         -22,
         40,
         -22,
         40,
         -132,
         320,
         -22,
         -2,
         "EAFE"},
        {"a mean of -22.5",
         {{160, 50, -60, -170, -280}, {-290, -175, -60, 55, 170}},
         -22,
         -60,
         -23,
         -60,
         -135,
         -480,
         -22,
         3,
         "EA03"},
        {"slopes that cancel", {{-3, 2, 7, 12, 17}}, 1, 7, -1, 7, 0, 56, 0, 0, "0000"},
        {"b 41", {{21, 31, 41, 51, 61}, {61, 51, 41, 31, 21}}, 2, 41, 2, 41, 12, 328, 2, 21, "0215"},
        {"three points", {{-330, -265, -200}, {-70, -135, -200}}, 13, -200, 13, -200, 78, -1600, 13, -15, "0DF1"},
        {"the divisor is the number of points",
         {{59, 75, 100, 125, 150}, {159, 125, 100, 75, 50}},
         4.55f,
         101.8f,
         5.45f,
         101.8f,
         30,
         814.39996f,
         5,
         20,
         "0514"},
        {"rows of ground count twice",
         {{40, 60, 80, 100, 120},
          {120, 100, 80, 60, 40},
          {-20, 0, 20, 40, 60},
          {60, 40, 20, 0, -20},
          {-20, 0, 20, 40, 60},
          {60, 40, 20, 0, -20}},
         4,
         80,
         4,
         80,
         24,
         400,
         4,
         13,
         "040D"},
        {"M 130 keeps its low byte",
         {{-1300, -650, 0, 650, 1300}, {1300, 650, 0, -650, -1300}},
         130,
         0,
         130,
         0,
         780,
         0,
         130,
         0,
         "8200"},
        {"no slope at all", {{12, 12, 12, 12, 12}}, 0, 12, 0, 12, 0, 96, 0, 0, "0000"},
    };
    for (const Correction &row : rows) {
        SCOPED_TRACE(row.name);
        const auto result = ComputeFirstCycle(TableOf(row.rows));
        ASSERT_TRUE(result);
        EXPECT_FLOAT_EQ(result->rows[0].m, row.m1);
        EXPECT_FLOAT_EQ(result->rows[0].b, row.b1);
        EXPECT_FLOAT_EQ(result->rows[1].m, row.m2);
        EXPECT_FLOAT_EQ(result->rows[1].b, row.b2);
        EXPECT_EQ(result->sumM, row.sumM);
        EXPECT_EQ(result->sumB, row.sumB) << "to the last bit";
        EXPECT_EQ(result->m, row.m);
        EXPECT_EQ(result->b, row.b);
        EXPECT_EQ(result->word, row.word);
    }
}

TEST(FirstCycle, HasNoQuotientWithoutASlope)
{
    const auto flat = ComputeFirstCycle(TableOf({{12, 12, 12, 12, 12}}));
    EXPECT_FALSE(flat->rows[0].quotient);
    const auto steep = ComputeFirstCycle(TableOf({{260, 150, 40, -70, -180}, {-180, -70, 40, 150, 260}}));
    EXPECT_EQ(FormatSparse(steep->rows[0].m, 1), "-22.");
    EXPECT_EQ(FormatSparse(steep->rows[0].b, 1), "40.");
    EXPECT_EQ(FormatSparse(*steep->rows[0].quotient, 1), "-1.8");
}

TEST(FirstCycle, HasNoCorrectionWhenTwoPointsShowTheSamePhase)
{
    auto points = TableOf({{260, 150, 40, -70, -180}, {-180, -70, 40, 150, 260}});
    points[2][9] = points[1][9];
    EXPECT_FALSE(ComputeFirstCycle(points));
}

TEST(FirstCycle, ShowsItsBytesWithTheirSign)
{
    const std::pair<const char *, const char *> rows[] = {{"00", "0"},    {"02", "2"},   {"05", "5"}, {"7F", "127"},
                                                          {"80", "-128"}, {"EA", "-22"}, {"FF", "-1"}};
    for (const auto &[hex, text] : rows)
        EXPECT_EQ(SignedHexByteText(hex), text);
}

}  // namespace
}  // namespace ombrix::test
