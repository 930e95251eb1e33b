#include "platform/append_file.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ombrix {
bool MakeFolder(const std::string &path)
{
    if (Fails(FileCall::MakeFolder))
        return false;
    return mkdir(path.c_str(), 0777) == 0 || errno == EEXIST;
}

bool AppendFile::Open(const std::string &path)
{
    return OpenWith(path, O_RDWR | O_APPEND | O_CREAT);
}

bool AppendFile::OpenToRead(const std::string &path)
{
    return OpenWith(path, O_RDONLY);
}

bool AppendFile::OpenWith(const std::string &path, int flags)
{
    Close();
    if (Fails(FileCall::Open))
        return false;
    m_handle = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666);  // a pipe would wait for its reader
    struct stat found {
    };
    if (m_handle < 0 || fstat(m_handle, &found) != 0 || !S_ISREG(found.st_mode)) {
        Close();
        return false;
    }
    m_device = found.st_dev;
    m_number = found.st_ino;
    m_path = path;
    return true;
}

void AppendFile::Close()
{
    if (m_handle >= 0)
        close(m_handle);
    m_handle = -1;
    m_path.clear();
}

bool AppendFile::IsInPlace() const
{
    struct stat found {
    };
    if (m_handle < 0 || Fails(FileCall::Look) || stat(m_path.c_str(), &found) != 0)
        return false;
    return found.st_dev == m_device && found.st_ino == m_number;
}

std::int64_t AppendFile::Size() const
{
    struct stat found {
    };
    if (m_handle < 0 || Fails(FileCall::Size) || fstat(m_handle, &found) != 0)
        return -1;
    return found.st_size;
}

std::string AppendFile::ReadAt(std::int64_t place, std::size_t count) const
{
    if (m_handle < 0 || Fails(FileCall::Read))
        return "";
    std::string bytes(count, '\0');
    const ssize_t got = pread(m_handle, bytes.data(), count, place);
    bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
    return bytes;
}

bool AppendFile::Append(std::string_view bytes) const
{
    if (m_handle < 0)
        return false;
    const std::size_t count = BytesTaken(bytes.size());
    if (count == 0 && !bytes.empty())
        return false;
    return write(m_handle, bytes.data(), count) == static_cast<ssize_t>(bytes.size());
}

bool AppendFile::Lock() const
{
    using namespace std::chrono;
    constexpr milliseconds kPatience{10};
    constexpr int kPauseMicros = 100;  // an append takes less; no event comes when the other's is done
    const auto until = steady_clock::now() + kPatience;
    while (flock(m_handle, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (steady_clock::now() >= until)
            return false;
        usleep(kPauseMicros);
    }
    return m_handle >= 0;
}

void AppendFile::Unlock() const
{
    flock(m_handle, LOCK_UN);
}

}  // namespace ombrix
