// The first cycle correction of every board that has it: the word that the station finds is the unit's own.

#include "journeys/page_loops.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "session/state.h"
#include "support/bench_log.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kPatience = 120;  // seconds

bool HasEnded()
{
    return ScriptedOperator::IsEnabled("cmdFCReady");
}

using Journey = std::tuple<int, bool, unsigned>;

class FirstCycleJourney : public testing::TestWithParam<Journey>
{
};

std::string NameOfJourney(const testing::TestParamInfo<Journey> &info)
{
    return BoardName(std::get<0>(info.param)) + (std::get<1>(info.param) ? "Manual" : "Direct") + "Seed" +
           std::to_string(std::get<2>(info.param));
}

// ---- for the loops ----

void Collects(BenchStation &station)
{
    const std::int64_t start = station.clock.Elapsed();
    station.person.Clicks("cmdFCReady").WaitsUntil("it ends or lasts too long", [&station, start] {
        return HasEnded() || station.clock.Elapsed() > start + kPatience * 1000;
    });
    station.person.Does([&station] {
        if (!HasEnded())
            Leaves(station, "cmdFCCancel", 80);
        else if (ScriptedOperator::Text("lblInst(2)") == "M and B entered into Nonvolatile Memory") {
            EXPECT_EQ(station.bench.RemainingError("First Cycle"), 0) << "the page was content";
        }
    });
}

PageScript FirstCycleScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kDc, route, 1);
    script.works = [](BenchStation &station, const std::string &) {
        Leaves(station, ButtonOf(Step::FirstCycle), 20);
        station.person.Does([&station] { Collects(station); });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Clicks("cmdFCReady");
    };
    script.proves = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Clicks("cmdFCReady");
        station.person.WaitsUntil("it has ended", HasEnded);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(station.bench.RemainingError("First Cycle"), 0);
    };
    return script;
}

// Those that reach a meter while it streams; each of them is taken by the long walk.
std::vector<FaultCase> FaultsOfAStream()
{
    return LastingFaultCases(
        FirstCycleScript(Route::Direct), 17,
        {"silent-meter", "meter-port-gone", "calibrator-port-gone", "never-operating", "meter-restarts", "junk"});
}

// The stream doesn't pass the calibrator's port, so the step is off there.
std::vector<FaultCase> FaultsByHand()
{
    std::vector<FaultCase> cases = OtherRoutes(FirstCycleScript, {Route::Manual, "wrong-length", 13});
    std::erase_if(cases, [](const FaultCase &each) { return each.script.wiring.bench.uut; });
    return cases;
}

}  // namespace

TEST_P(FirstCycleJourney, FindsTheWordThatTheUnitHides)
{
    const auto &[board, manual, seed] = GetParam();
    Wiring wiring;
    wiring.bench.board = board;
    wiring.bench.seed = seed;
    wiring.manual = manual;
    BenchStation station(wiring);
    ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
    ASSERT_NE(station.bench.RemainingError("First Cycle"), 0) << "as it came";
    station.person.Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Clicks("cmdFCReady");
    station.person.WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_EQ(station.bench.RemainingError("First Cycle"), 0) << ScriptedOperator::Text("lblInst(2)");
    EXPECT_EQ(station.bench.Nvm()[18], 0x21D1) << "normal running again";
    EXPECT_FALSE(station.bench.OutputHistory().back().operate) << "by hand or by the calibrator, it is removed";
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

TEST(FirstCycleByHand, CancelWhileTheMeterIsPreparedAsksForNoSignal)
{
    Wiring wiring;
    wiring.manual = true;
    BenchStation station(wiring);
    ASSERT_TRUE(station.Establishes());
    std::vector<std::string> asked;
    station.person.onBox = [&asked](const std::string &title, const std::string &) { asked.push_back(title); };
    station.person.Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Clicks("cmdFCReady");
    station.person.WaitsUntil("word 51 is written",
                              [&station] { return !TimesOf(station.bench, "*1W1330000Z").empty(); });
    station.person.Clicks("cmdFCCancel").WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_THAT(asked, testing::Not(testing::Contains("Apply Input Signal")));
    EXPECT_EQ(ScriptedOperator::Text("lblInst(2)"), "First Cycle Correction Aborted");
    EXPECT_EQ(station.bench.Nvm()[18], 0x21D1);
}

// The meter goes on streaming while its operator looks for the right source; what it said then counts for nothing.
TEST(FirstCycleByHand, AStreamAtFullSpeedThatRanForMinutesIsNotTakenForTheNextPoint)
{
    constexpr int kMinutes = 2 * 60 * 1000;
    Wiring wiring;
    wiring.bench.board = kAc;
    wiring.manual = true;
    BenchStation station(wiring);
    ASSERT_TRUE(station.Establishes());
    station.bench.SpoilStream("full-speed");
    const auto obeys = station.person.onBox;
    station.person.onBox = nullptr;
    station.person.Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Clicks("cmdFCReady");
    for (const char *value : {"200 mV, 300 Hz", "100 mV, 300 Hz", "1 mV, 300 Hz"}) {
        station.person.WaitsUntil(value,
                                  [value] { return ScriptedOperator::BoxText().find(value) != std::string::npos; });
        if (value == std::string("100 mV, 300 Hz"))
            station.person.Waits(kMinutes);
        station.person.Does([obeys] { obeys(ScriptedOperator::BoxTitle(), ScriptedOperator::BoxText()); })
            .AnswersBox("OK");
    }
    station.person
        .WaitsUntil("the input is to be removed", [] { return ScriptedOperator::BoxTitle() == "Remove Input"; })
        .AnswersBox("OK")
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_GT(station.clock.Elapsed(), kMinutes);
    EXPECT_EQ(station.bench.RemainingError("First Cycle"), 0) << ScriptedOperator::Text("lblInst(2)");
}

INSTANTIATE_TEST_SUITE_P(Boards, FirstCycleJourney,
                         testing::Combine(testing::Values(kDc, kAc, kLc, kTc, kTemp, kRtd), testing::Values(false),
                                          testing::Values(1u, 2u, 3u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(ByHand, FirstCycleJourney,
                         testing::Combine(testing::Values(kDc, kAc, kTc), testing::Values(true), testing::Values(4u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(InFirstCycle, FaultLoop, testing::ValuesIn(FaultsOfAStream()), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InFirstCycleElsewhere, FaultLoop, testing::ValuesIn(FaultsByHand()), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InFirstCycle, QuitLoop,
                         testing::ValuesIn(QuitCases(FirstCycleScript(Route::Direct),
                                                     {0, 1000, 2500, 4200, 7000, 16000, 20000, 24000})),
                         NameOfQuitCase);
