// The analog output of each kind of meter with each DAC, calibrated by an operator who reads the bench's output meter.

#include "calibration/analog_output.h"
#include "journeys/page_loops.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

struct MeterRow {
    const char *name;
    int board;
    int kind;
    int dac;
    unsigned seed;
    int currentPoint;
    bool uut = false;  // behind the calibrator's meter port
};

void PrintTo(const MeterRow &row, std::ostream *out)
{
    *out << row.name;
}

// clang-format off
const MeterRow kMeters[] = {
    {"Dpm12Bit",     kDc, kDpm,   kDac12Bit,   1, 200},  {"DpmXmtr",   kDc, kDpm,   kDacXmtr,  2, 4000},
    {"DpmBipolar",   kDc, kDpm,   kDacBipolar, 3, 200},  {"DpmDual",   kDc, kDpm,   kDacDual,  4, 200},
    {"WtMtr12Bit",   kLc, kWtMtr, kDac12Bit,   9, 4000}, {"WtMtrXmtr", kLc, kWtMtr, kDacXmtr, 10, 200},
    {"WtMtrBipolar", kLc, kWtMtr, kDacBipolar, 11, 200}, {"WtMtrDual", kLc, kWtMtr, kDacDual,  5, 4000},
    {"Ctr12Bit",     kVf, kCtr,   kDac12Bit,  12, 4000}, {"CtrXmtr",   kVf, kCtr,   kDacXmtr,  6, 200},
    {"CtrBipolar",   kVf, kCtr,   kDacBipolar, 7, 200},  {"CtrDual",   kVf, kCtr,   kDacDual,  8, 200},
    {"DpmBipolarBehindTheCalibrator", kDc, kDpm, kDacBipolar, 13, 200, true},
    {"CtrXmtrBehindTheCalibrator",    kVf, kCtr, kDacXmtr,    14, 200, true},
};
// clang-format on

Wiring WiringOf(const MeterRow &row)
{
    Wiring wiring;
    wiring.bench.board = row.board;
    wiring.bench.kind = row.kind;
    wiring.bench.xmtr = row.kind == kDpm;
    wiring.bench.seed = row.seed;
    wiring.bench.uut = row.uut;
    return wiring;
}

constexpr int kLookMs = 300;  // until an operator looks at the output meter

class AnalogJourney : public testing::TestWithParam<MeterRow>
{
protected:
    AnalogJourney() : station(WiringOf(GetParam())) {}

    void Runs() { ASSERT_TRUE(station.person.Runs()) << station.person.Trouble(); }

    /// Goes where a click leads; a cable that is asked for on the way is connected.
    void GoesTo(const std::string &button, const std::string &place)
    {
        station.person.Clicks(button).WaitsUntil("it is there, or a cable is asked for", [place] {
            return ScriptedOperator::IsEnabled(place) || ScriptedOperator::IsEnabled("cmdModal");
        });
        station.person.Does([this, place] {
            if (ScriptedOperator::IsEnabled("cmdModal"))
                station.person.Clicks("cmdModal").WaitsFor(place);
            station.person.Waits(kLookMs);
        });
        Runs();
    }
    void OpensTheTab()
    {
        station.person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp");
        ASSERT_NO_FATAL_FAILURE(Runs());
        GoesTo("optDAC(" + std::to_string(GetParam().dac) + ")", "cmdUp");
        if (GetParam().currentPoint == 4000)
            GoesTo("optCOffCalibPt(1)", "cmdUp");
    }
    double Off(int point) const
    {
        const double shown = Val(Format(station.bench.AnalogOut(AnalogConnector(point)).value, 2));
        return shown - AnalogTarget(point, GetParam().currentPoint);
    }
    bool IsInside(int point) const { return std::fabs(Off(point)) <= static_cast<double>(AnalogTolerance(point)); }
    void TypesWhatIsShown(int point)
    {
        const double shown = station.bench.AnalogOut(AnalogConnector(point)).value;
        station.person.Types("txtRead", Format(shown, 2)).PressesAtOnce(Qt::Key_Return).WaitsFor("txtRead");
        Runs();
    }
    bool HasPoint(int point) const { return HasAnalogPoint(GetParam().dac, point); }

