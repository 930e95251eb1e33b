#include "procedures/range_page.h"

#include "calibration/learning.h"
#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "calibration/step_word.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/output_switch.h"
#include "model/range_names.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_grid.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <array>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kRangePage = 4;

// ---- what the page knows ----

struct Round {
    std::string wordBefore;
    std::array<std::string, 2> before;  // the readings that the correction begins with, as they came
    std::string word;                   // the corrected one, "" as long as there is none
    std::array<std::string, 2> reading;
    std::int32_t error = 0;
    bool recorded = false;
};

enum class Wish { None, Repeat, Accept, Reset };

struct RangePage {
    int position = -1;
    bool turnover = false;
    std::array<std::string, 2> value;     // for the calibrator, of each polarity
    std::array<std::string, 2> reported;  // what it said that it delivers then
    std::string cable;                    // what to say of it, "" nothing
    std::string word;                     // now in the meter
    std::vector<Round> rounds;
    int chosen = -1;                      // the round that Accept keeps
    int polarity = 0;                     // the input now applied
    Following lost = Following::Stopped;  // why the reading that was followed is no longer the meter's
    Wish wish = Wish::None;
};
RangePage page;

// ---- what it shows ----

enum State { kOpening, kNoWord, kWaiting, kRunning, kWatching, kRepeating, kAccepting, kLeaving };

struct View {
    QLabel *lblRangeStep, *lblRangeInput;
    QTableWidget *msgCalibGrid;
    QFrame *lblNewReading, *lblError;  // the numbers to watch
    QFrame *cable;                     // shpInst(1)
    struct Buttons {
        QPushButton *ready, *repeat, *accept, *stopReset;
    } buttons;
    PageStates states;
};
View view;

const Prompt kPromptReady = {"Set jumpers and apply input\r\nas shown, then click \"Ready\""};
const Prompt kPromptStop = {"Click \"Stop\" to stop calibrating this range"};
const Prompt kPromptRepeat = {"Click \"Repeat\" to repeat this range"};
const Prompt kPromptLimited = {"Required correction exceeds allowable range", true};
const Prompt kPromptLeaving = {"Removing the input"};
const Prompt kPromptStopped = {"Stopped before the step was open:\r\nclick the step again"};
const Prompt kPromptNotWritten = {"Not accepted: the meter's line is gone, the chosen word could not be written", true};
const Prompt kPromptNoWord = {"The meter did not answer:\r\ncheck its line, then click the step again", true};

// Ready and Repeat share a place.
std::vector<PageState> TableOfStates()
{
    const auto [ready, repeat, accept, stop] = view.buttons;
    return {
        // clang-format off
        // state      on                    keys to  prompt          not seen   captions
        {kOpening,   {},                    nullptr, kPromptReady,   {repeat},  {{stop, "Stop"}}},
        {kNoWord,    {},                    nullptr, kPromptNoWord,  {repeat},  {{stop, "Stop"}}},
        {kWaiting,   {ready},               ready,   kPromptReady,   {repeat},  {{stop, "Stop"}}},
        {kRunning,   {stop},                stop,    kPromptStop,    {ready},   {{stop, "Stop"}}},
        {kWatching,  {repeat, accept, stop}, repeat, kPromptRepeat,  {ready},   {{stop, "Reset"}}},
        {kRepeating, {stop},                nullptr, kPromptStop,    {ready},   {{stop, "Stop"}}},
        {kAccepting, {stop},                nullptr, kPromptRepeat,  {ready},   {{stop, "Reset"}}},
        {kLeaving,   {stop},                nullptr, kPromptLeaving, {ready},   {{stop, "Stop"}}},
        // clang-format on
    };
}

enum Column { kNumber, kDesired, kCurrentReading, kCurrentCalib, kNewCalib, kNewReading, kTurnover };

// Without turnover the column Turnover is missing; Error is the last one.
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

