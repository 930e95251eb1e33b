#include "links/cal_output.h"

#include "links/meter_simulator.h"
#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

namespace ombrix {
namespace {

bool StartsWith(const std::string &text, std::string_view letters)
{
    return !text.empty() && letters.find(text.front()) != std::string_view::npos;
}

Danger LevelOf(double size, const std::string &unit)
{
    const bool milli = StartsWith(unit, "m");
    if (size < 0.002 || (milli && size < 2.0) || Holds(unit, "O"))
        return Danger::Safe;
    if (milli || size < 5.0 || (size < 20.0 && unit == "V"))
        return Danger::Warning;
    return Danger::Danger;
}

// Length of the unit in a value text, by its first letter; a frequency may follow.
std::size_t UnitLength(const std::string &text)
{
    if (StartsWith(text, "K"))
        return 4;
    if (StartsWith(text, "CFO"))
        return 3;
    return StartsWith(text, "m") ? 2 : 1;
}

bool IsUnit(const std::string &text)
{
    constexpr std::string_view kUnits[] = {"V", "mV", "A", "mA", "OHM", "KOHM", "CEL", "FAR"};
    return std::find(std::begin(kUnits), std::end(kUnits), text) != std::end(kUnits);
}

// Takes one of these characters off the front, if one is there.
bool TakeOne(std::string_view &text, std::string_view any)
{
    const bool there = !text.empty() && any.find(text.front()) != std::string_view::npos;
    text.remove_prefix(there ? 1 : 0);
    return there;
}

bool TakeDigits(std::string_view &text)
{
    bool some = false;
    while (TakeOne(text, "0123456789"))
        some = true;
    return some;
}

// Sign, digits with at most one point, exponent: the whole text and nothing else.
bool IsNumber(std::string_view text)
{
    TakeOne(text, "+-");
    bool digits = TakeDigits(text);
    if (TakeOne(text, "."))
        digits = TakeDigits(text) || digits;
    if (digits && TakeOne(text, "eE")) {
        TakeOne(text, "+-");
        digits = TakeDigits(text);
    }
    return digits && text.empty();
}

bool IsTemperature(const std::string &unit)
{
    return StartsWith(unit, "CF");
}

}  // namespace

OutputValue ParseOutputValue(const std::string &value)
{
    const std::size_t blank = value.find(' ');
    const std::string unit = blank == std::string::npos ? "" : value.substr(blank + 1);
    return {Val(value.substr(0, blank)), Left(unit, UnitLength(unit))};
}

std::optional<OutputValue> ParseReadBack(const std::string &line)
{
    const auto fields = Split(line, ',');
    if (fields.size() < 2 || !IsNumber(Trim(fields[0])) || !IsUnit(Trim(fields[1])))
        return std::nullopt;
    return OutputValue{Val(fields[0]), Trim(fields[1])};
}

CalOutput DescribeCalOutput(double value, const std::string &unitText)
{
    if (IsTemperature(unitText))
        return {Format(value, 1) + " °" + unitText.front(), Danger::Safe};

    std::string unit = unitText;
    if (Holds(unit, "O")) {
        if (StartsWith(unit, "K"))
            value *= 1000;
        unit = "Ohm";
    }
    if (value != 0 && std::fabs(value) < 1 && !StartsWith(unit, "m")) {
        value *= 1000;
        unit = "m" + unit;
    } else if (std::fabs(value) >= 1000) {
        value /= 1000;
        unit = "k" + unit;
    }
    return {Format(value, 1) + " " + unit, LevelOf(std::fabs(value), unit)};
}

void UpdateCalOutputPanel(double value, const std::string &unit)
{
    if (!HardwareMode) {
        SimOneDecimal = IsTemperature(unit);
        if (SimOneDecimal)
            SimNominal = static_cast<float>(value);
    }
    const CalOutput output = DescribeCalOutput(value, unit);
    outlets.showOutput(output.text);
    SetDangerFlag(output.level);
}

Danger DangerOfValue(const std::string &value)
{
    const OutputValue requested = ParseOutputValue(value);
    return DescribeCalOutput(requested.number, requested.unit).level;
}

}  // namespace ombrix
