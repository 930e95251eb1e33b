#include "records/nvm_page.h"

#include "records/nvm_page_fixture.h"
#include "session/procedure.h"

#include <QApplication>
#include <QClipboard>
#include <QtTest/QTest>

using namespace ombrix;
using namespace ombrix::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class NvmPage : public WiredNvm
{
protected:
    void SetUp() override { Opens(kDc); }
};

class CounterNvmPage : public WiredNvm
{
protected:
    void SetUp() override { Opens(kVf); }
};

constexpr const char *kCal2V = "txtNVM(7)";  // word 32

}  // namespace

TEST_F(NvmPage, ShowsTheMetersWordsByNameAndBeginsInTheFirstField)
{
    EXPECT_TRUE(Sees("fraCalib(7)"));
    EXPECT_EQ(Text("lblNVM(7)"), "CAL2V");
    EXPECT_EQ(Text("lblAddr(7)"), "20");
    EXPECT_EQ(Text(kCal2V), HexText(WordOf(32), 4));
    EXPECT_EQ(Text("txtNVM(0)"), HexText(WordOf(25), 4));
    EXPECT_EQ(Text("txtNVM(3)"), HexText(WordOf(28), 4).substr(2)) << "the low byte of 1C";
    EXPECT_EQ(Text("txtNVM(4)"), HexText(WordOf(29), 4) + HexText(WordOf(28), 4).substr(0, 2));
    EXPECT_TRUE(HasFocus("txtNVM(0)"));
    EXPECT_TRUE(IsEnabled("cmdNVMWord(0)"));
    EXPECT_FALSE(IsEnabled("cmdNVMsave(0)"));
    EXPECT_FALSE(IsEnabled("cmdNVMcancel(0)"));
    EXPECT_FALSE(Sees("txtNVM(31)"));
}

TEST_F(NvmPage, ReadsTwentyAndNineteenWordsWithOneRestart)
{
    OpensThePage();
    Forget();
    person->Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("cmdSetup");
    Runs();
    EXPECT_THAT(ToMeter(), ElementsAre("*1XK3FZ", "*1XJ2B")) << bench->LastWords();
}

