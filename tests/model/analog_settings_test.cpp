#include "model/analog_settings.h"

#include "model/settings_folder.h"

using namespace ombrix;

namespace {

constexpr const char *kLongInit = "11112222333344445555666677778888AAAABBBB";
constexpr const char *kShortInit = "1111222233334444";

class AnalogSettings : public SettingsFolder
{
protected:
    void StartWith(const std::string &ini)
    {
        Write("Ombrix.ini", ini);
        Start();
    }

    void StartWithInitFile(const std::string &line)
    {
        QFile::remove("Ombrix.ini");
        Write("InitFile", line + "\r\nsecond line\r\n");
        Start();
    }
};

}  // namespace

TEST_F(AnalogSettings, TakeTheBuiltInImageWithoutAnInitFile)
{
    Start();
    EXPECT_EQ(StoredAnalogImage(), "FD700048FA2001E0FD700048FA2001E0FD700048");
    const std::array<std::string, 10> words = {"01E0", "FA20", "0048", "FD70", "0048",
                                               "FD70", "0048", "FD70", "01E0", "FA20"};
    EXPECT_EQ(StoredAnalogWords, words);
    EXPECT_EQ(DacTypeText, "1");
    EXPECT_EQ(CurrentOffsetPoint, "200");
}

TEST_F(AnalogSettings, TakeALongInitFileByItsFirstFortyDigits)
{
    StartWithInitFile(kLongInit);
    EXPECT_EQ(StoredAnalogImage(), kLongInit);
    EXPECT_EQ(DacTypeText, "1") << "40 digits carry no type";
    const std::array<std::string, 10> words = {"4444", "3333", "2222", "1111", "6666",
                                               "5555", "BBBB", "AAAA", "8888", "7777"};
    EXPECT_EQ(StoredAnalogWords, words);
}

TEST_F(AnalogSettings, TakeTheTypeFromTheEndOfAnInitFileOf41Or17)
{
    for (const std::string type : {"0", "1", "2", "3"}) {
        StartWithInitFile(kLongInit + type);
        EXPECT_EQ(DacTypeText, type);
        StartWithInitFile(kShortInit + type);
        EXPECT_EQ(DacTypeText, type);
    }
    for (const std::string type : {"4", "x"}) {
        StartWithInitFile(kLongInit + type);
        EXPECT_EQ(DacTypeText, "1") << type;
    }
    StartWithInitFile(std::string(kLongInit) + "22");
    EXPECT_EQ(DacTypeText, "1") << "42 digits are no image with a type";
}

TEST_F(AnalogSettings, FillAShortInitFileUp)
{
    StartWithInitFile(kShortInit);
    EXPECT_EQ(StoredAnalogImage(), std::string(kShortInit) + "FD700048FA2001E0FD700048");
    StartWithInitFile("111122223333444");
    EXPECT_EQ(StoredAnalogImage(), "FD700048FA2001E0FD700048FA2001E0FD700048") << "15 digits are none";
}

TEST_F(AnalogSettings, NeverTakeWordsOutOfGarbage)
{
    StartWithInitFile("1111zzzz3333444455556666777788889999AAAA");
    EXPECT_EQ(StoredAnalogImage(), "11110048333344445555666677778888"
                                   "9999AAAA");
}

TEST_F(AnalogSettings, PreferTheShortNamesThenTheLongOnesThenInitFile)
{
    Write("InitFile", kLongInit);
    StartWith("[CalibValues]\nAN.VO=AAA0\n[AnaCal]\nVOffset=BBB0\nVGain=BBB1\nCOffset=bad!\n");
    EXPECT_EQ(StoredAnalogWords[0], "AAA0");
    EXPECT_EQ(StoredAnalogWords[1], "BBB1");
    EXPECT_EQ(StoredAnalogWords[2], "2222");
    LoadIni();
    EXPECT_EQ(IniGet("AnaCal", "VOffset"), "AAA0") << "both sections say the same after a start";
    EXPECT_EQ(IniGet("AnaCal", "COffset"), "2222");
}

TEST_F(AnalogSettings, KeepOnlyTheTwoOffsetPoints)
{
    const struct {
        const char *text;
        const char *kept;
    } rows[] = {{"200", "200"}, {"4000", "4000"}, {"0200", "200"}, {"400", "200"}, {"x", "200"}};
    for (const auto &row : rows) {
        StartWith(std::string("[AnaCal]\nCOffCalibPt=") + row.text + "\n");
        EXPECT_EQ(CurrentOffsetPoint, row.kept) << row.text;
        LoadIni();
        EXPECT_EQ(IniGet("AnaCal", "COffCalibPt"), row.kept);
    }
}

TEST_F(AnalogSettings, KeepOnlyTheFourTypes)
{
    for (const std::string type : {"0", "1", "2", "3"}) {
        StartWith("[AnaCal]\nDACType=" + type + "\n");
        EXPECT_EQ(DacTypeText, type);
    }
    for (const std::string type : {"4", "-1", "02", "1.0", "x"}) {
        StartWith("[AnaCal]\nDACType=" + type + "\n");
        EXPECT_EQ(DacTypeText, "1") << type;
    }
}

TEST_F(AnalogSettings, StoreAnImageInBothSections)
{
    Start();
    StoreAnalogWordsHex("FA2001E0FD700048FD700048FD700048FA2001E0");
    EXPECT_FALSE(WordsDirty);
    EXPECT_EQ(StoredAnalogWords[AnalogWordIndex("VO")], "0048");
    LoadIni();
    EXPECT_EQ(IniGet("CalibValues", "AN.VO"), "0048");
    EXPECT_EQ(IniGet("AnaCal", "VOffset"), "0048");
    EXPECT_EQ(IniGet("AnaCal", "CGain"), "FA20");
    EXPECT_EQ(IniGet("CalibValues", "AN.DCG"), "FD70");
    Start();
    EXPECT_EQ(StoredAnalogImage(), "FA2001E0FD700048FD700048FD700048FA2001E0");
}

TEST_F(AnalogSettings, StoreNoImageThatIsNone)
{
    Start();
    const std::string before = StoredAnalogImage();
    for (const std::string image : {"", "FA20", "FA2001E0FD700048FD700048FD700048FA2001EG", "fa2001e0"}) {
        StoreAnalogWordsHex(image);
        EXPECT_EQ(StoredAnalogImage(), before);
    }
}

TEST_F(AnalogSettings, BringTypeAndOffsetPointBack)
{
    Start();
    DacTypeText = "3";
    CurrentOffsetPoint = "4000";
    SaveAnaCal();
    Start();
    EXPECT_EQ(DacTypeText, "3");
    EXPECT_EQ(CurrentOffsetPoint, "4000");
}

TEST_F(AnalogSettings, LoadAnaCalWordsAlone)
{
    Write("Ombrix.ini", "[AnaCal]\nVOffset=BBB0\n");
    LoadIni();
    LoadAnaCalWords();
    EXPECT_EQ(StoredAnalogImage(), "FD700048FA20BBB0FD700048FA2001E0FD700048");
}
