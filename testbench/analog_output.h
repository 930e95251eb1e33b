// The analog output of a meter, as an external output meter reads it.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "testbench/laws.h"

namespace ombrix::bench {

struct AnalogReading {
    double value = 0;
    std::string unit;  ///< "mV" or "uA"
};

/// At output connector 1, or 2 of a dual converter (its own words). working is the meter's memory since its restart.
AnalogReading AnalogOutput(const Hardware &hardware, const Words &working, const std::array<std::uint8_t, 256> &ram,
                           bool counter, int connector);

/// Whether somebody works on the output: a converter is set, or a value was put out by hand since the meter's restart.
bool IsWorkedOn(const Words &working, const std::array<std::uint8_t, 256> &ram, bool counter);

/// Places of the words of the points VO VG CO CG BPM BPP DVO DVG DCO DCG.
int AnalogWordOf(int point, bool counter);

/// What a point gives when `value` of full scale `full` is put out.
double AnalogValue(const Unit &unit, const Words &words, bool counter, int offsetPoint, double value, double full);

}  // namespace ombrix::bench
