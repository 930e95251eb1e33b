#include "procedures/range_view.h"

#include "procedures/page_grid.h"
#include "procedures/page_kit.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <vector>

namespace ombrix {

RangeView view;

namespace {

constexpr int kNoRow = -1;

const std::vector<GridColumn> kPlainColumns = {{"", 450},
                                               {"Desired\r\nReading", 1650},
                                               {"Current\r\nReading", 1650},
                                               {"Current\r\nCalib", 1210},
                                               {"New\r\nCalib", 1210},
                                               {"New\r\nReading", 1650},
                                               {"Error", 1200}};
const std::vector<GridColumn> kTurnoverColumns = {{"", 450},
                                                  {"Desired\r\nReading", 1490},
                                                  {"Current\r\nReading", 1490},
                                                  {"Current\r\nCalib", 1000},
                                                  {"New\r\nCalib", 1000},
                                                  {"New\r\nReading", 1490},
                                                  {"Turnover", 1050},
                                                  {"Error", 1050}};

int ColumnIndex(RangeColumn column)
{
    return column == RangeColumn::Error ? view.msgCalibGrid->columnCount() - 1 : static_cast<int>(column);
}

const char *InstructionText(RangeInstruction kind)
{
    switch (kind) {
    case RangeInstruction::ApplyInput:
        return "Set jumpers and apply input\r\nas shown, then click \"Ready\"";
    case RangeInstruction::CanStop:
        return "Click \"Stop\" to stop calibrating this range";
    case RangeInstruction::CanRepeat:
        return "Click \"Repeat\" to repeat this range";
    case RangeInstruction::Limited:
        return "Required correction exceeds allowable range";
    }
    return "";
}

QHBoxLayout *BuildTitle()
{
    view.lblRangeStep = Label(view.frame, "lblRangeStep");
    QFont font = view.lblRangeStep->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    view.lblRangeStep->setFont(font);
    view.lblRangeInput = Label(view.frame, "lblRangeInput");
    auto *row = new QHBoxLayout;
    row->addWidget(view.lblRangeStep);
    row->addStretch();
    row->addWidget(view.lblRangeInput);
    return row;
}

QHBoxLayout *BuildButtons(const RangeHandlers &handlers)
{
    view.cmdReady = Button(view.frame, "cmdReady", "Ready", handlers.ready);
    view.cmdRepeat = Button(view.frame, "cmdRepeat", "Repeat", handlers.repeat);
    view.cmdAccept = Button(view.frame, "cmdAccept", "Accept", handlers.accept);
    view.cmdStopReset = Button(view.frame, "cmdStopReset", "Stop", handlers.stopReset);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {view.cmdReady, view.cmdRepeat, view.cmdAccept, view.cmdStopReset}) {
        MakeLarge(button);
        row->addWidget(button);
    }
    row->insertStretch(3);
    return row;
}

}  // namespace

void BuildRangeView(QFrame *frame, const RangeHandlers &handlers)
{
    view = RangeView();
    view.frame = frame;
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildTitle());
    view.msgCalibGrid = Grid(frame, "msgCalibGrid", handlers.grid);
    column->addWidget(view.msgCalibGrid, 1);
    view.cable = Instruction(frame, 1, 2);
    column->addWidget(view.cable);
    view.instruction = Instruction(frame, 0, 2);
    column->addWidget(view.instruction);
    column->addLayout(BuildButtons(handlers));
    BuildRangeGrid(false);
}

void ShowRange(const std::string &name, const std::string &plus, const std::string &minus)
{
    view.lblRangeStep->setText(Caption(name));
    view.lblRangeInput->setText(Caption("Input " + plus + (minus.empty() ? "" : ", " + minus)));
}

void BuildRangeGrid(bool turnover)
{
    view.TurnoverStep = turnover;
    SetGridColumns(view.msgCalibGrid, turnover ? kTurnoverColumns : kPlainColumns);
    ResetRangeGrid();
}

void ResetRangeGrid()
{
    ClearGrid(view.msgCalibGrid);
    view.SelectedRow = kNoRow;
    SwapReadyRepeat(false);
    ShowRangeInstruction(RangeInstruction::ApplyInput);
    view.cmdStopReset->setText("Stop");
    Disable(view.cmdAccept, view.cmdStopReset);
}

int AddRangeRow(const std::string &desired, const std::string &word)
{
    const std::string number = std::to_string(view.msgCalibGrid->rowCount() + 1);
    const int row = AddGridRow(view.msgCalibGrid, {number, desired, "", word}, view.TurnoverStep ? 2 : 1);
    view.msgCalibGrid->setCurrentCell(row, ColumnIndex(RangeColumn::CurrentReading));
    return row;
}

std::string RangeCell(int row, RangeColumn column)
{
    return GridCell(view.msgCalibGrid, row, ColumnIndex(column));
}

void SetRangeCell(int row, RangeColumn column, const std::string &text)
{
    SetGridCell(view.msgCalibGrid, row, ColumnIndex(column), text);
}

void SelectGridRow(int row)
{
    if (row == view.SelectedRow)
        return;
    MarkGridRow(view.msgCalibGrid, view.SelectedRow, false);
    MarkGridRow(view.msgCalibGrid, row, true);
    view.SelectedRow = row;
}

void ClearGridSelection()
{
    SelectGridRow(kNoRow);
}

void SwapReadyRepeat(bool showRepeat)
{
    Disable(view.cmdReady, view.cmdRepeat);
    view.cmdReady->setVisible(!showRepeat);
    view.cmdRepeat->setVisible(showRepeat);
}

void ShowRangeInstruction(RangeInstruction kind)
{
    ShowInstruction(view.instruction, InstructionText(kind),
                    kind == RangeInstruction::Limited ? Red() : InfoBackground());
    ShowInstruction(view.cable, kind == RangeInstruction::ApplyInput ? view.CableText : "", InfoBackground());
}

void ShowRangeFailure(const std::string &text)
{
    ShowInstruction(view.instruction, text, Red());
}

}  // namespace ombrix
