// What stands in a trace, line by line: which bytes make up one, and what it means in the system's words. Pure.
#pragma once

#include "platform/wire_trace.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace ombrix {

/// One line that was sent or came, with its end; a piece of one whose end never came; or a mark.
struct WireRow {
    std::int64_t micros = 0;  ///< of its first byte
    TraceLine line = TraceLine::Meter;
    ByteWay way = ByteWay::Sent;
    std::string bytes;    ///< of a mark its words
    std::string meaning;  ///< "" for what isn't understood, and for a mark
    bool operator==(const WireRow &) const = default;
};

/// Takes records in their order and gives rows. A reply means what was asked for last on its line.
class WireReader
{
public:
    /// The rows that are complete with this record, at the end of `rows`.
    void Take(const TraceRecord &record, std::vector<WireRow> &rows);
    /// What has come of lines whose end hasn't.
    void TakeRest(std::vector<WireRow> &rows);

private:
    // What a meter was asked: "X4" at 20 are four words from 20 downward.
    struct Question {
        char letter = 0;
        int count = 0;
        int address = 0;
    };
    struct Side {
        WireRow open;        // begun, without its end
        Question asked;      // of the meter, on whichever line
        std::string answer;  // of the meter, out of the calibrator's blocks
    };

    static void Leave(Side &side, std::vector<WireRow> &rows);
    static std::string Meaning(Side &side);
    static std::string MeaningOfFrame(Side &side, std::string_view frame);
    static std::string MeaningOfAnswer(Side &side, std::string_view line);
    static std::string MeaningOfBlock(Side &side, std::string_view block);
    static std::string MeaningOfTunnel(Side &side, std::string_view block);

    std::array<Side, 2> m_sides;  // by TraceLine
};

/// All rows of a trace, the unfinished ones last.
std::vector<WireRow> WireRows(const std::vector<TraceRecord> &records);

}  // namespace ombrix
