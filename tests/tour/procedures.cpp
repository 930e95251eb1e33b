// The procedures beyond the ranges, on the bench's instruments: what they look like with real numbers on them.
#include "tour/bench_walk.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "session/state.h"

#include <string>

namespace ombrix::tour {
namespace {

using test::ScriptedOperator;

constexpr int kSettleMs = 5000;
constexpr int kRunsMs = 500;  // into a trial
constexpr int kTrials = 3;    // until the current is right

void WalkFirstCycle(BenchWalk &walk)
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

void WalkRatio(BenchWalk &walk)
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
void WalkZeroAdjust(BenchWalk &walk)
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

void WalkResistors(BenchWalk &walk)
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

void WalkCurrent(BenchWalk &walk)
{
    walk.Person().Clicks(test::ButtonOf(Step::RtdCurrent)).WaitsFor("cmdISCalib");
    for (int trial = 0; trial < kTrials; ++trial)
        walk.Person().Clicks("cmdISCalib").WaitsFor("cmdISCalib");
    walk.Person().WaitsUntil("it is followed", [] { return ScriptedOperator::Text("lblISReadingMark") == "live"; });
    walk.Takes("rtd-current").Clicks("cmdISDone").WaitsFor("cmdSetup");
}

bool WalkDc(const Options &options)
{
    BenchWalk walk(kDc, options);
    if (!walk.Establishes())
        return false;
    WalkFirstCycle(walk);
    WalkRatio(walk);
    return walk.Ends();
}

bool WalkAc2(const Options &options)
{
    BenchWalk walk(kAc2, options);
    if (!walk.Establishes())
        return false;
    WalkZeroAdjust(walk);
    WalkResistors(walk);
    return walk.Ends();
}

bool WalkTemp(const Options &options)
{
    BenchWalk walk(kTemp, options);
    if (!walk.Establishes())
        return false;
    WalkCurrent(walk);
    return walk.Ends();
}

}  // namespace

bool RunProcedures(const Options &options)
{
    return options.pictures.isEmpty() || (WalkDc(options) && WalkAc2(options) && WalkTemp(options));
}

}  // namespace ombrix::tour
