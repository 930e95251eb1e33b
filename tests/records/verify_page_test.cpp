#include "records/verify_page.h"

#include "records/verify_page_fixture.h"
#include "session/outlets.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

using namespace ombrix;
using namespace ombrix::test;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(VerifyPage, BeginsWithoutAFileAndPutsTheMeterOnItsFilter)
{
    EXPECT_TRUE(Sees("fraCalib(6)"));
    EXPECT_EQ(Text(RangeButton(0)), "+200 mV\n-200 mV");
    EXPECT_EQ(Text(RangeButton(8)), "+5 A\n-5 A");
    EXPECT_EQ(Text("lblInst(8)"),
              "Enter (optional) name or ID of unit tested and (optional) name of file to store data "
              "(may already exist)");
    EXPECT_TRUE(HasFocus("txtDpmID"));
    for (const std::string &off : {RangeButton(0), std::string("cmdVfyReady"), std::string("cmdVfyOK"),
                                   std::string("cmdVfyDone"), std::string("cmdVfyPrint")})
        EXPECT_FALSE(IsEnabled(off)) << off;
    EXPECT_TRUE(IsEnabled("cmdFileSpec"));
    EXPECT_TRUE(IsEnabled(StepButton(4)));
    EXPECT_THAT(ToMeter(), ElementsAre("*1W305000000100001", "*1G130", "*1W1116537"));
    EXPECT_FALSE(Sees("fraInputs"));
}

TEST_F(VerifyPage, TheTemporaryFileIsEmptiedAndTheFirstRangeSelected)
{
    WritesFile(kTempFile, FileWithout({}));
    UsesTheTemporaryFile();
    Runs();
    EXPECT_EQ(ReadFile(kTempFile), EmptyVerifyFile());
    EXPECT_EQ(Text("lblFileSpec"), kTempFile);
    EXPECT_EQ(Fill(RangeButton(0)), kCyan);
    EXPECT_NE(Fill(RangeButton(1)), kCyan);
    EXPECT_EQ(Text("lblInst(8)"), kPromptReady);
    EXPECT_TRUE(HasFocus("cmdVfyReady"));
    EXPECT_TRUE(IsEnabled(RangeButton(8)));
    EXPECT_TRUE(IsEnabled("cmdVfyPrint"));
    EXPECT_TRUE(IsEnabled("cmdVfyDone"));
    EXPECT_TRUE(IsEnabled(StepButton(4))) << "it never holds the operator";
    EXPECT_TRUE(Sees("fraInputs"));
}

TEST_F(VerifyPage, ARangeIsReadAtBothPolaritiesEachReadingOnDiskBeforeTheNextInput)
{
    UsesTheTemporaryFile().Does([this] {
        Forget();
        Shows(" 1234.");
    });
    GetsReady().Does([this] {
        EXPECT_EQ(Text("lblInst(8)"), kPromptOk);
        EXPECT_EQ(Fill(ReadingShape(0)), kCyan);
        EXPECT_FALSE(Sees("chkTempFile"));
        EXPECT_FALSE(IsEnabled("cmdFileSpec"));
        EXPECT_FALSE(IsEnabled(RangeButton(1)));
        EXPECT_TRUE(HasFocus("cmdVfyOK"));
        EXPECT_TRUE(IsEnabled("txtDpmID"));
        EXPECT_EQ(Output(), "200 mV");
        EXPECT_TRUE(Operates());
    });
    person->Clicks("cmdVfyOK").WaitsUntil("the minus input is asked for", [this] {
        const std::vector<std::string> said = ToCalibrator();
        return std::find(said.begin(), said.end(), "OUT -200 mV ; OPER ; *WAI") != said.end();
    });
    person->Does([] { EXPECT_EQ(RecordOf(1), "  1234") << "on the disk already"; });
    person->WaitsFor("cmdVfyOK").Does([this] {
        EXPECT_EQ(Text(ReadingLabel(0)), "  1234");
        EXPECT_NE(Fill(ReadingShape(0)), kCyan);
        EXPECT_EQ(Fill(ReadingShape(1)), kCyan);
        Shows("-19999.");
    });
    person->Clicks("cmdVfyOK").WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(RecordOf(2), "-19999");
    EXPECT_FALSE(Operates()) << "the range is finished";
    EXPECT_EQ(Fill(RangeButton(1)), kCyan);
    EXPECT_TRUE(HasFocus("cmdVfyReady"));
    EXPECT_TRUE(Sees("chkTempFile"));
    EXPECT_THAT(ToMeter(), Contains("*1W1100060").Times(1)) << "the range is set once";
}

