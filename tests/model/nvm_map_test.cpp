#include "model/nvm_map.h"

#include <gtest/gtest.h>

#include <limits>

#include "session/state.h"

using namespace ombrix;

namespace {

constexpr const char *kAddresses[kNvmRows] = {
    "19", "1A", "1B", "1CL", "1D",  "1E", "1F", "20", "21", "22",  "23", "24",  "25", "26",  "27", "28",  "29", "2A",
    "2B", "2C", "2D", "2E",  "2FL", "2F", "30", "31", "32", "33L", "33", "34L", "34", "37L", "37", "38L", "38"};
constexpr const char *kDcNames[kNvmRows] = {
    "CALREF",  "CALDCGD", "Spare",   "Spare",  "RD0",     "Spare",   "CAL0P2V",  "CAL2V",    "CAL20V",
    "CAL200V", "CAL2KV",  "Spare",   "CAL2MA", "CAL20MA", "CAL0P2A", "CAL5A",    "Spare",    "Spare",
    "Spare",   "Spare",   "Spare",   "Spare",  "CALBID",  "Spare",   "CALBRDN",  "CALBRDG",  "CALBGND",
    "FIRSTB",  "FIRSTM",  "OLVALUE", "SECRET", "600 OL",  "5A OL",   "% / 8 OL", "ZERO WIDE"};
constexpr const char *kAcNames[kNvmRows] = {
    "CALREF",  "CALDCGD", "Spare",   "Spare",  "RD0",     "Spare",   "CAL0P2V",  "CAL2V",    "CAL20V",
    "CAL200V", "CAL2KV",  "Spare",   "CAL2MA", "CAL20MA", "CAL0P2A", "CAL5A",    "Spare",    "Spare",
    "Spare",   "Spare",   "Spare",   "Spare",  "Spare",   "Spare",   "Spare",    "CALBRDG",  "CALBGND",
    "FIRSTB",  "FIRSTM",  "OLVALUE", "SECRET", "600 OL",  "5A OL",   "% / 8 OL", "ZERO WIDE"};
constexpr const char *kLcNames[kNvmRows] = {
    "CALREF",   "CALDCGD",  "Spare",   "Spare",  "RD0",    "CALHGGD", "CAL20MV",  "CAL50MV",  "CAL100MV",
    "CAL250MV", "CAL500MV", "Spare",   "Spare",  "Spare",  "Spare",   "Spare",    "Spare",    "Spare",
    "Spare",    "Spare",    "Spare",   "Spare",  "CALBID", "Spare",   "CALBRDN",  "CALBRDG",  "CALBGND",
    "FIRSTB",   "FIRSTM",   "OLVALUE", "SECRET", "600 OL", "5A OL",   "% / 8 OL", "ZERO WIDE"};
constexpr const char *kTcNames[kNvmRows] = {
    "CALREF", "CALDCGD", "Spare",   "CALQDOJ", "CALQDGJ", "CALISRC", "CALJTC",   "CALKTC",   "CALETC",
    "CALTTC", "CALSTC",  "CALRTC",  "Spare",   "Spare",   "Spare",   "Spare",    "Spare",    "Spare",
    "Spare",  "CALQDOT", "CALQDGT", "CALNTC",  "CALTCHO", "Spare",   "Spare",    "Spare",    "Spare",
    "FIRSTB", "FIRSTM",  "OLVALUE", "SECRET",  "600 OL",  "5A OL",   "% / 8 OL", "ZERO WIDE"};
constexpr const char *kTempNames[kNvmRows] = {
    "CALREF",  "CALDCGD", "CAL3WGD", "CALQDOJ", "CALQDGJ", "CALISRC", "CALJTC",   "CALKTC",   "CALETC",
    "CALTTC",  "CALSTC",  "CALRTC",  "CAL4WD",  "CAL4WA",  "CAL3WD",  "CAL3WA",   "CAL2WD",   "CAL2WA",
    "CALSHRT", "CALQDOT", "CALQDGT", "CALNTC",  "CALTCHO", "Spare",   "Spare",    "Spare",    "Spare",
    "FIRSTB",  "FIRSTM",  "OLVALUE", "SECRET",  "600 OL",  "5A OL",   "% / 8 OL", "ZERO WIDE"};
constexpr const char *kRtdNames[kNvmRows] = {"CALREF", "CALDCGD", "Spare",  "Spare",  "Spare", "Spare",    "20 OHMS",
                                             "200",    "2K",      "20K",    "200K",   "Spare", "CALDIN",   "CALANSI",
                                             "CALNI",  "CALCU",   "Spare",  "Spare",  "Spare", "Spare",    "Spare",
                                             "Spare",  "Spare",   "Spare",  "Spare",  "Spare", "Spare",    "FIRSTB",
                                             "FIRSTM", "OLVALUE", "SECRET", "600 OL", "5A OL", "% / 8 OL", "ZERO WIDE"};

void ExpectNames(const char *const (&names)[kNvmRows], int tab, int board)
{
    for (int row = 0; row < kNvmRows; ++row) {
        EXPECT_EQ(NvmRowAt(row, tab, board).address, kAddresses[row]) << row;
        EXPECT_EQ(NvmRowAt(row, tab, board).name, names[row]) << row;
    }
}

struct ParseRow {
    const char *hex;
    std::int32_t value;
    std::int32_t asSigned;
};
constexpr ParseRow kParse[] = {
    {"000000", 0, 0},
    {"000001", 1, 1},
    {"000FFF", 4095, 4095},
    {"001000", 4096, 4096},
    {"00FFFF", 65535, 65535},
    {"010000", 65536, 65536},
    {"07FFFF", 524287, 524287},
    {"080000", 524288, 524288},
    {"0FFFFF", 1048575, 1048575},
    {"100000", 1048576, 1048576},
    {"1028F6", 1059062, 1059062},
    {"1428F6", 1321206, 1321206},
    {"2028F6", 2107638, 2107638},
    {"2428F6", 2369782, 2369782},
    {"200000", 2097152, 2097152},
    {"7FFFFF", 8388607, 8388607},
    {"800000", 8388608, -8388608},
    {"800001", 8388609, -8388607},
    {"FF7745", 16742213, -35003},
    {"FFD9B8", 16767416, -9800},
    {"FFF000", 16773120, -4096},
    {"FFFFFA", 16777210, -6},
    {"FFFFFF", 16777215, -1},
    {"ABCDEF", 11259375, -5517841},
};

struct LongRow {
    std::int32_t value;
    const char *plain;
    const char *asSigned;
};
constexpr LongRow kLongs[] = {
    {std::numeric_limits<std::int32_t>::min(), "000000", "800000"},
    {-8388609, "000000", "800000"},
    {-8388608, "000000", "800000"},
    {-8388607, "000000", "800001"},
    {-35003, "000000", "FF7745"},
    {-9800, "000000", "FFD9B8"},
    {-4096, "000000", "FFF000"},
    {-1, "000000", "FFFFFF"},
    {0, "000000", "000000"},
    {1, "000001", "000001"},
    {15, "00000F", "00000F"},
    {16, "000010", "000010"},
    {255, "0000FF", "0000FF"},
    {256, "000100", "000100"},
    {4095, "000FFF", "000FFF"},
    {4096, "001000", "001000"},
    {65535, "00FFFF", "00FFFF"},
    {65536, "010000", "010000"},
    {1048576, "100000", "100000"},
    {1059062, "1028F6", "1028F6"},
    {1321206, "1428F6", "1428F6"},
    {8388607, "7FFFFF", "7FFFFF"},
    {8388608, "800000", "7FFFFF"},
    {16777210, "FFFFFA", "7FFFFF"},
    {16777215, "FFFFFF", "7FFFFF"},
    {16777216, "FFFFFF", "7FFFFF"},
    {2147483647, "FFFFFF", "7FFFFF"},
};

struct FloatRow {
    float value;
    const char *plain;
    const char *asSigned;
};
constexpr FloatRow kFloats[] = {
    {-1000000000.0f, "000000", "800000"}, {-8388609.0f, "000000", "800000"},   {-8388608.0f, "000000", "800000"},
    {-8388607.5f, "000000", "800000"},    {-35003.0f, "000000", "FF7745"},     {-9800.4f, "000000", "FFD9B8"},
    {-1.5f, "000000", "FFFFFE"},          {-0.5f, "000000", "000000"},         {-0.4f, "000000", "000000"},
    {0.0f, "000000", "000000"},           {0.5f, "000000", "000000"},          {1.5f, "000002", "000002"},
    {2.5f, "000002", "000002"},           {1048576.0f, "100000", "100000"},    {1059061.76f, "1028F6", "1028F6"},
    {1321205.76f, "1428F6", "1428F6"},    {2097152.0f, "200000", "200000"},    {8388607.0f, "7FFFFF", "7FFFFF"},
    {8388607.5f, "800000", "7FFFFF"},     {8388608.0f, "800000", "7FFFFF"},    {16777208.0f, "FFFFF8", "7FFFFF"},
    {16777210.0f, "FFFFFA", "7FFFFF"},    {16777211.0f, "FFFFFF", "7FFFFF"},   {16777215.0f, "FFFFFF", "7FFFFF"},
    {16777216.0f, "FFFFFF", "7FFFFF"},    {1000000000.0f, "FFFFFF", "7FFFFF"},
};

}  // namespace

