#include "widgets/page_grid.h"

#include "platform/fault.h"
#include "widgets/widgets.h"

#include <QEvent>
#include <QHeaderView>
#include <QTableWidget>

#include <algorithm>
#include <utility>

namespace ombrix {
namespace {

constexpr int kShareRole = Qt::UserRole;
constexpr char kMarkedRow[] = "markedRow";
constexpr int kNoRow = -1;
constexpr int kRowMargin = 8;
constexpr double kTextSize = 1.2;  // numbers are read from an arm's length

int Share(const QTableWidget *grid, int column)
{
    return grid->horizontalHeaderItem(column)->data(kShareRole).toInt();
}

// What a header needs to be read in full.
int HeaderWidth(const QTableWidget *grid, int column)
{
    constexpr int kMargin = 10;
    const QString text = grid->horizontalHeaderItem(column)->text();
    return grid->horizontalHeader()->fontMetrics().size(0, text).width() + kMargin;
}

// By the shares of the columns, but no header is cut as long as all of them find room.
void ShareWidth(QTableWidget *grid)
{
    int sharesLeft = 0;
    int widthLeft = grid->viewport()->width();
    int spare = widthLeft;
    for (int column = 0; column < grid->columnCount(); ++column) {
        sharesLeft += Share(grid, column);
        spare -= HeaderWidth(grid, column);
    }
    for (int column = 0; column < grid->columnCount(); ++column) {
        const int share = Share(grid, column);
        int width = widthLeft * share / sharesLeft;  // of what is left: the last column ends at the edge
        if (spare >= 0) {
            const int least = HeaderWidth(grid, column);
            width = std::clamp(width, least, least + spare);
            spare -= width - least;
        }
        grid->setColumnWidth(column, width);
        widthLeft -= width;
        sharesLeft -= share;
    }
}

// The number of the row that the arrow keys stand on takes the highlight while the grid has the focus.
void PaintNumbers(QTableWidget *grid)
{
    const QPalette &palette = grid->palette();
    for (int row = 0; row < grid->rowCount(); ++row) {
        const bool at = grid->hasFocus() && row == grid->currentRow();
        if (QTableWidgetItem *item = grid->item(row, 0)) {
            item->setBackground(at ? palette.highlight() : palette.button());
            item->setForeground(at ? palette.highlightedText() : palette.buttonText());
        }
    }
}

class GridKeeper : public QObject
{
public:
    explicit GridKeeper(QTableWidget *grid) : QObject(grid), m_grid(grid)
    {
        grid->installEventFilter(this);
        grid->viewport()->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_grid && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
            PaintNumbers(m_grid);
        if (watched != m_grid && event->type() == QEvent::Resize)
            ShareWidth(m_grid);
        return false;
    }

private:
    QTableWidget *m_grid;
};

// Unmarked cells hold no colour of their own, so that they follow the palette.
void PaintRow(QTableWidget *grid, int row, bool marked)
{
    for (int column = 1; column < grid->columnCount(); ++column) {
        if (QTableWidgetItem *item = grid->item(row, column)) {
            item->setData(Qt::BackgroundRole, marked ? QVariant(QBrush(Cyan())) : QVariant());
            item->setData(Qt::ForegroundRole, marked ? QVariant(QBrush(Qt::black)) : QVariant());
        }
    }
}

QTableWidgetItem *CellItem(const std::string &text)
{
    auto *item = new QTableWidgetItem(Caption(text));
    item->setTextAlignment(Qt::AlignCenter);
    item->setFlags(Qt::ItemIsEnabled);
    return item;
}

}  // namespace

QTableWidget *Grid(QWidget *parent, const QString &name, std::function<void(int row)> choose)
{
    auto *grid = new QTableWidget(parent);
    grid->setObjectName(name);
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->horizontalHeader()->setSectionsClickable(false);
    grid->horizontalHeader()->setMinimumSectionSize(1);
    grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);  // a row is chosen by its colour
    grid->setTabKeyNavigation(false);
    grid->setFocusPolicy(Qt::TabFocus);  // a click leaves the focus on the button that comes next
    grid->setWordWrap(false);
    QFont font = grid->font();
    font.setPointSizeF(font.pointSizeF() * kTextSize);
    grid->setFont(font);
    new GridKeeper(grid);

    const auto chosen = [choose = std::move(choose)](int row) { RunHandler([&choose, row] { choose(row); }); };
    QObject::connect(grid, &QTableWidget::currentCellChanged, grid, [grid] { PaintNumbers(grid); });
    QObject::connect(grid, &QTableWidget::cellClicked, grid, chosen);
    QObject::connect(grid, &QTableWidget::cellActivated, grid, chosen);
    return grid;
}

void SetGridColumns(QTableWidget *grid, const std::vector<GridColumn> &columns)
{
    ClearGrid(grid);
    grid->setColumnCount(static_cast<int>(columns.size()));
    for (int column = 0; column < grid->columnCount(); ++column) {
        const GridColumn &wanted = columns[static_cast<std::size_t>(column)];
        auto *header = new QTableWidgetItem(Caption(wanted.header));
        header->setData(kShareRole, wanted.share);
        grid->setHorizontalHeaderItem(column, header);
    }
    ShareWidth(grid);
}

void ClearGrid(QTableWidget *grid)
{
    MarkGridRow(grid, kNoRow);
    grid->setRowCount(0);
}

int AddGridRow(QTableWidget *grid, const std::vector<std::string> &texts, int lines)
{
    const int row = grid->rowCount();
    grid->insertRow(row);
    grid->setRowHeight(row, grid->fontMetrics().lineSpacing() * lines + kRowMargin);
    for (int column = 0; column < grid->columnCount(); ++column) {
        const auto place = static_cast<std::size_t>(column);
        grid->setItem(row, column, CellItem(place < texts.size() ? texts[place] : ""));
    }
    PaintNumbers(grid);
    grid->scrollToBottom();
    return row;
}

std::string GridCell(const QTableWidget *grid, int row, int column)
{
    const QTableWidgetItem *item = grid->item(row, column);
    return item ? item->text().toStdString() : "";
}

void SetGridCell(QTableWidget *grid, int row, int column, const std::string &text)
{
    if (QTableWidgetItem *item = grid->item(row, column))
        item->setText(Caption(text));
}

void MarkGridRow(QTableWidget *grid, int row)
{
    PaintRow(grid, MarkedGridRow(grid), false);
    PaintRow(grid, row, true);
    grid->setProperty(kMarkedRow, row >= 0 && row < grid->rowCount() ? row : kNoRow);
}

int MarkedGridRow(const QTableWidget *grid)
{
    const QVariant row = grid->property(kMarkedRow);
    return row.isValid() ? row.toInt() : kNoRow;
}

}  // namespace ombrix
