// What an operator does beside the straight way: choosing, stopping, unplugging, other wirings, no mouse.

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTabBar>
#include <QTest>

#include <cmath>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr int kGnd = 2;  // positions on the DC board
constexpr int kRef = 3;
constexpr int k2Volts = 4;
constexpr int k2Milliamps = 8;
constexpr int kNewCalib = 4;  // columns of the grid
constexpr std::size_t kGndWord = 26;

Wiring WithBoard(int board)
{
    Wiring wiring;
    wiring.bench.board = board;
    return wiring;
}

int Number(const std::string &hex)
{
    return static_cast<int>(HexValue(hex));
}

// Another wiring ends the session, the old one begins a new one.
bool EstablishesAgain(BenchStation &station)
{
    station.person.Clicks("cmdSetup").WaitsFor("optManual").Clicks("optManual").Clicks("optAutomatic");
    return station.person.Runs() && !Established && station.Establishes();
}

class StopAfter : public testing::TestWithParam<int>
{
};

}  // namespace

TEST(Operator, PutsTheWordOfAnEarlierRowIntoTheMeterByChoosingItBeforeAccept)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    std::vector<std::string> words;
    station.person.Clicks(StepButton(kGnd)).Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdRepeat");
    station.person.WaitsUntil("the second round has ended", [] {
        return ScriptedOperator::Rows("msgCalibGrid") == 2 && ScriptedOperator::IsEnabled("cmdRepeat");
    });
    station.person.Does([&] {
        words = {ScriptedOperator::Cell("msgCalibGrid", 0, kNewCalib),
                 ScriptedOperator::Cell("msgCalibGrid", 1, kNewCalib)};
        EXPECT_EQ(station.bench.Nvm()[kGndWord], Number(words[1]));
    });
    station.person.ClicksCell("msgCalibGrid", 0, kNewCalib).Waits(5000).Clicks("cmdAccept");
    station.person.WaitsUntil("the range is left", NavigationIsFree);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    ASSERT_NE(words[0], words[1]);
    EXPECT_EQ(station.bench.Nvm()[kGndWord], Number(words[0]));
}

TEST_P(StopAfter, LeavesStandbyAnEmptyGridAndARangeThatCanBeginAgain)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(StepButton(k2Volts)).Clicks("cmdReady").Waits(GetParam()).Does([] {
        EXPECT_EQ(ScriptedOperator::Text("cmdStopReset"), "Stop") << "in the middle of the round";
        EXPECT_EQ(ScriptedOperator::Rows("msgCalibGrid"), 1);
    });
    station.person.Clicks("cmdStopReset").WaitsUntil("the range is free", NavigationIsFree);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_EQ(ScriptedOperator::Text("lblOutput"), "0.0 V");
    EXPECT_EQ(ScriptedOperator::Rows("msgCalibGrid"), 0);
    EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdReady"));
    EXPECT_FALSE(ScriptedOperator::IsEnabled("cmdStopReset"));
    EXPECT_TRUE(station.Calibrates(k2Volts, 3)) << station.person.Trouble();
    EXPECT_LE(std::abs(station.bench.RemainingError(k2Volts)), 2.0);
    EXPECT_THAT(station.bench.ProtocolErrors(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, StopAfter, testing::Values(0, 500, 1500, 3000, 5000, 7000));

TEST(Operator, FindsTheReadingOfAnUnpluggedMeterStandingAndEstablishesAgain)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    std::string instruction;
    station.person.Clicks(StepButton(k2Volts)).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([&] {
        station.bench.SwitchFault("meter-port-gone", true);
    });
    station.person.Waits(5000).Does([&] {
        EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdAccept"));
        EXPECT_EQ(ScriptedOperator::Text("lblInst(0)"), "The meter fell silent, its last reading stands");
    });
    station.person.Clicks("cmdAccept").WaitsUntil("the range is left", NavigationIsFree).Does([&] {
        instruction = ScriptedOperator::Text("lblInst(0)");
    });
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_EQ(instruction, "The meter did not answer:\ncheck its line, then click the step again");

    station.bench.SwitchFault("meter-port-gone", false);
    ASSERT_TRUE(EstablishesAgain(station)) << ScriptedOperator::Text("lblStatus");
    ASSERT_TRUE(station.Calibrates(k2Volts, 3)) << station.person.Trouble();
    EXPECT_LE(std::abs(station.bench.RemainingError(k2Volts)), 2.0);
}

TEST(Operator, GetsVoltageAndCurrentRangesSwitchedByTheSecondMeter)
{
    Wiring wiring;
    wiring.useSwitch = true;
    BenchStation station(wiring);
    ASSERT_TRUE(station.Establishes());
    EXPECT_EQ(station.bench.SwitchPosition(), 'V');
    std::string positions;
    for (const int position : {k2Volts, k2Milliamps, kRef}) {
        station.person.Clicks(StepButton(position)).WaitsFor("cmdReady");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        positions += station.bench.SwitchPosition();
        ASSERT_TRUE(station.Calibrates(position, 3)) << station.person.Trouble();
        EXPECT_LE(std::abs(station.bench.RemainingError(position)), 2.0) << position;
    }
    EXPECT_EQ(positions, "VAV");
    EXPECT_THAT(station.bench.ProtocolErrors(), IsEmpty());
}

