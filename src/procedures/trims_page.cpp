#include "procedures/trims_page.h"

#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "calibration/trims.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/output_switch.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kTrimsPage = 17;
constexpr int kReadingSetup = 4;
constexpr std::int32_t kR38Target = 79990;

// One of the three trims.
struct Trim {
    const char *title;
    int diagram;     // row
    int rangeIndex;  // into the board's codes
    std::array<float, 2> simulated;
};
constexpr Trim kTrimR13R14 = {"R13/R14 TRIM", 0, 0, {80000, 80100}};
constexpr Trim kTrimNegativeGain = {"NEGATIVE GAIN TRIM", 10, 0, {80000, 80000}};
constexpr Trim kTrimR38 = {"R38 TRIM", 1, 1, {0, 79990}};

// ---- what the page knows ----

struct TrimsPage {
    int position = -1;
    const Trim *trim = &kTrimR13R14;
    std::array<float, 2> readings{};
    std::array<bool, 2> taken{};  // the last look brought a reading
    bool ok = false;              // this reading is good
    bool complete = false;
    std::string refused;                       // what the calibrator has not confirmed, "" when it has
    std::vector<std::string> asked, reported;  // values of this run
    std::optional<TrimResistors> found;
    std::string added;  // what the operator was told to add
};
TrimsPage page;

// ---- what it shows ----

enum State { kOpening, kSilent, kReady, kWorking, kFirst, kSecond, kTold };

struct View {
    QLabel *lblTrimTitle, *lblTarget, *lblDistance;
    std::array<QLabel *, 2> heads;
    std::array<QFrame *, 2> lblTrimRdg;
    struct Buttons {
        QPushButton *start, *ok, *done;
    } buttons;
    PageStates states;
};
View view;

const std::string kSetJumpers = "Set jumpers and apply input as shown, then click \"Start\"";
const Prompt kPromptSilent = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptWorking = {"Wait ..."};
const Prompt kPromptFirst = {"Wait for +200 mV reading to settle, then click \"OK\""};
const Prompt kPromptSecond = {"Wait for -200 mV reading to settle, then click \"OK\""};
const Prompt kPromptR12 = {
    "Adjust R12 (B) until the -200 mV reading matches\r\nthe +200mV reading, then click \"Accept\""};
const Prompt kPromptError = {"Resistor Error", true};
const Prompt kPromptUnread = {"The meter showed no reading, so nothing is known of this trim.\r\n"
                              "Check its line and its input, then click \"Start\"",
                              true};
const Prompt kPromptR38 = {"Using the Gold screwdriver, adjust R38 until the 2 V 10 KHz\r\n"
                           "reading is 79990 (10 counts low), then click \"Accept\""};

bool IsR38()
{
    return page.trim == &kTrimR38;
}

bool HasResistors()
{
    return SCType == kAc2;
}

Prompt PromptOfStart()
{
    return {HasResistors() ? kSetJumpers + "\r\nBe sure to INSTALL the DC jumper" : kSetJumpers};
}

std::vector<PageState> TableOfStates()
{
    const auto [start, ok, done] = view.buttons;
    const Prompt first = IsR38() ? kPromptR38 : kPromptFirst;
    const Prompt second = HasResistors() ? kPromptSecond : kPromptR12;
    const std::vector<QWidget *> away = HasResistors() ? std::vector<QWidget *>{} : std::vector<QWidget *>{done};
    const char *last = HasResistors() ? "OK" : "Accept";
    return {
        // clang-format off
        // state    on             keys to  prompt           not seen  captions
        {kOpening, {},            nullptr, PromptOfStart(), away, {{start, "Start"}, {ok, IsR38() ? "Accept" : "OK"}}},
        {kSilent,  {},            nullptr, kPromptSilent,   away},
        {kReady,   {start},       start,   PromptOfStart(), away, {{start, "Start"}, {ok, IsR38() ? "Accept" : "OK"}}},
        {kWorking, {},            nullptr, kPromptWorking,  away},
        {kFirst,   {ok},          ok,      first,           away, {{ok, IsR38() ? "Accept" : "OK"}}},
        {kSecond,  {ok},          ok,      second,          away, {{ok, last}}},
        {kTold,    {start, done}, done,    kPromptError,    away, {{start, "Repeat"}}, Navigation::Held},
        // clang-format on
    };
}

std::string Counts(float reading)
{
    return std::to_string(RoundHalfEven(static_cast<double>(reading)));
}

void ClearReadings()
{
    for (QFrame *readout : view.lblTrimRdg)
        ClearReadout(readout);
    view.lblTarget->setText("");
    view.lblDistance->setText("");
}

