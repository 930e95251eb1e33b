#include "support/bench_lines.h"

#include "platform/fault.h"
#include "platform/serial_port.h"

#include <utility>

namespace ombrix::test {
namespace {

BenchLines *linesInForce = nullptr;

}  // namespace

class BenchDevice : public SerialDevice
{
public:
    ~BenchDevice() override
    {
        if (m_wire) {
            m_wire->open = false;
            m_wire->device = nullptr;
            m_wire->waiting.clear();
        }
    }

    void Open(const std::string &device) override
    {
        auto wire = linesInForce ? linesInForce->Find(device) : nullptr;
        if (!wire || linesInForce->m_bench.PortGone(wire->line))
            throw RuntimeFault(2, "No such file or directory");
        if (wire->refusal != 0)
            throw RuntimeFault(wire->refusal, wire->refusalWords);
        if (wire->open)
            throw RuntimeFault(16, "Device or resource busy");
        wire->open = true;
        ++wire->opened;
        wire->dead = false;
        wire->device = this;
        m_wire = std::move(wire);
    }

    std::size_t BytesWaiting() override { return m_wire->waiting.size(); }
    std::string ReadAll() override { return std::exchange(m_wire->waiting, ""); }
    std::string Drop() override { return ReadAll(); }

    void Write(std::string_view bytes) override
    {
        m_wire->bytes += static_cast<std::int64_t>(bytes.size());
        if (!linesInForce || m_wire->dead)
            return;
        linesInForce->m_bench.Receive(m_wire->line, bytes, NowMicros());
        linesInForce->NoticeGonePorts();
    }

    void SetRts(bool) override {}
    void SetDtr(bool) override {}
    bool IsGone() const override { return m_wire->dead; }

private:
    std::shared_ptr<BenchLines::Wire> m_wire;
};

BenchLines::BenchLines(VirtualClock &clock, bench::Bench &bench, std::string meterDevice, std::string calibratorDevice)
    : m_clock(clock), m_bench(bench), m_wires{std::make_shared<Wire>(), std::make_shared<Wire>()}
{
    m_wires[0]->line = bench::Line::Meter;
    m_wires[0]->name = std::move(meterDevice);
    m_wires[1]->line = bench::Line::Calibrator;
    m_wires[1]->name = std::move(calibratorDevice);
    linesInForce = this;
    UseSerialDevices([] { return std::make_unique<BenchDevice>(); });
    m_clock.Add(this);
}

BenchLines::~BenchLines()
{
    m_clock.Remove(this);
    UseSerialDevices(nullptr);
    linesInForce = nullptr;
}

std::shared_ptr<BenchLines::Wire> BenchLines::Find(const std::string &device)
{
    for (const auto &wire : m_wires)
        if (wire->name == device)
            return wire;
    return nullptr;
}

std::optional<std::int64_t> BenchLines::NextDue(std::int64_t now)
{
    return m_bench.NextDue(now);
}

void BenchLines::NoticeGonePorts()
{
    for (const auto &wire : m_wires) {
        if (wire->dead || !wire->open || !m_bench.PortGone(wire->line))
            continue;
        wire->dead = true;
        CallAfter(0, [wire] {  // from an event, as a real device does
            if (wire->device && wire->dead)
                wire->device->onGone();
        });
    }
}

void BenchLines::Run(std::int64_t now)
{
    NoticeGonePorts();
    for (const auto &wire : m_wires) {
        const std::string came = m_bench.Collect(wire->line, now);
        wire->bytes += static_cast<std::int64_t>(came.size());
        if (!wire->open || wire->dead || came.empty())
            continue;
        wire->waiting += came;
        wire->device->onCame(came);
    }
    NoticeGonePorts();  // also one that went with the exchange that has just arrived
}

void BenchLines::RefuseToOpen(bench::Line line, int number, const std::string &words)
{
    Of(line).refusal = number;
    Of(line).refusalWords = words;
}

void BenchLines::ExchangeCables()
{
    std::swap(m_wires[0]->name, m_wires[1]->name);
}

std::int64_t BenchLines::Bytes() const
{
    return m_wires[0]->bytes + m_wires[1]->bytes;
}

}  // namespace ombrix::test
