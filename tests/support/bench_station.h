// The station in hardware mode on virtual time, wired to the instruments of the bench.
#pragma once

#include "support/bench_lines.h"
#include "support/scripted_operator.h"
#include "support/station.h"
#include "support/virtual_clock.h"
#include "testbench/bench.h"

#include <string>

namespace ombrix::test {

struct Wiring {
    bench::BenchSetup bench;
    bool manual = false;     ///< no calibrator: the operator puts each signal on the bench when the station asks
    bool useSwitch = false;  ///< the second meter serves as output switch
    Painted painted = Painted::No;
    std::string theme = {};  ///< "light" or "dark"; "" the desktop's
};

/// After a click on Accept: until the step buttons are free. The page of the ratio step, which may come next, is left again.
void LeavesRange(ScriptedOperator &person);

/// The station in hardware mode, wired to the bench: the meter on COM1, the calibrator on COM2.
class BenchStation
{
public:
    explicit BenchStation(const Wiring &wiring);
    ~BenchStation();
    BenchStation(const BenchStation &) = delete;
    BenchStation &operator=(const BenchStation &) = delete;

    VirtualClock clock;
    bench::Bench bench;
    BenchLines lines;
    WorkFolder folder;
    ScriptedOperator person;

    /// Clicks Establish and waits until the step buttons are free. False when it failed.
    bool Establishes();
    /// Opens the range at a position and takes it through so many rounds to Accept.
    bool Calibrates(int position, int rounds);
};

/// Words of the meter's memory from `top` downward, as the protocol writes them.
std::string WordsOf(const BenchStation &station, int top, int count);

}  // namespace ombrix::test
