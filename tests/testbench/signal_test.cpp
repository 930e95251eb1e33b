#include "testbench/signal.h"

#include <gtest/gtest.h>

#include "model/range_records.h"
#include "testbench/boards.h"

namespace ombrix::bench {
namespace {

struct ValueRow {
    const char *text;
    double number;
    const char *unit;
    double hertz;  // -1: not told
};

TEST(Value, IsTakenApartAsTheStationWritesIt)
{
    constexpr ValueRow kRows[] = {
        {"200 mV", 0.2, "V", -1},         {"-200 mV", -0.2, "V", -1},
        {"+11 V", 11, "V", -1},           {"+5.5 V", 5.5, "V", -1},
        {"2 V, 300 Hz", 2, "V", 300},     {"0 V, 0 Hz", 0, "V", 0},
        {"2 V, 10 KHz", 2, "V", 10000},   {"1.8 mA, 300 Hz", 0.0018, "A", 300},
        {"20 KOHM", 20000, "OHM", -1},    {"345.28 OHM", 345.28, "OHM", -1},
        {"0 CEL", 0, "CEL", -1},          {"1356.4 FAR", 1356.4, "FAR", -1},
        {"17.475 mV", 0.017475, "V", -1},
    };
    for (const ValueRow &row : kRows) {
        const auto value = ParseValue(row.text);
        ASSERT_TRUE(value) << row.text;
        EXPECT_DOUBLE_EQ(value->number, row.number) << row.text;
        EXPECT_EQ(value->unit, row.unit) << row.text;
        EXPECT_EQ(value->hertz.value_or(-1), row.hertz) << row.text;
    }
}

TEST(Value, IsNoneWithoutAFiniteNumberOrAKnownUnit)
{
    for (const char *text : {"", "200", "mV", "200mV", "two V", "200 W", "2 V, fast", "2 V, 300 V", "2 V, 3 Hz, 4 Hz",
                             "4e9999 MOhm", "2 V, 4e6571 kHz"})
        EXPECT_FALSE(ParseValue(text)) << text;
}

TEST(Value, IsUnderstoodForEveryStepOfEveryBoard)
{
    for (int board = 0; board < board::kCount; ++board)
        for (const RangeRecord &record : RecordsOfBoard(board))
            EXPECT_TRUE(*record.value == 0 || ParseValue(record.value)) << record.value;
}

TEST(SignalText, TellsWhatStandsOnTheTerminals)
{
    EXPECT_EQ(SignalText({}), "open");
    EXPECT_EQ(SignalText({Quantity::Volts, 0.2, 0, 0}), "200 mV");
    EXPECT_EQ(SignalText({Quantity::Volts, -660, 0, 0}), "-660 V");
    EXPECT_EQ(SignalText({Quantity::Amps, 0.0018, 300, 0}), "1.8 mA, 300 Hz");
    EXPECT_EQ(SignalText({Quantity::Ohms, 20000, 0, 0}), "20 kOhm");
    EXPECT_EQ(SignalText({Quantity::Thermocouple, 0, 0, 'J'}), "thermocouple J 0 degC");
}

}  // namespace
}  // namespace ombrix::bench
