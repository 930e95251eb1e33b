#include "procedures/analog_page.h"

#include "calibration/analog_output.h"
#include "links/meter_protocol.h"
#include "model/analog_settings.h"
#include "model/settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "procedures/analog_meter.h"
#include "procedures/analog_view.h"
#include "procedures/analog_work.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kAnalogPage = 12;
constexpr int kNoStep = -1;
constexpr int kCounterOutputMs = 500;
constexpr int kEitherConnector = 4;  // the cable of a dual DAC
constexpr std::int32_t kHighestValue = 16777215;

const Prompt kPromptOwed = {"The meter's own settings are not back: click \"Done\" again", true};

AnalogPage &page = analogPage;

std::uint16_t &WordOf(int point)
{
    return analog.words[static_cast<std::size_t>(point)];
}

std::string WordText(std::uint16_t word)
{
    return HexText(word, 4);
}

bool IsCounter()
{
    return SessionMeterKind == kCtr;
}

// ---- how work begins and ends ----

// The round in work, also one that was broken off, while its point is known.
void TellRound()
{
    if (page.round)
        RecordAnalogRound(page.point, *page.round);
    page.round.reset();
}

// A stop leaves nothing put out. Which mode and which cable there are is not known any more.
void LeaveStopped()
{
    ClosePoint();
    ForgetTyped();
    page.verify = false;
    page.kind = kNoMode;
    page.cable.reset();
    if (AnalogSettingsBorrowed())
        OutputAnalogValue(0, "");
    page.told = {"Stopped: no point is put out any more"};
}

void Leave(Ended ended)
{
    if (ended == Ended::Fault)
        page.told = {FaultWords(), true};
    ShowPlace();
}

void LeaveWork(Ended ended)
{
    TellRound();
    if (ended == Ended::Stopped)
        LeaveStopped();
    Leave(ended);
}

// What a click starts between the way in and Done.
void Work(const std::function<void()> &work)
{
    RunPageProcedure(
        [&] {
            ShowAnalogState(kAnalogWorking);
            work();
        },
        LeaveWork);
}

// ---- cable and mode, inside a procedure ----

void AskForCable(int choice)
{
    page.cableDone = false;
    const bool either = choice == kEitherConnector && page.point != kNoPoint;
    ShowCableText(AnalogCableText(choice),
                  either ? "This point is at connector " + std::to_string(AnalogConnector(page.point)) + "." : "");
    outlets.beep();
    ShowAnalogState(kAnalogCable);
    const WaitNote note("Waits for the output cable");
    WaitForOperator([] { return page.cableDone; });
    page.cable = choice;
    if (choice == kEitherConnector)
        page.cable = either ? std::optional(AnalogConnector(page.point)) : std::nullopt;
    ShowAnalogState(kAnalogWorking);
}

// True when it has asked for a cable. A stop during the write asks for none: LeaveStopped forgets the mode.
bool SelectMode(AnalogKind kind)
{
    SetAnalogMode(kind);
    page.kind = kind;
    ShowOptions();
    const auto choice = AnalogCableChoice(kind, analog.dacType);
    if (choice && !Abort)
        AskForCable(*choice);
    return choice.has_value();
}

void SelectModeOfPoint()
{
    const auto needed = AnalogCableOfPoint(page.point, analog.dacType);
    if (AnalogPointKind(page.point) != page.kind)
        SelectMode(AnalogPointKind(page.point));
    else if (needed && needed != page.cable)
        AskForCable(*needed);
}

// ---- a typed reading ----

void TellWord(WordsHeld held, const AnalogCorrection &correction)
{
    const std::string word = WordText(correction.word);
    if (held == WordsHeld::Silent)
        page.told = {"The meter did not answer: whether it holds word " + word + " isn't known.\r\n" +
                         "Check its line, then type what the output meter shows",
                     true};
    else if (held == WordsHeld::No)
        page.told = {"The meter did not take word " + word + ", it holds " + WordText(WordOf(page.point)) +
                         ":\r\ntype what the output meter shows now",
                     true};
    else if (!correction.overflow.empty())
        page.told = {"The word is at its limit:\r\ncheck cable, output meter and DAC type", true};
}

// Writes the round's word, asks the meter whether it holds it, and puts the point out again. The word counts as written
// from the moment it is sent.
WordsHeld WriteWord(std::uint16_t word)
{
    const int point = page.point;
    page.wordKnown = false;
    WordOf(point) = word;
    analog.bipolarDone = analog.bipolarDone || AnalogPointKind(point) == kBipolarOutput;
    analog.dualDone = analog.dualDone || AnalogConnector(point) == 2;
    WriteAnalogPoint(point, WordText(word), "");
    const WordsHeld held = CheckAnalogWord(point);
    page.wordKnown = held != WordsHeld::Silent;
    if (Abort)
        return held;
    OutputAnalogPoint(point, "");
    if (IsCounter())
        DelayMs(kCounterOutputMs);
    return held;
}

// A correction never starts from a word that the meter may not hold.
bool KnowsWord()
{
    if (!page.wordKnown && CheckAnalogWord(page.point) == WordsHeld::Silent) {
        page.told = {"The meter did not answer: the reading was not used", true};
        return false;
    }
    page.wordKnown = true;
    return true;
}

