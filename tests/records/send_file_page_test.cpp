#include "links/calibrator.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/folders.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/live_output.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "shell/main_window.h"
#include "support/journal_events.h"
#include "support/page_test.h"
#include "support/samples.h"

#include <QCoreApplication>
#include <QDir>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>

#include <filesystem>

namespace ombrix::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *kGreen = "#00ff00";
constexpr const char *kRed = "#ff0000";
constexpr const char *kGood = "Click \"Start\" to write file data to Nonvolatile Memory";
constexpr const char *kOffered =
    "Set jumpers and apply input as shown, then\nclick \"Test\", or click \"Skip\" to omit this test";
constexpr const char *kComplete = "Send File operation complete";

// A sample with other digits from a place on.
std::string With(const std::string &sample, std::size_t place, const std::string &digits)
{
    return Sample(sample).replace(place - 1, digits.size(), digits);
}

void Puts(const std::string &path, const std::string &text)
{
    ASSERT_EQ(WriteFile(path, text + "\n"), "");
}

class SimulatedFile : public SimulatedPage
{
protected:
    void SetUp() override
    {
        SimulatedPage::SetUp();
        PutSamples();
    }

    ScriptedOperator &Opens()
    {
        return person->Clicks(ButtonOf(Step::SendFile)).WaitsUntil("the page is open", [] {
            return Sees("lblSFStatus(0)");
        });
    }
    /// Opens the page on the DC board and writes a file there.
    ScriptedOperator &Sends(const std::string &text)
    {
        Puts("zsc1.dpm", text);
        return Opens().Clicks("cmdSendFile");
    }
    static std::string Status() { return Text("lblSFStatus(0)"); }

    static void ExpectFileBad(const std::string &why)
    {
        EXPECT_EQ(Status(), why + "\nClick \"Browse\" to try a different file");
        EXPECT_EQ(Fill("shpSFStatus(0)"), kRed);
        EXPECT_FALSE(IsEnabled("cmdSendFile"));
        EXPECT_FALSE(Sees("cmdSFSkipOK"));
        EXPECT_TRUE(IsEnabled("cmdSFBrowse"));
        EXPECT_TRUE(IsEnabled("cmdSetup"));
        EXPECT_EQ(Text("lblMemVal(0)"), "S/C TYPE = ") << "no value of a file that can't be sent";
    }

    static std::string Words(int top, int count)
    {
        std::string text;
        for (int word = top; word > top - count; --word)
            text += HexText(SimNvm[static_cast<std::size_t>(word)], 4);
        return text;
    }
};

class WiredFile : public WiredPage
{
protected:
    void Opens(const bench::BenchSetup &setup = {})
    {
        Stands(setup);
        PutSamples();
        ASSERT_NO_FATAL_FAILURE(Establishes());
        ASSERT_EQ(SCType, setup.board);
        person->Clicks(ButtonOf(Step::SendFile)).WaitsFor("cmdSendFile");
        ASSERT_TRUE(person->Runs()) << person->Trouble();
        Forget();
    }
    static std::string Status() { return Text("lblSFStatus(0)"); }
};

}  // namespace

// ---- the file ----

TEST_F(SimulatedFile, OfTheBoardIsOfferedWithItsValues)
{
    Establishes();
    Opens();
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Status(), kGood);
    EXPECT_EQ(Fill("shpSFStatus(0)"), kCyan);
    EXPECT_EQ(Text("lblSFileName"), "zsc1.dpm");
    EXPECT_EQ(Text("cmdSendFile"), "Start");
    EXPECT_TRUE(HasFocus("cmdSendFile"));
    EXPECT_TRUE(IsEnabled("cmdSFBrowse"));
    EXPECT_FALSE(Sees("cmdSFSkipOK"));
    EXPECT_FALSE(Sees("lblSFReading(0)"));
    EXPECT_FALSE(Sees("shpSFStatus(1)"));
    EXPECT_TRUE(Sees("fraNVMemVals"));
    EXPECT_EQ(Text("lblMemVal(0)"), "S/C TYPE = DC");
    EXPECT_EQ(Text("lblMemVal(1)"), "DC 200 mV");
    EXPECT_EQ(Text("lblMemVal(5)"), "SCALE = 4");
}

