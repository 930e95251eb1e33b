#include "session/page_frame.h"

#include "session/delays.h"
#include "session/procedure.h"
#include "shell/main_window.h"
#include "shell/shell_fixture.h"
#include "shell/station.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class PageFrames : public ShellTest
{
};

}  // namespace

TEST_F(PageFrames, ShowPageShowsOneOfNineteen)
{
    for (int index = 0; index < kPages; index++) {
        ShowPage(index);
        EXPECT_EQ(Page(), index);
    }
}

TEST_F(PageFrames, ShowPageIgnoresWhatIsNoPage)
{
    ShowPage(3);
    ShowPage(-1);
    ShowPage(kPages);
    EXPECT_EQ(Page(), 3);
}

TEST_F(PageFrames, ShowPageHidesDiagramsAndTheValuesPanel)
{
    EstablishSimulated();
    ShowPage(3);
    auto *place = new QFrame(PageFrame(3));
    place->show();
    PrepareFileValues(place);
    ShowConnectionDiagram(1);
    EXPECT_TRUE(Sees("fraInputs"));
    EXPECT_TRUE(Sees("fraJumperBlock(0)"));
    EXPECT_TRUE(Sees("fraNVMemVals"));
    ShowPage(3);
    EXPECT_FALSE(Sees("fraInputs"));
    EXPECT_FALSE(Sees("fraJumperBlock(0)"));
    EXPECT_FALSE(Sees("fraNVMemVals"));
}

TEST_F(PageFrames, ThePageHasTheRoomOfTheDiagramsWhileNoneShows)
{
    EstablishSimulated();
    const auto width = [this] {
        person.Waits(10);
        EXPECT_TRUE(person.Runs());
        return ScriptedOperator::Find("fraPages")->width();
    };
    const int alone = width();
    ShowConnectionDiagram(1);
    const int beside = width();
    EXPECT_LT(beside, alone - 150);
    ShowPage(0);
    EXPECT_EQ(width(), alone);
}

TEST_F(PageFrames, TheDiagramsGrowWithTheWindowAndThePageKeepsMore)
{
    EstablishSimulated();
    ShowConnectionDiagram(1);
    const auto widthIn = [this](int window) {
        frmOmbrix->resize(window, 800);
        person.Waits(10);
        EXPECT_TRUE(person.Runs());
        const int card = ScriptedOperator::Find("fraJumperBlock(0)")->width();
        EXPECT_GT(ScriptedOperator::Find("fraPages")->width(), 1.5 * card);
        return card;
    };
    const int small = widthIn(1000);
    EXPECT_GE(small, 260);
    EXPECT_LE(small, 300);
    EXPECT_GT(widthIn(1500), small + 30);
    EXPECT_EQ(widthIn(1920), 402);
    EXPECT_EQ(widthIn(1000), small);
}

TEST_F(PageFrames, APageIsFilledOnceInTheLifeOfAWindowWhenItIsWanted)
{
    int built = 0;
    CloseStation();
    pageTables.pages[17] = [&, build = BuilderOfPage(17)](QFrame *page) {
        ++built;
        EXPECT_EQ(page->objectName(), "fraCalib(17)");
        build(page);
    };
    OpenWholeStation(Painted::No);
    EXPECT_EQ(built, 0);
    SetNavigation(Navigation::Open);
    FillPage(17);
    EXPECT_EQ(built, 1);
    EXPECT_EQ(NavigationWanted(), Navigation::Open) << "the page in front goes on";
    ShowPage(17);
    EXPECT_EQ(built, 1);
}

TEST_F(PageFrames, TabComesToSetupAndQuitBehindAPageThatWasFilledLate)
{
    EstablishSimulated();
    Click(StepButton(1));
    Click(StepButton(4));
    const QWidget *next = ScriptedOperator::Find("cmdStopReset")->nextInFocusChain();
    while (!(next->focusPolicy() & Qt::TabFocus))
        next = next->nextInFocusChain();
    EXPECT_EQ(next->objectName(), "cmdSetup");
}

TEST_F(PageFrames, WithoutAWindowTheHelpersDoNothing)
{
    CloseStation();
    ShowPage(1);
    Established = true;
    UpdateNavigation();
    HighlightStep(3);
    ShowCalPanel(true);
    NextStep();
    OpenStep(3);
    EXPECT_EQ(CurrentStepButton, -1);
    OpenWholeStation(Painted::No);
}

TEST_F(PageFrames, EscStopsAProcedureAndNothingElse)
{
    EstablishSimulated();
    ScriptedOperator::Find(StepButton(4))->setFocus();
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Abort);
    bool stopped = false;
    RegisterProbe(Step::Range2V, [&] {
        while (!Abort)
            PumpEvents(kForever);
        stopped = true;
    });
    person.Clicks(StepButton(4)).Waits(100).Presses(Qt::Key_Escape);
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(stopped);
    RegisterProbe(Step::Range20V, [] { EXPECT_FALSE(Abort) << "what Esc ended is over"; });
    Click(StepButton(5));
    EXPECT_EQ(CurrentStepButton, 5);
}

TEST_F(PageFrames, AHeldEscStopsOnce)
{
    EstablishSimulated();
    bool stoppedAgain = false;
    RegisterProbe(Step::Range2V, [&] {
        WaitForOperator([] { return false; });
        Abort = false;
        DelayAlways(1000);  // the way out
        stoppedAgain = Abort;
    });
    person.Clicks(StepButton(4)).Waits(100).Presses(Qt::Key_Escape).Waits(500).Does([] {
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, "", true);
        QApplication::sendEvent(frmOmbrix, &repeated);
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(stoppedAgain);
}
