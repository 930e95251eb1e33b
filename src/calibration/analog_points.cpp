#include "calibration/analog_points.h"

#include "platform/text.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace ombrix {
namespace {

enum class Rule { Offset, Gain };

// One line for each point. The low end of its readings' range is 0 where a reading must be above 0.
struct PointRow {
    int position;
    AnalogKind kind;
    Rule rule;
    int address;         // of its word
    int counterAddress;  // the same in a counter
    int output;          // 20000 is full scale
    int target;
    int low;  // what may be typed, from the target where `around` is set
    int high;
    bool around;
    int base;    // the reading begins at minus this
    float step;  // mV or uA for one count of an offset word
};

constexpr int kAtCurrentPoint = -1;
constexpr float kVoltStep = 0.15625F;
constexpr float kFineStep = 0.3125F;

// clang-format off
constexpr std::array<PointRow, kAnalogWords> kPoints = {{
    {2,  kVoltageOutput, Rule::Offset, 60,  188, 0,               0,               -2000,  2000,  false, 0,     kVoltStep},
    {3,  kVoltageOutput, Rule::Gain,   61,  189, 20000,           10000,           0,      16000, false, 0,     0},
    {4,  kCurrentOutput, Rule::Offset, 62,  190, kAtCurrentPoint, kAtCurrentPoint, -2000,  2000,  true,  0,     kFineStep},
    {5,  kCurrentOutput, Rule::Gain,   63,  191, 20000,           20000,           0,      30000, false, 0,     0},
    {7,  kBipolarOutput, Rule::Offset, 241, 145, 0,               -10000,          -12000, -8000, false, 0,     kFineStep},
    {8,  kBipolarOutput, Rule::Gain,   242, 146, 20000,           10000,           0,      16000, false, 10000, 0},
    {10, kVoltageOutput, Rule::Offset, 243, 147, 0,               0,               -2000,  2000,  false, 0,     kVoltStep},
    {11, kVoltageOutput, Rule::Gain,   244, 148, 20000,           10000,           0,      16000, false, 0,     0},
    {12, kCurrentOutput, Rule::Offset, 245, 149, kAtCurrentPoint, kAtCurrentPoint, -2000,  2000,  true,  0,     kFineStep},
    {13, kCurrentOutput, Rule::Gain,   246, 150, 20000,           20000,           0,      30000, false, 0,     0},
}};
// clang-format on

constexpr int kFirstBipolarPoint = 4;
constexpr int kFirstDualPoint = 6;
constexpr int kCounterScale = 5;  // a counter's full scale is 100000
constexpr float kWordMax = 65535.0F;

const PointRow &RowOf(int point)
{
    return kPoints.at(static_cast<std::size_t>(point));
}

int OrCurrentPoint(int value, int currentPoint)
{
    return value == kAtCurrentPoint ? currentPoint : value;
}

std::string UnitOf(AnalogKind kind)
{
    return kind == kCurrentOutput ? " uA" : " mV";
}

// "" when the reading may be one of the point's.
std::string WhyRefused(const PointRow &row, float reading, int currentPoint)
{
    const int middle = row.around ? currentPoint : 0;
    const int low = middle + row.low;
    const int high = middle + row.high;
    std::string why;
    if (row.rule == Rule::Gain && reading <= 0)
        why = "Value cannot be Zero or Negative";
    else if (row.rule == Rule::Gain && reading > static_cast<float>(high))
        why = "Value cannot exceed " + std::to_string(high);
    else if (row.rule == Rule::Offset && (reading < static_cast<float>(low) || reading > static_cast<float>(high)))
        why = "Value must be between " + std::to_string(low) + " and " + std::to_string(high);
    return why.empty() ? "" : why + "\r\nPlease re-enter value.";
}

float OffsetWord(float word, float error, float step)
{
    const float counts = std::nearbyint(std::fabs(error) / step);
    return error < 0 ? word + counts : word - counts;
}

float UnlimitedWord(const PointRow &row, float reading, float word, int currentPoint)
{
    const auto target = static_cast<float>(OrCurrentPoint(row.target, currentPoint));
    if (row.rule == Rule::Offset)
        return OffsetWord(word, reading - target, row.step);
    const auto base = static_cast<float>(row.base);
    return ((target + base) / (reading + base)) * word;
}

void TellOverflow(AnalogCorrection &correction, const std::string &title, bool below)
{
    const std::string limit = below ? " 0." : " 65535.";
    correction.overflowTitle = title + " Correction Overflow";
    correction.overflow =
        title + " Correction is " + (below ? "less" : "greater") + " than" + limit + "\r\nIt has been set to" + limit;
}

bool IsDigits(const std::string &text)
{
    return text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

int AnalogPointAtPosition(int position)
{
    for (int point = 0; point < kAnalogWords; ++point)
        if (RowOf(point).position == position)
            return point;
    return -1;
}

int PositionOfAnalogPoint(int point)
{
    return RowOf(point).position;
}

bool HasAnalogPoint(int dacType, int point)
{
    if (point < 0 || point >= kAnalogWords)
        return false;
    if (point >= kFirstDualPoint)
        return dacType == kDacDual;
    return point < kFirstBipolarPoint || dacType == kDacBipolar;
}

int NextAnalogPoint(int dacType, int point, int direction)
{
    for (int next = point + direction; next >= 0 && next < kAnalogWords; next += direction)
        if (HasAnalogPoint(dacType, next))
            return next;
    return -1;
}

int AnalogConnector(int point)
{
    return point >= kFirstDualPoint ? 2 : 1;
}

AnalogKind AnalogPointKind(int point)
{
    return RowOf(point).kind;
}

std::string AnalogPointTitle(int point)
{
    return RowOf(point).rule == Rule::Offset ? "Offset" : "Gain";
}

int AnalogWordAddress(int point, bool counter)
{
    return counter ? RowOf(point).counterAddress : RowOf(point).address;
}

std::int32_t AnalogOutputValue(int point, int currentPoint, bool counter)
{
    return OrCurrentPoint(RowOf(point).output, currentPoint) * (counter ? kCounterScale : 1);
}

int AnalogTarget(int point, int currentPoint)
{
    return OrCurrentPoint(RowOf(point).target, currentPoint);
}

std::string AnalogUnit(int point)
{
    return UnitOf(RowOf(point).kind);
}

std::string AnalogToleranceText(int point)
{
    return RowOf(point).kind == kCurrentOutput ? "2.5" : "1.25";
}

float AnalogTolerance(int point)
{
    return RowOf(point).kind == kCurrentOutput ? 2.5F : 1.25F;
}

bool IsInsideAnalogTolerance(int point, float error)
{
    return std::fabs(error) <= AnalogTolerance(point);
}

std::string AnalogDistanceText(int point, float error)
{
    return (error > 0 ? "+" : "") + Format(error, 2) + AnalogUnit(point);
}

std::string ExpectedAnalogReading(std::int32_t value, AnalogKind kind, bool counter)
{
    const double part = static_cast<double>(value) / (20000.0 * (counter ? kCounterScale : 1));
    const double low = kind == kBipolarOutput ? -10000 : 0;
    const double span = kind == kVoltageOutput ? 10000 : 20000;
    std::string text = Format(low + part * span, 1);
    if (text.ends_with(".0"))
        text.erase(text.size() - 2);
    return text + UnitOf(kind);
}

std::string AnalogEnterText(int point)
{
    return "Enter AnaOut Reading in" + AnalogUnit(point);
}

std::string AnalogDesiredText(int point, int currentPoint)
{
    const std::string unit = AnalogUnit(point);
    return "Desired AnaOut Reading = " + std::to_string(AnalogTarget(point, currentPoint)) + unit + " +/- " +
           AnalogToleranceText(point) + unit;
}

std::string AnalogCableText(int choice)
{
    if (choice == 4)
        return "Connect the UniPolar cable between Analog Output Connector 1 or 2 and the Output Meter.";
    const bool numbered = choice == 1 || choice == 2;
    return std::string("Connect the ") + (choice == 3 ? "B" : "Un") + "iPolar cable between " +
           (numbered ? "" : "the ") + "Analog Output Connector" + (numbered ? " " + std::to_string(choice) : "") +
           " and the Output Meter.";
}

std::optional<int> AnalogCableChoice(AnalogKind kind, int dacType)
{
    if (kind == kBipolarOutput)
        return 3;
    if (dacType == kDacBipolar)
        return 0;
    if (dacType == kDacDual)
        return 4;
    return std::nullopt;
}

std::optional<int> AnalogCableOfPoint(int point, int dacType)
{
    if (dacType == kDacDual && AnalogPointKind(point) != kBipolarOutput)
        return AnalogConnector(point);
    return AnalogCableChoice(AnalogPointKind(point), dacType);
}

TypedReading ParseTypedReading(const std::string &text)
{
    std::string number = Trim(text);
    if (number.empty())
        return {0, "Type what the output meter shows, then press Enter"};
    const std::size_t sign = number.find_first_of(".,");
    const std::string whole = number.substr(0, sign);
    const std::string decimals = sign == std::string::npos ? "" : number.substr(sign + 1);
    if (decimals.find_first_of(".,") != std::string::npos)
        return {0, "\"" + number + "\" has more than one decimal sign:\r\ntype nothing between thousands"};
    const bool isSigned = whole.starts_with('-') || whole.starts_with('+');
    const std::string digits = isSigned ? whole.substr(1) : whole;
    if (!IsDigits(digits) || !IsDigits(decimals) || digits.size() + decimals.size() == 0)
        return {0, "\"" + number + "\" is no number"};
    if (sign != std::string::npos && number[sign] == ',') {
        const bool thousands = decimals.size() == 3 && digits.find_first_not_of('0') != std::string::npos;
        if (thousands)
            return {0, "\"" + number + "\" can be read in two ways:\r\ntype a point as the decimal sign"};
        number[sign] = '.';
    }
    return {static_cast<float>(Val(number)), ""};
}

AnalogCorrection CorrectAnalogWord(int point, float reading, std::uint16_t word, int currentPoint)
{
    const PointRow &row = RowOf(point);
    AnalogCorrection correction;
    correction.refused = WhyRefused(row, reading, currentPoint);
    if (!correction.refused.empty())
        return correction;
    const float wanted = UnlimitedWord(row, reading, word, currentPoint);
    if (wanted < 0 || wanted > kWordMax)
        TellOverflow(correction, AnalogPointTitle(point), wanted < 0);
    const float held = wanted < 0 ? 0 : wanted > kWordMax ? kWordMax : wanted;
    correction.word = static_cast<std::uint16_t>(RoundHalfEven(static_cast<double>(held)));
    return correction;
}

std::uint16_t BlendAnalogWord(std::uint16_t word, std::uint16_t nominal)
{
    const float blend = static_cast<float>(word) * 0.1F + static_cast<float>(nominal) * 0.9F;
    return static_cast<std::uint16_t>(RoundHalfEven(static_cast<double>(blend)));
}

}  // namespace ombrix
