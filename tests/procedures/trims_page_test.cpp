// Zero adjust, gain balance and the trims of the AC boards, with the operator's hands on the bench's board.

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "support/journal_events.h"
#include "support/page_test.h"

#include <cmath>

namespace ombrix::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char *kRed = "#ff0000";

double Number(const std::string &label)
{
    return Val(ScriptedOperator::Text(label));
}

// The last event of a kind; an empty one when there is none.
JournalEvent EventOf(const std::string &kind)
{
    const auto events = EventsOf(kind);
    return events.empty() ? JournalEvent() : events.back();
}

std::vector<std::string> ListOf(const JournalEvent &event, const char *name)
{
    const JournalValue *value = FieldOf(event, name);
    return value ? std::get<std::vector<std::string>>(value->is) : std::vector<std::string>();
}

std::string HowTheStepEnded()
{
    return TextOf(EventOf("step ended"), "how");
}

class HandTrims : public WiredPage
{
protected:
    void SetUp() override {}

    void Begins(int board, unsigned seed = 1)
    {
        Stands({.board = board, .seed = seed});
        Establishes();
    }

    ScriptedOperator &Settles() { return person->Waits(6000); }
    ScriptedOperator &WaitsForRound(const std::string &words)
    {
        return person->WaitsUntil(words, [words] {
            return Text("lblZeroAdj").find(words) != std::string::npos && IsEnabled("cmdZeroAdjOK");
        });
    }
    /// Turns R9 or R10 until the reading of a polarity is at its target.
    ScriptedOperator &TurnsTheBalance(const std::string &name, int polarity)
    {
        return Settles().Does([this, name, polarity] {
            const double apart = Number("lblZeroAdjTarget") - Number("lblZeroAdjRdg(" + std::to_string(polarity) + ")");
            bench->Trim(name, polarity == 0 ? apart : -apart, NowMicros());
        });
    }
    /// Two turns, then both readings are equal.
    void Balances(const std::string &name)
    {
        WaitsForRound("Wait for +10 mV");
        Settles().Clicks("cmdZeroAdjOK");
        WaitsForRound("Wait for -10 mV");
        Settles().Clicks("cmdZeroAdjOK");
        WaitsForRound("Adjust R");
        TurnsTheBalance(name, 1);
        Settles().Clicks("cmdZeroAdjOK");
        WaitsForRound("Wait for +10 mV");
        Settles().Clicks("cmdZeroAdjOK");
        WaitsForRound("Adjust R");
        TurnsTheBalance(name, 0);
        Settles().Clicks("cmdZeroAdjOK");
        WaitsForRound("Wait for -10 mV");
        Settles().Clicks("cmdZeroAdjAccept");
    }
};

