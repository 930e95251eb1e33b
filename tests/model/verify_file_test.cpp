#include "model/verify_file.h"

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using namespace ombrix;

namespace {

// A file with these records, from 1 on; the rest as they were.
std::string With(std::string file, const std::vector<std::string> &texts, int first = 1)
{
    for (const std::string &text : texts)
        file.replace(VerifyPlaceOf(first++), 6, VerifyRecordText(text));
    return file;
}

std::string Full()
{
    std::string file =
        With(EmptyVerifyFile(), {"20000", "-20000", "20001", "-20001", "19999", "-19999", "20000", "-20000", "6600",
                                 "-6600", "20002", "-20002", "19998", "-19998", "20000", "-20000", "5000", "-5000"});
    return With(file, {"20000", "20010", "19990", "20000", "6600", "20000", "20000", "20000", "5000"}, 19);
}

std::string WithoutRecords(const std::vector<int> &records)
{
    std::string file = Full();
    for (const int record : records)
        file = With(file, {""}, record);
    return file;
}

struct Verified {
    const char *name;
    const char *value;
    int index;
    const char *code;
};

void ExpectRanges(int board, const std::vector<Verified> &ranges)
{
    SCType = board;
    EXPECT_EQ(VerifyLastButton(board) + 1, static_cast<int>(ranges.size()));
    for (int button = 0; button < static_cast<int>(ranges.size()); ++button) {
        SCOPED_TRACE(button);
        const Verified &range = ranges[static_cast<std::size_t>(button)];
        EXPECT_EQ(VerifyRangeName(board, button), range.name);
        EXPECT_EQ(VerifyInput(board, button), range.value);
        EXPECT_EQ(VerifyRangeIndex(board, button), range.index);
        EXPECT_EQ(RangeCodeText(VerifyRangeIndex(board, button)), range.code);
    }
    EXPECT_EQ(VerifyRangeName(board, static_cast<int>(ranges.size())), "");
    SCType = -1;
}

std::vector<std::string> Texts(const std::vector<PrintedLine> &lines)
{
    std::vector<std::string> texts;
    for (const PrintedLine &line : lines)
        texts.push_back(line.text);
    return texts;
}

}  // namespace

TEST(VerifiedRanges, OfADcBoardAreNineWithBothPolarities)
{
    EXPECT_TRUE(VerifyTwoPolarity(kDc));
    ExpectRanges(kDc, {{"200 mV", "200 mV", 0, "60"},
                       {"2 V", "2 V", 1, "61"},
                       {"20 V", "20 V", 2, "62"},
                       {"200 V", "200 V", 3, "63"},
                       {"660 V", "660 V", 4, "64"},
                       {"2 mA", "2 mA", 5, "70"},
                       {"20 mA", "20 mA", 6, "71"},
                       {"200 mA", "200 mA", 7, "72"},
                       {"5 A", "5 A", 8, "73"}});
}

TEST(VerifiedRanges, OfAnLcBoardAreFiveWithBothPolarities)
{
    EXPECT_TRUE(VerifyTwoPolarity(kLc));
    ExpectRanges(kLc, {{"20 mV", "20 mV", 0, "D0"},
                       {"50 mV", "50 mV", 1, "D1"},
                       {"100 mV", "100 mV", 2, "D2"},
                       {"250 mV", "250 mV", 3, "D3"},
                       {"500 mV", "500 mV", 4, "D4"}});
}

TEST(VerifiedRanges, OfAcBoardsAreNineAt300HzAndAc2AndAc3Have600V)
{
    std::vector<Verified> ranges = {
        {"200 mV", "200 mV, 300 Hz", 0, "80"}, {"2 V", "2 V, 300 Hz", 1, "81"},       {"20 V", "20 V, 300 Hz", 2, "82"},
        {"200 V", "200 V, 300 Hz", 3, "83"},   {"660 V", "660 V, 300 Hz", 4, "84"},   {"2 mA", "2 mA, 300 Hz", 5, "90"},
        {"20 mA", "20 mA, 300 Hz", 6, "91"},   {"200 mA", "200 mA, 300 Hz", 7, "92"}, {"5 A", "5 A, 300 Hz", 8, "93"}};
    EXPECT_FALSE(VerifyTwoPolarity(kAc));
    ExpectRanges(kAc, ranges);
    ranges[4] = {"600 V", "600 V, 300 Hz", 9, "84"};
    for (const int board : {kAc2, kAc3}) {
        EXPECT_FALSE(VerifyTwoPolarity(board));
        ExpectRanges(board, ranges);
    }
}

TEST(VerifyFile, OfANewUnitIsBlank)
{
    EXPECT_EQ(EmptyVerifyFile(), std::string(162, ' '));
}

TEST(VerifyFile, HasARecordForEachSlotOfAFamily)
{
    for (int button = 0; button < kVerifyRanges; ++button) {
        for (const int board : {kDc, kLc}) {
            EXPECT_EQ(VerifyRecordOf(board, 2 * button), 2 * button + 1);
            EXPECT_EQ(VerifyRecordOf(board, 2 * button + 1), 2 * button + 2);
        }
        for (const int board : {kAc, kAc2, kAc3})
            EXPECT_EQ(VerifyRecordOf(board, 2 * button), 19 + button);
    }
    EXPECT_EQ(VerifyPlaceOf(1), 0U);
    EXPECT_EQ(VerifyPlaceOf(27), 156U);
}

