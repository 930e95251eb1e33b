#include "model/range_names.h"

#include <gtest/gtest.h>

#include "session/state.h"

using namespace ombrix;

namespace {

constexpr const char *kNames[57] = {
    "20 mV", "50 mV", "100 mV", "200 mV", "250 mV",     "500 mV",    "2 V",      "20 V",     "200 V",     "600 V",
    "2 mA",  "20 mA", "200 mA", "5 A",    "20 Ohms",    "200 Ohms",  "2 kOhms",  "20 kOhms", "200 kOhms", "J °F",
    "J °C",  "K °F",  "K °C",   "N °F",   "N °C",       "E °F",      "E °C",     "t °F",     "t °C",      "S °F",
    "S °C",  "r °F",  "r °C",   "DIN °F", "DIN °C",     "ANSI °F",   "ANSI °C",  "Ni °F",    "Ni °C",     "Cu °F",
    "Cu °C", "4d °F", "4d °C",  "4A °F",  "4A °C",      "3d °F",     "3d °C",    "3A °F",    "3A °C",     "2d °F",
    "2d °C", "2A °F", "2A °C",  "Short",  "VF 4-20 mA", "VF 0-1 mA", "VF 0-10 V"};

struct CodeRow {
    int board;
    const char *code;
    const char *text;
    int diagram;
    const char *input;
};

// clang-format off
constexpr CodeRow kCodes[] = {
    {kDc, "60", "DC 200 mV", 0, "200 mV"},
    {kDc, "61", "DC 2 V", 1, "2 V"},
    {kDc, "62", "DC 20 V", 2, "20 V"},
    {kDc, "63", "DC 200 V", 3, "200 V"},
    {kDc, "64", "DC 600 V", 4, "660 V"},
    {kDc, "70", "DC 2 mA", 5, "2 mA"},
    {kDc, "71", "DC 20 mA", 6, "20 mA"},
    {kDc, "72", "DC 200 mA", 7, "200 mA"},
    {kDc, "73", "DC 5 A", 8, "5 A"},
    {kDc, "A0", "Ratio 200 mV", -1, ""},
    {kDc, "A1", "Ratio 2 V", -1, ""},
    {kDc, "A2", "Ratio 20 V", -1, ""},
    {kDc, "80", "???", -1, ""},
    {kDc, "65", "???", -1, ""},
    {kAc, "80", "RMS 200 mV", 0, "200 mV, 300 Hz"},
    {kAc, "81", "RMS 2 V", 1, "2 V, 300 Hz"},
    {kAc, "82", "RMS 20 V", 2, "20 V, 300 Hz"},
    {kAc, "83", "RMS 200 V", 3, "200 V, 300 Hz"},
    {kAc, "84", "RMS 600 V", 4, "660 V, 300 Hz"},
    {kAc, "90", "RMS 2 mA", 5, "2 mA, 300 Hz"},
    {kAc, "91", "RMS 20 mA", 6, "20 mA, 300 Hz"},
    {kAc, "92", "RMS 200 mA", 7, "200 mA, 300 Hz"},
    {kAc, "93", "RMS 5 A", 8, "5 A, 300 Hz"},
    {kAc, "60", "???", -1, ""},
    {kLc, "C0", "Strain 20 mV", 0, "20 mV"},
    {kLc, "C1", "Strain 50 mV", 1, "50 mV"},
    {kLc, "C2", "Strain 100 mV", 2, "100 mV"},
    {kLc, "C3", "Strain 250 mV", 3, "250 mV"},
    {kLc, "C4", "Strain 500 mV", 4, "500 mV"},
    {kLc, "D0", "DC 20 mV", 0, "20 mV"},
    {kLc, "D1", "DC 50 mV", 1, "50 mV"},
    {kLc, "D2", "DC 100 mV", 2, "100 mV"},
    {kLc, "D3", "DC 250 mV", 3, "250 mV"},
    {kLc, "D4", "DC 500 mV", 4, "500 mV"},
    {kLc, "60", "???", -1, ""},
    {kTc, "40", "J °F", 2, "32 FAR"},
    {kTc, "41", "J °C", 3, "0 CEL"},
    {kTc, "42", "K °F", 2, "32 FAR"},
    {kTc, "43", "K °C", 3, "0 CEL"},
    {kTc, "44", "N °F", 2, "32 FAR"},
    {kTc, "45", "N °C", 3, "0 CEL"},
    {kTc, "46", "E °F", 2, "32 FAR"},
    {kTc, "47", "E °C", 3, "0 CEL"},
    {kTc, "48", "t °F", 4, "32 FAR"},
    {kTc, "49", "t °C", 5, "0 CEL"},
    {kTc, "4A", "S °F", 4, "32 FAR"},
    {kTc, "4B", "S °C", 5, "0 CEL"},
    {kTc, "4C", "r °F", 4, "32 FAR"},
    {kTc, "4D", "r °C", 5, "0 CEL"},
    {kTc, "60", "???", -1, ""},
    {kTc, "65", "???", -1, ""},
    {kTc, "50", "???", -1, ""},
    {kVf, "81", "VF 4-20 mA", -1, ""},
    {kVf, "91", "VF 0-1 mA", -1, ""},
    {kVf, "A1", "VF 0-10 V", -1, ""},
    {kVf, "60", "???", -1, ""},
    {kAc2, "80", "RMS 200 mV", 0, "200 mV, 300 Hz"},
    {kAc2, "81", "RMS 2 V", 1, "2 V, 300 Hz"},
    {kAc2, "82", "RMS 20 V", 2, "20 V, 300 Hz"},
    {kAc2, "83", "RMS 200 V", 3, "200 V, 300 Hz"},
    {kAc2, "84", "RMS 600 V", 9, "600 V, 300 Hz"},
    {kAc2, "90", "RMS 2 mA", 5, "2 mA, 300 Hz"},
    {kAc2, "91", "RMS 20 mA", 6, "20 mA, 300 Hz"},
    {kAc2, "92", "RMS 200 mA", 7, "200 mA, 300 Hz"},
    {kAc2, "93", "RMS 5 A", 8, "5 A, 300 Hz"},
    {kAc2, "60", "???", -1, ""},
    {kAc3, "80", "RMS 200 mV", 0, "200 mV, 300 Hz"},
    {kAc3, "81", "RMS 2 V", 1, "2 V, 300 Hz"},
    {kAc3, "82", "RMS 20 V", 2, "20 V, 300 Hz"},
    {kAc3, "83", "RMS 200 V", 3, "200 V, 300 Hz"},
    {kAc3, "84", "RMS 600 V", 9, "600 V, 300 Hz"},
    {kAc3, "90", "RMS 2 mA", 5, "2 mA, 300 Hz"},
    {kAc3, "91", "RMS 20 mA", 6, "20 mA, 300 Hz"},
    {kAc3, "92", "RMS 200 mA", 7, "200 mA, 300 Hz"},
    {kAc3, "93", "RMS 5 A", 8, "5 A, 300 Hz"},
    {kAc3, "60", "???", -1, ""},
    {kTemp, "40", "J °F", 2, "32 FAR"},
    {kTemp, "41", "J °C", 3, "0 CEL"},
    {kTemp, "42", "K °F", 2, "32 FAR"},
    {kTemp, "43", "K °C", 3, "0 CEL"},
    {kTemp, "44", "N °F", 2, "32 FAR"},
    {kTemp, "45", "N °C", 3, "0 CEL"},
    {kTemp, "46", "E °F", 2, "32 FAR"},
    {kTemp, "47", "E °C", 3, "0 CEL"},
    {kTemp, "48", "t °F", 4, "32 FAR"},
    {kTemp, "49", "t °C", 5, "0 CEL"},
    {kTemp, "4A", "S °F", 4, "32 FAR"},
    {kTemp, "4B", "S °C", 5, "0 CEL"},
    {kTemp, "4C", "r °F", 4, "32 FAR"},
    {kTemp, "4D", "r °C", 5, "0 CEL"},
    {kTemp, "50", "4d °F", -1, ""},
    {kTemp, "51", "4d °C", -1, ""},
    {kTemp, "52", "4A °F", -1, ""},
    {kTemp, "53", "4A °C", -1, ""},
    {kTemp, "54", "3d °F", -1, ""},
    {kTemp, "55", "3d °C", -1, ""},
    {kTemp, "56", "3A °F", -1, ""},
    {kTemp, "57", "3A °C", -1, ""},
    {kTemp, "58", "2d °F", -1, ""},
    {kTemp, "59", "2d °C", -1, ""},
    {kTemp, "5A", "2A °F", -1, ""},
    {kTemp, "5B", "2A °C", -1, ""},
    {kTemp, "5C", "Short", -1, ""},
    {kTemp, "60", "???", -1, ""},
    {kTemp, "65", "???", -1, ""},
    {kTemp, "5D", "???", -1, ""},
    {kRtd, "50", "DIN °F", 1, "387.55 OHM"},
    {kRtd, "51", "DIN °C", 2, "387.55 OHM"},
    {kRtd, "52", "ANSI °F", 3, "391.391 OHM"},
    {kRtd, "53", "ANSI °C", 4, "391.391 OHM"},
    {kRtd, "54", "Ni °F", 5, "366.531 OHM"},
    {kRtd, "55", "Ni °C", 6, "366.531 OHM"},
    {kRtd, "56", "Cu °F", 7, "18.72 OHM"},
    {kRtd, "57", "Cu °C", 8, "18.72 OHM"},
    {kRtd, "5C", "Short", -1, ""},
    {kRtd, "E0", "20 Ohms", 9, "20 OHM"},
    {kRtd, "E1", "200 Ohms", 10, "200 OHM"},
    {kRtd, "E2", "2 kOhms", 11, "2 KOHM"},
    {kRtd, "E3", "20 kOhms", 12, "20 KOHM"},
    {kRtd, "E4", "200 kOhms", 13, "100 KOHM"},
    {kRtd, "40", "???", -1, ""},
    {kRtd, "5D", "???", -1, ""},
};
// clang-format on

class RangeNames : public testing::Test
{
protected:
    void SetUp() override { InitSessionState(); }
    void TearDown() override { InitSessionState(); }
};

}  // namespace

