#include "links/wire_text.h"

#include "platform/append_file.h"
#include "platform/text.h"
#include "session/kept_remarks.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace ombrix {
namespace {

constexpr std::array<std::string_view, 2> kLines = {"meter", "calibrator"};
constexpr std::array<std::string_view, 4> kWays = {"sent", "received", "dropped", "mark"};
constexpr std::size_t kLineWidth = 12;
constexpr std::size_t kWayWidth = 10;
constexpr std::size_t kMomentLength = 24;

std::string Padded(std::string_view text, std::size_t width)
{
    std::string padded(text);
    padded.resize(std::max(width, text.size()), ' ');
    return padded;
}

// What stands behind a backslash, from `at` on, which then stands behind it. Nothing for what ShownBytes never makes.
std::optional<char> EscapedChar(std::string_view text, std::size_t &at)
{
    if (at >= text.size())
        return std::nullopt;
    const char letter = text[at++];
    switch (letter) {
    case 'r':
        return '\r';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case '\\':
    case '"':
        return letter;
    case 'x':
        break;
    default:
        return std::nullopt;
    }
    const std::string_view digits = text.substr(at, 2);
    if (digits.size() != 2 || !IsHexText(digits))
        return std::nullopt;
    at += 2;
    return static_cast<char>(HexValue(digits));
}

// The bytes of a quoted text that begins at `at`, which then stands behind the closing quote.
std::optional<std::string> QuotedBytes(std::string_view text, std::size_t &at)
{
    if (at >= text.size() || text[at] != '"')
        return std::nullopt;
    ++at;
    std::string bytes;
    while (at < text.size() && text[at] != '"') {
        if (text[at] != '\\') {
            bytes += text[at++];
            continue;
        }
        const auto escaped = EscapedChar(text, ++at);
        if (!escaped)
            return std::nullopt;
        bytes += *escaped;
    }
    if (at++ >= text.size())
        return std::nullopt;
    return bytes;
}

// "2026-11-22T10:15:03.123Z"
std::optional<std::int64_t> ParseMoment(std::string_view text)
{
    using namespace std::chrono;
    constexpr std::string_view kForm = "0000-00-00T00:00:00.000Z";
    if (text.size() != kForm.size())
        return std::nullopt;
    for (std::size_t i = 0; i < kForm.size(); ++i)
        if (kForm[i] == '0' ? text[i] < '0' || text[i] > '9' : text[i] != kForm[i])
            return std::nullopt;
    const auto number = [text](std::size_t at, std::size_t digits) {
        return static_cast<int>(Val(text.substr(at, digits)));
    };
    const year_month_day date{year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                              day(static_cast<unsigned>(number(8, 2)))};
    if (!date.ok())
        return std::nullopt;
    const auto moment = sys_days(date) + hours(number(11, 2)) + minutes(number(14, 2)) + seconds(number(17, 2)) +
                        milliseconds(number(20, 3));
    return duration_cast<microseconds>(moment.time_since_epoch()).count();
}

// The word at `at` as a place in a list of them; `at` then stands behind it and the blanks that follow.
template <std::size_t kCount>
std::optional<std::size_t> ParseName(std::string_view text, std::size_t &at,
                                     const std::array<std::string_view, kCount> &names)
{
    const std::string_view word = text.substr(at, text.find(' ', at) - at);
    const auto found = std::find(names.begin(), names.end(), word);
    if (found == names.end())
        return std::nullopt;
    at = std::min(text.find_first_not_of(' ', at + word.size()), text.size());
    return static_cast<std::size_t>(found - names.begin());
}

// ---- written through ----

struct TraceText {
    AppendFile file;
    std::string path;
    WireReader reader;
    int follower = 0;  // 0: nothing is written
};
TraceText traceText;

void WriteRows(const std::vector<WireRow> &rows)
{
    for (const WireRow &row : rows)
        if (!traceText.file.Append(WireText(row) + "\n")) {
            StopFollowingTrace(traceText.follower);
            traceText.follower = 0;
            return KeepRemarkOn(Subject::TraceText, "The trace is no longer written to " + traceText.path);
        }
}

}  // namespace