void TakeReading(const std::string &typed, float reading)
{
    if (!KnowsWord())
        return;
    const std::uint16_t before = WordOf(page.point);
    const AnalogCorrection correction = CorrectAnalogWord(page.point, reading, before, AnalogCurrentPoint());
    if (!correction.refused.empty()) {
        outlets.warnOperator(correction.refused, "Value Out of Range");
        return;
    }
    PointWork &work = WorkOf(page.point);
    work.typed = typed;
    work.error = reading - static_cast<float>(AnalogTarget(page.point, AnalogCurrentPoint()));
    ShowPoint();
    if (!correction.overflow.empty())
        outlets.warnOperator(correction.overflow, correction.overflowTitle);
    work.open = true;
    page.round = {
        ++work.rounds, typed, before, correction.word, !correction.overflow.empty(), NoteAnalogWordWritten(page.point)};
    const WordsHeld held = WriteWord(correction.word);
    page.round->readBack = TextOf(held);
    TellWord(held, correction);
    ClearTypedReading();
}

void txtRead_Commit(const std::string &text, CommitBy by)
{
    if (by != CommitBy::Enter || AnalogStateNow() != kAnalogPoint)
        return;
    const TypedReading typed = ParseTypedReading(text);
    if (!typed.trouble.empty())
        return ShowAnalogPrompt({typed.trouble, true});
    Work([&] { TakeReading(Trim(text), typed.value); });
    SelectTyped();
}

// ---- Accept and Done ----

void TellAccepted()
{
    const std::string rest = PointsNotInside();
    if (rest.empty())
        page.told = {"Accepted: the station has learned from this meter's words", false, Tone::Well};
    else
        page.told = {"Accepted: the station has learned from this meter's words.\r\nNot read inside: " + rest};
}

// The meter holds other words: what was read of those is worth nothing any more.
void TellOtherWords(const std::array<std::uint16_t, kAnalogWords> &expected)
{
    for (int point = 0; point < kAnalogWords; ++point)
        if (WordOf(point) != expected[static_cast<std::size_t>(point)])
            DropPointWork(point);
    page.told = {"The meter holds other words than were written:\r\nread its points again", true};
}

void AcceptWords()
{
    ShowAnalogState(kAnalogWorking);
    const std::string image = analog.image;
    const auto expected = analog.words;
    const WordsHeld held = CheckAnalogWords();
    if (held == WordsHeld::Yes)
        BlendAnalogNominal();
    RecordAnalogAccepted(held == WordsHeld::Yes ? "accepted" : "not accepted", image, held);
    if (held == WordsHeld::No)
        return TellOtherWords(expected);
    if (held == WordsHeld::Silent) {
        page.told = {Abort ? "Stopped: nothing was accepted" : "The meter did not answer: nothing was accepted", true};
        return;
    }
    EndPoints("accepted");
    TellAccepted();
}

void cmdAccept_Click()
{
    RunPageProcedure(AcceptWords, Leave);
}

// Behind Done no step follows: the next one would calibrate all over again.
void cmdDone_Click()
{
    RunPageProcedure([] { page.told = {}; },
                     [](Ended) {
                         ClosePoint();
                         page.verify = false;
                         GiveMeterBack();
                         if (!AnalogSettingsBorrowed())
                             return OpenStep(kNoStep);
                         ShowPoint();
                         ShowAnalogState(kAnalogSilent, kPromptOwed);
                     });
}

// ---- from point to point ----

bool MayOpen(int point)
{
    return !page.verify && HasAnalogPoint(analog.dacType, point);
}

// Beyond the ends there is none.
void MoveOn(int direction)
{
    const int next = NextAnalogPoint(analog.dacType, page.point, direction);
    if (next != kNoPoint)
        OpenStep(PositionOfAnalogPoint(next));
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
    if (page.point != kNoPoint)
        OutputAnalogPoint(page.point, "");
}

void TakeDacType(int type)
{
    analog.dacType = type;
    DacTypeText = std::to_string(type);
    SaveAnaCal();
    RecordAnalogChoices();
    page.cable.reset();  // the other type may need another one
    PrepareAnalogTest("");
    if (page.point != kNoPoint && !HasAnalogPoint(type, page.point))
        ClosePoint();
    PutOutPoint();
}

void TakeCurrentPoint(const char *microamps)
{
    CurrentOffsetPoint = microamps;
    SaveAnaCal();
    RecordAnalogChoices();
    PutOutPoint();
}

void optDAC_Click(int type)
{
    Work([type] { TakeDacType(type); });
}

void optCOffCalibPt_Click(int index)
{
    Work([index] { TakeCurrentPoint(index == 1 ? "4000" : "200"); });
}

void optAnaMode_Click(int kind)
{
    Work([kind] {
        ClearTypedValue();
        SelectMode(static_cast<AnalogKind>(kind));
    });
}

// ---- verifying: values put out by hand, no word changes ----

