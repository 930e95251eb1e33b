// Serial lines that lead to a bench, on virtual time.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/fault.h"
#include "platform/serial_port.h"
#include "support/virtual_clock.h"
#include "testbench/bench.h"

namespace ombrix::test {

/// While it stands, the two devices lead to the bench; any other is missing. A line that goes is dead for whoever has
/// it open, as a port that was pulled: it must be opened anew when it is back.
class BenchLines : public EventSource
{
public:
    BenchLines(VirtualClock &clock, bench::Bench &bench, std::string calibrator, std::string meter)
        : m_clock(clock), m_bench(bench), m_names{std::move(calibrator), std::move(meter)}
    {
        m_clock.Add(this);
        UseSerialDevices([this] { return std::make_unique<Device>(*this); });
    }
    ~BenchLines() override
    {
        UseSerialDevices(nullptr);
        m_clock.Remove(this);
    }
    BenchLines(const BenchLines &) = delete;
    BenchLines &operator=(const BenchLines &) = delete;

    std::optional<std::int64_t> NextDue(std::int64_t nowMicros) override { return m_bench.NextDue(nowMicros); }
    void Run(std::int64_t nowMicros) override
    {
        for (const bench::Line line : {bench::Line::Calibrator, bench::Line::Meter}) {
            const std::string bytes = m_bench.Collect(line, nowMicros);
            if (Device *device = m_open[Index(line)])
                device->Take(bytes);
        }
    }

private:
    class Device : public SerialDevice
    {
    public:
        explicit Device(BenchLines &lines) : m_lines(lines) {}
        ~Device() override
        {
            if (m_opened)
                m_lines.m_open[Index(m_line)] = nullptr;
        }
        void Open(const std::string &device) override
        {
            const bool meter = device == m_lines.m_names[Index(bench::Line::Meter)];
            m_line = meter ? bench::Line::Meter : bench::Line::Calibrator;
            if ((!meter && device != m_lines.m_names[0]) || m_lines.m_bench.PortGone(m_line))
                throw RuntimeFault(2, "No such file or directory");
            if (m_lines.m_open[Index(m_line)])
                throw RuntimeFault(16, "Device or resource busy");
            m_lines.m_bench.Collect(m_line, m_lines.m_clock.NowMicros());  // what the line said to nobody is lost
            m_lines.m_open[Index(m_line)] = this;
            m_opened = true;
        }
        std::size_t BytesWaiting() override { return IsDead() ? 0 : m_waiting.size(); }
        std::string ReadAll() override { return IsDead() ? "" : std::exchange(m_waiting, ""); }
        void Write(std::string_view bytes) override
        {
            if (!IsDead())
                m_lines.m_bench.Receive(m_line, bytes, m_lines.m_clock.NowMicros());
        }
        void SetRts(bool) override {}
        void SetDtr(bool) override {}
        void Take(const std::string &bytes)
        {
            if (!IsDead())
                m_waiting += bytes;
        }

    private:
        bool IsDead()
        {
            m_dead = m_dead || m_lines.m_bench.PortGone(m_line);
            return m_dead;
        }

        BenchLines &m_lines;
        bench::Line m_line = bench::Line::Meter;
        bool m_opened = false;
        bool m_dead = false;
        std::string m_waiting;
    };

    static std::size_t Index(bench::Line line) { return static_cast<std::size_t>(line); }

    VirtualClock &m_clock;
    bench::Bench &m_bench;
    std::string m_names[2];
    Device *m_open[2] = {};
};

}  // namespace ombrix::test
