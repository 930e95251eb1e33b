#include "testbench/meter_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ombrix::bench {
namespace {

TEST(FrameReader, GathersBytesUpToTheCr)
{
    FrameReader reader;
    EXPECT_FALSE(reader.Take('*', 10));
    EXPECT_FALSE(reader.Take('1', 20));
    const auto frame = reader.Take('\r', 30);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->text, "*1");
    EXPECT_EQ(frame->began, 10);
    EXPECT_FALSE(reader.Take('*', 40));
    EXPECT_EQ(reader.Take('\r', 50)->began, 40);
}

TEST(ParseFrame, ReadsEveryCommand)
{
    const auto read = *ParseFrame("*1X16DZ").command;
    EXPECT_EQ(read.meter, '1');
    EXPECT_EQ(read.letter, 'X');
    EXPECT_EQ(read.count, 1);
    EXPECT_EQ(read.address, 0x6D);
    EXPECT_TRUE(read.goOn);

    const auto write = *ParseFrame("*2W305000000100004").command;
    EXPECT_EQ(write.meter, '2');
    EXPECT_EQ(write.count, 3);
    EXPECT_EQ(write.data, "000000100004");
    EXPECT_FALSE(write.goOn);

    EXPECT_EQ(ParseFrame("*1GZ32").command->count, 35);
    EXPECT_EQ(ParseFrame("*1F68F004E20600000").command->data, "004E20600000");
    for (const char *text : {"*1A1", "*1B1", "*1C0", "*1CZ", "*1V6"})
        EXPECT_TRUE(ParseFrame(text).command) << text;
}

struct TroubleRow {
    const char *text;
    const char *trouble;
};

TEST(ParseFrame, TellsWhatAMeterCantUnderstand)
{
    constexpr TroubleRow kRows[] = {
        {"", "no frame"},
        {"1B1", "no frame"},
        {"x*1B1", "stray bytes"},
        {"*1B", "cut-off frame"},
        {"*1B2", "unknown command"},
        {"*1B11", "unknown command"},
        {"*1Q1", "unknown command"},
        {"*1X1", "cut-off memory"},
        {"*1X06D", "count beyond 35"},
        {"*1Xa6D", "count beyond 35"},
        {"*1X1G0", "isn't hexadecimal"},
        {"*1X66DA", "1 characters of data where 0"},
        {"*1X305", ""},
        {"*1X905", "below address 0"},
        {"*1W3050000", "4 characters of data where 12"},
        {"*1W3050000001000", "10 characters of data where 12"},
        {"*1W1050000Z", ""},
        {"*1W10500g0", "upper-case"},
        {"*1W10500a0", "upper-case"},
        {"*1F18F00Z", "3 characters of data where 2"},
    };
    for (const TroubleRow &row : kRows) {
        const ParsedFrame parsed = ParseFrame(row.text);
        EXPECT_EQ(parsed.command.has_value(), *row.trouble == 0) << row.text;
        EXPECT_THAT(parsed.trouble, testing::HasSubstr(row.trouble)) << row.text;
    }
}

TEST(Readable, ShowsBytesThatAreNoText)
{
    EXPECT_EQ(Readable("*1B1\r\n"), "*1B1\\r\\n");
    EXPECT_EQ(Readable(std::string("\x01\xFF", 2)), "\\x01\\xFF");
}

}  // namespace
}  // namespace ombrix::bench
