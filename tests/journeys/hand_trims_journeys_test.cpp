// Zero adjust, gain balance and the trims of the AC boards on every route: an operator with a screwdriver and a soldering
// iron does what the page says, until the page is content; the bench's truth says how far off the unit then is.

#include "journeys/page_loops.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kLook = 5000;                    // milliseconds until he believes a reading
constexpr int kPatience = 400;                 // seconds; then he leaves with Esc what goes no further
constexpr int kGlance = 60;                    // where no look can help
constexpr double kContent = 1;                 // counts off the target
constexpr double kTurn = 2000;                 // counts, the most that he turns before he looks again
constexpr double kNowhereNear = 20000;         // then it isn't the trimmer
constexpr double kThreshold = 0.0005 * 80000;  // below it no resistor is added

struct Trim {
    int board;
    int step;
    const char *title;  // of its truth
    double asItCame;    // counts that every unit is off, at least
    double limit;       // and afterwards at most
};
const Trim kZeroAdjust = {kAc2, Step::ZeroAdjust, "Zero Adjust", 3, 2};
const Trim kBalance = {kAc3, Step::ZeroAdjust, "Zero Adjust", 3, 2};
const Trim kResistors = {kAc2, Step::TrimR13R14, "R13/R14 Trim", kThreshold, kThreshold + 3};
const Trim kNegativeGain = {kAc3, Step::MinusGainTrim, "- Gain Trim", 20, 3};
const Trim kR38 = {kAc3, Step::TrimR38, "R38 Trim", 20, 3};

std::string Text(const char *label)
{
    return ScriptedOperator::Text(label);
}

bool Says(const char *label, const char *words)
{
    return Text(label).find(words) != std::string::npos;
}

// ---- what the hands do about what the page says; the button to be clicked then ----

std::map<std::string, double> turned;  // in this run, by trimmer
bool gaveUp = false;                   // in this run: the time was up

void Turns(bench::Bench &bench, const std::string &trimmer, double counts)
{
    bench.Trim(trimmer, counts, NowMicros());
    turned[trimmer] += counts;
}

// What came to nothing is put back.
void TurnsBack(bench::Bench &bench)
{
    for (const auto &[trimmer, counts] : turned)
        bench.Trim(trimmer, -counts, NowMicros());
    turned.clear();
}

std::string WorksZeroAdjust(bench::Bench &bench)
{
    const char *says = "lblZeroAdj";
    const double distance = Val(Text("lblZeroAdjDistance"));
    if (Says(says, "adjust R3")) {
        bench.Trim("R3", -bench.Tp1(), NowMicros());
        return "cmdZeroAdj";
    }
    if (Says(says, "install")) {
        bench.InstallDcJumper(true, NowMicros());
        return "cmdZeroAdj";
    }
    if (Says(says, "Remove the DC jumper")) {
        bench.InstallDcJumper(false, NowMicros());
        return "cmdZeroAdj";
    }
    if (Says(says, "Adjust R25")) {
        bench.Trim("R25", -bench.DutyCycle(), NowMicros());
        return "cmdDone(4)";
    }
    if (Says(says, "to settle, then click"))
        return "cmdZeroAdjOK";
    if (Says(says, "to settle, then:"))
        return std::fabs(distance) <= kContent ? "cmdZeroAdjAccept" : "cmdZeroAdjOK";
    if (std::fabs(distance) <= kContent)
        return "cmdZeroAdjOK";
    // The trimmer moves both readings, the one up and the other down.
    const double turn = std::clamp(distance, -kTurn, kTurn);
    Turns(bench, Says(says, "R10") ? "R10" : "R9", Says(says, "desired +") ? -turn : turn);
    return "";
}

// Solders what stands behind the name.
bool Solders(bench::Bench &bench, const std::string &name, const std::string &line)
{
    bool added = false;
    for (const auto &[text, megohms] : {std::pair{"10M", 10.0}, {"4.3M", 4.3}, {"2M", 2.0}, {"1M", 1.0}})
        for (const std::string &word : Split(line, ' '))
            if (word == text)
                added = bench.AddResistor(name, megohms, NowMicros());
    return added;
}

