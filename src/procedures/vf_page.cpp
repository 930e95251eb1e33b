#include "procedures/vf_page.h"

#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "calibration/step_word.h"
#include "calibration/vf_fit.h"
#include "links/calibrator.h"
#include "links/output_switch.h"
#include "model/nominals.h"
#include "model/nvm_map.h"
#include "model/range_names.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/journal.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/fields.h"
#include "widgets/page_grid.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kVfPage = 13;
constexpr int kAfterWriteMs = 1000;
constexpr std::size_t kGroupDigits = 12;

// ---- what the page knows ----

// How the last trial came out.
enum class Status { Good, OutOfRange, Reversed };

struct VfPage {
    int position = -1;
    int range = 0;
    VfCalibration now;  // in the meter
    std::string zeroValue, fullValue;
    std::array<std::int32_t, 2> limits{};  // error counts, low and high
    std::array<std::string, 2> reading;    // of the last pass, low and high
    std::array<std::string, 2> reported;   // what the calibrator said that it delivers then
    bool measured = false;                 // both readings are those of one whole pass
    bool within = false;                   // both errors are within their limits
    int passes = 0;
    Status status = Status::Good;
    std::string wordBefore;                 // of a pass that corrects, as long as it isn't recorded; else ""
    std::array<std::string, 2> readBefore;  // what it was computed from
};
VfPage page;

// ---- what it shows ----

enum State { kOpening, kNoWord, kLimits, kReady, kRunning, kRepeat, kRepeatLimits, kReversed, kLeaving };

struct View {
    QLabel *title, *lblVFGain, *lblVFOffset;
    QTableWidget *msgVF;
    std::array<QLineEdit *, 2> limits;
    std::array<QFrame *, 2> errors;
    QFrame *trial;
    struct Buttons {
        QPushButton *go, *stop;
    } buttons;
    PageStates states;
};
View view;

const Prompt kPromptNone = {""};
const Prompt kPromptNoWord = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptStopped = {"Stopped before the step was open:\r\nclick the step again"};
const Prompt kPromptLimits = {"Enter the acceptable number of low and high end error counts.", false, Tone::Works};
const Prompt kPromptReady = {"Set jumpers and apply input as shown, then click \"Ready\".\r\n"
                             "Change the low or high end error limit if desired.",
                             false, Tone::Works};
const Prompt kPromptRepeat = {"Click \"Repeat\" to make another calibration trial.\r\n"
                              "Change the low or high end error limit if desired.",
                              false, Tone::Works};
const Prompt kPromptOutOfRange = {"Calculated gain or offset exceeds allowable range.", true};
const Prompt kPromptReversed = {"Low reading is greater than or equal to high reading.\r\n"
                                "Check all connections and try again.",
                                true};
const Prompt kPromptSilent = {"The meter does not answer:\r\ncheck its line, or click \"Stop\"", true};
const Prompt kPromptOver = {"The display is over range:\r\ncheck the input, or click \"Stop\"", true};
const Prompt kPromptLeaving = {"Removing the input"};

std::vector<PageState> TableOfStates()
{
    const auto [go, stop] = view.buttons;
    const auto [low, high] = view.limits;
    const auto free = Navigation::Free;
    return {
        // clang-format off
        // state         on              keys to  prompt           not seen  captions          navigation  keys stay
        {kOpening,      {},              nullptr, kPromptNone,     {},       {{go, "Ready"}}},
        {kNoWord,       {},              nullptr, kPromptNoWord,   {},       {{go, "Ready"}}},
        {kLimits,       {low, high},     nullptr, kPromptLimits,   {},       {{go, "Ready"}}},
        {kReady,        {go, low, high}, go,      kPromptReady,    {},       {{go, "Ready"}},  free,       true},
        {kRunning,      {stop},          stop,    kPromptNone},
        {kRepeat,       {go, low, high}, go,      kPromptRepeat,   {},       {{go, "Repeat"}}, free,       true},
        {kRepeatLimits, {low, high},     nullptr, kPromptLimits,   {},       {{go, "Repeat"}}},
        {kReversed,     {go, low, high}, go,      kPromptReversed, {},       {{go, "Ready"}}},
        {kLeaving,      {stop},          nullptr, kPromptLeaving,  {},       {{go, "Ready"}}},
        // clang-format on
    };
}

const std::vector<GridColumn> kColumns = {
    {"", 450}, {"Gain", 1650}, {"Offset", 1650}, {"Low Error", 1650}, {"High Error", 1650}};
enum Column { kNumber, kGain, kOffset, kLowError };

void ShowGroup()
{
    view.lblVFOffset->setText(Caption(Left(page.now.hex, kGroupDigits / 2)));
    view.lblVFGain->setText(Caption(Right(page.now.hex, kGroupDigits / 2)));
}

