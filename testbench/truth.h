// How good a calibration is: what only the bench knows.
#pragma once

#include <string>
#include <vector>

#include "testbench/laws.h"

namespace ombrix::bench {

/// One range or trim of a board. Errors are display counts, tenths of a degree on temperatures, mV or uA on the analog
/// output, all without noise and with the words that are now in the memory.
struct RangeTruth {
    int position = -1;     ///< of its step button; -1 when it has none of its own
    std::string title;     ///< of its step, "REF (200 mV)"; "Ratio Offset", "Quasi-Diode J" where a step has several
    int word = 0;          ///< that it trims; the highest of a group
    std::string wordHex;   ///< as it stands
    std::string idealHex;  ///< what it should be, as the other words stand
    double error = 0;      ///< reading less target; of both polarities the mean of their sizes less target
    bool companionsAgree = true;  ///< words that are written together are equal
};

/// All truths of a board, ranges first, in the order of their steps.
std::vector<RangeTruth> TruthsOf(const Hardware &hardware, const Words &words);

/// Truths of the analog output of a DPM or a counter, with the current offset point in uA.
std::vector<RangeTruth> AnalogTruths(const Hardware &hardware, const Words &words, bool counter, int currentPoint);

/// One line: title, word, ideal, error.
std::string TruthText(const RangeTruth &truth);

}  // namespace ombrix::bench
