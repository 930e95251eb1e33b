// The current that a Temp meter drives through a thermometer: one word, moved by a fixed slope.
#pragma once

#include <cstdint>
#include <string>

namespace ombrix {

constexpr int kRtdCurrentWord = 30;

/// The text that a desired reading becomes: one decimal, four digits in front of it; 1356.4 for a setting without a
/// point.
std::string RtdDesiredFrom(const std::string &setting);
/// A reading or a desired one without its point, in display counts: "1356.4" is 13564.
float RtdCounts(const std::string &text);

struct RtdStep {
    std::int32_t word = 0;
    bool limited = false;  ///< it would have gone beyond 0..65535
};
/// 12.25 counts of the word for each display count that the reading lies below the desired one.
RtdStep StepRtdCurrent(std::int32_t word, float desired, float reading);

// ---- the simulator ----

/// About a temperature, with one decimal and the first noise.
void AimRtdSimulator(const std::string &desired);
/// Four fifths of the noise after each reading.
void CalmRtdSimulator();

}  // namespace ombrix
