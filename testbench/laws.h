// How a meter's reading follows from its input, its words and its hidden truth.
//
// A reading is told in natural counts: what the display shows with a scale of 1. 200 mV is 20000 on the 200 mV range,
// a temperature is in tenths of a degree. The words act so:
//
// - A gain word, as word + 229376, is a factor; the unit's ideal word makes it 1. Ranges with two gain words (25 and
//   31) take the product of both.
// - An offset word adds counts; the ideal word adds none. Word 26 acts on every range that has no offset word of its
//   own, so a ground that is off moves the other ranges by less than half a count once it is calibrated. No gain word
//   acts on another range. On AC boards a span turns about the input of the ground step, so neither moves the other.
// - A resistance thermometer's gain acts on the ohms, before they become degrees: near 700 degrees a reading moves
//   1.55 times as far as the word.
#pragma once

#include "testbench/signal.h"
#include "testbench/unit.h"

namespace ombrix::bench {

/// The meter's parts, and what the operator does to them by hand.
struct Hardware {
    int board = 0;
    Unit unit;
    bool dcJumper = false;        ///< AC boards: steady inputs are read too
    double ratioReading = 16390;  ///< of the bridge on the terminals, with a right board
};

/// The counts that the display setup words stand at while a zero of this board is calibrated.
double OffsetStepScale(int board);

/// Reading in natural counts on a range code; an infinity, with the input's sign, beyond the range.
double NaturalCounts(const Hardware &hardware, const Words &words, int code, const Signal &signal);

/// What an ideal board reads; the same conditions.
double IdealCounts(int board, int code, const Signal &signal);

/// True when the configuration fits the range: a TC board reads voltages and temperatures under different codes.
bool ReadsRange(int board, const Words &words, int code);

// The groups of the counter's board.
constexpr double kVfUnity = 1048576;  ///< a gain of 1
/// Index of a range code 81, 91, A1, otherwise -1.
int VfRangeOfCode(int code);
/// Highest word of the group.
int VfWordOfRange(int range);
struct VfGroup {
    double gain = 0;
    double offset = 0;  ///< counts
};
VfGroup VfGroupAt(const Words &words, int range);
std::int32_t SignedOfHex6(std::string_view hex);

}  // namespace ombrix::bench