void BeginVerifying()
{
    page.verify = true;
    ClosePoint();
    ClearTypedValue();
    ShowPoint();
    const bool asked = page.kind == kNoMode && SelectMode(kVoltageOutput);
    if (analog.dacType == kDacDual && !asked && !Abort)
        AskForCable(kEitherConnector);
}

void optCalVfy_Click(int index)
{
    Work([index] {
        page.verify = index == 1;
        if (page.verify)
            BeginVerifying();
    });
}

void PutOutValue(std::int32_t value)
{
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
    Work([value] { PutOutValue(static_cast<std::int32_t>(value)); });
    SelectTyped();
}

// ---- the ways in, inside the navigator's procedure ----

void BringPageUp()
{
    ShowPage(kAnalogPage);
    ShowOptions();
    ForgetTyped();
    ShowPoint();
    ShowAnalogState(kAnalogOpening);
}

void OpenTab()
{
    const bool owed = AnalogSettingsBorrowed();
    page = AnalogPage();
    LoadAnalogNominal();
    BringPageUp();
    if (owed) {
        GiveMeterBack();
        if (AnalogSettingsBorrowed())
            return ShowAnalogState(kAnalogSilent, kPromptOwed);
    }
    if (PrepareMeter())
        ShowPlace();
}

void TellSilent()
{
    ClosePoint();
    ShowPoint();
    ShowAnalogState(kAnalogSilent);
}

// With what the meter holds by now in analog.words, the point goes out.
void PutOutOpenedPoint(WordsHeld held)
{
    if (held == WordsHeld::No)
        DropPointWork(page.point);
    page.wordKnown = true;
    OutputAnalogPoint(page.point, "");
    RecordAnalogOpened(page.point);
}

void EnterPoint()
{
    page.point = AnalogPointAtPosition(CurrentStepButton);
    BringPageUp();
    if (!PrepareMeter()) {
        ClosePoint();
        return ShowPoint();
    }
    SelectModeOfPoint();
    const WordsHeld held = Abort ? WordsHeld::Silent : CheckAnalogWord(page.point);
    if (held == WordsHeld::Silent && !Abort)
        return TellSilent();
    if (!Abort)
        PutOutOpenedPoint(held);
    if (Abort)
        LeaveStopped();
    ShowPlace();
}

void EnterInitNvmem()
{
    page.point = kNoPoint;
    BringPageUp();
    if (!TakeMeter())
        return;
    if (RestoreNominalWords("Init NVMEM", true))
        page.told = {"The nominal words are in the meter", false, Tone::Well};
    ShowPlace();
}

// All over again, from the nominal words and the first point on.
void EnterReCalibrate()
{
    page.point = kNoPoint;
    page.verify = false;
    BringPageUp();
    if (!TakeMeter())
        return;
    analog.bipolarDone = analog.dualDone = false;
    if (RestoreNominalWords("Re-Calibrate", false))
        return OpenStep(PositionOfAnalogPoint(0));
    ClosePoint();
    ShowPlace();
}

void EnterZeroInitFile()
{
    page.point = kNoPoint;
    BringPageUp();
    const std::string before = StoredAnalogImage();
    const int dacBefore = analog.dacType;
    ResetAnalogNominal();
    LoadAnalogNominal();
    RecordAnalogZeroed(before);
    if (AnalogSettingsBorrowed() && analog.dacType != dacBefore)
        PrepareAnalogTest("");
    page.told = {"The station's nominal words are the built-in ones again;\r\nthe meter's words are as they were"};
    ShowPlace();
}

// ---- the raw words, and back again: what was saved there counts, and each look at them restarted the meter ----

void TakeOverRawWords(int address, const std::string &hex)
{
    const auto before = analog.words;
    TakeOverAnalogWords(address, hex);
    NoteAnalogWordsWritten({address, hex});
    for (int point = 0; point < kAnalogWords; ++point)
        if (WordOf(point) != before[static_cast<std::size_t>(point)])
            DropPointWork(point);
}

void ComeBack()
{
    RunPageProcedure(
        [] {
            BringPageUp();
            if (page.point != kNoPoint)
                page.wordKnown = CheckAnalogWord(page.point) != WordsHeld::Silent;
            PutOutPoint();
        },
        LeaveWork);
}

void cmdNVMWord_Click()
{
    EnterRawWords({TakeOverRawWords, ComeBack});
}

void BuildAnalogPage(QFrame *frame)
{
    LivesWith(frame, page);
    ForgetPointWork();
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

void LeaveTabOfPage()
{
    GiveMeterBack();
    page.verify = false;
}

// At the end of the program the meter keeps what the work has given it: only its output goes to 0.
void SpeakLastWords()
{
    ZeroAnalogOutput();
    if (!AnalogSettingsBorrowed())
        return;
    TellRound();
    EndPoints("quit");
    RecordAnalogSettings("left", AnalogSettingsNames(), AnalogSettingsFound());
}

}  // namespace

void RegisterAnalogPage()
{
    RegisterPage(kAnalogPage, BuildAnalogPage);
    RegisterTab(kTabAnaCal, {OpenTab, LeaveTabOfPage, SpeakLastWords});
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
