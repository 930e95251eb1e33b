#include "model/nvm_fields.h"

#include "model/nvm_map.h"
#include "platform/text.h"
#include "session/state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ombrix;

namespace {

constexpr int kTop = 63;    // the calibration page: words 63 to 25
constexpr int kVfTop = 49;  // the counter's page: words 49 to 0

// Places as they are counted on paper, from 1. A width of 0: the field is not there.
struct Placed {
    const char *address;
    int width;
    int place;
};
struct PlacedRow {
    int field;
    Placed on[3];  // DC and LC, AC family, TC tab
};
struct VfRow {
    int field;
    const char *name;
    const char *address;
    int width;
    int place;
};
struct SaveRow {
    int top;
    const char *changed;
    std::vector<NvmRun> writes;
};

// clang-format off
constexpr PlacedRow kPlaces[] = {
    {0, {{"19", 4, 153}, {"19", 4, 153}, {"19", 4, 153}}},
    {1, {{"1A", 4, 149}, {"1A", 4, 149}, {"1A", 4, 149}}},
    {2, {{"1B", 4, 145}, {"1B", 4, 145}, {"1B", 4, 145}}},
    {3, {{"1CL", 2, 143}, {"1CL", 2, 143}, {"1C", 4, 141}}},
    {4, {{"1D", 6, 137}, {"1D", 6, 137}, {"1D", 4, 137}}},
    {5, {{"1E", 4, 133}, {"1E", 4, 133}, {"1E", 4, 133}}},
    {6, {{"1F", 4, 129}, {"1F", 4, 129}, {"1F", 4, 129}}},
    {7, {{"20", 4, 125}, {"20", 4, 125}, {"20", 4, 125}}},
    {8, {{"21", 4, 121}, {"21", 4, 121}, {"21", 4, 121}}},
    {9, {{"22", 4, 117}, {"22", 4, 117}, {"22", 4, 117}}},
    {10, {{"23", 4, 113}, {"23", 4, 113}, {"23", 4, 113}}},
    {11, {{"24", 4, 109}, {"24", 4, 109}, {"24", 4, 109}}},
    {12, {{"25", 4, 105}, {"25", 4, 105}, {"25", 4, 105}}},
    {13, {{"26", 4, 101}, {"26", 4, 101}, {"26", 4, 101}}},
    {14, {{"27", 4, 97}, {"27", 4, 97}, {"27", 4, 97}}},
    {15, {{"28", 4, 93}, {"28", 4, 93}, {"28", 4, 93}}},
    {16, {{"29", 4, 89}, {"29", 4, 89}, {"29", 4, 89}}},
    {17, {{"2A", 4, 85}, {"2A", 4, 85}, {"2A", 4, 85}}},
    {18, {{"2B", 4, 81}, {"2B", 4, 81}, {"2B", 4, 81}}},
    {19, {{"2C", 4, 77}, {"2C", 4, 77}, {"2C", 4, 77}}},
    {20, {{"2D", 4, 73}, {"2D", 4, 73}, {"2D", 4, 73}}},
    {21, {{"2E", 4, 69}, {"2E", 4, 69}, {"2E", 4, 69}}},
    {22, {{"2FL", 2, 67}, {"2F", 4, 65}, {"2F", 4, 65}}},
    {23, {{"2F", 2, 65}, {"", 0, 0}, {"", 0, 0}}},
    {24, {{"30", 4, 61}, {"30", 4, 61}, {"30", 4, 61}}},
    {25, {{"31", 4, 57}, {"31", 4, 57}, {"31", 4, 57}}},
    {26, {{"32", 4, 53}, {"32", 4, 53}, {"32", 4, 53}}},
    {27, {{"33L", 2, 51}, {"33L", 2, 51}, {"33L", 2, 51}}},
    {28, {{"33", 2, 49}, {"33", 2, 49}, {"33", 2, 49}}},
    {29, {{"34L", 2, 47}, {"34L", 2, 47}, {"34L", 2, 47}}},
    {30, {{"34", 2, 45}, {"34", 2, 45}, {"34", 2, 45}}},
    {31, {{"", 0, 0}, {"37L", 2, 35}, {"", 0, 0}}},
    {32, {{"", 0, 0}, {"37", 2, 33}, {"", 0, 0}}},
    {33, {{"", 0, 0}, {"38L", 2, 31}, {"", 0, 0}}},
    {34, {{"", 0, 0}, {"38", 2, 29}, {"", 0, 0}}},
};
constexpr VfRow kVfRows[] = {
    {35, "LOWIN1", "01L", 6, 195},
    {36, "LOWRD1", "02H", 6, 189},
    {37, "HI_IN1", "04L", 6, 183},
    {38, "HI_RD1", "05H", 6, 177},
    {39, "LOWIN2", "07L", 6, 171},
    {40, "LOWRD2", "08H", 6, 165},
    {41, "HI_IN2", "0AL", 6, 159},
    {42, "HI_RD2", "0BH", 6, 153},
    {43, "SETPT1", "0DL", 6, 147},
    {44, "SETPT2", "0EH", 6, 141},
    {45, "SCALE1", "10L", 6, 135},
    {46, "OFFST1", "11H", 6, 129},
    {47, "SCALE2", "13L", 6, 123},
    {48, "OFFST2", "14H", 6, 117},
    {49, "DEVTN1", "16L", 6, 111},
    {50, "DEVTN2", "17H", 6, 105},
    {51, "ANLOW", "19L", 6, 99},
    {52, "ANHIGH", "1AH", 6, 93},
    {53, "ALCNF", "1B", 4, 89},
    {54, "INPTYPE", "1CL", 2, 87},
    {55, "SETUP", "1CH", 2, 85},
    {56, "FILTER", "1DL", 2, 83},
    {57, "OPTIONS", "1DH", 2, 81},
    {58, "SERCNF1", "1EL", 2, 79},
    {59, "SERCNF2", "1EH", 2, 77},
    {60, "SERCNF3", "1FL", 2, 75},
    {61, "CONFIG", "1FH", 2, 73},
    {62, "LOCKOUT", "20", 4, 69},
    {63, "GATETIM", "21", 4, 65},
    {64, "TIMEOUT", "22", 4, 61},
    {65, "BATCH", "23L", 2, 59},
    {66, "SOURCE", "23H", 2, 57},
    {67, "ANASET", "24L", 2, 55},
    {68, "SCALEMUL", "24H", 2, 53},
    {69, "PULSES", "25", 4, 49},
    {70, "SLOPE", "26L", 2, 47},
    {71, "Spare", "26H", 2, 45},
    {72, "RESOLUTN", "27L", 2, 43},
    {73, "SECRET", "27H", 2, 41},
    {74, "SYSDP", "28L", 2, 39},
    {75, "RECOGCHR", "28H", 2, 37},
    {76, "SERNO1", "29L", 2, 35},
    {77, "SERNO2", "29H", 2, 33},
    {78, "SERNO3", "2AL", 2, 31},
    {79, "SERNO4", "2AH", 2, 29},
    {80, "CALIB", "2B", 4, 25},
    {81, "TOTALA1:2", "2C", 4, 21},
    {82, "TOTALA3:4", "2D", 4, 17},
    {83, "TOTALA5:6", "2E", 4, 13},
    {84, "TOTALB1:2", "2F", 4, 9},
    {85, "TOTALB3:4", "30", 4, 5},
    {86, "TOTALB5:6", "31", 4, 1},
};
const SaveRow kSaves[] = {
    {49, "none", {}},
    {49, "49", {{49, 1}}},
    {49, "0", {{0, 1}}},
    {49, "25", {{25, 1}}},
    {49, "49, 0", {{49, 1}, {0, 1}}},
    {49, "49, 9", {{49, 1}, {9, 1}}},
    {49, "49, 14", {{49, 1}, {14, 1}}},
    {49, "49, 15", {{49, 35}}},
    {49, "49, 16", {{49, 34}}},
    {49, "40, 5", {{40, 1}, {5, 1}}},
    {49, "40, 4", {{40, 1}, {4, 1}}},
    {49, "49-47", {{49, 3}}},
    {49, "49-0", {{49, 50}}},
    {49, "35-0", {{35, 36}}},
    {49, "49-14", {{49, 36}}},
    {49, "49-25", {{49, 25}}},
    {49, "49, 40, 30, 20, 10, 0", {{49, 10}, {30, 31}}},
    {49, "49, 25, 1", {{49, 1}, {25, 25}}},
    {49, "49, 25, 0", {{49, 25}, {0, 1}}},
    {49, "49, 24, 0", {{49, 1}, {24, 25}}},
    {49, "49, 33, 17, 1", {{49, 1}, {33, 33}}},
    {49, "49, 37, 25, 13, 1", {{49, 49}}},
    {49, "49, 46, 10, 7", {{49, 4}, {10, 4}}},
    {49, "49, 30-28, 0", {{49, 22}, {0, 1}}},
    {49, "49-48, 20-19, 0", {{49, 2}, {20, 21}}},
    {49, "49, 45-44, 10, 5, 0", {{49, 6}, {10, 11}}},
    {49, "49, 13-12, 0", {{49, 1}, {13, 14}}},
    {49, "49, 36, 0", {{49, 14}, {0, 1}}},
    {49, "49, 12, 0", {{49, 1}, {12, 13}}},
    {49, "49-48, 10-7, 0", {{49, 2}, {10, 11}}},
    {49, "49-14, 0", {{49, 50}}},
    {49, "49, 36-1", {{49, 49}}},
    {49, "49, 35-1", {{49, 1}, {35, 35}}},
    {49, "49, 35, 20-1", {{49, 15}, {20, 20}}},
    {49, "48, 46, 44, 42, 40, 38, 36, 34, 32, 30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0", {{48, 49}}},
    {49, "49, 47, 45, 43, 41, 39, 37, 35, 33, 31, 29, 27, 25, 23, 21, 19, 17, 15, 13, 11, 9, 7, 5, 3, 1", {{49, 49}}},
    {49, "40-38, 5-3", {{40, 3}, {5, 3}}},
    {49, "49, 44, 39, 34, 29, 24, 19, 14, 9, 4", {{49, 46}}},
    {49, "40, 22, 4", {{40, 1}, {22, 19}}},
    {49, "41, 22, 4-3", {{41, 1}, {22, 20}}},
    {49, "49, 31, 13, 0", {{49, 1}, {31, 32}}},
    {49, "49, 32, 15, 0", {{49, 1}, {32, 33}}},
    {49, "43-41", {{43, 3}}},
    {49, "49, 14-13", {{49, 1}, {14, 2}}},
    {49, "49-48, 13-12", {{49, 2}, {13, 2}}},
    {49, "49, 31-30, 12-11", {{49, 1}, {31, 21}}},
    {49, "45-44, 25-24, 4", {{45, 22}, {4, 1}}},
    {49, "49, 47, 30, 13", {{49, 3}, {30, 18}}},
    {49, "49, 30, 11-10", {{49, 1}, {30, 21}}},
    {49, "49, 46, 28, 10", {{49, 4}, {28, 19}}},
    {63, "none", {}},
    {63, "63", {{63, 1}}},
    {63, "25", {{25, 1}}},
    {63, "31, 26", {{31, 6}}},
    {63, "32", {{32, 1}}},
    {63, "56, 25", {{56, 32}}},
    {63, "55, 25", {{55, 31}}},
    {63, "52-50, 26", {{52, 27}}},
    {63, "63, 25", {{63, 1}, {25, 1}}},
    {63, "63-62, 28", {{63, 2}, {28, 1}}},
    {63, "63, 29-27", {{63, 1}, {29, 3}}},
    {63, "56-55, 52-50, 48-47, 40-28, 26-25", {{56, 32}}},
    {63, "46, 33-31", {{46, 16}}},
};
// clang-format on

struct BoardOnTab {
    int column;
    int tab;
    int board;
};
constexpr BoardOnTab kBoardsOnTabs[] = {{0, kTabDc, kDc},  {0, kTabLc, kLc}, {1, kTabAc, kAc},   {1, kTabAc, kAc2},
                                        {1, kTabAc, kAc3}, {2, kTabTc, kTc}, {2, kTabTc, kTemp}, {2, kTabTc, kRtd}};

// "49-47, 9": the words of a table row.
std::vector<int> WordsOf(const std::string &text)
{
    std::vector<int> words;
    if (text == "none")
        return words;
    for (const std::string &part : Split(text, ',')) {
        const std::vector<std::string> ends = Split(Trim(part), '-');
        for (int word = std::stoi(ends.front()); word >= std::stoi(ends.back()); --word)
            words.push_back(word);
    }
    return words;
}

// Each word of an image as its own number, so that a cut shows where it was made.
std::string NumberedImage(int top, int bottom)
{
    std::string image;
    for (int word = top; word >= bottom; --word)
        image += HexText(word, 4);
    return image;
}

std::string WithWordsChanged(std::string image, int top, const std::vector<int> &words)
{
    for (const int word : words)
        image[static_cast<std::size_t>(top - word) * 4] = 'F';
    return image;
}

}  // namespace

