// Time for tests: it stands still until somebody waits, then jumps to the next thing that happens.
//
// Minutes of a real calibration run in milliseconds, with every wait counted and none skipped. A wait that nothing
// can end, and a loop that pumps without letting time pass, end the test with a message instead of hanging it.
#pragma once

#include "platform/clock.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace ombrix::test {

/// Something that makes things happen at its own times: a line with an instrument behind it.
class EventSource
{
public:
    virtual ~EventSource() = default;
    /// When it next has something to do; nothing when only input from outside can change anything.
    virtual std::optional<std::int64_t> NextDue(std::int64_t nowMicros) = 0;
    /// Does what is due up to now.
    virtual void Run(std::int64_t nowMicros) = 0;
};

class VirtualClock : public Clock
{
public:
    VirtualClock();
    ~VirtualClock() override;

    std::int64_t NowMicros() override { return m_now; }
    void Pump(int maxWaitMs) override;
    void CallAfter(int ms, std::function<void()> call) override;

    /// Whole milliseconds since the clock was made or Restart was called.
    std::int64_t Elapsed() const { return (m_now - m_start) / 1000; }
    std::int64_t ElapsedMicros() const { return m_now - m_start; }
    void Restart() { m_start = m_now; }
    /// Lets time pass outside of any wait.
    void Advance(int ms) { m_now += static_cast<std::int64_t>(ms) * 1000; }

    void Add(EventSource *source) { m_sources.push_back(source); }
    void Remove(EventSource *source) { std::erase(m_sources, source); }

    /// Asked at each pump before time passes; true means it did something, so the pump returns.
    std::function<bool()> beforeSleep;
    /// Told when a wait has no end. The default fails the test. The pump then throws.
    std::function<void()> onEndlessWait;

private:
    struct Call {
        std::int64_t due;
        std::int64_t order;
        std::function<void()> call;
    };
    bool RunCallDueBy(std::int64_t limit);
    std::optional<std::int64_t> NextSourceDue();

    std::int64_t m_now = 1'000'000'000;
    std::int64_t m_start = m_now;
    std::int64_t m_order = 0;
    std::int64_t m_standing = 0;  // pumps since time last passed
    std::vector<Call> m_calls;
    std::vector<EventSource *> m_sources;
};

}  // namespace ombrix::test
