// What can be wrong on a bench, by name, and when it begins and ends.
//
// Help tells what each does. A meter that restarts by itself doesn't hear what is sent to it meanwhile, and nobody can
// blame the station for that.
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
    Junk,
    LateCalibrator,
    NeverOperating,
    RefusesOutput,
    Trips,
    MeterRestarts,
    NeverSettling,
    OverRange,
    Drifting,
    PortGone,
    MeterPortGone,
    CalibratorPortGone,
};
constexpr std::size_t kFaults = 19;

/// A fault as it was asked for: "trips=200".
struct WantedFault {
    Fault fault;
    int parameter;  ///< its default when none was told, 0 for a fault that takes none
};

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
    /// A line for each: its name, "=MS" behind it when it takes a parameter, and what it does.
    static std::string Help();
    /// Nothing for an unknown name, and for a parameter that is no whole number above 0 or that the fault doesn't take.
    static std::optional<WantedFault> Named(std::string_view name);

    bool IsOn(Fault fault) const { return m_on[Index(fault)]; }
    /// What was told behind its name.
    int Parameter(Fault fault) const { return m_parameter[Index(fault)]; }
    void Switch(const WantedFault &wanted, bool on);
    /// It begins when the exchange of this number arrives; a passing one ends after its first effect.
    void At(const WantedFault &wanted, int exchange, bool lasting);

    /// An exchange has arrived over a line: what was to begin with it begins.
    void ExchangeArrives(int number, Line line, Micros now);
    /// A fault has had an effect.
    void Spend(Fault fault);
    bool IsPortGone(Line line) const;
    /// When a port comes back by itself.
    std::optional<Micros> NextDue() const { return m_portBack; }
    void Run(Micros now);

    /// A reply of an instrument as the faults in force leave it.
    Spoken Distort(std::string reply, Line instrument);

private:
    static constexpr std::size_t Index(Fault fault) { return static_cast<std::size_t>(fault); }
    /// True when it is in force; a passing one is then spent.
    bool Strikes(Fault fault);

    struct Planned {
        WantedFault wanted;
        int exchange;
        bool lasting;
    };
    std::array<bool, kFaults> m_on{};
    std::array<bool, kFaults> m_passing{};
    std::array<int, kFaults> m_parameter{};
    std::vector<Planned> m_planned;
    std::optional<Micros> m_portBack;
    bool m_changed = false;  ///< the length of the meter's last reply
    Dice m_dice;
};

}  // namespace ombrix::bench
