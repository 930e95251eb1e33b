#include "model/memory_values.h"

#include <gtest/gtest.h>

#include "model/images.h"
#include "model/init_image.h"
#include "model/nominals.h"
#include "session/state.h"

#include <array>
#include <span>
#include <string>

using namespace ombrix;

namespace {

struct Decoded {
    const char *digits;
    const char *shown;
};

constexpr Decoded kSerial1[] = {
    {"00", "000"}, {"0A", "00A"}, {"12", "012"}, {"7F", "07F"}, {"80", "100"},
    {"8F", "10F"}, {"99", "119"}, {"A1", "121"}, {"B3", "133"}, {"C0", "140"},
    {"D1", "151"}, {"DF", "15F"}, {"E7", "167"}, {"F0", "170"}, {"FF", "17F"},
};

constexpr Decoded kSerial2[] = {
    {"00", "0000"},  {"0A", "000A"},  {"10", "0000."}, {"1F", "000F."}, {"21", "0011"},
    {"32", "0012."}, {"43", "0103"},  {"54", "0104."}, {"65", "0115"},  {"76", "0116."},
    {"87", "1007"},  {"98", "1008."}, {"A9", "1019"},  {"BA", "101A."}, {"CB", "110B"},
    {"DC", "110C."}, {"ED", "111D"},  {"FE", "111E."}, {"FF", "111F."},
};

constexpr Decoded kFilters[] = {
    {"00", "00000"}, {"08", "00008"}, {"16", "00016"}, {"18", "00018"}, {"28", "00108"},
    {"36", "00116"}, {"37", "00117"}, {"38", "00118"}, {"4A", "0100A"}, {"5B", "0101B"},
    {"80", "10000"}, {"A7", "10107"}, {"FA", "1111A"}, {"FF", "1111F"},
};

constexpr Decoded kScales[] = {
    {"000000", "0"},        {"000001", "1"},         {"000005", "5"},         {"100000", "0"},
    {"100001", "1"},        {"100004", "4"},         {"10000A", "10"},        {"100064", "100"},
    {"1FFFFF", "1048575"},  {"200000", "0.0"},       {"200001", "0.1"},       {"200005", "0.5"},
    {"200064", "10.0"},     {"300001", "0.01"},      {"3003E8", "10.00"},     {"301234", "46.60"},
    {"400001", "0.001"},    {"404E20", "20.000"},    {"4FFFFF", "1048.575"},  {"500001", "0.0001"},
    {"5186A0", "10.0000"},  {"600001", "0.00001"},   {"700001", "0.000001"},  {"7FFFFF", "1.048575"},
    {"800000", "-0"},       {"800001", "-1"},        {"900001", "-1"},        {"900004", "-4"},
    {"A00005", "-0.5"},     {"B003E8", "-10.00"},    {"C00001", "-0.001"},    {"D00001", "-0.0001"},
    {"E00001", "-0.00001"}, {"F00001", "-0.000001"}, {"FFFFFF", "-1.048575"},
};

constexpr Decoded kSignMagnitudes[] = {
    {"000000", "0"},        {"000001", "1"},        {"00000F", "15"},       {"0003E8", "1000"},
    {"0007D0", "2000"},     {"004E20", "20000"},    {"0186A0", "100000"},   {"00FFFF", "65535"},
    {"010000", "65536"},    {"7FFFFF", "8388607"},  {"800000", "-0"},       {"800001", "-1"},
    {"8003E8", "-1000"},    {"804E20", "-20000"},   {"8186A0", "-100000"},  {"C00000", "-4194304"},
    {"FFB1E0", "-8368608"}, {"FFFC18", "-8387608"}, {"FFFFFE", "-8388606"}, {"FFFFFF", "-8388607"},
};

constexpr Decoded kSigned[] = {
    {"000000", "0"},        {"000001", "1"},        {"00000F", "15"},       {"0003E8", "1000"},
    {"0007D0", "2000"},     {"004E20", "20000"},    {"0186A0", "100000"},   {"00FFFF", "65535"},
    {"010000", "65536"},    {"7FFFFF", "8388607"},  {"800000", "-8388608"}, {"800001", "-8388607"},
    {"8003E8", "-8387608"}, {"804E20", "-8368608"}, {"8186A0", "-8288608"}, {"C00000", "-4194304"},
    {"FFB1E0", "-20000"},   {"FFFC18", "-1000"},    {"FFFFFE", "-2"},       {"FFFFFF", "-1"},
};

constexpr Decoded kConfigs[] = {
    {"00", "00000"}, {"01", "00001"}, {"02", "00010"}, {"04", "00100"}, {"07", "00111"}, {"08", "01000"},
    {"0F", "01111"}, {"10", "02000"}, {"18", "03000"}, {"1F", "03111"}, {"20", "10000"}, {"27", "10111"},
    {"3F", "13111"}, {"40", "20000"}, {"65", "30101"}, {"80", "40000"}, {"9C", "43100"}, {"A5", "50101"},
    {"E0", "70000"}, {"F8", "73000"}, {"FF", "73111"},
};

void ExpectDecoded(std::span<const Decoded> rows, std::string (*decode)(std::string_view))
{
    for (const Decoded &row : rows)
        EXPECT_EQ(decode(row.digits), row.shown) << row.digits;
}

using Texts = std::array<const char *, 25>;

// What the panel shows of a board's factory image.
struct Panel {
    int board;
    int tab;
    Texts texts;
};

// clang-format off
const Panel kPanels[] = {
    {kDc, kTabDc, {"S/C TYPE = DC", "DC 200 mV", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 3", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", "RD0 = 0"}},
    {kAc, kTabAc, {"S/C TYPE = AC", "RMS 200 mV", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 3", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", "RD0 = 0"}},
    {kAc2, kTabAc, {"S/C TYPE = AC2", "RMS 200 mV", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 3", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", "RD0 = 0"}},
    {kAc3, kTabAc, {"S/C TYPE = AC3", "RMS 200 mV", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 3", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", "RD0 = 0"}},
    {kLc, kTabLc, {"S/C TYPE = LC", "Strain 20 mV", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 4", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", "RD0 = 0"}},
    {kTc, kTabTc, {"S/C TYPE = TC", "J °F", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 2", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", ""}},
    {kTemp, kTabTc, {"S/C TYPE = Temp", "J °F", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 2", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", ""}},
    {kRtd, kTabTc, {"S/C TYPE = RTD", "DIN °F", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 4", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 20000", "HI RD = 20000", "AN LO = 0", "AN HI = 20000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 2", "ANSET = 05", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", ""}},
    {kVf, kTabVf, {"S/C TYPE = VF", "VF 4-20 mA", "SER_1 = 151", "SER_2 = 0011", "OPTIONS = 65", "SCALE = 1", "OFFSET = 0", "SETPT1 = 1000", "SETPT2 = 2000", "LO IN = 0", "LO RD = 0", "HI IN = 100000", "HI RD = 100000", "AN LO = 0", "AN HI = 100000", "ALCNF = 20 00", "SETUP = 00", "FILTER = 00116", "LOCKOUT = 00 00", "SYSDP = 1", "GATE TIME = 3.0", "CONFIG = 00000", "DEVIAT1 = 0", "DEVIAT2 = 0", ""}},
};
// clang-format on

constexpr const char *kMarkedImage = "0102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E"
                                     "1F202122232425262728292A2B2C2D2E2F303132333435363738393A3B3C"
                                     "3D3E3F404142434445464748494A4B4C4D4E4F505152535455565758595A";

class MemoryValues : public testing::Test
{
protected:
    void SetUp() override { InitNominals(); }
};

std::string With(std::string image, std::size_t place, const std::string &digits)
{
    return image.replace(place - 1, digits.size(), digits);
}

}  // namespace

TEST_F(MemoryValues, OfSerial1HaveTheTopBitAsHundreds)
{
    ExpectDecoded(kSerial1, Serial1);
}

TEST_F(MemoryValues, OfSerial2EndWithAPointWhenTheLowestFlagIsSet)
{
    ExpectDecoded(kSerial2, Serial2);
}

TEST_F(MemoryValues, OfTheFilterAreFourFlagsAndADigit)
{
    ExpectDecoded(kFilters, FilterBits);
}

TEST_F(MemoryValues, OfTheScaleHaveTheirPointWhereTheFirstDigitSays)
{
    ExpectDecoded(kScales, ScaleNumber);
}

TEST_F(MemoryValues, WithASignBitShowAMinusAlsoBeforeZero)
{
    ExpectDecoded(kSignMagnitudes, SignMagnitude24);
}

TEST_F(MemoryValues, OfTwosComplementAreSigned)
{
    ExpectDecoded(kSigned, Signed24);
}

TEST_F(MemoryValues, OfTheConfigurationAreTwoNumbersAndThreeFlags)
{
    ExpectDecoded(kConfigs, ConfigDigits);
}

TEST_F(MemoryValues, ScaleWithFirstDigits0And1ReadsAlike)
{
    EXPECT_EQ(ScaleNumber("000005"), ScaleNumber("100005"));
    EXPECT_NE(ScaleNumber("000005"), ScaleNumber("200005"));
}

TEST_F(MemoryValues, StandAtTheirPlacesOfAnImageInWhichEachByteIsItsNumber)
{
    constexpr Texts kTexts = {
        "S/C TYPE = AC2",   "???",
        "SER_1 = 018",      "SER_2 = 0007.",
        "OPTIONS = 19",     "SCALE = 2757.66",
        "OFFSET = 3224115", "SETPT1 = 3816252",
        "SETPT2 = 3618873", "LO IN = 3026736",
        "LO RD = 2829357",  "HI IN = 2631978",
        "HI RD = 2434599",  "AN LO = 2237220",
        "AN HI = 2039841",  "ALCNF = 1D 1E",
        "SETUP = 1B",       "FILTER = 0001A",
        "LOCKOUT = 15 16",  "SYSDP = 20",
        "ANSET = 13",       "CONFIG = 02001",
        "DEVIAT1 = 921360", "DEVIAT2 = 723981",
        "RD0 = 66051",
    };
    const ValueLabels labels = DescribeImage(With(kMarkedImage, 13, "00000000"), kDc, kTabDc);
    for (std::size_t label = 0; label < kTexts.size(); ++label)
        EXPECT_EQ(labels[label].text, kTexts[label]) << label;
    EXPECT_FALSE(labels[25].shown);
    EXPECT_FALSE(labels[0].bold);
}

TEST_F(MemoryValues, OfEveryFactoryImageAreThoseOfItsBoard)
{
    static_assert(std::size(kPanels) == 9);
    for (const Panel &panel : kPanels) {
        const std::string text = InitDisplayText(panel.board, DefaultInitImage(panel.board));
        const ValueLabels labels = DescribeImage(text, panel.board, panel.tab);
        for (std::size_t label = 0; label < panel.texts.size(); ++label)
            EXPECT_EQ(labels[label].text, panel.texts[label]) << panel.board << " label " << label;
        EXPECT_TRUE(labels[0].bold) << panel.board;
        EXPECT_FALSE(labels[25].shown) << panel.board;
    }
}

TEST_F(MemoryValues, WithoutAnImageAreNamesAlone)
{
    const ValueLabels empty = EmptyValueLabels();
    EXPECT_EQ(empty[0].text, "S/C TYPE = ");
    EXPECT_EQ(empty[1].text, "") << "it has no name";
    EXPECT_EQ(empty[20].text, "ANSET = ") << "whatever stood there before";
    EXPECT_EQ(empty[24].text, "RD0 = ");
    EXPECT_EQ(empty[25].text, "(extended)");
    EXPECT_FALSE(empty[25].shown);
    const ValueLabels brief = DescribeImage(std::string(119, '1'), kDc, kTabDc);
    for (std::size_t label = 0; label < empty.size(); ++label)
        EXPECT_EQ(brief[label].text, empty[label].text) << label;
}

TEST_F(MemoryValues, TellAnExtendedMeterOfTheDcAndTheLoadCellBoardOnly)
{
    for (const Panel &panel : kPanels) {
        const std::string text = With(InitDisplayText(panel.board, DefaultInitImage(panel.board)), 15, "1");
        EXPECT_EQ(DescribeImage(text, panel.board, panel.tab)[25].shown, panel.board == kDc || panel.board == kLc)
            << panel.board;
    }
}

TEST_F(MemoryValues, TellTheBoardInBoldWhenItIsTheOneInWork)
{
    const std::string text = InitDisplayText(kAc2, DefaultInitImage(kAc2));
    EXPECT_TRUE(DescribeImage(text, kAc2, kTabAc)[0].bold);
    EXPECT_FALSE(DescribeImage(text, kAc, kTabAc)[0].bold);
    EXPECT_EQ(DescribeImage(text, kAc, kTabAc)[0].text, "S/C TYPE = AC2");
}

TEST_F(MemoryValues, DescribeTheRangeByTheBoardInWork)
{
    const std::string text = InitDisplayText(kTemp, With(DefaultInitImage(kTemp), 163, "50"));
    EXPECT_EQ(DescribeImage(text, kTemp, kTabTc)[1].text, "4d °F");
    EXPECT_EQ(DescribeImage(text, kTc, kTabTc)[1].text, "???");
}