TEST_F(VerifyPage, AReadingOfSevenCharactersLosesItsFirst)
{
    UsesTheTemporaryFile().Does([this] { Shows("-123456."); });
    GetsReady().Clicks("cmdVfyOK").WaitsUntil("it is shown", [] { return Text(ReadingLabel(0)) == "123456"; });
    Runs();
    EXPECT_EQ(RecordOf(1), "123456");
}

TEST_F(VerifyPage, TheLastRangeIsFollowedByTheFirst)
{
    UsesTheTemporaryFile().Clicks(RangeButton(8)).WaitsFor("cmdVfyReady");
    GetsReady().Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Clicks("cmdVfyOK").WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(Fill(RangeButton(0)), kCyan);
    EXPECT_NE(RecordOf(18), "      ");
}

// ---- boards ----

TEST_F(WiredVerify, AnAcBoardIsReadOnceARangeAt300Hz)
{
    Opens(kAc);
    EXPECT_EQ(Text(RangeButton(0)), "200 mV");
    UsesTheTemporaryFile().Clicks(RangeButton(1)).WaitsFor("cmdVfyReady").Does([this] { Shows(" 20010."); });
    GetsReady().Does([this] { EXPECT_EQ(Output(), "2 V, 300 Hz"); });
    person->Clicks("cmdVfyOK").WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(RecordOf(20), " 20010");
    EXPECT_EQ(Fill(RangeButton(2)), kCyan);
}

TEST_F(WiredVerify, Ac2AndAc3Have600VInPlaceOf660V)
{
    for (const int board : {kAc2, kAc3}) {
        Opens(board);
        EXPECT_EQ(Text(RangeButton(4)), "600 V");
        UsesTheTemporaryFile().Clicks(RangeButton(4)).WaitsFor("cmdVfyReady");
        GetsReady().Does([this] { EXPECT_EQ(Output(), "600 V, 300 Hz"); });
        Runs();
        EXPECT_THAT(ToMeter(), Contains("*1W1100084"));
    }
}

TEST_F(WiredVerify, AnLcBoardHasFiveRangesAndWrapsBehindThem)
{
    Opens(kLc);
    UsesTheTemporaryFile().Clicks(RangeButton(4)).WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(Text(RangeButton(4)), "+500 mV\n-500 mV");
    EXPECT_EQ(Text(RangeButton(5)), "");
    EXPECT_FALSE(IsEnabled(RangeButton(5)));
    GetsReady().Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Clicks("cmdVfyOK").WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_NE(RecordOf(10), "      ");
    EXPECT_EQ(Fill(RangeButton(0)), kCyan);
}

TEST_F(WiredVerify, TheOutputSwitchFollowsTheSelectedRange)
{
    Opens(kDc, true);
    UsesTheTemporaryFile().Clicks(RangeButton(5)).WaitsFor("cmdVfyReady").Does([this] {
        EXPECT_EQ(bench->SwitchPosition(), 'A');
    });
    person->Clicks(RangeButton(4)).WaitsFor("cmdVfyReady").Does([this] { EXPECT_EQ(bench->SwitchPosition(), 'V'); });
    Runs();
}

// ---- files ----

TEST_F(VerifyPage, AFileGoesOnAtItsFirstGapAndHoldsTheOperatorUntilDone)
{
    WritesFile("unit.vfy", FileWithout({4}));
    Chooses("unit.vfy");
    Runs();
    EXPECT_EQ(Text("lblFileSpec"), "unit.vfy");
    EXPECT_EQ(Text(ReadingLabel(2)), "  1003");
    EXPECT_EQ(Fill(RangeButton(2)), kCyan) << "the half-done range 1 is passed over";
    EXPECT_FALSE(IsEnabled(StepButton(4)));
    EXPECT_FALSE(IsEnabled("cmdSetup"));
    Forget();
    person->Clicks("cmdVfyDone").WaitsFor("cmdSetup");
    Runs();
    EXPECT_THAT(ToMeter(), ElementsAre("*1W11221D1", "*1G130", "*1W1116536", "*1W305000000100004"));
    EXPECT_TRUE(Sees("fraCalib(6)"));
    EXPECT_TRUE(IsEnabled(RangeButton(2))) << "the page stays as it is";
    EXPECT_EQ(ReadFile("unit.vfy"), FileWithout({4}));
}

