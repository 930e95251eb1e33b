// Verification when something goes wrong: files, meters, stops.

#include "records/verify_page.h"

#include "records/verify_page_fixture.h"
#include "session/outlets.h"

#include <QFile>

#include <cerrno>

using namespace ombrix;
using namespace ombrix::test;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

// ---- what goes wrong ----

TEST_F(VerifyPage, AReadingThatCannotBeKeptIsToldInRedAndTakenAgain)
{
    for (int failing = 0; failing < 4; ++failing) {
        SCOPED_TRACE("file call " + std::to_string(failing));
        Opens(kDc);
        UsesTheTemporaryFile().Does([this] { Shows(" 77."); });
        GetsReady().Does([failing, calls = 0]() mutable {
            UseFileFaults([failing, calls](FileCall) mutable { return FileFault{calls++ == failing ? ENOSPC : 0, 0}; });
        });
        person->Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Does([this] {
            EXPECT_EQ(Text(ReadingLabel(0)), "    77 unsaved");
            EXPECT_EQ(Fill(ReadingLabel(0)), kRed);
            EXPECT_EQ(Fill(ReadingShape(0)), kCyan) << "its slot is still due";
            EXPECT_EQ(Fill("shpInst(8)"), kRed);
            EXPECT_THAT(Text("lblInst(8)"), testing::StartsWith("Vfy$Temp.txt did not take the reading: "));
            EXPECT_TRUE(Operates());
            EXPECT_EQ(Output(), "200 mV");
            UseFileFaults(nullptr);
        });
        person->Clicks("cmdVfyOK").WaitsUntil("the minus reading is due", [] {
            return IsEnabled("cmdVfyOK") && Fill(ReadingShape(1)) == kCyan;
        });
        Runs();
        EXPECT_EQ(RecordOf(1), "    77");
        EXPECT_EQ(Text(ReadingLabel(0)), "    77");
        EXPECT_NE(Fill("shpInst(8)"), kRed);
    }
}

TEST_F(VerifyPage, AFileThatWasPulledAwayIsNotMadeAnewWithoutItsReadings)
{
    UsesTheTemporaryFile();
    GetsReady().Does([] { QFile::remove(kTempFile); });
    person->Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Does([] {
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
        EXPECT_FALSE(QFile::exists(kTempFile));
    });
    Runs();
}

TEST_F(VerifyPage, EscRemovesTheInputAndLetsTheOperatorGo)
{
    Chooses("unit.vfy");
    GetsReady().Presses(Qt::Key_Escape).WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_FALSE(Operates());
    EXPECT_EQ(Fill(RangeButton(0)), kCyan) << "the range is still due";
    EXPECT_NE(Fill(ReadingShape(0)), kCyan);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_EQ(RecordOf(1, "unit.vfy"), "      ");
}

TEST_F(VerifyPage, EscEndsTheReadingOfASilentMeterAndWritesNothing)
{
    UsesTheTemporaryFile();
    GetsReady().Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Clicks("cmdVfyOK").Waits(5000).Does([] {
        EXPECT_FALSE(IsEnabled("cmdVfyReady"));
        EXPECT_EQ(Text("lblInst(8)"), "The meter does not answer: check its line.\nEsc removes the input");
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
    });
    person->Presses(Qt::Key_Escape).WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(RecordOf(1), "      ");
    EXPECT_FALSE(Operates());
}

TEST_F(VerifyPage, ADisplayOverRangeIsToldUntilItReads)
{
    UsesTheTemporaryFile();
    GetsReady().Does([this] { bench->SwitchFault("over-range", true); });
    person->Clicks("cmdVfyOK").Waits(5000).Does([this] {
        EXPECT_EQ(Text("lblInst(8)"), "The display is over range: check the input.\nEsc removes it");
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
        bench->SwitchFault("over-range", false);
    });
    person->WaitsFor("cmdVfyOK").Does([] { EXPECT_EQ(Text("lblInst(8)"), kPromptOk); });
    Runs();
    EXPECT_NE(RecordOf(1), "      ");
}

TEST_F(VerifyPage, ASilentMeterThatCouldNotBeSetUpIsNotVerified)
{
    bench->SwitchFault("silent-meter", true);
    person->Clicks(ButtonOf(Step::Verify)).WaitsUntil("it is told", [] { return Fill("shpInst(8)") == kRed; }).Does([] {
        EXPECT_EQ(Text("lblInst(8)"), "The meter did not answer:\ncheck its line, then click the step again");
        EXPECT_FALSE(IsEnabled("cmdFileSpec"));
        EXPECT_FALSE(IsEnabled("chkTempFile"));
        EXPECT_TRUE(IsEnabled(StepButton(4)));
    });
    person->Does([this] { bench->SwitchFault("silent-meter", false); })
        .Clicks(ButtonOf(Step::Verify))
        .WaitsFor("cmdFileSpec");
    Runs();
    EXPECT_NE(Fill("shpInst(8)"), kRed);
}

TEST_F(VerifyPage, TheFactorySetupThatASilentMeterDidNotTakeIsTold)
{
    UsesTheTemporaryFile().Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Clicks("cmdVfyDone").WaitsUntil("it is told", [] { return Fill("shpInst(8)") == kRed; });
    Runs();
    EXPECT_EQ(Text("lblInst(8)"), "The meter did not answer: its factory setup isn't loaded");
}

