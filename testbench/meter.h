// One emulated meter: its memories, its restarts, its display, its stream.
//
// It works with the memory as it was at its last restart: what is written with Z waits for the next one.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "testbench/boards.h"
#include "testbench/display.h"
#include "testbench/first_cycle.h"
#include "testbench/laws.h"
#include "testbench/meter_frame.h"

namespace ombrix::bench {

/// From the last byte of a command to the first of its reply.
constexpr Micros kMeterThinksMicros = 8'000;
/// A restart: the meter is deaf so long. A counter then gives its sign of life.
constexpr Micros kRestartMicros = 1'200'000;
constexpr Micros kCounterRestartMicros = 2'000'000;

class Meter
{
public:
    Meter(const Hardware &hardware, int kind, const Words &memory, unsigned seed);

    /// Carries out a command. The reply with its CR; nothing for a command that has none.
    std::optional<std::string> Execute(const MeterCommand &command, Micros now);

    /// True while a frame that began then isn't heard.
    bool IsDeaf(Micros began) const { return began < m_deafUntil; }
    /// True when the station can know it: it asked for the restart.
    bool WasToldToRestart(Micros began) const { return began < m_toldDeafUntil; }
    /// How its stream of counts looks from now on.
    void StreamAs(const StreamStyle &style);
    /// A restart that nobody asked for.
    void RestartByItself(Micros now);

    /// What stands on its terminals from now on.
    void SetInput(const Signal &signal, Micros now);
    /// The operator's hand on the board.
    Hardware &Board() { return m_hardware; }
    void BoardChanged(Micros now);
    /// What a counter says at the end of a restart.
    void SetSignOfLife(const std::string &bytes) { m_signOfLife = bytes; }
    void SetWord(int word, std::uint16_t value) { m_nvm[static_cast<std::size_t>(word)] = value; }

    /// A word that keeps its value whatever is written to it.
    void WearOut(int word) { m_worn.insert(word); }
    /// When it next does something by itself: ends a restart, sends a record.
    std::optional<Micros> NextDue() const;
    /// Does what is due, and what it says by itself.
    std::string Run(Micros now);

    /// A display that keeps moving.
    void Wander(bool on) { m_wanders = on; }
    /// A display that shows its overload.
    void Overload(bool on) { m_overloaded = on; }
    /// A display that moves so many counts a second from its next reading on; 0 ends that.
    void Drift(int countsPerSecond);
    /// True when the drift has moved a reading by a count.
    bool HasDrifted() const { return m_drifted; }
    /// What the next reads of the display are answered with, as they are; the last text stays. None gives the display
    /// back.
    void ShowNext(const std::vector<std::string> &texts) { m_shown.assign(texts.begin(), texts.end()); }

    double DisplayAt(Micros now) const;
    std::string DisplayTextAt(Micros now) const;
    int RangeCode() const { return CodeIn(m_active); }
    int Restarts() const { return m_restarts; }
    const Words &Nvm() const { return m_nvm; }
    const Words &Active() const { return m_active; }
    const std::array<std::uint8_t, 256> &Ram() const { return m_ram; }
    const Hardware &Board() const { return m_hardware; }
    bool IsCounter() const { return m_kind == kind::kCtr; }

private:
    std::string ReadWords(const MeterCommand &command) const;
    void WriteWords(const MeterCommand &command);
    std::string ReadBytes(const MeterCommand &command) const;
    void WriteBytes(const MeterCommand &command);
    std::string ReadDisplay(Micros now);
    double DriftAt(Micros now) const;
    void Restart(Micros from);
    void TakeMemory();
    double SettledCounts() const;
    int CodeIn(const Words &words) const;
    int Decimals() const;

    Hardware m_hardware;
    int m_kind;
    Words m_nvm;
    Words m_active;
    std::array<std::uint8_t, 256> m_ram{};
    Signal m_input;
    Display m_display;
    Dice m_dice;
    FirstCycleStream m_stream;
    std::optional<Micros> m_nextRecord;
    Micros m_recordMicros = kRecordMicros;
    std::string m_signOfLife;
    bool m_restarting = false;
    Micros m_deafUntil = 0;
    Micros m_toldDeafUntil = 0;
    int m_restarts = 0;
    bool m_wanders = false;
    bool m_overloaded = false;
    int m_drift = 0;  // counts a second
    std::optional<Micros> m_driftsSince;
    bool m_drifted = false;
    std::deque<std::string> m_shown;
    int m_reads = 0;
    std::set<int> m_worn;
};

}  // namespace ombrix::bench
