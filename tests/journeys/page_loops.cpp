#include "journeys/page_loops.h"

#include "model/nominals.h"
#include "model/range_tables.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "shell/quit.h"
#include "support/bench_log.h"
#include "support/other_process.h"
#include "testbench/meter_frame.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QMainWindow>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <map>
#include <memory>
#include <ostream>
#include <random>
#include <utility>

namespace ombrix::test {
namespace {

constexpr int kRandomQuits = 2;  // of each page
constexpr int kRandomQuitsOfSoak = 60;
constexpr std::int64_t kBeginning = 25'000;  // milliseconds
constexpr int kSecondThought = 50;           // milliseconds
constexpr int kRestart = 6000;               // milliseconds, more than any restart: until then a meter is deaf

// Milliseconds from `start` until the calibrator's line carried a text, -1 when it never did.
std::int64_t HeardAfter(const bench::Bench &bench, const std::string &text, std::int64_t start)
{
    for (const auto &entry : bench.Transcript())
        if (entry.fromStation && entry.line == bench::Line::Calibrator && entry.time >= start &&
            entry.text.find(text) != std::string::npos)
            return (entry.time - start) / 1000;
    return -1;
}

// By frames since a moment.
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

void Disturbs(BenchStation &station, const std::vector<int> &words)
{
    for (const int word : words)
        station.bench.SetWord(word, 0x0A0A);
}

bool IsOfTheCalibrator(const std::string &fault)
{
    for (const char *part : {"calibrator", "operating", "output", "trips"})
        if (fault.find(part) != std::string::npos)
            return true;
    return false;
}

bool IsOfTheDisplay(const std::string &fault)
{
    return fault == "never-settling" || fault == "over-range" || fault == "drifting";
}

namespace {

// The reply that was spoilt last was one of the display.
bool ADisplayWasSpoilt(const bench::Bench &bench)
{
    bool spoilt = false;
    for (auto entry = bench.Transcript().rbegin(); entry != bench.Transcript().rend(); ++entry) {
        if (entry->line != bench::Line::Meter)
            continue;
        if (entry->fromStation && spoilt)
            return entry->text == "*1B1\\r";
        spoilt = spoilt || entry->note == "spoilt";
    }
    return false;
}

}  // namespace

bool DisplayLies(const BenchStation &station, const std::string &fault)
{
    if (fault == "wrong-length")
        return station.bench.FaultIsOn(fault) || ADisplayWasSpoilt(station.bench);
    const bool moves = fault == "never-settling" || fault == "drifting";
    return moves || (fault == "over-range" && station.bench.FaultIsOn(fault));
}

bool InputIsUnknown()
{
    return ScriptedOperator::Sees("lblAlert");
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
    m_found = station.bench.Nvm();
    WorksThePage();
    m_left = station.bench.Nvm();
    m_ownWords = WordsWritten(station.bench, start);
    return station.bench.Exchanges() - before;
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

// What a run on a sound bench gives back as it found it has come back, whatever went wrong since.
void FaultLoop::ExpectWhatIsGivenBack()
{
    const bench::Words now = station.bench.Nvm();
    for (std::size_t word = 0; word < now.size(); ++word) {
        if (m_left[word] == m_found[word]) {
            EXPECT_EQ(HexText(now[word], 4), HexText(m_found[word], 4)) << "word " << word;
        }
    }
}

void FaultLoop::RunsIntoTheFaultAt(int exchange)
{
    const bench::Words before = station.bench.Nvm();
    ASSERT_TRUE(station.bench.FaultAtExchange(GetParam().fault, exchange, GetParam().lasting));
    // Noise may make a run shorter than the clean one, and the fault comes in the next.
    for (int runs = 0; runs == 0 || station.bench.Exchanges() <= exchange; ++runs) {
        ASSERT_LE(runs, 5) << "the script says nothing any more";
        WorksThePage();
        EXPECT_TRUE(NavigationIsFree()) << "what stands there can be left";
        ExpectNoOutputUntold();
        ExpectNoOtherWordChanged(before);
    }
    station.bench.SwitchFault(GetParam().fault, false);
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
    ExpectWhatIsGivenBack();
}

// ---- the end of the program ----

std::vector<QuitCase> QuitCases(const PageScript &script, const std::vector<int> &moments)
{
    std::vector<QuitCase> cases;
    for (std::size_t i = 0; i < moments.size(); i += static_cast<std::size_t>(Stride(2)))
        cases.push_back({moments[i], 0, script});
    const unsigned random = TimesOfSoak(kRandomQuits, kRandomQuitsOfSoak);
    for (unsigned seed = 1; seed <= random; ++seed)
        cases.push_back({0, seed, script});
    return cases;
}

void PrintTo(const QuitCase &each, std::ostream *out)
{
    if (each.seed > 0)
        *out << "seed " << each.seed;
    else
        *out << each.after << " ms";
}

std::string NameOfQuitCase(const testing::TestParamInfo<QuitCase> &info)
{
    return info.param.seed > 0 ? "AnywhereSeed" + std::to_string(info.param.seed)
                               : "After" + std::to_string(info.param.after) + "Ms";
}

namespace {

enum class Road { Button, CloseBox, Signal };

struct End {
    Road road = Road::Button;
    std::int64_t moment = 0;  // 0: the operator clicks
    std::int64_t came = 0;
    std::int64_t over = 0;
};

// What the operator, the desktop or the system does.
void Comes(Road road)
{
    if (road == Road::Button)
        qobject_cast<QAbstractButton *>(ScriptedOperator::Find("cmdQuit"))->click();
    else if (road == Road::CloseBox)
        frmOmbrix->close();
    else
        std::raise(SIGTERM);
}

// Who is asked about what isn't saved means it; a signal asks nobody.
void ComesTwice(End &end)
{
    end.came = NowMicros();
    CallAfter(kSecondThought, [&end] {
        if (Quitting)
            return;
        EXPECT_TRUE(end.road != Road::Signal && ScriptedOperator::Box() != nullptr) << "the end came to nothing";
        end.came = NowMicros();
        Comes(end.road);
    });
    Comes(end.road);
}

// Milliseconds that a page's whole work takes.
std::int64_t LengthOfWork(const PageScript &script)
{
    BenchStation station(script.wiring);
    EXPECT_TRUE(station.Establishes());
    const std::int64_t start = station.clock.Elapsed();
    script.works(station, "");
    EXPECT_TRUE(station.person.Runs()) << station.person.Trouble();
    return station.clock.Elapsed() - start;
}

// The same for all cases of one page, which follow each other. The short walk looks at the beginning and takes no time
// to find out; where the work ends earlier, the page is at rest.
std::int64_t Length(const PageScript &script, const std::string &page)
{
    if (Stride(2) > 1)
        return kBeginning;
    static std::map<std::string, std::int64_t> lengths;
    const auto known = lengths.find(page);
    return known != lengths.end() ? known->second : lengths.emplace(page, LengthOfWork(script)).first->second;
}

End DrawnEnd(const QuitCase &quit)
{
    const std::string page = testing::UnitTest::GetInstance()->current_test_info()->test_suite_name();
    const std::string drawn = page + std::to_string(quit.seed);
    std::seed_seq seed(drawn.begin(), drawn.end());
    std::mt19937 random(seed);
    End end;
    end.moment = 1 + static_cast<std::int64_t>(random()) % Length(quit.script, page);
    end.road = static_cast<Road>(random() % 3);
    return end;
}

void Learn()
{
    SetNominalSlopeOf(kRtd, 31, 1.5f);
    SetNominalWordOf(kRtd, 31, "1234");
}

void ExpectLearnedOnFile()
{
    const std::string ini = ReadFile("Ombrix.ini").value_or("");
    const std::size_t gains = ini.find("[Gains]");
    const std::size_t words = ini.find("[CalibValues]");
    EXPECT_LT(ini.find("RTD.1F=1.5000\n", gains), words);
    EXPECT_NE(ini.find("RTD.1F=1234\n", words), std::string::npos);
}

// The operator works until the end has come.
void WorksIntoTheEnd(BenchStation &station, const QuitCase &quit, End &end)
{
    WatchSignals();
    if (quit.seed > 0) {
        CallAfter(static_cast<int>(end.moment), [&end] { ComesTwice(end); });
        quit.script.works(station, "");
    } else {
        quit.script.begins(station);
        station.person.Waits(quit.after).Does([&end] { end.came = NowMicros(); }).Clicks("cmdQuit");
    }
    station.person.Runs();
    if (quit.seed > 0 && end.came == 0) {  // the work is done
        station.person.WaitsUntil("the end comes", [] { return Quitting; });
        station.person.Runs();
    }
    end.over = NowMicros();
    StopWatchingSignals();
}

void ExpectStandbyInTime(const BenchStation &station, const End &end)
{
    const std::int64_t standby = HeardAfter(station.bench, "OUT 0 V, 0 Hz ; STBY ; *WAI", end.came);
    EXPECT_GE(standby, 0);
    EXPECT_LE(standby, 1200);
    EXPECT_GE(HeardAfter(station.bench, "LOCAL", end.came), standby);
    EXPECT_LE((end.over - end.came) / 1000, 4000);
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

}  // namespace

TEST_P(QuitLoop, PutsTheCalibratorInStandbyWithin1200MillisecondsSavesAndEndsWithin4Seconds)
{
    const QuitCase &quit = GetParam();
    End end = quit.seed > 0 ? DrawnEnd(quit) : End();
    SCOPED_TRACE("road " + std::to_string(static_cast<int>(end.road)) + " at " + std::to_string(end.moment) + " ms");
    BenchStation station(quit.script.wiring);
    ASSERT_TRUE(station.Establishes());
    Learn();
    WorksIntoTheEnd(station, quit, end);
    ASSERT_GT(end.came, 0) << station.person.Trouble();
    EXPECT_TRUE(Quitting);
    EXPECT_FALSE(ProcedureRunning());
    EXPECT_FALSE(frmOmbrix->isVisible());
    ExpectStandbyInTime(station, end);
    ExpectLearnedOnFile();
}

}  // namespace ombrix::test
