// A line of the journal: one event as JSON. Values as they were at hand, text as it came.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace ombrix {

/// What a field holds: a text, a number, a yes or no, or a list of texts.
struct JournalValue {
    JournalValue(const char *text) : is(std::string(text)) {}
    JournalValue(std::string_view text) : is(std::string(text)) {}
    JournalValue(std::string text) : is(std::move(text)) {}
    JournalValue(std::vector<std::string> texts) : is(std::move(texts)) {}
    JournalValue(std::same_as<bool> auto yes) : is(yes) {}
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) JournalValue(Number number) : is(static_cast<double>(number)) {}
    JournalValue(double number) : is(number) {}
    /// The number that a reader of its shortest text would have: 9.737f is 9.737.
    JournalValue(float number);

    bool operator==(const JournalValue &) const = default;

    std::variant<std::string, double, bool, std::vector<std::string>> is;
};

/// Names and values; each name once. Read back they stand in the order of their names.
using JournalFields = std::vector<std::pair<std::string, JournalValue>>;

struct JournalEvent {
    std::int64_t seq = 0;          ///< counts the lines of a station, over months and restarts
    std::string id;                ///< a UUID
    std::string utc;               ///< "2026-11-22T01:39:00.123Z", as the system's clock told
    std::int64_t monotonicMs = 0;  ///< of a clock that never steps, comparable inside one run alone
    std::string station;
    std::string version;  ///< of the program
    std::string visit;    ///< one meter on the station; "" before the first
    std::string kind;
    JournalFields body;
    std::string prev;  ///< hash of the line before; "" in the first line of all
    std::string hash;  ///< of this line; stands in the next one, not in its own

    bool operator==(const JournalEvent &) const = default;
};

/// The value of a field; nullptr when the event has none of that name.
const JournalValue *FieldOf(const JournalEvent &event, std::string_view name);
/// The same as text, number and list; "", 0 and nothing when it is missing or something else.
std::string TextOf(const JournalEvent &event, std::string_view name);
double NumberOf(const JournalEvent &event, std::string_view name);

/// What a line says of an event itself, as members of a JSON object without its braces: always valid UTF-8, whatever an
/// instrument sent. A byte that belongs to no character becomes the four characters "\x9F"; a number that JSON doesn't
/// know becomes a text, "nan".
std::string JournalContent(const JournalEvent &event);

/// The line of an event without its line end, from its content and its place in the chain.
std::string JournalLine(std::int64_t seq, std::string_view content, std::string_view prev);

/// A line longer than this is no event; none that is written comes near it.
constexpr std::size_t kLongestJournalLine = std::size_t{5} << 20;

/// The event of a line without its line end, with the line's hash; nothing when it isn't a whole one.
std::optional<JournalEvent> ParseJournalLine(std::string_view line);

/// SHA-256 of the bytes, 64 lower-case hexadecimal digits.
std::string HashOfLine(std::string_view line);

}  // namespace ombrix
