// Zero adjust, gain balance and the trims of the AC boards, with the operator's hands on the bench's board.

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "support/page_test.h"

#include <cmath>

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char *kRed = "#ff0000";

std::string ButtonOf(int step)
{
    int position = 0;
    while (position < kPositions && StepIdAtPosition(position) != step)
        ++position;
    return StepButton(position);
}

double Number(const std::string &label)
{
    return Val(ScriptedOperator::Text(label));
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
        bench->Trim("R3", -bench->Tp1(), NowMicros());
    });
    person->Clicks("cmdZeroAdj")
        .WaitsUntil("the jumper is asked for", [] { return Text("lblZeroAdj").starts_with("Remove the TP1"); })
        .WaitsFor("cmdZeroAdj")
        .Does([this] {
            EXPECT_FALSE(Operates());
            bench->InstallDcJumper(true, NowMicros());
        })
        .Clicks("cmdZeroAdj");
    Balances("R10");
    person->WaitsUntil("the jumper goes", [] { return Text("lblZeroAdj").starts_with("Remove the DC jumper"); })
        .WaitsFor("cmdZeroAdj")
        .Does([this] {
            EXPECT_FALSE(Operates());
            bench->InstallDcJumper(false, NowMicros());
        })
        .Clicks("cmdZeroAdj")
        .WaitsFor("cmdDone(4)")
        .Does([this] {
            EXPECT_EQ(Output(), "2 mV, 300 Hz");
            EXPECT_TRUE(HasFocus("cmdDone(4)"));
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
    for (const unsigned seed : {1u, 2u, 3u}) {
        Begins(kAc2, seed);
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
        EXPECT_LT(std::abs(bench->RemainingError("R13/R14 Trim")), 0.0005 * 80000 + 3) << "seed " << seed;
        EXPECT_EQ(CurrentStepId, Step::Gnd);
    }
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
}

TEST_F(HandTrims, NegativeGainIsTurnedToThePositiveReading)
{
    Begins(kAc3);
    bench->InstallDcJumper(true, NowMicros());
    person->Clicks(ButtonOf(Step::MinusGainTrim)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart").WaitsFor("cmdTrimOK");
    Settles().Clicks("cmdTrimOK").WaitsUntil("R12", [] {
        return Text("lblTrimMsg(0)").starts_with("Adjust R12 (B)") && IsEnabled("cmdTrimOK");
    });
    for (int turn = 0; turn < 2; ++turn)
        Settles().Does([this] { bench->Trim("R12", -Number("lblTrimDistance"), NowMicros()); });
    Settles().Does([] { EXPECT_EQ(Text("cmdTrimOK"), "Accept"); }).Clicks("cmdTrimOK").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_LE(std::abs(bench->RemainingError("- Gain Trim")), 3);
    EXPECT_FALSE(Operates());
    EXPECT_EQ(CurrentStepId, Step::Gnd);
}

TEST_F(HandTrims, R38IsTurnedTenCountsLow)
{
    Begins(kAc3);
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
