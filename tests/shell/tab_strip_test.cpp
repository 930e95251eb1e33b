#include "shell/tab_strip.h"

#include "links/calibrator.h"
#include "links/meter_identity.h"
#include "model/ini_store.h"
#include "session/procedure.h"
#include "shell/setup_page.h"
#include "shell/shell_fixture.h"
#include "shell/step_buttons.h"

#include <QWheelEvent>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class TabStrip : public ShellTest
{
protected:
    static int Shown() { return Strip()->currentIndex(); }
};

}  // namespace

TEST_F(TabStrip, BeforeAnyEstablishTheStripMovesAndNothingElseHappens)
{
    ClickTab(kTabAc);
    EXPECT_EQ(Shown(), kTabAc);
    EXPECT_EQ(CalibTab, kTabDc);
    EXPECT_EQ(Page(), 1);
    EXPECT_EQ(MeterOpened(), 0);
    EXPECT_EQ(TabText(kTabAc), "AC");
}

TEST_F(TabStrip, AfterAFailedEstablishAClickPutsTheStripBackAtOnce)
{
    ClickTab(kTabLc);
    bench->SwitchFault("silent-calibrator", true);
    Click("cmdEstablish");
    ASSERT_FALSE(Established);
    Forget();
    ClickTab(kTabAc);
    EXPECT_EQ(Shown(), kTabLc) << "back where the strip stood, which is not the open tab";
    EXPECT_EQ(CalibTab, kTabDc);
    EXPECT_THAT(ToMeter(), testing::IsEmpty());
}

TEST_F(TabStrip, ADcMeterOnTheAcTabIsAMismatchWithTheChooserAndBoardAc3)
{
    EstablishSimulated();
    ClickTab(kTabAc);
    EXPECT_EQ(CalibTab, kTabAc);
    EXPECT_TRUE(TabMismatch);
    EXPECT_EQ(SCType, kAc3);
    EXPECT_TRUE(Sees("fraTabSelect"));
    EXPECT_TRUE(TabSelectShown);
    EXPECT_EQ(Text("optTabSelect(0)"), "AC");
    EXPECT_EQ(Text("optTabSelect(1)"), "AC2");
    EXPECT_EQ(Text("optTabSelect(2)"), "AC3");
    EXPECT_TRUE(IsOn("optTabSelect(2)"));
    EXPECT_EQ(TabText(kTabAc), "AC3");
    EXPECT_EQ(Page(), 0);
    EXPECT_EQ(Text(StepButton(2)), "- Gain Trim");
}

TEST_F(TabStrip, AClickOnTheMetersOwnTabHidesTheChooser)
{
    EstablishSimulated();
    ClickTab(kTabTc);
    EXPECT_TRUE(Sees("fraTabSelect"));
    EXPECT_EQ(SCType, kTc);
    EXPECT_TRUE(IsOn("optTabSelect(1)"));
    ClickTab(kTabDc);
    EXPECT_FALSE(Sees("fraTabSelect"));
    EXPECT_FALSE(TabMismatch);
    EXPECT_EQ(SCType, kDc);
}

TEST_F(TabStrip, OnATabWithoutAFamilyAMismatchShowsNoChooser)
{
    EstablishSimulated();
    ClickTab(kTabLc);
    EXPECT_TRUE(TabMismatch);
    EXPECT_EQ(SCType, kLc);
    EXPECT_FALSE(Sees("fraTabSelect"));
    ClickTab(kTabVf);
    EXPECT_EQ(SCType, kVf);
    EXPECT_FALSE(Sees("fraTabSelect"));
}

TEST_F(TabStrip, AClickOnTheTabInFrontReadsTheIdentityAgain)
{
    EstablishSimulated();
    Click(StepButton(2));
    ASSERT_EQ(CurrentStepButton, 2);
    SimNvm[109] = 0x3302;
    ClickTab(kTabDc);
    EXPECT_EQ(MeterKind, kWtMtr);
    EXPECT_EQ(Text("lblRev"), "Rev\nY2");
    EXPECT_EQ(CurrentStepButton, -1);
    EXPECT_EQ(Page(), 0);
}

