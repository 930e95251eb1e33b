#include "procedures/ratio_page.h"

#include "calibration/learning.h"
#include "calibration/ratio.h"
#include "calibration/ratio_mode.h"
#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/output_switch.h"
#include "model/ratio_conditions.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "procedures/ratio_view.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"

#include <array>
#include <cmath>
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
constexpr const char *kExcitation[] = {"+11 V", "+5.5 V"};  // by polarity
constexpr const char *kGainExcitation = "+10 V";
constexpr const char *kDone = "done";  // a trial, in the journal

// ---- what the page knows ----

// One of the two words that are trimmed here.
struct Trimmed {
    RatioSide side;
    const char *name;
    int word;
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
    std::string refused;  // what the calibrator has not confirmed, "" when it has
    Trimmed ground{RatioSide::Offset, "CALBGND", kGroundWord};
    Trimmed divider{RatioSide::Gain, "CALBRDN", kDividerWord};
    Trimmed *select = nullptr;  // whose word Select would store
    std::string selected;
    // Of the trial in work, for the journal.
    std::string wordBefore;
    std::vector<std::string> asked, reported, taken;
};
RatioPage page;

// ---- what it shows ----

const Prompt kPromptLimited = {"Required correction exceeds allowable range", true};
const Prompt kPromptStopped = {"The trial was stopped", true};
const Prompt kPromptNoTarget = {"Type the reading to reach first", true};

bool IsAtRest()
{
    const RatioState now = RatioStateNow();
    return now == kRatioFresh || now == kRatioTried || now == kRatioChosen;
}

// Save is on as long as there is something to save and nothing is in work.
void ShowSave()
{
    EnableRatioSave(IsAtRest() && page.conditions != StoredRatioConditions());
}

void ShowState(RatioState state)
{
    ShowRatioState(state);
    ShowSave();
}

void ShowState(RatioState state, const Prompt &prompt)
{
    ShowRatioState(state, prompt);
    ShowSave();
}

void ForgetTrials(Trimmed &trimmed)
{
    trimmed.rows.clear();
    trimmed.first = true;
    trimmed.done = false;
    ClearTrials(trimmed.side);
}

void ResetRatioGrids()
{
    ForgetTrials(page.ground);
    ForgetTrials(page.divider);
    ClearRatioReading();
    ShowState(kRatioFresh);
}

void ShowWords()
{
    for (const Trimmed *trimmed : {&page.ground, &page.divider})
        ShowStoredWord(trimmed->side, trimmed->stored);
}

// ---- a trial: what talks to the instruments returns false when the operator has stopped it, or its
// excitation was refused ----

void ShowExcitation()
{
    ShowRatioProgress("Reading at " + page.excitation + "\r\nEsc stops the trial");
}

bool Excite(const std::string &value)
{
    page.excitation = value;
    ShowExcitation();
    if (!ApplyInputValue(value) || Abort)
        return false;
    page.asked.push_back(value);
    page.reported.push_back(OutputConfirmed() ? GetLiveOutput().Value : "");
    if (!InputStands()) {  // two readings at one excitation would look like a perfect offset
        page.refused = value;
        StopWork();
        return false;
    }
    MeterCommandCZ();
    return !Abort;
}

// A write into a line that has gone may not have come through: the words are read again when it is back.
bool GoesOn()
{
    if (MeterLineIsGone())
        StopWork();
    return !Abort;
}

bool SendRatioRangeCode()
{
    PutOnRatioRange(RatioRanges()[static_cast<std::size_t>(page.conditions.range)].code, page.rangeCode);
    return GoesOn();
}

void AddTrialRow(Trimmed &trimmed)
{
    trimmed.rows.push_back(trimmed.stored);
    AddTrial(trimmed.side, static_cast<int>(trimmed.rows.size()), trimmed.stored);
}

// A trial waits for its reading however long; the operator sees what for.
void ShowDisplay(DisplayState now)
{
    if (now == DisplayState::Silent)
        ShowRatioPrompt({"The meter does not answer:\r\ncheck its line, or press Esc", true});
    else if (now == DisplayState::OverRange)
        ShowRatioPrompt({"The display is over range:\r\ncheck the input, or press Esc", true});
    else
        ShowRatioPrompt(page.limited ? kPromptLimited : Prompt());
}

