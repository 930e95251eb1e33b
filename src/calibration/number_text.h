// A number as a page's field shows it, whatever the operator typed.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

/// `text` with exactly so many decimals: missing ones are filled with 0, surplus ones cut, leading zeros dropped; ""
/// and "-" are zero. `before` for what is no such number (a sign inside it, a letter) and when there are more than
/// `digits` digits in front of the point.
std::string NormaliseNumberText(std::string_view text, const std::string &before, std::size_t decimals,
                                std::size_t digits);

}  // namespace ombrix
