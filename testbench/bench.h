// One meter and one calibrator on a bench: what the station's two lines lead to.
//
// Nothing here reads a clock or a port: bytes and the time go in, bytes come out. Time is microseconds of any steady
// clock.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix::bench
{

using Micros = std::int64_t;

/// The two lines as the station sees them. Through the UUT port only the calibrator's line is used.
enum class Line { Calibrator, Meter };

struct BenchSetup {
    int board = 0; ///< SCType of the meter's board
    int kind = 1;  ///< 1 DPM, 2 WtMtr, 3 CTR
    bool xmtr = false;
    unsigned seed = 1;        ///< draws the unit's hidden errors and its noise
    bool uut = false;         ///< the meter hangs on the calibrator's UUT port
    bool outputSwitch = true; ///< a second meter at address 2 answers
    int operateDelayMs = 200; ///< from OUT ... OPER to the state in force
};

class Bench
{
public:
    explicit Bench(const BenchSetup &setup);
    ~Bench();

    /// Bytes that the station sent, as they arrive at the instrument's end.
    void Receive(Line line, std::string_view bytes, Micros now);
    /// Bytes that have left the instrument up to now, at 9600 baud (1.042 ms each).
    std::string Collect(Line line, Micros now);
    /// When the next byte of a line leaves or the next thing happens; nothing when only input can change anything.
    std::optional<Micros> NextDue(Micros now);

    // ... faults, truth, transcript, manual input: to be added by name.

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace ombrix::bench