TEST(VerifyFile, KeepsTheLastSixCharactersOfAReading)
{
    const struct {
        const char *reading;
        const char *record;
    } rows[] = {{"", "      "},       {"0", "     0"},       {"7", "     7"},       {"+0", "    +0"},
                {"-5", "    -5"},     {"1234", "  1234"},    {"+1234", " +1234"},   {"-1234", " -1234"},
                {"12345", " 12345"},  {"+20000", "+20000"},  {"-19999", "-19999"},  {"-20000", "-20000"},
                {"123456", "123456"}, {"1234567", "234567"}, {"-123456", "123456"}, {"+800000", "800000"}};
    for (const auto &row : rows)
        EXPECT_EQ(VerifyRecordText(row.reading), row.record);
}

TEST(VerifyFile, IsGoneOnWithAtTheRangeOfItsFirstBlankRecord)
{
    const std::vector<int> dc = {0, 0, 1, 2, 2, 2, 3, 4, 4, 4, 5, 6, 6, 6, 7, 8, 8, 8};
    for (int slot = 0; slot < kVerifySlots; ++slot) {
        SCOPED_TRACE(slot);
        EXPECT_EQ(FirstEmptyRange(WithoutRecords({slot + 1}), kDc), dc[static_cast<std::size_t>(slot)]);
        if (slot < 10) {
            EXPECT_EQ(FirstEmptyRange(WithoutRecords({slot + 1}), kLc), dc[static_cast<std::size_t>(slot)]);
        }
        for (int board : {kAc, kAc2, kAc3})
            EXPECT_EQ(FirstEmptyRange(WithoutRecords({19 + slot / 2}), board), slot / 2);
    }
}

TEST(VerifyFile, ThatIsFullOrNewBeginsWithTheFirstRange)
{
    for (const int board : {kDc, kAc, kLc, kAc2, kAc3}) {
        EXPECT_EQ(FirstEmptyRange(Full(), board), 0);
        EXPECT_EQ(FirstEmptyRange(EmptyVerifyFile(), board), 0);
    }
}

TEST(VerifyFile, OfOneFamilyDoesNotTouchTheOther)
{
    EXPECT_EQ(FirstEmptyRange(WithoutRecords({4, 5}), kDc), 2);
    EXPECT_EQ(FirstEmptyRange(WithoutRecords({20, 25}), kDc), 0);
    EXPECT_EQ(FirstEmptyRange(WithoutRecords({11, 12, 13, 18}), kLc), 0);
    EXPECT_EQ(FirstEmptyRange(WithoutRecords({3, 4, 17}), kAc), 0);
}

TEST(VerifyFile, WithAnythingButBlanksInARecordCountsAsTakenThere)
{
    std::string file = WithoutRecords({1, 5});
    file[5] = 'x';
    EXPECT_EQ(FirstEmptyRange(file, kDc), 2);
}

TEST(VerifyFile, GivesItsReadingsBySlot)
{
    const auto dc = VerifyReadings(Full(), kDc);
    EXPECT_EQ(dc[0], " 20000");
    EXPECT_EQ(dc[9], " -6600");
    EXPECT_EQ(dc[17], " -5000");
    const auto lc = VerifyReadings(Full(), kLc);
    EXPECT_EQ(lc[9], " -6600");
    EXPECT_EQ(lc[10], "      ") << "the board has no such range";
    const auto ac = VerifyReadings(Full(), kAc);
    EXPECT_EQ(ac[2], " 20010");
    EXPECT_EQ(ac[3], "      ");
    EXPECT_EQ(ac[16], "  5000");
}

TEST(VerifyFile, ThatEndsEarlyIsBlankFromThereOn)
{
    const std::string part = Full().substr(0, 15);
    EXPECT_EQ(VerifyReadings(part, kDc)[1], "-20000");
    EXPECT_EQ(VerifyReadings(part, kDc)[2], " 20   ");
    EXPECT_EQ(VerifyReadings(part, kDc)[3], "      ");
    EXPECT_EQ(FirstEmptyRange(part, kDc), 2);
    EXPECT_EQ(FirstEmptyRange("", kAc), 0);
}

TEST(VerifyFile, OfAnotherProgramIsToldApartAndCanBeShown)
{
    EXPECT_TRUE(LooksLikeVerifyFile(Full()));
    EXPECT_TRUE(LooksLikeVerifyFile(EmptyVerifyFile()));
    EXPECT_TRUE(LooksLikeVerifyFile(""));
    EXPECT_TRUE(LooksLikeVerifyFile(Full().substr(0, 50)));
    EXPECT_FALSE(LooksLikeVerifyFile(Full() + " "));
    EXPECT_FALSE(LooksLikeVerifyFile("[Ports]"));
    EXPECT_FALSE(LooksLikeVerifyFile(std::string("12\0", 3)));
    EXPECT_EQ(VerifyReadings("\x01\xFFm 7\n", kDc)[0], "??m 7?");
}

