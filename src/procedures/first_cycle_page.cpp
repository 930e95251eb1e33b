#include "procedures/first_cycle_page.h"

#include "calibration/first_cycle.h"
#include "calibration/first_cycle_run.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/output_switch.h"
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
#include "widgets/widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <optional>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kFirstCyclePage = 3;
constexpr int kFirstCycleWord = 51;
constexpr const char *kSimulatedWord = "0205";
constexpr const char *kStopped = "stopped";

using Status = FirstCycleStatus;

// ---- what the page knows ----

struct FirstCyclePage {
    int position = -1;
    std::string rangeCode;
    std::vector<FirstCyclePoint> points;
    std::vector<FirstCycleAverages> averages;  // of the points done
    std::vector<std::string> reported;         // what the calibrator said that it delivers at them
    std::string found;                         // words 20 to 17 as they stood
    Status status = Status::Waiting;
    std::optional<FirstCycleResult> result;
    std::string word;  // that stays in the meter, "" as long as none was written, and when nobody knows
    std::string how;   // the collection ended, for the journal
};
FirstCyclePage page;

// ---- what it shows ----

enum State { kReady, kCollecting, kRestoring, kDone, kFailed };

struct View {
    QTableWidget *msgFCAvg, *msgFC;
    QLabel *lblM, *lblB, *lblFCProgress;
    QProgressBar *barFCProgress;
    struct Buttons {
        QPushButton *ready, *cancel, *done;
    } buttons;
    PageStates states;
};
View view;

const Prompt kPromptReady = {"Set jumpers and apply input\r\nas shown, then click \"Ready\"", false, Tone::Works};
const Prompt kPromptCollecting = {"Click \"Cancel\" to stop collecting data", false, Tone::Works};
const Prompt kPromptRestoring = {"Putting the meter back to normal running", false, Tone::Works};
const Prompt kPromptGood = {"M and B entered into Nonvolatile Memory", false, Tone::Well};
const Prompt kPromptStopped = {"First Cycle Correction Aborted", true};
const Prompt kPromptNoData = {"Timeout waiting for First Cycle data", true};
const Prompt kPromptNoStart = {"Unable to synchronize First Cycle data", true};
const Prompt kPromptBadData = {"First Cycle data error", true};
const Prompt kPromptLost = {"The meter's line has gone: M and B may not be in its memory.\r\n"
                            "Check the line, then click \"Retry\"",
                            true};
const Prompt kPromptNotTaken = {"The meter did not take M and B, or does not tell:\r\n"
                                "check it and its line, then click \"Retry\"",
                                true};
constexpr char kNotTaken[] = "not taken";
const Prompt kPromptUnproved = {"Cancelled before the meter told M and B back:\r\n"
                                "it may hold them or not, click \"Retry\"",
                                true};

// Of a collection that wasn't good.
Prompt PromptOf(Status status)
{
    switch (status) {
    case Status::NoInput:
        return PromptOfRefusal(page.points[page.averages.size()].value);
    case Status::NoData:
        return kPromptNoData;
    case Status::NoStart:
        return kPromptNoStart;
    case Status::BadData:
        return kPromptBadData;
    default:
        return kPromptStopped;
    }
}

// On the AC tab the step belongs to no sequence, so there is nothing to go on to.
std::vector<PageState> TableOfStates(bool goesOn)
{
    const auto [ready, cancel, done] = view.buttons;
    const std::vector<QWidget *> still = goesOn ? std::vector<QWidget *>{ready, done} : std::vector<QWidget *>{ready};
    const std::vector<QWidget *> away = goesOn ? std::vector<QWidget *>{} : std::vector<QWidget *>{done};
    QWidget *next = goesOn ? done : ready;
    return {
        // clang-format off
        // state       on        keys to  prompt             not seen  captions
        {kReady,      still,    ready,   kPromptReady,      away,     {{ready, "Ready"}}},
        {kCollecting, {cancel}, cancel,  kPromptCollecting, away},
        {kRestoring,  {cancel}, nullptr, kPromptRestoring,  away},
        {kDone,       still,    next,    kPromptGood,       away,     {{ready, "Repeat"}}},
        {kFailed,     still,    next,    kPromptStopped,    away,     {{ready, "Retry"}}},
        // clang-format on
    };
}