std::string DesiredText()
{
    const std::string target = std::to_string(GetTargetCounts());
    return page.turnover ? "+" + target + "\r\n-" + target : target;
}

// Both polarities, a line each.
std::string Lines(const std::array<std::string, 2> &readings)
{
    return page.turnover ? readings[0] + "\r\n" + readings[1] : readings[0];
}

// A cell of the round in work.
void ShowCell(int column, const std::string &text)
{
    SetGridCell(view.msgCalibGrid, static_cast<int>(page.rounds.size()) - 1, column, text);
}

void Choose(int round)
{
    page.chosen = round;
    MarkGridRow(view.msgCalibGrid, round);
}

void ShowNewReadings()
{
    ShowCell(kNewReading, Lines(page.rounds.back().reading));
    if (page.turnover)
        ShowCell(kTurnover, MeanReadingText());
    page.rounds.back().error = ReadingError();
    ShowCell(page.turnover ? kTurnover + 1 : kTurnover, ReadingErrorText());
    ShowLive(view.lblNewReading, page.rounds.back().reading[static_cast<std::size_t>(page.polarity)]);
    ShowLive(view.lblError, ReadingErrorText());
}

void FreezeReadings()
{
    Freeze(view.lblNewReading);
    Freeze(view.lblError);
}

// What the operator is told of the round behind him, and of what Accept would do.
Prompt PromptOfRound()
{
    Prompt prompt = GetCorrectionLimited() ? kPromptLimited : kPromptRepeat;
    if (page.lost != Following::Stopped) {
        const std::string why = page.lost == Following::OverRange ? "The display is over range, its last reading stands"
                                                                  : "The meter fell silent, its last reading stands";
        prompt = {GetCorrectionLimited() ? kPromptLimited.text + "\r\n" + why : why, true};
    }
    if (ReadingIsFar()) {
        prompt.text += "\r\n" + std::string(kReadingIsFar);
        prompt.trouble = true;
    }
    if (page.chosen + 1 < static_cast<int>(page.rounds.size()))
        prompt.text += "\r\nAccept writes " + page.rounds[static_cast<std::size_t>(page.chosen)].word +
                       ", the word of round " + std::to_string(page.chosen + 1);
    return prompt;
}

void ClearRounds()
{
    page.rounds.clear();
    page.chosen = -1;
    ClearGrid(view.msgCalibGrid);
    ClearReadout(view.lblNewReading);
    ClearReadout(view.lblError);
    ShowInstruction(view.cable, page.cable, InfoBackground());
}

void WaitForReady()
{
    ClearRounds();
    ShowPageState(view.states, kWaiting);
}

// ---- one round: what takes a reading returns false when the operator has stopped it ----

void BeginRound()
{
    Round round;
    round.wordBefore = page.word;
    page.lost = Following::Stopped;
    page.rounds.push_back(round);
    const std::string number = std::to_string(page.rounds.size());
    AddGridRow(view.msgCalibGrid, {number, DesiredText(), "", page.word}, page.turnover ? 2 : 1);
    Choose(static_cast<int>(page.rounds.size()) - 1);
    FreezeReadings();
    ShowInstruction(view.cable, "", InfoBackground());
    ShowPageState(view.states, kRunning);
}

bool ApplyPolarity()
{
    const auto place = static_cast<std::size_t>(page.polarity);
    ApplyInputValue(page.value[place]);
    page.reported[place] = OutputConfirmed() ? GetLiveOutput().Value : "";
    return !Abort;
}

// A round waits for its reading however long; the operator sees what for.
void ShowDisplay(DisplayState now)
{
    if (now == DisplayState::Silent)
        ShowPrompt(view.states, {"The meter does not answer:\r\ncheck its line, or click \"Stop\"", true});
    else if (now == DisplayState::OverRange)
        ShowPrompt(view.states, {"The display is over range:\r\ncheck the input, or click \"Stop\"", true});
    else
        ShowPrompt(view.states,
                   page.rounds.back().word.empty() || !GetCorrectionLimited() ? kPromptStop : kPromptLimited);
}

