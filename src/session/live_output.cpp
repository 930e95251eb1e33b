#include "session/live_output.h"

#include "platform/text.h"
#include "platform/wire_trace.h"
#include "session/journal.h"
#include "session/state.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ombrix {
namespace {

LiveOutput live;
Danger shownLevel = Danger::Safe;
bool alertStands = false;
std::string told;  // the words of the alert that stands

bool IsKnown()
{
    return live.Confirmed && !(live.LineGone && live.MayStand);
}

std::string Words()
{
    const std::string value = live.Value.empty() ? "an unknown value" : live.Value;
    return std::string(live.StandbyAsked ? "Standby" : "Output") + " not confirmed: " + value +
           " may be on the terminals. Press the calibrator's own STBY key.";
}

// The panel may have been emptied since: value and flag are drawn anew.
void ShowAlert()
{
    alertStands = true;
    if (!live.Value.empty())
        outlets.showOutput(live.Value);
    SetDangerFlag(std::max(shownLevel, live.Level));
    const std::string words = Words();
    outlets.showAlert(words);
    if (words == std::exchange(told, words))
        return;
    Record("warned", {{"of", words}});
    MarkTrace(TraceLine::Calibrator, words);
}

// "-200.0 mV" is 0.2 of "V".
struct Quantity {
    double size = 0;
    std::string unit;
};

Quantity QuantityOf(const std::string &value)
{
    const auto words = Split(value, ' ');
    Quantity quantity{std::fabs(Val(value)), words.size() > 1 ? words[1] : ""};
    if (quantity.unit.size() > 1 && (quantity.unit[0] == 'm' || quantity.unit[0] == 'k')) {
        quantity.size *= quantity.unit[0] == 'm' ? 1e-3 : 1e3;
        quantity.unit.erase(0, 1);
    }
    return quantity;
}

// What stands may be either of the two for a while: the one that is worse counts, of two of a kind the larger.
bool IsAsBad(const std::string &value, Danger level)
{
    if (level != live.Level)
        return level > live.Level;
    const Quantity asked = QuantityOf(value);
    const Quantity standing = QuantityOf(live.Value);
    return asked.unit != standing.unit || asked.size >= standing.size;
}

bool IsTemperature(const std::string &unit)
{
    return unit.starts_with("°");
}

// A resistance that is switched on need not be quite the one asked for. Of a temperature in another unit nothing is said.
bool IsAnother(const std::string &standing, const std::string &asked)
{
    constexpr double kPart = 0.01;
    const Quantity one = QuantityOf(standing);
    const Quantity other = QuantityOf(asked);
    if (one.unit != other.unit)
        return !IsTemperature(one.unit) || !IsTemperature(other.unit);
    return Val(standing) * Val(asked) < 0 || std::fabs(one.size - other.size) > kPart * std::max(one.size, other.size);
}

void TakeAlertAway()
{
    if (!alertStands)
        return;
    alertStands = false;
    told.clear();
    outlets.showAlert("");
}

}  // namespace

const LiveOutput &GetLiveOutput()
{
    return live;
}

void InitLiveOutput()
{
    live = LiveOutput();
    shownLevel = Danger::Safe;
    alertStands = false;
    told.clear();
}

void ForgetLiveOutput()
{
    if (!alertStands)
        InitLiveOutput();
}

void NoteOutputAsked(const std::string &value, Danger level)
{
    if (!live.MayStand || IsAsBad(value, level)) {
        live.Value = value;
        live.Level = level;
    }
    live.Asked = value;
    live.MayStand = true;
    live.StandbyAsked = live.Confirmed = false;
    outlets.showOutput(live.Value);
    RaiseDangerFlag(level);
}

void NoteStandbyAsked()
{
    live.StandbyAsked = true;
    live.Confirmed = false;
}

void NoteOutputConfirmed()
{
    if (alertStands && !HardwareMode)
        return;
    live.Confirmed = true;
    if (live.StandbyAsked) {
        live.MayStand = false;
        live.Level = Danger::Safe;
    }
    if (IsKnown())
        TakeAlertAway();
}

void NoteOutputSeen(const std::string &value, Danger level)
{
    if (alertStands && !HardwareMode)
        return;
    live.Value = value;
    live.Level = level;
}

void NoteOutputLineGone()
{
    live.LineGone = true;
    if (CalPort != 0 && live.MayStand)
        ShowAlert();
}

void NoteOutputLineBack()
{
    live.LineGone = false;
}

bool OutputConfirmed()
{
    return IsKnown();
}

bool AskedOutputStands()
{
    return OutputConfirmed() && !IsAnother(live.Value, live.Asked);
}

void TellLiveOutput()
{
    if (CalPort != 0 && !IsKnown())
        ShowAlert();
}

void RepeatAlert()
{
    if (alertStands)
        ShowAlert();
}

std::string AlertText()
{
    return alertStands || (CalPort != 0 && live.LineGone && live.MayStand) ? Words() : "";
}

Danger ShownDanger()
{
    return shownLevel;
}

void SetDangerFlag(Danger level)
{
    shownLevel = level;
    outlets.showDangerFlag(level);
}

void RaiseDangerFlag(Danger level)
{
    if (level > shownLevel)
        SetDangerFlag(level);
}

}  // namespace ombrix
