#include "procedures/range_page.h"

#include "calibration/range_engine.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/output_switch.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "procedures/range_view.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"

#include <QFrame>
#include <QPushButton>

#include <array>
#include <string>

namespace ombrix {
namespace {

constexpr int kRangePage = 4;
constexpr int kWatchMs = 300;

struct RangePage {
    int Position = -1;
    bool TurnoverStep = false;
    std::array<std::string, 2> PolarityValue;  // for the calibrator
    std::string DesiredText;
    std::string WordText;  // the word now in the meter, as the page knows it

    int Row = -1;                            // of the round in work
    int Polarity = 0;                        // the input now applied
    std::array<std::string, 2> ReadingText;  // the last reading of each

    bool RepeatClicked = false;
    bool AcceptClicked = false;
    bool ResetClicked = false;
    bool GridClicked = false;
    int ClickedRow = -1;
};
RangePage page;

// ---- one round: what takes a reading returns false when the operator has stopped it ----

void AddRound()
{
    ClearGridSelection();
    rangeView.cmdStopReset->setText("Stop");
    rangeView.cmdStopReset->setFocus();
    Disable(rangeView.cmdRepeat, rangeView.cmdAccept);
    ShowRangeInstruction(RangeInstruction::CanStop);
    page.Row = AddRangeRow(page.DesiredText, page.WordText);
    SelectGridRow(page.Row);
}

bool ApplyPolarity()
{
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

std::string BothReadings()
{
    return page.TurnoverStep ? page.ReadingText[0] + "\r\n" + page.ReadingText[1] : page.ReadingText[0];
}

bool TakeFirstReadings()
{
    page.Polarity = 0;
    if (!ApplyPolarity() || !ReadPolarity())
        return false;
    if (!page.TurnoverStep)
        return true;
    SetRangeCell(page.Row, RangeColumn::CurrentReading, page.ReadingText[0] + "\r\n");
    return TurnOver();
}

void ShowCurrentReadings()
{
    SetRangeCell(page.Row, RangeColumn::CurrentReading, BothReadings());
    if (page.TurnoverStep)
        page.ReadingText[0] = page.ReadingText[1] = "";
}

void CorrectWord(bool first)
{
    page.WordText = ComputeCorrectedWord(first);
    SetRangeCell(page.Row, RangeColumn::NewCalib, page.WordText);
    if (step.CorrectionLimited)
        ShowRangeInstruction(RangeInstruction::Limited);
}

void ShowNewReadings()
{
    SetRangeCell(page.Row, RangeColumn::NewReading, BothReadings());
    if (page.TurnoverStep)
        SetRangeCell(page.Row, RangeColumn::Turnover, MeanReadingText());
    SetRangeCell(page.Row, RangeColumn::Error, ReadingErrorText());
}

bool TakeNewReadings()
{
    if (!ReadPolarity())
        return false;
    if (page.TurnoverStep) {
        SetRangeCell(page.Row, RangeColumn::NewReading, BothReadings());
        if (!TurnOver())
            return false;
    }
    ShowNewReadings();
    if (!step.CorrectionLimited)
        ShowRangeInstruction(RangeInstruction::CanRepeat);
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
    rangeView.cmdStopReset->setText("Reset");
    Enable(rangeView.cmdRepeat, rangeView.cmdAccept);
    rangeView.cmdRepeat->setFocus();
    page.GridClicked = false;
    ArmStop();
    for (std::string text = NextLiveReading(); text != kStop; text = NextLiveReading()) {
        page.ReadingText[page.Polarity] = text;
        ShowNewReadings();
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
    CorrectWord(first);
    if (!TakeNewReadings())
        return;
    WatchReading();
    WaitForOperator([] { return page.RepeatClicked || page.AcceptClicked || page.ResetClicked; });
}

// ---- the calibration of a range ----

void StartCalibration()
{
    SwapReadyRepeat(true);
    EnableAndFocus(rangeView.cmdStopReset);
    const std::string target = std::to_string(GetTargetCounts());
    page.DesiredText = page.TurnoverStep ? "+" + target + "\r\n-" + target : target;
    Abort = false;
    page.RepeatClicked = true;
    page.AcceptClicked = page.ResetClicked = page.GridClicked = false;
    EnableSteps(false);
}

void RunRounds()
{
    // A Reset stands, whatever is clicked inside its second.
    for (bool first = true; page.RepeatClicked && !page.ResetClicked && !Abort; first = false) {
        page.RepeatClicked = false;
        RunRound(first);
    }
}

void WaitForReady()
{
    ResetRangeGrid();
    EnableAndFocus(rangeView.cmdReady);
}

// The operator may have chosen the word of an earlier round.
void RestoreWord(const std::string &word)
{
    if (word == page.WordText || word.size() != 4 || !IsHexText(word))
        return;
    WriteStepWord(word);
    page.WordText = word;
}

void FinishRangeAccept()
{
    RemoveInput();
    const int row = SelectedGridRow();  // word and reading of one round: a click while the word is written is too late
    RestoreWord(RangeCell(row, RangeColumn::NewCalib));
    UpdateNominalSlope(RangeCell(row, RangeColumn::NewReading));
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
    DropFocus(rangeView.frame);
    Disable(rangeView.cmdRepeat, rangeView.cmdAccept,
            rangeView.cmdStopReset);  // a second Stop would stop the input's removal
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

// ---- the operator: flags only, the procedure does the work ----

void cmdReady_Click()
{
    RunProcedure(CalibrateRange);
}

void cmdRepeat_Click()
{
    DropFocus(rangeView.frame);
    Disable(rangeView.cmdRepeat, rangeView.cmdAccept);
    rangeView.cmdStopReset->setText("Stop");
    page.RepeatClicked = true;
    RequestStop();
}

void cmdAccept_Click()
{
    DropFocus(rangeView.frame);
    Disable(rangeView.cmdAccept, rangeView.cmdRepeat);
    page.AcceptClicked = true;
    RequestStop();
}

void cmdStopReset_Click()
{
    if (rangeView.cmdStopReset->text() == "Stop") {
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

// ---- the way in ----

void LoadRange()
{
    page.Position = CurrentStepButton;
    LoadStep(page.Position, StepIdAtPosition(page.Position));
    page.TurnoverStep = GetTurnoverStep();
    page.PolarityValue[0] = GetCalValue();
    page.PolarityValue[1] = "-" + GetCalValue();
    ShowRange(StepName(CurrentStepId), page.PolarityValue[0], page.TurnoverStep ? page.PolarityValue[1] : "");
}

// Runs inside the navigator's procedure.
void EnterRangePage()
{
    EnableSteps(false);
    Disable(rangeView.cmdReady);
    LoadRange();
    ApplySwitched(GetCalValue());
    ShowPage(kRangePage);
    rangeView.CableText = ShowConnectionDiagram(GetRangeCodeIndex());
    BuildRangeGrid(page.TurnoverStep);
    ApplyStepToMeter();
    page.WordText = GetStepWordHex();
    EnableSteps(true);
    // Without the word there is nothing to correct; the way back is the step's button.
    if (page.WordText.empty())
        ShowRangeFailure("The meter did not answer:\r\ncheck its line, then click the step again");
    else
        EnableAndFocus(rangeView.cmdReady);
}

void BuildRangePage(QFrame *frame)
{
    page = RangePage();
    BuildRangeView(frame, {cmdReady_Click, cmdRepeat_Click, cmdAccept_Click, cmdStopReset_Click, msgCalibGrid_Click});
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
