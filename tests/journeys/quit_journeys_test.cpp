// The end of the program at any moment: what stood on the terminals is taken off.

#include "session/state.h"
#include "support/bench_station.h"

#include <gtest/gtest.h>

#include <string>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int k2Volts = 4;  // position on the DC board

// Milliseconds from `start` until the calibrator's line carried a text, -1 when it never did.
std::int64_t HeardAfter(const bench::Bench &bench, const std::string &text, std::int64_t start)
{
    for (const auto &entry : bench.Transcript())
        if (entry.fromStation && entry.line == bench::Line::Calibrator && entry.time >= start &&
            entry.text.find(text) != std::string::npos)
            return (entry.time - start) / 1000;
    return -1;
}

class QuitAt : public testing::TestWithParam<int>
{
};

}  // namespace

TEST_P(QuitAt, PutsTheCalibratorInStandbyWithin1200MillisecondsAndEndsWithin4Seconds)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    std::int64_t clicked = 0;
    station.person.Clicks(StepButton(k2Volts)).WaitsFor("cmdReady").Clicks("cmdReady").Waits(GetParam());
    station.person.Does([&] { clicked = NowMicros(); }).Clicks("cmdQuit");
    station.person.Runs();
    const std::int64_t ended = (NowMicros() - clicked) / 1000;
    EXPECT_TRUE(Quitting);
    const std::int64_t standby = HeardAfter(station.bench, "OUT 0 V, 0 Hz ; STBY ; *WAI", clicked);
    EXPECT_GE(standby, 0);
    EXPECT_LE(standby, 1200);
    EXPECT_GE(HeardAfter(station.bench, "LOCAL", clicked), standby);
    EXPECT_LE(ended, 4000);
}

INSTANTIATE_TEST_SUITE_P(InARound, QuitAt,
                         testing::Values(0, 1, 100, 450, 600, 1100, 1600, 2100, 2600, 3000, 3700, 4300, 5000, 6100,
                                         7000, 8000, 9000, 10000, 12000, 14000, 16000, 18000, 20000, 25000, 30000,
                                         40000));
