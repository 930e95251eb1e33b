#include "testbench/bench_wiring.h"

#include <algorithm>

#include "platform/text.h"
#include "testbench/boards.h"

namespace ombrix::bench {
namespace {

constexpr int kTransmitter = 4;  // in the low byte of word 109
constexpr unsigned kSwitchSeed = 4711;
// A bench may stand for days.
constexpr std::size_t kMostLines = 200'000;
constexpr std::size_t kMostErrors = 10'000;

int KindOf(const BenchSetup &setup)
{
    return setup.board == board::kVf ? kind::kCtr : setup.kind;
}

Hardware HardwareOf(int board, unsigned seed)
{
    Hardware hardware;
    hardware.board = board;
    hardware.unit = DrawUnit(board, seed);
    return hardware;
}

Meter MeterOf(const BenchSetup &setup)
{
    const int kind = KindOf(setup);
    const Words memory = StartWords(setup.board, kind + (setup.xmtr ? kTransmitter : 0), setup.seed);
    return {HardwareOf(setup.board, setup.seed), kind, memory, setup.seed};
}

Meter SwitchMeter()
{
    return {HardwareOf(board::kDc, kSwitchSeed), kind::kDpm, StartWords(board::kDc, kind::kDpm, kSwitchSeed),
            kSwitchSeed};
}

// What stands on the terminals when a value is applied by hand. A temperature comes from whatever the meter wants.
Signal SignalByHand(const Value &value)
{
    const double hertz = value.hertz.value_or(0);
    if (value.unit == "V")
        return {Quantity::Volts, value.number, hertz, 0};
    if (value.unit == "A")
        return {Quantity::Amps, value.number, hertz, 0};
    if (value.unit == "OHM")
        return {Quantity::Ohms, value.number, 0, 0};
    return {Quantity::Thermocouple, value.unit == "FAR" ? CelsiusOfFahrenheit(value.number) : value.number, 0, 0};
}

}  // namespace

Bench::Parts::Parts(const BenchSetup &wanted)
    : setup(wanted), meter(MeterOf(wanted)), calibrator(wanted.operateDelayMs), faults(wanted.seed),
      m_switch(SwitchMeter())
{
    calibrator.onStationError = [this](const std::string &what) { StationError(m_now, "calibrator: " + what); };
    meter.SetSignOfLife(setup.signOfLife);
    SignalChanged(0);
}

void Bench::Parts::Advance(Micros now)
{
    while (auto next = NextHappening()) {
        if (next->due > now)
            break;
        m_now = std::max(m_now, next->due);
        next->run(m_now);
    }
    m_now = std::max(m_now, now);
}

std::optional<Bench::Parts::Happening> Bench::Parts::NextHappening()
{
    std::optional<Happening> next;
    const auto consider = [&next](std::optional<Micros> due, std::function<void(Micros)> run) {
        if (due && (!next || *due < next->due))
            next = Happening{*due, std::move(run)};
    };
    consider(m_meterIn.NextDue(), [this](Micros now) { TakeMeterByte(now); });
    consider(m_calibratorIn.NextDue(), [this](Micros now) { TakeCalibratorByte(now); });
    consider(m_tunnelIn.NextDue(), [this](Micros now) { TakeTunnelByte(now); });
    consider(m_tunnelOut.NextDue(), [this](Micros now) { uutPort.Hear(m_tunnelOut.Take(now)); });
    consider(calibrator.NextDue(), [this](Micros now) { RunCalibrator(now); });
    consider(meter.NextDue(), [this](Micros now) { RunMeter(meter, now); });
    consider(m_switch.NextDue(), [this](Micros now) { RunMeter(m_switch, now); });
    consider(faults.NextDue(), [this](Micros now) { faults.Run(now); });
    consider(m_nextRestart, [this](Micros now) { RestartMeter(now); });
    return next;
}

std::optional<Micros> Bench::Parts::NextDue() const
{
    std::optional<Micros> due;
    for (const auto &each : {m_meterIn.NextDue(), m_calibratorIn.NextDue(), m_tunnelIn.NextDue(), m_tunnelOut.NextDue(),
                             m_meterOut.NextDue(), m_calibratorOut.NextDue(), calibrator.NextDue(), meter.NextDue(),
                             m_switch.NextDue(), faults.NextDue(), m_nextRestart})
        if (each && (!due || *each < *due))
            due = each;
    return due;
}

void Bench::Parts::TakeMeterByte(Micros now)
{
    const auto frame = m_frames.Take(m_meterIn.TakeByte(), now);
    if (!frame || BeginExchange(Line::Meter, now))
        return;
    m_heard[0] = frame->text;
    Note(now, Line::Meter, true, frame->text + "\r", "");
    if (setup.uut)
        NoteLast("nothing is on this line");
    else
        HearFrame(*frame, now);
}

void Bench::Parts::TakeCalibratorByte(Micros now)
{
    const auto line = m_commands.Take(m_calibratorIn.TakeByte());
    if (!line || BeginExchange(Line::Calibrator, now))
        return;
    m_heard[1] = *line;
    Note(now, Line::Calibrator, true, *line + "\n", "");
    if (setup.calibrator)
        HearCommand(*line, now);
    else
        NoteLast("nothing is on this line");
}

void Bench::Parts::TakeTunnelByte(Micros now)
{
    const auto frame = m_frames.Take(m_tunnelIn.TakeByte(), now);
    if (!frame)
        return;
    m_heard[0] = frame->text;
    Note(now, Line::Meter, true, frame->text + "\r", "through the calibrator");
    HearFrame(*frame, now);
}

void Bench::Parts::RunCalibrator(Micros now)
{
    calibrator.Run(now);
    if (calibrator.WasKeptFromOperating())
        faults.Spend(Fault::NeverOperating);
    if (calibrator.HasTripped()) {
        faults.Spend(Fault::Trips);
        ApplyFaults(now);
    }
    SignalChanged(now);
}

void Bench::Parts::RunMeter(Meter &which, Micros now)
{
    const std::string bytes = which.IsCounter() ? which.Run(now) : stream.Spoil(which.Run(now));
    if (&which == &m_switch)
        SignalChanged(now);
    if (!bytes.empty() && !faults.IsOn(Fault::SilentMeter))
        MeterSays(bytes, now);
}

bool Bench::Parts::BeginExchange(Line line, Micros now)
{
    faults.ExchangeArrives(exchanges++, line, now);
    ApplyFaults(now);
    return faults.IsPortGone(line);
}

void Bench::Parts::HearFrame(const Frame &frame, Micros now)
{
    const ParsedFrame parsed = ParseFrame(frame.text);
    if (!parsed.command) {
        StationError(now, parsed.trouble + ": " + Readable(frame.text));
        return;
    }
    const bool second = parsed.command->meter == '2' && setup.outputSwitch;
    if (parsed.command->meter != '1' && !second) {
        NoteLast("no meter has this address");
        return;
    }
    Meter &which = second ? m_switch : meter;
    if (which.IsDeaf(frame.began)) {
        if (which.WasToldToRestart(frame.began))
            StationError(now, "sent while the meter restarts: " + Readable(frame.text));
        NoteLast("lost: the meter restarts");
        return;
    }
    ExecuteFrame(which, *parsed.command, now);
}

void Bench::Parts::ExecuteFrame(Meter &which, const MeterCommand &command, Micros now)
{
    if (&which == &m_switch && command.letter == 'W')
        m_switchUsed = true;
    if (const auto reply = which.Execute(command, now))
        MeterReplies(*reply, now);
    if (command.letter == 'B' && &which == &meter) {
        faults.Spend(Fault::NeverSettling);
        faults.Spend(Fault::OverRange);
        if (meter.HasDrifted())
            faults.Spend(Fault::Drifting);
        ApplyFaults(now);
    }
}

void Bench::Parts::HearCommand(const std::string &line, Micros now)
{
    if (!HearTunnelCommand(line, now))
        if (const auto reply = calibrator.Execute(line, now))
            CalibratorReplies(*reply, now);
    if (calibrator.HasRefused()) {
        faults.Spend(Fault::RefusesOutput);
        ApplyFaults(now);
    }
    SignalChanged(now);
}

bool Bench::Parts::HearTunnelCommand(const std::string &line, Micros now)
{
    constexpr std::string_view kSet = "UUT_SET ";
    constexpr std::string_view kSend = "UUT_SEND ";
    if (line.starts_with(kSet)) {
        if (!UutPort::CanBeSet(std::string_view(line).substr(kSet.size())))
            calibrator.AddError(110, "Bad argument", line);
    } else if (line.starts_with(kSend)) {
        const auto data = BlockData(std::string_view(line).substr(kSend.size()));
        if (!data)
            calibrator.AddError(111, "Bad block", Readable(line));
        else if (setup.uut)
            m_tunnelIn.Put(*data, now);
    } else if (line == "UUT_RECV?") {
        CalibratorReplies(uutPort.TakeBlock(), now);
    } else if (line == "UUT_FLUSH") {
        uutPort.Flush();
    } else {
        return false;
    }
    return true;
}

bool Bench::Parts::ApplyByHand(const std::string &value, Micros now)
{
    const auto parsed = ParseValue(value);
    if (!parsed)
        return false;
    byHand = parsed;
    handHistory.push_back({now, value, parsed->number, parsed->unit, parsed->hertz.value_or(0), true});
    SignalChanged(now);
    return true;
}

void Bench::Parts::RemoveByHand(Micros now)
{
    byHand.reset();
    handHistory.push_back({now, "removed", 0, "V", 0, false});
    SignalChanged(now);
}

void Bench::Parts::SignalChanged(Micros now)
{
    meter.SetInput(Terminals(), now);
}

Signal Bench::Parts::Terminals() const
{
    Signal signal = byHand ? SignalByHand(*byHand) : calibrator.Terminals();
    // Until the station has set the switch, the operator joins the terminals.
    const bool volts = signal.quantity == Quantity::Volts;
    const bool amps = signal.quantity == Quantity::Amps;
    if (m_switchUsed && ((volts && SwitchPosition() == 'A') || (amps && SwitchPosition() == 'V')))
        return {};
    if (leadsSwapped && signal.quantity != Quantity::Ohms && signal.hertz == 0)
        signal.value = -signal.value;
    return signal;
}

char Bench::Parts::SwitchPosition() const
{
    const Words &words = m_switch.Active();
    return words[5] == 0 && words[4] >> 8 == 0 ? 'V' : 'A';
}

void Bench::Parts::Note(Micros time, Line line, bool fromStation, std::string_view bytes, const std::string &note)
{
    transcript.push_back({time, line, fromStation, Readable(bytes), note});
    if (transcript.size() > kMostLines)
        transcript.erase(transcript.begin(), transcript.begin() + kMostLines / 2);
}

void Bench::Parts::NoteLast(const std::string &note)
{
    transcript.back().note = note;
}

void Bench::Parts::StationError(Micros now, const std::string &what)
{
    if (protocolErrors.size() < kMostErrors)
        protocolErrors.push_back(Format(static_cast<double>(now) / 1e6, 3) + " s: " + what);
    if (!transcript.empty())
        NoteLast(what);
}

}  // namespace ombrix::bench
