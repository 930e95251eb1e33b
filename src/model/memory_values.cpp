#include "model/memory_values.h"

#include "model/nvm_map.h"
#include "model/range_names.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

#include <cstdint>
#include <iterator>
#include <span>

namespace ombrix {
namespace {

constexpr std::size_t kBoardPlace = 35;
constexpr std::size_t kRangePlace = 55;
constexpr std::size_t kExtendedPlace = 15;

int DigitValue(char digit)
{
    return static_cast<int>(HexValue(std::string_view(&digit, 1)));
}

// "1" for each weight that is in the value, which loses it, "0" for the others.
std::string Flags(int &value, std::span<const int> weights)
{
    std::string flags;
    for (const int weight : weights) {
        const bool set = value >= weight;
        flags += set ? '1' : '0';
        value -= set ? weight : 0;
    }
    return flags;
}

std::string TwoAndTwo(std::string_view digits)
{
    return std::string(digits.substr(0, 2)) + " " + std::string(digits.substr(2));
}

std::string AsTheyStand(std::string_view digits)
{
    return std::string(digits);
}

std::string Decimal(std::string_view digits)
{
    return std::to_string(HexValue(digits));
}

// Labels whose value follows from the digits at one place. What else a label needs, DescribeImage adds.
struct ValueRow {
    int label;
    const char *name;
    std::size_t place;
    std::size_t count;
    std::string (*decode)(std::string_view digits);
};

constexpr ValueRow kValueRows[] = {
    {2, "SER_1 = ", 47, 2, Serial1},
    {3, "SER_2 = ", 45, 2, Serial2},
    {4, "OPTIONS = ", 49, 2, AsTheyStand},
    {5, "SCALE = ", 103, 6, ScaleNumber},
    {6, "OFFSET = ", 97, 6, Signed24},
    {7, "SETPT1 = ", 115, 6, Signed24},
    {8, "SETPT2 = ", 109, 6, Signed24},
    {9, "LO IN = ", 91, 6, SignMagnitude24},
    {10, "LO RD = ", 85, 6, SignMagnitude24},
    {11, "HI IN = ", 79, 6, SignMagnitude24},
    {12, "HI RD = ", 73, 6, SignMagnitude24},
    {13, "AN LO = ", 67, 6, SignMagnitude24},
    {14, "AN HI = ", 61, 6, SignMagnitude24},
    {15, "ALCNF = ", 57, 4, TwoAndTwo},
    {16, "SETUP = ", 53, 2, AsTheyStand},
    {17, "FILTER = ", 51, 2, FilterBits},
    {18, "LOCKOUT = ", 41, 4, TwoAndTwo},
    {19, "SYSDP = ", 39, 2, Decimal},
    {20, "ANSET = ", 37, 2, AsTheyStand},
    {21, "CONFIG = ", 33, 2, ConfigDigits},
    {22, "DEVIAT1 = ", 27, 6, SignMagnitude24},
    {23, "DEVIAT2 = ", 21, 6, SignMagnitude24},
    {24, "RD0 = ", 1, 6, SignMagnitude24},
};
constexpr const char *kBoardName = "S/C TYPE = ";

enum Label { kBoardLabel = 0, kRangeLabel = 1, kGateTimeLabel = 20, kRd0Label = 24, kExtendedLabel = 25 };

// The board that an image is shown as; -1 for an unknown code.
int BoardShown(std::string_view image, int tab)
{
    const std::string code = DigitsAt(image, kBoardPlace, 2);
    if (code == "01") {
        const char range = image[kRangePlace - 1];
        return range == '4' || (range == '6' && tab == kTabTc) ? kTemp : kDc;
    }
    constexpr struct {
        const char *code;
        int board;
    } kCodes[] = {{"00", kVf}, {"02", kAc}, {"12", kAc2}, {"22", kAc3}, {"03", kLc}, {"31", kTc}, {"41", kRtd}};
    for (const auto &known : kCodes)
        if (code == known.code)
            return known.board;
    return -1;
}

}  // namespace

std::string Serial1(std::string_view digits)
{
    const int first = DigitValue(digits.at(0));
    return (first >= 8 ? "1" + std::to_string(first - 8) : "0" + HexText(first, 1)) + digits.at(1);
}

std::string Serial2(std::string_view digits)
{
    constexpr int kWeights[] = {8, 4, 2};
    int rest = DigitValue(digits.at(0));
    const std::string flags = Flags(rest, kWeights);
    return flags + digits.at(1) + (rest > 0 ? "." : "");
}

std::string FilterBits(std::string_view digits)
{
    constexpr int kWeights[] = {8, 4, 2, 1};
    int rest = DigitValue(digits.at(0));
    return Flags(rest, kWeights) + digits.at(1);
}

std::string ScaleNumber(std::string_view digits)
{
    int point = DigitValue(digits.at(0));
    const std::string sign = point >= 8 ? "-" : "";
    point = point % 8 < 1 ? 1 : point % 8;
    const auto least = static_cast<std::size_t>(point);
    std::string text = Decimal(digits.substr(1));
    if (text.size() < least)
        text = Right("000000" + text, least);
    if (point > 1)
        text.insert(text.size() - (least - 1), ".");
    return sign + text;
}

std::string SignMagnitude24(std::string_view digits)
{
    constexpr std::int32_t kSign = 0x800000;
    const std::int32_t value = Hex6ToLong(digits);
    return value >= kSign ? "-" + std::to_string(value - kSign) : std::to_string(value);
}

std::string Signed24(std::string_view digits)
{
    return std::to_string(Hex6ToSigned(digits));
}

std::string ConfigDigits(std::string_view digits)
{
    constexpr int kWeights[] = {4, 2, 1};
    const auto byte = static_cast<int>(HexValue(digits));
    int rest = byte % 8;
    return std::to_string(byte / 32) + std::to_string(byte / 8 % 4) + Flags(rest, kWeights);
}

ValueLabels EmptyValueLabels()
{
    ValueLabels labels;
    labels[kBoardLabel].text = kBoardName;
    for (const ValueRow &row : kValueRows)
        labels[static_cast<std::size_t>(row.label)].text = row.name;
    labels[kExtendedLabel] = {"(extended)", false, false};
    return labels;
}

ValueLabels DescribeImage(const std::string &image, int board, int tab)
{
    ValueLabels labels = EmptyValueLabels();
    if (image.size() < kShownDigits)
        return labels;
    for (const ValueRow &row : kValueRows)
        labels[static_cast<std::size_t>(row.label)].text += row.decode(DigitsAt(image, row.place, row.count));
    const int shown = BoardShown(image, tab);
    labels[kBoardLabel].text += BoardName(shown);
    labels[kBoardLabel].bold = shown == board;
    labels[kRangeLabel].text = DescribeRangeCode(board, DigitsAt(image, kRangePlace, 2)).text;
    if (tab == kTabVf)
        labels[kGateTimeLabel].text = "GATE TIME = 3.0";
    if (tab == kTabTc || tab == kTabVf)
        labels[kRd0Label].text = "";
    labels[kExtendedLabel].shown = (shown == kDc || shown == kLc) && IsExtended(image);
    return labels;
}

std::string DigitsAt(std::string_view image, std::size_t place, std::size_t count)
{
    return place < 1 || place > image.size() ? "" : std::string(image.substr(place - 1, count));
}

bool IsExtended(std::string_view image)
{
    return DigitsAt(image, kExtendedPlace, 1) == "1";
}

}  // namespace ombrix
