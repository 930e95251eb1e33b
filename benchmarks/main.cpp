// What the station costs, as a table: each row a number, its goal, and whether it holds. Exit code 1 when one doesn't.

#include "display.h"
#include "program.h"
#include "simulated_run.h"

#include "support/station.h"

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
    std::printf("%-52s %10.2f %-6s\n", what, value, unit);
    std::fflush(stdout);
}

void Row(const char *what, double value, const char *unit, bool holds, const char *goal)
{
    std::printf("%-52s %10.2f %-6s %-12s %s\n", what, value, unit, goal, holds ? "holds" : "MISSED");
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
        std::filesystem::copy_file(OMBRIX_STATION, m_path / "ombrix");
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

double MsToFirstWindow(Display &display, const std::string &program, const std::string &folder)
{
    display.ForgetWindows();
    const Program running({program}, folder, {"DISPLAY=" + display.Name(), "QT_QPA_PLATFORM=xcb"});
    const auto shown = display.NextWindow();
    if (!shown)
        throw std::runtime_error(program + " shows no window");
    return std::chrono::duration<double, std::milli>(*shown - running.Started()).count();
}

void MeasureStart(Display &display, const StationFolder &folder)
{
    const std::string station = (folder.Path() / "ombrix").string();
    const std::string work = folder.Path().string();
    std::vector<double> bare;
    std::vector<double> own;
    MsToFirstWindow(display, OMBRIX_BARE_WINDOW, work);  // both once unmeasured: files into memory,
    MsToFirstWindow(display, station, work);             // and the settings of a first start written
    for (int start = 0; start < kStarts; ++start) {
        bare.push_back(MsToFirstWindow(display, OMBRIX_BARE_WINDOW, work));
        own.push_back(MsToFirstWindow(display, station, work));
    }
    const double ratio = Median(own) / Median(bare);
    Row("first window, bare window of the toolkit", Median(bare), "ms");
    Row("first window, station", Median(own), "ms");
    Row("first window, station over bare", ratio, "", ratio < 1.5, "< 1.5");
}

void MeasureIdle(Display &display, const StationFolder &folder)
{
    display.ForgetWindows();
    const Program running({(folder.Path() / "ombrix").string()}, folder.Path().string(),
                          {"DISPLAY=" + display.Name(), "QT_QPA_PLATFORM=xcb"});
    if (!display.NextWindow())
        throw std::runtime_error("the station shows no window");
    std::this_thread::sleep_for(kSettle);
    const double wakeUps = running.SleepsASecond(kIdleSeconds);
    const double memory = running.ResidentMiB();
    Row("memory in use, idle", memory, "MiB", memory < 45, "< 45");
    Row("wake-ups, idle", wakeUps, "1/s", wakeUps == 0, "0");
}

void MeasureSimulatedRun()
{
    const test::WorkFolder folder;
    const SimulatedRun run = CalibrateSimulatedDc();
    Row("ranges accepted in the simulator", run.ranges, "");
    Row("longest stay in one event meanwhile", run.longestBlockMs, "ms", run.longestBlockMs < 50, "< 50");
}

}  // namespace
}  // namespace ombrix::benchmarks

int main(int argc, char **argv)
{
    using namespace ombrix::benchmarks;
    try {
        const StationFolder folder;
        Display display;
        MeasureStart(display, folder);
        MeasureIdle(display, folder);

        // From here on the station runs inside this program.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        QApplication::setStyle("Fusion");
        MeasureSimulatedRun();
    } catch (const std::exception &trouble) {
        std::fprintf(stderr, "ombrix-benchmarks: %s\n", trouble.what());
        return 1;
    }
    return missed == 0 ? 0 : 1;
}
