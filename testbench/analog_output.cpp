#include "testbench/analog_output.h"

namespace ombrix::bench {
namespace {

constexpr double kFullMillivolts = 10000;
constexpr double kFullMicroamps = 20000;
constexpr double kVoltStep = 0.15625;    // mV for one count of a voltage offset
constexpr double kCurrentStep = 0.3125;  // uA, and mV of a bipolar offset
constexpr int kSecondOutputPoint = 6;    // the words of a dual converter's second output
constexpr int kBipolarConverter = 0x535C;
constexpr int kDualConverter = 0x545C;
constexpr int kPutOut = 0x60;  // the byte behind a value that was put out

enum class Mode { Voltage, Current, Bipolar };

// The first word of each mode's pair of offset and gain.
int OffsetPointOf(Mode mode)
{
    return mode == Mode::Voltage ? 0 : mode == Mode::Current ? 2 : 4;
}

Mode ModeOf(const Words &words, bool counter)
{
    if (counter) {
        const int kind = words[36] & 0xFF;
        return kind == 0x55 ? Mode::Voltage : kind == 0x0D ? Mode::Bipolar : Mode::Current;
    }
    const int kind = words[20] >> 8 & 6;
    return kind == 6 ? Mode::Bipolar : kind == 2 ? Mode::Voltage : Mode::Current;
}

struct Span {
    double value;
    double low;
    double high;
};

// 24 bits: all of one word and the high byte of the word below.
double LongFrom(const Words &words, int word)
{
    return words[word] * 256.0 + (words[word - 1] >> 8);
}

// 24 bits: the low byte of one word and all of the word below.
double LongBelow(const Words &words, int word)
{
    return (words[word] & 0xFF) * 65536.0 + words[word - 1];
}

// What is put out, and the readings for nothing and for everything.
Span SpanOf(const Words &words, const std::array<std::uint8_t, 256> &ram, bool counter)
{
    if (counter)
        return {LongFrom(words, 17), LongBelow(words, 25), LongFrom(words, 26)};
    const double value = ram[143] * 65536.0 + ram[142] * 256.0 + ram[141];
    return {value, LongBelow(words, 13), LongFrom(words, 14)};
}

}  // namespace

bool IsWorkedOn(const Words &working, const std::array<std::uint8_t, 256> &ram, bool counter)
{
    if (working[counter ? 144 : 240] != 0)
        return true;
    return counter ? working[15] == 0 : ram[140] == kPutOut;  // a counter's scale is never 0: a value stands there
}

int AnalogWordOf(int point, bool counter)
{
    constexpr int kMeterWords[] = {60, 61, 62, 63, 241, 242, 243, 244, 245, 246};
    constexpr int kCounterWords[] = {188, 189, 190, 191, 145, 146, 147, 148, 149, 150};
    return counter ? kCounterWords[point] : kMeterWords[point];
}

double AnalogValue(const Unit &unit, const Words &words, bool counter, int offsetPoint, double value, double full)
{
    const bool current = offsetPoint == 2 || offsetPoint == 8;
    const bool bipolar = offsetPoint == 4;
    const auto point = static_cast<std::size_t>(offsetPoint);
    const double gain = words[AnalogWordOf(offsetPoint + 1, counter)] / unit.analogIdeal[point + 1];
    const double offset = words[AnalogWordOf(offsetPoint, counter)] - unit.analogIdeal[point];
    const double top = current ? kFullMicroamps : bipolar ? 2 * kFullMillivolts : kFullMillivolts;
    const double step = current || bipolar ? kCurrentStep : kVoltStep;
    const double bottom = bipolar ? -kFullMillivolts : 0;
    return bottom + top * value / full * gain + offset * step;
}

AnalogReading AnalogOutput(const Hardware &hardware, const Words &working, const std::array<std::uint8_t, 256> &ram,
                           bool counter, int connector)
{
    const Mode mode = ModeOf(working, counter);
    const std::string unit = mode == Mode::Current ? "uA" : "mV";
    const int converter = working[counter ? 144 : 240];
    if (connector == 2 && (converter != kDualConverter || mode == Mode::Bipolar))
        return {0, unit};
    if (mode == Mode::Bipolar && converter != kBipolarConverter)
        return {0, unit};  // no other converter reaches below 0
    const Span span = SpanOf(working, ram, counter);
    if (span.high == span.low)
        return {0, unit};
    const int point = OffsetPointOf(mode) + (connector == 2 ? kSecondOutputPoint : 0);
    return {AnalogValue(hardware.unit, working, counter, point, span.value - span.low, span.high - span.low), unit};
}

}  // namespace ombrix::bench
