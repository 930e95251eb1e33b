#include "shell/setup_page.h"

#include "links/calibrator.h"
#include "shell/main_window.h"
#include "shell/shell_fixture.h"

#include <QMainWindow>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class SetupPage : public ShellTest
{
};

}  // namespace

TEST_F(SetupPage, SetupKeepsTheEstablishedStateAndItsStatusLine)
{
    EstablishSimulated();
    const std::string status = Text("lblStatus");
    Click(StepButton(2));
    EXPECT_EQ(CurrentStepButton, 2);
    Click("cmdSetup");
    EXPECT_EQ(Page(), 1);
    EXPECT_EQ(CurrentStepButton, -1);
    EXPECT_TRUE(Established);
    EXPECT_TRUE(Sees("lblStatus"));
    EXPECT_EQ(Text("lblStatus"), status);
    EXPECT_FALSE(IsEnabled("cmdEstablish"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(IsEnabled(StepButton(0)));
}

TEST_F(SetupPage, SetupRemovesTheInput)
{
    EstablishOnLines();
    ApplyInput("200 V");
    ASSERT_TRUE(bench->CalibratorNow().operating);
    Click("cmdSetup");
    EXPECT_FALSE(bench->CalibratorNow().operating);
    EXPECT_THAT(ToCalibrator(), testing::Contains("OUT 0 V ; STBY ; *WAI"));
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(SetupPage, SetupLocksNavigationWhileItTalks)
{
    EstablishOnLines();
    CalStandbyFlag = false;
    person.Clicks("cmdSetup").Waits(200).Does([] {
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(IsEnabled(StepButton(0)));
        EXPECT_FALSE(TabChangeAllowed);
        EXPECT_FALSE(ScriptedOperator::Find("optManual")->isEnabled());
        EXPECT_TRUE(IsEnabled("cmdQuit"));
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(TabChangeAllowed);
    EXPECT_TRUE(IsEnabled("optManual"));
}

TEST_F(SetupPage, GroupsAndEstablishHideTogether)
{
    SetSetupGroupsVisible(false);
    for (const char *name : {"shpAA(0)", "fraAA(0)", "fraAA(1)", "fraAA(2)", "fraAA(3)", "cmdEstablish"})
        EXPECT_FALSE(Sees(name)) << name;
    SetSetupGroupsVisible(true);
    for (const char *name : {"shpAA(0)", "fraAA(0)", "fraAA(1)", "fraAA(2)", "fraAA(3)", "cmdEstablish"})
        EXPECT_TRUE(Sees(name)) << name;
}

TEST_F(SetupPage, ItsContentKeepsASensibleWidthOnAWideScreen)
{
    frmOmbrix->resize(1920, 1080);
    QCoreApplication::processEvents();
    const QWidget *groups = ScriptedOperator::Find("shpAA(0)");
    EXPECT_GT(ScriptedOperator::Find("fraCalib(1)")->width(), 1000);
    EXPECT_LE(groups->width(), 900);
    EXPECT_GE(groups->width(), 800);
}

TEST_F(SetupPage, OnASmallScreenItsStatusComesIntoView)
{
    frmOmbrix->resize(960, 540);
    frmOmbrix->setMaximumHeight(540);
    QCoreApplication::processEvents();
    const auto inView = [](const char *name) {
        const QWidget *bar = ScriptedOperator::Find(name);
        return bar->isVisible() && bar->visibleRegion().boundingRect().size() == bar->size();
    };
    ShowEstablishProgress("Meter: identity ...");
    QCoreApplication::processEvents();
    EXPECT_TRUE(inView("shpEstablishing"));
    ShowStatus("Error on COM1: Meter not found", Red());
    QCoreApplication::processEvents();
    EXPECT_TRUE(inView("shpStatus"));
    EXPECT_TRUE(inView("cmdEstablish"));
}
