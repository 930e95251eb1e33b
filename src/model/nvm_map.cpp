#include "model/nvm_map.h"

#include "platform/text.h"
#include "session/state.h"

namespace ombrix {
namespace {

// Columns of the names: what stands in front.
enum Column { DcColumn, AcColumn, LcColumn, TcColumn, TempColumn, RtdColumn, kColumns };

struct MapRow {
    const char *address;
    const char *names[kColumns];
};

constexpr const char *kSpare = "Spare";

// clang-format off
constexpr MapRow kMap[kNvmRows] = {
    //      DC           AC           LC           TC           Temp         RTD
    {"19",  {"CALREF",    "CALREF",    "CALREF",    "CALREF",    "CALREF",    "CALREF"}},
    {"1A",  {"CALDCGD",   "CALDCGD",   "CALDCGD",   "CALDCGD",   "CALDCGD",   "CALDCGD"}},
    {"1B",  {kSpare,      kSpare,      kSpare,      kSpare,      "CAL3WGD",   kSpare}},
    {"1CL", {kSpare,      kSpare,      kSpare,      "CALQDOJ",   "CALQDOJ",   kSpare}},
    {"1D",  {"RD0",       "RD0",       "RD0",       "CALQDGJ",   "CALQDGJ",   kSpare}},
    {"1E",  {kSpare,      kSpare,      "CALHGGD",   "CALISRC",   "CALISRC",   kSpare}},
    {"1F",  {"CAL0P2V",   "CAL0P2V",   "CAL20MV",   "CALJTC",    "CALJTC",    "20 OHMS"}},
    {"20",  {"CAL2V",     "CAL2V",     "CAL50MV",   "CALKTC",    "CALKTC",    "200"}},
    {"21",  {"CAL20V",    "CAL20V",    "CAL100MV",  "CALETC",    "CALETC",    "2K"}},
    {"22",  {"CAL200V",   "CAL200V",   "CAL250MV",  "CALTTC",    "CALTTC",    "20K"}},
    {"23",  {"CAL2KV",    "CAL2KV",    "CAL500MV",  "CALSTC",    "CALSTC",    "200K"}},
    {"24",  {kSpare,      kSpare,      kSpare,      "CALRTC",    "CALRTC",    kSpare}},
    {"25",  {"CAL2MA",    "CAL2MA",    kSpare,      kSpare,      "CAL4WD",    "CALDIN"}},
    {"26",  {"CAL20MA",   "CAL20MA",   kSpare,      kSpare,      "CAL4WA",    "CALANSI"}},
    {"27",  {"CAL0P2A",   "CAL0P2A",   kSpare,      kSpare,      "CAL3WD",    "CALNI"}},
    {"28",  {"CAL5A",     "CAL5A",     kSpare,      kSpare,      "CAL3WA",    "CALCU"}},
    {"29",  {kSpare,      kSpare,      kSpare,      kSpare,      "CAL2WD",    kSpare}},
    {"2A",  {kSpare,      kSpare,      kSpare,      kSpare,      "CAL2WA",    kSpare}},
    {"2B",  {kSpare,      kSpare,      kSpare,      kSpare,      "CALSHRT",   kSpare}},
    {"2C",  {kSpare,      kSpare,      kSpare,      "CALQDOT",   "CALQDOT",   kSpare}},
    {"2D",  {kSpare,      kSpare,      kSpare,      "CALQDGT",   "CALQDGT",   kSpare}},
    {"2E",  {kSpare,      kSpare,      kSpare,      "CALNTC",    "CALNTC",    kSpare}},
    {"2FL", {"CALBID",    kSpare,      "CALBID",    "CALTCHO",   "CALTCHO",   kSpare}},
    {"2F",  {kSpare,      kSpare,      kSpare,      kSpare,      kSpare,      kSpare}},
    {"30",  {"CALBRDN",   kSpare,      "CALBRDN",   kSpare,      kSpare,      kSpare}},
    {"31",  {"CALBRDG",   "CALBRDG",   "CALBRDG",   kSpare,      kSpare,      kSpare}},
    {"32",  {"CALBGND",   "CALBGND",   "CALBGND",   kSpare,      kSpare,      kSpare}},
    {"33L", {"FIRSTB",    "FIRSTB",    "FIRSTB",    "FIRSTB",    "FIRSTB",    "FIRSTB"}},
    {"33",  {"FIRSTM",    "FIRSTM",    "FIRSTM",    "FIRSTM",    "FIRSTM",    "FIRSTM"}},
    {"34L", {"OLVALUE",   "OLVALUE",   "OLVALUE",   "OLVALUE",   "OLVALUE",   "OLVALUE"}},
    {"34",  {"SECRET",    "SECRET",    "SECRET",    "SECRET",    "SECRET",    "SECRET"}},
    {"37L", {"600 OL",    "600 OL",    "600 OL",    "600 OL",    "600 OL",    "600 OL"}},
    {"37",  {"5A OL",     "5A OL",     "5A OL",     "5A OL",     "5A OL",     "5A OL"}},
    {"38L", {"% / 8 OL",  "% / 8 OL",  "% / 8 OL",  "% / 8 OL",  "% / 8 OL",  "% / 8 OL"}},
    {"38",  {"ZERO WIDE", "ZERO WIDE", "ZERO WIDE", "ZERO WIDE", "ZERO WIDE", "ZERO WIDE"}},
};
// clang-format on

int ColumnOf(int calibTab, int board)
{
    switch (calibTab) {
    case kTabDc:
        return DcColumn;
    case kTabAc:
        return AcColumn;
    case kTabLc:
        return LcColumn;
    case kTabTc:
        return board == kTemp ? TempColumn : board == kRtd ? RtdColumn : TcColumn;
    default:
        return -1;
    }
}

// 24 bits: one half below, one above zero when they are signed.
constexpr std::int32_t kSignBit = 0x800000;
constexpr std::int32_t kModulus = 0x1000000;
constexpr float kUnsignedLimit = 16777210.0f;
constexpr float kSignedLow = -8388608.0f;
constexpr float kSignedHigh = 8388607.0f;

}  // namespace

NvmRow NvmRowAt(int row, int calibTab, int board)
{
    const int column = ColumnOf(calibTab, board);
    if (row < 0 || row >= kNvmRows || column < 0)
        return {};
    return {kMap[row].address, kMap[row].names[column]};
}

bool IsWordText(std::string_view text, std::size_t digits)
{
    return text.size() == digits && IsHexText(text);
}

std::int32_t Hex6ToLong(std::string_view hex)
{
    return static_cast<std::int32_t>(HexValue(Left(hex, 3)) * 4096 + HexValue(Right(hex, 3)));
}

std::int32_t Hex6ToSigned(std::string_view hex)
{
    const std::int32_t value = Hex6ToLong(hex);
    return value >= kSignBit ? value - kModulus : value;
}

std::string LongToHex6(std::int32_t value)
{
    if (value < 0)
        return "000000";
    return value >= kModulus ? "FFFFFF" : HexText(value, 6);
}

std::string SignedToHex6(std::int32_t value)
{
    if (value < -kSignBit)
        return "800000";
    if (value >= kSignBit)
        return "7FFFFF";
    return LongToHex6(value < 0 ? value + kModulus : value);
}

std::string FloatToHex6(float value)
{
    if (value < 0)
        return "000000";
    return value > kUnsignedLimit ? "FFFFFF" : LongToHex6(RoundHalfEven(value));
}

std::string FloatToHex6Signed(float value)
{
    if (value < kSignedLow)
        return "800000";
    return value > kSignedHigh ? "7FFFFF" : SignedToHex6(RoundHalfEven(value));
}

float Hex6ToFloat(std::string_view hex)
{
    return static_cast<float>(Hex6ToLong(hex));
}

float Hex6ToFloatSigned(std::string_view hex)
{
    return static_cast<float>(Hex6ToSigned(hex));
}

}  // namespace ombrix