TEST_F(HandTrims, ZeroAdjustLeadsThroughR3TheBalanceAndR25)
{
    Begins(kAc2);
    ASSERT_GT(std::abs(bench->RemainingError("Zero Adjust")), 3);
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Does([] {
        EXPECT_TRUE(Sees("fraCalib(16)"));
        EXPECT_THAT(Text("lblZeroAdj"), HasSubstr("Make sure that the DC jumper is NOT installed"));
        EXPECT_EQ(Text("cmdZeroAdj"), "Start");
        EXPECT_TRUE(IsEnabled("cmdSetup"));
    });
    person->Clicks("cmdZeroAdj").WaitsFor("cmdZeroAdj").Does([this] {
        EXPECT_EQ(Text("lblZeroAdj"),
                  "Connect external meter to TP1 and adjust R3\nfor minimum reading on the external "
                  "meter.\n\nClick \"Next\" when finished.");
        EXPECT_EQ(Text("cmdZeroAdj"), "Next");
        EXPECT_EQ(Output(), "0 V");
        EXPECT_TRUE(Operates());
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_EQ(Text("lblBoardParts"), "On the board (TP1,R3)");
        bench->Trim("R3", -bench->Tp1(), NowMicros());
    });
    person->Clicks("cmdZeroAdj")
        .WaitsUntil("the jumper is asked for", [] { return Text("lblZeroAdj").starts_with("Remove the TP1"); })
        .WaitsFor("cmdZeroAdj")
        .Does([this] {
            EXPECT_FALSE(Operates());
            EXPECT_EQ(Text("lblBoardParts"), "On the board (DC)");
            EXPECT_EQ(Text("lblJmprA(0)"), "(g)") << "the jumpers of the range stay";
            bench->InstallDcJumper(true, NowMicros());
        })
        .Clicks("cmdZeroAdj");
    Balances("R10");
    person->WaitsUntil("the jumper goes", [] { return Text("lblZeroAdj").starts_with("Remove the DC jumper"); })
        .WaitsFor("cmdZeroAdj")
        .Does([this] {
            EXPECT_FALSE(Operates());
            EXPECT_EQ(Text("lblBoardParts"), "On the board") << "the jumper is to go";
            bench->InstallDcJumper(false, NowMicros());
        })
        .Clicks("cmdZeroAdj")
        .WaitsFor("cmdDone(4)")
        .Does([this] {
            EXPECT_EQ(Output(), "2 mV, 300 Hz");
            EXPECT_TRUE(HasFocus("cmdDone(4)"));
            EXPECT_EQ(Text("lblBoardParts"), "On the board (R25)");
            bench->Trim("R25", -bench->DutyCycle(), NowMicros());
        })
        .Clicks("cmdDone(4)")
        .WaitsFor("cmdTrimStart");
    ASSERT_TRUE(person->Runs());
    EXPECT_LE(std::abs(bench->RemainingError("Zero Adjust")), 2);
    EXPECT_NEAR(bench->Tp1(), 0, 1e-9);
    EXPECT_FALSE(Operates());
    EXPECT_EQ(CurrentStepId, Step::TrimR13R14);
}

TEST_F(HandTrims, OnAc3TheBalanceIsAllAndTheNextStepFollows)
{
    Begins(kAc3);
    ASSERT_GT(std::abs(bench->RemainingError("Zero Adjust")), 3) << "as it came";
    bench->InstallDcJumper(true, NowMicros());
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Does([] {
        EXPECT_EQ(Text("lblZeroAdj"), "Set jumpers and apply input as shown, then click \"Start\"");
        EXPECT_FALSE(Sees("cmdDone(4)"));
    });
    person->Clicks("cmdZeroAdj");
    WaitsForRound("Wait for +10 mV").Does([] { EXPECT_FALSE(IsEnabled("cmdZeroAdjAccept")); });
    Balances("R9");
    person->WaitsFor("cmdTrimStart");
    ASSERT_TRUE(person->Runs());
    EXPECT_LE(std::abs(bench->RemainingError("Zero Adjust")), 2);
    EXPECT_FALSE(Operates());
    EXPECT_EQ(CurrentStepId, Step::MinusGainTrim);
}

TEST_F(HandTrims, EscLeavesTheZeroAdjustFromAReadingAndFromAWait)
{
    Begins(kAc2);
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj");
    person
        ->WaitsUntil("R3", [] { return Text("lblZeroAdj").starts_with("Connect external") && IsEnabled("cmdZeroAdj"); })
        .Presses(Qt::Key_Escape)
        .WaitsFor("cmdSetup")
        .Does([this] {
            EXPECT_FALSE(Operates());
            EXPECT_EQ(Text("cmdZeroAdj"), "Start");
        });
    Begins(kAc3);
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj");
    WaitsForRound("Wait for +10 mV").Waits(3000).Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Operates());
    EXPECT_EQ(Text("cmdZeroAdj"), "Start");
    EXPECT_EQ(CurrentStepId, Step::ZeroAdjust) << "no next step";
}

// Solders what the page names.
void Solders(bench::Bench &bench, const std::string &name, const std::string &words)
{
    for (const auto &[text, megohms] : {std::pair{"10M", 10.0}, {"4.3M", 4.3}, {"2M", 2.0}, {"1M", 1.0}})
        for (const std::string &word : Split(words, ' '))
            if (word == text)
                bench.AddResistor(name, megohms, NowMicros());
}

