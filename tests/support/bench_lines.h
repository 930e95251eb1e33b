// The station's two ports on virtual time, wired to the instruments of the bench.
//
// The bench paces the bytes of both directions at 9600 baud, so what passes between a click and its effect is what
// would pass on real lines: the waits, the bytes, the instruments.
#pragma once

#include "platform/serial_port.h"
#include "support/virtual_clock.h"
#include "testbench/bench.h"

#include <cstdint>
#include <memory>
#include <string>

namespace ombrix::test {

class BenchLines : public EventSource
{
public:
    /// `meterDevice` and `calibratorDevice` are the paths under which the station opens the lines; any other path is
    /// a missing device.
    BenchLines(VirtualClock &clock, bench::Bench &bench, std::string meterDevice, std::string calibratorDevice);
    ~BenchLines() override;

    std::optional<std::int64_t> NextDue(std::int64_t now) override;
    void Run(std::int64_t now) override;

    /// Bytes that passed so far, both ways and both lines.
    std::int64_t Bytes() const;
    /// How often the station has opened a line's device.
    int Opened(bench::Line line) const { return Of(line).opened; }
    /// Opening its device fails with this number and these words; with number 0 it succeeds again.
    void RefuseToOpen(bench::Line line, int number, const std::string &words);
    /// Each device leads to the other instrument from its next opening on.
    void ExchangeCables();

private:
    friend class BenchDevice;
    struct Wire {
        bench::Line line;
        std::string name;
        SerialDevice *device = nullptr;  // who has it open
        std::string waiting;             // has come, not yet read
        bool open = false;
        int opened = 0;
        int refusal = 0;
        std::string refusalWords;
        bool dead = false;  // went while it was open: what comes back is another device
        std::int64_t bytes = 0;
    };
    void NoticeGonePorts();
    std::shared_ptr<Wire> Find(const std::string &device);
    Wire &Of(bench::Line line) const { return *m_wires[line == bench::Line::Meter ? 0 : 1]; }

    VirtualClock &m_clock;
    bench::Bench &m_bench;
    std::shared_ptr<Wire> m_wires[2];
};

}  // namespace ombrix::test
