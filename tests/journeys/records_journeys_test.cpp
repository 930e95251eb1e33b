// A meter's records: every range verified into a file, words changed by name and by number. And what can go wrong then.

#include "journeys/page_loops.h"
#include "journeys/shown_readings.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "model/verify_file.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/procedure.h"
#include "session/state.h"
#include "support/bench_log.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>

#include <cmath>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kStepEntry = 20;  // seconds, as for a range
constexpr int kRemoval = 60;
constexpr int kRestart = 3000;  // milliseconds, more than any restart
constexpr int kPatience = 60;   // what the operator waits for a reading before he presses Esc

std::string Path(const std::string &file)
{
    return QDir::current().filePath(QString::fromStdString(file)).toStdString();
}

}  // namespace

TEST(VerifyJourneys, DcAndAcReadingsOfAUnitShareAFile)
{
    std::string dc;
    for (const int board : {kDc, kAc}) {
        BenchStation station(WiringOf(board, Route::Direct, 1));
        if (board == kAc) {
            ASSERT_EQ(WriteFile("unit.vfy", dc), "");
        }
        ASSERT_TRUE(station.Establishes());
        station.person.Clicks(ButtonOf(Step::Verify)).Clicks("cmdFileSpec").ChoosesFile(Path("unit.vfy"));
        station.person.Clicks("cmdVfyReady").Clicks("cmdVfyOK").WaitsUntil("it was read", [] {
            return ScriptedOperator::Text("lblVfyRdg(0)") != "      ";
        });
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        const std::string bytes = ReadFile("unit.vfy").value_or("");
        if (board == kDc)
            dc = bytes;
        else
            EXPECT_EQ(bytes.substr(0, 108), dc.substr(0, 108));
        EXPECT_EQ(bytes.substr(VerifyPlaceOf(VerifyRecordOf(board, 0)), 6), LastShown(station.bench));
    }
}

TEST(EditorJourney, ChangesACountersWordsThroughTheCalibratorsPort)
{
    BenchStation station(WiringOf(kVf, Route::Uut, 1));
    ASSERT_TRUE(station.Establishes());
    const auto before = station.bench.Nvm();
    station.person.Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("txtNVM(35)");
    station.person.Types("txtNVM(43)", "0004D2").Types("txtNVM(82)", "ABCD");  // words 13, 12 and 45
    station.person.Clicks("cmdNVMsave(1)").WaitsFor("cmdSetup");
    station.person.Clicks("cmdNVMWord(1)").Types("txtNVMWord(0)", "2F").Clicks("cmdNVMWord(2)");
    station.person.WaitsFor("txtNVMWord(1)").Types("txtNVMWord(1)", "55AA").Clicks("cmdNVMWord(3)");
    station.person.WaitsFor("cmdNVMWord(5)").Clicks("cmdNVMWord(5)").WaitsFor("txtNVM(35)");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    auto wanted = before;
    wanted[13] = static_cast<std::uint16_t>(before[13] & 0xFF00);
    wanted[12] = 0x04D2;
    wanted[45] = 0xABCD;
    wanted[47] = 0x55AA;
    EXPECT_EQ(station.bench.Nvm(), wanted);
    EXPECT_EQ(ScriptedOperator::Text("txtNVM(84)"), "55AA");
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

// ---- what can go wrong ----

namespace {

bool PageRests()
{
    return ScriptedOperator::IsEnabled("cmdVfyOK") || ScriptedOperator::IsEnabled("cmdVfyReady");
}

// Takes so many readings more as far as it goes, gives up one that lasts too long, and clicks Done.
void GoesOn(BenchStation &station, int readings)
{
    station.person.WaitsUntil("the page rests", PageRests).Does([&station, readings] {
        if (!ScriptedOperator::IsEnabled("cmdVfyOK")) {
            Leaves(station, "cmdVfyDone", kRemoval + kStepEntry);
            station.person.Waits(kRestart);  // a meter that has just restarted by itself is deaf
            return;
        }
        if (readings == 0) {
            PressEscape();
            return GoesOn(station, 0);
        }
        const std::int64_t start = station.clock.Elapsed();
        station.person.Clicks("cmdVfyOK").WaitsUntil("it was read or lasts too long", [&station, start] {
            return PageRests() || station.clock.Elapsed() > start + kPatience * 1000;
        });
        station.person.Does([&station, readings] {
            if (!PageRests())
                PressEscape();
            GoesOn(station, readings - 1);
        });
    });
}

// The first range of a DC board: both readings, then Done.
PageScript VerifyScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kDc, route, 1);
    script.works = [](BenchStation &station, const std::string &) {
        Leaves(station, ButtonOf(Step::Verify), kStepEntry);
        station.person.Does([&station] {
            if (!ScriptedOperator::IsEnabled("cmdFileSpec"))
                return;  // the meter could not be set up
            station.person.Clicks("cmdFileSpec").ChoosesFile(Path("unit.vfy")).Clicks("cmdVfyReady");
            GoesOn(station, 2);
        });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::Verify)).Clicks("chkTempFile").Clicks("cmdVfyReady");
    };
    script.proves = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::Verify)).Clicks("chkTempFile").Clicks("cmdVfyReady").Clicks("cmdVfyOK");
        station.person.WaitsFor("cmdVfyOK").Does([&station] {
            EXPECT_EQ(ReadFile("Vfy$Temp.txt").value_or("").substr(0, 6), LastShown(station.bench));
        });
        station.person.Does([] { PressEscape(); }).WaitsFor("cmdVfyReady").Clicks("cmdVfyDone").WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    };
    return script;
}

