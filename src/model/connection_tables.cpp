#include "model/connection_tables.h"

#include <span>

#include "model/step_ids.h"
#include "session/state.h"

namespace ombrix {
namespace {

using Letters = const char *;

constexpr const char *kDcNames[] = {"200 mV", "2 V",    "20 V", "200 V", "660 V", "2 mA",
                                    "20 mA",  "200 mA", "5 A",  "600 V", "200 mV"};

// By the rows of these names: block, first group, second group.
constexpr Letters kDcLetters[][3] = {
    {"A", "f", "b"},   {"A", "f", "a"},   {"B", "h", "b"},   {"B", "h", "a"},     {"B", "g", "a"},
    {"A", "e,g", "b"}, {"A", "d,g", "b"}, {"A", "c,g", "b"}, {"A", "a,b,g", "b"},
};

constexpr Letters kAcLetters[][2] = {
    {"g", "k"},   {"g", "j"},   {"h", "k"},   {"h", "j"},     {"f", "j"},
    {"e,f", "k"}, {"d,f", "k"}, {"c,f", "k"}, {"a,b,f", "m"}, {"f", "j"},
};

constexpr Letters kAc3Letters[][2] = {
    {"j", ""},  {"g,h", "c"}, {"i", "c"},     {"k", "c"}, {"", ""},   {"l,k", ""},
    {"m", "b"}, {"m", "a"},   {"m", "c,d,e"}, {"m", "c"}, {"j", "f"},
};

constexpr int kAc3Unused = 4;  // 660 V is no range of this board

constexpr const char *kLcNames[] = {"20 mV", "50 mV", "100 mV", "250 mV", "500 mV"};
constexpr Letters kLcLetters[][1] = {{"e"}, {"a"}, {"b"}, {"c"}, {"d"}};

constexpr const char *kTcNames[] = {"J,K,E,N",  "T,R,S",   "J,K,E,N °F", "J,K,E,N °C", "T,R,S °F",
                                    "T,R,S °C", "Upscale", "Downscale",  "4-wire",     "3-wire"};
constexpr const char *kTcValues[] = {"200 mV", "200 mV", "32 FAR", "0 CEL", "32 FAR", "0 CEL"};
constexpr Letters kTcLetters[][1] = {{""}, {"j"}, {""}, {""}, {"j"}, {"j"}, {""}, {""}, {""}, {""}};
// Thermocouple group, open-input direction, wires of the resistor.
constexpr Letters kTempLetters[][3] = {
    {"e", "", ""}, {"f", "", ""}, {"e", "", ""}, {"e", "", ""},   {"f", "", ""},
    {"f", "", ""}, {"", "c", ""}, {"", "d", ""}, {"", "", "b,e"}, {"", "", "a,e"},
};

constexpr const char *kRtdNames[] = {"4-Wire",   "DIN385 °F", "DIN385 °C", "ANSI3902 °F", "ANSI3902 °C",
                                     "Ni120 °F", "Ni120 °C",  "Cu10 °F",   "Cu10 °C",     "20 Ohms",
                                     "200 Ohms", "2 kOhms",   "20 kOhms",  "200 kOhms"};
constexpr Letters kRtdLetters[][1] = {{""},  {"a"}, {"a"}, {"a"}, {"a"}, {"a"}, {"a"},
                                      {"b"}, {"b"}, {"b"}, {"c"}, {"d"}, {"e"}, {"f"}};

constexpr const char *kVfNames[] = {"4-20 mA", "0-1 mA", "0-10 V"};
constexpr Letters kVfLetters[][1] = {{"b"}, {"a"}, {""}};

constexpr const char *kAnalogNames[] = {"UniPolar", "BiPolar"};
constexpr Letters kAnalogLetters[][1] = {{"a"}, {"b"}};

template <std::size_t size> std::string EntryOf(const char *const (&list)[size], int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < size ? list[index] : "";
}

template <std::size_t rows, std::size_t labels>
std::vector<std::string> RowOf(const Letters (&table)[rows][labels], int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= rows)
        return {};
    return {std::begin(table[row]), std::end(table[row])};
}

std::string WithUnit(const std::string &name, const char *before, const char *behind)
{
    return name.empty() ? "" : before + name + behind;
}

int AcDiagramKind(int row)
{
    if (row >= 5 && row <= 8)
        return 7;
    const bool high = row == 0 || row == 10 || (row == 1 && SCType != kAc3);
    return high ? 6 : 5;
}

}  // namespace

