// What a crash leaves behind: the file Ombrix.crash with the signal, where the program stood, and the last records of
// the lines. Then it dies of the same signal, so that whoever watches it sees that.
#pragma once

#include <string>

namespace ombrix {

constexpr const char *kCrashFile = "Ombrix.crash";

/// From now on SIGSEGV, SIGABRT, SIGBUS, SIGFPE and an exception that nobody catches leave the file at `path`.
void WatchCrashes(const std::string &path);

}  // namespace ombrix
