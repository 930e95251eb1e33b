// Fuzzes: src/platform/wire_trace.cpp
//
// The ring of the lines: a file in any bytes, and any records through the ring itself, which keeps the last of them.

#include "platform/wire_trace.h"
#include "fuzz/support/case.h"

#include <deque>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr std::size_t kLongestRecord = 4096;
constexpr std::size_t kAroundAndMore = kTraceFileBytes + kTraceFileBytes / 16;

void RequireRead(const std::string &file, std::size_t most)
{
    const auto all = ReadTraceBytes(file);
    for (const TraceRecord &record : all)
        Require(record.bytes.size() <= kLongestRecord && record.line <= TraceLine::Calibrator &&
                    record.way <= ByteWay::Mark,
                "a record is whole");
    const auto last = ReadTraceBytes(file, most);
    const std::size_t kept = std::min(most, all.size());
    Require(last == std::vector(all.end() - static_cast<std::ptrdiff_t>(kept), all.end()),
            "the last records are the last of all");
}

// Records in their order, once or until the ring has gone around; in memory, for there is no such folder.
void RequireKept(Case &input, bool around)
{
    OpenTrace("/no such folder");
    std::int64_t now = 0;
    UseTraceClock([&now] { return now; });
    struct Piece {
        TraceLine line;
        ByteWay way;
        std::string bytes;
    };
    std::vector<Piece> pieces;
    while (!input.IsOver()) {
        const int kind = input.Byte();
        const auto length = static_cast<std::size_t>(input.Byte());
        Piece piece{static_cast<TraceLine>(kind % 2), static_cast<ByteWay>(kind / 2 % 4), input.Bytes(length)};
        if (kind >= 128)
            piece.bytes.resize(length * 64, '\xFF');  // longer than a case is
        pieces.push_back(std::move(piece));
    }
    std::deque<TraceRecord> told;
    const int follower = FollowTrace([&told](const TraceRecord &record) {
        told.push_back(record);
        if (told.size() > 8)
            told.pop_front();
    });
    std::size_t traced = 0;
    do {
        const std::size_t before = traced;
        for (const Piece &piece : pieces) {
            ++now;
            Trace(piece.line, piece.way, piece.bytes);
            traced += piece.bytes.size();
        }
        around = around && traced - before >= kLongestRecord;  // small ones would take for ever
    } while (around && traced < kAroundAndMore);
    const auto last = LastTraceRecords(8);
    Require(std::deque(last.begin(), last.end()) == told, "the last records are the last that were traced");
    StopFollowingTrace(follower);
    UseTraceClock({});
    CloseTrace();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int what = input.Byte();
    if (what >= 192)
        RequireKept(input, what == 255);
    else
        RequireRead(input.Rest(), static_cast<std::size_t>(what));
    return 0;
}