bool TakeInto(const Trimmed &trimmed, int excitation, float &reading)
{
    const std::string text = TakeReading(0, ShowDisplay);
    if (Abort)
        return false;
    page.taken.push_back(text);
    reading = static_cast<float>(Val(text));
    ShowTrialReading(trimmed.side, excitation, text);
    ShowRatioReading(text);
    return true;
}

bool WriteCorrected(Trimmed &trimmed, const RatioWord &corrected)
{
    page.limited = page.limited || corrected.limited;
    if (page.limited)
        ShowRatioPrompt(kPromptLimited);
    trimmed.value = corrected.value;
    trimmed.stored = corrected.word;
    ShowWords();
    WriteNvmWords(trimmed.word, trimmed.stored, "");
    return GoesOn();
}

bool TakeOffsetReading()
{
    const auto polarity = static_cast<std::size_t>(page.polarity);
    return TakeInto(page.ground, page.polarity, page.readings[polarity]);
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
    page.refused.clear();
    page.select = nullptr;
    page.wordBefore = trimmed.stored;
    page.asked.clear();
    page.reported.clear();
    page.taken.clear();
    MarkTrial(RatioSide::Offset, -1);
    MarkTrial(RatioSide::Gain, -1);
    ShowState(kRatioWorking);
    SetPlainStep({.word = trimmed.word, .target = target, .offset = trimmed.word == kGroundWord});
}

void RecordTrial(const Trimmed &trimmed, const std::string &how)
{
    RecordOfStep("ratio trial", page.position,
                 {{"name", trimmed.name},
                  {"rangeCode", page.rangeCode},
                  {"trial", static_cast<int>(trimmed.rows.size())},
                  {"target", trimmed.word == kGroundWord ? kOffsetTarget : page.conditions.reading},
                  {"wordBefore", page.wordBefore},
                  {"wordAfter", trimmed.stored},
                  {"limited", page.limited},
                  {"asked", page.asked},
                  {"reported", page.reported},
                  {"reading", page.taken},
                  {"how", how}});
}

void RunOffsetTrials()
{
    BeginTrial(page.ground, kOffsetTarget);
    if (!SendRatioRangeCode())
        return;
    ShowExcitation();
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
    const RatioWord corrected = CorrectRatioOffset(page.ground.value, page.readings[0], page.readings[1]);
    if (!WriteCorrected(page.ground, corrected) || !TakeOffsetReadings())
        return;
    page.ground.first = false;
    page.ground.done = true;
    RecordTrial(page.ground, kDone);
}

bool TakeGainReading()
{
    AddTrialRow(page.divider);
    return TakeInto(page.divider, 0, page.gainReading);
}

void RunGainTrials()
{
    BeginTrial(page.divider, RoundHalfEven(static_cast<double>(page.conditions.reading)));
    if (!SendRatioRangeCode())
        return;
    ShowExcitation();
    if (page.excitation != kGainExcitation && !Excite(kGainExcitation))
        return;
    if (page.divider.first) {
        page.divider.value = RatioDividerOf(page.divider.stored);
        if (!TakeGainReading())
            return;
    }
    const RatioWord corrected = CorrectRatioGain(page.divider.value, page.conditions.reading, page.gainReading);
    if (!WriteCorrected(page.divider, corrected) || !TakeGainReading())
        return;
    page.divider.first = false;
    page.divider.done = true;
    RecordTrial(page.divider, kDone);
}

void RemoveExcitation()
{
    ShowState(kRatioWorking);
    RemoveInput();
    page.excitation.clear();
}

// What the meter holds isn't known any more: the way back is the step's button, which reads it.
void LeaveLostMeter()
{
    RemoveExcitation();
    ShowState(kRatioSilent);
}

Prompt PromptOfEnd(Ended ended)
{
    if (ended == Ended::Fault)
        return PromptOfFault(FaultWords());
    if (ended == Ended::Stopped && !page.refused.empty())
        return PromptOfRefusal(page.refused);
    if (ended == Ended::Stopped)
        return kPromptStopped;
    return page.limited ? kPromptLimited : Prompt();
}

// A stopped trial leaves readings that don't belong together: the next one begins anew, at a fresh excitation.
void LeaveTrial(Ended ended, Trimmed &trimmed)
{
    const bool lost = MeterLineIsGone();
    FreezeRatioReading();
    ShowRatioProgress("");
    if (ended != Ended::Done) {
        RecordTrial(trimmed, page.refused.empty() ? HowEnded(ended) : kNoInput);
        RemoveExcitation();
        trimmed.first = true;
    }
    if (lost) {
        LeaveLostMeter();
        return;
    }
    ShowState(kRatioTried, PromptOfEnd(ended));
    OfferRepeat(trimmed.side);
}

