// The meter's raw counts while it streams them: what the first cycle correction is found from.
//
// A record is five bytes: a tag, a count of 24 bits, 255. Eighteen records are a frame, three frames a group: ground,
// quasi-diode, reference. The first record of a group carries "!", which is how a listener finds the start of a group
// in a running stream.
#pragma once

#include <array>
#include <string>

#include "testbench/signal.h"
#include "testbench/unit.h"
#include "testbench/wire.h"

namespace ombrix::bench {

/// Time from one record to the next; at full speed the line has no pause.
constexpr Micros kRecordMicros = 5600;
constexpr Micros kFullSpeedMicros = 5 * kByteMicros;

struct StreamStyle {
    bool endBytes = false;  ///< counts hold bytes of 255, as the end of a record does
    Micros recordMicros = kRecordMicros;
};

class FirstCycleStream
{
public:
    /// From the start of a group.
    void Start() { m_record = 0; }
    /// From the next frame on.
    void HoldEndBytes(bool hold) { m_endBytes = hold; }
    /// The next record. The input is looked at once for each group.
    std::string Next(int board, const Unit &unit, const Signal &signal, Dice &dice);

private:
    int m_record = 0;
    bool m_endBytes = false;
    double m_phase = 0;             ///< what the group's input is in counts
    std::array<int, 4> m_counts{};  ///< of the frame that is being sent
};

/// The two bytes that belong into word 51, M and B, as four hexadecimal digits.
std::string FirstCycleWord(const Unit &unit);

}  // namespace ombrix::bench
