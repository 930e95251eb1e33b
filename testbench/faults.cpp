#include "testbench/faults.h"

#include <algorithm>

namespace ombrix::bench {
namespace {

constexpr std::uint32_t kFaultStream = 0x2545F491u;
constexpr Micros kSplitGapMicros = 50'000;
constexpr Micros kSlowMicros = 700'000;

constexpr std::array<std::string_view, kFaults> kNames = {
    "silent-meter", "silent-calibrator", "garbage",        "lost-cr",   "split",           "slow-reply",
    "wrong-length", "never-operating",   "never-settling", "port-gone", "meter-port-gone", "calibrator-port-gone",
};

// Any byte but those that end a line or begin a block.
char NoiseByte(Dice &dice)
{
    while (true) {
        const char byte = static_cast<char>(dice.WholeBetween(1, 255));
        if (byte != '\r' && byte != '\n' && byte != '#')
            return byte;
    }
}

void AddNoise(std::string &reply, Dice &dice)
{
    const std::size_t inside = reply.find_first_of("\r\n");
    if (inside != 0 && inside != std::string::npos)
        reply[static_cast<std::size_t>(dice.WholeBetween(0, static_cast<int>(inside) - 1))] = NoiseByte(dice);
    for (int i = dice.WholeBetween(1, 4); i > 0; --i)
        reply.insert(reply.begin(), NoiseByte(dice));
}

// One character of the reply's text lost or said twice.
void ChangeLength(std::string &reply, Dice &dice)
{
    const std::size_t end = std::min(reply.find_first_of("\r\n"), reply.size());
    if (end == 0 || dice.WholeBetween(0, 1) == 0)
        reply.insert(end, 1, end == 0 ? '0' : reply[end - 1]);
    else
        reply.erase(end - 1, 1);
}

}  // namespace

Faults::Faults(unsigned seed) : m_dice(seed + kFaultStream) {}

std::vector<std::string> Faults::Names()
{
    return {kNames.begin(), kNames.end()};
}

std::optional<Fault> Faults::Named(std::string_view name)
{
    const auto *const found = std::find(kNames.begin(), kNames.end(), name);
    if (found == kNames.end())
        return std::nullopt;
    return static_cast<Fault>(found - kNames.begin());
}

void Faults::Switch(Fault fault, bool on)
{
    m_on[Index(fault)] = on;
    m_passing[Index(fault)] = false;
    if (fault == Fault::PortGone && !on)
        m_on[Index(Fault::MeterPortGone)] = m_on[Index(Fault::CalibratorPortGone)] = false;
}

void Faults::At(Fault fault, int exchange, bool lasting)
{
    m_planned.push_back({fault, exchange, lasting});
}

void Faults::ExchangeArrives(int number, Line line, Micros now)
{
    for (const Planned &planned : m_planned) {
        if (planned.exchange != number)
            continue;
        Fault fault = planned.fault;
        if (fault == Fault::PortGone)
            fault = line == Line::Meter ? Fault::MeterPortGone : Fault::CalibratorPortGone;
        m_on[Index(fault)] = true;
        m_passing[Index(fault)] = !planned.lasting;
        if (!planned.lasting && (fault == Fault::MeterPortGone || fault == Fault::CalibratorPortGone))
            m_portBack = now + kPortBackMicros;
    }
}

void Faults::Spend(Fault fault)
{
    if (m_passing[Index(fault)])
        m_on[Index(fault)] = m_passing[Index(fault)] = false;
}

bool Faults::Strikes(Fault fault)
{
    const bool on = IsOn(fault);
    if (on)
        Spend(fault);
    return on;
}

bool Faults::IsPortGone(Line line) const
{
    return IsOn(Fault::PortGone) || IsOn(line == Line::Meter ? Fault::MeterPortGone : Fault::CalibratorPortGone);
}

void Faults::Run(Micros now)
{
    if (!m_portBack || now < *m_portBack)
        return;
    m_portBack.reset();
    Spend(Fault::MeterPortGone);
    Spend(Fault::CalibratorPortGone);
}

Spoken Faults::Distort(std::string reply)
{
    Spoken spoken;
    if (Strikes(Fault::WrongLength))
        ChangeLength(reply, m_dice);
    if (Strikes(Fault::Garbage))
        AddNoise(reply, m_dice);
    if (Strikes(Fault::LostCr))
        std::erase(reply, '\r');
    if (Strikes(Fault::SlowReply))
        spoken.later = kSlowMicros;
    if (Strikes(Fault::Split))
        spoken.gap = kSplitGapMicros;
    spoken.bytes = std::move(reply);
    return spoken;
}

}  // namespace ombrix::bench