TEST(Operator, IsToldOnAnAc3BoardWheneverTheNextRangeNeedsAnotherCable)
{
    BenchStation station(WithBoard(kAc3));
    ASSERT_TRUE(station.Establishes());
    const auto told = [](const char *pins, const char *signal) {
        return std::string("Verify that the ") + pins + "-pin cable is connected between\nthe Calibrator's " + signal +
               " pins and the AC board.";
    };
    std::vector<std::string> texts;
    for (const int position : {4, 5, 7, 10, 11, 4}) {  // 200 mV, 2 V, 20 V, 2 mA, 20 mA, 200 mV
        station.person.Clicks(StepButton(position)).WaitsFor("cmdReady");
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        texts.push_back(ScriptedOperator::Sees("lblInst(1)") ? ScriptedOperator::Text("lblInst(1)") : "");
    }
    EXPECT_THAT(texts, ElementsAre(told("2", "Voltage"), told("4", "Voltage"), "", told("2", "Current"), "",
                                   told("2", "Voltage")));
}

TEST(Operator, TellsTheBoardOfAMeterThatDoesNotKnowIt)
{
    BenchStation station(Wiring{});
    station.bench.SetWord(21, 0xFFFF);
    bool askedForMeter = true;
    station.person.Clicks("cmdEstablish").WaitsFor("OKButton").Does([&] {
        askedForMeter = ScriptedOperator::Sees("fraMeter");
        EXPECT_FALSE(Established);
    });
    station.person.Clicks("optSC(2)").Clicks("OKButton").WaitsUntil("it is established", NavigationIsFree);
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_FALSE(askedForMeter) << "its kind is known";
    EXPECT_FALSE(ScriptedOperator::Sees("OKButton"));
    EXPECT_TRUE(Established);
    EXPECT_EQ(SCType, kLc);
    EXPECT_EQ(station.bench.Nvm()[21], 0xFF03);
    EXPECT_THAT(station.bench.ProtocolErrors(), IsEmpty());
}

TEST(Operator, CalibratesARangeWithoutAMouse)
{
    BenchStation station(Wiring{});
    ScriptedOperator &person = station.person;
    const auto tabsTo = [](const std::string &name) {
        return [name] {
            for (int presses = 0; presses < 60 && !ScriptedOperator::HasFocus(name); ++presses)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            EXPECT_TRUE(ScriptedOperator::HasFocus(name)) << name;
        };
    };
    const auto focused = [](const char *name) { return [name] { return ScriptedOperator::HasFocus(name); }; };
    person.WaitsUntil("Establish has the focus", focused("cmdEstablish")).Presses(Qt::Key_Return);
    person.WaitsUntil("it is established", [] { return Established && NavigationIsFree(); });
    person.Does(tabsTo(StepButton(k2Volts))).Presses(Qt::Key_Return);
    for (const char *button : {"cmdReady", "cmdRepeat", "cmdRepeat"})
        person.WaitsFor(button).WaitsUntil("it has the focus", focused(button)).Presses(Qt::Key_Return);
    person.WaitsFor("cmdRepeat").Does(tabsTo("cmdAccept")).Presses(Qt::Key_Return);
    person.WaitsUntil("the range is left", NavigationIsFree);
    ASSERT_TRUE(person.Runs()) << person.Trouble();
    EXPECT_EQ(CurrentStepButton, k2Volts + 1);
    EXPECT_LE(std::abs(station.bench.RemainingError(k2Volts)), 2.0);
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
}

TEST(Operator, FindsACounterOnItsTabAndQuitLeavesItsSetupWordsAlone)
{
    BenchStation station(WithBoard(kVf));
    ASSERT_TRUE(station.Establishes());
    EXPECT_THAT(ScriptedOperator::Text("lblStatus"), HasSubstr("and CTR on COM1"));
    EXPECT_EQ(qobject_cast<QTabBar *>(ScriptedOperator::Find("tabCalib"))->currentIndex(), kTabVf);
    const auto before = station.bench.Nvm();
    const std::size_t said = station.bench.Transcript().size();
    station.person.Clicks("cmdQuit");
    station.person.Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_EQ(station.bench.Nvm(), before);
    bool local = false;
    for (std::size_t i = said; i < station.bench.Transcript().size(); ++i) {
        const bench::TranscriptLine &line = station.bench.Transcript()[i];
        EXPECT_FALSE(line.fromStation && line.line == bench::Line::Meter) << line.text;
        local = local || line.text == "LOCAL\\n";
    }
    EXPECT_TRUE(local);
}

TEST(Operator, IsAskedInManualModeForEachInputAndForItsRemoval)
{
    Wiring wiring;
    wiring.manual = true;
    BenchStation station(wiring);
    std::vector<std::string> boxes;
    station.person.onBox = [&boxes, obey = station.person.onBox](const std::string &title, const std::string &text) {
        boxes.push_back(title + ": " + text);
        obey(title, text);
    };
    ASSERT_TRUE(station.Establishes());
    ASSERT_TRUE(station.Calibrates(kRef, 1)) << station.person.Trouble();
    const std::string plus = "Apply Input Signal: Apply an accurate input signal of 200 mV to the Meter";
    const std::string minus = "Apply Input Signal: Apply an accurate input signal of -200 mV to the Meter";
    EXPECT_THAT(boxes, ElementsAre(plus, minus, plus, "Remove Input: Remove any input signal from the meter"));
    EXPECT_TRUE(ScriptedOperator::Sees("lblAssumed"));
    boxes.clear();
    ASSERT_TRUE(station.Calibrates(kGnd, 1)) << station.person.Trouble();
    EXPECT_THAT(boxes, ElementsAre("Apply Input Signal: Apply an accurate input signal of 0 V to the Meter",
                                   "Remove Input: Remove any input signal from the meter"));
}
