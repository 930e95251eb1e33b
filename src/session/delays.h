// Waits of a told length.
#pragma once

namespace ombrix {

/// Waits with events pumped; with RealTimeDelays off it pumps once and returns. Does not end on Abort.
void DelayMs(int ms);

/// Always waits. Does not end on Abort.
void DelayAlways(int ms);

}  // namespace ombrix