std::int32_t ReadingOf(std::size_t end)
{
    return RoundHalfEven(Val(page.reading[end]));
}

std::int32_t ErrorOf(std::size_t end)
{
    return ReadingOf(end) - (end == 0 ? 0 : kVfHighCounts);
}

std::int32_t WorseError()
{
    return std::abs(ErrorOf(0)) > std::abs(ErrorOf(1)) ? ErrorOf(0) : ErrorOf(1);
}

void ClearTrials()
{
    page.passes = 0;
    page.measured = page.within = false;
    ClearGrid(view.msgVF);
    ClearReadout(view.trial);
    for (QFrame *error : view.errors)
        ClearReadout(error);
}

void ShowNewPass()
{
    const int row = AddGridRow(
        view.msgVF, {std::to_string(page.passes), FormatSparse(page.now.gain, 6), FormatSparse(page.now.offset, 0)}, 1);
    MarkGridRow(view.msgVF, row);
    ShowLive(view.trial, std::to_string(page.passes));
    for (QFrame *error : view.errors)
        Freeze(error);
}

bool IsWithin(std::size_t end)
{
    return std::abs(ErrorOf(end)) <= page.limits[end];
}

// Large, green within the limit and red beyond it, until the next trial has readings.
void ShowErrors()
{
    for (std::size_t end = 0; end < 2; ++end) {
        const std::string error = std::to_string(ErrorOf(end));
        const std::string limit = std::to_string(page.limits[end]);
        SetGridCell(view.msgVF, page.passes - 1, kLowError + static_cast<int>(end), error);
        ShowVerdict(view.errors[end], error, true, "within " + limit);
        if (!IsWithin(end))
            ShowTrouble(view.errors[end], "over " + limit);
    }
}

// What a click on "Repeat" has to begin with.
Prompt PromptOfTrial()
{
    Prompt prompt = page.status == Status::OutOfRange ? kPromptOutOfRange : kPromptRepeat;
    if (!IsFarFromTarget(ReadingOf(0), 0) && !IsFarFromTarget(ReadingOf(1), kVfHighCounts))
        return prompt;
    return {prompt.text + "\r\n" + std::string(kReadingIsFar), true};
}

// ---- limits ----

bool LimitIsMissing()
{
    return VFLow.empty() || VFHigh.empty();
}

void ShowLimits()
{
    SetField(view.limits[0], VFLow);
    SetField(view.limits[1], VFHigh);
}

void TakeLimits()
{
    page.limits = {RoundHalfEven(Val(VFLow)), RoundHalfEven(Val(VFHigh))};
}

void AskForLimit(State state)
{
    ShowPageState(view.states, state);
    view.limits[VFLow.empty() ? 0 : 1]->setFocus();
}

// The page waits for its first click, or for the limits that are missing.
void WaitForReady()
{
    if (LimitIsMissing())
        AskForLimit(kLimits);
    else
        ShowPageState(view.states, kReady);
}

// The same for another trial.
void WaitForRepeat()
{
    if (LimitIsMissing())
        AskForLimit(kRepeatLimits);
    else
        ShowPageState(view.states, kRepeat, PromptOfTrial());
}

// ---- one pass: what takes a reading returns false when the operator has stopped it ----

// The run waits for its reading however long; the operator sees what for.
void ShowDisplay(DisplayState now)
{
    if (now == DisplayState::Reads)
        ShowPrompt(view.states, kPromptNone);
    else
        ShowPrompt(view.states, now == DisplayState::OverRange ? kPromptOver : kPromptSilent);
}

bool ReadEnd(std::size_t end)
{
    ApplyInputValue(end == 0 ? page.zeroValue : page.fullValue);
    if (Abort)
        return false;
    page.reported[end] = OutputConfirmed() ? GetLiveOutput().Value : "";
    SetTargetCounts(end == 0 ? 0 : kVfHighCounts);
    page.reading[end] = TakeReading(0, ShowDisplay);
    return !Abort;
}

void CorrectGroup()
{
    const VfFit fit = FitVf(page.range, page.now, static_cast<float>(ReadingOf(0)), static_cast<float>(ReadingOf(1)));
    if (fit.outOfRange)
        page.status = Status::OutOfRange;
    page.wordBefore = page.now.hex;
    page.readBefore = page.reading;
    page.reading = {};
    page.now = fit.now;
    ShowGroup();
    WriteStepWord(page.now.hex);
    DelayMs(kAfterWriteMs);
}

