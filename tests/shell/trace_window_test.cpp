#include "shell/trace_window.h"

#include "links/meter_operations.h"
#include "links/wire_text.h"
#include "platform/safe_file.h"
#include "shell/main_window.h"
#include "shell/shell_fixture.h"
#include "shell/trace_start.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QTableView>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kLine = 1;
constexpr int kWay = 2;
constexpr int kBytes = 3;
constexpr int kMeaning = 4;
constexpr int kLookMs = 150;

class TraceWindow : public ShellTest
{
protected:
    TraceWindow() { BeginTrace("."); }

    void PressF12()
    {
        person.PressesAtOnce(Qt::Key_F12).Waits(kLookMs);
        EXPECT_TRUE(person.Runs());
    }
    // As the links do in the middle of any work.
    void IsSaid(TraceLine line, ByteWay way, const std::string &bytes)
    {
        Trace(line, way, bytes);
        person.Waits(kLookMs);
        EXPECT_TRUE(person.Runs());
    }
    // By its keys, as an operator who tabs to it.
    void Chooses(const std::string &box, int key)
    {
        ScriptedOperator::Find(box)->setFocus();
        person.PressesAtOnce(key).Waits(kLookMs);
        EXPECT_TRUE(person.Runs());
    }
    void Finds(const std::string &text)
    {
        person.Types("txtTraceFind", text).PressesAtOnce(Qt::Key_Return);
        EXPECT_TRUE(person.Runs());
    }

    static int Rows() { return ScriptedOperator::Rows("tblTrace"); }
    static std::string Cell(int row, int column) { return ScriptedOperator::Cell("tblTrace", row, column); }
    static std::string Last(int column) { return Cell(Rows() - 1, column); }
    static int Chosen() { return qobject_cast<QTableView *>(ScriptedOperator::Find("tblTrace"))->currentIndex().row(); }
    static bool IsShown(int row)
    {
        const auto *table = qobject_cast<QTableView *>(ScriptedOperator::Find("tblTrace"));
        return table->viewport()->rect().contains(table->visualRect(table->model()->index(row, 0)).center());
    }
    static std::vector<std::string> Column(int column)
    {
        std::vector<std::string> texts;
        for (int row = 0; row < Rows(); ++row)
            texts.push_back(Cell(row, column));
        return texts;
    }
};

// Another run in this folder is killed when it has said something.
void AnotherRunIsKilled(const std::string &said)
{
    const pid_t child = fork();
    if (child == 0) {
        OpenTrace(".");
        Trace(TraceLine::Meter, ByteWay::Sent, said);
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
}

}  // namespace

TEST_F(TraceWindow, ShowsWhatWasSaidAndWhatItMeans)
{
    EstablishOnLines();
    PressF12();
    const auto meanings = Column(kMeaning);
    EXPECT_THAT(meanings, ::testing::Contains("no error"));
    EXPECT_THAT(meanings, ::testing::Contains("word 109 = 3201"));
    EXPECT_EQ(Cell(0, kBytes), "*RST ; *CLS\\n");
    EXPECT_EQ(Cell(0, kLine), "calibrator");
    EXPECT_EQ(Cell(0, kWay), "sent");
    EXPECT_EQ(Rows(), static_cast<int>(WireRows(LastTraceRecords(SIZE_MAX)).size()));
}

TEST_F(TraceWindow, GoesOnWithTheWorkBesideIt)
{
    EstablishOnLines();
    PressF12();
    const int before = Rows();
    person.Clicks("cmdCalib(6)").WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat").Waits(kLookMs);
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_GT(Rows(), before);
    EXPECT_THAT(Column(kMeaning), ::testing::Contains("OUT 200 V, operate"));
    EXPECT_TRUE(IsShown(Rows() - 1)) << "the last row is seen";
}

TEST_F(TraceWindow, OpensWhileABoxIsUp)
{
    person.Does([] { outlets.promptOperator("Remove any input signal from the meter", "Remove Input"); })
        .WaitsUntil("the box is up", [] { return ScriptedOperator::Box() != nullptr; })
        .PressesAtOnce(Qt::Key_F12)
        .WaitsFor("cmdTraceClose")
        .Clicks("cmdTraceClose")
        .AnswersBox("OK");
    EXPECT_TRUE(person.Runs()) << person.Trouble();
}

TEST_F(TraceWindow, ClosedHoldsNothingAndOpenedAgainHasMissedNothing)
{
    PressF12();
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(Rows(), 1);
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Sees("dlgTrace"));
    IsSaid(TraceLine::Meter, ByteWay::Received, "1.0\r");
    EXPECT_EQ(Rows(), 0);
    frmOmbrix->activateWindow();
    PressF12();
    EXPECT_EQ(Rows(), 2);
    EXPECT_EQ(Last(kMeaning), "display 1.0");
}

