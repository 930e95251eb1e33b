#include "testbench/uut_port.h"

#include <utility>

#include "platform/text.h"

namespace ombrix::bench {
namespace {

constexpr std::string_view kSend = "UUT_SEND ";
constexpr std::size_t kLongestLine = 4096;

struct BlockHead {
    std::size_t start;  // of the data
    std::size_t length;
};

// Of "#205..." once all its digits are there.
std::optional<BlockHead> HeadOf(std::string_view block)
{
    if (block.size() < 2 || block[0] != '#' || block[1] < '1' || block[1] > '9')
        return std::nullopt;
    const auto digits = static_cast<std::size_t>(block[1] - '0');
    if (block.size() < 2 + digits)
        return std::nullopt;
    std::size_t length = 0;
    for (const char digit : block.substr(2, digits)) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        length = length * 10 + static_cast<std::size_t>(digit - '0');
    }
    return BlockHead{2 + digits, length};
}

std::string LengthText(std::size_t length, std::size_t digits)
{
    std::string text = std::to_string(length);
    if (text.size() < digits)
        text.insert(0, digits - text.size(), '0');
    return std::to_string(text.size()) + text;
}

}  // namespace

std::optional<std::string> CommandReader::Take(char byte)
{
    m_text += byte;
    if (!IsWhole() && m_text.size() < kLongestLine)
        return std::nullopt;
    std::string line = std::exchange(m_text, "");
    line.pop_back();
    return line;
}

bool CommandReader::IsWhole() const
{
    if (m_text.back() != '\n')
        return false;
    if (!m_text.starts_with(kSend))
        return true;
    const std::string_view block = std::string_view(m_text).substr(kSend.size());
    const auto head = HeadOf(block);
    return !head || block.size() > head->start + head->length;
}

std::optional<std::string> BlockData(std::string_view block)
{
    const auto head = HeadOf(block);
    if (!head || block.size() != head->start + head->length)
        return std::nullopt;
    return std::string(block.substr(head->start));
}

bool UutPort::CanBeSet(std::string_view settings)
{
    return settings == "9600,XON,DBIT8,SBIT1,PNONE";
}

std::string UutPort::TakeBlock()
{
    const std::string data = std::exchange(m_waiting, "");
    const BlockForm form = m_form.value_or(static_cast<BlockForm>(m_blocks++ % 3));
    if (form == BlockForm::OpenEnded && !Holds(data, "\r\n"))
        return "#0" + data;
    return "#" + LengthText(data.size(), form == BlockForm::TwoDigits ? 2 : 1) + data;
}

}  // namespace ombrix::bench
