#include "shell/step_buttons.h"

#include "links/calibrator.h"
#include "session/procedure.h"
#include "shell/steps_fixture.h"

#include <QAbstractButton>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kFirstCycle = 14;

}  // namespace

TEST_F(Steps, EachBoardFillsTheButtonsWithItsTitles)
{
    EstablishSimulated();
    for (int board = kDc; board <= kRtd; board++) {
        Board(board);
        for (int position = 0; position < kPositions; position++) {
            const int id = StepIdAtPosition(position);
            SCOPED_TRACE(BoardName(board) + " " + std::to_string(position));
            EXPECT_EQ(StepIds[static_cast<std::size_t>(position)], id);
            EXPECT_EQ(Text(StepButton(position)), StepName(id));
            EXPECT_TRUE(Sees(StepButton(position)));
            const bool saved = Text(StepButton(position)) != "Rest Config";
            EXPECT_EQ(IsEnabled(StepButton(position)), id != -1 && saved);
        }
    }
}

TEST_F(Steps, CalibrationServiceAndUnusedButtonsAreToldApart)
{
    EstablishSimulated();
    for (int board = kDc; board <= kRtd; board++) {
        Board(board);
        for (int position = 0; position < kPositions; position++) {
            SCOPED_TRACE(BoardName(board) + " " + std::to_string(position));
            QColor expected = position <= StepButtonCount() ? InfoBackground() : ScrollBarColour();
            if (StepIdAtPosition(position) == -1)
                expected = ButtonFace();
            EXPECT_EQ(ColourOf(position), expected.name().toStdString());
        }
    }
    EXPECT_NE(InfoBackground(), ScrollBarColour());
    EXPECT_NE(InfoBackground(), ButtonFace());
    EXPECT_NE(ScrollBarColour(), ButtonFace());
}

TEST_F(Steps, CaptionsAreNeverClipped)
{
    EstablishSimulated();
    for (int id = 0; id <= 60; id++) {
        auto *button = qobject_cast<QAbstractButton *>(ScriptedOperator::Find(StepButton(0)));
        const QString caption = Caption(StepName(id));
        EXPECT_LE(button->fontMetrics().horizontalAdvance(caption) + 8, button->width()) << StepName(id);
    }
}

TEST_F(Steps, WithTheMeterOnTheCalibratorEveryFirstCycleIsOffOnEveryBoard)
{
    EstablishSimulated();
    MeterPort = 0;
    int found = 0;
    for (int board = kDc; board <= kRtd; board++) {
        for (const bool enabledAgain : {false, true}) {
            Board(board);
            if (enabledAgain)
                UpdateNavigation();
            for (int position = 0; position < kPositions; position++) {
                const int id = StepIdAtPosition(position);
                if (id == -1 || board == kVf)
                    continue;
                found += id == kFirstCycle ? 1 : 0;
                EXPECT_EQ(IsEnabled(StepButton(position)), id != kFirstCycle) << BoardName(board) << position;
            }
        }
    }
    EXPECT_EQ(found, 12) << "six boards have one";
}

TEST_F(Steps, RestConfigStaysOffUntilGetConfigHasFilledItsImage)
{
    EstablishSimulated();
    Board(kVf);
    ASSERT_EQ(Text(StepButton(16)), "Rest Config");
    EXPECT_FALSE(IsEnabled(StepButton(16)));
    UpdateNavigation();
    EXPECT_FALSE(IsEnabled(StepButton(16)));
    RestConfigImage = std::string(200, '0');
    UpdateNavigation();
    EXPECT_TRUE(IsEnabled(StepButton(16)));
    FillStepTable();
    EXPECT_TRUE(IsEnabled(StepButton(16)));
    Board(kDc);
    RestConfigImage.clear();
    UpdateNavigation();
    EXPECT_TRUE(IsEnabled(StepButton(16))) << "View NVM stands there on DC";
}

TEST_F(Steps, NavigationTakesSetupAndTheTabsAlong)
{
    EstablishSimulated();
    SetNavigation(Navigation::Held);
    EXPECT_FALSE(IsEnabled("cmdSetup"));
    EXPECT_FALSE(TabChangeAllowed);
    EXPECT_FALSE(IsEnabled(StepButton(0)));
    SetNavigation(Navigation::Free);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(TabChangeAllowed);
    EXPECT_TRUE(IsEnabled(StepButton(0)));
}

TEST_F(Steps, ButtonsWithoutCaptionNeverGoOn)
{
    EstablishSimulated();
    Board(kLc);
    UpdateNavigation();
    EXPECT_EQ(Text(StepButton(11)), "");
    EXPECT_FALSE(IsEnabled(StepButton(11)));
}