TEST_F(RangeNames, AreFiftySeven)
{
    for (int i = 0; i < 57; ++i)
        EXPECT_EQ(RangeName(i), kNames[i]) << i;
    EXPECT_EQ(RangeName(-1), "");
    EXPECT_EQ(RangeName(57), "");
}

TEST_F(RangeNames, DescribeEveryCodeOfEveryBoard)
{
    static_assert(std::size(kCodes) == 122);
    for (const CodeRow &row : kCodes) {
        const RangeDescription range = DescribeRangeCode(row.board, row.code);
        EXPECT_EQ(range.text, row.text) << row.board << " " << row.code;
        EXPECT_EQ(range.diagram, row.diagram) << row.board << " " << row.code;
        EXPECT_EQ(range.input, row.input) << row.board << " " << row.code;
    }
}

TEST_F(RangeNames, DescribeNoCodeThatIsNotListed)
{
    for (int board = -1; board <= 10; ++board) {
        for (const char *code : {"", "00", "FF", "4a", "6", "600"}) {
            const RangeDescription range = DescribeRangeCode(board, code);
            EXPECT_EQ(range.text, "???") << board << code;
            EXPECT_EQ(range.diagram, -1);
            EXPECT_EQ(range.input, "");
        }
    }
}

TEST_F(RangeNames, GoByTheBoardThatIsDescribedWhicheverIsInWork)
{
    SCType = kLc;
    EXPECT_EQ(DescribeRangeCode(kDc, "62").input, "20 V");
    SCType = kAc2;
    EXPECT_EQ(DescribeRangeCode(kAc, "84").diagram, 4);
}

