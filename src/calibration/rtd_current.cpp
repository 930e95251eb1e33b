#include "calibration/rtd_current.h"

#include "calibration/number_text.h"
#include "links/meter_simulator.h"
#include "platform/text.h"

#include <algorithm>

namespace ombrix {
namespace {

constexpr char kDefault[] = "1356.4";
constexpr float kWordPerCount = 12.25f;
constexpr std::int64_t kMostWord = 65535;
constexpr float kFirstNoise = 20.0f;
constexpr float kNoiseDecay = 0.8f;

}  // namespace

std::string RtdDesiredFrom(const std::string &setting)
{
    return NormaliseNumberText(Holds(setting, ".") ? setting : kDefault, kDefault, 1, 4);
}

float RtdCounts(const std::string &text)
{
    std::string digits = text;
    std::erase(digits, '.');
    return static_cast<float>(Val(digits));
}

RtdStep StepRtdCurrent(std::int32_t word, float desired, float reading)
{
    const std::int64_t wanted =
        std::int64_t{word} + RoundHalfEven(static_cast<double>((desired - reading) * kWordPerCount));
    const std::int64_t held = std::clamp(wanted, std::int64_t{0}, kMostWord);
    return {static_cast<std::int32_t>(held), held != wanted};
}

void AimRtdSimulator(const std::string &desired)
{
    SimOneDecimal = true;
    SimNominal = static_cast<float>(Val(desired));
    SimNoise = kFirstNoise;
}

void CalmRtdSimulator()
{
    SimNoise = SimNoise * kNoiseDecay;
}

}  // namespace ombrix
