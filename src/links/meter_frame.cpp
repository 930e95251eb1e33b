#include "links/meter_frame.h"

#include "platform/text.h"

#include <algorithm>

namespace ombrix {
namespace {

constexpr char kCr = '\r';

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsPrintable(char c)
{
    return c >= ' ' && c <= '~';
}

}  // namespace

char CountChar(int count)
{
    return count >= 1 && count <= static_cast<int>(kCountAlphabet.size())
               ? kCountAlphabet[static_cast<std::size_t>(count - 1)]
               : '1';
}

std::string MeterPayload(char letter, int address, int count, std::string_view text)
{
    return std::string(1, letter) + CountChar(count) + HexText(address, 2) + std::string(text);
}

bool HoldsLine(std::string_view reply)
{
    return reply.find(kCr) != std::string_view::npos;
}

std::string LineOf(std::string_view reply)
{
    return HoldsLine(reply) ? std::string(reply.substr(0, reply.find(kCr))) : "";
}

bool IsReading(std::string_view text)
{
    std::string number = Trim(text);
    if (number.starts_with('-') || number.starts_with('+'))
        number.erase(0, 1);
    const auto digits = std::count_if(number.begin(), number.end(), IsDigit);
    const auto points = std::count(number.begin(), number.end(), '.');
    return digits > 0 && points == 1 && static_cast<std::size_t>(digits + points) == number.size();
}

bool IsOverRange(std::string_view text)
{
    const std::string shown = Trim(text);
    return !shown.empty() && std::all_of(shown.begin(), shown.end(), IsPrintable) &&
           std::none_of(shown.begin(), shown.end(), IsDigit);
}

}  // namespace ombrix
