#include "platform/port_check.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace ombrix {
namespace {

// Name of another process that has the device open, "" when none is seen. Without rights other users' processes hide.
QString HolderOf(const QString &device)
{
    const QString own = QString::number(QCoreApplication::applicationPid());
    const QDir processes("/proc");
    for (const QString &process : processes.entryList({"[1-9]*"}, QDir::Dirs)) {
        if (process == own)
            continue;
        const QDir open("/proc/" + process + "/fd");
        for (const QString &entry : open.entryList(QDir::System | QDir::Files | QDir::NoDotAndDotDot)) {
            if (QFile::symLinkTarget(open.filePath(entry)) != device)
                continue;
            QFile name("/proc/" + process + "/comm");
            return name.open(QIODevice::ReadOnly) ? QString::fromUtf8(name.readAll()).trimmed() : process;
        }
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
