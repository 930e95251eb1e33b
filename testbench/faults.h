// What can be wrong on a bench, by name, and when it begins and ends.
//
//   silent-meter         the meter carries out what it hears and says nothing
//   silent-calibrator    the calibrator likewise
//   garbage              noise before and in a reply
//   lost-cr              a reply without its CR
//   split                a reply byte by byte, 50 ms apart
//   slow-reply           a reply 700 ms later
//   wrong-length         a reply with one character too few or too many
//   never-operating      the calibrator takes OPER and stays in standby
//   never-settling       the display keeps moving by several counts
//   port-gone            lines that lead nowhere: both; at an exchange, the line that it came over
//   meter-port-gone, calibrator-port-gone    the same for one line
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "testbench/lines.h"
#include "testbench/unit.h"
#include "testbench/wire.h"

namespace ombrix::bench {

enum class Fault {
    SilentMeter,
    SilentCalibrator,
    Garbage,
    LostCr,
    Split,
    SlowReply,
    WrongLength,
    NeverOperating,
    NeverSettling,
    PortGone,
    MeterPortGone,
    CalibratorPortGone,
};
constexpr std::size_t kFaults = 12;

/// A port that went at an exchange and was not to stay away comes back after this.
constexpr Micros kPortBackMicros = 2'000'000;

/// A reply on its way out.
struct Spoken {
    std::string bytes;
    Micros later = 0;
    Micros gap = 0;  ///< before each byte
};

class Faults
{
public:
    explicit Faults(unsigned seed);

    static std::vector<std::string> Names();
    static std::optional<Fault> Named(std::string_view name);

    bool IsOn(Fault fault) const { return m_on[Index(fault)]; }
    void Switch(Fault fault, bool on);
    /// It begins when the exchange of this number arrives; a passing one ends after its first effect.
    void At(Fault fault, int exchange, bool lasting);

    /// An exchange has arrived over a line: what was to begin with it begins.
    void ExchangeArrives(int number, Line line, Micros now);
    /// A fault has had an effect.
    void Spend(Fault fault);
    bool IsPortGone(Line line) const;
    /// When a port comes back by itself.
    std::optional<Micros> NextDue() const { return m_portBack; }
    void Run(Micros now);

    /// A reply as the faults in force leave it.
    Spoken Distort(std::string reply);

private:
    static constexpr std::size_t Index(Fault fault) { return static_cast<std::size_t>(fault); }
    /// True when it is in force; a passing one is then spent.
    bool Strikes(Fault fault);

    struct Planned {
        Fault fault;
        int exchange;
        bool lasting;
    };
    std::array<bool, kFaults> m_on{};
    std::array<bool, kFaults> m_passing{};
    std::vector<Planned> m_planned;
    std::optional<Micros> m_portBack;
    Dice m_dice;
};

}  // namespace ombrix::bench
