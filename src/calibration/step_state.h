// The step in work as the folder's own sources keep it. Everybody else asks step_context.h.
#pragma once

#include <cstdint>
#include <string>

namespace ombrix {

struct StepContext {
    int RangeCodeIndex = 0;
    std::string RangeCode;  ///< two hex digits
    int SampleCount = 4;    ///< value of the display setup words
    std::int32_t TargetCounts = 0;
    float TargetCountsF = 0;
    std::string CalValue;  ///< calibrator value
    int StepNvmWord = 0;
    std::string StepWordHex;  ///< the word now in the meter
    std::string FilterCode;
    bool TurnoverStep = false;      ///< reads at + and - input
    bool OffsetStep = false;        ///< the word is a signed offset
    bool ProportionalStep = false;  ///< corrected by the ratio rule
    bool TripleWordStep = false;    ///< the word has companions
    std::int32_t WordMin = 0;
    std::int32_t WordMax = 65535;
    float SpanFraction = 1.0f;
    float SpanRemainder = 0.0f;
    float NominalSlope = 0.0f;  ///< word counts per display count
    std::int32_t Readings[2] = {0, 0};
    float ReadingsF[2] = {0, 0};
    float FirstPointWord = 0;
    float FirstPointReading = 0;
    float PrevWord = 0;
    float PrevReading = 0;
    bool CorrectionLimited = false;  ///< the last computed word was clamped
    std::string ZeroValue;           ///< VF: value of the low point
};
extern StepContext step;

}  // namespace ombrix
