#include "procedures/init_page.h"

#include "calibration/memory_journal.h"
#include "links/meter_operations.h"
#include "model/images.h"
#include "model/init_image.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "session/delays.h"
#include "session/journal.h"
#include "session/kept_remarks.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kInitPage = 2;
constexpr int kPauseMs = 1000;  // behind a failed attempt

// ---- what the page knows ----

struct InitPage {
    std::vector<WordRun> runs;  // what is written, and must come back
    std::vector<std::string> replies;
    std::optional<std::vector<int>> differing;  // words; nothing of an attempt that was broken off
    int attempt = 0;
    bool recorded = false;   // what this run writes
    std::int64_t begun = 0;  // microseconds
};
InitPage page;

// ---- what it shows ----

enum State { kReady, kRunning, kGood, kFailed };

struct View {
    QLabel *lblInitTitle, *lblInitBoard;
    QFrame *values;  // the place of the value panel
    QFrame *proof;   // shpInitProof: how the last attempt ended
    struct Buttons {
        QPushButton *startRetry, *cancel, *done;
    } buttons;
    PageStates states;
};
View view;

const Prompt kPromptReady = {"Click \"Start\" to Initialize NVM", false, Tone::Works};
const Prompt kPromptRunning = {"Initializing NVM", false, Tone::Works};
const Prompt kPromptGood = {"NVM Initialized Successfully", false, Tone::Well};
const Prompt kPromptFailed = {"NVM Initialization Failed", true};

std::vector<PageState> TableOfStates()
{
    const auto [start, cancel, done] = view.buttons;
    return {
        // clang-format off
        // state    on             keys to  prompt          not seen  captions
        {kReady,   {start, done},  start,   kPromptReady,   {},       {{start, "Start"}}},
        {kRunning, {cancel},       cancel,  kPromptRunning, {},       {}},
        {kGood,    {start, done},  done,    kPromptGood,    {},       {{start, "Start"}}},
        {kFailed,  {start, done},  done,    kPromptFailed,  {},       {{start, "Retry"}}},
        // clang-format on
    };
}

std::int64_t SecondsGone()
{
    return (NowMicros() - page.begun) / 1'000'000;
}

bool IsProven()
{
    return page.differing && page.differing->empty();
}

std::string HowItEnded()
{
    if (!page.differing)
        return "broken off before it was proven" + (FaultWords().empty() ? "" : ": " + FaultWords());
    if (IsProven())
        return "the meter holds the image";
    const auto came = [](const std::string &reply) { return !reply.empty(); };
    if (std::none_of(page.replies.begin(), page.replies.end(), came))
        return "the meter did not answer";
    const bool all = std::all_of(page.replies.begin(), page.replies.end(), came);
    return "words " + WordList(*page.differing) + (all ? " differ" : " differ or did not come back");
}

void ShowAttempt()
{
    ShowStatusBar(view.proof,
                  "Attempt " + std::to_string(page.attempt) + ", " + std::to_string(SecondsGone()) +
                      " s: " + HowItEnded(),
                  InfoBackground());
}

// What the status line says as long as it goes on: that a silent meter is tried again.
class AttemptsRemark
{
public:
    AttemptsRemark() = default;
    ~AttemptsRemark() { KeepRemarkOn(Subject::Attempts, ""); }
    AttemptsRemark(const AttemptsRemark &) = delete;
    AttemptsRemark &operator=(const AttemptsRemark &) = delete;

    void Tell() const
    {
        KeepRemarkOn(Subject::Attempts, "Initializing NVM: attempt " + std::to_string(page.attempt) + ", " +
                                            std::to_string(SecondsGone()) + " s gone");
    }
};

// ---- the work ----

// The last write is the one behind which the meter restarts, with all of them.
const char *SuffixOf(std::size_t run)
{
    return run + 1 < page.runs.size() ? "Z" : "";
}

// Once for a run, also of one that was broken off: from its first write on the old words are gone.
void RecordWritten()
{
    if (page.attempt > 0 && !page.recorded)
        RecordWordsWritten("Init NVM", page.runs);
    page.recorded = true;
}

void WriteImage()
{
    for (std::size_t run = 0; run < page.runs.size(); ++run)
        WriteNvmWords(page.runs[run].word, page.runs[run].text, SuffixOf(run));
    RecordWritten();
}

void ReadBack()
{
    constexpr int kWordDigits = 4;
    for (std::size_t run = 0; run < page.runs.size(); ++run) {
        const int count = static_cast<int>(page.runs[run].text.size()) / kWordDigits;
        page.replies.push_back(ReadNvmWords(page.runs[run].word, count, SuffixOf(run)));
    }
}

