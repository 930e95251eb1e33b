// A folder that belongs to one program at a time, and who it is.
#pragma once

#include <optional>
#include <string>

namespace ombrix {

/// What a program leaves in a folder while it holds it.
constexpr const char *kLockFile = "Ombrix.lock";

/// Who holds a folder, as the lock file tells it.
struct FolderHolder {
    std::string user;
    std::string machine;
    std::string since;  ///< local time, "2026-11-22 13:05"
    long process = 0;
};

/// What stands in a lock file; nothing when it isn't one.
std::optional<FolderHolder> ReadHolder(const std::string &text);
/// "anna on bench-3 since 2026-11-22 13:05, process 4711".
std::string HolderWords(const FolderHolder &holder);

/// What the system says of a folder whose lock file is there.
struct HoldSigns {
    bool granted = false;    ///< the system's own lock, which goes with its process, was free
    bool shared = false;     ///< other machines may have the folder too, and their locks may not be seen here
    bool ownMachine = true;  ///< the lock file is of this machine
    bool processLives = false;
};
/// Whether the one who left the lock file may still work in the folder.
bool MayStillHold(const HoldSigns &signs);

/// Holds a folder for this program until it lets go or ends, in whatever way.
class FolderHold
{
public:
    FolderHold() = default;
    ~FolderHold() { Release(); }
    FolderHold(const FolderHold &) = delete;
    FolderHold &operator=(const FolderHold &) = delete;

    /// Takes the folder of a file, in place of the one held before, and leaves the lock file there. False when another
    /// program holds it. What a program that is dead has left is taken over. A folder that isn't there counts as free,
    /// and one that can't be written is held without a lock file.
    bool TakeFolderOf(const std::string &path);
    void Release();

    /// Who had the folder when it was refused, in words; "" when nobody has told.
    const std::string &Holder() const { return m_holder; }

private:
    bool Refuse(const std::string &lock, bool locked);

    int m_handle = -1;
    bool m_lockLeft = false;
    std::string m_holder;
};

}  // namespace ombrix