namespace ombrix {
void PrintTo(const NvmRun &run, std::ostream *out)
{
    *out << run.count << " words at " << run.start;
}
}  // namespace ombrix

TEST(NvmFields, StandWhereEachTabHasThem)
{
    for (const BoardOnTab &at : kBoardsOnTabs)
        for (const PlacedRow &row : kPlaces) {
            SCOPED_TRACE("field " + std::to_string(row.field) + " on board " + std::to_string(at.board));
            const bool overload = row.field >= 31;
            const Placed &wanted = row.on[at.column];
            const NvmField field = NvmFieldAt(row.field, at.tab, at.board);
            if (wanted.width == 0 || (overload && at.board == kAc)) {
                EXPECT_EQ(field.width, 0);
                continue;
            }
            EXPECT_EQ(field.address, wanted.address);
            EXPECT_EQ(field.width, wanted.width);
            EXPECT_EQ(NvmFieldPlace(field, kTop) + 1, wanted.place);
            EXPECT_EQ(field.name, NvmRowAt(row.field, at.tab, at.board).name);
        }
}

TEST(NvmFields, OfACounterCoverEveryDigitOnce)
{
    std::string covered(200, '.');
    for (const VfRow &row : kVfRows) {
        SCOPED_TRACE(row.name);
        const NvmField field = NvmFieldAt(row.field, kTabVf, kVf);
        EXPECT_EQ(field.name, row.name);
        EXPECT_EQ(field.address, row.address);
        EXPECT_EQ(field.width, row.width);
        EXPECT_EQ(NvmFieldPlace(field, kVfTop) + 1, row.place);
        for (int at = 0; at < field.width; ++at)
            ++covered[NvmFieldPlace(field, kVfTop) + at];
    }
    EXPECT_EQ(covered, std::string(200, '/')) << "one step from '.' to '/'";
}

