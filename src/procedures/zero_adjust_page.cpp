#include "procedures/zero_adjust_page.h"

#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "calibration/trims.h"
#include "links/calibrator.h"
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

constexpr int kZeroAdjustPage = 16;
constexpr int kWithDcJumper = 10;  // row of the diagrams on a board whose block of jumpers has it
constexpr int kReadingSetup = 4;
constexpr std::array<float, 2> kSimulatedStart = {3980, 4020};

// ---- what the page knows ----

enum class Wish { None, Next, Ok, Accept };

struct ZeroAdjustPage {
    int position = -1;
    bool balanceOnly = false;                         // a board that is led through the gain balance alone
    std::array<float, 2> readings = kSimulatedStart;  // at +10 mV and at -10 mV
    std::array<bool, 2> taken{};                      // the last look brought one
    std::array<bool, 2> stood{};                      // its input was confirmed, or is the operator's own
    bool accepted = false;
    bool done = false;                         // the last word of the step was said
    std::vector<std::string> asked, reported;  // values of this run
    Wish wish = Wish::None;
};
ZeroAdjustPage page;

// ---- what it shows ----

enum State { kOpening, kSilent, kReady, kWorking, kAdjustR3, kJumperIn, kSettle, kCompare, kAdjust, kJumperOut, kDuty };

struct View {
    QLabel *title;
    std::array<QFrame *, 2> lblZeroAdjRdg;
    QLabel *lblTarget, *lblDistance;
    struct Buttons {
        QPushButton *next, *ok, *accept, *done;
    } buttons;
    PageStates states;
};
View view;

const std::string kSetJumpers = "Set jumpers and apply input as shown, then click \"Start\"";
const Prompt kPromptZero = {kSetJumpers + "\r\nMake sure that the DC jumper is NOT installed"};
const Prompt kPromptBalance = {kSetJumpers};
const Prompt kPromptSilent = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptWorking = {"Wait ..."};
const Prompt kPromptR3 = {
    "Connect external meter to TP1 and adjust R3\r\nfor minimum reading on the external meter.\r\n\r\n"
    "Click \"Next\" when finished."};
const Prompt kPromptJumperIn = {"Remove the TP1 connection and install\r\nthe DC jumper, then click \"Next\"."};
const Prompt kPromptJumperOut = {"Remove the DC jumper, then click \"Next\"."};
const Prompt kPromptUnread = {"The meter showed no reading, so nothing is known of the balance.\r\n"
                              "Check its line and its input, then click \"Start\"",
                              true};
const Prompt kPromptNoInput = {"The calibrator did not confirm its output, so nothing is known of the balance.\r\n"
                               "Check it, then click \"Start\"",
                               true};
const Prompt kPromptDuty = {"Adjust R25 for equal duty cycle.\r\n\r\nClick \"Done\" when finished."};

std::vector<PageState> TableOfStates()
{
    const auto [next, ok, accept, done] = view.buttons;
    return {
        // clang-format off
        // state      on            keys to  prompt           not seen  captions
        {kOpening,   {},           nullptr, kPromptZero,     {}, {{next, "Start"}}},
        {kSilent,    {},           nullptr, kPromptSilent,   {}, {{next, "Start"}}},
        {kReady,     {next},       next,    kPromptZero,     {}, {{next, "Start"}}},
        {kWorking,   {},           nullptr, kPromptWorking,  {}, {{next, "Next"}}},
        {kAdjustR3,  {next},       next,    kPromptR3},
        {kJumperIn,  {next},       next,    kPromptJumperIn},
        {kSettle,    {ok},         ok,      kPromptWorking},
        {kCompare,   {ok, accept}, ok,      kPromptWorking},
        {kAdjust,    {ok},         ok,      kPromptWorking},
        {kJumperOut, {next},       next,    kPromptJumperOut},
        {kDuty,      {done},       done,    kPromptDuty},
        // clang-format on
    };
}

std::string Counts(float reading)
{
    return std::to_string(RoundHalfEven(static_cast<double>(reading)));
}

void ClearReadings()
{
    for (QFrame *readout : view.lblZeroAdjRdg)
        ClearReadout(readout);
    view.lblTarget->setText("");
    view.lblDistance->setText("");
}

// The parts at which the step works. Those in work in a state are marked, the jumper while it is in.
void ShowBoard(State state)
{
    using enum BoardPart::Kind;
    const bool balance = state == kSettle || state == kCompare || state == kAdjust;
    if (page.balanceOnly)
        ShowBoardParts({{Trimmer, "R9 (A)", state == kAdjust}});
    else
        ShowBoardParts({{TestPoint, "TP1", state == kAdjustR3},
                        {Trimmer, "R3", state == kAdjustR3},
                        {Jumper, "DC", balance || state == kJumperIn},
                        {Trimmer, "R10", state == kAdjust},
                        {Trimmer, "R25", state == kDuty}});
}

void ShowStart()
{
    ShowPageState(view.states, kReady, page.balanceOnly ? kPromptBalance : kPromptZero);
}

