#include "testbench/meter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/text.h"

namespace ombrix::bench {
namespace {

constexpr std::uint32_t kNoiseStream = 0x51ED270Bu;
constexpr int kRangeWord = 16;
constexpr int kCounterRangeWord = 28;
constexpr int kScaleWord = 3;
constexpr int kDecimalsWord = 20;
constexpr int kCounterDecimalsWord = 40;

// Byte of working memory that holds the high byte of a word; the low byte stands below it.
constexpr int RamPlace(int word, bool counter)
{
    return 2 * word + (counter ? -10 : 14);
}
constexpr int kFirstCopiedWord = 5;
constexpr int kLastCopiedWord = 56;

}  // namespace

Meter::Meter(const Hardware &hardware, int kind, const Words &memory, unsigned seed)
    : m_hardware(hardware), m_kind(kind), m_nvm(memory), m_active(memory), m_dice(seed + kNoiseStream)
{
    TakeMemory();
    m_display.Jump(SettledCounts(), 0);
}

std::optional<std::string> Meter::Execute(const MeterCommand &command, Micros now)
{
    switch (command.letter) {
    case 'X': {
        const std::string words = ReadWords(command);
        if (!command.goOn)
            Restart(now + kMeterThinksMicros + static_cast<Micros>(words.size()) * kByteMicros);
        return words;
    }
    case 'W':
        WriteWords(command);
        if (!command.goOn)
            Restart(now);
        return std::nullopt;
    case 'G':
        return ReadBytes(command);
    case 'F':
        WriteBytes(command);
        return std::nullopt;
    case 'B':
        return ReadDisplay(now);
    case 'C':
        if (command.variant == 'Z')
            m_display.Jump(SettledCounts(), now);  // the filter starts anew
        else
            m_nextRecord.reset();
        return std::nullopt;
    case 'V':
        m_stream.Start();
        m_nextRecord = now + m_recordMicros;
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

std::string Meter::ReadWords(const MeterCommand &command) const
{
    std::string text;
    for (int i = 0; i < command.count; ++i)
        text += HexText(m_nvm[static_cast<std::size_t>(command.address - i)], 4);
    return text + "\r";
}

void Meter::WriteWords(const MeterCommand &command)
{
    for (int i = 0; i < command.count; ++i) {
        const std::string_view hex = std::string_view(command.data).substr(static_cast<std::size_t>(i) * 4, 4);
        if (!m_worn.contains(command.address - i))
            m_nvm[static_cast<std::size_t>(command.address - i)] = static_cast<std::uint16_t>(HexValue(hex));
    }
}

std::string Meter::ReadBytes(const MeterCommand &command) const
{
    std::string text;
    for (int i = 0; i < command.count; ++i)
        text += HexText(m_ram[static_cast<std::size_t>(command.address - i)], 2);
    return text + "\r";
}

void Meter::WriteBytes(const MeterCommand &command)
{
    for (int i = 0; i < command.count; ++i) {
        const std::string_view hex = std::string_view(command.data).substr(static_cast<std::size_t>(i) * 2, 2);
        m_ram[static_cast<std::size_t>(command.address - i)] = static_cast<std::uint8_t>(HexValue(hex));
    }
}

std::string Meter::ReadDisplay(Micros now)
{
    ++m_reads;
    if (!m_shown.empty()) {
        const std::string text = m_shown.front();
        if (m_shown.size() > 1)
            m_shown.pop_front();
        return text + "\r";
    }
    if (m_drift != 0 && !m_driftsSince)
        m_driftsSince = now;
    m_drifted = std::fabs(DriftAt(now)) >= 1;
    double counts = DisplayAt(now) + DisplayNoise(m_dice);
    if (m_wanders)
        counts += m_reads * 5 % 17 - 8;  // no three alike, up and down by several counts
    return DisplayText(counts, Decimals()) + "\r";
}

double Meter::DisplayAt(Micros now) const
{
    if (m_overloaded)
        return std::numeric_limits<double>::infinity();
    return m_display.At(now) + DriftAt(now);
}

std::string Meter::DisplayTextAt(Micros now) const
{
    return m_shown.empty() ? DisplayText(DisplayAt(now), Decimals()) : m_shown.front();
}

void Meter::Drift(int countsPerSecond)
{
    if (countsPerSecond == m_drift)
        return;
    m_drift = countsPerSecond;
    m_driftsSince.reset();
    m_drifted = false;
}

double Meter::DriftAt(Micros now) const
{
    return m_driftsSince ? m_drift * static_cast<double>(now - *m_driftsSince) / 1e6 : 0;
}

void Meter::SetInput(const Signal &signal, Micros now)
{
    if (signal == m_input)
        return;
    m_input = signal;
    m_display.Aim(SettledCounts(), now);
}

void Meter::BoardChanged(Micros now)
{
    m_display.Aim(SettledCounts(), now);
}

void Meter::Restart(Micros from)
{
    ++m_restarts;
    m_restarting = true;
    m_nextRecord.reset();
    m_toldDeafUntil = from + (IsCounter() ? kCounterRestartMicros : kRestartMicros);
    m_deafUntil = std::max(m_deafUntil, m_toldDeafUntil);
}

void Meter::StreamAs(const StreamStyle &style)
{
    m_stream.HoldEndBytes(style.endBytes);
    m_recordMicros = style.recordMicros;
}

void Meter::RestartByItself(Micros now)
{
    const Micros told = m_toldDeafUntil;
    Restart(now);
    m_toldDeafUntil = told;
}

void Meter::TakeMemory()
{
    m_active = m_nvm;
    m_ram.fill(0);
    for (int word = kFirstCopiedWord; word <= kLastCopiedWord; ++word) {
        const int place = RamPlace(word, IsCounter());
        if (place < 1)
            continue;
        m_ram[static_cast<std::size_t>(place)] = static_cast<std::uint8_t>(m_active[word] >> 8);
        m_ram[static_cast<std::size_t>(place) - 1] = static_cast<std::uint8_t>(m_active[word]);
    }
}

std::optional<Micros> Meter::NextDue() const
{
    if (m_restarting)
        return m_deafUntil;
    return m_nextRecord;
}

std::string Meter::Run(Micros now)
{
    if (m_restarting && now >= m_deafUntil) {
        m_restarting = false;
        TakeMemory();
        m_display.Jump(SettledCounts(), now);
        return IsCounter() ? m_signOfLife : "";
    }
    if (!m_nextRecord || now < *m_nextRecord)
        return "";
    *m_nextRecord += m_recordMicros;
    return m_stream.Next(m_hardware.board, m_hardware.unit, m_input, m_dice);
}

double Meter::SettledCounts() const
{
    const double scale = IsCounter() ? 1 : m_active[kScaleWord];
    const double counts = NaturalCounts(m_hardware, m_active, RangeCode(), m_input);
    return scale == 0 ? 0 : counts * scale;
}

int Meter::CodeIn(const Words &words) const
{
    return words[IsCounter() ? kCounterRangeWord : kRangeWord] & 0xFF;
}

// The word counts from 1, which is none.
int Meter::Decimals() const
{
    const int place = m_active[IsCounter() ? kCounterDecimalsWord : kDecimalsWord] & 0xFF;
    return std::clamp(place - 1, 0, 5);
}

}  // namespace ombrix::bench
