#include "model/settings.h"

#include "model/settings_folder.h"

using namespace ombrix;

namespace {

class Settings : public SettingsFolder
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
        return IniGet(section, key);
    }
};

std::string Ports()
{
    return std::to_string(CalPort) + std::to_string(MeterPort) + (UseSwitch ? "1" : "0") + (Automatic ? "A" : "M");
}

}  // namespace

// ---- Comms ----

TEST_F(Settings, TakeTheSixValidPortPairs)
{
    for (const std::string pair : {"01", "02", "10", "12", "20", "21"}) {
        StartWith("[Comms]\nCALPort=" + pair.substr(0, 1) + "\nDPMPort=" + pair.substr(1) + "\nSwitch=0\n");
        EXPECT_EQ(Ports(), pair + "0" + (pair[0] == '0' ? "M" : "A"));
    }
}

TEST_F(Settings, ResetABadPortPairAndLeaveTheSwitchAsItStands)
{
    for (const std::string pair : {"00", "11", "22", "13", "x1", "31"}) {
        StartWith("[Comms]\nCALPort=" + pair.substr(0, 1) + "\nDPMPort=" + pair.substr(1) + "\nSwitch=0\n");
        EXPECT_EQ(Ports(), "210A") << pair;
    }
}

TEST_F(Settings, TakeTheSssFileWhenOneOfTheThreeIsNotOneCharacter)
{
    Write("Ombrix.sss", "120\r\n");
    StartWith("[Comms]\nCALPort=2\nDPMPort=10\nSwitch=1\n");
    EXPECT_EQ(Ports(), "120A");
    EXPECT_EQ(Stored("Comms", "DPMPort"), "2");
    StartWith("[Comms]\nCALPort=2\nDPMPort=1\n");
    EXPECT_EQ(Ports(), "120A") << "the switch is missing: the line replaces all three";
    EXPECT_EQ(Read("Ombrix.sss"), "120\r\n");
}

TEST_F(Settings, TakeAShortSssLineWithTheSwitchOn)
{
    Write("Ombrix.sss", "12");
    Start();
    EXPECT_EQ(Ports(), "121A");
    Write("Ombrix.sss", "2");
    StartWith("");
    EXPECT_EQ(Ports(), "211A");
}

TEST_F(Settings, UseTheSwitchForAnyCharacterButZero)
{
    StartWith("[Comms]\nCALPort=1\nDPMPort=2\nSwitch=x\n");
    EXPECT_EQ(Ports(), "121A");
    EXPECT_EQ(Stored("Comms", "Switch"), "1");
}

TEST_F(Settings, RememberTheWiring)
{
    Start();
    CalPort = 1;
    MeterPort = 0;
    UseSwitch = false;
    SaveCommSettings();
    Start();
    EXPECT_EQ(Ports(), "100A");
}

// ---- Ratio ----

TEST_F(Settings, ReadTheTextsOfBothRatioFamilies)
{
    const struct {
        const char *text;
        int dc;
        int lc;
    } rows[] = {{"0.2", 0, 0}, {"2", 1, 1}, {"20", 2, 2}, {"50", 1, 1},    {"100", 2, 2}, {"250", 0, 3},
                {"500", 0, 4}, {"0", 0, 0}, {"7", 0, 0},  {"2.0 V", 1, 1}, {"x", 0, 0}};
    for (const auto &row : rows) {
        const std::string text = row.text;
        StartWith("[Ratio]\nDCRange=" + text + "\nDCReading=1\nLCRange=" + text + "\nLCReading=1\n");
        EXPECT_EQ(DcRatioRange, row.dc) << text;
        EXPECT_EQ(StrainRange, row.lc) << text;
    }
}

TEST_F(Settings, BringEveryRatioRangeBack)
{
    const char *dc[] = {"0.2", "2", "20"};
    const char *lc[] = {"0", "50", "100", "250", "500"};
    Start();
    for (int range = 0; range < 5; ++range) {
        DcRatioRange = range % 3;
        StrainRange = range;
        SaveRatios();
        EXPECT_EQ(IniGet("Ratio", "DCRange"), dc[range % 3]);
        EXPECT_EQ(IniGet("Ratio", "LCRange"), lc[range]);
        Start();
        EXPECT_EQ(DcRatioRange, range % 3);
        EXPECT_EQ(StrainRange, range);
    }
}

