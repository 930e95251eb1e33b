#include "shell/establish.h"

#include "links/calibrator.h"
#include "links/meter_identity.h"
#include "links/meter_link.h"
#include "model/ini_store.h"
#include "model/range_tables.h"
#include "shell/setup_page.h"
#include "shell/shell_fixture.h"

#include <QRadioButton>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class Establish : public ShellTest
{
protected:
    void Try() { Click("cmdEstablish"); }

    void ExpectFailure(const std::string &status)
    {
        EXPECT_EQ(Text("lblStatus"), status);
        EXPECT_TRUE(Sees("lblStatus"));
        EXPECT_TRUE(Sees("shpStatus"));
        EXPECT_EQ(Fill("shpStatus"), "#ff0000");
        EXPECT_FALSE(Established);
        EXPECT_TRUE(IsEnabled("cmdEstablish"));
        EXPECT_TRUE(IsEnabled("optManual"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(TabChangeAllowed);
        EXPECT_FALSE(TabEventsMuted);
        EXPECT_TRUE(SimToggleAllowed);
    }

    void ExpectSuccess(const std::string &status)
    {
        EXPECT_EQ(Text("lblStatus"), status);
        EXPECT_EQ(Fill("shpStatus"), "#00ff00");
        EXPECT_TRUE(Sees("lblStatus"));
        EXPECT_TRUE(Established);
        EXPECT_FALSE(IsEnabled("cmdEstablish"));
        EXPECT_TRUE(IsEnabled("optManual"));
        EXPECT_TRUE(IsEnabled("cmdSetup"));
        EXPECT_TRUE(TabChangeAllowed);
        EXPECT_FALSE(TabEventsMuted);
        EXPECT_FALSE(SimToggleAllowed);
        EXPECT_EQ(Page(), 1);
    }

    void Silence(const char *instrument) { bench->SwitchFault(std::string("silent-") + instrument, true); }
    void Speaks(const char *instrument) { bench->SwitchFault(std::string("silent-") + instrument, false); }
};

}  // namespace

TEST_F(Establish, InSimulationTheMeterIsADpmAtRevisionX2)
{
    EstablishSimulated();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and DPM on COM1");
    EXPECT_EQ(Text("lblRev"), "Rev\nX2");
    EXPECT_EQ(SCType, kDc);
    EXPECT_EQ(SessionMeterKind, kDpm);
    EXPECT_EQ(SessionMeterName, "DPM");
    EXPECT_FALSE(SessionXmtrFlag);
}

TEST_F(Establish, WithInstrumentsItSaysWhatStandsWhere)
{
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and DPM on COM1");
    EXPECT_TRUE(HasFocus(StepButton(0)));
}

TEST_F(Establish, BringsTheMeterToOneKnownState)
{
    bench->SetWord(18, 0x1234);
    bench->SetWord(17, 0x5555);
    bench->SetWord(3, 9);
    ASSERT_NE(WordOf(16), 0x0060);
    Try();
    EXPECT_EQ(WordOf(16), 0x0060);
    EXPECT_EQ(WordOf(18), 0x21D1);
    EXPECT_EQ(WordOf(17), 0x5536);
    EXPECT_EQ(WordOf(3), 4);
    EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
}

TEST_F(Establish, SaysThisAndNothingElseInThisOrder)
{
    ASSERT_TRUE(UseSwitch);
    bench->AnswerNext(bench::Line::Meter, "45A0\r", "G232");
    Try();
    EXPECT_THAT(ToCalibrator(), testing::ElementsAre("*RST ; *CLS", "REMOTE", "ERR?"));
    EXPECT_THAT(ToMeter(), testing::ElementsAre(
                               // Is a meter there, what is it, one bit of its set-up.
                               "*1A1", "*1G232", "*1X16DZ", "*1W11265A0",
                               // Which board.
                               "*1X16D", "*1X115Z", "*1X110",
                               // The output switch, and the known state: range, set-up, filter, display.
                               "*2W605000000100000001000001000", "*1W1100060Z", "*1W11221D1", "*1G130", "*1W1116536",
                               "*1W305000000100004"));
    EXPECT_LT(TimesOf("ERR?").front(), TimesOf("*1A1").front()) << "the calibrator first";
    EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
}

TEST_F(Establish, WhatTheMeterIsBecomesTheSessions)
{
    Stands({.kind = bench::kind::kWtMtr, .xmtr = true});
    ASSERT_FALSE(SessionXmtrFlag);
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and WtMtr Xmtr on COM1");
    EXPECT_TRUE(SessionXmtrFlag);
    EXPECT_EQ(SessionMeterKind, kWtMtr);
    EXPECT_EQ(SessionMeterName, "WtMtr Xmtr");
    EXPECT_EQ(SCType, kDc);
}

TEST_F(Establish, InManualModeTheCalibratorAlwaysSucceedsAndIsNotNamed)
{
    Click("optManual");
    Try();
    ExpectSuccess("Communications established  --  DPM on COM1");
    EXPECT_EQ(CalibratorOpened(), 0);
}

TEST_F(Establish, ASilentCalibratorEndsItBeforeTheMeterIsTried)
{
    Silence("calibrator");
    Try();
    ExpectFailure("Error on COM2: Calibrator not found");
    EXPECT_EQ(MeterOpened(), 0);
}

TEST_F(Establish, ASilentMeterIsNotFound)
{
    Silence("meter");
    Try();
    ExpectFailure("Error on COM1: Meter not found");
}

TEST_F(Establish, BehindTheCalibratorTheWordsAreOthers)
{
    Click("optDPM_CAL");
    Try();
    ExpectFailure("Meter not found on Calibrator UUT port");
}

TEST_F(Establish, APortFaultIsToldInTheSystemsWords)
{
    lines->RefuseToOpen(bench::Line::Calibrator, 16, "Device or resource busy");
    Try();
    ExpectFailure("Error on COM2: Device or resource busy");
    lines->RefuseToOpen(bench::Line::Calibrator, 0, "");
    lines->RefuseToOpen(bench::Line::Meter, 13, "Permission denied");
    Try();
    ExpectFailure("Error on COM1: Permission denied");
}

TEST_F(Establish, AFailedWiringIsNotRemembered)
{
    Click("optManual");
    Silence("meter");
    Try();
    ExpectFailure("Error on COM1: Meter not found");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "2");
    Speaks("meter");
    Try();
    ExpectSuccess("Communications established  --  DPM on COM1");
    EXPECT_EQ(IniGet("Comms", "CALPort"), "0");
}

