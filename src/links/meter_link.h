// Opening the way to the meter, and closing both links.
#pragma once

#include <string>

namespace ombrix {

/// The failure word of OpenMeterLink.
extern std::string MeterError;

/// Opens the route and looks for a meter. 0 found; 99 "Meter not found" in MeterError; otherwise the number of a
/// run-time fault, with its words in MeterError. Clears Abort.
int OpenMeterLink();

/// Program start: every variable of the links as it is then, nothing open.
void InitLinks();

/// Closes both ports, whoever holds which: before the links open anew, and at the end.
void CloseLinks();

}  // namespace ombrix
