#include "calibration/trims.h"

#include "platform/text.h"

namespace ombrix {
namespace {

struct TrimRow {
    float threshold;
    TrimResistors high;
    TrimResistors low;
};

constexpr TrimRow kTrimTable[] = {
    // clang-format off
    {0.0005f,  {   0,    0}, {   0,    0}},
    {0.00116f, {   0, 1000}, {1000,    0}},
    {0.00182f, {1000,  100}, { 100, 1000}},
    {0.0025f,  {   0,  100}, { 100,    0}},
    {0.0029f,  { 100,   10}, {  10,  100}},
    {0.00365f, {   0,  100}, {1100,    0}},  // no mirror image
    {0.0045f,  {1000,   10}, {  10, 1000}},
    {0.0055f,  {   0,   10}, {  10,    0}},
    {0.0066f,  {   0, 1010}, {1010,    0}},
    {0.0075f,  {   0,  110}, { 110,    0}},
    {0.00834f, { 100,    1}, {   1,  100}},
    {0.0095f,  {1000,    1}, {   1, 1000}},
    {0.012f,   {   0,    1}, {   1,    0}},
    {10.0f,    {   0,    0}, {   0,    0}},
    // clang-format on
};

struct Resistor {
    int digit;
    const char *name;
};
constexpr Resistor kResistors[] = {{1000, "10M"}, {100, "4.3M"}, {10, "2M"}, {1, "1M"}};

}  // namespace

std::size_t TrimRowOf(float size)
{
    std::size_t row = 0;
    while (row < kTrimError && !(kTrimTable[row].threshold > size))
        ++row;
    return row;
}

std::optional<TrimResistors> ResistorsForError(float error)
{
    const bool low = error < 0.0f;
    const std::size_t row = TrimRowOf(low ? -error : error);
    if (row == kTrimError)
        return std::nullopt;
    return low ? kTrimTable[row].low : kTrimTable[row].high;
}

std::optional<TrimResistors> ResistorsForReadings(float plus, float minus)
{
    if (plus == 0.0f)
        return std::nullopt;
    return ResistorsForError(minus / plus - 1.0f);
}

std::string ResistorCodeText(int code)
{
    std::string text;
    for (const Resistor &resistor : kResistors) {
        if (code < resistor.digit)
            continue;
        code -= resistor.digit;
        text += (text.empty() ? "" : " and ") + std::string(resistor.name);
    }
    return text.empty() ? "Nothing" : text;
}

std::int32_t RecommendedReading(float plus, float minus)
{
    return RoundHalfEven(static_cast<double>((plus + minus) / 2.0f));
}

}  // namespace ombrix
