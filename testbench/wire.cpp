#include "testbench/wire.h"

#include <algorithm>

namespace ombrix::bench {

void Wire::Put(std::string_view bytes, Micros from, Micros gap)
{
    m_free = std::max(m_free, from);
    for (const char byte : bytes) {
        m_free += gap + kByteMicros;
        m_bytes.push_back({m_free, byte});
    }
}

std::optional<Micros> Wire::NextDue() const
{
    if (m_bytes.empty())
        return std::nullopt;
    return m_bytes.front().due;
}

std::string Wire::Take(Micros now)
{
    std::string passed;
    while (!m_bytes.empty() && m_bytes.front().due <= now)
        passed += TakeByte();
    return passed;
}

char Wire::TakeByte()
{
    const char byte = m_bytes.front().byte;
    m_bytes.pop_front();
    return byte;
}

void Wire::CutOff(Micros now)
{
    while (!m_bytes.empty() && m_bytes.back().due > now)
        m_bytes.pop_back();
    m_free = std::min(m_free, now);
}

}  // namespace ombrix::bench
