#include "model/dpm_format.h"

#include <gtest/gtest.h>

#include "model/images.h"
#include "model/memory_values.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "platform/safe_file.h"
#include "session/state.h"
#include "support/samples.h"

#include <QTemporaryDir>

#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

using namespace ombrix;

namespace {

constexpr const char *kDcFile = "0000000000000000000000000000000000010503000021D1653600602000"
                                "004E20000000004E20004E200000000000000000001000040007D00003E8"
                                "000000000000000000000000000000000000000000003201000000000000";

std::string With(std::size_t place, const std::string &digits)
{
    return std::string(kDcFile).replace(place - 1, digits.size(), digits);
}

// A file of another board, by its code at 35 and its range at 55.
std::string FileOf(const std::string &code, const std::string &range)
{
    return With(35, code).replace(54, 1, range);
}

struct BoardRow {
    const char *code;
    const char *range;
    int ofFile;
    int shown;
    int shownOnTcTab;
    int acceptedOn;  ///< -1: refused on every tab
};

// clang-format off
constexpr BoardRow kBoardRows[] = {
    // 35..36, 55, of a file, shown, shown on the TC tab, accepted on tab
    {"00", "0", -1, 4, 4, -1},
    {"00", "6", -1, 4, 4, -1},
    {"01", "0", -1, 0, 0, -1},
    {"01", "1", -1, 0, 0, -1},
    {"01", "2", -1, 0, 0, -1},
    {"01", "3", -1, 0, 0, -1},
    {"01", "4", 7, 7, 7, 3},
    {"01", "5", 7, 0, 0, 3},
    {"01", "6", 0, 0, 7, 0},
    {"01", "7", 0, 0, 0, 0},
    {"01", "8", -1, 0, 0, -1},
    {"01", "9", -1, 0, 0, -1},
    {"01", "A", -1, 0, 0, -1},
    {"01", "B", -1, 0, 0, -1},
    {"01", "C", -1, 0, 0, -1},
    {"01", "D", -1, 0, 0, -1},
    {"01", "E", 8, 0, 0, 3},
    {"01", "F", -1, 0, 0, -1},
    {"02", "6", 1, 1, 1, 1},
    {"02", "8", 1, 1, 1, 1},
    {"12", "8", 5, 5, 5, 1},
    {"22", "8", 6, 6, 6, 1},
    {"03", "C", 2, 2, 2, 2},
    {"03", "D", 2, 2, 2, 2},
    {"31", "4", 3, 3, 3, 3},
    {"31", "6", 3, 3, 3, 3},
    {"41", "5", 8, 8, 8, 3},
    {"41", "E", 8, 8, 8, 3},
    {"11", "6", -1, -1, -1, -1},
    {"04", "6", -1, -1, -1, -1},
    {"FF", "6", -1, -1, -1, -1},
};
// clang-format on

constexpr int kTabs = kTabAnaCal;

struct FileRow {
    const char *what;
    std::string bytes;
    const char *error;
    const char *marks;  ///< places 13..20 after reading, of a file that can be sent
};

const FileRow kFileRows[] = {
    {"empty", "", "File format error", ""},
    {"179 digits", std::string(kDcFile).substr(0, 179), "File format error", ""},
    {"180 digits", kDcFile, "", "00000000"},
    {"180 digits and LF", std::string(kDcFile) + "\n", "", "00000000"},
    {"180 digits, CR LF and more lines", std::string(kDcFile) + "\r\nmore\r\n", "", "00000000"},
    {"200 digits", std::string(kDcFile) + std::string(20, '0'), "", "00000000"},
    {"a comma behind", std::string(kDcFile) + ",x", "", "00000000"},
    {"a comma at 100", With(100, ","), "File format error", ""},
    {"a line end at 1", "\n" + std::string(kDcFile), "File format error", ""},
    {"a leading blank", " " + std::string(kDcFile), "File format error", ""},
    {"lower case at 33", With(33, "a"), "File format error", ""},
    {"G at 180", With(180, "G"), "File format error", ""},
    {"G at 181", std::string(kDcFile) + "G", "", "00000000"},
    {"quoted", "\"" + std::string(kDcFile) + "\"", "File format error", ""},
    {"Z at 13, 0 at 14", With(13, "Z0"), "File format error", ""},
    {"Z at 13, 1 at 14", With(13, "Z1"), "", "Z1000000"},
    {"Z1 at 13, 1 at 15", With(13, "Z11"), "", "Z1100000"},
    {"Z1 at 13, A5B6C7 behind", With(13, "Z1A5B6C7"), "", "Z1A5B6C7"},
    {"1 at 15 without Z1", With(15, "1"), "", "00000000"},
    {"12345678 at 13", With(13, "12345678"), "", "00000000"},
    {"Z at 12", With(12, "Z1"), "File format error", ""},
    {"Z at 14", With(14, "Z"), "File format error", ""},
    {"Z1 at 13, G at 50", With(13, "Z1").replace(49, 1, "G"), "File format error", ""},
    {"of AC", FileOf("02", "8"), "Specified file does not apply to DC", ""},
    {"of Temp", FileOf("01", "4"), "Specified file does not apply to DC", ""},
    {"01 with 7", FileOf("01", "7"), "", "00000000"},
    {"01 with 8", FileOf("01", "8"), "Specified file does not apply to DC", ""},
    {"code 00", FileOf("00", "6"), "Specified file does not apply to DC", ""},
    {"code FF", FileOf("FF", "6"), "Specified file does not apply to DC", ""},
    {"179 digits of AC", FileOf("02", "8").substr(0, 179), "File format error", ""},
    {"AC with a bad character", FileOf("02", "8").replace(99, 1, "x"), "File format error", ""},
    {"binary noise",
     std::string("\x7f"
                 "ELF\x02\x01\0\0\xff",
                 9) +
         std::string(500, '\xfe'),
     "File format error", ""},
};

// The board with whose code each file was made.
struct Sample {
    const char *name;
    int board;
};
constexpr Sample kSamples[] = {{"zsc1.dpm", kDc}, {"zsc2_1.dpm", kAc}, {"zsc2_2V.dpm", kAc2}, {"zsc2_3W.dpm", kAc3},
                               {"zsc3.dpm", kLc}, {"zscTC.dpm", kTc},  {"zsc4.dpm", kTemp},   {"zscRTD.dpm", kRtd}};

// A factory image as a file carries it: the words of each run, the rest of a meter at zero but its type.
std::string FileOfImage(const std::string &image)
{
    const auto words = [&image](int word, std::size_t count) {
        return DigitsAt(image, static_cast<std::size_t>(56 - word) * 4 + 1, count * 4);
    };
    return words(29, 3) + "00000000" + words(24, 25) + words(56, 2) + std::string(36, '0') + "3201" +
           std::string(12, '0');
}

}  // namespace