TEST(NvmMap, NamesTheCalibrationBlockByTabAndBoard)
{
    ExpectNames(kDcNames, kTabDc, kDc);
    for (int board : {kAc, kAc2, kAc3})
        ExpectNames(kAcNames, kTabAc, board);
    ExpectNames(kLcNames, kTabLc, kLc);
    ExpectNames(kTcNames, kTabTc, kTc);
    ExpectNames(kTempNames, kTabTc, kTemp);
    ExpectNames(kRtdNames, kTabTc, kRtd);
}

TEST(NvmMap, GoesByTheOpenTabNotTheBoardOutsideTheTcTab)
{
    ExpectNames(kDcNames, kTabDc, kTemp);
    ExpectNames(kLcNames, kTabLc, -1);
    ExpectNames(kTcNames, kTabTc, -1);
}

TEST(NvmMap, HasNoRowOutside)
{
    EXPECT_EQ(NvmRowAt(-1, kTabDc, kDc).name, "");
    EXPECT_EQ(NvmRowAt(35, kTabDc, kDc).name, "");
    EXPECT_EQ(NvmRowAt(0, kTabVf, kVf).name, "");
    EXPECT_EQ(NvmRowAt(0, kTabAnaCal, kDc).address, "");
    EXPECT_EQ(NvmRowAt(0, -1, kDc).address, "");
}

