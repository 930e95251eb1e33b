#include "procedures/range_view.h"

#include "widgets/page_grid.h"
#include "widgets/page_kit.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <vector>

namespace ombrix {

RangeView rangeView;

namespace {

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
    return column == RangeColumn::Error ? rangeView.msgCalibGrid->columnCount() - 1 : static_cast<int>(column);
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
    rangeView.lblRangeStep = Title(rangeView.frame, "lblRangeStep");
    rangeView.lblRangeInput = Label(rangeView.frame, "lblRangeInput");
    auto *row = new QHBoxLayout;
    row->addWidget(rangeView.lblRangeStep);
    row->addStretch();
    row->addWidget(rangeView.lblRangeInput);
    return row;
}

QHBoxLayout *BuildButtons(const RangeHandlers &handlers)
{
    rangeView.cmdReady = Button(rangeView.frame, "cmdReady", "Ready", handlers.ready);
    rangeView.cmdRepeat = Button(rangeView.frame, "cmdRepeat", "Repeat", handlers.repeat);
    rangeView.cmdAccept = Button(rangeView.frame, "cmdAccept", "Accept", handlers.accept);
    rangeView.cmdStopReset = Button(rangeView.frame, "cmdStopReset", "Stop", handlers.stopReset);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {rangeView.cmdReady, rangeView.cmdRepeat, rangeView.cmdAccept, rangeView.cmdStopReset}) {
        MakeLarge(button);
        row->addWidget(button);
    }
    row->insertStretch(3);
    return row;
}

}  // namespace

void BuildRangeView(QFrame *frame, const RangeHandlers &handlers)
{
    rangeView = RangeView();
    rangeView.frame = frame;
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildTitle());
    rangeView.msgCalibGrid = Grid(frame, "msgCalibGrid", handlers.grid);
    column->addWidget(rangeView.msgCalibGrid, 1);
    rangeView.cable = Instruction(frame, 1, 2);
    column->addWidget(rangeView.cable);
    rangeView.instruction = Instruction(frame, 0, 2);
    column->addWidget(rangeView.instruction);
    column->addLayout(BuildButtons(handlers));
    BuildRangeGrid(false);
}

void ShowRange(const std::string &name, const std::string &plus, const std::string &minus)
{
    rangeView.lblRangeStep->setText(Caption(name));
    rangeView.lblRangeInput->setText(Caption("Input " + plus + (minus.empty() ? "" : ", " + minus)));
}

void BuildRangeGrid(bool turnover)
{
    rangeView.TurnoverStep = turnover;
    SetGridColumns(rangeView.msgCalibGrid, turnover ? kTurnoverColumns : kPlainColumns);
    ResetRangeGrid();
}

void ResetRangeGrid()
{
    ClearGrid(rangeView.msgCalibGrid);
    SwapReadyRepeat(false);
    ShowRangeInstruction(RangeInstruction::ApplyInput);
    rangeView.cmdStopReset->setText("Stop");
    Disable(rangeView.cmdAccept, rangeView.cmdStopReset);
}

int AddRangeRow(const std::string &desired, const std::string &word)
{
    const std::string number = std::to_string(rangeView.msgCalibGrid->rowCount() + 1);
    const int row = AddGridRow(rangeView.msgCalibGrid, {number, desired, "", word}, rangeView.TurnoverStep ? 2 : 1);
    rangeView.msgCalibGrid->setCurrentCell(row, ColumnIndex(RangeColumn::CurrentReading));
    return row;
}

std::string RangeCell(int row, RangeColumn column)
{
    return GridCell(rangeView.msgCalibGrid, row, ColumnIndex(column));
}

void SetRangeCell(int row, RangeColumn column, const std::string &text)
{
    SetGridCell(rangeView.msgCalibGrid, row, ColumnIndex(column), text);
}

void SelectGridRow(int row)
{
    MarkGridRow(rangeView.msgCalibGrid, row);
}

int SelectedGridRow()
{
    return MarkedGridRow(rangeView.msgCalibGrid);
}

void ClearGridSelection()
{
    MarkGridRow(rangeView.msgCalibGrid, -1);
}

void SwapReadyRepeat(bool showRepeat)
{
    Disable(rangeView.cmdReady, rangeView.cmdRepeat);
    rangeView.cmdReady->setVisible(!showRepeat);
    rangeView.cmdRepeat->setVisible(showRepeat);
}

void ShowRangeInstruction(RangeInstruction kind)
{
    ShowInstruction(rangeView.instruction, InstructionText(kind),
                    kind == RangeInstruction::Limited ? Red() : InfoBackground());
    ShowInstruction(rangeView.cable, kind == RangeInstruction::ApplyInput ? rangeView.CableText : "", InfoBackground());
}

void ShowRangeFailure(const std::string &text)
{
    ShowInstruction(rangeView.instruction, text, Red());
}

}  // namespace ombrix
