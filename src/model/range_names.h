// Range codes as an operator reads them, and the points at which a range is tried.
#pragma once

#include <string>

namespace ombrix {

extern int RangeDiagramIndex;       ///< row of the diagram, set by DescribeRangeCode; -1 none
extern std::string RangeInputText;  ///< value to apply for a test of that range, "" none

/// The 57 range names, "" outside.
std::string RangeName(int index);
/// What a two-digit code read from a meter means, "???" when it isn't in the board's list. Sets RangeDiagramIndex and
/// RangeInputText (the latter by the current SCType).
std::string DescribeRangeCode(int board, const std::string &code);
std::string RtdSimValue(int index);
std::string RtdSimTemperature(int index);

/// A value for the calibrator as people write it: "100 KOHM" is "100 kOhm", "0 CEL" is "0 °C"; others stay as they are.
std::string ValueAsWritten(const std::string &value);

}  // namespace ombrix
