// The calibrator inside the station: remembers its last output and answers in the form of a real one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ombrix {

extern std::string SimCalOut;   ///< the last OUT line
extern std::string SimCalOper;  ///< "1" operate, "0" standby

void InitCalibratorSimulator();
/// The answer to a question; nothing for a command that has none.
std::optional<std::string> SimulateCalibratorCommand(std::string_view text);

}  // namespace ombrix