std::string WorksTrim(bench::Bench &bench)
{
    const char *says = "lblTrimMsg(0)";
    const double distance = Val(Text("lblTrimDistance"));
    if (Says(says, "Add to R13")) {
        const std::vector<std::string> lines = Split(Text(says), '\n');
        const bool first = Solders(bench, "R13", lines[0]);
        const bool second = Solders(bench, "R14", lines[1]);
        return first || second ? "cmdTrimStart" : "cmdDone(5)";
    }
    if (Says(says, "Resistor Error"))
        return "cmdDone(5)";
    if (!Says(says, "adjust") && !Says(says, "Adjust"))
        return "cmdTrimOK";
    if (!Text("lblTrimDistance").empty() && std::fabs(distance) <= kContent)
        return "cmdTrimOK";
    if (Text("lblTrimDistance").empty() || std::fabs(distance) > kNowhereNear)
        return "";
    Turns(bench, Says(says, "R38") ? "R38" : "R12", -std::clamp(distance, -kTurn, kTurn));
    return "";
}

// ---- the operator ----

// Looks, does something, looks again, until the step is left. What he tells inside Does comes behind all told before.
void WorksOn(BenchStation &station, std::int64_t until, const std::function<void()> &then)
{
    station.person.Waits(kLook).Does([&station, until, then] {
        if (NavigationIsFree())
            return then();
        if (InputIsUnknown() && station.clock.Elapsed() <= until)
            return WorksOn(station, until, then);
        const bool zero = ScriptedOperator::Sees("fraCalib(16)");
        if (station.clock.Elapsed() > until) {
            gaveUp = true;
            if (ScriptedOperator::IsEnabled("cmdDone(5)"))
                station.person.Clicks("cmdDone(5)");
            else
                station.person.Presses(Qt::Key_Escape);
        } else {
            const std::string button = zero ? WorksZeroAdjust(station.bench) : WorksTrim(station.bench);
            if (!button.empty() && ScriptedOperator::IsEnabled(button))
                station.person.Clicks(button);
        }
        WorksOn(station, until, then);
    });
}

void Works(
    BenchStation &station, const Trim &trim, int seconds, const std::function<void()> &then = [] {})
{
    station.person.Clicks(ButtonOf(trim.step)).WaitsUntil("the page stands", NavigationIsFree);
    station.person.Does([&station, &trim, seconds, then] {
        const char *start = trim.step == Step::ZeroAdjust ? "cmdZeroAdj" : "cmdTrimStart";
        turned.clear();
        gaveUp = false;
        station.bench.InstallDcJumper(trim.step != Step::ZeroAdjust || trim.board == kAc3, NowMicros());
        if (!ScriptedOperator::IsEnabled(start))
            return;  // the meter did not answer
        station.person.Clicks(start);
        WorksOn(station, station.clock.Elapsed() + seconds * 1000, then);
    });
}

void ExpectTrimmed(BenchStation &station, const Trim &trim)
{
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_LE(std::fabs(station.bench.RemainingError(trim.title)), trim.limit) << station.bench.LastWords();
    EXPECT_NE(CurrentStepId, trim.step) << "the next step has begun";
    EXPECT_FALSE(station.bench.OutputHistory().back().operate);
}

// ---- every unit on every route ----

using Journey = std::tuple<Trim, Route, unsigned>;

class HandTrim : public testing::TestWithParam<Journey>
{
};