// One write and read-back. True when the image was proven.
bool InitAttempt(const AttemptsRemark &remark)
{
    ++page.attempt;
    page.replies.clear();
    page.differing.reset();
    remark.Tell();
    WriteImage();
    ReadBack();
    page.differing = DifferingWords(SCType, page.runs, page.replies);
    if (IsProven())
        return true;
    if (Abort)
        page.differing.reset();  // nobody has listened to the meter
    ShowAttempt();
    DelayMs(kPauseMs);
    return false;
}

// A silent meter is tried until it answers or the operator has had enough. An attempt that has begun is finished: half
// an image is worse than an old one.
void InitializeNvm()
{
    page.attempt = 0;
    page.recorded = false;
    page.begun = NowMicros();
    ShowStatusBar(view.proof, "", InfoBackground());
    ShowPageState(view.states, kRunning);
    const AttemptsRemark remark;
    while (!InitAttempt(remark) && !Abort) {
    }
}

void RecordInit(const std::string &how)
{
    std::vector<std::string> written;
    for (const WordRun &run : page.runs)
        written.push_back(run.text);
    JournalFields fields = {{"board", BoardName(SCType)},
                            {"how", how},
                            {"attempts", page.attempt},
                            {"written", written},
                            {"readBack", page.replies}};
    if (page.differing) {
        std::vector<std::string> words;
        for (const int word : *page.differing)
            words.push_back(std::to_string(word));
        fields.emplace_back("differing", words);
    }
    Record("initialized", fields);
}

// What was proven counts, also when Cancel came meanwhile. Behind it the rest of an attempt reads nothing, so that fails,
// also when the meter has taken the image.
void LeaveInit(Ended ended)
{
    RecordWritten();
    RecordInit(IsProven() ? "proven" : ended == Ended::Fault ? "fault" : "cancelled");
    ShowAttempt();
    ShowPageState(view.states, IsProven() ? kGood : kFailed);
}

void NoteQuit()
{
    RecordWritten();
    RecordInit("quit");
}

// ---- the operator ----

void cmdInitStartRetry_Click()
{
    RunPageProcedure(InitializeNvm, LeaveInit, NoteQuit);
}

void cmdInitCancel_Click()
{
    StopWork();
}

void cmdDone_Click()
{
    NextStep();
}

// ---- the way in, inside the navigator's procedure ----

void ShowInitPage()
{
    const std::string image = BoardInitImage(SCType);
    page = InitPage();
    page.runs = RunsOfInit(SCType, image);
    ShowPage(kInitPage);
    view.lblInitTitle->setText(Caption(StepName(CurrentStepId)));
    view.lblInitBoard->setText(Caption("Factory image of the " + BoardName(SCType) + " board"));
    PrepareFileValues(view.values);
    ShowFileValues(InitDisplayText(SCType, image));
    ShowStatusBar(view.proof, "", InfoBackground());
    ShowPageState(view.states, kReady);
}

// ---- the way it is built ----

QHBoxLayout *BuildTitle(QFrame *frame)
{
    view.lblInitTitle = Title(frame, "lblInitTitle");
    view.lblInitBoard = Label(frame, "lblInitBoard");
    auto *row = new QHBoxLayout;
    row->addWidget(view.lblInitTitle);
    row->addStretch();
    row->addWidget(view.lblInitBoard);
    return row;
}

QHBoxLayout *BuildButtons(QFrame *frame)
{
    view.buttons = {Button(frame, "cmdInitStartRetry", "Start", cmdInitStartRetry_Click),
                    Button(frame, "cmdInitCancel", "Cancel", cmdInitCancel_Click), DoneButton(frame, 0, cmdDone_Click)};
    view.buttons.cancel->setToolTip("Ends the attempts when the one in work is finished (Esc)");
    return ButtonRow({view.buttons.startRetry, view.buttons.cancel, view.buttons.done});
}

void BuildInitPage(QFrame *frame)
{
    LivesWith(frame, page);
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    column->addLayout(BuildTitle(frame));
    view.values = new QFrame(frame);
    column->addWidget(view.values);
    column->addStretch(1);
    view.proof = StatusBar(frame, "InitProof", 1);
    column->addWidget(view.proof);
    QFrame *status = StatusBar(frame, "InitStatus", 1);
    column->addWidget(status);
    column->addLayout(BuildButtons(frame));
    view.states = {frame, status, TableOfStates()};
    ShowPageState(view.states, kReady);
}

}  // namespace

void RegisterInitPage()
{
    RegisterPage(kInitPage, BuildInitPage);
    RegisterSteps({Step::InitNvm}, {ShowInitPage, kInitPage});
}

}  // namespace ombrix
