#include "model/images.h"

#include <gtest/gtest.h>

#include "model/nominals.h"
#include "session/state.h"
#include "support/factory_images.h"

using namespace ombrix;

namespace {

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
    static_assert(std::size(test::kFactoryImages) == 9);
    for (const test::FactoryImage &image : test::kFactoryImages) {
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