TEST_F(VerifyPage, AFullFileBeginsWithTheFirstRangeAndIsWrittenOver)
{
    WritesFile("unit.vfy", FileWithout({}));
    Chooses("unit.vfy").Does([this] { Shows(" 77."); });
    GetsReady().Clicks("cmdVfyOK").WaitsUntil("it is kept", [] { return RecordOf(1, "unit.vfy") == "    77"; });
    Runs();
    EXPECT_EQ(RecordOf(2, "unit.vfy"), "  1002");
    EXPECT_EQ(RecordOf(27, "unit.vfy"), "  1027") << "the AC readings of the unit stay";
}

TEST_F(VerifyPage, ANameThatIsNewMakesAFile)
{
    Chooses("new unit.vfy");
    Runs();
    EXPECT_EQ(ReadFile("new unit.vfy"), EmptyVerifyFile());
    EXPECT_EQ(Text("lblFileSpec"), "new unit.vfy");
    EXPECT_TRUE(IsEnabled("cmdVfyReady"));
}

TEST_F(VerifyPage, ACancelledDialogPutsTheNameAwayAndKeepsTheFile)
{
    Chooses("unit.vfy");
    Chooses("");
    Runs();
    EXPECT_EQ(Text("lblFileSpec"), "");
    EXPECT_TRUE(IsEnabled(RangeButton(0)));
    EXPECT_FALSE(IsEnabled("cmdVfyReady"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_EQ(Text("lblInst(8)"), std::string("Readings still go into unit.vfy\n") + kPromptReady);
    person->Clicks(RangeButton(0)).WaitsFor("cmdVfyReady").Does([this] { Shows(" 77."); });
    GetsReady().Clicks("cmdVfyOK").WaitsUntil("it is kept", [] { return RecordOf(1, "unit.vfy") == "    77"; });
    Runs();
}

TEST_F(VerifyPage, AFileInPlaceOfTheTemporaryOneTakesItsCheckOff)
{
    UsesTheTemporaryFile();
    Chooses("");
    Runs();
    EXPECT_FALSE(ScriptedOperator::IsOn("chkTempFile"));
    EXPECT_FALSE(IsEnabled(RangeButton(0)));
    EXPECT_EQ(Text("lblFileSpec"), "");
}

TEST_F(VerifyPage, WithoutTheTemporaryFileThereIsNoFile)
{
    UsesTheTemporaryFile().Does([this] { Shows(" 77."); });
    GetsReady().Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Clicks("cmdVfyOK").WaitsFor("cmdVfyReady");
    person->Clicks("chkTempFile");
    Runs();
    EXPECT_EQ(Text(ReadingLabel(0)), "      ");
    EXPECT_EQ(Text("lblFileSpec"), "");
    EXPECT_FALSE(IsEnabled("cmdVfyReady"));
    EXPECT_FALSE(IsEnabled(RangeButton(0)));
    EXPECT_TRUE(HasFocus("cmdFileSpec"));
}

TEST_F(VerifyPage, WithoutAnyFileNothingHoldsTheOperator)
{
    Chooses("unit.vfy");
    UsesTheTemporaryFile().Does([] { EXPECT_FALSE(IsEnabled("cmdSetup")); });
    person->Clicks("chkTempFile");
    Runs();
    EXPECT_FALSE(IsEnabled("cmdVfyDone"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(VerifyPage, AFileOfAnotherProgramIsWrittenIntoOnlyWhenTheOperatorSaysSo)
{
    const std::string letter = std::string(3000, 'x');
    WritesFile("letter.txt", letter);
    person->Clicks("cmdFileSpec").ChoosesFile(Path("letter.txt")).AnswersBox("Cancel").WaitsFor("cmdFileSpec");
    Runs();
    EXPECT_FALSE(IsEnabled(RangeButton(0)));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    person->Clicks("cmdFileSpec").ChoosesFile(Path("letter.txt")).AnswersBox("OK").WaitsFor("cmdVfyReady");
    Runs();
    EXPECT_EQ(Text(ReadingLabel(0)), "xxxxxx") << "whatever its bytes hold is shown";
    EXPECT_EQ(ReadFile("letter.txt"), letter) << "and nothing is written before a reading";
}

TEST_F(VerifyPage, AShortFileIsFilledUpWhenAReadingNeedsIt)
{
    WritesFile("short.vfy", "  1001");
    Chooses("short.vfy").Does([this] { Shows(" 77."); });
    person->Clicks(RangeButton(1)).WaitsFor("cmdVfyReady");
    GetsReady().Clicks("cmdVfyOK").WaitsUntil("it is kept", [] { return RecordOf(3, "short.vfy") == "    77"; });
    Runs();
    EXPECT_EQ(ReadFile("short.vfy"), "  1001          77");
}

TEST_F(VerifyPage, AFileThatCannotBeMadeIsToldAndThePageGoesOn)
{
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Open ? EROFS : 0, 0}; });
    UsesTheTemporaryFile();
    Runs();
    EXPECT_EQ(Text("lblInst(8)"), std::string("Vfy$Temp.txt can't be made: Read-only file system\n") + kPromptReady);
    EXPECT_EQ(Fill("shpInst(8)"), kRed);
    EXPECT_EQ(Text(ReadingLabel(0)), "      ");
    EXPECT_EQ(Fill(RangeButton(0)), kCyan);
}

TEST_F(VerifyPage, AFileThatCannotBeReadIsNotEmptied)
{
    WritesFile("unit.vfy", FileWithout({}));
    person->Clicks("cmdFileSpec").Does([] {
        UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Read ? EIO : 0, 0}; });
    });
    person->ChoosesFile(Path("unit.vfy")).WaitsFor("cmdVfyReady");
    Runs();
    UseFileFaults(nullptr);
    EXPECT_EQ(Fill("shpInst(8)"), kRed);
    EXPECT_EQ(ReadFile("unit.vfy"), FileWithout({}));
}

