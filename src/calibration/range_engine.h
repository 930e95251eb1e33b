// One range of one board: the step in work, reading the display, and the correction of its word. No widgets.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ombrix {

/// What a reading function returns instead of a reading when its live loop is to end.
constexpr std::string_view kStop = "STOP";

/// The step in work, filled by LoadStep.
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

void LoadStep(int position, int stepId);
/// Puts the meter on the step's range and reads its word; StepWordHex is "" when that failed.
void ApplyStepToMeter();

std::int32_t GetTargetCounts();
std::string GetCalValue();
bool GetTurnoverStep();
int GetRangeCodeIndex();
std::string GetStepWordHex();
std::string GetZeroValue();

/// Reads until three equal readings in a row, the third change of direction or the twentieth read. "" on Abort.
std::string ReadSettledReading();
/// The settled reading for the + (0) or - (1) input; a turnover step's text carries its sign.
std::string TakeReading(int index);
/// One read without settling. "STOP" on a requested stop, on Abort and when the meter is silent.
std::string TakeReadingOrStop(int index);
/// The display with its point, tried until a reading comes or a stop: "STOP".
std::string ReadDisplayOrStop();
std::string ReadDisplayDigitsOrStop();

/// Computes the new word from the readings, writes it and returns it. CorrectionLimited when it was clamped.
std::string ComputeCorrectedWord(bool first);
/// Writes the step's word and its companions; the meter restarts with it.
void WriteStepWord(const std::string &hex);

/// Moves the nominal slope a tenth of the way to what the meter showed; text is the "New Reading" cell.
void UpdateNominalSlope(const std::string &text);
void UpdateNominalWord();
void UpdateNominalWordFor(int word, const std::string &hex, bool offset);

std::string MeanReadingText();
std::string ReadingErrorText();

/// A word as a number: signed on an offset step, else unsigned.
std::int32_t HexWordToNumber(std::string_view hex);

}  // namespace ombrix
