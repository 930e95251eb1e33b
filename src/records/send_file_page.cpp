#include "records/send_file_page.h"

#include "calibration/memory_journal.h"
#include "calibration/readings.h"
#include "calibration/step_journal.h"
#include "links/calibrator.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/output_switch.h"
#include "model/dpm_format.h"
#include "model/memory_values.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/folders.h"
#include "session/journal.h"
#include "session/live_output.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kSendFilePage = 8;
constexpr int kReadEveryMs = 500;
const WordRun kExtendedMark = {127, "8000"};

// ---- what the page knows ----

enum class Sent { No, Partly, Whole };

struct SendFilePage {
    std::string SendFileName;  // a path, or the bare name when it lies in the station's folder or is an installed one
    std::string SendImage;     // as read
    RangeDescription range;    // of a file that can be sent
    Sent sent = Sent::No;
    bool recorded = true;    // that it was sent
    bool okClicked = false;  // the operator has compared the reading
    std::string reported;    // what the calibrator said that it delivers at the test
    std::string reading;     // the last one
};
SendFilePage page;

// ---- what it shows ----

enum State { kFileBad, kFileGood, kWriting, kTestOffered, kApplying, kTesting, kRemoving, kFinished };

struct View {
    QLabel *lblSFileName, *lblSFInput;
    QFrame *values;    // the place of the value panel
    QFrame *readings;  // the table of the test
    QLabel *lblDesired;
    QFrame *lblReading;
    QFrame *cable;  // shpSFStatus(1)
    struct Buttons {
        QPushButton *send, *skipOk, *browse;
    } buttons;
    PageStates states;
};
View view;

const Prompt kPromptGood = {"Click \"Start\" to write file data to Nonvolatile Memory", false, Tone::Works};
const Prompt kPromptWriting = {"Writing file data to Nonvolatile Memory", false, Tone::Works};
const Prompt kPromptOffered = {
    "Set jumpers and apply input as shown, then\r\nclick \"Test\", or click \"Skip\" to omit this test", false,
    Tone::Works};
const Prompt kPromptApplying = {"Applying the input", false, Tone::Works};
const Prompt kPromptTesting = {"Verify meter reading, then click \"OK\"", false, Tone::Works};
const Prompt kPromptRemoving = {"Removing the input", false, Tone::Works};
const Prompt kPromptFinished = {"Send File operation complete", false, Tone::Well};
const Prompt kPromptPartly = {"The file was not written to its end: check the meter's line,\r\n"
                              "then click \"Start\" to write the whole file again",
                              true};

// Between the offer of the test and its end the navigation is held: the meter is to leave with its test done or skipped.
std::vector<PageState> TableOfStates()
{
    constexpr auto kHeld = Navigation::Held;
    const auto [send, skip, browse] = view.buttons;
    QFrame *const table = view.readings;
    return {
        // clang-format off
        // state         on              keys to  prompt           not seen       captions
        {kFileBad,     {browse},         browse,  {},              {skip, table}, {{send, "Start"}}},
        {kFileGood,    {send, browse},   send,    kPromptGood,     {skip, table}, {{send, "Start"}}},
        {kWriting,     {},               nullptr, kPromptWriting,  {skip, table}, {{send, "Start"}}},
        {kTestOffered, {send, skip},     send,    kPromptOffered,  {table},       {{send, "Test"}, {skip, "Skip"}}, kHeld},
        {kApplying,    {},               nullptr, kPromptApplying, {table},       {{send, "Test"}, {skip, "Skip"}}, kHeld},
        {kTesting,     {skip},           skip,    kPromptTesting,  {},            {{skip, "OK"}}, kHeld},
        {kRemoving,    {},               nullptr, kPromptRemoving, {},            {{skip, "OK"}}, kHeld},
        {kFinished,    {},               nullptr, kPromptFinished, {table},       {}},
        // clang-format on
    };
}

// What the test will apply; the diagrams show where.
void ShowTestInput(const std::string &input)
{
    view.lblSFInput->setText(Caption(input.empty() ? "" : "Input " + ValueAsWritten(input)));
}

