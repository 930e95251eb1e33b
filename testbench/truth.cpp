#include "testbench/truth.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string_view>

#include "model/range_records.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "testbench/analog_output.h"
#include "testbench/boards.h"
#include "testbench/first_cycle.h"
#include "testbench/temperature.h"

namespace ombrix::bench {
namespace {

using ErrorOfWords = std::function<double(const Words &)>;

std::string WordHex(int value)
{
    return HexText(value, 4);
}

void SetWord(Words &words, int word, int value)
{
    words[static_cast<std::size_t>(word)] = static_cast<std::uint16_t>(value);
}

// The word with the smallest error while all others stay; the error grows or falls with the word.
int BestWord(Words words, int word, bool isSigned, const ErrorOfWords &error)
{
    const auto errorAt = [&](int value) {
        SetWord(words, word, value);
        return error(words);
    };
    int low = isSigned ? -32768 : 0;
    int high = isSigned ? 32767 : 65535;
    const bool grows = errorAt(high) > errorAt(low);
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        const bool beyond = (errorAt(middle) > 0) == grows;
        (beyond ? high : low) = middle;
    }
    return std::fabs(errorAt(low)) <= std::fabs(errorAt(high)) ? low : high;
}

RangeTruth Truth(const Words &words, int position, const std::string &title, int word, bool isSigned,
                 const ErrorOfWords &error)
{
    RangeTruth truth{position, title, word, WordHex(words[word]), "", error(words)};
    truth.idealHex = WordHex(BestWord(words, word, isSigned, error));
    return truth;
}

Signal SignalOf(const std::string &text)
{
    const Value value = ParseValue(text).value_or(Value());
    const Quantity quantity = value.unit == "A"     ? Quantity::Amps
                              : value.unit == "OHM" ? Quantity::Ohms
                                                    : Quantity::Volts;
    return {quantity, value.number, value.hertz.value_or(0), 0};
}

bool HasTurnover(int board, std::string_view value)
{
    return value != "0 V" && !board::IsAc(board) && board != board::kRtd;
}

// The scale with which an ideal board shows the target.
double ScaleOf(int board, const RangeRecord &record, int code, const Signal &signal)
{
    const double ideal = IdealCounts(board, code, signal);
    return record.target == 0 ? OffsetStepScale(board) : std::nearbyint(record.target / ideal);
}

// A TC board measures voltages under another board code.
Words OnRange(Words words, int board, int code)
{
    if (board == board::kTc)
        SetWord(words, 21, (code & 0xF0) == 0x60 ? 0x0001 : 0x0031);
    return words;
}

ErrorOfWords RangeError(const Hardware &hardware, const RangeRecord &record)
{
    const int board = hardware.board;
    const int code = static_cast<int>(HexValue(record.code));
    const Signal plus = SignalOf(std::string(record.value) + (board::IsAc(board) ? ", 300 Hz" : ""));
    Signal minus = plus;
    minus.value = -minus.value;
    const double scale = ScaleOf(board, record, code, plus);
    const double target = record.target;
    const bool turnover = HasTurnover(board, record.value);
    return [=, &hardware](const Words &words) {
        const Words there = OnRange(words, board, code);
        const double up = NaturalCounts(hardware, there, code, plus) * scale;
        if (!turnover)
            return up - target;
        const double down = NaturalCounts(hardware, there, code, minus) * scale;
        return (std::fabs(down) + up) / 2 - target;
    };
}

bool AllEqual(const Words &words, std::initializer_list<int> group)
{
    const auto first = words[*group.begin()];
    return std::ranges::all_of(group, [&](int word) { return words[word] == first; });
}

bool CompanionsAgree(int board, int word, const Words &words)
{
    if (board::IsThermocouple(board) && word == 33)
        return AllEqual(words, {33, 32, 31, 46});
    if (board::IsThermocouple(board) && word == 36)
        return AllEqual(words, {36, 35, 34});
    if (board == board::kRtd && word == 31)
        return AllEqual(words, {31, 40});
    if (board == board::kRtd && word == 37)
        return AllEqual(words, {39, 38, 37});
    return true;
}

RangeTruth RangeTruthOf(const Hardware &hardware, const Words &words, const RangeRecord &record)
{
    RangeTruth truth = Truth(words, record.position, StepName(record.stepId), record.word,
                             IsOffsetWord(hardware.board, record.word), RangeError(hardware, record));
    truth.companionsAgree = CompanionsAgree(hardware.board, record.word, words);
    return truth;
}

RangeTruth FirstCycleTruth(const Hardware &hardware, const Words &words, int position)
{
    const auto byte = [](int bits) { return static_cast<double>(static_cast<std::int8_t>(bits)); };
    RangeTruth truth{position, "First Cycle", 51, WordHex(words[51]), FirstCycleWord(hardware.unit)};
    const double m = byte(words[51] >> 8) - hardware.unit.firstCycleM;
    const double b = byte(words[51] & 0xFF) - hardware.unit.firstCycleB;
    truth.error = std::fabs(m) > std::fabs(b) ? m : b;
    return truth;
}

void AddRatioTruths(std::vector<RangeTruth> &truths, const Hardware &hardware, const Words &words, int position)
{
    const int code = hardware.board == board::kLc ? 0xC0 : 0xA0;
    const auto at = [&hardware, code](const Words &there, double volts) {
        return NaturalCounts(hardware, there, code, {Quantity::Volts, volts, 0, 0});
    };
    truths.push_back(Truth(words, position, "Ratio Offset", 50, true,
                           [at](const Words &there) { return at(there, 5.5) - at(there, 11); }));
    truths.push_back(Truth(words, position, "Ratio Gain", 48, false,
                           [at, &hardware](const Words &there) { return at(there, 10) - hardware.ratioReading; }));
}

RangeTruth RtdCurrentTruth(const Hardware &hardware, const Words &words, int position)
{
    constexpr double kFahrenheit = 1356.4;
    const Signal signal{Quantity::Ohms, OhmsOfCelsius(Rtd::Din385, CelsiusOfFahrenheit(kFahrenheit)), 0, 0};
    return Truth(words, position, StepName(Step::RtdCurrent), 30, false, [=, &hardware](const Words &there) {
        return NaturalCounts(hardware, there, 0x50, signal) - kFahrenheit * 10;
    });
}

void AddDiodeTruths(std::vector<RangeTruth> &truths, const Hardware &hardware, const Words &words, int position)
{
    struct Group {
        const char *title;
        int word;
        int code;
    };
    constexpr Group kGroups[] = {{"Gain/Offset J", 29, 0x41}, {"Gain/Offset T", 45, 0x49}};
    for (const Group &group : kGroups) {
        const int code = group.code;
        truths.push_back(Truth(words, position, group.title, group.word, false, [code, &hardware](const Words &there) {
            const Words onRange = OnRange(there, hardware.board, code);
            return 4 * NaturalCounts(hardware, onRange, code, {Quantity::Thermocouple, 0, 0, 0});
        }));
    }
}

std::string GroupHex(double gain, double offset)
{
    return HexText(static_cast<int>(std::lround(offset)), 6) +
           HexText(static_cast<int>(std::lround(gain * kVfUnity)), 6);
}

RangeTruth VfTruth(const Hardware &hardware, const Words &words, const RangeRecord &record)
{
    constexpr const char *kLowInputs[] = {"4 mA", "0 mA", "0 V"};
    constexpr double kFullCounts = 100000;
    const int code = static_cast<int>(HexValue(record.code));
    const int range = VfRangeOfCode(code);
    const auto place = static_cast<std::size_t>(range);
    const VfGroup now = VfGroupAt(words, range);
    RangeTruth truth{record.position, StepName(record.stepId), record.word, GroupHex(now.gain, now.offset),
                     GroupHex(hardware.unit.vfGain[place], hardware.unit.vfOffset[place])};
    const double low = NaturalCounts(hardware, words, code, SignalOf(kLowInputs[range]));
    const double high = NaturalCounts(hardware, words, code, SignalOf(record.value)) - kFullCounts;
    truth.error = std::fabs(low) > std::fabs(high) ? low : high;
    return truth;
}

// Trims by hand: no word stands for them.
std::optional<double> TrimError(const Hardware &hardware, const Words &words, int stepId)
{
    Hardware jumpered = hardware;
    jumpered.dcJumper = true;
    const auto counts = [&](int code, double volts, double hertz) {
        return 4 * NaturalCounts(jumpered, words, code, {Quantity::Volts, volts, hertz, 0});
    };
    switch (stepId) {
    case Step::ZeroAdjust:
        return (counts(0x80, -0.01, 0) - counts(0x80, 0.01, 0)) / 2;
    case Step::TrimR13R14:
    case Step::MinusGainTrim:
        return counts(0x80, -0.2, 0) - counts(0x80, 0.2, 0);
    case Step::TrimR38:
        return counts(0x81, 2, 10000) - 79990;
    default:
        return std::nullopt;
    }
}

void AddTruthsOfStep(std::vector<RangeTruth> &truths, const Hardware &hardware, const Words &words,
                     const RangeRecord &record)
{
    if (const auto error = TrimError(hardware, words, record.stepId))
        truths.push_back({record.position, StepName(record.stepId), 0, "", "", *error});
    else if (hardware.board == board::kVf && record.word != 0)
        truths.push_back(VfTruth(hardware, words, record));
    else if (record.word != 0)
        truths.push_back(RangeTruthOf(hardware, words, record));
    else if (record.stepId == Step::FirstCycle)
        truths.push_back(FirstCycleTruth(hardware, words, record.position));
    else if (record.stepId == Step::Ratio)
        AddRatioTruths(truths, hardware, words, record.position);
    else if (record.stepId == Step::RtdCurrent)
        truths.push_back(RtdCurrentTruth(hardware, words, record.position));
    else if (record.stepId == Step::GainOffset)
        AddDiodeTruths(truths, hardware, words, record.position);
}

}  // namespace

