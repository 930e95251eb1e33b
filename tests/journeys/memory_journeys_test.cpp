// A meter's memory from blank to a customer's configuration: Init NVM on every board, Send File behind a calibration,
// and what can go wrong on the way.

#include "journeys/blank_meter.h"
#include "journeys/page_loops.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"
#include "support/factory_images.h"
#include "support/samples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kInit = 0;  // positions on the DC board
constexpr int kGnd = 2;
constexpr int kRef = 3;

// Seconds that the station's own waits may add up to.
constexpr int kStepEntry = 20;
constexpr int kPatience = 30;   // what the operator waits for an initialisation before he clicks Cancel
constexpr int kAttempt = 25;    // for one that has begun to be finished: a reply may be late in every way
constexpr int kRestart = 3000;  // milliseconds: who has just restarted by himself is deaf
constexpr int kRemoval = 60;
constexpr int kSending = 120;

std::string ImageIn(const BenchStation &station, int board)
{
    return board == kVf ? WordsOf(station, 49, 6) + WordsOf(station, 40, 23) + WordsOf(station, 17, 18)
                        : WordsOf(station, 56, 57);
}

// ---- a blank meter ----

class Blank : public testing::TestWithParam<BlankMeter>
{
};

void Initializes(BenchStation &station)
{
    station.person.Clicks(StepButton(kInit)).WaitsFor("cmdInitStartRetry").Clicks("cmdInitStartRetry");
    station.person.WaitsFor("cmdDone(0)");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
}

}  // namespace

