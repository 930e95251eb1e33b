// The rows of the tables, each against what its step must do, and walks over all of them.

#include "model/range_records.h"

#include <gtest/gtest.h>

#include <set>

#include "model/nominals.h"
#include "model/range_tables.h"
#include "session/state.h"

using namespace ombrix;

namespace {

struct RangeStep {
    int board;
    int position;
    int stepId;
    const char *title;
    const char *code;
    int word;
    const char *value;
    int target;
    int samples;
    const char *filter;
    float slope;
};

// Every step that calibrates a range.
// clang-format off
constexpr RangeStep kSteps[] = {
    {kDc, 2, 2, "GND", "60", 26, "0 V", 0, 10, "00108", 9.737f},
    {kDc, 3, 3, "REF (200 mV)", "60", 25, "200 mV", 80000, 4, "00108", 3.296f},
    {kDc, 4, 5, "2 V", "61", 32, "2 V", 80000, 4, "00108", 3.35f},
    {kDc, 5, 6, "20 V", "62", 33, "20 V", 80000, 4, "00108", 3.153f},
    {kDc, 6, 7, "200 V", "63", 34, "200 V", 80000, 4, "00108", 3.317f},
    {kDc, 7, 8, "660 V", "64", 35, "660 V", 26400, 4, "00108", 9.91f},
    {kDc, 8, 9, "2 mA", "70", 37, "2 mA", 80000, 4, "00108", 3.242f},
    {kDc, 9, 10, "20 mA", "71", 38, "20 mA", 80000, 4, "00108", 3.274f},
    {kDc, 10, 11, "200 mA", "72", 39, "200 mA", 80000, 4, "00108", 3.174f},
    {kDc, 11, 12, "5 A", "73", 40, "5 A", 20000, 4, "00108", 14.11f},
    {kDc, 14, 4, "200 mV", "60", 31, "200 mV", 80000, 4, "00108", 3.226f},
    {kAc, 1, 2, "GND", "81", 26, "100 mV, 300 Hz", 4000, 4, "00108", 31.4f},
    {kAc, 2, 5, "2 V", "81", 32, "1.8 V, 300 Hz", 72000, 4, "00108", 4.8f},
    {kAc, 3, 2, "GND", "81", 26, "100 mV, 300 Hz", 4000, 4, "00108", 31.4f},
    {kAc, 4, 5, "2 V", "81", 32, "1.8 V, 300 Hz", 72000, 4, "00108", 4.8f},
    {kAc, 5, 4, "200 mV", "80", 31, "180 mV, 300 Hz", 72000, 4, "00108", 3.25f},
    {kAc, 6, 6, "20 V", "82", 33, "18 V, 300 Hz", 72000, 4, "00108", 3.35f},
    {kAc, 7, 7, "200 V", "83", 34, "180 V, 300 Hz", 72000, 4, "00108", 3.5f},
    {kAc, 8, 8, "660 V", "84", 35, "660 V, 300 Hz", 26400, 4, "00108", 6.6f},
    {kAc, 9, 9, "2 mA", "90", 37, "1.8 mA, 300 Hz", 72000, 4, "00108", 4.1f},
    {kAc, 10, 10, "20 mA", "91", 38, "18 mA, 300 Hz", 72000, 4, "00108", 4.4f},
    {kAc, 11, 11, "200 mA", "92", 39, "180 mA, 300 Hz", 72000, 4, "00108", 3.1f},
    {kAc, 12, 12, "5 A", "93", 40, "3.5 A, 300 Hz", 56000, 16, "00108", 3.7f},
    {kLc, 2, 17, "GND (.5 V)", "D4", 26, "0 V", 0, 10, "00108", 4.7f},
    {kLc, 3, 18, "OFF (20 mV)", "D0", 30, "0 V", 0, 10, "00108", 12.2f},
    {kLc, 4, 19, "REF (20 mV)", "D0", 25, "20 mV", 80000, 4, "00108", 3.277f},
    {kLc, 5, 21, "50 mV", "D1", 32, "40 mV", 80000, 2, "00108", 3.218f},
    {kLc, 6, 22, "100 mV", "D2", 33, "100 mV", 80000, 8, "00108", 3.217f},
    {kLc, 7, 23, "250 mV", "D3", 34, "200 mV", 80000, 4, "00108", 3.241f},
    {kLc, 8, 24, "500 mV", "D4", 35, "400 mV", 80000, 2, "00108", 3.408f},
    {kLc, 14, 20, "Touch-Up", "D0", 31, "20 mV", 80000, 4, "00108", 3.277f},
    {kTc, 2, 25, "Lo-Gain GND", "60", 26, "0 V", 0, 10, "00106", 11.3f},
    {kTc, 3, 53, "56.7 mV", "60", 33, "56.7 mV", 60000, 4, "00106", 3.0945f},
    {kTc, 4, 28, "Hi-Gain GND", "65", 47, "0 V", 0, 10, "00106", 11.3f},
    {kTc, 5, 54, "17.475 mV", "65", 36, "17.475 mV", 60000, 4, "00106", 3.1399f},
    {kVf, 2, 33, "VF 4-20 mA", "81", 195, "20 mA", 0, 4, "00108", 0.0f},
    {kVf, 3, 34, "VF 0-1 mA", "91", 198, "1 mA", 0, 4, "00108", 0.0f},
    {kVf, 4, 35, "VF 0-10 V", "A1", 201, "10 V", 0, 4, "00108", 0.0f},
    {kAc2, 3, 2, "GND", "80", 26, "2 mV, 300 Hz", 800, 4, "00106", 31.4f},
    {kAc2, 4, 4, "200 mV", "80", 31, "200 mV, 300 Hz", 80000, 4, "00106", 3.25f},
    {kAc2, 5, 5, "2 V", "81", 32, "2 V, 300 Hz", 80000, 4, "00106", 4.8f},
    {kAc2, 6, 6, "20 V", "82", 33, "20 V, 300 Hz", 80000, 4, "00106", 3.35f},
    {kAc2, 7, 7, "200 V", "83", 34, "200 V, 300 Hz", 80000, 4, "00106", 3.5f},
    {kAc2, 8, 52, "600 V", "84", 35, "600 V, 300 Hz", 24000, 4, "00106", 6.6f},
    {kAc2, 9, 9, "2 mA", "90", 37, "2 mA, 300 Hz", 80000, 4, "00106", 4.1f},
    {kAc2, 10, 10, "20 mA", "91", 38, "20 mA, 300 Hz", 80000, 4, "00106", 4.4f},
    {kAc2, 11, 11, "200 mA", "92", 39, "200 mA, 300 Hz", 80000, 4, "00106", 3.1f},
    {kAc2, 12, 12, "5 A", "93", 40, "3.5 A, 300 Hz", 56000, 16, "00106", 3.7f},
    {kAc3, 3, 2, "GND", "80", 26, "2 mV, 300 Hz", 800, 4, "00117", 31.4f},
    {kAc3, 4, 4, "200 mV", "80", 31, "200 mV, 300 Hz", 80000, 4, "00117", 3.25f},
    {kAc3, 5, 5, "2 V", "81", 32, "2 V, 300 Hz", 80000, 4, "00117", 4.8f},
    {kAc3, 7, 6, "20 V", "82", 33, "20 V, 300 Hz", 80000, 4, "00117", 3.35f},
    {kAc3, 8, 7, "200 V", "83", 34, "200 V, 300 Hz", 80000, 4, "00117", 3.5f},
    {kAc3, 9, 52, "600 V", "84", 35, "600 V, 300 Hz", 24000, 4, "00117", 6.6f},
    {kAc3, 10, 9, "2 mA", "90", 37, "2 mA, 300 Hz", 80000, 4, "00117", 4.1f},
    {kAc3, 11, 10, "20 mA", "91", 38, "20 mA, 300 Hz", 80000, 4, "00117", 4.4f},
    {kAc3, 12, 11, "200 mA", "92", 39, "200 mA, 300 Hz", 80000, 4, "00117", 3.1f},
    {kAc3, 13, 12, "5 A", "93", 40, "3.5 A, 300 Hz", 56000, 16, "00117", 3.7f},
    {kTemp, 2, 25, "Lo-Gain GND", "60", 26, "0 V", 0, 10, "00108", 11.3f},
    {kTemp, 3, 26, "75.6 mV", "60", 33, "75.6 mV", 80000, 4, "00108", 3.0945f},
    {kTemp, 5, 28, "Hi-Gain GND", "65", 47, "0 V", 0, 10, "00108", 11.3f},
    {kTemp, 6, 29, "23.3 mV", "65", 36, "23.3 mV", 80000, 4, "00108", 3.1399f},
    {kRtd, 2, 2, "GND", "E0", 26, "0 V", 0, 10, "00106", 11.3f},
    {kRtd, 3, 55, "Pt100", "50", 37, "345.28 OHM", 12920, 1, "00106", 3.0945f},
    {kRtd, 4, 56, "20 Ohms", "E0", 31, "20 OHM", 80000, 4, "00106", 3.0945f},
    {kRtd, 5, 57, "200 Ohms", "E1", 32, "200 OHM", 80000, 4, "00106", 3.0945f},
    {kRtd, 6, 58, "2 kOhms", "E2", 33, "2 KOHM", 80000, 4, "00106", 3.0945f},
    {kRtd, 7, 59, "20 kOhms", "E3", 34, "20 KOHM", 80000, 4, "00106", 3.1399f},
    {kRtd, 8, 60, "200 kOhms", "E4", 35, "100 KOHM", 40000, 4, "00106", 3.1399f},
};
// clang-format on

const std::set<std::string> kCalValueTexts = {
    "0 V",    "20 mV",   "23.3 mV",   "40 mV",  "75.6 mV", "100 mV", "180 mV",  "200 mV",   "400 mV",
    "1.8 V",  "2 V",     "10 V",      "18 V",   "20 V",    "180 V",  "200 V",   "660 V",    "1 mA",
    "1.8 mA", "2 mA",    "18 mA",     "20 mA",  "180 mA",  "200 mA", "3.5 A",   "5 A",      "2 mV",
    "600 V",  "56.7 mV", "17.475 mV", "20 OHM", "200 OHM", "2 KOHM", "20 KOHM", "100 KOHM", "345.28 OHM"};

const std::set<std::string> kFilterKeys = {"19", "1A", "1E", "1F", "20", "21", "22", "23", "25",
                                           "24", "26", "27", "28", "2F", "C3", "C6", "C9", "FC",
                                           "QD", "NG", "NM", "OO", "RA", "RT", "TR", "VE", "ZA"};

class RangeRecords : public testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        InitNominals();
    }
    void TearDown() override { InitSessionState(); }
};

