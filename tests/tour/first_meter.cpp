// The first meter of the operator's guide, as its first chapter tells it: on the bench in virtual time, and in real time
// against the bench's program. Then what the other chapters show that no procedure does.
#include "tour/bench_walk.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "session/state.h"
#include "shell/station.h"
#include "shell/trace_start.h"
#include "support/bench_program.h"

#include <QDir>

#include <cstdio>
#include <functional>
#include <string>

namespace ombrix::tour {
namespace {

using test::ButtonOf;
using test::ScriptedOperator;

constexpr std::int64_t kTenMinutes = 600'000'000;
constexpr int kStep200Volts = 6;

using Picture = std::function<void(const QString &name, const std::string &widget)>;

void PrintRow(const char *step, std::int64_t start)
{
    const int row = ScriptedOperator::Rows("msgCalibGrid") - 1;
    const int last = ScriptedOperator::Columns("msgCalibGrid") - 1;
    std::string error = ScriptedOperator::Cell("msgCalibGrid", row, last);
    std::printf("    %s: error %s after %.0f s\n", step, error.c_str(), static_cast<double>(NowMicros() - start) / 1e6);
    std::fflush(stdout);
}

// From Establish to the summary. A click of a person takes no time here: the guide's ten minutes have room for him.
void ScriptFirstMeter(ScriptedOperator &person, const Picture &takes, std::int64_t &start)
{
    person.Does([&start] { start = NowMicros(); }).Clicks("cmdEstablish").WaitsUntil("it is established", [] {
        return Established && ScriptedOperator::IsEnabled("cmdSetup");
    });
    person.Clicks("cmdCalib(0)").WaitsFor("cmdInitStartRetry").Clicks("cmdInitStartRetry");
    person.WaitsForText("lblInitStatus", "NVM Initialized Successfully").Clicks("cmdDone(0)").WaitsFor("cmdFCReady");
    person.Does([&start] {
        std::printf("    the image is proven after %.0f s\n", static_cast<double>(NowMicros() - start) / 1e6);
    });
    person.Clicks("cmdCalib(2)").WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    takes("first-meter", "");
    person.Does([&start] { PrintRow("GND", start); }).Clicks("cmdRepeat").WaitsFor("cmdRepeat");
    person.Does([&start] { PrintRow("GND", start); }).Clicks("cmdAccept").WaitsFor("cmdReady").Clicks("cmdReady");
    person.WaitsFor("cmdRepeat").Does([&start] { PrintRow("REF (200 mV)", start); }).Clicks("cmdRepeat");
    person.WaitsFor("cmdRepeat").Does([&start] { PrintRow("REF (200 mV)", start); }).Clicks("cmdAccept");
    person.WaitsFor("cmdSetup").Clicks("cmdSummary").WaitsFor("cmdSummaryCopy");
    takes("summary", "dlgSummary");
    person.Clicks("cmdSummaryClose");
}

bool WalkFirstMeter(const Options &options)
{
    BenchWalk walk(kDc, options);
    std::int64_t start = 0;
    std::int64_t end = 0;
    ScriptFirstMeter(
        walk.Person(), [&walk](const QString &name, const std::string &widget) { walk.Takes(name, widget); }, start);
    walk.Person().Does([&end] { end = NowMicros(); });
    return walk.Ends() && end - start < kTenMinutes;
}

// A temperature board's chooser, the lines, the alert, the question at the end.
bool WalkWindow(const Options &options)
{
    BenchWalk walk(kDc, options);
    BeginTrace(".");
    if (!walk.Establishes())
        return false;
    walk.Person().ClicksTab(kTabTc).WaitsFor("cmdSetup");
    walk.Takes("board-chooser");
    walk.Person().ClicksTab(kTabDc).WaitsFor("cmdSetup");
    walk.Person().Clicks("cmdCalib(2)").WaitsFor("cmdReady").PressesAtOnce(Qt::Key_F12).WaitsFor("cmdTraceClose");
    walk.Takes("trace", "dlgTrace");
    walk.Person().Clicks("cmdTraceClose");
    walk.Person().Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("txtNVM(7)").Types("txtNVM(7)", "8A2F").Clicks("cmdQuit");
    walk.Person().WaitsUntil("the question stands", [] { return ScriptedOperator::Box() != nullptr; });
    walk.Takes("quit-unsaved");
    walk.Person().AnswersBox("Cancel").Clicks("cmdNVMcancel(0)").WaitsFor("cmdSetup");
    const std::string range = test::StepButton(kStep200Volts);
    walk.Person().Clicks(range).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    walk.Takes("window");
    walk.Person().Does([&walk] { walk.Station().bench.SwitchFault("calibrator-port-gone", true); });
    walk.Person().WaitsUntil("the alert stands", [] { return ScriptedOperator::Sees("lblAlert"); });
    walk.Takes("alert");
    return walk.Ends();
}

bool WalkOtherColours(Options options)
{
    options.theme = options.theme == "dark" ? "light" : "dark";
    BenchWalk walk(kDc, options);
    if (!walk.Establishes())
        return false;
    walk.Person().Clicks("cmdCalib(2)").WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    walk.Takes("other-colours");
    return walk.Ends();
}

}  // namespace

bool RunFirstMeter(const Options &options)
{
    std::printf("The first meter of the guide\n");
    return WalkFirstMeter(options) &&
           (options.pictures.isEmpty() || (WalkWindow(options) && WalkOtherColours(options)));
}

bool RunFirstMeterInRealTime(const Options &options)
{
    std::printf("The first meter of the guide on pseudo-terminals, in real time\n");
    const test::WorkFolder folder;
    const test::BenchProgram bench(options.testbench, QDir::currentPath(), "dc", 7);
    if (!bench.Stands()) {
        std::printf("ombrix-testbench doesn't start\n");
        return false;
    }
    test::OpenWholeStation();
    ScriptedOperator person;
    person.Within(120);
    std::int64_t start = 0;
    std::int64_t end = 0;
    ScriptFirstMeter(
        person, [](const QString &, const std::string &) {}, start);
    person.Does([&end] { end = NowMicros(); });
    const bool good = person.Runs() && end - start < kTenMinutes;
    std::printf("%s%.0f s\n", person.Trouble().c_str(), static_cast<double>(end - start) / 1e6);
    CloseStation();
    return good;
}

}  // namespace ombrix::tour
