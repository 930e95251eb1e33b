// What the instruments say, as the faults in force leave it.
#include "testbench/bench_wiring.h"

namespace ombrix::bench {

void Bench::Parts::SwitchFault(const WantedFault &wanted, bool on)
{
    faults.Switch(wanted, on);
    ApplyFaults(m_now);
}

void Bench::Parts::ApplyFaults(Micros now)
{
    const auto told = [this](Fault fault) { return faults.IsOn(fault) ? faults.Parameter(fault) : 0; };
    meter.Wander(faults.IsOn(Fault::NeverSettling));
    meter.Overload(faults.IsOn(Fault::OverRange));
    meter.Drift(told(Fault::Drifting));
    calibrator.NeverOperates(faults.IsOn(Fault::NeverOperating));
    calibrator.RefusesOutputs(faults.IsOn(Fault::RefusesOutput));
    const int tripMs = told(Fault::Trips);
    calibrator.TripsAfter(tripMs == 0 ? std::nullopt : std::optional(tripMs * Micros{1000}), now);
    if (!faults.IsOn(Fault::MeterRestarts))
        m_nextRestart.reset();
    else if (!m_nextRestart)
        RestartMeter(now);
    DropLostPorts();
}

void Bench::Parts::RestartMeter(Micros now)
{
    meter.RestartByItself(now);
    Note(now, Line::Meter, false, "", "the meter restarts by itself");
    (setup.uut ? m_tunnelOut : m_meterOut).CutOff(now);
    const Micros pause = faults.Parameter(Fault::MeterRestarts) * Micros{1000};
    faults.Spend(Fault::MeterRestarts);
    m_nextRestart.reset();
    if (faults.IsOn(Fault::MeterRestarts))
        m_nextRestart = now + pause;
}

void Bench::Parts::AnswerNext(Line line, const std::string &bytes, const std::string &to)
{
    m_answers.push_back({line, bytes, to});
}

std::optional<std::string> Bench::Parts::PlannedAnswer(Line line)
{
    const std::string &heard = m_heard[line == Line::Meter ? 0 : 1];
    for (auto answer = m_answers.begin(); answer != m_answers.end(); ++answer) {
        if (answer->line != line || heard.find(answer->to) == std::string::npos)
            continue;
        std::string bytes = std::move(answer->bytes);
        m_answers.erase(answer);
        return bytes;
    }
    return std::nullopt;
}

void Bench::Parts::Say(Line line, Wire &out, const std::string &reply, Micros from)
{
    if (const auto planned = PlannedAnswer(line)) {
        Note(from, line, false, *planned, "planned");
        out.Put(*planned, from);
        return;
    }
    const Fault silence = line == Line::Meter ? Fault::SilentMeter : Fault::SilentCalibrator;
    if (faults.IsOn(silence)) {
        faults.Spend(silence);
        Note(from, line, false, reply, line == Line::Meter ? "not said: silent-meter" : "not said: silent-calibrator");
        return;
    }
    const Spoken spoken = faults.Distort(reply, line);
    Note(from + spoken.later, line, false, spoken.bytes, spoken.bytes == reply ? "" : "spoilt");
    out.Put(spoken.bytes, from + spoken.later, spoken.gap);
}

void Bench::Parts::MeterReplies(const std::string &reply, Micros now)
{
    Say(Line::Meter, setup.uut ? m_tunnelOut : m_meterOut, reply, now + kMeterThinksMicros);
}

void Bench::Parts::CalibratorReplies(const std::string &reply, Micros now)
{
    Say(Line::Calibrator, m_calibratorOut, reply + "\r\n", now + kCalibratorThinksMicros);
}

void Bench::Parts::MeterSays(const std::string &bytes, Micros from)
{
    if (setup.uut)
        m_tunnelOut.Put(bytes, from);
    else if (!faults.IsPortGone(Line::Meter))
        m_meterOut.Put(bytes, from);
}

void Bench::Parts::DropLostPorts()
{
    for (const Line line : {Line::Meter, Line::Calibrator}) {
        if (!faults.IsPortGone(line))
            continue;
        In(line).Clear();
        Out(line).Clear();
        if (line == Line::Calibrator)
            m_commands.Clear();
        else if (!setup.uut)
            m_frames.Clear();
    }
}

}  // namespace ombrix::bench
