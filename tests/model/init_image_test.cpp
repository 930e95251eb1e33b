#include "model/init_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/images.h"
#include "model/nominals.h"
#include "session/state.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace ombrix;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A meter that holds what was written but for one digit, at a place of the image.
struct Reply {
    int place;
    bool proven;
};

class InitImage : public testing::Test
{
protected:
    void SetUp() override { InitNominals(); }

    static std::vector<WordRun> RunsOf(int board) { return RunsOfInit(board, DefaultInitImage(board)); }

    static std::vector<std::string> TextsOf(const std::vector<WordRun> &runs)
    {
        std::vector<std::string> texts;
        for (const WordRun &run : runs)
            texts.push_back(run.text);
        return texts;
    }

    // The replies of a meter that differs at one place of the image, counted from 1 over all its runs.
    static std::vector<std::string> DifferingAt(int board, std::size_t place)
    {
        std::vector<std::string> replies = TextsOf(RunsOf(board));
        for (std::size_t run = 1; run < replies.size(); ++run) {
            if (place <= replies[run].size()) {
                char &digit = replies[run][place - 1];
                digit = digit == '0' ? '1' : '0';
                return replies;
            }
            place -= replies[run].size();
        }
        ADD_FAILURE() << "the image has no such place";
        return replies;
    }

    static std::vector<int> Differing(int board, const std::vector<std::string> &replies)
    {
        return DifferingWords(board, RunsOf(board), replies);
    }
};

}  // namespace

TEST_F(InitImage, IsWrittenBehindAZeroInWord117)
{
    const auto runs = RunsOf(kDc);
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].word, 117);
    EXPECT_EQ(runs[0].text, "0000");
    EXPECT_EQ(runs[1].word, 56);
    EXPECT_EQ(runs[1].text, DefaultInitImage(kDc));
}

TEST_F(InitImage, OfVfIsWrittenInThreeRunsBehindTheNominalTextsOfItsRanges)
{
    const auto runs = RunsOf(kVf);
    ASSERT_EQ(runs.size(), 4U);
    EXPECT_EQ(runs[0].word, 201);
    EXPECT_EQ(runs[0].text, "FF77451428F6FFD9B81028F6FFD9B8100000");
    const int words[] = {49, 40, 17};
    const std::size_t counts[] = {6, 23, 18};
    std::string image;
    for (std::size_t run = 1; run < runs.size(); ++run) {
        EXPECT_EQ(runs[run].word, words[run - 1]);
        EXPECT_EQ(runs[run].text.size(), counts[run - 1] * 4);
        image += runs[run].text;
    }
    EXPECT_EQ(image, DefaultInitImage(kVf));
    SetNominalWordOf(kVf, 198, "123456789ABC");
    EXPECT_EQ(RunsOf(kVf)[0].text, "FF77451428F6123456789ABCFFD9B8100000") << "as learned";
}

TEST_F(InitImage, IsProvenByAMeterThatHoldsItAll)
{
    for (int board = kDc; board <= kRtd; ++board)
        EXPECT_THAT(Differing(board, TextsOf(RunsOf(board))), IsEmpty()) << board;
}

TEST_F(InitImage, IsProvenWhateverTheHighByteOfTheFilterWordSays)
{
    constexpr Reply kPlain[] = {{1, false},   {156, false}, {157, true}, {158, true},
                                {159, false}, {160, false}, {228, false}};
    for (const Reply &reply : kPlain)
        for (int board : {kDc, kAc, kLc, kTc, kAc2, kAc3, kTemp, kRtd})
            EXPECT_EQ(Differing(board, DifferingAt(board, static_cast<std::size_t>(reply.place))).empty(), reply.proven)
                << board << " at " << reply.place;
    constexpr Reply kOfVf[] = {{1, false},  {68, false},  {69, true},  {70, true},
                               {71, false}, {157, false}, {188, false}};
    for (const Reply &reply : kOfVf)
        EXPECT_EQ(Differing(kVf, DifferingAt(kVf, static_cast<std::size_t>(reply.place))).empty(), reply.proven)
            << reply.place;
}

