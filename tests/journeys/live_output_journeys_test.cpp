// What the operator sees of a dangerous output when its calibrator, its line or the meter fails him, in whole sessions.

#include "journeys/page_loops.h"
#include "links/calibrator.h"
#include "platform/clock.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "support/bench_station.h"
#include "support/journal_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMainWindow>

#include <cctype>
#include <cmath>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

using namespace ombrix;
using namespace ombrix::test;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr int kGnd = 2;  // positions on the DC board
constexpr int k2Volts = 4;
constexpr int k200Volts = 6;
constexpr int k660Volts = 7;
constexpr std::size_t kGndWord = 26;

bool AlertStands()
{
    return ScriptedOperator::Sees("lblAlert");
}

// What the panel said, looked at from each step of a script that waits.
struct Seen {
    std::set<std::string> outputs;
    std::set<std::string> flags;

    std::function<bool()> While(std::function<bool()> condition)
    {
        return [this, condition = std::move(condition)] {
            outputs.insert(ScriptedOperator::Text("lblOutput"));
            flags.insert(ScriptedOperator::Text("lblFlag"));
            return condition();
        };
    }
};

class Terminals : public testing::Test
{
protected:
    void StandsAt(int position, const Wiring &wiring = {})
    {
        station = std::make_unique<BenchStation>(wiring);
        ASSERT_TRUE(station->Establishes());
        Person().Clicks(StepButton(position)).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    }

    void Runs() { ASSERT_TRUE(Person().Runs()) << Person().Trouble() << "\n" << station->bench.LastWords(); }
    ScriptedOperator &Person() const { return station->person; }
    void Switches(const std::string &fault, bool on) const
    {
        Person().Does([this, fault, on] { ASSERT_TRUE(station->bench.SwitchFault(fault, on)); });
    }
    // Commands that the calibrator has heard and that hold a text.
    int Heard(const std::string &text) const
    {
        int heard = 0;
        for (const bench::TranscriptLine &line : station->bench.Transcript())
            heard +=
                line.fromStation && line.line == bench::Line::Calibrator && line.text.find(text) != std::string::npos
                    ? 1
                    : 0;
        return heard;
    }

    std::unique_ptr<BenchStation> station;
};

std::string HowTheLastStepEnded()
{
    const auto ends = EventsOf("step ended");
    return ends.empty() ? "" : TextOf(ends.back(), "how");
}

// A way on that the operator may take under the alert.
struct WayOn {
    const char *button;
    bool behindReset;  // off as long as the reading is followed
    bool accepts = false;
};

class GoneLine : public Terminals, public testing::WithParamInterface<WayOn>
{
};

std::string NameOfWay(const testing::TestParamInfo<WayOn> &info)
{
    std::string name;
    for (const char c : std::string(info.param.button))
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            name += c;
    return name;
}

}  // namespace

