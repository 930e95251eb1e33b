// What can go wrong while one range is calibrated: each fault at each exchange, once and lasting.
//
// One station goes through the range again and again. Each time a fault begins at the next exchange, from the first
// one behind the click on the step's button to the last one of the step that follows Accept.

#include "platform/fault.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kGnd = 2;  // positions on the DC board
constexpr int kRef = 3;
constexpr int kNoStep = -1;

// Seconds that the station's own waits may add up to. A reply that is never whole is asked for 20 times; a calibrator
// that answers nothing is given 1 s for its errors, one poll of 10.5 s and 1 s for the read-back.
constexpr int kStepEntry = 20;
constexpr int kRemoval = 60;
constexpr int kEstablish = 30;
constexpr int kPatience = 300;  // what the operator waits for a round before he clicks Stop
constexpr int kGlance = 20;     // before a display that says at once that it is over range
constexpr int kRestart = 3000;  // milliseconds, more than any restart
constexpr int kLook = 1000;     // milliseconds for which he watches its end

bool NavigationIsFree()
{
    return ScriptedOperator::IsEnabled("cmdSetup");
}

bool RoundHasEnded()
{
    return ScriptedOperator::IsEnabled("cmdRepeat");
}

struct Case {
    std::string fault;
    bool lasting;
    int position;
    int every;  // exchanges from one run to the next
};

void PrintTo(const Case &each, std::ostream *out)
{
    *out << each.fault << (each.lasting ? " lasting" : " once");
}

std::string NameOfCase(const testing::TestParamInfo<Case> &info)
{
    std::string name = info.param.position == kGnd ? "Gnd" : info.param.position == kRef ? "Ref" : "";
    bool capital = true;
    for (const char c : info.param.fault) {
        if (c != '-')
            name += capital ? static_cast<char>(c - 'a' + 'A') : c;
        capital = c == '-';
    }
    return name + (info.param.lasting ? "Lasting" : "Once");
}

class FaultLoop : public testing::TestWithParam<Case>
{
protected:
    FaultLoop() : station(Wiring{})
    {
        FaultOutlet = [this](const std::string &words) { failures.push_back(words); };
    }

    // The operator: takes the range as far as it goes, and stops it when it goes no further.
    void GoesThroughTheRange()
    {
        Leaves(StepButton(GetParam().position), kStepEntry);
        station.person.Does([this] {
            if (ScriptedOperator::IsEnabled("cmdReady"))
                CalibratesTheRange();
        });
        EXPECT_TRUE(station.person.Runs()) << station.person.Trouble();
    }

    void CalibratesTheRange()
    {
        const std::int64_t start = station.clock.Elapsed();
        station.person.Clicks("cmdReady").WaitsUntil("the round ends or lasts too long", [this, start] {
            return RoundHasEnded() || NavigationIsFree() || station.clock.Elapsed() > start + Patience() * 1000;
        });
        station.person.Does([this] {
            if (RoundHasEnded()) {
                station.person.Waits(kLook);
                Leaves("cmdAccept", 2 + kRemoval + kStepEntry);
            } else if (!NavigationIsFree()) {
                Leaves("cmdStopReset", 2 + kRemoval);
            }
        });
    }

    static int Patience() { return GetParam().fault == "over-range" ? kGlance : kPatience; }

    // Clicks; the navigation is to be free again within so many seconds.
    void Leaves(const std::string &button, int seconds)
    {
        auto start = std::make_shared<std::int64_t>();
        station.person.Does([this, start] { *start = station.clock.Elapsed(); }).Clicks(button);
        station.person.WaitsUntil("navigation is free", NavigationIsFree).Does([this, start, button, seconds] {
            EXPECT_LE(station.clock.Elapsed() - *start, seconds * 1000) << "after " << button;
        });
    }

    // Nothing of the planned fault is left for the next run.
    void EndsTheFault(int exchange)
    {
        while (station.bench.Exchanges() <= exchange) {  // noise made this run a little shorter than the clean one
            Leaves(StepButton(GetParam().position), kStepEntry);
            ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        }
        station.bench.SwitchFault(GetParam().fault, false);
    }

    bool PortGoes() const { return GetParam().fault.ends_with("port-gone"); }

    // Another wiring ends the session.
    void DropsTheSession()
    {
        if (!Established)
            return;
        station.person.Clicks("cmdSetup").WaitsFor("optManual").Clicks("optManual").Clicks("optAutomatic");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        ASSERT_FALSE(Established);
    }

    // What the operator does about a device that was pulled.
    void EstablishesAgain()
    {
        ASSERT_NO_FATAL_FAILURE(DropsTheSession());
        ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
    }

    int ExchangesOfACleanRun()
    {
        const int before = station.bench.Exchanges();
        GoesThroughTheRange();
        return station.bench.Exchanges() - before;
    }

