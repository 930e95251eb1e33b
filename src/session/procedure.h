// How procedures start, stop, leave and give way to each other. At most one stands on the stack.
//
// - A page's procedure runs in RunPageProcedure(work, leave), its only way in and out. While it runs, the buttons of
//   its page only set flags, call RequestStop or StopWork where told, and return; the procedure does the work when it
//   sees the flag.
// - Navigation (a step, a tab, Setup) goes through RunAfterStop: the running procedure is stopped, and the action runs
//   once, when it has unwound.
// - Anything else that would start a procedure is ignored while one runs. Quit is always open.
// - Whether the step buttons, tabs and Setup are on follows from all this and from what the page in front says. Nobody
//   switches them by hand, so nobody forgets to switch them back.
#pragma once

#include <functional>
#include <string>

namespace ombrix {

// ---- the stop channel: how a click reaches a live reading loop ----

extern bool StopArmed;      ///< a live reading loop listens
extern bool StopRequested;  ///< and is to end

void ArmStop();     ///< clears StopRequested, sets StopArmed
void DisarmStop();  ///< clears StopArmed
void ClearStop();   ///< clears both, and the moment of the click
/// Nothing unless StopArmed; else sets StopRequested and notes the moment. Returns at once: the loop ends at its next
/// look, and who owns it waits out the second (WaitOutStop) before it goes on.
void RequestStop();
/// Waits for what is left of the 1000 ms since RequestStop (DelayMs); nothing when none was requested.
void WaitOutStop();

// ---- procedures ----

enum class Ended { Done, Stopped, Fault };

/// Runs `work` as the one procedure, then `leave` with how it ended: by itself, by a stop (Abort), by a fault, which goes
/// on to the handler's edge after `leave`. Abort and the stop channel are cleared before `work`, before `leave` and after
/// it, so an exit always reaches the instruments. In the first 1000 ms of an exit that the operator has asked for no stop
/// counts, by button, Esc or navigation: an impatient second one would only break off what the first one led to. Then
/// comes what waits for the end: navigation or the page's wish for the next step. Only the end of the program passes by
/// `leave`: then the instruments have had their last words, and `noteQuit` may tell the journal.
/// Does nothing and returns false while a procedure runs or while the program quits.
bool RunPageProcedure(const std::function<void()> &work, const std::function<void(Ended)> &leave,
                      const std::function<void()> &noteQuit = {});
/// For `leave`: the words of the fault that ended the work, "" when none did.
std::string FaultWords();

/// The same without an exit of its own, for what isn't a page's: Establish, a choice of the Setup page.
bool RunProcedure(const std::function<void()> &body);

/// True while a procedure stands on the stack.
bool ProcedureRunning();

/// Runs `action` as a procedure. At once when none runs; otherwise stops the running one (Abort, and the live loop's
/// stop) and runs it when that has unwound, at the earliest 1000 ms after this call if a live loop was stopped. A
/// later call takes the place of an action that still waits. A fault of the running one doesn't hold it up.
void RunAfterStop(std::function<void()> action);

/// A page's wish, such as the next step: runs `action` when the running procedure has ended by itself, at once when none
/// runs. Navigation that the operator asked for goes before it.
void RunAfterProcedure(std::function<void()> action);

/// What Esc does while a page waits for its buttons: nothing, or it is the page's Stop, because an input stands.
enum class Escape { Ignored, Stops };

/// Sleeps until `done` holds or Abort is set. Flags change only in handlers, so it looks again after each event.
void WaitForOperator(const std::function<bool()> &done, Escape escape = Escape::Ignored);

/// The same, and Esc is the page's Stop meanwhile.
void WaitForOperatorOrEscape(const std::function<bool()> &done);

/// A page's Stop: ends the work of the running procedure (Abort). Nothing without one, nor as an exit begins.
void StopWork();

/// The key Esc. While work runs it is the page's Stop; while a reading is only followed it ends the following and
/// leaves the rest as it is; while the page waits for its buttons it does nothing. Inside the second of a button that
/// ended the following it is the page's Stop again. True when a procedure stood.
bool PressEscape();

// ---- navigation: step buttons, tabs, Setup ----

enum class Navigation {
    Free,  ///< on as long as no procedure runs
    Held,  ///< off also between two clicks of the page
    Open,  ///< on also while the page's procedure runs
};
/// What the page in front wants; another page begins with Free.
void SetNavigation(Navigation wanted);
Navigation NavigationWanted();
/// Switches navigation to what holds now: after Established has changed.
void UpdateNavigation();

}  // namespace ombrix
