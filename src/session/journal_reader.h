// The journal read back, from files that may have been cut or damaged anywhere: what is whole is given back, what isn't
// is left out.
#pragma once

#include "session/journal_line.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ombrix {

class AppendFile;

/// Where the months of a station lie: its folder's Journal.
std::string JournalFolder(const std::string &folder);
/// "2026-11.jsonl", the file of a moment such as "2026-11-22T01:39:00.123Z".
std::string JournalMonth(const std::string &utc);

/// The whole events of one file in their order. A last line without a line end counts when it is whole.
std::vector<JournalEvent> ReadJournalFile(const std::string &path);

/// The whole events of all months of a station's folder in the order in which they happened.
std::vector<JournalEvent> ReadJournal(const std::string &folder);

/// The place in a run of events of the first whose `prev` doesn't fit the one before it: a line was changed, taken out
/// or put in. Where the run begins later than with the first line of all, its first event can't be checked.
std::optional<std::size_t> ChainTrouble(const std::vector<JournalEvent> &events);

/// How a file ends.
struct JournalTail {
    std::optional<JournalEvent> last;  ///< the last whole event, nothing when there is none
    bool insideLine = false;           ///< the last line has no line end
    std::int64_t size = 0;             ///< of the file, in bytes
};

/// The end of an open file, read from its end backward; nothing when it can't be read.
std::optional<JournalTail> ReadJournalTail(const AppendFile &file);

/// The last event that a station's folder holds, from the ends of its months alone. A month that can't be read is
/// passed over.
std::optional<JournalEvent> LastJournalEvent(const std::string &folder);

}  // namespace ombrix