TEST_F(SimulatedFile, ThatCantBeSentSaysWhyAndOffersBrowse)
{
    const struct {
        const char *text;
        const char *why;
    } kBad[] = {{"0123", "File format error"}, {"", "File format error"}, {"\x7f\x01\xff", "File format error"}};
    Establishes();
    for (const auto &bad : kBad) {
        Puts("zsc1.dpm", bad.text);
        Opens();
        ASSERT_TRUE(person->Runs());
        ExpectFileBad(bad.why);
        EXPECT_TRUE(HasFocus("cmdSFBrowse"));
    }
    std::string lower = With("zsc1.dpm", 33, "a");
    Puts("zsc1.dpm", lower);
    Opens();
    ASSERT_TRUE(person->Runs());
    ExpectFileBad("File format error");
    Puts("zsc1.dpm", Sample("zsc2_1.dpm"));
    Opens();
    ASSERT_TRUE(person->Runs());
    ExpectFileBad("Specified file does not apply to DC");
    fs::remove("zsc1.dpm");
    Opens();
    ASSERT_TRUE(person->Runs());
    ExpectFileBad("Unable to open file");
    fs::create_directory("zsc1.dpm");
    Opens();
    ASSERT_TRUE(person->Runs());
    ExpectFileBad("Error reading file");
}

TEST_F(SimulatedFile, ThatIsChosenTakesThePlaceOfTheOneBefore)
{
    Establishes();
    fs::create_directory("customers");
    Puts("customers/mine.dpm", With("zsc1.dpm", 115, "0004D2"));
    fs::remove("zsc1.dpm");
    const std::string path = fs::absolute("customers/mine.dpm");
    Opens().Clicks("cmdSFBrowse").ChoosesFile(path).WaitsFor("cmdSendFile");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), kGood);
    EXPECT_EQ(Text("lblSFileName"), "mine.dpm");
    EXPECT_EQ(Text("lblMemVal(7)"), "SETPT1 = 1234");
    EXPECT_EQ(SendFileDefaults[kDc], "zsc1.dpm") << "only what is sent is remembered";
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SendFileDefaults[kDc], path);
    EXPECT_EQ(QDir::currentPath().toStdString(), fs::current_path().string());
}

TEST_F(SimulatedFile, OfTheProgramsFolderIsRememberedByItsBareName)
{
    Establishes();
    Puts("other.dpm", Sample("zsc1.dpm"));
    Opens().Clicks("cmdSFBrowse").ChoosesFile(fs::absolute("other.dpm"));
    person->WaitsForText("lblSFileName", "other.dpm").Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(SendFileDefaults[kDc], "other.dpm");
}

TEST_F(SimulatedFile, ThatTheStationsFolderHasNotIsTheInstalledOne)
{
    Establishes();
    fs::create_directory("installed");
    fs::rename("zsc1.dpm", "installed/zsc1.dpm");
    const std::string installed = fs::absolute("installed");
    LookForSamplesIn(installed);
    Opens();
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), kGood);
    EXPECT_EQ(Text("lblSFileName"), "zsc1.dpm");
    EXPECT_EQ(ScriptedOperator::Find("lblSFileName")->toolTip().toStdString(), installed + "/zsc1.dpm");
    person->Clicks("cmdSFBrowse").ChoosesFile(installed + "/zsc1.dpm").WaitsFor("cmdSendFile");
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(SendFileDefaults[kDc], "zsc1.dpm") << "found by its name, so known by it";
    EXPECT_EQ(fs::exists("zsc1.dpm"), false) << "nothing is written beside the settings";
    LookForSamplesIn("");
}

TEST_F(SimulatedFile, OfTheSameNameAsOneOfTheStationIsRememberedByItsPath)
{
    Establishes();
    fs::create_directory("installed");
    fs::copy("zsc1.dpm", "installed/zsc1.dpm");
    const std::string installed = fs::absolute("installed/zsc1.dpm");
    LookForSamplesIn(fs::absolute("installed"));
    Opens().Clicks("cmdSFBrowse").ChoosesFile(installed).WaitsFor("cmdSendFile");
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(SendFileDefaults[kDc], installed);
    LookForSamplesIn("");
}