    /// Goes over all points again and again, until none of them needs a reading any more.
    void CalibratesAllPoints(std::vector<int> &readings)
    {
        for (int round = 0; round < 5; ++round) {
            bool typed = false;
            for (int point = 0; point < kAnalogWords; ++point) {
                if (!HasPoint(point))
                    continue;
                ASSERT_NO_FATAL_FAILURE(GoesTo(StepButton(PositionOfAnalogPoint(point)), "txtRead"));
                if (IsInside(point))
                    continue;
                ASSERT_NO_FATAL_FAILURE(TypesWhatIsShown(point));
                ++readings[static_cast<std::size_t>(point)];
                typed = true;
            }
            if (!typed)
                return;
        }
    }

    BenchStation station;
};

}  // namespace

TEST_P(AnalogJourney, EndsInsideTheToleranceAtEachPointAfterAtMostFourReadings)
{
    ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
    const bench::Words before = station.bench.Nvm();
    ASSERT_NO_FATAL_FAILURE(OpensTheTab());
    std::vector<int> readings(kAnalogWords);
    ASSERT_NO_FATAL_FAILURE(CalibratesAllPoints(readings));
    EXPECT_LE(*std::max_element(readings.begin(), readings.end()), 4);
    EXPECT_GE(*std::min_element(readings.begin(), readings.begin() + 4), 1) << "no point was right before";

    station.person.Clicks("cmdAnaCal(0)").WaitsFor("cmdAnaCal(1)").Clicks("cmdAnaCal(1)").WaitsFor("cmdSetup");
    ASSERT_NO_FATAL_FAILURE(Runs());
    const auto truths = station.bench.AnalogTruths(GetParam().currentPoint);
    bench::Words after = station.bench.Nvm();
    for (int point = 0; point < kAnalogWords; ++point) {
        const auto index = static_cast<std::size_t>(point);
        if (HasPoint(point)) {
            EXPECT_LE(std::fabs(truths[index].error), static_cast<double>(AnalogTolerance(point)))
                << bench::TruthText(truths[index]);
            const auto word = static_cast<std::size_t>(AnalogWordAddress(point, GetParam().kind == kCtr));
            after[word] = before[word];
        }
    }
    EXPECT_EQ(after, before) << "all else in the meter is as it was found";
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Meters, AnalogJourney, testing::ValuesIn(kMeters),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- what can go wrong ----

namespace {

constexpr int kInitNvmem = 0;  // positions on the AnaCal tab
constexpr int kVoltageGain = 3;
constexpr int kReCalibrate = 15;
constexpr int kZeroInitFile = 16;
constexpr int kTabSeconds = 90;  // twice an identity, the words given back and taken
constexpr int kWorkSeconds = 60;

std::string Says()
{
    return ScriptedOperator::Text("lblInst(12)");
}

// "The meter holds word 1234."
void ExpectTheWordToBeHeld(const BenchStation &station, int point, bool counter)
{
    const std::string begin = "The meter holds word ";
    if (Says().starts_with(begin)) {
        EXPECT_EQ(Says().substr(begin.size(), 4), WordsOf(station, AnalogWordAddress(point, counter), 1));
    }
}

// The operator opens the tab, types a reading and leaves by Done; what a fault makes impossible is left as it is.
void WorksAtAPoint(BenchStation &station, bool counter)
{
    station.person.onBox = [](const std::string &, const std::string &) {};
    station.person.ClicksTab(kTabAnaCal).WaitsUntil("the tab is open", NavigationIsFree).Does([&station, counter] {
        if (!ScriptedOperator::IsEnabled(StepButton(kVoltageGain)))
            return;
        Leaves(station, StepButton(kVoltageGain), kTabSeconds);
        station.person.Does([&station, counter] {
            if (!ScriptedOperator::IsEnabled("txtRead"))
                return;
            station.person.Types("txtRead", "10010").PressesAtOnce(Qt::Key_Return);
            station.person.WaitsUntil("the word is written", NavigationIsFree).Does([&station, counter] {
                ExpectTheWordToBeHeld(station, AnalogPointAtPosition(kVoltageGain), counter);
                if (ScriptedOperator::IsEnabled("cmdAnaCal(1)"))
                    Leaves(station, "cmdAnaCal(1)", kWorkSeconds);
            });
        });
    });
}

void ProvesAPoint(BenchStation &station)
{
    station.person.onBox = nullptr;
    station.person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp").Clicks(StepButton(kVoltageGain)).WaitsFor("txtRead");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    for (int reading = 0; reading < 3; ++reading) {
        station.person.Waits(kLookMs);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        station.person.Types("txtRead", Format(station.bench.AnalogOut(1).value, 2)).PressesAtOnce(Qt::Key_Return);
        station.person.WaitsFor("txtRead");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    }
    station.person.Waits(kLookMs);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_LE(std::fabs(station.bench.AnalogOut(1).value - 10000), 1.25);
    station.person.Clicks("cmdAnaCal(1)").WaitsFor("cmdSetup");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_FALSE(AnalogSettingsBorrowed());
}

// The words of the meter's own that the page writes over.
std::vector<int> OwnWords(const BenchStation &station, int kind)
{
    std::vector<int> own;
    for (const int word :
         kind == kCtr ? std::vector{26, 25, 24, 36, 17, 16, 15, 144} : std::vector{14, 13, 12, 20, 240})
        own.push_back(station.bench.Nvm()[static_cast<std::size_t>(word)]);
    return own;
}

PageScript Script(int board, Route route)
{
    PageScript script;
    script.wiring = WiringOf(board, route, 1);
    const int kind = script.wiring.bench.kind;
    auto found = std::make_shared<std::vector<int>>();  // by the first run of all; all of them have the same meter
    script.works = [found, kind](BenchStation &station, const std::string &) {
        if (found->empty())
            *found = OwnWords(station, kind);
        WorksAtAPoint(station, kind == kCtr);
    };
    script.begins = [](BenchStation &station) {
        station.person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp").Clicks(StepButton(kVoltageGain));
        station.person.WaitsFor("txtRead").Types("txtRead", "10010").PressesAtOnce(Qt::Key_Return);
    };
    script.proves = [found, kind](BenchStation &station) {
        ProvesAPoint(station);
        EXPECT_EQ(OwnWords(station, kind), *found) << "whatever went wrong, its own words came back";
    };
    return script;
}

std::vector<int> WordsOfPoints(bool counter)
{
    std::vector<int> words;
    for (int point = 0; point < kAnalogWords; ++point)
        words.push_back(AnalogWordAddress(point, counter));
    return words;
}

std::string PointWords(const BenchStation &station, bool counter)
{
    std::string held;
    for (const int word : WordsOfPoints(counter))
        held += WordsOf(station, word, 1);
    return held;
}

// The rest of the tab's steps that are no points, as far as they are on, and Done. What is told inside Does comes behind
// all that was told before, so each piece tells the next.
void TakesTheSteps(BenchStation &station, std::vector<int> positions, const std::function<void(int position)> &looks)
{
    station.person.Does([&station, positions, looks] {
        if (positions.empty()) {
            if (ScriptedOperator::IsEnabled("cmdAnaCal(1)"))
                Leaves(station, "cmdAnaCal(1)", kWorkSeconds);
            return;
        }
        const int position = positions.front();
        if (ScriptedOperator::IsEnabled(StepButton(position))) {
            Leaves(station, StepButton(position), kTabSeconds);
            station.person.Does([position, looks] { looks(position); });
        }
        TakesTheSteps(station, {positions.begin() + 1, positions.end()}, looks);
    });
}

// Zero InitFile, Init NVMEM and Re-Calibrate. A meter answers no write: of one that has just restarted by itself, and
// heard nothing, nobody knows.
PageScript TabScript(int board, Route route)
{
    PageScript script;
    script.wiring = WiringOf(board, route, 1);
    const int kind = script.wiring.bench.kind;
    const bool counter = kind == kCtr;
    auto found = std::make_shared<std::vector<int>>();
    auto nominal = std::make_shared<std::string>();  // behind the run on a sound bench
    script.works = [=](BenchStation &station, const std::string &fault) {
        if (found->empty())
            *found = OwnWords(station, kind);
        Disturbs(station, WordsOfPoints(counter));
        station.person.onBox = [](const std::string &, const std::string &) {};
        station.person.ClicksTab(kTabAnaCal).WaitsUntil("the tab is open", NavigationIsFree);
        TakesTheSteps(station, {kZeroInitFile, kInitNvmem, kReCalibrate}, [=, &station](int position) {
            const bool told = Says().starts_with("The nominal words are in the meter");
            if (position != kInitNvmem || !told || fault == "meter-restarts")
                return;
            if (nominal->empty()) {
                *nominal = PointWords(station, counter);
            } else {
                EXPECT_EQ(PointWords(station, counter), *nominal);
            }
        });
    };
    script.proves = [=](BenchStation &station) {
        station.person.onBox = nullptr;
        Disturbs(station, WordsOfPoints(counter));
        station.person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp").Clicks(StepButton(kInitNvmem));
        station.person.WaitsFor("cmdAnaCal(1)").Clicks("cmdAnaCal(1)").WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(PointWords(station, counter), *nominal);
        EXPECT_EQ(nominal->substr(0, 16).find("0A0A"), std::string::npos);
        EXPECT_EQ(OwnWords(station, kind), *found) << "whatever went wrong, its own words came back";
    };
    return script;
}

// What the calibrator does wrong, and what is wrong with the display, doesn't reach this page.
std::vector<FaultCase> FaultsOfTheMetersLine(const PageScript &script, int every)
{
    std::vector<FaultCase> cases = FaultCases(script, every);
    std::erase_if(cases, [](const FaultCase &each) {
        const std::vector<std::string> names = {"silent-meter", "garbage",        "lost-cr", "split",
                                                "slow-reply",   "wrong-length",   "junk",    "meter-restarts",
                                                "port-gone",    "meter-port-gone"};
        return std::find(names.begin(), names.end(), each.fault) == names.end();
    });
    return cases;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(OnAnalogOutput, FaultLoop,
                         testing::ValuesIn(FaultsOfTheMetersLine(Script(kDc, Route::Direct), Stride(23))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogOutputOfACounter, FaultLoop,
                         testing::ValuesIn(FaultsOfTheMetersLine(Script(kVf, Route::Direct), Stride(37))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogOutputElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes([](Route route) { return Script(kDc, route); },
                                                       {Route::Uut, "silent-meter", 23})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogOutputOfACounterElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes([](Route route) { return Script(kVf, route); },
                                                       {Route::Manual, "garbage", 31})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogSteps, FaultLoop,
                         testing::ValuesIn(FaultsOfTheMetersLine(TabScript(kDc, Route::Direct), Stride(73))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogStepsOfACounter, FaultLoop,
                         testing::ValuesIn(FaultsOfTheMetersLine(TabScript(kVf, Route::Direct), Stride(53))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogOutput, QuitLoop,
                         testing::ValuesIn(QuitCases(Script(kDc, Route::Direct), {0, 20, 900, 1760, 2470, 3000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(OnAnalogOutputOfACounter, QuitLoop,
                         testing::ValuesIn(QuitCases(Script(kVf, Route::Direct), {0, 500, 1990, 2100, 4000, 5000})),
                         NameOfQuitCase);
