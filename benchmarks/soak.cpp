#include "soak.h"

#include "program.h"
#include "simulated_run.h"

#include "model/range_tables.h"
#include "model/station_settings.h"
#include "platform/safe_file.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "shell/station.h"
#include "shell/trace_start.h"
#include "support/bench_lines.h"
#include "support/scripted_operator.h"
#include "support/station.h"
#include "testbench/bench.h"

#include <QApplication>
#include <QMainWindow>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <malloc.h>
#include <numeric>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace ombrix::benchmarks {
namespace {

constexpr int kRowEvery = 1000;
constexpr unsigned kPaintedEvery = 10;  // units, behind the first row; painting takes most of the time
constexpr double kMiB = 1024 * 1024;
constexpr double kSame = 1.01;
constexpr const char *kMeter = "/bench/meter";
constexpr const char *kCalibrator = "/bench/calibrator";
constexpr int kBoardsInTurn[] = {kDc, kAc, kAc2, kAc3, kLc, kTc, kTemp, kRtd, kVf};

bench::BenchSetup UnitOf(int board, unsigned seed)
{
    bench::BenchSetup setup;
    setup.board = board;
    setup.kind = board == kVf ? kCtr : kDpm;
    setup.seed = seed;
    setup.outputSwitch = false;
    return setup;
}

void EstablishesAnew(test::ScriptedOperator &person)
{
    if (Established)  // another wiring ends the session
        person.Clicks("cmdSetup").WaitsFor("optManual").Clicks("optManual").Clicks("optAutomatic");
    person.Clicks("cmdEstablish").WaitsUntil("it is established", [] {
        return Established && test::NavigationIsFree();
    });
    if (!person.Runs())
        throw std::runtime_error("the soak found no meter: " + person.Trouble());
}

// Establishes a unit and takes it through the ranges of its board. The bench, which keeps all that was said to it, goes.
int CalibrateUnit(test::VirtualClock &clock, const bench::BenchSetup &unit)
{
    bench::Bench bench(unit);
    const test::BenchLines lines(clock, bench, kMeter, kCalibrator);
    test::ScriptedOperator person(&clock);
    EstablishesAnew(person);
    if (SCType != unit.board)
        throw std::runtime_error("the soak took a " + BoardName(unit.board) + " for a " + BoardName(SCType));
    const std::vector<int> positions = test::RangePositions();
    for (const int position : positions)
        unit.board == kVf ? CalibrateVfRange(person, position) : CalibrateRange(person, position, 1);
    person.Clicks("cmdSetup").WaitsFor("optManual").WaitsFor("cmdSetup");  // a counter's input goes
    if (!person.Runs())
        throw std::runtime_error("the soak stopped at a " + BoardName(unit.board) + ": " + person.Trouble());
    if (bench.CalibratorNow().operating)
        throw std::runtime_error("the soak left an output");
    return static_cast<int>(positions.size());
}

std::uintmax_t BytesOfJournal()
{
    std::uintmax_t bytes = 0;
    for (const auto &file : std::filesystem::directory_iterator("Journal"))
        bytes += file.file_size();
    return bytes;
}

SoakRow RowNow(int ranges)
{
    SoakRow row;
    row.ranges = ranges;
    row.residentMiB = ResidentMiBOf(getpid());
    row.heapMiB = static_cast<double>(mallinfo2().uordblks) / kMiB;
    const std::filesystem::directory_iterator files("/proc/self/fd");
    row.files = static_cast<int>(std::distance(begin(files), end(files))) - 1;  // the iterator's own
    row.widgets = static_cast<int>(QApplication::allWidgets().size());
    QObjectList roots = {qApp};
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->parent() == nullptr)
            roots.append(window);
    for (const QObject *root : roots) {
        row.objects += 1 + static_cast<int>(root->findChildren<QObject *>().size());
        row.timers += static_cast<int>(root->findChildren<QTimer *>().size());
    }
    return row;
}

void Print(const SoakRow &row)
{
    std::printf("%8d %12.2f %10.2f %6d %8d %8d %7d %14.1f\n", row.ranges, row.residentMiB, row.heapMiB, row.files,
                row.widgets, row.objects, row.timers, row.journal);
    std::fflush(stdout);
}

double Mean(const std::vector<SoakRow> &rows, std::size_t from, std::size_t to,
            const std::function<double(const SoakRow &)> &what)
{
    double sum = 0;
    for (std::size_t i = from; i < to; ++i)
        sum += what(rows[i]);
    return sum / static_cast<double>(to - from);
}

}  // namespace

std::vector<SoakRow> RunSoak(int ranges)
{
    std::printf("%8s %12s %10s %6s %8s %8s %7s %14s\n", "ranges", "resident MiB", "heap MiB", "files", "widgets",
                "objects", "timers", "bytes a range");
    test::VirtualClock clock;
    const test::WorkFolder folder;
    WriteFile("Ombrix.ini", std::string("[Ports]\nCOM1=") + kMeter + "\nCOM2=" + kCalibrator +
                                "\n[Comms]\nCALPort=2\nDPMPort=1\nSwitch=0\n");
    test::OpenWholeStation();
    BeginTrace(".");
    VFLow = VFHigh = "3";
    std::vector<SoakRow> rows;
    int done = 0;
    int rowAt = 0;
    std::uintmax_t written = BytesOfJournal();
    for (unsigned unit = 0; done < ranges; ++unit) {
        frmOmbrix->setUpdatesEnabled(done < kRowEvery || unit % kPaintedEvery == 0);
        done += CalibrateUnit(clock, UnitOf(kBoardsInTurn[unit % std::size(kBoardsInTurn)], unit + 1));
        if (done < rowAt + kRowEvery && done < ranges)
            continue;
        rows.push_back(RowNow(done));
        const std::uintmax_t now = BytesOfJournal();
        rows.back().journal =
            static_cast<double>(now - written) / (done - (rows.size() > 1 ? rows.end()[-2].ranges : 0));
        written = now;
        rowAt = done / kRowEvery * kRowEvery;
        Print(rows.back());
    }
    EndTrace();
    CloseStation();
    return rows;
}

bool IsFlat(const std::vector<SoakRow> &rows)
{
    const std::size_t first = rows.size() / 3;
    const std::size_t second = rows.size() * 2 / 3;
    if (first == 0)
        return false;  // too few to tell
    const auto grows = [&](const std::function<double(const SoakRow &)> &what, double limit) {
        return Mean(rows, second, rows.size(), what) > Mean(rows, first, second, what) * limit;
    };
    const auto bytes = [](const SoakRow &row) { return row.journal; };
    const double alike = Mean(rows, second, rows.size(), bytes) / Mean(rows, first, second, bytes);
    return !grows([](const SoakRow &row) { return row.residentMiB; }, kSame) &&
           !grows([](const SoakRow &row) { return row.heapMiB; }, kSame) &&
           !grows([](const SoakRow &row) { return row.files; }, 1) &&
           !grows([](const SoakRow &row) { return row.widgets; }, 1) &&
           !grows([](const SoakRow &row) { return row.objects; }, 1) &&
           !grows([](const SoakRow &row) { return row.timers; }, 1) && alike < kSame && alike > 1 / kSame;
}

}  // namespace ombrix::benchmarks