bool TakeInto(std::array<std::string, 2> &readings)
{
    readings[static_cast<std::size_t>(page.polarity)] = TakeReading(page.polarity, ShowDisplay);
    return !Abort;
}

bool TurnOver(std::array<std::string, 2> &readings)
{
    page.polarity = 1 - page.polarity;
    if (!ApplyPolarity())
        return false;
    MeterCommandCZ();
    return TakeInto(readings);
}

bool TakeFirstReadings()
{
    std::array<std::string, 2> &readings = page.rounds.back().before;
    page.polarity = 0;
    if (!ApplyPolarity() || !TakeInto(readings))
        return false;
    ShowCell(kCurrentReading, Lines(readings));
    return !page.turnover || TurnOver(readings);
}

void CorrectWord(bool first)
{
    page.word = page.rounds.back().word = ComputeCorrectedWord(first);
    NoteStepWordWritten();
    ShowCell(kNewCalib, page.word);
    if (GetCorrectionLimited())
        ShowPrompt(view.states, kPromptLimited);
}

bool TakeNewReadings()
{
    std::array<std::string, 2> &readings = page.rounds.back().reading;
    if (!TakeInto(readings))
        return false;
    if (page.turnover) {
        ShowCell(kNewReading, Lines(readings));
        if (!TurnOver(readings))
            return false;
    }
    ShowNewReadings();
    return true;
}

// The frozen number is no longer the meter's.
void ShowNoReading(Following ended)
{
    page.lost = ended;
    ShowTrouble(view.lblNewReading, ended == Following::OverRange ? "over range" : "silent");
    ShowPrompt(view.states, PromptOfRound());
}

// Of both polarities, or of the only one.
std::vector<std::string> OfUse(const std::array<std::string, 2> &pair)
{
    return page.turnover ? std::vector{pair[0], pair[1]} : std::vector{pair[0]};
}

// Once it has written its word, however far it came then.
void RecordRoundInWork()
{
    Round &round = page.rounds.back();
    if (round.word.empty() || round.recorded)
        return;
    round.recorded = true;
    RecordRound(page.position,
                {static_cast<int>(page.rounds.size()), OfUse(page.value), OfUse(page.reported), OfUse(round.before),
                 round.wordBefore, round.word, GetCorrectionLimited(), OfUse(round.reading), round.error});
}

// Shows the reading as it goes on until a click. The simulated meter isn't asked again: its reading stands.
void WatchReading()
{
    std::string &reading = page.rounds.back().reading[static_cast<std::size_t>(page.polarity)];
    ShowPageState(view.states, kWatching, PromptOfRound());
    LiveReading live;
    live.read = [] { return TakeReadingOrStop(page.polarity); };
    live.simulated = [&reading] { return reading; };
    live.silenceEnds = true;
    const Following ended = FollowReading(live, [&reading](const std::string &text) {
        reading = text;
        ShowNewReadings();
    });
    FreezeReadings();
    if (ended != Following::Stopped && page.wish == Wish::None)
        ShowNoReading(ended);
    WaitForOperator([] { return page.wish != Wish::None; });
}

void RunRound(bool first)
{
    BeginRound();
    if (first && !TakeFirstReadings())
        return;
    Round &round = page.rounds.back();
    if (!first)
        round.before = page.rounds[page.rounds.size() - 2].reading;
    ShowCell(kCurrentReading, Lines(round.before));
    CorrectWord(first);
    if (!TakeNewReadings())
        return;
    RecordRoundInWork();
    WatchReading();
}

// ---- the calibration of a range ----

void RunRounds()
{
    bool first = true;
    do {
        page.wish = Wish::None;
        RunRound(first);
        first = false;
    } while (page.wish == Wish::Repeat && !Abort);
}

