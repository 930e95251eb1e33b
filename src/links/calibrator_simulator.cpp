#include "links/calibrator_simulator.h"

#include "platform/text.h"

namespace ombrix {

std::string SimCalOut;
std::string SimCalOper = "0";

namespace {

void TakeOutput(std::string_view line)
{
    SimCalOut = Trim(line);
    if (Holds(SimCalOut, "OPER"))
        SimCalOper = "1";
    else if (Holds(SimCalOut, "STBY"))
        SimCalOper = "0";
}

// Divided by 1000 when an "m" stands before the unit. The first one counts: the line goes on behind the value.
double WithoutMilli(double value, char unit)
{
    const std::size_t at = SimCalOut.find(unit);
    const bool milli = at != std::string::npos && at > 0 && SimCalOut[at - 1] == 'm';
    return milli ? value / 1000 : value;
}

std::string OutputReply()
{
    double value = Val(SimCalOut);
    std::string unit;
    if (Holds(SimCalOut, "CEL")) {
        unit = "CEL";
    } else if (Holds(SimCalOut, "FAR")) {
        unit = "FAR";
    } else if (Holds(SimCalOut, "OHM")) {
        unit = "OHM";
        value *= Holds(SimCalOut, "K") ? 1000 : 1;
    } else {
        unit = Holds(SimCalOut, "V") ? "V" : "A";
        value = WithoutMilli(value, unit.front());
    }
    return FormatExponent(value) + "," + unit + ",0E+00,0,0.00E+00";
}

}  // namespace

void InitCalibratorSimulator()
{
    SimCalOut.clear();
    SimCalOper = "0";
}

std::optional<std::string> SimulateCalibratorCommand(std::string_view text)
{
    const std::string_view head = text.substr(0, text.find(' '));
    if (head == "ERR?")
        return "0,\"No Error\"";
    if (head == "OUT?")
        return OutputReply();
    if (head == "OPER?")
        return SimCalOper;
    if (head == "OUT")
        TakeOutput(text.substr(head.size()));
    return std::nullopt;
}

}  // namespace ombrix