TEST_F(NvmPage, AChangeIsCyanAndHoldsTheOperatorOnThePage)
{
    person->Types(kCal2V, "1a2B").Does([] {
        EXPECT_EQ(Text(kCal2V), "1A2B");
        EXPECT_EQ(FieldFill(kCal2V), kFieldCyan);
        EXPECT_TRUE(HasFocus(kCal2V)) << "the keys stay in the field";
        EXPECT_TRUE(IsEnabled("cmdNVMsave(0)"));
        EXPECT_TRUE(IsEnabled("cmdNVMcancel(0)"));
        EXPECT_FALSE(IsEnabled("cmdNVMWord(0)"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(IsEnabled(StepButton(4)));
        EXPECT_NE(Unsaved(), "");
    });
    Runs();
    EXPECT_THAT(ToMeter(), IsEmpty());
}

TEST_F(NvmPage, TheOldValueTypedBackIsNoChange)
{
    const std::string old = Text(kCal2V);
    person->Types(kCal2V, "0001").Types(kCal2V, old).Does([] {
        EXPECT_EQ(FieldFill(kCal2V), "");
        EXPECT_TRUE(HasFocus(kCal2V));
        EXPECT_FALSE(IsEnabled("cmdNVMsave(0)"));
        EXPECT_TRUE(IsEnabled("cmdNVMWord(0)"));
        EXPECT_TRUE(IsEnabled("cmdSetup"));
        EXPECT_EQ(Unsaved(), "");
    });
    Runs();
}

TEST_F(NvmPage, AClearedFieldIsZeroAndSaysSoWhenItIsLeft)
{
    person->Types(kCal2V, "").Does([] {
        EXPECT_EQ(Text(kCal2V), "");
        EXPECT_EQ(FieldFill(kCal2V), kFieldCyan);
    });
    person->Presses(Qt::Key_Tab).Does([] { EXPECT_EQ(Text(kCal2V), "0000"); });
    Saves();
    Runs();
    EXPECT_EQ(WordOf(32), 0);
}

TEST_F(NvmPage, RefusesEveryKeyThatIsNoDigitAlsoOfAPaste)
{
    person->Types(kCal2V, "g.-xF").Does([] { EXPECT_EQ(Text(kCal2V), "F"); });
    person->Types(kCal2V, "").Does([] {
        QApplication::clipboard()->setText("0x8G9\n4bZ7");
        QTest::keySequence(ScriptedOperator::Find(kCal2V), QKeySequence::Paste);
        EXPECT_EQ(Text(kCal2V), "0894") << "each character on its own, and no more than the field holds";
    });
    Runs();
}

TEST_F(NvmPage, SaveWritesWhatChangedInOneRunAndReadsItBack)
{
    const std::uint16_t between = WordOf(30);
    person->Types("txtNVM(6)", "1111").Types("txtNVM(4)", "222233");
    Saves();
    Runs();
    EXPECT_EQ(WordOf(31), 0x1111);
    EXPECT_EQ(WordOf(29), 0x2222);
    EXPECT_EQ(WordOf(28) >> 8, 0x33);
    EXPECT_EQ(WordOf(30), between) << "written with the value that was read";
    EXPECT_THAT(Writes(), ElementsAre("*1W41F1111" + HexText(between, 4) + "2222" + HexText(WordOf(28), 4)));
    EXPECT_EQ(FieldFill("txtNVM(6)"), "");
    EXPECT_TRUE(HasFocus("txtNVM(0)"));
    EXPECT_THAT(Text("lblNVM"), testing::StartsWith("Written, and read back"));
    EXPECT_EQ(Unsaved(), "");
}

TEST_F(NvmPage, AWordThatDidNotTakeIsRedWithWhatTheMeterHolds)
{
    bench->WearOut(32);
    const std::string old = Text(kCal2V);
    person->Types(kCal2V, "1A2B").Types("txtNVM(8)", "3C4D");
    Saves();
    Runs();
    EXPECT_EQ(FieldFill(kCal2V), kFieldRed);
    EXPECT_EQ(Text(kCal2V), old);
    EXPECT_EQ(ToolTipOf(kCal2V), "The meter holds " + old + ", it did not take 1A2B");
    EXPECT_EQ(FieldFill("txtNVM(8)"), "");
    EXPECT_EQ(Text("lblNVM"), "Not taken by the meter: CAL2V holds " + old + ", not 1A2B");
    EXPECT_EQ(Fill("shpNVM"), "#ff0000");
    EXPECT_TRUE(IsEnabled("cmdSetup")) << "nothing is pending";
}

TEST_F(NvmPage, AMeterThatFallsSilentAtTheWriteLeavesTheChangeAndSaysThatNobodyKnows)
{
    person->Types(kCal2V, "1A2B").Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Clicks("cmdNVMsave(0)").WaitsFor("cmdNVMsave(0)").Does([] {
        EXPECT_THAT(Text("lblNVM"), testing::StartsWith("The meter did not answer after the write"));
        EXPECT_EQ(Fill("shpNVM"), "#ff0000");
        EXPECT_EQ(Text(kCal2V), "1A2B");
        EXPECT_EQ(FieldFill(kCal2V), kFieldCyan);
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    person->Does([this] { bench->SwitchFault("silent-meter", false); });
    person->Clicks("cmdNVMcancel(0)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(Text(kCal2V), HexText(WordOf(32), 4)) << "Cancel has read the meter";
}

TEST_F(NvmPage, AnOldValueTypedBackBehindALostWriteIsWrittenToo)
{
    const std::uint16_t old = WordOf(32);
    person->Types(kCal2V, "1A2B").Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Clicks("cmdNVMsave(0)").WaitsFor("cmdNVMsave(0)").Does([this] {
        bench->SwitchFault("silent-meter", false);
        EXPECT_EQ(WordOf(32), 0x1A2B) << "the meter has heard it";
    });
    person->Types(kCal2V, HexText(old, 4)).Does([] {
        EXPECT_EQ(FieldFill(kCal2V), kFieldCyan) << "nobody knows whether it still differs";
        EXPECT_EQ(ToolTipOf(kCal2V), "What the meter holds isn't known");
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    Saves();
    Runs();
    EXPECT_EQ(WordOf(32), old);
    EXPECT_EQ(Text(kCal2V), HexText(old, 4));
    EXPECT_THAT(Text("lblNVM"), testing::StartsWith("Written, and read back"));
    const auto events = EventsOf("words written");
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(std::get<std::vector<std::string>>(FieldOf(events[1], "words")->is), std::vector<std::string>{"20"});
}

TEST_F(NvmPage, EscWhileItIsWrittenLeavesTheChangePending)
{
    person->Types(kCal2V, "1A2B").Clicks("cmdNVMsave(0)").Waits(500).Presses(Qt::Key_Escape);
    person->WaitsFor("cmdNVMcancel(0)").Does([] {
        EXPECT_EQ(Text(kCal2V), "1A2B");
        EXPECT_FALSE(IsEnabled("cmdSetup"));
    });
    Saves();
    Runs();
    EXPECT_EQ(WordOf(32), 0x1A2B);
}

TEST_F(NvmPage, QuitWhileItIsWrittenLeavesInTheJournalWhatMayStandInTheMeter)
{
    person->Types(kCal2V, "1A2B").Clicks("cmdNVMsave(0)").Waits(500).Clicks("cmdQuit");
    Runs();
    const auto events = EventsOf("words written");
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(std::get<std::vector<std::string>>(FieldOf(events[0], "words")->is), std::vector<std::string>{"20"});
    EXPECT_EQ(TextOf(events[0], "held"), "");
}

TEST_F(NvmPage, CancelShowsTheMetersWordsAgainWithoutAskingIt)
{
    const std::string old = Text(kCal2V);
    person->Types(kCal2V, "1A2B").Clicks("cmdNVMcancel(0)").WaitsFor("cmdNVMWord(0)");
    Runs();
    EXPECT_EQ(Text(kCal2V), old);
    EXPECT_EQ(FieldFill(kCal2V), "");
    EXPECT_TRUE(HasFocus("txtNVM(0)"));
    EXPECT_THAT(ToMeter(), IsEmpty());
}

TEST_F(NvmPage, ASilentMeterHasNothingToEdit)
{
    bench->SwitchFault("silent-meter", true);
    OpensThePage();
    EXPECT_EQ(Text(kCal2V), "");
    EXPECT_FALSE(IsEnabled(kCal2V));
    EXPECT_EQ(Fill("shpNVM"), "#ff0000");
    EXPECT_TRUE(IsEnabled("cmdNVMWord(0)"));
    EXPECT_TRUE(IsEnabled(StepButton(4)));
}

TEST_F(NvmPage, AnAnswerOfTheWrongLengthIsNoImage)
{
    bench->AnswerNext(bench::Line::Meter, "1234\r", "*1XK3FZ");
    OpensThePage();
    EXPECT_EQ(Text(kCal2V), "");
    EXPECT_FALSE(IsEnabled(kCal2V));
}

TEST_F(NvmPage, TakesTheMarkOffAStepWhoseWordItWrites)
{
    person->Clicks(StepButton(4)).Clicks("cmdReady").Clicks("cmdAccept").WaitsFor("cmdSetup");
    Runs();
    const auto mark = [] { return Text("lblStepMark(4)"); };
    ASSERT_NE(mark(), "");
    OpensThePage();
    person->Types("txtNVM(8)", "7000");
    Saves().Does([mark] { EXPECT_NE(mark(), "") << "word 33 is another range's"; });
    person->Types(kCal2V, "8001");
    Saves();
    Runs();
    EXPECT_EQ(mark(), "");
}

TEST_F(NvmPage, TellsTheJournalWhatWasThereWhatWasWrittenAndWhatIsHeld)
{
    bench->WearOut(33);
    const std::string before = HexText(WordOf(33), 4) + HexText(WordOf(32), 4);
    person->Types(kCal2V, "1A2B").Types("txtNVM(8)", "3C4D");
    Saves();
    Runs();
    const std::vector<JournalEvent> read = EventsOf("words read");
    ASSERT_EQ(read.size(), 1U);
    EXPECT_EQ(TextOf(read.front(), "image").substr(30 * 4, 8), before);
    const std::vector<JournalEvent> written = EventsOf("words written");
    ASSERT_EQ(written.size(), 1U);
    const JournalEvent &event = written.front();
    EXPECT_EQ(TextOf(event, "by"), "View NVM");
    EXPECT_EQ(std::get<std::vector<std::string>>(FieldOf(event, "words")->is), (std::vector<std::string>{"21", "20"}));
    EXPECT_EQ(TextOf(event, "before").substr(30 * 4, 8), before);
    EXPECT_EQ(TextOf(event, "written").substr(30 * 4, 8), "3C4D1A2B");
    EXPECT_EQ(TextOf(event, "held").substr(30 * 4, 8), before.substr(0, 4) + "1A2B");
    EXPECT_FALSE(std::get<bool>(FieldOf(event, "took")->is));
}

TEST_F(WiredNvm, EachTabHasItsOwnFields)
{
    Opens(kAc2);
    EXPECT_TRUE(Sees("txtNVM(34)"));
    EXPECT_EQ(Text("lblNVM(31)"), "600 OL");
    EXPECT_FALSE(Sees("txtNVM(23)"));
    EXPECT_EQ(Text("lblAddr(22)"), "2F");
    EXPECT_EQ(Text("txtNVM(22)"), HexText(WordOf(47), 4));
    Opens(kLc);
    EXPECT_FALSE(Sees("txtNVM(34)"));
    EXPECT_TRUE(Sees("txtNVM(23)"));
    EXPECT_EQ(Text("lblAddr(22)"), "2FL");
    EXPECT_EQ(Text("txtNVM(22)"), HexText(WordOf(47), 4).substr(2));
    EXPECT_EQ(Text("txtNVM(23)"), HexText(WordOf(47), 4).substr(0, 2));
}

// ---- the counter ----

TEST_F(CounterNvmPage, ShowsItsWholeMemoryAndWhatToDo)
{
    EXPECT_TRUE(Sees("fraCalib(15)"));
    EXPECT_EQ(Text("lblVFNVM"), "Enter desired changes and click \"Save\" to write to NVM.\n"
                                "Click \"Cancel\" to restore the display to the current values.");
    EXPECT_EQ(Text("lblNVM(45)"), "SCALE1");
    EXPECT_EQ(Text("txtNVM(45)"), HexText(WordOf(16), 4).substr(2) + HexText(WordOf(15), 4));
    EXPECT_EQ(Text("txtNVM(86)"), HexText(WordOf(49), 4));
    EXPECT_TRUE(HasFocus("txtNVM(35)"));
    EXPECT_TRUE(IsEnabled("cmdNVMWord(1)"));
}

TEST_F(CounterNvmPage, WritesTwoRunsASecondApartWhenOneWouldBeTooLong)
{
    person->Types("txtNVM(86)", "1234").Types("txtNVM(41)", "056789");  // words 49 and 10, 9
    Saves("cmdNVMsave(1)");
    Runs();
    EXPECT_EQ(WordOf(49), 0x1234);
    EXPECT_EQ(WordOf(9), 0x6789);
    const std::vector<std::string> writes = Writes();
    ASSERT_EQ(writes.size(), 2U);
    EXPECT_EQ(writes[0], "*1W1311234");
    EXPECT_THAT(writes[1], testing::StartsWith("*1W20A"));
    EXPECT_GE(TimesOf(writes[1]).front() - TimesOf(writes[0]).front(), 1000);
}

TEST_F(CounterNvmPage, ATotalThatWentOnByItselfIsNotARefusedWord)
{
    person->Types("txtNVM(86)", "1234").Does([this] { bench->SetWord(44, 0x0077); });
    Saves("cmdNVMsave(1)");
    Runs();
    EXPECT_EQ(FieldFill("txtNVM(81)"), "");
    EXPECT_EQ(Text("txtNVM(81)"), "0077");
    EXPECT_THAT(Text("lblVFNVM"), testing::StartsWith("Written, and read back"));
}

// ---- Quit ----

TEST_F(NvmPage, QuitAsksOnceAboutAPendingChange)
{
    person->Types(kCal2V, "1A2B").Clicks("cmdQuit").AnswersBox("Cancel").Does([] { EXPECT_FALSE(Quitting); });
    person->Clicks("cmdQuit").AnswersBox("OK");
    Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_NE(WordOf(32), 0x1A2B);
}

// ---- boxes lent to another page ----

namespace {

std::string ImageOf(char digit)
{
    return std::string(200, digit);
}

}  // namespace

TEST_F(CounterNvmPage, LendsItsBoxesForReading)
{
    ShowWordBoxes({.image = ImageOf('A'), .says = "The original onfiguration above has been saved."});
    EXPECT_TRUE(Sees("fraCalib(15)"));
    EXPECT_EQ(Text("txtNVM(35)"), "AAAAAA");
    EXPECT_EQ(Text("lblVFNVM"), "The original onfiguration above has been saved.");
    for (const char *button : {"cmdNVMsave(1)", "cmdNVMcancel(1)", "cmdNVMWord(1)"})
        EXPECT_FALSE(Sees(button));
    person->Types("txtNVM(35)", "1");
    Runs();
    EXPECT_EQ(Text("txtNVM(35)"), "AAAAAA") << "every key is refused";
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    OpensThePage();
    EXPECT_TRUE(Sees("cmdNVMcancel(1)"));
    EXPECT_EQ(Text("txtNVM(86)"), HexText(WordOf(49), 4)) << "and takes them back";
}

TEST_F(CounterNvmPage, SaveOfLentBoxesIsTheOtherPagesWork)
{
    int saves = 0;
    WordBoxes boxes{.image = ImageOf('A'), .says = "Click \"Save\""};
    boxes.save = [&] {
        ++saves;
        EXPECT_TRUE(ProcedureRunning());
        EXPECT_FALSE(IsEnabled("cmdNVMsave(1)"));
        std::string held = ImageOf('A');
        held[199] = 'B';
        return WordBoxes{.image = held, .meant = ImageOf('A'), .says = "LOWIN1 did not take", .trouble = true};
    };
    ShowWordBoxes(boxes);
    EXPECT_TRUE(HasFocus("cmdNVMsave(1)"));
    person->Clicks("cmdNVMsave(1)");
    Runs();
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(FieldFill("txtNVM(35)"), kFieldRed);
    EXPECT_EQ(Text("txtNVM(35)"), "AAAAAB");
    EXPECT_EQ(FieldFill("txtNVM(36)"), "");
    EXPECT_EQ(Fill("shpVFNVM"), "#ff0000");
    EXPECT_FALSE(Sees("cmdNVMsave(1)"));
    EXPECT_THAT(ToMeter(), IsEmpty());
}
