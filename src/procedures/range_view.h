// What the range page shows: the range, the grid of its rounds, the instruction, the buttons. Knows no instrument and
// waits for nothing.
#pragma once

#include "widgets/widgets.h"

#include <functional>
#include <string>

class QFrame;
class QLabel;
class QPushButton;
class QTableWidget;

namespace ombrix {

/// Columns of the grid. Turnover is there on a turnover step alone; Error is the last one.
enum class RangeColumn { Round, Desired, CurrentReading, CurrentCalib, NewCalib, NewReading, Turnover, Error };

enum class RangeInstruction { ApplyInput, CanStop, CanRepeat, Limited };

struct RangeView {
    QFrame *frame = nullptr;
    QLabel *lblRangeStep = nullptr;
    QLabel *lblRangeInput = nullptr;
    QTableWidget *msgCalibGrid = nullptr;
    QFrame *instruction = nullptr;  // shpInst(0)
    QFrame *cable = nullptr;        // shpInst(1)
    QPushButton *cmdReady = nullptr;
    QPushButton *cmdRepeat = nullptr;
    QPushButton *cmdAccept = nullptr;
    QPushButton *cmdStopReset = nullptr;

    bool TurnoverStep = false;
    std::string CableText;  // "" unless the step needs another cable than the one before
};
extern RangeView rangeView;

struct RangeHandlers {
    Handler ready, repeat, accept, stopReset;
    std::function<void(int row)> grid;
};
/// Fills the page's frame, in the state of a step not yet begun.
void BuildRangeView(QFrame *frame, const RangeHandlers &handlers);

/// Names the step and the values that will be applied; `minus` is "" without turnover.
void ShowRange(const std::string &name, const std::string &plus, const std::string &minus);

/// The columns of the step, with or without turnover; then ResetRangeGrid.
void BuildRangeGrid(bool turnover);
/// The header alone, Ready in its place, all buttons off.
void ResetRangeGrid();

/// A row for a new round: its number, and what it begins with. Returns its index.
int AddRangeRow(const std::string &desired, const std::string &word);
std::string RangeCell(int row, RangeColumn column);
void SetRangeCell(int row, RangeColumn column, const std::string &text);

void SelectGridRow(int row);
int SelectedGridRow();  ///< -1 none
void ClearGridSelection();

/// Puts one of the two buttons in the common place, both off.
void SwapReadyRepeat(bool showRepeat);
void ShowRangeInstruction(RangeInstruction kind);
/// In the place of the instruction, in red.
void ShowRangeFailure(const std::string &text);

}  // namespace ombrix
