// Fuzzes: src/session/journal_reader.cpp src/platform/append_file.cpp
//
// A file of the journal that was cut or damaged anywhere: its end, read from behind, is the end of the whole.

#include "fuzz/support/case.h"
#include "fuzz/support/folder.h"
#include "platform/append_file.h"
#include "platform/text.h"
#include "session/journal_reader.h"

using namespace ombrix;
using namespace ombrix::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    // A file is read in pieces of 64 KiB: noise in front moves the lines over their edges.
    const auto noise = static_cast<std::size_t>(input.Below(8) == 7 ? 65'000 + 3 * input.Byte() : 0);
    const std::string text = std::string(noise, '#') + (noise > 0 ? "\n" : "") + input.Rest();
    const std::string path = WriteFileOfCase("2026-11.jsonl", text);
    const auto events = ReadJournalFile(path);
    std::size_t whole = 0;
    for (const std::string &line : Split(text, '\n'))
        whole += ParseJournalLine(line) ? 1 : 0;
    Require(events.size() == whole, "a file is its whole lines");

    AppendFile file;
    Require(file.OpenToRead(path), "the file can be opened");
    const auto tail = ReadJournalTail(file);
    Require(tail.has_value(), "the file has an end");
    Require(tail->insideLine == (!text.empty() && text.back() != '\n'), "a line without its end is told");
    Require(tail->last.has_value() == !events.empty(), "the last event is found where there is one");
    Require(!tail->last || *tail->last == events.back(), "the last event is the last of all");

    const auto trouble = ChainTrouble(events);
    Require(!trouble || *trouble < events.size(), "a break of the chain is at an event");
    return 0;
}
