// What stands on the input terminals, told to the operator: value, unit and how dangerous it is.
#pragma once

#include "session/live_output.h"

#include <optional>
#include <string>

namespace ombrix {

/// A value text as the calibrator takes it, without its frequency: "2 V, 300 Hz" is 2 and "V".
struct OutputValue {
    double number;
    std::string unit;  ///< "V", "A", "mV", "mA", "OHM", "KOHM", "CEL", "FAR"
};
OutputValue ParseOutputValue(const std::string &value);

/// The answer to OUT?: a number, a comma and a unit that the panel knows, whatever follows. Nothing for any other line:
/// what stands before the number makes it one.
std::optional<OutputValue> ParseReadBack(const std::string &line);

struct CalOutput {
    std::string text;  ///< scaled value and unit, "200.0 mV"
    Danger level;
};

/// Scales below 1 to milli and from 1000 to kilo (not temperatures) and judges the scaled value. unit as in
/// OutputValue; "KOHM" is thousands of ohms.
CalOutput DescribeCalOutput(double value, const std::string &unit);

/// Shows it on the panel. In simulation it also tells the simulated meter: readings of a temperature carry one
/// decimal and stand at the value.
void UpdateCalOutputPanel(double value, const std::string &unit);

/// The level that a requested value text ("660 V, 300 Hz") would have.
Danger DangerOfValue(const std::string &value);

}  // namespace ombrix
