#include "support/page_test.h"

#include "model/range_tables.h"
#include "model/station_settings.h"
#include "platform/text.h"
#include "session/journal.h"
#include "testbench/boards.h"

#include <algorithm>
#include <cmath>

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kRtdCurrent = 4;  // position on the Temp board

// ---- in simulation ----

class SimulatedRtd : public SimulatedPage
{
protected:
    void Opens(const std::string &desired = "")
    {
        RtdDesiredText = desired;
        Establishes(0x01, 0x41);
        person->Clicks(StepButton(kRtdCurrent)).WaitsFor("cmdISCalib");
    }
    ScriptedOperator &Follows()
    {
        return person->WaitsUntil("the reading is followed", [] { return Text("lblISReadingMark") == "live"; });
    }
};

TEST_F(SimulatedRtd, EntryAppliesTheDesiredReadingAndShowsTheWord)
{
    SimNvm[30] = 0x81F2;
    Opens();
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblISrc(0)"), "RTD CURRENT SOURCE");
    EXPECT_EQ(Text("lblCALISRC"), "81F2");
    EXPECT_EQ(Text("txtISDesired"), "1356.4");
    EXPECT_EQ(RtdDesiredText, "1356.4");
    EXPECT_EQ(Text("lblOutput"), "1356.4 °F");
    EXPECT_EQ(Text("cmdISCalib"), "Calibrate");
    EXPECT_TRUE(HasFocus("cmdISCalib"));
    EXPECT_EQ(Text("lblInst(3)"), "Click \"Calibrate\" to begin calibration");
    EXPECT_EQ(Text("lblISReading"), "");
    EXPECT_EQ(SimNoise, 20.0f);
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(SimulatedRtd, ADesiredReadingWithoutAPointIsReplaced)
{
    Opens("1400");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("txtISDesired"), "1356.4");
}

TEST_F(SimulatedRtd, CalibratePutsTheMeterOnItsRangeAndMovesTheWordByTheReading)
{
    SimNvm[30] = 0x8000;
    for (std::size_t word = 37; word <= 42; ++word)
        SimNvm[word] = 0x1234;
    Opens();
    person->Clicks("cmdISCalib");
    Follows().Does([] {
        for (std::size_t word = 37; word <= 42; ++word)
            EXPECT_EQ(SimNvm[word], 0x8000) << word;
        EXPECT_EQ(SimNvm[16], 0x50);
        EXPECT_EQ(SimNvm[17], 0x6527);
        EXPECT_EQ(SimNvm[3], 0x0001);
        EXPECT_EQ(SimNoise, 16.0f);
        EXPECT_EQ(Text("cmdISCalib"), "ReCalib");
        EXPECT_EQ(Text("lblInst(3)"), "Click \"ReCalib\" to recalibrate");
        const double counts = Val(Text("lblISReading"));
        EXPECT_NEAR(counts, 13564, 201);
        EXPECT_EQ(Text("lblISError"), std::to_string(RoundHalfEven(counts - 13564)));
        EXPECT_EQ(SimNvm[30], 32768 + RoundHalfEven((13564 - counts) * 12.25));
        EXPECT_EQ(HexValue(Text("lblCALISRC")), SimNvm[30]);
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(IsEnabled("txtISDesired"));
    });
    person->Clicks("cmdISCalib").WaitsUntil("the second step", [] { return SimNoise < 13; });
    Follows().Does([] { EXPECT_EQ(Text("cmdISCalib"), "ReCalib"); });
    person->Clicks("cmdISDone").WaitsUntil("the next step", StandsAt(kRtdCurrent + 1)).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimNvm[18], 0x21D1) << "the factory setup";
    EXPECT_FALSE(SimOneDecimal);
}