// `found`: what a pass without a correction reads with.
void RecordPass(const std::string &found)
{
    RoundRecord round;
    round.number = page.passes;
    round.asked = {page.zeroValue, page.fullValue};
    round.reported = {page.reported[0], page.reported[1]};
    if (found.empty())
        round.before = {page.readBefore[0], page.readBefore[1]};
    round.wordBefore = found.empty() ? page.wordBefore : found;
    round.word = page.now.hex;
    round.limited = page.status == Status::OutOfRange;
    round.reading = {page.reading[0], page.reading[1]};
    round.error = WorseError();
    RecordRound(page.position, round);
    page.wordBefore.clear();
}

// A pass that was broken off behind its correction.
void RecordPassInWork()
{
    if (!page.wordBefore.empty())
        RecordPass("");
}

bool ReadBothEnds()
{
    page.measured = false;
    if (!ReadEnd(0) || !ReadEnd(1))
        return false;
    CalmVfSimulator();
    page.measured = true;
    if (ReadingOf(1) <= ReadingOf(0))
        page.status = Status::Reversed;
    return true;
}

void RunPass(bool corrects)
{
    const std::string found = corrects ? "" : page.now.hex;
    ++page.passes;
    page.reported = {};
    if (corrects)
        CorrectGroup();
    if (Abort)
        return;
    ShowNewPass();
    if (!ReadBothEnds())
        return;
    if (corrects)
        ShowErrors();
    page.within = corrects && page.status == Status::Good && IsWithin(0) && IsWithin(1);
    RecordPass(found);
}

// ---- the calibration of a range ----

bool Goes()
{
    return page.status == Status::Good && !page.within && !Abort;
}

void RunUntilWithin()
{
    page.status = Status::Good;
    TakeLimits();
    ClearTrials();
    StirVfSimulator(std::max(page.limits[0], page.limits[1]));
    ShowPageState(view.states, kRunning);
    RunPass(false);
    while (Goes())
        RunPass(true);
}

void RunOneTrial()
{
    page.status = Status::Good;
    TakeLimits();
    ShowPageState(view.states, kRunning);
    RunPass(true);
}

std::string HowItEnded(Ended ended)
{
    if (ended != Ended::Done)
        return HowEnded(ended);
    if (page.status == Status::OutOfRange)
        return "out of range";
    if (page.status == Status::Reversed)
        return "readings reversed";
    return page.within ? "accepted" : "outside limits";
}

void RecordEnd(const std::string &how)
{
    StepEnd end;
    end.how = how;
    end.word = page.now.hex;
    if (page.measured) {
        end.reading = {page.reading[0], page.reading[1]};
        end.error = WorseError();
    }
    RecordStepEnded(page.position, end);
}

// The errors of a whole trial keep their verdict.
void FreezeTrial(Ended ended)
{
    Freeze(view.trial);
    for (QFrame *error : view.errors)
        if (ended != Ended::Done)
            Freeze(error);
}

void ShowHowItEnded(Ended ended)
{
    if (ended == Ended::Done && page.status != Status::Reversed)
        return WaitForRepeat();
    if (ended == Ended::Done)
        return ShowPageState(view.states, kReversed);
    WaitForReady();
    if (ended == Ended::Fault)
        ShowPrompt(view.states, PromptOfFault(FaultWords()));
}

// A calibration that was broken off leaves no input; a good one leaves the meter at its high end.
void LeaveTrials(Ended ended)
{
    if (ended != Ended::Done || page.status == Status::Reversed) {
        ShowPageState(view.states, kLeaving);
        CalibratorStandby();
    }
    FreezeTrial(ended);
    RecordPassInWork();
    RecordEnd(HowItEnded(ended));
    ShowHowItEnded(ended);
}

void NoteQuit()
{
    RecordPassInWork();
    RecordEnd("quit");
}

// ---- the operator ----

void cmdVFRdyRpt_Click()
{
    RunPageProcedure(view.states.now == kRepeat ? RunOneTrial : RunUntilWithin, LeaveTrials, NoteQuit);
}

void cmdVFStop_Click()
{
    StopWork();
}

void txtVFLim_Commit(std::size_t index, const std::string &text, CommitBy by)
{
    std::string &limit = index == 0 ? VFLow : VFHigh;
    const std::string value = text.empty() && by == CommitBy::Enter ? "0" : text;
    SetField(view.limits[index], value);
    if (value != limit) {
        limit = value;
        SaveVFLimits();
    }
    if (view.states.now == kRepeat || view.states.now == kRepeatLimits)
        WaitForRepeat();
    else
        WaitForReady();
    if (by == CommitBy::Enter && !LimitIsMissing())
        EnableAndFocus(view.buttons.go);
}

// ---- the way in, inside the navigator's procedure ----

void LoadRange()
{
    page = VfPage();
    page.position = CurrentStepButton;
    LoadStep(page.position, CurrentStepId);
    page.range = GetRangeCodeIndex();
    page.zeroValue = GetZeroValue();
    page.fullValue = GetCalValue();
    view.title->setText(Caption(StepName(CurrentStepId) + "     Input " + ValueAsWritten(page.zeroValue) + ", " +
                                ValueAsWritten(page.fullValue)));
}