// Where the reading in work is to go; nothing for the first of two.
std::optional<float> TargetOf(State state)
{
    if (IsR38())
        return static_cast<float>(kR38Target);
    return state == kSecond && page.taken[0] ? std::optional(page.readings[0]) : std::nullopt;
}

void ShowReading(State state, std::size_t place, const std::string &text)
{
    page.taken[place] = !text.empty();
    if (text.empty()) {
        ShowTrouble(view.lblTrimRdg[place], DisplayIsOverRange() ? "over range" : "silent");
        view.lblDistance->setText("");
        return;
    }
    page.readings[place] = static_cast<float>(Val(text));
    ShowLive(view.lblTrimRdg[place], text);
    if (const auto target = TargetOf(state))
        view.lblDistance->setText(Caption(Counts(page.readings[place] - *target)));
}

// Both readings of a trim, or the one that it has.
bool IsRead()
{
    return page.taken[1] && (IsR38() || page.taken[0]);
}

// The parts at which the step works. Those in work in a state are marked; the jumper is in.
void ShowParts(State state)
{
    using enum BoardPart::Kind;
    if (IsR38())
        ShowBoardParts({{Trimmer, "R38", state == kFirst}});
    else if (!HasResistors())
        ShowBoardParts({{Trimmer, "R12 (B)", state == kSecond}});
    else
        ShowBoardParts({{Resistor, "R13", state == kTold && page.found && page.found->r13 != 0},
                        {Resistor, "R14", state == kTold && page.found && page.found->r14 != 0},
                        {Jumper, "DC", true}});
}

// ---- the work: each part returns false when the operator has left the step, or its input was refused ----

bool TrimStep(State state, std::size_t place, const std::string &value)
{
    ShowPageState(view.states, kWorking);
    if (!ApplyInput(value) || Abort)
        return false;
    page.asked.push_back(value);
    page.reported.push_back(OutputConfirmed() ? GetLiveOutput().Value : "");
    if (!InputStands()) {  // two readings at one input would match at once
        page.refused = value;
        return false;
    }
    page.ok = false;
    ShowParts(state);
    ShowPageState(view.states, state);
    const auto target = TargetOf(state);
    view.lblTarget->setText(target ? Caption(Counts(*target)) : "");
    LiveReading live = DisplayInAdjustment();
    live.simulated = [place] { return Counts(page.trim->simulated[place]); };
    FollowReading(live, [state, place](const std::string &text) { ShowReading(state, place, text); });
    if (page.taken[place])
        Freeze(view.lblTrimRdg[place]);  // else what says why there is none stays
    return page.ok && !Abort;
}

void RunTrim()
{
    page.complete = false;
    page.readings = {};
    page.taken = {};
    page.refused.clear();
    page.asked.clear();
    page.reported.clear();
    page.found.reset();
    page.added.clear();
    ClearReadings();
    if (IsR38())
        page.complete = TrimStep(kFirst, 1, "2 V, 10 KHz");
    else
        page.complete = TrimStep(kFirst, 0, "200 mV") && TrimStep(kSecond, 1, "-200 mV");
}

Prompt PromptOfResistors()
{
    if (IsRead())
        page.found = ResistorsForReadings(page.readings[0], page.readings[1]);
    if (!page.found) {
        page.added = kPromptError.text;
        return kPromptError;
    }
    const std::string r13 = ResistorCodeText(page.found->r13);
    const std::string r14 = ResistorCodeText(page.found->r14);
    page.added = "R13 " + r13 + ", R14 " + r14;
    return {"Add to R13 --- " + r13 + "\r\nAdd to R14 --- " + r14};
}

void RecordTrim()
{
    RecordOfStep("trim", page.position,
                 {{"trim", page.trim->title},
                  {"plus", page.taken[0] ? Counts(page.readings[0]) : ""},
                  {"reading", page.taken[1] ? Counts(page.readings[1]) : ""},
                  {"asked", page.asked},
                  {"reported", page.reported},
                  {"told", page.added},
                  {"complete", page.complete}});
}

void RecordEnd(const std::string &how)
{
    StepEnd end;
    end.how = how;
    RecordStepEnded(page.position, end);
}

Prompt PromptOfEnd(Ended ended, bool complete)
{
    if (ended == Ended::Fault)
        return PromptOfFault(FaultWords());
    if (!page.refused.empty())
        return PromptOfRefusal(page.refused);
    return complete ? kPromptUnread : PromptOfStart();
}

