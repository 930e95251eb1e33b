// What a test finds in the journal of its folder.
#pragma once

#include "session/journal_reader.h"

#include <string>
#include <vector>

namespace ombrix::test {

/// The events of a kind, in their order.
inline std::vector<JournalEvent> EventsOf(const std::string &kind)
{
    std::vector<JournalEvent> found;
    for (const JournalEvent &event : ReadJournal("."))
        if (event.kind == kind)
            found.push_back(event);
    return found;
}

}  // namespace ombrix::test
