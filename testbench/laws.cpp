#include "testbench/laws.h"

#include <cmath>
#include <limits>
#include <span>

#include "platform/text.h"
#include "testbench/boards.h"
#include "testbench/temperature.h"

namespace ombrix::bench {
namespace {

constexpr double kGainBase = 229376;
constexpr double kRatioGainBase = 229869;
constexpr double kOverRange = 1.25;  // of full scale
constexpr double kOhmsTestAmps = 0.005;
constexpr double kAmbientCelsius = 23;
constexpr double kHottestCelsius = 2000;
constexpr double kFactoryScale = 4;
constexpr double kHighHertz = 5000;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// One range: what it measures, its counts, and the words that act.
struct RangeLaw {
    int code;
    Quantity quantity;
    double countsPerUnit;
    double fullScale;  // natural counts
    int gain;
    int secondGain;  // 0 none
    int offset;
};

constexpr RangeLaw kDcLaws[] = {
    {0x60, Quantity::Volts, 1e5, 20000, 25, 31, 26}, {0x61, Quantity::Volts, 1e4, 20000, 32, 0, 26},
    {0x62, Quantity::Volts, 1e3, 20000, 33, 0, 26},  {0x63, Quantity::Volts, 100, 20000, 34, 0, 26},
    {0x64, Quantity::Volts, 10, 7000, 35, 0, 26},    {0x70, Quantity::Amps, 1e7, 20000, 37, 0, 26},
    {0x71, Quantity::Amps, 1e6, 20000, 38, 0, 26},   {0x72, Quantity::Amps, 1e5, 20000, 39, 0, 26},
    {0x73, Quantity::Amps, 1e3, 5000, 40, 0, 26},
};
constexpr RangeLaw kAcLaws[] = {
    {0x80, Quantity::Volts, 1e5, 20000, 31, 0, 26}, {0x81, Quantity::Volts, 1e4, 20000, 32, 0, 26},
    {0x82, Quantity::Volts, 1e3, 20000, 33, 0, 26}, {0x83, Quantity::Volts, 100, 20000, 34, 0, 26},
    {0x84, Quantity::Volts, 10, 7000, 35, 0, 26},   {0x90, Quantity::Amps, 1e7, 20000, 37, 0, 26},
    {0x91, Quantity::Amps, 1e6, 20000, 38, 0, 26},  {0x92, Quantity::Amps, 1e5, 20000, 39, 0, 26},
    {0x93, Quantity::Amps, 1e3, 5000, 40, 0, 26},
};
constexpr RangeLaw kLcLaws[] = {
    {0xD0, Quantity::Volts, 1e6, 20000, 25, 31, 30}, {0xD1, Quantity::Volts, 1e6, 50000, 32, 0, 26},
    {0xD2, Quantity::Volts, 1e5, 10000, 33, 0, 26},  {0xD3, Quantity::Volts, 1e5, 25000, 34, 0, 26},
    {0xD4, Quantity::Volts, 1e5, 50000, 35, 0, 26},
};
constexpr RangeLaw kTcLaws[] = {
    {0x60, Quantity::Volts, 15000 / 0.0567, 21500, 33, 0, 26},
    {0x65, Quantity::Volts, 15000 / 0.017475, 21500, 36, 0, 47},
};
constexpr RangeLaw kRtdLaws[] = {
    {0xE0, Quantity::Ohms, 1000, 20000, 31, 0, 26}, {0xE1, Quantity::Ohms, 100, 20000, 32, 0, 26},
    {0xE2, Quantity::Ohms, 10, 20000, 33, 0, 26},   {0xE3, Quantity::Ohms, 1, 20000, 34, 0, 26},
    {0xE4, Quantity::Ohms, 0.1, 20000, 35, 0, 26},
};

std::span<const RangeLaw> LawsOf(int board)
{
    switch (board) {
    case board::kDc:
        return kDcLaws;
    case board::kLc:
        return kLcLaws;
    case board::kTc:
    case board::kTemp:
        return kTcLaws;
    case board::kRtd:
        return kRtdLaws;
    case board::kVf:
        return {};
    default:
        return kAcLaws;
    }
}

const RangeLaw *FindLaw(int board, int code)
{
    for (const RangeLaw &law : LawsOf(board))
        if (law.code == code)
            return &law;
    return nullptr;
}

double Factor(const Hardware &hardware, const Words &words, int word)
{
    return word == 0 ? 1 : (words[word] + kGainBase) / (hardware.unit.ideal[word] + kGainBase);
}

double OffsetCounts(const Hardware &hardware, const Words &words, int word)
{
    const auto value = static_cast<std::int16_t>(words[word]);
    return (value - hardware.unit.ideal[word]) * hardware.unit.offsetEffect[word];
}

double Limited(double counts, double fullScale)
{
    return std::fabs(counts) <= fullScale * kOverRange ? counts : std::copysign(kInfinity, counts);
}

// What a steady input of the range is in its unit. Open resistance terminals are beyond every range.
double SteadyInput(Quantity quantity, const Signal &signal)
{
    if (quantity == Quantity::Ohms) {
        if (signal.quantity == Quantity::None)
            return kInfinity;
        if (signal.quantity == Quantity::Volts)
            return signal.value / kOhmsTestAmps;
    }
    if (quantity == Quantity::Volts && signal.quantity == Quantity::Thermocouple)
        return signal.value * VoltsPerDegree(signal.thermocouple);
    return signal.quantity == quantity && signal.hertz == 0 ? signal.value : 0;
}

// What an AC board's detector sees.
double DetectedInput(const Hardware &hardware, Quantity quantity, const Signal &signal)
{
    if (signal.quantity != quantity)
        return 0;
    if (signal.hertz > 0)
        return std::fabs(signal.value) * (signal.hertz >= kHighHertz ? 1 + hardware.unit.highFrequency : 1);
    if (!hardware.dcJumper)
        return 0;
    const double seen = signal.value + hardware.unit.balanceVolts;
    return std::fabs(seen) * (seen < 0 ? 1 + hardware.unit.negativeGain : 1);
}

// The input of the ground step of an AC board, in counts of its own range.
double GroundPoint(int board, int code)
{
    if (board == board::kAc)
        return code == 0x81 ? 1000 : 0;
    return board::IsAc(board) && code == 0x80 ? 200 : 0;
}

double LinearCounts(const Hardware &hardware, const Words &words, const RangeLaw &law, const Signal &signal)
{
    const bool ac = board::IsAc(hardware.board);
    const double input = ac ? DetectedInput(hardware, law.quantity, signal) : SteadyInput(law.quantity, signal);
    if (std::isinf(input))
        return input;
    const double turnover = input < 0 ? 1 + hardware.unit.turnover : 1;
    const double counts = input * law.countsPerUnit * turnover;
    const double gain = Factor(hardware, words, law.gain) * Factor(hardware, words, law.secondGain);
    const double pivot = GroundPoint(hardware.board, law.code);
    return Limited(pivot + gain * (counts - pivot) + OffsetCounts(hardware, words, law.offset), law.fullScale);
}

// Codes 40 to 4D of TC and Temp boards: types in pairs, first degrees Fahrenheit, then Celsius.
struct ThermocoupleLaw {
    char type;
    int gain;
    std::size_t group;  // 0 J, 1 T: which quasi-diode
};
constexpr ThermocoupleLaw kThermocouples[] = {
    {'J', 31, 0}, {'K', 32, 0}, {'N', 46, 0}, {'E', 33, 0}, {'T', 34, 1}, {'S', 35, 1}, {'R', 36, 1},
};
constexpr int kFirstThermocoupleCode = 0x40;
constexpr int kLastThermocoupleCode = 0x4D;
constexpr int kDiodeGainWords[] = {29, 45};
constexpr int kDiodeOffsetWords[] = {28, 44};

// The cold junction's error in degrees. The words' effects are told on the display as the factory sets it up.
double DiodeError(const Hardware &hardware, const Words &words, std::size_t group)
{
    const int gainWord = kDiodeGainWords[group];
    const double gain = (hardware.unit.ideal[gainWord] - words[gainWord]) * hardware.unit.diodeGainEffect[group];
    const auto offset = static_cast<std::int16_t>(words[kDiodeOffsetWords[group]]);
    return (gain - offset * hardware.unit.diodeOffsetEffect[group]) / kFactoryScale;
}

double Tenths(double celsius, int code)
{
    if (!(std::fabs(celsius) <= kHottestCelsius))
        return kInfinity;
    return 10 * (code % 2 == 0 ? FahrenheitOfCelsius(celsius) : celsius);
}

double ThermocoupleCounts(const Hardware &hardware, const Words &words, int code, const Signal &signal)
{
    const ThermocoupleLaw &law = kThermocouples[(code - kFirstThermocoupleCode) / 2];
    const double gain = Factor(hardware, words, law.gain);
    double celsius = 0;
    if (signal.quantity == Quantity::None)
        return kInfinity;  // an open thermocouple reads as the hottest
    if (signal.quantity == Quantity::Thermocouple) {
        const char type = signal.thermocouple != 0 ? signal.thermocouple : law.type;
        celsius = signal.value * VoltsPerDegree(type) / VoltsPerDegree(law.type) * gain;
    } else {
        celsius = SteadyInput(Quantity::Volts, signal) / VoltsPerDegree(law.type) * gain + kAmbientCelsius;
    }
    return Tenths(celsius + DiodeError(hardware, words, law.group), code);
}

// Codes 50 to 5B: thermometers in pairs, first degrees Fahrenheit, then Celsius.
struct RtdLaw {
    Rtd type;
    int gain;
};
constexpr RtdLaw kRtdTypes[] = {{Rtd::Din385, 37}, {Rtd::Ansi3902, 38}, {Rtd::Nickel120, 39}, {Rtd::Copper10, 40}};
constexpr RtdLaw kTempTypes[] = {{Rtd::Din385, 37},   {Rtd::Ansi3902, 38}, {Rtd::Din385, 39},
                                 {Rtd::Ansi3902, 40}, {Rtd::Din385, 41},   {Rtd::Ansi3902, 42}};
constexpr int kFirstRtdCode = 0x50;
constexpr int kCurrentWord = 30;

std::span<const RtdLaw> RtdLawsOf(int board)
{
    if (board == board::kRtd)
        return kRtdTypes;
    if (board == board::kTemp)
        return kTempTypes;
    return {};
}

const RtdLaw *FindRtdLaw(int board, int code)
{
    const auto laws = RtdLawsOf(board);
    const auto index = static_cast<std::size_t>(code - kFirstRtdCode) / 2;
    return code >= kFirstRtdCode && index < laws.size() ? &laws[index] : nullptr;
}

double RtdCounts(const Hardware &hardware, const Words &words, const RtdLaw &law, int code, const Signal &signal)
{
    double gain = Factor(hardware, words, law.gain);
    if (hardware.board == board::kTemp)
        gain *= Factor(hardware, words, kCurrentWord);
    // A temperature without a type is a thermometer of the kind that the meter is set to.
    const bool simulated = signal.quantity == Quantity::Thermocouple && signal.thermocouple == 0;
    const double ohms = simulated ? OhmsOfCelsius(law.type, signal.value) : SteadyInput(Quantity::Ohms, signal);
    return Tenths(CelsiusOfOhms(law.type, ohms * gain), code);
}

bool IsRatioCode(int board, int code)
{
    return (board == board::kDc && code >= 0xA0 && code <= 0xA2) ||
           (board == board::kLc && code >= 0xC0 && code <= 0xC4);
}

// The bridge divides the excitation; the meter divides by the excitation that it measures.
double RatioCounts(const Hardware &hardware, const Words &words, const Signal &signal)
{
    const double excitation = SteadyInput(Quantity::Volts, signal);
    const auto ground = static_cast<std::int16_t>(words[50]);
    const double error = (ground - hardware.unit.ideal[50]) * hardware.unit.bridgeOffsetEffect;
    const double measured = excitation + error;
    if (std::fabs(excitation) < 0.1 || measured == 0)
        return 0;
    const double gain = (words[48] + kRatioGainBase) / (hardware.unit.ideal[48] + kRatioGainBase);
    return hardware.ratioReading * gain * excitation / measured;
}

// The counter's inputs: 4-20 mA, 0-1 mA, 0-10 V; counts for a milliampere or volt above the zero.
struct VfLaw {
    int code;
    Quantity quantity;
    double unit;
    double zero;
    double countsPerUnit;
};
constexpr VfLaw kVfLaws[] = {{0x81, Quantity::Amps, 1e-3, 4, 6250},
                             {0x91, Quantity::Amps, 1e-3, 0, 100000},
                             {0xA1, Quantity::Volts, 1, 0, 10000}};
constexpr double kVfFullScale = 500000;

double VfCounts(const Hardware &hardware, const Words &words, int range, const Signal &signal)
{
    const VfLaw &law = kVfLaws[range];
    const auto place = static_cast<std::size_t>(range);
    const double input = SteadyInput(law.quantity, signal) / law.unit;
    const double raw =
        (law.countsPerUnit * (input - law.zero) - hardware.unit.vfOffset[place]) / hardware.unit.vfGain[place];
    const VfGroup group = VfGroupAt(words, range);
    return Limited(raw * group.gain + group.offset, kVfFullScale);
}

}  // namespace

double OffsetStepScale(int board)
{
    return board::IsAc(board) ? 4 : 10;
}

bool ReadsRange(int board, const Words &words, int code)
{
    if (board != board::kTc)
        return true;
    const int boardCode = words[21] & 0xFF;
    return boardCode == ((code & 0xF0) == 0x60 ? 0x01 : 0x31);
}

double NaturalCounts(const Hardware &hardware, const Words &words, int code, const Signal &signal)
{
    if (hardware.board == board::kVf) {
        const int range = VfRangeOfCode(code);
        return range < 0 ? 0 : VfCounts(hardware, words, range, signal);
    }
    if (!ReadsRange(hardware.board, words, code))
        return 0;
    if (const RangeLaw *law = FindLaw(hardware.board, code))
        return LinearCounts(hardware, words, *law, signal);
    if (IsRatioCode(hardware.board, code))
        return RatioCounts(hardware, words, signal);
    if (const RtdLaw *law = FindRtdLaw(hardware.board, code))
        return RtdCounts(hardware, words, *law, code, signal);
    if (board::IsThermocouple(hardware.board) && code >= kFirstThermocoupleCode && code <= kLastThermocoupleCode)
        return ThermocoupleCounts(hardware, words, code, signal);
    return 0;
}

double IdealCounts(int board, int code, const Signal &signal)
{
    if (const RangeLaw *law = FindLaw(board, code)) {
        const double input = board::IsAc(board) ? std::fabs(signal.value) : SteadyInput(law->quantity, signal);
        return input * law->countsPerUnit;
    }
    if (const RtdLaw *law = FindRtdLaw(board, code))
        return Tenths(CelsiusOfOhms(law->type, signal.value), code);
    return 0;
}

int VfRangeOfCode(int code)
{
    for (int range = 0; range < 3; ++range)
        if (kVfLaws[range].code == code)
            return range;
    return -1;
}

int VfWordOfRange(int range)
{
    return 195 + 3 * range;
}

VfGroup VfGroupAt(const Words &words, int range)
{
    const int top = VfWordOfRange(range);
    const std::string hex = HexText(words[top], 4) + HexText(words[top - 1], 4) + HexText(words[top - 2], 4);
    return {HexValue(hex.substr(6)) / kVfUnity, static_cast<double>(SignedOfHex6(hex.substr(0, 6)))};
}

std::int32_t SignedOfHex6(std::string_view hex)
{
    const auto value = static_cast<std::int32_t>(HexValue(hex));
    return value >= 0x800000 ? value - 0x1000000 : value;
}

}  // namespace ombrix::bench
