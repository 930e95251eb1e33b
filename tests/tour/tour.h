// The two tours of the station. Each prints what it does and returns whether all went well.
#pragma once

#include <QString>

namespace ombrix::tour {

struct Options {
    QString pictures;  ///< folder for pictures, "" for none
    QString board;     ///< name of the board on the bench
    QString theme;     ///< "light" or "dark"
    QString testbench; ///< the program that serves the bench
};

/// Establish and every range of the simulated DC meter. Good when every range was accepted and its last reading lies
/// within the simulator's noise of its target.
bool RunSimulation(const Options &options);

/// One range of an emulated meter in real time: counts before and after, and the time over the floor of waits, bytes
/// and instruments, which the same script on virtual time gives.
bool RunBench(const Options &options);

}  // namespace ombrix::tour