std::string Where(int board, int position)
{
    return BoardName(board) + " position " + std::to_string(position);
}

const RangeStep *StepAt(int board, int position)
{
    for (const RangeStep &step : kSteps)
        if (step.board == board && step.position == position)
            return &step;
    return nullptr;
}

}  // namespace

TEST_F(RangeRecords, HoldEveryColumnOfEveryRangeStep)
{
    static_assert(std::size(kSteps) == 69);
    for (const RangeStep &step : kSteps) {
        SCType = step.board;
        CalibTab = TabOfBoard(step.board);
        const std::string where = Where(step.board, step.position);
        EXPECT_EQ(StepIdAtPosition(step.position), step.stepId) << where;
        EXPECT_EQ(StepName(step.stepId), step.title) << where;
        EXPECT_EQ(RangeCodeText(RangeCodeIndexAtPosition(step.position)), step.code) << where;
        EXPECT_EQ(NvmWordAtPosition(step.position), step.word) << where;
        EXPECT_EQ(CalValueAtPosition(step.position), step.value) << where;
        EXPECT_EQ(TargetCountsAtPosition(step.position), step.target) << where;
        EXPECT_EQ(SampleCountForStep(step.stepId), step.samples) << where;
        EXPECT_EQ(DefaultFilterAt(step.board, step.position).code, step.filter) << where;
        EXPECT_EQ(GetNominalSlope(step.word), step.slope) << where;
    }
}

