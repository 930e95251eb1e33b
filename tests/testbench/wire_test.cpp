#include "testbench/wire.h"

#include <gtest/gtest.h>

namespace ombrix::bench {
namespace {

TEST(Wire, LetsEachByteTakeItsTimeAt9600Baud)
{
    Wire wire;
    wire.Put("abc", 1000);
    EXPECT_EQ(wire.NextDue(), 1000 + 1042);
    EXPECT_EQ(wire.Take(1000 + 1041), "");
    EXPECT_EQ(wire.Take(1000 + 1042), "a");
    EXPECT_EQ(wire.NextDue(), 1000 + 2 * 1042);
    EXPECT_EQ(wire.Take(1000 + 3 * 1042), "bc");
    EXPECT_EQ(wire.NextDue(), std::nullopt);
}

TEST(Wire, SendsWhatIsPutInLaterBehindWhatIsStillOnTheWay)
{
    Wire wire;
    wire.Put("ab", 0);
    wire.Put("c", 1000);
    EXPECT_EQ(wire.Take(3 * 1042 - 1), "ab");
    EXPECT_EQ(wire.Take(3 * 1042), "c");
}

TEST(Wire, RestsBeforeEachByteWithAGap)
{
    Wire wire;
    wire.Put("ab", 0, 50'000);
    EXPECT_EQ(wire.Take(51'041), "");
    EXPECT_EQ(wire.Take(51'042), "a");
    EXPECT_EQ(wire.Take(102'083), "");
    EXPECT_EQ(wire.Take(102'084), "b");
}

TEST(Wire, IsFreeAtOnceWhenItWasCleared)
{
    Wire wire;
    wire.Put("lost", 0);
    wire.Clear();
    EXPECT_TRUE(wire.IsEmpty());
    wire.Put("a", 0);
    EXPECT_EQ(wire.NextDue(), 1042);
}

}  // namespace
}  // namespace ombrix::bench
