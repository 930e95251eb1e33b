#include "model/nominals.h"

#include <gtest/gtest.h>

#include <limits>

#include "session/state.h"

using namespace ombrix;

namespace {

class Nominals : public testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        InitNominals();
        SCType = kDc;
    }
    void TearDown() override
    {
        InitSessionState();
        InitNominals();
    }
};

}  // namespace

TEST_F(Nominals, HaveTheSlopesOfAGoodMeter)
{
    // By board: DC, AC, LC, TC, VF, AC2, AC3, Temp, RTD, AN.
    const struct {
        int word;
        float slopes[kBoards];
    } rows[] = {
        {25, {3.296f, 0, 3.277f, 0, 0, 0, 0, 0, 0, 0}},
        {26, {9.737f, 31.4f, 4.7f, 11.3f, 0, 31.4f, 31.4f, 11.3f, 11.3f, 0}},
        {27, {}},
        {28, {}},
        {29, {0, 0, 0, 10, 0, 0, 0, 10, 0, 0}},
        {30, {0, 0, 12.2f, 0, 0, 0, 0, 0, 0, 0}},
        {31, {3.226f, 3.25f, 3.277f, 0, 0, 3.25f, 3.25f, 0, 3.0945f, 0}},
        {32, {3.35f, 4.8f, 3.218f, 0, 0, 4.8f, 4.8f, 0, 3.0945f, 0}},
        {33, {3.153f, 3.35f, 3.217f, 3.0945f, 0, 3.35f, 3.35f, 3.0945f, 3.0945f, 0}},
        {34, {3.317f, 3.5f, 3.241f, 0, 0, 3.5f, 3.5f, 0, 3.1399f, 0}},
        {35, {9.91f, 6.6f, 3.408f, 0, 0, 6.6f, 6.6f, 0, 3.1399f, 0}},
        {36, {0, 0, 0, 3.1399f, 0, 0, 0, 3.1399f, 0, 0}},
        {37, {3.242f, 4.1f, 0, 0, 0, 4.1f, 4.1f, 0, 3.0945f, 0}},
        {38, {3.274f, 4.4f, 0, 0, 0, 4.4f, 4.4f, 0, 0, 0}},
        {39, {3.174f, 3.1f, 0, 0, 0, 3.1f, 3.1f, 0, 0, 0}},
        {40, {14.11f, 3.7f, 0, 0, 0, 3.7f, 3.7f, 0, 0, 0}},
        {41, {}},
        {42, {}},
        {43, {}},
        {44, {}},
        {45, {0, 0, 0, 10, 0, 0, 0, 10, 0, 0}},
        {46, {}},
        {47, {0, 0, 0, 11.3f, 0, 0, 0, 11.3f, 0, 0}},
        {48, {}},
        {49, {}},
        {50, {}},
    };
    int above = 0;
    for (const auto &row : rows)
        for (int board = 0; board < kBoards; ++board) {
            EXPECT_EQ(DefaultSlopeOf(board, row.word), row.slopes[board]) << board << " " << row.word;
            EXPECT_EQ(NominalSlopeOf(board, row.word), row.slopes[board]) << board << " " << row.word;
            above += row.slopes[board] > 0;
        }
    EXPECT_EQ(above, 68);
}

TEST_F(Nominals, HaveNoSlopeOutsideTheWordsAndBoards)
{
    for (int word : {0, 24, 51, 195, -1})
        EXPECT_EQ(GetNominalSlope(word), 0) << word;
    for (int board : {-1, 10}) {
        SCType = board;
        EXPECT_EQ(GetNominalSlope(25), 0);
        SetNominalSlope(25, 5);
    }
    SCType = kDc;
    SetNominalSlope(24, 5);
    SetNominalSlope(51, 5);
    EXPECT_FALSE(SlopesDirty);
}

