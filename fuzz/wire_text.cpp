// Fuzzes: src/links/wire_text.cpp
//
// A saved trace: any text is read without harm, what was read is written as it stood, what was written is read back.

#include "links/wire_text.h"
#include "fuzz/support/case.h"
#include "platform/text.h"

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr std::int64_t kLastMoment = 253'402'300'800'000'000;  // the year 10000, microseconds since 1970

void RequireSameAgain(const WireRow &row, const char *rule)
{
    const std::string text = WireText(row);
    Require(text.find('\n') == std::string::npos, "a row is one line");
    Require(ParseWireText(text) == row, rule);
    Require(ParseWireText(text + "\r") == row, "a row may end as other systems end lines");
}

void RequireWritten(Case &input)
{
    WireRow row;
    row.micros = static_cast<std::int64_t>(static_cast<std::uint64_t>(input.Long()) % kLastMoment) / 1000 * 1000;
    row.line = static_cast<TraceLine>(input.Below(2));
    row.way = static_cast<ByteWay>(input.Below(4));
    row.bytes = input.Rest();
    RequireSameAgain(row, "a row that was written is read back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    if (input.Below(2) == 1) {
        RequireWritten(input);
        return 0;
    }
    const std::string text = input.Rest();
    const auto rows = ParseWireTexts(text);
    std::size_t lines = 0;
    for (const std::string &line : Split(text, '\n'))
        lines += ParseWireText(line) ? 1 : 0;
    Require(rows.size() == lines, "a text is its lines");
    for (const WireRow &row : rows)
        RequireSameAgain(row, "a row that was read is written and read back");
    return 0;
}
