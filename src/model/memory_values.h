// What an image of a meter's setup says, as the value panel shows it: one label for each setting.
//
// An image is hexadecimal text, two digits a byte; places in it count from 1. The first 120 places are the setup, the
// same in a .dpm file and in what is shown of a factory image.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace ombrix {

// ---- the values, each of the digits at its place ----

/// Two digits; the top bit of the byte is a hundreds digit: "D1" is "151".
std::string Serial1(std::string_view digits);
/// Two digits: three flags and the second digit, "." when the lowest flag is set: "21" is "0011".
std::string Serial2(std::string_view digits);
/// Two digits: four flags and the second digit: "36" is "00116".
std::string FilterBits(std::string_view digits);
/// Six digits: sign and place of the point in the first one, then the number: "3003E8" is "10.00".
std::string ScaleNumber(std::string_view digits);
/// Six digits, the top bit a sign: "804E20" is "-20000", "800000" is "-0".
std::string SignMagnitude24(std::string_view digits);
/// Six digits, two's complement: "FFFC18" is "-1000".
std::string Signed24(std::string_view digits);
/// Two digits: three bits and two bits as numbers, then three flags: "A5" is "50101".
std::string ConfigDigits(std::string_view digits);

// ---- the labels ----

constexpr int kValueLabels = 26;
constexpr std::size_t kShownDigits = 120;

struct ValueLabel {
    std::string text;
    bool bold = false;
    bool shown = true;
};
using ValueLabels = std::array<ValueLabel, kValueLabels>;

/// lblMemVal(0..25) without values: each cut back to its name.
ValueLabels EmptyValueLabels();
/// The same with the values of an image, for the board in work and the tab in front; without them when it has fewer
/// than 120 digits.
ValueLabels DescribeImage(const std::string &image, int board, int tab);

/// `count` digits of an image from a place on; "" where it has none.
std::string DigitsAt(std::string_view image, std::size_t place, std::size_t count);
/// The image is that of an extended meter.
bool IsExtended(std::string_view image);

}  // namespace ombrix
