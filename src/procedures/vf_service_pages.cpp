#include "procedures/vf_service_pages.h"

#include "calibration/vf_fit.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "model/kept_config.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/journal.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "widgets/page_grid.h"
#include "widgets/page_kit.h"
#include "widgets/page_states.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <string>
#include <vector>

namespace ombrix {
namespace {

// ---- Nominalize ----

constexpr int kNominalizePage = 14;
constexpr int kGroups = 3;
constexpr std::size_t kGroupDigits = 12;
constexpr int kStepsOfRanges[kGroups] = {Step::Vf4To20mA, Step::Vf0To1mA, Step::Vf0To10V};

enum State { kReading, kChecked, kSilent };

struct View {
    QTableWidget *msgVFNom;
    QPushButton *done;
    PageStates states;
};
View view;

const Prompt kPromptReading = {"The meter's gains are read"};
const Prompt kPromptSilent = {"The meter did not answer, nothing was written:\r\n"
                              "check its line, then click the step again",
                              true};

const Prompt kPromptStopped = {"Stopped: a range without a result was not checked", true};

std::vector<PageState> TableOfStates()
{
    return {{kReading, {}, nullptr, kPromptReading},
            {kChecked, {view.done}, view.done, {""}},
            {kSilent, {view.done}, view.done, kPromptSilent}};
}

void ClearChecks()
{
    ClearGrid(view.msgVFNom);
    for (const int step : kStepsOfRanges)
        AddGridRow(view.msgVFNom, {StepName(step), "", ""}, 1);
}

// Words 201 to 193, as nine words: the range that stands first is the last one.
std::string GroupOf(const std::string &words, int range)
{
    return words.substr(static_cast<std::size_t>(kGroups - 1 - range) * kGroupDigits, kGroupDigits);
}

// A gain that no good meter has gives way to the nominal one, with its offset.
void CheckGroup(int range, const std::string &hex)
{
    const VfCalibration group = VfCalibrationOf(hex);
    const bool good = IsGoodVfGain(group.gain);
    SetGridCell(view.msgVFNom, range, 1, FormatSparse(group.gain, 2));
    if (!good)
        WriteNvmWords(VfWordOf(range), FirstCyclePattern(range), "");
    SetGridCell(view.msgVFNom, range, 2, good ? "Gain and Offset Retained" : "Nominal Gain and Offset written");
    if (!good)
        Record("words written", {{"words", std::vector{HexText(VfWordOf(range), 2)}},
                                 {"before", hex},
                                 {"to", FirstCyclePattern(range)},
                                 {"why", "gain outside 0.5 to 2.0"}});
}

void ShowVFNominalizePage()
{
    ClearChecks();
    ShowPageState(view.states, kReading);
    ShowPage(kNominalizePage);
    const std::string words = ReadNvmWords(VfWordOf(kGroups - 1), kGroups * 3, "");
    for (int range = 0; range < kGroups && !words.empty() && !Abort; ++range)
        CheckGroup(range, GroupOf(words, range));
    if (Abort)
        ShowPageState(view.states, kChecked, kPromptStopped);
    else
        ShowPageState(view.states, words.empty() ? kSilent : kChecked);
}

void BuildNominalizePage(QFrame *frame)
{
    LivesWith(frame, view);
    auto *column = new QVBoxLayout(frame);
    QLabel *title = Title(frame, "lblVFNomTitle");
    title->setText("NOMINALIZE");
    column->addWidget(title);
    column->addWidget(Label(frame, "lblAA(10)", "Gain must be between 0.5 and 2.0"));
    view.msgVFNom = Grid(frame, "msgVFNom", [](int) {});
    SetGridColumns(view.msgVFNom, {{"Range", 1400}, {"Gain", 900}, {"Result", 3000}});
    column->addWidget(view.msgVFNom, 1);
    QFrame *instruction = StatusBar(frame, "VFNom", 2);
    column->addWidget(instruction);
    view.done = DoneButton(frame, 3, [] { RunPageProcedure([] {}, [](Ended) { NextStep(); }); });
    column->addWidget(view.done, 0, Qt::AlignLeft);
    view.states = {frame, instruction, TableOfStates()};
    ClearChecks();
    ShowPageState(view.states, kReading);
}

// ---- the configuration ----

constexpr int kHighWord = 49;  // two runs of 25 words
constexpr int kLowWord = 24;
constexpr int kRunWords = 25;

const std::string kSilence = "The meter did not answer: check its line, then click the step again";

// Words 49 to 0, 200 digits; "" when one of the runs did not come whole.
std::string ReadConfiguration()
{
    const std::string high = ReadNvmWords(kHighWord, kRunWords, "Z");
    if (high.empty() || Abort)
        return "";
    const std::string low = ReadNvmWords(kLowWord, kRunWords, "");
    return low.empty() || Abort ? "" : high + low;
}

void ShowSaveConfigPage()
{
    ShowWordBoxes({});
    const std::string image = ReadConfiguration();
    if (image.empty())
        return ShowWordBoxes({"", "", kSilence, true});
    const std::string trouble = KeepConfig(image, MeterName + ", revision " + MeterRevText, !Simulated());
    Record("configuration kept", {{"image", image}, {"onFile", trouble.empty() && !Simulated()}});
    ShowWordBoxes({image, "", "The original onfiguration above has been saved."});
    if (!trouble.empty())
        outlets.showRemark("Kept until the program ends, not in a file: " + trouble);
}

// Names of the words that differ, highest first.
std::vector<std::string> WordsThatDiffer(const std::string &meant, const std::string &held)
{
    std::vector<std::string> words;
    for (int word = kHighWord; word >= 0; --word) {
        const std::size_t place = static_cast<std::size_t>(kHighWord - word) * 4;
        if (meant.substr(place, 4) != held.substr(place, 4))
            words.push_back(HexText(word, 2));
    }
    return words;
}

std::string Listed(const std::vector<std::string> &words)
{
    std::string list;
    for (const std::string &word : words)
        list += " " + word;
    return list;
}

std::string WriteConfiguration(const std::string &image)
{
    WriteNvmWords(kHighWord, image.substr(0, kConfigDigits / 2), "Z");
    if (Abort)
        return "";
    WriteNvmWords(kLowWord, image.substr(kConfigDigits / 2), "");
    return Abort ? "" : ReadConfiguration();
}

WordBoxes RestoreConfiguration();

WordBoxes NotRestored(const std::string &inBoxes, const std::string &meant, const std::string &says)
{
    return {inBoxes, meant, says, true, RestoreConfiguration};
}

// What the meter holds afterwards is what counts.
WordBoxes RestoreConfiguration()
{
    const std::string image = RestConfigImage;
    const std::string held = WriteConfiguration(image);
    const bool stopped = Abort;
    const std::vector<std::string> differ = held.empty() ? std::vector<std::string>() : WordsThatDiffer(image, held);
    const std::string verdict = stopped ? "stopped" : held.empty() ? "no answer" : differ.empty() ? "taken" : "differs";
    Record("configuration restored", {{"image", image}, {"verdict", verdict}, {"differ", differ}});
    if (stopped)
        return NotRestored(image, "",
                           "Stopped: the meter may hold half of it. Click \"Save\" to write all of it again.");
    if (held.empty())
        return NotRestored(image, "",
                           "The meter did not answer: nobody knows what it holds.\r\n"
                           "Check its line, then click \"Save\" again.");
    if (!differ.empty())
        return NotRestored(held, image,
                           "Not taken by the meter: words" + Listed(differ) + ".\r\nClick \"Save\" to try again.");
    if (!Simulated())
        ForgetKeptConfig();
    return {image, "", "Configuration restored."};
}

void ShowRestConfigPage()
{
    const KeptConfigOrigin &origin = OriginOfKeptConfig();
    std::string says = "Click \"Save\" to restore the original onfiguration above.";
    if (!origin.meter.empty())
        says += "\r\nKept by an earlier run, of " + origin.meter + ", at " + origin.utc;
    ShowWordBoxes({RestConfigImage, "", says, false, RestoreConfiguration});
}

}  // namespace

void RegisterVfServicePages()
{
    RegisterPage(kNominalizePage, BuildNominalizePage);
    RegisterSteps({Step::Nominalize}, {ShowVFNominalizePage, kNominalizePage});
    RegisterSteps({Step::GetConfig}, {ShowSaveConfigPage});
    RegisterSteps({Step::RestConfig}, {.enter = ShowRestConfigPage,
                                       .allowed = [](int) { return RestConfigImage.size() == kConfigDigits; }});
}

}  // namespace ombrix
