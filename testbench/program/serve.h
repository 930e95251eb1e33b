// Serves a bench on pseudo-terminals in real time, until Ctrl-C.
#pragma once

#include <string>

#include "testbench/program/options.h"

namespace ombrix::bench {

/// "" when it was ended, otherwise what kept it from starting.
std::string Serve(const Options &options);

}  // namespace ombrix::bench
