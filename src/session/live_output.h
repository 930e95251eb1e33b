// What may stand on the terminals, as far as the station knows: the value last known, whether the calibrator has
// confirmed what was asked of it last, whether its line is gone. The alert and the danger flag follow from it.
//
// The links note what they ask and hear; whoever ends an exit, Setup, a tab or a step's entry calls TellLiveOutput.
#pragma once

#include "session/outlets.h"

#include <string>

namespace ombrix {

struct LiveOutput {
    std::string Value;  ///< last known, "200.0 V"; "" when nothing was ever asked
    Danger Level = Danger::Safe;
    std::string Asked = {};     ///< the output asked for last
    bool StandbyAsked = false;  ///< what was asked last: a standby, or an output
    bool Confirmed = true;      ///< and that it was confirmed
    bool MayStand = false;      ///< an output was asked for since the last confirmed standby
    bool LineGone = false;      ///< the calibrator's line has gone
};
const LiveOutput &GetLiveOutput();

/// A fresh program: nothing stands, no alert, no flag.
void InitLiveOutput();
/// A new session: the same, except that an alert that stands goes on standing.
void ForgetLiveOutput();

// ---- noted by the links ----

/// The calibrator is going to be told to operate at a value. It, or the value before, may stand from here on: the more
/// dangerous one counts, of two of a kind the larger: the panel shows it at once, and the flag is raised to it.
void NoteOutputAsked(const std::string &value, Danger level);
void NoteStandbyAsked();
/// What was asked last was confirmed: takes the alert away. In simulation an alert about real terminals stays.
void NoteOutputConfirmed();
/// A value that the panel shows now.
void NoteOutputSeen(const std::string &value, Danger level);
/// The calibrator's line has gone: the alert comes at once if an output stands.
void NoteOutputLineGone();
void NoteOutputLineBack();

// ---- asked and told ----

/// The calibrator has confirmed that it operates, or is in standby, as it was asked last; at what value, it may not have.
bool OutputConfirmed();
/// That, and it is no other output than the one asked for last: a calibrator that refuses one keeps the one before it.
bool AskedOutputStands();
/// Shows the alert when the output or standby asked last could not be confirmed, and its value on panel and flag.
/// Nothing without a calibrator.
void TellLiveOutput();
/// Draws an alert that stands once more, with its value and flag, after the panel was emptied.
void RepeatAlert();
/// The alert that stands, or that the end of the program has to tell; "" when there is none.
std::string AlertText();

// ---- the flag ----

Danger ShownDanger();
void SetDangerFlag(Danger level);
/// The same, but never to a lower level than the one shown.
void RaiseDangerFlag(Danger level);

}  // namespace ombrix
