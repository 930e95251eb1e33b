// What can go wrong while a range is calibrated and while a session is established: each fault at each exchange, once
// and lasting. And the end of the program at any moment of a range.

#include "journeys/page_loops.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kGnd = 2;  // positions on the DC board
constexpr int kRef = 3;
constexpr int k2Volts = 4;
constexpr int kAc2Volts = 2;  // on the AC board
constexpr int kNewCalib = 4;  // column

// Seconds that the station's own waits may add up to. A reply that is never whole is asked for 20 times; a calibrator
// that answers nothing is given 1 s for its errors, one poll of 10.5 s and 1 s for the read-back.
constexpr int kStepEntry = 20;
constexpr int kRemoval = 60;
constexpr int kEstablish = 30;
constexpr int kPatience = 300;     // what the operator waits for a round before he clicks Stop
constexpr int kGlance = 20;        // before a display that says at once that it is over range
constexpr int kLook = 1000;        // milliseconds for which he watches its end
constexpr double kFar = 1000;      // counts, beyond which nobody believes a reading
constexpr double kSameCounts = 4;  // the display's flicker, and its rounding

bool RoundHasEnded()
{
    return ScriptedOperator::IsEnabled("cmdRepeat");
}

// What he accepts is what the grid says, unless the display itself lies or the page says that something else is wrong.
void ExpectTheErrorToBeTrue(BenchStation &station, int position)
{
    const int row = ScriptedOperator::Rows("msgCalibGrid") - 1;
    const std::string told = ScriptedOperator::Cell("msgCalibGrid", row, ScriptedOperator::Columns("msgCalibGrid") - 1);
    if (std::fabs(Val(told)) > kFar)
        return;
    EXPECT_NEAR(station.bench.RemainingError(position), Val(told), kSameCounts) << "told: " << told;
}

// One round by this button; behind its end `then`, unless it went no further and was stopped.
void TakesARound(BenchStation &station, const std::string &button, int position, const std::string &fault,
                 const std::function<void()> &then)
{
    const int patience = fault == "over-range" ? kGlance : kPatience;
    const std::int64_t start = station.clock.Elapsed();
    station.person.Clicks(button).WaitsUntil("the round ends or lasts too long", [&station, start, patience] {
        return RoundHasEnded() || NavigationIsFree() || station.clock.Elapsed() > start + patience * 1000;
    });
    station.person.Does([&station, position, fault, then] {
        if (RoundHasEnded()) {
            if (!DisplayLies(station, fault))
                ExpectTheErrorToBeTrue(station, position);
            then();
        } else if (!NavigationIsFree()) {
            Leaves(station, "cmdStopReset", 2 + kRemoval);
        }
    });
}

void Accepts(BenchStation &station)
{
    station.person.Waits(kLook);
    Leaves(station, "cmdAccept", 2 + kRemoval + kStepEntry);
}

// Goes back to the word of the first round. A meter answers no write: of one that has just restarted by itself, and heard
// nothing, nobody knows.
void AcceptsTheFirstRound(BenchStation &station, int position, const std::string &fault)
{
    const std::string word = ScriptedOperator::Cell("msgCalibGrid", 0, kNewCalib);
    station.person.ClicksCell("msgCalibGrid", 0, kNewCalib);
    Accepts(station);
    station.person.Does([&station, position, fault, word] {
        if (CurrentStepButton != position && fault != "meter-restarts") {
            EXPECT_EQ(WordsOf(station, station.bench.TruthOf(position).word, 1), word) << "accepted";
        }
    });
}

// Takes a range as far as it goes, one round or two, and stops it when it goes no further.
PageScript RangeScript(int board, int position, Route route, int rounds = 1)
{
    PageScript script;
    script.wiring = WiringOf(board, route, 1);
    script.works = [position, rounds](BenchStation &station, const std::string &fault) {
        Leaves(station, StepButton(position), kStepEntry);
        station.person.Does([&station, position, rounds, fault] {
            if (!ScriptedOperator::IsEnabled("cmdReady"))
                return;
            TakesARound(station, "cmdReady", position, fault, [&station, position, rounds, fault] {
                if (rounds == 1)
                    return Accepts(station);
                TakesARound(station, "cmdRepeat", position, fault,
                            [&station, position, fault] { AcceptsTheFirstRound(station, position, fault); });
            });
        });
    };
    script.begins = [position](BenchStation &station) {
        station.person.Clicks(StepButton(position)).WaitsFor("cmdReady").Clicks("cmdReady");
    };
    script.proves = [position](BenchStation &station) {
        InitNominals();  // who accepts what a drifting display shows teaches the station nonsense, a tenth each time
        ASSERT_TRUE(station.Calibrates(position, 3)) << station.person.Trouble();
        EXPECT_LE(std::abs(station.bench.RemainingError(position)), 2.0);
    };
    return script;
}

}  // namespace

