// Range codes as an operator reads them, and the points at which a range is tried.
#pragma once

#include <string>

namespace ombrix {

/// The 57 range names, "" outside.
std::string RangeName(int index);
/// What a two-digit range code means on a board.
struct RangeDescription {
    std::string text = "???";           ///< as it stands when the code isn't in the board's list
    int diagram = -1;                   ///< row of the connection diagram; -1 none
    std::string input = std::string();  ///< value to apply for a test of that range, "" none
};
RangeDescription DescribeRangeCode(int board, const std::string &code);
std::string RtdSimValue(int index);
std::string RtdSimTemperature(int index);

/// A value for the calibrator as people write it: "100 KOHM" is "100 kOhm", "0 CEL" is "0 °C"; others stay as they are.
std::string ValueAsWritten(const std::string &value);

}  // namespace ombrix
