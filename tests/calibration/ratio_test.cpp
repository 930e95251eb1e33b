#include "calibration/ratio.h"

#include <gtest/gtest.h>

namespace ombrix::test {
namespace {

TEST(RatioOffset, IsCorrectedFromBothExcitations)
{
    struct Row {
        float before, at11, at5, after;
        const char *word;
        bool limited;
    };
    const Row rows[] = {
        {1632, 80000, 80010, 1871.3676f, "074F", false},     {1632, 80000, 80000, 1632, "0660", false},
        {1632, 80010, 79990, 1152.9656f, "0481", false},     {-1, 80005, 79998, -168.61803f, "FF57", false},
        {-300.25f, 79990, 80003, 10.943329f, "000B", false}, {32700, 79990, 80010, 32767, "7FFF", true},
        {-32700, 80010, 79990, -32768, "8000", true},        {1871.3658f, 80001, 80000, 1847.4229f, "0737", false},
    };
    for (const Row &row : rows) {
        const RatioWord corrected = CorrectRatioOffset(row.before, row.at11, row.at5);
        EXPECT_EQ(corrected.value, row.after) << row.before << " to the last bit";
        EXPECT_EQ(corrected.word, row.word);
        EXPECT_EQ(corrected.limited, row.limited) << row.word;
    }
}

TEST(RatioOffset, StaysWhenTheReadingsGiveNoCorrection)
{
    for (const auto &[at11, at5] : {std::pair{80000.0f, 40000.0f}, {0.0f, 0.0f}}) {
        const RatioWord corrected = CorrectRatioOffset(1632, at11, at5);
        EXPECT_EQ(corrected.value, 1632.0f);
        EXPECT_EQ(corrected.word, "0660");
        EXPECT_TRUE(corrected.limited);
    }
}

TEST(RatioGain, IsCorrectedTowardTheTypedReading)
{
    struct Row {
        float before, target, reading, after;
        const char *word;
        bool limited;
    };
    const Row rows[] = {
        {13312, 16390, 16390, 13312, "3400", false},         {13312, 16390, 16380, 13460.462f, "3494", false},
        {13312, 16390, 16401, 13148.901f, "335D", false},    {40000, 20000, 20003, 39959.523f, "9C18", false},
        {13312, 16390, 13000, 65535, "FFFF", true},          {13312, 16390, 20000, 0, "0000", true},
        {65000.5f, 16390, 16389, 65018.496f, "FDFA", false}, {13312, 16390, 0, 13312, "3400", true},
        {33024, 50000, 49990, 33076.59f, "8135", false},
    };
    for (const Row &row : rows) {
        const RatioWord corrected = CorrectRatioGain(row.before, row.target, row.reading);
        EXPECT_EQ(corrected.value, row.after) << row.reading << " to the last bit";
        EXPECT_EQ(corrected.word, row.word);
        EXPECT_EQ(corrected.limited, row.limited) << row.word;
    }
}

TEST(RatioWords, GroundIsSignedAndTheDividerIsNot)
{
    EXPECT_EQ(RatioGroundOf("FFFF"), -1.0f);
    EXPECT_EQ(RatioGroundOf("0660"), 1632.0f);
    EXPECT_EQ(RatioDividerOf("FFFF"), 65535.0f);
}

}  // namespace
}  // namespace ombrix::test
