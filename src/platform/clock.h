// The program's time and its one way to sleep.
//
// One thread does everything. Whoever waits does so in a loop over PumpEvents: events are delivered, so buttons and
// ports stay alive, and the thread sleeps until an event, serial input or the limit. Time stands behind the class
// Clock, so that tests put a virtual one in its place.
#pragma once

#include <cstdint>
#include <functional>

namespace ombrix {

/// Where time comes from and how it passes. The clock is 64 bits of microseconds: it never wraps.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual std::int64_t NowMicros() = 0;
    /// Delivers events; sleeps until one comes or maxWaitMs have passed. 0 delivers what is there and returns.
    virtual void Pump(int maxWaitMs) = 0;
    /// Runs `call` once from inside a later pump or the toolkit's loop.
    virtual void CallAfter(int ms, std::function<void()> call) = 0;
};

/// A wait that only an event ends.
constexpr int kForever = -1;

/// The clock in force; nullptr brings the real one back.
void UseClock(Clock *clock);
std::int64_t NowMicros();
void CallAfter(int ms, std::function<void()> call);

/// The only place where the program sleeps. Throws Shutdown when the program is to end, except inside a
/// NoShutdownScope.
void PumpEvents(int maxWaitMs);

/// A limit in time: never passed early.
class Deadline
{
public:
    explicit Deadline(int ms) : m_length(static_cast<std::int64_t>(ms) * 1000), m_start(NowMicros()) {}
    void Restart() { m_start = NowMicros(); }
    bool Passed() const { return NowMicros() - m_start >= m_length; }
    /// Milliseconds left, rounded up; 0 when passed. What PumpEvents takes.
    int LeftMs() const;

private:
    std::int64_t m_length;
    std::int64_t m_start;
};

/// The end of the program, on its way down the stack. Thrown by PumpEvents alone, caught at a handler's edge alone.
struct Shutdown {
};

/// From now on PumpEvents throws Shutdown. Back with `false`, for tests.
void RequestShutdown(bool on = true);
bool ShutdownRequested();

/// While one stands, PumpEvents does not throw: the last words to the instruments are spoken inside it.
class NoShutdownScope
{
public:
    NoShutdownScope();
    ~NoShutdownScope();
    NoShutdownScope(const NoShutdownScope &) = delete;
    NoShutdownScope &operator=(const NoShutdownScope &) = delete;
};

}  // namespace ombrix
