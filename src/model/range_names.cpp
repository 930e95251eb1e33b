#include "model/range_names.h"

#include <span>
#include <string_view>

#include "model/connection_tables.h"
#include "session/state.h"

namespace ombrix {

namespace {

constexpr const char *kRangeNames[] = {
    "20 mV",      "50 mV",     "100 mV",    "200 mV",   "250 mV",    "500 mV", "2 V",             // 0..6
    "20 V",       "200 V",     "600 V",     "2 mA",     "20 mA",     "200 mA", "5 A",             // 7..13
    "20 Ohms",    "200 Ohms",  "2 kOhms",   "20 kOhms", "200 kOhms",                              // 14..18
    "J °F",       "J °C",      "K °F",      "K °C",     "N °F",      "N °C",   "E °F",  "E °C",   // 19..26
    "t °F",       "t °C",      "S °F",      "S °C",     "r °F",      "r °C",                      // 27..32
    "DIN °F",     "DIN °C",    "ANSI °F",   "ANSI °C",  "Ni °F",     "Ni °C",  "Cu °F", "Cu °C",  // 33..40
    "4d °F",      "4d °C",     "4A °F",     "4A °C",    "3d °F",     "3d °C",                     // 41..46
    "3A °F",      "3A °C",     "2d °F",     "2d °C",    "2A °F",     "2A °C",  "Short",           // 47..53
    "VF 4-20 mA", "VF 0-1 mA", "VF 0-10 V",                                                       // 54..56
};
constexpr int kNames = static_cast<int>(std::size(kRangeNames));

// A code that a meter may hold, with the rows of its name and of its diagram.
struct CodeRow {
    const char *code;
    int name;
    int diagram;
};

constexpr CodeRow kDcRows[] = {
    {"60", 3, 0},  {"61", 6, 1},  {"62", 7, 2},  {"63", 8, 3},  {"64", 9, 4},  {"70", 10, 5},
    {"71", 11, 6}, {"72", 12, 7}, {"73", 13, 8}, {"A0", 3, -1}, {"A1", 6, -1}, {"A2", 7, -1},
};
constexpr std::ptrdiff_t kDcFirstRatio = 9;

constexpr CodeRow kAcRows[] = {
    {"80", 3, 0},  {"81", 6, 1},  {"82", 7, 2},  {"83", 8, 3},  {"84", 9, 9},
    {"90", 10, 5}, {"91", 11, 6}, {"92", 12, 7}, {"93", 13, 8},
};

constexpr CodeRow kLcRows[] = {
    {"C0", 0, 0}, {"C1", 1, 1}, {"C2", 2, 2}, {"C3", 4, 3}, {"C4", 5, 4},
    {"D0", 0, 0}, {"D1", 1, 1}, {"D2", 2, 2}, {"D3", 4, 3}, {"D4", 5, 4},
};
constexpr std::ptrdiff_t kLcFirstDc = 5;

constexpr CodeRow kTcRows[] = {
    {"40", 19, 2}, {"41", 20, 3}, {"42", 21, 2}, {"43", 22, 3}, {"44", 23, 2}, {"45", 24, 3}, {"46", 25, 2},
    {"47", 26, 3}, {"48", 27, 4}, {"49", 28, 5}, {"4A", 29, 4}, {"4B", 30, 5}, {"4C", 31, 4}, {"4D", 32, 5},
};

constexpr CodeRow kTempRows[] = {
    {"40", 19, 2},  {"41", 20, 3},  {"42", 21, 2},  {"43", 22, 3},  {"44", 23, 2},  {"45", 24, 3},  {"46", 25, 2},
    {"47", 26, 3},  {"48", 27, 4},  {"49", 28, 5},  {"4A", 29, 4},  {"4B", 30, 5},  {"4C", 31, 4},  {"4D", 32, 5},
    {"50", 41, -1}, {"51", 42, -1}, {"52", 43, -1}, {"53", 44, -1}, {"54", 45, -1}, {"55", 46, -1}, {"56", 47, -1},
    {"57", 48, -1}, {"58", 49, -1}, {"59", 50, -1}, {"5A", 51, -1}, {"5B", 52, -1}, {"5C", 53, -1},
};

constexpr CodeRow kRtdRows[] = {
    {"50", 33, 1}, {"51", 34, 2},  {"52", 35, 3}, {"53", 36, 4},  {"54", 37, 5},  {"55", 38, 6},  {"56", 39, 7},
    {"57", 40, 8}, {"5C", 53, -1}, {"E0", 14, 9}, {"E1", 15, 10}, {"E2", 16, 11}, {"E3", 17, 12}, {"E4", 18, 13},
};

constexpr CodeRow kVfRows[] = {{"81", 54, -1}, {"91", 55, -1}, {"A1", 56, -1}};

std::span<const CodeRow> RowsOf(int board)
{
    switch (board) {
    case kDc:
        return kDcRows;
    case kAc:
    case kAc2:
    case kAc3:
        return kAcRows;
    case kLc:
        return kLcRows;
    case kTc:
        return kTcRows;
    case kTemp:
        return kTempRows;
    case kRtd:
        return kRtdRows;
    case kVf:
        return kVfRows;
    default:
        return {};
    }
}

const char *PrefixOf(int board, std::ptrdiff_t row)
{
    switch (board) {
    case kDc:
        return row < kDcFirstRatio ? "DC " : "Ratio ";
    case kAc:
    case kAc2:
    case kAc3:
        return "RMS ";
    case kLc:
        return row < kLcFirstDc ? "Strain " : "DC ";
    default:
        return "";
    }
}

// The value for a test of the range behind a diagram row.
std::string InputOfDiagram(int board, int row)
{
    if (row < 0)
        return "";
    switch (board) {
    case kDc:
        return DcRangeName(row);
    case kAc:
    case kAc2:
    case kAc3:
        return DcRangeName(row).empty() ? "" : DcRangeName(row) + ", 300 Hz";
    case kLc:
        return LcRangeName(row);
    case kTc:
    case kTemp:
        return ThermocoupleValue(row);
    case kRtd:
        return RtdSimValue(row);
    default:
        return "";
    }
}

}  // namespace

std::string RangeName(int index)
{
    return index >= 0 && index < kNames ? kRangeNames[index] : "";
}

RangeDescription DescribeRangeCode(int board, const std::string &code)
{
    RangeDescription range;
    const std::span<const CodeRow> rows = RowsOf(board);
    for (const CodeRow &row : rows) {
        if (code != row.code)
            continue;
        range.text = PrefixOf(board, &row - rows.data()) + RangeName(row.name);
        // AC's own 660 V stands where AC2 and AC3 have nothing.
        range.diagram = board == kAc && row.diagram == 9 ? 4 : row.diagram;
        range.input = InputOfDiagram(board, range.diagram);
        break;
    }
    return range;
}

std::string RtdSimValue(int index)
{
    constexpr const char *kValues[] = {"0 V",         "387.55 OHM",  "387.55 OHM", "391.391 OHM", "391.391 OHM",
                                       "366.531 OHM", "366.531 OHM", "18.72 OHM",  "18.72 OHM",   "20 OHM",
                                       "200 OHM",     "2 KOHM",      "20 KOHM",    "100 KOHM"};
    return index >= 0 && index < static_cast<int>(std::size(kValues)) ? kValues[index] : kValues[0];
}

std::string RtdSimTemperature(int index)
{
    constexpr const char *kTemperatures[] = {"0.0",   "1544.0", "840.0", "1544.0", "840.0",
                                             "482.0", "250.0",  "482.0", "250.0"};
    return index >= 0 && index < static_cast<int>(std::size(kTemperatures)) ? kTemperatures[index] : kTemperatures[0];
}

std::string ValueAsWritten(const std::string &value)
{
    constexpr struct {
        std::string_view wire;
        std::string_view written;
    } kUnits[] = {{" KOHM", " kOhm"}, {" OHM", " Ohm"}, {" CEL", " °C"}, {" FAR", " °F"}};
    std::string text = value;
    for (const auto &unit : kUnits) {
        if (const std::size_t at = text.find(unit.wire); at != std::string::npos)
            return text.replace(at, unit.wire.size(), unit.written);
    }
    return text;
}

}  // namespace ombrix