void ShowCable(const std::string &message)
{
    ShowStatusBar(view.cable, message, InfoBackground());
}

// ---- the file ----

void LoadSendFile()
{
    const std::filesystem::path path(page.SendFileName);
    view.lblSFileName->setText(Caption(path.filename().string()));
    const std::string found = FindFile(page.SendFileName);
    view.lblSFileName->setToolTip(Caption(found));
    const DpmFile file = ReadDpmFile(found, CalibTab, BoardName(SCType));
    page.SendImage = file.image;
    page.sent = Sent::No;
    if (!file.error.empty()) {
        ShowPageState(view.states, kFileBad, {file.error + "\r\nClick \"Browse\" to try a different file", true});
        return;
    }
    page.range = DescribeRangeCode(SCType, DigitsAt(page.SendImage, 55, 2));
    ShowFileValues(page.SendImage);
    ShowPageState(view.states, kFileGood);
}

void ChooseSendFile()
{
    const std::string name = outlets.chooseFile("Send File", "Meter files (*.dpm);;All files (*)", ".");
    if (name.empty())
        return;
    PrepareFileValues(view.values);
    page.SendFileName = name;
    LoadSendFile();
}

// A file that is found by its bare name is known by it, so that the station's folder can move.
std::string RememberedName(const std::string &name)
{
    namespace fs = std::filesystem;
    std::error_code trouble;
    const std::string bare = fs::path(name).filename().string();
    return fs::equivalent(FindFile(bare), name, trouble) ? bare : name;
}

void RememberName()
{
    page.SendFileName = RememberedName(page.SendFileName);
    const auto board = static_cast<std::size_t>(SCType);
    if (SCType == kVf || board >= SendFileDefaults.size() || SendFileDefaults[board] == page.SendFileName)
        return;
    SendFileDefaults[board] = page.SendFileName;
    SaveSendFileNames();
}

// ---- its way into the meter ----

// False when the line has gone: what was sent then is lost, and nothing more is sent.
bool Write(const WordRun &run, const char *suffix)
{
    WriteNvmWords(run.word, run.text, suffix);
    return !MeterLineIsGone();
}

bool WriteImage(const std::vector<WordRun> &runs)
{
    for (const WordRun &run : runs)
        if (!Write(run, &run == &runs.back() ? "" : "Z"))
            return false;
    return true;
}

bool MakeExtended()
{
    WriteRamBytes(53, "80");
    return !MeterLineIsGone() && Write(kExtendedMark, "");
}

// Of a file that was begun: what of it stands in the meter, when not whole, nobody knows.
void RecordSent()
{
    std::vector<WordRun> runs = RunsOfDpm(page.SendImage, SCType);
    const bool extended = IsExtended(page.SendImage);
    if (extended)
        runs.push_back(kExtendedMark);
    RecordWordsWritten("Send File", runs);
    Record("file sent", {{"file", page.SendFileName},
                         {"board", BoardName(SCType)},
                         {"image", DigitsAt(page.SendImage, 1, kDpmDigits)},
                         {"extended", extended},
                         {"whole", page.sent == Sent::Whole}});
    page.recorded = true;
}

// What has begun is finished, also behind Esc: half a configuration is worse than either.
void SendFile()
{
    const bool extended = IsExtended(page.SendImage);
    page.sent = Sent::No;
    if (extended && !outlets.askOperator("This meter will be initialized as an EXTENDED Meter.", "Extended Meter"))
        return;
    ShowPageState(view.states, kWriting);
    RememberName();
    page.sent = Sent::Partly;
    page.recorded = false;
    if (WriteImage(RunsOfDpm(page.SendImage, SCType)) && (!extended || MakeExtended()))
        page.sent = Sent::Whole;
    RecordSent();
}

void OfferTest()
{
    HideFileValues();
    ShowConnectionDiagram(page.range.diagram);
    ShowCable(CableMessage(page.range.diagram));
    ShowTestInput(page.range.input);
    RemoveInput();
    ShowPageState(view.states, kTestOffered);
}

