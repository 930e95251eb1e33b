// Sections Gains and CalibValues.

#include "model/settings.h"

#include "model/analog_settings.h"

#include "model/settings_folder.h"

using namespace ombrix;

namespace {

class NominalSettings : public SettingsFolder
{
protected:
    void StartWith(const std::string &ini)
    {
        Write("Ombrix.ini", ini);
        Start();
    }

    static std::string Stored(const std::string &section, const std::string &key)
    {
        LoadIni();
        IniReady = true;
        return IniGet(section, key);
    }

    static std::string Replaced(std::string text, const std::string &part, const std::string &by)
    {
        const std::size_t place = text.find(part);
        return place == std::string::npos ? text : text.replace(place, part.size(), by);
    }
};

}  // namespace

// ---- Gains ----

TEST_F(NominalSettings, OverlaySlopes)
{
    StartWith("[Gains]\nDC.20=3.4567\nTemp.2F=12\n");
    EXPECT_EQ(NominalSlopeOf(kDc, 32), 3.4567f);
    EXPECT_EQ(NominalSlopeOf(kTemp, 47), 12.0f);
    EXPECT_EQ(NominalSlopeOf(kDc, 33), 3.153f) << "the others keep their defaults";
    EXPECT_EQ(Stored("Gains", "Temp.2F"), "12.0000");
    EXPECT_EQ(Stored("Gains", "DC.21"), "3.1530") << "a changed table is saved whole";
}

TEST_F(NominalSettings, LeaveAloneASectionOfGainsThatSaysNothingNew)
{
    StartWith("[Gains]\nDC.20=3.3500\n");
    EXPECT_EQ(Stored("Gains", "DC.20"), "3.3500");
    EXPECT_EQ(IniKeyCount("Gains"), 1);
}

TEST_F(NominalSettings, SkipSlopesThatAreNone)
{
    StartWith("[Gains]\nDC.20=0\nDC.21=-3\nDC.22=abc\nXX.23=4\n.19=4\nDC.=4\nDC=4\nDC.18=4\nDC.33=4\nDC.1G=4\n"
              "DC.FFFFFFFFF19=4\n");
    for (int word = 25; word <= 50; ++word)
        EXPECT_EQ(NominalSlopeOf(kDc, word), DefaultSlopeOf(kDc, word)) << word;
    EXPECT_FALSE(SlopesDirty);
}

TEST_F(NominalSettings, TakeSlopesFromTheOlderFile)
{
    Write("Gains.sss", "\"DC\",\"20\",3.5\r\nAC,1A,30.25\r\n\r\nXX,19,9\r\nLC,19,-1\r\nDC,\r\nRTD,25,3.1\r\n");
    Start();
    EXPECT_EQ(NominalSlopeOf(kDc, 32), 3.5f);
    EXPECT_EQ(NominalSlopeOf(kAc, 26), 30.25f);
    EXPECT_EQ(NominalSlopeOf(kLc, 25), 3.277f);
    EXPECT_EQ(NominalSlopeOf(kRtd, 37), 3.1f) << "lines that are no triples are passed over";
    EXPECT_EQ(Stored("Gains", "DC.20"), "3.5000");
    EXPECT_EQ(IniKeyCount("Gains"), 68);
}

TEST_F(NominalSettings, IgnoreTheOlderFileWhenTheSectionHasKeys)
{
    Write("Gains.sss", "DC,20,3.5\n");
    StartWith("[Gains]\nDC.21=3.2\n");
    EXPECT_EQ(NominalSlopeOf(kDc, 32), 3.35f);
}

TEST_F(NominalSettings, BringALearnedSlopeBackToFourDecimals)
{
    Start();
    SetNominalSlopeOf(kDc, 25, 3.2964123f);
    EXPECT_TRUE(SlopesDirty);
    SaveGains();
    EXPECT_FALSE(SlopesDirty);
    Start();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), 3.2964f);
}

TEST_F(NominalSettings, KeepANegativeOrVanishingSlopeForTheSessionOnly)
{
    StartWith("[Gains]\nDC.19=3.3456\nDC.1A=9.8765\n");
    SetNominalSlopeOf(kDc, 25, -3.0f);
    SetNominalSlopeOf(kDc, 26, 0.00004f);
    SetNominalSlopeOf(kDc, 27, -1.0f);
    SaveGains();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), -3.0f);
    EXPECT_EQ(Stored("Gains", "DC.19"), "3.3456") << "what was learned before stays";
    EXPECT_EQ(Stored("Gains", "DC.1A"), "9.8765");
    EXPECT_EQ(Stored("Gains", "DC.1B"), "") << "nothing was learned before";
    Start();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), 3.3456f);
    EXPECT_EQ(NominalSlopeOf(kDc, 26), 9.8765f);
}

