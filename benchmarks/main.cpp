// What the station costs, as a table: each row a number, its goal, and whether it holds. Exit code 1 when one doesn't.

#include "journal_writes.h"
#include "program.h"
#include "screen.h"
#include "simulated_run.h"
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
    Row("  of the guard beside it", guard, "MiB", guard > 0 && guard < 2, "< 2");
    Row("wake-ups, idle", wakeUps, "1/s", wakeUps == 0, "0");
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

void MeasureRealRange()
{
    const tour::Options options{.pictures = "", .board = "dc", .theme = "light", .testbench = OMBRIX_TESTBENCH};
    const tour::RangeRun real = tour::RunRangeInRealTime(options);
    const tour::RangeRun floor = tour::RunRangeOnVirtualTime(options);
    if (!real.good || !floor.good)
        throw std::runtime_error("the range on pseudo-terminals was not accepted");
    const double over = static_cast<double>(real.micros) / static_cast<double>(floor.micros);
    Row("one range on pseudo-terminals", static_cast<double>(real.micros) / 1e6, "s");
    Row("  its waits, bytes and instruments alone", static_cast<double>(floor.micros) / 1e6, "s");
    Row("  over those", over, "", over <= 1.01, "<= 1.01");
}

void MeasureFirstCycle()
{
    const tour::GatherRun run = tour::GatherFirstCycleInRealTime(
        {.pictures = "", .board = "dc", .theme = "light", .testbench = OMBRIX_TESTBENCH});
    if (!run.good)
        throw std::runtime_error("the first cycle on pseudo-terminals did not end well");
    Row("first cycle, its counts gathered for", run.seconds, "s");
    Row("  the processor's part meanwhile", run.cpuShare * 100, "%", run.cpuShare < 0.05, "< 5");
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
    ombrix::tour::DropToolkitNoise();
    try {
        const StationFolder folder;
        Screen screen;
        MeasureStart(screen, folder);
        MeasureIdle(screen, folder);
        MeasureJournal(folder);
        MeasureTrace(folder);

        // From here on the station runs inside this program.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        QApplication::setStyle("Fusion");
        MeasureWait();
        MeasureSimulatedRun();
        MeasureRealRange();
        MeasureFirstCycle();
    } catch (const std::exception &trouble) {
        std::fprintf(stderr, "ombrix-benchmarks: %s\n", trouble.what());
        return 1;
    }
    return missed == 0 ? 0 : 1;
}
