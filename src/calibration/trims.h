// What is computed for the trimmers and select-on-test resistors of the AC boards: pure, in 32-bit floats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ombrix {

/// A resistor code has a decimal digit for each resistor to add: thousands 10M, hundreds 4.3M, tens 2M, ones 1M.
struct TrimResistors {
    int r13 = 0;
    int r14 = 0;
};

/// Row of the resistor table: the first threshold above the size of the relative error. The last row has no resistors.
std::size_t TrimRowOf(float size);
constexpr std::size_t kTrimError = 13;

/// What to add for the relative error of the negative reading; nothing when no resistor mends it.
std::optional<TrimResistors> ResistorsForError(float error);
/// From the readings at + and - input; nothing also when there is no positive one.
std::optional<TrimResistors> ResistorsForReadings(float plus, float minus);

/// "10M and 4.3M"; "Nothing" for 0.
std::string ResistorCodeText(int code);

/// The reading to which both polarities are adjusted, a whole number of counts.
std::int32_t RecommendedReading(float plus, float minus);

}  // namespace ombrix
