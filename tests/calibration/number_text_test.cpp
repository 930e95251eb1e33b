#include "calibration/number_text.h"

#include <gtest/gtest.h>

namespace ombrix::test {
namespace {

struct TextRow {
    const char *typed, *oneDecimal, *twoDecimals;
};

constexpr TextRow kTexts[] = {
    {"1356.4", "1356.4", "1356.40"},
    {"1356", "1356.0", "1356.00"},
    {"1356.47", "1356.4", "1356.47"},
    {"0.0", "0.0", "0.00"},
    {"-.5", "-0.5", "-0.50"},
    {"", "0.0", "0.00"},
    {"0012.3", "12.3", "12.30"},
    {"-", "0.0", "0.00"},
    {"12345.6", "7.7", "7.7"},
    {"-0.04", "0.0", "-0.04"},
    {".", "0.0", "0.00"},
    {"00000.1", "0.1", "0.10"},
    {"-0", "0.0", "0.00"},
    {"9999.9", "9999.9", "9999.90"},
    {"1-2", "7.7", "7.7"},
    {"12.3-", "7.7", "7.7"},
    {"--1", "7.7", "7.7"},
    {"1.2.3", "7.7", "7.7"},
    {"warm", "7.7", "7.7"},
};

TEST(NumberText, HasExactlyItsDecimalsAndNoMoreDigitsThanItsPlace)
{
    for (const TextRow &row : kTexts) {
        EXPECT_EQ(NormaliseNumberText(row.typed, "7.7", 1, 4), row.oneDecimal) << row.typed;
        EXPECT_EQ(NormaliseNumberText(row.typed, "7.7", 2, 4), row.twoDecimals) << row.typed;
    }
}

}  // namespace
}  // namespace ombrix::test
