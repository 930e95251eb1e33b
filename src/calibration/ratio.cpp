#include "calibration/ratio.h"

#include "platform/text.h"

#include <algorithm>
#include <cstdint>

namespace ombrix {
namespace {

constexpr float kOffsetFactor = 10534804.0f;
constexpr float kGainBase = 229869.0f;  // not the one of the ranges

RatioWord Held(float value, float min, float max)
{
    const float held = std::clamp(value, min, max);
    return {held, HexText(RoundHalfEven(static_cast<double>(held)), 4), held != value};
}

// Without a correction the word stays.
RatioWord NotToBeHad(float value)
{
    return {value, HexText(RoundHalfEven(static_cast<double>(value)), 4), true};
}

}  // namespace

RatioWord CorrectRatioOffset(float ground, float at11, float at5)
{
    const float denominator = 5.5f * at11 - 11.0f * at5;
    if (denominator == 0.0f)
        return NotToBeHad(ground);
    return Held(ground - (at5 - at11) * kOffsetFactor / denominator, -32768.0f, 32767.0f);
}

RatioWord CorrectRatioGain(float divider, float target, float reading)
{
    if (reading == 0.0f)
        return NotToBeHad(divider);
    return Held(target / reading * divider + (target - reading) / reading * kGainBase, 0.0f, 65535.0f);
}

float RatioGroundOf(const std::string &hex)
{
    return static_cast<float>(static_cast<std::int16_t>(HexValue(hex)));
}

float RatioDividerOf(const std::string &hex)
{
    return static_cast<float>(HexValue(hex));
}

}  // namespace ombrix
