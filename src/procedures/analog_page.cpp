#include "procedures/analog_page.h"

#include "calibration/analog_journal.h"
#include "calibration/analog_output.h"
#include "links/meter_protocol.h"
#include "model/analog_settings.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "procedures/analog_view.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kAnalogPage = 12;
constexpr int kNone = -1;
constexpr int kCounterOutputMs = 500;
constexpr std::int32_t kHighestValue = 16777215;

// ---- what the page knows ----

// What was done at a point since the tab was opened.
struct PointWork {
    int rounds = 0;
    std::string typed;  // the last reading, as it came; "" none yet
    float error = 0;    // how far off it was
    bool open = false;  // written, and neither accepted nor told as left
};

struct AnalogPage {
    int point = kNone;  // that is put out and waits for readings
    int kind = kNone;   // the mode that the page has given the meter
    int connector = 1;  // where a dual DAC's cable was asked to be
    bool verify = false;
    bool cableDone = false;
    std::array<PointWork, kAnalogWords> work;
    Prompt told;  // what the work that just ended has to say
};
AnalogPage page;

PointWork &WorkOf(int point)
{
    return page.work[static_cast<std::size_t>(point)];
}

std::uint16_t &WordOf(int point)
{
    return analog.words[static_cast<std::size_t>(point)];
}

bool IsCounter()
{
    return SessionMeterKind == kCtr;
}

// ---- what it shows ----

void ShowOptions()
{
    ShowAnalogChoices({analog.dacType, page.kind, page.verify, AnalogCurrentPoint()});
}

std::string TitleOfPoint(int point)
{
    const std::string output = analog.dacType == kDacDual ? ", output " + std::to_string(AnalogConnector(point)) : "";
    return StepName(StepIdAtPosition(PositionOfAnalogPoint(point))) + output;
}

bool IsInside(int point, float error)
{
    return std::fabs(error) <= AnalogTolerance(point);
}

void ShowLastDistance()
{
    if (page.point == kNone || WorkOf(page.point).typed.empty())
        return ShowDistance("", false, "");
    const float error = WorkOf(page.point).error;
    const std::string unit = AnalogUnit(page.point);
    const bool inside = IsInside(page.point, error);
    ShowDistance((error > 0 ? "+" : "") + Format(error, 2) + unit, inside,
                 (inside ? "inside +/- " : "outside +/- ") + AnalogToleranceText(page.point) + unit);
}

void ShowPoint()
{
    if (page.point == kNone)
        ShowAnalogPoint("Analog Output", "", "");
    else
        ShowAnalogPoint(TitleOfPoint(page.point), AnalogEnterText(page.point),
                        AnalogDesiredText(page.point, AnalogCurrentPoint()));
    std::array<std::string, kAnalogWords> last;
    for (std::size_t point = 0; point < last.size(); ++point)
        last[point] = page.work[point].typed;
    ShowLastReadings(last);
    ShowLastDistance();
}

Prompt PromptOfPoint()
{
    const PointWork &work = WorkOf(page.point);
    if (work.typed.empty())
        return {"Type what the output meter shows, then press Enter"};
    const std::string word = "Word " + HexText(WordOf(page.point), 4) + " was sent. ";
    if (IsInside(page.point, work.error))
        return {word + "The reading was inside:\r\ngo on with \"Up\", or type another one"};
    return {word + "The reading was outside:\r\ntype what the output meter shows now"};
}

// The page between two clicks: what stands open, and what the work behind it has to say.
void ShowPlace()
{
    ShowOptions();
    ShowPoint();
    const AnalogState state = page.verify ? kAnalogVerify : page.point == kNone ? kAnalogNoPoint : kAnalogPoint;
    if (MeterLineIsGone())
        page.told = {"The meter's line is gone:\r\ncheck it, then click the step again", true};
    if (page.told.text.empty() && state == kAnalogPoint)
        page.told = PromptOfPoint();
    if (page.told.text.empty())
        ShowAnalogState(state);
    else
        ShowAnalogState(state, page.told);
    page.told = {};
}

void ClosePoint()
{
    page.point = kNone;
    HighlightStep(kNone);
}

// ---- cable and mode, inside a procedure ----

void AskForCable(int choice)
{
    page.cableDone = false;
    const bool either = choice == 4 && page.point != kNone;
    ShowCableText(AnalogCableText(choice),
                  either ? "This point is at connector " + std::to_string(AnalogConnector(page.point)) + "." : "");
    outlets.beep();
    ShowAnalogState(kAnalogCable);
    const WaitNote note("Waits for the output cable");
    WaitForOperator([] { return page.cableDone; });
    ShowAnalogState(kAnalogWorking);
}

