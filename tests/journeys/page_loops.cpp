#include "journeys/page_loops.h"

#include "model/range_tables.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_log.h"
#include "testbench/meter_frame.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <utility>

namespace ombrix::test {
namespace {

constexpr int kRestart = 6000;  // milliseconds, more than any restart: until then a meter is deaf

// Milliseconds from `start` until the calibrator's line carried a text, -1 when it never did.
std::int64_t HeardAfter(const bench::Bench &bench, const std::string &text, std::int64_t start)
{
    for (const auto &entry : bench.Transcript())
        if (entry.fromStation && entry.line == bench::Line::Calibrator && entry.time >= start &&
            entry.text.find(text) != std::string::npos)
            return (entry.time - start) / 1000;
    return -1;
}

std::set<int> WordsWritten(const bench::Bench &bench, std::int64_t since)
{
    std::set<int> words;
    for (const std::string &frame : FramesTo(bench, bench::Line::Meter, since)) {
        const auto command = bench::ParseFrame(frame).command;
        if (command && command->letter == 'W')
            for (int word = command->address; word > command->address - command->count; --word)
                words.insert(word);
    }
    return words;
}

}  // namespace

const char *NameOf(Route route)
{
    return route == Route::Direct ? "Direct" : route == Route::Uut ? "ThroughUut" : "Manual";
}

Wiring WiringOf(int board, Route route, unsigned seed)
{
    Wiring wiring;
    wiring.bench.board = board;
    wiring.bench.kind = board == kVf ? kCtr : kDpm;
    wiring.bench.seed = seed;
    wiring.bench.uut = route == Route::Uut;
    wiring.manual = route == Route::Manual;
    return wiring;
}

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

bool IsOfTheCalibrator(const std::string &fault)
{
    for (const char *part : {"calibrator", "operating", "output", "trips"})
        if (fault.find(part) != std::string::npos)
            return true;
    return false;
}

bool DisplayLies(const std::string &fault)
{
    return fault == "never-settling" || fault == "over-range" || fault == "drifting";
}

std::vector<FaultCase> OtherRoutes(const std::function<PageScript(Route)> &scriptOn, const ShortWalk &shortWalk)
{
    if (Stride(2) > 1)
        return {{shortWalk.fault, true, shortWalk.every, scriptOn(shortWalk.route)}};
    std::vector<FaultCase> cases = FaultCases(scriptOn(Route::Manual), 1);
    std::erase_if(cases, [](const FaultCase &each) { return IsOfTheCalibrator(each.fault); });
    for (const FaultCase &each : FaultCases(scriptOn(Route::Uut), 1))
        cases.push_back(each);
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
    const Wiring &wiring = info.param.script.wiring;
    const Route route = wiring.manual ? Route::Manual : wiring.bench.uut ? Route::Uut : Route::Direct;
    return name + (info.param.lasting ? "Lasting" : "Once") + (route == Route::Direct ? "" : NameOf(route));
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
    const Wiring &wiring = GetParam().script.wiring;
    station.person.Clicks("cmdSetup").WaitsFor("optManual");
    if (wiring.manual)
        station.person.Clicks("optAutomatic").Clicks("optManual");
    else if (wiring.bench.uut)
        station.person.Clicks("optDPM_COM1").Clicks("optDPM_CAL");
    else
        station.person.Clicks("optManual").Clicks("optAutomatic");
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
    const std::int64_t start = NowMicros();
    WorksThePage();
    m_ownWords = WordsWritten(station.bench, start);
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

// A line that was pulled carries no standby, so the alert stands; the one that is plugged in again does.
void FaultLoop::ExpectNoOutputUntold()
{
    const bool live = !station.bench.OutputHistory().empty() && station.bench.OutputHistory().back().operate;
    if (!PortGoes()) {
        EXPECT_FALSE(station.bench.CalibratorNow().operating);
        EXPECT_FALSE(live) << "a signal is left on the terminals";
    } else if (live) {
        EXPECT_TRUE(ScriptedOperator::Sees("lblAlert")) << "a live output that nobody is told of";
    }
}

// What a fault does to a reply must not end up in a word that is none of the page's.
void FaultLoop::ExpectNoOtherWordChanged(const bench::Words &before)
{
    const bench::Words after = station.bench.Nvm();
    for (std::size_t word = 0; word < after.size(); ++word) {
        if (!m_ownWords.contains(static_cast<int>(word))) {
            EXPECT_EQ(HexText(after[word], 4), HexText(before[word], 4)) << "word " << word;
        }
    }
}

void FaultLoop::RunsIntoTheFaultAt(int exchange)
{
    const bench::Words before = station.bench.Nvm();
    ASSERT_TRUE(station.bench.FaultAtExchange(GetParam().fault, exchange, GetParam().lasting));
    WorksThePage();
    EXPECT_TRUE(NavigationIsFree()) << "what stands there can be left";
    ExpectNoOutputUntold();
    ExpectNoOtherWordChanged(before);
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
