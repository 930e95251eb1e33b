// The arithmetic of a meter in ratio mode: its reading is the signal over an excitation. Pure, in 32-bit floats.
#pragma once

#include <string>

namespace ombrix {

struct RatioWord {
    float value = 0;       ///< of the word, with its fraction
    std::string word;      ///< four hexadecimal digits
    bool limited = false;  ///< held at a limit, or not to be had: then it is what it was
};

/// The ground correction from the readings at +11 V and at +5.5 V; signed.
RatioWord CorrectRatioOffset(float ground, float at11, float at5);
/// The reference divider correction from the reading at +10 V; unsigned.
RatioWord CorrectRatioGain(float divider, float target, float reading);

/// The word as a number.
float RatioGroundOf(const std::string &hex);
float RatioDividerOf(const std::string &hex);

}  // namespace ombrix
