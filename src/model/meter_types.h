// The two kinds of meter that a Temp, TC or RTD board can be, told apart by the board byte in word 16.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace ombrix {

struct MeterType {
    const char *name;
    const char *code;  ///< its board byte, two hex digits
};
constexpr int kMeterTypes = 2;

/// What the operator can choose from.
const std::array<MeterType, kMeterTypes> &MeterTypesOf(int board);

/// Which of them a board byte is; -1 none.
int MeterTypeOfByte(int board, std::string_view byte);

/// The board byte as it is to be: the code with the same first digit, and the byte itself when no code has it.
std::string BoardByteAsItIsToBe(int board, std::string_view byte);

}  // namespace ombrix
