// Fuzzes: testbench/meter_frame.cpp testbench/meter.cpp testbench/wire.cpp testbench/display.cpp
// Short: 64
//
// What the bench's meter hears: frames in any split, frames as the station makes them, and noise, which never changes
// its memory.

#include "fuzz/support/case.h"
#include "links/meter_frame.h"
#include "platform/text.h"
#include "testbench/bench.h"
#include "testbench/meter_frame.h"

#include <algorithm>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr bench::Micros kLong = 20'000'000;  // until all of a case is heard and a restart is over
constexpr bench::Micros kLook = 500'000;
constexpr std::size_t kMuch = 1000;  // longer than replies are: the stream of counts never ends

std::vector<std::string> FramesIn(std::string_view bytes)
{
    std::vector<std::string> frames;
    bench::FrameReader reader;
    for (const char byte : bytes)
        if (const auto frame = reader.Take(byte, 0))
            frames.push_back(frame->text);
    return frames;
}

void RequireParsed(const std::string &text)
{
    const bench::ParsedFrame parsed = bench::ParseFrame(text);
    Require(parsed.command.has_value() == parsed.trouble.empty(), "a frame is a command or has a trouble");
    Require(IsPrintable(bench::Readable(text)), "bytes are readable");
    if (!parsed.command)
        return;
    const bench::MeterCommand &command = *parsed.command;
    std::string payload = std::string(1, command.letter) + command.variant;
    if (command.variant == 0)
        payload =
            MeterPayload(command.letter, command.address, command.count, command.data + (command.goOn ? "Z" : ""));
    Require(text == "*" + std::string(1, command.meter) + payload,
            "a command is the frame that the station makes of it");
    if (command.variant == 0)
        Require(command.count >= 1 && command.count <= 35 && command.address <= 255 &&
                    command.address - command.count + 1 >= 0,
                "a run lies in the memory");
}

bool Writes(const std::string &text)
{
    const auto parsed = bench::ParseFrame(text);
    return parsed.command && parsed.command->letter == 'W' && parsed.command->meter == '1';
}

void RequireHeard(int board, const std::string &bytes, int seed)
{
    bench::BenchSetup setup;
    setup.board = board;
    bench::Bench meter(setup);
    const bench::Words before = meter.Nvm();
    bench::Micros now = 1'000'000;
    std::string said;
    for (const std::string &piece : Pieces(bytes, seed)) {
        meter.Receive(bench::Line::Meter, piece, now);
        now += static_cast<bench::Micros>(piece.size() + 1) * bench::kByteMicros;
        said += meter.Collect(bench::Line::Meter, now);
    }
    for (const bench::Micros end = now + kLong; now < end && said.size() < kMuch;)
        said += meter.Collect(bench::Line::Meter, now += kLook);
    const auto frames = FramesIn(bytes);
    if (std::none_of(frames.begin(), frames.end(), Writes))
        Require(meter.Nvm() == before, "what writes no word changes none");
    if (std::none_of(frames.begin(), frames.end(), [](const auto &frame) { return bench::ParseFrame(frame).command; }))
        Require(said.empty(), "noise has no answer");
    for (const auto &line : meter.Transcript())
        Require(IsPrintable(line.text), "the transcript is readable");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int seed = input.Byte();
    const int board = input.Byte();
    const std::string text = input.Rest();
    for (const std::string &frame : FramesIn(text))
        RequireParsed(frame);
    RequireParsed(text);
    if (board < 9 && text.size() <= 400)  // few cases: a whole bench takes its time
        RequireHeard(board, text, seed);
    return 0;
}
