#include "platform/text.h"

#include <gtest/gtest.h>

#include <limits>

using namespace ombrix;

TEST(Val, TakesTheNumberAtTheStart)
{
    EXPECT_EQ(Val("200 mV"), 200);
    EXPECT_EQ(Val("+11 V"), 11);
    EXPECT_EQ(Val("-.5"), -0.5);
    EXPECT_EQ(Val("345.28 OHM"), 345.28);
    EXPECT_EQ(Val("1 2 3"), 123) << "blanks inside a number are skipped";
    EXPECT_EQ(Val("  7"), 7);
}

TEST(Val, IsZeroWithoutANumber)
{
    for (const char *text : {"", "STOP", "-", ".", "+.", "mV", "E5"})
        EXPECT_EQ(Val(text), 0) << text;
}

TEST(Val, TakesAnExponentOnlyWhenDigitsFollow)
{
    EXPECT_EQ(Val("2.0000E-01"), 0.2);
    EXPECT_EQ(Val("1.0000E05"), 100000);
    EXPECT_EQ(Val("1.0000E+05"), 100000);
    EXPECT_EQ(Val("1.5D2"), 150);
    EXPECT_EQ(Val("0 CEL"), 0);
    EXPECT_EQ(Val("5 EUR"), 5);
    EXPECT_EQ(Val("5E"), 5);
    EXPECT_EQ(Val("5E-"), 5);
}

TEST(Val, HoldsNumbersBeyondTheRange)
{
    EXPECT_EQ(Val("1E999"), std::numeric_limits<double>::max());
    EXPECT_EQ(Val("-1E999"), std::numeric_limits<double>::lowest());
    EXPECT_EQ(Val("1E-999"), 0);
}

TEST(Format, RoundsHalfAwayFromZeroOnTheDecimalValue)
{
    EXPECT_EQ(Format(0.25, 1), "0.3");
    EXPECT_EQ(Format(-0.25, 1), "-0.3");
    EXPECT_EQ(Format(18.25, 1), "18.3");
    EXPECT_EQ(Format(17.475, 1), "17.5");
    EXPECT_EQ(Format(2.675, 2), "2.68");
    EXPECT_EQ(Format(99.95, 1), "100.0");
    EXPECT_EQ(Format(0.05, 1), "0.1");
    EXPECT_EQ(Format(0.04, 1), "0.0");
    EXPECT_EQ(Format(0.06, 1), "0.1");
    EXPECT_EQ(Format(0.006, 1), "0.0");
}

TEST(Format, TellsWhatIsNoNumber)
{
    EXPECT_EQ(Format(std::numeric_limits<double>::infinity(), 2), "Inf");
    EXPECT_EQ(Format(-std::numeric_limits<float>::infinity(), 2), "-Inf");
    EXPECT_EQ(Format(std::numeric_limits<float>::quiet_NaN(), 0), "NaN");
}

TEST(Format, GivesAZeroNoSign)
{
    EXPECT_EQ(Format(-0.04, 1), "0.0");
    EXPECT_EQ(Format(-0.0, 1), "0.0");
    EXPECT_EQ(Format(0.0, 0), "0");
}

TEST(Format, TakesSevenDigitsOfAFloat)
{
    EXPECT_EQ(Format(3.296f, 4), "3.2960");
    EXPECT_EQ(Format(9.549014f, 4), "9.5490");
    EXPECT_EQ(Format(31.74889f, 4), "31.7489");
    EXPECT_EQ(Format(0.1f, 9), "0.100000000");
}

TEST(Format, PrintsWholeNumbersWithoutAPoint)
{
    EXPECT_EQ(Format(1000.0, 0), "1000");
    EXPECT_EQ(Format(0.5, 0), "1");
    EXPECT_EQ(Format(9.5, 0), "10");
}

