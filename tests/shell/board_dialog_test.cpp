#include "shell/board_dialog.h"

#include "links/meter_identity.h"
#include "platform/text.h"
#include "session/procedure.h"
#include "shell/shell_fixture.h"

#include <QAbstractButton>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class BoardDialog : public ShellTest
{
protected:
    BoardDialog()
    {
        HardwareMode = RealTimeDelays = false;
        ShowSCDialogFull = 1;
    }

    /// Starts a script that asks for the board.
    ScriptedOperator &Asks()
    {
        return person.Does([] { RunProcedure(AskBoard); }).WaitsFor("dlgSCType");
    }

    static std::string OptionsOn(const std::string &array, int count)
    {
        std::string on;
        for (int index = 0; index < count; index++) {
            const std::string name = array + "(" + std::to_string(index) + ")";
            on += IsOn(name) ? Text(name) : "";
        }
        return on;
    }
    static std::string BoardShown() { return OptionsOn("optSC", 8); }
    static std::string KindShown() { return OptionsOn("optMeter", 3); }
};

struct BoardRow {
    int option;
    const char *caption;
    int board;
    const char *code;
    const char *boardByte;
};

class EachBoard : public BoardDialog, public testing::WithParamInterface<BoardRow>
{
};

}  // namespace

TEST_P(EachBoard, IsWrittenWithItsCode)
{
    const BoardRow &row = GetParam();
    const std::string option = "optSC(" + std::to_string(row.option) + ")";
    MeterKind = kDpm;
    Asks().Does([&] { EXPECT_EQ(Text(option), row.caption); }).Clicks(option).Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterSCType, row.board);
    EXPECT_EQ(BoardCode, row.code);
    EXPECT_EQ(HexText(SimNvm[21] & 0xFF, 2), row.code);
    EXPECT_EQ(HexText(SimNvm[16], 4), "00" + std::string(row.boardByte));
    EXPECT_EQ(SimNvm[109] & 0xFF, 1);
}

INSTANTIATE_TEST_SUITE_P(Options, EachBoard,
                         testing::Values(BoardRow{0, "DC", kDc, "01", "60"}, BoardRow{1, "AC", kAc, "02", "80"},
                                         BoardRow{2, "LC", kLc, "03", "C0"}, BoardRow{3, "TC", kTc, "31", "40"},
                                         BoardRow{4, "AC2", kAc2, "12", "80"}, BoardRow{5, "AC3", kAc3, "22", "80"},
                                         BoardRow{6, "Temp", kTemp, "01", "40"},
                                         BoardRow{7, "RTD / Ohms", kRtd, "41", "50"}));

TEST_F(BoardDialog, SaysWhatItWants)
{
    MeterKind = kDpm;
    Asks().Does([] {
        EXPECT_EQ(Text("lblMsg"), "The Signal Conditioner Board has not been initialized. Please specify which type of "
                                  "S/C Board is installed.");
        EXPECT_EQ(ScriptedOperator::Find("fraSC")->property("title").toString(), "SC Type");
        EXPECT_EQ(ScriptedOperator::Find("fraMeter")->property("title").toString(), "Meter Type");
        EXPECT_EQ(Text("chkXmtr"), "Xmtr");
        EXPECT_EQ(Text("OKButton"), "OK");
    });
    person.Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
}

TEST_F(BoardDialog, WithAKnownKindItAsksForTheBoardAloneAndIsSmaller)
{
    int small = 0;
    MeterKind = kWtMtr;
    XmtrFlag = true;
    Asks().Does([&] {
        EXPECT_FALSE(Sees("fraMeter"));
        EXPECT_EQ(BoardShown(), "DC") << "a board outside the list falls back to DC";
        small = ScriptedOperator::Find("dlgSCType")->height();
    });
    person.Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterKind, kWtMtr);
    EXPECT_TRUE(XmtrFlag);
    EXPECT_EQ(BoardCode, "01");
    MeterKind = -1;
    Asks().Does([&] { EXPECT_GT(ScriptedOperator::Find("dlgSCType")->height(), small); }).Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
}

TEST_F(BoardDialog, TakesAKnownBoardFromTheMeter)
{
    MeterKind = kDpm;
    MeterSCType = kRtd;
    BoardCode = "41";
    Asks().Does([] { EXPECT_EQ(BoardShown(), "RTD / Ohms"); }).Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterSCType, kRtd);
    EXPECT_EQ(SimNvm[21] & 0xFF, 0x41);
}