const std::vector<GridColumn> kAverageColumns = {{"", 17},    {"TGND", 10}, {"GNDT", 10}, {"TQD", 10},
                                                 {"QDT", 10}, {"TREF", 10}, {"REFT", 10}, {"GND", 10},
                                                 {"QD", 10},  {"REF", 10},  {"SIG", 10}};
const std::vector<GridColumn> kResultColumns = {{"", 10}, {"M = m", 10}, {"b", 10}, {"B = b / m", 10}};
constexpr const char *kResultHeads[] = {"TGND", "GNDT", "TQD", "QDT", "TREF", "REFT"};

void ShowWord(const std::string &word)
{
    view.lblM->setText(Caption(word.empty() ? "M" : "M = " + SignedHexByteText(word.substr(0, 2))));
    view.lblB->setText(Caption(word.empty() ? "B" : "B = " + SignedHexByteText(word.substr(2, 2))));
}

// The rows stay, with their heads alone.
void ClearFirstCycleGrids()
{
    page.averages.clear();
    page.result.reset();
    ClearGrid(view.msgFCAvg);
    for (const FirstCyclePoint &point : page.points)
        AddGridRow(view.msgFCAvg, {point.head}, 1);
    ClearGrid(view.msgFC);
    for (const char *head : kResultHeads)
        AddGridRow(view.msgFC, {head}, 1);
    ShowWord("");
}

void ShowAverages(std::size_t point, const FirstCycleAverages &averages)
{
    for (std::size_t channel = 0; channel < averages.size(); ++channel)
        SetGridCell(view.msgFCAvg, static_cast<int>(point), static_cast<int>(channel) + 1,
                    std::to_string(averages[channel]));
}

void ShowResult(const FirstCycleResult &result)
{
    for (std::size_t i = 0; i < result.rows.size(); ++i) {
        const FirstCycleRow &row = result.rows[i];
        SetGridCell(view.msgFC, static_cast<int>(i), 1, FormatSparse(row.m, 1));
        SetGridCell(view.msgFC, static_cast<int>(i), 2, FormatSparse(row.b, 1));
        SetGridCell(view.msgFC, static_cast<int>(i), 3, row.quotient ? FormatSparse(*row.quotient, 1) : "");
    }
}

// What is gathered of the whole. A point is shown by the number an operator counts.
void ShowProgress(std::size_t point, int attempt, std::size_t frames)
{
    const auto number = static_cast<int>(point);
    view.barFCProgress->setMaximum(static_cast<int>(page.points.size() * kFirstCycleFrames));
    view.barFCProgress->setValue(number * static_cast<int>(kFirstCycleFrames) + static_cast<int>(frames));
    std::string text = "Point " + std::to_string(number + 1) + " of " + std::to_string(page.points.size()) + ": " +
                       page.points[point].head + ", " + std::to_string(frames) + " of " +
                       std::to_string(kFirstCycleFrames) + " frames";
    if (attempt > 1)
        text += ", attempt " + std::to_string(attempt);
    view.lblFCProgress->setText(Caption(text));
}

void ClearProgress()
{
    view.barFCProgress->reset();
    view.lblFCProgress->setText("");
}

// ---- the work ----

void Collect()
{
    if (view.states.now == kDone)
        ClearFirstCycleGrids();
    page.reported.clear();
    page.found.clear();
    page.status = Status::Collecting;
    ShowPageState(view.states, kCollecting);
    FirstCycleWatch watch;
    watch.found = [](const std::string &words) {
        page.found = words;
        page.word = "0000";  // from here on it is
    };
    watch.gathered = ShowProgress;
    watch.averaged = [](std::size_t point, const FirstCycleAverages &averages) {
        page.averages.push_back(averages);
        page.reported.push_back(OutputConfirmed() ? GetLiveOutput().Value : "");
        ShowAverages(point, averages);
    };
    page.status = CollectFirstCycle(page.rangeCode, page.points, watch);
}