// A gain that no good meter has gives way to the nominal one.
void ReadGroup()
{
    PrepareOutputWord();
    const std::string found = GetStepWordHex();
    if (!IsWordText(found, kGroupDigits) || Abort)
        return;
    RecordStepOpened(page.position);
    page.now = VfCalibrationOf(found);
    if (IsGoodVfGain(page.now.gain))
        return;
    WriteStepWord(FirstCyclePattern(page.range));
    page.now = VfCalibrationOf(GetStepWordHex());
    Record("words written", {{"words", std::vector{HexText(GetStepNvmWord(), 2)}},
                             {"before", found},
                             {"to", page.now.hex},
                             {"why", "gain outside 0.5 to 2.0"}});
}

void EnterVfPage()
{
    LoadRange();
    ClearTrials();
    ShowLimits();
    ShowGroup();
    ShowPageState(view.states, kOpening);
    ShowCalPanel(true);
    ApplySwitched(page.fullValue);
    ShowPage(kVfPage);
    ShowConnectionDiagram(page.range);
    ReadGroup();
    ShowGroup();
    if (!page.now.hex.empty())
        WaitForReady();
    else if (Abort)
        ShowPageState(view.states, kNoWord, kPromptStopped);
    else
        ShowPageState(view.states, kNoWord);
}

// ---- the way it is built ----

QGridLayout *BuildEnds(QFrame *frame)
{
    auto *grid = new QGridLayout;
    const char *const heads[] = {"", "Low", "High"};
    for (int column = 0; column < 3; ++column)
        grid->addWidget(Label(frame, Indexed("lblVFHead", column), heads[column]), 0, column, Qt::AlignRight);
    grid->addWidget(Label(frame, "lblVFErrorCaption", "Error"), 1, 0);
    grid->addWidget(Label(frame, "lblVFLimCaption", "Limit, in error counts"), 2, 0);
    for (std::size_t end = 0; end < 2; ++end) {
        const int index = static_cast<int>(end);
        view.errors[end] = Readout(frame, Indexed("lblVFError", index));
        grid->addWidget(view.errors[end], 1, index + 1);
        view.limits[end] = Field(frame, Indexed("txtVFLim", index), AnyOf("0123456789"),
                                 [end](const std::string &text, CommitBy by) { txtVFLim_Commit(end, text, by); });
        view.limits[end]->setAlignment(Qt::AlignRight);
        grid->addWidget(view.limits[end], 2, index + 1);
        grid->setColumnStretch(index + 1, 1);
    }
    grid->setHorizontalSpacing(24);
    return grid;
}

QHBoxLayout *BuildGroup(QFrame *frame)
{
    view.trial = Readout(frame, "lblVFTrial");
    view.lblVFGain = Title(frame, "lblVFGain");
    view.lblVFOffset = Title(frame, "lblVFOffset");
    auto *row = new QHBoxLayout;
    row->addWidget(Label(frame, "lblVFTrialCaption", "Trial"));
    row->addWidget(view.trial);
    row->addStretch();
    row->addWidget(Label(frame, "lblVFGainCaption", "Gain"));
    row->addWidget(view.lblVFGain);
    row->addSpacing(24);
    row->addWidget(Label(frame, "lblVFOffsetCaption", "Offset"));
    row->addWidget(view.lblVFOffset);
    return row;
}

void BuildVfPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    view.title = Title(frame, "lblVFTitle");
    column->addWidget(view.title);
    view.msgVF = Grid(frame, "msgVF", [](int) {});
    SetGridColumns(view.msgVF, kColumns);
    column->addWidget(view.msgVF, 1);
    column->addLayout(BuildGroup(frame));
    column->addLayout(BuildEnds(frame));
    QFrame *instruction = Instruction(frame, 7, 2);
    column->addWidget(instruction);
    view.buttons = {Button(frame, "cmdVFRdyRpt", "Ready", cmdVFRdyRpt_Click, "Alt+R"),
                    Button(frame, "cmdVFStop", "Stop", cmdVFStop_Click, "Alt+S")};
    column->addLayout(ButtonRow({view.buttons.go, view.buttons.stop}));
    view.states = {frame, instruction, TableOfStates()};
    ShowPageState(view.states, kOpening);
}

}  // namespace

void RegisterVfPage()
{
    RegisterPage(kVfPage, BuildVfPage);
    RegisterSteps({Step::Vf4To20mA, Step::Vf0To1mA, Step::Vf0To10V}, {EnterVfPage, kVfPage});
}

}  // namespace ombrix
