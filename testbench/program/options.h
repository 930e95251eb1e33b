// What the program is told when it starts.
#pragma once

#include <string>
#include <vector>

#include "testbench/bench.h"

namespace ombrix::bench {

struct Options {
    BenchSetup setup;
    std::vector<std::string> faults;
    std::string station;  ///< folder whose Ombrix.ini learns the ports, "" none
    bool help = false;
    bool version = false;
    std::string trouble;  ///< what is wrong with the options, "" nothing
};

Options ParseOptions(const std::vector<std::string> &arguments);

/// The text of --help.
std::string UsageText();

}  // namespace ombrix::bench