// "" when the counts give no word.
std::string ComputeWord()
{
    if (Simulated())
        return kSimulatedWord;
    page.result = ComputeFirstCycle(page.averages);
    if (!page.result)
        return "";
    ShowResult(*page.result);
    return page.result->word;
}

// What the page says of it.
Prompt EnterWord()
{
    const std::string word = ComputeWord();
    if (word.empty()) {
        page.status = Status::BadData;
        return kPromptBadData;
    }
    ShowWord(word);
    WriteNvmWords(kFirstCycleWord, word, "");
    if (MeterLineIsGone()) {
        page.status = Status::NoData;
        page.how = HowEnded(Ended::Stopped);
        page.word.clear();
        return kPromptLost;
    }
    // A meter that restarted by itself did not hear it.
    page.word = ReadNvmWords(kFirstCycleWord, 1, "");
    if (page.word == word)
        return kPromptGood;
    page.status = Abort ? Status::Stopped : Status::NoData;
    page.how = Abort ? HowEnded(Ended::Stopped) : kNotTaken;
    return Abort ? kPromptUnproved : kPromptNotTaken;
}

std::vector<std::string> AveragesAsTexts()
{
    std::vector<std::string> texts;
    for (const FirstCycleAverages &averages : page.averages) {
        std::string text;
        for (const std::int32_t average : averages)
            text += (text.empty() ? "" : " ") + std::to_string(average);
        texts.push_back(text);
    }
    return texts;
}

void RecordCollection()
{
    std::vector<std::string> asked;
    for (const FirstCyclePoint &point : page.points)
        asked.push_back(point.value);
    JournalFields fields = {
        {"rangeCode", page.rangeCode}, {"found", page.found},           {"asked", asked},
        {"reported", page.reported},   {"averages", AveragesAsTexts()}, {"status", static_cast<int>(page.status)},
        {"wordAfter", page.word}};
    if (page.result)
        fields.insert(fields.end(), {{"sumM", page.result->sumM}, {"sumB", page.result->sumB}});
    RecordOfStep("first cycle", page.position, fields);
}

void RecordEnd()
{
    StepEnd end;
    end.how = page.how;
    if (page.status == Status::Good)
        end.how = "accepted";
    else if (page.status == Status::NoInput)
        end.how = kNoInput;
    else if (page.how == kStopped && page.status != Status::Stopped)  // by itself, on sound lines
        end.how = PromptOf(page.status).text;
    end.word = page.word;
    RecordStepEnded(page.position, end);
}

// The meter is put back to normal running however the collection ended.
void LeaveCollection(Ended ended)
{
    if (ended != Ended::Done && page.status <= Status::Good)
        page.status = Status::Stopped;
    page.how = HowEnded(ended);
    ShowPageState(view.states, kRestoring);
    RestoreAfterFirstCycle();
    Prompt told = page.status == Status::Good ? EnterWord() : PromptOf(page.status);
    if (ended == Ended::Fault)
        told = PromptOfFault(FaultWords());
    RecordCollection();
    RecordEnd();
    ClearProgress();
    const bool good = page.status == Status::Good;
    if (!good)
        ClearFirstCycleGrids();
    ShowPageState(view.states, good ? kDone : kFailed, told);
    if (Abort)
        EnableAndFocus(view.buttons.ready);  // who has just cancelled doesn't want to go on
}

void NoteQuit()
{
    page.how = "quit";
    page.status = Status::Stopped;
    RecordCollection();
    RecordEnd();
}

// ---- the operator ----