void RecordEnd(const std::string &how)
{
    StepEnd end;
    end.how = how;
    end.word = page.ground.stored + " " + page.divider.stored;
    RecordStepEnded(page.position, end);
}

void NoteQuit(const Trimmed &trimmed)
{
    RecordTrial(trimmed, "quit");
    RecordEnd("quit");
}

// ---- choosing an earlier row ----

void ChooseRow(Trimmed &trimmed, int row)
{
    if (RatioStateNow() != kRatioTried && RatioStateNow() != kRatioChosen)
        return;
    MarkTrial(trimmed.side, row);
    const std::string word = trimmed.rows[static_cast<std::size_t>(row)];
    if (word == trimmed.stored) {
        page.select = nullptr;
        ShowState(kRatioTried, page.limited ? kPromptLimited : Prompt());
        return;
    }
    page.select = &trimmed;
    page.selected = word;
    ShowState(kRatioChosen, {"Click \"Select\" to store highlighted value\r\nof " + std::string(trimmed.name) +
                                 " in Nonvolatile Memory.",
                             false, Tone::Works});
}

void StoreSelected()
{
    ShowState(kRatioWorking);
    page.limited = false;
    WriteNvmWords(page.select->word, page.selected, "");
    RecordOfStep("ratio word selected", page.position,
                 {{"name", page.select->name}, {"wordBefore", page.select->stored}, {"wordAfter", page.selected}});
    page.select->stored = page.selected;
    ShowWords();
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
    LearnWords();
    RemoveExcitation();
    LoadFactoryMeterSetup();
    RecordEnd(page.ground.done && page.divider.done ? "accepted" : "left");
    NextStep();
}

// ---- the operator ----

void cmdOffset_Click()
{
    RunPageProcedure(
        RunOffsetTrials, [](Ended ended) { LeaveTrial(ended, page.ground); }, [] { NoteQuit(page.ground); });
}

void cmdGain_Click()
{
    if (page.conditions.reading <= 0.0f) {
        ShowRatioPrompt(kPromptNoTarget);
        return;
    }
    RunPageProcedure(
        RunGainTrials, [](Ended ended) { LeaveTrial(ended, page.divider); }, [] { NoteQuit(page.divider); });
}

void cmdRatioSelect_Click()
{
    RunPageProcedure(StoreSelected, [](Ended) {
        if (MeterLineIsGone())
            LeaveLostMeter();
        else
            ShowState(kRatioTried);
    });
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
    std::vector<std::string> captions;
    for (const RatioRange &range : RatioRanges())
        captions.emplace_back(range.caption);
    const float reading = page.conditions.reading;
    ShowRatioConditions(captions, page.conditions.range, Format(reading, std::floor(reading) == reading ? 0 : 2));
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
    ShowWords();
    ShowState(kRatioOpening);
    ShowCalPanel(true);
    ApplySwitched("V");
    ShowConnectionDiagram(page.conditions.range);
    const auto words = PutIntoRatioMode();
    if (!words) {
        ShowState(kRatioSilent);
        return;
    }
    page.rangeCode = words->rangeCode;
    page.ground.stored = words->ground;
    page.divider.stored = words->divider;
    ShowWords();
    RecordOfStep("ratio opened", page.position, {{"CALBGND", page.ground.stored}, {"CALBRDN", page.divider.stored}});
    ShowState(kRatioFresh);
}

// ---- the way it is built ----

void BuildRatioPage(QFrame *frame)
{
    LivesWith(frame, page);
    RatioHandlers handlers;
    handlers.start = [](RatioSide side) { side == RatioSide::Offset ? cmdOffset_Click() : cmdGain_Click(); };
    handlers.row = [](RatioSide side, int row) {
        ChooseRow(side == RatioSide::Offset ? page.ground : page.divider, row);
    };
    handlers.range = optRange_Click;
    handlers.reading = txtReading_Edited;
    handlers.save = cmdRatioSave_Click;
    handlers.select = cmdRatioSelect_Click;
    handlers.done = cmdRatioDone_Click;
    BuildRatioView(frame, handlers);
}

}  // namespace

void RegisterRatioPage()
{
    RegisterPage(kRatioPage, BuildRatioPage);
    RegisterSteps({Step::Ratio}, {ShowRatioPage, kRatioPage});
}

}  // namespace ombrix