TEST_F(SimulatedRtd, TheReadingIsClickedToHoldItAndNavigationStaysHeld)
{
    Opens();
    person->Clicks("cmdISCalib");
    Follows().Clicks("lblISReading").WaitsFor("txtISDesired").Does([] {
        EXPECT_EQ(Text("lblISReadingMark"), "frozen");
        EXPECT_EQ(Text("cmdISCalib"), "ReCalib");
        EXPECT_FALSE(IsEnabled("cmdSetup")) << "the meter stands on a range that only Done takes it off";
    });
    person->Types("txtISDesired", "20.57").Presses(Qt::Key_Return).WaitsFor("cmdISCalib").Does([] {
        EXPECT_EQ(Text("txtISDesired"), "20.5");
        EXPECT_EQ(RtdDesiredText, "20.5");
        EXPECT_EQ(Text("lblOutput"), "20.5 °F");
        EXPECT_EQ(SimNoise, 20.0f);
        EXPECT_EQ(SimNominal, 20.5f);
        EXPECT_EQ(Text("cmdISCalib"), "ReCalib");
    });
    person->Clicks("cmdISDone").WaitsUntil("the next step", StandsAt(kRtdCurrent + 1)).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
}

TEST_F(SimulatedRtd, ADesiredReadingOfTooManyDigitsLeavesTheOldOne)
{
    Opens();
    person->Types("txtISDesired", "12345.6").Presses(Qt::Key_Return).WaitsFor("cmdISCalib");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("txtISDesired"), "1356.4");
    EXPECT_EQ(Text("lblOutput"), "1356.4 °F");
}

TEST_F(SimulatedRtd, TheWordStopsAtItsEnd)
{
    SimNvm[30] = 0xFFFF;
    Opens();
    person->Does([] { SimNominal = 1300; }).Clicks("cmdISCalib");
    Follows().Does([] {
        EXPECT_EQ(SimNvm[30], 0xFFFF);
        EXPECT_EQ(Text("lblInst(3)"), "Required correction exceeds allowable range");
        EXPECT_EQ(Fill("shpInst(3)"), "#ff0000");
    });
    person->Clicks("cmdISDone").WaitsUntil("the next step", StandsAt(kRtdCurrent + 1)).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
}

// ---- on the wire ----

class WiredRtd : public WiredPage
{
protected:
    std::vector<JournalEvent> events;
    int listener = -1;

    void TearDown() override
    {
        if (listener >= 0)
            StopListening(listener);
        WiredPage::TearDown();
    }

    void Opens()
    {
        Stands({.board = bench::board::kTemp});
        Establishes();
        listener = ListenToJournal([this](const JournalEvent &event) { events.push_back(event); });
        bench->SetWord(30, 0x8000);
        Forget();
        person->Clicks(StepButton(kRtdCurrent)).WaitsFor("cmdISDone");
    }
    ScriptedOperator &Calibrates() { return person->Clicks("cmdISCalib"); }
    ScriptedOperator &WaitsForMark(const std::string &mark)
    {
        return person->WaitsUntil("the reading is " + mark, [mark] { return Text("lblISReadingMark") == mark; });
    }
    ScriptedOperator &Ends()
    {
        return person->Clicks("cmdISDone").WaitsUntil("the next step", StandsAt(kRtdCurrent + 1)).WaitsFor("cmdSetup");
    }
    void Runs() { ASSERT_TRUE(person->Runs()) << person->Trouble(); }
};

TEST_F(WiredRtd, EntrySelectsTheThermometerReadsTheWordAndApplies)
{
    Opens();
    person->Waits(100);
    Runs();
    EXPECT_THAT(ToMeter(), ElementsAre("*1X11E"));
    EXPECT_THAT(ToCalibrator(), ElementsAre("TSENS_TYPE RTD", "RTD_TYPE PT385", "ZCOMP WIRE4", "ERR?",
                                            "OUT 1356.4 FAR ; OPER ; *WAI", "OPER?", "OUT?", "ZCOMP WIRE4"));
    EXPECT_EQ(TextOf(events.at(0), "found"), "8000");
}