std::string DcRangeName(int row)
{
    return EntryOf(kDcNames, row);
}

std::string LcRangeName(int row)
{
    return EntryOf(kLcNames, row);
}

int JumperBlockOfBoard(int board)
{
    constexpr int kBlocks[kBoards] = {0, 1, 2, 3, 4, 1, 6, 7, 8, 5};
    return board >= 0 && board < kBoards ? kBlocks[board] : -1;
}

std::string RangeCaption(int board, int row)
{
    switch (board) {
    case kDc:
        return WithUnit(DcRangeName(row), "", " DC");
    case kAc:
    case kAc2:
    case kAc3:
        return WithUnit(DcRangeName(row), "", " AC");
    case kLc:
        return LcRangeName(row);
    case kTc:
    case kTemp:
        return ThermocoupleName(row);
    case kRtd:
        return EntryOf(kRtdNames, row);
    case kVf:
        return WithUnit(EntryOf(kVfNames, row), "VF ", "");
    case kAn:
        return EntryOf(kAnalogNames, row);
    default:
        return "";
    }
}

std::vector<std::string> JumperLetters(int board, int row)
{
    switch (board) {
    case kDc:
        return RowOf(kDcLetters, row);
    case kAc:
    case kAc2:
        return RowOf(kAcLetters, row);
    case kAc3:
        return row == kAc3Unused ? std::vector<std::string>() : RowOf(kAc3Letters, row);
    case kLc:
        return RowOf(kLcLetters, row);
    case kTc:
        return RowOf(kTcLetters, row);
    case kTemp:
        return RowOf(kTempLetters, row);
    case kRtd:
        return RowOf(kRtdLetters, row);
    case kVf:
        return RowOf(kVfLetters, row);
    case kAn:
        return RowOf(kAnalogLetters, row);
    default:
        return {};
    }
}

std::string ThermocoupleName(int index)
{
    return EntryOf(kTcNames, index);
}

std::string ThermocoupleValue(int index)
{
    return EntryOf(kTcValues, index);
}

int DiagramKind(int row)
{
    if (row < 0)
        return CalibTab == kTabLc ? 1 : 0;
    switch (SCType) {
    case kDc:
        if (CurrentStepId == Step::Ratio)
            return 4;
        return row < 5 ? 2 : 3;
    case kAc:
    case kAc2:
    case kAc3:
        return AcDiagramKind(row);
    case kLc:
        return CurrentStepId == Step::Ratio ? 9 : 8;
    case kTc:
        return 2;
    case kVf:
        return row == 2 ? 2 : 3;
    case kTemp:
        return CurrentStepId == Step::RtdCurrent ? 10 : 2;
    case kRtd:
        return 10;
    default:
        return 0;
    }
}

std::string PinLabel(int kind, int place)
{
    constexpr int kKinds = 11;
    constexpr int kPlaces = 6;
    constexpr const char *kLabels[kKinds][kPlaces] = {
        {"", "", "", "", "", ""},                                            // 0
        {"", "", "", "", "", ""},                                            // 1
        {"", "", "3 - SIG", "4 + SIG", "", ""},                              // 2
        {"", "", "3 - SIG", "4 + SIG", "", ""},                              // 3
        {"1 - EXC", "", "3 - SIG", "4 + SIG", "", ""},                       // 4
        {"1 SIG HI", "", "3 SIG LO", "", "", ""},                            // 5
        {"", "", "3 SIG LO", "4 SIG HI", "", ""},                            // 6
        {"", "", "3 SIG LO", "4 SIG HI", "", ""},                            // 7
        {"", "", "3 - SIG", "4 + SIG", "", ""},                              // 8
        {"1 - EXC", "2 -SENS", "3 - SIG", "4 + SIG", "5 + EXC", "6 +SENS"},  // 9
        {"1 - EXC", "2 + EXC", "3 - SIG", "4 + SIG", "", ""},                // 10
    };
    const bool known = kind >= 0 && kind < kKinds && place >= 0 && place < kPlaces;
    return known ? kLabels[kind][place] : "";
}

Cable Ac3Cable(int row)
{
    switch (row) {
    case 0:
        return {"2", "Voltage"};
    case 1:
    case 2:
    case 3:
    case 9:
        return {"4", "Voltage"};
    case 5:
    case 6:
    case 7:
    case 8:
        return {"2", "Current"};
    default:
        return {};
    }
}

}  // namespace ombrix
