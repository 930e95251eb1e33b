#include "platform/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace ombrix {
namespace {

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

int HexDigit(char c)
{
    if (IsDigit(c))
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

// The longest piece of `text` that reads as a number, normalised for from_chars.
std::string NumberPiece(std::string_view text)
{
    std::string compact;
    std::copy_if(text.begin(), text.end(), std::back_inserter(compact), [](char c) { return !IsBlank(c); });
    std::string number;
    std::size_t at = 0;
    const auto more = [&] { return at < compact.size(); };
    if (more() && (compact[at] == '+' || compact[at] == '-')) {
        if (compact[at] == '-')
            number = "-";
        ++at;
    }
    const std::size_t start = at;
    while (more() && IsDigit(compact[at]))
        number += compact[at++];
    if (more() && compact[at] == '.') {
        number += compact[at++];
        while (more() && IsDigit(compact[at]))
            number += compact[at++];
    }
    if (at == start || (at == start + 1 && compact[start] == '.'))
        return "";
    if (more() && std::string_view("eEdD").find(compact[at]) != std::string_view::npos) {
        std::size_t digits = at + 1;
        std::string sign;
        if (digits < compact.size() && (compact[digits] == '+' || compact[digits] == '-'))
            sign = compact[digits++] == '-' ? "-" : "";
        if (digits < compact.size() && IsDigit(compact[digits])) {
            number += "e" + sign;
            while (digits < compact.size() && IsDigit(compact[digits]))
                number += compact[digits++];
        }
    }
    return number;
}

// The decimal digits of |value| rounded to `significant` places, and the place of the point behind them.
struct Digits {
    std::string text;
    int point;
};

Digits SignificantDigits(double value, int significant)
{
    char buffer[64];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific, significant - 1);
    const std::string_view all(buffer, static_cast<std::size_t>(end.ptr - buffer));
    const std::size_t e = all.find('e');
    int exponent = 0;
    const char *from = all.data() + e + 1;
    from += *from == '+' ? 1 : 0;
    std::from_chars(from, all.data() + all.size(), exponent);
    std::string digits;
    for (char c : all.substr(0, e))
        if (IsDigit(c))
            digits += c;
    return {digits, exponent + 1};
}

// Rounds half up in size to `places` digits of the text; may carry into a new leading digit.
void RoundDigits(Digits &digits, int places)
{
    if (places < 0) {
        digits = {"", digits.point};
        return;
    }
    const auto keep = static_cast<std::size_t>(places);
    if (keep >= digits.text.size())
        return;
    const bool up = digits.text[keep] >= '5';
    digits.text.resize(keep);
    if (!up)
        return;
    for (std::size_t i = keep; i-- > 0;) {
        if (digits.text[i] != '9') {
            ++digits.text[i];
            return;
        }
        digits.text[i] = '0';
    }
    digits.text.insert(digits.text.begin(), '1');
    ++digits.point;
}

std::string FormatDigits(double value, int decimals, int significant)
{
    if (!std::isfinite(value))
        return std::isnan(value) ? "NaN" : (value < 0 ? "-Inf" : "Inf");
    Digits digits = SignificantDigits(value, significant);
    RoundDigits(digits, digits.point + decimals);
    std::string whole;
    std::string fraction;
    for (int place = 0; place < digits.point; ++place)
        whole +=
            static_cast<std::size_t>(place) < digits.text.size() ? digits.text[static_cast<std::size_t>(place)] : '0';
    for (int place = digits.point; place < digits.point + decimals; ++place) {
        const bool known = place >= 0 && static_cast<std::size_t>(place) < digits.text.size();
        fraction += known ? digits.text[static_cast<std::size_t>(place)] : '0';
    }
    if (whole.empty())
        whole = "0";
    const std::string text = decimals > 0 ? whole + "." + fraction : whole;
    const bool zero = text.find_first_not_of("0.") == std::string::npos;
    return value < 0 && !zero ? "-" + text : text;
}

}  // namespace

double Val(std::string_view text)
{
    const std::string number = NumberPiece(text);
    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec != std::errc::result_out_of_range)
        return value;
    const bool small = number.find("e-") != std::string::npos;
    return small ? 0 : std::copysign(std::numeric_limits<double>::max(), number.starts_with('-') ? -1.0 : 1.0);
}

std::string Format(double value, int decimals)
{
    return FormatDigits(value, decimals, 15);
}

std::string Format(float value, int decimals)
{
    return FormatDigits(static_cast<double>(value), decimals, 7);
}

std::string FormatSparse(float value, int decimals)
{
    std::string text = Format(value, decimals);
    if (text.find('.') != std::string::npos)
        text.erase(text.find_last_not_of('0') + 1);
    const std::size_t first = text.front() == '-' ? 1 : 0;
    if (text[first] == '0')
        text.erase(first, 1);
    return text;
}

std::string FormatExponent(double value)
{
    if (value == 0 || !std::isfinite(value))
        return "0.0000E00";
    Digits digits = SignificantDigits(value, 15);
    RoundDigits(digits, 5);
    const int exponent = digits.point - 1;
    const std::string size = std::to_string(std::abs(exponent));
    return std::string(value < 0 ? "-" : "") + digits.text[0] + "." + digits.text.substr(1, 4) + "E" +
           (exponent < 0 ? "-" : "") + (size.size() < 2 ? "0" : "") + size;
}

std::int32_t RoundHalfEven(double value)
{
    if (std::isnan(value))
        return 0;
    const double rounded = std::nearbyint(value);
    if (rounded >= 2147483647.0)
        return std::numeric_limits<std::int32_t>::max();
    if (rounded <= -2147483648.0)
        return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(rounded);
}

std::string Hex(std::int32_t value)
{
    char buffer[8];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::uint32_t>(value), 16);
    std::string text(buffer, end.ptr);
    for (char &c : text)
        c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

std::string HexText(std::int32_t value, int digits)
{
    const auto width = static_cast<std::size_t>(digits);
    return Right(std::string(width, '0') + Hex(value), width);
}

std::uint32_t HexValue(std::string_view text)
{
    std::uint32_t value = 0;
    for (char c : text) {
        const int digit = HexDigit(c);
        if (digit < 0)
            break;
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return value;
}

bool IsHexText(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

std::string Trim(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return std::string(text);
}

std::string Left(std::string_view text, std::size_t count)
{
    return std::string(text.substr(0, count));
}

std::string Right(std::string_view text, std::size_t count)
{
    return std::string(text.size() <= count ? text : text.substr(text.size() - count));
}

bool Holds(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

std::vector<std::string> Split(std::string_view text, char separator)
{
    std::vector<std::string> pieces;
    for (;;) {
        const std::size_t at = text.find(separator);
        pieces.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos)
            return pieces;
        text.remove_prefix(at + 1);
    }
}

}  // namespace ombrix