// The resistors are soldered with the input off; its page stays for another look.
void LeaveTrim(Ended ended)
{
    const bool complete = ended == Ended::Done && page.complete;
    const std::string how = page.refused.empty() ? HowEnded(ended) : kNoInput;
    ShowPageState(view.states, kWorking);
    CalibratorStandby();
    view.lblTarget->setText("");
    if (complete && HasResistors()) {
        const Prompt told = PromptOfResistors();
        RecordTrim();
        ShowParts(kTold);
        ShowPageState(view.states, kTold, told);
        return;
    }
    RecordTrim();
    ShowParts(kReady);
    if (complete && IsRead()) {
        RecordEnd("accepted");
        ShowPageState(view.states, kReady);
        NextStep();
        return;
    }
    RecordEnd(complete ? "no reading" : how);
    ClearReadings();
    ShowPageState(view.states, kReady, PromptOfEnd(ended, complete));
}

void NoteQuit()
{
    RecordTrim();
    RecordEnd("quit");
}

// ---- the operator ----

void cmdTrimStart_Click()
{
    RunPageProcedure(RunTrim, LeaveTrim, NoteQuit);
}

void cmdTrimOK_Click()
{
    page.ok = true;
    Disable(view.buttons.ok);
    RequestStop();
}

void cmdDone_Click()
{
    RunPageProcedure([] {},
                     [](Ended) {
                         CalibratorStandby();
                         RecordEnd(page.found ? "accepted" : "left");
                         ShowParts(kReady);
                         ShowPageState(view.states, kReady);
                         NextStep();
                     });
}

// ---- the way in, inside the navigator's procedure ----

void ShowTrimPage(const Trim &trim)
{
    page = TrimsPage();
    page.position = CurrentStepButton;
    page.trim = &trim;
    SetPlainStep({});
    view.states.rows = TableOfStates();
    view.lblTrimTitle->setText(trim.title);
    view.heads[1]->setText(IsR38() ? "2 V 10 KHz Reading" : "-200 mV Reading");
    view.heads[0]->setVisible(!IsR38());
    view.lblTrimRdg[0]->setVisible(!IsR38());
    view.buttons.done->setVisible(HasResistors());
    ClearReadings();
    ShowPage(kTrimsPage);
    ShowPageState(view.states, kOpening);
    ApplySwitched("V");
    ShowConnectionDiagram(trim.diagram);
    ShowParts(kOpening);
    RecordStepOpened(page.position);
    const bool onRange =
        WriteRangeSetup(FilterCodeAtPosition(page.position), RangeCodeText(trim.rangeIndex), kReadingSetup);
    CalibratorStandby();
    ShowPageState(view.states, onRange ? kReady : kSilent);
}

// ---- the way it is built ----

QHBoxLayout *BuildReadings(QFrame *frame)
{
    auto *row = new QHBoxLayout;
    for (std::size_t i = 0; i < view.lblTrimRdg.size(); ++i) {
        view.heads[i] = Label(frame, Indexed("lblTrim", static_cast<int>(i)), "+200 mV Reading");
        view.lblTrimRdg[i] = Readout(frame, Indexed("lblTrimRdg", static_cast<int>(i)));
        auto *column = new QVBoxLayout;
        column->addWidget(view.heads[i]);
        column->addWidget(view.lblTrimRdg[i]);
        row->addLayout(column);
    }
    return row;
}

void BuildTrimsPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    view.lblTrimTitle = Title(frame, "lblTrimTitle");
    column->addWidget(view.lblTrimTitle);
    column->addLayout(BuildReadings(frame));
    column->addLayout(AimRow(frame, "Trim", view.lblTarget, view.lblDistance));
    column->addStretch();
    QFrame *instruction = StatusBar(frame, Indexed("TrimMsg", 0), 2);
    column->addWidget(instruction);
    view.buttons = {Button(frame, "cmdTrimStart", "Start", cmdTrimStart_Click),
                    Button(frame, "cmdTrimOK", "OK", cmdTrimOK_Click, "Alt+O"), DoneButton(frame, 5, cmdDone_Click)};
    column->addLayout(ButtonRow({view.buttons.start, view.buttons.ok, view.buttons.done}));
    view.states = {frame, instruction, TableOfStates()};
    ShowPageState(view.states, kOpening);
}

}  // namespace

void RegisterTrimsPage()
{
    RegisterPage(kTrimsPage, BuildTrimsPage);
    RegisterSteps({Step::TrimR13R14}, {[] { ShowTrimPage(kTrimR13R14); }, kTrimsPage});
    RegisterSteps({Step::MinusGainTrim}, {[] { ShowTrimPage(kTrimNegativeGain); }, kTrimsPage});
    RegisterSteps({Step::TrimR38}, {[] { ShowTrimPage(kTrimR38); }, kTrimsPage});
}

}  // namespace ombrix
