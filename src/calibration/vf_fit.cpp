#include "calibration/vf_fit.h"

#include "links/meter_simulator.h"
#include "model/nvm_map.h"

namespace ombrix {
namespace {

struct VfInput {
    float low;  ///< mA or V
    float high;
    float zero;  ///< where the display shows 0
    float countsPerUnit;
};
constexpr VfInput kInputs[kVfRanges] = {{4, 20, 4, 6250}, {0, 1, 0, 100000}, {0, 10, 0, 10000}};

constexpr std::size_t kHalf = 6;  // digits of the offset, and of the gain
constexpr float kUnity = 1048576.0f;
constexpr float kGainEnd = 16.0f;
constexpr float kMostGainWord = 16777210.0f;
constexpr float kLeastOffset = -8388608.0f;
constexpr float kMostOffset = 8388607.0f;
constexpr float kNoiseOverLimit = 5.0f;
constexpr float kNoiseDecay = 0.8f;

bool HoldOffset(float &offset)
{
    if (offset >= kLeastOffset && offset <= kMostOffset)
        return false;
    offset = offset < kLeastOffset ? kLeastOffset : kMostOffset;
    return true;
}

bool HoldGain(float &gain)
{
    if (gain < kGainEnd)
        return false;
    gain = kMostGainWord / kUnity;
    return true;
}

}  // namespace

int VfWordOf(int range)
{
    return 195 + 3 * range;
}

VfCalibration VfCalibrationOf(std::string_view hex)
{
    return {static_cast<float>(Hex6ToLong(hex.substr(kHalf))) / kUnity,
            static_cast<float>(Hex6ToSigned(hex.substr(0, kHalf))), std::string(hex)};
}

bool IsGoodVfGain(float gain)
{
    return gain >= 0.5f && gain <= 2.0f;
}

VfFit FitVf(int range, const VfCalibration &before, float low, float high)
{
    const VfInput &input = kInputs[range];
    const float slope = (high - low) / (input.high - input.low);
    const float start = low - slope * input.low;
    VfFit fit;
    fit.now.gain = before.gain * input.countsPerUnit / slope;
    fit.now.offset = -(slope * input.zero + start - before.offset) * fit.now.gain / before.gain;
    const bool offsetHeld = HoldOffset(fit.now.offset);
    const bool gainHeld = HoldGain(fit.now.gain);
    fit.outOfRange = offsetHeld || gainHeld;
    fit.now.hex = FloatToHex6Signed(fit.now.offset) + FloatToHex6(fit.now.gain * kUnity);
    return fit;
}

void StirVfSimulator(int limit)
{
    SimNoise = static_cast<float>(limit) + kNoiseOverLimit;
}

void CalmVfSimulator()
{
    SimNoise = SimNoise * kNoiseDecay;
}

}  // namespace ombrix
