// The meter's nonvolatile memory: names of its words and the encodings of their values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ombrix {

constexpr int kNvmRows = 35;

struct NvmRow {
    std::string address;  ///< "19", "1CL": an L marks the low byte
    std::string name;     ///< the meter's own name, "Spare" where it has none
};
/// Row 0..34 of the calibration block for the open tab and, on the TC tab, the board.
NvmRow NvmRowAt(int row, int calibTab, int board);

/// Words of a meter, from `word` downward, four digits each.
struct WordRun {
    int word;
    std::string text;
};

/// True for a text of exactly so many upper-case hexadecimal digits: a word has 4, a VF group 12.
bool IsWordText(std::string_view text, std::size_t digits = 4);

// 24-bit values, six hexadecimal digits.
std::int32_t Hex6ToLong(std::string_view hex);
std::int32_t Hex6ToSigned(std::string_view hex);
std::string LongToHex6(std::int32_t value);
std::string SignedToHex6(std::int32_t value);
std::string FloatToHex6(float value);
std::string FloatToHex6Signed(float value);
float Hex6ToFloat(std::string_view hex);
float Hex6ToFloatSigned(std::string_view hex);

}  // namespace ombrix
