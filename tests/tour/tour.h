// The tours of the station. Each prints what it does and returns whether all went well.
#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <vector>

namespace ombrix::tour {

struct Options {
    QString pictures;   ///< folder for pictures, "" for none
    QString board;      ///< name of the board on the bench
    QString theme;      ///< "light" or "dark"
    QString testbench;  ///< the program that serves the bench
};

/// Establish and every range of the simulated DC meter. Good when every range was accepted and its last reading lies
/// within the simulator's noise of its target.
bool RunSimulation(const Options &options);

/// A point of the analog output, its cable and Verify Mode on the bench. Good when the last reading was inside the
/// tolerance.
bool RunAnalogWalk(const Options &options);
/// A point of the analog output against an emulated meter on pseudo-terminals, in real time: an operator types what the
/// output meter of its console shows. Good when the last reading was inside the tolerance.
bool RunAnalogBench(const Options &options);
/// The pages of a simulated Temp meter and counter beyond the ranges.
bool RunProcessMeters(const Options &options);
/// What the guide's first chapter tells, on the bench in virtual time. Good when it goes to its summary within ten
/// minutes. With a folder for pictures also what other chapters show.
bool RunFirstMeter(const Options &options);
/// The same against an emulated meter on pseudo-terminals, in real time, without pictures.
bool RunFirstMeterInRealTime(const Options &options);
/// With a folder for pictures: the procedures beyond the ranges, on the bench in virtual time.
bool RunProcedures(const Options &options);

/// One round of a board's first gain step.
struct RangeRun {
    bool good = false;
    std::int64_t micros = 0;  ///< from the click on the range's button to the free step buttons behind Accept
    std::string before;       ///< counts
    std::string after;
    std::string error;
};

/// Against an emulated meter on pseudo-terminals, in hardware mode with its real waits.
RangeRun RunRangeInRealTime(const Options &options);
/// The same on virtual time. What is left are the waits, the bytes and the instruments: the least that it can take.
RangeRun RunRangeOnVirtualTime(const Options &options);

/// Every range of the board, one round each, as one run: in `before`, `after` and `error` stands the last one.
RangeRun RunBoardInRealTime(const Options &options);
RangeRun RunBoardOnVirtualTime(const Options &options);

struct StopRun {
    bool good = false;
    std::vector<double> ms;  ///< from each click on Stop until the line took the standby
};
/// A round of a board's first gain step, stopped again and again, each time a little further on; in real time against an
/// emulated meter on pseudo-terminals.
StopRun TimeStopsInRealTime(const Options &options);

/// In the current folder, whose settings name the lines: establishes, and calibrates the board's first gain step again
/// and again, under this guard, until it is killed or a signal asks it to quit. False when something keeps it from going on.
bool RunUntilKilled(const std::string &guard);

/// A first cycle gathered from the emulated meter's stream, in real time.
struct GatherRun {
    bool good = false;
    bool throughout = false;  ///< it went on to the end of the measured time
    double seconds = 0;
    double cpuShare = 0;  ///< of one core, by the station in this program alone
};
GatherRun GatherFirstCycleInRealTime(const Options &options);

/// Both, printed: counts before and after, and the time over its floor.
bool RunBench(const Options &options);

}  // namespace ombrix::tour
