// The first cycle correction, computed from the meter's raw counts: pure, without instruments.
//
// The meter streams records of five bytes: a tag, a count of 24 bits (high byte first), 255. Eighteen records are a
// frame, of which the first four count; three frames are a group: ground, quasi-diode, reference. From the averages of
// five groups at each input follow M and B, two signed bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

// ---- what is applied ----

struct FirstCyclePoint {
    std::string head;   ///< as the grid names it, "+200 mV"
    std::string value;  ///< for the calibrator
};
/// Five points with signs, or three without on the AC tab and on the RTD board.
std::vector<FirstCyclePoint> FirstCyclePoints(int tab, int board);
/// Index into the board's range codes.
int FirstCycleRangeIndex(int tab);

// ---- records out of the stream ----

/// The tag and the count of one record.
using CountWord = std::array<std::uint8_t, 4>;

enum class RecordAnswer {
    NeedsMore,    ///< fewer than six bytes wait: a record counts when at least one byte behind it has come
    Record,       ///< one was taken
    BeforeStart,  ///< a whole one was dropped: no start of a frame was seen yet
    Noise,        ///< one byte was dropped: no record ends where this one would
};

/// Takes bytes in any split and gives records. Nothing counts before a record with the tag "!".
class RecordReader
{
public:
    void Clear();
    void Take(std::string_view bytes);
    /// Fills `word` with each record.
    RecordAnswer Next(CountWord &word);
    /// Bytes that were taken and not yet given or dropped.
    std::size_t Waiting() const { return m_bytes.size() - m_from; }

private:
    std::string m_bytes;
    std::size_t m_from = 0;  // what stands before it is used up
    bool m_synced = false;
};

// ---- counts ----

/// Difference of the lower 16 bits of two counts, over one wrap of the counter.
std::int32_t CounterDifference(const CountWord &a, const CountWord &b);
/// No right meter gives a difference of this size.
bool IsCounterFault(std::int32_t difference);
/// The upper 16 bits of a count.
std::int32_t CounterHighValue(const CountWord &word);

constexpr std::size_t kFirstCycleFrames = 15;
constexpr std::size_t kWordsOfFrame = 4;
constexpr int kRecordsOfFrame = 18;
using FirstCycleFrame = std::array<CountWord, kWordsOfFrame>;
using FirstCycleFrames = std::array<FirstCycleFrame, kFirstCycleFrames>;

/// TGND, GNDT, TQD, QDT, TREF, REFT, GND, QD, REF, SIG.
constexpr std::size_t kFirstCycleChannels = 10;
using FirstCycleAverages = std::array<std::int32_t, kFirstCycleChannels>;

/// Nothing when one of the differences is a fault.
std::optional<FirstCycleAverages> AverageOfFrames(const FirstCycleFrames &frames);

// ---- M and B ----

struct FirstCycleRow {
    float m = 0;
    float b = 0;
    std::optional<float> quotient;  ///< b / m
};

struct FirstCycleResult {
    std::array<FirstCycleRow, 6> rows;  ///< TGND to REFT
    float sumM = 0;
    float sumB = 0;
    std::int32_t m = 0;
    std::int32_t b = 0;
    std::string word;  ///< their bytes as four hexadecimal digits
};

/// From the averages of each point in its order. Nothing when two neighbouring points show the same phase: then no
/// slope is to be had.
std::optional<FirstCycleResult> ComputeFirstCycle(std::span<const FirstCycleAverages> points);

/// Two hexadecimal digits as a signed number: "EA" is "-22".
std::string SignedHexByteText(std::string_view hexByte);

}  // namespace ombrix