TEST_F(HandTrims, ResistorsAreAddedUntilTheErrorIsUnderTheFirstThreshold)
{
    Begins(kAc2, 2);
    ASSERT_GT(std::abs(bench->RemainingError("R13/R14 Trim")), 0.0005 * 80000) << "as it came";
    bench->InstallDcJumper(true, NowMicros());
    person->Clicks(ButtonOf(Step::TrimR13R14)).WaitsFor("cmdTrimStart").Does([] {
        EXPECT_EQ(Text("lblTrimMsg(0)"), "Set jumpers and apply input as shown, then click \"Start\"\nBe sure to "
                                         "INSTALL the DC jumper");
    });
    for (int pass = 0; pass < 4; ++pass) {
        person->Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
        Settles().Clicks("cmdTrimOK").WaitsUntil("-200 mV", [] {
            return Text("lblTrimMsg(0)").starts_with("Wait for -200 mV") && IsEnabled("cmdTrimOK");
        });
        Settles().Clicks("cmdTrimOK").WaitsFor("cmdDone(5)").Does([this] {
            EXPECT_EQ(Text("cmdTrimStart"), "Repeat");
            EXPECT_FALSE(Operates());
            const auto lines = Split(Text("lblTrimMsg(0)"), '\n');
            ASSERT_EQ(lines.size(), 2u) << Text("lblTrimMsg(0)");
            Solders(*bench, "R13", lines[0]);
            Solders(*bench, "R14", lines[1]);
        });
    }
    person->Clicks("cmdDone(5)").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_LT(std::abs(bench->RemainingError("R13/R14 Trim")), 0.0005 * 80000 + 3);
    EXPECT_EQ(CurrentStepId, Step::Gnd);
}

TEST_F(HandTrims, AnErrorThatNoResistorMendsIsTold)
{
    Begins(kAc2);
    person->Clicks(ButtonOf(Step::TrimR13R14)).WaitsFor("cmdTrimStart").Does([this] { bench->ShowNext({" 80000."}); });
    person->Clicks("cmdTrimStart").WaitsFor("cmdTrimOK").Waits(2000).Does([this] { bench->ShowNext({" 78000."}); });
    person->Clicks("cmdTrimOK")
        .WaitsUntil("-200 mV",
                    [] { return Text("lblTrimMsg(0)").starts_with("Wait for -200 mV") && IsEnabled("cmdTrimOK"); })
        .Waits(2000)
        .Clicks("cmdTrimOK")
        .WaitsFor("cmdDone(5)");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblTrimMsg(0)"), "Resistor Error");
    EXPECT_EQ(Fill("shpTrimMsg(0)"), kRed);
    EXPECT_TRUE(IsEnabled("cmdTrimStart"));
    EXPECT_FALSE(IsEnabled("cmdSetup")) << "the way out is Done";
    person->Clicks("cmdDone(5)").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(HowTheStepEnded(), "left");
    EXPECT_EQ(Text("lblStepMark(2)"), "") << "nothing was accepted";
}

