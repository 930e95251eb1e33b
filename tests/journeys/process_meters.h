// What an operator does on the pages of thermocouple meters, thermometers and counters, for the journeys that need it.
#pragma once

#include "journeys/page_loops.h"
#include "support/bench_station.h"

#include <functional>
#include <string>
#include <vector>

namespace ombrix::test {

/// Both words of a thermocouple type ("0" J, "1" T), from "Ready" to "Accept".
void TrimsTheDiode(BenchStation &station, const std::string &type);
/// From "Calibrate" to "Done".
void TrimsTheCurrent(BenchStation &station);
/// Clicks a button again and again until he is content with the number beside it.
void ClicksUntil(BenchStation &station, const char *button, const char *number, double content, int clicks,
                 const std::function<void()> &then);

/// Establish leaves a Temp meter's word 16 as a DC meter's, so the next one may find that; the chooser is the way back.
void TakesTheTempBoard(BenchStation &station);

}  // namespace ombrix::test