// True when it has asked for a cable.
bool SelectMode(AnalogKind kind)
{
    SetAnalogMode(kind);
    page.kind = kind;
    ShowOptions();
    const auto choice = AnalogCableChoice(kind, analog.dacType);
    if (choice)
        AskForCable(*choice);
    if (page.point != kNone)
        page.connector = AnalogConnector(page.point);
    return choice.has_value();
}

void SelectModeOfPoint()
{
    if (AnalogPointKind(page.point) != page.kind) {
        SelectMode(AnalogPointKind(page.point));
    } else if (analog.dacType == kDacDual && AnalogConnector(page.point) != page.connector) {
        page.connector = AnalogConnector(page.point);
        AskForCable(page.connector);
    }
}

// ---- the meter taken and given back ----

// The words that the work overwrites are read before the first of them is written.
bool TakeMeter()
{
    if (AnalogSettingsBorrowed())
        return true;
    page.kind = kNone;
    LoadAnalogNominal();
    if (ReadAnalogWords() && BorrowAnalogSettings())
        return true;
    if (Abort)
        ShowAnalogState(kAnalogSilent, {"Stopped before the meter was read", true});
    else
        ShowAnalogState(kAnalogSilent);
    return false;
}

bool PrepareMeter()
{
    const bool prepared = AnalogSettingsBorrowed();
    if (!TakeMeter())
        return false;
    if (!prepared)
        PrepareAnalogTest("");
    return true;
}

void TellPointsLeft()
{
    for (int point = 0; point < kAnalogWords; ++point) {
        if (WorkOf(point).open)
            RecordAnalogEnded(point, "left", WorkOf(point).typed, WorkOf(point).error);
        WorkOf(point).open = false;
    }
}

bool GiveMeterBack()
{
    if (!AnalogSettingsBorrowed())
        return true;
    ShowAnalogState(kAnalogLeaving);
    TellPointsLeft();
    const GivenBack given = GiveBackAnalogSettings();
    RecordAnalogGivenBack(given);
    const std::string why = WhyNotGivenBack(given);
    page.kind = kNone;
    if (!why.empty())
        outlets.warnOperator(why, "Analog Output");
    return why.empty();
}

// ---- a typed reading ----

void WriteCorrection(const AnalogCorrection &correction)
{
    WriteAnalogPoint(page.point, HexText(correction.word, 4), "");
    WordOf(page.point) = correction.word;
    analog.bipolarDone = analog.bipolarDone || AnalogPointKind(page.point) == kBipolarOutput;
    analog.dualDone = analog.dualDone || AnalogConnector(page.point) == 2;
    OutputAnalogPoint(page.point, "");
    if (IsCounter())
        DelayMs(kCounterOutputMs);
}

void TakeReading(const std::string &typed, float reading)
{
    ShowAnalogState(kAnalogWorking);
    const std::uint16_t before = WordOf(page.point);
    const AnalogCorrection correction = CorrectAnalogWord(page.point, reading, before, AnalogCurrentPoint());
    if (!correction.refused.empty()) {
        outlets.warnOperator(correction.refused, "Value Out of Range");
        return;
    }
    PointWork &work = WorkOf(page.point);
    work.typed = typed;
    work.error = reading - static_cast<float>(AnalogTarget(page.point, AnalogCurrentPoint()));
    work.open = true;
    ShowPoint();
    if (!correction.overflow.empty())
        outlets.warnOperator(correction.overflow, correction.overflowTitle);
    WriteCorrection(correction);
    RecordAnalogRound(page.point, {++work.rounds, typed, before, correction.word, !correction.overflow.empty()});
    if (!correction.overflow.empty())
        page.told = {"The word is at its limit:\r\ncheck cable, output meter and DAC type", true};
    ClearTypedReading();
}

void txtRead_Commit(const std::string &text, CommitBy by)
{
    if (by != CommitBy::Enter || AnalogStateNow() != kAnalogPoint)
        return;
    const TypedReading typed = ParseTypedReading(text);
    if (!typed.trouble.empty())
        return ShowAnalogPrompt({typed.trouble, true});
    RunPageProcedure([&] { TakeReading(Trim(text), typed.value); }, [](Ended) { ShowPlace(); });
    SelectTyped();
}

// ---- Accept and Done ----

