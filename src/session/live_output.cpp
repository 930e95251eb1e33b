#include "session/live_output.h"

#include "session/journal.h"

#include "session/state.h"

namespace ombrix {
namespace {

LiveOutput live;
Danger shownLevel = Danger::Safe;
bool alertStands = false;

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

void ShowAlert()
{
    alertStands = true;
    if (!live.Value.empty())
        outlets.showOutput(live.Value);
    RaiseDangerFlag(live.Level);
    outlets.showAlert(Words());
    Record("warned", {{"of", Words()}});
}

void TakeAlertAway()
{
    if (!alertStands)
        return;
    alertStands = false;
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
}

void ForgetLiveOutput()
{
    if (!alertStands)
        InitLiveOutput();
}

void NoteOutputAsked(const std::string &value, Danger level)
{
    if (!live.MayStand || level >= live.Level) {
        live.Value = value;
        live.Level = level;
    }
    live.MayStand = true;
    live.StandbyAsked = live.Confirmed = false;
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

void TellLiveOutput()
{
    if (CalPort != 0 && !IsKnown())
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