TEST(FormatSparse, LeavesOutDigitsThatSayNothing)
{
    EXPECT_EQ(FormatSparse(-22.0f, 1), "-22.");
    EXPECT_EQ(FormatSparse(0.5f, 1), ".5");
    EXPECT_EQ(FormatSparse(-0.5f, 1), "-.5");
    EXPECT_EQ(FormatSparse(1.8f, 3), "1.8");
    EXPECT_EQ(FormatSparse(100.0f, 1), "100.");
    EXPECT_EQ(FormatSparse(0.0f, 1), ".");
    EXPECT_EQ(FormatSparse(0.0f, 0), "");
    EXPECT_EQ(FormatSparse(-120.0f, 0), "-120");
}

TEST(FormatExponent, WritesTheSignOfTheExponentOnlyWhenNegative)
{
    EXPECT_EQ(FormatExponent(0.2), "2.0000E-01");
    EXPECT_EQ(FormatExponent(2), "2.0000E00");
    EXPECT_EQ(FormatExponent(0), "0.0000E00");
    EXPECT_EQ(FormatExponent(660), "6.6000E02");
    EXPECT_EQ(FormatExponent(20000), "2.0000E04");
    EXPECT_EQ(FormatExponent(-0.01), "-1.0000E-02");
    EXPECT_EQ(FormatExponent(1356.4), "1.3564E03");
    EXPECT_EQ(FormatExponent(391.391), "3.9139E02");
    EXPECT_EQ(FormatExponent(9.99996), "1.0000E01");
}

TEST(RoundHalfEven, TakesTiesToTheEvenInteger)
{
    EXPECT_EQ(RoundHalfEven(18.5), 18);
    EXPECT_EQ(RoundHalfEven(19.5), 20);
    EXPECT_EQ(RoundHalfEven(24.5), 24);
    EXPECT_EQ(RoundHalfEven(-0.5), 0);
    EXPECT_EQ(RoundHalfEven(-101.5), -102);
}

TEST(RoundHalfEven, HoldsAtTheLimitsOf32Bits)
{
    EXPECT_EQ(RoundHalfEven(2e10), 2147483647);
    EXPECT_EQ(RoundHalfEven(-2e10), -2147483647 - 1);
    EXPECT_EQ(RoundHalfEven(std::numeric_limits<double>::infinity()), 2147483647);
    EXPECT_EQ(RoundHalfEven(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(HexText, KeepsTheLastDigitsOfThePattern)
{
    EXPECT_EQ(HexText(0, 4), "0000");
    EXPECT_EQ(HexText(5, 4), "0005");
    EXPECT_EQ(HexText(127, 4), "007F");
    EXPECT_EQ(HexText(-1, 4), "FFFF");
    EXPECT_EQ(HexText(-211, 4), "FF2D");
    EXPECT_EQ(HexText(-32768, 4), "8000");
    EXPECT_EQ(HexText(65535, 4), "FFFF");
    EXPECT_EQ(HexText(256, 2), "00");
    EXPECT_EQ(Hex(0), "0");
    EXPECT_EQ(Hex(-1), "FFFFFFFF");
}

TEST(HexValue, ReadsTheLeadingDigitsOfEitherCase)
{
    EXPECT_EQ(HexValue("52A7"), 0x52A7u);
    EXPECT_EQ(HexValue("ff"), 255u);
    EXPECT_EQ(HexValue("1G"), 1u);
    EXPECT_EQ(HexValue(""), 0u);
    EXPECT_EQ(HexValue("xyz"), 0u);
}

TEST(Text, TrimsLeftsRightsAndSplits)
{
    EXPECT_EQ(Trim(" \t a b \r\n"), "a b");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Left("abc", 2), "ab");
    EXPECT_EQ(Right("abc", 2), "bc");
    EXPECT_EQ(Right("abc", 5), "abc");
    EXPECT_EQ(Split("a,,b", ','), (std::vector<std::string>{"a", "", "b"}));
    EXPECT_EQ(Split("", ','), (std::vector<std::string>{""}));
    EXPECT_TRUE(IsHexText("0F"));
    EXPECT_FALSE(IsHexText("0f"));
    EXPECT_FALSE(IsHexText(""));
    EXPECT_TRUE(Holds("2 V, 300 Hz", "Hz"));
}
