// Whole sessions: each board, Establish and each of its range steps, on each route and with several units.

#include "journeys/page_loops.h"
#include "model/range_tables.h"
#include "session/state.h"
#include "support/bench_station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

using Journey = std::tuple<int, Route, unsigned>;

class BoardJourney : public testing::TestWithParam<Journey>
{
};

std::string NameOfJourney(const testing::TestParamInfo<Journey> &info)
{
    return BoardName(std::get<0>(info.param)) + NameOf(std::get<1>(info.param)) + "Seed" +
           std::to_string(std::get<2>(info.param));
}

}  // namespace

TEST_P(BoardJourney, EveryRangeStepEndsWithinTwoCountsAfterThreeRounds)
{
    BenchStation station(std::apply(WiringOf, GetParam()));
    ASSERT_TRUE(station.Establishes()) << ScriptedOperator::Text("lblStatus");
    // The board byte that Establish writes may turn the meter into another one; the chooser is the way back.
    ASSERT_EQ(SCType, std::get<0>(GetParam()));
    for (int position : RangePositions()) {
        SCOPED_TRACE(StepName(StepIdAtPosition(position)));
        ASSERT_TRUE(station.Calibrates(position, 3)) << station.person.Trouble();
        EXPECT_LE(std::abs(station.bench.RemainingError(position)), 2.0);
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
    EXPECT_FALSE(station.bench.CalibratorNow().operating) << "ended in standby";
}

const auto kBoardsOnBench = testing::Values(kDc, kAc, kAc2, kAc3, kLc, kTc, kTemp, kRtd);

// A unit is what a calibration has to find, so there are three; the route changes what carries the same commands.
INSTANTIATE_TEST_SUITE_P(Boards, BoardJourney,
                         testing::Combine(kBoardsOnBench, testing::Values(Route::Direct), testing::Values(1u, 2u, 3u)),
                         NameOfJourney);
INSTANTIATE_TEST_SUITE_P(OtherRoutes, BoardJourney,
                         testing::Combine(kBoardsOnBench, testing::Values(Route::Uut, Route::Manual),
                                          testing::Values(4u)),
                         NameOfJourney);
