// How tests let the system refuse a call to a file.
#pragma once

#include <cstddef>
#include <functional>

namespace ombrix {

/// What is asked of the system.
enum class FileCall { MakeFolder, Open, Look, Size, Read, Write, Sync, Rename };

/// How a call to the system fails: after so many bytes written, with an error of errno.h.
struct FileFault {
    int error = 0;          ///< 0: it does not fail
    std::size_t taken = 0;  ///< FileCall::Write alone: more than 0 is a short write, which has no error
};

/// For tests: asked before each call; nullptr takes it away.
void UseFileFaults(std::function<FileFault(FileCall)> faults);

// ---- asked by whoever calls the system ----

FileFault FaultOf(FileCall call);
/// True, with errno set, when the call is not to reach the system.
bool Fails(FileCall call);
/// One write of so many bytes: how many of them are to reach the system. 0, with errno set, when it fails.
std::size_t BytesTaken(std::size_t count);

}  // namespace ombrix
