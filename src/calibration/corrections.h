// The arithmetic of a correction and of settling: pure, in 32-bit floats, one rounding for each operation.
#pragma once

#include <cstdint>

namespace ombrix {

/// The new word when the reading is proportional to the gain register, whose low end the word is: a share `fraction`
/// of the span scales with the register, `remainder` is the rest. A denominator of 0 gives +infinity.
float RatioCorrection(float word, float reading, float target, float fraction, float remainder);

/// The new word when one count of the reading is `slope` counts of the word.
float SlopeCorrection(float word, float error, float slope);

struct LimitedWord {
    std::int32_t word;
    bool limited;  ///< the value was held at a limit
};
/// To the nearest integer, ties to even, held between `min` and `max`. A NaN counts as too high.
LimitedWord LimitWord(float value, std::int32_t min, std::int32_t max);

/// Watches successive readings. They are settled after three equal ones in a row, at the third change of direction,
/// or at the twentieth reading.
class Settling
{
public:
    explicit Settling(std::int32_t first) : m_current(first) {}
    void Take(std::int32_t reading);
    bool Done() const;

private:
    std::int32_t m_current;
    int m_reads = 1;
    int m_stable = 1;
    int m_direction = -1;  // 0 up, 1 down, -1 none yet
    int m_reversals = -1;  // the first direction of all makes it 0
};

}  // namespace ombrix
