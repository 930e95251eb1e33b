#include "records/verify_page.h"

#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_journal.h"
#include "links/calibrator.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "links/output_switch.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "model/verify_file.h"
#include "platform/record_file.h"
#include "platform/safe_file.h"
#include "records/verify_view.h"
#include "session/journal.h"
#include "session/live_output.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/widgets.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kVerifyPage = 6;
constexpr int kDisplaySetup = 1;
constexpr int kPrintPoints = 12;
constexpr const char *kTemporaryFile = "Vfy$Temp.txt";

// ---- what the page knows ----

struct VerifyPage {
    std::string file;   // its path; stays when a dialog was cancelled
    std::string shown;  // its name as the operator sees it, "" when it was put away
    std::string dpmId;
    bool temporary = false;
    bool held = false;  // steps, tabs and Setup are off from the choice of a file to "Done"
    int selected = 0;
    int slot = 0;  // of the reading taken next
    int polarity = 0;
    std::string value;  // for the calibrator, of this polarity
    std::array<std::string, kVerifySlots> readings;
    bool clicked = false;  // OK
    bool unsaved = false;  // of a reading that could not be kept the file may hold a part
};
VerifyPage page;

enum State { kOpening, kUnset, kNoFile, kFileAway, kRange, kApplying, kMeasuring, kTaking, kWorking };

VerifyView view;
PageStates states;

const Prompt kPromptFile = {"Enter (optional) name or ID of unit tested and (optional) name of file to store data (may "
                            "already exist)"};
const Prompt kPromptReady = {"Set jumpers and apply input as shown and click \"Ready\" to start range, or select a "
                             "different range"};
const Prompt kPromptOk = {"Click \"OK\" when DPM reading has settled"};
const Prompt kPromptUnset = {"The meter did not answer:\r\ncheck its line, then click the step again", true};
const Prompt kPromptStopped = {"Stopped before the meter was set up:\r\nclick the step again", true};

// What stands on the page whatever it does, the unit's name, is in no row.
std::vector<PageState> TableOfStates()
{
    QWidget *temp = view.chkTempFile;
    QWidget *file = view.cmdFileSpec;
    QWidget *ready = view.cmdVfyReady;
    QWidget *ok = view.cmdVfyOK;
    const std::vector<QWidget *> choose = {temp, file};
    std::vector<QWidget *> ranges = {temp, file, view.cmdVfyDone, view.cmdVfyPrint};
    for (int button = 0; button <= VerifyLastButton(SCType); ++button)
        ranges.push_back(view.cmdVfyRng[static_cast<std::size_t>(button)]);
    std::vector<QWidget *> start = ranges;
    start.push_back(ready);
    // Without a file of his own the operator may leave at any time, also while an input stands: it is removed then.
    const auto between = page.held ? Navigation::Held : Navigation::Free;
    const auto during = page.held ? Navigation::Held : Navigation::Open;
    return {
        // clang-format off
        // state      on      keys to         prompt        not seen captions navigation
        {kOpening,   {},      nullptr,        kPromptFile,  {},      {},      Navigation::Free},
        {kUnset,     {},      nullptr,        kPromptUnset, {},      {},      Navigation::Free},
        {kNoFile,    choose,  view.txtDpmID,  kPromptFile,  {},      {},      between},
        {kFileAway,  ranges,  file,           kPromptReady, {},      {},      between},
        {kRange,     start,   ready,          kPromptReady, {},      {},      between},
        {kApplying,  {},      nullptr,        kPromptReady, {},      {},      during},
        {kMeasuring, {ok},    ok,             kPromptOk,    {temp},  {},      during},
        {kTaking,    {},      nullptr,        kPromptOk,    {temp},  {},      during},
        {kWorking,   {},      nullptr,        kPromptReady, {},      {},      between},
        // clang-format on
    };
}

// Navigation between two clicks, from now on.
void Hold(bool on)
{
    page.held = on;
    states.rows = TableOfStates();
}

// ---- what it shows ----

void ShowSelected(Use use)
{
    ShowUse(view.cmdVfyRng[static_cast<std::size_t>(page.selected)], use);
}

void ShowSlot(Use use)
{
    ShowUse(view.shpVfyRdg[static_cast<std::size_t>(page.slot)], use);
}

void ShowReadings()
{
    ShowVerifyReadings(view, page.readings);
}

void BlankReadings()
{
    page.readings = VerifyReadings("", SCType);
    ShowReadings();
}

void ShowFile(const std::string &name)
{
    page.shown = name;
    view.lblFileSpec->setText(Caption(name));
    view.lblFileSpec->setToolTip(Caption(name.empty() ? "" : page.file));
}

