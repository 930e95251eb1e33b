#include "tour/tour.h"

#include "model/range_tables.h"
#include "platform/clock.h"
#include "platform/crash_note.h"
#include "platform/text.h"
#include "platform/wire_trace.h"
#include "session/state.h"
#include "shell/quit.h"
#include "shell/station.h"
#include "shell/trace_start.h"
#include "support/bench_program.h"
#include "support/bench_station.h"
#include "support/scripted_operator.h"

#include <QDir>
#include <QWidget>

#include <cstdio>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace ombrix::tour {
namespace {

using test::BenchStation;
using test::ScriptedOperator;
using test::StepButton;

constexpr unsigned kSeed = 7;

// Either case will do; -1 when there is no such board.
int BoardNamed(const QString &name)
{
    for (int board = 0; board < kBoards; ++board)
        if (QString::fromStdString(BoardName(board)).compare(name, Qt::CaseInsensitive) == 0)
            return board;
    return -1;
}

// The first step of the board that trims a gain.
int GainPosition()
{
    for (int position = 0; position < kPositions; ++position)
        if (NvmWordAtPosition(position) > 0 && NvmWordAtPosition(position) != 26 &&
            CalValueAtPosition(position) != "0 V")
            return position;
    return -1;
}

std::string LastCell(int column)
{
    std::string text = ScriptedOperator::Cell("msgCalibGrid", ScriptedOperator::Rows("msgCalibGrid") - 1, column);
    for (char &c : text)
        c = c == '\n' ? '/' : c;
    return text;
}

// What an operator does when a busy machine lets the emulated meter answer too late: he clicks the step again, as the page
// asks.
std::function<bool()> StepIsOpen(int position)
{
    return [position, again = 0]() mutable {
        if (ScriptedOperator::IsEnabled("cmdReady"))
            return true;
        const bool silent = ScriptedOperator::Text("lblInst(0)").starts_with("The meter did not answer");
        if (silent && ScriptedOperator::IsEnabled(StepButton(position)) && again < 3) {
            ++again;
            std::puts("The meter did not answer: the step is clicked again");
            QMetaObject::invokeMethod(ScriptedOperator::Find(StepButton(position)), "click", Qt::QueuedConnection);
        }
        return false;
    };
}

// One round of a range, whichever clock is in force.
void CalibrateRange(ScriptedOperator &person, int position, RangeRun &run)
{
    person.Clicks(StepButton(position))
        .WaitsUntil("the step is open", StepIsOpen(position))
        .Clicks("cmdReady")
        .WaitsFor("cmdRepeat")
        .Does([&run] {
            run.before = LastCell(2);
            run.after = LastCell(5);
            run.error = LastCell(ScriptedOperator::Columns("msgCalibGrid") - 1);
        })
        .Clicks("cmdAccept");
    test::LeavesRange(person);
}

RangeRun CalibrateRanges(ScriptedOperator &person, const std::vector<int> &positions)
{
    RangeRun run;
    std::int64_t start = 0;
    person.Does([&start] { start = NowMicros(); });
    for (const int position : positions)
        CalibrateRange(person, position, run);
    person.Does([&run, &start] { run.micros = NowMicros() - start; });
    run.good = person.Runs();
    return run;
}

// The board's first gain step.
RangeRun CalibrateOneRange(ScriptedOperator &person)
{
    return CalibrateRanges(person, {GainPosition()});
}

RangeRun CalibrateBoard(ScriptedOperator &person)
{
    return CalibrateRanges(person, test::RangePositions());
}

// Each stop comes at another moment of the round: while the input is asked for, confirmed, read.
StopRun TimeStops(ScriptedOperator &person)
{
    constexpr int kStops = 12;
    constexpr int kFirstMs = 300;
    constexpr int kFurtherMs = 670;
    StopRun run;
    std::int64_t stopped = 0;  // 0 until the click, and again when its standby has been seen
    OpenTrace(".");
    const int following = FollowTrace([&run, &stopped](const TraceRecord &record) {
        if (stopped == 0 || record.line != TraceLine::Calibrator || record.way != ByteWay::Sent ||
            record.bytes.find("STBY") == std::string::npos)
            return;
        run.ms.push_back(static_cast<double>(NowMicros() - stopped) / 1000);
        stopped = 0;
    });
    const int position = GainPosition();
    for (int stop = 0; stop < kStops; ++stop)
        person.Clicks(StepButton(position))
            .WaitsUntil("the step is open", StepIsOpen(position))
            .Clicks("cmdReady")
            .Waits(kFirstMs + stop * kFurtherMs)
            .Does([&stopped] { stopped = NowMicros(); })
            .Clicks("cmdStopReset")
            .WaitsUntil("the range is left", [] { return ScriptedOperator::IsEnabled("cmdSetup"); });
    run.good = person.Runs() && run.ms.size() == kStops;
    StopFollowingTrace(following);
    CloseTrace();
    return run;
}

double CpuSeconds()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// The processor's part in a wait of the operator.
struct Part {
    std::int64_t start = 0;
    double cpu = 0;
    double seconds = 0;

