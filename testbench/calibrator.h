// The emulated calibrator: command lines in, reply lines out, and what stands on its terminals.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "testbench/signal.h"
#include "testbench/wire.h"

namespace ombrix::bench {

/// From the last byte of a command to the first of its reply.
constexpr Micros kCalibratorThinksMicros = 12'000;

/// What leads add to a resistance that isn't sensed with four wires.
constexpr double kLeadOhms = 0.25;

/// What a test or an operator may look at.
struct CalibratorState {
    bool operating = false;
    std::string output;  ///< the value as it was asked for, "0 V" after a reset
    bool remote = false;
    std::string sensing;              ///< as ZCOMP was told: "NONE", "WIRE2", "WIRE4"
    std::vector<std::string> errors;  ///< the queue, as ERR? will tell it
};

/// One moment of its output.
struct OutputEvent {
    Micros time = 0;
    std::string text;  ///< the value as it was asked for
    double value = 0;  ///< in the unit
    std::string unit;  ///< "V", "A", "OHM", "CEL", "FAR"
    double hertz = 0;
    bool operate = false;
};

class Calibrator
{
public:
    /// In standby at 0 V.
    explicit Calibrator(int operateDelayMs);

    /// A command line without its line feed; commands in it stand apart by ";". The reply without its CR LF; nothing
    /// when nothing was asked.
    std::optional<std::string> Execute(std::string_view line, Micros now);
    /// An error that the station made: into the queue, number and words, and told to onStationError.
    void AddError(int number, const std::string &words, const std::string &command);
    std::function<void(const std::string &)> onStationError;

    /// When a change of its output comes into force.
    std::optional<Micros> NextDue() const;
    void Run(Micros now);

    /// It takes every OUT ... OPER and never gets there.
    void NeverOperates(bool on) { m_neverOperates = on; }
    /// True once since the last call, when an OPER was kept from coming into force.
    bool WasKeptFromOperating();
    /// It queues an error instead of a new output or OPER and keeps what it puts out. Standby it takes.
    void RefusesOutputs(bool on) { m_refuses = on; }
    /// True once since the last call, when it has refused.
    bool HasRefused();
    /// It falls back to standby so long after each moment at which it operates; with nothing told it never does.
    void TripsAfter(std::optional<Micros> delay, Micros now);
    /// True once since the last call, when it has tripped.
    bool HasTripped();

    /// What stands on its terminals: open in standby.
    Signal Terminals() const;
    CalibratorState State() const;
    const std::vector<OutputEvent> &History() const { return m_history; }

private:
    struct Output {
        Value value{0, "V", std::nullopt};
        std::string text = "0 V";
        double hertz = 0;
        bool operate = false;
    };
    void ExecuteOne(std::string_view text, bool refused, Micros now, std::string &reply);
    bool ExecuteQuery(std::string_view head, std::string &reply);
    bool ExecuteSetting(std::string_view head, const std::string &argument);
    bool Refuses(std::string_view line);
    void QueueError(int number, const std::string &words);
    void SetOutput(const std::string &text);
    void Tell(Micros now);
    void ComeIntoForce(Micros now);
    void Reset();
    bool IsRemote(std::string_view command);
    std::string OutputReply() const;
    std::string NextError();

    Micros m_delay;
    Output m_now;
    Output m_wanted;
    std::optional<Micros> m_due;
    bool m_remote = false;
    bool m_rtd = false;  // what a temperature is given out as
    char m_thermocouple = 'K';
    std::string m_sensing = "NONE";
    std::deque<std::string> m_errors;
    bool m_neverOperates = false;
    bool m_keptFromOperating = false;
    bool m_refuses = false;
    bool m_refused = false;
    std::optional<Micros> m_tripDelay;
    std::optional<Micros> m_tripDue;
    bool m_tripped = false;
    std::vector<OutputEvent> m_history;
};

}  // namespace ombrix::bench
