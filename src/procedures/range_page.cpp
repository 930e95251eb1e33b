#include "procedures/range_page.h"

#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/output_switch.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "platform/widgets.h"
#include "procedures/page_grid.h"
#include "procedures/page_kit.h"
#include "procedures/range_engine.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace ombrix {
namespace {

constexpr int kRangePage = 4;
constexpr int kWatchMs = 300;
constexpr int kNoRow = -1;

// Columns of the grid. The last one is Error, at 6 or at 7.
enum Column { Round, Desired, CurrentReading, CurrentCalib, NewCalib, NewReading, Turnover };

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

enum Instruct { kApplyInput = 0, kCanStop = 1, kCanRepeat = 2, kLimited = 3 };

struct RangePage {
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

    int Position = -1;
    bool TurnoverStep = false;
    std::string PolarityValue[2];  // for the calibrator
    std::string DesiredText;
    std::string WordText;   // the word as the page knows it
    std::string CableText;  // "" unless the step needs another cable than the one before

    int Polarity = 0;            // the input now applied
    std::string ReadingText[2];  // the last reading of each
    int Row = kNoRow;            // of the round in work
    int SelectedRow = kNoRow;
    int ClickedRow = kNoRow;
    bool RepeatClicked = false;
    bool AcceptClicked = false;
    bool ResetClicked = false;
    bool GridClicked = false;
};
RangePage page;

// ---- what the page shows ----

void SelectGridRow(int row)
{
    if (row == page.SelectedRow)
        return;
    MarkGridRow(page.msgCalibGrid, page.SelectedRow, false);
    MarkGridRow(page.msgCalibGrid, row, true);
    page.SelectedRow = row;
}

void ClearGridSelection()
{
    SelectGridRow(kNoRow);
}

// Puts one of the two buttons in the common place, both off.
void SwapReadyRepeat(bool showRepeat)
{
    Disable(page.cmdReady, page.cmdRepeat);
    page.cmdReady->setVisible(!showRepeat);
    page.cmdRepeat->setVisible(showRepeat);
}

void ShowRangeInstruction(Instruct kind)
{
    static constexpr const char *kTexts[] = {"Set jumpers and apply input\r\nas shown, then click \"Ready\"",
                                             "Click \"Stop\" to stop calibrating this range",
                                             "Click \"Repeat\" to repeat this range",
                                             "Required correction exceeds allowable range"};
    ShowInstruction(page.instruction, kTexts[kind], kind == kLimited ? Red() : InfoBackground());
    ShowInstruction(page.cable, kind == kApplyInput ? page.CableText : "", InfoBackground());
}

void ResetRangeGrid()
{
    ClearGrid(page.msgCalibGrid);
    page.SelectedRow = kNoRow;
    SwapReadyRepeat(false);
    ShowRangeInstruction(kApplyInput);
    page.cmdStopReset->setText("Stop");
    Disable(page.cmdAccept, page.cmdStopReset);
}

void BuildRangeGrid()
{
    SetGridColumns(page.msgCalibGrid, page.TurnoverStep ? kTurnoverColumns : kPlainColumns);
    ResetRangeGrid();
}

std::string BothReadings()
{
    return page.TurnoverStep ? page.ReadingText[0] + "\r\n" + page.ReadingText[1] : page.ReadingText[0];
}

void ShowNewReadings()
{
    SetGridCell(page.msgCalibGrid, page.Row, NewReading, BothReadings());
}

void ShowTurnoverAndError()
{
    if (page.TurnoverStep)
        SetGridCell(page.msgCalibGrid, page.Row, Turnover, MeanReadingText());
    SetGridCell(page.msgCalibGrid, page.Row, page.msgCalibGrid->columnCount() - 1, ReadingErrorText());
}

// ---- one round ----

// Each step of a round returns false when the operator has stopped it.

bool ApplyPolarity()
{
    if (!Abort)
        ApplyInputValue(page.PolarityValue[page.Polarity]);
    return !Abort;
}

bool ReadPolarity()
{
    page.ReadingText[page.Polarity] = TakeReading(page.Polarity);
    return !Abort;
}

bool TurnOver()
{
    page.Polarity = 1 - page.Polarity;
    if (!ApplyPolarity())
        return false;
    MeterCommandCZ();
    return ReadPolarity();
}

void AddRound()
{
    ClearGridSelection();
    page.cmdStopReset->setText("Stop");
    page.cmdStopReset->setFocus();
    Disable(page.cmdRepeat, page.cmdAccept);
    ShowRangeInstruction(kCanStop);
    const std::string number = std::to_string(page.msgCalibGrid->rowCount() + 1);
    page.Row = AddGridRow(page.msgCalibGrid, {number, page.DesiredText, "", page.WordText}, page.TurnoverStep ? 2 : 1);
    SelectGridRow(page.Row);
    page.msgCalibGrid->setCurrentCell(page.Row, CurrentReading);
}

bool TakeFirstReadings()
{
    page.Polarity = 0;
    if (!ApplyPolarity() || !ReadPolarity())
        return false;
    if (!page.TurnoverStep)
        return true;
    SetGridCell(page.msgCalibGrid, page.Row, CurrentReading, page.ReadingText[0] + "\r\n");
    return TurnOver();
}

void ShowCurrentReadings()
{
    SetGridCell(page.msgCalibGrid, page.Row, CurrentReading, BothReadings());
    if (page.TurnoverStep)
        page.ReadingText[0] = page.ReadingText[1] = "";
}

bool CorrectWord(bool first)
{
    page.WordText = ComputeCorrectedWord(first);
    SetGridCell(page.msgCalibGrid, page.Row, NewCalib, page.WordText);
    if (step.CorrectionLimited)
        ShowRangeInstruction(kLimited);
    return !Abort;
}

bool TakeNewReadings()
{
    if (!ReadPolarity())
        return false;
    ShowNewReadings();
    if (page.TurnoverStep && !TurnOver())
        return false;
    ShowNewReadings();
    ShowTurnoverAndError();
    if (!step.CorrectionLimited)
        ShowRangeInstruction(kCanRepeat);
    return true;
}

// The simulated meter isn't asked again: its reading stands.
std::string NextLiveReading()
{
    DelayAlways(kWatchMs);
    if (HardwareMode)
        return TakeReadingOrStop(page.Polarity);
    return StopRequested || Abort ? std::string(kStop) : page.ReadingText[page.Polarity];
}

// Shows the reading as it goes on, until a click or until the meter falls silent.
void WatchReading()
{
    page.cmdStopReset->setText("Reset");
    Enable(page.cmdRepeat, page.cmdAccept);
    page.cmdRepeat->setFocus();
    page.GridClicked = false;
    ArmStop();
    for (std::string text = NextLiveReading(); text != kStop; text = NextLiveReading()) {
        page.ReadingText[page.Polarity] = text;
        ShowNewReadings();
        ShowTurnoverAndError();
    }
    DisarmStop();
    if (!StopRequested && !Abort)
        outlets.showRemark(StepName(CurrentStepId) + ": the meter fell silent, its last reading stands");
    if (page.GridClicked)
        SelectGridRow(page.ClickedRow);
}

void RunRound(bool first)
{
    AddRound();
    if (first && !TakeFirstReadings())
        return;
    ShowCurrentReadings();
    if (!CorrectWord(first) || !TakeNewReadings())
        return;
    WatchReading();
    WaitForOperator([] { return page.RepeatClicked || page.AcceptClicked || page.ResetClicked; });
}

// ---- the calibration of a range ----

void WaitForReady()
{
    ResetRangeGrid();
    EnableAndFocus(page.cmdReady);
}

void StartCalibration()
{
    SwapReadyRepeat(true);
    EnableAndFocus(page.cmdStopReset);
    const std::string target = std::to_string(GetTargetCounts());
    page.DesiredText = page.TurnoverStep ? "+" + target + "\r\n-" + target : target;
    Abort = false;
    page.RepeatClicked = true;
    page.AcceptClicked = page.ResetClicked = page.GridClicked = false;
    EnableSteps(false);
}

void RunRounds()
{
    for (bool first = true; page.RepeatClicked && !Abort; first = false) {
        page.RepeatClicked = false;
        RunRound(first);
    }
}

// The operator may have chosen the word of an earlier round.
void RestoreSelectedWord()
{
    const std::string word = GridCell(page.msgCalibGrid, page.SelectedRow, NewCalib);
    if (word == page.WordText || word.size() != 4 || !IsHexText(word))
        return;
    WriteStepWord(word);
    page.WordText = word;
}

void FinishRangeAccept()
{
    RemoveInput();
    RestoreSelectedWord();
    UpdateNominalSlope(GridCell(page.msgCalibGrid, page.SelectedRow, NewReading));
    UpdateNominalWord();
    EnableSteps(true);
    // Behind the calibration positions no step follows: touch-up steps stay open for another round.
    if (page.Position > StepButtonCount())
        WaitForReady();
    else
        NextStep();
}

// The word written so far stays in the meter, and nothing is learned.
void FinishRangeStop()
{
    Abort = false;
    RemoveInput();
    EnableSteps(true);
    WaitForReady();
}

void FinishRange()
{
    DropFocus(page.frame);
    Disable(page.cmdRepeat, page.cmdAccept, page.cmdStopReset);  // a second Stop would stop the input's removal
    if (page.AcceptClicked && !page.ResetClicked && !Abort)
        FinishRangeAccept();
    else
        FinishRangeStop();
}

void CalibrateRange()
{
    StartCalibration();
    WithExit(RunRounds, FinishRange);
}

// ---- the operator ----

void cmdReady_Click()
{
    RunProcedure(CalibrateRange);
}

void cmdRepeat_Click()
{
    DropFocus(page.frame);
    Disable(page.cmdRepeat, page.cmdAccept);
    page.cmdStopReset->setText("Stop");
    page.RepeatClicked = true;
    RequestStop();
}

void cmdAccept_Click()
{
    DropFocus(page.frame);
    Disable(page.cmdAccept, page.cmdRepeat);
    page.AcceptClicked = true;
    RequestStop();
}

void cmdStopReset_Click()
{
    if (page.cmdStopReset->text() == "Stop") {
        Abort = true;
        return;
    }
    page.ResetClicked = true;
    RequestStop();
}

void msgCalibGrid_Click(int row)
{
    page.ClickedRow = row;
    if (!StopArmed) {
        SelectGridRow(row);
        return;
    }
    page.GridClicked = true;
    RequestStop();
}

// Runs inside the navigator's procedure.
void EnterRangePage()
{
    EnableSteps(false);
    Disable(page.cmdReady, page.cmdRepeat, page.cmdAccept, page.cmdStopReset);
    page.Position = CurrentStepButton;
    LoadStep(page.Position, StepIdAtPosition(page.Position));
    page.TurnoverStep = GetTurnoverStep();
    ApplySwitched(GetCalValue());
    page.PolarityValue[0] = GetCalValue();
    page.PolarityValue[1] = "-" + GetCalValue();
    page.lblRangeStep->setText(Caption(StepName(CurrentStepId)));
    page.lblRangeInput->setText(
        Caption("Input " + page.PolarityValue[0] + (page.TurnoverStep ? ", " + page.PolarityValue[1] : "")));
    ShowPage(kRangePage);
    page.CableText = ShowConnectionDiagram(GetRangeCodeIndex());
    BuildRangeGrid();
    ApplyStepToMeter();
    page.WordText = GetStepWordHex();
    EnableSteps(true);
    // Without the word there is nothing to correct; the way back is the step's button.
    if (page.WordText.empty())
        ShowInstruction(page.instruction, "The meter did not answer:\r\ncheck its line, then click the step again",
                        Red());
    else
        EnableAndFocus(page.cmdReady);
}

// ---- the page ----

QHBoxLayout *BuildTitle()
{
    page.lblRangeStep = Label(page.frame, "lblRangeStep");
    QFont font = page.lblRangeStep->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    page.lblRangeStep->setFont(font);
    page.lblRangeInput = Label(page.frame, "lblRangeInput");
    auto *row = new QHBoxLayout;
    row->addWidget(page.lblRangeStep);
    row->addStretch();
    row->addWidget(page.lblRangeInput);
    return row;
}

QHBoxLayout *BuildButtons()
{
    page.cmdReady = Button(page.frame, "cmdReady", "Ready", cmdReady_Click);
    page.cmdRepeat = Button(page.frame, "cmdRepeat", "Repeat", cmdRepeat_Click);
    page.cmdAccept = Button(page.frame, "cmdAccept", "Accept", cmdAccept_Click);
    page.cmdStopReset = Button(page.frame, "cmdStopReset", "Stop", cmdStopReset_Click);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {page.cmdReady, page.cmdRepeat, page.cmdAccept, page.cmdStopReset}) {
        MakeLarge(button);
        row->addWidget(button);
    }
    row->insertStretch(3);
    return row;
}

void BuildRangePage(QFrame *frame)
{
    page = RangePage();
    page.frame = frame;
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildTitle());
    page.msgCalibGrid = Grid(frame, "msgCalibGrid", msgCalibGrid_Click);
    column->addWidget(page.msgCalibGrid, 1);
    page.cable = Instruction(frame, 1, 2);
    column->addWidget(page.cable);
    page.instruction = Instruction(frame, 0, 2);
    column->addWidget(page.instruction);
    column->addLayout(BuildButtons());
    BuildRangeGrid();
}

}  // namespace

void RegisterRangePage()
{
    RegisterPage(kRangePage, BuildRangePage);
    RegisterSteps({2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 17, 18, 19, 20, 21,
                   22, 23, 24, 25, 26, 28, 29, 52, 53, 54, 55, 56, 57, 58, 59, 60},
                  EnterRangePage);
}

}  // namespace ombrix