TEST_F(InitImage, IsNotProvenBesideAnotherWordThanWasWritten)
{
    std::vector<std::string> replies = TextsOf(RunsOf(kDc));
    replies[0] = "0001";
    EXPECT_THAT(Differing(kDc, replies), ElementsAre(117));
    replies[0] = "";
    EXPECT_THAT(Differing(kDc, replies), ElementsAre(117));
    std::vector<std::string> groups = TextsOf(RunsOf(kVf));
    groups[0][4] = '9';
    EXPECT_THAT(Differing(kVf, groups), ElementsAre(200));
}

TEST_F(InitImage, NamesTheWordsThatDiffer)
{
    EXPECT_THAT(Differing(kDc, DifferingAt(kDc, 1)), ElementsAre(56));
    EXPECT_THAT(Differing(kDc, DifferingAt(kDc, 159)), ElementsAre(17));
    EXPECT_THAT(Differing(kDc, DifferingAt(kDc, 228)), ElementsAre(0));
    EXPECT_THAT(Differing(kVf, DifferingAt(kVf, 24)), ElementsAre(44));
    EXPECT_THAT(Differing(kVf, DifferingAt(kVf, 25)), ElementsAre(40));
    EXPECT_THAT(Differing(kVf, DifferingAt(kVf, 117)), ElementsAre(17)) << "only word 29 is VF's filter word";
}

TEST_F(InitImage, OfASilentMeterOrAReplyOfAnotherLengthDiffersInEachWordOfTheRun)
{
    std::vector<std::string> replies = TextsOf(RunsOf(kDc));
    for (const std::string &text : {std::string(), replies[1].substr(0, 224), replies[1] + "0"}) {
        replies[1] = text;
        EXPECT_EQ(Differing(kDc, replies).size(), 57U) << text.size();
    }
    EXPECT_EQ(Differing(kDc, {"0000"}).size(), 57U) << "no reply at all";
}

TEST_F(InitImage, ListsWordsWithTheirRunsInOne)
{
    EXPECT_EQ(WordList({}), "");
    EXPECT_EQ(WordList({17}), "17");
    EXPECT_EQ(WordList({17, 16}), "17, 16");
    EXPECT_EQ(WordList({117, 56, 55, 54, 0}), "117, 56 to 54, 0");
    EXPECT_EQ(WordList({50, 48, 46, 44, 42, 40, 38, 36, 34, 32, 31, 30}), "50, 48, 46, 44, 42, 40, 38, 36 and 4 more");
    EXPECT_EQ(WordList(Differing(kDc, {"0000"})), "56 to 0");
}

TEST_F(InitImage, ShowsItsLast120DigitsWithoutTheCalibrationAmongThem)
{
    EXPECT_EQ(InitDisplayText(kDc, DefaultInitImage(kDc)),
              "0000000000000000000000000000000000010503000021D16536006020000"
              "04E20000000004E20004E200000000000000000001000040007D00003E8");
    const std::string counted = InitDisplayText(kDc, std::string(108, '7') + std::string(120, '8'));
    EXPECT_EQ(counted, std::string(12, '8') + "00000000" + std::string(100, '8'));
}

TEST_F(InitImage, OfVfIsShownAtThePlacesOfTheOthers)
{
    // The digit at place k is the last digit of k.
    std::string image;
    for (int place = 1; place <= 188; ++place)
        image += "0123456789ABCDEF"[place % 16];
    EXPECT_EQ(InitDisplayText(kVf, image), "00000000000000005678DEF012345678DE0000BC9ABC123456789ABCDEF0"
                                           "123456789ABC56789ABCDEF0123456789ABC56789ABCDEF0123456789ABC");
}
