#include "calibration/step_fixture.h"

#include <cstdlib>
#include <stdexcept>

namespace ombrix::test {
namespace {

class Display : public OnLine
{
protected:
    void SetUp() override
    {
        OnLine::SetUp();
        Opens(kDc, 4);  // 2 V, with turnover
    }

    std::size_t ReadsTaken() { return Meter().Writes().size(); }
};

struct SettleRow {
    std::vector<std::string> shows;
    const char *settled;
    std::size_t reads;
};

std::vector<std::string> Rising()
{
    std::vector<std::string> texts;
    for (int i = 100; i < 120; ++i)
        texts.push_back(std::to_string(i) + ".");
    texts.push_back("777.");  // never read
    return texts;
}

TEST_F(Display, SettlesOnThreeEqualReadingsTheThirdReversalOrTheTwentiethRead)
{
    const SettleRow rows[] = {
        {{"500.", "500.", "500."}, "500", 3},
        {{"100.", "101.", "102.", "103.", "103.", "103."}, "103", 6},
        {{"100.", "101.", "100.", "101.", "100."}, "100", 5},
        {{"100.", "99.", "100.", "99.", "100."}, "100", 5},
        {{"100.", "101.", "101.", "100.", "100.", "101.", "101.", "100."}, "100", 8},
        {{"100.", "100.", "101.", "101.", "101."}, "101", 5},
        {Rising(), "119", 20},
        {{"5.", "4.", "3.", "2.", "2.", "2."}, "2", 6},
    };
    for (const SettleRow &row : rows) {
        SCOPED_TRACE(row.shows.front() + " to " + row.settled);
        Meter().Forget();
        clock.Restart();
        Shows(row.shows);
        EXPECT_EQ(ReadSettledReading(), row.settled);
        EXPECT_EQ(ReadsTaken(), row.reads);
        EXPECT_EQ(clock.Elapsed(), 300 * static_cast<std::int64_t>(row.reads - 1));
    }
}

TEST_F(Display, IsReadAgainUntilItHoldsAPoint)
{
    Shows({"", "----", "8.0000", "8.0000", "8.0000"});
    EXPECT_EQ(ReadSettledReading(), "80000");
    EXPECT_EQ(ReadsTaken(), 5U);
}

TEST_F(Display, SettlesNoMoreAfterAStop)
{
    Shows({"1.", "2.", "3.", "4.", "5."});
    CallAfter(650, [] { Abort = true; });
    EXPECT_EQ(ReadSettledReading(), "");
    EXPECT_EQ(ReadsTaken(), 3U);
}

TEST_F(Display, OfTheMomentOfAStopIsNoReading)
{
    Meter().onWrite = [this](const std::string &) {
        CallAfter(5, [this] {
            Meter().Says("500.\r");
            Abort = ReadsTaken() == 3;
        });
    };
    EXPECT_EQ(ReadSettledReading(), "");
    EXPECT_EQ(ReadsTaken(), 3U);
}

TEST_F(Display, OfASilentMeterIsWaitedForUntilAStop)
{
    CallAfter(60'000, [] { Abort = true; });
    EXPECT_EQ(TakeReading(0), "");
    EXPECT_GE(clock.Elapsed(), 60'000);
    EXPECT_LE(clock.Elapsed(), 61'000);
    EXPECT_EQ(step.Readings[0], 0);
}

TEST_F(Display, ThatShowsNoReadingIsToldAfterThreeSecondsOnceForEachReasonAndWhenOneComes)
{
    std::vector<std::pair<DisplayState, std::int64_t>> told;
    CallAfter(10'500, [this] { Shows({"----"}); });
    CallAfter(20'500, [this] { Shows({"5.", "5.", "5."}); });
    EXPECT_EQ(TakeReading(0, [&](DisplayState now) { told.emplace_back(now, clock.Elapsed() / 1000); }), "+5");
    using Told = std::pair<DisplayState, std::int64_t>;
    EXPECT_THAT(told, testing::ElementsAre(Told(DisplayState::Silent, 3), Told(DisplayState::OverRange, 11),
                                           Told(DisplayState::Silent, 12), Told(DisplayState::Reads, 21)));
}

TEST_F(Display, ThatReadsInTimeTellsNothing)
{
    CallAfter(1500, [this] { Shows({"5.", "5.", "5."}); });
    EXPECT_EQ(TakeReading(0, [](DisplayState) { FAIL(); }), "+5");
}

TEST_F(Display, OnATurnoverStepCarriesItsSign)
{
    Shows({"7.9990", "7.9990", "7.9990", "-7.9996", "-7.9996", "-7.9996"});
    EXPECT_EQ(TakeReading(0), "+79990");
    EXPECT_EQ(TakeReading(1), "-79996");
    EXPECT_EQ(step.Readings[0], 79990);
    EXPECT_EQ(step.Readings[1], -79996);
    EXPECT_EQ(step.ReadingsF[1], -79996.0f);
}

TEST_F(Display, WithoutTurnoverIsShownAsItReads)
{
    Opens(kDc, 2);  // GND
    Shows({"13.", "13.", "13.", "-13.", "-13.", "-13."});
    EXPECT_EQ(TakeReading(0), "13");
    EXPECT_EQ(TakeReading(0), "-13");
    EXPECT_EQ(step.Readings[0], -13);
}

TEST_F(Display, IsReadOnceWithoutSettlingInALiveLoop)
{
    ArmStop();
    Shows({"7.9990", "8.0001"});
    EXPECT_EQ(TakeReadingOrStop(0), "+79990");
    EXPECT_EQ(TakeReadingOrStop(0), "+80001");
    EXPECT_EQ(step.Readings[0], 80001);
    EXPECT_TRUE(StopArmed);
    EXPECT_EQ(ReadsTaken(), 2U);
}

TEST_F(Display, IsNotReadAnyMoreOnceAStopIsRequested)
{
    ArmStop();
    RequestStop();
    Shows({"7.9990"});
    EXPECT_EQ(TakeReadingOrStop(0), "STOP");
    EXPECT_EQ(ReadsTaken(), 0U);
    EXPECT_FALSE(StopArmed);
    EXPECT_EQ(clock.Elapsed(), 1000) << "counted from the click";
}

TEST_F(Display, OfASilentMeterEndsTheLiveLoopAndLeavesTheLastReading)
{
    ArmStop();
    step.Readings[0] = 80001;
    EXPECT_EQ(TakeReadingOrStop(0), "STOP");
    EXPECT_EQ(ReadsTaken(), 1U);
    EXPECT_FALSE(StopArmed);
    EXPECT_EQ(step.Readings[0], 80001);
}

TEST_F(Display, EndsTheLiveLoopAfterAnAbortToo)
{
    ArmStop();
    Abort = true;
    Shows({"7.9990"});
    EXPECT_EQ(TakeReadingOrStop(0), "STOP");
    EXPECT_EQ(ReadDisplayOrStop(), "STOP");
    EXPECT_EQ(ReadDisplayDigitsOrStop(), "STOP");
    EXPECT_EQ(ReadsTaken(), 0U);
}

TEST_F(Display, WithOrWithoutItsPointIsTriedUntilAReadingComes)
{
    ArmStop();
    Shows({"garbage", "135.6", "garbage", "135.7"});
    EXPECT_EQ(ReadDisplayOrStop(), "135.6");
    EXPECT_EQ(ReadDisplayDigitsOrStop(), "1357");
    EXPECT_EQ(ReadsTaken(), 4U);
}

TEST_F(Display, OfASilentMeterIsTriedUntilTheStop)
{
    ArmStop();
    CallAfter(5500, [] { RequestStop(); });
    EXPECT_EQ(ReadDisplayOrStop(), "STOP");
    EXPECT_FALSE(StopArmed);
    EXPECT_GE(clock.Elapsed(), 6500);
    EXPECT_LE(clock.Elapsed(), 8500);
}

struct TurnoverRow {
    std::int32_t plus, minus, target;
    const char *mean;
    const char *error;
};

TEST_F(Display, TellsTurnoverAndError)
{
    const TurnoverRow rows[] = {
        {80003, -79994, 80000, "4", "-2"},  {80003, -79995, 80000, "4", "-1"},      {80001, -79999, 80000, "1", "0"},
        {80000, -80000, 80000, "0", "0"},   {79998, -80001, 80000, "-2", "0"},      {79997, -80000, 80000, "-2", "-2"},
        {26391, -26402, 26400, "-6", "-4"}, {-80000, 80000, 80000, "0", "-160000"},
    };
    for (const TurnoverRow &row : rows) {
        step.Readings[0] = row.plus;
        step.Readings[1] = row.minus;
        step.TargetCounts = row.target;
        EXPECT_EQ(MeanReadingText(), row.mean) << row.plus << " " << row.minus;
        EXPECT_EQ(ReadingErrorText(), row.error) << row.plus << " " << row.minus;
    }
}

TEST_F(Display, WithoutTurnoverTellsTheErrorOfThePositiveReadingAlone)
{
    Opens(kDc, 2);
    step.Readings[0] = -13;
    step.Readings[1] = 500;
    EXPECT_EQ(ReadingErrorText(), "-13");
    Opens(kAc, 1);
    step.Readings[0] = 4010;
    EXPECT_EQ(ReadingErrorText(), "10");
}

class Followed : public Display
{
protected:
    void SetUp() override
    {
        Display::SetUp();
        live.read = [] { return TakeReadingOrStop(0); };
        live.silenceEnds = true;
    }

    Following Follows()
    {
        return FollowReading(live, [this](const std::string &text) { shown.push_back(text); });
    }

    LiveReading live;
    std::vector<std::string> shown;
};

TEST_F(Followed, IsShownEveryThreeHundredMillisecondsUntilASecondAfterTheStop)
{
    Shows({"7.9990", "8.0001", "8.0002", "8.0003"});
    CallAfter(1000, [] { RequestStop(); });
    EXPECT_EQ(Follows(), Following::Stopped);
    EXPECT_THAT(shown, testing::ElementsAre("+79990", "+80001", "+80002"));
    EXPECT_EQ(clock.Elapsed(), 2000);
    EXPECT_FALSE(StopArmed);
}

TEST_F(Followed, EndsByTheMetersSilenceASecondLater)
{
    Shows({"7.9990"});
    EXPECT_EQ(Follows(), Following::Silent);
    EXPECT_THAT(shown, testing::ElementsAre("+79990"));
    EXPECT_EQ(clock.Elapsed(), 300 + 300 + 1000 + 1000) << "two looks, the wait for a reply, its own second";
    EXPECT_FALSE(StopArmed);
}

TEST_F(Followed, AsksAgainOnSilenceWhereThatIsNoEndAndStillHearsAClick)
{
    live.silenceEnds = false;
    CallAfter(5000, [this] { Shows({"7.9990"}); });
    CallAfter(7300, [] { RequestStop(); });
    EXPECT_EQ(Follows(), Following::Stopped);
    EXPECT_THAT(shown, testing::ElementsAre("+79990"));
    EXPECT_EQ(clock.Elapsed(), 8300) << "a second from the click";
    EXPECT_FALSE(StopArmed);
}

TEST_F(Followed, HearsAClickInTheSecondAfterASilentTryToo)
{
    live.silenceEnds = false;
    CallAfter(1800, [] { RequestStop(); });
    EXPECT_EQ(Follows(), Following::Stopped);
    EXPECT_EQ(clock.Elapsed(), 2800);
    EXPECT_FALSE(StopArmed);
}

TEST_F(Followed, EndsWithTheStopChannelClosedWhateverItsReaderThrows)
{
    live.read = []() -> std::string { throw std::runtime_error("Input/output error"); };
    EXPECT_THROW(Follows(), std::runtime_error);
    EXPECT_FALSE(StopArmed);
}

TEST_F(Followed, ByTheSimulatorAsksItInstead)
{
    HardwareMode = RealTimeDelays = false;
    live.simulated = [] { return std::string("+5"); };
    CallAfter(700, [] { RequestStop(); });
    EXPECT_EQ(Follows(), Following::Stopped);
    EXPECT_THAT(shown, testing::ElementsAre("+5", "+5"));
    EXPECT_EQ(clock.Elapsed(), 900) << "no second to wait out";
}

struct FarRow {
    std::int32_t target, plus, minus;
    bool turnover, far;
};

TEST_F(Display, IsFarFromItsTargetBeyondATenthOrAThousandCounts)
{
    constexpr FarRow kRows[] = {
        {80000, 88000, 0, false, false},    {80000, 88001, 0, false, true},     {80000, 71999, 0, false, true},
        {0, 1000, 0, false, false},         {0, -1001, 0, false, true},         {80000, 80000, -80000, true, false},
        {80000, 80000, -71999, true, true}, {80000, -80000, 80000, true, true}, {80000, 80000, 80000, true, true},
        {12920, 12920, -14213, true, true},
    };
    for (const FarRow &row : kRows) {
        SCOPED_TRACE(std::to_string(row.plus) + " " + std::to_string(row.minus));
        step.TargetCounts = row.target;
        step.TurnoverStep = row.turnover;
        step.Readings[0] = row.plus;
        step.Readings[1] = row.minus;
        EXPECT_EQ(ReadingIsFar(), row.far);
    }
}

class SimulatedDisplay : public OnSimulator
{
};

TEST_F(SimulatedDisplay, IsAimedAtTheTargetOfEachPolarity)
{
    Opens(kDc, 4);
    SimNoise = 0;
    EXPECT_EQ(TakeReading(0), "+80000");
    EXPECT_EQ(TakeReading(1), "-80000");
    EXPECT_EQ(SimNominal, -80000.0f);
    EXPECT_EQ(clock.Elapsed(), 0) << "one read, no settling";
}

TEST_F(SimulatedDisplay, StaysInsideItsNoise)
{
    Opens(kDc, 4);
    for (int i = 0; i < 200; ++i) {
        TakeReading(0);
        EXPECT_LE(std::abs(step.Readings[0] - 80000), 20);
    }
}

TEST_F(SimulatedDisplay, GivesNothingAfterAnAbort)
{
    Opens(kDc, 4);
    Abort = true;
    EXPECT_EQ(TakeReading(0), "");
}

}  // namespace
}  // namespace ombrix::test
