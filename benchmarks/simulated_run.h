// The station inside this program: a DC meter calibrated in the simulator, and a wait.
#pragma once

namespace ombrix::benchmarks {

struct SimulatedRun {
    double longestBlockMs = 0;  ///< the longest that the window kept its operator waiting
    int ranges = 0;             ///< accepted
};

/// Range by range, in the real window, with the live readings in real time. Both need a QApplication and an empty
/// current folder.
SimulatedRun CalibrateSimulatedDc();

/// How often a second the station wakes up while a procedure waits for so long.
double WakeUpsInAWait(int seconds);

}  // namespace ombrix::benchmarks
