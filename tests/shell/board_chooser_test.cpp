#include "shell/board_chooser.h"

#include "shell/shell_fixture.h"

#include <QAbstractButton>

using namespace ombrix;
using namespace ombrix::test;

namespace {

class BoardChooser : public ShellTest
{
protected:
    static std::string OptionShown()
    {
        std::string on;
        for (const char *option : {"optTabSelect(0)", "optTabSelect(1)", "optTabSelect(2)"})
            on += IsOn(option) ? Text(option) : "";
        return on;
    }
};

}  // namespace

TEST_F(BoardChooser, AChoiceOnTheAcTabPutsAnotherBoardToWork)
{
    EstablishSimulated();
    ClickTab(kTabAc);
    EXPECT_EQ(OptionShown(), "AC3");
    Click("optTabSelect(0)");
    EXPECT_EQ(SCType, kAc);
    EXPECT_EQ(LastAcBoard, kAc);
    EXPECT_EQ(TabText(kTabAc), "AC");
    EXPECT_EQ(Text(StepButton(1)), "GND");
    EXPECT_EQ(LastTempBoard, kTc);
    EXPECT_TRUE(Sees("fraTabSelect"));
}

TEST_F(BoardChooser, AChoiceOnTheTcTabIsRememberedForTheNextTime)
{
    EstablishSimulated();
    ClickTab(kTabTc);
    EXPECT_EQ(Text("optTabSelect(0)"), "Temp");
    EXPECT_EQ(Text("optTabSelect(1)"), "TC");
    EXPECT_EQ(Text("optTabSelect(2)"), "RTD");
    Click("optTabSelect(2)");
    EXPECT_EQ(LastTempBoard, kRtd);
    EXPECT_EQ(TabText(kTabTc), "RTD");
    ClickTab(kTabDc);
    ClickTab(kTabTc);
    EXPECT_EQ(SCType, kRtd);
    EXPECT_EQ(OptionShown(), "RTD");
}

TEST_F(BoardChooser, AStepHidesIt)
{
    EstablishSimulated();
    ClickTab(kTabAc);
    Click(StepButton(3));
    EXPECT_FALSE(Sees("fraTabSelect"));
    EXPECT_FALSE(TabSelectShown);
}

TEST_F(BoardChooser, SetupHidesIt)
{
    EstablishSimulated();
    ClickTab(kTabAc);
    Click("cmdSetup");
    EXPECT_FALSE(Sees("fraTabSelect"));
}

TEST_F(BoardChooser, TheOptionOfEachBoardIsOn)
{
    EstablishSimulated();
    const auto shown = [](int tab, int board) {
        CalibTab = tab;
        SCType = board;
        ShowBoardChooser(true);
        return OptionShown();
    };
    EXPECT_EQ(shown(kTabAc, kAc), "AC");
    EXPECT_EQ(shown(kTabAc, kAc2), "AC2");
    EXPECT_EQ(shown(kTabAc, kAc3), "AC3");
    EXPECT_EQ(shown(kTabTc, kTemp), "Temp");
    EXPECT_EQ(shown(kTabTc, kTc), "TC");
    EXPECT_EQ(shown(kTabTc, kRtd), "RTD");
}

TEST_F(BoardChooser, ItsSettingByCodeIsNoChoice)
{
    EstablishSimulated();
    ClickTab(kTabAc);
    LastAcBoard = kAc;
    ClickTab(kTabDc);
    ClickTab(kTabAc);
    EXPECT_EQ(SCType, kAc);
    EXPECT_EQ(OptionShown(), "AC");
    EXPECT_EQ(LastTempBoard, kTc);
}

TEST_F(BoardChooser, IsLockedWhileAnotherTabReadsTheIdentity)
{
    EstablishOnLines();
    ClickTab(kTabAc);
    ASSERT_EQ(LastAcBoard, kAc3);
    ASSERT_TRUE(IsEnabled("optTabSelect(0)"));
    int looks = 0;
    person.ClicksTab(kTabTc).Waits(600).Does([&] {
        ++looks;
        EXPECT_TRUE(Sees("optTabSelect(0)"));
        EXPECT_FALSE(IsEnabled("optTabSelect(0)"));
        qobject_cast<QAbstractButton *>(ScriptedOperator::Find("optTabSelect(0)"))->click();
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(looks, 1);
    EXPECT_EQ(LastAcBoard, kAc3);
    EXPECT_EQ(CalibTab, kTabTc);
    EXPECT_TRUE(IsEnabled("optTabSelect(0)"));
}
