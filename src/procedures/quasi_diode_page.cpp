#include "procedures/quasi_diode_page.h"

#include "calibration/learning.h"
#include "calibration/number_text.h"
#include "calibration/quasi_diode.h"
#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/calibrator.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "procedures/quasi_diode_view.h"
#include "session/journal.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/fields.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <cstddef>
#include <string>

namespace ombrix {
namespace {

constexpr int kQuasiDiodePage = 10;
constexpr int kRangeWord = 16;
constexpr int kReadingMs = 400;
constexpr char kInput[] = "0 CEL";
constexpr char kNoOffset[] = "0000";

// ---- what the page knows ----

enum class Action { None, Gain, Offset, Accept, Cancel };

struct QuasiDiodePage {
    int position = -1;
    bool offsetOnly = false;
    int type = 0;  // of thermocouple: 0 "J, K, E, N", 1 "T, R, S"
    std::string gainHex, offsetHex;
    DiodeWord gain, offset;
    bool offsetPhase = false;
    bool mayAccept = false;  // a correction was made since the gain began
    std::string reading;     // the last one that came, in display units
    std::string reported;    // what the calibrator said that it delivers
    int clicks = 0;
    Action action = Action::None;
};
QuasiDiodePage page;

const DiodeGroup &Group()
{
    return DiodeGroupOf(page.type);
}

float Target()
{
    return page.offsetPhase ? static_cast<float>(Val(QDTargetText)) : 0.0f;
}

float Reading()
{
    return static_cast<float>(Val(page.reading));
}

// ---- what it shows ----

enum State {
    kSelecting,
    kNoWords,
    kIdle,
    kApplying,
    kSettling,
    kSilent,
    kFirstGain,
    kGained,
    kOffset,
    kFirstOffset,
    kOffsetOnly,
    kWriting,
    kLeaving
};

QuasiDiodeView view;

const Prompt kPromptSelecting = {"The meter is put on the range and its words are read"};
const Prompt kPromptNoWords = {"The meter did not answer:\r\ncheck its line, then select a T/C type again", true};
const Prompt kPromptStopped = {"Stopped before the meter had answered:\r\nselect a T/C type again", true};
const Prompt kPromptApplying = {"The input is applied"};
const Prompt kPromptSettling = {"The meter is asked for a reading"};
const Prompt kPromptSilent = {"The meter fell silent: check its line,\r\nor click \"Cancel\"", true};
const Prompt kPromptOver = {"The display is over range: check input, jumpers and wires,\r\nor click \"Cancel\"", true};
const Prompt kPromptWriting = {"The word is written into the meter"};
const Prompt kPromptFirstGain = {"Click \"Gain\" when the DPM reading has settled."};
const Prompt kPromptFirstOffset = {"Click \"Offset\" when the DPM reading has settled."};
const Prompt kPromptGained = {"Wait until the DPM reading has settled, then click \"Offset\" to make fine\r\n"
                              "adjustment of QD offset, or click \"Gain\" to repeat the gain correction."};
const Prompt kPromptOffset = {"Wait until the DPM reading has settled, then click \"Offset\" to repeat the\r\n"
                              "offset correction, or click \"Gain\" to restart with the gain correction."};
const Prompt kPromptOffsetOnly = {"To repeat the offset correction, click \"Offset\"\r\n"
                                  "when the DPM reading has settled."};
const Prompt kPromptAgain = {"Click \"Ready\" to start over, or select alternate T/C type."};
const Prompt kPromptLeaving = {"Removing the input"};

Prompt PromptReady()
{
    return {"Select alternate T/C type, or set jumpers as shown and connect input\r\nto Calibrator, using Type " +
            std::string(Group().type) + " Thermocouple.  Then click \"Ready\"."};
}

std::vector<PageState> TableOfStates()
{
    QRadioButton *j = view.types[0];
    QRadioButton *t = view.types[1];
    QLineEdit *target = view.txtQDTarget[1];
    const auto [ready, gain, offset, accept, cancel, done] = view.buttons;
    return {
        // clang-format off
        // state        on                             keys to  prompt
        {kSelecting,   {},                             nullptr, kPromptSelecting},
        {kNoWords,     {j, t, done},                   nullptr, kPromptNoWords},
        {kIdle,        {ready, j, t, target, done},    ready,   kPromptAgain},
        {kApplying,    {cancel},                       cancel,  kPromptApplying},
        {kSettling,    {cancel},                       nullptr, kPromptSettling},
        {kSilent,      {cancel},                       cancel,  kPromptSilent},
        {kFirstGain,   {gain, cancel},                 gain,    kPromptFirstGain},
        {kGained,      {gain, offset, accept, cancel}, offset,  kPromptGained},
        {kOffset,      {gain, offset, accept, cancel}, offset,  kPromptOffset},
        {kFirstOffset, {offset, cancel},               offset,  kPromptFirstOffset},
        {kOffsetOnly,  {offset, accept, cancel},       offset,  kPromptOffsetOnly},
        {kWriting,     {cancel},                       nullptr, kPromptWriting},
        {kLeaving,     {cancel},                       nullptr, kPromptLeaving},
        // clang-format on
    };
}

// What the operator can do as soon as a reading is there.
State StateOfWork()
{
    if (page.offsetOnly)
        return page.mayAccept ? kOffsetOnly : kFirstOffset;
    if (!page.mayAccept)
        return kFirstGain;
    return page.offsetPhase ? kOffset : kGained;
}

void ShowWords()
{
    view.lblQDGain->setText(Caption(page.gainHex));
    view.lblQDOffset->setText(Caption(page.offsetHex));
}

// The word that the last click was for.
void ShowInWork(Action action)
{
    const Use gain = action == Action::Gain ? Use::InWork : Use::Idle;
    const Use offset = action == Action::Offset ? Use::InWork : Use::Idle;
    ShowUse(view.buttons.gain, gain);
    ShowUse(view.shpQDTarget[0], gain);
    ShowUse(view.buttons.offset, offset);
    ShowUse(view.shpQDTarget[1], offset);
}

void ShowError(const char *text)
{
    ShowStatusBar(view.shpQDError, text, Red());
}

void HideError()
{
    ShowStatusBar(view.shpQDError, "", Red());
}

void ClearReadings()
{
    ClearReadout(view.lblQDReading);
    ClearReadout(view.lblQDDistance);
    view.lblQDPrevGain->clear();
    view.lblQDPrevOffset->clear();
}

void ShowReading()
{
    ShowLive(view.lblQDReading, page.reading);
    ShowLive(view.lblQDDistance, Format(static_cast<double>(Reading() - Target()), 2));
}

void FreezeReadings()
{
    Freeze(view.lblQDReading);
    Freeze(view.lblQDDistance);
}

void TakeReading(const std::string &text)
{
    page.reading = text;
    ShowReading();
    if (page.action == Action::None && view.states.now != StateOfWork())
        ShowPageState(view.states, StateOfWork());
}

// What is computed from a reading waits for the next one.
void TellMissed(Following why)
{
    const bool over = why == Following::OverRange;
    ShowTrouble(view.lblQDReading, over ? "over range" : "silent");
    Freeze(view.lblQDDistance);
    if (page.action == Action::None)
        ShowPageState(view.states, kSilent, over ? kPromptOver : kPromptSilent);
}

// ---- the step in work, as learning and the journal see it ----

void SetStep(bool offset)
{
    PlainStep plain;
    plain.word = offset ? Group().offsetWord : Group().gainWord;
    plain.target = RoundHalfEven(static_cast<double>(Target()) * 10);
    plain.value = kInput;
    plain.offset = offset;
    plain.wordHex = offset ? page.offsetHex : page.gainHex;
    SetPlainStep(plain);
}

// Tenths of a degree, as a display of one decimal counts.
std::int32_t ErrorCounts()
{
    return RoundHalfEven(static_cast<double>(Reading() - Target()) * 10);
}

void RecordClick(const std::string &before, const DiodeCorrection &correction)
{
    RoundRecord round;
    round.number = ++page.clicks;
    round.asked = {kInput};
    round.reported = {page.reported};
    round.before = {page.reading};
    round.wordBefore = before;
    round.word = correction.hex;
    round.limited = correction.limited;
    round.error = ErrorCounts();
    RecordRound(page.position, round);
}

void RecordEnd(const std::string &how)
{
    SetStep(page.offsetOnly);
    Record("quasi-diode", {{"step", StepName(CurrentStepId)},
                           {"board", BoardName(SCType)},
                           {"position", page.position},
                           {"type", Group().name},
                           {"gain", page.gainHex},
                           {"offset", page.offsetHex},
                           {"target", QDTargetText}});
    StepEnd end;
    end.how = how;
    end.word = GetStepWordHex();
    if (how == "accepted")
        end.reading = {page.reading};
    end.error = ErrorCounts();
    RecordStepEnded(page.position, end);
}

// ---- one click ----

void WriteWord(int word, const std::string &hex)
{
    ShowPageState(view.states, kWriting);
    WriteNvmWords(word, hex, "");
}

// The gain is trimmed without any offset.
void ClearOffset()
{
    const std::string before = page.offsetHex;
    page.offset = DiodeWord();
    page.offsetHex = kNoOffset;
    view.lblQDPrevOffset->clear();
    ShowWords();
    WriteWord(Group().offsetWord, page.offsetHex);
    Record("words written",
           {{"words", std::vector{HexText(Group().offsetWord, 2)}}, {"before", before}, {"to", page.offsetHex}});
}

void BackToGain()
{
    page.offsetPhase = page.mayAccept = false;
    page.gain.first = page.offset.first = true;
    AimDiodeSimulator(0);
}

void CorrectGain()
{
    if (page.offsetPhase)
        return BackToGain();
    SetStep(false);
    const std::string before = page.gainHex;
    const DiodeCorrection correction = CorrectDiodeGain(page.gain, Group().nominalGain, Reading());
    view.lblQDPrevGain->setText(Caption(before));
    page.gainHex = correction.hex;
    ShowWords();
    WriteWord(Group().gainWord, page.gainHex);
    RecordClick(before, correction);
    page.mayAccept = true;
}

void CorrectOffset()
{
    page.offsetPhase = true;
    AimDiodeSimulator(Target());
    if (DiodeReadingIsOut(Reading())) {
        ShowError("Out of Range");
        page.reading = Format(HoldDiodeReading(Reading()), 0);
        ShowReading();
        FreezeReadings();
    }
    SetStep(true);
    const std::string before = page.offsetHex;
    const DiodeCorrection correction = CorrectDiodeOffset(page.offset, Target(), Reading());
    if (correction.limited)
        ShowError("CALQDOF Overflow");
    view.lblQDPrevOffset->setText(Caption(before));
    page.offsetHex = correction.hex;
    ShowWords();
    WriteWord(Group().offsetWord, page.offsetHex);
    RecordClick(before, correction);
    page.mayAccept = true;
}

void Act()
{
    HideError();
    if (page.action != Action::Gain && page.action != Action::Offset)
        return;
    const Action action = page.action;
    action == Action::Gain ? CorrectGain() : CorrectOffset();
    CalmDiodeSimulator();
    if (page.action == action)  // a Cancel meanwhile holds
        page.action = Action::None;
}

// ---- the trimming ----

void FollowDiode()
{
    ShowPageState(view.states, kSettling);
    LiveReading live;
    live.everyMs = kReadingMs;
    live.read = TryDisplayOrStop;
    live.missed = TellMissed;
    FollowReading(live, TakeReading);
    FreezeReadings();
    if (page.action == Action::None)  // Esc
        page.action = Action::Cancel;
}

bool Ends()
{
    return page.action == Action::Accept || page.action == Action::Cancel || Abort;
}

void BeginTrimming()
{
    page.action = Action::None;
    page.clicks = 0;
    page.mayAccept = false;
    page.offsetPhase = page.offsetOnly;
    page.gain.first = page.offset.first = true;
    StirDiodeSimulator();
    AimDiodeSimulator(Target());
    ShowPageState(view.states, kApplying);
    SelectThermocouple(Group().rangeIndex);
    page.reported = OutputConfirmed() ? GetLiveOutput().Value : "";
}

void TrimDiode()
{
    BeginTrimming();
    while (!Ends()) {
        if (!page.offsetPhase && page.gain.first)
            ClearOffset();
        if (!Ends())
            FollowDiode();
        if (!Abort)
            Act();
    }
}

void LeaveTrimming(Ended ended)
{
    ShowPageState(view.states, kLeaving);
    CalibratorStandby();
    const bool accepted = ended == Ended::Done && page.action == Action::Accept;
    RecordEnd(accepted ? "accepted" : HowEnded(ended));
    if (accepted && !page.offsetOnly)
        UpdateNominalWordFor(Group().gainWord, page.gainHex, false);
    ShowInWork(Action::None);
    HideError();
    ClearReadings();
    if (ended == Ended::Fault)
        ShowPageState(view.states, kIdle, PromptOfFault(FaultWords()));
    else
        ShowPageState(view.states, kIdle);
}

void NoteQuit()
{
    RecordEnd("quit");
}

// ---- the type of thermocouple ----

bool PutMeterOnRange()
{
    const std::string code = RangeCodeText(Group().rangeIndex);
    if (SCType == kTc)
        return WriteBoardConfigWords(code);
    WriteNvmWords(kRangeWord, "00" + code, "");
    return true;
}

// The meter goes on the range of the type and tells both words. Without them there is nothing to trim.
void SelectType()
{
    ShowPageState(view.states, kSelecting);
    ShowConnectionDiagram(Group().rangeIndex);
    page.gainHex = page.offsetHex = "";
    ShowWords();
    const std::string words = PutMeterOnRange() && !Abort ? ReadNvmWords(Group().gainWord, 2, "") : "";
    if (words.empty() || Abort)
        return;
    page.gainHex = Left(words, 4);
    page.offsetHex = Right(words, 4);
    page.gain = {static_cast<float>(HexValue(page.gainHex))};
    page.offset = {static_cast<float>(static_cast<std::int16_t>(HexValue(page.offsetHex)))};
    ShowWords();
    SetStep(page.offsetOnly);
    RecordStepOpened(page.position);
}

void LeaveSelecting(Ended ended)
{
    if (!page.gainHex.empty())
        ShowPageState(view.states, kIdle, PromptReady());
    else
        ShowPageState(view.states, kNoWords, ended == Ended::Stopped ? kPromptStopped : kPromptNoWords);
    if (ended == Ended::Fault)
        ShowPrompt(view.states, PromptOfFault(FaultWords()));
}

// ---- the operator: wishes only, the procedure does the work ----

void optTCType_Click(int type)
{
    page.type = type;
    RunPageProcedure(SelectType, LeaveSelecting);
}

void cmdQDReady_Click()
{
    RunPageProcedure(TrimDiode, LeaveTrimming, NoteQuit);
}

void Wants(Action action, State state)
{
    page.action = action;
    ShowPageState(view.states, state);
    RequestStop();
}

void cmdQDGain_Click()
{
    ShowInWork(Action::Gain);
    Wants(Action::Gain, kWriting);
}

void cmdQDOffset_Click()
{
    ShowInWork(Action::Offset);
    Wants(Action::Offset, kWriting);
}

// "Accept" and "Cancel". Cancel also ends the wait for an input that nobody confirms.
void cmdQDStop_Click(int index)
{
    if (view.states.now == kApplying || view.states.now == kLeaving)
        StopWork();
    else
        Wants(index == 0 ? Action::Accept : Action::Cancel, kLeaving);
}

void LeavePage(Ended)
{
    ShowPageState(view.states, kSelecting, kPromptLeaving);
    CalibratorStandby();
    ShowPageState(view.states, page.gainHex.empty() ? kNoWords : kIdle);
    if (!page.offsetOnly)
        NextStep();
}

void cmdQDDone_Click()
{
    RunPageProcedure([] {}, LeavePage);
}

void txtQDTarget_Commit(const std::string &text)
{
    const std::string target = NormaliseNumberText(text, QDTargetText, 2, 4);
    SetField(view.txtQDTarget[1], target);
    if (target == QDTargetText)
        return;
    QDTargetText = target;
    SaveQDTarget();
}

// ---- the way in, inside the navigator's procedure ----

void EnterQuasiDiodePage()
{
    page = QuasiDiodePage();
    page.position = CurrentStepButton;
    page.offsetOnly = CurrentStepId == Step::OffsetOnly;
    view.title->setText("QUASI-DIODE GAIN AND OFFSET");
    SetOption(view.types[0], true);
    SetField(view.txtQDTarget[1], QDTargetText);
    ClearReadings();
    HideError();
    ShowInWork(Action::None);
    ShowPageState(view.states, kSelecting);
    ShowPage(kQuasiDiodePage);
    SelectType();
    LeaveSelecting(Abort ? Ended::Stopped : Ended::Done);
}

// ---- the way it is built ----

void BuildQuasiDiodePage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    view = BuildQuasiDiodeView(frame, {optTCType_Click, cmdQDReady_Click, cmdQDGain_Click, cmdQDOffset_Click,
                                       cmdQDStop_Click, cmdQDDone_Click, txtQDTarget_Commit});
    view.states.rows = TableOfStates();
    ShowPageState(view.states, kSelecting);
}

}  // namespace

void RegisterQuasiDiodePage()
{
    StepRecord quasiDiode{EnterQuasiDiodePage, kQuasiDiodePage};
    quasiDiode.takesInput = true;
    RegisterPage(kQuasiDiodePage, BuildQuasiDiodePage);
    RegisterSteps({Step::GainOffset, Step::OffsetOnly}, quasiDiode);
}

}  // namespace ombrix
