// The procedures beyond the ranges, on the bench's instruments: what they look like with real numbers on them.
#include "tour/tour.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <QDir>

#include <cstdio>
#include <string>

namespace ombrix::tour {
namespace {

using test::BenchStation;
using test::ScriptedOperator;

constexpr unsigned kSeed = 7;
constexpr int kQuietMs = 1100;  // then the status line says what is, not what was

std::string ButtonOf(int step)
{
    int position = 0;
    while (position < kPositions && StepIdAtPosition(position) != step)
        ++position;
    return test::StepButton(position);
}

class Walk
{
public:
    Walk(int board, const Options &options) : m_station(WiringOf(board)), m_folder(options.pictures) {}

    bool Establishes() { return m_station.Establishes(); }
    ScriptedOperator &Person() { return m_station.person; }
    BenchStation &Station() { return m_station; }
    ScriptedOperator &Takes(const QString &name)
    {
        return m_station.person.Waits(kQuietMs).Does(
            [this, name] { ScriptedOperator::TakesPicture(QDir(m_folder).filePath(name + ".png")); });
    }
    bool Ends()
    {
        const bool good = m_station.person.Runs();
        if (!good)
            std::printf("%s\n", m_station.person.Trouble().c_str());
        return good;
    }

private:
    static test::Wiring WiringOf(int board)
    {
        test::Wiring wiring;
        wiring.bench.board = board;
        wiring.bench.seed = kSeed;
        wiring.painted = test::Painted::Yes;
        return wiring;
    }

    BenchStation m_station;
    QString m_folder;
};

void WalkFirstCycle(Walk &walk)
{
    walk.Person()
        .Clicks(ButtonOf(Step::FirstCycle))
        .WaitsFor("cmdFCReady")
        .Clicks("cmdFCReady")
        .WaitsUntil("point 3", [] { return ScriptedOperator::Text("lblFCProgress").starts_with("Point 3"); });
    walk.Takes("first-cycle-runs");
    walk.Person().WaitsFor("cmdFCReady");
    walk.Takes("first-cycle");
}

void WalkRatio(Walk &walk)
{
    walk.Person()
        .Clicks(ButtonOf(Step::Ratio))
        .WaitsFor("cmdOffset")
        .Clicks("cmdOffset")
        .WaitsFor("cmdOffset")
        .Clicks("cmdOffset")
        .WaitsFor("cmdOffset")
        .Clicks("cmdGain")
        .WaitsFor("cmdOffset")
        .ClicksCell("msgOffset", 1, 2)
        .WaitsFor("cmdRatioSelect");
    walk.Takes("ratio");
    walk.Person().Clicks("cmdGain").Waits(3000);
    walk.Takes("ratio-runs");
    walk.Person().WaitsFor("cmdOffset").Clicks("cmdRatioDone").WaitsFor("cmdSetup");
}

}  // namespace

bool RunProcedures(const Options &options)
{
    if (options.pictures.isEmpty())
        return true;
    Options there = options;
    there.pictures = QDir(options.pictures).absolutePath();
    Walk dc(kDc, there);
    if (!dc.Establishes())
        return false;
    WalkFirstCycle(dc);
    WalkRatio(dc);
    return dc.Ends();
}

}  // namespace ombrix::tour
