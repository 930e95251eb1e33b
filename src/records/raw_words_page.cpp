#include "records/raw_words_page.h"

#include "links/meter_operations.h"
#include "model/nvm_fields.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "records/word_boxes.h"
#include "session/journal.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/fields.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/widgets.h"

#include <QAbstractButton>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kRawPage = 18;
constexpr int kMostWords = 4;
constexpr std::size_t kWordDigits = 4;

// ---- what the page knows ----

struct RawPage {
    int address = 0;
    int count = 0;       // words, 1 to 4
    std::string saved;   // as the meter holds them; "" when they weren't read
    std::string edited;  // what the field stands for
    std::string meant;   // what the last save wrote; "" nothing
    bool lent = false;   // opened from another page
    RawWordsFrom from;
};
RawPage page;

enum State { kUnread, kRead, kEdited, kWorking };

struct View {
    QLineEdit *address, *value;
    std::array<QRadioButton *, kMostWords> length;
    QPushButton *read, *save, *cancel, *back;
    PageStates states;
};
View view;

const Prompt kPromptUnread = {"Enter the number of the highest word and how many, then click \"Read\""};
const Prompt kPromptRead = {"Enter desired changes and click \"Save\" to write to NVM"};
const Prompt kPromptWorking = {"Waiting for the meter"};
const Prompt kPromptSilent = {"The meter did not answer", true};
const Prompt kPromptUnknown = {"The meter did not answer after the write: what it holds now isn't known.\r\n"
                               "\"Save\" writes again, \"Cancel\" leaves the words unread",
                               true};

// Back to another page's work: its navigation stays off meanwhile.
std::vector<PageState> TableOfStates()
{
    const auto &[address, value, length, read, save, cancel, back, states] = view;
    const auto free = page.lent ? Navigation::Held : Navigation::Free;
    const auto held = Navigation::Held;
    const auto [one, two, three, four] = length;
    return {
        // clang-format off
        // state    on                                                    keys to  prompt          not seen, captions  navigation
        {kUnread,  {address, one, two, three, four, read, back},          address, kPromptUnread,  {}, {},             free, true},
        {kRead,    {address, one, two, three, four, value, read, back},   value,   kPromptRead,    {}, {},             free, true},
        {kEdited,  {value, save, cancel},                                 value,   kPromptRead,    {}, {},             held, true},
        {kWorking, {},                                                    nullptr, kPromptWorking, {}, {},             held},
        // clang-format on
    };
}

std::size_t Digits()
{
    return static_cast<std::size_t>(page.count) * kWordDigits;
}

// ---- what it shows ----

void ShowState(State state)
{
    ShowPageState(view.states, state);
    SetUnsaved(state == kEdited ? kUnsavedWords : "");
}

void MarkValue()
{
    if (page.edited != page.saved)
        MarkWordBox(view.value, WordMark::Changed, "The meter holds " + page.saved);
    else if (!page.meant.empty() && page.meant != page.saved)
        MarkWordBox(view.value, WordMark::Refused, "The meter holds " + page.saved + ", it did not take " + page.meant);
    else
        MarkWordBox(view.value, WordMark::None);
}

// What the meter holds, as far as it was read.
void ShowSaved()
{
    page.edited = page.saved;
    SetField(view.value, page.saved);
    MarkValue();
    ShowState(page.saved.empty() ? kUnread : kRead);
}

void ForgetWords()
{
    page.saved.clear();
    page.meant.clear();
}

// So many words from now on; the option shows it.
void TakeCount(int count)
{
    if (count == page.count)
        return;
    page.meant.clear();
    page.saved = count > page.count ? "" : Left(page.saved, static_cast<std::size_t>(count) * kWordDigits);
    page.count = count;
    MakeDigits(view.value, static_cast<int>(Digits()));
    SetOption(view.length[static_cast<std::size_t>(count - 1)], true);
    ShowSaved();
}

// ---- the meter ----

void RecordWords(const char *kind, const JournalFields &more)
{
    std::vector<std::string> words;
    words.reserve(static_cast<std::size_t>(page.count));
    for (int at = 0; at < page.count; ++at)
        words.push_back(HexText(page.address - at, 2));
    JournalFields fields = {{"by", "raw words"}, {"board", BoardName(SCType)}, {"words", words}};
    fields.insert(fields.end(), more.begin(), more.end());
    Record(kind, fields);
}

void ReadWords()
{
    if (page.count > page.address + 1)
        TakeCount(page.address + 1);
    ShowState(kWorking);
    ForgetWords();
    page.saved = ReadNvmWords(page.address, page.count, "");
    RecordWords("words read", {{"image", page.saved}});
}

void LeaveRead()
{
    ShowSaved();
    if (page.saved.empty())
        ShowPrompt(view.states, kPromptSilent);
}

std::string WriteAndReadBack()
{
    ShowState(kWorking);
    WriteNvmWords(page.address, page.edited, "");
    return Abort ? "" : ReadNvmWords(page.address, page.count, "");
}

void RecordSave(const std::string &held)
{
    RecordWords("words written", {{"before", page.saved},
                                  {"written", page.edited},
                                  {"held", held},
                                  {"took", !held.empty() && held == page.edited}});
}

