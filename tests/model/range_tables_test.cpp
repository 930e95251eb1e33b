#include "model/range_tables.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "model/step_ids.h"
#include "session/state.h"

using namespace ombrix;

namespace {

constexpr const char *kTitles[61] = {
    "Init NVM",     "View NVM",      "GND",          "REF (200 mV)",   "200 mV",       "2 V",          "20 V",
    "200 V",        "660 V",         "2 mA",         "20 mA",          "200 mA",       "5 A",          "Ratio",
    "First Cycle",  "Verify",        "Send File",    "GND (.5 V)",     "OFF (20 mV)",  "REF (20 mV)",  "Touch-Up",
    "50 mV",        "100 mV",        "250 mV",       "500 mV",         "Lo-Gain GND",  "75.6 mV",      "RTD Current",
    "Hi-Gain GND",  "23.3 mV",       "Gain/Offset",  "Offset Only",    "Meter Type",   "VF 4-20 mA",   "VF 0-1 mA",
    "VF 0-10 V",    "Nominalize",    "Get Config",   "Rest Config",    "Zero Adjust",  "R13/R14 Trim", "- Gain Trim",
    "Init NVMEM",   "Volt Offset",   "Voltage Gain", "Current Offset", "Current Gain", "-10 Volts",    "+10 Volts",
    "Re-Calibrate", "Zero InitFile", "R38 Trim",     "600 V",          "56.7 mV",      "17.475 mV",    "Pt100",
    "20 Ohms",      "200 Ohms",      "2 kOhms",      "20 kOhms",       "200 kOhms"};

struct BoardButtons {
    int board;
    int ids[kPositions];
};

// Step ids of the buttons, position 0 to 16.
constexpr BoardButtons kButtons[] = {
    {kDc, {0, 14, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 16, 4, 15, 1}},
    {kAc, {0, 2, 5, 2, 5, 4, 6, 7, 8, 9, 10, 11, 12, 16, 14, 15, 1}},
    {kAc2, {0, 39, 40, 2, 4, 5, 6, 7, 52, 9, 10, 11, 12, 16, -1, 15, 1}},
    {kAc3, {0, 39, 41, 2, 4, 5, 51, 6, 7, 52, 9, 10, 11, 12, 16, 15, 1}},
    {kLc, {0, 14, 17, 18, 19, 21, 22, 23, 24, 13, 16, -1, -1, -1, 20, 15, 1}},
    {kTemp, {0, 14, 25, 26, 27, 28, 29, 30, 16, -1, -1, -1, -1, -1, 31, 32, 1}},
    {kTc, {0, 14, 25, 53, 28, 54, 30, 16, -1, -1, -1, -1, -1, -1, 31, 32, 1}},
    {kRtd, {0, 14, 2, 55, 56, 57, 58, 59, 60, 16, -1, -1, -1, -1, -1, 32, 1}},
    {kVf, {0, 36, 33, 34, 35, -1, -1, -1, -1, -1, -1, -1, -1, -1, 37, 1, 38}},
};
constexpr int kAnalogRow[kPositions] = {42, -1, 43, 44, 45, 46, -1, 47, 48, -1, 43, 44, 45, 46, -1, 49, 50};

constexpr const char *kBoardNames[] = {"DC", "AC", "LC", "TC", "VF", "AC2", "AC3", "Temp", "RTD", "AN"};

class RangeTables : public testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        ClearFilterCodes();
    }
    void TearDown() override
    {
        InitSessionState();
        ClearFilterCodes();
    }
};

}  // namespace

TEST_F(RangeTables, NameTheBoards)
{
    for (int board = 0; board < 10; ++board) {
        EXPECT_EQ(BoardName(board), kBoardNames[board]);
        EXPECT_EQ(BoardIndex(kBoardNames[board]), board);
    }
    EXPECT_EQ(BoardName(-1), "");
    EXPECT_EQ(BoardName(10), "");
}

TEST_F(RangeTables, CompareBoardNamesExactly)
{
    for (const char *name : {"", "dc", "TEMP", "AC1", "DC ", "AC 2"})
        EXPECT_EQ(BoardIndex(name), -1) << name;
}