TEST_F(BoardDialog, WithAnUnknownKindItAsksForTheMeterToo)
{
    MeterKind = -1;
    Asks().Does([] {
        EXPECT_TRUE(Sees("fraMeter"));
        EXPECT_EQ(Text("optMeter(0)"), "DPM");
        EXPECT_EQ(Text("optMeter(1)"), "Weight");
        EXPECT_EQ(Text("optMeter(2)"), "CTR");
        EXPECT_EQ(KindShown(), "DPM");
        EXPECT_FALSE(IsOn("chkXmtr"));
    });
    person.Clicks("optMeter(1)").Clicks("chkXmtr").Clicks("optSC(4)").Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterKind, kWtMtr);
    EXPECT_TRUE(XmtrFlag);
    EXPECT_EQ(MeterName, "WtMtr Xmtr");
    EXPECT_EQ(SimNvm[109] & 0xFF, 6);
}

TEST_F(BoardDialog, AskedInFullItForgetsWhatTheMeterSaid)
{
    ShowSCDialogFull = 0;
    MeterKind = kWtMtr;
    XmtrFlag = true;
    MeterSCType = kLc;
    BoardCode = "03";
    Asks().Does([] {
        EXPECT_TRUE(Sees("fraMeter"));
        EXPECT_EQ(KindShown(), "DPM");
        EXPECT_FALSE(IsOn("chkXmtr"));
        EXPECT_EQ(BoardShown(), "DC");
    });
    person.Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterKind, kDpm);
    EXPECT_EQ(MeterSCType, kDc);
}

TEST_F(BoardDialog, ACounterTakesNoBoardAndGivesTheOldChoiceBack)
{
    MeterKind = -1;
    Asks().Clicks("optSC(5)").Clicks("optMeter(2)").Clicks("optMeter(2)").Does([] {
        for (int index = 0; index < 8; index++)
            EXPECT_FALSE(IsEnabled("optSC(" + std::to_string(index) + ")"));
    });
    person.Clicks("optMeter(0)").Does([] { EXPECT_TRUE(IsEnabled("optSC(0)")); }).Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterSCType, kAc3);
    EXPECT_EQ(BoardCode, "22");
}

TEST_F(BoardDialog, ACounterIsWrittenWithoutABoard)
{
    MeterKind = -1;
    const auto board = SimNvm[21];
    Asks().Clicks("optMeter(2)").Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterKind, kCtr);
    EXPECT_EQ(MeterSCType, kVf);
    EXPECT_EQ(SimNvm[109] & 0xFF, 3);
    EXPECT_EQ(SimNvm[21], board);
}

TEST_F(BoardDialog, ADoubleClickOnTheMessageLeavesItUnwritten)
{
    MeterKind = kDpm;
    MeterSCType = -1;
    Asks().DoubleClicks("lblMsg");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(SimNvm[21], 0);
    EXPECT_EQ(MeterSCType, -1);
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
}

TEST_F(BoardDialog, NeitherEscNorTheCloseBoxEndsIt)
{
    MeterKind = kDpm;
    Asks().Presses(Qt::Key_Escape).Does([] { ScriptedOperator::Find("dlgSCType")->close(); }).Waits(100);
    person.Does([] { EXPECT_TRUE(Sees("dlgSCType")); }).Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterSCType, kDc);
    EXPECT_FALSE(Abort);
}

TEST_F(BoardDialog, OkGoesOffAtItsClickWhileTheMeterIsWrittenAndTheAnswerStands)
{
    HardwareMode = RealTimeDelays = true;
    EstablishOnLines();
    Asks().Clicks("optSC(2)").Clicks("OKButton").Waits(300).Does([] {
        EXPECT_TRUE(Sees("dlgSCType"));
        EXPECT_FALSE(IsEnabled("OKButton"));
        QWidget *other = ScriptedOperator::Find("optSC(7)");
        EXPECT_FALSE(other->isEnabled());
        qobject_cast<QAbstractButton *>(other)->click();
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
    EXPECT_EQ(MeterSCType, kLc);
    EXPECT_EQ(BoardCode, "03");
    EXPECT_EQ(WordOf(kBoardWord) & 0xFF, 0x03);
}

TEST_F(BoardDialog, TheKeyboardAloneAnswersIt)
{
    MeterKind = kDpm;
    Asks().Does([] { ScriptedOperator::Find("optSC(0)")->setFocus(); });
    person.Presses(Qt::Key_Down).Presses(Qt::Key_Tab).Presses(Qt::Key_Return);
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(MeterSCType, kAc);
}
