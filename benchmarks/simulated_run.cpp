#include "simulated_run.h"

#include "loop_watch.h"
#include "program.h"

#include "session/delays.h"
#include "session/outlets.h"
#include "shell/station.h"
#include "support/bench_station.h"
#include "support/scripted_operator.h"
#include "support/station.h"

#include <stdexcept>
#include <unistd.h>

namespace ombrix::benchmarks {
namespace {

// Positions of the DC board's ranges, "GND" to "5 A" and the touched-up "200 mV".
constexpr int kRangePositions[] = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 14};

constexpr int kStepSeconds = 30;  // no step of the script takes longer

}  // namespace

void CalibrateRange(test::ScriptedOperator &person, int position, int rounds)
{
    const std::string button = test::StepButton(position);
    person.WaitsFor(button).Clicks(button);
    person.WaitsFor("cmdReady").Clicks("cmdReady");
    if (rounds > 1)
        person.WaitsFor("cmdRepeat").Clicks("cmdRepeat");
    person.WaitsFor("cmdRepeat").Clicks("cmdAccept");
    test::LeavesRange(person);
}

void CalibrateVfRange(test::ScriptedOperator &person, int position)
{
    person.Clicks(test::StepButton(position)).WaitsFor("cmdVFRdyRpt").Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
}

SimulatedRun CalibrateSimulatedDc()
{
    SimulatedRun result;
    test::OpenWholeStation();
    {
        test::ScriptedOperator person;
        person.Within(kStepSeconds);
        person.DoubleClicks("lblCalOut").Clicks("cmdEstablish").WaitsFor(test::StepButton(kRangePositions[0]));
        const LoopWatch watch;
        for (const int position : kRangePositions) {
            CalibrateRange(person, position, 2);
            person.Does([&result] { ++result.ranges; });
        }
        if (!person.Runs())
            throw std::runtime_error("the simulated run stopped: " + person.Trouble());
        result.longestBlockMs = watch.LongestMs();
    }
    CloseStation();
    return result;
}

double WakeUpsInAWait(int seconds)
{
    test::OpenWholeStation();
    DelayAlways(1000);  // until nothing of the start is left
    long sleeps = 0;
    {
        const WaitNote note("the benchmark");
        const long before = SleepsOf(getpid());
        DelayAlways(seconds * 1000);
        sleeps = SleepsOf(getpid()) - before;
    }
    CloseStation();
    return static_cast<double>(sleeps) / seconds;
}

}  // namespace ombrix::benchmarks
