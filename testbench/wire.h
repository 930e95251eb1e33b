// One direction of a serial line at 9600 baud: what is put in comes out byte by byte.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace ombrix::bench {

using Micros = std::int64_t;

/// Start bit, eight data bits, stop bit.
constexpr Micros kByteMicros = 1042;

class Wire
{
public:
    /// Sends bytes, the first not before `from`, each after the one before it. With a gap the line rests so long
    /// before each byte.
    void Put(std::string_view bytes, Micros from, Micros gap = 0);
    /// When the next byte has passed.
    std::optional<Micros> NextDue() const;
    /// The bytes that have passed up to now.
    std::string Take(Micros now);
    /// The next byte, whatever the time. There must be one.
    char TakeByte();
    /// What hasn't passed yet is never said.
    void CutOff(Micros now);
    bool IsEmpty() const { return m_bytes.empty(); }
    void Clear()
    {
        m_bytes.clear();
        m_free = 0;
    }
    /// When all that was put in has passed.
    Micros FreeAt() const { return m_free; }

private:
    struct Passing {
        Micros due;
        char byte;
    };
    std::deque<Passing> m_bytes;
    Micros m_free = 0;
};

}  // namespace ombrix::bench