void AcceptWords()
{
    ShowAnalogState(kAnalogWorking);
    const std::string before = analog.image;
    const WordsHeld held = CheckAnalogWords();
    if (held == WordsHeld::Yes)
        BlendAnalogNominal();
    RecordAnalogWords(held == WordsHeld::Yes ? "accepted" : "not accepted", before, held);
    if (held == WordsHeld::No) {
        page.told = {"The meter holds other words than were written:\r\nread its points again", true};
        return;
    }
    if (held == WordsHeld::Silent) {
        page.told = {"The meter did not answer: nothing was accepted", true};
        return;
    }
    for (int point = 0; point < kAnalogWords; ++point) {
        if (WorkOf(point).open)
            RecordAnalogEnded(point, "accepted", WorkOf(point).typed, WorkOf(point).error);
        WorkOf(point).open = false;
    }
    page.told = {"Accepted: the station has learned from this meter's words"};
}

void cmdAccept_Click()
{
    RunPageProcedure(AcceptWords, [](Ended) { ShowPlace(); });
}

// Behind Done no step follows: the next one would calibrate all over again.
void cmdDone_Click()
{
    RunPageProcedure(
        [] { page.told = {}; },
        [](Ended) {
            ClosePoint();
            page.verify = false;
            if (GiveMeterBack())
                return OpenStep(kNone);
            ShowPoint();
            ShowAnalogState(kAnalogSilent, {"The meter's own settings are not back: click \"Done\" again", true});
        });
}

// ---- from point to point ----

bool MayOpen(int point)
{
    return !page.verify && HasAnalogPoint(analog.dacType, point);
}

// The next point that the meter has, +1 forward or -1 backward; beyond the ends there is none.
void MoveOn(int direction)
{
    int point = page.point == kNone && direction < 0 ? kNone : page.point + direction;
    while (point >= 0 && point < kAnalogWords && !MayOpen(point))
        point += direction;
    if (point >= 0 && point < kAnalogWords)
        OpenStep(PositionOfAnalogPoint(point));
}

void cmdUp_Click()
{
    MoveOn(1);
}

void cmdDown_Click()
{
    MoveOn(-1);
}

void cmdModal_Click()
{
    page.cableDone = true;
}

// ---- the choices ----

void PutOutPoint()
{
    if (page.point != kNone)
        OutputAnalogPoint(page.point, "");
}

void TakeDacType(int type)
{
    ShowAnalogState(kAnalogWorking);
    analog.dacType = type;
    DacTypeText = std::to_string(type);
    SaveAnaCal();
    PrepareAnalogTest("");
    if (page.point != kNone && !HasAnalogPoint(type, page.point))
        ClosePoint();
    PutOutPoint();
}

void optDAC_Click(int type)
{
    RunPageProcedure([type] { TakeDacType(type); }, [](Ended) { ShowPlace(); });
}

void optCOffCalibPt_Click(int index)
{
    RunPageProcedure(
        [index] {
            ShowAnalogState(kAnalogWorking);
            CurrentOffsetPoint = index == 1 ? "4000" : "200";
            SaveAnaCal();
            PutOutPoint();
        },
        [](Ended) { ShowPlace(); });
}

void optAnaMode_Click(int kind)
{
    RunPageProcedure(
        [kind] {
            ShowAnalogState(kAnalogWorking);
            ClearTypedValue();
            SelectMode(static_cast<AnalogKind>(kind));
        },
        [](Ended) { ShowPlace(); });
}

// ---- verifying: values put out by hand, no word changes ----

void BeginVerifying()
{
    ShowAnalogState(kAnalogWorking);
    page.verify = true;
    ClosePoint();
    ClearTypedValue();
    ShowPoint();
    const bool asked = page.kind == kNone && SelectMode(kVoltageOutput);
    if (analog.dacType == kDacDual && !asked)
        AskForCable(4);
}

void optCalVfy_Click(int index)
{
    RunPageProcedure(
        [index] {
            if (index == 1)
                return BeginVerifying();
            page.verify = false;
        },
        [](Ended) { ShowPlace(); });
}

void PutOutValue(std::int32_t value)
{
    ShowAnalogState(kAnalogWorking);
    OutputAnalogValue(value, "");
    page.told = {"The output meter should show " +
                 ExpectedAnalogReading(value, static_cast<AnalogKind>(page.kind), IsCounter())};
}

void txtMeterVal_Commit(const std::string &text, CommitBy by)
{
    if (by != CommitBy::Enter || AnalogStateNow() != kAnalogVerify)
        return;
    const double value = Val(text);
    if (text.empty() || value > kHighestValue)
        return ShowAnalogPrompt({"Type a whole number from 0 to " + std::to_string(kHighestValue), true});
    RunPageProcedure([value] { PutOutValue(static_cast<std::int32_t>(value)); }, [](Ended) { ShowPlace(); });
    SelectTyped();
}

// ---- the ways in, inside the navigator's procedure ----

void BringPageUp()
{
    ShowPage(kAnalogPage);
    ShowOptions();
    ShowAnalogState(kAnalogOpening);
}

