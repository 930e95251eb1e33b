#include "testbench/meter_frame.h"

#include "platform/text.h"

namespace ombrix::bench {
namespace {

constexpr std::string_view kCounts = "123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::size_t kLongestFrame = 4096;
constexpr std::size_t kHead = 3;  // count and address

ParsedFrame Trouble(const std::string &trouble)
{
    return {std::nullopt, trouble};
}

bool IsMemoryLetter(char letter)
{
    return letter == 'X' || letter == 'W' || letter == 'G' || letter == 'F';
}

// The bare commands.
bool IsKnownPair(char letter, char variant)
{
    return (letter == 'A' && variant == '1') || (letter == 'B' && variant == '1') ||
           (letter == 'C' && (variant == '0' || variant == 'Z')) || (letter == 'V' && variant == '6');
}

ParsedFrame ParseData(MeterCommand command, std::string_view rest)
{
    const bool words = command.letter == 'X' || command.letter == 'W';
    const bool writes = command.letter == 'W' || command.letter == 'F';
    if (words && rest.ends_with('Z')) {
        command.goOn = true;
        rest.remove_suffix(1);
    }
    const std::size_t wanted = writes ? static_cast<std::size_t>(command.count) * (words ? 4 : 2) : 0;
    if (rest.size() != wanted)
        return Trouble(std::to_string(rest.size()) + " characters of data where " + std::to_string(wanted) + " belong");
    if (writes && !IsHexText(rest))
        return Trouble("data that isn't upper-case hexadecimal");
    command.data = rest;
    return {command, ""};
}

ParsedFrame ParseMemory(MeterCommand command, std::string_view rest)
{
    if (rest.size() < kHead)
        return Trouble("a cut-off memory command");
    const std::size_t count = kCounts.find(rest[0]);
    if (count == std::string_view::npos)
        return Trouble("a count beyond 35");
    if (!IsHexText(rest.substr(1, 2)))
        return Trouble("an address that isn't hexadecimal");
    command.count = static_cast<int>(count) + 1;
    command.address = static_cast<int>(HexValue(rest.substr(1, 2)));
    if (command.address - command.count + 1 < 0)
        return Trouble("a run below address 0");
    return ParseData(command, rest.substr(kHead));
}

}  // namespace

std::optional<Frame> FrameReader::Take(char byte, Micros now)
{
    if (m_text.empty())
        m_began = now;
    if (byte != '\r') {
        if (m_text.size() < kLongestFrame)
            m_text += byte;
        return std::nullopt;
    }
    Frame frame{m_text, m_began};
    m_text.clear();
    return frame;
}

ParsedFrame ParseFrame(std::string_view text)
{
    const std::size_t star = text.find('*');
    if (star == std::string_view::npos)
        return Trouble("no frame: it has no *");
    if (star > 0)
        return Trouble("stray bytes before the *");
    if (text.size() < 4)
        return Trouble("a cut-off frame");
    MeterCommand command;
    command.meter = text[1];
    command.letter = text[2];
    if (IsMemoryLetter(command.letter))
        return ParseMemory(command, text.substr(3));
    command.variant = text[3];
    if (text.size() != 4 || !IsKnownPair(command.letter, command.variant))
        return Trouble("an unknown command");
    return {command, ""};
}

std::string Readable(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        if (byte == '\r')
            text += "\\r";
        else if (byte == '\n')
            text += "\\n";
        else if (byte >= ' ' && byte <= '~')
            text += byte;
        else
            text += "\\x" + HexText(static_cast<unsigned char>(byte), 2);
    }
    return text;
}

}  // namespace ombrix::bench