TEST_F(RangeTables, PutEachBoardOnItsTab)
{
    const int tabs[] = {0, 1, 2, 3, 4, 1, 1, 3, 3, 9};
    for (int board = 0; board < 10; ++board)
        EXPECT_EQ(TabOfBoard(board), tabs[board]) << board;
    EXPECT_EQ(TabOfBoard(-1), -1);
}

TEST_F(RangeTables, TitleAll61Steps)
{
    static_assert(std::size(kTitles) == Step::kCount);
    for (int id = 0; id < 61; ++id)
        EXPECT_EQ(StepName(id), kTitles[id]) << id;
    EXPECT_EQ(StepName(-1), "");
    EXPECT_EQ(StepName(61), "");
}

TEST_F(RangeTables, GiveEachBoardItsButtons)
{
    static_assert(std::size(kButtons) == 9);
    for (const BoardButtons &row : kButtons) {
        SCType = row.board;
        for (int position = 0; position < kPositions; ++position)
            EXPECT_EQ(StepIdAtPosition(position), row.ids[position]) << kBoardNames[row.board] << " " << position;
    }
}

TEST_F(RangeTables, GiveTheAnalogTabItsOwnButtonsWhateverTheBoard)
{
    CalibTab = kTabAnaCal;
    for (int board = -1; board < 11; ++board) {
        SCType = board;
        for (int position = 0; position < kPositions; ++position)
            EXPECT_EQ(StepIdAtPosition(position), kAnalogRow[position]) << position;
        EXPECT_EQ(StepButtonCount(), 16);
    }
}

TEST_F(RangeTables, HaveNoStepOutsideThePositions)
{
    SCType = kDc;
    for (int tab : {kTabDc, kTabAnaCal}) {
        CalibTab = tab;
        EXPECT_EQ(StepIdAtPosition(-1), -1);
        EXPECT_EQ(StepIdAtPosition(17), -1);
    }
}

TEST_F(RangeTables, CountTheCalibrationPositions)
{
    const int counts[] = {13, 13, 10, 7, 4, 13, 14, 8, 9};
    for (int board = 0; board < 9; ++board) {
        SCType = board;
        EXPECT_EQ(StepButtonCount(), counts[board]) << kBoardNames[board];
    }
}

TEST_F(RangeTables, ListTheRangeCodesOfEachBoard)
{
    const std::vector<std::string> tc = {"60", "65", "40", "41", "48", "49"};
    const std::vector<std::string> ac2 = {"80", "81", "82", "83", "", "90", "91", "92", "93", "84", "80"};
    const std::vector<std::string> codes[] = {
        {"60", "61", "62", "63", "64", "70", "71", "72", "73"},
        {"80", "81", "82", "83", "84", "90", "91", "92", "93", ""},
        {"D0", "D1", "D2", "D3", "D4"},
        tc,
        {"81", "91", "A1"},
        ac2,
        ac2,
        tc,
        {"E0", "50", "51", "52", "53", "54", "55", "56", "57", "E0", "E1", "E2", "E3", "E4"}};
    for (int board = 0; board < 9; ++board) {
        SCType = board;
        for (std::size_t i = 0; i < codes[board].size(); ++i)
            EXPECT_EQ(RangeCodeText(static_cast<int>(i)), codes[board][i]) << kBoardNames[board] << " " << i;
        EXPECT_EQ(RangeCodeText(static_cast<int>(codes[board].size())), "");
        EXPECT_EQ(RangeCodeText(-1), "");
    }
}

TEST_F(RangeTables, KeepAnEmptyCodeAtIndex4OfAc2AndAc3)
{
    for (int board : {kAc2, kAc3}) {
        SCType = board;
        EXPECT_EQ(RangeCodeText(4), "");
        EXPECT_EQ(RangeCodeText(9), "84");
        EXPECT_EQ(RangeCodeIndexAtPosition(board == kAc2 ? 8 : 9), 9) << "600 V";
        EXPECT_EQ(RangeCodeIndexAtPosition(3), 0) << "GND stands on the first 80";
    }
}

