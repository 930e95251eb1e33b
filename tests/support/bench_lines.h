// The station's two ports on virtual time, wired to the instruments of the bench.
//
// The bench paces the bytes of both directions at 9600 baud, so what passes between a click and its effect is what
// would pass on real lines: the waits, the bytes, the instruments.
#pragma once

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

private:
    friend class BenchDevice;
    struct Wire {
        bench::Line line;
        std::string device;
        std::string waiting;  // has come, not yet read
        bool open = false;
        bool dead = false;  // went while it was open: what comes back is another device
        std::int64_t bytes = 0;
    };
    void NoticeGonePorts();
    std::shared_ptr<Wire> Find(const std::string &device);

    VirtualClock &m_clock;
    bench::Bench &m_bench;
    std::shared_ptr<Wire> m_wires[2];
};

}  // namespace ombrix::test