TEST_F(NominalSettings, DropAStoredSlopeThatIsNoneAtTheNextSave)
{
    StartWith("[Gains]\nDC.1B=0\nDC.1C=-4\nDC.19=3.3\n");
    EXPECT_EQ(Stored("Gains", "DC.1B"), "");
    EXPECT_EQ(Stored("Gains", "DC.1C"), "");
    EXPECT_EQ(Stored("Gains", "DC.19"), "3.3000");
}

TEST_F(NominalSettings, StartFromTheTablesAtEachLoad)
{
    StartWith("[Gains]\nDC.20=3.3500\n[CalibValues]\nDC.20=8948\n");
    SetNominalSlopeOf(kDc, 25, 5.0f);
    SetNominalWordOf(kDc, 25, "1234");
    LoadGains();
    LoadCalibValues();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), 3.296f);
    EXPECT_EQ(NominalWordOf(kDc, 25), "52A7");
}

// ---- CalibValues ----

TEST_F(NominalSettings, OverlayWords)
{
    StartWith("[CalibValues]\nDC.19=1234\nVF.C6=00000A200000\nRTD.28=9999\n");
    EXPECT_EQ(NominalWordOf(kDc, 25), "1234");
    EXPECT_EQ(NominalWordOf(kVf, 198), "00000A200000");
    EXPECT_EQ(NominalWordOf(kRtd, 40), "9999");
    EXPECT_EQ(NominalWordOf(kDc, 32), "8948");
    EXPECT_FALSE(NominalDirty);
}

TEST_F(NominalSettings, SkipWordsThatAreNone)
{
    StartWith("[CalibValues]\nDC.19=12\nDC.1A=abcd\nDC.1B=12345\nVF.C3=1234\nVF.C4=000000100000\nVF.19=1234\n"
              "XX.19=1234\nDC.18=1234\nDC.C3=1234\nDC.QD=123\nTC.RA=12345678X\nAN.XX=1234\nAN.VO=12\nDC=1234\n");
    for (int board = 0; board < kBoards; ++board)
        for (int word = 25; word <= 50; ++word)
            EXPECT_EQ(NominalWordOf(board, word), DefaultNominalWordOf(board, word)) << board << " " << word;
    EXPECT_EQ(NominalWordOf(kVf, 195), "FFD9B8100000");
    EXPECT_EQ(StoredAnalogWords[0], "01E0");
}

TEST_F(NominalSettings, KeepASkippedKeyUntilTheNextSave)
{
    StartWith("[CalibValues]\nDC.19=1234\nNonsense=1\n");
    EXPECT_EQ(Stored("CalibValues", "Nonsense"), "1");
    SaveCalibValues();
    EXPECT_EQ(Stored("CalibValues", "Nonsense"), "");
    EXPECT_EQ(Stored("CalibValues", "DC.19"), "1234");
}

TEST_F(NominalSettings, CarryTheWordPairsOfTheBoards)
{
    StartWith("[CalibValues]\nDC.QD=11112222\nLC.QD=33334444\nTC.RA=55556666\nTemp.RA=77778888\n");
    EXPECT_EQ(NominalWordOf(kDc, 50), "1111");
    EXPECT_EQ(NominalWordOf(kDc, 48), "2222");
    EXPECT_EQ(NominalWordOf(kLc, 50), "3333");
    EXPECT_EQ(NominalWordOf(kLc, 48), "4444");
    EXPECT_EQ(NominalWordOf(kTc, 29), "5555");
    EXPECT_EQ(NominalWordOf(kTc, 45), "6666");
    EXPECT_EQ(NominalWordOf(kTemp, 29), "7777");
    EXPECT_EQ(NominalWordOf(kTemp, 45), "8888");
    SaveCalibValues();
    EXPECT_EQ(Stored("CalibValues", "DC.QD"), "11112222");
    EXPECT_EQ(Stored("CalibValues", "LC.QD"), "33334444");
    EXPECT_EQ(Stored("CalibValues", "TC.RA"), "55556666");
    EXPECT_EQ(Stored("CalibValues", "Temp.RA"), "77778888");
    for (const char *key : {"DC.30", "DC.32", "TC.1D", "TC.2D", "DC.RA", "TC.QD", "AC.QD"})
        EXPECT_EQ(Stored("CalibValues", key), "") << key;
}

