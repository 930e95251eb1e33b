// The folder of a station that is to find the bench: its settings learn where the lines are.
#pragma once

#include <string>

#include "testbench/bench.h"

namespace ombrix::bench {

struct DevicePaths {
    std::string meter;
    std::string calibrator;  ///< "" without one
};

/// Writes the paths into section Ports and the wiring into section Comms of Ombrix.ini in a folder, and keeps what
/// else the file holds. "" on success, otherwise what went wrong.
std::string TellStation(const std::string &folder, const DevicePaths &paths, const BenchSetup &setup);

}  // namespace ombrix::bench