TEST_F(Steps, EachPageMayKeepItsOwnButtonsOff)
{
    EstablishSimulated();
    RegisterProbe(
        5, [] {}, [](int position) { return position != 4; });
    RegisterProbe(
        6, [] {}, [](int) { return false; });
    UpdateNavigation();
    EXPECT_FALSE(IsEnabled(StepButton(4)));
    EXPECT_FALSE(IsEnabled(StepButton(5)));
    EXPECT_TRUE(IsEnabled(StepButton(6)));
}

TEST_F(Steps, TheHighlightGivesTheColourBack)
{
    EstablishSimulated();
    const std::string before = ColourOf(3);
    HighlightStep(3);
    EXPECT_EQ(CurrentStepButton, 3);
    EXPECT_EQ(ColourOf(3), "#00ffff");
    HighlightStep(15);
    EXPECT_EQ(ColourOf(3), before);
    EXPECT_EQ(ColourOf(15), "#00ffff");
    HighlightStep(-1);
    EXPECT_EQ(CurrentStepButton, -1);
    EXPECT_NE(ColourOf(15), "#00ffff");
}

TEST_F(Steps, AClickOpensThePageOfItsStep)
{
    EstablishSimulated();
    ProbeAll();
    for (int position = 0; position < kPositions; position++) {
        Click(StepButton(position));
        EXPECT_EQ(opened.back(), StepIdAtPosition(position));
        EXPECT_EQ(CurrentStepButton, position);
        EXPECT_EQ(CurrentStepId, StepIdAtPosition(position));
    }
}

TEST_F(Steps, ClickingTheHighlightedStepRunsItAgainFromTheBeginning)
{
    EstablishSimulated();
    ProbeAll();
    Click(StepButton(4));
    Click(StepButton(4));
    EXPECT_EQ(opened, (std::vector{5, 5}));
    EXPECT_EQ(ColourOf(4), "#00ffff");
}

TEST_F(Steps, AStepWithoutAPageShowsTheEmptyOne)
{
    EstablishSimulated();
    ShowPage(1);
    RegisterProbe(Step::Range2V, {});
    Click(StepButton(4));
    EXPECT_EQ(Page(), 0);
    EXPECT_EQ(CurrentStepId, 5);
}

TEST_F(Steps, SelectingNoneLeavesTheStep)
{
    EstablishSimulated();
    Click(StepButton(4));
    SelectStep(-1);
    EXPECT_EQ(CurrentStepButton, -1);
    EXPECT_EQ(CurrentStepId, -1);
    EXPECT_EQ(Page(), 0);
}

TEST_F(Steps, OnlyTheGainAndOffsetStepsOfTheTcTabKeepTheOutput)
{
    EstablishSimulated();
    ProbeAll();
    SimNvm[21] = 0x0031;
    ClickTab(kTabTc);
    ASSERT_EQ(SCType, kTc);
    const auto standbyAfter = [this](int position) {
        CalStandbyFlag = false;
        Click(StepButton(position));
        return CalStandbyFlag;
    };
    EXPECT_TRUE(standbyAfter(2));
    EXPECT_FALSE(standbyAfter(6)) << "Gain/Offset";
    EXPECT_FALSE(standbyAfter(14)) << "Offset Only";
    EXPECT_TRUE(standbyAfter(16));
}

TEST_F(Steps, SelectStepClearsWhatAnEarlierProcedureLeft)
{
    EstablishSimulated();
    StopArmed = StopRequested = true;
    SimOneDecimal = true;
    RegisterProbe(Step::Range2V, [] {
        EXPECT_FALSE(Abort);
        EXPECT_FALSE(StopArmed);
        EXPECT_FALSE(StopRequested);
        EXPECT_FALSE(SimOneDecimal);
    });
    Abort = true;
    Click(StepButton(4));
    EXPECT_EQ(CurrentStepButton, 4);
}

TEST_F(Steps, AStepClickStopsALiveLoopAndFollowsAfterOneSecond)
{
    EstablishOnLines();
    std::string order;
    RegisterProbe(Step::Range2V, [&] {
        SetNavigation(Navigation::Open);
        ArmStop();
        while (!StopRequested)
            DelayMs(300);
        DisarmStop();
        order += "loop-ended ";
    });
    std::int64_t clicked = 0;
    std::int64_t entered = 0;
    RegisterProbe(Step::Range20V, [&] {
        entered = clock.Elapsed();
        order += "next";
    });
    person.Clicks(StepButton(4)).Waits(1000).Does([&] { clicked = clock.Elapsed(); }).Clicks(StepButton(5));
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(order, "loop-ended next");
    EXPECT_EQ(entered - clicked, 1000);
}

TEST_F(Steps, EnterAndSpaceWorkTheFocusedStep)
{
    EstablishSimulated();
    ProbeAll();
    ScriptedOperator::Find(StepButton(4))->setFocus();
    Press(Qt::Key_Return);
    EXPECT_EQ(opened, (std::vector{5}));
    ScriptedOperator::Find(StepButton(5))->setFocus();
    Press(Qt::Key_Space);
    EXPECT_EQ(opened, (std::vector{5, 6}));
}