TEST(NvmFields, OutsideTheirNumbersAreNone)
{
    EXPECT_EQ(NvmFieldAt(-1, kTabDc, kDc).width, 0);
    EXPECT_EQ(NvmFieldAt(kNvmFields, kTabVf, kVf).width, 0);
    EXPECT_EQ(NvmFieldAt(3, kTabAnaCal, kDc).width, 0);
}

TEST(NvmFields, AreReadAndReplacedAtTheirPlace)
{
    const std::string image = NumberedImage(kTop, 25);
    const NvmField rd0 = NvmFieldAt(4, kTabDc, kDc);
    EXPECT_EQ(NvmFieldText(image, rd0, kTop), "001D00") << "word 1D and the high byte of 1C";
    EXPECT_EQ(NvmFieldText(image, NvmFieldAt(3, kTabDc, kDc), kTop), "1C");
    const std::string changed = WithNvmField(image, rd0, kTop, "ABCDEF");
    EXPECT_EQ(NvmFieldText(changed, rd0, kTop), "ABCDEF");
    EXPECT_EQ(NvmFieldText(changed, NvmFieldAt(3, kTabDc, kDc), kTop), "1C");
    EXPECT_THAT(WordsThatDiffer(image, changed, kTop), testing::ElementsAre("1D", "1C"));
}

