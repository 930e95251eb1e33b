// Under which conditions a meter in ratio mode is calibrated: its ranges, and what the station remembers of the last one,
// for the DC family and for the load cells.
#pragma once

#include <vector>

namespace ombrix {

struct RatioRange {
    const char *caption;
    const char *code;  ///< two hex digits
};
/// Of the family on the current tab; the index is that of the board's range list too.
const std::vector<RatioRange> &RatioRanges();

struct RatioConditions {
    int range = 0;      ///< index into RatioRanges
    float reading = 0;  ///< that is to be reached at +10 V
    bool operator==(const RatioConditions &) const = default;
};
/// What is remembered for the family on the current tab.
RatioConditions StoredRatioConditions();
/// Remembers and saves.
void SaveRatioConditions(const RatioConditions &conditions);

}  // namespace ombrix
