#include "testbench/signal.h"

#include <charconv>
#include <cmath>

#include "platform/text.h"

namespace ombrix::bench {
namespace {

struct Unit {
    std::string_view text;
    std::string_view base;
    double factor;
};

constexpr Unit kUnits[] = {
    {"V", "V", 1},        {"MV", "V", 1e-3}, {"UV", "V", 1e-6}, {"A", "A", 1},
    {"MA", "A", 1e-3},    {"UA", "A", 1e-6}, {"OHM", "OHM", 1}, {"KOHM", "OHM", 1000},
    {"MOHM", "OHM", 1e6}, {"CEL", "CEL", 1}, {"FAR", "FAR", 1},
};

std::string Upper(std::string text)
{
    for (char &c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

// A number, a blank and a unit.
struct Measure {
    std::string number;
    std::string unit;
};

std::optional<Measure> SplitMeasure(std::string_view text)
{
    const std::string measure = Trim(text);
    const std::size_t blank = measure.find(' ');
    if (blank == std::string::npos)
        return std::nullopt;
    const std::string number = measure.substr(0, blank);
    if (number.find_first_of("0123456789") == std::string::npos ||
        number.find_first_not_of("+-.0123456789Ee") != std::string::npos)
        return std::nullopt;
    return Measure{number, Upper(Trim(measure.substr(blank)))};
}

std::optional<double> ParseHertz(std::string_view text)
{
    const auto measure = SplitMeasure(text);
    if (!measure || (measure->unit != "HZ" && measure->unit != "KHZ"))
        return std::nullopt;
    const double hertz = Val(measure->number) * (measure->unit == "KHZ" ? 1000 : 1);
    return std::isfinite(hertz) ? std::optional(hertz) : std::nullopt;
}

std::string ShortNumber(double value)
{
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 7);
    return {text, end.ptr};
}

std::string ScaledText(double value, const std::string &unit)
{
    if (value != 0 && std::fabs(value) < 1 && unit != "Ohm")
        return ShortNumber(value * 1000) + " m" + unit;
    if (std::fabs(value) >= 1000)
        return ShortNumber(value / 1000) + " k" + unit;
    return ShortNumber(value) + " " + unit;
}

}  // namespace

std::optional<Value> ParseValue(std::string_view text)
{
    const auto parts = Split(text, ',');
    const auto measure = parts.empty() || parts.size() > 2 ? std::nullopt : SplitMeasure(parts[0]);
    if (!measure)
        return std::nullopt;
    for (const Unit &unit : kUnits) {
        if (unit.text != measure->unit)
            continue;
        Value value{Val(measure->number) * unit.factor, std::string(unit.base), std::nullopt};
        if (parts.size() == 2) {
            value.hertz = ParseHertz(parts[1]);
            if (!value.hertz)
                return std::nullopt;
        }
        return std::isfinite(value.number) ? std::optional(value) : std::nullopt;
    }
    return std::nullopt;
}

double CelsiusOfFahrenheit(double fahrenheit)
{
    return (fahrenheit - 32) / 1.8;
}

double FahrenheitOfCelsius(double celsius)
{
    return celsius * 1.8 + 32;
}

std::string SignalText(const Signal &signal)
{
    const std::string hertz = signal.hertz > 0 ? ", " + ShortNumber(signal.hertz) + " Hz" : "";
    switch (signal.quantity) {
    case Quantity::None:
        return "open";
    case Quantity::Volts:
        return ScaledText(signal.value, "V") + hertz;
    case Quantity::Amps:
        return ScaledText(signal.value, "A") + hertz;
    case Quantity::Ohms:
        return ScaledText(signal.value, "Ohm");
    case Quantity::Thermocouple:
        break;
    }
    const std::string type = signal.thermocouple != 0 ? std::string(1, signal.thermocouple) + " " : "";
    return "thermocouple " + type + ShortNumber(signal.value) + " degC";
}

}  // namespace ombrix::bench
