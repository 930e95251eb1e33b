// Reading the display for the step in work: settled, once, or until somebody stops it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace ombrix {

/// What a reading function returns instead of a reading when its live loop is to end.
constexpr std::string_view kStop = "STOP";

/// What a display that is asked until a reading comes does instead.
enum class DisplayState { Reads, Silent, OverRange };
/// Told why, once for each reason, when no reading has come for 3 s; and Reads when one has come after all.
using TellDisplay = std::function<void(DisplayState now)>;

/// Reads until three equal readings in a row, the third change of direction or the twentieth read. "" on Abort.
std::string ReadSettledReading(const TellDisplay &tell = {});
/// The settled reading for the + (0) or - (1) input, kept for the correction; a turnover step's text carries its sign.
std::string TakeReading(int index, const TellDisplay &tell = {});
/// One read without settling, kept likewise. "STOP" on a requested stop, on Abort and when the meter is silent.
std::string TakeReadingOrStop(int index);
/// The display with its point, tried until a reading comes or a stop: "STOP".
std::string ReadDisplayOrStop();
/// One try: "STOP" on a requested stop and when no reading came.
std::string TryDisplayOrStop();
/// ReadDisplayOrStop without its point, and as a number of counts. None of these touch the kept readings.
std::string ReadDisplayDigitsOrStop();

/// Mean of both kept readings, of their signed values.
std::string MeanReadingText();
/// Error of the kept readings, in counts: reading less target, of both polarities the mean of their sizes.
std::int32_t ReadingError();
/// The same as the grid shows it.
std::string ReadingErrorText();
/// A reading is off by more than a tenth of its target, or 1000 counts where the target is 0.
bool IsFarFromTarget(double reading, std::int32_t target);
/// A kept reading of either polarity is.
bool ReadingIsFar();
/// What the operator is told then.
constexpr std::string_view kReadingIsFar = "Reading is far from the target: check input, jumpers and wires";

// ---- a reading that can be stopped ----

enum class Following {
    Stopped,    ///< by a button, by Esc or by navigation
    Silent,     ///< the meter did not answer
    OverRange,  ///< the display is over range
};

struct LiveReading {
    int everyMs = 300;
    /// One try; "STOP" as told for the reading functions.
    std::function<std::string()> read;
    /// What the simulator answers; empty: the same as `read`.
    std::function<std::string()> simulated;
    /// Told of each try that brought no reading, when another one follows: Silent or OverRange.
    std::function<void(Following why)> missed;
    /// On silence: true ends the following, false asks again.
    bool silenceEnds = false;
};

/// The display with its point, tried until a reading comes, or "STOP". The stop channel is open meanwhile; `missed` is
/// told of each try that brought none.
std::string AwaitDisplay(const std::function<void(Following why)> &missed);

/// The display's digits every 500 ms, for somebody who turns a trimmer; "" while no reading comes. DisplayIsOverRange tells
/// why.
LiveReading DisplayInAdjustment();

/// Shows a reading as it goes on, until a stop. Arms and disarms the stop channel, and waits out the second that a
/// stopped reading gets. `show` is given each reading.
Following FollowReading(const LiveReading &live, const std::function<void(const std::string &text)> &show);

}  // namespace ombrix
