#include "platform/safe_file.h"

#include "platform/file_faults.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace ombrix {
namespace {

// Where the bytes of a file stand: where a link leads.
QFileInfo TargetOf(const std::string &path)
{
    const QFileInfo info(QString::fromStdString(path));
    if (!info.isSymLink())
        return info;
    const QString real = info.canonicalFilePath();
    return QFileInfo(real.isEmpty() ? info.symLinkTarget() : real);
}

// A file of which half may be there. It has one name for each target, so that those of killed programs don't pile up.
QByteArray NameOfHalf(const QFileInfo &target)
{
    return QFile::encodeName(target.path() + "/." + target.fileName() + ".new");
}

// A file that can't be written isn't replaced either. `mode` is what the new one is to have, 0 for what is usual.
bool MayBeReplaced(const QByteArray &target, mode_t &mode)
{
    struct stat found {
    };
    mode = 0;
    if (stat(target.constData(), &found) != 0)
        return errno == ENOENT;
    mode = found.st_mode & 07777;
    errno = S_ISDIR(found.st_mode) ? EISDIR : EINVAL;
    return S_ISREG(found.st_mode) && access(target.constData(), W_OK) == 0;
}

bool WriteAll(int handle, std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t count = BytesTaken(bytes.size());
        const ssize_t taken = count == 0 ? -1 : write(handle, bytes.data(), count);
        if (taken < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(taken < 0 ? 0 : static_cast<std::size_t>(taken));
    }
    return true;
}

// Only what is on the disk may take the place of what is there: a name changes before its bytes do.
bool WriteHalf(const QByteArray &half, mode_t mode, const std::string &bytes)
{
    unlink(half.constData());  // of a program that was killed
    const int handle =
        Fails(FileCall::Open) ? -1 : open(half.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (handle < 0)
        return false;
    const bool done = (mode == 0 || fchmod(handle, mode) == 0) && WriteAll(handle, bytes) && !Fails(FileCall::Sync) &&
                      fdatasync(handle) == 0;
    const int error = errno;
    close(handle);
    errno = error;
    return done;
}

}  // namespace

FileState StateOfFile(const std::string &path)
{
    const QFileInfo info(QString::fromStdString(path));
    if (!info.exists() && !info.isSymLink())
        return FileState::Missing;
    return ReadFile(path) ? FileState::Readable : FileState::Unreadable;
}

std::optional<std::string> ReadFile(const std::string &path)
{
    QFile file(QString::fromStdString(path));
    if (QFileInfo(file).isDir() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return bytes.toStdString();
}

std::string WriteFile(const std::string &path, const std::string &bytes)
{
    const QFileInfo info = TargetOf(path);
    const QByteArray target = QFile::encodeName(info.filePath());
    const QByteArray half = NameOfHalf(info);
    mode_t mode = 0;
    if (!MayBeReplaced(target, mode))
        return std::strerror(errno);
    if (WriteHalf(half, mode, bytes) && !Fails(FileCall::Rename) &&
        std::rename(half.constData(), target.constData()) == 0)
        return "";
    std::string words = std::strerror(errno);
    unlink(half.constData());
    return words;
}

}  // namespace ombrix
