#include "platform/file_faults.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace ombrix {
namespace {

std::function<FileFault(FileCall)> fileFaults;

}  // namespace

void UseFileFaults(std::function<FileFault(FileCall)> faults)
{
    fileFaults = std::move(faults);
}

FileFault FaultOf(FileCall call)
{
    return fileFaults ? fileFaults(call) : FileFault();
}

bool Fails(FileCall call)
{
    const int error = FaultOf(call).error;
    if (error != 0)
        errno = error;
    return error != 0;
}

std::size_t BytesTaken(std::size_t count)
{
    const FileFault fault = FaultOf(FileCall::Write);
    if (fault.error == 0)
        return count;
    errno = fault.error;
    return std::min(fault.taken, count);
}

}  // namespace ombrix
