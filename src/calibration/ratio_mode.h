// A meter put into ratio mode, and on its ratio ranges.
#pragma once

#include <optional>
#include <string>

namespace ombrix {

/// What stands in a meter, in hexadecimal digits.
struct RatioWords {
    std::string rangeCode;  ///< two
    std::string ground;     ///< word 50
    std::string divider;    ///< word 48
};

/// Reads the words, switches ratio mode on where it is off, and lets the display show single counts. Nothing when the
/// meter didn't answer or on Abort: then nothing was written.
std::optional<RatioWords> PutIntoRatioMode();

/// Writes the range code when it isn't the stored one, which it becomes.
void PutOnRatioRange(const std::string &code, std::string &stored);

}  // namespace ombrix