TEST_F(Settings, ReplaceARatioReadingOutsideItsLimits)
{
    const struct {
        const char *text;
        float reading;
    } rows[] = {{"0", 16390},   {"-1", 16390}, {"100000", 16390},     {"1e9", 16390},
                {"abc", 16390}, {"0.5", 0.5f}, {"99999.5", 99999.5f}, {"12345", 12345}};
    for (const auto &row : rows) {
        StartWith(std::string("[Ratio]\nDCRange=2\nDCReading=") + row.text + "\n");
        EXPECT_EQ(DcRatioReading, row.reading) << row.text;
        EXPECT_EQ(StrainReading, 16390);
    }
    DcRatioReading = 16390.5f;
    SaveRatios();
    EXPECT_EQ(Stored("Ratio", "DCReading"), "16390.5");
}

TEST_F(Settings, TakeTheFilFilesWhenRangeOrReadingIsMissing)
{
    Write("dcratio.fil", "20,12000\r\n");
    Write("strain.fil", "\"250\"\r\n 9000 \r\n");
    StartWith("[Ratio]\nDCRange=2\n");
    EXPECT_EQ(DcRatioRange, 2) << "both come from the file, not one of each";
    EXPECT_EQ(DcRatioReading, 12000);
    EXPECT_EQ(StrainRange, 3);
    EXPECT_EQ(StrainReading, 9000);
    EXPECT_EQ(Stored("Ratio", "DCRange"), "20");
    EXPECT_EQ(Stored("Ratio", "LCReading"), "9000");
    StartWith("[Ratio]\nDCReading=8000\n");
    EXPECT_EQ(DcRatioRange, 2);
    EXPECT_EQ(DcRatioReading, 12000);
}

// ---- texts ----

TEST_F(Settings, TakeTheTextsFromTheirOlderFilesOnce)
{
    Write("ISource.sss", "\"1200.5\"\n");
    Write("QDTarget.sss", "-0.30\n");
    Write("VFLimits.sss", "12, 8\n");
    Start();
    EXPECT_EQ(RtdDesiredText, "1200.5");
    EXPECT_EQ(QDTargetText, "-0.30");
    EXPECT_EQ(VFHigh, "12");
    EXPECT_EQ(VFLow, "8");
    QFile::remove("ISource.sss");
    QFile::remove("QDTarget.sss");
    QFile::remove("VFLimits.sss");
    Start();
    EXPECT_EQ(RtdDesiredText, "1200.5");
    EXPECT_EQ(QDTargetText, "-0.30");
    EXPECT_EQ(VFHigh, "12");
    EXPECT_EQ(VFLow, "8");
}

TEST_F(Settings, PreferTheirOwnTextsToTheOlderFiles)
{
    Write("ISource.sss", "1200.5");
    Write("QDTarget.sss", "7");
    Write("VFLimits.sss", "12,8");
    StartWith("[ISource]\nISDesired=1356.4\n[QuasiDiode]\nQDTarget=0.1\n[VFLimits]\nVFLow=5\n");
    EXPECT_EQ(RtdDesiredText, "1356.4");
    EXPECT_EQ(QDTargetText, "0.1");
    EXPECT_EQ(VFHigh, "12");
    EXPECT_EQ(VFLow, "5");
}

TEST_F(Settings, WriteNoEmptyText)
{
    Start();
    EXPECT_EQ(RtdDesiredText, "");
    EXPECT_EQ(VFLow, "");
    EXPECT_EQ(FindIniSection("ISource"), -1);
    VFLow = "3";
    VFHigh = "4";
    SaveVFLimits();
    EXPECT_EQ(Stored("VFLimits", "VFHigh"), "4");
    IniReady = true;
    VFLow = "";
    SaveVFLimits();
    EXPECT_EQ(Stored("VFLimits", "VFLow"), "");
    EXPECT_EQ(IniKeyCount("VFLimits"), 1);
}

TEST_F(Settings, BringChangedTextsBack)
{
    Start();
    RtdDesiredText = "1400.0";
    QDTargetText = "0.25";
    VFLow = "10";
    VFHigh = "20";
    SaveISource();
    SaveQDTarget();
    SaveVFLimits();
    Start();
    EXPECT_EQ(RtdDesiredText, "1400.0");
    EXPECT_EQ(QDTargetText, "0.25");
    EXPECT_EQ(VFLow, "10");
    EXPECT_EQ(VFHigh, "20");
}

// ---- Filter ----

TEST_F(Settings, LetAStoredFilterCodeOfFiveCharactersWin)
{
    StartWith("[Filter]\nAC.1A=00116\nAC.20=0011\nDC.20=001177\n");
    SCType = kAc;
    EXPECT_EQ(FilterCodeAtPosition(1), "00116");
    EXPECT_EQ(FilterCodeAtPosition(3), "00116") << "both GND steps share one key";
    EXPECT_EQ(FilterCodeAtPosition(2), "00108");
    SCType = kDc;
    EXPECT_EQ(FilterCodeAtPosition(4), "00108");
    EXPECT_EQ(Stored("Filter", "AC.1A"), "00116");
    EXPECT_EQ(Stored("Filter", "AC.20"), "00108") << "the default is stored back";
    EXPECT_EQ(Stored("Filter", "DC.20"), "00108");
}

