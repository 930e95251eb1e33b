#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

namespace ombrix::test {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMostStandingPumps = 200'000;

}  // namespace

VirtualClock::VirtualClock()
{
    UseClock(this);
}

VirtualClock::~VirtualClock()
{
    UseClock(nullptr);
}

void VirtualClock::CallAfter(int ms, std::function<void()> call)
{
    m_calls.push_back({m_now + static_cast<std::int64_t>(ms) * 1000, m_order++, std::move(call)});
}

bool VirtualClock::RunCallDueBy(std::int64_t limit)
{
    const auto next = std::min_element(m_calls.begin(), m_calls.end(), [](const Call &a, const Call &b) {
        return std::pair(a.due, a.order) < std::pair(b.due, b.order);
    });
    if (next == m_calls.end() || next->due > limit)
        return false;
    const Call call = std::move(*next);
    m_calls.erase(next);  // before it runs: a pump inside must not see it again
    m_now = std::max(m_now, call.due);
    call.call();
    return true;
}

std::optional<std::int64_t> VirtualClock::NextSourceDue()
{
    std::optional<std::int64_t> earliest;
    for (EventSource *source : m_sources) {
        const auto due = source->NextDue(m_now);
        if (due && (!earliest || *due < *earliest))
            earliest = due;
    }
    return earliest;
}

void VirtualClock::Pump(int maxWaitMs)
{
    const std::int64_t before = m_now;
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    if (beforeSleep && beforeSleep())
        return;
    if (m_now != before)
        return;  // a handler that ran from the queue has waited itself

    const std::int64_t limit = maxWaitMs < 0 ? kNever : m_now + static_cast<std::int64_t>(maxWaitMs) * 1000;
    const auto due = NextSourceDue();
    const bool sourceFirst = due && *due <= limit;
    if (sourceFirst && !RunCallDueBy(std::min(limit, *due))) {
        m_now = std::max(m_now, *due);
        for (EventSource *source : std::vector(m_sources))
            source->Run(m_now);
    } else if (!sourceFirst && !RunCallDueBy(limit)) {
        if (limit == kNever) {
            if (onEndlessWait)
                onEndlessWait();
            else
                ADD_FAILURE() << "a wait that nothing can end";
            throw std::runtime_error("a wait that nothing can end");
        }
        m_now = limit;
    }
    m_standing = m_now == before ? m_standing + 1 : 0;
    if (m_standing > kMostStandingPumps) {
        m_standing = 0;
        ADD_FAILURE() << "a loop that waits without letting time pass";
        throw std::runtime_error("a loop that waits without letting time pass");
    }
}

}  // namespace ombrix::test