    void RunsIntoTheFaultAt(int exchange)
    {
        ASSERT_TRUE(station.bench.FaultAtExchange(GetParam().fault, exchange, GetParam().lasting));
        GoesThroughTheRange();
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

    BenchStation station;
    std::vector<std::string> failures;
};

// Every run takes a shorter walk than the long one, which ./test --soak takes: each exchange.
int Stride(int shortWalk)
{
    const char *soak = std::getenv("OMBRIX_SOAK");
    return soak != nullptr && *soak == '1' ? 1 : shortWalk;
}

std::vector<Case> Cases(int position, int every)
{
    std::vector<Case> cases;
    for (const std::string &fault : bench::Bench::FaultNames()) {
        for (const bool lasting : {false, true})
            cases.push_back({fault, lasting, position, every});
    }
    return cases;
}

}  // namespace

TEST_P(FaultLoop, LeavesNoHangAndNoOutputAndTheRangeCanBeCalibratedAfterwards)
{
    ASSERT_TRUE(station.Establishes());
    const int exchanges = ExchangesOfACleanRun();
    ASSERT_GT(exchanges, 20);
    for (int n = 0; n < exchanges && !HasFailure(); n += GetParam().every) {
        SCOPED_TRACE("exchange " + std::to_string(n) + " of " + std::to_string(exchanges));
        RunsIntoTheFaultAt(station.bench.Exchanges() + n);
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty()) << "no fault excuses a frame to a deaf meter";
    EstablishesAgain();
    ASSERT_TRUE(station.Calibrates(GetParam().position, 3)) << station.person.Trouble();
    EXPECT_LE(std::abs(station.bench.RemainingError(GetParam().position)), 2.0);
}

INSTANTIATE_TEST_SUITE_P(OnGnd, FaultLoop, testing::ValuesIn(Cases(kGnd, Stride(3))), NameOfCase);
INSTANTIATE_TEST_SUITE_P(OnRef, FaultLoop, testing::ValuesIn(Cases(kRef, Stride(7))), NameOfCase);

// The same while the session is established.
class EstablishFaultLoop : public FaultLoop
{
protected:
    // A meter whose board can't be read is told what it is.
    void EstablishesWithTheFault()
    {
        const std::int64_t start = station.clock.Elapsed();
        const auto ended = [] { return ScriptedOperator::Sees("lblStatus") && (!Established || NavigationIsFree()); };
        station.person.Clicks("cmdEstablish").WaitsUntil("Establish ends or asks for the board", [ended] {
            return ended() || ScriptedOperator::IsEnabled("OKButton");
        });
        station.person.Does([this, ended] {
            if (!ended())
                station.person.Clicks("OKButton").WaitsUntil("Establish ends", ended);
        });
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_LE(station.clock.Elapsed() - start, kEstablish * 1000);
    }
};

TEST_P(EstablishFaultLoop, EndsWithALinkOrWithWordsAndTheNextOneFindsTheMeter)
{
    ASSERT_TRUE(station.Establishes());
    const int exchanges = station.bench.Exchanges();
    ASSERT_GT(exchanges, 10);
    const auto memory = station.bench.Nvm();
    for (int n = 0; n < exchanges && !HasFailure(); n += GetParam().every) {
        SCOPED_TRACE("exchange " + std::to_string(n) + " of " + std::to_string(exchanges));
        DropsTheSession();
        const int exchange = station.bench.Exchanges() + n;
        ASSERT_TRUE(station.bench.FaultAtExchange(GetParam().fault, exchange, GetParam().lasting));
        EstablishesWithTheFault();
        EXPECT_FALSE(station.bench.CalibratorNow().operating);
        EXPECT_GT(station.bench.Exchanges(), exchange);
        station.bench.SwitchFault(GetParam().fault, false);
        station.person.Waits(kRestart);  // a meter that has just restarted is deaf
        ASSERT_NO_FATAL_FAILURE(EstablishesAgain());
        EXPECT_EQ(SCType, kDc);
        EXPECT_EQ(station.bench.Nvm(), memory) << "nothing misread was written";
        EXPECT_THAT(failures, testing::IsEmpty());
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(WhileEstablishing, EstablishFaultLoop, testing::ValuesIn(Cases(kNoStep, Stride(2))),
                         NameOfCase);

TEST(DeadCalibrator, IsGivenUpAtOnceByEscWhileTheInputIsRemoved)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    std::int64_t pressed = 0;
    station.person.Clicks(StepButton(kGnd)).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([&] {
        station.bench.SwitchFault("silent-calibrator", true);
    });
    station.person.Clicks("cmdAccept").Waits(6000).Does([&] {
        EXPECT_FALSE(NavigationIsFree()) << "a silent poll takes longer";
        pressed = station.clock.Elapsed();
    });
    station.person.Presses(Qt::Key_Escape).WaitsUntil("navigation is free", NavigationIsFree);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_LE(station.clock.Elapsed() - pressed, kStepEntry * 1000);
}
