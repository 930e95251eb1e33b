// Thermocouple meters, thermometers and counters: the pages beyond the ranges, on each route and with several units,
// with every fault of the bench and with the end of the program at any moment. The bench's truth is the judge.

#include "journeys/page_loops.h"
#include "journeys/process_meters.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

// Positions.
constexpr int kTcGainOffset = 6;
constexpr int kTempGainOffset = 7;
constexpr int kRtdCurrent = 4;
constexpr int kVfRanges[] = {2, 3, 4};

constexpr int kStepEntry = 90;  // seconds, most of them for an input that nobody confirms
constexpr int kRemoval = 70;
constexpr int kPatience = 120;   // what the operator waits before he ends what goes no further
constexpr int kRestart = 3000;   // more than any restart: a meter that has just restarted is deaf
constexpr double kFar = 1000;    // counts, beyond which nobody believes a reading
constexpr int kSettling = 2500;  // until a display has settled before his eyes
constexpr int kGainWord = 29;    // of types J, K, E, N

}  // namespace

// ---- every unit on every route ----

using Journey = std::tuple<int, Route, unsigned>;

class ProcessMeter : public testing::TestWithParam<Journey>
{
};

std::string NameOfJourney(const testing::TestParamInfo<Journey> &info)
{
    return BoardName(std::get<0>(info.param)) + NameOf(std::get<1>(info.param)) + "Seed" +
           std::to_string(std::get<2>(info.param));
}

