#include "shell/station.h"

#include "links/calibrator.h"
#include "model/ini_store.h"
#include "platform/file_faults.h"
#include "platform/folder_hold.h"
#include "platform/safe_file.h"
#include "session/journal_reader.h"
#include "shell/main_window.h"
#include "shell/shell_fixture.h"
#include "shell/trace_start.h"

#include <QFile>
#include <QMainWindow>

#include <cerrno>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class StartUp : public ShellTest
{
protected:
    // As on a full disk: the journal's last line is none of an end.
    static void EndsUnrecorded()
    {
        UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 0}; });
        testing::internal::CaptureStderr();
        CloseStation();
        UseFileFaults(nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "ombrix: 1 events of the journal could not be recorded\n");
    }
};

std::string GroupTitle(int index)
{
    const QString name = QString("fraAA(%1)").arg(index);
    return ScriptedOperator::Find(name.toStdString())->property("title").toString().toStdString();
}

}  // namespace

TEST_F(StartUp, WithNoSettingsFileTheDefaultsStand)
{
    EXPECT_EQ(CalPort, 2);
    EXPECT_EQ(MeterPort, 1);
    EXPECT_TRUE(Automatic);
    EXPECT_TRUE(UseSwitch);
    EXPECT_TRUE(HardwareMode);
    EXPECT_TRUE(RealTimeDelays);
    EXPECT_EQ(SCType, -1);
    EXPECT_EQ(LastAcBoard, kAc3);
    EXPECT_EQ(LastTempBoard, kTc);
    EXPECT_TRUE(SimToggleAllowed);
    EXPECT_TRUE(TabEventsMuted);
}

TEST_F(StartUp, TheFirstSightIsTheSetupPageWithEstablishReady)
{
    person.Waits(10);
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(Page(), 1);
    EXPECT_TRUE(IsEnabled("cmdEstablish"));
    EXPECT_TRUE(HasFocus("cmdEstablish"));
    EXPECT_EQ(Text("cmdEstablish"), "Establish");
    EXPECT_TRUE(IsOn("optAutomatic"));
    EXPECT_TRUE(IsOn("optCAL_COM2"));
    EXPECT_TRUE(IsOn("optDPM_COM1"));
    EXPECT_TRUE(IsOn("optSwYes"));
    EXPECT_FALSE(Sees("lblStatus"));
    EXPECT_FALSE(Sees("shpStatus"));
}

TEST_F(StartUp, TheFourGroupsStandInTheirOrder)
{
    EXPECT_EQ(GroupTitle(0), "Mode");
    EXPECT_EQ(GroupTitle(2), "Calibrator Communications");
    EXPECT_EQ(GroupTitle(3), "Meter Communications");
    EXPECT_EQ(GroupTitle(1), "Use Meter2 As Output Switch");
    const auto top = [](int index) { return ScriptedOperator::Find("fraAA(" + std::to_string(index) + ")")->y(); };
    EXPECT_LT(top(0), top(2));
    EXPECT_LT(top(2), top(3));
    EXPECT_LT(top(3), top(1));
}

TEST_F(StartUp, StepsAreBlankAndOffAndSetupIsOff)
{
    for (int position = 0; position < kPositions; position++) {
        EXPECT_EQ(Text(StepButton(position)), "");
        EXPECT_TRUE(Sees(StepButton(position)));
        EXPECT_FALSE(IsEnabled(StepButton(position)));
    }
    EXPECT_FALSE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(IsEnabled("cmdQuit"));
    EXPECT_EQ(Text("cmdSetup"), "Setup");
    EXPECT_EQ(Text("cmdQuit"), "Quit");
}

TEST_F(StartUp, TheSixTabsCarryTheirFamilies)
{
    ASSERT_EQ(Strip()->count(), 6);
    const std::vector<std::string> captions = {"DC", "AC", "LC", "TC", "VF", "AnaCal"};
    for (int tab = 0; tab < 6; tab++)
        EXPECT_EQ(TabText(tab), captions[static_cast<std::size_t>(tab)]);
    EXPECT_EQ(Strip()->currentIndex(), 0);
}

TEST_F(StartUp, RevisionOfZeroGivesATitleWithoutASecondPoint)
{
    EXPECT_EQ(frmOmbrix->windowTitle(), "Ombrix - Version 1.0");
    EXPECT_EQ(VersionText(1, 2, 0), " 1.2");
    EXPECT_EQ(VersionText(1, 2, 3), " 1.2.3");
}