void RecordWhatWasBegun()
{
    if (!page.recorded)
        RecordSent();
}

void LeaveSending(Ended)
{
    RecordWhatWasBegun();
    if (page.sent == Sent::No)
        ShowPageState(view.states, kFileGood);
    else if (page.sent == Sent::Partly)
        ShowPageState(view.states, kFileGood, kPromptPartly);
    else if (page.range.diagram >= 0)
        OfferTest();
    else
        ShowPageState(view.states, kFinished);
}

// ---- its test ----

void ApplyTestInput()
{
    const std::string &input = page.range.input;
    if (input == "0 CEL") {
        SelectThermocouple(page.range.diagram);
    } else if (input == "1356.4") {
        SelectRtd();
        ApplyFahrenheit(input);
    } else if (!input.empty()) {
        ApplySwitched(input);
        ApplyInputValue(input);
    }
}

// One try: a meter that says nothing is told at once, and asked again.
std::string ReadOnce()
{
    std::string text = ReadDisplayRaw();
    if (!text.empty())
        return text;
    const bool over = DisplayIsOverRange();
    ShowTrouble(view.lblReading, over ? "over range" : "silent");
    if (view.states.now == kTesting)
        ShowPrompt(view.states, {over ? "The display is over range" : "The meter does not answer", true});
    return std::string(kStop);
}

void FollowDisplay(const std::string &desired)
{
    LiveReading live;
    live.everyMs = kReadEveryMs;
    live.read = ReadOnce;
    live.simulated = [&desired] { return desired; };
    FollowReading(live, [](const std::string &text) {
        page.reading = text;
        ShowLive(view.lblReading, text);
        if (view.states.now == kTesting)
            ShowPrompt(view.states, kPromptTesting);
    });
    Freeze(view.lblReading);
    WaitForOperator([] { return page.okClicked; });
}

void TestFile()
{
    page.okClicked = false;
    page.reported = page.reading = "";
    ShowCable("");
    ShowPageState(view.states, kApplying);
    ApplyTestInput();
    if (Abort)
        return;
    page.reported = OutputConfirmed() ? GetLiveOutput().Value : "";
    CableConnected(page.range.diagram);
    const std::string desired = DesiredOfTest(SCType, page.range);
    view.lblDesired->setText(Caption(desired));
    ClearReadout(view.lblReading);
    ShowPageState(view.states, kTesting);
    FollowDisplay(desired);
}

void RecordTest(const std::string &how)
{
    Record("file tested", {{"file", page.SendFileName},
                           {"board", BoardName(SCType)},
                           {"range", page.range.text},
                           {"how", how},
                           {"asked", page.range.input},
                           {"reported", page.reported},
                           {"desired", DesiredOfTest(SCType, page.range)},
                           {"reading", page.reading}});
}

void Finish()
{
    HideConnectionDiagram();
    ShowCable("");
    ShowTestInput("");
    ShowFileValues(page.SendImage);
    ShowPageState(view.states, kFinished);
}

// Stopped, the test is still to be done or skipped.
void LeaveTest(Ended ended)
{
    ShowPageState(view.states, kRemoving);
    CalibratorStandby();
    RecordTest(ended == Ended::Done ? "compared" : HowEnded(ended));
    if (ended == Ended::Done)
        return Finish();
    ShowCable(CableMessage(page.range.diagram));
    ShowPageState(view.states, kTestOffered);
}

// ---- the operator ----

void cmdSendFile_Click()
{
    if (view.states.now == kTestOffered)
        RunPageProcedure(TestFile, LeaveTest, [] { RecordTest("quit"); });
    else
        RunPageProcedure(SendFile, LeaveSending, RecordWhatWasBegun);
}

void cmdSFSkipOK_Click()
{
    if (view.states.now == kTesting) {
        page.okClicked = true;
        ShowPageState(view.states, kRemoving);
        RequestStop();
    } else {
        page.reported = page.reading = "";
        RecordTest("skipped");
        Finish();
    }
}

