// What a meter hears and says: `*`, address, payload, CR; a text ended by CR. Pure.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

/// Ends each record of the stream of counts, and is in no answer.
constexpr char kRecordEnd = '\xFF';

/// Characters of the counts 1 to 35.
constexpr std::string_view kCountAlphabet = "123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// The count's character; any count outside 1 to 35 is "1".
char CountChar(int count);

/// letter + count character + two hex digits of the address + text.
std::string MeterPayload(char letter, int address, int count, std::string_view text);

/// True when a reply holds its CR; what stands before the first one, "" without one.
bool HoldsLine(std::string_view reply);
std::string LineOf(std::string_view reply);

/// True for a reading of the display: blanks, at most one sign, digits with exactly one point, and nothing else.
bool IsReading(std::string_view text);
/// True for a display that says something and shows no digit: what an overloaded one does.
bool IsOverRange(std::string_view text);

}  // namespace ombrix