TEST_F(SimulatedFile, StaysAsItIsWhenTheChoiceIsCancelled)
{
    Establishes();
    Opens().Clicks("cmdSFBrowse").ChoosesFile("").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), kGood);
    EXPECT_EQ(Text("lblMemVal(0)"), "S/C TYPE = DC");
    EXPECT_TRUE(IsEnabled("cmdSendFile"));
    fs::remove("zsc1.dpm");
    Opens().Clicks("cmdSFBrowse").ChoosesFile("").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    ExpectFileBad("Unable to open file");
}

// ---- its words ----

TEST_F(SimulatedFile, GoesIntoTheWordsItNamesAndNoOthers)
{
    Establishes();
    std::fill(SimNvm.begin(), SimNvm.begin() + 130, 0xAAAA);
    const std::string text = With("zsc1.dpm", 1, "123456789ABC");
    Sends(text).WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Words(29, 3), "123456789ABC");
    EXPECT_EQ(Words(24, 25), text.substr(20, 100));
    EXPECT_EQ(Words(56, 2), text.substr(120, 8));
    EXPECT_EQ(Words(118, 13), text.substr(128, 52));
    EXPECT_EQ(Words(26, 2), "AAAAAAAA");
    EXPECT_EQ(Words(54, 25), std::string(100, 'A'));
    EXPECT_EQ(Words(127, 1), "AAAA");
}

TEST_F(SimulatedFile, LeavesTheWords29To27OfTemperatureBoardsAlone)
{
    const struct {
        std::uint16_t code;
        std::uint16_t byte;
        const char *name;
    } kBoards[] = {{0x31, 0x40, "zscTC.dpm"}, {0x01, 0x40, "zsc4.dpm"}};
    for (const auto &board : kBoards) {
        station.reset();
        SetUp();
        SimNvm[29] = SimNvm[28] = SimNvm[27] = 0x5A5A;
        Establishes(board.code, board.byte);
        if (SCType == kDc) {  // Establish has put the board byte of a DC meter there
            person->ClicksTab(kTabTc).WaitsFor("optTab(0)");
            ASSERT_TRUE(person->Runs());
        }
        Opens().Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
        ASSERT_TRUE(person->Runs()) << board.name << Status();
        EXPECT_EQ(Words(29, 3), "5A5A5A5A5A5A") << board.name;
        EXPECT_EQ(Words(24, 25), Sample(board.name).substr(20, 100)) << board.name;
    }
}

TEST_F(SimulatedFile, OfAnExtendedMeterAsksFirstAndWritesNothingWithoutOk)
{
    Establishes();
    std::fill(SimNvm.begin(), SimNvm.begin() + 130, 0xAAAA);
    const std::string text = With("zsc1.dpm", 13, "Z1100000");
    Sends(text).WaitsUntil("the box stands", [] { return ScriptedOperator::Box() != nullptr; }).Does([] {
        EXPECT_EQ(ScriptedOperator::BoxTitle(), "Extended Meter");
        EXPECT_EQ(ScriptedOperator::BoxText(), "This meter will be initialized as an EXTENDED Meter.");
        EXPECT_TRUE(Sees("lblMemVal(25)"));
    });
    person->AnswersBox("Cancel").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), kGood);
    EXPECT_TRUE(IsEnabled("cmdSendFile"));
    EXPECT_TRUE(IsEnabled("cmdSFBrowse"));
    EXPECT_EQ(Words(24, 1), "AAAA");
    EXPECT_THAT(EventsOf("file sent"), IsEmpty());
    person->Clicks("cmdSendFile").AnswersBox("OK").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Words(127, 1), "8000");
    EXPECT_EQ(Words(24, 25), text.substr(20, 100));
}