TEST(DpmFormat, TakesTheFirstFieldOf180HexadecimalDigits)
{
    for (const FileRow &row : kFileRows) {
        const DpmFile file = CheckDpmText(row.bytes, kTabDc, "DC");
        EXPECT_EQ(file.error, row.error) << row.what;
        if (file.error.empty()) {
            EXPECT_EQ(DigitsAt(file.image, 13, 8), row.marks) << row.what;
        }
    }
}

TEST(DpmFormat, IsExtendedOnlyWithTheMarkBeforeIt)
{
    EXPECT_TRUE(IsExtended(CheckDpmText(With(13, "Z11"), kTabDc, "DC").image));
    EXPECT_FALSE(IsExtended(CheckDpmText(With(13, "Z10"), kTabDc, "DC").image));
    EXPECT_FALSE(IsExtended(CheckDpmText(With(13, "001"), kTabDc, "DC").image));
}

TEST(DpmFormat, TellsTheBoardOfAFileAndWhereItIsAccepted)
{
    static_assert(std::size(kBoardRows) == 31);
    for (const BoardRow &row : kBoardRows) {
        const std::string image = FileOf(row.code, row.range);
        EXPECT_EQ(BoardOfDpm(image), row.ofFile) << row.code << " " << row.range;
        for (int tab = kTabDc; tab < kTabs; ++tab)
            EXPECT_EQ(CheckDpmText(image, tab, "it").error.empty(), tab == row.acceptedOn)
                << row.code << " " << row.range << " on tab " << tab;
    }
}

TEST(DpmFormat, ShowsTheBoardOfAnImageByOtherRulesThanAFileIsCheckedBy)
{
    for (const BoardRow &row : kBoardRows) {
        const std::string image = FileOf(row.code, row.range);
        EXPECT_EQ(DescribeImage(image, kDc, kTabDc)[0].text, "S/C TYPE = " + BoardName(row.shown))
            << row.code << " " << row.range;
        EXPECT_EQ(DescribeImage(image, kTc, kTabTc)[0].text, "S/C TYPE = " + BoardName(row.shownOnTcTab))
            << row.code << " " << row.range;
    }
}

TEST(DpmFormat, RefusesAFileOfAnotherFamilyInTheWordsOfTheTabInFront)
{
    EXPECT_EQ(CheckDpmText(FileOf("22", "8"), kTabAc, "AC2").error, "");
    EXPECT_EQ(CheckDpmText(kDcFile, kTabAc, "AC3").error, "Specified file does not apply to AC3");
    EXPECT_EQ(CheckDpmText(FileOf("31", "4"), kTabTc, "Temp").error, "");
    EXPECT_EQ(CheckDpmText(FileOf("01", "6"), kTabTc, "Temp").error, "Specified file does not apply to Temp");
    EXPECT_EQ(CheckDpmText(FileOf("00", "8"), kTabVf, "VF").error, "Specified file does not apply to VF");
    EXPECT_EQ(CheckDpmText(FileOf("02", "8"), kTabDc, "DC").image.size(), kDpmDigits) << "it stays as read";
}