    void Begin()
    {
        start = NowMicros();
        cpu = CpuSeconds();
    }
    void End()
    {
        seconds = static_cast<double>(NowMicros() - start) / 1e6;
        cpu = CpuSeconds() - cpu;
    }
    double Share() const { return cpu / seconds; }
};

// The operator lives in this program too: what he costs while nothing happens is taken off.
GatherRun GatherFirstCycle(ScriptedOperator &person)
{
    constexpr int kIdleMs = 5000;
    constexpr int kGatherMs = 8000;
    GatherRun run;
    Part idle, gathering;
    person.Clicks(StepButton(1)).WaitsFor("cmdFCReady").Waits(kIdleMs / 5).Does([&] { idle.Begin(); });
    person.Waits(kIdleMs).Does([&] { idle.End(); }).Clicks("cmdFCReady");
    person.WaitsUntil("point 1", [] { return ScriptedOperator::Text("lblFCProgress").starts_with("Point 1"); })
        .Does([&] { gathering.Begin(); })
        .Waits(kGatherMs)
        .Does([&] {
            gathering.End();
            run.throughout = ScriptedOperator::Text("lblFCProgress").starts_with("Point");
        })
        .WaitsFor("cmdFCReady");
    run.good = person.Runs() && run.throughout && ScriptedOperator::Text("cmdFCReady") == "Repeat";
    run.seconds = gathering.seconds;
    run.cpuShare = gathering.Share() - idle.Share();
    return run;
}

// What `work` does on a station that has established the bench's program, over pseudo-terminals.
template <class Run> Run EstablishedInRealTime(const Options &options, Run (*work)(ScriptedOperator &person))
{
    const test::WorkFolder folder;
    Run run;
    const test::BenchProgram bench(options.testbench, QDir::currentPath(), options.board, kSeed);
    if (!bench.Stands()) {
        std::printf("ombrix-testbench doesn't start\n");
        return run;
    }
    test::OpenWholeStation();
    {
        ScriptedOperator person;
        person.Within(120).Clicks("cmdEstablish").WaitsUntil("it is established", [] {
            return Established && ScriptedOperator::IsEnabled("cmdSetup");
        });
        if (person.Runs()) {
            std::printf("%s\n", ScriptedOperator::Text("lblStatus").c_str());
            std::fflush(stdout);
            run = work(person);
        }
        if (!run.good)
            std::printf("%s\n", person.Trouble().c_str());
    }
    CloseStation();
    return run;
}

RangeRun EstablishedOnVirtualTime(const Options &options, RangeRun (*work)(ScriptedOperator &person))
{
    test::Wiring wiring;
    wiring.bench.board = BoardNamed(options.board);
    wiring.bench.seed = kSeed;
    wiring.useSwitch = true;  // as the bench's program has it
    BenchStation station(wiring);
    return station.Establishes() ? work(station.person) : RangeRun{};
}

}  // namespace

RangeRun RunRangeInRealTime(const Options &options)
{
    return EstablishedInRealTime<RangeRun>(options, CalibrateOneRange);
}

RangeRun RunBoardInRealTime(const Options &options)
{
    return EstablishedInRealTime<RangeRun>(options, CalibrateBoard);
}

StopRun TimeStopsInRealTime(const Options &options)
{
    return EstablishedInRealTime<StopRun>(options, TimeStops);
}

GatherRun GatherFirstCycleInRealTime(const Options &options)
{
    return EstablishedInRealTime<GatherRun>(options, GatherFirstCycle);
}

bool RunUntilKilled(const std::string &guard)
{
    test::OpenWholeStation();
    BeginTrace(".");
    WatchCrashes(kCrashFile);
    OpenGuard(guard);
    WatchSignals();
    ScriptedOperator person;
    // On a machine with much else to do a line may seem dead: the operator tries once more.
    bool good = true;
    for (int tries = 0; tries < 3 && good && !Established && !Quitting; ++tries) {
        person.Within(120).Clicks("cmdEstablish").WaitsUntil("Establish has ended", [] {
            return ScriptedOperator::IsEnabled("cmdEstablish") || ScriptedOperator::IsEnabled("cmdSetup");
        });
        good = person.Runs();
    }
    while (good && Established && !Quitting)
        good = CalibrateOneRange(person).good;
    std::printf("%s\n", person.Trouble().c_str());
    const bool asked = Quitting;
    StopWatchingSignals();
    CloseStation();
    return asked;
}

RangeRun RunRangeOnVirtualTime(const Options &options)
{
    return EstablishedOnVirtualTime(options, CalibrateOneRange);
}

RangeRun RunBoardOnVirtualTime(const Options &options)
{
    return EstablishedOnVirtualTime(options, CalibrateBoard);
}

bool RunBench(const Options &options)
{
    const int board = BoardNamed(options.board);
    if (board == kVf || board == kAn)
        return RunAnalogBench(options);
    if (board < 0) {
        std::printf("No such board on the bench: %s\n", qPrintable(options.board));
        return false;
    }
    std::printf("One range of a %s meter on pseudo-terminals, in real time\n", qPrintable(options.board));
    std::fflush(stdout);
    const RangeRun real = RunRangeInRealTime(options);
    const RangeRun floor = RunRangeOnVirtualTime(options);
    if (!real.good || !floor.good)
        return false;
    std::printf("counts before %s, after %s, error %s\n", real.before.c_str(), real.after.c_str(), real.error.c_str());
    std::printf("%.3f s, floor of waits, bytes and instruments %.3f s: %.4f times the floor\n",
                static_cast<double>(real.micros) / 1e6, static_cast<double>(floor.micros) / 1e6,
                static_cast<double>(real.micros) / static_cast<double>(floor.micros));
    return true;
}

}  // namespace ombrix::tour
