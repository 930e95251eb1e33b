#include "testbench/bench.h"

#include <algorithm>
#include <limits>

#include "testbench/bench_wiring.h"

namespace ombrix::bench {

Bench::Bench(const BenchSetup &setup) : m_parts(std::make_unique<Parts>(setup)) {}

Bench::~Bench() = default;

void Bench::Receive(Line line, std::string_view bytes, Micros now)
{
    m_parts->Advance(now);
    if (!PortGone(line))
        m_parts->In(line).Put(bytes, now);
}

std::string Bench::Collect(Line line, Micros now)
{
    m_parts->Advance(now);
    return m_parts->Out(line).Take(now);
}

std::optional<Micros> Bench::NextDue(Micros now)
{
    m_parts->Advance(now);
    return m_parts->NextDue();
}

bool Bench::PortGone(Line line) const
{
    return m_parts->faults.IsPortGone(line);
}

std::vector<std::string> Bench::FaultNames()
{
    return Faults::Names();
}

bool Bench::IsFault(const std::string &name)
{
    return Faults::Named(name).has_value();
}

bool Bench::SwitchFault(const std::string &name, bool on)
{
    const auto fault = Faults::Named(name);
    if (fault)
        m_parts->SwitchFault(*fault, on);
    return fault.has_value();
}

bool Bench::FaultIsOn(const std::string &name) const
{
    const auto wanted = Faults::Named(name);
    return wanted && m_parts->faults.IsOn(wanted->fault);
}

bool Bench::FaultAtExchange(const std::string &name, int exchange, bool lasting)
{
    const auto fault = Faults::Named(name);
    if (fault)
        m_parts->faults.At(*fault, exchange, lasting);
    return fault.has_value();
}

bool Bench::SpoilStream(const std::string &name)
{
    const auto trouble = StreamTroubleNamed(name);
    m_parts->meter.StreamAs({.endBytes = trouble == StreamTrouble::EndBytes,
                             .recordMicros = trouble == StreamTrouble::FullSpeed ? kFullSpeedMicros : kRecordMicros});
    if (trouble)
        m_parts->stream.Begin(*trouble);
    else
        m_parts->stream.End();
    return trouble || name.empty();
}

int Bench::Exchanges() const
{
    return m_parts->exchanges;
}

bool Bench::Apply(const std::string &value, Micros now)
{
    m_parts->Advance(now);
    return m_parts->ApplyByHand(value, now);
}

void Bench::Remove(Micros now)
{
    m_parts->Advance(now);
    m_parts->RemoveByHand(now);
}

void Bench::SwapLeads(bool swapped, Micros now)
{
    m_parts->Advance(now);
    m_parts->leadsSwapped = swapped;
    m_parts->SignalChanged(now);
}

void Bench::InstallDcJumper(bool installed, Micros now)
{
    m_parts->Advance(now);
    m_parts->meter.Board().dcJumper = installed;
    m_parts->meter.BoardChanged(now);
}

bool Bench::Trim(const std::string &name, double counts, Micros now)
{
    constexpr double kCountsPerVolt = 400'000;  // of the 200 mV range as it is read
    constexpr double kFullCounts = 80'000;
    m_parts->Advance(now);
    Unit &unit = m_parts->meter.Board().unit;
    if (name == "R9" || name == "R10")
        unit.balanceVolts += counts / kCountsPerVolt;
    else if (name == "R12" || name == "R13/R14")
        unit.negativeGain += counts / kFullCounts;
    else if (name == "R38")
        unit.highFrequency += counts / kFullCounts;
    else if (name == "R3")
        unit.tp1 += counts;
    else if (name == "R25")
        unit.dutyCycle += counts;
    else
        return false;
    m_parts->meter.BoardChanged(now);
    return true;
}

bool Bench::AddResistor(const std::string &name, double megohms, Micros now)
{
    constexpr double kShareOfMegohm = 0.0094;  // of a negative reading, for a resistor of 1 megohm
    if ((name != "R13" && name != "R14") || megohms <= 0)
        return false;
    m_parts->Advance(now);
    const double share = kShareOfMegohm / megohms;
    m_parts->meter.Board().unit.negativeGain += name == "R13" ? share : -share;
    m_parts->meter.BoardChanged(now);
    return true;
}

double Bench::Tp1() const
{
    return m_parts->meter.Board().unit.tp1;
}

double Bench::DutyCycle() const
{
    return m_parts->meter.Board().unit.dutyCycle;
}

void Bench::SetRatioReading(double counts)
{
    m_parts->meter.Board().ratioReading = counts;
}

void Bench::WearOut(int word)
{
    m_parts->meter.WearOut(word);
}

void Bench::SetWord(int word, std::uint16_t value)
{
    m_parts->meter.SetWord(word, value);
}

void Bench::UseBlockForm(BlockForm form)
{
    m_parts->uutPort.UseForm(form);
}

void Bench::ShowNext(const std::vector<std::string> &texts)
{
    m_parts->meter.ShowNext(texts);
}

void Bench::AnswerNext(Line line, const std::string &bytes, const std::string &to)
{
    m_parts->AnswerNext(line, bytes, to);
}

std::vector<std::string> Bench::ProtocolErrors() const
{
    return m_parts->protocolErrors;
}

std::vector<RangeTruth> Bench::Truths() const
{
    return TruthsOf(m_parts->meter.Board(), m_parts->meter.Nvm());
}

RangeTruth Bench::TruthOf(int position) const
{
    for (const RangeTruth &truth : Truths())
        if (truth.position == position)
            return truth;
    return {};
}

RangeTruth Bench::TruthOf(const std::string &title) const
{
    const auto truths = Truths();
    for (const RangeTruth &truth : truths)
        if (truth.title == title)
            return truth;
    for (const RangeTruth &truth : truths)
        if (truth.title.starts_with(title))
            return truth;
    return {};
}

double Bench::ErrorOf(const RangeTruth &truth)
{
    return truth.title.empty() ? std::numeric_limits<double>::quiet_NaN() : truth.error;
}

std::vector<RangeTruth> Bench::AnalogTruths(int currentPoint) const
{
    const Meter &meter = m_parts->meter;
    return bench::AnalogTruths(meter.Board(), meter.Nvm(), meter.IsCounter(), currentPoint);
}

AnalogReading Bench::AnalogOut(int connector) const
{
    const Meter &meter = m_parts->meter;
    return AnalogOutput(meter.Board(), meter.Active(), meter.Ram(), meter.IsCounter(), connector);
}

bool Bench::AnalogIsWorkedOn() const
{
    const Meter &meter = m_parts->meter;
    return IsWorkedOn(meter.Active(), meter.Ram(), meter.IsCounter());
}

double Bench::DisplayCounts(Micros now) const
{
    return m_parts->meter.DisplayAt(now);
}

std::string Bench::DisplayTextAt(Micros now) const
{
    return m_parts->meter.DisplayTextAt(now);
}

Signal Bench::Terminals() const
{
    return m_parts->Terminals();
}

int Bench::RangeCode() const
{
    return m_parts->meter.RangeCode();
}

int Bench::Restarts() const
{
    return m_parts->meter.Restarts();
}

Words Bench::Nvm() const
{
    return m_parts->meter.Nvm();
}

std::array<std::uint8_t, 256> Bench::Ram() const
{
    return m_parts->meter.Ram();
}

char Bench::SwitchPosition() const
{
    return m_parts->SwitchPosition();
}

CalibratorState Bench::CalibratorNow() const
{
    return m_parts->calibrator.State();
}

std::vector<OutputEvent> Bench::OutputHistory() const
{
    auto history = m_parts->calibrator.History();
    history.insert(history.end(), m_parts->handHistory.begin(), m_parts->handHistory.end());
    std::stable_sort(history.begin(), history.end(),
                     [](const OutputEvent &a, const OutputEvent &b) { return a.time < b.time; });
    return history;
}

const std::vector<TranscriptLine> &Bench::Transcript() const
{
    return m_parts->transcript;
}

std::string Bench::LastWords(std::size_t lines) const
{
    return TranscriptText(m_parts->transcript, lines);
}

}  // namespace ombrix::bench