TEST_F(Settings, TakeAFilterCodeUnderTheTurnedKeyWhenItsOwnIsMissing)
{
    StartWith("[Filter]\n20.DC=00106\n21.DC=00106\nDC.21=00117\n");
    SCType = kDc;
    EXPECT_EQ(FilterCodeAtPosition(4), "00106");
    EXPECT_EQ(FilterCodeAtPosition(5), "00117");
    EXPECT_EQ(Stored("Filter", "DC.20"), "00106");
}

TEST_F(Settings, StoreNoFilterForAPositionWithoutADefault)
{
    StartWith("[Filter]\nDC.FC=00106\n");
    SCType = kDc;
    EXPECT_EQ(FilterCodeAtPosition(1), "00118") << "First Cycle has a key and no default";
    EXPECT_EQ(Stored("Filter", "DC.RA"), "");
}

// ---- SFNames ----

TEST_F(Settings, HaveBuiltInSendFileNames)
{
    Start();
    EXPECT_EQ(SendFileDefaults, (std::array<std::string, 9>{"zsc1.dpm", "zsc2_1.dpm", "zsc3.dpm", "zscTC.dpm", "",
                                                            "zsc2_2V.dpm", "zsc2_3W.dpm", "zsc4.dpm", "zscRTD.dpm"}));
}

TEST_F(Settings, TakeSendFileNamesFromTheOlderFile)
{
    Write("SFNames.sss", "DC,\"plant, 7.dpm\"\r\nAC3,x.dpm\r\nVF,v.dpm\r\nXX,y.dpm\r\n");
    Start();
    EXPECT_EQ(SendFileDefaults[kDc], "plant, 7.dpm");
    EXPECT_EQ(SendFileDefaults[kAc3], "x.dpm");
    EXPECT_EQ(SendFileDefaults[kVf], "");
    EXPECT_EQ(SendFileDefaults[kAc], "zsc2_1.dpm");
    EXPECT_EQ(Stored("SFNames", "DC"), "plant, 7.dpm");
    EXPECT_EQ(Stored("SFNames", "VF"), "");
}

TEST_F(Settings, ReplaceOnlyTheSendFileNamesThatAreStored)
{
    Write("SFNames.sss", "AC,old.dpm\n");
    StartWith("[SFNames]\nDC=/home/cal/a=b.dpm\nAN=n.dpm\nNone=z.dpm\n");
    EXPECT_EQ(SendFileDefaults[kDc], "/home/cal/a=b.dpm");
    EXPECT_EQ(SendFileDefaults[kAc], "zsc2_1.dpm") << "the older file counts only without a section";
}

TEST_F(Settings, BringAChangedSendFileNameBack)
{
    Start();
    SendFileDefaults[kRtd] = "/data/Pr\xC3\xBC"
                             "f.dpm";
    SaveSendFileNames();
    Start();
    EXPECT_EQ(SendFileDefaults[kRtd], "/data/Pr\xC3\xBC"
                                      "f.dpm");
}

// ---- the start as a whole ----

TEST_F(Settings, AreWrittenOnceAtTheEndOfAStart)
{
    // What the loaders before the last one change is on disk when the start is over.
    StartWith("[Comms]\nCALPort=9\nDPMPort=9\nSwitch=0\n");
    EXPECT_FALSE(IniDirty);
    EXPECT_EQ(Stored("Comms", "CALPort"), "2");
    EXPECT_EQ(Stored("Comms", "Switch"), "0");
}

TEST_F(Settings, SayOnceAtAStartThatTheirFolderTakesNoFile)
{
    const QString home = QDir::currentPath();
    QDir().mkdir("gone");
    QDir::setCurrent("gone");
    QDir().rmdir(home + "/gone");
    Start();
    EXPECT_EQ(remarks.size(), 1u);
    InitTables();  // a second window of one program starts with a store that is ready
    EXPECT_EQ(remarks.size(), 2u);
    EXPECT_TRUE(IniDirty);
    QDir::setCurrent(home);
}

TEST_F(Settings, SayOnceThatAWriteFailed)
{
    Start();
    QFile::remove("Ombrix.ini");
    QDir().mkdir("Ombrix.ini");
    CalPort = 1;
    MeterPort = 2;
    SaveCommSettings();
    EXPECT_EQ(remarks.size(), 1u);
    EXPECT_TRUE(IniDirty);
    QDir().rmdir("Ombrix.ini");
    SaveCommSettings();
    EXPECT_FALSE(IniDirty) << "the next save catches up";
    EXPECT_EQ(Stored("Comms", "CALPort"), "1");
}
