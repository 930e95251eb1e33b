#include "model/images.h"

#include <gtest/gtest.h>

#include "model/nominals.h"
#include "session/state.h"

using namespace ombrix;

namespace {

struct BoardImage {
    int board;
    const char *text;
};

constexpr BoardImage kImages[] = {
    {kDc, "00000000000000000ED60600066090003400009C00003E00400046005000BB00ACA9726A7EE0"
          "75B574007F5D7F527628894880000000000000000000000052A7000000000000000105030000"
          "21D1653600602000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kAc, "00000000000000000ED606000000000000000000000000000000000000000000800080008000"
          "8000000080008000800080008000000000000000000000008000000000000000000205030000"
          "21D1653600802000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kAc2, "00000000000000000ED606000000000000000000000000000000000000000000800080008000"
           "8000000080008000800080008000000000000000000000008000000000000000001205030000"
           "21D1653600802000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kAc3, "00000000000000000ED606000000000000000000000000000000000000000000800080008000"
           "8000000080008000800080008000000000000000000000008000000000000000002205030000"
           "21D1653600802000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kLc, "00000000000000000ED60600066090003400009C000000000000000000000000000000000000"
          "00000000A90074D06D506DA08000000000000000000000008000000000000000000305040000"
          "21D1653600C02000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kTc, "00000000000000000ED60600000000000000000047086DE80000000000000000000000000000"
          "000055385538553847084708470880006F100000000000008000000000000000003105020000"
          "21D1653600402000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kTemp, "00000000000000000ED60600000000000000000047086DE80000800080008000800080008000"
            "800055385538553847084708470880006F100000000000008000000000000000000105020000"
            "21D1653600402000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kRtd, "00000000000000000ED606000000000000000000000000000000000000000000470880008000"
           "8000000055385538470847084708000000000000000000008000000000000000004105020000"
           "21D1653600502000004E20000000004E20004E200000000000000000001000040007D00003E8"},
    {kVf, "0000000000000000000000002A010E000000000155110000001E001E0000000021D165360081"
          "20000186A00000000000000000000000001000010000001000010007D00003E80186A00186A0"
          "0000000000000186A00186A0000000000000"},
};

class Images : public testing::Test
{
protected:
    void SetUp() override { InitNominals(); }
    void TearDown() override { InitNominals(); }
};

// Word w of an image that begins with word 56.
std::string WordOf(const std::string &image, int word)
{
    return image.substr(static_cast<std::size_t>(56 - word) * 4, 4);
}

}  // namespace

TEST_F(Images, AreTheFactorysBeforeAnyLearning)
{
    static_assert(std::size(kImages) == 9);
    for (const BoardImage &image : kImages) {
        EXPECT_EQ(DefaultInitImage(image.board), image.text) << image.board;
        EXPECT_EQ(BoardInitImage(image.board), image.text) << image.board;
    }
}

TEST_F(Images, HaveTheirLengths)
{
    for (int board = kDc; board <= kRtd; ++board)
        EXPECT_EQ(BoardInitImage(board).size(), board == kVf ? 188u : 228u) << board;
    for (int board : {-1, static_cast<int>(kAn), 10}) {
        EXPECT_EQ(BoardInitImage(board), "");
        EXPECT_EQ(DefaultInitImage(board), "");
    }
}

TEST_F(Images, HoldTheNominalWordsFromWord50To25)
{
    for (int board = kDc; board <= kRtd; ++board)
        for (int word = 25; word <= 50 && board != kVf; ++word)
            EXPECT_EQ(WordOf(DefaultInitImage(board), word), DefaultNominalWordOf(board, word)) << board << " " << word;
}

TEST_F(Images, TakeTheLearnedWords)
{
    SetNominalWordOf(kDc, 25, "1234");
    SetNominalWordOf(kDc, 50, "4321");
    EXPECT_EQ(WordOf(BoardInitImage(kDc), 25), "1234");
    EXPECT_EQ(WordOf(BoardInitImage(kDc), 50), "4321");
    EXPECT_EQ(WordOf(BoardInitImage(kDc), 51), "0600");
    EXPECT_EQ(WordOf(BoardInitImage(kDc), 24), "0000");
    EXPECT_EQ(WordOf(DefaultInitImage(kDc), 25), "52A7");
    EXPECT_EQ(WordOf(BoardInitImage(kLc), 25), "8000");
    SetNominalWordOf(kVf, 195, "123456789ABC");
    EXPECT_EQ(BoardInitImage(kVf), DefaultInitImage(kVf));
}

TEST_F(Images, GiveCompanionsTheWordOfTheirLeader)
{
    for (int board : {kTc, kTemp}) {
        SetNominalWordOf(board, 33, "3333");
        SetNominalWordOf(board, 36, "6666");
        SetNominalWordOf(board, 31, "BAD0");
        for (int word : {33, 32, 31, 46})
            EXPECT_EQ(WordOf(BoardInitImage(board), word), "3333") << board << " " << word;
        for (int word : {36, 35, 34})
            EXPECT_EQ(WordOf(BoardInitImage(board), word), "6666") << board << " " << word;
    }
    SetNominalWordOf(kRtd, 31, "1111");
    SetNominalWordOf(kRtd, 37, "7777");
    for (int word : {31, 40})
        EXPECT_EQ(WordOf(BoardInitImage(kRtd), word), "1111") << word;
    for (int word : {37, 38, 39})
        EXPECT_EQ(WordOf(BoardInitImage(kRtd), word), "7777") << word;
    EXPECT_EQ(WordOf(BoardInitImage(kRtd), 33), "4708");

    SetNominalWordOf(kDc, 33, "3333");
    EXPECT_EQ(WordOf(BoardInitImage(kDc), 32), "8948") << "DC has no companions";
}
