// Boards and kinds of meter by number, as the meters' makers count them.
#pragma once

namespace ombrix::bench {

namespace board {
constexpr int kDc = 0, kAc = 1, kLc = 2, kTc = 3, kVf = 4, kAc2 = 5, kAc3 = 6, kTemp = 7, kRtd = 8;
constexpr int kCount = 9;

/// Reads the size of an alternating signal.
constexpr bool IsAc(int board)
{
    return board == kAc || board == kAc2 || board == kAc3;
}
/// Reads thermocouples.
constexpr bool IsThermocouple(int board)
{
    return board == kTc || board == kTemp;
}
}  // namespace board

namespace kind {
constexpr int kDpm = 1, kWtMtr = 2, kCtr = 3;
}

}  // namespace ombrix::bench