std::vector<RangeTruth> TruthsOf(const Hardware &hardware, const Words &words)
{
    std::vector<RangeTruth> truths;
    for (const RangeRecord &record : RecordsOfBoard(hardware.board))
        AddTruthsOfStep(truths, hardware, words, record);
    return truths;
}

std::vector<RangeTruth> AnalogTruths(const Hardware &hardware, const Words &words, bool counter, int currentPoint)
{
    constexpr double kFull = 20000;
    constexpr int kSteps[] = {Step::VoltOffset,  Step::VoltageGain,  Step::CurrentOffset,
                              Step::CurrentGain, Step::Minus10Volts, Step::Plus10Volts};
    std::vector<RangeTruth> truths;
    for (int point = 0; point < 10; ++point) {
        const bool second = point >= 6;
        const int offsetPoint = point / 2 * 2;
        const bool gain = point % 2 == 1;
        const bool current = offsetPoint == 2 || offsetPoint == 8;
        const double value = gain ? kFull : current ? currentPoint : 0;
        const double wanted = offsetPoint == 4 ? (gain ? 10000 : -10000) : current ? value : value / 2;
        const std::string title = (second ? "DD " : "") + StepName(kSteps[second ? point - 6 : point]);
        truths.push_back(
            Truth(words, -1, title, AnalogWordOf(point, counter), false, [=, &hardware](const Words &there) {
                return AnalogValue(hardware.unit, there, counter, offsetPoint, value, kFull) - wanted;
            }));
    }
    return truths;
}

std::string TruthText(const RangeTruth &truth)
{
    std::string text = truth.title;
    if (truth.word != 0)
        text += ": word " + std::to_string(truth.word) + " is " + truth.wordHex + ", ideal " + truth.idealHex;
    text += ", error " + Format(truth.error, 2);
    return truth.companionsAgree ? text : text + ", companions differ";
}

}  // namespace ombrix::bench
