// How procedures start, stop and give way to each other. At most one stands on the stack.
//
// - A procedure runs inside RunProcedure. While it runs, the buttons of its page only set flags, call RequestStop
//   where told, and return; the procedure does the work when it sees the flag.
// - A live reading loop arms the stop; RequestStop then reaches it.
// - Navigation (a step, a tab, Setup) goes through RunAfterStop: the running procedure is stopped, and the action
//   runs once, when it has unwound.
// - Anything else that would start a procedure is ignored while one runs. Quit is always open.
// - A procedure that waits for its buttons does so in WaitForOperator, and has its one way out in WithExit.
#pragma once

#include <functional>

namespace ombrix {

extern bool StopArmed;      ///< a live reading loop listens
extern bool StopRequested;  ///< and is to end

void ArmStop();     ///< clears StopRequested, sets StopArmed
void DisarmStop();  ///< clears StopArmed
void ClearStop();   ///< clears both
/// Nothing unless StopArmed; else sets StopRequested and waits 1000 ms (DelayMs). At once when already requested.
void RequestStop();

/// True while a procedure stands on the stack.
bool ProcedureRunning();

/// Runs `body` as the one procedure, with Abort and the stop channel cleared; then the navigation that waits for its
/// end. Does nothing and returns false while one runs or while the program quits.
bool RunProcedure(const std::function<void()> &body);

/// Runs `action` as a procedure. At once when none runs; otherwise stops the running one (Abort, and the live loop's
/// stop) and runs it when that has unwound, at the earliest 1000 ms after this call if a live loop was stopped. A
/// later call takes the place of an action that still waits.
void RunAfterStop(std::function<void()> action);

/// Sleeps until `done` holds or Abort is set. Flags change only in handlers, so it looks again after each event.
void WaitForOperator(const std::function<bool()> &done);

/// Runs `work`, then `leave`, whatever ended `work`: its own end, a stop, or a fault, which sets Abort first and goes
/// on to the handler's edge after `leave`. Only the end of the program passes by `leave`: then the instruments have
/// had their last words already.
void WithExit(const std::function<void()> &work, const std::function<void()> &leave);

}  // namespace ombrix
