#include "loop_watch.h"

#include <QMetaObject>

#include <algorithm>

namespace ombrix::benchmarks {

using namespace std::chrono_literals;

LoopWatch::LoopWatch() : m_asker([this] { Ask(); }) {}

LoopWatch::~LoopWatch()
{
    m_ends = true;
    m_asker.join();
}

void LoopWatch::Ask()
{
    while (!m_ends) {
        const auto asked = std::chrono::steady_clock::now();
        const auto take = [this, asked] {
            m_longest = std::max(m_longest, std::chrono::steady_clock::now() - asked);
            m_answered.release();
        };
        QMetaObject::invokeMethod(&m_receiver, take, Qt::QueuedConnection);
        while (!m_answered.try_acquire_for(10ms))
            if (m_ends)
                return;
        std::this_thread::sleep_for(2ms);
    }
}

}  // namespace ombrix::benchmarks