TEST_F(VerifyPage, AReadingThatWasGivenUpDoesNotStandInTheFileByHalf)
{
    for (const FileCall failing : {FileCall::Write, FileCall::Sync}) {
        Opens(kDc);
        Chooses("unit.vfy").Does([this] { Shows("-19999."); });
        GetsReady().Does([failing] {
            UseFileFaults([failing](FileCall call) { return FileFault{call == failing ? EIO : 0, 2}; });
        });
        person->Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Does([] {
            EXPECT_NE(RecordOf(1, "unit.vfy"), "      ") << "a part of it, or more";
            UseFileFaults(nullptr);
        });
        person->Presses(Qt::Key_Escape).WaitsFor("cmdVfyReady");
        Runs();
        EXPECT_EQ(RecordOf(1, "unit.vfy"), "      ");
        EXPECT_EQ(Text(ReadingLabel(0)), "      ");
        EXPECT_NE(Fill("shpInst(8)"), kRed);
    }
}

TEST_F(VerifyPage, APartThatCannotBeTakenOutOfTheFileIsShownAndTold)
{
    Chooses("unit.vfy").Does([this] { Shows("-19999."); });
    GetsReady().Does([] {
        UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Sync ? EIO : 0, 0}; });
    });
    person->Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Does([] { QFile("unit.vfy").resize(162); });
    person->Does([] { UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? EIO : 0, 0}; }); });
    person->Presses(Qt::Key_Escape).WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(Text(ReadingLabel(0)), "-19999") << "what the file holds";
    EXPECT_EQ(Text("lblInst(8)"),
              std::string("unit.vfy may hold a part of the reading that was given up: Input/output error\n") +
                  kPromptReady);
    EXPECT_EQ(Fill("shpInst(8)"), kRed);
}

TEST_F(VerifyPage, AnotherStepTakesTheInputOffFirst)
{
    UsesTheTemporaryFile();
    GetsReady().Does([this] { Forget(); });
    person->Clicks(StepButton(4)).WaitsFor("cmdReady");
    Runs();
    EXPECT_FALSE(Operates());
    EXPECT_TRUE(Sees("fraCalib(4)"));
    EXPECT_EQ(RecordOf(1), "      ");
}

TEST_F(VerifyPage, WithAFileNothingLeadsAwayWhileAnInputStands)
{
    Chooses("unit.vfy");
    GetsReady().Does([] {
        EXPECT_FALSE(IsEnabled(StepButton(4)));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    Runs();
}

TEST_F(VerifyPage, AnInputThatTheCalibratorHasNotConfirmedIsTold)
{
    UsesTheTemporaryFile().Does([this] { bench->SwitchFault("never-operating", true); });
    GetsReady().Does([] {
        EXPECT_THAT(Text("lblInst(8)"), testing::StartsWith("The calibrator has not confirmed 200 mV"));
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
    });
    Runs();
}

TEST_F(VerifyPage, AnInputThatTheCalibratorRefusesIsTold)
{
    UsesTheTemporaryFile();
    GetsReady().Does([this] { bench->SwitchFault("refuses-output", true); });
    person->Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Does([this] {
        EXPECT_EQ(bench->Terminals().value, 0.2) << "what it delivered before";
        EXPECT_THAT(Text("lblInst(8)"), testing::StartsWith("The calibrator has not confirmed -200 mV"));
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
    });
    Runs();
}

TEST_F(VerifyPage, EnteredAgainItBeginsAfresh)
{
    Chooses("unit.vfy");
    GetsReady().Types("txtDpmID", "A7").Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    person->Clicks(ButtonOf(Step::Verify)).WaitsUntil("it is open", [] { return Text("lblFileSpec").empty(); });
    person->WaitsFor("cmdFileSpec");
    Runs();
    EXPECT_EQ(Text("txtDpmID"), "");
    EXPECT_TRUE(Sees("chkTempFile"));
    EXPECT_FALSE(IsEnabled(RangeButton(0)));
    EXPECT_TRUE(HasFocus("txtDpmID"));
}

TEST_F(VerifyPage, TellsTheJournalEachReadingWithWhatWasAskedAndReported)
{
    UsesTheTemporaryFile().Types("txtDpmID", "A7").Does([this] { Shows("-123456."); });
    GetsReady().Clicks("cmdVfyOK").WaitsFor("cmdVfyOK");
    Runs();
    const auto readings = EventsOf("verification reading");
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_EQ(TextOf(readings[0], "asked"), "200 mV");
    EXPECT_EQ(TextOf(readings[0], "reported"), "200.0 mV");
    EXPECT_EQ(TextOf(readings[0], "reading"), "-123456") << "as it came";
    EXPECT_EQ(TextOf(readings[0], "kept"), "123456");
    EXPECT_EQ(NumberOf(readings[0], "record"), 1);
    EXPECT_EQ(TextOf(readings[0], "unit"), "A7");
}

TEST_F(VerifyPage, TellsTheJournalHowARangeEndedThatWasNotReadToItsEnd)
{
    Chooses("unit.vfy");
    GetsReady().Presses(Qt::Key_Escape).WaitsFor("cmdVfyReady");
    person->Clicks("cmdVfyDone").WaitsFor("cmdVfyDone");
    GetsReady().Clicks("cmdQuit");
    Runs();
    const auto ends = EventsOf("verification broken off");
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_EQ(TextOf(ends[0], "how"), "stopped");
    EXPECT_EQ(TextOf(ends[0], "range"), "200 mV");
    EXPECT_EQ(TextOf(ends[1], "how"), "quit");
    const auto done = EventsOf("verification done");
    ASSERT_EQ(done.size(), 1U);
    EXPECT_TRUE(std::get<bool>(FieldOf(done[0], "factorySetup")->is));
}