TEST_F(TraceWindow, FromTheTaskBarItComesBackWithWhatWasSaidMeanwhile)
{
    PressF12();
    ScriptedOperator::Find("dlgTrace")->showMinimized();
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    ScriptedOperator::Find("dlgTrace")->showNormal();
    EXPECT_EQ(Rows(), 1);
}

TEST_F(TraceWindow, HoldsNoMoreThanItsRowsAndTheLastOnes)
{
    PressF12();
    for (int i = 0; i < kTraceRows + 200; ++i)
        Trace(TraceLine::Meter, ByteWay::Received, std::to_string(i) + "\r");
    person.Waits(kLookMs);
    ASSERT_TRUE(person.Runs());
    IsSaid(TraceLine::Meter, ByteWay::Received, "last\r");
    EXPECT_EQ(Rows(), kTraceRows);
    EXPECT_EQ(Last(kBytes), "last\\r");
    EXPECT_EQ(Cell(0, kBytes), "201\\r");
}

TEST_F(TraceWindow, ShowsOneLineAlone)
{
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    Trace(TraceLine::Calibrator, ByteWay::Sent, "ERR?\n");
    PressF12();
    Chooses("cboTraceLine", Qt::Key_Down);
    EXPECT_EQ(Column(kLine), std::vector<std::string>{"meter"});
    Chooses("cboTraceLine", Qt::Key_Down);
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    IsSaid(TraceLine::Calibrator, ByteWay::Received, "0,\"No Error\"\r\n");
    EXPECT_EQ(Column(kMeaning), (std::vector<std::string>{"read the next error", "no error"}));
}

TEST_F(TraceWindow, PausedStandsStillAndThenHasAll)
{
    PressF12();
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    Click("chkTracePause");
    IsSaid(TraceLine::Meter, ByteWay::Received, "1.0\r");
    EXPECT_EQ(Rows(), 1);
    Click("chkTracePause");
    EXPECT_EQ(Rows(), 2);
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(Rows(), 3);
}

TEST_F(TraceWindow, FindsBytesAndMeaningsFromRowToRow)
{
    for (const char *frame : {"*1B1\r", "*1X16DZ\r", "*1B1\r", "*1W11136AF\r"})
        Trace(TraceLine::Meter, ByteWay::Sent, frame);
    PressF12();
    Finds("b1");
    EXPECT_EQ(Chosen(), 0);
    Finds("b1");
    EXPECT_EQ(Chosen(), 2);
    Finds("b1");
    EXPECT_EQ(Chosen(), 0) << "from the top again";
    Finds("36AF, restart");
    EXPECT_EQ(Chosen(), 3);
    EXPECT_EQ(Text("lblTraceFound"), "");
    Finds("nowhere");
    EXPECT_EQ(Chosen(), 3);
    EXPECT_EQ(Text("lblTraceFound"), "not found");
}

TEST_F(TraceWindow, TheLastFailureIsOneClickAway)
{
    PressF12();
    EXPECT_FALSE(IsEnabled("cmdTraceFailure"));
    EXPECT_EQ(Text("lblTraceFailure"), "");
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    MarkTrace(TraceLine::Meter, "The meter did not answer");
    for (int i = 0; i < 500; ++i)
        Trace(TraceLine::Calibrator, ByteWay::Sent, "ERR?\n");
    person.Waits(kLookMs);
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(Text("lblTraceFailure").ends_with("  The meter did not answer"));
    EXPECT_FALSE(IsShown(1));
    Click("cmdTraceFailure");
    EXPECT_EQ(Chosen(), 1);
    EXPECT_TRUE(IsShown(1));
    Click("chkTracePause");
    MarkTrace(TraceLine::Calibrator, "The calibrator did not answer ERR?");
    Click("cmdTraceFailure");
    EXPECT_EQ(Cell(Chosen(), kBytes), "The calibrator did not answer ERR?") << "paused too";
}

TEST_F(TraceWindow, AMeterThatFallsSilentIsMarkedWhereItDid)
{
    EstablishOnLines();
    PressF12();
    bench->SwitchFault("silent-meter", true);
    person.Does([] { ReadDisplayRaw(); }).Waits(1000 + kLookMs);
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(Last(kBytes), "The meter did not answer");
    EXPECT_EQ(Cell(Rows() - 2, kMeaning), "read the display");
}

