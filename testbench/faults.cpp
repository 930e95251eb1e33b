#include "testbench/faults.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace ombrix::bench {
namespace {

constexpr std::uint32_t kFaultStream = 0x2545F491u;
constexpr Micros kSplitGapMicros = 50'000;
constexpr Micros kSlowMicros = 700'000;

constexpr int kJunkBytes = 4;

struct Known {
    std::string_view name;
    std::string_view what;
    std::string_view unit{};  // of its parameter
    int parameter = 0;        // when none is told; 0: it takes none
};

// In the order of Fault.
constexpr std::array<Known, kFaults> kKnown = {{
    {"silent-meter", "the meter carries out what it hears and says nothing"},
    {"silent-calibrator", "the calibrator likewise"},
    {"garbage", "noise before and in a reply"},
    {"lost-cr", "a reply without its CR"},
    {"split", "a reply byte by byte, 50 ms apart"},
    {"slow-reply", "a reply 700 ms later"},
    {"wrong-length", "a reply with one character too few or too many"},
    {"junk", "four bytes before a reply that is itself whole"},
    {"late-calibrator", "each reply of the calibrator so much later", "MS", 1500},
    {"never-operating", "the calibrator takes OPER and stays in standby"},
    {"refuses-output", "the calibrator queues an error and keeps its output; standby it takes"},
    {"trips", "the calibrator falls back to standby so long after it operates", "MS", 700},
    {"meter-restarts", "the meter restarts by itself, at once and every so often", "MS", 5000},
    {"never-settling", "the display keeps moving by several counts"},
    {"over-range", "the display shows its overload, whatever the input"},
    {"drifting", "the display moves so many counts a second from its next reading on", "COUNTS", 3},
    {"port-gone", "lines that lead nowhere: both; at an exchange, the line that it came over"},
    {"meter-port-gone", "the same for one line"},
    {"calibrator-port-gone", "the same for one line"},
}};

// 0 for a text that is no whole number above 0.
int WholeNumber(std::string_view text)
{
    int number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    return end.ec == std::errc() && end.ptr == text.data() + text.size() ? std::max(number, 0) : 0;
}

// Any byte but those that end a line or begin a block.
char NoiseByte(Dice &dice)
{
    while (true) {
        const char byte = static_cast<char>(dice.WholeBetween(1, 255));
        if (byte != '\r' && byte != '\n' && byte != '#')
            return byte;
    }
}

// A byte that is no part of a value.
char JunkByte(Dice &dice)
{
    constexpr std::string_view kOfValues = "0123456789+-., \t";
    while (true) {
        const char byte = NoiseByte(dice);
        if (kOfValues.find(byte) == std::string_view::npos)
            return byte;
    }
}

// So that a line with them before its value can be told from any other.
void AddJunk(std::string &reply, Dice &dice)
{
    std::string junk;
    while (junk.size() < kJunkBytes)
        junk += JunkByte(dice);
    reply.insert(0, junk);
}

// One of the bytes before it is no part of a value: where noise makes another number of a reply, nobody can tell.
void AddNoise(std::string &reply, Dice &dice)
{
    const std::size_t inside = reply.find_first_of("\r\n");
    if (inside != 0 && inside != std::string::npos)
        reply[static_cast<std::size_t>(dice.WholeBetween(0, static_cast<int>(inside) - 1))] = NoiseByte(dice);
    for (int i = dice.WholeBetween(0, 3); i > 0; --i)
        reply.insert(reply.begin(), NoiseByte(dice));
    reply.insert(reply.begin(), JunkByte(dice));
}

// The last character of the reply's text said twice or lost.
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
    std::vector<std::string> names;
    names.reserve(kKnown.size());
    for (const Known &known : kKnown)
        names.emplace_back(known.name);
    return names;
}

std::string Faults::Help()
{
    constexpr std::size_t kNameWidth = 22;
    std::string text;
    for (const Known &known : kKnown) {
        std::string name(known.name);
        if (known.parameter != 0)
            name += "=" + std::string(known.unit);
        name.resize(std::max(name.size(), kNameWidth), ' ');
        text += (text.empty() ? "" : "\n") + name + " " + std::string(known.what);
        if (known.parameter != 0)
            text += ", " + std::to_string(known.parameter) + " when none is told";
    }
    return text;
}

std::optional<WantedFault> Faults::Named(std::string_view name)
{
    const std::size_t sign = name.find('=');
    const auto *const found = std::find_if(kKnown.begin(), kKnown.end(),
                                           [&](const Known &known) { return known.name == name.substr(0, sign); });
    if (found == kKnown.end())
        return std::nullopt;
    WantedFault wanted{static_cast<Fault>(found - kKnown.begin()), found->parameter};
    if (sign == std::string_view::npos)
        return wanted;
    wanted.parameter = WholeNumber(name.substr(sign + 1));
    if (found->parameter == 0 || wanted.parameter == 0)
        return std::nullopt;
    return wanted;
}

void Faults::Switch(const WantedFault &wanted, bool on)
{
    m_on[Index(wanted.fault)] = on;
    m_passing[Index(wanted.fault)] = false;
    m_parameter[Index(wanted.fault)] = wanted.parameter;
    if (wanted.fault == Fault::PortGone && !on)
        m_on[Index(Fault::MeterPortGone)] = m_on[Index(Fault::CalibratorPortGone)] = false;
}

void Faults::At(const WantedFault &wanted, int exchange, bool lasting)
{
    m_planned.push_back({wanted, exchange, lasting});
}

void Faults::ExchangeArrives(int number, Line line, Micros now)
{
    for (const Planned &planned : m_planned) {
        if (planned.exchange != number)
            continue;
        Fault fault = planned.wanted.fault;
        if (fault == Fault::PortGone)
            fault = line == Line::Meter ? Fault::MeterPortGone : Fault::CalibratorPortGone;
        m_on[Index(fault)] = true;
        m_passing[Index(fault)] = !planned.lasting;
        m_parameter[Index(fault)] = planned.wanted.parameter;
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

Spoken Faults::Distort(std::string reply, Line instrument)
{
    Spoken spoken;
    // The block that carries a changed reply on isn't changed too: a loss and a repetition would together be a wrong text
    // of the right length, which nobody could tell.
    const bool carriesOn = m_changed && instrument == Line::Calibrator && reply.starts_with('#');
    const bool changes = !carriesOn && Strikes(Fault::WrongLength);
    if (changes)
        ChangeLength(reply, m_dice);
    if (instrument == Line::Meter || carriesOn)
        m_changed = changes;
    if (Strikes(Fault::Garbage))
        AddNoise(reply, m_dice);
    if (Strikes(Fault::Junk))
        AddJunk(reply, m_dice);
    if (Strikes(Fault::LostCr))
        std::erase(reply, '\r');
    if (Strikes(Fault::SlowReply))
        spoken.later = kSlowMicros;
    if (instrument == Line::Calibrator && Strikes(Fault::LateCalibrator))
        spoken.later += Parameter(Fault::LateCalibrator) * Micros{1000};
    if (Strikes(Fault::Split))
        spoken.gap = kSplitGapMicros;
    spoken.bytes = std::move(reply);
    return spoken;
}

}  // namespace ombrix::bench