// The operator may have chosen the word of an earlier round. False when the meter's line is gone: the last one stays.
bool RestoreWord(const std::string &word)
{
    if (word == page.word || word.size() != 4 || !IsHexText(word))
        return true;
    WriteStepWord(word);
    if (MeterLineIsGone())
        return false;
    page.word = word;
    return true;
}

void RecordEnd(const std::string &how, const Round &round)
{
    StepEnd end;
    end.how = how;
    end.word = page.word;
    if (how == "accepted")
        end.reading = OfUse(round.reading);
    end.error = round.error;
    RecordStepEnded(page.position, end);
}

// False when the chosen word could not be written: nothing is accepted then, and nothing learned.
bool AcceptRange()
{
    const Round &round = page.rounds[static_cast<std::size_t>(page.chosen)];
    if (!RestoreWord(round.word))
        return false;
    UpdateNominalSlope(ReadingSize(round.reading[0], page.turnover ? round.reading[1] : ""));
    UpdateNominalWord();
    RecordEnd("accepted", round);
    // Behind the calibration positions no step follows: touch-up steps stay open for another round.
    if (page.position <= StepButtonCount())
        NextStep();
    return true;
}

// After a Stop the word written so far stays in the meter, and nothing is learned.
void LeaveRange(Ended ended)
{
    ShowPageState(view.states, kLeaving);
    RemoveInput();
    RecordRoundInWork();
    const bool accepts = ended == Ended::Done && page.wish == Wish::Accept;
    const bool accepted = accepts && AcceptRange();
    if (!accepted)
        RecordEnd(HowEnded(ended), page.rounds.back());
    WaitForReady();
    if (ended == Ended::Fault)
        ShowPrompt(view.states, PromptOfFault(FaultWords()));
    else if (accepts && !accepted)
        ShowPrompt(view.states, kPromptNotWritten);
}

void NoteQuit()
{
    RecordRoundInWork();
    RecordEnd("quit", page.rounds.back());
}

// ---- the operator: wishes only, the procedure does the work ----

void cmdReady_Click()
{
    RunPageProcedure(RunRounds, LeaveRange, NoteQuit);
}

void Wants(Wish wish, State state)
{
    page.wish = wish;
    ShowPageState(view.states, state);
    RequestStop();
}

void cmdRepeat_Click()
{
    Wants(Wish::Repeat, kRepeating);
}

void cmdAccept_Click()
{
    Wants(Wish::Accept, kAccepting);
}

void cmdStopReset_Click()
{
    if (view.states.now == kWatching || view.states.now == kAccepting)
        Wants(Wish::Reset, kLeaving);
    else
        StopWork();
}

// The reading in work stops: the row may be an earlier one, whose word Accept writes.
void msgCalibGrid_Click(int row)
{
    Choose(row);
    RequestStop();
    if (view.states.now == kWatching)
        ShowPrompt(view.states, PromptOfRound());
}

// ---- the way in, inside the navigator's procedure ----

void LoadRange()
{
    page = RangePage();
    page.position = CurrentStepButton;
    LoadStep(page.position, StepIdAtPosition(page.position));
    page.turnover = GetTurnoverStep();
    page.value = {GetCalValue(), "-" + GetCalValue()};
    view.lblRangeStep->setText(Caption(StepName(CurrentStepId)));
    view.lblRangeInput->setText(Caption("Input " + ValueAsWritten(page.value[0]) +
                                        (page.turnover ? ", " + ValueAsWritten(page.value[1]) : "")));
    SetGridColumns(view.msgCalibGrid, page.turnover ? kTurnoverColumns : kPlainColumns);
}

void OpenRange()
{
    LoadRange();
    ShowPageState(view.states, kOpening);
    ApplySwitched(GetCalValue());
    ShowPage(kRangePage);
    ShowConnectionDiagram(GetRangeCodeIndex());
    page.cable = CableMessage(GetRangeCodeIndex());
    ClearRounds();
    ApplyStepToMeter();
    page.word = GetStepWordHex();
    // Without the word there is nothing to correct; the way back is the step's button.
    if (Abort)
        return ShowPageState(view.states, kNoWord, kPromptStopped);
    if (page.word.empty())
        return ShowPageState(view.states, kNoWord);
    CableConnected(GetRangeCodeIndex());
    RecordStepOpened(page.position);
    ShowPageState(view.states, kWaiting);
}

