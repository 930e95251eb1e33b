#include "model/analog_words.h"

#include <gtest/gtest.h>

#include <set>

using namespace ombrix;

TEST(AnalogWords, HaveNamesTitlesAndPlaces)
{
    const struct {
        const char *name, *title;
        int offset;
    } rows[] = {{"VO", "VOffset", 13},     {"VG", "VGain", 9},         {"CO", "COffset", 5},
                {"CG", "CGain", 1},        {"BPM", "BP_Minus10V", 21}, {"BPP", "BP_Plus10V", 17},
                {"DVO", "DD_VOffset", 37}, {"DVG", "DD_VGain", 33},    {"DCO", "DD_COffset", 29},
                {"DCG", "DD_CGain", 25}};
    static_assert(std::size(rows) == kAnalogWords);
    for (int i = 0; i < kAnalogWords; ++i) {
        EXPECT_EQ(AnalogWordName(i), rows[i].name);
        EXPECT_EQ(AnalogWordTitle(i), rows[i].title);
        EXPECT_EQ(AnalogWordOffset(i), rows[i].offset);
        EXPECT_EQ(AnalogWordIndex(rows[i].name), i);
        EXPECT_EQ(AnalogWordIndex(rows[i].title), -1) << "only short names";
    }
}

TEST(AnalogWords, FillTheImageWithoutAGap)
{
    std::set<int> places;
    for (int i = 0; i < kAnalogWords; ++i)
        places.insert(AnalogWordOffset(i));
    EXPECT_EQ(places, (std::set<int>{1, 5, 9, 13, 17, 21, 25, 29, 33, 37}));
}

TEST(AnalogWords, HaveNothingOutside)
{
    for (int index : {-1, 10}) {
        EXPECT_EQ(AnalogWordName(index), "");
        EXPECT_EQ(AnalogWordTitle(index), "");
        EXPECT_EQ(AnalogWordOffset(index), 0);
    }
    EXPECT_EQ(AnalogWordIndex(""), -1);
    EXPECT_EQ(AnalogWordIndex("vo"), -1);
}
