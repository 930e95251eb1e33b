#include "session/delays.h"

#include "platform/clock.h"
#include "session/state.h"

namespace ombrix {

void DelayMs(int ms)
{
    if (RealTimeDelays)
        DelayAlways(ms);
    else
        PumpEvents(0);
}

void DelayAlways(int ms)
{
    const Deadline end(ms);
    do
        PumpEvents(end.LeftMs());
    while (!end.Passed());
}

}  // namespace ombrix
