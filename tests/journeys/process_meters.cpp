#include "journeys/process_meters.h"

#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"

#include <cmath>
#include <cstddef>

namespace ombrix::test {
namespace {

constexpr int kLook = 2500;  // milliseconds in which a display settles before his eyes
constexpr int kMostClicks = 6;

double Number(const char *label)
{
    return Val(ScriptedOperator::Text(label));
}

}  // namespace

void ClicksUntil(BenchStation &station, const char *button, const char *number, double content, int clicks,
                 const std::function<void()> &then)
{
    station.person.WaitsUntil("the reading is live", [=] { return ScriptedOperator::IsEnabled(button); })
        .Waits(kLook)
        .Does([=, &station] {
            if (clicks > 0 && (std::fabs(Number(number)) <= content || clicks > kMostClicks))
                return then();
            station.person.Clicks(button);
            ClicksUntil(station, button, number, content, clicks + 1, then);
        });
}

void TrimsTheDiode(BenchStation &station, const std::string &type)
{
    station.person.Clicks("optTCType(" + type + ")").WaitsFor("cmdQDReady").Clicks("cmdQDReady");
    ClicksUntil(station, "cmdQDGain", "lblQDDistance", 0.1, 0, [&station] {
        ClicksUntil(station, "cmdQDOffset", "lblQDDistance", 0.1, 0,
                    [&station] { station.person.Clicks("cmdQDStop(0)").WaitsFor("cmdSetup"); });
    });
}

void TrimsTheCurrent(BenchStation &station)
{
    ClicksUntil(station, "cmdISCalib", "lblISError", 1, 0,
                [&station] { station.person.Clicks("cmdISDone").WaitsFor("cmdSetup"); });
}

void TakesTheTempBoard(BenchStation &station)
{
    if (SCType == kTemp)
        return;
    station.person.ClicksTab(kTabTc).WaitsFor("optTabSelect(0)").Clicks("optTabSelect(0)");
    station.person.WaitsUntil("it is a Temp board", [] { return SCType == kTemp && NavigationIsFree(); });
}

}  // namespace ombrix::test
