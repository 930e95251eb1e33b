#include "calibration/trims.h"

#include <gtest/gtest.h>

namespace ombrix::test {
namespace {

TEST(Trims, ChooseTheResistorsFromBothReadings)
{
    struct Row {
        float plus, minus;
        int r13, r14;
    };
    const Row rows[] = {
        {80000, 80000, 0, 0},     {80000, 80039, 0, 0},    {80000, 80040, 0, 0},      {80000, 79960, 1000, 0},
        {80000, 80041, 0, 1000},  {79960, 80040, 0, 1000}, {79960, 79820, 100, 1000}, {80000, 80300, 1000, 10},
        {80000, 79700, 10, 1000}, {80000, 80360, 0, 10},   {80000, 79500, 1010, 0},   {80000, 80950, 0, 1},
        {80000, 80960, 0, 1},
    };
    for (const Row &row : rows) {
        const auto found = ResistorsForReadings(row.plus, row.minus);
        ASSERT_TRUE(found) << row.minus;
        EXPECT_EQ(found->r13, row.r13) << row.plus << " " << row.minus;
        EXPECT_EQ(found->r14, row.r14) << row.plus << " " << row.minus;
    }
}

TEST(Trims, HaveNoResistorForALargeErrorNorWithoutAReading)
{
    EXPECT_FALSE(ResistorsForReadings(80000, 80961));
    EXPECT_FALSE(ResistorsForReadings(80000, 79040));
    EXPECT_FALSE(ResistorsForReadings(80000, 78000));
    EXPECT_FALSE(ResistorsForReadings(0, 80000));
    EXPECT_FALSE(ResistorsForReadings(0, 0));
}

TEST(Trims, TakeTheFirstThresholdAboveTheError)
{
    struct Row {
        float error;
        std::size_t row;
        int r13, r14;
    };
    const Row rows[] = {
        {0.00049f, 0, 0, 0},   {0.0005f, 1, 0, 1000},   {-0.0005f, 1, 1000, 0},
        {0.00364f, 5, 0, 100}, {-0.00364f, 5, 1100, 0}, {-0.01199f, 12, 1, 0},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(TrimRowOf(row.error < 0 ? -row.error : row.error), row.row) << row.error;
        const auto found = ResistorsForError(row.error);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->r13, row.r13) << row.error;
        EXPECT_EQ(found->r14, row.r14) << row.error;
    }
    for (const float error : {0.012f, -0.5f, 20.0f}) {
        EXPECT_EQ(TrimRowOf(error < 0 ? -error : error), kTrimError);
        EXPECT_FALSE(ResistorsForError(error));
    }
}

TEST(Trims, NameTheResistorsOfACode)
{
    const std::pair<int, const char *> rows[] = {
        {0, "Nothing"},
        {1, "1M"},
        {10, "2M"},
        {100, "4.3M"},
        {110, "4.3M and 2M"},
        {1000, "10M"},
        {1010, "10M and 2M"},
        {1100, "10M and 4.3M"},
        {20, "2M and 1M"},
        {1111, "10M and 4.3M and 2M and 1M"},
        {2000, "10M and 4.3M and 2M and 1M"},
    };
    for (const auto &[code, text] : rows)
        EXPECT_EQ(ResistorCodeText(code), text) << code;
}

TEST(Trims, RecommendTheMeanOfBothReadingsHalfToEven)
{
    EXPECT_EQ(RecommendedReading(3980, 4020), 4000);
    EXPECT_EQ(RecommendedReading(3981, 4020), 4000);
    EXPECT_EQ(RecommendedReading(3983, 4020), 4002);
    EXPECT_EQ(std::to_string(RecommendedReading(-5, 4)), "0");
}

}  // namespace
}  // namespace ombrix::test
