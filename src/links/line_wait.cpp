#include "links/line_wait.h"

#include "platform/clock.h"
#include "session/delays.h"
#include "session/state.h"

namespace ombrix {

std::string ReceiveChunk(SerialPort &line, int ms)
{
    const Deadline limit(ms);
    while (line.BytesWaiting() == 0 && !limit.Passed() && !line.IsGone())
        PumpEvents(limit.LeftMs());
    return line.ReadAll();
}

void PauseForInstrument(const SerialPort &line, int ms)
{
    if (!HardwareMode) {
        DelayMs(ms);
        return;
    }
    const Deadline end(ms);
    while (!end.Passed() && !line.IsGone())
        PumpEvents(end.LeftMs());
}

}  // namespace ombrix
