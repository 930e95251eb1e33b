#include "bench_fixture.h"
#include "support/positions.h"

namespace ombrix::bench {
namespace {

using test::RangePositions;

constexpr int kBoards[] = {board::kDc,  board::kAc,  board::kLc,   board::kTc,
                           board::kAc2, board::kAc3, board::kTemp, board::kRtd};

class RangeCalibration : public StationOnBench, public testing::WithParamInterface<int>
{
};

TEST_P(RangeCalibration, EndsWithinTwoCountsOnEveryRangeInOrder)
{
    for (const unsigned seed : {1u, 7u, 42u}) {
        Stands({.board = GetParam(), .seed = seed});
        Establishes();
        for (const int position : RangePositions())
            Calibrates(position, 3);
        for (const int position : RangePositions())
            EXPECT_LE(std::fabs(bench->RemainingError(position)), 2.0)
                << BoardName(SCType) << ", seed " << seed << ": " << TruthText(bench->TruthOf(position));
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        CloseLinks();
    }
}

TEST_P(RangeCalibration, EndsWithinTwoCountsOnEachRangeAlone)
{
    Stands({.board = GetParam()});
    for (const int position : RangePositions()) {
        Stands({.board = GetParam(), .seed = 11});
        Establishes();
        EXPECT_GT(std::fabs(bench->RemainingError(position)), 4.0) << "nothing to calibrate";
        Calibrates(position, 3);
        EXPECT_LE(std::fabs(bench->RemainingError(position)), 2.0)
            << BoardName(SCType) << ": " << TruthText(bench->TruthOf(position)) << "\n"
            << bench->LastWords();
        CloseLinks();
    }
}

INSTANTIATE_TEST_SUITE_P(Boards, RangeCalibration, testing::ValuesIn(kBoards),
                         [](const auto &info) { return BoardName(info.param); });

}  // namespace
}  // namespace ombrix::bench