TEST_F(SimulatedFile, WithARangeThatNobodyKnowsIsCompleteAtOnce)
{
    Establishes();
    Sends(With("zsc1.dpm", 55, "7F")).WaitsForText("lblSFStatus(0)", kComplete);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Fill("shpSFStatus(0)"), kGreen);
    EXPECT_FALSE(IsEnabled("cmdSendFile"));
    EXPECT_FALSE(IsEnabled("cmdSFBrowse"));
    EXPECT_FALSE(Sees("fraInputs"));
    EXPECT_TRUE(Sees("fraNVMemVals"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    Opens();
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(IsEnabled("cmdSendFile")) << "the page entered anew sends again";
    EXPECT_TRUE(IsEnabled("cmdSFBrowse"));
}

// ---- its test ----

TEST_F(SimulatedFile, OffersATestWithItsJumpersAndHoldsTheNavigation)
{
    Establishes();
    Sends(Sample("zsc1.dpm")).WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Status(), kOffered);
    EXPECT_EQ(Fill("shpSFStatus(0)"), kCyan);
    EXPECT_EQ(Text("cmdSendFile"), "Test");
    EXPECT_EQ(Text("cmdSFSkipOK"), "Skip");
    EXPECT_TRUE(HasFocus("cmdSendFile"));
    EXPECT_FALSE(IsEnabled("cmdSFBrowse"));
    EXPECT_FALSE(Sees("fraNVMemVals"));
    EXPECT_TRUE(Sees("fraInputs"));
    EXPECT_TRUE(Sees("fraJumperBlock(0)"));
    EXPECT_EQ(Text("lblSFInput"), "Input 200 mV");
    EXPECT_FALSE(IsEnabled("cmdSetup"));
    EXPECT_FALSE(IsEnabled(StepButton(2)));
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(SimulatedFile, IsCompleteWhenItsTestIsSkipped)
{
    Establishes();
    Sends(Sample("zsc1.dpm")).Clicks("cmdSFSkipOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Status(), kComplete);
    EXPECT_FALSE(Sees("fraInputs"));
    EXPECT_TRUE(Sees("fraNVMemVals"));
    EXPECT_EQ(Text("lblMemVal(0)"), "S/C TYPE = DC");
    EXPECT_FALSE(IsEnabled("cmdSFSkipOK"));
    const auto tests = EventsOf("file tested");
    ASSERT_EQ(tests.size(), 1U);
    EXPECT_EQ(TextOf(tests[0], "how"), "skipped");
}

TEST_F(SimulatedFile, ShowsAtItsTestWhatTheMeterIsToShow)
{
    Establishes();
    Sends(Sample("zsc1.dpm")).Clicks("cmdSendFile").WaitsForText("lblSFReading(1)", "200.0");
    ASSERT_TRUE(person
                    ->Does([] {
                        EXPECT_EQ(Status(), "Verify meter reading, then click \"OK\"");
                        EXPECT_EQ(Text("lblSFReading(0)"), "200.0");
                        EXPECT_EQ(Text("lblSFReading(2)"), "Reading");
                        EXPECT_EQ(Text("lblSFReading(3)"), "Desired");
                        EXPECT_EQ(Text("lblSFReading(4)"), "Meter");
                        EXPECT_EQ(Text("cmdSFSkipOK"), "OK");
                        EXPECT_TRUE(HasFocus("cmdSFSkipOK"));
                        EXPECT_FALSE(IsEnabled("cmdSendFile"));
                        EXPECT_EQ(Text("lblOutput"), "200.0 mV");
                    })
                    .Clicks("cmdSFSkipOK")
                    .WaitsFor("cmdSetup")
                    .Runs());
    EXPECT_EQ(Status(), kComplete);
    EXPECT_FALSE(Sees("lblSFReading(1)"));
    EXPECT_FALSE(IsEnabled("cmdSFSkipOK"));
    EXPECT_TRUE(CalStandbyFlag);
}

TEST_F(SimulatedFile, EndsTheReadingByEscAndTheTestByOk)
{
    Establishes();
    Sends(Sample("zsc1.dpm")).Clicks("cmdSendFile").WaitsForText("lblSFReading(1)", "200.0");
    person->Presses(Qt::Key_Escape).Waits(2000).Does([] {
        EXPECT_EQ(Text("lblSFReading(1)Mark"), "frozen");
        EXPECT_TRUE(IsEnabled("cmdSFSkipOK"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->Clicks("cmdSFSkipOK").WaitsForText("lblSFStatus(0)", kComplete);
    EXPECT_TRUE(person->Runs()) << person->Trouble();
}

TEST_F(SimulatedFile, OfAnAc3BoardAsksForItsCable)
{
    Establishes(0x22, 0x80);
    Opens().Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK").Does([] {
        EXPECT_EQ(Text("lblSFStatus(1)"), "Verify that the 2-pin cable is connected between\n"
                                          "the Calibrator's Voltage pins and the AC board.");
        EXPECT_TRUE(Sees("shpSFStatus(1)"));
    });
    person->Clicks("cmdSendFile").WaitsForText("cmdSFSkipOK", "OK").Does([] { EXPECT_FALSE(Sees("shpSFStatus(1)")); });
    person->Clicks("cmdSFSkipOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    Opens().Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_FALSE(Sees("shpSFStatus(1)")) << "that cable is connected";
}

TEST_F(SimulatedFile, OfAnRtdBoardDesiresTheTemperatureOrTheResistance)
{
    const struct {
        const char *range;
        const char *desired;
    } kRanges[] = {{"50", "1544.0"}, {"57", "250.0"}, {"E0", "20.0"}, {"E2", "2.0"}};
    Establishes(0x41, 0x50);
    for (const auto &range : kRanges) {
        Puts("zscRTD.dpm", With("zscRTD.dpm", 55, range.range));
        Opens().Clicks("cmdSendFile").WaitsForText("cmdSFSkipOK", "Skip").Clicks("cmdSendFile");
        person->WaitsForText("lblSFReading(1)", range.desired).Clicks("cmdSFSkipOK").WaitsFor("cmdSetup");
        ASSERT_TRUE(person->Runs()) << range.range << person->Trouble();
    }
}

TEST_F(SimulatedFile, TestStoppedBeforeItsInputStandsIsStillOffered)
{
    person->DoubleClicks("lblCalOut").Clicks("optManual").Clicks("cmdEstablish").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    Opens().Clicks("cmdSendFile").AnswersBox("OK").WaitsForText("cmdSFSkipOK", "Skip").Clicks("cmdSendFile");
    person->WaitsUntil("the operator is asked", [] { return ScriptedOperator::Box() != nullptr; })
        .Does([] { EXPECT_EQ(ScriptedOperator::BoxText(), "Apply an accurate input signal of 200 mV to the Meter"); })
        .Presses(Qt::Key_Escape);
    person->WaitsUntil("the input is removed or the test is offered",
                       [] { return ScriptedOperator::Box() != nullptr || IsEnabled("cmdSFSkipOK"); });
    person->Does([this] {
        if (ScriptedOperator::Box())
            person->AnswersBox("OK").WaitsFor("cmdSFSkipOK");
    });
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), kOffered);
    EXPECT_EQ(Text("cmdSendFile"), "Test");
    person->Clicks("cmdSFSkipOK").WaitsFor("cmdSetup");
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedFile, FitsASmallWindowWithoutScrolling)
{
    Establishes();
    Opens();
    ASSERT_TRUE(person->Runs());
    const auto fits = [] {
        QCoreApplication::processEvents();
        auto *place = qobject_cast<QScrollArea *>(PageFrame(8)->parentWidget()->parentWidget());
        return place->verticalScrollBar()->maximum() == 0 && place->horizontalScrollBar()->maximum() == 0;
    };
    frmOmbrix->resize(960, 504);
    EXPECT_TRUE(fits()) << "the values";
    person->Clicks("cmdSendFile").WaitsForText("cmdSFSkipOK", "Skip").Does([&] { EXPECT_TRUE(fits()) << "the offer"; });
    person->Clicks("cmdSendFile").WaitsForText("lblSFReading(1)", "200.0").Does([&] { EXPECT_TRUE(fits()) << "test"; });
    EXPECT_TRUE(person->Clicks("cmdSFSkipOK").WaitsFor("cmdSetup").Runs());
}

// ---- on the wire ----

TEST_F(WiredFile, GoesOutInFourWritesOfWhichTheLastRestartsTheMeter)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs());
    const std::string text = Sample("zsc1.dpm");
    EXPECT_THAT(ToMeter(), ElementsAre("*1W31D" + text.substr(0, 12) + "Z", "*1WP18" + text.substr(20, 100) + "Z",
                                       "*1W238" + text.substr(120, 8) + "Z", "*1WD76" + text.substr(128, 52)));
}

TEST_F(WiredFile, OfAnExtendedMeterGoesOnWithItsByteAndItsWord)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    Puts("zsc1.dpm", With("zsc1.dpm", 13, "Z1100000"));
    person->Clicks(ButtonOf(Step::SendFile)).WaitsFor("cmdSendFile").Clicks("cmdSendFile").AnswersBox("OK");
    person->WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    const auto frames = ToMeter();
    ASSERT_GE(frames.size(), 6U);
    EXPECT_EQ(frames[frames.size() - 2], "*1F13580");
    EXPECT_EQ(frames.back(), "*1W17F8000");
}

