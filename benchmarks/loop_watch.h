// How long the event loop keeps the operator waiting: a click that comes now, when is it taken?
#pragma once

#include <QObject>

#include <atomic>
#include <chrono>
#include <semaphore>
#include <thread>

namespace ombrix::benchmarks {

/// Sends a click's worth of event to the calling thread's loop every 2 ms, from a thread of its own, while it stands.
class LoopWatch
{
public:
    LoopWatch();
    ~LoopWatch();
    LoopWatch(const LoopWatch &) = delete;
    LoopWatch &operator=(const LoopWatch &) = delete;

    /// The longest that one had to wait so far, in milliseconds.
    double LongestMs() const { return std::chrono::duration<double, std::milli>(m_longest).count(); }

private:
    void Ask();

    QObject m_receiver;
    std::chrono::steady_clock::duration m_longest{};  // touched by the loop's thread alone
    std::binary_semaphore m_answered{0};
    std::atomic<bool> m_ends = false;
    std::thread m_asker;
};

}  // namespace ombrix::benchmarks
