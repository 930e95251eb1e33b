// Waiting for an instrument. On a line that has gone no wait has a meaning: it ends at once.
#pragma once

#include "platform/serial_port.h"

#include <string>

namespace ombrix {

/// One wait of at most `ms` for any bytes; all that wait then, "" when none came.
std::string ReceiveChunk(SerialPort &line, int ms);

/// The pause that an instrument gets, as DelayMs. Does not end on Abort.
void PauseForInstrument(const SerialPort &line, int ms);

}  // namespace ombrix