TEST_P(Blank, HoldsTheFactoryImageAfterInitAndCanBeCalibrated)
{
    const int board = GetParam().board;
    BenchStation station(WiringOfBlank(board));
    Erase(station, board);
    ASSERT_NO_FATAL_FAILURE(EstablishesAndNamesTheBoard(station, GetParam()));
    ASSERT_NO_FATAL_FAILURE(Initializes(station));
    EXPECT_EQ(ScriptedOperator::Text("lblInitStatus"), "NVM Initialized Successfully");
    EXPECT_EQ(ImageIn(station, board), FactoryImageOf(board));
    if (board == kVf) {
        EXPECT_EQ(WordsOf(station, 201, 9), "FF77451428F6FFD9B81028F6FFD9B8100000");
    } else {
        EXPECT_EQ(WordsOf(station, 117, 1), "0000");
        const int range = RangePositions().at(1);
        ASSERT_TRUE(station.Calibrates(range, 3)) << station.person.Trouble();
        EXPECT_LE(std::abs(station.bench.RemainingError(range)), 2.0);
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

// The boards that can be verified go through more: their whole life.
INSTANTIATE_TEST_SUITE_P(Meter, Blank,
                         testing::Values(BlankMeter{kTc, 3}, BlankMeter{kTemp, 6}, BlankMeter{kRtd, 7},
                                         BlankMeter{kVf, -1}),
                         [](const auto &info) { return BoardName(info.param.board); });

// ---- the initialisation when things go wrong ----

namespace {

// What an initialisation or a file puts right.
const std::vector<int> kOfTheImage = {3, 9, 14, 22};

// What the page says is so; what goes no further is cancelled.
void EndsTheInitialisation(BenchStation &station, int board)
{
    if (!NavigationIsFree())
        Leaves(station, "cmdInitCancel", kAttempt);
    station.person.Does([&station, board] {
        if (ScriptedOperator::Text("lblInitStatus") == "NVM Initialized Successfully") {
            EXPECT_EQ(ImageIn(station, board), FactoryImageOf(board));
        } else {
            EXPECT_EQ(ScriptedOperator::Text("lblInitStatus"), "NVM Initialization Failed");
        }
    });
}

PageScript InitScriptOf(int board, Route route)
{
    PageScript script;
    script.wiring = WiringOf(board, route, 1);
    script.works = [board](BenchStation &station, const std::string &) {
        Disturbs(station, kOfTheImage);
        auto start = std::make_shared<std::int64_t>();
        Leaves(station, StepButton(kInit), kStepEntry);
        station.person.Does([&station, start] { *start = station.clock.Elapsed(); })
            .Clicks("cmdInitStartRetry")
            .WaitsUntil(
                "it ends or lasts too long",
                [&station, start] { return NavigationIsFree() || station.clock.Elapsed() > *start + kPatience * 1000; })
            .Does([&station, board] { EndsTheInitialisation(station, board); });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(StepButton(kInit)).WaitsFor("cmdInitStartRetry").Clicks("cmdInitStartRetry");
    };
    script.proves = [board](BenchStation &station) {
        Disturbs(station, kOfTheImage);
        ASSERT_NO_FATAL_FAILURE(Initializes(station));
        EXPECT_EQ(ScriptedOperator::Text("lblInitStatus"), "NVM Initialized Successfully");
        EXPECT_EQ(ImageIn(station, board), FactoryImageOf(board));
    };
    return script;
}

PageScript InitScript(Route route)
{
    return InitScriptOf(kDc, route);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OnInit, FaultLoop, testing::ValuesIn(FaultCases(InitScript(Route::Direct), Stride(13))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnInitOfACounter, FaultLoop,
                         testing::ValuesIn(LastingFaultCases(InitScriptOf(kVf, Route::Direct), 13)), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnInitElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(InitScript, {Route::Uut, "garbage", 5})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InInit, QuitLoop,
                         testing::ValuesIn(QuitCases(InitScript(Route::Direct), {0, 100, 300, 1500, 2300, 3000, 4500})),
                         NameOfQuitCase);

TEST(Initialisation, OfAMeterThatRestartsInTheMiddleEndsWithTheWholeImage)
{
    for (int exchange = 0; exchange < 6; ++exchange) {
        BenchStation station(Wiring{});
        ASSERT_TRUE(station.Establishes());
        station.person.Clicks(StepButton(kInit)).WaitsFor("cmdInitStartRetry");
        ASSERT_TRUE(station.person.Runs());
        station.bench.FaultAtExchange("meter-restarts", station.bench.Exchanges() + exchange, false);
        station.person.Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(ScriptedOperator::Text("lblInitStatus"), "NVM Initialized Successfully");
        EXPECT_EQ(ImageIn(station, kDc), FactoryImageOf(kDc)) << "at exchange " << exchange;
    }
}

// ---- a customer's configuration ----

namespace {

// The DC sample with a scale of one, so that 200 mV shows 200.00, and a set point of the customer's.
std::string CustomersFile()
{
    return Sample("zsc1.dpm").replace(102, 6, "100001").replace(114, 6, "0004D2");
}

void SendsTheFile(BenchStation &station)
{
    station.person.Clicks(ButtonOf(Step::SendFile)).WaitsFor("cmdSendFile").Clicks("cmdSendFile");
    station.person.WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
}

void ExpectTheFileIn(const BenchStation &station, const std::string &file)
{
    EXPECT_EQ(WordsOf(station, 24, 25), file.substr(20, 100));
    EXPECT_EQ(WordsOf(station, 56, 2), file.substr(120, 8));
    EXPECT_EQ(WordsOf(station, 118, 13), file.substr(128, 52));
}

void EndsTheTest(BenchStation &station)
{
    if (NavigationIsFree())
        return;
    station.person.Clicks("cmdSendFile")
        .WaitsUntil("it reads or is offered again", [] { return ScriptedOperator::IsEnabled("cmdSFSkipOK"); })
        .Waits(3000);
    Leaves(station, "cmdSFSkipOK", 2 + kRemoval);
    station.person.Does([] { EXPECT_EQ(ScriptedOperator::Text("lblSFStatus(0)"), "Send File operation complete"); })
        .Waits(kRestart);
}

// Where the page says that the file was written. A meter answers no write: of one that has just restarted by itself,
// and heard nothing, nobody knows.
void ExpectTheFileWhereItIsSaid(const BenchStation &station, const std::string &fault)
{
    if (ScriptedOperator::Text("cmdSendFile") == "Test" && fault != "meter-restarts")
        ExpectTheFileIn(station, Sample("zsc1.dpm"));
}

PageScript SendFileScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kDc, route, 1);
    script.works = [](BenchStation &station, const std::string &fault) {
        if (!std::filesystem::exists("zsc1.dpm"))
            PutSamples();
        Disturbs(station, kOfTheImage);
        auto start = std::make_shared<std::int64_t>();
        Leaves(station, ButtonOf(Step::SendFile), kStepEntry);
        station.person.Does([&station, start] { *start = station.clock.Elapsed(); })
            .Clicks("cmdSendFile")
            .WaitsUntil("the test is offered or the line is gone",
                        [] { return ScriptedOperator::IsEnabled("cmdSFSkipOK") || NavigationIsFree(); })
            .Does([&station, start, fault] {
                EXPECT_LE(station.clock.Elapsed() - *start, kSending * 1000);
                ExpectTheFileWhereItIsSaid(station, fault);
                EndsTheTest(station);
            });
    };
    script.begins = [](BenchStation &station) {
        PutSamples();
        station.person.Clicks(ButtonOf(Step::SendFile)).WaitsFor("cmdSendFile").Clicks("cmdSendFile");
        station.person.WaitsFor("cmdSFSkipOK").Clicks("cmdSendFile");
    };
    script.proves = [](BenchStation &station) {
        Disturbs(station, kOfTheImage);
        ASSERT_NO_FATAL_FAILURE(SendsTheFile(station));
        ExpectTheFileIn(station, Sample("zsc1.dpm"));
        station.person.Clicks("cmdSendFile").WaitsUntil("it reads", [] {
            return Val(ScriptedOperator::Text("lblSFReading(1)")) > 0;
        });
        Leaves(station, "cmdSFSkipOK", 2 + kRemoval);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(ScriptedOperator::Text("lblSFStatus(0)"), "Send File operation complete");
    };
    return script;
}

}  // namespace

TEST(Configuration, OfACustomerGoesIntoACalibratedMeterWhichThenReadsWhatItsTestDesires)
{
    for (const bool uut : {false, true}) {
        Wiring wiring;
        wiring.bench.uut = uut;
        BenchStation station(wiring);
        PutSamples();
        ASSERT_EQ(WriteFile("zsc1.dpm", CustomersFile() + "\n"), "");
        ASSERT_TRUE(station.Establishes());
        ASSERT_TRUE(station.Calibrates(kGnd, 3)) << station.person.Trouble();
        ASSERT_TRUE(station.Calibrates(kRef, 3)) << station.person.Trouble();
        const std::string calibration = WordsOf(station, 50, 21);
        ASSERT_NO_FATAL_FAILURE(SendsTheFile(station));
        ExpectTheFileIn(station, CustomersFile());
        EXPECT_EQ(WordsOf(station, 50, 21), calibration) << "no calibration word is touched";
        station.person.Clicks("cmdSendFile").WaitsForText("cmdSFSkipOK", "OK").Waits(10'000).Does([&station] {
            const double reading = Val(ScriptedOperator::Text("lblSFReading(1)"));
            EXPECT_NEAR(reading, Val(ScriptedOperator::Text("lblSFReading(0)")), 0.05);
            EXPECT_NEAR(reading, Val(station.bench.DisplayTextAt(NowMicros())), 0.03);
            EXPECT_EQ(station.bench.Terminals().value, 0.2);
        });
        station.person.Clicks("cmdSFSkipOK").WaitsForText("lblSFStatus(0)", "Send File operation complete");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_FALSE(station.bench.CalibratorNow().operating);
        EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(OnSendFile, FaultLoop, testing::ValuesIn(LastingFaultCases(SendFileScript(Route::Direct), 19)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnSendFileElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(SendFileScript, {Route::Manual, "wrong-length", 9})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(InSendFile, QuitLoop,
                         testing::ValuesIn(QuitCases(SendFileScript(Route::Direct), {0, 100, 1000, 2000, 4000, 9000})),
                         NameOfQuitCase);
