// Ratio mode on both boards that have it: offset and gain end within two counts of what the unit hides.

#include "journeys/page_loops.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"
#include "support/journal_events.h"

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

constexpr int kPatience = 90;  // seconds for a trial
constexpr int kGlance = 20;    // before a display that says at once that it is over range
constexpr int kLook = 200;     // milliseconds, in which an alert finds its place
constexpr int kTrials = 3;
constexpr int kFirstReading = 2;   // column of a trial's grid
constexpr double kFar = 1000;      // counts, beyond which nobody believes a reading
constexpr double kSameCounts = 4;  // the flicker of two readings

// Also where the meter is lost: then its page offers the way out alone.
bool IsAtRest()
{
    return ScriptedOperator::IsEnabled("cmdRatioDone");
}

void Tries(BenchStation &station, const std::string &button)
{
    for (int trial = 0; trial < kTrials; ++trial)
        station.person.Clicks(button).WaitsUntil("the trial has ended", IsAtRest);
}

void CalibratesRatio(BenchStation &station)
{
    station.person.Clicks(ButtonOf(Step::Ratio)).WaitsUntil("the page stands", IsAtRest);
    Tries(station, "cmdOffset");
    Tries(station, "cmdGain");
    station.person.Clicks("cmdRatioDone").WaitsUntil("the page is left", NavigationIsFree);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_LE(std::abs(station.bench.RemainingError("Ratio Offset")), 2.0);
    EXPECT_LE(std::abs(station.bench.RemainingError("Ratio Gain")), 2.0);
}

using Journey = std::tuple<int, Route, unsigned>;

class RatioJourney : public testing::TestWithParam<Journey>
{
};

std::string NameOfJourney(const testing::TestParamInfo<Journey> &info)
{
    return BoardName(std::get<0>(info.param)) + NameOf(std::get<1>(info.param)) + "Seed" +
           std::to_string(std::get<2>(info.param));
}

// ---- for the loops ----

// What a script tells inside Does comes behind all that was told before, so each part tells the next one.
using Part = std::function<void()>;

// Of the last trial: how far its readings are from what they should be, by the grid.
double ToldError(bool offset)
{
    const std::string grid = offset ? "msgOffset" : "msgGain";
    const int row = ScriptedOperator::Rows(grid) - 1;
    const auto reading = [&grid, row](int excitation) {
        return Val(ScriptedOperator::Cell(grid, row, kFirstReading + excitation));
    };
    return offset ? reading(1) - reading(0) : reading(0) - Val(ScriptedOperator::Text("txtReading"));
}

// The readings of a trial that has come to its end are so, where somebody knows what stands on the terminals. A calibrator
// that trips tells nobody, and its meter then reads no input.
void ExpectTheTrialToBeTrue(const BenchStation &station, const std::string &button, const std::string &fault)
{
    const std::string says = ScriptedOperator::Text("lblInst(6)");
    const bool stopped =
        says.starts_with("The trial was stopped") || says.starts_with("The calibrator has not confirmed");
    const bool blind = InputIsUnknown() || DisplayLies(station, fault) || fault == "trips";
    if (!ScriptedOperator::IsEnabled(button) || stopped || blind)
        return;
    const bool offset = button == "cmdOffset";
    const double told = ToldError(offset);
    if (std::fabs(told) <= kFar) {
        EXPECT_NEAR(station.bench.RemainingError(offset ? "Ratio Offset" : "Ratio Gain"), told, kSameCounts);
    }
}

// A trial that goes no further is stopped by Esc.
void TriesPatiently(BenchStation &station, const std::string &button, const std::string &fault, const Part &then)
{
    const int seconds = fault == "over-range" ? kGlance : kPatience;
    if (!ScriptedOperator::IsEnabled(button)) {
        then();
        return;
    }
    const std::int64_t start = station.clock.Elapsed();
    station.person.Clicks(button).WaitsUntil("the trial ends or lasts too long", [&station, start, seconds] {
        return IsAtRest() || station.clock.Elapsed() > start + seconds * 1000;
    });
    station.person.Does([&station, button, fault, then] {
        if (IsAtRest())
            ExpectTheTrialToBeTrue(station, button, fault);
        else
            station.person.Presses(Qt::Key_Escape).WaitsUntil("the trial is stopped", IsAtRest);
        station.person.Does(then);
    });
}

PageScript RatioScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kDc, route, 1);
    script.works = [](BenchStation &station, const std::string &fault) {
        station.person.Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdRatioDone").Does([&station, fault] {
            TriesPatiently(station, "cmdOffset", fault, [&station, fault] {
                TriesPatiently(station, "cmdGain", fault, [&station] {
                    station.person.Waits(kLook).Does([&station] { Leaves(station, "cmdRatioDone", 80); });
                });
            });
        });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdOffset").Clicks("cmdOffset");
    };
    script.proves = CalibratesRatio;
    return script;
}

// Those that reach a trial; each of them is taken by the long walk.
std::vector<FaultCase> FaultsOfATrial()
{
    return LastingFaultCases(RatioScript(Route::Direct), 17,
                             {"silent-meter", "silent-calibrator", "meter-port-gone", "calibrator-port-gone",
                              "never-operating", "wrong-length"});
}

}  // namespace

TEST_P(RatioJourney, EndsWithinTwoCountsAndRemovesTheExcitation)
{
    BenchStation station(std::apply(WiringOf, GetParam()));
    ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
    ASSERT_GT(std::abs(station.bench.RemainingError("Ratio Offset")), 8) << "as it came";
    CalibratesRatio(station);
    EXPECT_FALSE(station.bench.OutputHistory().back().operate);
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

TEST(RatioTrial, IsStoppedWhereTheCalibratorRefusesItsSecondExcitation)
{
    BenchStation station(WiringOf(kDc, Route::Direct, 1));
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(ButtonOf(Step::Ratio)).WaitsUntil("the page stands", IsAtRest);
    const std::string word = WordsOf(station, 50, 1);
    station.person.Clicks("cmdOffset").WaitsUntil("the first one stands", [&station] {
        return station.bench.Terminals().value == 11;
    });
    station.person.Does([&station] { station.bench.SwitchFault("refuses-output", true); });
    station.person.WaitsUntil("the trial has ended", IsAtRest);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_THAT(ScriptedOperator::Text("lblInst(6)"), testing::StartsWith("The calibrator has not confirmed +5.5 V:"));
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_EQ(WordsOf(station, 50, 1), word) << "nothing is computed from it";
    ASSERT_EQ(EventsOf("ratio trial").size(), 1u);
    EXPECT_EQ(TextOf(EventsOf("ratio trial")[0], "how"), "no input");
}

INSTANTIATE_TEST_SUITE_P(Boards, RatioJourney,
                         testing::Combine(testing::Values(kDc, kLc), testing::Values(Route::Direct),
                                          testing::Values(1u, 2u, 3u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(OtherRoutes, RatioJourney,
                         testing::Combine(testing::Values(kDc, kLc), testing::Values(Route::Uut, Route::Manual),
                                          testing::Values(4u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(InRatio, FaultLoop, testing::ValuesIn(FaultsOfATrial()), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InRatioElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(RatioScript, {Route::Manual, "meter-port-gone", 23})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InRatio, QuitLoop,
                         testing::ValuesIn(QuitCases(RatioScript(Route::Direct),
                                                     {0, 1000, 3000, 6000, 9000, 12000, 16000, 30000})),
                         NameOfQuitCase);