TEST_F(WiredRtd, AStepIsOneSetupOneReadingAndOneWord)
{
    Opens();
    person->Does([this] {
        Forget();
        bench->ShowNext({" 1356.2"});
    });
    Calibrates();
    WaitsForMark("live").Does([this] {
        std::vector<std::string> said = ToMeter();
        said.resize(6);
        EXPECT_EQ(said[0], "*1W62A800080008000800080008000");
        EXPECT_EQ(said[1], "*1G130");
        EXPECT_EQ(said[2].substr(0, 6), "*1W211");
        EXPECT_EQ(said[2].substr(8), "270050Z");
        EXPECT_EQ(said[3], "*1W305000000100001");
        EXPECT_EQ(said[4], "*1B1");
        EXPECT_EQ(said[5], "*1W11E8018") << "2 counts are 24.5, rounded to 24";
        EXPECT_EQ(Text("lblCALISRC"), "8018");
    });
    Ends();
    Runs();
    EXPECT_EQ(events.at(1).kind, "words written") << "the thermometers' gains";
    EXPECT_THAT(std::get<std::vector<std::string>>(FieldOf(events.at(1), "words")->is),
                ElementsAre("2A", "29", "28", "27", "26", "25"));
    EXPECT_EQ(TextOf(events.at(2), "wordBefore"), "8000");
    EXPECT_EQ(TextOf(events.at(2), "wordAfter"), "8018");
    EXPECT_EQ(TextOf(events.at(3), "how"), "accepted");
    EXPECT_EQ(TextOf(events.at(3), "stays"), "8018");
}

TEST_F(WiredRtd, ADesiredReadingThatWasNotAppliedIsAppliedBeforeTheNextStep)
{
    const std::string output = "OUT 500.0 FAR ; OPER ; *WAI";
    Opens();
    person->Types("txtISDesired", "500").Presses(Qt::Key_Return).Waits(300).Presses(Qt::Key_Escape);
    person->WaitsFor("cmdISCalib").Does([this] {
        EXPECT_EQ(Text("lblInst(3)"), "The input was not applied:\nthe next correction applies it first");
        EXPECT_EQ(Fill("shpInst(3)"), "#ff0000");
        Forget();
    });
    person->Types("txtISDesired", "500.0").Presses(Qt::Key_Return).Waits(1200).Presses(Qt::Key_Escape);
    person->WaitsFor("cmdISCalib").Does([this, output] {
        EXPECT_THAT(ToCalibrator(), Contains(output)) << "the same again, since it does not stand yet";
        Forget();
    });
    Calibrates();
    WaitsForMark("live").Does([this, output] {
        const std::vector<std::string> said = Said();
        const auto applied = std::find(said.begin(), said.end(), output);
        const auto put = std::find(said.begin(), said.end(), "*1W62A800080008000800080008000");
        EXPECT_LT(applied - said.begin(), put - said.begin()) << "no step under another temperature";
        EXPECT_NE(put, said.end());
    });
    Ends();
    Runs();
}

TEST_F(WiredRtd, AReadingFarFromTheDesiredOneIsToldAsLongAsItIs)
{
    Opens();
    person->Does([this] { bench->ShowNext({" 1491.9", " 1492.1"}); });
    Calibrates();
    person->WaitsUntil("it is followed", [] { return Text("lblISReading") == "14921"; }).Does([this] {
        EXPECT_EQ(Text("lblInst(3)"), "Click \"ReCalib\" to recalibrate\n"
                                      "Reading is far from the target: check input, jumpers and wires");
        EXPECT_EQ(Fill("shpInst(3)"), "#ff0000");
        bench->ShowNext({" 1492.0"});
    });
    person->WaitsUntil("it comes nearer", [] { return Text("lblISReading") == "14920"; }).Does([] {
        EXPECT_EQ(Text("lblInst(3)"), "Click \"ReCalib\" to recalibrate");
    });
    Ends();
    Runs();
}

TEST_F(WiredRtd, AStopBeforeTheWordIsReadIsNotTakenForSilence)
{
    Opens();
    Runs();
    person->Clicks(StepButton(kRtdCurrent)).Waits(100).Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(Text("lblInst(3)"), "Stopped before the meter had answered:\nclick the step again");
    EXPECT_FALSE(IsEnabled("cmdISCalib"));
}

TEST_F(WiredRtd, QuitIsToldToTheJournal)
{
    Opens();
    Calibrates();
    WaitsForMark("live").Clicks("cmdQuit");
    person->Runs();
    EXPECT_EQ(TextOf(events.back(), "how"), "quit");
    EXPECT_EQ(TextOf(events.back(), "stays"), HexText(WordOf(30), 4));
}