TEST_P(GoneLine, Under200VoltsIsToldAtOnceAndEveryWayOnEndsSoonAndNothingSaysSafe)
{
    ASSERT_NO_FATAL_FAILURE(StandsAt(k200Volts));
    Seen seen;
    std::int64_t gone = 0;
    std::int64_t clicked = 0;
    Switches("calibrator-port-gone", true);
    Person().Does([&] { gone = station->clock.Elapsed(); }).WaitsUntil("the alert stands", seen.While(AlertStands));
    Person().Does([&] {
        EXPECT_LE(station->clock.Elapsed() - gone, 1000);
        EXPECT_EQ(ScriptedOperator::Text("lblAlert"),
                  "Output not confirmed: 200.0 V may be on the terminals. Press the "
                  "calibrator's own STBY key.");
        clicked = station->clock.Elapsed();
    });
    if (GetParam().behindReset)
        Person().Clicks("cmdStopReset").Waits(1100).WaitsUntil("the range is left", seen.While(NavigationIsFree));
    Person().Clicks(GetParam().button).Waits(1100).WaitsUntil("it has ended", seen.While(NavigationIsFree));
    Person().Does([&] { EXPECT_LE(station->clock.Elapsed() - clicked, 10'000); });
    ASSERT_NO_FATAL_FAILURE(Runs());
    EXPECT_TRUE(AlertStands());
    EXPECT_THAT(ScriptedOperator::Text("lblAlert"), StartsWith("Standby not confirmed: 200.0 V may be"));
    EXPECT_THAT(seen.flags, Each("DANGER"));
    EXPECT_TRUE(station->bench.CalibratorNow().operating) << "nobody could reach it";

    EXPECT_EQ(HowTheLastStepEnded(), GetParam().accepts ? "accepted" : "line lost");

    const int operated = Heard("; OPER");
    Person().Clicks(StepButton(k2Volts)).WaitsFor("cmdReady").Clicks("cmdReady").Waits(1100);
    Person().WaitsUntil("Ready has ended", seen.While(NavigationIsFree));
    ASSERT_NO_FATAL_FAILURE(Runs());
    EXPECT_EQ(Heard("; OPER"), operated) << "Ready applied an input under the alert";
    EXPECT_TRUE(AlertStands());
    EXPECT_THAT(seen.flags, Each("DANGER"));

    Switches("calibrator-port-gone", false);
    const int taken = Heard("REMOTE");
    Person().Clicks(StepButton(k2Volts)).WaitsFor("cmdReady").WaitsUntil("the alert has gone", [] {
        return !AlertStands();
    });
    ASSERT_NO_FATAL_FAILURE(Runs());
    EXPECT_EQ(Heard("REMOTE"), taken + 1);
    EXPECT_FALSE(station->bench.CalibratorNow().operating);
    EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "SAFE");
    ASSERT_TRUE(station->Calibrates(k2Volts, 3)) << Person().Trouble();
    EXPECT_LE(std::abs(station->bench.RemainingError(k2Volts)), 2.0);
}

INSTANTIATE_TEST_SUITE_P(WaysOn, GoneLine,
                         testing::Values(WayOn{"cmdAccept", false, true}, WayOn{"cmdStopReset", false},
                                         WayOn{"cmdCalib(5)", true}, WayOn{"cmdSetup", true}),
                         NameOfWay);

class QuitUnderAGoneLine : public Terminals, public testing::WithParamInterface<bool>
{
};

TEST_P(QuitUnderAGoneLine, SaysOnceMoreWhatMayStandAndEndsByItself)
{
    const bool duringReading = GetParam();
    ASSERT_NO_FATAL_FAILURE(StandsAt(k200Volts));
    testing::internal::CaptureStderr();
    std::int64_t clicked = 0;
    std::int64_t shown = 0;
    std::string words;
    Switches("calibrator-port-gone", true);
    Person().WaitsUntil("the alert stands", AlertStands);
    if (!duringReading)
        Person().Clicks("cmdStopReset").Waits(1100).WaitsUntil("the range is left", NavigationIsFree);
    Person().Does([&] { clicked = station->clock.Elapsed(); }).Clicks("cmdQuit");
    Person().WaitsUntil("the box is there", [] { return ScriptedOperator::Box() != nullptr; }).Does([&] {
        shown = station->clock.Elapsed();
        words = ScriptedOperator::BoxText();
    });
    Person().WaitsUntil("the box is gone", [] { return ScriptedOperator::Box() == nullptr; });
    Person().Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_THAT(words, HasSubstr("not confirmed: 200.0 V may be on the terminals."));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("ombrix: " + words));
    EXPECT_LE(shown - clicked, 4000);
    EXPECT_LE(station->clock.Elapsed() - shown, 10'500);
}

INSTANTIATE_TEST_SUITE_P(DuringTheReadingAndAfterIt, QuitUnderAGoneLine, testing::Bool());

// Calibrators that answer in a way that could be mistaken for another answer.
class DoubtfulCalibrator : public Terminals, public testing::WithParamInterface<const char *>
{
};

TEST_P(DoubtfulCalibrator, PanelAndFlagNeverSayLessThanWhatStandsOnTheTerminals)
{
    station = std::make_unique<BenchStation>(Wiring{});
    ASSERT_TRUE(station->Establishes());
    std::set<std::string> flagsInOperate;
    std::set<std::string> outputsInOperate;
    const auto look = [&] {
        const auto calibrator = station->bench.CalibratorNow();
        if (!calibrator.operating || calibrator.output == "0 V, 0 Hz")
            return;
        flagsInOperate.insert(ScriptedOperator::Text("lblFlag"));
        outputsInOperate.insert(ScriptedOperator::Text("lblOutput"));
    };
    Person().Clicks(StepButton(k660Volts)).WaitsFor("cmdReady");
    Switches(GetParam(), true);
    std::int64_t start = 0;
    Person().Clicks("cmdReady").Does([&] { start = station->clock.Elapsed(); });
    Person().WaitsUntil("a round or a minute and a half have passed", [&] {
        look();
        return ScriptedOperator::IsEnabled("cmdRepeat") || station->clock.Elapsed() - start > 90'000;
    });
    Person().Clicks("cmdStopReset").Waits(1100).WaitsUntil("the range is left", [&] {
        look();
        return NavigationIsFree();
    });
    ASSERT_NO_FATAL_FAILURE(Runs());
    EXPECT_THAT(flagsInOperate, Not(testing::IsEmpty())) << "nothing was applied";
    EXPECT_THAT(flagsInOperate, Each("DANGER"));
    EXPECT_THAT(outputsInOperate, Not(Contains(AnyOf("0.0 V", "1.0 V", "1.0", "0.0"))));
    EXPECT_FALSE(station->bench.CalibratorNow().operating);
    EXPECT_THAT(station->bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtAndOver600Volts, DoubtfulCalibrator,
                         testing::Values("late-calibrator=1500", "late-calibrator=400", "late-calibrator=5000", "junk",
                                         "garbage"));

TEST_F(Terminals, JunkBeforeAReadingIsNeverARowOfGnd)
{
    station = std::make_unique<BenchStation>(Wiring{});
    ASSERT_TRUE(station->Establishes());
    const auto before = station->bench.Nvm()[kGndWord];
    Person().Clicks(StepButton(kGnd)).WaitsFor("cmdReady");
    Switches("junk", true);
    Person().Clicks("cmdReady").Waits(60'000).Does([&] {
        EXPECT_FALSE(ScriptedOperator::IsEnabled("cmdAccept"));
        EXPECT_EQ(station->bench.Nvm()[kGndWord], before);
    });
    Person().Clicks("cmdStopReset").Waits(1100).WaitsUntil("the range is left", NavigationIsFree);
    ASSERT_NO_FATAL_FAILURE(Runs());
    EXPECT_EQ(station->bench.Nvm()[kGndWord], before);
    station->bench.SwitchFault("junk", false);
    ASSERT_TRUE(station->Calibrates(kGnd, 3))
        << Person().Trouble() << ScriptedOperator::Text("lblInst(0)") << station->bench.LastWords(40);
    EXPECT_LE(std::abs(station->bench.RemainingError(kGnd)), 2.0);
}

TEST_F(Terminals, ACalibratorSwitchedOffUnder200VoltsIsGivenUpSoonAndStopStaysOnMeanwhile)
{
    ASSERT_NO_FATAL_FAILURE(StandsAt(k200Volts));
    std::int64_t clicked = 0;
    Seen seen;
    Switches("silent-calibrator", true);
    Person().Does([&] { clicked = station->clock.Elapsed(); }).Clicks("cmdStopReset").Waits(4000).Does([] {
        EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdStopReset"));
        EXPECT_FALSE(NavigationIsFree());
        EXPECT_THAT(ScriptedOperator::Text("lblInst(0)"), Not(HasSubstr("Click \"Stop\"")));
    });
    Person().WaitsUntil("the range is left", seen.While(NavigationIsFree)).Does([&] {
        EXPECT_LE(station->clock.Elapsed() - clicked, 15'000);
        EXPECT_TRUE(AlertStands());
        EXPECT_THAT(ScriptedOperator::Text("lblAlert"), StartsWith("Standby not confirmed: 200.0 V may be"));
    });
    ASSERT_NO_FATAL_FAILURE(Runs());
    EXPECT_THAT(seen.flags, Each("DANGER"));
}

// The operator puts signals on by hand and may say that he has not.
class ByHand : public Terminals
{
protected:
    void Stands()
    {
        Wiring wiring;
        wiring.manual = true;
        station = std::make_unique<BenchStation>(wiring);
        ASSERT_TRUE(station->Establishes());
        obey = std::exchange(Person().onBox, nullptr);
        Person().Clicks(StepButton(k660Volts)).WaitsFor("cmdReady").Clicks("cmdReady");
    }
    // Does what the box asks and says so.
    void Applies()
    {
        Person().WaitsUntil("he is asked to apply", [] { return Asked("Apply Input Signal"); });
        Person().Does([this] { obey(ScriptedOperator::BoxTitle(), ScriptedOperator::BoxText()); });
        Person().Presses(Qt::Key_Return);
    }
    static bool Asked(const std::string &title) { return ScriptedOperator::BoxTitle() == title; }

    std::function<void(const std::string &, const std::string &)> obey;
};

TEST_F(ByHand, EscAtApplyRaisesTheFlagAndShowsNoValueThatNobodyApplied)
{
    ASSERT_NO_FATAL_FAILURE(Stands());
    std::string panel;
    Person().WaitsUntil("he is asked", [] { return ScriptedOperator::Box() != nullptr; }).Does([&] {
        panel = ScriptedOperator::Text("lblOutput");
        EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "DANGER") << "he may be at it";
    });
    Person().Presses(Qt::Key_Escape).WaitsUntil("he is asked to remove it", [] { return Asked("Remove Input"); });
    Person().Does([&] {
        EXPECT_EQ(ScriptedOperator::Text("lblOutput"), panel);
        EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "DANGER");
    });
    Person().Presses(Qt::Key_Return).WaitsUntil("the range is left", NavigationIsFree).Does([] {
        EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "SAFE");
    });
    ASSERT_NO_FATAL_FAILURE(Runs());
}

