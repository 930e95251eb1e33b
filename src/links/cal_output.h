// What stands on the input terminals, told to the operator: value, unit and how dangerous it is.
#pragma once

#include "session/outlets.h"

#include <string>

namespace ombrix
{

struct CalOutput {
    std::string text; ///< scaled value and unit, "200.0 mV"
    Danger level;
};

/// Scales below 1 to milli and from 1000 to kilo (not temperatures) and judges the scaled value. unit as the
/// calibrator gives it: "V", "A", "mV", "OHM", "CEL", "FAR".
CalOutput DescribeCalOutput(double value, const std::string &unit);

/// Shows it on the panel. In simulation it also tells the simulated meter: readings of a temperature carry one
/// decimal and stand at the value.
void UpdateCalOutputPanel(double value, const std::string &unit);

void SetDangerFlag(Danger level);

/// The level that a requested value text ("660 V, 300 Hz") would have.
Danger DangerOfValue(const std::string &value);

} // namespace ombrix
