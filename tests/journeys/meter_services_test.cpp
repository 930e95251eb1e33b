// What is done to a meter beside its calibration: its type, a counter's gains checked, its configuration kept and
// restored. With the program started anew in between, with every fault of the bench, with the end of the program at any
// moment.

#include "journeys/page_loops.h"
#include "journeys/process_meters.h"
#include "model/kept_config.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/state.h"
#include "shell/station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kStepEntry = 60;  // seconds
constexpr int kSaving = 60;
constexpr int kRestart = 6000;  // milliseconds, more than a counter's restart

// ---- the type ----

constexpr char kTypeStored[] = "Change meter type if desired and click \"Save\"";
constexpr std::uint16_t kDcCode = 0x60;  // with code 01 in word 21
constexpr std::uint16_t kTemperatureCode = 0x41;

void FindsADcMeter(BenchStation &station)
{
    station.bench.SetWord(16, kDcCode);
    station.bench.SetWord(21, 0x0031);
}

// The words between both codes are nobody's here.
void ExpectTheTypeToBeTrue(BenchStation &station, const std::string &between)
{
    EXPECT_EQ(WordsOf(station, 20, 4), between);
    if (ScriptedOperator::Text("lblInst(4)") != kTypeStored)
        return;
    const std::uint16_t code = station.bench.Nvm()[16];
    EXPECT_EQ(ScriptedOperator::IsOn("optMeterType(1)"), code == kTemperatureCode);
    EXPECT_EQ(ScriptedOperator::IsOn("optMeterType(0)"), code == kDcCode);
}

PageScript TypeScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kTc, route, 1);
    script.works = [](BenchStation &station, const std::string &) {
        const std::string between = WordsOf(station, 20, 4);
        station.person.Does([&station] { FindsADcMeter(station); });
        Leaves(station, ButtonOf(Step::MeterType), kStepEntry);
        station.person.Does([&station, between] {
            ExpectTheTypeToBeTrue(station, between);
            if (ScriptedOperator::IsEnabled("optMeterType(1)")) {
                station.person.Clicks("optMeterType(1)");
                Leaves(station, "cmdSaveMeterType", kSaving);
            }
            station.person.Waits(kRestart).Does([&station, between] { ExpectTheTypeToBeTrue(station, between); });
        });
    };
    script.begins = [](BenchStation &station) {
        FindsADcMeter(station);
        station.person.Clicks(ButtonOf(Step::MeterType)).WaitsFor("optMeterType(1)").Clicks("optMeterType(1)");
        station.person.WaitsFor("cmdSaveMeterType").Clicks("cmdSaveMeterType");
    };
    script.proves = [](BenchStation &station) {
        FindsADcMeter(station);
        station.person.Clicks(ButtonOf(Step::MeterType)).WaitsFor("optMeterType(1)").Clicks("optMeterType(1)");
        station.person.Clicks("cmdSaveMeterType").WaitsForText("lblInst(4)", kTypeStored);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(WordsOf(station, 16, 1), "0041");
        EXPECT_EQ(WordsOf(station, 21, 1), "0031");
    };
    return script;
}

// ---- the gains ----

constexpr char kFound[] = "FFD9B82028F6FFD9B8100000FF77452428F6";  // words 201 to 193: the middle one is good
constexpr char kMended[] = "FF77451428F6FFD9B8100000FFD9B8100000";

void FindsBadGains(BenchStation &station)
{
    for (int i = 0; i < 9; ++i)
        station.bench.SetWord(201 - i, static_cast<std::uint16_t>(
                                           HexValue(std::string(kFound).substr(static_cast<std::size_t>(i) * 4, 4))));
}

// Each row says what the meter holds, or that nobody knows.
void ExpectTheResultsToBeTrue(BenchStation &station)
{
    for (int row = 0; row < 3; ++row) {
        const std::string result = ScriptedOperator::Cell("msgVFNom", row, 2);
        const auto place = static_cast<std::size_t>(2 - row) * 12;
        const std::string held = WordsOf(station, 195 + 3 * row, 3);
        if (result == "Nominal Gain and Offset written" && !ScriptedOperator::Sees("shpVFNom")) {
            EXPECT_EQ(held, std::string(kMended).substr(place, 12)) << "row " << row;
        }
        if (result == "Gain and Offset Retained") {
            EXPECT_EQ(held, std::string(kFound).substr(place, 12)) << "row " << row;
        }
    }
    EXPECT_EQ(WordsOf(station, 198, 3), std::string(kFound).substr(12, 12)) << "a good gain is never written";
}

