// The step in work: its range, its value, its target, its word.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrix {

/// Fills the step context from the record of a position of the board in work.
void LoadStep(int position, int stepId);

/// What a page gives that works beside the range records: a word of its own, readings of another target.
struct PlainStep {
    int word = 0;
    std::int32_t target = 0;                      ///< display counts, 0 where there is none
    std::string value = std::string();            ///< for the calibrator
    bool offset = false;                          ///< the word is a signed offset
    std::string wordHex = std::string();          ///< now in the meter
    std::optional<float> scatter = std::nullopt;  ///< of a simulated meter's readings, in counts; else it stays
};
/// The step context of such a page: all the rest is cleared, so nothing of the step before shows through (no turnover,
/// so no "+" stands before a reading).
void SetPlainStep(const PlainStep &plain);

/// Puts the meter on the step's range and reads its word; GetStepWordHex is "" when that failed.
void ApplyStepToMeter();

/// The same on a counter: its input type, and the three words of gain and offset as twelve digits. Words 17, 16 and 5..3
/// are the customer's there.
void PrepareOutputWord();
/// Another target for the step in work, which reads more than one point.
void SetTargetCounts(std::int32_t counts);

std::int32_t GetTargetCounts();
std::string GetCalValue();
bool GetTurnoverStep();
int GetRangeCodeIndex();
int GetStepNvmWord();
/// The word now in the meter, four digits; "" when it couldn't be read.
std::string GetStepWordHex();
std::string GetZeroValue();  ///< VF: value of the low point

/// A word as a number: signed on an offset step, else unsigned.
std::int32_t HexWordToNumber(std::string_view hex);

}  // namespace ombrix