TEST_F(VerifyPage, AFileThatIsThereIsNeverChangedByACallThatFails)
{
    for (int failing = 0; failing < 8; ++failing) {
        SCOPED_TRACE("file call " + std::to_string(failing));
        WritesFile("unit.vfy", FileWithout({4}));
        person->Clicks("cmdFileSpec").Does([failing] { OneCallFails(failing); });
        person->ChoosesFile(Path("unit.vfy")).WaitsFor("cmdVfyReady").Does([failing] {
            UseFileFaults(nullptr);
            EXPECT_EQ(Fill("shpInst(8)") == kRed, failing >= 3) << "the first three look whose file it is";
        });
        Runs();
        EXPECT_EQ(ReadFile("unit.vfy"), FileWithout({4}));
    }
}

TEST_F(VerifyPage, AFileIsMadeWholeOrItIsTold)
{
    for (int failing = 1; failing < 6; ++failing) {
        SCOPED_TRACE("file call " + std::to_string(failing));
        QFile::remove("new.vfy");
        person->Clicks("cmdFileSpec").Does([failing] { OneCallFails(failing); });
        person->ChoosesFile(Path("new.vfy")).WaitsFor("cmdVfyReady").Does([failing] {
            UseFileFaults(nullptr);
            EXPECT_EQ(Fill("shpInst(8)") == kRed, failing >= 2);
        });
        Runs();
        EXPECT_EQ(ReadFile("new.vfy") == EmptyVerifyFile(), failing < 2 || failing == 5);
    }
}

