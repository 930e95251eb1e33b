#include "platform/folder_hold.h"

#include "platform/safe_file.h"
#include "platform/text.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <pwd.h>
#include <sys/file.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace ombrix {
namespace {

// File systems that several machines may have at once (NFS, SMB, CIFS, SMB2, 9P, FUSE, AFS, Ceph): what one of them locks,
// another may not see.
constexpr std::array<unsigned, 8> kSharedSystems = {0x6969,     0x517B,     0xFF534D42, 0xFE534D42,
                                                    0x01021997, 0x65735546, 0x5346414F, 0x00C36400};

std::string UserName()
{
    const passwd *entry = getpwuid(geteuid());
    return entry ? entry->pw_name : "user " + std::to_string(geteuid());
}

FolderHolder ThisProgram()
{
    return {UserName(), QSysInfo::machineHostName().toStdString(),
            QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm").toStdString(), getpid()};
}

std::string TextOf(const FolderHolder &holder)
{
    return "user=" + holder.user + "\nmachine=" + holder.machine + "\nsince=" + holder.since +
           "\nprocess=" + std::to_string(holder.process) + "\n";
}

bool IsShared(int folder)
{
    struct statfs system {
    };
    const bool known = fstatfs(folder, &system) == 0;
    return known && std::find(kSharedSystems.begin(), kSharedSystems.end(), static_cast<unsigned>(system.f_type)) !=
                        kSharedSystems.end();
}

bool Lives(long process)
{
    return process > 0 && (kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM);
}

std::string LockBeside(const QFileInfo &file)
{
    return file.dir().filePath(kLockFile).toStdString();
}

// The system's lock of a folder: 0, or why it isn't granted. Who looks at the open files of a program that gives one up
// keeps it for a moment more: one that nobody has signed is asked for again.
int AskForLock(int folder, const std::string &lock)
{
    constexpr int kTries = 100;
    constexpr int kPauseMicros = 1000;
    for (int left = kTries; left > 0; --left) {
        if (flock(folder, LOCK_EX | LOCK_NB) == 0)
            return 0;
        if (errno != EWOULDBLOCK)
            return errno;
        if (StateOfFile(lock) != FileState::Missing)
            break;
        usleep(kPauseMicros);
    }
    return EWOULDBLOCK;
}

enum class Lock { Left, None, Taken };

// A new lock file. Where another program makes one in the same moment, one of the two finds it taken.
Lock LeaveLock(int folder)
{
    unlinkat(folder, kLockFile, 0);
    const int handle = openat(folder, kLockFile, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (handle < 0)
        return errno == EEXIST ? Lock::Taken : Lock::None;
    const std::string text = TextOf(ThisProgram());
    const bool whole = write(handle, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(handle);
    if (!whole)
        unlinkat(folder, kLockFile, 0);
    return whole ? Lock::Left : Lock::None;
}

}  // namespace

std::optional<FolderHolder> ReadHolder(const std::string &text)
{
    std::map<std::string, std::string> values;
    for (const std::string &line : Split(text, '\n'))
        if (const std::size_t equals = line.find('='); equals != std::string::npos)
            values[line.substr(0, equals)] = line.substr(equals + 1);
    const FolderHolder holder{values["user"], values["machine"], values["since"],
                              std::strtol(values["process"].c_str(), nullptr, 10)};
    if (holder.machine.empty() || holder.process <= 0)
        return std::nullopt;
    return holder;
}

std::string HolderWords(const FolderHolder &holder)
{
    return holder.user + " on " + holder.machine + " since " + holder.since + ", process " +
           std::to_string(holder.process);
}

bool MayStillHold(const HoldSigns &signs)
{
    if (signs.ownMachine)
        return !signs.granted && signs.processLives;
    return signs.shared || !signs.granted;
}

bool FolderHold::Refuse(const std::string &lock, bool locked)
{
    Release();
    const std::optional<FolderHolder> holder = ReadHolder(ReadFile(lock).value_or(""));
    if (!holder)
        return false;
    m_holder = HolderWords(*holder);
    if (!locked || holder->machine != ThisProgram().machine)
        m_holder += "; when it runs no more, remove " + lock;
    return false;
}

bool FolderHold::TakeFolderOf(const std::string &path)
{
    Release();
    m_holder.clear();
    const QFileInfo file(QString::fromStdString(path));
    m_handle = open(QFile::encodeName(file.path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_handle < 0)
        return true;
    const std::string lockFile = LockBeside(file);
    const int error = AskForLock(m_handle, lockFile);
    if (error == EWOULDBLOCK)
        return Refuse(lockFile, true);
    const std::optional<FolderHolder> left = ReadHolder(ReadFile(lockFile).value_or(""));
    if (left &&
        MayStillHold({error == 0, IsShared(m_handle), left->machine == ThisProgram().machine, Lives(left->process)}))
        return Refuse(lockFile, false);
    const Lock lock = LeaveLock(m_handle);
    m_lockLeft = lock == Lock::Left;
    return lock != Lock::Taken || Refuse(lockFile, false);
}

void FolderHold::Release()
{
    if (m_lockLeft)
        unlinkat(m_handle, kLockFile, 0);
    m_lockLeft = false;
    if (m_handle >= 0)
        close(m_handle);
    m_handle = -1;
}

}  // namespace ombrix
