#include "platform/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace ombrix;

namespace {

std::string AskedLocale()
{
    const char *asked = std::getenv("LC_ALL");
    return asked ? asked : "";
}

std::string PrintedByTheCLibrary(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

}  // namespace

// Keeps the runs under another locale honest: a comma must really stand where a careless print would show it.
TEST(Locale, OfTheCLibraryIsTheOneAskedFor)
{
    const bool german = AskedLocale() == "de_DE.UTF-8";
    EXPECT_STREQ(std::localeconv()->decimal_point, german ? "," : ".") << "LC_ALL is " << AskedLocale();
    EXPECT_EQ(PrintedByTheCLibrary(1.25), german ? "1,25" : "1.25");
}

TEST(Locale, DoesNotReachTheStationsNumbers)
{
    EXPECT_EQ(Val("1.25 V"), 1.25);
    EXPECT_EQ(Val("1,25"), 1) << "a comma ends a number";
    EXPECT_EQ(Format(1.25, 2), "1.25");
    EXPECT_EQ(Format(12345.5F, 1), "12345.5") << "no sign between thousands";
    EXPECT_EQ(FormatExponent(0.2), "2.0000E-01");
}
