#include "procedures/rtd_page.h"

#include "calibration/memory_journal.h"
#include "calibration/number_text.h"
#include "calibration/readings.h"
#include "calibration/rtd_current.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
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
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace ombrix {
namespace {

constexpr int kRtdPage = 9;
constexpr int kDiagramRow = 8;
constexpr int kReadingMs = 500;
constexpr int kFirstThermometerWord = 42;
constexpr char kMiddleOfThermometers[] = "800080008000800080008000";  // words 42 to 37
constexpr char kRangeCode[] = "50";
constexpr int kSamples = 1;

// ---- what the page knows ----

enum class Action { None, Again, Done };

struct RtdPage {
    int position = -1;
    std::string desired;   // reading, and temperature for the calibrator
    std::string word;      // now in the meter, "" when it could not be read
    std::string reading;   // the last one
    std::string reported;  // what the calibrator said that it delivers
    bool applied = false;  // it stands on the terminals, as far as anybody knows
    bool onRange = false;  // the meter was put on its range, so navigation is held until Done
    int rounds = 0;
    Action action = Action::None;
};
RtdPage page;

// ---- what it shows ----

enum State { kEntering, kNoWord, kFresh, kApplying, kPutting, kReading, kWriting, kFollowing, kPaused, kLeaving };

struct View {
    QLabel *lblCALISRC;
    QFrame *lblISReading, *lblISError;
    QLineEdit *desired;
    QPushButton *calib, *done;
    PageStates states;
};
View view;

const Prompt kPromptEntering = {"The meter's word is read and the input is applied"};
const Prompt kPromptNoWord = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptNoRange = {"The meter did not answer:\r\ncheck its line, then click \"Calibrate\" again", true};
const Prompt kPromptStopped = {"Stopped before the meter had answered:\r\nclick the step again"};
const Prompt kPromptNoInput = {"The input was not applied:\r\nthe next correction applies it first", true};
const Prompt kPromptBegin = {"Click \"Calibrate\" to begin calibration"};
const Prompt kPromptAgain = {"Click \"ReCalib\" to recalibrate"};
const Prompt kPromptLimited = {"Required correction exceeds allowable range", true};
const Prompt kPromptApplying = {"The input is applied"};
const Prompt kPromptPutting = {"The meter is put on its range"};
const Prompt kPromptReading = {"The meter is asked for a reading"};
const Prompt kPromptWriting = {"The word is written into the meter"};
const Prompt kPromptLeaving = {"The meter gets its own setup back"};
const Prompt kPromptSilent = {"The meter fell silent: check its line", true};
const Prompt kPromptOver = {"The display is over range: check input, jumpers and wires", true};

std::vector<PageState> TableOfStates()
{
    const auto [calib, done, desired] = std::tuple{view.calib, view.done, view.desired};
    return {
        // clang-format off
        // state     on                      keys to  prompt           not seen  captions
        {kEntering,  {},                     nullptr, kPromptEntering, {},       {{calib, "Calibrate"}}},
        {kNoWord,    {done},                 nullptr, kPromptNoWord,   {},       {{calib, "Calibrate"}}},
        {kFresh,     {calib, done, desired}, calib,   kPromptBegin,    {},       {{calib, "Calibrate"}}},
        {kApplying,  {},                     nullptr, kPromptApplying},
        {kPutting,   {},                     nullptr, kPromptPutting,  {},       {{calib, "ReCalib"}}},
        {kReading,   {calib, done},          nullptr, kPromptReading},
        {kWriting,   {},                     nullptr, kPromptWriting},
        {kFollowing, {calib, done},          calib,   kPromptAgain},
        {kPaused,    {calib, done, desired}, calib,   kPromptAgain,    {},       {{calib, "ReCalib"}}, Navigation::Held},
        {kLeaving,   {},                     nullptr, kPromptLeaving},
        // clang-format on
    };
}

std::int32_t ErrorCounts()
{
    return RoundHalfEven(static_cast<double>(RtdCounts(page.reading) - RtdCounts(page.desired)));
}

void ShowWord()
{
    view.lblCALISRC->setText(Caption(page.word));
}

void ShowReading(const std::string &text)
{
    page.reading = text;
    ShowLive(view.lblISReading, text);
    ShowLive(view.lblISError, std::to_string(ErrorCounts()));
}

void FreezeReading()
{
    Freeze(view.lblISReading);
    Freeze(view.lblISError);
}

void TellMissed(Following why)
{
    const bool over = why == Following::OverRange;
    ShowTrouble(view.lblISReading, over ? "over range" : "silent");
    Freeze(view.lblISError);
    ShowPrompt(view.states, over ? kPromptOver : kPromptSilent);
}

// The reading is blank; the page is as it was when it was opened.
void ResetRtdSourcePage()
{
    page.onRange = false;
    page.rounds = 0;
    page.reading.clear();
    ClearReadout(view.lblISReading);
    ClearReadout(view.lblISError);
    ShowPageState(view.states, kFresh);
}

// ---- the step in work, as the journal sees it ----

void SetStep()
{
    PlainStep plain;
    plain.word = kRtdCurrentWord;
    plain.target = RoundHalfEven(static_cast<double>(RtdCounts(page.desired)));
    plain.value = page.desired + " FAR";
    plain.wordHex = page.word;
    SetPlainStep(plain);
}

void RecordStep(const std::string &before, const std::string &reading, bool limited)
{
    RoundRecord round;
    round.number = ++page.rounds;
    round.asked = {GetCalValue()};
    round.reported = {page.reported};
    round.before = {reading};
    round.wordBefore = before;
    round.word = page.word;
    round.limited = limited;
    round.error = ErrorCounts();
    RecordRound(page.position, round);
}

// The gains of the thermometers stand in the middle, so that the current alone is trimmed.
void PutThermometersInTheMiddle()
{
    WriteNvmWords(kFirstThermometerWord, kMiddleOfThermometers, "");
    RecordWordsWritten(StepName(Step::RtdCurrent), {{kFirstThermometerWord, kMiddleOfThermometers}});
}

void RecordEnd(const std::string &how)
{
    StepEnd end;
    end.how = how;
    end.word = page.word;
    if (how == "accepted")
        end.reading = {page.reading};
    end.error = ErrorCounts();
    RecordStepEnded(page.position, end);
}

// ---- the trimming ----

// False when the operator or the calibrator's line has not let it.
bool ApplyDesired()
{
    ShowPageState(view.states, kApplying);
    page.applied = ApplyFahrenheit(page.desired);
    page.reported = page.applied && OutputConfirmed() ? GetLiveOutput().Value : "";
    return page.applied;
}

bool PutMeterOnRange()
{
    ShowPageState(view.states, kPutting);
    PutThermometersInTheMiddle();
    page.onRange = !Abort && WriteRangeSetup(FilterCodeAtPosition(page.position), kRangeCode, kSamples);
    return page.onRange && !Abort;
}

// One reading, one step of the word. Nothing is written and nothing returned without a reading; else whether the word was
// held at its end.
std::optional<bool> CorrectCurrent()
{
    ShowPageState(view.states, kReading);
    const std::string reading = AwaitDisplay(TellMissed);
    if (reading == kStop || Abort)
        return std::nullopt;
    ShowReading(reading);
    FreezeReading();
    CalmRtdSimulator();
    const auto now = static_cast<std::int32_t>(HexValue(page.word));
    const RtdStep step = StepRtdCurrent(now, RtdCounts(page.desired), RtdCounts(reading));
    const std::string before = page.word;
    page.word = HexText(step.word, 4);
    ShowWord();
    ShowPageState(view.states, kWriting);
    WriteNvmWords(kRtdCurrentWord, page.word, "");
    SetStep();
    RecordStep(before, reading, step.limited);
    return step.limited;
}

// Of the step behind him and of the reading that stands.
Prompt PromptOfStep(bool limited)
{
    Prompt prompt = limited ? kPromptLimited : kPromptAgain;
    if (!IsFarFromTarget(RtdCounts(page.reading), GetTargetCounts()))
        return prompt;
    return {prompt.text + "\r\n" + std::string(kReadingIsFar), true};
}

// The simulated meter isn't asked again: its reading stands.
void FollowCurrent(bool limited)
{
    ShowPageState(view.states, kFollowing, PromptOfStep(limited));
    LiveReading live;
    live.everyMs = kReadingMs;
    live.read = TryDisplayOrStop;
    live.simulated = [] { return page.reading; };
    live.missed = TellMissed;
    FollowReading(live, [limited](const std::string &text) {
        std::string digits = text;
        std::erase(digits, '.');
        ShowReading(digits);
        ShowPrompt(view.states, PromptOfStep(limited));
    });
    FreezeReading();
}

void CalibrateCurrent()
{
    page.action = Action::None;
    if (!page.applied && !ApplyDesired())
        return;
    if (!page.onRange && !PutMeterOnRange())
        return;
    do {
        page.action = Action::None;
        const std::optional<bool> limited = CorrectCurrent();
        if (limited && page.action == Action::None && !Abort)
            FollowCurrent(*limited);
    } while (page.action == Action::Again && !Abort);
}

void FinishStep()
{
    ShowPageState(view.states, kLeaving);
    LoadFactoryMeterSetup();
    RecordEnd(page.rounds > 0 ? "accepted" : "stopped");
    ResetRtdSourcePage();
    NextStep();
}

// The page as it waits for the next click, with what the last one came to.
void WaitForCalib(Ended ended)
{
    if (page.onRange)
        ShowPageState(view.states, kPaused);
    else
        ShowPageState(view.states, kFresh);
    if (ended == Ended::Fault)
        ShowPrompt(view.states, PromptOfFault(FaultWords()));
    else if (!page.applied)
        ShowPrompt(view.states, kPromptNoInput);
}

void LeaveCalibrating(Ended ended)
{
    FreezeReading();
    if (ended != Ended::Done)
        RecordEnd(HowEnded(ended));
    if (ended == Ended::Done && page.action == Action::Done)
        return FinishStep();
    WaitForCalib(ended);
    if (ended == Ended::Done && !page.onRange)
        ShowPrompt(view.states, kPromptNoRange);
}

void NoteQuit()
{
    RecordEnd("quit");
}

// ---- the operator ----

bool Follows()
{
    return view.states.now == kReading || view.states.now == kFollowing;
}

void cmdISCalib_Click()
{
    page.action = Action::Again;
    if (Follows())
        RequestStop();
    else
        RunPageProcedure(CalibrateCurrent, LeaveCalibrating, NoteQuit);
}

void cmdISDone_Click()
{
    page.action = Action::Done;
    if (Follows())
        RequestStop();
    else
        RunPageProcedure([] {}, LeaveCalibrating);
}

void lblISReading_Click()
{
    RequestStop();
}

void txtISDesired_Commit(const std::string &text)
{
    page.desired = NormaliseNumberText(text, page.desired, 1, 4);
    SetField(view.desired, page.desired);
    SetStep();
    if (page.desired == RtdDesiredText && page.applied)
        return;
    RtdDesiredText = page.desired;
    SaveISource();
    AimRtdSimulator(page.desired);
    RunPageProcedure([] { ApplyDesired(); }, WaitForCalib);
}

// ---- the way in, inside the navigator's procedure ----

void TakeDesired()
{
    page.desired = RtdDesiredFrom(RtdDesiredText);
    if (page.desired != RtdDesiredText) {
        RtdDesiredText = page.desired;
        SaveISource();
    }
    SetField(view.desired, page.desired);
}

void EnterRtdPage()
{
    page = RtdPage();
    page.position = CurrentStepButton;
    ShowWord();
    ResetRtdSourcePage();
    ShowPageState(view.states, kEntering);
    ShowPage(kRtdPage);
    ShowConnectionDiagram(kDiagramRow);
    SelectRtd();
    TakeDesired();
    page.word = ReadNvmWords(kRtdCurrentWord, 1, "");
    ShowWord();
    SetStep();
    AimRtdSimulator(page.desired);
    if (Abort)
        return ShowPageState(view.states, kNoWord, kPromptStopped);
    if (page.word.empty())
        return ShowPageState(view.states, kNoWord);
    RecordStepOpened(page.position);
    ApplyDesired();
    WaitForCalib(Ended::Done);
}

// ---- the way it is built ----

QGridLayout *BuildSettings(QFrame *frame)
{
    auto *grid = new QGridLayout;
    view.lblCALISRC = Title(frame, "lblCALISRC");
    view.desired = Field(frame, "txtISDesired", NumberKeys(),
                         [](const std::string &text, CommitBy) { txtISDesired_Commit(text); });
    view.desired->setToolTip("Degrees Fahrenheit: applied by the calibrator, and what the display is to show.\n"
                             "To change it while the reading is followed, click the reading first.");
    QFont font = view.lblCALISRC->font();
    view.desired->setFont(font);
    view.desired->setMaximumWidth(QFontMetrics(font).horizontalAdvance("-8888.8") * 2);
    grid->addWidget(Label(frame, "lblISDesired", "Desired Reading (°F)"), 0, 0);
    grid->addWidget(view.desired, 0, 1);
    grid->addWidget(Label(frame, "lblCALISRCName", "CALISRC"), 1, 0);
    grid->addWidget(view.lblCALISRC, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(24);
    grid->setVerticalSpacing(12);
    return grid;
}

QHBoxLayout *BuildReadouts(QFrame *frame)
{
    view.lblISReading = Readout(frame, "lblISReading");
    view.lblISError = Readout(frame, "lblISError");
    OnClick(view.lblISReading->findChild<QLabel *>("lblISReading"), lblISReading_Click);
    auto *row = new QHBoxLayout;
    row->addWidget(Label(frame, "lblISReadingCaption", "Reading"));
    row->addWidget(view.lblISReading, 2);
    row->addSpacing(24);
    row->addWidget(Label(frame, "lblISErrorCaption", "Error"));
    row->addWidget(view.lblISError, 1);
    return row;
}

void BuildRtdPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    QLabel *title = Title(frame, "lblISrc(0)");
    title->setText("RTD CURRENT SOURCE");
    column->addWidget(title);
    column->addStretch(1);
    column->addLayout(BuildSettings(frame));
    column->addStretch(1);
    column->addLayout(BuildReadouts(frame));
    column->addStretch(1);
    QFrame *instruction = Instruction(frame, 3, 2);
    column->addWidget(instruction);
    view.calib = Button(frame, "cmdISCalib", "Calibrate", cmdISCalib_Click, "Alt+R");
    view.done = Button(frame, "cmdISDone", "Done", cmdISDone_Click, "Alt+D");
    column->addLayout(ButtonRow({view.calib, view.done}));
    view.states = {frame, instruction, TableOfStates()};
    ResetRtdSourcePage();
}

}  // namespace

void RegisterRtdPage()
{
    RegisterPage(kRtdPage, BuildRtdPage);
    RegisterSteps({Step::RtdCurrent}, {EnterRtdPage, kRtdPage});
}

}  // namespace ombrix