TEST_F(WiredFile, FollowsTheDisplayEveryHalfSecondUntilOk)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK").Clicks("cmdSendFile");
    person->WaitsUntil("it reads", [] { return !Text("lblSFReading(1)").empty(); }).Does([this] {
        EXPECT_TRUE(Operates());
        EXPECT_EQ(Output(), "200 mV");
        bench->ShowNext({"199.87"});
    });
    person->WaitsForText("lblSFReading(1)", "199.87").Does([] { EXPECT_EQ(Text("lblSFReading(1)Mark"), "live"); });
    person->Does([this] { bench->ShowNext({"200.12"}); }).WaitsForText("lblSFReading(1)", "200.12");
    person->Clicks("cmdSFSkipOK").WaitsForText("lblSFStatus(0)", kComplete);
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_FALSE(Operates());
    const auto tests = EventsOf("file tested");
    ASSERT_EQ(tests.size(), 1U);
    EXPECT_EQ(TextOf(tests[0], "how"), "compared");
    EXPECT_EQ(TextOf(tests[0], "reading"), "200.12");
    EXPECT_EQ(TextOf(tests[0], "reported"), "200.0 mV");
    const auto asked = TimesOf("*1B1");
    ASSERT_GE(asked.size(), 3U);
    EXPECT_GE(asked[1] - asked[0], 500);
}

