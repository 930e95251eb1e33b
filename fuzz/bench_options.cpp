// Fuzzes: testbench/program/options.cpp
//
// The options of the bench's program, one a line: what they ask for can be built, or they are refused with words.

#include "fuzz/support/case.h"
#include "platform/text.h"
#include "testbench/boards.h"
#include "testbench/program/options.h"

using namespace ombrix;
using namespace ombrix::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    const bool build = input.Below(64) == 0;
    const std::vector<std::string> arguments = Split(input.Rest(), '\n');
    const bench::Options options = bench::ParseOptions(arguments);
    if (!options.trouble.empty())
        return 0;
    const bench::BenchSetup &setup = options.setup;
    Require(setup.board >= 0 && setup.board < bench::board::kCount, "the board is one of them");
    Require((setup.kind == bench::kind::kCtr) == (setup.board == bench::board::kVf), "a counter has its board");
    Require(setup.kind >= bench::kind::kDpm && setup.kind <= bench::kind::kCtr, "the kind is one of them");
    Require(setup.operateDelayMs >= 0, "nothing happens before it was asked for");
    Require(!setup.uut || setup.calibrator, "a meter port has its calibrator");
    if (!build)
        return 0;
    bench::Bench bench(setup);
    for (const std::string &fault : options.faults)
        Require(bench.SwitchFault(fault, true), "a fault that was taken can be switched");
    bench.Receive(bench::Line::Meter, "*1B1\r", 1'000'000);
    bench.Receive(bench::Line::Calibrator, "OUT?\n", 1'000'000);
    bench.Collect(bench::Line::Meter, 20'000'000);
    bench.Collect(bench::Line::Calibrator, 20'000'000);
    return 0;
}
