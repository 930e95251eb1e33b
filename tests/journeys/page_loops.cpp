#include "journeys/page_loops.h"

#include "platform/clock.h"
#include "platform/fault.h"
#include "session/state.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <utility>

namespace ombrix::test {
namespace {

constexpr int kRestart = 3000;  // milliseconds, more than any restart: until then a meter is deaf

// Milliseconds from `start` until the calibrator's line carried a text, -1 when it never did.
std::int64_t HeardAfter(const bench::Bench &bench, const std::string &text, std::int64_t start)
{
    for (const auto &entry : bench.Transcript())
        if (entry.fromStation && entry.line == bench::Line::Calibrator && entry.time >= start &&
            entry.text.find(text) != std::string::npos)
            return (entry.time - start) / 1000;
    return -1;
}

}  // namespace

void Leaves(BenchStation &station, const std::string &button, int seconds)
{
    auto start = std::make_shared<std::int64_t>();
    station.person.Does([&station, start] { *start = station.clock.Elapsed(); }).Clicks(button);
    station.person.WaitsUntil("navigation is free", NavigationIsFree).Does([&station, start, button, seconds] {
        EXPECT_LE(station.clock.Elapsed() - *start, seconds * 1000) << "after " << button;
    });
}

int Stride(int shortWalk)
{
    const char *soak = std::getenv("OMBRIX_SOAK");
    return soak != nullptr && *soak == '1' ? 1 : shortWalk;
}

// ---- faults ----

std::vector<FaultCase> FaultCases(const PageScript &script, int every)
{
    std::vector<FaultCase> cases;
    for (const std::string &fault : bench::Bench::FaultNames()) {
        for (const bool lasting : {false, true})
            cases.push_back({fault, lasting, every, script});
    }
    return cases;
}

std::vector<FaultCase> LastingFaultCases(const PageScript &script, int shortWalk, const std::vector<std::string> &names)
{
    std::vector<FaultCase> cases = FaultCases(script, Stride(shortWalk));
    if (Stride(shortWalk) > 1)
        std::erase_if(cases, [&names](const FaultCase &each) {
            return !each.lasting ||
                   (!names.empty() && std::find(names.begin(), names.end(), each.fault) == names.end());
        });
    return cases;
}

void PrintTo(const FaultCase &each, std::ostream *out)
{
    *out << each.fault << (each.lasting ? " lasting" : " once");
}

std::string NameOfFaultCase(const testing::TestParamInfo<FaultCase> &info)
{
    std::string name;
    bool capital = true;
    for (const char c : info.param.fault) {
        if (c != '-')
            name += capital ? static_cast<char>(c - 'a' + 'A') : c;
        capital = c == '-';
    }
    return name + (info.param.lasting ? "Lasting" : "Once");
}

FaultLoop::FaultLoop() : station(GetParam().script.wiring)
{
    FaultOutlet = [this](const std::string &words) { failures.push_back(words); };
}

FaultLoop::~FaultLoop() = default;

void FaultLoop::Runs()
{
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
}

void FaultLoop::DropsTheSession()
{
    if (!Established)
        return;
    station.person.Clicks("cmdSetup").WaitsFor("optManual").Clicks("optManual").Clicks("optAutomatic");
    ASSERT_NO_FATAL_FAILURE(Runs());
    ASSERT_FALSE(Established);
}

void FaultLoop::EstablishesAgain()
{
    ASSERT_NO_FATAL_FAILURE(DropsTheSession());
    station.person.Waits(kRestart);
    ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
}

void FaultLoop::WorksThePage()
{
    GetParam().script.works(station, GetParam().fault);
    EXPECT_TRUE(station.person.Runs()) << station.person.Trouble();
}

int FaultLoop::ExchangesOfACleanRun()
{
    const int before = station.bench.Exchanges();
    WorksThePage();
    return station.bench.Exchanges() - before;
}

// Nothing of the planned fault is left for the next run.
void FaultLoop::EndsTheFault(int exchange)
{
    for (int runs = 0; station.bench.Exchanges() <= exchange;
         ++runs) {  // noise made this one shorter than the clean one
        ASSERT_LT(runs, 5) << "the script says nothing any more";
        WorksThePage();
    }
    station.bench.SwitchFault(GetParam().fault, false);
}

void FaultLoop::RunsIntoTheFaultAt(int exchange)
{
    ASSERT_TRUE(station.bench.FaultAtExchange(GetParam().fault, exchange, GetParam().lasting));
    WorksThePage();
    // A line that was pulled carries no standby; the one that is plugged in again does.
    if (!PortGoes()) {
        EXPECT_FALSE(station.bench.CalibratorNow().operating);
    }
    EndsTheFault(exchange);
    if (PortGoes()) {
        EstablishesAgain();
        EXPECT_FALSE(station.bench.CalibratorNow().operating);
    }
    EXPECT_THAT(failures, testing::IsEmpty());
}

TEST_P(FaultLoop, LeavesNoHangAndNoOutputAndThePageWorksAfterwards)
{
    ASSERT_TRUE(station.Establishes());
    const int exchanges = ExchangesOfACleanRun();
    ASSERT_GT(exchanges, 0);
    for (int n = 0; n < exchanges && !HasFailure(); n += GetParam().every) {
        SCOPED_TRACE("exchange " + std::to_string(n) + " of " + std::to_string(exchanges));
        RunsIntoTheFaultAt(station.bench.Exchanges() + n);
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty()) << "no fault excuses a frame to a deaf meter";
    EstablishesAgain();
    GetParam().script.proves(station);
}

// ---- the end of the program ----

std::vector<QuitCase> QuitCases(const PageScript &script, const std::vector<int> &moments)
{
    std::vector<QuitCase> cases;
    for (const int after : moments)
        cases.push_back({after, script});
    return cases;
}

void PrintTo(const QuitCase &each, std::ostream *out)
{
    *out << each.after << " ms";
}

std::string NameOfQuitCase(const testing::TestParamInfo<QuitCase> &info)
{
    return "After" + std::to_string(info.param.after) + "Ms";
}

TEST_P(QuitLoop, PutsTheCalibratorInStandbyWithin1200MillisecondsAndEndsWithin4Seconds)
{
    BenchStation station(GetParam().script.wiring);
    ASSERT_TRUE(station.Establishes());
    std::int64_t clicked = 0;
    GetParam().script.begins(station);
    station.person.Waits(GetParam().after).Does([&] { clicked = NowMicros(); }).Clicks("cmdQuit");
    station.person.Runs();
    const std::int64_t ended = (NowMicros() - clicked) / 1000;
    ASSERT_GT(clicked, 0) << station.person.Trouble();
    EXPECT_TRUE(Quitting);
    const std::int64_t standby = HeardAfter(station.bench, "OUT 0 V, 0 Hz ; STBY ; *WAI", clicked);
    EXPECT_GE(standby, 0);
    EXPECT_LE(standby, 1200);
    EXPECT_GE(HeardAfter(station.bench, "LOCAL", clicked), standby);
    EXPECT_LE(ended, 4000);
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

}  // namespace ombrix::test
