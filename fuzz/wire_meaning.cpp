// Fuzzes: src/links/wire_meaning.cpp src/links/wire_text.cpp
// Short: 64
//
// Any bytes on both lines: no byte is lost on the way into rows, and a saved trace reads as it was.

#include "links/wire_meaning.h"
#include "fuzz/support/case.h"
#include "links/wire_text.h"

#include <array>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

using Sides = std::array<std::string, 2>;

// A case: line, way and length of each piece, then its bytes.
std::vector<TraceRecord> RecordsOf(Case &input)
{
    std::vector<TraceRecord> records;
    std::int64_t micros = 1'795'000'000'000'000;
    while (!input.IsOver()) {
        const int kind = input.Byte();
        TraceRecord record;
        record.micros = micros += std::int64_t{kind / 8} * 1000;
        record.line = static_cast<TraceLine>(kind % 2);
        record.way = static_cast<ByteWay>(kind / 2 % 4);
        record.bytes = input.Bytes(1 + static_cast<std::size_t>(input.Byte()));
        if (!record.bytes.empty())
            records.push_back(std::move(record));
    }
    return records;
}

// Every byte with its way in front, so that pieces and rows can be compared.
template <class Rows> Sides BytesWithWays(const Rows &rows)
{
    Sides bytes;
    for (const auto &row : rows)
        for (const char byte : row.bytes) {
            std::string &side = bytes[static_cast<std::size_t>(row.line)];
            side += static_cast<char>('0' + static_cast<int>(row.way));
            side += byte;
        }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const auto records = RecordsOf(input);
    const auto rows = WireRows(records);
    Require(BytesWithWays(rows) == BytesWithWays(records), "each byte stands in a row, in its order");

    std::string text;
    for (const WireRow &row : rows) {
        Require(IsShown(row.meaning), "a meaning can be shown");
        text += WireText(row) + "\n";
    }
    auto again = ParseWireTexts(text);
    Require(again.size() == rows.size(), "a saved trace has its rows");
    for (std::size_t i = 0; i < rows.size(); ++i)
        Require(again[i] == rows[i], "a saved trace reads as it was");
    return 0;
}
