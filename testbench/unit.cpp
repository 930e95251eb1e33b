#include "testbench/unit.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "model/images.h"
#include "model/nominals.h"
#include "model/range_records.h"
#include "platform/text.h"
#include "testbench/boards.h"
#include "testbench/laws.h"

namespace ombrix::bench {
namespace {

constexpr std::uint32_t kUnitStream = 0x9E3779B9u;
constexpr std::uint32_t kStartStream = 0x7F4A7C15u;

constexpr int kFirstWord = 25;
constexpr int kLastWord = 50;
constexpr double kGainRoom = 3000;  // an ideal word stays so far inside its limits

double Nominal(int board, int word)
{
    const auto bits = static_cast<std::uint16_t>(HexValue(DefaultNominalWordOf(board, word)));
    return IsOffsetWord(board, word) ? static_cast<std::int16_t>(bits) : bits;
}

// Apart from the nominal word by 0.6 % to 2.2 % of the reading.
double DrawGain(int board, int word, Dice &dice)
{
    const double ideal = Nominal(board, word) + dice.Apart(1500, 5800);
    return std::clamp(ideal, kGainRoom, 65535 - kGainRoom);
}

// 15 to 60 display counts of its own step.
void DrawOffset(int board, int word, Unit &unit, Dice &dice)
{
    const auto nominalSlope = static_cast<double>(DefaultSlopeOf(board, word));
    const double slope = nominalSlope * (1 + dice.Between(-0.09, 0.09));
    unit.offsetEffect[word] = 1 / (slope * OffsetStepScale(board));
    unit.ideal[word] = Nominal(board, word) + dice.Apart(15, 60) * slope;
}

void CopyIdeal(Unit &unit, int leader, std::initializer_list<int> companions)
{
    for (const int word : companions)
        unit.ideal[word] = unit.ideal[leader];
}

void DrawStepWords(int board, Unit &unit, Dice &dice)
{
    for (const RangeRecord &record : RecordsOfBoard(board)) {
        if (record.word < kFirstWord || record.word > kLastWord)
            continue;
        if (IsOffsetWord(board, record.word))
            DrawOffset(board, record.word, unit, dice);
        else
            unit.ideal[record.word] = DrawGain(board, record.word, dice);
    }
    // Words that are written together trim one part of the board.
    if (board::IsThermocouple(board)) {
        CopyIdeal(unit, 33, {31, 32, 46});
        CopyIdeal(unit, 36, {34, 35});
    } else if (board == board::kRtd) {
        CopyIdeal(unit, 31, {40});
        CopyIdeal(unit, 37, {38, 39});
    }
}

void DrawDiodes(int board, Unit &unit, Dice &dice)
{
    constexpr int kGainWords[] = {29, 45};
    for (std::size_t group = 0; group < 2; ++group) {
        unit.ideal[kGainWords[group]] = Nominal(board, kGainWords[group]) + dice.Apart(60, 500);
        unit.diodeGainEffect[group] = 1 / (106.5 * (1 + dice.Between(-0.08, 0.08)));
        unit.diodeOffsetEffect[group] = 0.003711 * (1 + dice.Between(-0.08, 0.08));
    }
    if (board == board::kTemp) {
        unit.ideal[30] = 0x8000 + dice.Apart(800, 4000);
        for (int word = 37; word <= 42; ++word)
            unit.ideal[word] = 0x8000;
    }
}

void DrawVf(Unit &unit, Dice &dice)
{
    for (int range = 0; range < 3; ++range) {
        const std::string nominal = FirstCyclePattern(range);
        const auto place = static_cast<std::size_t>(range);
        unit.vfOffset[place] = SignedOfHex6(nominal.substr(0, 6)) + dice.Apart(80, 600);
        unit.vfGain[place] = HexValue(nominal.substr(6)) / kVfUnity * (1 + dice.Apart(0.002, 0.02));
    }
}

void DrawAnalog(Unit &unit, Dice &dice)
{
    // Offset, gain and so on in the order of the points; the words of a good output stand in the start memory.
    constexpr double kNominals[] = {0x48, 0xFD70, 0x1E0, 0xFA20, 0x48, 0xFD70, 0x48, 0xFD70, 0x1E0, 0xFA20};
    for (std::size_t point = 0; point < unit.analogIdeal.size(); ++point) {
        const bool gain = point % 2 == 1;
        const double apart = gain ? dice.Apart(60, 450) : dice.Apart(15, 60);
        unit.analogIdeal[point] = kNominals[point] + apart;
    }
}

std::uint16_t WordAt(std::string_view hex, std::size_t word)
{
    return static_cast<std::uint16_t>(HexValue(hex.substr(word * 4, 4)));
}

// Words from `top` downward.
void PutRun(Words &words, int top, std::string_view hex)
{
    for (std::size_t i = 0; i * 4 < hex.size(); ++i)
        words[static_cast<std::size_t>(top) - i] = WordAt(hex, i);
}

void PutImage(Words &words, int board)
{
    const std::string image = DefaultInitImage(board);
    if (board != board::kVf) {
        PutRun(words, 56, image);
        return;
    }
    PutRun(words, 49, image.substr(0, 24));
    PutRun(words, 40, image.substr(24, 92));
    PutRun(words, 17, image.substr(116));
}

void MoveStepWords(Words &words, int board, Dice &dice)
{
    for (const RangeRecord &record : RecordsOfBoard(board)) {
        if (record.word < kFirstWord || record.word > kLastWord)
            continue;
        const bool offset = IsOffsetWord(board, record.word);
        const double moved = Nominal(board, record.word) + (offset ? dice.Apart(5, 40) : dice.Apart(40, 400));
        words[static_cast<std::size_t>(record.word)] = static_cast<std::uint16_t>(static_cast<int>(moved));
    }
}

}  // namespace

double Dice::Between(double low, double high)
{
    return low + (high - low) * (m_engine() / 4294967296.0);
}

int Dice::WholeBetween(int low, int high)
{
    return low + static_cast<int>(m_engine() % static_cast<std::uint32_t>(high - low + 1));
}

double Dice::Apart(double low, double high)
{
    const double size = Between(low, high);
    return m_engine() % 2 == 0 ? size : -size;
}

bool IsOffsetWord(int board, int word)
{
    for (const RangeRecord &record : RecordsOfBoard(board))
        if (record.word == word)
            return word == 26 || std::string_view(record.value) == "0 V";
    return false;
}

Unit DrawUnit(int board, unsigned seed)
{
    Dice dice(seed * 31u + static_cast<std::uint32_t>(board) + kUnitStream);
    Unit unit;
    DrawStepWords(board, unit, dice);
    if (board::IsThermocouple(board))
        DrawDiodes(board, unit, dice);
    if (board == board::kVf)
        DrawVf(unit, dice);
    unit.turnover = dice.Apart(1e-5, 4e-5);
    unit.firstCycleM = static_cast<int>(dice.Apart(9, 40));
    unit.firstCycleB = dice.WholeBetween(-11, 11);
    unit.ideal[50] = 0x660 + dice.Apart(2000, 6000);
    unit.ideal[48] = 0x3400 + dice.Apart(500, 4000);
    unit.bridgeOffsetEffect = (1 + dice.Between(-0.05, 0.05)) / 174129;
    unit.balanceVolts = dice.Apart(2e-5, 8e-5);
    unit.negativeGain = dice.Apart(0.0007, 0.009);
    unit.highFrequency = dice.Apart(0.001, 0.006);
    DrawAnalog(unit, dice);
    unit.tp1 = dice.Apart(2, 20);
    unit.dutyCycle = dice.Apart(1, 8);
    return unit;
}

Words StartWords(int board, int type, unsigned seed)
{
    Words words{};
    PutImage(words, board);
    PutRun(words, 63, "FA2001E0FD700048");
    PutRun(words, 150, "FA2001E0FD700048FD700048");
    PutRun(words, 191, "FA2001E0FD700048");
    // Two of the three counter gains are beyond their limits, as on a board that was never calibrated.
    PutRun(words, 201, "FFD9B82028F6FFD9B8100000FF77452428F6");
    PutRun(words, 246, "FA2001E0FD700048FD700048");
    words[109] = static_cast<std::uint16_t>(0x3200 + type);
    Dice dice(seed * 31u + static_cast<std::uint32_t>(board) + kStartStream);
    MoveStepWords(words, board, dice);
    return words;
}

}  // namespace ombrix::bench
