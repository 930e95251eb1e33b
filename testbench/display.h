// A display that follows its input: settling, noise, and the text that a meter sends of it.
#pragma once

#include <string>

#include "testbench/unit.h"
#include "testbench/wire.h"

namespace ombrix::bench {

/// Follows what it is aimed at with a time constant of 70 ms: a change of full scale has gone to less than half a
/// count after 0.85 s.
class Display
{
public:
    /// What it shows when settled, in display counts; an infinity is an overload, which shows at once.
    void Aim(double counts, Micros now);
    /// Aims and is settled.
    void Jump(double counts, Micros now);
    /// The value that it shows, without noise.
    double At(Micros now) const;
    /// Where it goes.
    double Target() const { return m_target; }

private:
    double m_from = 0;
    double m_target = 0;
    Micros m_since = 0;
};

/// The largest count that a display has place for.
constexpr int kLargestCount = 999999;
/// What it shows, behind its sign, of anything larger.
constexpr const char *kOverloadText = "OVERLOAD";

/// Whole counts as the meter writes them: a blank or "-", the digits with their point, "." at the end without
/// decimals. 12345 with 2 decimals is " 123.45". An overload has a sign and no digit.
std::string DisplayText(double counts, int decimals);

/// Counts of noise, evenly within half a count and a little on either side: a settled display flickers between two
/// neighbours at most.
double DisplayNoise(Dice &dice);

}  // namespace ombrix::bench