TEST_F(RangeNames, CallTheHighestVoltage600AndApply660)
{
    EXPECT_EQ(DescribeRangeCode(kDc, "64").text, "DC 600 V");
    EXPECT_EQ(DescribeRangeCode(kDc, "64").input, "660 V");
    EXPECT_EQ(DescribeRangeCode(kAc, "84").text, "RMS 600 V");
    EXPECT_EQ(DescribeRangeCode(kAc, "84").diagram, 4);
    EXPECT_EQ(DescribeRangeCode(kAc, "84").input, "660 V, 300 Hz");
}

TEST_F(RangeNames, GiveTheRtdTestPoints)
{
    const char *const values[] = {"0 V",         "387.55 OHM",  "387.55 OHM", "391.391 OHM", "391.391 OHM",
                                  "366.531 OHM", "366.531 OHM", "18.72 OHM",  "18.72 OHM",   "20 OHM",
                                  "200 OHM",     "2 KOHM",      "20 KOHM",    "100 KOHM",    "0 V"};
    const char *const temperatures[] = {"0.0",   "1544.0", "840.0", "1544.0", "840.0", "482.0", "250.0", "482.0",
                                        "250.0", "0.0",    "0.0",   "0.0",    "0.0",   "0.0",   "0.0"};
    for (int i = 0; i < 15; ++i) {
        EXPECT_EQ(RtdSimValue(i), values[i]) << i;
        EXPECT_EQ(RtdSimTemperature(i), temperatures[i]) << i;
    }
    EXPECT_EQ(RtdSimValue(-1), "0 V");
    EXPECT_EQ(RtdSimTemperature(-1), "0.0");
}

TEST_F(RangeNames, AValueIsWrittenWithTheUnitsThatPeopleWrite)
{
    EXPECT_EQ(ValueAsWritten("100 KOHM"), "100 kOhm");
    EXPECT_EQ(ValueAsWritten("345.28 OHM"), "345.28 Ohm");
    EXPECT_EQ(ValueAsWritten("0 CEL"), "0 °C");
    EXPECT_EQ(ValueAsWritten("-32 FAR"), "-32 °F");
    for (const char *value : {"17.475 mV", "2 V", "5 A", "20 mA", "2 V, 300 Hz", ""})
        EXPECT_EQ(ValueAsWritten(value), value);
}
