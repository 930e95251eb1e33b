// Everything that was said on the bench, in both directions, with its times.
#pragma once

#include <string>
#include <vector>

#include "testbench/lines.h"
#include "testbench/wire.h"

namespace ombrix::bench {

struct TranscriptLine {
    Micros time = 0;
    Line line = Line::Meter;
    bool fromStation = false;
    std::string text;  ///< bytes made readable
    std::string note;  ///< "lost: the meter restarts", "" mostly
};

/// "12.345678 > meter      *1B1  (lost: the meter restarts)".
std::string TranscriptText(const TranscriptLine &line);
/// The last lines, one each.
std::string TranscriptText(const std::vector<TranscriptLine> &lines, std::size_t last);

}  // namespace ombrix::bench
