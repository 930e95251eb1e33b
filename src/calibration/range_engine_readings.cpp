#include "calibration/range_engine.h"

#include "calibration/range_correction.h"
#include "links/meter_operations.h"
#include "links/meter_simulator.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"

namespace ombrix {
namespace {

constexpr int kSettleMs = 300;
constexpr int kStopMs = 1000;

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

std::string EndLiveReading()
{
    DisarmStop();
    DelayMs(kStopMs);
    return std::string(kStop);
}

std::string WithoutPoint(std::string text)
{
    const std::size_t point = text.find('.');
    return point == std::string::npos ? text : text.erase(point, 1);
}

}  // namespace

std::string ReadSettledReading()
{
    std::string text = ReadDisplayDigits();
    if (!HardwareMode)
        return text;
    const WaitNote note("Meter: waiting for a steady reading");
    Settling settling(Counts(text));
    while (!settling.Done() && !Abort) {
        DelayMs(kSettleMs);
        text = ReadDisplayDigits();
        settling.Take(Counts(text));
    }
    return Abort ? "" : text;
}

std::string TakeReading(int index)
{
    AimSimulator(index);
    const std::string text = ReadSettledReading();
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

std::string ReadDisplayDigitsOrStop()
{
    return WithoutPoint(ReadDisplayOrStop());
}

std::string MeanReadingText()
{
    return std::to_string(RoundHalfEven((static_cast<double>(step.Readings[0]) + step.Readings[1]) / 2));
}

std::string ReadingErrorText()
{
    const double plus = step.Readings[0];
    const std::int32_t reading = step.TurnoverStep ? RoundHalfEven((plus - step.Readings[1]) / 2) : step.Readings[0];
    return std::to_string(reading - step.TargetCounts);
}

}  // namespace ombrix