TEST(NvmFields, OfAMissingImageAreEmpty)
{
    EXPECT_EQ(NvmFieldText("", NvmFieldAt(0, kTabDc, kDc), kTop), "");
    EXPECT_EQ(WithNvmField("", NvmFieldAt(0, kTabDc, kDc), kTop, "1234"), "");
}

TEST(NvmFields, AboveAShortImageLeaveItAsItIs)
{
    const NvmField rd0 = NvmFieldAt(4, kTabDc, kDc);
    EXPECT_EQ(WithNvmField("", rd0, -1, "1234"), "");
    for (int top = 0; top < 20; ++top) {
        const std::string image(static_cast<std::size_t>(top + 1) * 4, '0');
        EXPECT_EQ(WithNvmField(image, rd0, top, "ABCDEF"), image) << top;
        EXPECT_EQ(NvmFieldText(image, rd0, top), "") << top;
    }
}

TEST(PaddedDigits, AreTheLastOnesWithZerosInFront)
{
    const struct {
        std::size_t width;
        const char *text;
        const char *digits;
    } rows[] = {
        {2, "", "00"},
        {2, "F", "0F"},
        {2, "1A", "1A"},
        {4, "", "0000"},
        {4, "0", "0000"},
        {4, "1", "0001"},
        {4, "ABC", "0ABC"},
        {4, "8000", "8000"},
        {6, "", "000000"},
        {6, "1", "000001"},
        {6, "FFD9B8", "FFD9B8"},
        {6, "12345", "012345"},
        {8, "ABC", "00000ABC"},
        {12, "123456789", "000123456789"},
        {16, "123456789ABCDEF0", "123456789ABCDEF0"},
        {16, "ABCDEF012345678", "0ABCDEF012345678"},
        {16, "1", "0000000000000001"},
        {16, "", "0000000000000000"},
        {4, "12345", "2345"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(PaddedDigits(row.text, row.width), row.digits) << row.text;
}

TEST(RunsToWrite, AreAsFewAsCanBeCutAtTheFirstLargestGap)
{
    for (const SaveRow &row : kSaves) {
        SCOPED_TRACE(row.changed);
        const std::string before = NumberedImage(row.top, row.top == kTop ? 25 : 0);
        const std::string after = WithWordsChanged(before, row.top, WordsOf(row.changed));
        EXPECT_EQ(RunsToWrite(before, after, row.top), row.writes);
    }
}

TEST(RunsToWrite, CarryTheUnchangedWordsBetweenTheirEndsAsTheyAre)
{
    const std::string before = NumberedImage(kTop, 25);
    const std::string after = WithWordsChanged(before, kTop, {31, 29});
    const std::vector<NvmRun> runs = RunsToWrite(before, after, kTop);
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(DigitsOfRun(after, kTop, runs.front()), "F01F001EF01D");
}

TEST(RunsToWrite, BringEveryChangeIntoTheMeterWhateverWasChanged)
{
    unsigned random = 1;
    for (int round = 0; round < 2000; ++round) {
        std::vector<int> words;
        for (int word = kVfTop; word >= 0; --word)
            if ((random = random * 1664525u + 1013904223u) >> 28 < static_cast<unsigned>(round % 9))
                words.push_back(word);
        const std::string before = NumberedImage(kVfTop, 0);
        const std::string after = WithWordsChanged(before, kVfTop, words);
        std::string meter = before;
        const std::vector<NvmRun> runs = RunsToWrite(before, after, kVfTop);
        for (const NvmRun &run : runs)
            meter.replace(static_cast<std::size_t>(kVfTop - run.start) * 4, static_cast<std::size_t>(run.count) * 4,
                          DigitsOfRun(after, kVfTop, run));
        ASSERT_EQ(meter, after);
        ASSERT_LE(runs.size(), 2U);
        ASSERT_EQ(runs.empty(), words.empty());
    }
}
