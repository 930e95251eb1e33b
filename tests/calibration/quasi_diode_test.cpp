#include "calibration/quasi_diode.h"

#include <gtest/gtest.h>

#include <string>

namespace ombrix::test {
namespace {

// A click before, or none.
struct Before {
    bool first;
    float word, reading;
};
constexpr Before kFirst = {true, 0, 0};

struct GainRow {
    int type;
    float reading, now;
    Before before;
    float value;
    const char *hex;
};

constexpr GainRow kGains[] = {
    {0, 0.0f, 1000, kFirst, 28432, "6F10"},
    {0, 1.2f, 1000, kFirst, 28559.8f, "6F90"},
    {1, -3.4f, 1000, kFirst, 27773.9f, "6C7E"},
    {0, 0.3f, 28560, {false, 28432, 1.2f}, 28602.666f, "6FBB"},
    {0, -0.1f, 28603, {false, 28560, 0.3f}, 28592.25f, "6FB0"},
    {0, 0.3f, 28603, {false, 28560, 0.3f}, 28463.95f, "6F30"},
    {1, 0.1f, 27774, {false, 28136, -3.4f}, 27784.344f, "6C88"},
    {0, 20.0f, 28560, {false, 28432, 19.9f}, 2960.0977f, "0B90"},
    {0, 400.0f, 1000, kFirst, 71032, "FFFF"},
    {0, -400.0f, 1000, kFirst, -14168, "0000"},
};

TEST(DiodeGain, GoesAlongTheNominalSlopeFirstAndWhileTheReadingStandsElseAlongTheSecant)
{
    for (const GainRow &row : kGains) {
        SCOPED_TRACE(std::to_string(row.reading) + " " + row.hex);
        DiodeWord gain{row.now, row.before.word, row.before.reading, row.before.first};
        const DiodeCorrection correction = CorrectDiodeGain(gain, DiodeGroupOf(row.type).nominalGain, row.reading);
        EXPECT_EQ(correction.value, row.value);
        EXPECT_EQ(correction.hex, row.hex);
        EXPECT_EQ(correction.limited, row.value > 65535 || row.value < 0);
        EXPECT_FALSE(gain.first);
        EXPECT_EQ(gain.before, row.now);
        EXPECT_EQ(gain.readingBefore, row.reading);
        EXPECT_EQ(gain.now, static_cast<float>(std::stol(row.hex, nullptr, 16))) << "the word written";
    }
}

struct OffsetRow {
    float reading, target, now;
    Before before;
    float value;
    const char *hex;
    bool limited;
};

constexpr OffsetRow kOffsets[] = {
    {0.0f, 0, 0, kFirst, 0, "0000", false},
    {1.5f, 0, 0, kFirst, 404.2037f, "0194", false},
    {-1.5f, 0, 0, kFirst, -404.2037f, "FE6C", false},
    {0.2f, 0, 404, {false, 0, 1.5f}, 466.15384f, "01D2", false},
    {0.2f, 0, 466, {false, 404, 0.2f}, 519.8938f, "0208", false},
    {25, 0, 0, kFirst, 6736.7285f, "1A51", false},
    {-25, 0, 0, kFirst, -6736.7285f, "E5AF", false},
    {25, 0, 30000, kFirst, 36736.727f, "7FFF", true},
    {-25, 0, -30000, kFirst, -36736.727f, "8001", true},
    {0.7f, 0.5f, 100, kFirst, 153.89383f, "009A", false},
    {0.3f, 0, 404, {false, 0, 0.2f}, -807.9999f, "FCD8", false},
    {0, 0, 32767, kFirst, 32767, "7FFF", false},
    {0, 0, -32767, kFirst, -32767, "8001", false},
};

TEST(DiodeOffset, GoesToItsTargetAndStopsAtTheEndsOfTheWord)
{
    for (const OffsetRow &row : kOffsets) {
        SCOPED_TRACE(std::to_string(row.reading) + " " + row.hex);
        DiodeWord offset{row.now, row.before.word, row.before.reading, row.before.first};
        const DiodeCorrection correction = CorrectDiodeOffset(offset, row.target, row.reading);
        EXPECT_EQ(correction.value, row.value);
        EXPECT_EQ(correction.hex, row.hex);
        EXPECT_EQ(correction.limited, row.limited);
        EXPECT_EQ(offset.before, row.now);
        EXPECT_EQ(offset.now, static_cast<float>(static_cast<std::int16_t>(std::stol(row.hex, nullptr, 16))));
    }
}

TEST(DiodeReading, IsHeldWithin25Degrees)
{
    for (const float inside : {0.0f, 25.0f, -25.0f, 24.9f}) {
        EXPECT_FALSE(DiodeReadingIsOut(inside));
        EXPECT_EQ(HoldDiodeReading(inside), inside);
    }
    EXPECT_TRUE(DiodeReadingIsOut(25.1f));
    EXPECT_TRUE(DiodeReadingIsOut(-25.1f));
    EXPECT_EQ(HoldDiodeReading(25.1f), 25.0f);
    EXPECT_EQ(HoldDiodeReading(-30.0f), -25.0f);
}

}  // namespace
}  // namespace ombrix::test
