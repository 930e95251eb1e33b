// The station inside this program: a DC meter calibrated in the simulator, and a wait.
#pragma once

namespace ombrix::test {
class ScriptedOperator;
}

namespace ombrix::benchmarks {

/// Tells the operator to take a range through one round or two to Accept; a counter's through one, its input left standing.
void CalibrateRange(test::ScriptedOperator &person, int position, int rounds);
void CalibrateVfRange(test::ScriptedOperator &person, int position);

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
