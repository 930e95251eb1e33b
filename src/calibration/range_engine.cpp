#include "calibration/range_engine.h"

#include "calibration/range_correction.h"
#include "links/meter_operations.h"
#include "links/meter_simulator.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/state.h"

#include <cmath>

namespace ombrix {

StepContext step;

namespace {

constexpr float kPt100Fraction = 0.6444f;
constexpr float kFirstNoise = 20.0f;
constexpr float kNoiseDecay = 0.8f;
constexpr int kZeroWord = 26;  // an offset on every board, also where its step applies a value

bool HasCompanionWords(int word)
{
    if (SCType == kTc || SCType == kTemp)
        return word == 33 || word == 36;
    return SCType == kRtd && (word == 31 || word == 37);
}

void LoadOffsetRule()
{
    step.OffsetStep = true;
    step.WordMin = -32768;
    step.WordMax = 32767;
}

void LoadGainRule(int stepId)
{
    step.ProportionalStep = SCType != kTemp;
    if (!step.ProportionalStep)
        return;
    step.SpanFraction = stepId == Step::Pt100 ? kPt100Fraction : 1.0f;
    step.SpanRemainder = 1.0f - step.SpanFraction;
}

std::string VfZeroValue(const std::string &calValue)
{
    if (calValue == "20 mA")
        return "4 mA";
    return calValue == "1 mA" ? "0 mA" : "0 V";
}

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

// A cell of the grid: one reading, or the readings of both polarities, a line each.
float ReadingSize(const std::string &cell)
{
    const auto size = [](std::string_view text) { return std::fabs(static_cast<float>(Val(text))); };
    const auto lines = Split(cell, '\n');
    return lines.size() > 1 ? (size(lines[1]) + size(lines[0])) / 2.0f : size(cell);
}

}  // namespace

void LoadStep(int position, int stepId)
{
    step = StepContext();
    SimNoise = kFirstNoise;
    step.RangeCodeIndex = RangeCodeIndexAtPosition(position);
    step.RangeCode = RangeCodeText(step.RangeCodeIndex);
    step.SampleCount = SampleCountForStep(stepId);
    step.TargetCounts = TargetCountsAtPosition(position);
    step.TargetCountsF = static_cast<float>(step.TargetCounts);
    step.CalValue = CalValueAtPosition(position);
    step.StepNvmWord = NvmWordAtPosition(position);
    step.TripleWordStep = HasCompanionWords(step.StepNvmWord);

    const bool zeroInput = step.CalValue == "0 V";
    step.TurnoverStep = !zeroInput && CalibTab != kTabAc && SCType != kVf && SCType != kRtd;
    if (zeroInput || step.StepNvmWord == kZeroWord)
        LoadOffsetRule();
    else
        LoadGainRule(stepId);

    step.NominalSlope = GetNominalSlope(step.StepNvmWord);
    step.FilterCode = FilterCodeAtPosition(position);
    if (SCType == kVf)
        step.ZeroValue = VfZeroValue(step.CalValue);
}

void ApplyStepToMeter()
{
    const bool onRange = WriteRangeSetup(step.FilterCode, step.RangeCode, step.SampleCount);
    step.StepWordHex = onRange ? ReadNvmWords(step.StepNvmWord, 1, "") : "";
}

std::int32_t GetTargetCounts()
{
    return step.TargetCounts;
}

std::string GetCalValue()
{
    return step.CalValue;
}

bool GetTurnoverStep()
{
    return step.TurnoverStep;
}

int GetRangeCodeIndex()
{
    return step.RangeCodeIndex;
}

std::string GetStepWordHex()
{
    return step.StepWordHex;
}

std::string GetZeroValue()
{
    return step.ZeroValue;
}

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

void UpdateNominalSlope(const std::string &text)
{
    const float reading = ReadingSize(text);
    const auto word = static_cast<float>(HexWordToNumber(step.StepWordHex));
    if (word == step.FirstPointWord || reading == step.FirstPointReading)
        return;
    const float shown = (word - step.FirstPointWord) / (reading - step.FirstPointReading);
    const float learned = (step.NominalSlope * 9.0f + shown) / 10.0f;
    if (learned == step.NominalSlope)
        return;
    step.NominalSlope = learned;
    SetNominalSlope(step.StepNvmWord, learned);
}

void UpdateNominalWord()
{
    const std::string old = GetNominalWord(step.StepNvmWord);
    const auto oldWord = static_cast<float>(HexWordToNumber(old));
    const auto newWord = static_cast<float>(HexWordToNumber(step.StepWordHex));
    const float value = (oldWord * 9.0f + newWord) / 10.0f;
    const std::string learned = HexText(RoundHalfEven(static_cast<double>(value)), 4);
    if (learned != old)
        SetNominalWord(step.StepNvmWord, learned);
}

void UpdateNominalWordFor(int word, const std::string &hex, bool offset)
{
    step.StepNvmWord = word;
    step.StepWordHex = hex;
    step.OffsetStep = offset;
    UpdateNominalWord();
}

std::int32_t HexWordToNumber(std::string_view hex)
{
    const auto word = static_cast<std::int32_t>(HexValue(hex.substr(0, 4)));
    return step.OffsetStep && word > 0x7FFF ? word - 0x10000 : word;
}

}  // namespace ombrix