TEST(DpmFormat, GoesIntoTheMeterInFourRunsTheLastOfWhichRestartsIt)
{
    const std::string image = kDcFile;
    const auto runs = RunsOfDpm(image, kDc);
    ASSERT_EQ(runs.size(), 4U);
    const int words[] = {29, 24, 56, 118};
    const std::size_t places[] = {1, 21, 121, 129};
    const std::size_t digits[] = {12, 100, 8, 52};
    for (std::size_t run = 0; run < runs.size(); ++run) {
        EXPECT_EQ(runs[run].word, words[run]);
        EXPECT_EQ(runs[run].text, image.substr(places[run] - 1, digits[run]));
    }
}

TEST(DpmFormat, LeavesTheWords29To27OfAThermocoupleBoardAlone)
{
    for (int board = kDc; board <= kRtd; ++board) {
        const bool left = board == kTc || board == kTemp;
        EXPECT_EQ(RunsOfDpm(kDcFile, board).front().word, left ? 24 : 29) << board;
        EXPECT_EQ(RunsOfDpm(kDcFile, board).size(), left ? 3U : 4U) << board;
    }
}

TEST(DpmFormat, AsksAtTheTestForTheNumberOfTheInputOrForTheTemperatureOfAnRtd)
{
    EXPECT_EQ(DesiredOfTest(kDc, {"", 0, "200 mV"}), "200.0");
    EXPECT_EQ(DesiredOfTest(kAc, {"", 4, "660 V, 300 Hz"}), "660.0");
    EXPECT_EQ(DesiredOfTest(kTc, {"", 3, "0 CEL"}), "0.0");
    EXPECT_EQ(DesiredOfTest(kRtd, {"", 8, "18.72 OHM"}), "250.0");
    EXPECT_EQ(DesiredOfTest(kRtd, {"", 9, "20 OHM"}), "20.0") << "a resistance comes from its input";
    EXPECT_EQ(DesiredOfTest(kRtd, {"", 11, "2 KOHM"}), "2.0");
    EXPECT_EQ(DesiredOfTest(kDc, {"", 0, "23.3 mV"}), "23.3");
    EXPECT_EQ(DesiredOfTest(kDc, {"", 0, "1356.4"}), "1356.4") << "a text without a blank stands as it is";
    EXPECT_EQ(DesiredOfTest(kDc, {"", 0, ""}), "");
}

TEST(DpmFiles, ThatCantBeOpenedOrReadSayWhich)
{
    const QTemporaryDir folder;
    const std::string in = folder.path().toStdString() + "/";
    EXPECT_EQ(ReadDpmFile(in + "missing.dpm", kTabDc, "DC").error, "Unable to open file");
    EXPECT_EQ(ReadDpmFile("", kTabDc, "DC").error, "Unable to open file");
    EXPECT_EQ(ReadDpmFile(in, kTabDc, "DC").error, "Error reading file") << "a folder";
    std::filesystem::create_symlink(in + "missing.dpm", in + "link.dpm");
    EXPECT_EQ(ReadDpmFile(in + "link.dpm", kTabDc, "DC").error, "Unable to open file");
    ASSERT_EQ(mkfifo((in + "pipe.dpm").c_str(), 0600), 0);
    EXPECT_EQ(ReadDpmFile(in + "pipe.dpm", kTabDc, "DC").error, "Unable to open file") << "nobody writes there";
}

TEST(DpmFiles, ThatAreClosedToTheUserCantBeOpened)
{
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString() + "/closed.dpm";
    ASSERT_EQ(WriteFile(path, kDcFile), "");
    ASSERT_EQ(chmod(folder.path().toStdString().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    const uid_t user = geteuid();
    if (user == 0) {
        ASSERT_EQ(seteuid(65534), 0);  // root may read all
    }
    EXPECT_EQ(ReadDpmFile(path, kTabDc, "DC").error, "Unable to open file");
    ASSERT_EQ(seteuid(user), 0);
}

TEST(DpmFiles, AreReadAtTheirBeginningAlone)
{
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString() + "/huge.dpm";
    ASSERT_EQ(WriteFile(path, kDcFile + std::string(10'000'000, '0')), "");
    const DpmFile file = ReadDpmFile(path, kTabDc, "DC");
    EXPECT_EQ(file.error, "");
    EXPECT_EQ(file.image.substr(0, kDpmDigits), kDcFile);
    EXPECT_LT(file.image.size(), 10'000U);
    ASSERT_EQ(WriteFile(path, std::string(10'000'000, '\xfe')), "");
    EXPECT_EQ(ReadDpmFile(path, kTabDc, "DC").error, "File format error");
}

TEST(DpmFiles, OfTheProgramHoldTheFactorySetupOfTheirBoard)
{
    InitNominals();
    static_assert(std::size(kSamples) == 8);
    for (const Sample &sample : kSamples) {
        const int tab = TabOfBoard(sample.board);
        const DpmFile file = CheckDpmText(test::Sample(sample.name), tab, "it");
        EXPECT_EQ(file.error, "") << sample.name;
        EXPECT_EQ(file.image, FileOfImage(DefaultInitImage(sample.board))) << sample.name;
        EXPECT_TRUE(DescribeImage(file.image, sample.board, tab)[0].bold) << sample.name;
        EXPECT_GE(DescribeRangeCode(sample.board, DigitsAt(file.image, 55, 2)).diagram, 0) << "its range can be tested";
    }
}
