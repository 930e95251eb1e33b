#include "testbench/temperature.h"

#include <cmath>

namespace ombrix::bench {
namespace {

// ohms = zero + linear t + square t^2.
struct Curve {
    double zero;
    double linear;
    double square;
};

// Platinum with 3.851e-3, platinum with 139.02 ohms at 100 degrees and 391.391 at 840, nickel with 200.64 at 100 and
// 366.531 at 250, copper with 9.042 at 0 and 18.72 at 250.
Curve CurveOf(Rtd type)
{
    switch (type) {
    case Rtd::Din385:
        return {100, 0.39083, -5.775e-5};
    case Rtd::Ansi3902:
        return {100, 0.39605215, -5.85215e-5};
    case Rtd::Nickel120:
        return {120, 0.686584, 1.19816e-3};
    case Rtd::Copper10:
        break;
    }
    return {9.042, 0.038712, 0};
}

}  // namespace

double OhmsOfCelsius(Rtd type, double celsius)
{
    const Curve curve = CurveOf(type);
    return curve.zero + celsius * (curve.linear + celsius * curve.square);
}

double CelsiusOfOhms(Rtd type, double ohms)
{
    const Curve curve = CurveOf(type);
    const double rise = ohms - curve.zero;
    if (curve.square == 0)
        return rise / curve.linear;
    // The form that keeps its digits when the square is small.
    return 2 * rise / (curve.linear + std::sqrt(curve.linear * curve.linear + 4 * curve.square * rise));
}

double VoltsPerDegree(char thermocouple)
{
    switch (thermocouple) {
    case 'J':
        return 50.4e-6;
    case 'K':
        return 39.5e-6;
    case 'N':
        return 25.9e-6;
    case 'E':
        return 58.7e-6;
    case 'T':
        return 38.7e-6;
    case 'S':
        return 5.4e-6;
    case 'R':
        return 5.3e-6;
    default:
        return 0;
    }
}

}  // namespace ombrix::bench