// ---- the work: each part returns false when the operator has left the step ----

bool Apply(const std::string &value)
{
    ShowPageState(view.states, kWorking);
    if (!ApplyInput(value) || Abort)
        return false;
    page.asked.push_back(value);
    page.reported.push_back(OutputConfirmed() ? GetLiveOutput().Value : "");
    return true;
}

bool AwaitClick(State state)
{
    page.wish = Wish::None;
    ShowBoard(state);
    ShowPageState(view.states, state);
    WaitForOperatorOrEscape([] { return page.wish != Wish::None; });
    return !Abort;
}

void ShowReading(std::size_t place, const std::string &text)
{
    page.taken[place] = !text.empty();
    if (text.empty()) {
        ShowTrouble(view.lblZeroAdjRdg[place], DisplayIsOverRange() ? "over range" : "silent");
        return;
    }
    page.readings[place] = static_cast<float>(Val(text));
    ShowLive(view.lblZeroAdjRdg[place], text);
}

// Its reading is followed no more; what says why there is none stays.
void Rest(std::size_t place)
{
    if (page.taken[place])
        Freeze(view.lblZeroAdjRdg[place]);
}

bool InputStood()
{
    return page.stood[0] && page.stood[1];
}

bool IsRead()
{
    return page.taken[0] && page.taken[1] && InputStood();
}

Prompt PromptOfRound(State state, int polarity, const std::string &recommended)
{
    const std::string value = std::string(polarity == 0 ? "+" : "-") + "10 mV ";
    if (state == kSettle)
        return {"Wait for " + value + "reading to settle, then click \"OK\"."};
    if (state == kCompare)
        return {"Wait for " + value +
                "reading to settle, then:\r\n\r\nClick \"Accept\" if the two readings are equal.\r\n"
                "Otherwise, click \"OK\"."};
    const std::string resistor = SCType == kAc2 ? "10" : "9 (A)";
    return {"Adjust R" + resistor + " for desired " + value +
            "reading, then click \"OK\".\r\n\r\n"
            "                     Recommended reading:  " +
            recommended};
}

// One round of the balance loop: the input of a polarity settles, is compared, or is adjusted to the mean of both.
bool ZeroAdjStep(State state, int polarity)
{
    const auto place = static_cast<std::size_t>(polarity);
    if (state != kAdjust) {
        if (!Apply(polarity == 0 ? "+10 mV" : "-10 mV"))
            return false;
        page.stood[place] = InputStands();
    }
    const std::int32_t recommended = RecommendedReading(page.readings[0], page.readings[1]);
    const std::string told = IsRead() ? std::to_string(recommended) : "none";
    // What the reading is turned to, or compared with.
    std::optional<float> aim;
    if (state == kAdjust && IsRead())
        aim = static_cast<float>(recommended);
    else if (state == kCompare && page.taken[1 - place])
        aim = page.readings[1 - place];
    if (state == kAdjust && Simulated())
        page.readings.fill(static_cast<float>(recommended));  // what an operator would have reached
    page.wish = Wish::None;
    ShowBoard(state);
    ShowPageState(view.states, state, PromptOfRound(state, polarity, told));
    Rest(1 - place);
    view.lblTarget->setText(state == kAdjust && aim ? Caption(told) : "");
    LiveReading live = DisplayInAdjustment();
    live.simulated = [place] { return Counts(page.readings[place]); };
    FollowReading(live, [place, aim](const std::string &text) {
        ShowReading(place, text);
        view.lblDistance->setText(aim && !text.empty() ? Caption(Counts(page.readings[place] - *aim)) : "");
    });
    Rest(place);
    page.accepted = page.wish == Wish::Accept && IsRead();
    return page.wish != Wish::None && !Abort;
}

bool Balance()
{
    page.readings = kSimulatedStart;
    page.taken = {};
    page.accepted = false;
    ClearReadings();
    int polarity = 0;
    if (!ZeroAdjStep(kSettle, polarity))
        return false;
    while (true) {
        polarity = 1 - polarity;
        if (!ZeroAdjStep(kCompare, polarity))
            return false;
        if (page.wish == Wish::Accept)
            return page.accepted;
        if (!ZeroAdjStep(kAdjust, polarity))
            return false;
    }
}

bool AdjustZero()
{
    if (!Apply("0 V") || !AwaitClick(kAdjustR3))
        return false;
    ShowPageState(view.states, kWorking);
    CalibratorStandby();
    return AwaitClick(kJumperIn);
}

void RunZeroAdjust()
{
    page.done = false;
    page.taken = {};
    page.accepted = false;
    page.asked.clear();
    page.reported.clear();
    if (!page.balanceOnly && !AdjustZero())
        return;
    if (!Balance())
        return;
    ShowPageState(view.states, kWorking);
    CalibratorStandby();
    if (SCType == kAc2 && (!AwaitClick(kJumperOut) || !Apply("2 mV, 300 Hz") || !AwaitClick(kDuty)))
        return;
    page.done = true;
}

