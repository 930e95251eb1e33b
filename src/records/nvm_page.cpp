#include "records/nvm_page.h"

#include "links/meter_operations.h"
#include "model/nvm_fields.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "records/raw_words_page.h"
#include "records/word_boxes.h"
#include "session/delays.h"
#include "session/journal.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/fields.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kBetweenRunsMs = 1000;  // a counter's pause between two writes
constexpr char kUnknown = '?';
constexpr std::size_t kNamed = 3;  // refused fields that the prompt names; their boxes show all

// ---- the two layouts ----

enum Side { kCalibration, kCounter };

// Which words a side reads, in two blocks, and which fields show them.
struct Layout {
    int frame;
    int topWord;
    int topCount;
    int lowWord;
    int lowCount;
    int firstField;
    int lastField;
    int rows;
};
constexpr std::array<Layout, 2> kLayouts = {
    {{7, 63, 20, 43, 19, 0, kFirstVfField - 1, 12}, {15, 49, 25, 24, 25, kFirstVfField, kNvmFields - 1, 13}}};

// ---- what the page knows ----

struct NvmPage {
    Side side = kCalibration;
    std::string saved;   // the image as the meter holds it, "????" for a word that nobody knows; "" when none is known
    std::string edited;  // the same with the operator's changes
    std::string meant;   // what the last save wrote, where the meter could be asked about it
    WordBoxes lent;      // what another page shows in the boxes
};
NvmPage page;

enum State { kReading, kSilent, kClean, kEdited, kSaving, kLent, kLentToSave };

struct View {
    std::vector<WordBox> boxes;
    QPushButton *save, *cancel, *word;
    PageStates states;
};
std::array<View, 2> views;

View &Shown()
{
    return views[page.side];
}

const Layout &LayoutInUse()
{
    return kLayouts[page.side];
}

const Prompt kPromptEdit = {"Enter desired changes and click \"Save\" to write to NVM.\r\n"
                            "Click \"Cancel\" to restore the display to the current values."};
const Prompt kPromptReading = {"Reading the meter"};
const Prompt kPromptSaving = {"Writing to the meter and reading it back"};
const Prompt kPromptSilent = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptUnknown = {"The meter did not answer after the write: what it holds now isn't known.\r\n"
                               "\"Save\" writes again, \"Cancel\" reads the meter",
                               true};

std::vector<QWidget *> With(std::vector<QWidget *> controls, const std::vector<WordBox> &boxes)
{
    for (const WordBox &box : boxes)
        controls.push_back(box.txtNVM);
    return controls;
}

std::vector<PageState> TableOfStates(const View &side)
{
    const auto &[boxes, save, cancel, word, states] = side;
    QWidget *first = boxes.front().txtNVM;
    const std::vector<QWidget *> none = {};
    const std::vector<QWidget *> buttons = {save, cancel, word};
    const std::vector<QWidget *> others = {cancel, word};
    const auto held = Navigation::Held;
    return {
        // clang-format off
        // state       on                           keys to  prompt          not seen  captions  navigation       keys stay
        {kReading,    {},                           nullptr, kPromptReading, none,     {},       Navigation::Free},
        {kSilent,     {word},                       nullptr, kPromptSilent,  none,     {},       Navigation::Free},
        {kClean,      With({word}, boxes),          first,   kPromptEdit,    none,     {},       Navigation::Free, true},
        {kEdited,     With({save, cancel}, boxes),  first,   kPromptEdit,    none,     {},       held,             true},
        {kSaving,     {},                           nullptr, kPromptSaving,  none,     {},       held},
        {kLent,       With({}, boxes),              nullptr, {},             buttons,  {},       Navigation::Free},
        {kLentToSave, With({save}, boxes),          save,    {},             others,   {},       Navigation::Free},
        // clang-format on
    };
}

// ---- what it shows ----

std::string FieldIn(const std::string &image, int index)
{
    return NvmFieldText(image, NvmFieldAt(index, CalibTab, SCType), LayoutInUse().topWord);
}

WordBox &BoxOf(int index)
{
    return Shown().boxes[static_cast<std::size_t>(index - LayoutInUse().firstField)];
}

// Something was written, and the meter did not answer.
bool IsUncertain(const std::string &digits)
{
    return digits.find(kUnknown) != std::string::npos;
}

std::string WhatTheMeterHolds(int index)
{
    const std::string digits = FieldIn(page.saved, index);
    return IsUncertain(digits) ? "What the meter holds isn't known" : "The meter holds " + digits;
}

bool WasRefused(int index)
{
    return !page.meant.empty() && FieldIn(page.meant, index) != FieldIn(page.saved, index);
}

void MarkField(int index)
{
    QLineEdit *field = BoxOf(index).txtNVM;
    if (FieldIn(page.edited, index) != FieldIn(page.saved, index))
        MarkWordBox(field, WordMark::Changed, WhatTheMeterHolds(index));
    else if (WasRefused(index))
        MarkWordBox(field, WordMark::Refused,
                    WhatTheMeterHolds(index) + ", it did not take " + FieldIn(page.meant, index));
    else
        MarkWordBox(field, WordMark::None);
}

