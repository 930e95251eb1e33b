// Fuzzes: testbench/uut_port.cpp
// Short: 64
//
// The bench's meter port: lines out of any bytes, blocks inside of them.

#include "fuzz/support/case.h"
#include "platform/text.h"
#include "testbench/bench.h"
#include "testbench/uut_port.h"

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr bench::Micros kLong = 20'000'000;

void RequireLines(const std::string &bytes)
{
    bench::CommandReader reader;
    std::string told;
    std::size_t taken = 0;
    for (const char byte : bytes) {
        ++taken;
        const auto line = reader.Take(byte);
        if (!line)
            continue;
        told += *line + byte;
        Require(told == bytes.substr(0, taken), "lines are what came, none lost and none twice");
        if (!line->starts_with("UUT_SEND "))
            Require(!Holds(*line, "\n"), "a line ends with its first line end");
        else if (const auto data = bench::BlockData(line->substr(9)))
            Require(line->ends_with(*data), "a block's data stand at its end");
    }
}

// A meter behind the port in whatever is told to the calibrator; what it says are lines and blocks.
void RequireAnswers(const std::string &bytes, int seed)
{
    bench::BenchSetup setup;
    setup.uut = true;
    bench::Bench calibrator(setup);
    const bench::Words before = calibrator.Nvm();
    bench::Micros now = 1'000'000;
    for (const std::string &piece : Pieces(bytes, seed))
        calibrator.Receive(bench::Line::Calibrator, piece, now);
    now += kLong;
    const std::string said = calibrator.Collect(bench::Line::Calibrator, now);
    Require(said.empty() || said.ends_with("\r\n"), "an answer has its end");
    Require(calibrator.Collect(bench::Line::Meter, now).empty(), "nothing is on the meter's own line");
    if (!Holds(bytes, "W"))
        Require(calibrator.Nvm() == before, "what writes no word changes none");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const int seed = input.Byte();
    const bool whole = input.Below(32) == 0;
    const std::string text = input.Rest();
    if (text.size() < 4000)  // beyond, a line is cut off
        RequireLines(text);
    if (whole && text.size() <= 400)
        RequireAnswers(text, seed);
    return 0;
}
