#include "shell/main_window.h"

#include "platform/safe_file.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/state.h"
#include "shell/operator_guide.h"
#include "shell/setup_page.h"
#include "shell/tab_strip.h"
#include "support/station.h"

#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QMainWindow>
#include <QTabBar>
#include <QTextBrowser>

namespace ombrix::test {
namespace {

class MainWindow : public testing::Test
{
protected:
    void Settles()
    {
        station.person.Waits(10);
        ASSERT_TRUE(station.person.Runs());
    }

    static bool Inside(const char *name)
    {
        const QWidget *widget = ScriptedOperator::Find(name);
        return frmOmbrix->rect().contains(QRect(widget->mapTo(frmOmbrix, QPoint(0, 0)), widget->size()));
    }

    Station station;
};

// 960 by 540 is a full HD screen at twice the size, and the desktop takes its title bar from that.
TEST_F(MainWindow, FitsTheSmallestScreenOnEveryPageWithAllThatCanStand)
{
    ASSERT_TRUE(station.EstablishesInSimulation());
    station.person.Clicks(StepButton(8)).WaitsFor("cmdReady");
    ASSERT_TRUE(station.person.Runs());
    outlets.showOutput("-200.0 mV");
    outlets.showDangerFlag(Danger::Warning);
    outlets.showRemark(std::string(300, 'w'));
    for (int page = 0; page < kPages; ++page) {
        ShowPage(page);
        Settles();
        frmOmbrix->resize(960, 504);
        Settles();
        EXPECT_LE(frmOmbrix->minimumSizeHint().width(), 960) << page;
        EXPECT_LE(frmOmbrix->minimumSizeHint().height(), 504) << page;
        EXPECT_EQ(frmOmbrix->size(), QSize(960, 504));
        for (const char *name : {"cmdQuit", "cmdSetup", "fraCalOut", "tabCalib", "lblRev"})
            EXPECT_TRUE(Inside(name)) << page << name;
    }
}

TEST_F(MainWindow, PagesKeepASensibleWidthOnALargeScreen)
{
    frmOmbrix->resize(1920, 1000);
    for (const int page : {kSetupPage, 4}) {
        ShowPage(page);
        Settles();
        EXPECT_LE(PageFrame(page)->width(), 1200);
        EXPECT_GE(PageFrame(page)->width(), 900);
    }
}

TEST_F(MainWindow, StepsScrollWhereTheWindowIsTooLowForThem)
{
    ASSERT_TRUE(station.EstablishesInSimulation());
    frmOmbrix->resize(960, 504);
    outlets.showAlert(std::string(150, 'w'));
    Settles();
    const auto visible = [](int position) {
        return !ScriptedOperator::Find(StepButton(position))->visibleRegion().isEmpty();
    };
    EXPECT_TRUE(visible(0));
    EXPECT_FALSE(visible(kPositions - 1));
    ScriptedOperator::Find(StepButton(0))->setFocus();
    for (int position = 0; position + 1 < kPositions; ++position)
        station.person.PressesAtOnce(Qt::Key_Tab);
    Settles();
    EXPECT_TRUE(visible(kPositions - 1)) << "the focus takes it along";
}

TEST_F(MainWindow, AStepWithoutAPageIsNamedOnTheEmptyPage)
{
    ShowPage(0);
    EXPECT_EQ(ScriptedOperator::Text("lblNoPage"), "");
    ShowNoPage("Ratio");
    EXPECT_EQ(ScriptedOperator::Text("lblNoPage"), "Ratio\nThis version has no page for this step.");
    Settles();
    EXPECT_TRUE(ScriptedOperator::Sees("lblNoPage"));
    ShowNoPage("");
    EXPECT_EQ(ScriptedOperator::Text("lblNoPage"), "");
}

TEST_F(MainWindow, TabsLookOffWhileTheyAreOff)
{
    auto *strip = ScriptedOperator::Find("tabCalib");
    const auto ink = [strip] { return strip->palette().color(QPalette::WindowText); };
    ShowTabsAllowed(true);
    const QColor on = ink();
    ShowTabsAllowed(false);
    EXPECT_GT(ink().lightness(), on.lightness() + 80);
    EXPECT_FALSE(strip->testAttribute(Qt::WA_Hover));
    ShowTabsAllowed(true);
    EXPECT_EQ(ink(), on);
    EXPECT_TRUE(strip->testAttribute(Qt::WA_Hover));
}

TEST_F(MainWindow, HasAPictureOfItsOwn)
{
    EXPECT_FALSE(frmOmbrix->windowIcon().isNull());
    EXPECT_FALSE(frmOmbrix->windowIcon().pixmap(16, 16).isNull());
}

TEST_F(MainWindow, F1SaysInABoxThatTheGuideIsMissing)
{
    station.person.PressesAtOnce(Qt::Key_F1)
        .WaitsUntil("the box is up", [] { return ScriptedOperator::Box() != nullptr; })
        .Does([] { EXPECT_EQ(ScriptedOperator::BoxText(), "The operator's guide is not beside the program"); })
        .AnswersBox("OK");
    ASSERT_TRUE(station.person.Runs());
}

TEST_F(MainWindow, ABoxNamesTheGuideThatNothingOpens)
{
    QDir().mkpath("program");
    WriteFile("program/operator.md", "# Guide\n");
    std::string told;
    station.person.Does([] { OpenGuide(QDir::current().filePath("program")); })
        .WaitsUntil("the box is up", [] { return ScriptedOperator::Box() != nullptr; })
        .Does([&told] { told = ScriptedOperator::BoxText(); })
        .AnswersBox("OK");
    ASSERT_TRUE(station.person.Runs());
    EXPECT_EQ(told,
              "Nothing on this desktop opens " + QFileInfo("program/operator.md").canonicalFilePath().toStdString());
}

TEST_F(MainWindow, TheGuideIsOpenedWhereItStands)
{
    QTextBrowser reader;
    QDesktopServices::setUrlHandler("file", &reader, "setSource");
    for (const char *place : {"docs/operator.md", "program/docs/operator.md", "program/operator.md",
                              "share/ombrix/guide/operator.html", "program/guide/operator.html"}) {
        QDir().mkpath(QFileInfo(place).path());
        QDir().mkpath("program");
        WriteFile(place, "Guide");
        OpenGuide(QDir::current().filePath("program"));
        EXPECT_EQ(reader.source().toLocalFile(), QFileInfo(place).canonicalFilePath()) << place;
    }
    QDesktopServices::unsetUrlHandler("file");
    EXPECT_EQ(ScriptedOperator::Box(), nullptr);
}

}  // namespace
}  // namespace ombrix::test
