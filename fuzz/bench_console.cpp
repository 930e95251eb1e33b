// Fuzzes: testbench/console.cpp testbench/faults.cpp testbench/laws.cpp testbench/truth.cpp
// Short: 64
//
// What is typed at the bench, any lines one after the other.

#include "fuzz/support/case.h"
#include "platform/text.h"
#include "testbench/bench.h"
#include "testbench/console.h"

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

// "word 17 12AB" by itself.
void RequireWord(bench::Bench &bench, const std::string &line)
{
    const auto words = Split(line, ' ');
    if (words.size() != 3 || words[0] != "word" || words[1].find_first_not_of("0123456789") != std::string::npos ||
        words[1].empty() || words[1].size() > 3 || !IsHexText(words[2]) || words[2].size() > 4)
        return;
    const auto number = static_cast<std::size_t>(Val(words[1]));
    if (number < 256)
        Require(bench.Nvm()[number] == HexValue(words[2]), "a word that was typed stands in the memory");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    bench::BenchSetup setup;
    setup.board = input.Below(9);
    setup.xmtr = input.Below(2) == 1;
    bench::Bench bench(setup);
    bench::Micros now = 1'000'000;
    for (int i = 0; i < 8 && !input.IsOver(); ++i) {
        const std::string line = input.Line();
        const bench::ConsoleAnswer answer = bench::RunConsoleLine(bench, line, now);
        const bool blank = line.find_first_not_of(" \t\r") == std::string::npos;
        Require(!blank || answer.text.empty(), "an empty line has no answer");
        Require(!answer.quit || Trim(line).starts_with("quit"), "nothing ends it but quit");
        Require(!answer.text.ends_with("\n"), "an answer has no last line end");
        RequireWord(bench, line);
        now += 1'500'000;
        Require(!bench::StatusText(bench, now).empty(), "its state can be told");
    }
    for (const auto &truth : bench.Truths())
        Require(!truth.title.empty(), "a truth has its title");
    return 0;
}