TEST_F(StartUp, QuitNeverGetsTheFocusFromAButtonThatGoesOff)
{
    EstablishSimulated();
    ScriptedOperator::Find("cmdSetup")->setFocus();
    ASSERT_TRUE(HasFocus("cmdSetup"));
    SetNavigation(Navigation::Held);
    EXPECT_FALSE(HasFocus("cmdSetup"));
    EXPECT_FALSE(HasFocus("cmdQuit"));
}

TEST_F(StartUp, TheWindowOpensAt1100By760OrAsLargeAsTheScreenLets)
{
    EXPECT_EQ(frmOmbrix->size(), QSize(1100, 760));
    EXPECT_EQ(FirstSize(QSize(1920, 1050)), QSize(1100, 760));
    const QSize small = FirstSize(QSize(960, 540));
    EXPECT_EQ(small.width(), 960);
    EXPECT_LT(small.height(), 540) << "the desktop's title bar finds room";
    frmOmbrix->resize(small);
    EXPECT_EQ(frmOmbrix->size(), small);
}

TEST_F(StartUp, NothingIsSentBeforeEstablish)
{
    EXPECT_EQ(MeterOpened(), 0);
    EXPECT_EQ(CalibratorOpened(), 0);
}

TEST_F(StartUp, TheStationOpensAgainInOneProcess)
{
    EstablishSimulated();
    CloseStation();
    OpenWholeStation(Painted::No);
    EXPECT_EQ(Page(), 1);
    EXPECT_FALSE(Established);
    EXPECT_TRUE(HardwareMode);
    EXPECT_EQ(Text(StepButton(0)), "");
    EXPECT_EQ(TabText(0), "DC");
    EXPECT_EQ(Text("lblRev"), "");
    EXPECT_FALSE(Sees("lblSim"));
    EstablishSimulated();
    EXPECT_TRUE(Established);
}

TEST(Theme, ComesFromTheSettings)
{
    VirtualClock clock;
    const WorkFolder folder;
    QFile file("Ombrix.ini");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Look]\nTheme=dark\n");
    file.close();
    OpenWholeStation(Painted::No);
    const QColor dark = frmOmbrix->palette().color(QPalette::Window);
    EXPECT_LT(dark.lightness(), 100);
    EXPECT_EQ(IniGet("Look", "Theme"), "dark");
    IniSet("Look", "Theme", "light");
    SaveIni();
    CloseStation();
    OpenWholeStation(Painted::No);
    EXPECT_GT(frmOmbrix->palette().color(QPalette::Window).lightness(), 150);
    CloseStation();
}

TEST_F(StartUp, TellsOfLostSettingsAndOfTheMissingGoodbyeBesideEachOther)
{
    EndsUnrecorded();
    ASSERT_EQ(WriteFile("Ombrix.ini", std::string(200, '\0') + "garbage"), "");
    OpenWholeStation(Painted::No);
    EXPECT_EQ(Text("lblRemark"), "The last run ended without goodbye");
    EXPECT_EQ(Text("lblKeptRemark"), "Ombrix.ini held no settings. It is kept as Ombrix.ini.old.");
}

TEST_F(StartUp, InAFolderThatAnotherStationHoldsSaysNothingOfAMissingGoodbye)
{
    EndsUnrecorded();
    ReleaseIni();
    FolderHold other;
    ASSERT_TRUE(other.TakeFolderOf("Ombrix.ini"));
    OpenWholeStation(Painted::No);
    EXPECT_EQ(Text("lblRemark"), "");
    const auto events = ReadJournal(".");
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events.back().kind, "start");
}

TEST_F(StartUp, BehindACleanEndThatTheJournalCouldNotTakeSaysNothingOfAMissingGoodbye)
{
    BeginTrace(".");
    EndsUnrecorded();
    OpenWholeStation(Painted::No);
    EXPECT_EQ(Text("lblRemark"), "");
    EXPECT_EQ(ReadJournal(".").back().kind, "start");
    EndsUnrecorded();
    OpenWholeStation(Painted::No);
    EXPECT_EQ(Text("lblRemark"), "The last run ended without goodbye") << "that goodbye was of the run before";
}

TEST_F(StartUp, WithoutAGuardTheStatusLineAndStandardErrorSayItAndTheStationWorks)
{
    testing::internal::CaptureStderr();
    OpenGuard("/nowhere/ombrix-guard");
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(told, "ombrix: No output guard: a kill leaves the output as it stands (/nowhere/ombrix-guard can't be "
                    "started)\n");
    EXPECT_EQ(Text("lblKeptRemark"), "No output guard: a kill leaves the output as it stands");
    person.DoubleClicks("lblCalOut").Clicks("cmdEstablish").WaitsUntil("it is established", [] { return Established; });
    EXPECT_TRUE(person.Runs());
}
