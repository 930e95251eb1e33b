#include "calibration/number_text.h"

#include <algorithm>

namespace ombrix {

std::string NormaliseNumberText(std::string_view text, const std::string &before, std::size_t decimals,
                                std::size_t digits)
{
    const bool negative = text.starts_with('-');
    if (negative)
        text.remove_prefix(1);
    const std::size_t point = std::min(text.find('.'), text.size());
    std::string whole(text.substr(0, point));
    std::string rest(text.substr(std::min(point + 1, text.size())));
    if ((whole + rest).find_first_not_of("0123456789") != std::string::npos)
        return before;
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
    if (whole.size() > digits)
        return before;
    rest.resize(decimals, '0');
    if (whole.empty())
        whole = "0";
    const bool zero = (whole + rest).find_first_not_of('0') == std::string::npos;
    return (negative && !zero ? "-" : "") + whole + "." + rest;
}

}  // namespace ombrix
