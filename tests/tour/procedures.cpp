// The procedures beyond the ranges, on the bench's instruments: what they look like with real numbers on them.
#include "tour/tour.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
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
constexpr int kSettleMs = 5000;
constexpr int kRunsMs = 500;    // into a trial
constexpr int kQuietMs = 1100;  // then the status line says what is, not what was

class Walk
{
public:
    Walk(int board, const Options &options)
        : m_station(WiringOf(board, options.theme.toStdString())), m_folder(options.pictures)
    {}

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
    static test::Wiring WiringOf(int board, const std::string &theme)
    {
        test::Wiring wiring;
        wiring.bench.board = board;
        wiring.bench.seed = kSeed;
        wiring.painted = test::Painted::Yes;
        wiring.theme = theme;
        return wiring;
    }

    BenchStation m_station;
    QString m_folder;
};

void WalkFirstCycle(Walk &walk)
{
    walk.Person()
        .Clicks(test::ButtonOf(Step::FirstCycle))
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
        .Clicks(test::ButtonOf(Step::Ratio))
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
    walk.Person().Clicks("cmdGain").Waits(kRunsMs);
    walk.Takes("ratio-runs");
    walk.Person().WaitsFor("cmdOffset").Clicks("cmdRatioDone").WaitsFor("cmdSetup");
}

// The page at a trim, as an operator with a screwdriver in hand sees it.
void WalkZeroAdjust(Walk &walk)
{
    const auto follows = [&walk](const std::string &words, const std::string &button) -> ScriptedOperator & {
        return walk.Person().WaitsUntil(words, [words, button] {
            return ScriptedOperator::Text("lblZeroAdj").starts_with(words) && ScriptedOperator::IsEnabled(button);
        });
    };
    walk.Person().Clicks(test::ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj");
    follows("Connect external", "cmdZeroAdj");
    walk.Takes("zero-adjust-r3").Clicks("cmdZeroAdj");
    follows("Remove the TP1", "cmdZeroAdj")
        .Does([&walk] { walk.Station().bench.InstallDcJumper(true, NowMicros()); })
        .Clicks("cmdZeroAdj");
    follows("Wait for +10 mV", "cmdZeroAdjOK").Waits(kSettleMs).Clicks("cmdZeroAdjOK");
    follows("Wait for -10 mV", "cmdZeroAdjOK").Waits(kSettleMs).Clicks("cmdZeroAdjOK");
    follows("Adjust R10", "cmdZeroAdjOK").Waits(kSettleMs);
    walk.Takes("zero-adjust");
    walk.Person().Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
}

void WalkResistors(Walk &walk)
{
    const auto settles = [&walk](const std::string &words) {
        walk.Person()
            .WaitsUntil(words,
                        [words] {
                            return ScriptedOperator::Text("lblTrimMsg(0)").starts_with(words) &&
                                   ScriptedOperator::IsEnabled("cmdTrimOK");
                        })
            .Waits(kSettleMs)
            .Clicks("cmdTrimOK");
    };
    walk.Person().Clicks(test::ButtonOf(Step::TrimR13R14)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart");
    settles("Wait for +200 mV");
    settles("Wait for -200 mV");
    walk.Person().WaitsFor("cmdDone(5)");
    walk.Takes("trim-resistors").Clicks("cmdDone(5)").WaitsFor("cmdSetup");
}

bool WalkDc(const Options &options)
{
    Walk walk(kDc, options);
    if (!walk.Establishes())
        return false;
    WalkFirstCycle(walk);
    WalkRatio(walk);
    return walk.Ends();
}

bool WalkAc2(const Options &options)
{
    Walk walk(kAc2, options);
    if (!walk.Establishes())
        return false;
    WalkZeroAdjust(walk);
    WalkResistors(walk);
    return walk.Ends();
}

}  // namespace

bool RunProcedures(const Options &options)
{
    if (options.pictures.isEmpty())
        return true;
    Options there = options;
    there.pictures = QDir(options.pictures).absolutePath();
    return WalkDc(there) && WalkAc2(there);
}

}  // namespace ombrix::tour
