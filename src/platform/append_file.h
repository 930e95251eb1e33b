// A file that only grows, written as it happens: the system has the bytes when the program is killed.
//
// No call waits for the disk and none throws. What the system refuses ends as false or -1; the caller closes, and opens
// again when it next has something to say.
#pragma once

#include "platform/file_faults.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace ombrix {

/// Makes a folder in one that is there already. True when it is there now.
bool MakeFolder(const std::string &path);

class AppendFile
{
public:
    AppendFile() = default;
    ~AppendFile() { Close(); }
    AppendFile(const AppendFile &) = delete;
    AppendFile &operator=(const AppendFile &) = delete;

    /// Opens a file to read it and to write at its end, or, with OpenToRead, to read it alone. The first makes a file
    /// that isn't there. False when that can't be, also for whatever isn't a plain file.
    bool Open(const std::string &path);
    bool OpenToRead(const std::string &path);
    void Close();

    /// Whether the open file still is the one that its path names: false when it or its folder was moved or deleted.
    bool IsInPlace() const;

    /// Length in bytes, -1 when the system can't tell.
    std::int64_t Size() const;
    /// Up to `count` bytes from `place` on; "" at the end of the file and when it can't be read.
    std::string ReadAt(std::int64_t place, std::size_t count) const;
    /// One write at the end of the file. False unless all of it was taken; a part may then stand there.
    bool Append(std::string_view bytes) const;

    /// Keeps out other programs that ask, until Unlock. False when one of them has it for longer than some milliseconds;
    /// true as well where the system can't lock.
    bool Lock() const;
    void Unlock() const;

private:
    bool OpenWith(const std::string &path, int flags);

    int m_handle = -1;
    dev_t m_device = 0;
    ino_t m_number = 0;
    std::string m_path;
};

}  // namespace ombrix