TEST_F(RangeRecords, TrimNoWordOnTheOtherPositions)
{
    for (int board = kDc; board <= kRtd; ++board) {
        SCType = board;
        for (int position = 0; position < kPositions; ++position)
            EXPECT_EQ(NvmWordAtPosition(position) > 0, StepAt(board, position) != nullptr) << Where(board, position);
    }
}

TEST_F(RangeRecords, GiveTheStepsWithoutAWordTheirRangeAndValue)
{
    const struct {
        int board, position;
        const char *code, *value;
        int target;
    } rows[] = {{kDc, 0, "60", "0 V", 0},
                {kDc, 1, "60", "0 V", 0},
                {kDc, 12, "60", "0 V", 0},
                {kDc, 13, "60", "0 V", 0},
                {kAc, 0, "80", "0 V, 300 Hz", 0},
                {kAc, 14, "80", "0 V, 300 Hz", 0},
                {kLc, 0, "D0", "0 V", 0},
                {kLc, 9, "D0", "0 V", 0},
                {kTc, 1, "60", "0 V", 0},
                {kVf, 0, "81", "0 V", 0},
                {kVf, 1, "81", "0 V", 0},
                {kAc2, 1, "80", "0 V, 300 Hz", 0},
                {kAc2, 2, "80", "200 mV, 300 Hz", 0},
                {kAc3, 1, "80", "0 V, 300 Hz", 0},
                {kAc3, 2, "80", "200 mV, 300 Hz", 0},
                {kAc3, 6, "81", "2 V, 300 Hz", 80000},
                {kTemp, 4, "60", "0 V", 0},
                {kRtd, 1, "E0", "0 V", 0}};
    for (const auto &row : rows) {
        SCType = row.board;
        EXPECT_EQ(RangeCodeText(RangeCodeIndexAtPosition(row.position)), row.code) << Where(row.board, row.position);
        EXPECT_EQ(CalValueAtPosition(row.position), row.value) << Where(row.board, row.position);
        EXPECT_EQ(TargetCountsAtPosition(row.position), row.target) << Where(row.board, row.position);
    }
}

