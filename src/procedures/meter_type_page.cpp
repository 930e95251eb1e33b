#include "procedures/meter_type_page.h"

#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "model/meter_types.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <array>
#include <cstddef>
#include <string>

namespace ombrix {
namespace {

constexpr int kMeterTypePage = 11;
constexpr int kBoardByteWord = 16;
constexpr int kNone = -1;

// ---- what the page knows ----

struct MeterTypePage {
    int position = -1;
    int board = kTemp;
    std::string byte;    // now in the meter, "" when it did not answer
    int stored = kNone;  // the type that it says
    int choice = kNone;  // the operator's
};
MeterTypePage page;

// ---- what it shows ----

enum State { kReading, kSilent, kUnknown, kChanged, kStored, kSaving, kRefused };

struct View {
    QLabel *title;
    std::array<QRadioButton *, kMeterTypes> options;
    QPushButton *save;
    PageStates states;
};
View view;

const Prompt kPromptReading = {"The meter is asked for its type"};
const Prompt kPromptSaving = {"The type is written into the meter"};
const Prompt kPromptSilent = {"The meter did not answer", true};
const Prompt kPromptStopped = {"Stopped before the meter had answered: click the step again", true};
const Prompt kPromptSelect = {"Select a meter type and click \"Save\""};
const Prompt kPromptCommit = {"Click \"Save\" to commit to Nonvolatile Memory"};
const Prompt kPromptChange = {"Change meter type if desired and click \"Save\""};
const Prompt kPromptRefused = {"The meter did not take the type", true};

std::vector<PageState> TableOfStates()
{
    const auto [one, other] = view.options;
    QPushButton *save = view.save;
    return {
        // clang-format off
        // state      on                  keys to  prompt
        {kReading,   {},                  nullptr, kPromptReading},
        {kSilent,    {},                  nullptr, kPromptSilent},
        {kUnknown,   {one, other},        one,     kPromptSelect},
        {kChanged,   {one, other, save},  save,    kPromptCommit},
        {kStored,    {one, other},        nullptr, kPromptChange},
        {kSaving,    {},                  nullptr, kPromptSaving},
        {kRefused,   {one, other, save},  save,    kPromptRefused},
        // clang-format on
    };
}

QRadioButton *OptionOf(int type)
{
    return view.options[static_cast<std::size_t>(type)];
}

// The choice against what the meter holds.
void Refresh()
{
    if (page.choice == kNone)
        return ShowPageState(view.states, kUnknown);
    if (page.choice != page.stored)
        return ShowPageState(view.states, kChanged);
    ShowPageState(view.states, kStored);
    OptionOf(page.choice)->setFocus();
}

void ShowChoice(int type)
{
    page.choice = type;
    for (int each = 0; each < kMeterTypes; ++each)
        SetOption(OptionOf(each), each == type);
}

void ShowSilence()
{
    ShowChoice(kNone);
    ShowPageState(view.states, kSilent, Abort ? kPromptStopped : kPromptSilent);
}

// ---- the meter ----

void WriteType(const std::string &code)
{
    if (page.board == kTc)
        WriteBoardConfigWords(code);
    else
        WriteBoardCodeByte(code);
}

void RecordFound()
{
    PlainStep plain;
    plain.word = kBoardByteWord;
    plain.wordHex = page.byte;
    SetPlainStep(plain);
    RecordStepOpened(page.position);
}

// Writes a code and asks for it again. What the meter then says is what the page believes.
void StoreType(const std::string &code)
{
    const std::string before = page.byte;
    WriteType(code);
    page.byte = Abort ? "" : Right(ReadNvmWords(kBoardByteWord, 1, "Z"), 2);
    page.stored = MeterTypeOfByte(page.board, page.byte);
    Record("meter type", {{"step", StepName(Step::MeterType)},
                          {"board", BoardName(page.board)},
                          {"position", page.position},
                          {"word", HexText(kBoardByteWord, 2)},
                          {"before", before},
                          {"written", code},
                          {"after", page.byte},
                          {"verdict", page.byte == code   ? "taken"
                                      : page.byte.empty() ? "no answer"
                                                          : "not taken"}});
}

// ---- save ----

std::string CodeOfChoice()
{
    return MeterTypesOf(page.board)[page.choice == 0 ? 0 : 1].code;
}

void SaveType()
{
    ShowPageState(view.states, kSaving);
    StoreType(CodeOfChoice());
}

void LeaveSaving(Ended ended)
{
    if (ended == Ended::Fault)
        ShowPageState(view.states, kSilent, PromptOfFault(FaultWords()));
    else if (page.byte.empty() || ended == Ended::Stopped)
        ShowPageState(view.states, kSilent, ended == Ended::Stopped ? kPromptStopped : kPromptSilent);
    else if (page.stored != page.choice)
        ShowPageState(view.states, kRefused);
    else
        Refresh();
}

// ---- the operator ----

void optMeterType_Click(int index)
{
    page.choice = index;
    Refresh();
}

void cmdSaveMeterType_Click()
{
    RunPageProcedure(SaveType, LeaveSaving);
}

// ---- the way in, inside the navigator's procedure ----

void ShowTypes()
{
    for (int type = 0; type < kMeterTypes; ++type)
        OptionOf(type)->setText(MeterTypesOf(page.board)[static_cast<std::size_t>(type)].name);
    ShowChoice(kNone);
}

void EnterMeterTypePage()
{
    page = MeterTypePage();
    page.position = CurrentStepButton;
    page.board = SCType;
    view.title->setText(Caption(StepName(CurrentStepId)));
    ShowTypes();
    ShowPageState(view.states, kReading);
    ShowPage(kMeterTypePage);
    page.byte = ReadBoardCodeByte();
    if (page.byte.empty() || Abort)
        return ShowSilence();
    RecordFound();
    page.stored = MeterTypeOfByte(page.board, page.byte);
    const std::string code = BoardByteAsItIsToBe(page.board, page.byte);
    if (code != page.byte)
        StoreType(code);
    if (page.byte.empty())
        return ShowSilence();
    ShowChoice(page.stored);
    Refresh();
    if (code != page.byte)
        ShowPrompt(view.states, kPromptRefused);
}

// ---- the way it is built ----

QHBoxLayout *BuildChoice(QFrame *frame)
{
    QGroupBox *group = Group(frame, "fraMeterType", "Meter Type");
    group->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);
    auto *options = new QVBoxLayout(group);
    options->setContentsMargins(24, 16, 48, 16);
    options->setSpacing(12);
    for (int type = 0; type < kMeterTypes; ++type) {
        auto *&option = view.options[static_cast<std::size_t>(type)];
        option = Option(group, Indexed("optMeterType", type), "", [type] { optMeterType_Click(type); });
        options->addWidget(option);
    }
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(group);
    row->addStretch();
    return row;
}

void BuildMeterTypePage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    view.title = Title(frame, "lblMeterType");
    column->addWidget(view.title);
    column->addStretch(1);
    column->addLayout(BuildChoice(frame));
    column->addStretch(2);
    QFrame *instruction = Instruction(frame, 4, 2);
    column->addWidget(instruction);
    view.save = Button(frame, "cmdSaveMeterType", "Save", cmdSaveMeterType_Click, "Alt+S");
    MakeLarge(view.save);
    column->addWidget(view.save, 0, Qt::AlignLeft);
    view.states = {frame, instruction, TableOfStates()};
    ShowTypes();
    ShowPageState(view.states, kReading);
}

}  // namespace

void RegisterMeterTypePage()
{
    RegisterPage(kMeterTypePage, BuildMeterTypePage);
    RegisterSteps({Step::MeterType}, {EnterMeterTypePage, kMeterTypePage});
}

}  // namespace ombrix
