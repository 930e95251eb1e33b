// Why a serial port can't be used, and the cure, before anybody opens it.
#pragma once

#include <string>

namespace ombrix {

/// "" when the device can be opened; otherwise one line that says why not and what to do: missing, in use by another
/// program, closed to this user (names the owning group if that has the right, else the mode), not a serial line.
/// Opens nothing that is open here. The far end of a pseudo-terminal, which keeps both its ends, is no other program.
std::string PortTrouble(const std::string &device);

/// True when two paths lead to one device.
bool SameDevice(const std::string &one, const std::string &other);

}  // namespace ombrix