TEST_F(TraceWindow, SavesAllOfTheRunAsATextThatReadsBack)
{
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    Trace(TraceLine::Meter, ByteWay::Received, "1.0\r");
    Trace(TraceLine::Calibrator, ByteWay::Received, "unfinished");
    PressF12();
    person.Clicks("cmdTraceSave").ChoosesFile("saved.txt");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    const auto rows = ParseWireTexts(ReadFile("saved.txt").value_or(""));
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[1].meaning, "display 1.0");
    EXPECT_EQ(rows[2].bytes, "unfinished");

    ASSERT_EQ(WriteFile("saved.txt", "mine"), "");
    person.Clicks("cmdTraceSave").ChoosesFile("saved.txt").AnswersBox("Cancel");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(ReadFile("saved.txt"), "mine") << "not without asking";
    person.Clicks("cmdTraceSave").ChoosesFile("saved.txt").AnswersBox("OK");
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(ParseWireTexts(ReadFile("saved.txt").value_or("")).size(), 3u);
}

TEST_F(TraceWindow, NothingIsSavedWhileAProcedureStandsSoThatNothingBarsItsStop)
{
    const auto isReady = [] { return IsEnabled("cmdTraceSave"); };
    EstablishOnLines();
    PressF12();
    EXPECT_TRUE(isReady());
    frmOmbrix->activateWindow();
    person.Clicks(StepButton(6)).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    person.Does([&isReady] {
        EXPECT_FALSE(isReady()) << "the reading is followed, with the output on";
        EXPECT_EQ(ScriptedOperator::Find("cmdTraceSave")->toolTip(), "Save when the procedure has ended");
    });
    person.Clicks("cmdStopReset").WaitsUntil("the page is left", [] { return !ProcedureRunning(); });
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_TRUE(isReady());
    EXPECT_EQ(ScriptedOperator::Find("cmdTraceSave")->toolTip(), "Alt+S");
}

TEST_F(TraceWindow, OpenedWhileAProcedureStandsItSavesNothingUntilThatHasEnded)
{
    person
        .Does([this] {
            RunProcedure([this] {
                ShowTraceWindow();
                EXPECT_FALSE(IsEnabled("cmdTraceSave"));
            });
        })
        .Waits(1);
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(IsEnabled("cmdTraceSave"));
}

TEST_F(TraceWindow, WhatCannotBeSavedIsToldInABox)
{
    PressF12();
    std::string told;
    outlets.nameFile = [](const std::string &, const std::string &, const std::string &) {
        return std::string("no-such-folder/saved.txt");
    };
    outlets.warnOperator = [&told](const std::string &text, const std::string &) { told = text; };
    Click("cmdTraceSave");
    EXPECT_TRUE(told.starts_with("The trace is not saved: ")) << told;
}

TEST_F(TraceWindow, ARunWithoutGoodbyeIsOfferedAndOpensFirst)
{
    EndTrace();
    AnotherRunIsKilled("*1X16DZ\r");
    BeginTrace(".");
    EXPECT_EQ(Text("lblRemark"), "The last run ended without goodbye: F12 shows its trace (Ombrix.trace.old)");
    PressF12();
    EXPECT_EQ(Column(kMeaning), std::vector<std::string>{"read word 109"});
    Trace(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    Chooses("cboTraceRun", Qt::Key_Up);
    EXPECT_EQ(Column(kMeaning), std::vector<std::string>{"read the display"}) << "this run";
    Chooses("cboTraceRun", Qt::Key_Down);
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(Column(kMeaning), std::vector<std::string>{"read word 109"});
    Press(Qt::Key_Escape);
    frmOmbrix->activateWindow();
    PressF12();
    EXPECT_EQ(Rows(), 2) << "what is said now counts";
}

TEST_F(TraceWindow, OffersNoOtherRunWhereThereIsNone)
{
    PressF12();
    EXPECT_FALSE(Sees("cboTraceRun"));
    EXPECT_EQ(Text("lblRemark"), "");
}

TEST_F(TraceWindow, TheNoteOfACrashIsNamedOnceAndKept)
{
    ASSERT_EQ(WriteFile("Ombrix.crash", "Died of SIGSEGV\n"), "");
    BeginTrace(".");
    EXPECT_EQ(Text("lblRemark"), "The last run ended without goodbye: Ombrix.crash.old tells where it stood");
    EXPECT_EQ(ReadFile("Ombrix.crash.old"), "Died of SIGSEGV\n");
    EXPECT_FALSE(QFile::exists("Ombrix.crash"));
}

TEST_F(TraceWindow, WithoutAFileTheStatusLineKeepsSayingSoAndF12StillShowsAll)
{
    EndTrace();
    QFile::remove("Ombrix.trace");
    QDir().mkdir("Ombrix.trace");
    BeginTrace(".");
    EXPECT_TRUE(Text("lblKeptRemark").starts_with("The trace is not kept in a file: "));
    PressF12();
    IsSaid(TraceLine::Meter, ByteWay::Sent, "*1B1\r");
    EXPECT_EQ(Rows(), 1);
}