bool IsShown(int index)
{
    return NvmFieldAt(index, CalibTab, SCType).width > 0;
}

template <class Do> void ForEachField(Do work)
{
    for (int index = LayoutInUse().firstField; index <= LayoutInUse().lastField; ++index)
        if (IsShown(index))
            work(index);
}

void ShowFields(bool editable)
{
    ForEachField([editable](int index) {
        BoxOf(index).txtNVM->setReadOnly(!editable);
        SetField(BoxOf(index).txtNVM, FieldIn(page.saved, index));
        MarkField(index);
    });
}

// Names, addresses and widths of the fields that this board has.
void BuildNvmPage()
{
    for (int index = LayoutInUse().firstField; index <= LayoutInUse().lastField; ++index)
        ShowWordBox(BoxOf(index), NvmFieldAt(index, CalibTab, SCType));
}

void ShowState(State state)
{
    ShowPageState(Shown().states, state);
    SetUnsaved(state == kEdited ? kUnsavedWords : "");
}

// Which fields did not take what was written; "" when all did.
std::string RefusedText()
{
    std::vector<std::string> told;
    ForEachField([&told](int index) {
        if (WasRefused(index))
            told.push_back(NvmFieldAt(index, CalibTab, SCType).name + " holds " + FieldIn(page.saved, index) +
                           ", not " + FieldIn(page.meant, index));
    });
    std::string text;
    for (std::size_t at = 0; at < told.size() && at < kNamed; ++at)
        text += (at == 0 ? "" : "; ") + told[at];
    if (told.size() > kNamed)
        text += "; and " + std::to_string(told.size() - kNamed) + " more";
    return text;
}

// ---- the meter ----

// "" when one of the two answers is missing.
std::string ReadImage()
{
    const Layout &layout = LayoutInUse();
    const std::string top = ReadNvmWords(layout.topWord, layout.topCount, "Z");
    const std::string low = Abort ? "" : ReadNvmWords(layout.lowWord, layout.lowCount, "");
    return top.empty() || low.empty() ? "" : top + low;
}

void ReloadNvmFields()
{
    page.edited = page.saved;
    ShowFields(!page.saved.empty());
    ShowState(page.saved.empty() ? kSilent : kClean);
}

void ReadMeter()
{
    ShowState(kReading);
    page.saved = ReadImage();
    page.meant.clear();
    Record("words read", {{"by", StepName(Step::ViewNvm)},
                          {"board", BoardName(SCType)},
                          {"top", LayoutInUse().topWord},
                          {"image", page.saved}});
    ReloadNvmFields();
}

void WriteNvmRun(const NvmRun &run)
{
    WriteNvmWords(run.start, DigitsOfRun(page.edited, LayoutInUse().topWord, run), "");
}

std::string WriteAndReadBack()
{
    const std::vector<NvmRun> runs = RunsToWrite(page.saved, page.edited, LayoutInUse().topWord);
    for (std::size_t at = 0; at < runs.size() && !Abort; ++at) {
        if (at > 0 && page.side == kCounter)
            DelayMs(kBetweenRunsMs);
        WriteNvmRun(runs[at]);
    }
    return Abort ? "" : ReadImage();
}

// What the meter should hold: what it holds, with the words that were changed. Totals of a counter go on by themselves.
std::string MeantImage(const std::string &held)
{
    std::string meant = held;
    const int top = LayoutInUse().topWord;
    for (const NvmRun &run : ChangedRuns(page.saved, page.edited, top))
        meant = WithRun(meant, top, run.start, DigitsOfRun(page.edited, top, run));
    return meant;
}

void RecordSave(const std::string &held, const std::string &meant)
{
    Record("words written", {{"by", StepName(Step::ViewNvm)},
                             {"board", BoardName(SCType)},
                             {"top", LayoutInUse().topWord},
                             {"words", WordsThatDiffer(page.saved, page.edited, LayoutInUse().topWord)},
                             {"before", page.saved},
                             {"written", page.edited},
                             {"held", held},
                             {"took", !held.empty() && held == meant}});
}

// Nobody knows of the words that were written. So they differ from whatever stands in their fields: the next save writes
// them, also where the operator has typed the old value back.
void ForgetWrittenWords()
{
    const int top = LayoutInUse().topWord;
    for (const NvmRun &run : ChangedRuns(page.saved, page.edited, top))
        page.saved =
            WithRun(page.saved, top, run.start, std::string(DigitsOfRun(page.saved, top, run).size(), kUnknown));
}

