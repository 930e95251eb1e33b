// What can be wrong with a stream of counts on its way, by name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ombrix::bench {

enum class StreamTrouble {
    Stops,       ///< nothing comes any more
    LosesBytes,  ///< one byte in 61 is lost
    LostByte,    ///< one single byte is lost
    MidRecord,   ///< the next record has lost its beginning
    Noise,       ///< a few bytes stand between some records
    NoStart,     ///< no record starts a group
    NoEnds,      ///< no record has its end
    Jumps,       ///< a count jumps in every group
    Jump,        ///< in one single group
    EndBytes,    ///< counts hold bytes of 255, as the end of a record does
    FullSpeed,   ///< one record follows the other without a pause
};

/// "stops", "loses-bytes", "lost-byte", "mid-record", "noise", "no-start", "no-ends", "jumps", "jump", "end-bytes",
/// "full-speed"; nothing for another name.
std::optional<StreamTrouble> StreamTroubleNamed(std::string_view name);

/// Leaves a stream as the trouble in force leaves it. The last two are the meter's own: see Meter::StreamAs.
class StreamSpoiler
{
public:
    /// From now on.
    void Begin(StreamTrouble trouble);
    void End() { m_trouble.reset(); }
    /// A record as it goes out.
    std::string Spoil(std::string record);

private:
    std::string SpoilWhole(std::string record);
    std::string WithoutLostBytes(const std::string &record);

    std::optional<StreamTrouble> m_trouble;
    int m_records = 0;
    int m_bytes = 0;
};

}  // namespace ombrix::bench