void cmdSFBrowse_Click()
{
    RunPageProcedure(ChooseSendFile, [](Ended) {});
}

// ---- the way in, inside the navigator's procedure ----

void EnterSendFilePage()
{
    page = SendFilePage();
    ShowCable("");
    ShowTestInput("");
    ShowPage(kSendFilePage);
    PrepareFileValues(view.values);
    if (SCType >= 0 && static_cast<std::size_t>(SCType) < SendFileDefaults.size())
        page.SendFileName = SendFileDefaults[static_cast<std::size_t>(SCType)];
    LoadSendFile();
}

// ---- the way it is built ----

QHBoxLayout *BuildTitle(QFrame *frame)
{
    QLabel *title = Title(frame, "lblSFTitle");
    title->setText("Send File");
    view.lblSFileName = Label(frame, "lblSFileName");
    view.lblSFileName->setTextFormat(Qt::PlainText);
    auto *row = new QHBoxLayout;
    row->addWidget(title);
    row->addStretch();
    row->addWidget(view.lblSFileName);
    view.lblSFInput = Label(frame, "lblSFInput");
    view.lblSFInput->setContentsMargins(16, 0, 0, 0);
    row->addWidget(view.lblSFInput);
    return row;
}

QFrame *ReadingFrame(QWidget *parent, int index, QWidget *content)
{
    QFrame *frame = Shape(parent, Indexed("shpSFReading", index));
    frame->setFrameShape(QFrame::StyledPanel);
    auto *column = new QVBoxLayout(frame);
    content->setParent(frame);
    column->addWidget(content);
    return frame;
}

// Both numbers in one size: they are compared.
QFrame *BuildReadings(QFrame *frame)
{
    auto *table = new QFrame(frame);
    view.lblDesired = Label(table, "lblSFReading(0)");
    QFont large = view.lblDesired->font();
    large.setPointSize(kRoomPoints);
    view.lblDesired->setFont(large);
    view.lblDesired->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    view.lblReading = Readout(table, "lblSFReading(1)");
    auto *grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(Label(table, "lblSFReading(2)", "Reading"), 0, 1, Qt::AlignHCenter);
    grid->addWidget(Label(table, "lblSFReading(3)", "Desired"), 1, 0);
    grid->addWidget(ReadingFrame(table, 0, view.lblDesired), 1, 1);
    grid->addWidget(Label(table, "lblSFReading(4)", "Meter"), 2, 0);
    grid->addWidget(ReadingFrame(table, 1, view.lblReading), 2, 1);
    grid->setColumnStretch(2, 1);
    return table;
}

QHBoxLayout *BuildButtons(QFrame *frame)
{
    view.buttons = {Button(frame, "cmdSendFile", "Start", cmdSendFile_Click),
                    Button(frame, "cmdSFSkipOK", "Skip", cmdSFSkipOK_Click),
                    Button(frame, "cmdSFBrowse", "Browse...", cmdSFBrowse_Click, "Alt+B")};
    QHBoxLayout *row = ButtonRow({view.buttons.send, view.buttons.skipOk});
    MakeLarge(view.buttons.browse);
    row->addWidget(view.buttons.browse);
    return row;
}

void BuildSendFilePage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildTitle(frame));
    view.values = new QFrame(frame);
    column->addWidget(view.values);
    view.readings = BuildReadings(frame);
    column->addWidget(view.readings);
    column->addStretch(1);
    view.cable = StatusBar(frame, "SFStatus(1)", 2);
    column->addWidget(view.cable);
    QFrame *status = StatusBar(frame, "SFStatus(0)", 2);
    column->addWidget(status);
    column->addLayout(BuildButtons(frame));
    view.states = {frame, status, TableOfStates()};
    ShowPageState(view.states, kFileBad);
}

}  // namespace

void RegisterSendFilePage()
{
    RegisterPage(kSendFilePage, BuildSendFilePage);
    RegisterSteps({Step::SendFile}, {EnterSendFilePage, kSendFilePage});
}

}  // namespace ombrix
