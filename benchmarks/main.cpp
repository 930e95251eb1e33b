// What the station costs, as a table: each row a number, its goal, and whether it holds. Exit code 1 when one doesn't.
//
//   ombrix-benchmarks            all but the two below
//   ombrix-benchmarks --whole    a whole calibration of a DC meter in real time: four minutes
//   ombrix-benchmarks --soak     10,000 ranges over all boards on virtual time: minutes
//   ombrix-benchmarks --all      the three of them

#include "guard_sleep.h"
#include "journal_writes.h"
#include "page_runs.h"
#include "program.h"
#include "screen.h"
#include "simulated_run.h"
#include "soak.h"
#include "trace_writes.h"

#include "support/station.h"
#include "tour/toolkit_noise.h"
#include "tour/tour.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace ombrix::benchmarks {
namespace {

using namespace std::chrono_literals;

constexpr int kStarts = 15;
constexpr int kIdleSeconds = 10;
constexpr auto kSettle = 3s;  // after the first window, until nothing of the start is left

int missed = 0;

void Row(const char *what, double value, const char *unit)
{
    std::printf("%-52s %10.3f %-6s\n", what, value, unit);
    std::fflush(stdout);
}

void Row(const char *what, double value, const char *unit, bool holds, const char *goal)
{
    std::printf("%-52s %10.3f %-6s %-12s %s\n", what, value, unit, goal, holds ? "holds" : "MISSED");
    std::fflush(stdout);
    missed += holds ? 0 : 1;
}

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// A folder that goes with its object, with a copy of the station in it: its settings are the benchmark's own.
class StationFolder
{
public:
    StationFolder() : m_path(std::filesystem::temp_directory_path() / ("ombrix-benchmarks-" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(m_path);
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all);  // so it serves as XDG_RUNTIME_DIR
        std::filesystem::copy_file(OMBRIX_STATION, m_path / "ombrix");
        std::filesystem::copy_file(OMBRIX_GUARD, m_path / "ombrix-guard");
    }
    ~StationFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    StationFolder(const StationFolder &) = delete;
    StationFolder &operator=(const StationFolder &) = delete;
    const std::filesystem::path &Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

std::vector<std::string> Surroundings(const Screen &screen, const std::string &folder)
{
    return {"DISPLAY=" + screen.Name(), "QT_QPA_PLATFORM=xcb", "XDG_RUNTIME_DIR=" + folder};
}

double MsToFirstWindow(Screen &screen, const std::vector<std::string> &command, const std::string &folder)
{
    screen.ForgetWindows();
    const Program running(command, folder, Surroundings(screen, folder));
    const auto shown = screen.NextWindow();
    if (!shown)
        throw std::runtime_error(command.front() + " shows no window");
    return std::chrono::duration<double, std::milli>(*shown - running.Started()).count();
}

void MeasureStart(Screen &screen, const StationFolder &folder)
{
    const std::string work = folder.Path().string();
    const std::vector<std::string> commands[] = {
        {OMBRIX_BARE_WINDOW, "empty"}, {OMBRIX_BARE_WINDOW}, {work + "/ombrix"}};
    std::vector<double> times[3];
    for (const auto &command : commands)  // once unmeasured: files into memory, a first start's settings written
        MsToFirstWindow(screen, command, work);
    for (int start = 0; start < kStarts; ++start)
        for (std::size_t which = 0; which < 3; ++which)
            times[which].push_back(MsToFirstWindow(screen, commands[which], work));
    const double empty = Median(times[0]);
    const double bare = Median(times[1]);
    const double station = Median(times[2]);
    Row("first window, toolkit's, empty", empty, "ms");
    Row("first window, toolkit's, one word in it", bare, "ms");
    Row("first window, station", station, "ms");
    Row("  over the empty one", station / empty, "");
    Row("  over the one with a word", station / bare, "", station / bare < 1.5, "< 1.5");
}

void MeasureIdle(Screen &screen, const StationFolder &folder)
{
    screen.ForgetWindows();
    const std::string work = folder.Path().string();
    const Program running({work + "/ombrix"}, work, Surroundings(screen, work));
    if (!screen.NextWindow())
        throw std::runtime_error("the station shows no window");
    std::this_thread::sleep_for(kSettle);
    const double wakeUps = running.SleepsASecond(kIdleSeconds);
    const double memory = running.ResidentMiB();
    Row("memory in use, idle", memory, "MiB", memory < 45, "< 45");
    const double guard = running.ResidentMiBOfChild("ombrix-guard");
    Row("  of the guard beside it", guard, "MiB", guard < 2, "< 2");
    Row("wake-ups, idle", wakeUps, "1/s", wakeUps == 0, "0");
}

void MeasureGuard()
{
    const double wakeUps = WakeUpsOfGuard(kIdleSeconds);
    Row("wake-ups of the guard, a line in its hands", wakeUps, "1/s", wakeUps == 0, "0");
}

void MeasureSimulatedRun()
{
    const test::WorkFolder folder;
    const SimulatedRun run = CalibrateSimulatedDc();
    Row("ranges accepted in the simulator", run.ranges, "");
    Row("longest stay in one event meanwhile", run.longestBlockMs, "ms", run.longestBlockMs < 50, "< 50");
}

void MeasureJournal(const StationFolder &folder)
{
    const JournalWrites quiet = RecordBeside(Disk::Quiet, folder.Path().string());
    Row("an event recorded, 99 of 100 within", quiet.p99Ms, "ms");
    const JournalWrites busy = RecordBeside(Disk::Busy, folder.Path().string());
    Row("  while another process syncs the disk, median", busy.medianMs, "ms");
    Row("  99 of 100 within", busy.p99Ms, "ms", busy.p99Ms < 0.1, "< 0.1");
    Row("  all within", busy.maxMs, "ms");
    Row("  syncs meanwhile", busy.syncs, "");
}

void MeasureTrace(const StationFolder &folder)
{
    const TraceWrites traced = TimeTrace(folder.Path().string());
    Row("a chunk traced, median", traced.medianMs, "ms");
    Row("  99 of 100 within", traced.p99Ms, "ms", traced.p99Ms < 0.01, "< 0.01");
    Row("  all within", traced.maxMs, "ms");
}

void MeasureWait()
{
    const test::WorkFolder folder;
    const double wakeUps = WakeUpsInAWait(kIdleSeconds);
    Row("wake-ups, while a procedure waits", wakeUps, "1/s");
}

void MeasurePages()
{
    for (const PageRun &run : RunEachPage())
        Row(("longest block, " + run.page).c_str(), run.longestBlockMs, "ms", run.longestBlockMs < 50, "< 50");
}

tour::Options OnPseudoTerminals()
{
    return {.pictures = "", .board = "dc", .theme = "light", .testbench = OMBRIX_TESTBENCH};
}

void CompareWithFloor(const char *what, const tour::RangeRun &real, const tour::RangeRun &floor, double most,
                      const char *goal)
{
    if (!real.good || !floor.good)
        throw std::runtime_error(std::string(what) + ": a range was not accepted");
    const double over = static_cast<double>(real.micros) / static_cast<double>(floor.micros);
    Row(what, static_cast<double>(real.micros) / 1e6, "s");
    Row("  its waits, bytes and instruments alone", static_cast<double>(floor.micros) / 1e6, "s");
    Row("  over those", over, "", over <= most, goal);
}

void MeasureRealRange()
{
    CompareWithFloor("one range on pseudo-terminals", tour::RunRangeInRealTime(OnPseudoTerminals()),
                     tour::RunRangeOnVirtualTime(OnPseudoTerminals()), 1.01, "<= 1.01");
}

void MeasureWholeCalibration()
{
    CompareWithFloor("every range of a DC meter on pseudo-terminals", tour::RunBoardInRealTime(OnPseudoTerminals()),
                     tour::RunBoardOnVirtualTime(OnPseudoTerminals()), 1.005, "<= 1.005");
}

void MeasureStops()
{
    const tour::StopRun run = tour::TimeStopsInRealTime(OnPseudoTerminals());
    if (!run.good)
        throw std::runtime_error("a round on pseudo-terminals could not be stopped");
    const double longest = *std::max_element(run.ms.begin(), run.ms.end());
    Row("stops of a round on pseudo-terminals", static_cast<double>(run.ms.size()), "");
    Row("  from Stop to standby on the line, median", Median(run.ms), "ms");
    Row("  longest", longest, "ms", longest < 2000, "< 2000");
}

void MeasureSoak()
{
    constexpr int kRanges = 10'000;
    const bool flat = IsFlat(RunSoak(kRanges));
    std::printf("the last third against the middle one: %s\n", flat ? "flat" : "GROWS");
    missed += flat ? 0 : 1;
}

void MeasureFirstCycle()
{
    const tour::GatherRun run = tour::GatherFirstCycleInRealTime(OnPseudoTerminals());
    if (!run.good)
        throw std::runtime_error("the first cycle on pseudo-terminals did not end well");
    Row("first cycle, its counts gathered for", run.seconds, "s");
    Row("  the processor's part meanwhile", run.cpuShare * 100, "%", run.cpuShare < 0.05, "< 5");
}

// What is looked at from outside.
void MeasurePrograms()
{
    const StationFolder folder;
    Screen screen;
    MeasureStart(screen, folder);
    MeasureIdle(screen, folder);
    MeasureGuard();
    MeasureJournal(folder);
    MeasureTrace(folder);
}

// The station inside this program.
void MeasureStation()
{
    MeasureWait();
    MeasureSimulatedRun();
    MeasurePages();
    MeasureRealRange();
    MeasureStops();
    MeasureFirstCycle();
}

}  // namespace
}  // namespace ombrix::benchmarks

int main(int argc, char **argv)
{
    using namespace ombrix::benchmarks;
    if (argc == 3 && std::string(argv[1]) == kKeepSyncing) {
        KeepSyncing(argv[2]);
        return 1;
    }
    const std::string option = argc > 1 ? argv[1] : "";
    const bool all = option == "--all";
    const bool usual = all || option.empty();
    const bool whole = all || option == "--whole";
    const bool soak = all || option == "--soak";
    if (argc > 2 || (!usual && !whole && !soak)) {
        std::fprintf(stderr, "Usage: ombrix-benchmarks [--whole | --soak | --all]\n");
        return 2;
    }
    ombrix::tour::DropToolkitNoise();
    try {
        if (usual)
            MeasurePrograms();

        // From here on the station runs inside this program.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        QApplication::setStyle("Fusion");
        if (usual)
            MeasureStation();
        if (whole)
            MeasureWholeCalibration();
        if (soak)
            MeasureSoak();
    } catch (const std::exception &trouble) {
        std::fprintf(stderr, "ombrix-benchmarks: %s\n", trouble.what());
        return 1;
    }
    return missed == 0 ? 0 : 1;
}
