#include "platform/port_check.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <system_error>

namespace ombrix {
namespace {

namespace fs = std::filesystem;

bool HasOpen(const fs::path &process, const fs::path &device)
{
    std::error_code failed;
    // A process may end while it is looked at.
    for (fs::directory_iterator at(process / "fd", failed), end; !failed && at != end; at.increment(failed)) {
        std::error_code closed;
        if (fs::read_symlink(at->path(), closed) == device)
            return true;
    }
    return false;
}

// Name of another process that has the device open, "" when none is seen. Without rights other users' processes hide.
QString HolderOf(const QString &device)
{
    const std::string own = std::to_string(QCoreApplication::applicationPid());
    const fs::path wanted = device.toStdString();
    std::error_code failed;
    for (fs::directory_iterator at("/proc", failed), end; !failed && at != end; at.increment(failed)) {
        const fs::path &process = at->path();
        const std::string number = process.filename().string();
        const bool isProcess = number.find_first_not_of("0123456789") == std::string::npos;
        if (!isProcess || number == own || !HasOpen(process, wanted))
            continue;
        QFile name(QString::fromStdString(process / "comm"));
        return name.open(QIODevice::ReadOnly) ? QString::fromUtf8(name.readAll()).trimmed()
                                              : QString::fromStdString(number);
    }
    return "";
}

bool IsCharacterDevice(const QString &path)
{
    struct stat status {
    };
    return stat(path.toLocal8Bit().constData(), &status) == 0 && S_ISCHR(status.st_mode);
}

}  // namespace

std::string PortTrouble(const std::string &device)
{
    const QFileInfo info(QString::fromStdString(device));
    if (device.empty())
        return "No device is set: name one in section Ports of Ombrix.ini.";
    if (!info.exists())
        return "Missing: plug it in, or name another device in section Ports of Ombrix.ini.";
    const QString path = info.canonicalFilePath();
    if (!IsCharacterDevice(path))
        return "No serial line: name another device in section Ports of Ombrix.ini.";
    if (!info.isReadable() || !info.isWritable()) {
        const QString group = info.group().isEmpty() ? QString::number(info.groupId()) : info.group();
        return ("Closed to this user: join group " + group + " (sudo usermod -aG " + group +
                " $USER) and log in again.")
            .toStdString();
    }
    const QString holder = HolderOf(path);
    if (!holder.isEmpty())
        return ("In use by " + holder + ": end that program.").toStdString();
    return "";
}

bool SameDevice(const std::string &one, const std::string &other)
{
    const auto real = [](const std::string &path) {
        const QFileInfo info(QString::fromStdString(path));
        return info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    };
    return real(one) == real(other);
}

}  // namespace ombrix