PageScript GainsScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kVf, route, 1);
    script.works = [](BenchStation &station, const std::string &) {
        station.person.Does([&station] { FindsBadGains(station); });
        Leaves(station, ButtonOf(Step::Nominalize), kStepEntry);
        station.person.Does([&station] { ExpectTheResultsToBeTrue(station); }).Waits(kRestart);
    };
    script.begins = [](BenchStation &station) {
        FindsBadGains(station);
        station.person.Clicks(ButtonOf(Step::Nominalize));
    };
    script.proves = [](BenchStation &station) {
        FindsBadGains(station);
        station.person.Clicks(ButtonOf(Step::Nominalize)).WaitsFor("cmdDone(3)");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(WordsOf(station, 201, 9), kMended);
    };
    return script;
}

// ---- the configuration ----

constexpr char kRestored[] = "Configuration restored.";
constexpr char kFile[] = "KeptConfig.txt";

std::string ConfigurationOf(const BenchStation &station)
{
    return WordsOf(station, 49, 50);
}

void PutsConfiguration(BenchStation &station, const std::string &image)
{
    for (int word = 49; word >= 0; --word)
        station.bench.SetWord(
            word, static_cast<std::uint16_t>(HexValue(image.substr(static_cast<std::size_t>(49 - word) * 4, 4))));
}

// A customer's: it differs from the factory's in every fourth word.
void ConfiguresForACustomer(BenchStation &station)
{
    for (int word = 0; word < 40; word += 4)
        station.bench.SetWord(word, static_cast<std::uint16_t>(0x1200 + word));
}

// What a calibration leaves, in both halves.
const std::vector<int> kOfACalibration = {3, 16, 17, 28, 33, 47};

std::string Said()
{
    return ScriptedOperator::Text("lblVFNVM");
}

// Whatever went wrong: what is kept is what the meter held, and "restored" is true.
void RestoresIfItCan(BenchStation &station, const std::string &customers)
{
    if (RestConfigImage.empty())
        return;
    EXPECT_EQ(RestConfigImage, customers);
    Disturbs(station, kOfACalibration);
    Leaves(station, StepButton(16), kStepEntry);
    Leaves(station, "cmdNVMsave(1)", kSaving);
    station.person.Waits(kRestart).Does([&station, customers] {
        if (Said() == kRestored) {
            EXPECT_EQ(ConfigurationOf(station), customers);
        } else {
            EXPECT_EQ(ScriptedOperator::Fill("shpVFNVM"), "#ff0000") << Said();
            EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdNVMsave(1)")) << "once more";
        }
    });
}

PageScript ConfigurationScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kVf, route, 1);
    script.works = [](BenchStation &station, const std::string &) {
        RestConfigImage.clear();
        ConfiguresForACustomer(station);
        const std::string customers = ConfigurationOf(station);
        Leaves(station, ButtonOf(Step::GetConfig), kStepEntry);
        station.person.Waits(kRestart).Does([&station, customers] { RestoresIfItCan(station, customers); });
        station.person.Does([&station, customers] {
            station.person.Does([&station, customers] { PutsConfiguration(station, customers); });
        });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::GetConfig)).WaitsFor(StepButton(16)).Clicks(StepButton(16));
        station.person.WaitsFor("cmdNVMsave(1)").Clicks("cmdNVMsave(1)");
    };
    script.proves = [](BenchStation &station) {
        ConfiguresForACustomer(station);
        const std::string customers = ConfigurationOf(station);
        station.person.Clicks(ButtonOf(Step::GetConfig)).WaitsFor(StepButton(16)).Clicks(StepButton(16));
        station.person.WaitsFor("cmdNVMsave(1)")
            .Does([&station] { Disturbs(station, kOfACalibration); })
            .Clicks("cmdNVMsave(1)");
        station.person.WaitsForText("lblVFNVM", kRestored).WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(ConfigurationOf(station), customers);
    };
    return script;
}

class ConfigurationJourney : public testing::TestWithParam<Route>
{
};

}  // namespace

