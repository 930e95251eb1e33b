#include "calibration/first_cycle.h"

#include "platform/text.h"
#include "session/state.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace ombrix {
namespace {

constexpr std::size_t kRecordBytes = 5;
constexpr std::uint8_t kEndMarker = 0xFF;
constexpr char kFrameTag = '!';
constexpr std::int32_t kLargestDifference = 5000;
constexpr std::size_t kGroups = 5;
constexpr std::size_t kFramesOfGroup = 3;
constexpr std::size_t kSig = 9;  // channels, counted from 0
constexpr std::size_t kGnd = 6;

std::string Millivolts(const char *sign, int size)
{
    return sign + std::to_string(size) + " mV";
}

int LowHalf(const CountWord &word)
{
    return word[2] * 256 + word[3];
}

// What a group of three frames adds to each channel.
void AddGroup(std::span<const FirstCycleFrame> group, FirstCycleAverages &sums, bool &fault)
{
    for (std::size_t i = 0; i < kFramesOfGroup; ++i) {
        const FirstCycleFrame &frame = group[i];
        const std::int32_t up = CounterDifference(frame[0], frame[1]);
        const std::int32_t down = CounterDifference(frame[2], frame[3]);
        fault = fault || IsCounterFault(up) || IsCounterFault(down);
        sums[2 * i] += up;
        sums[2 * i + 1] += down;
        sums[kGnd + i] += CounterHighValue(frame[1]);
    }
    sums[kSig] += CounterHighValue(group[0][3]);
}

// One of the six rows: its slope m and its rest b over all points.
struct RowOfPoints {
    std::span<const FirstCycleAverages> points;
    std::size_t row;

    float Sign() const { return row % 2 == 0 ? -1.0f : 1.0f; }
    float Count(std::size_t point) const { return static_cast<float>(points[point][row]); }
    /// Phase of the row's own source less that of the signal.
    float Phase(std::size_t point) const
    {
        return static_cast<float>(points[point][kGnd + row / 2]) - static_cast<float>(points[point][kSig]);
    }

    std::optional<float> Slope() const
    {
        float sum = 0;
        for (std::size_t p = 0; p + 1 < points.size(); ++p) {
            const float distance = Phase(p) - Phase(p + 1);
            if (distance == 0.0f)
                return std::nullopt;
            sum += 256.0f * Sign() * (Count(p) - Count(p + 1)) / distance;
        }
        return sum / static_cast<float>(points.size() - 1);
    }

    // One term fewer than points is summed; the divisor is the number of points all the same.
    float Rest(float m) const
    {
        const auto rest = [&](std::size_t p) { return Count(p) - Phase(p) * Sign() * m / 256.0f; };
        const float last = rest(points.size() - 1);
        float sum = 0;
        for (std::size_t p = 0; p + 1 < points.size(); ++p)
            sum += rest(p) - last;
        return last + sum / static_cast<float>(points.size());
    }
};

}  // namespace

std::vector<FirstCyclePoint> FirstCyclePoints(int tab, int board)
{
    int high = 200;
    if (tab == kTabTc)
        high = board == kTc ? 56 : 76;
    const int low = high / 2;
    const bool ac = tab == kTabAc;
    std::vector<std::string> heads;
    if (ac || board == kRtd)
        heads = {Millivolts("", high), Millivolts("", low), ac ? "1 mV" : "0 V"};
    else
        heads = {Millivolts("+", high), Millivolts("+", low), "0 V", Millivolts("-", low), Millivolts("-", high)};
    std::vector<FirstCyclePoint> points;
    points.reserve(heads.size());
    for (const std::string &head : heads)
        points.push_back({head, ac ? head + ", 300 Hz" : head});
    return points;
}

int FirstCycleRangeIndex(int tab)
{
    return tab == kTabLc ? 3 : 0;
}

void RecordReader::Clear()
{
    m_bytes.clear();
    m_from = 0;
    m_synced = false;
}

void RecordReader::Take(std::string_view bytes)
{
    m_bytes.erase(0, m_from);
    m_from = 0;
    m_bytes += bytes;
}

RecordAnswer RecordReader::Next(CountWord &word)
{
    if (Waiting() <= kRecordBytes)
        return RecordAnswer::NeedsMore;
    const char *record = m_bytes.data() + m_from;
    if (static_cast<std::uint8_t>(record[kRecordBytes - 1]) != kEndMarker) {
        ++m_from;
        return RecordAnswer::Noise;
    }
    m_from += kRecordBytes;
    m_synced = m_synced || record[0] == kFrameTag;
    if (!m_synced)
        return RecordAnswer::BeforeStart;
    std::transform(record, record + word.size(), word.begin(), [](char c) { return static_cast<std::uint8_t>(c); });
    return RecordAnswer::Record;
}

std::int32_t CounterDifference(const CountWord &a, const CountWord &b)
{
    const std::int32_t difference = LowHalf(a) - LowHalf(b);
    if (difference >= 32768)
        return difference - 65536;
    return difference < -32768 ? difference + 65536 : difference;
}

bool IsCounterFault(std::int32_t difference)
{
    return std::abs(difference) > kLargestDifference;
}

std::int32_t CounterHighValue(const CountWord &word)
{
    return word[1] * 256 + word[2];
}

std::optional<FirstCycleAverages> AverageOfFrames(const FirstCycleFrames &frames)
{
    FirstCycleAverages sums{};
    bool fault = false;
    for (std::size_t group = 0; group < kGroups; ++group)
        AddGroup(std::span(frames).subspan(group * kFramesOfGroup, kFramesOfGroup), sums, fault);
    if (fault)
        return std::nullopt;
    for (std::int32_t &channel : sums)
        channel = RoundHalfEven((channel + 2.5) / 5);
    return sums;
}

std::optional<FirstCycleResult> ComputeFirstCycle(std::span<const FirstCycleAverages> points)
{
    FirstCycleResult result;
    for (std::size_t i = 0; i < result.rows.size(); ++i) {
        const RowOfPoints row{points, i};
        const std::optional<float> m = row.Slope();
        if (!m)
            return std::nullopt;
        const float b = row.Rest(*m);
        result.rows[i] = {*m, b, *m == 0.0f ? std::nullopt : std::optional(b / *m)};
        result.sumM += *m;
        result.sumB += b;
        if (i < 2)
            result.sumB += b;  // the ground rows count twice
    }
    result.m = static_cast<std::int32_t>(std::floor(result.sumM / 6.0f + 0.5f));
    if (result.m != 0)
        result.b = static_cast<std::int32_t>(std::floor(result.sumB / (8.0f * static_cast<float>(result.m)) + 0.5f));
    result.word = HexText(result.m, 2) + HexText(result.b, 2);
    return result;
}

std::string SignedHexByteText(std::string_view hexByte)
{
    const auto byte = static_cast<int>(HexValue(hexByte));
    return std::to_string(byte > 127 ? byte - 256 : byte);
}

}  // namespace ombrix
