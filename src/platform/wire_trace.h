// Every byte of both lines with its moment, in a ring of 4 MiB: the last hours of what was said.
//
// The ring is the file Ombrix.trace, mapped into memory, so it outlives the program however that ends. A record costs
// one look at the file's size and no memory. The file of a run that ended without goodbye is kept as Ombrix.trace.old.
#pragma once

#include "platform/serial_port.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

constexpr std::size_t kTraceFileBytes = std::size_t{4} << 20;
constexpr const char *kTraceFile = "Ombrix.trace";
constexpr const char *kOldTraceFile = "Ombrix.trace.old";

enum class TraceLine : std::uint8_t { Meter, Calibrator };

struct TraceRecord {
    std::int64_t micros = 0;  ///< since 1970, UTC
    TraceLine line = TraceLine::Meter;
    ByteWay way = ByteWay::Sent;
    std::string bytes;  ///< of a mark its words
    bool operator==(const TraceRecord &) const = default;
};

struct TraceOpened {
    std::string trouble;   ///< why there is no file, "" when there is one
    bool oldKept = false;  ///< the run before ended without goodbye: its records are in Ombrix.trace.old
};
/// Begins a new ring in a folder. Without a file (no room, no rights, another program has it) it stands in memory alone.
TraceOpened OpenTrace(const std::string &folder);
/// Told why, when the ring has to leave its file because somebody else has cut it short or its disk takes no more of it:
/// from then on it stands in memory, empty at first. nullptr: nobody is told.
void UseTraceTrouble(std::function<void(const std::string &why)> told);

/// The goodbye. What is traced after it goes nowhere.
void CloseTrace();
/// When the run whose trace lies in a folder said it, in microseconds since 1970; 0 for one that didn't, and without a
/// trace. To be asked before OpenTrace puts the file out of the way.
std::int64_t GoodbyeOfTrace(const std::string &folder);

/// What the line took or gave, or words about it. Does nothing while no trace is open.
void Trace(TraceLine line, ByteWay way, std::string_view bytes);
void MarkTrace(TraceLine line, std::string_view words);

/// The last `most` records, oldest first.
std::vector<TraceRecord> LastTraceRecords(std::size_t most);
/// Pure: the same out of a file's bytes, wherever it was cut or its writer was killed: whole records alone. None for
/// what is no trace.
std::vector<TraceRecord> ReadTraceBytes(std::string_view file, std::size_t most = SIZE_MAX);

/// Told each record when it is in the ring. All of them are told; the number is for StopFollowingTrace.
using TraceFollower = std::function<void(const TraceRecord &record)>;
int FollowTrace(TraceFollower follower);
void StopFollowingTrace(int number);

/// For a handler of SIGBUS, which a touch of the ring raises where the system finds no page for it: memory comes into the
/// place of the file, and the touch may be done again. False when this is no address of the ring.
bool TakeRefusedTouch(const void *address) noexcept;

/// Writes the last records as text, for a handler of a deadly signal: no memory is asked for, nothing is locked.
void WriteTraceTail(int handle) noexcept;

/// For tests: the system's clock as the trace sees it, in microseconds since 1970; nullptr brings the real one back.
void UseTraceClock(std::function<std::int64_t()> clock);

}  // namespace ombrix
