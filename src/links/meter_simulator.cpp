#include "links/meter_simulator.h"

#include "links/meter_frame.h"
#include "platform/fault.h"
#include "platform/text.h"
#include "session/outlets.h"

#include <random>
#include <string>

namespace ombrix {

std::array<std::uint16_t, 256> SimNvm{};
float SimNominal = 0;
float SimNoise = 20;
float SimReading = 0;
bool SimOneDecimal = false;
bool SimAddressFaults = false;

namespace {

struct StartWord {
    std::size_t address;
    std::uint16_t word;
};

// What a fresh simulated meter holds; all other words are 0.
constexpr StartWord kStartWords[] = {
    {0, 0x03E8},   {1, 0xD000},   {2, 0x0007},   {3, 0x0004},   {4, 0x0010},   {9, 0x4E20},   {10, 0x2000},
    {11, 0x004E},  {13, 0x2000},  {14, 0x004E},  {15, 0x2000},  {16, 0x0060},  {17, 0x6536},  {18, 0x21D1},
    {20, 0x0503},  {21, 0x0001},  {25, 0x52A7},  {31, 0x8000},  {32, 0x8948},  {33, 0x7628},  {34, 0x7F52},
    {35, 0x7F5D},  {36, 0x7400},  {37, 0x75B5},  {38, 0x7EE0},  {39, 0x726A},  {40, 0xACA9},  {41, 0xBB00},
    {42, 0x5000},  {43, 0x4600},  {44, 0x4000},  {45, 0x3E00},  {47, 0x009C},  {48, 0x3400},  {49, 0x9000},
    {50, 0x0660},  {51, 0x0600},  {52, 0x0ED6},  {60, 0x0048},  {61, 0xFD70},  {62, 0x01E0},  {63, 0xFA20},
    {109, 0x3201}, {145, 0x0048}, {146, 0xFD70}, {147, 0x0048}, {148, 0xFD70}, {149, 0x01E0}, {150, 0xFA20},
    {188, 0x0048}, {189, 0xFD70}, {190, 0x01E0}, {191, 0xFA20}, {193, 0x28F6}, {194, 0x4524}, {195, 0xFF77},
    {196, 0x0000}, {197, 0xB810}, {198, 0xFFD9}, {199, 0x28F6}, {200, 0xB820}, {201, 0xFFD9}, {241, 0x0048},
    {242, 0xFD70}, {243, 0x0048}, {244, 0xFD70}, {245, 0x01E0}, {246, 0xFA20},
};

std::mt19937 scatter;

// A command with an address, taken apart as a meter does it.
struct Block {
    int count;    // 0 for a character outside the count alphabet
    int address;  // of the first word; the next ones lie below it
    std::string_view data;
};

Block BlockOf(std::string_view payload)
{
    const std::size_t place = payload.size() > 1 ? kCountAlphabet.find(payload[1]) : std::string_view::npos;
    const int count = place == std::string_view::npos ? 0 : static_cast<int>(place) + 1;
    const int address = payload.size() > 2 ? static_cast<int>(HexValue(payload.substr(2, 2))) : 0;
    return {count, address, payload.size() > 4 ? payload.substr(4) : std::string_view()};
}

bool IsWord(int address)
{
    if (address >= 0 && address < static_cast<int>(SimNvm.size()))
        return true;
    if (SimAddressFaults)
        throw RuntimeFault(9, "Subscript out of range");
    return false;
}

void ShowSimSwitch(const Block &block)
{
    outlets.showSwitchText(std::to_string(HexValue(block.data.substr(0, 6))));
}

void WriteSimWords(const Block &block)
{
    for (int i = 0; i < block.count; ++i) {
        const auto place = static_cast<std::size_t>(i) * 4;
        if (place + 4 > block.data.size())
            return;
        if (IsWord(block.address - i))
            SimNvm[static_cast<std::size_t>(block.address - i)] =
                static_cast<std::uint16_t>(HexValue(block.data.substr(place, 4)));
    }
}

std::string ReadSimWords(const Block &block)
{
    std::string words;
    for (int i = 0; i < block.count; ++i)
        words += IsWord(block.address - i) ? HexText(SimNvm[static_cast<std::size_t>(block.address - i)], 4) : "0000";
    return words;
}

std::string ReadSimBytes(const Block &block)
{
    std::string bytes;
    for (int i = 0; i < block.count; ++i)
        bytes += "65";
    return bytes;
}

float RandomShare()
{
    return static_cast<float>(scatter()) / static_cast<float>(std::mt19937::max());
}

std::string ReadSimDisplay()
{
    SimReading = SimNominal - SimNoise + 2.0f * SimNoise * RandomShare();
    return SimOneDecimal ? Format(SimReading, 1) : std::to_string(RoundHalfEven(static_cast<double>(SimReading))) + ".";
}

}  // namespace

void InitMeterSimulator()
{
    static std::random_device entropy;
    SeedMeterSimulator(entropy());
    SimNominal = SimReading = 0;
    SimNoise = 20;
    SimOneDecimal = false;

    SimNvm.fill(0);
    for (const StartWord &start : kStartWords)
        SimNvm[start.address] = start.word;
}

void SeedMeterSimulator(unsigned seed)
{
    scatter.seed(seed);
}

std::optional<std::string> SimulateMeterCommand(std::string_view payload, std::string_view address)
{
    switch (payload.empty() ? '\0' : payload.front()) {
    case 'W':
        if (address == "1")
            WriteSimWords(BlockOf(payload));
        else
            ShowSimSwitch(BlockOf(payload));
        return std::nullopt;
    case 'X':
        return ReadSimWords(BlockOf(payload));
    case 'G':
        return ReadSimBytes(BlockOf(payload));
    case 'B':
        return ReadSimDisplay();
    default:
        return std::nullopt;
    }
}

void ClearSimWord21()
{
    SimNvm[21] = 0;
}

}  // namespace ombrix
