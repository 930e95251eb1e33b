#include "calibration/step_word.h"

#include "calibration/corrections.h"
#include "calibration/step_context.h"
#include "calibration/step_state.h"
#include "links/meter_operations.h"
#include "links/meter_simulator.h"
#include "platform/text.h"

#include <cmath>

namespace ombrix {
namespace {

constexpr float kNoiseDecay = 0.8f;

float MeanReading()
{
    const auto &reading = step.ReadingsF;
    return step.TurnoverStep ? (std::fabs(reading[1]) + reading[0]) / 2.0f : reading[0];
}

float SlopeRule(float word, float reading, bool first)
{
    const float error = step.TargetCountsF - reading;
    float slope = step.NominalSlope;
    if (!first) {
        const float wordChange = word - step.PrevWord;
        const float readingChange = reading - step.PrevReading;
        if (readingChange != 0.0f)
            slope = wordChange / readingChange;  // the meter's own slope, of the last two rounds
    }
    step.PrevWord = word;
    step.PrevReading = reading;
    return SlopeCorrection(word, error, slope);
}

}  // namespace

std::string ComputeCorrectedWord(bool first)
{
    const float reading = MeanReading();
    const auto word = static_cast<float>(HexWordToNumber(step.StepWordHex));
    if (first) {
        step.FirstPointWord = word;
        step.FirstPointReading = reading;
    }
    const float value = step.ProportionalStep
                            ? RatioCorrection(word, reading, step.TargetCountsF, step.SpanFraction, step.SpanRemainder)
                            : SlopeRule(word, reading, first);
    const LimitedWord corrected = LimitWord(value, step.WordMin, step.WordMax);
    step.CorrectionLimited = corrected.limited;
    WriteStepWord(HexText(corrected.word, 4));
    SimNoise = SimNoise * kNoiseDecay;
    return step.StepWordHex;
}

bool GetCorrectionLimited()
{
    return step.CorrectionLimited;
}

void WriteStepWord(const std::string &hex)
{
    int word = step.StepNvmWord;
    std::string data = hex;
    if (step.TripleWordStep && word == 31) {
        WriteNvmWords(40, hex, "Z");
    } else if (step.TripleWordStep) {
        data = hex + hex + hex;  // downward from the word
        if (word == 33)
            WriteNvmWords(46, hex, "Z");
        if (word == 37)
            word = 39;
    }
    WriteNvmWords(word, data, "");
    step.StepWordHex = hex;
}

}  // namespace ombrix
