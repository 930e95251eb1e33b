#include "model/meter_types.h"

#include "session/state.h"

namespace ombrix {
namespace {

constexpr std::array<MeterType, kMeterTypes> kRtdTypes = {{{"RTD", "50"}, {"Ohms", "E1"}}};
constexpr std::array<MeterType, kMeterTypes> kTempTypes = {{{"DC Meter", "60"}, {"Temperature Meter", "41"}}};

}  // namespace

const std::array<MeterType, kMeterTypes> &MeterTypesOf(int board)
{
    return board == kRtd ? kRtdTypes : kTempTypes;
}

int MeterTypeOfByte(int board, std::string_view byte)
{
    for (int type = 0; type < kMeterTypes; ++type)
        if (byte == MeterTypesOf(board)[static_cast<std::size_t>(type)].code)
            return type;
    return -1;
}

std::string BoardByteAsItIsToBe(int board, std::string_view byte)
{
    for (const MeterType &type : MeterTypesOf(board))
        if (!byte.empty() && byte.front() == type.code[0])
            return type.code;
    return std::string(byte);
}

}  // namespace ombrix
