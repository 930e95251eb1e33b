#include "calibration/corrections.h"

#include <cmath>
#include <limits>

namespace ombrix {
namespace {

constexpr float kGainBase = 229376.0f;  // the gain register with a word of 0
constexpr int kMostReads = 20;
constexpr int kEqualReads = 3;
constexpr int kMostReversals = 3;

}  // namespace

float RatioCorrection(float word, float reading, float target, float fraction, float remainder)
{
    const float denominator = fraction * reading / target + remainder;
    if (denominator == 0.0f)
        return std::numeric_limits<float>::infinity();
    return (word + kGainBase) / denominator - kGainBase;
}

float SlopeCorrection(float word, float error, float slope)
{
    return error * slope + word;
}

LimitedWord LimitWord(float value, std::int32_t min, std::int32_t max)
{
    // Compared before the conversion: what a near zero reading gives is beyond any integer.
    const float rounded = std::nearbyint(value);
    if (std::isnan(rounded) || rounded > static_cast<float>(max))
        return {max, true};
    if (rounded < static_cast<float>(min))
        return {min, true};
    return {static_cast<std::int32_t>(rounded), false};
}

void Settling::Take(std::int32_t reading)
{
    const std::int32_t previous = m_current;
    m_current = reading;
    ++m_reads;
    if (reading == previous) {
        ++m_stable;
        return;
    }
    const int direction = reading < previous ? 1 : 0;
    if (direction != m_direction)
        ++m_reversals;
    m_direction = direction;
    m_stable = 1;
}

bool Settling::Done() const
{
    return m_reads >= kMostReads || m_stable >= kEqualReads || m_reversals >= kMostReversals;
}

}  // namespace ombrix
