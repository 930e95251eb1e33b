// What a station has after its very first start, and that a second start leaves it alone.

#include <QDateTime>
#include <QFileInfo>

#include "model/settings_folder.h"
#include "platform/folder_hold.h"
#include "platform/text.h"

using namespace ombrix;

namespace {

const char *const kGains = "DC.19=3.2960 DC.1A=9.7370 DC.1F=3.2260 DC.20=3.3500 DC.21=3.1530 DC.22=3.3170 "
                           "DC.23=9.9100 DC.25=3.2420 DC.26=3.2740 DC.27=3.1740 DC.28=14.1100 "
                           "AC.1A=31.4000 AC.1F=3.2500 AC.20=4.8000 AC.21=3.3500 AC.22=3.5000 AC.23=6.6000 "
                           "AC.25=4.1000 AC.26=4.4000 AC.27=3.1000 AC.28=3.7000 "
                           "LC.19=3.2770 LC.1A=4.7000 LC.1E=12.2000 LC.1F=3.2770 LC.20=3.2180 LC.21=3.2170 "
                           "LC.22=3.2410 LC.23=3.4080 "
                           "TC.1A=11.3000 TC.1D=10.0000 TC.21=3.0945 TC.24=3.1399 TC.2D=10.0000 TC.2F=11.3000 "
                           "AC2.1A=31.4000 AC2.1F=3.2500 AC2.20=4.8000 AC2.21=3.3500 AC2.22=3.5000 AC2.23=6.6000 "
                           "AC2.25=4.1000 AC2.26=4.4000 AC2.27=3.1000 AC2.28=3.7000 "
                           "AC3.1A=31.4000 AC3.1F=3.2500 AC3.20=4.8000 AC3.21=3.3500 AC3.22=3.5000 AC3.23=6.6000 "
                           "AC3.25=4.1000 AC3.26=4.4000 AC3.27=3.1000 AC3.28=3.7000 "
                           "Temp.1A=11.3000 Temp.1D=10.0000 Temp.21=3.0945 Temp.24=3.1399 Temp.2D=10.0000 "
                           "Temp.2F=11.3000 "
                           "RTD.1A=11.3000 RTD.1F=3.0945 RTD.20=3.0945 RTD.21=3.0945 RTD.22=3.1399 RTD.23=3.1399 "
                           "RTD.25=3.0945 ";

const char *const kCalibValues =
    "DC.19=52A7 DC.1A=0000 DC.1F=8000 DC.20=8948 DC.21=7628 DC.22=7F52 DC.23=7F5D DC.25=75B5 "
    "DC.26=7EE0 DC.27=726A DC.28=ACA9 DC.QD=06603400 "
    "AC.1A=0000 AC.1F=8000 AC.20=8000 AC.21=8000 AC.22=8000 AC.23=8000 AC.25=8000 AC.26=8000 "
    "AC.27=8000 AC.28=8000 "
    "LC.19=8000 LC.1A=0000 LC.1E=0000 LC.1F=8000 LC.20=6DA0 LC.21=6D50 LC.22=74D0 LC.23=A900 "
    "LC.QD=06603400 "
    "TC.1A=0000 TC.21=4708 TC.24=5538 TC.2F=0000 TC.RA=6F106DE8 "
    "VF.C3=FFD9B8100000 VF.C6=FFD9B81028F6 VF.C9=FF77451428F6 "
    "AC2.1A=0000 AC2.1F=8000 AC2.20=8000 AC2.21=8000 AC2.22=8000 AC2.23=8000 AC2.25=8000 "
    "AC2.26=8000 AC2.27=8000 AC2.28=8000 "
    "AC3.1A=0000 AC3.1F=8000 AC3.20=8000 AC3.21=8000 AC3.22=8000 AC3.23=8000 AC3.25=8000 "
    "AC3.26=8000 AC3.27=8000 AC3.28=8000 "
    "Temp.1A=0000 Temp.21=4708 Temp.24=5538 Temp.2F=0000 Temp.RA=6F106DE8 "
    "RTD.1A=0000 RTD.1F=4708 RTD.20=4708 RTD.21=4708 RTD.22=5538 RTD.23=5538 RTD.25=8000 "
    "AN.VO=01E0 AN.VG=FA20 AN.CO=0048 AN.CG=FD70 AN.BPM=0048 AN.BPP=FD70 AN.DVO=0048 "
    "AN.DVG=FD70 AN.DCO=01E0 AN.DCG=FA20 ";

const char *const kFilters = "DC.1A=00108 DC.19=00108 DC.20=00108 DC.21=00108 DC.22=00108 DC.23=00108 DC.25=00108 "
                             "DC.26=00108 DC.27=00108 DC.28=00108 DC.1F=00108 DC.VE=00117 "
                             "AC.1A=00108 AC.20=00108 AC.1F=00108 AC.21=00108 AC.22=00108 AC.23=00108 AC.25=00108 "
                             "AC.26=00108 AC.27=00108 AC.28=00108 AC.VE=00117 "
                             "LC.1A=00108 LC.1E=00108 LC.19=00108 LC.20=00108 LC.21=00108 LC.22=00108 LC.23=00108 "
                             "LC.1F=00108 LC.VE=00117 "
                             "TC.1A=00106 TC.21=00106 TC.2F=00106 TC.24=00106 "
                             "VF.C3=00108 VF.C6=00108 VF.C9=00108 "
                             "AC2.ZA=00108 AC2.TR=00108 AC2.1A=00106 AC2.1F=00106 AC2.20=00106 AC2.21=00106 "
                             "AC2.22=00106 AC2.23=00106 AC2.25=00106 AC2.26=00106 AC2.27=00106 AC2.28=00106 "
                             "AC2.VE=00117 "
                             "AC3.ZA=00117 AC3.NG=00117 AC3.1A=00117 AC3.1F=00117 AC3.20=00117 AC3.RT=00118 "
                             "AC3.21=00117 AC3.22=00117 AC3.23=00117 AC3.25=00117 AC3.26=00117 AC3.27=00117 "
                             "AC3.28=00117 AC3.VE=00117 "
                             "Temp.1A=00108 Temp.21=00108 Temp.RT=00107 Temp.2F=00108 Temp.24=00108 "
                             "RTD.1A=00106 RTD.25=00106 RTD.1F=00106 RTD.20=00106 RTD.21=00106 RTD.22=00106 "
                             "RTD.23=00106 ";

// "A=1 B=2 " as the lines of a section.
std::string SectionText(const std::string &name, const std::string &pairs)
{
    std::string text = "[" + name + "]\n";
    for (const std::string &pair : Split(Trim(pairs), ' '))
        text += pair + "\n";
    return text;
}

std::string FirstFile()
{
    return SectionText("Comms", "CALPort=2 DPMPort=1 Switch=1") + SectionText("Gains", kGains) +
           SectionText("CalibValues", kCalibValues) +
           SectionText("Ratio", "DCRange=0.2 DCReading=16390 LCRange=0 LCReading=16390") +
           SectionText("QuasiDiode", "QDTarget=0.0") + SectionText("Filter", kFilters) +
           SectionText("SFNames", "DC=zsc1.dpm AC=zsc2_1.dpm LC=zsc3.dpm TC=zscTC.dpm AC2=zsc2_2V.dpm "
                                  "AC3=zsc2_3W.dpm Temp=zsc4.dpm RTD=zscRTD.dpm") +
           SectionText("Ports", "COM1=/dev/ttyS0 COM2=/dev/ttyS1") +
           SectionText("AnaCal", "COffCalibPt=200 DACType=1 VOffset=01E0 VGain=FA20 COffset=0048 CGain=FD70 "
                                 "BP_Minus10V=0048 BP_Plus10V=FD70 DD_VOffset=0048 DD_VGain=FD70 DD_COffset=01E0 "
                                 "DD_CGain=FA20");
}

// Everything that the settings hold, as one text.
std::string StateText()
{
    std::string text =
        std::to_string(CalPort) + std::to_string(MeterPort) + (UseSwitch ? "s" : "-") + (Automatic ? "a" : "-") + "\n";
    for (int board = 0; board < kBoards; ++board) {
        for (int word = 25; word <= 50; ++word)
            text += Format(NominalSlopeOf(board, word), 6) + " " + NominalWordOf(board, word) + "\n";
        SCType = board;
        for (int position = 0; position < kPositions; ++position)
            text += FilterCodeAtPosition(position) + "\n";
    }
    SCType = -1;
    for (int word : {195, 198, 201})
        text += NominalWordOf(kVf, word) + "\n";
    for (const std::string &word : StoredAnalogWords)
        text += word + "\n";
    for (const std::string &name : SendFileDefaults)
        text += name + "\n";
    text += std::to_string(DcRatioRange) + " " + std::to_string(StrainRange) + " " + Format(DcRatioReading, 3) + " " +
            Format(StrainReading, 3) + "\n";
    return text + DacTypeText + "|" + CurrentOffsetPoint + "|" + RtdDesiredText + "|" + QDTargetText + "|" + VFLow +
           "|" + VFHigh + "|" + PortDevice(1) + "|" + PortDevice(2);
}

class FirstStart : public SettingsFolder
{
};

}  // namespace

