// A DC meter calibrated in the simulator, range by range, in the real window.
#pragma once

namespace ombrix::benchmarks {

struct SimulatedRun {
    double longestBlockMs = 0;  ///< the longest that the window kept its operator waiting
    int ranges = 0;             ///< accepted
};

/// Takes a while: live readings run in real time. Needs a QApplication and an empty current folder.
SimulatedRun CalibrateSimulatedDc();

}  // namespace ombrix::benchmarks