// Another word into a field, saved, and what comes of it; a change that is left over is cancelled.
void Changes(BenchStation &station, const std::string &field, const std::string &save, const std::string &cancel)
{
    const bool high = ScriptedOperator::Text(field) == "1234";
    station.person.Types(field, high ? "1235" : "1234").Clicks(save).WaitsUntil("the save has ended", [cancel] {
        return NavigationIsFree() || ScriptedOperator::IsEnabled(cancel);
    });
    station.person.Does([&station, cancel] {
        if (!NavigationIsFree())
            Leaves(station, cancel, kStepEntry);
    });
}

// The same word by its number, and back.
void GoesOnByNumber(BenchStation &station)
{
    station.person.Does([&station] {
        if (!ScriptedOperator::IsEnabled("cmdNVMWord(0)"))
            return;
        station.person.Clicks("cmdNVMWord(0)").Types("txtNVMWord(0)", "27").Clicks("cmdNVMWord(2)");
        station.person.WaitsFor("cmdNVMWord(2)").Does([&station] {
            if (ScriptedOperator::IsEnabled("txtNVMWord(1)"))
                Changes(station, "txtNVMWord(1)", "cmdNVMWord(3)", "cmdNVMWord(4)");
            station.person.Does([&station] { Leaves(station, "cmdNVMWord(5)", kStepEntry); });
        });
    });
}

PageScript EditorScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kDc, route, 1);
    script.works = [](BenchStation &station, const std::string &) {
        Leaves(station, ButtonOf(Step::ViewNvm), kStepEntry);
        station.person.Does([&station] {
            if (ScriptedOperator::IsEnabled("txtNVM(14)"))
                Changes(station, "txtNVM(14)", "cmdNVMsave(0)", "cmdNVMcancel(0)");
            GoesOnByNumber(station);
        });
    };
    script.begins = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("txtNVM(14)").Types("txtNVM(14)", "1234");
        station.person.Clicks("cmdNVMsave(0)");
    };
    script.proves = [](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("txtNVM(14)").Types("txtNVM(14)", "4321");
        station.person.Clicks("cmdNVMsave(0)").WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(station.bench.Nvm()[39], 0x4321);
    };
    return script;
}

}  // namespace

// No input is applied while words are edited: what only the calibrator or the display can suffer isn't tried.
static std::vector<FaultCase> FaultsOfWords(int every)
{
    std::vector<FaultCase> cases = FaultCases(EditorScript(Route::Direct), every);
    std::erase_if(cases, [](const FaultCase &each) {
        const bool ofTheDisplay = DisplayLies(each.fault) && each.fault != "wrong-length";
        return IsOfTheCalibrator(each.fault) || ofTheDisplay;
    });
    return cases;
}

INSTANTIATE_TEST_SUITE_P(OnVerify, FaultLoop, testing::ValuesIn(LastingFaultCases(VerifyScript(Route::Direct), 97)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheEditor, FaultLoop, testing::ValuesIn(FaultsOfWords(Stride(5))), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnVerifyElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(VerifyScript, {Route::Manual, "junk", 97})), NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheEditorElsewhere, FaultLoop,
                         testing::ValuesIn(OtherRoutes(EditorScript, {Route::Uut, "wrong-length", 7})),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnVerify, QuitLoop,
                         testing::ValuesIn(QuitCases(VerifyScript(Route::Direct),
                                                     {0, 100, 1100, 2300, 3000, 4000, 9000})),
                         NameOfQuitCase);
INSTANTIATE_TEST_SUITE_P(OnTheEditor, QuitLoop,
                         testing::ValuesIn(QuitCases(EditorScript(Route::Direct), {0, 700, 2600})), NameOfQuitCase);
