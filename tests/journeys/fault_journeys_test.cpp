// What can go wrong while a range is calibrated and while a session is established: each fault at each exchange, once
// and lasting. And the end of the program at any moment of a range.

#include "journeys/page_loops.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kGnd = 2;  // positions on the DC board
constexpr int kRef = 3;
constexpr int k2Volts = 4;

// Seconds that the station's own waits may add up to. A reply that is never whole is asked for 20 times; a calibrator
// that answers nothing is given 1 s for its errors, one poll of 10.5 s and 1 s for the read-back.
constexpr int kStepEntry = 20;
constexpr int kRemoval = 60;
constexpr int kEstablish = 30;
constexpr int kPatience = 300;  // what the operator waits for a round before he clicks Stop
constexpr int kGlance = 20;     // before a display that says at once that it is over range
constexpr int kLook = 1000;     // milliseconds for which he watches its end

bool RoundHasEnded()
{
    return ScriptedOperator::IsEnabled("cmdRepeat");
}

void CalibratesTheRange(BenchStation &station, int patience)
{
    const std::int64_t start = station.clock.Elapsed();
    station.person.Clicks("cmdReady").WaitsUntil("the round ends or lasts too long", [&station, start, patience] {
        return RoundHasEnded() || NavigationIsFree() || station.clock.Elapsed() > start + patience * 1000;
    });
    station.person.Does([&station] {
        if (RoundHasEnded()) {
            station.person.Waits(kLook);
            Leaves(station, "cmdAccept", 2 + kRemoval + kStepEntry);
        } else if (!NavigationIsFree()) {
            Leaves(station, "cmdStopReset", 2 + kRemoval);
        }
    });
}

// Takes a range of the DC board as far as it goes, and stops it when it goes no further.
PageScript RangeScript(int position)
{
    PageScript script;
    script.works = [position](BenchStation &station, const std::string &fault) {
        Leaves(station, StepButton(position), kStepEntry);
        station.person.Does([&station, fault] {
            if (ScriptedOperator::IsEnabled("cmdReady"))
                CalibratesTheRange(station, fault == "over-range" ? kGlance : kPatience);
        });
    };
    script.begins = [position](BenchStation &station) {
        station.person.Clicks(StepButton(position)).WaitsFor("cmdReady").Clicks("cmdReady");
    };
    script.proves = [position](BenchStation &station) {
        ASSERT_TRUE(station.Calibrates(position, 3)) << station.person.Trouble();
        EXPECT_LE(std::abs(station.bench.RemainingError(position)), 2.0);
    };
    return script;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OnGnd, FaultLoop, testing::ValuesIn(FaultCases(RangeScript(kGnd), Stride(31))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnRef, FaultLoop, testing::ValuesIn(FaultCases(RangeScript(kRef), Stride(71))),
                         NameOfFaultCase);

INSTANTIATE_TEST_SUITE_P(InARound, QuitLoop,
                         testing::ValuesIn(QuitCases(RangeScript(k2Volts),
                                                     {0,     1,     100,   450,   600,   1100,  1600,  2100, 2600,
                                                      3000,  3700,  4300,  5000,  6100,  7000,  8000,  9000, 10000,
                                                      12000, 14000, 16000, 18000, 20000, 25000, 30000, 40000})),
                         NameOfQuitCase);

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
        ASSERT_NO_FATAL_FAILURE(Runs());
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
        ASSERT_NO_FATAL_FAILURE(EstablishesAgain());
        EXPECT_EQ(SCType, kDc);
        EXPECT_EQ(station.bench.Nvm(), memory) << "nothing misread was written";
        EXPECT_THAT(failures, testing::IsEmpty());
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(WhileEstablishing, EstablishFaultLoop, testing::ValuesIn(FaultCases(PageScript(), Stride(13))),
                         NameOfFaultCase);

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
