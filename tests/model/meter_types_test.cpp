#include "model/meter_types.h"

#include "session/state.h"

#include <gtest/gtest.h>

namespace ombrix::test {
namespace {

struct ByteRow {
    int board;
    const char *found;
    const char *toBe;
    int type;
};

constexpr ByteRow kBytes[] = {
    {kTemp, "60", "60", 0},  {kTemp, "65", "60", 0},  {kTemp, "41", "41", 1}, {kTemp, "40", "41", 1},
    {kTc, "65", "60", 0},    {kTc, "4B", "41", 1},    {kTc, "60", "60", 0},   {kRtd, "50", "50", 0},
    {kRtd, "57", "50", 0},   {kRtd, "E0", "E1", 1},   {kRtd, "E1", "E1", 1},  {kRtd, "60", "60", -1},
    {kTemp, "00", "00", -1}, {kTemp, "50", "50", -1},
};

TEST(MeterTypes, AByteOfTheSameFirstDigitBecomesTheTypesOwnAndAnyOtherStays)
{
    for (const ByteRow &row : kBytes) {
        SCOPED_TRACE(std::to_string(row.board) + " " + row.found);
        EXPECT_EQ(BoardByteAsItIsToBe(row.board, row.found), row.toBe);
        EXPECT_EQ(MeterTypeOfByte(row.board, row.toBe), row.type);
    }
    EXPECT_EQ(BoardByteAsItIsToBe(kTemp, ""), "");
    EXPECT_EQ(MeterTypeOfByte(kTemp, "65"), -1) << "not corrected yet";
}

}  // namespace
}  // namespace ombrix::test