void OpenTab()
{
    const bool owed = AnalogSettingsBorrowed();
    page = AnalogPage();
    LoadAnalogNominal();
    analog.bipolarDone = analog.dualDone = false;
    BringPageUp();
    ShowPoint();
    if (owed && !GiveMeterBack() && AnalogSettingsBorrowed())
        return ShowAnalogState(kAnalogSilent);
    if (PrepareMeter())
        ShowPlace();
}

void EnterPoint()
{
    page.point = AnalogPointAtPosition(CurrentStepButton);
    BringPageUp();
    ClearTypedReading();
    ShowPoint();
    if (!PrepareMeter()) {
        ClosePoint();
        return ShowPoint();
    }
    SelectModeOfPoint();
    OutputAnalogPoint(page.point, "");
    RecordAnalogOpened(page.point);
    ShowPlace();
}

void EnterInitNvmem()
{
    page.point = kNone;
    BringPageUp();
    ShowPoint();
    if (!TakeMeter())
        return;
    const WordsHeld held = RestoreForDac();
    if (held == WordsHeld::Yes)
        page.told = {"The nominal words are in the meter"};
    else if (held == WordsHeld::No)
        page.told = {"The meter did not take all nominal words:\r\nclick \"Init NVMEM\" again", true};
    else
        page.told = {"The meter did not answer:\r\nwhether it holds the nominal words isn't known", true};
    ShowPlace();
}

// All over again, from the nominal words and the first point on.
void EnterReCalibrate()
{
    page.point = kNone;
    page.verify = false;
    BringPageUp();
    if (!TakeMeter())
        return;
    TellPointsLeft();
    page.work = {};
    analog.bipolarDone = analog.dualDone = false;
    ShowPoint();
    RestoreAnalogWords();
    RecordAnalogWords("restored", analog.image, CheckAnalogWords());
    OpenStep(PositionOfAnalogPoint(0));
}

void EnterZeroInitFile()
{
    page.point = kNone;
    BringPageUp();
    const std::string before = StoredAnalogImage();
    const int dacBefore = analog.dacType;
    ResetAnalogNominal();
    LoadAnalogNominal();
    RecordAnalogWords("zeroed", before, WordsHeld::Yes);
    if (AnalogSettingsBorrowed() && analog.dacType != dacBefore)
        PrepareAnalogTest("");
    page.told = {"The station's nominal words are the built-in ones again;\r\nthe meter's words are as they were"};
    ShowPlace();
}

// "*": the raw words, and back again. A write there restarted the meter.
void cmdNVMWord_Click()
{
    const auto back = [] {
        BringPageUp();
        ShowPoint();
        PutOutPoint();
    };
    EnterRawWords({TakeOverAnalogWords, [back] { RunPageProcedure(back, [](Ended) { ShowPlace(); }); }});
}

void BuildAnalogPage(QFrame *frame)
{
    LivesWith(frame, page);
    BuildAnalogView(frame, {.typed = txtRead_Commit,
                            .value = txtMeterVal_Commit,
                            .dac = optDAC_Click,
                            .mode = optAnaMode_Click,
                            .calVfy = optCalVfy_Click,
                            .currentPoint = optCOffCalibPt_Click,
                            .up = cmdUp_Click,
                            .down = cmdDown_Click,
                            .accept = cmdAccept_Click,
                            .raw = cmdNVMWord_Click,
                            .done = cmdDone_Click,
                            .cable = cmdModal_Click});
}

}  // namespace

void RegisterAnalogPage()
{
    RegisterPage(kAnalogPage, BuildAnalogPage);
    TabRecord tab;
    tab.prepare = OpenTab;
    tab.leave = [] {
        GiveMeterBack();
        page.verify = false;
    };
    tab.lastWords = ZeroAnalogOutput;
    RegisterTab(kTabAnaCal, tab);

    StepRecord point{EnterPoint, kAnalogPage};
    point.allowed = [](int position) { return MayOpen(AnalogPointAtPosition(position)); };
    RegisterSteps({Step::VoltOffset, Step::VoltageGain, Step::CurrentOffset, Step::CurrentGain, Step::Minus10Volts,
                   Step::Plus10Volts},
                  point);
    RegisterSteps({Step::InitNvmem}, {EnterInitNvmem, kAnalogPage});
    StepRecord again{EnterReCalibrate, kAnalogPage};
    again.allowed = [](int) { return !page.verify; };
    RegisterSteps({Step::ReCalibrate}, again);
    RegisterSteps({Step::ZeroInitFile}, {EnterZeroInitFile, kAnalogPage});
}

}  // namespace ombrix