TEST_P(ProcessMeter, EndsWithinWhatItsPagesPromise)
{
    const auto [board, route, seed] = GetParam();
    BenchStation station(WiringOf(board, route, seed));
    ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
    ASSERT_EQ(SCType, board);
    if (board == kTemp) {
        station.person.Clicks(StepButton(kRtdCurrent)).WaitsFor("cmdISCalib");
        TrimsTheCurrent(station);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_LE(std::fabs(station.bench.RemainingError("RTD Current")), 1.5) << "a count, and the display's own half";
    }
    if (board != kVf) {
        station.person.Clicks(StepButton(board == kTc ? kTcGainOffset : kTempGainOffset)).WaitsFor("cmdQDReady");
        for (const std::string type : {"0", "1"}) {
            TrimsTheDiode(station, type);
            ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
            const std::string title = type == "0" ? "Gain/Offset J" : "Gain/Offset T";
            EXPECT_LE(std::fabs(station.bench.RemainingError(title)), 2) << title;
        }
    } else {
        VFLow = VFHigh = "3";
        for (const int position : kVfRanges) {
            station.person.Clicks(StepButton(position)).WaitsFor("cmdVFRdyRpt").Clicks("cmdVFRdyRpt");
            station.person.WaitsFor("cmdVFRdyRpt");
            ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
            EXPECT_EQ(ScriptedOperator::Text("cmdVFRdyRpt"), "Repeat");
            EXPECT_LE(std::fabs(station.bench.RemainingError(position)), 4) << "3 counts, and the display's flicker";
        }
        station.person.Clicks("cmdSetup").WaitsFor("optManual").WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
    EXPECT_FALSE(station.bench.CalibratorNow().operating) << "ended in standby";
}

INSTANTIATE_TEST_SUITE_P(Units, ProcessMeter,
                         testing::Combine(testing::Values(kTc, kTemp, kVf), testing::Values(Route::Direct),
                                          testing::Values(1u, 2u, 3u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(OtherRoutes, ProcessMeter,
                         testing::Combine(testing::Values(kTc, kTemp, kVf), testing::Values(Route::Uut, Route::Manual),
                                          testing::Values(4u)),
                         NameOfJourney);

// ---- with every fault, and with the end of the program ----

namespace {

// Does `then` when a button is on; leaves by `way` what goes no further, and does `after`. What is told inside a script
// comes behind all that was told before, so each piece tells the next.
void GoesOn(
    BenchStation &station, const std::string &button, const std::string &way, const std::function<void()> &then,
    const std::function<void()> &after = [] {})
{
    const std::int64_t start = station.clock.Elapsed();
    station.person.WaitsUntil(button + " is on or it takes too long", [&station, button, start] {
        return ScriptedOperator::IsEnabled(button) || NavigationIsFree() ||
               station.clock.Elapsed() > start + kPatience * 1000;
    });
    station.person.Does([=, &station] {
        if (ScriptedOperator::IsEnabled(button))
            return then();
        if (!NavigationIsFree())
            Leaves(station, way, kRemoval);
        after();
    });
}

// The distance that stands there when he accepts is so, unless the display itself lies.
void AcceptsTheDiode(BenchStation &station, const std::string &fault)
{
    station.person.Waits(kSettling).Does([&station, fault] {
        const bool on = ScriptedOperator::IsEnabled("cmdQDStop(0)");
        const std::string distance = ScriptedOperator::Text("lblQDDistance");
        if (on && ScriptedOperator::Text("lblQDDistanceMark") == "live" && !DisplayLies(station, fault)) {
            EXPECT_NEAR(station.bench.RemainingError("Gain/Offset J"), Val(distance) * 10, 2) << "told: " << distance;
        }
        Leaves(station, on ? "cmdQDStop(0)" : "cmdQDStop(1)", kRemoval);
        station.person.Waits(kRestart);
    });
}

PageScript DiodeScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kTc, route, 1);
    script.works = [](BenchStation &station, const std::string &fault) {
        Leaves(station, StepButton(kTcGainOffset), kStepEntry);
        station.person.Does([&station, fault] {
            const auto rests = [&station] { station.person.Waits(kRestart); };
            if (!ScriptedOperator::IsEnabled("cmdQDReady"))
                return rests();
            station.person.Clicks("cmdQDReady");
            const auto accepts = [&station, fault] { AcceptsTheDiode(station, fault); };
            const auto trimsTheOffset = [&station, accepts, rests] {
                station.person.Clicks("cmdQDOffset");
                GoesOn(station, "cmdQDStop(0)", "cmdQDStop(1)", accepts, rests);
            };
            const auto trimsTheGain = [&station, trimsTheOffset, rests] {
                station.person.Clicks("cmdQDGain");
                GoesOn(station, "cmdQDOffset", "cmdQDStop(1)", trimsTheOffset, rests);
            };
            GoesOn(station, "cmdQDGain", "cmdQDStop(1)", trimsTheGain, rests);
        });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(StepButton(kTcGainOffset)).WaitsFor("cmdQDReady").Clicks("cmdQDReady");
        station.person.WaitsFor("cmdQDGain").Clicks("cmdQDGain");
    };
    script.proves = [](BenchStation &station) {
        station.person.Clicks(StepButton(kTcGainOffset)).WaitsFor("cmdQDReady");
        TrimsTheDiode(station, "0");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_LE(std::fabs(station.bench.RemainingError("Gain/Offset J")), 2);
    };
    return script;
}

// The word of the offset alone: its page never touches the gain.
PageScript OffsetOnlyScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kTc, route, 1);
    script.works = [](BenchStation &station, const std::string &fault) {
        const std::string gain = WordsOf(station, kGainWord, 1);
        Leaves(station, ButtonOf(Step::OffsetOnly), kStepEntry);
        station.person.Does([&station, fault, gain] {
            const auto rests = [&station, gain] {
                station.person.Waits(kRestart).Does(
                    [&station, gain] { EXPECT_EQ(WordsOf(station, kGainWord, 1), gain); });
            };
            if (!ScriptedOperator::IsEnabled("cmdQDReady"))
                return rests();
            station.person.Clicks("cmdQDReady");
            const auto accepts = [&station, fault] { AcceptsTheDiode(station, fault); };
            const auto trims = [&station, accepts, rests] {
                station.person.Clicks("cmdQDOffset");
                GoesOn(station, "cmdQDStop(0)", "cmdQDStop(1)", accepts, rests);
            };
            GoesOn(station, "cmdQDOffset", "cmdQDStop(1)", trims, rests);
        });
    };
    script.proves = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::OffsetOnly)).WaitsFor("cmdQDReady").Clicks("cmdQDReady");
        ClicksUntil(station, "cmdQDOffset", "lblQDDistance", 0.05, 0,
                    [&station] { station.person.Clicks("cmdQDStop(0)").WaitsFor("cmdSetup"); });
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_LE(std::fabs(station.bench.RemainingError("Gain/Offset J")), 2);
    };
    return script;
}

