#include "calibration/corrections.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ombrix::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct ValueRow {
    float word, reading, value;
};

TEST(RatioCorrection, RoundsEachOperationTo32Bits)
{
    const ValueRow rows[] = {
        {0x8948, 79993, 35167.156f},  {0x7628, 80026, 30163.656f}, {0x8000, 80000, 32768.0f},
        {0x52A7, 79900.5f, 21471.0f}, {0x9E84, 82301, 33032.5f},   {0x4D72, 81395.5f, 15553.5f},
        {0xFFF6, 80286, 64475.5f},    {0xA20A, 79914, 41773.5f},   {0x5885, 80245, 21891.5f},
        {0x8000, 79990, 32800.78f},   {39812, 80480, 38206.5f},    {0x8000, 1, 20971290000.0f},
        {0x8000, -5, -4194533000.0f},
    };
    for (const ValueRow &row : rows)
        EXPECT_FLOAT_EQ(RatioCorrection(row.word, row.reading, 80000, 1, 0), row.value) << row.word;
}

TEST(RatioCorrection, OfAZeroDenominatorIsInfinite)
{
    EXPECT_EQ(RatioCorrection(0x8000, 0, 80000, 1, 0), kInfinity);
    EXPECT_EQ(RatioCorrection(0x8000, -12920, 12920, 0.5f, 0.5f), kInfinity);
}

TEST(SlopeCorrection, AddsWhatTheErrorIsWorth)
{
    EXPECT_FLOAT_EQ(SlopeCorrection(0, 13, 9.737f), 126.58101f);
    EXPECT_FLOAT_EQ(SlopeCorrection(-16, -20, 9.737f), -210.74f);
}

TEST(SlopeCorrection, RoundsEachOperationTo32Bits)
{
    const float word = SlopeCorrection(32768, -2827, 9.737f);
    EXPECT_EQ(word, 5241.5f);
    EXPECT_EQ(LimitWord(word, 0, 65535).word, 5242) << "in 64 bits it would be 5241";
}

struct LimitRow {
    float value;
    std::int32_t word;
    bool limited;
};

TEST(LimitWord, HoldsEverythingThatIsNoWord)
{
    const LimitRow rows[] = {
        {0.0f, 0, false},         {-0.5f, 0, false},        {0.5f, 0, false},         {1.5f, 2, false},
        {33032.5f, 33032, false}, {15553.5f, 15554, false}, {65535.0f, 65535, false}, {65535.4f, 65535, false},
        {65535.5f, 65535, true},  {65536.0f, 65535, true},  {-0.6f, 0, true},         {2e10f, 65535, true},
        {-2e10f, 0, true},        {kInfinity, 65535, true}, {-kInfinity, 0, true},    {std::nanf(""), 65535, true},
    };
    for (const LimitRow &row : rows) {
        const LimitedWord word = LimitWord(row.value, 0, 65535);
        EXPECT_EQ(word.word, row.word) << row.value;
        EXPECT_EQ(word.limited, row.limited) << row.value;
    }
}

TEST(LimitWord, OfAnOffsetIsSigned)
{
    EXPECT_EQ(LimitWord(-32768.0f, -32768, 32767).word, -32768);
    EXPECT_FALSE(LimitWord(-32768.0f, -32768, 32767).limited);
    EXPECT_EQ(LimitWord(-32769.0f, -32768, 32767).word, -32768);
    EXPECT_TRUE(LimitWord(-32769.0f, -32768, 32767).limited);
    EXPECT_EQ(LimitWord(-101.5f, -32768, 32767).word, -102);
    EXPECT_EQ(LimitWord(40000.0f, -32768, 32767).word, 32767);
}

TEST(Settling, CountsTheFirstDirectionAsNoReversal)
{
    Settling settling(100);
    for (int reading : {101, 100, 101}) {
        settling.Take(reading);
        EXPECT_FALSE(settling.Done());
    }
    settling.Take(100);
    EXPECT_TRUE(settling.Done());
}

TEST(Settling, GoesOnWhenTheThirdReadingDiffers)
{
    Settling settling(100);
    settling.Take(100);
    settling.Take(101);
    EXPECT_FALSE(settling.Done());
    settling.Take(101);
    settling.Take(101);
    EXPECT_TRUE(settling.Done());
}

}  // namespace
}  // namespace ombrix::test
