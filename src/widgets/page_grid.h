// A grid of results: a fixed header, texts in the middle of their cells, nothing to edit. Row 0 is the first row below
// the header. The first column is as fixed in its look as the header.
#pragma once

#include <QString>

#include <functional>
#include <string>
#include <vector>

class QTableWidget;
class QWidget;

namespace ombrix {

struct GridColumn {
    const char *header;  ///< CR LF breaks the line
    int share;           ///< of the grid's width, against the other columns
};

/// A row is chosen by a click, or with the arrow keys and Enter; `choose` gets its index. The header is no row.
QTableWidget *Grid(QWidget *parent, const QString &name, std::function<void(int row)> choose);

/// New columns; all rows go.
void SetGridColumns(QTableWidget *grid, const std::vector<GridColumn> &columns);
void ClearGrid(QTableWidget *grid);

/// Adds a row that is `lines` lines high, scrolls to it, and returns its index.
int AddGridRow(QTableWidget *grid, const std::vector<std::string> &texts, int lines);

/// The text of a cell; "" outside the grid. A line break reads as "\n".
std::string GridCell(const QTableWidget *grid, int row, int column);
void SetGridCell(QTableWidget *grid, int row, int column, const std::string &text);

/// Paints all but the first column of a row cyan, and the row that was marked before back. A row outside the grid
/// (-1) leaves none marked.
void MarkGridRow(QTableWidget *grid, int row);
/// -1 none.
int MarkedGridRow(const QTableWidget *grid);

}  // namespace ombrix
