// Fuzzes: src/links/meter_frame.cpp src/links/meter_protocol.cpp src/links/meter_operations.cpp
// Short: 64
//
// What a meter answers: words, bytes and readings are read out of any bytes, in any split. A reply that isn't one never
// becomes a word, a byte or a reading.

#include "fuzz/support/case.h"
#include "fuzz/support/instruments.h"
#include "links/meter_frame.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <cmath>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

enum class Reads { Words, Bytes, Display };

struct Question {
    Reads what = Reads::Words;
    int count = 0;
    int address = 0;
};

struct Outcome {
    std::string text;
    bool overRange = false;
    bool operator==(const Outcome &) const = default;
};

// A meter that says the replies in their order, one to each question and the last one again and again, each in pieces
// that come in less time than a meter gets.
Outcome Asked(const Question &question, const std::vector<std::string> &replies, int seed)
{
    Instruments instruments;
    MeterKind = kDpm;
    std::size_t next = 0;
    instruments.meter.onWrite = [&](const std::string &) {
        const auto pieces = Pieces(replies[std::min(next++, replies.size() - 1)], seed);
        SayInPieces(instruments.meter, pieces, 1, 400 / static_cast<int>(pieces.size() + 1));
    };
    switch (question.what) {
    case Reads::Words:
        return {ReadNvmWords(question.address, question.count, "Z"), false};
    case Reads::Bytes:
        return {ReadRamBytes(question.address, question.count), false};
    case Reads::Display:
        break;
    }
    std::string text = ReadDisplayRaw();
    return {text, DisplayIsOverRange()};
}

// The items that a right meter's line would hold; "" for any other line.
std::string ItemsOf(const std::string &reply, std::size_t digits)
{
    const std::size_t end = reply.find('\r');
    const std::string hex = end == std::string::npos ? "" : UpperHex(reply.substr(0, end));
    const bool right = hex.size() == digits && hex.find_first_not_of("0123456789ABCDEF") == std::string::npos;
    return right ? hex : "";
}

void RequireReading(const Outcome &outcome, const std::string &reply)
{
    if (outcome.text.empty())
        return;
    Require(!outcome.overRange, "a reading isn't over range");
    Require(outcome.text.find_first_not_of("+-.0123456789") == std::string::npos &&
                std::count(outcome.text.begin(), outcome.text.end(), '.') == 1 &&
                outcome.text.find_last_of("+-") + 1 <= 1,
            "a reading is a number with one point");
    Require(std::isfinite(Val(outcome.text)), "a reading is a number that can be reckoned with");
    const std::size_t end = reply.find('\r');
    Require(end != std::string::npos && outcome.text == Trim(reply.substr(0, end)), "a reading is the meter's line");
}

std::vector<std::string> RepliesOf(const std::string &text)
{
    std::vector<std::string> replies;
    for (std::string &reply : Split(text, '\0'))
        replies.push_back(std::move(reply));
    return replies;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const auto what = static_cast<Reads>(input.Below(3));
    const Question question{what, 1 + input.Below(70), 255 - input.Below(100)};
    const int seed = input.Byte();
    const std::vector<std::string> replies = RepliesOf(input.Rest());
    if (size > kReplyLimit)
        return 0;  // where it stops listening depends on how the bytes come

    const Outcome whole = Asked(question, replies, 0);
    const bool oneQuestion = question.count <= 35 || what == Reads::Display;
    const std::size_t itemDigits = what == Reads::Words ? 4 : 2;
    const std::size_t digits = static_cast<std::size_t>(question.count) * itemDigits;
    if (what == Reads::Display)
        RequireReading(whole, replies[0]);
    else
        Require(whole.text.empty() || (whole.text.size() == digits && IsHexText(whole.text)),
                "what is read are so many items or none");
    if (what == Reads::Words && oneQuestion)
        Require(whole.text == ItemsOf(replies[0], digits), "words are the meter's line, and nothing else becomes one");
    if (what == Reads::Bytes && oneQuestion && !whole.text.empty())
        Require(std::any_of(replies.begin(), replies.end(),
                            [&](const std::string &reply) { return ItemsOf(reply, digits) == whole.text; }),
                "bytes are one of the meter's lines");
    if (seed != 0)
        Require(Asked(question, replies, seed) == whole, "a reply means the same in any split");
    return 0;
}
