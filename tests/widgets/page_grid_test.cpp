#include "widgets/page_grid.h"

#include "widgets/widgets.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFrame>
#include <QHeaderView>
#include <QTableWidget>

#include <memory>

namespace ombrix::test {
namespace {

class PageGrid : public testing::Test
{
protected:
    QFrame page;
    QTableWidget *grid = nullptr;
    int chosen = -1;

    void SetUp() override
    {
        grid = Grid(&page, "msgGrid", [this](int row) { chosen = row; });
        SetGridColumns(grid, {{"", 1}, {"Two\r\nlines", 3}, {"Last", 2}});
        grid->resize(602, 300);
        page.show();
    }

    QBrush Background(int row, int column) const { return grid->item(row, column)->background(); }
};

TEST_F(PageGrid, HoldsTextsInTheMiddleOfItsCells)
{
    EXPECT_EQ(AddGridRow(grid, {"1", "+5\r\n-5"}, 2), 0);
    EXPECT_EQ(AddGridRow(grid, {"2", "x", "y"}, 1), 1);
    EXPECT_EQ(GridCell(grid, 0, 1), "+5\n-5");
    EXPECT_EQ(GridCell(grid, 0, 2), "");
    EXPECT_EQ(GridCell(grid, 1, 2), "y");
    SetGridCell(grid, 1, 2, "z");
    EXPECT_EQ(GridCell(grid, 1, 2), "z");
    EXPECT_EQ(grid->item(1, 2)->textAlignment(), Qt::AlignCenter);
    EXPECT_GT(grid->rowHeight(0), grid->rowHeight(1));
}

TEST_F(PageGrid, NoHeaderIsCutWhereAllFindRoom)
{
    SetGridColumns(grid, {{"", 1}, {"Turnover", 1}, {"Last", 30}});
    grid->resize(302, 300);
    page.show();
    QCoreApplication::sendPostedEvents();
    const QFontMetrics metrics = grid->horizontalHeader()->fontMetrics();
    EXPECT_GT(grid->columnWidth(1), metrics.horizontalAdvance("Turnover"));
    EXPECT_EQ(grid->columnWidth(0) + grid->columnWidth(1) + grid->columnWidth(2), grid->viewport()->width());
    EXPECT_GT(grid->columnWidth(2), grid->columnWidth(1));
}

TEST_F(PageGrid, HasNothingOutsideItsRowsAndColumns)
{
    AddGridRow(grid, {"1"}, 1);
    EXPECT_EQ(GridCell(grid, -1, 1), "");
    EXPECT_EQ(GridCell(grid, 1, 1), "");
    EXPECT_EQ(GridCell(grid, 0, 3), "");
    SetGridCell(grid, 5, 5, "x");
    EXPECT_EQ(grid->rowCount(), 1);
}

TEST_F(PageGrid, MarksAllOfARowButItsNumber)
{
    AddGridRow(grid, {"1", "a", "b"}, 1);
    EXPECT_EQ(MarkedGridRow(grid), -1);
    MarkGridRow(grid, 0);
    EXPECT_EQ(MarkedGridRow(grid), 0);
    EXPECT_EQ(Background(0, 1).color(), Cyan());
    EXPECT_EQ(Background(0, 2).color(), Cyan());
    EXPECT_NE(Background(0, 0).color(), Cyan());
}

TEST_F(PageGrid, MarksOneRowAtMost)
{
    AddGridRow(grid, {"1", "a"}, 1);
    AddGridRow(grid, {"2", "b"}, 1);
    MarkGridRow(grid, 0);
    MarkGridRow(grid, 1);
    EXPECT_EQ(Background(0, 1).style(), Qt::NoBrush);
    EXPECT_FALSE(grid->item(0, 1)->data(Qt::ForegroundRole).isValid()) << "the palette's text, in light and dark";
    EXPECT_EQ(Background(1, 1).color(), Cyan());
    MarkGridRow(grid, 1);
    EXPECT_EQ(Background(1, 1).color(), Cyan()) << "once more is no change";
    for (int outside : {-1, 7}) {
        MarkGridRow(grid, 1);
        MarkGridRow(grid, outside);
        EXPECT_EQ(MarkedGridRow(grid), -1);
        EXPECT_EQ(Background(1, 1).style(), Qt::NoBrush);
    }
}

TEST_F(PageGrid, HasNoMarkOnceItsRowsAreGone)
{
    AddGridRow(grid, {"1", "a"}, 1);
    MarkGridRow(grid, 0);
    ClearGrid(grid);
    AddGridRow(grid, {"1", "a"}, 1);
    EXPECT_EQ(MarkedGridRow(grid), -1);
    EXPECT_EQ(Background(0, 1).style(), Qt::NoBrush);
}

TEST_F(PageGrid, SharesItsWidthAmongItsColumns)
{
    const QHeaderView *header = grid->horizontalHeader();
    EXPECT_EQ(header->length(), grid->viewport()->width());
    EXPECT_NEAR(header->sectionSize(1), grid->viewport()->width() / 2, 1);
    grid->resize(902, 300);
    EXPECT_EQ(header->length(), grid->viewport()->width());
    EXPECT_NEAR(header->sectionSize(0), grid->viewport()->width() / 6, 1);
}

TEST_F(PageGrid, ScrollsToARowThatIsAdded)
{
    for (int row = 0; row < 40; ++row)
        AddGridRow(grid, {std::to_string(row + 1)}, 1);
    EXPECT_TRUE(grid->viewport()->rect().contains(grid->visualItemRect(grid->item(39, 1))));
    EXPECT_FALSE(grid->viewport()->rect().intersects(grid->visualItemRect(grid->item(0, 1))));
}

TEST_F(PageGrid, LosesItsRowsWithNewColumns)
{
    AddGridRow(grid, {"1", "a"}, 1);
    SetGridColumns(grid, {{"", 1}, {"One", 1}});
    EXPECT_EQ(grid->rowCount(), 0);
    EXPECT_EQ(grid->columnCount(), 2);
    EXPECT_EQ(grid->horizontalHeaderItem(1)->text(), "One");
}

TEST_F(PageGrid, TellsTheRowThatWasClickedOrEntered)
{
    AddGridRow(grid, {"1", "a"}, 1);
    AddGridRow(grid, {"2", "b"}, 1);
    emit grid->cellClicked(1, 2);
    EXPECT_EQ(chosen, 1);
    emit grid->cellActivated(0, 1);
    EXPECT_EQ(chosen, 0);
}

TEST_F(PageGrid, ShowsTheRowOfTheArrowKeysByItsNumber)
{
    AddGridRow(grid, {"1", "a"}, 1);
    AddGridRow(grid, {"2", "b"}, 1);
    page.activateWindow();
    QApplication::processEvents();
    grid->setCurrentCell(1, 1);
    grid->clearFocus();
    const QColor idle = Background(1, 0).color();
    grid->setFocus();
    EXPECT_NE(Background(1, 0).color(), idle);
    grid->setCurrentCell(0, 1);
    EXPECT_EQ(Background(1, 0).color(), idle);
    EXPECT_NE(Background(0, 0).color(), idle);
    grid->clearFocus();
    EXPECT_EQ(Background(0, 0).color(), idle);
}

}  // namespace
}  // namespace ombrix::test
