#include "calibration/readings.h"

#include "calibration/corrections.h"
#include "calibration/step_state.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/meter_simulator.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"

#include <cmath>
#include <cstdlib>
#include <optional>

namespace ombrix {
namespace {

constexpr int kSettleMs = 300;
constexpr int kAdjustMs = 500;
constexpr int kStopMs = 1000;
constexpr int kMissedMs = 3000;              // without a reading until it is told
constexpr std::int32_t kFarFromZero = 1000;  // counts

std::int32_t Counts(std::string_view text)
{
    return RoundHalfEven(Val(text));
}

void StoreReading(int index, std::string_view text)
{
    const auto place = static_cast<std::size_t>(index);
    step.Readings[place] = Counts(text);
    step.ReadingsF[place] = static_cast<float>(step.Readings[place]);
}

// The text as the grid shows it: on a turnover step with its sign.
std::string SignedText(const std::string &text)
{
    return step.TurnoverStep && !text.empty() && text.front() != '-' ? "+" + text : text;
}

void AimSimulator(int index)
{
    SimTarget = index == 0 ? step.TargetCountsF : -step.TargetCountsF;
}

bool StopWanted()
{
    return StopRequested || Abort;
}

// The stop channel, open while a reading goes on.
class ArmedStop
{
public:
    ArmedStop() { ArmStop(); }
    ~ArmedStop() { DisarmStop(); }
    ArmedStop(const ArmedStop &) = delete;
    ArmedStop &operator=(const ArmedStop &) = delete;
};

// A reading that was stopped has its second from the click; one that ends by itself has it from here, and a click still
// reaches it then.
std::string EndLiveReading()
{
    if (!StopRequested)
        DelayMs(kStopMs);
    DisarmStop();
    if (StopRequested)
        WaitOutStop();
    return std::string(kStop);
}

Following WhyMissed()
{
    return DisplayIsOverRange() ? Following::OverRange : Following::Silent;
}

std::string WithoutPoint(std::string text)
{
    const std::size_t point = text.find('.');
    return point == std::string::npos ? text : text.erase(point, 1);
}

const char *NoteOf(DisplayState display)
{
    return display == DisplayState::OverRange ? "Meter: the display is over range" : "Meter: waiting for reply";
}

// The display without its point, asked until a reading comes; "" after Abort. One note stands around the tries, so
// that it counts through.
std::string AwaitDigits(const TellDisplay &tell)
{
    const Deadline patience(kMissedMs);
    DisplayState why = DisplayState::Silent;
    DisplayState told = DisplayState::Reads;
    std::optional<WaitNote> note(NoteOf(why));
    while (!Abort) {
        const std::string text = ReadDisplayRaw();
        const DisplayState now = !text.empty()          ? DisplayState::Reads
                                 : DisplayIsOverRange() ? DisplayState::OverRange
                                                        : DisplayState::Silent;
        if (tell && now != told && (now == DisplayState::Reads || patience.Passed()))
            tell(told = now);
        if (!text.empty())
            return WithoutPoint(text);
        if (now != why)
            note.emplace(NoteOf(why = now));
    }
    return "";
}

}  // namespace

std::string ReadSettledReading(const TellDisplay &tell)
{
    if (Simulated())
        return ReadDisplayDigits();
    const WaitNote note("Meter: waiting for a steady reading");
    std::string text = AwaitDigits(tell);
    Settling settling(Counts(text));
    while (!settling.Done() && !Abort) {
        DelayMs(kSettleMs);
        text = AwaitDigits(tell);
        settling.Take(Counts(text));
    }
    return Abort ? "" : text;
}

std::string TakeReading(int index, const TellDisplay &tell)
{
    AimSimulator(index);
    const std::string text = ReadSettledReading(tell);
    StoreReading(index, text);
    return SignedText(text);
}

std::string TakeReadingOrStop(int index)
{
    if (StopWanted())
        return EndLiveReading();
    AimSimulator(index);
    const std::string text = ReadDisplayRaw();
    if (!Holds(text, "."))
        return EndLiveReading();
    const std::string digits = WithoutPoint(text);
    StoreReading(index, digits);
    return SignedText(digits);
}

std::string ReadDisplayOrStop()
{
    while (!StopWanted()) {
        std::string text = ReadDisplayRaw();
        if (Holds(text, "."))
            return text;
    }
    return EndLiveReading();
}

std::string TryDisplayOrStop()
{
    if (StopWanted())
        return EndLiveReading();
    const std::string text = ReadDisplayRaw();
    return Holds(text, ".") ? text : std::string(kStop);
}

std::string ReadDisplayDigitsOrStop()
{
    return WithoutPoint(ReadDisplayOrStop());
}

std::string MeanReadingText()
{
    return std::to_string(RoundHalfEven((static_cast<double>(step.Readings[0]) + step.Readings[1]) / 2));
}

std::int32_t ReadingError()
{
    const double plus = step.Readings[0];
    const std::int32_t reading = step.TurnoverStep ? RoundHalfEven((plus - step.Readings[1]) / 2) : step.Readings[0];
    return reading - step.TargetCounts;
}

std::string ReadingErrorText()
{
    return std::to_string(ReadingError());
}

bool IsFarFromTarget(double reading, std::int32_t target)
{
    return std::abs(reading - target) > (target == 0 ? kFarFromZero : std::abs(target) / 10.0);
}

bool ReadingIsFar()
{
    return IsFarFromTarget(step.Readings[0], step.TargetCounts) ||
           (step.TurnoverStep && IsFarFromTarget(step.Readings[1], -step.TargetCounts));
}

std::string AwaitDisplay(const std::function<void(Following why)> &missed)
{
    const ArmedStop armed;
    while (true) {
        std::string text = TryDisplayOrStop();
        if (text != kStop || StopWanted())
            return text;
        missed(WhyMissed());
        ArmStop();  // the reader has closed the channel
    }
}

LiveReading DisplayInAdjustment()
{
    LiveReading live;
    live.everyMs = kAdjustMs;
    live.read = [] { return WithoutPoint(ReadDisplayRaw()); };
    return live;
}

Following FollowReading(const LiveReading &live, const std::function<void(const std::string &text)> &show)
{
    const ArmedStop armed;
    while (true) {
        DelayAlways(live.everyMs);
        if (StopWanted())
            break;
        const std::string text = !Simulated() || !live.simulated ? live.read() : live.simulated();
        if (text != kStop)
            show(text);
        else if (StopWanted())
            break;
        else if (live.silenceEnds)
            return WhyMissed();
        else {
            if (live.missed)
                live.missed(WhyMissed());
            ArmStop();  // the reader has closed the channel
        }
    }
    WaitOutStop();
    return Following::Stopped;
}

}  // namespace ombrix
