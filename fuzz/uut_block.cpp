// Fuzzes: src/links/uut.cpp
// Short: 64
//
// Blocks of the calibrator's meter port in their three forms, in any split, and blocks that are none.

#include "fuzz/support/case.h"
#include "fuzz/support/instruments.h"
#include "links/uut.h"
#include "platform/text.h"
#include "testbench/uut_port.h"

#include <algorithm>
#include <optional>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

// What more bytes never change: a whole block and its data, a bad one.
void RequireSameWhateverFollows(std::string_view buffer)
{
    UutBlock last;
    for (std::size_t size = 0; size <= buffer.size(); ++size) {
        const UutBlock block = ParseUutBlock(buffer.substr(0, size));
        if (last.state != UutState::NeedsMore)
            Require(block.state == last.state && block.start == last.start && block.length == last.length,
                    "a block that is told stays as it is, whatever follows");
        if (block.state == UutState::Whole)
            Require(block.start + block.length + 2 <= size, "a whole block and its end lie in the buffer");
        last = block;
    }
}

// The calibrator's answer to one question, in pieces.
std::string Received(const std::string &answer, int seed)
{
    Instruments instruments;
    instruments.UseUutRoute();
    const auto pieces = Pieces(answer, seed);
    instruments.calibrator.onWrite = [&](const std::string &) { SayInPieces(instruments.calibrator, pieces, 1, 3); };
    return UutReceive();
}

void RequireReadBack(const std::string &data, int seed)
{
    for (const auto form : {bench::BlockForm::Shortest, bench::BlockForm::TwoDigits, bench::BlockForm::OpenEnded}) {
        bench::UutPort port;
        port.UseForm(form);
        port.Hear(data);
        const std::string block = port.TakeBlock() + "\r\n";
        Require(Received(block, seed) == data,
                "what the meter said comes out of its block, in each form and any split");
    }
}

// The bench takes command lines of 4096 bytes, which no frame comes near.
constexpr std::size_t kLongestFrame = 1024;

void RequireSent(const std::string &frame)
{
    Instruments instruments;
    instruments.UseUutRoute();
    UutSend(frame);
    bench::CommandReader reader;
    std::optional<std::string> line;
    for (const char byte : instruments.calibrator.Heard()) {
        Require(!line, "one frame is one command");
        line = reader.Take(byte);
    }
    Require(line && line->starts_with("UUT_SEND ") && bench::BlockData(line->substr(9)) == frame,
            "a frame comes out of its command as it went in");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int form = input.Below(3);
    const int seed = input.Byte();
    const std::string text = input.Rest();
    if (form == 0) {
        // As the receiver does: what stands before the first '#' is nothing.
        const std::string buffer = text.substr(std::min(text.find('#'), text.size()));
        RequireSameWhateverFollows(std::string_view(buffer).substr(0, 200));
        Require(Received(text, seed) == Received(text, 0), "a block means the same in any split");
    } else if (form == 1) {
        RequireReadBack(text, seed);
    } else {
        RequireSent(Left(text, kLongestFrame));
    }
    return 0;
}
