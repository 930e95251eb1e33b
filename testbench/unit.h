// The hidden truth of one meter: what its parts really are, drawn from a seed.
//
// Nothing of it travels on a line. A calibration finds it.
#pragma once

#include <array>
#include <cstdint>
#include <random>

namespace ombrix::bench {

constexpr int kWords = 256;
using Words = std::array<std::uint16_t, kWords>;

/// Random numbers that are the same on every machine.
class Dice
{
public:
    explicit Dice(std::uint32_t seed) : m_engine(seed) {}
    /// Between low and high.
    double Between(double low, double high);
    int WholeBetween(int low, int high);
    /// `size` within [low, high] with a random sign.
    double Apart(double low, double high);

private:
    std::mt19937 m_engine;
};

struct Unit {
    /// By word number: the word with which its range is right, by itself. Offset words are signed.
    std::array<double, kWords> ideal{};
    /// By word number, for offset words: reading in natural counts for one count of the word.
    std::array<double, kWords> offsetEffect{};
    /// How much larger a negative reading is, as a share of it.
    double turnover = 0;

    // VF: gain and offset (in counts) with which its three ranges are right.
    std::array<double, 3> vfGain{};
    std::array<double, 3> vfOffset{};

    // First cycle: what the station is to find.
    int firstCycleM = 0;
    int firstCycleB = 0;

    // Quasi-diode, group J and group T: degrees for one count of the gain and of the offset word.
    std::array<double, 2> diodeGainEffect{};
    std::array<double, 2> diodeOffsetEffect{};

    // Ratio: volts of excitation error for one count of word 50.
    double bridgeOffsetEffect = 0;

    // AC boards, turned by hand.
    double balanceVolts = 0;   ///< a steady input reads as if this were added
    double negativeGain = 0;   ///< share by which a negative steady input reads more
    double highFrequency = 0;  ///< share by which 10 kHz reads more
    double tp1 = 0;            ///< what an external meter shows at TP1, in mV
    double dutyCycle = 0;      ///< how far from an equal duty cycle, in percent

    // Analog output, points VO VG CO CG BPM BPP DVO DVG DCO DCG.
    std::array<double, 10> analogIdeal{};
};

/// The parts of a board's unit.
Unit DrawUnit(int board, unsigned seed);

/// The memory of a meter as it comes to the bench: the board's factory image, calibration words a little off it, and
/// the words beyond the image. type is the low byte of word 109.
Words StartWords(int board, int type, unsigned seed);

/// True for the words that the board reads as signed.
bool IsOffsetWord(int board, int word);

}  // namespace ombrix::bench