// The operator's changes stay when nobody knows what became of them.
void LeaveSave(const std::string &held)
{
    const std::string meant = held.empty() ? "" : MeantImage(held);
    RecordSave(held, meant);
    if (held.empty()) {
        ForgetWrittenWords();
        ForEachField(MarkField);
        ShowState(kEdited);
        ShowPrompt(Shown().states, kPromptUnknown);
        return;
    }
    page.saved = held;
    page.meant = meant;
    ReloadNvmFields();
    const std::string refused = RefusedText();
    if (!refused.empty())
        ShowPrompt(Shown().states, {"Not taken by the meter: " + refused, true});
    else
        ShowPrompt(Shown().states, {"Written, and read back from the meter.\r\n" + kPromptEdit.text});
}

// ---- for other pages ----

void ShowLentBoxes(const WordBoxes &boxes)
{
    FillPage(kLayouts[kCounter].frame);
    page = NvmPage();
    page.side = kCounter;
    page.lent = boxes;
    const std::size_t digits = static_cast<std::size_t>(LayoutInUse().topWord + 1) * 4;
    page.saved = page.edited = boxes.image.size() == digits ? boxes.image : "";
    page.meant = boxes.meant.size() == digits ? boxes.meant : "";
    ShowPage(LayoutInUse().frame);
    BuildNvmPage();
    ShowFields(false);
    ShowPageState(Shown().states, boxes.save ? kLentToSave : kLent, {boxes.says, boxes.trouble});
}

void SaveForOther()
{
    const WordBoxes before = page.lent;
    WordBoxes after = before;
    RunPageProcedure(
        [&before, &after] {
            ShowPageState(Shown().states, kSaving);
            after = before.save();
        },
        [&after](Ended) { ShowLentBoxes(after); });
}

// ---- the operator ----

void txtNVM_Change(int index, const std::string &text)
{
    const NvmField field = NvmFieldAt(index, CalibTab, SCType);
    page.edited = WithNvmField(page.edited, field, LayoutInUse().topWord,
                               PaddedDigits(text, static_cast<std::size_t>(field.width)));
    MarkField(index);
    const State state = page.edited == page.saved ? kClean : kEdited;
    if (Shown().states.now != state)
        ShowState(state);
}

// The digits that count, with the zeros in front.
void txtNVM_LostFocus(int index)
{
    SetField(BoxOf(index).txtNVM, FieldIn(page.edited, index));
}

void cmdNVMsave_Click()
{
    if (page.lent.save)
        return SaveForOther();
    std::string held;
    RunPageProcedure(
        [&held] {
            ShowState(kSaving);
            held = WriteAndReadBack();
        },
        [&held](Ended) { LeaveSave(held); }, [] { RecordSave("", ""); });
}

void cmdNVMcancel_Click()
{
    if (!IsUncertain(page.saved))
        return ReloadNvmFields();
    RunPageProcedure(ReadMeter, [](Ended) {});
}

void cmdNVMWord_Click()
{
    EnterRawPage();
}

// ---- the way in, inside the navigator's procedure ----

void EnterNvmPage()
{
    const Side side = CalibTab == kTabVf ? kCounter : kCalibration;
    FillPage(kLayouts[side].frame);
    page = NvmPage();
    page.side = side;
    ShowPage(LayoutInUse().frame);
    BuildNvmPage();
    ShowFields(false);
    ReadMeter();
}

// ---- the way it is built ----

QHBoxLayout *BuildButtons(QFrame *frame, int side)
{
    View &of = views[side];
    of.save = Button(frame, Indexed("cmdNVMsave", side), "Save", cmdNVMsave_Click, "Alt+S");
    of.cancel = Button(frame, Indexed("cmdNVMcancel", side), "Cancel", cmdNVMcancel_Click, "Alt+C");
    of.word = Button(frame, Indexed("cmdNVMWord", side), "*", cmdNVMWord_Click);
    of.word->setToolTip("One to four words by their number");
    return ButtonRow({of.save, of.cancel, of.word});
}

void BuildSide(QFrame *frame, Side side, const QString &note)
{
    LivesWith(frame, page);
    page.side = side;
    View &of = views[side];
    LivesWith(frame, of);
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildWordBoxColumns(frame, kLayouts[side].firstField, kLayouts[side].lastField,
                                          kLayouts[side].rows, {txtNVM_Change, txtNVM_LostFocus}, of.boxes));
    column->addStretch();
    QFrame *instruction = StatusBar(frame, note, 2);
    column->addWidget(instruction);
    column->addLayout(BuildButtons(frame, side));
    of.states = {frame, instruction, {}};
    of.states.rows = TableOfStates(of);
    ShowPageState(of.states, kReading);
}

}  // namespace

void RegisterNvmPage()
{
    RegisterPage(kLayouts[kCalibration].frame, [](QFrame *frame) { BuildSide(frame, kCalibration, "NVM"); });
    RegisterPage(kLayouts[kCounter].frame, [](QFrame *frame) { BuildSide(frame, kCounter, "VFNVM"); });
    RegisterSteps({Step::ViewNvm}, {EnterNvmPage});
    RegisterRawWordsPage();
}

void FillNvmHooks()
{
    frameHooks.showWordBoxes = ShowLentBoxes;
    FillRawWordsHooks();
}

}  // namespace ombrix