void RecordEnd(const std::string &how)
{
    RecordOfStep("zero adjust", page.position,
                 {{"plus", page.taken[0] ? Counts(page.readings[0]) : ""},
                  {"minus", page.taken[1] ? Counts(page.readings[1]) : ""},
                  {"asked", page.asked},
                  {"reported", page.reported},
                  {"accepted", page.accepted}});
    StepEnd end;
    end.how = how;
    RecordStepEnded(page.position, end);
}

void LeaveZeroAdjust(Ended ended)
{
    const bool done = ended == Ended::Done && page.done;
    const bool unread = ended == Ended::Done && page.wish == Wish::Accept && !page.accepted;
    const std::string how = done      ? "accepted"
                            : !unread ? HowEnded(ended)
                                      : std::string(InputStood() ? "no reading" : kNoInput);
    ShowPageState(view.states, kWorking);
    CalibratorStandby();
    ClearReadings();
    RecordEnd(how);
    ShowBoard(kReady);
    ShowStart();
    if (ended == Ended::Fault)
        ShowPrompt(view.states, PromptOfFault(FaultWords()));
    else if (unread)
        ShowPrompt(view.states, InputStood() ? kPromptUnread : kPromptNoInput);
    if (done)
        NextStep();
}

// ---- the operator ----

void cmdZeroAdj_Click()
{
    if (view.states.now == kReady)
        RunPageProcedure(RunZeroAdjust, LeaveZeroAdjust, [] { RecordEnd("quit"); });
    else
        page.wish = Wish::Next;
}

void Ends(Wish wish)
{
    page.wish = wish;
    Disable(view.buttons.ok, view.buttons.accept);
    RequestStop();
}

void cmdDone_Click()
{
    page.wish = Wish::Next;
}

// ---- the way in, inside the navigator's procedure ----

void ShowZeroAdjustPage()
{
    page = ZeroAdjustPage();
    page.position = CurrentStepButton;
    page.balanceOnly = SCType == kAc3;
    SetPlainStep({});
    view.title->setText(page.balanceOnly ? "GAIN BALANCE" : "ZERO ADJUST");
    view.buttons.done->setVisible(!page.balanceOnly);
    ShowPage(kZeroAdjustPage);
    ClearReadings();
    ShowPageState(view.states, kOpening, page.balanceOnly ? kPromptBalance : kPromptZero);
    ApplySwitched("V");
    ShowConnectionDiagram(page.balanceOnly ? kWithDcJumper : 0);
    ShowBoard(kOpening);
    RecordStepOpened(page.position);
    const bool onRange = WriteRangeSetup(FilterCodeAtPosition(page.position), RangeCodeText(0), kReadingSetup);
    CalibratorStandby();
    if (onRange)
        ShowStart();
    else
        ShowPageState(view.states, kSilent);
}

// ---- the way it is built ----

QHBoxLayout *BuildReadings(QFrame *frame)
{
    constexpr const char *kHeads[] = {"+10 mV Reading", "-10 mV Reading"};
    auto *row = new QHBoxLayout;
    for (std::size_t i = 0; i < view.lblZeroAdjRdg.size(); ++i) {
        view.lblZeroAdjRdg[i] = Readout(frame, Indexed("lblZeroAdjRdg", static_cast<int>(i)));
        auto *column = new QVBoxLayout;
        column->addWidget(Label(frame, Indexed("lblZA", static_cast<int>(i)), kHeads[i]));
        column->addWidget(view.lblZeroAdjRdg[i]);
        row->addLayout(column);
    }
    return row;
}

void BuildZeroAdjustPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    view.title = Title(frame, "lblZeroAdjTitle");
    column->addWidget(view.title);
    column->addLayout(BuildReadings(frame));
    column->addLayout(AimRow(frame, "ZeroAdj", view.lblTarget, view.lblDistance));
    column->addStretch();
    QFrame *instruction = StatusBar(frame, "ZeroAdj", 4);
    column->addWidget(instruction);
    view.buttons = {Button(frame, "cmdZeroAdj", "Start", cmdZeroAdj_Click),
                    Button(
                        frame, "cmdZeroAdjOK", "OK", [] { Ends(Wish::Ok); }, "Alt+O"),
                    Button(
                        frame, "cmdZeroAdjAccept", "Accept", [] { Ends(Wish::Accept); }, "Alt+A"),
                    DoneButton(frame, 4, cmdDone_Click)};
    column->addLayout(ButtonRow({view.buttons.next, view.buttons.ok, view.buttons.accept, view.buttons.done}));
    view.states = {frame, instruction, TableOfStates()};
    ShowPageState(view.states, kOpening);
}

}  // namespace

void RegisterZeroAdjustPage()
{
    RegisterPage(kZeroAdjustPage, BuildZeroAdjustPage);
    RegisterSteps({Step::ZeroAdjust}, {ShowZeroAdjustPage, kZeroAdjustPage});
}

}  // namespace ombrix
