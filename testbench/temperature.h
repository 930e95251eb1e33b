// Resistance thermometers and thermocouples as far as a calibration needs them.
#pragma once

namespace ombrix::bench {

enum class Rtd { Din385, Ansi3902, Nickel120, Copper10 };

double OhmsOfCelsius(Rtd type, double celsius);
/// Not a number for a resistance that no temperature has.
double CelsiusOfOhms(Rtd type, double ohms);

/// Volts for a degree near 0 degrees, by the letter of the type; 0 for an unknown one.
double VoltsPerDegree(char thermocouple);

}  // namespace ombrix::bench
