// What an event of the journal costs while somebody else keeps the disk busy.
#pragma once

#include <string>

namespace ombrix::benchmarks {

struct JournalWrites {
    double medianMs = 0;
    double p99Ms = 0;  ///< 99 of 100 are recorded within this
    double maxMs = 0;
    int syncs = 0;  ///< of the other process meanwhile
};

enum class Disk { Busy, Quiet };

/// Records 10,000 events in `folder` in about 10 s; on a busy disk while another process writes and syncs a file there.
/// Throws std::runtime_error when not all of them are on file, or when nothing was synced.
JournalWrites RecordBeside(Disk disk, const std::string &folder);

/// That other process: writes and syncs the file until it is ended. Returns when it can't.
void KeepSyncing(const std::string &path);

/// What this program is called with to be it, before the file's path.
constexpr const char *kKeepSyncing = "--keep-syncing";

}  // namespace ombrix::benchmarks