// The operator's changes stay when nobody knows what became of them.
void LeaveSave(const std::string &held)
{
    RecordSave(held);
    if (held.empty()) {
        page.saved.clear();
        ShowState(kEdited);
        ShowPrompt(view.states, kPromptUnknown);
        return;
    }
    page.meant = page.edited;
    page.saved = held;
    ShowSaved();
    if (held != page.meant)
        ShowPrompt(view.states, {"Not taken by the meter: it holds " + held + ", not " + page.meant, true});
    else
        ShowPrompt(view.states, {"Written, and read back from the meter"});
    if (page.from.written)
        page.from.written(page.address, held);
}

// ---- the operator ----

void txtAddress_Change(const std::string &text)
{
    page.address = static_cast<int>(HexValue(text));
    ForgetWords();
    ShowSaved();
}

void txtValue_Change(const std::string &text)
{
    page.edited = PaddedDigits(text, Digits());
    MarkValue();
    const State state = page.edited == page.saved ? kRead : kEdited;
    if (view.states.now != state)
        ShowState(state);
}

// The digits that count, with the zeros in front.
void txtValue_LostFocus()
{
    SetField(view.value, page.edited);
}

void cmdRead_Click()
{
    RunPageProcedure(ReadWords, [](Ended) { LeaveRead(); });
}

void cmdSave_Click()
{
    std::string held;
    RunPageProcedure([&held] { held = WriteAndReadBack(); }, [&held](Ended) { LeaveSave(held); },
                     [] { RecordSave(""); });
}

void cmdCancel_Click()
{
    ShowSaved();
}

void cmdBack_Click()
{
    if (page.lent)
        page.from.back();
    else
        OpenStep(CurrentStepButton);
}

// ---- the way in ----

void Enter(bool lent, const RawWordsFrom &from)
{
    FillPage(kRawPage);
    page = RawPage();
    page.lent = lent;
    page.from = from;
    view.states.rows = TableOfStates();
    ShowPage(kRawPage);
    SetField(view.address, "00");
    TakeCount(1);
}

// ---- the way it is built ----

QGroupBox *BuildLengths(QFrame *frame)
{
    QGroupBox *group = Group(frame, "fraNVMLen", "Words");
    auto *row = new QHBoxLayout(group);
    for (int words = 1; words <= kMostWords; ++words) {
        QRadioButton *option =
            Option(group, Indexed("optNVMLen", words - 1), std::to_string(words), [words] { TakeCount(words); });
        view.length[static_cast<std::size_t>(words - 1)] = option;
        row->addWidget(option);
    }
    row->addStretch();
    return group;
}

QHBoxLayout *BuildButtons(QFrame *frame)
{
    view.read = Button(frame, Indexed("cmdNVMWord", 2), "Read", cmdRead_Click, "Alt+R");
    view.save = Button(frame, Indexed("cmdNVMWord", 3), "Save", cmdSave_Click, "Alt+S");
    view.cancel = Button(frame, Indexed("cmdNVMWord", 4), "Cancel", cmdCancel_Click, "Alt+C");
    view.back = Button(frame, Indexed("cmdNVMWord", 5), "Back", cmdBack_Click, "Alt+B");
    return ButtonRow({view.read, view.save, view.cancel, view.back});
}

QGridLayout *BuildFields(QFrame *frame)
{
    view.address = Field(frame, Indexed("txtNVMWord", 0), HexKeys(), nullptr, txtAddress_Change);
    MakeDigits(view.address, 2);
    view.value = Field(
        frame, Indexed("txtNVMWord", 1), HexKeys(), [](const std::string &, CommitBy) { txtValue_LostFocus(); },
        txtValue_Change);
    auto *grid = new QGridLayout;
    grid->addWidget(Label(frame, "lblNVMWordAddress", "Number of the highest word, hexadecimal"), 0, 0);
    grid->addWidget(view.address, 0, 1, Qt::AlignLeft);
    grid->addWidget(BuildLengths(frame), 1, 0, 1, 2);
    grid->addWidget(Label(frame, "lblNVMWordValue", "Words, the highest first"), 2, 0);
    grid->addWidget(view.value, 2, 1, Qt::AlignLeft);
    grid->setColumnStretch(1, 1);
    return grid;
}

void BuildRawPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    QLabel *title = Title(frame, "lblNVMWordTitle");
    title->setText("Words by number");
    column->addWidget(title);
    column->addLayout(BuildFields(frame));
    column->addStretch();
    QFrame *instruction = StatusBar(frame, "NVMWord", 2);
    column->addWidget(instruction);
    column->addLayout(BuildButtons(frame));
    view.states = {frame, instruction, TableOfStates()};
    TakeCount(1);
}

}  // namespace

void RegisterRawWordsPage()
{
    RegisterPage(kRawPage, BuildRawPage);
}

void FillRawWordsHooks()
{
    frameHooks.enterRawWords = [](const RawWordsFrom &from) { Enter(true, from); };
}

void EnterRawPage()
{
    Enter(false, {});
}

}  // namespace ombrix
