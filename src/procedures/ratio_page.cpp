#include "procedures/ratio_page.h"

#include "calibration/learning.h"
#include "calibration/ratio.h"
#include "calibration/ratio_mode.h"
#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/output_switch.h"
#include "model/ratio_conditions.h"
#include "model/step_ids.h"
#include "platform/text.h"
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
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace ombrix {
namespace {

constexpr int kRatioPage = 5;
constexpr int kGroundWord = 50;
constexpr int kDividerWord = 48;
constexpr std::int32_t kOffsetTarget = 80000;
constexpr float kScatter = 10;
constexpr std::size_t kRanges = 5;
constexpr const char *kExcitation[] = {"+11 V", "+5.5 V"};  // by polarity
constexpr const char *kGainExcitation = "+10 V";

// ---- what the page knows ----

// One of the two words that are trimmed here.
struct Trimmed {
    const char *name = "";
    int word = 0;
    std::string stored = {};  // now in the meter
    float value = 0;          // of the word as computed last, with its fraction
    bool first = true;        // no reading with the stored word was taken yet
    bool done = false;
    std::vector<std::string> rows = {};  // the word of each trial
};

struct RatioPage {
    int position = -1;
    RatioConditions conditions;
    std::string rangeCode;   // now in the meter
    std::string excitation;  // now applied, "" none
    int polarity = 0;
    std::array<float, 2> readings{};  // at +11 V and at +5.5 V
    float gainReading = 0;
    bool limited = false;
    Trimmed ground{"CALBGND", kGroundWord};
    Trimmed divider{"CALBRDN", kDividerWord};
    Trimmed *select = nullptr;  // whose word Select would store
    std::string selected;
    std::vector<std::string> asked, reported, taken;  // of the trial in work, for the journal
};
RatioPage page;

// ---- what it shows ----

enum State { kOpening, kSilent, kFresh, kWorking, kTried, kChosen };

// What stands on the page for one of the two words.
struct Side {
    QLabel *stored;
    QTableWidget *grid;
    QPushButton *button;
};

struct View {
    Side offset, gain;
    std::array<QRadioButton *, kRanges> optRange;
    QLineEdit *txtReading;
    QLabel *lblRatioProgress;
    QFrame *lblRatioReading;
    struct Buttons {
        QPushButton *select, *save, *done;
    } buttons;
    PageStates states;
};
View view;

const Prompt kPromptFresh = {"Set jumpers and apply input as shown.  Remove the b,c,d,e,f\r\n"
                             "jumpers from the power supply board before connecting the\r\n"
                             "calibrator as an excitation source.  Click \"Start\" to begin.",
                             false, Tone::Works};
const Prompt kPromptLimited = {"Required correction exceeds allowable range", true};
const Prompt kPromptSilent = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptStopped = {"The trial was stopped", true};
const Prompt kPromptNoTarget = {"Type the reading to reach first", true};
const Prompt kPromptNone = {};

std::vector<PageState> TableOfStates()
{
    const auto [select, save, done] = view.buttons;
    QPushButton *const offset = view.offset.button;
    QPushButton *const gain = view.gain.button;
    std::vector<QWidget *> fresh = {offset, done, view.txtReading};
    fresh.insert(fresh.end(), view.optRange.begin(), view.optRange.end());
    std::vector<QWidget *> tried = fresh;
    tried.push_back(gain);
    std::vector<QWidget *> chosen = tried;
    chosen.push_back(select);
    const auto held = Navigation::Held;
    return {
        // clang-format off
        // state    on      keys to  prompt         not seen  captions  navigation
        {kOpening, {},     nullptr, kPromptFresh,  {select}, {},       held},
        {kSilent,  {done}, nullptr, kPromptSilent, {select}},
        {kFresh,   fresh,  offset,  kPromptFresh,  {select}, {{offset, "Start"}, {gain, "Start"}}, held},
        {kWorking, {},     nullptr, kPromptNone,   {select}, {},       held},
        {kTried,   tried,  nullptr, kPromptNone,   {select}, {},       held},
        {kChosen,  chosen, select,  kPromptNone,   {},       {},       held},
        // clang-format on
    };
}

const std::vector<GridColumn> kOffsetColumns = {{"", 5}, {"CALBGND", 11}, {"+11V", 11}, {"+5.5V", 11}};
const std::vector<GridColumn> kGainColumns = {{"", 5}, {"CALBRDN", 11}, {"+10V", 11}};
constexpr int kWordColumn = 1;

const Side &SideOf(const Trimmed &trimmed)
{
    return trimmed.word == kGroundWord ? view.offset : view.gain;
}

void ShowStored(const Trimmed &trimmed)
{
    SideOf(trimmed).stored->setText(Caption(trimmed.stored));
}

bool IsAtRest()
{
    return view.states.now == kFresh || view.states.now == kTried || view.states.now == kChosen;
}

// Save is on as long as there is something to save and nothing is in work.
void ShowSave()
{
    view.buttons.save->setEnabled(IsAtRest() && page.conditions != StoredRatioConditions());
}

void ShowState(State state, const Prompt &prompt)
{
    ShowPageState(view.states, state, prompt);
    ShowSave();
}

void ClearHighlights()
{
    MarkGridRow(view.offset.grid, -1);
    MarkGridRow(view.gain.grid, -1);
}

void ForgetTrials(Trimmed &trimmed)
{
    trimmed.rows.clear();
    trimmed.first = true;
    trimmed.done = false;
    ClearGrid(SideOf(trimmed).grid);
}

void ResetRatioGrids()
{
    ForgetTrials(page.ground);
    ForgetTrials(page.divider);
    ClearReadout(view.lblRatioReading);
    ShowPageState(view.states, kFresh);
    ShowSave();
}

// ---- a trial: what talks to the instruments returns false when the operator has stopped it ----

bool Excite(const std::string &value)
{
    page.excitation = value;
    view.lblRatioProgress->setText(Caption("Reading at " + value + "\r\nEsc stops the trial"));
    if (!ApplyInputValue(value) || Abort)
        return false;
    page.asked.push_back(value);
    page.reported.push_back(OutputConfirmed() ? GetLiveOutput().Value : "");
    MeterCommandCZ();
    return !Abort;
}

bool SendRatioRangeCode()
{
    PutOnRatioRange(RatioRanges()[static_cast<std::size_t>(page.conditions.range)].code, page.rangeCode);
    return !Abort;
}

void AddTrialRow(Trimmed &trimmed)
{
    trimmed.rows.push_back(trimmed.stored);
    AddGridRow(SideOf(trimmed).grid, {std::to_string(trimmed.rows.size()), trimmed.stored}, 1);
    MarkGridRow(SideOf(trimmed).grid, static_cast<int>(trimmed.rows.size()) - 1);
}

bool TakeInto(const Trimmed &trimmed, int column, float &reading)
{
    const std::string text = TakeReading(0);
    if (Abort)
        return false;
    page.taken.push_back(text);
    reading = static_cast<float>(Val(text));
    SetGridCell(SideOf(trimmed).grid, static_cast<int>(trimmed.rows.size()) - 1, column, text);
    ShowLive(view.lblRatioReading, text);
    return true;
}

void WriteCorrected(Trimmed &trimmed, const RatioWord &corrected)
{
    page.limited = page.limited || corrected.limited;
    if (page.limited)
        ShowPrompt(view.states, kPromptLimited);
    trimmed.value = corrected.value;
    trimmed.stored = corrected.word;
    WriteNvmWords(trimmed.word, trimmed.stored, "");
    ShowStored(trimmed);
}

bool TakeOffsetReading()
{
    const auto polarity = static_cast<std::size_t>(page.polarity);
    return TakeInto(page.ground, kWordColumn + 1 + page.polarity, page.readings[polarity]);
}

// The excitation stays where the trial ends; the next one begins there.
bool TakeOffsetReadings()
{
    AddTrialRow(page.ground);
    if (!TakeOffsetReading())
        return false;
    page.polarity = 1 - page.polarity;
    return Excite(kExcitation[page.polarity]) && TakeOffsetReading();
}

void BeginTrial(const Trimmed &trimmed, std::int32_t target)
{
    page.limited = false;
    page.select = nullptr;
    page.asked.clear();
    page.reported.clear();
    page.taken.clear();
    ClearHighlights();
    ShowState(kWorking, kPromptNone);
    SetPlainStep({.word = trimmed.word, .target = target, .offset = trimmed.word == kGroundWord});
}

void RecordTrial(const Trimmed &trimmed, const std::string &wordBefore)
{
    RecordOfStep("ratio trial", page.position,
                 {{"name", trimmed.name},
                  {"rangeCode", page.rangeCode},
                  {"trial", static_cast<int>(trimmed.rows.size())},
                  {"target", trimmed.word == kGroundWord ? kOffsetTarget : page.conditions.reading},
                  {"wordBefore", wordBefore},
                  {"wordAfter", trimmed.stored},
                  {"limited", page.limited},
                  {"asked", page.asked},
                  {"reported", page.reported},
                  {"reading", page.taken}});
}

void RunOffsetTrials()
{
    BeginTrial(page.ground, kOffsetTarget);
    if (!SendRatioRangeCode())
        return;
    if (page.excitation != kExcitation[0] && page.excitation != kExcitation[1]) {
        page.polarity = 0;
        if (!Excite(kExcitation[0]))
            return;
    }
    if (page.ground.first) {
        page.ground.value = RatioGroundOf(page.ground.stored);
        if (!TakeOffsetReadings())
            return;
    }
    const std::string before = page.ground.stored;
    WriteCorrected(page.ground, CorrectRatioOffset(page.ground.value, page.readings[0], page.readings[1]));
    if (Abort || !TakeOffsetReadings())
        return;
    page.ground.first = false;
    page.ground.done = true;
    RecordTrial(page.ground, before);
}

bool TakeGainReading()
{
    AddTrialRow(page.divider);
    return TakeInto(page.divider, kWordColumn + 1, page.gainReading);
}

void RunGainTrials()
{
    BeginTrial(page.divider, RoundHalfEven(static_cast<double>(page.conditions.reading)));
    if (!SendRatioRangeCode())
        return;
    if (page.excitation != kGainExcitation && !Excite(kGainExcitation))
        return;
    if (page.divider.first) {
        page.divider.value = RatioDividerOf(page.divider.stored);
        if (!TakeGainReading())
            return;
    }
    const std::string before = page.divider.stored;
    WriteCorrected(page.divider, CorrectRatioGain(page.divider.value, page.conditions.reading, page.gainReading));
    if (Abort || !TakeGainReading())
        return;
    page.divider.first = false;
    page.divider.done = true;
    RecordTrial(page.divider, before);
}

// A stopped trial leaves readings that don't belong together: the next one begins anew, at a fresh excitation.
void LeaveTrial(Ended ended, Trimmed &trimmed)
{
    Freeze(view.lblRatioReading);
    view.lblRatioProgress->setText("");
    if (ended != Ended::Done) {
        ShowState(kWorking, kPromptNone);
        RemoveInput();
        page.excitation.clear();
        trimmed.first = true;
        RecordTrial(trimmed, trimmed.stored);
    }
    ShowState(kTried, ended != Ended::Done ? kPromptStopped : page.limited ? kPromptLimited : kPromptNone);
    SideOf(trimmed).button->setText("Repeat");
    EnableAndFocus(SideOf(trimmed).button);
}

// ---- choosing an earlier row ----

void ChooseRow(Trimmed &trimmed, int row)
{
    if (view.states.now != kTried && view.states.now != kChosen)
        return;
    MarkGridRow(SideOf(trimmed).grid, row);
    const std::string word = trimmed.rows[static_cast<std::size_t>(row)];
    if (word == trimmed.stored) {
        page.select = nullptr;
        ShowState(kTried, kPromptNone);
        return;
    }
    page.select = &trimmed;
    page.selected = word;
    ShowState(kChosen, {"Click \"Select\" to store highlighted value\r\nof " + std::string(trimmed.name) +
                            " in Nonvolatile Memory.",
                        false, Tone::Works});
}

void StoreSelected()
{
    ShowState(kWorking, kPromptNone);
    WriteNvmWords(page.select->word, page.selected, "");
    RecordOfStep("ratio word selected", page.position,
                 {{"name", page.select->name}, {"wordBefore", page.select->stored}, {"wordAfter", page.selected}});
    page.select->stored = page.selected;
    ShowStored(*page.select);
    page.select = nullptr;
}

// ---- the end ----

void LearnWords()
{
    if (!page.ground.done || !page.divider.done)
        return;
    UpdateNominalWordFor(kGroundWord, page.ground.stored, true);
    UpdateNominalWordFor(kDividerWord, page.divider.stored, true);
}

void LeaveRatioPage()
{
    ShowState(kWorking, kPromptNone);
    LearnWords();
    RemoveInput();
    page.excitation.clear();
    LoadFactoryMeterSetup();
    StepEnd end;
    end.how = page.ground.done && page.divider.done ? "accepted" : "left";
    end.word = page.ground.stored + " " + page.divider.stored;
    RecordStepEnded(page.position, end);
    NextStep();
}

// ---- the operator ----

void cmdOffset_Click()
{
    RunPageProcedure(RunOffsetTrials, [](Ended ended) { LeaveTrial(ended, page.ground); });
}

void cmdGain_Click()
{
    if (page.conditions.reading <= 0.0f) {
        ShowPrompt(view.states, kPromptNoTarget);
        return;
    }
    RunPageProcedure(RunGainTrials, [](Ended ended) { LeaveTrial(ended, page.divider); });
}

void cmdRatioSelect_Click()
{
    RunPageProcedure(StoreSelected, [](Ended) { ShowState(kTried, kPromptNone); });
}

void cmdRatioSave_Click()
{
    SaveRatioConditions(page.conditions);
    ShowSave();
}

void cmdRatioDone_Click()
{
    RunPageProcedure([] {}, [](Ended) { LeaveRatioPage(); });
}

void optRange_Click(int index)
{
    page.conditions.range = index;
    ResetRatioGrids();
    ShowConnectionDiagram(index);
}

void txtReading_Edited(const std::string &text)
{
    page.conditions.reading = static_cast<float>(Val(text));
    ShowSave();
}

// ---- the way in, inside the navigator's procedure ----

void ConfigureRatioPage()
{
    const std::vector<RatioRange> &ranges = RatioRanges();
    for (std::size_t i = 0; i < kRanges; ++i) {
        view.optRange[i]->setVisible(i < ranges.size());
        if (i < ranges.size())
            view.optRange[i]->setText(ranges[i].caption);
        SetOption(view.optRange[i], static_cast<int>(i) == page.conditions.range);
    }
    SetField(view.txtReading, Format(page.conditions.reading, 0));
}

void ShowRatioPage()
{
    page = RatioPage();
    page.position = CurrentStepButton;
    page.conditions = StoredRatioConditions();
    SetPlainStep({.word = kGroundWord, .target = kOffsetTarget, .offset = true, .scatter = kScatter});
    ShowPage(kRatioPage);
    ConfigureRatioPage();
    ResetRatioGrids();
    ShowStored(page.ground);
    ShowStored(page.divider);
    ShowState(kOpening, kPromptFresh);
    ShowCalPanel(true);
    ApplySwitched("V");
    ShowConnectionDiagram(page.conditions.range);
    const auto words = PutIntoRatioMode();
    if (!words) {
        ShowState(kSilent, kPromptSilent);
        return;
    }
    page.rangeCode = words->rangeCode;
    page.ground.stored = words->ground;
    page.divider.stored = words->divider;
    ShowStored(page.ground);
    ShowStored(page.divider);
    RecordOfStep("ratio opened", page.position, {{"CALBGND", page.ground.stored}, {"CALBRDN", page.divider.stored}});
    ShowState(kFresh, kPromptFresh);
}

// ---- the way it is built ----

QGroupBox *BuildConditions(QFrame *frame)
{
    QGroupBox *group = Group(frame, "fraRatioConditions", "Conditions");
    auto *row = new QHBoxLayout(group);
    for (std::size_t i = 0; i < kRanges; ++i) {
        const auto index = static_cast<int>(i);
        view.optRange[i] = Option(group, Indexed("optRange", index), "", [index] { optRange_Click(index); });
        row->addWidget(view.optRange[i]);
    }
    row->addStretch();
    row->addWidget(Label(group, "lblReadingCaption", "Target, +10 V"));
    view.txtReading = Field(
        group, "txtReading", NumberKeys(), [](const std::string &, CommitBy) {}, txtReading_Edited);
    view.txtReading->setToolTip("Reading that the gain trial is to reach at +10 V");
    view.txtReading->setMaximumWidth(view.txtReading->fontMetrics().horizontalAdvance("88888888"));
    row->addWidget(view.txtReading);
    view.buttons.save = Button(group, "cmdRatioSave", "Save", cmdRatioSave_Click);
    view.buttons.save->setToolTip("Keeps range and reading for the next meter of this family");
    row->addWidget(view.buttons.save);
    return group;
}

// `name` as in msgOffset and cmdOffset.
QGroupBox *BuildSide(QFrame *frame, const char *name, Side &side, Trimmed &trimmed, Handler start)
{
    QGroupBox *group = Group(frame, QString("fra") + name, name);
    side.stored = Title(group, QString("lbl") + trimmed.name);
    side.grid = Grid(group, QString("msg") + name, [&trimmed](int row) { ChooseRow(trimmed, row); });
    side.button = Button(group, QString("cmd") + name, "Start", std::move(start));
    side.button->setMinimumHeight(side.button->fontMetrics().height() * 5 / 2);
    auto *head = new QHBoxLayout;
    head->addWidget(Label(group, QString("lbl%1Caption").arg(trimmed.name), std::string(trimmed.name) + " ="));
    head->addWidget(side.stored);
    head->addStretch();
    head->addWidget(side.button);
    auto *column = new QVBoxLayout(group);
    column->addLayout(head);
    column->addWidget(side.grid, 1);
    return group;
}

QHBoxLayout *BuildEnd(QFrame *frame)
{
    view.buttons.select = Button(frame, "cmdRatioSelect", "Select", cmdRatioSelect_Click, "Alt+S");
    view.buttons.done = Button(frame, "cmdRatioDone", "Done", cmdRatioDone_Click, "Alt+D");
    KeepPlace(view.buttons.select);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {view.buttons.select, view.buttons.done}) {
        MakeLarge(button);
        row->addWidget(button);
    }
    view.lblRatioProgress = Label(frame, "lblRatioProgress");
    view.lblRatioReading = Readout(frame, "lblRatioReading");
    row->addStretch();
    row->addWidget(view.lblRatioProgress);
    row->addWidget(view.lblRatioReading);
    return row;
}

void BuildRatioPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    QLabel *title = Title(frame, "lblRatioTitle");
    title->setText("RATIO");
    column->addWidget(title);
    column->addWidget(BuildConditions(frame));
    auto *trials = new QHBoxLayout;
    trials->addWidget(BuildSide(frame, "Offset", view.offset, page.ground, cmdOffset_Click), 4);
    trials->addWidget(BuildSide(frame, "Gain", view.gain, page.divider, cmdGain_Click), 3);
    column->addLayout(trials, 1);
    QFrame *instruction = Instruction(frame, 6, 3);
    KeepPlace(instruction);
    column->addWidget(instruction);
    column->addLayout(BuildEnd(frame));
    SetGridColumns(view.offset.grid, kOffsetColumns);
    SetGridColumns(view.gain.grid, kGainColumns);
    view.states = {frame, instruction, TableOfStates()};
    ShowPageState(view.states, kOpening);
}

}  // namespace

void RegisterRatioPage()
{
    RegisterPage(kRatioPage, BuildRatioPage);
    RegisterSteps({Step::Ratio}, {ShowRatioPage, kRatioPage});
}

}  // namespace ombrix
