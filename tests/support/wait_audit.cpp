#include "support/wait_audit.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace ombrix::test {
namespace {

using bench::TranscriptLine;

constexpr std::int64_t kMs = 1000;  // in microseconds
constexpr std::int64_t kStop = 1000 * kMs;
constexpr std::int64_t kLivePause = 300 * kMs;

// What is waited around one command.
struct Rule {
    std::int64_t before = 0;
    std::int64_t after = 0;  // from its first byte
    bool reply = false;      // then until the last byte of the reply
};

std::size_t Bytes(const std::string &readable)
{
    return readable.size() - static_cast<std::size_t>(std::count(readable.begin(), readable.end(), '\\'));
}

std::optional<Rule> CalibratorRule(const std::string &text)
{
    if (text.starts_with("OPER?"))
        return Rule{500 * kMs, 0, true};
    if (text.starts_with("ERR?") || text.starts_with("OUT?"))
        return Rule{0, 0, true};
    if (text.starts_with("OUT ") || text.starts_with("*RST") || text.starts_with("REMOTE"))
        return Rule{};
    return std::nullopt;
}

// "*1W21165280060Z\r": the letter, a count, an address, the data, Z when the meter doesn't restart.
std::optional<Rule> MeterRule(const std::string &text, bool readBefore)
{
    const std::string payload = text.substr(2, text.size() - 4);
    const bool goesOn = payload.ends_with('Z');
    const auto digits = static_cast<std::int64_t>(payload.size()) - 4 - (goesOn ? 1 : 0);
    if (payload == "X16DZ")
        return Rule{0, 0, true};  // the first question to a meter is waited for as long as it takes
    if (payload == "B1")
        return Rule{readBefore ? kLivePause : 0, 0, true};
    if (payload == "A1")
        return Rule{0, 200 * kMs};
    if (payload == "CZ")
        return Rule{0, 1000 * kMs};
    switch (payload.front()) {
    case 'G':
        return Rule{0, 500 * kMs};
    case 'F':
        return Rule{0, digits / 2 * 4 * kMs};
    case 'X':
        return Rule{0, (goesOn ? 500 : 500 + 1750) * kMs};
    case 'W':
        return Rule{0, goesOn ? digits / 4 * 8 * kMs : 1750 * kMs};
    default:
        return std::nullopt;
    }
}

std::int64_t EndOf(const TranscriptLine &reply)
{
    return reply.time + static_cast<std::int64_t>(Bytes(reply.text)) * bench::kByteMicros;
}

class Auditor
{
public:
    Auditor(const std::vector<std::int64_t> &begins, const std::vector<std::int64_t> &stops)
        : m_begins(begins), m_stops(stops)
    {}

    void Look(const TranscriptLine &command, const TranscriptLine *reply)
    {
        const bool isRead = command.text == "*1B1\\r";
        const auto rule =
            command.line == bench::Line::Meter ? MeterRule(command.text, m_readBefore) : CalibratorRule(command.text);
        if (!rule || (rule->reply && !reply)) {
            audit.trouble.push_back("no wait is known for " + TranscriptText(command));
            return;
        }
        ++audit.commands;
        const std::int64_t start = command.time - static_cast<std::int64_t>(Bytes(command.text)) * bench::kByteMicros;
        const int waits = TakeClicks(start) + m_hidden + 1;
        std::int64_t &lineFree = m_lineFree[command.line == bench::Line::Meter ? 0 : 1];
        const std::int64_t due = m_now + rule->before;
        const std::int64_t late = start - std::max(due, lineFree);
        audit.lateMicros += late;
        if (late < 0 || late > waits * kMs)
            audit.trouble.push_back(Format(static_cast<double>(late) / kMs, 3) +
                                    " ms late: " + TranscriptText(command));
        m_hidden = due < lineFree ? 1 : 0;
        const std::int64_t sent = due < lineFree ? due : start;
        m_now = rule->reply ? EndOf(*reply) : sent + rule->after;
        lineFree = command.time;
        m_readBefore = isRead;
        audit.endMicros = m_now;
    }

    WaitAudit audit;

private:
    // What the operator did before the command left; the number of waits that came of it.
    int TakeClicks(std::int64_t start)
    {
        int waits = 0;
        for (; m_begin < m_begins.size() && m_begins[m_begin] <= start; ++m_begin)
            m_now = std::max(m_now, m_begins[m_begin]);
        for (; m_stop < m_stops.size() && m_stops[m_stop] < start; ++m_stop) {
            // The reading in work and the pause after it end inside the second that counts from the click.
            m_now = m_stops[m_stop] + kStop;
            m_readBefore = false;
            ++waits;
        }
        return waits;
    }

    const std::vector<std::int64_t> &m_begins;
    const std::vector<std::int64_t> &m_stops;
    std::size_t m_begin = 0;
    std::size_t m_stop = 0;
    std::int64_t m_now = 0;
    std::array<std::int64_t, 2> m_lineFree{};
    bool m_readBefore = false;
    int m_hidden = 0;  // 1 when the last command stood behind another on its line, so that its own wait isn't seen
};

}  // namespace

WaitAudit AuditWaits(const std::vector<TranscriptLine> &transcript, const std::vector<std::int64_t> &begins,
                     const std::vector<std::int64_t> &stops)
{
    Auditor auditor(begins, stops);
    for (std::size_t i = 0; i < transcript.size(); ++i) {
        const bool answered = i + 1 < transcript.size() && !transcript[i + 1].fromStation;
        if (transcript[i].fromStation)
            auditor.Look(transcript[i], answered ? &transcript[i + 1] : nullptr);
    }
    return auditor.audit;
}

}  // namespace ombrix::test