TEST_F(FirstStart, LeavesACompleteFile)
{
    Start();
    EXPECT_EQ(Read("Ombrix.ini"), FirstFile());
    EXPECT_TRUE(warnings.empty());
    EXPECT_TRUE(remarks.empty());
}

TEST_F(FirstStart, HasCalibratorOnCom2MeterOnCom1AutomaticAndTheSwitch)
{
    Start();
    EXPECT_EQ(CalPort, 2);
    EXPECT_EQ(MeterPort, 1);
    EXPECT_TRUE(Automatic);
    EXPECT_TRUE(UseSwitch);
}

TEST_F(FirstStart, LeavesNothingDirty)
{
    Start();
    EXPECT_TRUE(IniReady);
    EXPECT_FALSE(IniDirty);
    EXPECT_FALSE(SlopesDirty);
    EXPECT_FALSE(NominalDirty);
    EXPECT_FALSE(WordsDirty);
}

TEST_F(FirstStart, IsLoadedBackToTheSameState)
{
    Start();
    const std::string first = StateText();
    Start();
    EXPECT_EQ(StateText(), first);
}

TEST_F(FirstStart, IsLeftAloneByASecondStartAndByTheSavesOfQuit)
{
    Start();
    const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1'000'000'000);
    QFile file("Ombrix.ini");
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    file.close();
    Start();
    SaveGains();
    SaveCalibValues();
    SaveCommSettings();
    SaveAnaCal();
    EXPECT_EQ(QFileInfo("Ombrix.ini").lastModified(), longAgo) << "nothing was written";
}

