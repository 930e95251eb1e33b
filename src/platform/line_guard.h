// The guard: a small program that holds the calibrator's line too, and puts the calibrator in standby when this one dies
// without a goodbye, whatever it dies of (guard/main.c tells what it says).
//
// Nothing here throws or waits longer than a moment: without a guard the station works on.
#pragma once

#include <functional>
#include <string>

namespace ombrix {

/// Starts it. False when that can't be done, or on a system that has none.
bool StartGuard(const std::string &path);
/// The calibrator's line as the system numbers it: from here on the guard holds it too, in place of the one before.
/// -1: there is none; the guard has given it up when this returns. Starts a guard that has died anew, as RenewGuard does.
void GuardLine(int handle);
/// The last words have been said: it ends without a word.
void EndGuard();
/// One was started and lives.
bool GuardStands();
/// The station's end of their talk, readable when the guard has died. -1 without a guard.
int GuardSocket();
/// Starts a guard that has died anew, with the line that it held. Nothing while it stands, and none
/// when ten of them have died one after the other, none of which lived to hear of a line.
void RenewGuard();
/// Told when a guard had died: whether another one stands in its place. One at a time; nullptr tells nobody.
void UseGuardNews(std::function<void(bool stands)> news);

}  // namespace ombrix
