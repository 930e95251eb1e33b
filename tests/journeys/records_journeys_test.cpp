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
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kStepEntry = 20;  // seconds, as for a range
constexpr int kRemoval = 60;
constexpr int kRestart = 3000;     // milliseconds, more than any restart
constexpr double kSameCounts = 5;  // the display's flicker
constexpr int kPatience = 60;      // what the operator waits for a reading before he presses Esc

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

// Takes so many readings more as far as it goes, gives up one that lasts too long, looks and clicks Done.
void GoesOn(BenchStation &station, int readings, const std::function<void()> &looks)
{
    station.person.WaitsUntil("the page rests", PageRests).Does([&station, readings, looks] {
        if (!ScriptedOperator::IsEnabled("cmdVfyOK")) {
            looks();
            Leaves(station, "cmdVfyDone", kRemoval + kStepEntry);
            station.person.Waits(kRestart);  // a meter that has just restarted by itself is deaf
            return;
        }
        const bool unknown = ScriptedOperator::Text("lblInst(8)").starts_with("The calibrator has not confirmed");
        if (readings == 0 || unknown) {
            PressEscape();
            return GoesOn(station, 0, looks);
        }
        const std::int64_t start = station.clock.Elapsed();
        station.person.Clicks("cmdVfyOK").WaitsUntil("it was read or lasts too long", [&station, start] {
            return PageRests() || station.clock.Elapsed() > start + kPatience * 1000;
        });
        station.person.Does([&station, readings, looks] {
            if (!PageRests())
                PressEscape();
            GoesOn(station, readings - 1, looks);
        });
    });
}

// The two records of the first range.
std::vector<std::string> RecordsKept()
{
    const std::string bytes = ReadFile("unit.vfy").value_or("");
    std::vector<std::string> kept;
    for (const int slot : {0, 1})
        if (bytes.size() == static_cast<std::size_t>(kVerifyFileSize))
            kept.push_back(bytes.substr(VerifyPlaceOf(VerifyRecordOf(kDc, slot)), 6));
    return kept;
}

// What was kept is what the unit shows on a sound bench: none of its words is changed here. Of a calibrator that trips,
// and of a meter that has just restarted by itself and not heard its range, the station knows nothing.
void ExpectTheRecordsToBeTrue(const BenchStation &station, const std::string &fault, std::vector<std::string> &sound)
{
    const std::vector<std::string> kept = RecordsKept();
    if (sound.empty()) {
        sound = kept;
        ASSERT_EQ(sound.size(), 2U);
        EXPECT_EQ(sound[1], LastShown(station.bench));
        EXPECT_NE(sound[0], sound[1]);
    }
    if (DisplayLies(station, fault) || fault == "trips" || fault == "meter-restarts")
        return;
    for (std::size_t i = 0; i < kept.size(); ++i)
        if (kept[i].find_first_not_of(' ') != std::string::npos) {
            EXPECT_NEAR(Val(kept[i]), Val(sound[i]), kSameCounts) << "record " << i << ": " << kept[i];
        }
}

