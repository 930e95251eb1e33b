#include "platform/safe_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace ombrix {

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
    QSaveFile file(QString::fromStdString(path));
    const auto size = static_cast<qint64>(bytes.size());
    if (file.open(QIODevice::WriteOnly) && file.write(bytes.data(), size) == size && file.commit())
        return "";
    return file.errorString().toStdString();
}

bool FolderHold::TakeFolderOf(const std::string &path)
{
    Release();
    const QByteArray folder = QFile::encodeName(QFileInfo(QString::fromStdString(path)).path());
    m_handle = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_handle < 0 || flock(m_handle, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return true;
    Release();
    return false;
}

void FolderHold::Release()
{
    if (m_handle >= 0)
        close(m_handle);
    m_handle = -1;
}

}  // namespace ombrix