TEST_F(FirstStart, TouchesNoOlderFile)
{
    Start();
    const QStringList entries = QDir().entryList(QDir::Files);
    EXPECT_EQ(entries, QStringList({"Ombrix.ini", kLockFile}));
}

TEST_F(FirstStart, KeepsAFileWithTheLineEndsOfWindows)
{
    std::string windows;
    for (char c : FirstFile())
        windows += c == '\n' ? std::string("\r\n") : std::string(1, c);
    Write("Ombrix.ini", windows);
    Start();
    const std::string state = StateText();
    EXPECT_EQ(Read("Ombrix.ini"), windows) << "nothing changed, so nothing is written";
    QFile::remove("Ombrix.ini");
    Start();
    EXPECT_EQ(StateText(), state);
}

TEST_F(FirstStart, KeepsUnknownSectionsAndKeys)
{
    Write("Ombrix.ini", "[Plant]\nLine=7\n[Comms]\nCALPort=1\nDPMPort=2\nSwitch=0\nNote=bench 3\n");
    Start();
    const std::string saved = Read("Ombrix.ini");
    EXPECT_EQ(saved.substr(0, saved.find("[Gains]")),
              "[Plant]\nLine=7\n[Comms]\nCALPort=1\nDPMPort=2\nSwitch=0\nNote=bench 3\n");
}

TEST_F(FirstStart, OverAnUnreadableFileRunsOnDefaultsAndWritesNothing)
{
    QDir().mkdir("Ombrix.ini");
    Start();
    EXPECT_EQ(remarks.size(), 1u);
    EXPECT_EQ(CalPort, 2);
    EXPECT_EQ(NominalWordOf(kDc, 25), "52A7");
    CalPort = 1;
    SaveCommSettings();
    EXPECT_TRUE(QFileInfo("Ombrix.ini").isDir());
    EXPECT_TRUE(QDir("Ombrix.ini").isEmpty());
}
