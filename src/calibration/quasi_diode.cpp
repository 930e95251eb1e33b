#include "calibration/quasi_diode.h"

#include "calibration/corrections.h"
#include "links/meter_simulator.h"
#include "platform/text.h"

#include <cmath>

namespace ombrix {
namespace {

constexpr DiodeGroup kGroups[kDiodeGroups] = {{"J, K, E, N", "J", 3, 29, 28, 28432.0f},
                                              {"T, R, S", "T", 5, 45, 44, 28136.0f}};
constexpr float kGainPerDegree = 106.5f;
constexpr float kDegreesPerOffset = 0.003711f;
constexpr int kMostGain = 65535;
constexpr int kMostOffset = 32767;
constexpr float kMostDegrees = 25.0f;
constexpr float kFirstNoise = 2.0f;
constexpr float kNoiseDecay = 0.8f;

// The reading has moved since the click before, so the meter's own slope is known.
bool HasSecant(const DiodeWord &word, float reading)
{
    return !word.first && reading - word.readingBefore != 0.0f;
}

DiodeCorrection Take(DiodeWord &word, float reading, float value, LimitedWord limited)
{
    word.before = word.now;
    word.readingBefore = reading;
    word.now = static_cast<float>(limited.word);
    word.first = false;
    return {value, HexText(limited.word, 4), limited.limited};
}

}  // namespace

const DiodeGroup &DiodeGroupOf(int type)
{
    return kGroups[type == 1 ? 1 : 0];
}

DiodeCorrection CorrectDiodeGain(DiodeWord &gain, float nominal, float reading)
{
    const float value = HasSecant(gain, reading)
                            ? gain.now - reading * (gain.now - gain.before) / (reading - gain.readingBefore)
                            : reading * kGainPerDegree + nominal;
    return Take(gain, reading, value, LimitWord(value, 0, kMostGain));
}

DiodeCorrection CorrectDiodeOffset(DiodeWord &offset, float target, float reading)
{
    const float error = reading - target;
    const float value = HasSecant(offset, reading)
                            ? offset.now - error * (offset.now - offset.before) / (reading - offset.readingBefore)
                            : offset.now + error / kDegreesPerOffset;
    return Take(offset, reading, value, LimitWord(value, -kMostOffset, kMostOffset));
}

bool DiodeReadingIsOut(float reading)
{
    return std::fabs(reading) > kMostDegrees;
}

float HoldDiodeReading(float reading)
{
    return DiodeReadingIsOut(reading) ? std::copysign(kMostDegrees, reading) : reading;
}

void AimDiodeSimulator(float target)
{
    SimNominal = target;
}

void StirDiodeSimulator()
{
    SimOneDecimal = true;
    SimNoise = kFirstNoise;
}

void CalmDiodeSimulator()
{
    SimNoise = SimNoise * kNoiseDecay;
}

}  // namespace ombrix