TEST_F(Nominals, AreDirtyOnlyWhenASlopeDiffers)
{
    SetNominalSlope(25, 3.296f);
    EXPECT_FALSE(SlopesDirty);
    SetNominalSlope(25, 3.297f);
    EXPECT_TRUE(SlopesDirty);
    EXPECT_EQ(GetNominalSlope(25), 3.297f);
    EXPECT_EQ(NominalSlopeOf(kLc, 25), 3.277f) << "another board's";
    EXPECT_EQ(DefaultSlopeOf(kDc, 25), 3.296f);
    InitNominals();
    EXPECT_EQ(GetNominalSlope(25), 3.296f);
    EXPECT_FALSE(SlopesDirty);
}

TEST_F(Nominals, TakeNoSlopeThatIsNoNumber)
{
    SetNominalSlope(25, std::numeric_limits<float>::infinity());
    SetNominalSlope(25, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(GetNominalSlope(25), 3.296f);
    EXPECT_FALSE(SlopesDirty);
}

TEST_F(Nominals, AreDirtyOnlyWhenAWordDiffers)
{
    SetNominalWord(25, "52A7");
    EXPECT_FALSE(NominalDirty);
    SetNominalWord(25, "52A8");
    EXPECT_TRUE(NominalDirty);
    EXPECT_EQ(GetNominalWord(25), "52A8");
    EXPECT_EQ(NominalWordOf(kLc, 25), "8000") << "another board's";
    EXPECT_EQ(DefaultNominalWordOf(kDc, 25), "52A7");
}

TEST_F(Nominals, HaveNoWordOutside25To50)
{
    for (int word : {0, 24, 51, 195, -1}) {
        SetNominalWord(word, "1234");
        EXPECT_EQ(GetNominalWord(word), "0000") << word;
    }
    for (int board : {-1, 10}) {
        SCType = board;
        SetNominalWord(25, "1234");
        EXPECT_EQ(GetNominalWord(25), "0000");
    }
    EXPECT_FALSE(NominalDirty);
}

TEST_F(Nominals, TakeNoTextThatIsNoWord)
{
    for (const char *text : {"", "123", "12345", "12G4", "52a8", "123456789ABC"})
        SetNominalWord(25, text);
    EXPECT_EQ(GetNominalWord(25), "52A7");
    SCType = kVf;
    for (const char *text : {"", "1234", "12345678ABCDE", "12345678ABCX"})
        SetNominalWord(195, text);
    EXPECT_EQ(GetNominalWord(195), "FFD9B8100000");
    EXPECT_FALSE(NominalDirty);
}

TEST_F(Nominals, HaveThreeGroupsOnVf)
{
    SCType = kVf;
    EXPECT_EQ(GetNominalWord(195), "FFD9B8100000");
    EXPECT_EQ(GetNominalWord(198), "FFD9B81028F6");
    EXPECT_EQ(GetNominalWord(201), "FF77451428F6");
    SetNominalWord(198, "00000A100001");
    EXPECT_EQ(GetNominalWord(195), "FFD9B8100000");
    EXPECT_EQ(GetNominalWord(198), "00000A100001");
    EXPECT_EQ(GetNominalWord(201), "FF77451428F6");
    EXPECT_TRUE(NominalDirty);
    EXPECT_EQ(FirstCyclePattern(1), "FFD9B81028F6") << "the patterns stay";
}

TEST_F(Nominals, HaveAConstantForAnyOtherWordOnVf)
{
    SCType = kVf;
    for (int word : {0, 25, 50, 194, 196, 197, 199, 200, 202}) {
        SetNominalWord(word, "123456789ABC");
        SetNominalWord(word, "1234");
        EXPECT_EQ(GetNominalWord(word), "000000100000") << word;
    }
    EXPECT_FALSE(NominalDirty);
}

TEST_F(Nominals, HaveThePatternsOfTheVfRanges)
{
    EXPECT_EQ(FirstCyclePattern(0), "FFD9B8100000");
    EXPECT_EQ(FirstCyclePattern(1), "FFD9B81028F6");
    EXPECT_EQ(FirstCyclePattern(2), "FF77451428F6");
    EXPECT_EQ(FirstCyclePattern(-1), "");
    EXPECT_EQ(FirstCyclePattern(3), "");
}
