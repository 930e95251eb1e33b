#include "calibration/vf_fit.h"

#include "platform/text.h"

#include <gtest/gtest.h>

#include <string>

namespace ombrix::test {
namespace {

constexpr float kGainEnd = 16777210.0f / 1048576.0f;

struct FitRow {
    int range;
    float gain, offset, low, high, newGain, newOffset;
    const char *hex;
    bool outOfRange;
};

constexpr FitRow kFits[] = {
    {0, 1, -9800, 12, 100030, 0.99982005f, -9810.234f, "FFD9AE0FFF43", false},
    {0, 1, -9800, 0, 100000, 1, -9800, "FFD9B8100000", false},
    {0, 1, -9800, -250, 99400, 1.0035123f, -9583.542f, "FFDA90100E63", false},
    {1, 1.0100002f, -9800, 35, 100120, 1.0091425f, -9826.648f, "FFD99D102573", false},
    {1, 1.0100002f, -9800, -3, 99997, 1.0100002f, -9797, "FFD9BB1028F6", false},
    {2, 1.2600002f, -35003, -1500, 91234, 1.3587251f, -36128.062f, "FF72E015BD56", false},
    {2, 1.2600002f, -35003, 40, 100010, 1.2603784f, -35053.516f, "FF7712142A82", false},
    {0, 1.9f, 8388000, -900, 99000, 1.901902f, 8388607, "7FFFFF1E6E31", true},
    {2, 2, -8388000, 5000, 17000, kGainEnd, -8388608, "800000FFFFFA", true},
    {1, 0.5f, 0, 10, 50010, 1, -20, "FFFFEC100000", false},
    {2, 1.6f, 0, 0, 10000, kGainEnd, 0, "000000FFFFFA", true},
};

TEST(VfFit, PutsTheLineThroughBothReadingsAndHoldsGainAndOffsetAtTheirEnds)
{
    for (const FitRow &row : kFits) {
        SCOPED_TRACE(row.hex);
        const VfFit fit = FitVf(row.range, {row.gain, row.offset, ""}, row.low, row.high);
        EXPECT_EQ(fit.now.gain, row.newGain);
        EXPECT_EQ(fit.now.offset, row.newOffset);
        EXPECT_EQ(fit.now.hex, row.hex);
        EXPECT_EQ(fit.outOfRange, row.outOfRange);
    }
}

TEST(VfFit, AGainIsGoodFromAHalfToTwo)
{
    struct {
        const char *digits;
        float gain;
        bool good;
        const char *shown;
    } constexpr kRows[] = {{"080000", 0.5f, true, ".5"},          {"07FFFF", 0.49999905f, false, ".5"},
                           {"200000", 2.0f, true, "2."},          {"200001", 2.000001f, false, "2."},
                           {"100000", 1.0f, true, "1."},          {"1428F6", 1.2600002f, true, "1.26"},
                           {"000000", 0.0f, false, "."},          {"FFFFFF", 15.999999f, false, "16."},
                           {"2428F6", 2.2600002f, false, "2.26"}, {"2028F6", 2.0100002f, false, "2.01"}};
    for (const auto &row : kRows) {
        const VfCalibration calibration = VfCalibrationOf("FFD9B8" + std::string(row.digits));
        EXPECT_EQ(calibration.gain, row.gain) << row.digits;
        EXPECT_EQ(calibration.offset, -9800);
        EXPECT_EQ(IsGoodVfGain(calibration.gain), row.good) << row.digits;
        EXPECT_EQ(FormatSparse(calibration.gain, 2), row.shown) << row.digits;
    }
}

TEST(VfFit, TellsGainAndOffsetWithoutDigitsThatSayNothing)
{
    EXPECT_EQ(FormatSparse(1.0f, 6), "1.");
    EXPECT_EQ(FormatSparse(1.01f, 6), "1.01");
    EXPECT_EQ(FormatSparse(0.9998125f, 6), ".999813");
    EXPECT_EQ(FormatSparse(-9800.0f, 0), "-9800");
    EXPECT_EQ(FormatSparse(0.0f, 0), "");
}

}  // namespace
}  // namespace ombrix::test
