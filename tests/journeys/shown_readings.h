// What a verification has to hold, from what the bench's meter has said.
#pragma once

#include "testbench/bench.h"

#include <algorithm>
#include <string>

namespace ombrix::test {

/// What the display showed last, without its point, as a record of the file holds it.
inline std::string LastShown(const bench::Bench &bench)
{
    std::string shown;
    bool asked = false;
    for (const auto &line : bench.Transcript()) {
        if (line.line != bench::Line::Meter)
            continue;
        if (!line.fromStation && asked)
            shown = line.text.substr(0, line.text.find('\\'));
        asked = line.fromStation && line.text == "*1B1\\r";
    }
    std::string digits;
    for (const char c : shown)
        if (c != '.' && c != ' ')
            digits += c;
    return std::string(6 - std::min<std::size_t>(digits.size(), 6), ' ') + digits;
}

}  // namespace ombrix::test
