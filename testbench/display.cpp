#include "testbench/display.h"

#include <algorithm>
#include <cmath>

namespace ombrix::bench {
namespace {

constexpr double kTimeConstantMicros = 70'000;
constexpr double kNoiseCounts = 0.6;

}  // namespace

void Display::Aim(double counts, Micros now)
{
    const double shown = At(now);
    m_from = std::isfinite(shown) ? shown : 0;
    m_target = counts;
    m_since = now;
}

void Display::Jump(double counts, Micros now)
{
    m_from = m_target = counts;
    m_since = now;
}

double Display::At(Micros now) const
{
    if (!std::isfinite(m_target) || m_from == m_target)
        return m_target;
    const double age = static_cast<double>(std::max<Micros>(now - m_since, 0));
    return m_target + (m_from - m_target) * std::exp(-age / kTimeConstantMicros);
}

std::string DisplayText(double counts, int decimals)
{
    if (!(std::fabs(counts) < kLargestCount + 0.5))
        return (counts < 0 ? "-" : " ") + std::string(kOverloadText);
    const long value = std::lround(std::nearbyint(counts));
    std::string digits = std::to_string(std::labs(value));
    const auto places = static_cast<std::size_t>(decimals);
    if (digits.size() <= places)
        digits.insert(0, places + 1 - digits.size(), '0');
    digits.insert(digits.size() - places, ".");
    return (value < 0 ? "-" : " ") + digits;
}

double DisplayNoise(Dice &dice)
{
    return dice.Between(-kNoiseCounts, kNoiseCounts);
}

}  // namespace ombrix::bench
