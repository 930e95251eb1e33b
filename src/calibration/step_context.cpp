#include "calibration/step_context.h"

#include "calibration/step_state.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "links/meter_simulator.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/state.h"

namespace ombrix {

StepContext step;

namespace {

constexpr float kPt100Fraction = 0.6444f;
constexpr float kFirstNoise = 20.0f;
constexpr int kInputTypeWord = 28;  // of a counter
constexpr int kOutputWords = 3;     // its gain and offset
constexpr int kZeroWord = 26;       // an offset on every board, also where its step applies a value

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

void SetPlainStep(const PlainStep &plain)
{
    step = StepContext();
    step.StepNvmWord = plain.word;
    step.TargetCounts = plain.target;
    step.TargetCountsF = static_cast<float>(plain.target);
    step.CalValue = plain.value;
    step.StepWordHex = plain.wordHex;
    if (plain.offset)
        LoadOffsetRule();
    if (plain.scatter)
        SimNoise = *plain.scatter;
    step.NominalSlope = GetNominalSlope(plain.word);
}

void ApplyStepToMeter()
{
    const bool onRange = WriteRangeSetup(step.FilterCode, step.RangeCode, step.SampleCount);
    step.StepWordHex = onRange ? ReadNvmWords(step.StepNvmWord, 1, "") : "";
}

void PrepareOutputWord()
{
    const bool onRange = SetWordLowByte(kInputTypeWord, step.RangeCode);
    step.StepWordHex = onRange && !Abort ? ReadNvmWords(step.StepNvmWord, kOutputWords, "") : "";
}

void SetTargetCounts(std::int32_t counts)
{
    step.TargetCounts = counts;
    step.TargetCountsF = static_cast<float>(counts);
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

int GetStepNvmWord()
{
    return step.StepNvmWord;
}

std::string GetStepWordHex()
{
    return step.StepWordHex;
}

std::string GetZeroValue()
{
    return step.ZeroValue;
}

std::int32_t HexWordToNumber(std::string_view hex)
{
    const auto word = static_cast<std::int32_t>(HexValue(hex.substr(0, 4)));
    return step.OffsetStep && word > 0x7FFF ? word - 0x10000 : word;
}

}  // namespace ombrix