TEST_F(WiredRtd, TheFollowedReadingHasNoPoint)
{
    Opens();
    person->Does([this] { bench->ShowNext({" 1356.2", " 1356.1"}); });
    Calibrates();
    person->WaitsUntil("it is followed", [] { return Text("lblISReading") == "13561"; }).Does([] {
        EXPECT_EQ(Text("lblISError"), "-3");
    });
    Ends();
    Runs();
}

TEST_F(WiredRtd, AFewStepsEndWithinACount)
{
    Opens();
    for (int step = 1; step <= 4; ++step) {
        Calibrates();
        person->WaitsUntil("a step", [this, step] {
            return std::count_if(events.begin(), events.end(), [](const auto &e) { return e.kind == "round"; }) == step;
        });
        WaitsForMark("live").Waits(1500);
    }
    Ends();
    Runs();
    EXPECT_LE(std::abs(bench->RemainingError("RTD Current")), 1);
}

TEST_F(WiredRtd, WithoutAReadingNothingIsWritten)
{
    Opens();
    person->Does([this] {
        Forget();
        bench->SwitchFault("over-range", true);
    });
    Calibrates();
    WaitsForMark("over range").Does([this] {
        EXPECT_EQ(Fill("shpInst(3)"), "#ff0000");
        EXPECT_TRUE(IsEnabled("cmdISDone"));
        bench->SwitchFault("over-range", false);
        bench->SwitchFault("silent-meter", true);
    });
    WaitsForMark("silent").Presses(Qt::Key_Escape).WaitsFor("txtISDesired").Does([this] {
        EXPECT_EQ(Text("lblInst(3)"), "Click \"ReCalib\" to recalibrate");
        EXPECT_THAT(ToMeter(), testing::Not(Contains(testing::StartsWith("*1W11E"))));
        bench->SwitchFault("silent-meter", false);
    });
    Ends();
    Runs();
    EXPECT_EQ(WordOf(30), 0x8000);
}

TEST_F(WiredRtd, AMeterThatFallsSilentWhileItIsFollowedIsTold)
{
    Opens();
    Calibrates();
    WaitsForMark("live").Waits(1000).Does([this] { bench->SwitchFault("silent-meter", true); });
    WaitsForMark("silent").Does([this] {
        EXPECT_EQ(Text("lblInst(3)"), "The meter fell silent: check its line");
        EXPECT_EQ(Fill("shpInst(3)"), "#ff0000");
        bench->SwitchFault("silent-meter", false);
    });
    WaitsForMark("live").Does([] { EXPECT_EQ(Text("lblInst(3)"), "Click \"ReCalib\" to recalibrate"); });
    Ends();
    Runs();
}

TEST_F(WiredRtd, AMeterThatTellsNoWordCannotBeTrimmed)
{
    Opens();
    Runs();
    bench->SwitchFault("silent-meter", true);
    person->Does([this] { Forget(); }).Clicks(StepButton(kRtdCurrent)).WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(Text("lblInst(3)"), "The meter did not answer:\ncheck its line, then click the step again");
    EXPECT_FALSE(IsEnabled("cmdISCalib"));
    EXPECT_EQ(Text("lblCALISRC"), "");
    EXPECT_FALSE(Operates()) << "nothing is applied to a meter that nobody hears";
}

TEST_F(WiredRtd, AMeterThatIsNotOnItsRangeIsNotTrimmed)
{
    Opens();
    person->Does([this] { bench->SwitchFault("silent-meter", true); });
    Calibrates().WaitsFor("cmdISCalib").Does([] {
        EXPECT_EQ(Text("lblInst(3)"), "The meter did not answer:\ncheck its line, then click \"Calibrate\" again");
        EXPECT_EQ(Text("cmdISCalib"), "Calibrate");
        EXPECT_TRUE(IsEnabled("cmdSetup"));
    });
    Runs();
    EXPECT_EQ(WordOf(30), 0x8000);
}

}  // namespace
}  // namespace ombrix::test