TEST_F(RangeRecords, RunGndAnd2VASecondTimeOnAc)
{
    SCType = kAc;
    for (int position : {1, 2}) {
        EXPECT_EQ(StepIdAtPosition(position + 2), StepIdAtPosition(position));
        EXPECT_EQ(NvmWordAtPosition(position + 2), NvmWordAtPosition(position));
        EXPECT_EQ(CalValueAtPosition(position + 2), CalValueAtPosition(position));
        EXPECT_EQ(TargetCountsAtPosition(position + 2), TargetCountsAtPosition(position));
        EXPECT_EQ(DefaultFilterAt(kAc, position + 2).key, DefaultFilterAt(kAc, position).key);
    }
}

TEST_F(RangeRecords, ApplyAValueForGndOnTheAcBoards)
{
    SCType = kAc;
    EXPECT_EQ(CalValueAtPosition(1), "100 mV, 300 Hz");
    EXPECT_EQ(TargetCountsAtPosition(1), 4000);
    for (int board : {kAc2, kAc3}) {
        SCType = board;
        EXPECT_EQ(CalValueAtPosition(3), "2 mV, 300 Hz");
        EXPECT_EQ(TargetCountsAtPosition(3), 800);
    }
}

TEST_F(RangeRecords, ApplyLessThanFullScaleOn5AAndOn660VAndOn200kOhms)
{
    SCType = kAc;
    EXPECT_EQ(CalValueAtPosition(12), "3.5 A, 300 Hz");
    EXPECT_EQ(TargetCountsAtPosition(12), 56000);
    EXPECT_EQ(TargetCountsAtPosition(8), 26400);
    SCType = kDc;
    EXPECT_EQ(TargetCountsAtPosition(7), 26400);
    SCType = kRtd;
    EXPECT_EQ(CalValueAtPosition(8), "100 KOHM");
    EXPECT_EQ(TargetCountsAtPosition(8), 40000);
}

