#include "calibration/rtd_current.h"

#include <gtest/gtest.h>

namespace ombrix::test {
namespace {

struct StepRow {
    std::int32_t word;
    float desired, reading;
    std::int32_t after;
    bool limited;
};

constexpr StepRow kSteps[] = {
    {32768, 13564, 13562, 32792, false}, {32768, 13564, 13566, 32744, false}, {32768, 13564, 13558, 32842, false},
    {32768, 13564, 13570, 32694, false}, {65535, 13564, 13562, 65535, true},  {3, 13564, 13570, 0, true},
    {32768, 13564, 13564, 32768, false}, {32768, 13564, 0, 65535, true},      {32768, 13564, 16240, 0, true},
    {21159, 13564, 13561, 21196, false}, {65511, 13564, 13562, 65535, false}, {24, 13564, 13566, 0, false},
};

TEST(RtdCurrent, MovesByTwelveAndAQuarterForEachCountAndStopsAtTheEndsOfTheWord)
{
    for (const StepRow &row : kSteps) {
        const RtdStep step = StepRtdCurrent(row.word, row.desired, row.reading);
        EXPECT_EQ(step.word, row.after) << row.word << " " << row.reading;
        EXPECT_EQ(step.limited, row.limited) << row.word << " " << row.reading;
    }
}

TEST(RtdCurrent, TakesADesiredReadingWithoutItsPoint)
{
    struct {
        const char *setting, *text;
        float counts;
    } constexpr kRows[] = {{"1356.4", "1356.4", 13564}, {"1356.0", "1356.0", 13560}, {"32.0", "32.0", 320},
                           {"-12.5", "-12.5", -125},    {"1400", "1356.4", 13564},   {"0.0", "0.0", 0},
                           {"", "1356.4", 13564},       {"20.57", "20.5", 205},      {"12345.6", "1356.4", 13564},
                           {"1-3.5", "1356.4", 13564},  {"warm.", "1356.4", 13564}};
    for (const auto &row : kRows) {
        EXPECT_EQ(RtdDesiredFrom(row.setting), row.text) << row.setting;
        EXPECT_EQ(RtdCounts(row.text), row.counts);
    }
    EXPECT_EQ(RtdCounts(" 1356.1"), 13561);
}

}  // namespace
}  // namespace ombrix::test