std::string MomentText(std::int64_t micros, bool date)
{
    using namespace std::chrono;
    const sys_time<milliseconds> moment{floor<milliseconds>(microseconds(micros))};
    const auto midnight = floor<days>(moment);
    const year_month_day day{midnight};
    const hh_mm_ss<milliseconds> time{moment - midnight};
    std::array<char, 96> text{};  // room for any int in each place
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
    const std::string whole = text.data();
    return date || whole.size() != kMomentLength ? whole : whole.substr(11, 12);
}

std::string_view NameOfLine(TraceLine line)
{
    return kLines[static_cast<std::size_t>(line)];
}

std::string_view NameOfWay(ByteWay way)
{
    return kWays[static_cast<std::size_t>(way)];
}

std::string ShownBytes(std::string_view bytes)
{
    std::string shown;
    for (const char c : bytes) {
        if (c == '\r')
            shown += "\\r";
        else if (c == '\n')
            shown += "\\n";
        else if (c == '\t')
            shown += "\\t";
        else if (c == '\\')
            shown += "\\\\";
        else if (c >= ' ' && c <= '~')
            shown += c;
        else
            shown += "\\x" + HexText(static_cast<unsigned char>(c), 2);
    }
    return shown;
}

std::string WireText(const WireRow &row)
{
    std::string quoted;
    for (const char c : ShownBytes(row.bytes))
        quoted += c == '"' ? std::string("\\\"") : std::string(1, c);
    return MomentText(row.micros, true) + "  " + Padded(NameOfLine(row.line), kLineWidth) +
           Padded(NameOfWay(row.way), kWayWidth) + "\"" + quoted + "\"" +
           (row.meaning.empty() ? "" : "  " + row.meaning);
}

std::optional<WireRow> ParseWireText(std::string_view line)
{
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    const auto moment = ParseMoment(line.substr(0, kMomentLength));
    if (!moment || !line.substr(kMomentLength).starts_with("  "))
        return std::nullopt;
    std::size_t at = kMomentLength + 2;
    const auto name = ParseName(line, at, kLines);
    const auto way = name ? ParseName(line, at, kWays) : std::nullopt;
    auto bytes = way ? QuotedBytes(line, at) : std::nullopt;
    if (!bytes)
        return std::nullopt;
    const std::string_view rest = line.substr(at);
    if (!rest.empty() && !rest.starts_with("  "))
        return std::nullopt;
    return WireRow{*moment, static_cast<TraceLine>(*name), static_cast<ByteWay>(*way), std::move(*bytes), Trim(rest)};
}

std::vector<WireRow> ParseWireTexts(std::string_view text)
{
    std::vector<WireRow> rows;
    for (const std::string &line : Split(text, '\n'))
        if (auto row = ParseWireText(line))
            rows.push_back(std::move(*row));
    return rows;
}

std::string WriteTraceTo(const std::string &path)
{
    EndTraceText();
    errno = EINVAL;  // what is no plain file has no error of its own
    if (!traceText.file.Open(path))
        return std::strerror(errno);
    traceText.path = path;
    traceText.follower = FollowTrace([](const TraceRecord &record) {
        std::vector<WireRow> rows;
        traceText.reader.Take(record, rows);
        WriteRows(rows);
    });
    return "";
}

void EndTraceText()
{
    if (traceText.follower != 0) {
        std::vector<WireRow> rows;
        traceText.reader.TakeRest(rows);
        WriteRows(rows);
    }
    StopFollowingTrace(traceText.follower);
    traceText.follower = 0;
    traceText.file.Close();
    traceText.reader = {};
}

}  // namespace ombrix