// The first range of a DC board, in a file of its own: both readings, then Done.
PageScript VerifyScript(Route route)
{
    PageScript script;
    script.wiring = WiringOf(kDc, route, 1);
    auto sound = std::make_shared<std::vector<std::string>>();
    script.works = [sound](BenchStation &station, const std::string &fault) {
        std::filesystem::remove("unit.vfy");
        Leaves(station, ButtonOf(Step::Verify), kStepEntry);
        station.person.Does([&station, fault, sound] {
            if (!ScriptedOperator::IsEnabled("cmdFileSpec"))
                return;  // the meter could not be set up
            station.person.Clicks("cmdFileSpec").ChoosesFile(Path("unit.vfy")).Clicks("cmdVfyReady");
            GoesOn(station, 2, [&station, fault, sound] { ExpectTheRecordsToBeTrue(station, fault, *sound); });
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

// A word that is edited by its name and by its number.
struct EditedWord {
    int board;
    int word;
    const char *number;  // in hexadecimal digits
    const char *field, *save, *cancel, *says;
    const char *byNumber;  // the button
};
constexpr EditedWord kOfAMeter = {
    kDc, 39, "27", "txtNVM(14)", "cmdNVMsave(0)", "cmdNVMcancel(0)", "lblNVM", "cmdNVMWord(0)"};
constexpr EditedWord kOfACounter = {
    kVf, 45, "2D", "txtNVM(82)", "cmdNVMsave(1)", "cmdNVMcancel(1)", "lblVFNVM", "cmdNVMWord(1)"};

// Another word into its field, saved, and what comes of it; a change that is left over is cancelled.
void Changes(BenchStation &station, const EditedWord &edited)
{
    const std::string typed = ScriptedOperator::Text(edited.field) == "1234" ? "1235" : "1234";
    station.person.Types(edited.field, typed).Clicks(edited.save).WaitsUntil("the save has ended", [edited] {
        return NavigationIsFree() || ScriptedOperator::IsEnabled(edited.cancel);
    });
    station.person.Does([&station, edited, typed] {
        if (ScriptedOperator::Text(edited.says).starts_with("Written, and read back")) {
            EXPECT_EQ(WordsOf(station, edited.word, 1), typed);
        }
        if (!NavigationIsFree())
            Leaves(station, edited.cancel, kStepEntry);
    });
}

// The same word by its number, and back.
void GoesOnByNumber(BenchStation &station, const EditedWord &edited)
{
    EditedWord there = edited;
    there.field = "txtNVMWord(1)";
    there.save = "cmdNVMWord(3)";
    there.cancel = "cmdNVMWord(4)";
    there.says = "lblNVMWord";
    station.person.Does([&station, there] {
        if (!ScriptedOperator::IsEnabled(there.byNumber))
            return;
        station.person.Clicks(there.byNumber).Types("txtNVMWord(0)", there.number).Clicks("cmdNVMWord(2)");
        station.person.WaitsFor("cmdNVMWord(2)").Does([&station, there] {
            if (ScriptedOperator::IsEnabled(there.field))
                Changes(station, there);
            station.person.Does([&station] { Leaves(station, "cmdNVMWord(5)", kStepEntry); });
        });
    });
}

PageScript EditorScriptOf(const EditedWord &edited, Route route)
{
    PageScript script;
    script.wiring = WiringOf(edited.board, route, 1);
    script.works = [edited](BenchStation &station, const std::string &) {
        Leaves(station, ButtonOf(Step::ViewNvm), kStepEntry);
        station.person.Does([&station, edited] {
            if (ScriptedOperator::IsEnabled(edited.field))
                Changes(station, edited);
            GoesOnByNumber(station, edited);
        });
    };
    script.begins = [edited](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::ViewNvm)).WaitsFor(edited.field).Types(edited.field, "1234");
        station.person.Clicks(edited.save);
    };
    script.proves = [edited](BenchStation &station) {
        station.person.Clicks(ButtonOf(Step::ViewNvm)).WaitsFor(edited.field).Types(edited.field, "4321");
        station.person.Clicks(edited.save).WaitsFor("cmdSetup");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        EXPECT_EQ(WordsOf(station, edited.word, 1), "4321");
    };
    return script;
}

PageScript EditorScript(Route route)
{
    return EditorScriptOf(kOfAMeter, route);
}

}  // namespace

// No input is applied while words are edited: what only the calibrator or the display can suffer isn't tried.
static std::vector<FaultCase> FaultsOfWords(const EditedWord &edited, int every)
{
    std::vector<FaultCase> cases = FaultCases(EditorScriptOf(edited, Route::Direct), every);
    std::erase_if(cases,
                  [](const FaultCase &each) { return IsOfTheCalibrator(each.fault) || IsOfTheDisplay(each.fault); });
    return cases;
}

INSTANTIATE_TEST_SUITE_P(OnVerify, FaultLoop, testing::ValuesIn(LastingFaultCases(VerifyScript(Route::Direct), 199)),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheEditor, FaultLoop, testing::ValuesIn(FaultsOfWords(kOfAMeter, Stride(11))),
                         NameOfFaultCase);
INSTANTIATE_TEST_SUITE_P(OnTheEditorOfACounter, FaultLoop, testing::ValuesIn(FaultsOfWords(kOfACounter, Stride(11))),
                         NameOfFaultCase);
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