std::string NameOfJourney(const testing::TestParamInfo<Journey> &info)
{
    const Trim &trim = std::get<0>(info.param);
    std::string name = BoardName(trim.board) + trim.title;
    std::erase_if(name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
    return name + NameOf(std::get<1>(info.param)) + "Seed" + std::to_string(std::get<2>(info.param));
}

// ---- for the loops ----

PageScript ScriptOf(const Trim &trim, Route route)
{
    PageScript script;
    script.wiring = WiringOf(trim.board, route, 1);
    script.works = [&trim](BenchStation &station, const std::string &fault) {
        const bool hopeless = fault == "over-range" || fault == "never-operating" || fault == "silent-meter" ||
                              fault == "meter-port-gone";
        // A reply that takes its time tells what stood before the last turn.
        const double limit = fault == "split" || fault == "slow-reply" ? 2 * trim.limit : trim.limit;
        Works(station, trim, hopeless ? kGlance : kPatience, [&station, &trim, fault, limit] {
            // A calibrator that trips tells nobody, and its meter then reads no input.
            const bool blind = DisplayLies(station, fault) || fault == "trips";
            if (CurrentStepId == trim.step || blind || gaveUp) {
                TurnsBack(station.bench);
            } else {
                EXPECT_LE(std::fabs(station.bench.RemainingError(trim.title)), limit) << "the page was content";
            }
        });
    };
    script.begins = [&trim](BenchStation &station) {
        const char *start = trim.step == Step::ZeroAdjust ? "cmdZeroAdj" : "cmdTrimStart";
        station.person.Clicks(ButtonOf(trim.step)).WaitsFor(start).Clicks(start);
    };
    script.proves = [&trim](BenchStation &station) {
        Works(station, trim, kPatience);
        ExpectTrimmed(station, trim);
    };
    return script;
}

// Those that reach a reading that goes on; each of them is taken by the long walk.
std::vector<FaultCase> FaultsOf(const Trim &trim, int every)
{
    return LastingFaultCases(ScriptOf(trim, Route::Direct), every,
                             {"silent-meter", "silent-calibrator", "meter-port-gone", "calibrator-port-gone",
                              "never-operating", "over-range"});
}

std::vector<FaultCase> OneFaultOf(const Trim &trim, const std::string &fault, int every)
{
    return LastingFaultCases(ScriptOf(trim, Route::Direct), every, {fault});
}

std::vector<FaultCase> FaultsElsewhere(const Trim &trim, const ShortWalk &shortWalk)
{
    return OtherRoutes([&trim](Route route) { return ScriptOf(trim, route); }, shortWalk);
}

}  // namespace

TEST_P(HandTrim, EndsWithinItsLimitWithTheInputOff)
{
    const auto &[trim, route, seed] = GetParam();
    BenchStation station(WiringOf(trim.board, route, seed));
    ASSERT_TRUE(station.Establishes()) << Text("lblStatus");
    ASSERT_GT(std::fabs(station.bench.RemainingError(trim.title)), trim.asItCame) << "as it came";
    Works(station, trim, kPatience);
    ExpectTrimmed(station, trim);
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Boards, HandTrim,
                         testing::Combine(testing::Values(kZeroAdjust, kBalance, kResistors, kNegativeGain, kR38),
                                          testing::Values(Route::Direct), testing::Values(1u, 2u, 3u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(OtherRoutes, HandTrim,
                         testing::Combine(testing::Values(kZeroAdjust, kBalance, kResistors, kNegativeGain, kR38),
                                          testing::Values(Route::Uut, Route::Manual), testing::Values(4u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(InZeroAdjust, FaultLoop, testing::ValuesIn(FaultsOf(kZeroAdjust, 67)), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheResistors, FaultLoop, testing::ValuesIn(FaultsOf(kResistors, 41)), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InR38, FaultLoop, testing::ValuesIn(FaultsOf(kR38, 41)), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheBalance, FaultLoop, testing::ValuesIn(OneFaultOf(kBalance, "never-operating", 83)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheNegativeGain, FaultLoop, testing::ValuesIn(OneFaultOf(kNegativeGain, "silent-meter", 83)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InZeroAdjustElsewhere, FaultLoop,
                         testing::ValuesIn(FaultsElsewhere(kZeroAdjust, {Route::Uut, "silent-calibrator", 97})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheBalanceElsewhere, FaultLoop,
                         testing::ValuesIn(FaultsElsewhere(kBalance, {Route::Manual, "silent-meter", 61})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheResistorsElsewhere, FaultLoop,
                         testing::ValuesIn(FaultsElsewhere(kResistors, {Route::Manual, "meter-port-gone", 61})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheNegativeGainElsewhere, FaultLoop,
                         testing::ValuesIn(FaultsElsewhere(kNegativeGain, {Route::Uut, "trips", 83})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InR38Elsewhere, FaultLoop,
                         testing::ValuesIn(FaultsElsewhere(kR38, {Route::Manual, "garbage", 61})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InTheBalance, QuitLoop,
                         testing::ValuesIn(QuitCases(ScriptOf(kBalance, Route::Direct), {0, 400, 900, 1500, 4000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(InTheResistors, QuitLoop,
                         testing::ValuesIn(QuitCases(ScriptOf(kResistors, Route::Direct), {0, 400, 900, 1500, 4000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(InZeroAdjust, QuitLoop,
                         testing::ValuesIn(QuitCases(ScriptOf(kZeroAdjust, Route::Direct), {0, 400, 900, 1500, 4000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(InR38, QuitLoop,
                         testing::ValuesIn(QuitCases(ScriptOf(kR38, Route::Direct), {0, 400, 900, 1500, 4000})),
                         NameOfQuitCase);