TEST(WordText, HasExactlyItsDigitsInUpperCase)
{
    EXPECT_TRUE(IsWordText("00AF"));
    EXPECT_TRUE(IsWordText("FFD9B8100000", 12));
    for (const char *text : {"", "00A", "00AFF", "00af", "00AG", " 0AF"})
        EXPECT_FALSE(IsWordText(text)) << text;
}

TEST(Hex6, ReadsTwentyFourBits)
{
    for (const ParseRow &row : kParse) {
        EXPECT_EQ(Hex6ToLong(row.hex), row.value) << row.hex;
        EXPECT_EQ(Hex6ToSigned(row.hex), row.asSigned) << row.hex;
        EXPECT_EQ(Hex6ToFloat(row.hex), static_cast<float>(row.value)) << row.hex;
        EXPECT_EQ(Hex6ToFloatSigned(row.hex), static_cast<float>(row.asSigned)) << row.hex;
    }
}

TEST(Hex6, NeverFailsOnOtherText)
{
    EXPECT_EQ(Hex6ToLong(""), 0);
    EXPECT_EQ(Hex6ToLong("zzzzzz"), 0);
    EXPECT_EQ(Hex6ToLong("1"), 1 * 4096 + 1) << "its first and its last three digits are both the 1";
    EXPECT_EQ(Hex6ToLong("abcdef"), 11259375);
    EXPECT_EQ(Hex6ToLong("12G456"), 0x12 * 4096 + 0x456) << "the leading digits of each half";
}

TEST(Hex6, WritesIntegersWithinTheirLimits)
{
    for (const LongRow &row : kLongs) {
        EXPECT_EQ(LongToHex6(row.value), row.plain) << row.value;
        EXPECT_EQ(SignedToHex6(row.value), row.asSigned) << row.value;
    }
}

TEST(Hex6, HasTheSmallestValueAt800000)
{
    EXPECT_EQ(Hex6ToSigned("800000"), -8388608);
    EXPECT_EQ(SignedToHex6(-8388608), "800000");
    EXPECT_EQ(SignedToHex6(-8388609), "800000");
    EXPECT_EQ(SignedToHex6(8388607), "7FFFFF");
    EXPECT_EQ(SignedToHex6(8388608), "7FFFFF");
}

TEST(Hex6, WritesFloatsRoundedToEvenWithinTheirLimits)
{
    for (const FloatRow &row : kFloats) {
        EXPECT_EQ(FloatToHex6(row.value), row.plain) << row.value;
        EXPECT_EQ(FloatToHex6Signed(row.value), row.asSigned) << row.value;
    }
    EXPECT_EQ(FloatToHex6(std::numeric_limits<float>::infinity()), "FFFFFF");
    EXPECT_EQ(FloatToHex6Signed(-std::numeric_limits<float>::infinity()), "800000");
    EXPECT_EQ(FloatToHex6(std::numeric_limits<float>::quiet_NaN()), "000000");
}

TEST(Hex6, LimitsAFloatAt16777210ThoughMoreWouldFit)
{
    EXPECT_EQ(FloatToHex6(16777210.0f), "FFFFFA");
    EXPECT_EQ(FloatToHex6(16777211.0f), "FFFFFF");
}

TEST(Hex6, BringsEveryGroupOfTheSimulatorBack)
{
    for (const char *hex : {"FFD9B8", "FF7745", "000000", "7FFFFF", "800001"})
        EXPECT_EQ(SignedToHex6(Hex6ToSigned(hex)), hex);
    for (const char *hex : {"100000", "1028F6", "1428F6", "080000", "200000", "FFFFFF"})
        EXPECT_EQ(LongToHex6(Hex6ToLong(hex)), hex);
    for (const char *hex : {"100000", "1028F6", "1428F6", "080000", "200000"})
        EXPECT_EQ(FloatToHex6(Hex6ToFloat(hex)), hex);
}
