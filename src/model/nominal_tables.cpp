#include "model/nominal_tables.h"

#include "model/nominals.h"
#include "session/state.h"

namespace ombrix {
namespace {

struct SlopeRow {
    int word;
    float dc, ac, ac2, ac3, lc, temp, tc, rtd;
};

// Word counts for one display count. VF and AN have none.
// clang-format off
constexpr SlopeRow kSlopes[] = {
    // word  DC       AC     AC2    AC3    LC      Temp     TC       RTD
    {25,    3.296f,  0,     0,     0,     3.277f, 0,       0,       0},
    {26,    9.737f,  31.4f, 31.4f, 31.4f, 4.7f,   11.3f,   11.3f,   11.3f},
    {29,    0,       0,     0,     0,     0,      10.0f,   10.0f,   0},
    {30,    0,       0,     0,     0,     12.2f,  0,       0,       0},
    {31,    3.226f,  3.25f, 3.25f, 3.25f, 3.277f, 0,       0,       3.0945f},
    {32,    3.35f,   4.8f,  4.8f,  4.8f,  3.218f, 0,       0,       3.0945f},
    {33,    3.153f,  3.35f, 3.35f, 3.35f, 3.217f, 3.0945f, 3.0945f, 3.0945f},
    {34,    3.317f,  3.5f,  3.5f,  3.5f,  3.241f, 0,       0,       3.1399f},
    {35,    9.91f,   6.6f,  6.6f,  6.6f,  3.408f, 0,       0,       3.1399f},
    {36,    0,       0,     0,     0,     0,      3.1399f, 3.1399f, 0},
    {37,    3.242f,  4.1f,  4.1f,  4.1f,  0,      0,       0,       3.0945f},
    {38,    3.274f,  4.4f,  4.4f,  4.4f,  0,      0,       0,       0},
    {39,    3.174f,  3.1f,  3.1f,  3.1f,  0,      0,       0,       0},
    {40,    14.11f,  3.7f,  3.7f,  3.7f,  0,      0,       0,       0},
    {45,    0,       0,     0,     0,     0,      10.0f,   10.0f,   0},
    {47,    0,       0,     0,     0,     0,      11.3f,   11.3f,   0},
};

// One row for each word from 25, one column for each board by its index. VF keeps its three groups apart.
constexpr const char *kWords[kNominalRows][kBoards] = {
    // DC     AC      LC      TC      VF      AC2     AC3     Temp    RTD     AN
    {"52A7", "8000", "8000", "8000", "",     "8000", "8000", "8000", "8000", "0000"},  // 25
    {"0000", "0000", "0000", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 26
    {"0000", "0000", "0000", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 27
    {"0000", "0000", "0000", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 28
    {"0000", "0000", "0000", "6F10", "",     "0000", "0000", "6F10", "0000", "0000"},  // 29
    {"0000", "0000", "0000", "8000", "",     "0000", "0000", "8000", "0000", "0000"},  // 30
    {"8000", "8000", "8000", "4708", "",     "8000", "8000", "4708", "4708", "0000"},  // 31
    {"8948", "8000", "6DA0", "4708", "",     "8000", "8000", "4708", "4708", "0000"},  // 32
    {"7628", "8000", "6D50", "4708", "",     "8000", "8000", "4708", "4708", "0000"},  // 33
    {"7F52", "8000", "74D0", "5538", "",     "8000", "8000", "5538", "5538", "0000"},  // 34
    {"7F5D", "8000", "A900", "5538", "",     "8000", "8000", "5538", "5538", "0000"},  // 35
    {"7400", "0000", "0000", "5538", "",     "0000", "0000", "5538", "0000", "0000"},  // 36
    {"75B5", "8000", "0000", "0000", "",     "8000", "8000", "8000", "8000", "0000"},  // 37
    {"7EE0", "8000", "0000", "0000", "",     "8000", "8000", "8000", "8000", "0000"},  // 38
    {"726A", "8000", "0000", "0000", "",     "8000", "8000", "8000", "8000", "0000"},  // 39
    {"ACA9", "8000", "0000", "0000", "",     "8000", "8000", "8000", "4708", "0000"},  // 40
    {"BB00", "0000", "0000", "0000", "",     "0000", "0000", "8000", "0000", "0000"},  // 41
    {"5000", "0000", "0000", "0000", "",     "0000", "0000", "8000", "0000", "0000"},  // 42
    {"4600", "0000", "0000", "0000", "",     "0000", "0000", "8000", "0000", "0000"},  // 43
    {"4000", "0000", "0000", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 44
    {"3E00", "0000", "0000", "6DE8", "",     "0000", "0000", "6DE8", "0000", "0000"},  // 45
    {"0000", "0000", "0000", "4708", "",     "0000", "0000", "4708", "0000", "0000"},  // 46
    {"009C", "0000", "009C", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 47
    {"3400", "0000", "3400", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 48
    {"9000", "0000", "9000", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 49
    {"0660", "0000", "0660", "0000", "",     "0000", "0000", "0000", "0000", "0000"},  // 50
};
// clang-format on

// Offset and gain of the outputs 4-20 mA, 0-1 mA, 0-10 V.
constexpr const char *kVfPatterns[kVfGroups] = {"FFD9B8100000", "FFD9B81028F6", "FF77451428F6"};

float SlopeIn(const SlopeRow &row, int board)
{
    switch (board) {
    case kDc:
        return row.dc;
    case kAc:
        return row.ac;
    case kAc2:
        return row.ac2;
    case kAc3:
        return row.ac3;
    case kLc:
        return row.lc;
    case kTemp:
        return row.temp;
    case kTc:
        return row.tc;
    case kRtd:
        return row.rtd;
    default:
        return 0.0f;
    }
}

}  // namespace

float DefaultSlopeOf(int board, int word)
{
    for (const SlopeRow &row : kSlopes)
        if (row.word == word)
            return SlopeIn(row, board);
    return 0.0f;
}

std::string DefaultNominalWordOf(int board, int word)
{
    if (board == kVf)
        return VfGroupOfWord(word) < 0 ? kNoVfGroup : FirstCyclePattern(VfGroupOfWord(word));
    const bool known = board >= 0 && board < kBoards && IsNominalWord(word);
    return known ? kWords[word - kFirstNominalWord][board] : kNoNominalWord;
}

std::string FirstCyclePattern(int index)
{
    return index >= 0 && index < kVfGroups ? kVfPatterns[index] : "";
}

}  // namespace ombrix
