#include "calibration/engine_fixture.h"

#include <cstdlib>

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
    StopRequested = true;
    Shows({"7.9990"});
    EXPECT_EQ(TakeReadingOrStop(0), "STOP");
    EXPECT_EQ(ReadsTaken(), 0U);
    EXPECT_FALSE(StopArmed);
    EXPECT_EQ(clock.Elapsed(), 1000);
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