std::string NameOfPath(const std::string &path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

// Where the next dialog begins.
std::string FolderOfFile()
{
    const std::string folder = page.file.substr(0, page.file.size() - NameOfPath(page.file).size());
    return folder.empty() ? "." : folder;
}

std::string RangeName()
{
    return VerifyRangeName(SCType, page.selected);
}

// ---- the range in work ----

// Counts that the range of this name is calibrated to, 0 where no step has it.
std::int32_t TargetOfRange(const std::string &name)
{
    for (int position = 0; position < kPositions; ++position)
        if (StepName(StepIdAtPosition(position)) == name)
            return TargetCountsAtPosition(position);
    return 0;
}

void RewindRange()
{
    page.slot = 2 * page.selected;
    page.polarity = 0;
}

void SelectRange(int button)
{
    ShowSelected(Use::Idle);
    page.selected = button;
    ShowConnectionDiagram(VerifyRangeIndex(SCType, button));
    const std::string input = VerifyInput(SCType, button);
    ApplySwitched(input);
    SetPlainStep({.target = TargetOfRange(RangeName()), .value = input});
    ShowSelected(Use::InWork);
    RewindRange();
}

// ---- the file ----

std::string Trouble(const std::string &what, const std::string &words)
{
    return NameOfPath(page.file) + " " + what + (words.empty() ? "" : ": " + words);
}

// Shows what the file holds and goes on at its first gap. "" when readings can be kept in it, otherwise why not.
std::string OpenVerifyFile(bool isNew)
{
    std::string trouble;
    std::optional<std::string> bytes;
    if (!isNew)
        bytes = ReadRecordFile(page.file, kVerifyFileSize);
    if (!bytes && (isNew || StateOfFile(page.file) == FileState::Missing)) {
        const std::string words = MakeRecordFile(page.file, EmptyVerifyFile());
        if (!words.empty())
            trouble = Trouble("can't be made", words);
    } else if (!bytes) {
        trouble = Trouble("can't be read", "");
    } else if (const std::string words = TryRecordFile(page.file); !words.empty()) {
        trouble = Trouble("can't be written", words);
    }
    page.readings = VerifyReadings(bytes.value_or(""), SCType);
    ShowReadings();
    Record("verification file",
           {{"board", BoardName(SCType)}, {"file", page.file}, {"new", isNew}, {"trouble", trouble}});
    SelectRange(FirstEmptyRange(bytes.value_or(""), SCType));
    return trouble;
}

// Back to a range that can be started, or to the choice of a file.
void ShowRange(const std::string &trouble)
{
    if (trouble.empty())
        ShowPageState(states, kRange);
    else
        ShowPageState(states, kRange, {trouble + "\r\n" + kPromptReady.text, true});
}

void OpenTemporaryFile(std::string &trouble)
{
    ShowPageState(states, kWorking);
    ShowSelected(Use::Idle);
    page.file = kTemporaryFile;
    ShowFile(kTemporaryFile);
    trouble = OpenVerifyFile(true);
}

void DropTemporaryFile()
{
    page.temporary = false;
    view.chkTempFile->setChecked(false);
    ShowSelected(Use::Idle);
    BlankReadings();
    ShowFile("");
    ShowPageState(states, kNoFile);
    EnableAndFocus(view.cmdFileSpec);
}

// What another program has written isn't overwritten unasked.
bool MayUse(const std::string &path)
{
    const std::optional<std::string> bytes = ReadRecordFile(path, kVerifyFileSize + 1);
    return !bytes || LooksLikeVerifyFile(*bytes) ||
           outlets.askOperator(NameOfPath(path) + " is no verification file.\r\nReadings that are written into it "
                                                  "overwrite what it holds. Use it all the same?",
                               "Verify");
}

// False when there is none to go on with.
bool ChooseVerifyFile(std::string &trouble)
{
    const std::string path = outlets.nameFile("File", "All files (*)", FolderOfFile());
    if (path.empty() || !MayUse(path))
        return false;
    page.file = path;
    ShowFile(NameOfPath(path));
    trouble = OpenVerifyFile(false);
    return true;
}

// ---- a reading ----

// `came` is what the meter showed, `kept` what its record holds of it.
void RecordReading(int record, const std::string &came, const std::string &kept, const std::string &trouble)
{
    Record("verification reading", {{"board", BoardName(SCType)},
                                    {"range", RangeName()},
                                    {"asked", page.value},
                                    {"reported", OutputConfirmed() ? GetLiveOutput().Value : ""},
                                    {"reading", came},
                                    {"record", record},
                                    {"kept", kept},
                                    {"file", page.file},
                                    {"unit", page.dpmId},
                                    {"trouble", trouble}});
}

// On the disk before anything else happens. "", otherwise why it isn't.
std::string KeepReading(const std::string &came)
{
    const int record = VerifyRecordOf(SCType, page.slot);
    const std::string kept = VerifyRecordText(came);
    std::string words = WriteRecord(page.file, VerifyPlaceOf(record), kept);
    page.unsaved = !words.empty();
    RecordReading(record, came, kept, words);
    return words;
}

// A reading that was given up is taken out of the file again, and the page shows what that holds. "", otherwise why the
// file may hold a part of it.
std::string TakeBackUnsaved()
{
    if (!page.unsaved)
        return "";
    const auto slot = static_cast<std::size_t>(page.slot);
    const std::string words =
        WriteRecord(page.file, VerifyPlaceOf(VerifyRecordOf(SCType, page.slot)), page.readings[slot]);
    page.unsaved = false;
    if (const auto bytes = ReadRecordFile(page.file, kVerifyFileSize))
        page.readings = VerifyReadings(*bytes, SCType);
    return words.empty() ? "" : Trouble("may hold a part of the reading that was given up", words);
}

void RecordBrokenOff(const std::string &how)
{
    Record("verification broken off", {{"board", BoardName(SCType)},
                                       {"range", RangeName()},
                                       {"asked", page.value},
                                       {"how", how},
                                       {"file", page.file},
                                       {"unit", page.dpmId}});
}

bool ApplyPolarity()
{
    page.value = (page.polarity == 0 ? "" : "-") + VerifyInput(SCType, page.selected);
    ShowSlot(page.polarity == 0 ? Use::Idle : Use::InWork);
    if (!ApplyInputValue(page.value) || Abort)
        return false;
    ShowSlot(Use::InWork);
    return true;
}

Prompt PromptOfInput()
{
    if (InputStands())
        return kPromptOk;
    return {"The calibrator has not confirmed " + page.value + ": look at it first.\r\n" + kPromptOk.text, true};
}

// A reading is waited for however long; the operator sees what for, and his way out.
void ShowDisplay(DisplayState now)
{
    if (now == DisplayState::Silent)
        ShowPrompt(states, {"The meter does not answer: check its line.\r\nEsc removes the input", true});
    else if (now == DisplayState::OverRange)
        ShowPrompt(states, {"The display is over range: check the input.\r\nEsc removes it", true});
    else
        ShowPrompt(states, kPromptOk);
}

// Until it is in the file: a reading that could not be kept is taken again.
bool TakeReadingOfSlot()
{
    Prompt prompt = PromptOfInput();
    while (true) {
        page.clicked = false;
        ShowPageState(states, kMeasuring, prompt);
        WaitForOperator([] { return page.clicked; }, Escape::Stops);
        if (Abort)
            return false;
        const std::string came = TakeReading(page.polarity, ShowDisplay);
        if (Abort)
            return false;
        const std::string words = KeepReading(came);
        if (words.empty()) {
            page.readings[static_cast<std::size_t>(page.slot)] = VerifyRecordText(came);
            ShowReadings();
            ShowSlot(Use::Idle);
            return true;
        }
        ShowUnsavedReading(view, page.slot, VerifyRecordText(came));
        prompt = {Trouble("did not take the reading", words) + "\r\n\"OK\" tries again, Esc removes the input", true};
    }
}

void MeasureRange()
{
    ShowPageState(states, kApplying);
    WriteBoardCodeByte(RangeCodeText(VerifyRangeIndex(SCType, page.selected)));
    while (!Abort && ApplyPolarity() && TakeReadingOfSlot()) {
        if (page.polarity == 1 || !VerifyTwoPolarity(SCType))
            return;
        page.polarity = 1;
        ++page.slot;
        ShowPageState(states, kTaking);
    }
}

// However it ended, nothing stays applied.
void LeaveRange(Ended ended)
{
    ShowPageState(states, kTaking);
    RemoveInput();
    if (ended == Ended::Done) {
        SelectRange(page.selected < VerifyLastButton(SCType) ? page.selected + 1 : 0);
        return ShowRange("");
    }
    RecordBrokenOff(HowEnded(ended));
    const std::string trouble = TakeBackUnsaved();
    ShowSlot(Use::Idle);
    ShowReadings();
    RewindRange();
    Hold(false);
    ShowRange(ended == Ended::Fault ? PromptOfFault(FaultWords()).text : trouble);
}

void NoteQuit()
{
    RecordBrokenOff("quit");
    TakeBackUnsaved();
}

// ---- the operator ----

void cmdVfyRng_Click(int button)
{
    RunPageProcedure(
        [button] {
            ShowPageState(states, kWorking);
            SelectRange(button);
        },
        [](Ended) { ShowRange(""); });
}

void cmdVfyReady_Click()
{
    RunPageProcedure(MeasureRange, LeaveRange, NoteQuit);
}

void cmdVfyOK_Click()
{
    page.clicked = true;
    ShowPageState(states, kTaking);
}

void chkTempFile_Click()
{
    page.temporary = view.chkTempFile->isChecked();
    if (!page.temporary) {
        Hold(false);  // without a file there is nothing to finish
        return DropTemporaryFile();
    }
    std::string trouble;
    RunPageProcedure([&trouble] { OpenTemporaryFile(trouble); }, [&trouble](Ended) { ShowRange(trouble); });
}

// The name is put away, the file isn't.
Prompt PromptOfFileAway()
{
    return {"Readings still go into " + NameOfPath(page.file) + "\r\n" + kPromptReady.text};
}

void cmdFileSpec_Click()
{
    State before = states.now == kNoFile || page.temporary ? kNoFile : kFileAway;
    bool chosen = false;
    std::string trouble;
    RunPageProcedure(
        [&] {
            ShowSelected(Use::Idle);
            if (page.temporary)
                DropTemporaryFile();
            ShowFile("");
            Hold(true);
            ShowPageState(states, kWorking, kPromptFile);
            chosen = ChooseVerifyFile(trouble);
        },
        [&](Ended) {
            if (chosen)
                return ShowRange(trouble);
            Hold(false);
            ShowPageState(states, before, before == kFileAway ? PromptOfFileAway() : kPromptFile);
        });
}

void RecordDone(bool loaded)
{
    Record("verification done",
           {{"board", BoardName(SCType)}, {"file", page.file}, {"unit", page.dpmId}, {"factorySetup", loaded}});
}

void cmdVfyDone_Click()
{
    const int before = states.now;
    bool loaded = false;
    RunPageProcedure(
        [&loaded] {
            ShowPageState(states, kWorking, {"Loading the meter's factory setup"});
            RemoveInput();
            loaded = LoadFactoryMeterSetup();
        },
        [before, &loaded](Ended ended) {
            RecordDone(loaded);
            Hold(false);
            ShowPageState(states, before);
            if (ended != Ended::Done)
                ShowPrompt(states, {"Stopped: the meter's factory setup isn't loaded", true});
            else if (!loaded)
                ShowPrompt(states, {"The meter did not answer: its factory setup isn't loaded", true});
        });
}

std::string PrintTable()
{
    const std::optional<std::string> bytes = ReadRecordFile(page.file, kVerifyFileSize);
    if (!bytes)
        return Trouble("can't be read", "");
    return outlets.print("Verification", VerifyTable(*bytes, SCType, page.dpmId, page.shown), kPrintPoints);
}

void cmdVfyPrint_Click()
{
    const int before = states.now;
    std::string trouble;
    RunPageProcedure(
        [&trouble] {
            ShowPageState(states, kWorking);
            trouble = PrintTable();
        },
        [&](Ended) {
            ShowPageState(states, before);
            if (!trouble.empty())
                ShowPrompt(states, {trouble, true});
        });
}

// ---- the way in, inside the navigator's procedure ----

void EnterVerifyPage()
{
    page = VerifyPage();
    ShowPage(kVerifyPage);
    ShowConnectionDiagram(-1);
    ShowVerifyRanges(view, SCType);
    BlankReadings();
    view.txtDpmID->clear();
    ShowFile("");
    view.chkTempFile->setChecked(false);
    Hold(false);
    ShowPageState(states, kOpening);
    WriteDisplaySetupWords(kDisplaySetup);
    if (!Abort && WriteFilterCode(FilterCodeAtPosition(CurrentStepButton)))
        ShowPageState(states, kNoFile);
    else
        ShowPageState(states, kUnset, Abort ? kPromptStopped : kPromptUnset);
}

void BuildVerifyPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    LivesWith(frame, states);
    view = BuildVerifyView(frame,
                           {cmdVfyRng_Click, [](const std::string &text) { page.dpmId = text; }, chkTempFile_Click,
                            cmdFileSpec_Click, cmdVfyReady_Click, cmdVfyOK_Click, cmdVfyDone_Click, cmdVfyPrint_Click});
    states = {frame, view.instruction, TableOfStates()};
    ShowVerifyRanges(view, kDc);
    BlankReadings();
    ShowPageState(states, kOpening);
}

}  // namespace

void RegisterVerifyPage()
{
    RegisterPage(kVerifyPage, BuildVerifyPage);
    RegisterSteps({Step::Verify}, {EnterVerifyPage, kVerifyPage});
}

}  // namespace ombrix