void EnterRangePage()
{
    try {
        OpenRange();
    } catch (const std::exception &fault) {
        ShowPageState(view.states, kNoWord, PromptOfFault(fault.what()));
        throw;
    }
}

// ---- the way it is built ----

QHBoxLayout *BuildTitle(QFrame *frame)
{
    view.lblRangeStep = Title(frame, "lblRangeStep");
    view.lblRangeInput = Label(frame, "lblRangeInput");
    auto *row = new QHBoxLayout;
    row->addWidget(view.lblRangeStep);
    row->addStretch();
    row->addWidget(view.lblRangeInput);
    return row;
}

QHBoxLayout *BuildReadouts(QFrame *frame)
{
    view.lblNewReading = Readout(frame, "lblNewReading");
    view.lblError = Readout(frame, "lblReadingError");
    auto *row = new QHBoxLayout;
    row->addWidget(Label(frame, "lblNewReadingCaption", "New Reading"));
    row->addWidget(view.lblNewReading, 2);
    row->addSpacing(24);
    row->addWidget(Label(frame, "lblReadingErrorCaption", "Error"));
    row->addWidget(view.lblError, 1);
    return row;
}

QHBoxLayout *BuildButtons(QFrame *frame)
{
    view.buttons = {Button(frame, "cmdReady", "Ready", cmdReady_Click),
                    Button(frame, "cmdRepeat", "Repeat", cmdRepeat_Click, "Alt+R"),
                    Button(frame, "cmdAccept", "Accept", cmdAccept_Click, "Alt+A"),
                    Button(frame, "cmdStopReset", "Stop", cmdStopReset_Click, "Alt+S")};
    return ButtonRow({view.buttons.ready, view.buttons.repeat, view.buttons.accept, view.buttons.stopReset});
}

void BuildRangePage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildTitle(frame));
    view.msgCalibGrid = Grid(frame, "msgCalibGrid", msgCalibGrid_Click);
    column->addWidget(view.msgCalibGrid, 1);
    column->addLayout(BuildReadouts(frame));
    view.cable = Instruction(frame, 1, 2);
    column->addWidget(view.cable);
    QFrame *instruction = Instruction(frame, 0, 2);
    column->addWidget(instruction);
    column->addLayout(BuildButtons(frame));
    view.states = {frame, instruction, TableOfStates()};
    SetGridColumns(view.msgCalibGrid, kPlainColumns);
    ClearRounds();
    ShowPageState(view.states, kOpening);
}

}  // namespace

void RegisterRangePage()
{
    RegisterPage(kRangePage, BuildRangePage);
    RegisterSteps({Step::Gnd,          Step::Ref200mV,     Step::Range200mV,  Step::Range2V,      Step::Range20V,
                   Step::Range200V,    Step::Range660V,    Step::Range2mA,    Step::Range20mA,    Step::Range200mA,
                   Step::Range5A,      Step::GndHalfVolt,  Step::Off20mV,     Step::Ref20mV,      Step::TouchUp,
                   Step::Range50mV,    Step::Range100mV,   Step::Range250mV,  Step::Range500mV,   Step::LoGainGnd,
                   Step::Range75mV,    Step::HiGainGnd,    Step::Range23mV,   Step::Range600V,    Step::Range56mV,
                   Step::Range17mV,    Step::Pt100,        Step::Range20Ohms, Step::Range200Ohms, Step::Range2kOhms,
                   Step::Range20kOhms, Step::Range200kOhms},
                  {EnterRangePage, kRangePage});
}

}  // namespace ombrix
