// Numbers and text as the instruments, the settings and the pages write them. Never depends on the locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

/// The number at the start of a text: blanks anywhere before or inside it are skipped, then sign, digits, ".",
/// digits, and an exponent E or D that is followed by digits. "200 mV" is 200, "" is 0, "0 CEL" is 0.
double Val(std::string_view text);

/// A value with a fixed number of decimals and at least one digit before the point. Rounds half away from zero on
/// the decimal value (15 significant digits), and a zero has no sign: Format(0.25, 1) is "0.3", Format(-0.04, 1) "0.0".
std::string Format(double value, int decimals);

/// The same for a 32-bit float, of which 7 significant digits count: Format(3.296f, 4) is "3.2960".
std::string Format(float value, int decimals);

/// The same without digits that say nothing: 0.5 is ".5", -22 is "-22.", 1.80 is "1.8". The point stays; a zero without
/// decimals is "".
std::string FormatSparse(float value, int decimals);

/// One digit, point, four digits, "E", "-" only when negative, at least two exponent digits: 0.2 is "2.0000E-01",
/// 660 is "6.6000E02".
std::string FormatExponent(double value);

/// To the nearest integer, ties to even. Values beyond 32 bits, infinities and NaN (0) are held at the limits.
std::int32_t RoundHalfEven(double value);

/// Upper-case hexadecimal of the 32-bit pattern, without leading zeros; 0 is "0", -1 is "FFFFFFFF".
std::string Hex(std::int32_t value);

/// The last `digits` hexadecimal digits of the 32-bit pattern, padded in front with "0": HexText(-5, 4) is "FFFB".
std::string HexText(std::int32_t value, int digits);

/// The value of the leading hexadecimal digits, either case; no digit gives 0.
std::uint32_t HexValue(std::string_view text);

/// True for a text of one or more upper-case hexadecimal digits and nothing else.
bool IsHexText(std::string_view text);

/// Without blanks (space, tab, CR, LF) at both ends.
std::string Trim(std::string_view text);

/// The first and the last `count` characters, or all when there are fewer.
std::string Left(std::string_view text, std::size_t count);
std::string Right(std::string_view text, std::size_t count);

bool Holds(std::string_view text, std::string_view part);

/// The pieces between the separators; "a,,b" gives three, "" gives one empty piece.
std::vector<std::string> Split(std::string_view text, char separator);

}  // namespace ombrix
