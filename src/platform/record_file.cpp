#include "platform/record_file.h"

#include "platform/file_faults.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ombrix {
namespace {

class OpenFile
{
public:
    OpenFile(const std::string &path, int flags)
    {
        if (!Fails(FileCall::Open))
            m_handle = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666);  // a pipe would wait for its reader
    }
    ~OpenFile()
    {
        if (m_handle >= 0)
            close(m_handle);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool IsOpen() const { return m_handle >= 0; }

    // Bytes in the file; -1 when that can't be told, and for what is no plain file.
    off_t Size() const
    {
        struct stat found {
        };
        if (Fails(FileCall::Size) || fstat(m_handle, &found) != 0)
            return -1;
        errno = EINVAL;
        return S_ISREG(found.st_mode) ? found.st_size : -1;
    }

    std::optional<std::string> Read(std::size_t limit) const
    {
        std::string bytes(limit, '\0');
        const ssize_t got = Fails(FileCall::Read) ? -1 : pread(m_handle, bytes.data(), limit, 0);
        if (got < 0)
            return std::nullopt;
        bytes.resize(static_cast<std::size_t>(got));
        return bytes;
    }

    bool Write(std::size_t place, std::string_view bytes) const
    {
        const std::size_t count = BytesTaken(bytes.size());
        if (count == 0 && !bytes.empty())
            return false;
        const ssize_t taken = pwrite(m_handle, bytes.data(), count, static_cast<off_t>(place));
        if (taken == static_cast<ssize_t>(bytes.size()))
            return true;
        if (taken >= 0)
            errno = ENOSPC;  // a part was taken: no room for the rest
        return false;
    }

    bool Sync() const { return !Fails(FileCall::Sync) && fsync(m_handle) == 0; }

private:
    int m_handle = -1;
};

}  // namespace

std::string MakeRecordFile(const std::string &path, std::string_view bytes)
{
    const OpenFile file(path, O_RDWR | O_CREAT | O_TRUNC);
    return file.IsOpen() && file.Size() == 0 && file.Write(0, bytes) && file.Sync() ? "" : std::strerror(errno);
}

std::string WriteRecord(const std::string &path, std::size_t place, std::string_view bytes)
{
    const OpenFile file(path, O_RDWR);
    const off_t size = file.IsOpen() ? file.Size() : -1;
    if (size < 0)
        return std::strerror(errno);
    const std::size_t end = std::min(place, static_cast<std::size_t>(size));
    const std::string filled = std::string(place - end, ' ') + std::string(bytes);
    return file.Write(end, filled) && file.Sync() ? "" : std::strerror(errno);
}

std::string TryRecordFile(const std::string &path)
{
    const OpenFile file(path, O_RDWR);
    return file.IsOpen() && file.Size() >= 0 ? "" : std::strerror(errno);
}

std::optional<std::string> ReadRecordFile(const std::string &path, std::size_t limit)
{
    const OpenFile file(path, O_RDONLY);
    if (!file.IsOpen() || file.Size() < 0)
        return std::nullopt;
    return file.Read(limit);
}

}  // namespace ombrix