TEST_P(ConfigurationJourney, IsKeptBeforeACalibrationAndRestoredByAnotherRunOfTheProgram)
{
    BenchStation station(WiringOf(kVf, GetParam(), 3));
    ConfiguresForACustomer(station);
    const std::string customers = ConfigurationOf(station);
    ASSERT_TRUE(station.Establishes());
    EXPECT_FALSE(ScriptedOperator::IsEnabled(StepButton(16)));
    station.person.Clicks(ButtonOf(Step::GetConfig)).WaitsFor(StepButton(16)).Does([] {
        EXPECT_EQ(Said(), "The original onfiguration above has been saved.");
        EXPECT_EQ(ScriptedOperator::Text("txtNVM(62)"), "1220") << "LOCKOUT, word 20";
        EXPECT_FALSE(ScriptedOperator::Sees("cmdNVMsave(1)"));
        EXPECT_FALSE(ScriptedOperator::Sees("cmdNVMcancel(1)"));
        EXPECT_FALSE(ScriptedOperator::Sees("cmdNVMWord(1)"));
    });
    // The calibration moves the input type, and a crash comes in its middle.
    station.person.Clicks(StepButton(4)).WaitsFor("cmdSetup");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_NE(ConfigurationOf(station), customers);
    Disturbs(station, kOfACalibration);
    CloseStation();
    OpenWholeStation(Painted::No);
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(StepButton(16)).WaitsFor("cmdNVMsave(1)").Does([] {
        EXPECT_THAT(Said(), testing::StartsWith("Click \"Save\" to restore the original onfiguration above.\n"
                                                "Kept by an earlier run, of CTR, revision "));
        EXPECT_EQ(ScriptedOperator::Text("txtNVM(62)"), "1220");
        EXPECT_TRUE(ScriptedOperator::HasFocus("cmdNVMsave(1)"));
    });
    station.person.Clicks("cmdNVMsave(1)").WaitsForText("lblVFNVM", kRestored).WaitsFor("cmdSetup");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_EQ(ConfigurationOf(station), customers);
    EXPECT_EQ(StateOfFile(kFile), FileState::Missing);
    EXPECT_FALSE(ScriptedOperator::Sees("cmdNVMsave(1)"));
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfACounter, ConfigurationJourney, testing::Values(Route::Direct, Route::Uut),
                         [](const auto &info) { return NameOf(info.param); });

TEST(ConfigurationOfACounter, ThatTheMeterDoesNotTakeIsShownInRedWhereItDiffers)
{
    BenchStation station(WiringOf(kVf, Route::Direct, 3));
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(ButtonOf(Step::GetConfig)).WaitsFor(StepButton(16)).Does([&station] {
        station.bench.SetWord(0x20, 0x5555);
        station.bench.WearOut(0x20);
    });
    station.person.Clicks(StepButton(16)).WaitsFor("cmdNVMsave(1)").Clicks("cmdNVMsave(1)").WaitsFor("cmdSetup");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_EQ(Said(), "Not taken by the meter: words 20.\nClick \"Save\" to try again.");
    EXPECT_EQ(ScriptedOperator::Fill("shpVFNVM"), "#ff0000");
    EXPECT_EQ(ScriptedOperator::Text("txtNVM(62)"), "5555") << "what the meter holds";
    EXPECT_EQ(ScriptedOperator::Fill("txtNVM(62)"), "#ff0000");
    EXPECT_NE(ScriptedOperator::Fill("txtNVM(63)"), "#ff0000");
    EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdNVMsave(1)"));
    EXPECT_EQ(StateOfFile(kFile), FileState::Readable);
}

INSTANTIATE_TEST_SUITE_P(OnTheMeterType, FaultLoop, testing::ValuesIn(LastingFaultCases(TypeScript(Route::Direct), 2)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnNominalize, FaultLoop, testing::ValuesIn(LastingFaultCases(GainsScript(Route::Direct), 2)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheConfiguration, FaultLoop,
                         testing::ValuesIn(LastingFaultCases(ConfigurationScript(Route::Direct), 7)), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheMeterTypeElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(TypeScript, {Route::Uut, "wrong-length", 4})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnNominalizeElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(GainsScript, {Route::Manual, "garbage", 4})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheConfigurationElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(ConfigurationScript, {Route::Uut, "silent-meter", 7})),
                         NameOfFaultCase);

INSTANTIATE_TEST_SUITE_P(OnTheMeterType, QuitLoop,
                         testing::ValuesIn(QuitCases(TypeScript(Route::Direct), {0, 500, 2000, 2600})), NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(OnNominalize, QuitLoop,
                         testing::ValuesIn(QuitCases(GainsScript(Route::Direct), {0, 600, 1500, 3300})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(OnTheConfiguration, QuitLoop,
                         testing::ValuesIn(QuitCases(ConfigurationScript(Route::Direct), {0, 200, 700, 2500})),
                         NameOfQuitCase);