TEST_F(RangeRecords, ApplyFullScaleCurrentsOnAc2AndNinetyPercentOnAc)
{
    const char *const ac[] = {"1.8 mA, 300 Hz", "18 mA, 300 Hz", "180 mA, 300 Hz"};
    const char *const ac2[] = {"2 mA, 300 Hz", "20 mA, 300 Hz", "200 mA, 300 Hz"};
    for (int i = 0; i < 3; ++i) {
        SCType = kAc;
        EXPECT_EQ(CalValueAtPosition(9 + i), ac[i]);
        EXPECT_EQ(TargetCountsAtPosition(9 + i), 72000);
        SCType = kAc2;
        EXPECT_EQ(CalValueAtPosition(9 + i), ac2[i]);
        EXPECT_EQ(TargetCountsAtPosition(9 + i), 80000);
    }
    EXPECT_EQ(CalValueAtPosition(12), "3.5 A, 300 Hz");
    EXPECT_EQ(TargetCountsAtPosition(12), 56000);
}

TEST_F(RangeRecords, NameOnlyValuesCodesAndKeysThatExist)
{
    for (int board = kDc; board <= kRtd; ++board) {
        SCType = board;
        std::set<std::string> codes;
        for (int i = 0; i < 20; ++i)
            codes.insert(RangeCodeText(i));
        for (const RangeRecord &record : RecordsOfBoard(board)) {
            const std::string where = Where(board, record.position);
            EXPECT_TRUE(*record.value == '\0' || kCalValueTexts.contains(record.value)) << where << record.value;
            EXPECT_TRUE(codes.contains(record.code)) << where << record.code;
            EXPECT_TRUE(*record.filterKey == '\0' || kFilterKeys.contains(record.filterKey)) << where;
            const std::string filter = record.filterDefault;
            EXPECT_TRUE(filter.empty() || filter.size() == 5) << where;
            EXPECT_TRUE(filter.empty() || *record.filterKey) << where << ": a default needs its key";
            EXPECT_TRUE(record.stepId >= 0 && record.stepId <= 60) << where;
            const bool word = record.word == 0 || (record.word >= 25 && record.word <= 50);
            EXPECT_TRUE(board == kVf ? record.word == 0 || record.word >= 195 : word) << where;
        }
    }
}

TEST_F(RangeRecords, StandInAscendingPositions)
{
    for (int board = kDc; board <= kRtd; ++board) {
        int last = -1;
        for (const RangeRecord &record : RecordsOfBoard(board)) {
            EXPECT_GT(record.position, last) << BoardName(board);
            EXPECT_LT(record.position, kPositions) << BoardName(board);
            last = record.position;
        }
    }
    EXPECT_TRUE(RecordsOfBoard(-1).empty());
    EXPECT_TRUE(RecordsOfBoard(kAn).empty());
}

TEST_F(RangeRecords, HaveFilterKeysOnTheStepsWithoutARange)
{
    const struct {
        int board, position;
        const char *key, *code;
    } rows[] = {
        {kDc, 1, "FC", ""},        {kDc, 12, "RA", ""},      {kDc, 15, "VE", "00117"},  {kAc, 14, "FC", ""},
        {kAc, 15, "VE", "00117"},  {kLc, 1, "FC", ""},       {kLc, 9, "RA", ""},        {kLc, 15, "VE", "00117"},
        {kTc, 1, "FC", ""},        {kTc, 6, "QD", ""},       {kTc, 14, "OO", ""},       {kVf, 1, "NM", ""},
        {kAc2, 1, "ZA", "00108"},  {kAc2, 2, "TR", "00108"}, {kAc2, 15, "VE", "00117"}, {kAc3, 1, "ZA", "00117"},
        {kAc3, 2, "NG", "00117"},  {kAc3, 6, "RT", "00118"}, {kAc3, 15, "VE", "00117"}, {kTemp, 1, "FC", ""},
        {kTemp, 4, "RT", "00107"}, {kTemp, 7, "QD", ""},     {kTemp, 14, "OO", ""},     {kRtd, 1, "FC", ""}};
    std::size_t keys = 0;
    for (const auto &row : rows) {
        const FilterDefault filter = DefaultFilterAt(row.board, row.position);
        EXPECT_EQ(filter.key, row.key) << Where(row.board, row.position);
        EXPECT_EQ(filter.code, row.code) << Where(row.board, row.position);
    }
    for (int board = kDc; board <= kRtd; ++board)
        for (const RangeRecord &record : RecordsOfBoard(board))
            keys += record.word == 0 && *record.filterKey;
    EXPECT_EQ(keys, std::size(rows)) << "and nowhere else";
}
