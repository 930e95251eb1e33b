// What can stand on a meter's input terminals, and the texts that ask for it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ombrix::bench {

enum class Quantity { None, Volts, Amps, Ohms, Thermocouple };

/// None is open terminals.
struct Signal {
    Quantity quantity = Quantity::None;
    double value = 0;       ///< volts, amps, ohms; degrees Celsius of a thermocouple. Of an alternating signal its size
    double hertz = 0;       ///< 0: a steady signal
    char thermocouple = 0;  ///< letter of its type; 0: whatever sensor the meter is set to
    bool operator==(const Signal &) const = default;
};

/// A value as an instrument takes it: "200 mV", "2 V, 300 Hz", "20 KOHM", "0 CEL", "1356.4 FAR".
struct Value {
    double number = 0;            ///< in the unit below
    std::string unit;             ///< "V", "A", "OHM", "CEL" or "FAR"
    std::optional<double> hertz;  ///< when the text tells one
};

/// Nothing when the text is no value.
std::optional<Value> ParseValue(std::string_view text);

double CelsiusOfFahrenheit(double fahrenheit);
double FahrenheitOfCelsius(double celsius);

/// "200 mV", "2 V, 300 Hz", "J 0 degC", "open": for whoever watches.
std::string SignalText(const Signal &signal);

}  // namespace ombrix::bench
