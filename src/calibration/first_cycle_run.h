// The first cycle correction with the instruments: the meter put on its stream, its counts gathered at each input, the
// meter put back.
#pragma once

#include "calibration/first_cycle.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace ombrix {

enum class FirstCycleStatus {
    Waiting = 0,
    Collecting = 1,
    Good = 2,
    Stopped = 3,
    NoData = 4,   ///< too few bytes, or none that make a record
    NoStart = 5,  ///< records, but none that starts a frame
    BadData = 6,  ///< counts that no right meter gives
    NoInput = 7,  ///< the calibrator has not confirmed a point: two at one input would give noise for a word
};

/// Who watches a collection.
struct FirstCycleWatch {
    /// The meter has answered with words 20 to 17.
    std::function<void(const std::string &words)> found = [](const std::string &) {};
    /// So many frames of a point are gathered, in its attempt 1 to 3.
    std::function<void(std::size_t point, int attempt, std::size_t frames)> gathered = [](std::size_t, int,
                                                                                          std::size_t) {};
    /// A point is done.
    std::function<void(std::size_t point, const FirstCycleAverages &averages)> averaged =
        [](std::size_t, const FirstCycleAverages &) {};
};

/// Writes 0000 to word 51, puts the meter on the range code and its stream, applies each point and gathers its counts. A
/// point with bad data is tried three times. Ends at the first status other than Good; RestoreAfterFirstCycle is to
/// follow in any case. In simulation every count is "0000".
FirstCycleStatus CollectFirstCycle(const std::string &rangeCode, std::span<const FirstCyclePoint> points,
                                   const FirstCycleWatch &watch);

/// Ends the stream, removes the input and puts the meter back to normal running.
void RestoreAfterFirstCycle();

}  // namespace ombrix