TEST_F(Establish, ExchangedPortsAreFreeForEachOther)
{
    Try();
    ASSERT_TRUE(Established);
    Click("optCAL_COM1");
    ASSERT_EQ(MeterPort, 2);
    lines->ExchangeCables();
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM1 and DPM on COM2");
}

TEST_F(Establish, AnAbortLeftOverFromBeforeDoesNotFailIt)
{
    Abort = true;
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and DPM on COM1");
}

TEST_F(Establish, WhileItRunsButtonOptionsAndDoubleClicksAreOff)
{
    int looks = 0;
    person.Clicks("cmdEstablish").Waits(500).Does([&] {
        ++looks;
        EXPECT_FALSE(ScriptedOperator::Find("cmdEstablish")->isEnabled());
        for (const char *option : {"optAutomatic", "optManual", "optCAL_COM1", "optDPM_CAL", "optSwYes", "optSwNo"})
            EXPECT_FALSE(ScriptedOperator::Find(option)->isEnabled()) << option;
        EXPECT_TRUE(IsEnabled("cmdQuit"));
        EXPECT_FALSE(HasFocus("cmdQuit"));
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(looks, 1);
    EXPECT_TRUE(Established);
}

TEST_F(Establish, AMeterWithAnUninitialisedBoardIsAskedForAndNamedAsChosen)
{
    HasBoardCode(0);
    bench->SetWord(kTypeWord, 0x3200);
    person.Clicks("cmdEstablish").WaitsFor("dlgSCType");
    person.Clicks("optMeter(1)").Clicks("chkXmtr").Clicks("optSC(2)").Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    ExpectSuccess("Communications established  --  Calibrator on COM2 and WtMtr Xmtr on COM1");
    EXPECT_EQ(ShowSCDialogFull, 1);
    EXPECT_EQ(SCType, kLc);
    EXPECT_EQ(Strip()->currentIndex(), kTabLc);
    EXPECT_EQ(WordOf(kBoardWord) & 0xFF, 0x03);
    EXPECT_EQ(WordOf(kTypeWord) & 0xFF, 0x06);
}

TEST_F(Establish, ABlankMeterDeclaredRtdIsNoMismatch)
{
    HasBoardCode(0);
    person.Clicks("cmdEstablish").WaitsFor("dlgSCType").Clicks("optSC(7)").Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(SCType, kRtd);
    EXPECT_EQ(MeterTab, kTabTc);
    EXPECT_FALSE(TabMismatch);
    EXPECT_EQ(LastTempBoard, kRtd);
    EXPECT_EQ(TabText(kTabTc), "RTD");
    EXPECT_FALSE(Sees("fraTabSelect"));
}

TEST_F(Establish, WithoutABoardInTheEndItFails)
{
    DoubleClick("lblCalOut");
    SimNvm[21] = 0;
    person.Clicks("cmdEstablish").WaitsFor("dlgSCType").DoubleClicks("lblMsg");
    ASSERT_TRUE(person.Runs());
    ExpectFailure("Error on COM1: Meter not found");
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
}

TEST_F(Establish, ABoardOnAnotherTabMovesTheStripWithoutReadingTheIdentityAgain)
{
    Stands({.board = bench::board::kRtd});
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and DPM on COM1");
    EXPECT_EQ(Strip()->currentIndex(), kTabTc);
    EXPECT_EQ(CalibTab, kTabTc);
    EXPECT_EQ(TabText(kTabTc), "RTD");
    EXPECT_EQ(LastTempBoard, kRtd);
    EXPECT_TRUE(ReadIdentityOnTabChange);
    // Type word, then board word and board byte: once each. The type is also asked for while the link opens.
    EXPECT_THAT(ToMeter(), testing::Contains("*1X16D").Times(1));
    EXPECT_THAT(ToMeter(), testing::Contains("*1X115Z").Times(1));
}

TEST_F(Establish, WhenTheStripStandsOnTheMetersTabAlreadyTheBoardIsTakenOverAlike)
{
    Stands({.board = bench::board::kAc2});
    Strip()->setCurrentIndex(kTabAc);
    EXPECT_EQ(CalibTab, kTabDc) << "before the first Establish the strip moves and nothing follows";
    Try();
    EXPECT_EQ(CalibTab, kTabAc);
    EXPECT_EQ(SCType, kAc2);
    EXPECT_EQ(LastAcBoard, kAc2);
    EXPECT_FALSE(TabMismatch);
    EXPECT_EQ(TabText(kTabAc), "AC2");
}

TEST_F(Establish, ACounterIsLeftAsItIs)
{
    Stands({.board = bench::board::kVf});
    const auto memory = bench->Nvm();
    Click("optSwNo");
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and CTR on COM1");
    EXPECT_EQ(SCType, kVf);
    EXPECT_EQ(bench->Nvm(), memory);
    EXPECT_EQ(Strip()->currentIndex(), kTabVf);
}

TEST_F(Establish, TheOutputSwitchIsOpenedOnlyWhenItIsUsed)
{
    Try();
    EXPECT_THAT(ToMeter(), testing::Contains("*2W605000000100000001000001000"));
    Click("optSwNo");
    Click("optManual");
    Forget();
    Try();
    EXPECT_TRUE(Established);
    EXPECT_THAT(ToMeter(), testing::Not(testing::Contains(testing::StartsWith("*2"))));
}

TEST_F(Establish, EscEndsIt)
{
    Silence("calibrator");
    person.Clicks("cmdEstablish").Waits(100).Presses(Qt::Key_Escape);
    ASSERT_TRUE(person.Runs());
    ExpectFailure("Stopped");
    Speaks("calibrator");
    Try();
    ExpectSuccess("Communications established  --  Calibrator on COM2 and DPM on COM1");
}

TEST_F(Establish, EscWhileTheIdentityIsReadEndsItWithoutAQuestion)
{
    person.Clicks("cmdEstablish").WaitsUntil("the meter's type is read", [this] {
        return testing::Matches(testing::Contains("*1X16D"))(ToMeter());
    });
    person.Presses(Qt::Key_Escape).WaitsForText("lblStatus", "Stopped");
    ASSERT_TRUE(person.Runs());
    ExpectFailure("Stopped");
}
