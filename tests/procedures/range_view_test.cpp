#include "procedures/range_page_fixture.h"

#include <QHeaderView>
#include <QTableWidget>

#include <vector>

namespace ombrix::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> Headers(const QTableWidget *grid)
{
    std::vector<std::string> texts;
    for (int column = 0; column < grid->columnCount(); ++column)
        texts.push_back(grid->horizontalHeaderItem(column)->text().toStdString());
    return texts;
}

// ---- the states of the page ----

TEST_F(SimulatedRange, WaitingOffersReadyAlone)
{
    Establishes();
    Opens(4);
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(Sees("fraCalib(4)"));
    EXPECT_EQ(Text("lblRangeStep"), "2 V");
    EXPECT_EQ(Text("lblInst(0)"), "Set jumpers and apply input\nas shown, then click \"Ready\"");
    EXPECT_TRUE(IsEnabled("cmdReady"));
    EXPECT_TRUE(HasFocus("cmdReady"));
    EXPECT_FALSE(Sees("cmdRepeat"));
    EXPECT_FALSE(IsEnabled("cmdAccept"));
    EXPECT_FALSE(IsEnabled("cmdStopReset"));
    EXPECT_EQ(Text("cmdStopReset"), "Stop");
    EXPECT_EQ(Rows(), 0);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(SimulatedRange, RunningOffersStopAlone)
{
    Establishes();
    Opens(4).Clicks("cmdReady").Does([] {
        EXPECT_EQ(Text("lblInst(0)"), "Click \"Stop\" to stop calibrating this range");
        EXPECT_FALSE(Sees("cmdReady"));
        EXPECT_TRUE(Sees("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdAccept"));
        EXPECT_TRUE(IsEnabled("cmdStopReset"));
        EXPECT_TRUE(HasFocus("cmdStopReset"));
        EXPECT_EQ(Text("cmdStopReset"), "Stop");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, RepeatRunsLikeReady)
{
    Calibrates(4).Clicks("cmdRepeat").WaitsUntil("round 2 begins", [] { return Rows() == 2; }).Does([] {
        EXPECT_EQ(Text("lblInst(0)"), "Click \"Stop\" to stop calibrating this range");
        EXPECT_FALSE(IsEnabled("cmdRepeat"));
        EXPECT_FALSE(IsEnabled("cmdAccept"));
        EXPECT_TRUE(HasFocus("cmdStopReset"));
        EXPECT_EQ(Text("cmdStopReset"), "Stop");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, WatchingOffersRepeatAcceptAndReset)
{
    Calibrates(4).Does([] {
        EXPECT_EQ(Text("lblInst(0)"), "Click \"Repeat\" to repeat this range");
        EXPECT_TRUE(HasFocus("cmdRepeat"));
        EXPECT_TRUE(IsEnabled("cmdAccept"));
        EXPECT_TRUE(IsEnabled("cmdStopReset"));
        EXPECT_EQ(Text("cmdStopReset"), "Reset");
        EXPECT_TRUE(StopArmed);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, LocksTheStepsFromReadyToItsEnd)
{
    Calibrates(4)
        .Does([] {
            EXPECT_FALSE(IsEnabled(StepButton(5)));
            EXPECT_FALSE(IsEnabled("cmdSetup"));
            EXPECT_FALSE(TabChangeAllowed);
        })
        .Clicks("cmdStopReset")
        .WaitsFor("cmdReady");
    EXPECT_TRUE(person->Runs());
    EXPECT_TRUE(IsEnabled(StepButton(5)));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_TRUE(TabChangeAllowed);
}

// ---- the grid ----

TEST_F(SimulatedRange, GridOfATurnoverStepHasEightColumns)
{
    Establishes();
    Opens(4);
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Headers(TheGrid()), ElementsAre("", "Desired\nReading", "Current\nReading", "Current\nCalib",
                                                "New\nCalib", "New\nReading", "Turnover", "Error"));
}

TEST_F(SimulatedRange, GridOfAPlainStepHasSevenColumns)
{
    Establishes();
    Opens(4).Clicks(StepButton(2)).WaitsForText("lblRangeStep", "GND").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Headers(TheGrid()), ElementsAre("", "Desired\nReading", "Current\nReading", "Current\nCalib",
                                                "New\nCalib", "New\nReading", "Error"));
}

TEST_F(SimulatedRange, GridColumnsShareItsWidth)
{
    Establishes();
    Opens(4);
    ASSERT_TRUE(person->Runs());
    const QHeaderView *header = TheGrid()->horizontalHeader();
    EXPECT_EQ(header->length(), TheGrid()->viewport()->width());
    EXPECT_NEAR(header->sectionSize(1) / static_cast<double>(header->sectionSize(3)), 1.49, 0.05);
    EXPECT_NEAR(header->sectionSize(0) / static_cast<double>(header->sectionSize(1)), 450 / 1490.0, 0.03);
}

TEST_F(SimulatedRange, RoundOfATurnoverStepFillsItsRowInTwoLines)
{
    Calibrates(4).Does([] {
        EXPECT_EQ(Rows(), 1);
        EXPECT_EQ(Cell(0, 0), "1");
        EXPECT_EQ(Cell(0, 1), "+80000\n-80000");
        EXPECT_THAT(Cell(0, 2), testing::MatchesRegex("\\+(79|80)[0-9]+\n-(79|80)[0-9]+"));
        EXPECT_EQ(Cell(0, 3), "8948");
        EXPECT_EQ(Cell(0, 4), HexText(SimNvm[32], 4));
        EXPECT_NE(Cell(0, 4), "8948");
        EXPECT_THAT(Cell(0, 5), testing::MatchesRegex("\\+(79|80)[0-9]+\n-(79|80)[0-9]+"));
        EXPECT_EQ(Cell(0, 6), MeanReadingText());
        EXPECT_EQ(Cell(0, 7), ReadingErrorText());
        EXPECT_GE(TheGrid()->rowHeight(0), 2 * TheGrid()->fontMetrics().lineSpacing());
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, RoundOfAPlainStepFillsItsRowInOneLine)
{
    Calibrates(2).Does([] {
        EXPECT_EQ(Cell(0, 1), "0");
        EXPECT_THAT(Cell(0, 2), testing::MatchesRegex("-?[0-9]+"));
        EXPECT_EQ(Cell(0, 3), "0000");
        EXPECT_EQ(Cell(0, 4), HexText(SimNvm[26], 4));
        EXPECT_EQ(Cell(0, 5), std::to_string(step.Readings[0]));
        EXPECT_EQ(Cell(0, 6), std::to_string(step.Readings[0]));
        EXPECT_LT(TheGrid()->rowHeight(0), 2 * TheGrid()->fontMetrics().lineSpacing());
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, RepeatGoesOnFromTheLastReadingsAndTheLastWord)
{
    Calibrates(4).Clicks("cmdRepeat").WaitsUntil("round 2 is watched", Watches(2)).Does([] {
        EXPECT_EQ(Cell(1, 0), "2");
        EXPECT_EQ(Cell(1, 2), Cell(0, 5));
        EXPECT_EQ(Cell(1, 3), Cell(0, 4));
        EXPECT_EQ(Cell(1, 4), HexText(SimNvm[32], 4));
        EXPECT_EQ(Colour(0, 1), "");
        EXPECT_EQ(Colour(1, 1), kCyan);
        EXPECT_TRUE(HasFocus("cmdRepeat"));
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, GridPaintsTheSelectedRowCyanButNotItsNumber)
{
    Calibrates(4).Does([] {
        EXPECT_NE(Colour(0, 0), kCyan);
        for (int column = 1; column < 8; ++column)
            EXPECT_EQ(Colour(0, column), kCyan) << column;
        EXPECT_EQ(TheGrid()->item(0, 1)->foreground().color(), QColor(Qt::black));
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, GridScrollsToTheLastRound)
{
    Calibrates(4);
    for (int round = 2; round <= 25; ++round)
        person->Clicks("cmdRepeat").WaitsUntil("the next round is watched", Watches(round));
    person->Does([] {
        const QRect last = TheGrid()->visualItemRect(TheGrid()->item(24, 1));
        EXPECT_TRUE(TheGrid()->viewport()->rect().contains(last));
        EXPECT_GT(last.bottom(), TheGrid()->viewport()->height() - 2 * last.height());
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, ClickOnARowSelectsItAndEndsTheLiveReading)
{
    Calibrates(4)
        .Clicks("cmdRepeat")
        .WaitsUntil("round 2 is watched", Watches(2))
        .ClicksCell("msgCalibGrid", 0, 3)
        .WaitsUntil("row 1 is selected", [] { return Colour(0, 1) == kCyan; })
        .Waits(5000)
        .Does([] {
            EXPECT_FALSE(StopArmed);
            EXPECT_EQ(Colour(1, 1), "");
            EXPECT_EQ(Rows(), 2) << "a later round is started only by Repeat";
            EXPECT_TRUE(IsEnabled("cmdRepeat"));
            EXPECT_TRUE(IsEnabled("cmdAccept"));
            EXPECT_EQ(Text("cmdStopReset"), "Reset");
        })
        .ClicksCell("msgCalibGrid", 1, 3)
        .Does([] { EXPECT_EQ(Colour(1, 1), kCyan) << "at once, since nothing is live any more"; })
        .Clicks("cmdRepeat")
        .WaitsUntil("round 3 is watched", Watches(3));
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, ClickOnTheHeaderIsNoRow)
{
    Calibrates(4)
        .Does([] { TheGrid()->horizontalHeader()->viewport()->setObjectName("header"); })
        .Clicks("header")
        .Waits(2000)
        .Does([] {
            EXPECT_TRUE(StopArmed);
            EXPECT_EQ(Colour(0, 1), kCyan);
        });
    EXPECT_TRUE(person->Runs());
}

// ---- the keyboard ----

TEST_F(SimulatedRange, GoesByKeyboardAlone)
{
    Establishes();
    Opens(4)
        .Presses(Qt::Key_Return)  // Ready
        .WaitsFor("cmdRepeat")
        .Presses(Qt::Key_Return)  // Repeat
        .WaitsUntil("round 2 is watched", Watches(2))
        .Presses(Qt::Key_Backtab)  // into the grid, where the last row is current
        .Does([] { EXPECT_TRUE(HasFocus("msgCalibGrid")); })
        .Presses(Qt::Key_Up)
        .Does([] { EXPECT_EQ(Colour(1, 1), kCyan) << "moving selects nothing"; })
        .Presses(Qt::Key_Return)
        .WaitsUntil("row 1 is selected", [] { return Colour(0, 1) == kCyan; })
        .Presses(Qt::Key_Tab)  // Repeat
        .Does([] { EXPECT_TRUE(HasFocus("cmdRepeat")); })
        .Presses(Qt::Key_Tab)
        .Does([] { EXPECT_TRUE(HasFocus("cmdAccept")); })
        .Presses(Qt::Key_Return)
        .WaitsUntil("the next step is open", StandsAt(5));
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, SecondEnterOnAcceptPressesNothingElse)
{
    Calibrates(4)
        .Presses(Qt::Key_Tab)
        .Does([] { EXPECT_TRUE(HasFocus("cmdAccept")); })
        .Presses(Qt::Key_Return)
        .Presses(Qt::Key_Return)
        .WaitsUntil("the next step is open", StandsAt(5));
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, SecondEnterOnRepeatPressesNothingElse)
{
    Calibrates(4).Presses(Qt::Key_Return).Presses(Qt::Key_Return).WaitsUntil("round 2 is watched", Watches(2));
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRange, EscapeStopsLikeStop)
{
    Calibrates(4).Presses(Qt::Key_Escape).WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Rows(), 0);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(SimulatedRange, EscapeStopsFromTheGridToo)
{
    Calibrates(4)
        .Presses(Qt::Key_Backtab)
        .Does([] { EXPECT_TRUE(HasFocus("msgCalibGrid")); })
        .Presses(Qt::Key_Escape)
        .WaitsFor("cmdReady");
    EXPECT_TRUE(person->Runs());
}

}  // namespace
}  // namespace ombrix::test
