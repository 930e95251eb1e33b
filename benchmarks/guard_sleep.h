// The guard with a line in its hands, as long as nothing dies.
#pragma once

namespace ombrix::benchmarks {

/// How often a second it wakes up, over the next `seconds`.
double WakeUpsOfGuard(int seconds);

}  // namespace ombrix::benchmarks
