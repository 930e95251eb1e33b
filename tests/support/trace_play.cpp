#include "support/trace_play.h"

#include "links/wire_text.h"
#include "platform/safe_file.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ombrix::test {

std::vector<WireRow> TraceNamed(const std::string &name)
{
    auto rows = ParseWireTexts(ReadFile(TRACE_FOLDER "/" + name).value_or(""));
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

void Plays(FakeLine &line, const std::vector<WireRow> &rows, TraceLine which)
{
    std::string request;
    std::string reply;
    std::int64_t asked = 0;
    std::int64_t answered = 0;
    const auto tell = [&] {
        if (!request.empty())
            line.Answers(request, reply, static_cast<int>(std::max<std::int64_t>(answered - asked, 0) / 1000));
        reply.clear();
    };
    for (const WireRow &row : rows) {
        if (row.line != which || row.way == ByteWay::Mark)
            continue;
        if (row.way == ByteWay::Sent) {
            tell();
            request = row.bytes;
            asked = answered = row.micros;
            continue;
        }
        if (reply.empty())
            answered = row.micros;
        reply += row.bytes;
    }
    tell();
}

}  // namespace ombrix::test