PageScript VfScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kVf, route, 1);
    script.wiring.bench.operateDelayMs = 50;  // Quit is through with a counter in 100 ms
    script.works = [](BenchStation &station, const std::string &fault) {
        VFLow = VFHigh = "3";
        Leaves(station, StepButton(kVfRanges[0]), kStepEntry);
        station.person.Does([&station, fault] {
            // A good run leaves its input; the way to Setup takes it off.
            const auto leaves = [&station] {
                Leaves(station, "cmdSetup", kRemoval);
                station.person.Waits(kRestart);
            };
            if (!ScriptedOperator::IsEnabled("cmdVFRdyRpt"))
                return leaves();
            const auto believes = [&station, fault, leaves] {
                const bool good = ScriptedOperator::Text("cmdVFRdyRpt") == "Repeat" &&
                                  !ScriptedOperator::Text("lblInst(7)").starts_with("Calculated");
                if (good && !DisplayLies(station, fault)) {
                    EXPECT_LE(std::fabs(station.bench.RemainingError(kVfRanges[0])), 4) << "the page was content";
                }
                leaves();
            };
            station.person.Clicks("cmdVFRdyRpt");
            GoesOn(station, "cmdVFRdyRpt", "cmdVFStop", believes, leaves);
        });
    };
    script.begins = [](BenchStation &station) {
        VFLow = VFHigh = "0";
        station.person.Clicks(StepButton(kVfRanges[0])).WaitsFor("cmdVFRdyRpt").Clicks("cmdVFRdyRpt");
    };
    script.proves = [](BenchStation &station) {
        station.person.Clicks(StepButton(kVfRanges[0])).WaitsFor("cmdVFRdyRpt").Clicks("cmdVFRdyRpt");
        station.person.WaitsFor("cmdVFRdyRpt").Clicks("cmdSetup").WaitsFor("optManual").WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_LE(std::fabs(station.bench.RemainingError(kVfRanges[0])), 4);
    };
    return script;
}

// An error that stands there live is so, unless the display itself lies.
void ExpectTheCurrentToBeTrue(BenchStation &station, const std::string &fault)
{
    const std::string counts = ScriptedOperator::Text("lblISError");
    const bool told = ScriptedOperator::Text("lblISErrorMark") == "live" && std::fabs(Val(counts)) <= kFar;
    if (told && !DisplayLies(station, fault)) {
        EXPECT_NEAR(station.bench.RemainingError("RTD Current"), Val(counts), 2) << "told: " << counts;
    }
}

PageScript CurrentScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kTemp, route, 1);
    script.works = [](BenchStation &station, const std::string &fault) {
        TakesTheTempBoard(station);
        Leaves(station, StepButton(kRtdCurrent), kStepEntry);
        station.person.Does([&station, fault] {
            const auto leaves = [&station] {
                Leaves(station, "cmdSetup", kRemoval);
                station.person.Waits(kRestart);
            };
            if (!ScriptedOperator::IsEnabled("cmdISCalib"))
                return leaves();
            station.person.Clicks("cmdISCalib");
            GoesOn(
                station, "cmdISDone", "cmdISDone",
                [&station, fault, leaves] {
                    station.person.Waits(kSettling).Does([&station, fault, leaves] {
                        ExpectTheCurrentToBeTrue(station, fault);
                        Leaves(station, "cmdISDone", kRemoval);
                        station.person.Does(leaves);
                    });
                },
                leaves);
        });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(StepButton(kRtdCurrent)).WaitsFor("cmdISCalib").Clicks("cmdISCalib");
    };
    script.proves = [](BenchStation &station) {
        TakesTheTempBoard(station);
        station.person.Clicks(StepButton(kRtdCurrent)).WaitsFor("cmdISCalib");
        TrimsTheCurrent(station);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_LE(std::fabs(station.bench.RemainingError("RTD Current")), 1.5);
    };
    return script;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OnTheDiode, FaultLoop, testing::ValuesIn(LastingFaultCases(DiodeScript(Route::Direct), 61)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAVfRange, FaultLoop, testing::ValuesIn(LastingFaultCases(VfScript(Route::Direct), 167)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheRtdCurrent, FaultLoop,
                         testing::ValuesIn(LastingFaultCases(CurrentScript(Route::Direct), 31)), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheOffsetAlone, FaultLoop,
                         testing::ValuesIn(LastingFaultCases(OffsetOnlyScript(Route::Direct), 31, {"wrong-length"})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheDiodeElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(DiodeScript, {Route::Manual, "silent-meter", 31})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheOffsetAloneElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(OffsetOnlyScript, {Route::Uut, "calibrator-port-gone", 43})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAVfRangeElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(VfScript, {Route::Manual, "wrong-length", 83})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheRtdCurrentElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(CurrentScript, {Route::Uut, "silent-meter", 43})),
                         NameOfFaultCase);

INSTANTIATE_TEST_SUITE_P(OnTheDiode, QuitLoop,
                         testing::ValuesIn(QuitCases(DiodeScript(Route::Direct), {0, 500, 1200, 1900, 2600, 4000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(OnAVfRange, QuitLoop,
                         testing::ValuesIn(QuitCases(VfScript(Route::Direct),
                                                     {0, 900, 3000, 7000, 11000, 14000, 20000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(OnTheRtdCurrent, QuitLoop,
                         testing::ValuesIn(QuitCases(CurrentScript(Route::Direct),
                                                     {0, 1500, 4000, 6500, 7500, 9000, 12000})),
                         NameOfQuitCase);