TEST_F(VerifyPage, AFileThatIsClosedToTheUserIsToldBeforeAnInputIsApplied)
{
    WritesFile("mine.vfy", FileWithout({4}));
    QDir().mkdir("closed");
    WritesFile("closed/theirs.vfy", "");
    const struct {
        const char *file;
        const char *told;
    } kFiles[] = {{"mine.vfy", "mine.vfy can't be written: Permission denied\n"},
                  {"closed/new.vfy", "new.vfy can't be made: Permission denied\n"}};
    ASSERT_EQ(chmod(".", 0755) + chmod("mine.vfy", 0444) + chmod("closed", 0555), 0);
    for (const auto &each : kFiles) {
        person->Clicks("cmdFileSpec").Does([] { BecomeUser(); }).ChoosesFile(Path(each.file)).WaitsFor("cmdVfyReady");
        Runs();
        ASSERT_EQ(seteuid(getuid()), 0);
        EXPECT_EQ(Text("lblInst(8)"), each.told + std::string(kPromptReady));
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
    }
    EXPECT_EQ(ReadFile("mine.vfy"), FileWithout({4}));
    ASSERT_EQ(chmod("closed", 0755), 0);
}

// ---- print ----

TEST_F(VerifyPage, PrintsTheFileAndNotTheScreen)
{
    std::vector<PrintedLine> printed;
    outlets.print = [&printed](const std::string &, const std::vector<PrintedLine> &lines, int points) {
        EXPECT_EQ(points, 12);
        printed = lines;
        return std::string();
    };
    WritesFile("unit.vfy", FileWithout({3}));
    Chooses("unit.vfy").Types("txtDpmID", "A1234").Does([] { WritesFile("unit.vfy", FileWithout({4})); });
    person->Clicks("cmdVfyPrint").WaitsFor("cmdVfyPrint");
    Runs();
    ASSERT_EQ(printed.size(), 7U);
    EXPECT_EQ(printed[2].text, "DPM ID = A1234                                           File Name = unit.vfy");
    EXPECT_EQ(printed[5].text, " +DC     1001    1003    1005    1007    1009    1011    1013    1015    1017");
    EXPECT_EQ(printed[6].text, " -DC     1002            1006    1008    1010    1012    1014    1016    1018");
    EXPECT_FALSE(IsEnabled(StepButton(4))) << "the file still holds the operator";
}

TEST_F(VerifyPage, PrintsToAPdfWithoutAPrinter)
{
    WritesFile("unit.vfy", FileWithout({}));
    Chooses("unit.vfy").Types("txtDpmID", "A1234");
    person->Clicks("cmdVfyPrint").PrintsTo(Path("table.pdf")).WaitsFor("cmdVfyPrint");
    Runs();
    EXPECT_GT(QFileInfo("table.pdf").size(), 1000);
    EXPECT_NE(Fill("shpInst(8)"), kRed);
}

TEST_F(VerifyPage, WhatCannotBePrintedIsTold)
{
    outlets.print = [](const std::string &, const std::vector<PrintedLine> &, int) {
        return std::string("Could not be printed: table.pdf");
    };
    UsesTheTemporaryFile();
    person->Clicks("cmdVfyPrint").WaitsFor("cmdVfyPrint").Does([] {
        EXPECT_EQ(Fill("shpInst(8)"), kRed);
        EXPECT_EQ(Text("lblInst(8)"), "Could not be printed: table.pdf");
        QFile::remove(kTempFile);
    });
    person->Clicks("cmdVfyPrint").WaitsFor("cmdVfyPrint");
    Runs();
    EXPECT_EQ(Text("lblInst(8)"), "Vfy$Temp.txt can't be read");
}

// ---- in simulation ----

class SimulatedVerify : public SimulatedPage
{
};

TEST_F(SimulatedVerify, ReadsTheRangesTargetAndNothingOfTheStepBeforeShowsThrough)
{
    Establishes();
    person->Clicks(StepButton(7)).Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdStopReset").WaitsFor("cmdSetup");
    person->Clicks(ButtonOf(Step::Verify)).Clicks("chkTempFile").WaitsFor("cmdVfyReady").Clicks(RangeButton(1));
    person->Clicks("cmdVfyReady").Clicks("cmdVfyOK").WaitsFor("cmdVfyOK").Clicks("cmdVfyOK").WaitsFor("cmdVfyReady");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_NEAR(std::stoi(RecordOf(3)), 80000, 100);
    EXPECT_NEAR(std::stoi(RecordOf(4)), -80000, 100);
    EXPECT_THAT(RecordOf(3), Not(testing::HasSubstr("+")));
}
