// What is typed at the bench: faults, the operator's hands, and questions to the hidden truth.
#pragma once

#include <string>
#include <string_view>

#include "testbench/bench.h"

namespace ombrix::bench {

struct ConsoleAnswer {
    std::string text;  ///< lines to show, without the last line end; may be ""
    bool quit = false;
};

/// Carries out one typed line.
ConsoleAnswer RunConsoleLine(Bench &bench, std::string_view line, Micros now);

/// The commands, a line each.
std::string ConsoleHelp();

/// One line: what stands on the terminals, what the display shows, range, restarts, faults in force.
std::string StatusText(Bench &bench, Micros now);

}  // namespace ombrix::bench
