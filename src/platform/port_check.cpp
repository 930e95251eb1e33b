#include "platform/port_check.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace ombrix {
namespace {

namespace fs = std::filesystem;

// Whoever has a pseudo-terminal open together with the maker of such terminals serves its far end.
constexpr const char *kPtyMakers[] = {"/dev/ptmx", "/dev/pts/ptmx"};

bool HoldsAsRival(const fs::path &process, const fs::path &device)
{
    const bool pty = device.string().starts_with("/dev/pts/");
    bool holds = false;
    std::error_code failed;
    // A process may end while it is looked at.
    for (fs::directory_iterator at(process / "fd", failed), end; !failed && at != end; at.increment(failed)) {
        std::error_code closed;
        const fs::path open = fs::read_symlink(at->path(), closed);
        if (pty && std::find(std::begin(kPtyMakers), std::end(kPtyMakers), open) != std::end(kPtyMakers))
            return false;
        holds = holds || open == device;
    }
    return holds;
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
        if (!isProcess || number == own || !HoldsAsRival(process, wanted))
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

// "rw-rw----" of a mode.
std::string ModeText(QFile::Permissions mode)
{
    constexpr std::pair<QFile::Permission, char> kRights[] = {
        {QFile::ReadOwner, 'r'}, {QFile::WriteOwner, 'w'}, {QFile::ExeOwner, 'x'},
        {QFile::ReadGroup, 'r'}, {QFile::WriteGroup, 'w'}, {QFile::ExeGroup, 'x'},
        {QFile::ReadOther, 'r'}, {QFile::WriteOther, 'w'}, {QFile::ExeOther, 'x'}};
    std::string text;
    for (const auto &[right, letter] : kRights)
        text += mode.testFlag(right) ? letter : '-';
    return text;
}

// A group helps only where it has the right itself.
std::string RightsCure(const QFileInfo &device)
{
    const std::string group =
        (device.group().isEmpty() ? QString::number(device.groupId()) : device.group()).toStdString();
    const bool groupMay = device.permission(QFile::ReadGroup | QFile::WriteGroup);
    if (groupMay)
        return "join group " + group + " (sudo usermod -aG " + group + " $USER) and log in again.";
    return "its mode is " + ModeText(device.permissions()) + ", which keeps group " + group +
           " out too. Give the group both rights (sudo chmod g+rw " + device.filePath().toStdString() + ").";
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
    if (!info.isReadable() || !info.isWritable())
        return "Closed to this user: " + RightsCure(info);
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