TEST_F(WiredFile, SaysThatTheMeterFellSilentAndGoesOnWhenItIsBack)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK").Clicks("cmdSendFile");
    person->WaitsUntil("it reads", [] { return !Text("lblSFReading(1)").empty(); }).Does([this] {
        bench->SwitchFault("silent-meter", true);
    });
    person->WaitsForText("lblSFStatus(0)", "The meter does not answer").Does([this] {
        EXPECT_EQ(Fill("shpSFStatus(0)"), kRed);
        EXPECT_EQ(Text("lblSFReading(1)Mark"), "silent");
        bench->SwitchFault("silent-meter", false);
    });
    person->WaitsForText("lblSFReading(1)Mark", "live").Does([] {
        EXPECT_EQ(Status(), "Verify meter reading, then click \"OK\"");
    });
    person->Does([this] { bench->SwitchFault("over-range", true); })
        .WaitsForText("lblSFStatus(0)", "The display is over range")
        .Clicks("cmdSFSkipOK")
        .WaitsForText("lblSFStatus(0)", kComplete);
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_FALSE(Operates());
}

TEST_F(WiredFile, ThatWasNotWrittenToItsEndIsNotCalledComplete)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdSendFile").Waits(50).Does([this] { bench->SwitchFault("meter-port-gone", true); });
    person->WaitsFor("cmdSendFile");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), "The file was not written to its end: check the meter's line,\n"
                        "then click \"Start\" to write the whole file again");
    EXPECT_EQ(Fill("shpSFStatus(0)"), kRed);
    EXPECT_EQ(Text("cmdSendFile"), "Start");
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    bench->SwitchFault("meter-port-gone", false);
    person->Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK").Clicks("cmdSFSkipOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(Status(), kComplete);
    const auto sent = EventsOf("file sent");
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_FALSE(std::get<bool>(FieldOf(sent[0], "whole")->is));
    EXPECT_TRUE(std::get<bool>(FieldOf(sent[1], "whole")->is));
    EXPECT_EQ(WordOf(16), 0x0060);
}

TEST_F(WiredFile, ThatQuitBrokeOffIsInTheJournal)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdSendFile").Waits(50).Clicks("cmdQuit");
    person->Runs();
    const auto sent = EventsOf("file sent");
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_FALSE(std::get<bool>(FieldOf(sent[0], "whole")->is));
    EXPECT_EQ(EventsOf("words written").size(), 1U);
}

TEST_F(WiredFile, BegunIsFinishedAlsoBehindEsc)
{
    ASSERT_NO_FATAL_FAILURE(Opens());
    person->Clicks("cmdSendFile").Presses(Qt::Key_Escape).WaitsFor("cmdSFSkipOK");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(ToMeter().size(), 4U);
    EXPECT_EQ(HexText(WordOf(106), 4) + HexText(WordOf(24), 4),
              Sample("zsc1.dpm").substr(176, 4) + Sample("zsc1.dpm").substr(20, 4));
    EXPECT_EQ(Text("cmdSendFile"), "Test");
}

}  // namespace ombrix::test
