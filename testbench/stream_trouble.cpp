#include "testbench/stream_trouble.h"

namespace ombrix::bench {
namespace {

struct Name {
    const char *name;
    StreamTrouble trouble;
};
constexpr Name kNames[] = {
    {"stops", StreamTrouble::Stops},
    {"loses-bytes", StreamTrouble::LosesBytes},
    {"lost-byte", StreamTrouble::LostByte},
    {"mid-record", StreamTrouble::MidRecord},
    {"noise", StreamTrouble::Noise},
    {"no-start", StreamTrouble::NoStart},
    {"no-ends", StreamTrouble::NoEnds},
    {"jumps", StreamTrouble::Jumps},
    {"jump", StreamTrouble::Jump},
    {"end-bytes", StreamTrouble::EndBytes},
    {"full-speed", StreamTrouble::FullSpeed},
};

constexpr char kGroupTag = '!';
constexpr int kOneByteIn = 61;
constexpr int kNoiseEvery = 7;  // records
constexpr std::size_t kMiddleByte = 2;
constexpr std::size_t kBeginning = 3;
constexpr char kHalfTurn = '\x40';

}  // namespace

std::optional<StreamTrouble> StreamTroubleNamed(std::string_view name)
{
    for (const Name &each : kNames)
        if (each.name == name)
            return each.trouble;
    return std::nullopt;
}

void StreamSpoiler::Begin(StreamTrouble trouble)
{
    m_trouble = trouble;
    m_records = m_bytes = 0;
}

std::string StreamSpoiler::WithoutLostBytes(const std::string &record)
{
    std::string left;
    for (const char byte : record)
        if (++m_bytes % kOneByteIn != 0)
            left += byte;
    return left;
}

std::string StreamSpoiler::SpoilWhole(std::string record)
{
    switch (*m_trouble) {
    case StreamTrouble::Stops:
        return "";
    case StreamTrouble::LosesBytes:
        return WithoutLostBytes(record);
    case StreamTrouble::LostByte:
        End();
        return record.substr(1);
    case StreamTrouble::MidRecord:
        End();
        return record.substr(kBeginning);
    case StreamTrouble::Noise:
        return m_records % kNoiseEvery == 0 ? record + "\x01\x02\x03" : record;
    case StreamTrouble::NoStart:
        if (record[0] == kGroupTag)
            record[0] = '$';
        return record;
    case StreamTrouble::NoEnds:
        record.back() = '\x7F';
        return record;
    case StreamTrouble::EndBytes:
    case StreamTrouble::FullSpeed:
        return record;
    case StreamTrouble::Jumps:
    case StreamTrouble::Jump:
        if (record[0] != kGroupTag)
            return record;
        record[kMiddleByte] = static_cast<char>(record[kMiddleByte] + kHalfTurn);
        if (*m_trouble == StreamTrouble::Jump)
            End();
        return record;
    }
    return record;
}

std::string StreamSpoiler::Spoil(std::string record)
{
    if (!m_trouble || record.empty())
        return record;
    ++m_records;
    return SpoilWhole(std::move(record));
}

}  // namespace ombrix::bench