void cmdFCReady_Click()
{
    RunPageProcedure(Collect, LeaveCollection, NoteQuit);
}

void cmdFCCancel_Click()
{
    StopWork();
}

void cmdDone_Click()
{
    NextStep();
}

// ---- the way in, inside the navigator's procedure ----

void PrepareFirstCycleGrids(int rangeIndex)
{
    page.rangeCode = RangeCodeText(rangeIndex);
    page.points = FirstCyclePoints(CalibTab, SCType);
    ClearFirstCycleGrids();
}

void ShowFirstCyclePage()
{
    const int rangeIndex = FirstCycleRangeIndex(CalibTab);
    page = FirstCyclePage();
    page.position = CurrentStepButton;
    SetPlainStep({.word = kFirstCycleWord});
    ShowPage(kFirstCyclePage);
    PrepareFirstCycleGrids(rangeIndex);
    ClearProgress();
    ShowConnectionDiagram(rangeIndex);
    view.states.rows = TableOfStates(CalibTab != kTabAc);
    view.buttons.done->setVisible(CalibTab != kTabAc);
    ShowPageState(view.states, kReady);
    ShowCalPanel(true);
    ApplySwitched("V");
    RecordStepOpened(page.position);
}

// ---- the way it is built ----

QHBoxLayout *BuildResults(QFrame *frame)
{
    view.msgFC = Grid(frame, "msgFC", [](int) {});
    view.lblM = Title(frame, "lblM");
    view.lblB = Title(frame, "lblB");
    auto *words = new QVBoxLayout;
    words->addStretch();
    words->addWidget(view.lblM);
    words->addWidget(view.lblB);
    words->addStretch();
    auto *row = new QHBoxLayout;
    row->addWidget(view.msgFC, 3);
    row->addLayout(words, 1);
    return row;
}

QHBoxLayout *BuildProgress(QFrame *frame)
{
    view.lblFCProgress = Label(frame, "lblFCProgress");
    view.barFCProgress = new QProgressBar(frame);
    view.barFCProgress->setObjectName("barFCProgress");
    view.barFCProgress->setTextVisible(false);
    auto *row = new QHBoxLayout;
    row->addWidget(view.barFCProgress, 1);
    row->addWidget(view.lblFCProgress, 1);
    return row;
}

QHBoxLayout *BuildButtons(QFrame *frame)
{
    view.buttons = {Button(frame, "cmdFCReady", "Ready", cmdFCReady_Click),
                    Button(frame, "cmdFCCancel", "Cancel", cmdFCCancel_Click, "Alt+C"),
                    DoneButton(frame, 1, cmdDone_Click)};
    return ButtonRow({view.buttons.ready, view.buttons.cancel, view.buttons.done});
}

void BuildFirstCyclePage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    QLabel *title = Title(frame, Indexed("lblAA", 2));
    title->setText("FIRST CYCLE CORRECTION");
    column->addWidget(title);
    view.msgFCAvg = Grid(frame, "msgFCAvg", [](int) {});
    column->addWidget(view.msgFCAvg, 6);
    column->addLayout(BuildResults(frame), 7);
    column->addLayout(BuildProgress(frame));
    QFrame *instruction = Instruction(frame, 2, 2);
    column->addWidget(instruction);
    column->addLayout(BuildButtons(frame));
    SetGridColumns(view.msgFCAvg, kAverageColumns);
    SetGridColumns(view.msgFC, kResultColumns);
    view.states = {frame, instruction, TableOfStates(true)};
    ClearFirstCycleGrids();
    ShowPageState(view.states, kReady);
}

}  // namespace

void RegisterFirstCyclePage()
{
    RegisterPage(kFirstCyclePage, BuildFirstCyclePage);
    StepRecord record{ShowFirstCyclePage, kFirstCyclePage};
    record.allowed = [](int) { return MeterPort != 0; };  // its stream can't pass the calibrator
    RegisterSteps({Step::FirstCycle}, record);
}

}  // namespace ombrix
