// What a crash leaves behind: the file Ombrix.crash with the signal, the last records of the lines, and where the
// program stood. Then it dies of the same signal, so that whoever watches it sees that: within a second, and without an
// image of its memory, whose writing would hold the calibrator's line from the guard.
#pragma once

#include <string>

namespace ombrix {

constexpr const char *kCrashFile = "Ombrix.crash";

/// From now on each signal by whose default the system writes such an image (SIGSEGV and its like, SIGQUIT too), and an
/// exception that nobody catches, leave the file at `path`. A signal that was ignored stays so. A SIGBUS that a touch of
/// the trace's ring raises is no crash: the ring goes on in memory.
void WatchCrashes(const std::string &path);

}  // namespace ombrix