TEST_F(RangeTables, TakeTheSecondE0ForThe20OhmRange)
{
    SCType = kRtd;
    const int indexes[] = {0, 0, 0, 1, 9, 10, 11, 12, 13, 0};
    for (int position = 0; position < 10; ++position)
        EXPECT_EQ(RangeCodeIndexAtPosition(position), indexes[position]) << position;
}

TEST_F(RangeTables, TakeTheFirstCodeWhereATableHasNone)
{
    SCType = kDc;
    EXPECT_EQ(RangeCodeIndexAtPosition(15), 0);
    SCType = kVf;
    EXPECT_EQ(RangeCodeIndexAtPosition(9), 0) << "an unused position";
    EXPECT_EQ(RangeCodeIndexAtPosition(17), -1);
    EXPECT_EQ(RangeCodeIndexAtPosition(-1), -1);
}

TEST_F(RangeTables, TakeZeroVoltsWhereATableHasNoValue)
{
    SCType = kDc;
    EXPECT_EQ(CalValueAtPosition(0), "0 V");
    SCType = kAc3;
    EXPECT_EQ(CalValueAtPosition(16), "0 V, 300 Hz");
    SCType = kAc2;
    EXPECT_EQ(CalValueAtPosition(14), "0 V, 300 Hz") << "an unused position";
    EXPECT_EQ(CalValueAtPosition(17), "");
    EXPECT_EQ(CalValueAtPosition(-1), "");
}

TEST_F(RangeTables, AnswerOutsideTheBoardsWithoutAFault)
{
    for (int board : {-1, 9, 10, 1000}) {
        SCType = board;
        EXPECT_EQ(StepIdAtPosition(2), -1);
        EXPECT_EQ(StepButtonCount(), 0);
        EXPECT_EQ(RangeCodeText(0), "");
        EXPECT_EQ(RangeCodeIndexAtPosition(2), -1);
        EXPECT_EQ(NvmWordAtPosition(2), 0);
        EXPECT_EQ(CalValueAtPosition(2), "");
        EXPECT_EQ(TargetCountsAtPosition(2), 0);
        EXPECT_EQ(FilterCodeAtPosition(2), "00118");
        EXPECT_EQ(DefaultFilterAt(board, 2).key, "");
    }
}

TEST_F(RangeTables, TakeSamplesByTheStepAndForTwoStepsByTheBoard)
{
    for (int board = 0; board < 9; ++board) {
        SCType = board;
        const bool ac = board == kAc || board == kAc2 || board == kAc3;
        for (int id = -1; id < 62; ++id) {
            int expected = 4;
            if (id == 2)
                expected = board == kDc || board == kRtd ? 10 : 4;
            else if (id == 12)
                expected = ac ? 16 : 4;
            else if (id == 17 || id == 18 || id == 25 || id == 28)
                expected = 10;
            else if (id == 21 || id == 24)
                expected = 2;
            else if (id == 22)
                expected = 8;
            else if (id == 55)
                expected = 1;
            EXPECT_EQ(SampleCountForStep(id), expected) << kBoardNames[board] << " " << id;
        }
    }
}

TEST_F(RangeTables, GiveTheDefaultOfABadFilterCodeWhereAPositionHasNone)
{
    SCType = kDc;
    EXPECT_EQ(FilterCodeAtPosition(0), "00118");
    SetFilterCode(kDc, 2, "0010");
    EXPECT_EQ(FilterCodeAtPosition(2), "00118");
    SetFilterCode(kDc, 2, "00106");
    EXPECT_EQ(FilterCodeAtPosition(2), "00106");
    EXPECT_EQ(FilterCodeAtPosition(-1), "00118");
    EXPECT_EQ(FilterCodeAtPosition(17), "00118");
    SetFilterCode(-1, 2, "00106");
    SetFilterCode(10, 2, "00106");
    SetFilterCode(kDc, 17, "00106");
    SCType = kAc;
    EXPECT_EQ(FilterCodeAtPosition(2), "00118") << "another board's";
}
