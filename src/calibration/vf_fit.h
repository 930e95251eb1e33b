// The counter's inputs: a gain and an offset for each range, fitted through a low and a high reading. Arithmetic in
// 32-bit floats, one rounding for each operation.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

constexpr int kVfRanges = 3;
constexpr int kVfHighCounts = 100000;  ///< that the high input is to show; the low one shows 0

/// Words of a range: highest one, three in all.
int VfWordOf(int range);

/// What a meter's three words say.
struct VfCalibration {
    float gain = 0;
    float offset = 0;  ///< counts
    std::string hex;   ///< twelve digits: offset, then gain
};
VfCalibration VfCalibrationOf(std::string_view hex);
/// A gain from 0.5 to 2.0, both included.
bool IsGoodVfGain(float gain);

struct VfFit {
    VfCalibration now;
    bool outOfRange = false;  ///< gain or offset was held at its limit
};
/// The line through both readings. `high` lies above `low`.
VfFit FitVf(int range, const VfCalibration &before, float low, float high);

/// What the simulator's readings scatter at first: more than either limit allows.
void StirVfSimulator(int limit);
/// Four fifths of it after each high reading.
void CalmVfSimulator();

}  // namespace ombrix
