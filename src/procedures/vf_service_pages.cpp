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
#include <string_view>
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
const Prompt kPromptRefused = {"Nominal Gain and Offset were not found in the meter:\r\n"
                               "check its line, then click the step again",
                               true};

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

void RecordCheck(int range, const std::string &hex, bool good)
{
    Record("gain checked", {{"step", StepName(kStepsOfRanges[range])},
                            {"word", HexText(VfWordOf(range), 2)},
                            {"found", hex},
                            {"good", good}});
    if (!good)
        Record("words written", {{"words", std::vector{HexText(VfWordOf(range), 2)}},
                                 {"before", hex},
                                 {"to", FirstCyclePattern(range)},
                                 {"why", "gain outside 0.5 to 2.0"}});
}

void ShowResult(int range, const char *result)
{
    SetGridCell(view.msgVFNom, range, 2, result);
}

// A gain that no good meter has gives way to the nominal one, with its offset. True when it did.
bool CheckGroup(int range, const std::string &hex)
{
    const VfCalibration group = VfCalibrationOf(hex);
    const bool good = IsGoodVfGain(group.gain);
    SetGridCell(view.msgVFNom, range, 1, FormatSparse(group.gain, 2));
    if (!good)
        WriteNvmWords(VfWordOf(range), FirstCyclePattern(range), "");
    ShowResult(range, good ? "Gain and Offset Retained" : "Nominal Gain and Offset written");
    RecordCheck(range, hex, good);
    return !good;
}

std::string ReadGroups(std::string_view suffix)
{
    return ReadNvmWords(VfWordOf(kGroups - 1), kGroups * 3, suffix);
}

// What the meter holds afterwards is what counts. True when it holds all that was written.
bool ReadBack(const std::vector<int> &written)
{
    if (written.empty())
        return true;
    const std::string held = Abort ? "" : ReadGroups("Z");
    bool taken = !held.empty();
    for (const int range : written) {
        if (!held.empty() && GroupOf(held, range) == FirstCyclePattern(range))
            continue;
        ShowResult(range, held.empty() ? "Written, not confirmed" : "Not taken by the meter");
        taken = false;
    }
    Record("words read back", {{"held", held}, {"taken", taken}});
    return taken;
}

void ShowVFNominalizePage()
{
    ClearChecks();
    ShowPageState(view.states, kReading);
    ShowPage(kNominalizePage);
    const std::string words = ReadGroups("");
    if (words.empty())
        return ShowPageState(view.states, kSilent, Abort ? kPromptStopped : kPromptSilent);
    std::vector<int> written;
    for (int range = 0; range < kGroups && !Abort; ++range)
        if (CheckGroup(range, GroupOf(words, range)))
            written.push_back(range);
    const bool taken = ReadBack(written);
    if (Abort)
        ShowPageState(view.states, kChecked, kPromptStopped);
    else if (!taken)
        ShowPageState(view.states, kChecked, kPromptRefused);
    else
        ShowPageState(view.states, kChecked);
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
constexpr int kLowestTotal = 44;  // the words from here to 49 count on by themselves

const std::string kSilence = "The meter did not answer: check its line, then click the step again";
const std::string kStoppedReading = "Stopped before the meter had answered: click the step again";

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
        return ShowWordBoxes({"", "", Abort ? kStoppedReading : kSilence, true});
    const ConfigKept kept = KeepConfig(image, MeterName + ", revision " + MeterRevText, !Simulated());
    const bool filed = kept.trouble.empty();
    Record("configuration kept", {{"image", image}, {"onFile", filed && !Simulated()}});
    std::string says = "The original onfiguration above has been saved.";
    if (!filed)
        says += "\r\nOnly until the program ends, no file could be written: " + kept.trouble;
    else if (!kept.aside.meter.empty())
        says +=
            "\r\nThe one before was never restored and is set aside: of " + kept.aside.meter + ", at " + kept.aside.utc;
    ShowWordBoxes({image, "", says, !filed});
}

// Words that the meter holds otherwise than meant, highest first.
std::vector<int> WordsThatDiffer(const std::string &meant, const std::string &held)
{
    std::vector<int> words;
    for (int word = kHighWord; word >= 0 && !held.empty(); --word) {
        const std::size_t place = static_cast<std::size_t>(kHighWord - word) * 4;
        if (meant.substr(place, 4) != held.substr(place, 4))
            words.push_back(word);
    }
    return words;
}

std::vector<std::string> NamesOf(const std::vector<int> &words)
{
    std::vector<std::string> names;
    names.reserve(words.size());
    for (const int word : words)
        names.push_back(HexText(word, 2));
    return names;
}

std::string Listed(const std::vector<int> &words)
{
    std::string list;
    for (const std::string &name : NamesOf(words))
        list += " " + name;
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

WordBoxes Restored(const std::string &image, const std::string &held, const std::vector<int> &totals)
{
    if (!Simulated())
        ForgetKeptConfig();
    if (totals.empty())
        return {image, "", "Configuration restored."};
    return {held, "", "Configuration restored.\r\nTotals have gone on since: words" + Listed(totals)};
}

// What the meter holds afterwards is what counts.
WordBoxes RestoreConfiguration()
{
    const std::string image = RestConfigImage;
    const std::string held = WriteConfiguration(image);
    const bool stopped = Abort;
    const std::vector<int> differ = WordsThatDiffer(image, held);
    const bool taken = !held.empty() && (differ.empty() || differ.back() >= kLowestTotal);
    const std::string verdict = stopped ? "stopped" : held.empty() ? "no answer" : taken ? "taken" : "differs";
    Record("configuration restored",
           {{"image", image}, {"held", held}, {"verdict", verdict}, {"differ", NamesOf(differ)}});
    if (stopped)
        return NotRestored(image, "",
                           "Stopped: the meter may hold half of it. Click \"Save\" to write all of it again.");
    if (held.empty())
        return NotRestored(image, "",
                           "The meter did not answer: nobody knows what it holds.\r\n"
                           "Check its line, then click \"Save\" again.");
    if (!taken)
        return NotRestored(held, image,
                           "Not taken by the meter: words" + Listed(differ) + ".\r\nClick \"Save\" to try again.");
    return Restored(image, held, differ);
}

// Whose words these are, where they may be those of another meter than the one on the station. No meter tells its number.
std::string OriginTold()
{
    const KeptConfigOrigin &origin = OriginOfKeptConfig();
    if (origin.meter.empty() || (!origin.visit.empty() && origin.visit == CurrentVisit()))
        return "";
    const char *when = origin.visit.empty() ? "by an earlier run" : "before the meter was identified last";
    return "\r\nKept " + std::string(when) + ", of " + origin.meter + ", at " + origin.utc;
}

void ShowRestConfigPage()
{
    const std::string says = "Click \"Save\" to restore the original onfiguration above." + OriginTold();
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