TEST_F(NominalSettings, SaveAWordBesideTheStepsOnlyWhenItDiffersFromTheImage)
{
    Start();
    SetNominalWordOf(kTemp, 30, "8123");
    SaveCalibValues();
    EXPECT_EQ(Stored("CalibValues", "Temp.1E"), "8123");
    EXPECT_EQ(Stored("CalibValues", "TC.1E"), "");
    Start();
    EXPECT_EQ(NominalWordOf(kTemp, 30), "8123");
    SetNominalWordOf(kTemp, 30, "8000");
    SaveCalibValues();
    EXPECT_EQ(Stored("CalibValues", "Temp.1E"), "");
}

TEST_F(NominalSettings, BringEveryLearnedStepWordBack)
{
    Start();
    for (int board = kDc; board <= kRtd; ++board) {
        SCType = board;
        for (int position = 0; position < kPositions; ++position)
            if (const int word = NvmWordAtPosition(position); word > 0)
                SetNominalWord(word, board == kVf ? "123456789ABC" : "1234");
    }
    EXPECT_TRUE(NominalDirty);
    SaveCalibValues();
    EXPECT_FALSE(NominalDirty);
    Start();
    int words = 0;
    for (int board = kDc; board <= kRtd; ++board) {
        SCType = board;
        for (int position = 0; position < kPositions; ++position)
            if (const int word = NvmWordAtPosition(position); word > 0) {
                EXPECT_EQ(GetNominalWord(word), board == kVf ? "123456789ABC" : "1234");
                ++words;
            }
    }
    EXPECT_EQ(words, 69) << "steps that trim a word, AC's two doubles counted twice";
}

// ---- simulation ----

TEST_F(NominalSettings, KeepWhatSimulatedMetersTaughtForTheSessionAlone)
{
    Start();
    const std::string before = Read("Ombrix.ini");
    const std::string word = NominalWordOf(kDc, 25);
    SetLearnedAside();
    HardwareMode = false;
    SetNominalSlopeOf(kDc, 25, 1.5f);
    SetNominalWordOf(kDc, 25, "1234");
    StoreAnalogWordsHex("1111222233334444555566667777888899990000");
    SaveGains();
    SaveCalibValues();
    CurrentOffsetPoint = "4000";
    SaveAnaCal();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), 1.5f);
    EXPECT_EQ(NominalWordOf(kDc, 25), "1234");
    EXPECT_EQ(StoredAnalogImage(), "1111222233334444555566667777888899990000");
    const std::string after = Read("Ombrix.ini");
    EXPECT_EQ(Replaced(after, "COffCalibPt=4000", "COffCalibPt=200"), before) << "the operator's choice alone is saved";
    EXPECT_NE(after, before);

    HardwareMode = true;
    TakeLearnedBack();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), DefaultSlopeOf(kDc, 25));
    EXPECT_EQ(NominalWordOf(kDc, 25), word);
    SaveGains();
    SaveCalibValues();
    SaveAnaCal();
    EXPECT_EQ(Read("Ombrix.ini"), after);
}

TEST_F(NominalSettings, StayAsTheyAreWhereNothingWasSetAside)
{
    Start();
    SetNominalSlopeOf(kDc, 25, 1.5f);
    SetNominalWordOf(kDc, 25, "1234");
    TakeLearnedBack();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), 1.5f);
    EXPECT_EQ(NominalWordOf(kDc, 25), "1234");
}

TEST_F(NominalSettings, SaveWhatRealMetersTaughtBeforeASimulationBegins)
{
    Start();
    SetNominalSlopeOf(kDc, 25, 1.5f);
    SetNominalWordOf(kDc, 25, "1234");
    SetLearnedAside();
    HardwareMode = false;
    SetNominalSlopeOf(kDc, 25, 9.5f);
    EXPECT_EQ(Stored("Gains", "DC.19"), "1.5000");
    EXPECT_EQ(IniGet("CalibValues", "DC.19"), "1234");
    HardwareMode = true;
    TakeLearnedBack();
    EXPECT_EQ(NominalSlopeOf(kDc, 25), 1.5f);
    EXPECT_EQ(NominalWordOf(kDc, 25), "1234");
}