namespace {

PageScript GndScript(Route route)
{
    return RangeScript(kDc, kGnd, route);
}

PageScript RefScript(Route route)
{
    return RangeScript(kDc, kRef, route);
}

PageScript AcScript(Route route)
{
    return RangeScript(kAc, kAc2Volts, route);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OnGnd, FaultLoop, testing::ValuesIn(FaultCases(GndScript(Route::Direct), Stride(31))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnRef, FaultLoop, testing::ValuesIn(FaultCases(RefScript(Route::Direct), Stride(71))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTwoRounds, FaultLoop,
                         testing::ValuesIn(LastingFaultCases(RangeScript(kDc, kGnd, Route::Direct, 2), 131)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnGndElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(GndScript, {Route::Uut, "wrong-length", 47})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnRefElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(RefScript, {Route::Manual, "silent-meter", 29})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnAcRangeElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(AcScript, {Route::Uut, "calibrator-port-gone", 71})),
                         NameOfFaultCase);

INSTANTIATE_TEST_SUITE_P(InARound, QuitLoop,
                         testing::ValuesIn(QuitCases(RangeScript(kDc, k2Volts, Route::Direct),
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
        bool asked = false;
        station.person.Clicks("cmdEstablish").WaitsUntil("Establish ends or asks for the board", [ended] {
            return ended() || ScriptedOperator::IsEnabled("OKButton");
        });
        station.person.Does([this, ended, &asked] {
            asked = !ended();
            if (asked)
                station.person.Clicks("OKButton").WaitsUntil("Establish ends", ended);
        });
        ASSERT_NO_FATAL_FAILURE(Runs());
        EXPECT_LE(station.clock.Elapsed() - start, kEstablish * 1000);
        if (Established && !asked) {
            EXPECT_EQ(SCType, kDc) << "nobody was asked";
            EXPECT_EQ(SessionMeterKind, kDpm);
        }
    }
    // Somebody has left an input on.
    void FindsALiveOutput()
    {
        station.bench.Receive(bench::Line::Calibrator, "OUT 200 MV ; OPER\n", NowMicros());
        station.person.Waits(kLook);
        ASSERT_NO_FATAL_FAILURE(Runs());
        ASSERT_TRUE(GetParam().script.wiring.manual || station.bench.CalibratorNow().operating);
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
        ASSERT_NO_FATAL_FAILURE(FindsALiveOutput());
        const int exchange = station.bench.Exchanges() + n;
        ASSERT_TRUE(station.bench.FaultAtExchange(GetParam().fault, exchange, GetParam().lasting));
        EstablishesWithTheFault();
        EXPECT_FALSE(station.bench.CalibratorNow().operating && !PortGoes()) << "nobody switched it off";
        EXPECT_GT(station.bench.Exchanges(), exchange);
        station.bench.SwitchFault(GetParam().fault, false);
        ASSERT_NO_FATAL_FAILURE(EstablishesAgain());
        EXPECT_EQ(SCType, kDc);
        EXPECT_EQ(station.bench.Nvm(), memory) << "nothing misread was written";
        EXPECT_THAT(failures, testing::IsEmpty());
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(WhileEstablishing, EstablishFaultLoop, testing::ValuesIn(FaultCases(PageScript(), Stride(29))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(WhileEstablishingElsewhere, EstablishFaultLoop,
                         testing::ValuesIn(OtherRoutes(
                             [](Route route) {
                                 PageScript script;
                                 script.wiring = WiringOf(kDc, route, 1);
                                 return script;
                             },
                             {Route::Uut, "junk", 7})),
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