TEST_F(ByHand, EscAtRemoveLeaves660VoltsOnThePanelAndTheNextRemovalAsksAgain)
{
    ASSERT_NO_FATAL_FAILURE(Stands());
    Applies();
    Person().Waits(500).Clicks("cmdStopReset");
    Person().WaitsUntil("he is asked to remove it", [] { return Asked("Remove Input"); });
    Person().Presses(Qt::Key_Escape).WaitsUntil("the range is left", NavigationIsFree).Does([] {
        EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "DANGER");
        EXPECT_EQ(ScriptedOperator::Text("lblOutput"), "660.0 V");
        EXPECT_TRUE(ScriptedOperator::Sees("lblAssumed"));
    });
    Person().Clicks("cmdSetup");
    Person().WaitsUntil("he is asked again", [] { return Asked("Remove Input"); });
    Person().Presses(Qt::Key_Return).WaitsFor("optManual").Does([] {
        EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "SAFE");
    });
    ASSERT_NO_FATAL_FAILURE(Runs());
}

TEST_F(ByHand, EscAtTheRemovalOfQuitSaysThatNothingWasRemovedAndEndsTheProgram)
{
    ASSERT_NO_FATAL_FAILURE(Stands());
    Applies();
    Person().Waits(500).Clicks("cmdQuit");
    Person().WaitsUntil("he is asked to remove it", [] { return Asked("Remove Input"); });
    Person().Presses(Qt::Key_Escape);
    Person().Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_EQ(ScriptedOperator::Text("lblOutput"), "660.0 V") << "the last that he saw";
    EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "DANGER");
    EXPECT_FALSE(CalStandbyFlag);
    EXPECT_FALSE(frmOmbrix->isVisible());
}

TEST_F(Terminals, AMeterThatFallsSilentUnderItsReadingIsToldAndItsLastNumberIsMarked)
{
    ASSERT_NO_FATAL_FAILURE(StandsAt(k2Volts));
    Switches("silent-meter", true);
    Person().WaitsForText("lblInst(0)", "The meter fell silent, its last reading stands").Does([] {
        EXPECT_EQ(ScriptedOperator::Text("lblNewReadingMark"), "silent");
        EXPECT_TRUE(ScriptedOperator::IsEnabled("cmdAccept"));
    });
    Switches("silent-meter", false);
    Person().Clicks("cmdAccept").WaitsUntil("the range is left", NavigationIsFree);
    ASSERT_NO_FATAL_FAILURE(Runs());
}
