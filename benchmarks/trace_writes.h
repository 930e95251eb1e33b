// What a chunk of bytes costs that is traced.
#pragma once

#include <string>

namespace ombrix::benchmarks {

struct TraceWrites {
    double medianMs = 0;
    double p99Ms = 0;  ///< 99 of 100 are traced within this
    double maxMs = 0;
};

/// Traces 10,000 chunks into a file in `folder`, about a second long, so that the system writes pages of it meanwhile.
/// Throws std::runtime_error when the file can't be had or lacks one of them.
TraceWrites TimeTrace(const std::string &folder);

}  // namespace ombrix::benchmarks
