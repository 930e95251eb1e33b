// Fuzzes: src/session/journal_line.cpp
// Short: 64
//
// A line of the journal: any bytes are an event or none, an event that was read is written as the same, and whatever an
// instrument sent makes a line that can be read.

#include "session/journal_line.h"
#include "fuzz/support/case.h"

#include <cmath>
#include <set>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

// Written and read; nothing of it may change but its own hash.
JournalEvent Again(const JournalEvent &event)
{
    const std::string line = JournalLine(event.seq, JournalContent(event), event.prev);
    Require(line.find('\n') == std::string::npos, "an event is one line");
    auto again = ParseJournalLine(line);
    Require(again.has_value(), "an event that was written can be read");
    Require(again->hash == HashOfLine(line) && again->hash.size() == 64, "an event has its line's hash");
    return *again;
}

void RequireRead(const std::string &line)
{
    const auto event = ParseJournalLine(line);
    if (!event)
        return;
    Require(event->seq >= 1, "events are counted from 1");
    JournalEvent again = Again(*event);
    again.hash = event->hash;
    Require(again == *event, "an event that was read is written as the same");
}

JournalValue ValueOf(Case &input)
{
    switch (input.Below(6)) {
    case 0:
        return {static_cast<double>(input.Long()) / 1000.0};
    case 1:
        return {std::ldexp(static_cast<double>(input.Byte()) - 128, input.Byte() * 8 - 1000)};
    case 2:
        return {input.Below(2) == 1};
    case 3: {
        std::vector<std::string> texts;
        for (int i = input.Below(4); i > 0; --i)
            texts.push_back(input.Line());
        return {std::move(texts)};
    }
    default:
        return {input.Line()};
    }
}

// Texts as an instrument may have sent them, in any bytes.
void RequireWritten(Case &input)
{
    JournalEvent event;
    event.seq = 1 + input.Byte();
    event.monotonicMs = input.Byte();
    event.kind = input.Line();
    event.station = input.Line();
    std::set<std::string> names;
    while (!input.IsOver()) {
        std::string name = "f" + std::to_string(names.size());
        names.insert(name);
        event.body.emplace_back(std::move(name), ValueOf(input));
    }
    const JournalEvent read = Again(event);
    Require(read.body.size() == event.body.size(), "each field is written");
    JournalEvent again = Again(read);
    again.hash = read.hash;
    Require(again == read, "what was read once is read again");
    for (const auto &[name, value] : event.body) {
        const JournalValue *field = FieldOf(read, name);
        Require(field != nullptr, "each field is found by its name");
        const auto *number = std::get_if<double>(&value.is);
        if (number && std::isfinite(*number))
            Require(NumberOf(read, name) == *number, "a number is the same number");
        const auto *text = std::get_if<std::string>(&value.is);
        if (text && IsPrintable(*text))
            Require(TextOf(read, name) == *text, "a text is the same text");
        if (std::holds_alternative<bool>(value.is))
            Require(*field == value, "yes is yes and no is no");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    if (input.Below(2) == 0)
        RequireRead(input.Rest());
    else
        RequireWritten(input);
    return 0;
}