// ---- the printed table ----

TEST(VerifyTable, ShowsBothPolaritiesOfADcBoard)
{
    EXPECT_THAT(
        Texts(VerifyTable(Full(), kDc, "A1234", "Vfy$Temp.txt")),
        testing::ElementsAre("", "", "DPM ID = A1234                                       File Name = Vfy$Temp.txt",
                             "", "INPUT   200mV    2V      20V    200V    660V     2mA    20mA    200mA    5A    ",
                             " +DC    20000   20001   19999   20000    6600   20002   19998   20000    5000",
                             " -DC   -20000  -20001  -19999  -20000   -6600  -20002  -19998  -20000   -5000"));
}

TEST(VerifyTable, LeavesRoomForWhatWasNotTakenAndKeepsSigns)
{
    const std::string file = With(WithoutRecords({3, 4, 9, 10, 18}), {"+20000"});
    EXPECT_THAT(
        Texts(VerifyTable(file, kDc, "", "m1.dat")),
        testing::ElementsAre("", "", "DPM ID =                                                   File Name = m1.dat",
                             "", "INPUT   200mV    2V      20V    200V    660V     2mA    20mA    200mA    5A    ",
                             " +DC   +20000           19999   20000           20002   19998   20000    5000",
                             " -DC   -20000          -19999  -20000          -20002  -19998  -20000        "));
}

TEST(VerifyTable, ShowsOneRowOfAnAcBoard)
{
    EXPECT_THAT(
        Texts(VerifyTable(Full(), kAc, "A1234", "Vfy$Temp.txt")),
        testing::ElementsAre("", "", "DPM ID = A1234                                       File Name = Vfy$Temp.txt",
                             "", "INPUT   200mV    2V      20V    200V    660V     2mA    20mA    200mA    5A    ",
                             "  AC    20000   20010   19990   20000    6600   20000   20000   20000    5000"));
}

TEST(VerifyTable, Says600VOnAc2AndAc3)
{
    for (const int board : {kAc2, kAc3})
        EXPECT_THAT(Texts(VerifyTable(Full(), board, "77", "unit77.vfy")),
                    testing::ElementsAre(
                        "", "", "DPM ID = 77                                            File Name = unit77.vfy", "",
                        "INPUT   200mV    2V      20V    200V    600V     2mA    20mA    200mA    5A    ",
                        "  AC    20000   20010   19990   20000    6600   20000   20000   20000    5000"));
}

TEST(VerifyTable, ShowsFiveRangesOfAnLcBoard)
{
    EXPECT_THAT(Texts(VerifyTable(Full(), kLc, "LC-9", "lc.txt")),
                testing::ElementsAre(
                    "", "", "DPM ID = LC-9                                              File Name = lc.txt", "",
                    "INPUT   20mV    50mV    100mV   250mV   500mV  ", " +DC    20000   20001   19999   20000    6600",
                    " -DC   -20000  -20001  -19999  -20000   -6600"));
}

TEST(VerifyTable, OfANewFileIsEmpty)
{
    EXPECT_THAT(Texts(VerifyTable(EmptyVerifyFile(), kDc, "", "")),
                testing::ElementsAre(
                    "", "", "DPM ID =                                                         File Name = ", "",
                    "INPUT   200mV    2V      20V    200V    660V     2mA    20mA    200mA    5A    ",
                    " +DC                                                                         ",
                    " -DC                                                                         "));
}

TEST(VerifyTable, PutsALongNameOnALineOfItsOwn)
{
    EXPECT_THAT(Texts(VerifyTable(Full(), kLc, "0123456789", "a-very-long-file-name-for-this-unit-under-test.txt")),
                testing::ElementsAre("", "", "DPM ID = 0123456789",
                                     "               File Name = a-very-long-file-name-for-this-unit-under-test.txt",
                                     "", "INPUT   20mV    50mV    100mV   250mV   500mV  ",
                                     " +DC    20000   20001   19999   20000    6600",
                                     " -DC   -20000  -20001  -19999  -20000   -6600"));
}

TEST(VerifyTable, BeginsANameThatIsLongerThanTheLineInTheFirstColumn)
{
    const std::string name(70, 'n');
    EXPECT_EQ(VerifyTable(Full(), kDc, "7", name)[3].text, "File Name = " + name);
}

TEST(VerifyTable, CountsLettersNotBytes)
{
    const std::string name = "Prüfling.txt";  // 12 letters
    const std::string line = VerifyTable(Full(), kDc, "A", name)[2].text;
    EXPECT_EQ(line.find("File Name"), 53U);
    EXPECT_EQ(VerifyTable(Full(), kDc, "Ä", name)[2].text.find("File Name"), 54U) << "one byte more, the same column";
}

TEST(VerifyTable, UnderlinesTheHeaderAlone)
{
    const std::vector<PrintedLine> lines = VerifyTable(Full(), kDc, "", "");
    for (std::size_t line = 0; line < lines.size(); ++line)
        EXPECT_EQ(lines[line].underlined, line == 4) << line;
}