TEST_F(HandTrims, NegativeGainIsTurnedToThePositiveReading)
{
    Begins(kAc3);
    ASSERT_GT(std::abs(bench->RemainingError("- Gain Trim")), 20) << "as it came";
    bench->InstallDcJumper(true, NowMicros());
    person->Clicks(ButtonOf(Step::MinusGainTrim)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
    Settles().Clicks("cmdTrimOK").WaitsUntil("R12", [] {
        return Text("lblTrimMsg(0)").starts_with("Adjust R12 (B)") && IsEnabled("cmdTrimOK");
    });
    for (int turn = 0; turn < 2; ++turn)
        Settles().Does([this] { bench->Trim("R12", -Number("lblTrimDistance"), NowMicros()); });
    Settles()
        .Does([] {
            EXPECT_EQ(Text("cmdTrimOK"), "Accept");
            EXPECT_EQ(Text("lblBoardParts"), "On the board (R12 (B))");
        })
        .Clicks("cmdTrimOK")
        .WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    const JournalEvent trim = EventOf("trim");
    EXPECT_EQ(TextOf(trim, "trim"), "NEGATIVE GAIN TRIM");
    EXPECT_THAT(ListOf(trim, "asked"), ElementsAre("200 mV", "-200 mV"));
    EXPECT_THAT(ListOf(trim, "reported"), ElementsAre("200.0 mV", "-200.0 mV"));
    EXPECT_EQ(TextOf(trim, "plus"), Text("lblTrimRdg(0)"));
    EXPECT_NEAR(Val(TextOf(trim, "reading")), Val(TextOf(trim, "plus")), 3);
    EXPECT_EQ(HowTheStepEnded(), "accepted");
    EXPECT_LE(std::abs(bench->RemainingError("- Gain Trim")), 3);
    EXPECT_FALSE(Operates());
    EXPECT_EQ(CurrentStepId, Step::Gnd);
}

TEST_F(HandTrims, R38IsTurnedTenCountsLow)
{
    Begins(kAc3);
    ASSERT_GT(std::abs(bench->RemainingError("R38 Trim")), 20) << "as it came";
    person->Clicks(ButtonOf(Step::TrimR38)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
    person->Does([this] {
        EXPECT_EQ(Output(), "2 V, 10 KHz");
        EXPECT_FALSE(Sees("lblTrimRdg(0)"));
        EXPECT_EQ(Text("lblTrimTarget"), "79990");
    });
    for (int turn = 0; turn < 2; ++turn)
        Settles().Does([this] { bench->Trim("R38", -Number("lblTrimDistance"), NowMicros()); });
    Settles().Clicks("cmdTrimOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_LE(std::abs(bench->RemainingError("R38 Trim")), 3);
    EXPECT_EQ(CurrentStepId, Step::Range20V);
}

TEST_F(HandTrims, ASilentMeterIsSaidToBeSilentAndEscLeavesTheTrim)
{
    Begins(kAc3);
    person->Clicks(ButtonOf(Step::TrimR38)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
    Settles()
        .Does([this] { bench->SwitchFault("silent-meter", true); })
        .WaitsUntil("it is silent", [] { return Text("lblTrimRdg(1)Mark") == "silent"; })
        .Waits(5000)
        .Presses(Qt::Key_Escape)
        .WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Operates());
    EXPECT_EQ(Text("cmdTrimStart"), "Start");
    EXPECT_EQ(CurrentStepId, Step::TrimR38);
}

TEST_F(HandTrims, AnAcceptWithoutAReadingAcceptsNothing)
{
    Begins(kAc3);
    person->Clicks(ButtonOf(Step::MinusGainTrim)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
    Settles()
        .Does([this] { bench->SwitchFault("silent-meter", true); })
        .WaitsUntil("it is silent", [] { return Text("lblTrimRdg(0)Mark") == "silent"; })
        .Clicks("cmdTrimOK")
        .WaitsUntil("R12", [] { return Text("lblTrimMsg(0)").starts_with("Adjust R12") && IsEnabled("cmdTrimOK"); })
        .WaitsUntil("it is silent", [] { return Text("lblTrimRdg(1)Mark") == "silent"; })
        .Does([] {
            EXPECT_EQ(Text("lblTrimTarget"), "") << "there is none to turn to";
            EXPECT_EQ(Text("lblTrimRdg(0)Mark"), "silent") << "an old number is no frozen reading";
        })
        .Clicks("cmdTrimOK")
        .WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Text("lblTrimMsg(0)"), HasSubstr("The meter showed no reading"));
    EXPECT_EQ(Fill("shpTrimMsg(0)"), kRed);
    EXPECT_FALSE(Operates());
    EXPECT_EQ(CurrentStepId, Step::MinusGainTrim) << "no next step";
    EXPECT_EQ(HowTheStepEnded(), "no reading");
    EXPECT_EQ(TextOf(EventOf("trim"), "plus"), "");
}

TEST_F(HandTrims, ATrimWhoseSecondInputTheCalibratorRefusesTellsSoInsteadOfMatchingTheFirst)
{
    for (const int board : {kAc3, kAc2}) {
        SCOPED_TRACE(BoardName(board));
        Begins(board);
        const int step = board == kAc2 ? Step::TrimR13R14 : Step::MinusGainTrim;
        person->Clicks(ButtonOf(step)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
        Settles().Does([this] { bench->SwitchFault("refuses-output", true); }).Clicks("cmdTrimOK").WaitsFor("cmdSetup");
        ASSERT_TRUE(person->Runs());
        EXPECT_THAT(Text("lblTrimMsg(0)"), StartsWith("The calibrator has not confirmed -200 mV:"));
        EXPECT_EQ(Fill("shpTrimMsg(0)"), kRed);
        EXPECT_EQ(Text("cmdTrimStart"), "Start");
        EXPECT_FALSE(Operates());
        EXPECT_EQ(CurrentStepId, step) << "no next step";
        EXPECT_EQ(HowTheStepEnded(), "no input");
        EXPECT_EQ(TextOf(EventOf("trim"), "told"), "") << "no resistors";
    }
}

TEST_F(HandTrims, ABalanceUnderInputsThatTheCalibratorDidNotConfirmAcceptsNothing)
{
    Begins(kAc3);
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Does([this] {
        bench->SwitchFault("never-operating", true);
    });
    person->Clicks("cmdZeroAdj");
    WaitsForRound("Wait for +10 mV").Waits(3000).Clicks("cmdZeroAdjOK");
    WaitsForRound("Wait for -10 mV").Waits(3000).Clicks("cmdZeroAdjAccept").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Text("lblZeroAdj"), HasSubstr("The calibrator did not confirm its output"));
    EXPECT_EQ(Fill("shpZeroAdj"), kRed);
    EXPECT_EQ(CurrentStepId, Step::ZeroAdjust) << "no next step";
    EXPECT_EQ(HowTheStepEnded(), "no input");
}

TEST_F(HandTrims, ABalanceWithoutAReadingRecommendsNothingAndAcceptsNothing)
{
    Begins(kAc3);
    const auto silent = [](int place) {
        return [place] { return Text("lblZeroAdjRdg(" + std::to_string(place) + ")Mark") == "silent"; };
    };
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Does([this] {
        bench->SwitchFault("silent-meter", true);
    });
    person->Clicks("cmdZeroAdj");
    WaitsForRound("Wait for +10 mV").WaitsUntil("silent", silent(0)).Clicks("cmdZeroAdjOK");
    WaitsForRound("Wait for -10 mV").WaitsUntil("silent", silent(1)).Clicks("cmdZeroAdjOK");
    WaitsForRound("Adjust R9 (A)")
        .Waits(3000)
        .Does([] {
            EXPECT_TRUE(Text("lblZeroAdj").ends_with("Recommended reading:  none"));
            EXPECT_EQ(Text("lblZeroAdjTarget"), "");
            EXPECT_EQ(Text("lblZeroAdjRdg(0)Mark"), "silent");
            EXPECT_EQ(Text("lblZeroAdjDistance"), "");
        })
        .Clicks("cmdZeroAdjOK");
    WaitsForRound("Wait for +10 mV").Waits(3000).Clicks("cmdZeroAdjAccept").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Text("lblZeroAdj"), HasSubstr("The meter showed no reading"));
    EXPECT_EQ(Fill("shpZeroAdj"), kRed);
    EXPECT_EQ(CurrentStepId, Step::ZeroAdjust) << "no next step";
    EXPECT_EQ(HowTheStepEnded(), "no reading");
    EXPECT_EQ(TextOf(EventOf("zero adjust"), "plus"), "");
    EXPECT_EQ(Text("lblStepMark(1)"), "");
}

TEST_F(HandTrims, TheBalanceTellsTheJournalItsValuesAndReadings)
{
    Begins(kAc3);
    bench->InstallDcJumper(true, NowMicros());
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj");
    Balances("R9");
    person->WaitsFor("cmdTrimStart");
    ASSERT_TRUE(person->Runs());
    const JournalEvent event = EventOf("zero adjust");
    EXPECT_THAT(ListOf(event, "asked"), ElementsAre("+10 mV", "-10 mV", "+10 mV", "-10 mV"));
    EXPECT_THAT(ListOf(event, "reported"), ElementsAre("10.0 mV", "-10.0 mV", "10.0 mV", "-10.0 mV"));
    EXPECT_NEAR(Val(TextOf(event, "plus")), Val(TextOf(event, "minus")), 3);
    EXPECT_EQ(HowTheStepEnded(), "accepted");
    EXPECT_EQ(Text("lblStepMark(1)"), "✓");
}

// ---- in simulation ----

class SimulatedTrims : public SimulatedPage
{
protected:
    static constexpr std::uint16_t kAc2Code = 0x12;
    static constexpr std::uint16_t kAc3Code = 0x22;
    ScriptedOperator &WaitsForWords(const std::string &label, const std::string &words, const std::string &button)
    {
        return person->WaitsUntil(words, [=] { return Text(label).starts_with(words) && IsEnabled(button); });
    }
};

TEST_F(SimulatedTrims, ZeroAdjustGoesThroughAllItsStates)
{
    Establishes(kAc2Code, 0x80);
    ASSERT_EQ(SCType, kAc2);
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj");
    WaitsForWords("lblZeroAdj", "Connect external meter", "cmdZeroAdj").Clicks("cmdZeroAdj");
    WaitsForWords("lblZeroAdj", "Remove the TP1", "cmdZeroAdj").Clicks("cmdZeroAdj");
    WaitsForWords("lblZeroAdj", "Wait for +10 mV", "cmdZeroAdjOK").Waits(1500).Clicks("cmdZeroAdjOK");
    WaitsForWords("lblZeroAdj", "Wait for -10 mV", "cmdZeroAdjOK").Waits(1500).Clicks("cmdZeroAdjOK");
    WaitsForWords("lblZeroAdj", "Adjust R10 for desired -10 mV", "cmdZeroAdjOK").Waits(1500).Clicks("cmdZeroAdjOK");
    WaitsForWords("lblZeroAdj", "Wait for +10 mV", "cmdZeroAdjAccept")
        .Waits(1500)
        .Does([] { EXPECT_EQ(Text("lblZeroAdjDistance"), "0"); })
        .Clicks("cmdZeroAdjAccept");
    WaitsForWords("lblZeroAdj", "Remove the DC jumper", "cmdZeroAdj").Clicks("cmdZeroAdj");
    WaitsForWords("lblZeroAdj", "Adjust R25", "cmdDone(4)").Clicks("cmdDone(4)").WaitsFor("cmdTrimStart");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepId, Step::TrimR13R14);
}

TEST_F(SimulatedTrims, ResistorsAreNamedForReadingsAHundredCountsApart)
{
    Establishes(kAc2Code, 0x80);
    person->Clicks(ButtonOf(Step::TrimR13R14)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart");
    WaitsForWords("lblTrimMsg(0)", "Wait for +200 mV", "cmdTrimOK").Waits(1500).Clicks("cmdTrimOK");
    WaitsForWords("lblTrimMsg(0)", "Wait for -200 mV", "cmdTrimOK").Waits(1500).Clicks("cmdTrimOK");
    person->WaitsFor("cmdDone(5)").Does([] {
        EXPECT_EQ(Text("lblTrimRdg(0)"), "80000");
        EXPECT_EQ(Text("lblTrimRdg(1)"), "80100");
        EXPECT_EQ(Text("lblTrimMsg(0)"), "Add to R13 --- 10M\nAdd to R14 --- 4.3M");
        EXPECT_EQ(Text("lblBoardParts"), "On the board (R13,R14,DC)");
        EXPECT_EQ(Text("cmdTrimStart"), "Repeat");
        EXPECT_TRUE(HasFocus("cmdDone(5)"));
    });
    person->Clicks("cmdTrimStart");
    WaitsForWords("lblTrimMsg(0)", "Wait for +200 mV", "cmdTrimOK").Does([] {
        EXPECT_EQ(Text("lblTrimRdg(1)"), "") << "blank again";
        EXPECT_EQ(Text("lblBoardParts"), "On the board (DC)");
    });
    person->Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepId, Step::TrimR13R14);
}

TEST_F(SimulatedTrims, NegativeGainReadsBothAlikeAndEndsByAccept)
{
    Establishes(kAc3Code, 0x80);
    person->Clicks(ButtonOf(Step::MinusGainTrim)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart");
    WaitsForWords("lblTrimMsg(0)", "Wait for +200 mV", "cmdTrimOK").Waits(1500).Clicks("cmdTrimOK");
    WaitsForWords("lblTrimMsg(0)", "Adjust R12 (B)", "cmdTrimOK").Waits(1500).Does([] {
        EXPECT_EQ(Text("lblTrimTarget"), "80000");
        EXPECT_EQ(Text("lblTrimDistance"), "0");
        EXPECT_EQ(Text("cmdTrimOK"), "Accept");
        EXPECT_FALSE(Sees("cmdDone(5)"));
    });
    person->Clicks("cmdTrimOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepId, Step::Gnd);
}

TEST_F(SimulatedTrims, R38ReadsTenCountsLowAtOnce)
{
    Establishes(kAc3Code, 0x80);
    person->Clicks(ButtonOf(Step::TrimR38)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart");
    WaitsForWords("lblTrimMsg(0)", "Using the Gold screwdriver", "cmdTrimOK").Waits(1500).Does([] {
        EXPECT_EQ(Text("lblTrimMsg(0)"), "Using the Gold screwdriver, adjust R38 until the 2 V 10 KHz\nreading is "
                                         "79990 (10 counts low), then click \"Accept\"");
        EXPECT_EQ(Text("lblTrimRdg(1)"), "79990");
        EXPECT_EQ(Text("lblTrimDistance"), "0");
        EXPECT_EQ(Text("lblBoardParts"), "On the board (R38)");
    });
    person->Clicks("cmdTrimOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepId, Step::Range20V);
    EXPECT_FALSE(Sees("fraBoardParts")) << "they go with their page";
}

TEST_F(SimulatedPage, TheBalanceLoopComesToTwoEqualReadings)
{
    Establishes(0x22, 0x80);
    person->Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj").WaitsFor("cmdZeroAdjOK");
    person->Waits(1500).Clicks("cmdZeroAdjOK").WaitsFor("cmdZeroAdjAccept").Waits(1500).Does([] {
        EXPECT_EQ(Text("lblZeroAdjRdg(0)"), "3980");
        EXPECT_EQ(Text("lblZeroAdjRdg(1)"), "4020");
    });
    person->Clicks("cmdZeroAdjOK").WaitsUntil("adjust", [] { return Text("lblZeroAdj").starts_with("Adjust R9 (A)"); });
    person->WaitsFor("cmdZeroAdjOK").Waits(1500).Does([] {
        EXPECT_THAT(Text("lblZeroAdj"), HasSubstr("Recommended reading:  4000"));
    });
    person->Clicks("cmdZeroAdjOK").WaitsFor("cmdZeroAdjAccept").Waits(1500).Does([] {
        EXPECT_EQ(Text("lblZeroAdjRdg(0)"), "4000");
        EXPECT_EQ(Text("lblZeroAdjRdg(1)"), "4000");
    });
    person->Clicks("cmdZeroAdjAccept").WaitsFor("cmdTrimStart");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepId, Step::MinusGainTrim);
}

}  // namespace
}  // namespace ombrix::test
