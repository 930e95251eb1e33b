#include "testbench/first_cycle.h"

#include <cmath>

#include "platform/text.h"
#include "testbench/boards.h"

namespace ombrix::bench {
namespace {

constexpr int kRecordsOfFrame = 18;
constexpr int kRecordsOfGroup = 3 * kRecordsOfFrame;
constexpr int kPhaseAtFullInput = 2560;
// Ground, quasi-diode, reference. Even, since the station rounds an odd mean up, and with a middle byte of their counts
// far from 255.
constexpr int kPhases[] = {20000, 20240, 20528};
constexpr char kGroupTag = '!';
constexpr char kRecordTag = '$';
constexpr char kEnd = '\xFF';

double FullInputVolts(int board)
{
    if (board == board::kTc)
        return 0.056;
    return board == board::kTemp || board == board::kRtd ? 0.076 : 0.2;
}

double PhaseOf(int board, const Signal &signal)
{
    const double volts = signal.quantity == Quantity::Volts ? signal.value : 0;
    return kPhaseAtFullInput * volts / FullInputVolts(board);
}

// A byte 255 inside a count would look like the end of a record.
int WithoutEndBytes(int count)
{
    while ((count & 0xFF) == 0xFF || (count >> 8 & 0xFF) == 0xFF)
        ++count;
    return count;
}

std::string Record(char tag, int bytes)
{
    return {tag, static_cast<char>(bytes >> 16), static_cast<char>(bytes >> 8), static_cast<char>(bytes), kEnd};
}

// Counts of one frame's first four records. Between the first and the second lies the way up from the frame's phase
// to the signal, between the third and the fourth the way down; both grow with the distance of the two phases.
std::array<int, 4> CountsOf(const Unit &unit, int frame, double phase, bool endBytes, Dice &dice)
{
    const int own = kPhases[frame];
    const int signal = kPhases[0] - static_cast<int>(std::lround(phase));
    const double distance = own - signal;
    const double rest = unit.firstCycleM * unit.firstCycleB;
    const double slope = unit.firstCycleM / 256.0;
    const int low = endBytes ? 0xFF : dice.WholeBetween(0, 60);
    const int jitter = dice.WholeBetween(-1, 1);
    const int second = own * 256 + low;
    const int fourth = signal * 256 + low;
    const auto first = second + static_cast<int>(std::lround(rest - slope * distance)) + jitter;
    const auto third = fourth + static_cast<int>(std::lround(rest + slope * distance)) - jitter;
    return {first, second, third, fourth};
}

}  // namespace

std::string FirstCycleStream::Next(int board, const Unit &unit, const Signal &signal, Dice &dice)
{
    const int place = m_record % kRecordsOfFrame;
    const int frame = m_record / kRecordsOfFrame;
    if (m_record == 0)
        m_phase = PhaseOf(board, signal);
    const char tag = m_record == 0 ? kGroupTag : kRecordTag;
    m_record = (m_record + 1) % kRecordsOfGroup;
    if (place == 0)
        m_counts = CountsOf(unit, frame, m_phase, m_endBytes, dice);
    // The rest of a frame is the meter's other counts, which nobody evaluates.
    const int rest = m_endBytes ? 0xFFFFFF : 0x100000 + place * 0x111;
    const int count = place < 4 ? m_counts[static_cast<std::size_t>(place)] : rest;
    return Record(tag, m_endBytes ? count : WithoutEndBytes(count));
}

std::string FirstCycleWord(const Unit &unit)
{
    return HexText(unit.firstCycleM, 2) + HexText(unit.firstCycleB, 2);
}

}  // namespace ombrix::bench