TEST_F(TabStrip, AClickOnTheTabInFrontHidesTheChooserWhenTheMeterIsItsOwnByNow)
{
    EstablishSimulated();
    ClickTab(kTabAc);
    ASSERT_TRUE(Sees("fraTabSelect"));
    SimNvm[21] = 0x0012;
    ClickTab(kTabAc);
    EXPECT_FALSE(Sees("fraTabSelect"));
    EXPECT_EQ(SCType, kAc2);
    EXPECT_EQ(LastAcBoard, kAc2);
    EXPECT_EQ(TabText(kTabAc), "AC2");
}

TEST_F(TabStrip, AnotherMouseButtonIsNoClickOnATab)
{
    EstablishSimulated();
    Click(StepButton(2));
    person.Does([] {
        const QPoint middle = Strip()->tabRect(kTabDc).center();
        QMouseEvent event(QEvent::MouseButtonPress, middle, middle, Qt::RightButton, Qt::RightButton, {});
        QCoreApplication::sendEvent(Strip(), &event);
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(CurrentStepButton, 2);
}

TEST_F(TabStrip, ATurnOfTheWheelIsNoClickEither)
{
    EstablishSimulated();
    person.Does([] {
        const QPointF middle = Strip()->tabRect(kTabDc).center();
        QWheelEvent event(middle, Strip()->mapToGlobal(middle), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(Strip(), &event);
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(Shown(), kTabDc);
    EXPECT_EQ(CalibTab, kTabDc);
}

TEST_F(TabStrip, ASwappedMeterShowsAtTheNextTab)
{
    EstablishSimulated();
    SimNvm[21] = 0x0003;
    ClickTab(kTabLc);
    EXPECT_FALSE(TabMismatch);
    EXPECT_EQ(SCType, kLc);
    EXPECT_EQ(MeterTab, kTabLc);
}

TEST_F(TabStrip, TheArrowKeysMoveItAsAClickDoes)
{
    EstablishSimulated();
    Strip()->setFocus();
    Press(Qt::Key_Right);
    EXPECT_EQ(CalibTab, kTabAc);
    EXPECT_TRUE(Sees("fraTabSelect"));
    EXPECT_TRUE(HasFocus("tabCalib"));
}

TEST_F(TabStrip, ArrowKeysBounceAsWell)
{
    EstablishSimulated();
    ResetSession();
    Strip()->setFocus();
    Press(Qt::Key_Right);
    EXPECT_EQ(Shown(), kTabDc);
    EXPECT_EQ(CalibTab, kTabDc);
}

TEST_F(TabStrip, GoesToStandbyFirstWithACalibratorOnly)
{
    EstablishOnLines();
    ApplyInput("200 V");
    ASSERT_TRUE(bench->CalibratorNow().operating);
    Forget();
    ClickTab(kTabLc);
    EXPECT_FALSE(bench->CalibratorNow().operating);
    const auto standby = TimesOf("OUT 0 V, 0 Hz ; STBY ; *WAI");
    const auto identity = TimesOf("*1X16D");
    ASSERT_EQ(standby.size(), 1u);
    ASSERT_EQ(identity.size(), 1u);
    EXPECT_GE(identity.front() - standby.front(), 200) << "when it has come into force";
}

TEST_F(TabStrip, InManualModeItGoesNowhereFirst)
{
    Click("optManual");
    EstablishOnLines();
    CalStandbyFlag = false;
    std::vector<std::string> boxes;
    person.onBox = [&](const std::string &title, const std::string &) { boxes.push_back(title); };
    ClickTab(kTabLc);
    EXPECT_EQ(CalibratorOpened(), 0);
    EXPECT_THAT(boxes, testing::IsEmpty());
    EXPECT_THAT(TimesOf("*1X16D"), testing::SizeIs(1));
}

TEST_F(TabStrip, WhileItReadsTheIdentityNavigationIsLocked)
{
    EstablishOnLines();
    person.ClicksTab(kTabLc).Waits(600).Does([] {
        EXPECT_FALSE(IsEnabled(StepButton(0)));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_TRUE(IsEnabled("cmdQuit"));
    });
    person.ClicksTab(kTabVf).Waits(100).Does([] { EXPECT_EQ(Strip()->currentIndex(), kTabLc) << "bounced"; });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(CalibTab, kTabLc);
    EXPECT_EQ(SCType, kLc);
    EXPECT_TRUE(IsEnabled(StepButton(0)));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(TabChangeAllowed);
}

TEST_F(TabStrip, AFaultOnTheWayGivesNavigationBack)
{
    EstablishSimulated();
    RegisterTab(kTabLc, {.prepare = [] { throw std::runtime_error("a fault"); }});
    ClickTab(kTabLc);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(TabChangeAllowed);
    EXPECT_FALSE(ProcedureRunning());
    EXPECT_EQ(Text("lblRemark"), "a fault");
}

TEST_F(TabStrip, TheAnalogTabHidesThePanelAndPreparesItsPage)
{
    EstablishSimulated();
    int prepared = 0;
    pageTables.tabs[kTabAnaCal].prepare = [&] {
        ++prepared;
        EXPECT_EQ(CurrentStepButton, -1);
    };
    ClickTab(kTabAnaCal);
    EXPECT_EQ(prepared, 1);
    EXPECT_FALSE(Sees("fraCalOut"));
    EXPECT_EQ(SCType, kDc) << "the board stays";
    EXPECT_FALSE(TabMismatch);
    EXPECT_EQ(TabText(kTabAnaCal), "AnaCal");
    EXPECT_EQ(Text(StepButton(0)), "Init NVMEM");
    ClickTab(kTabDc);
    EXPECT_TRUE(Sees("fraCalOut"));
}

TEST_F(TabStrip, ATabIsLeftBeforeTheIdentityOfWhateverMeterIsReadAndBeforeSetup)
{
    EstablishOnLines();
    std::vector<std::size_t> saidWhenLeft;
    RegisterTab(kTabDc, {.leave = [&] { saidWhenLeft.push_back(TimesOf("*1X16D").size()); }});
    const std::size_t before = TimesOf("*1X16D").size();
    ClickTab(kTabLc);
    ClickTab(kTabDc);
    EXPECT_THAT(saidWhenLeft, testing::ElementsAre(before)) << "a tab that is opened wasn't left";
    ClickTab(kTabDc);
    EXPECT_EQ(saidWhenLeft.size(), 2U) << "the tab that is open is left and opened again";
    Click("cmdSetup");
    EXPECT_EQ(saidWhenLeft.size(), 3U);
}

TEST_F(TabStrip, ATabLeftForAStepGoesBackToTheOpenOne)
{
    EstablishSimulated();
    bool stopped = false;
    RegisterProbe(Step::Gnd, [&] {
        while (!Abort)
            PumpEvents(100);
        DelayAlways(500);  // it takes its time to end
        stopped = true;
    });
    person.Clicks(StepButton(2)).Waits(100);
    person.Does([] { SetNavigation(Navigation::Open); });  // a page that leaves navigation open
    person.ClicksTab(kTabLc).Clicks(StepButton(3));
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(stopped);
    EXPECT_EQ(CurrentStepButton, 3);
    EXPECT_EQ(CalibTab, kTabDc);
    EXPECT_EQ(Shown(), kTabDc);
}

TEST_F(TabStrip, ABoardThatIsNotTheMetersOwnKeepsARemarkForAsLongAsItLasts)
{
    EstablishSimulated();
    EXPECT_EQ(Text("lblKeptRemark"), "");
    ClickTab(kTabTc);
    EXPECT_EQ(Text("lblKeptRemark"), "Meter identified as DC, working as TC");
    Click("optTabSelect(2)");
    EXPECT_EQ(Text("lblKeptRemark"), "Meter identified as DC, working as RTD");
    Click(StepButton(0));
    outlets.showRemark("another remark");
    IniDirty = true;
    SaveIni();
    EXPECT_EQ(Text("lblKeptRemark"), "Meter identified as DC, working as RTD") << "whatever else is told";
    ClickTab(kTabDc);
    EXPECT_EQ(Text("lblKeptRemark"), "");
    ClickTab(kTabLc);
    EXPECT_EQ(Text("lblKeptRemark"), "Meter identified as DC, working as LC");
    ResetSession();
    EXPECT_EQ(Text("lblKeptRemark"), "");
}
