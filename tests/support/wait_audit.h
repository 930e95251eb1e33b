// Holds the transcript of a session against the waits that each command must be given.
//
// A clock of its own goes along the transcript: it adds what has to be waited before and after each command, follows
// the replies that are really waited for, and says when the next command had to come.
#pragma once

#include "testbench/bench.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ombrix::test {

struct WaitAudit {
    int commands = 0;                  ///< that were looked at
    std::int64_t lateMicros = 0;       ///< by which they came later than they had to, all together
    std::int64_t endMicros = 0;        ///< when the last one's wait was over
    std::vector<std::string> trouble;  ///< too early, more than 1 ms a wait too late, or without a known wait
};

/// `begins` are the moments at which the operator set the station going, `stops` those at which he ended a live
/// reading. Meter and calibrator have a line each.
WaitAudit AuditWaits(const std::vector<bench::TranscriptLine> &transcript, const std::vector<std::int64_t> &begins,
                     const std::vector<std::int64_t> &stops);

}  // namespace ombrix::test
