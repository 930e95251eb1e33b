// Fuzzes: testbench/calibrator.cpp testbench/signal.cpp
// Short: 64
//
// What the bench's calibrator is told: nothing stands on its terminals that nobody asked for or that no calibrator
// gives, and the station understands each of its answers.

#include "fuzz/support/case.h"
#include "links/cal_output.h"
#include "links/calibrator_line.h"
#include "platform/text.h"
#include "testbench/calibrator.h"

#include <algorithm>
#include <cmath>

using namespace ombrix;
using namespace ombrix::fuzz;

namespace {

constexpr int kDelayMs = 200;

void RequirePossible(const bench::Signal &signal)
{
    Require(std::isfinite(signal.value) && std::isfinite(signal.hertz), "an output is a number");
    Require(signal.quantity != bench::Quantity::Volts || std::fabs(signal.value) <= 1020, "no more than 1020 V");
    Require(signal.quantity != bench::Quantity::Amps || std::fabs(signal.value) <= 20.5, "no more than 20.5 A");
    Require(IsPrintable(bench::SignalText(signal)), "an output can be told");
}

bool AsksForOperate(const std::string &line)
{
    const auto commands = Split(line, ';');
    return std::any_of(commands.begin(), commands.end(), [](const std::string &command) {
        const std::string head = Trim(command);
        return head == "OPER" || head.starts_with("OPER ");
    });
}

void RequireUnderstood(bench::Calibrator &calibrator, bench::Micros now)
{
    const auto ask = [&](const char *question) { return calibrator.Execute(question, now).value_or(""); };
    Require(IsAnswer(CalibratorQuestion::Errors, ask("ERR?")), "an error is one for the station");
    Require(IsAnswer(CalibratorQuestion::Operate, ask("OPER?")), "operate or standby is one for the station");
    const std::string output = ask("OUT?");
    Require(IsAnswer(CalibratorQuestion::Output, output), "an output is one for the station");
    Require((ask("OPER?") == "1") == calibrator.State().operating, "OPER? tells how it stands");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    Case input(bytes, size);
    bench::Calibrator calibrator(kDelayMs);
    calibrator.RefusesOutputs(input.Below(4) == 3);
    bench::Micros now = 1'000'000;
    bool remote = false;
    bool asked = false;
    for (int i = 0; i < 64 && !input.IsOver(); ++i) {
        const std::string line = input.Line();
        const auto reply = calibrator.Execute(line, now);
        Require(!reply || !Holds(*reply, "\n"), "an answer is one line");
        remote = remote || calibrator.State().remote || Holds(line, "REMOTE");
        asked = asked || AsksForOperate(line);
        now += kDelayMs * bench::Micros{1000};
        calibrator.Run(now);
        RequirePossible(calibrator.Terminals());
        Require(calibrator.State().errors.size() <= 16, "its queue has an end");
        if (!remote || !asked)
            Require(calibrator.Terminals().quantity == bench::Quantity::None, "nothing stands that nobody asked for");
    }
    RequireUnderstood(calibrator, now);
    calibrator.RefusesOutputs(false);
    calibrator.Execute("REMOTE", now);
    calibrator.Execute("OUT 0 V ; STBY ; *WAI", now);
    calibrator.Run(now + kDelayMs * bench::Micros{1000});
    Require(calibrator.Terminals().quantity == bench::Quantity::None && !calibrator.State().operating,
            "standby is standby, whatever came before");
    return 0;
}
