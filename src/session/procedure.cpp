#include "session/procedure.h"

#include "platform/clock.h"
#include "session/delays.h"
#include "session/state.h"

#include <exception>
#include <optional>
#include <utility>

namespace ombrix {

bool StopArmed = false;
bool StopRequested = false;

namespace {

constexpr int kStopMs = 1000;  // what a live loop gets to end

bool running = false;
std::function<void()> waiting;      // what runs next, when the running procedure has unwound
std::optional<Deadline> notBefore;  // end of the stopped loop's 1000 ms

// A stop that came too late for the procedure before doesn't reach this one.
void ForgetStop()
{
    ClearStop();
    Abort = false;
}

void WaitOutStop()
{
    while (notBefore && !notBefore->Passed())
        PumpEvents(notBefore->LeftMs());
}

}  // namespace

void ArmStop()
{
    StopRequested = false;
    StopArmed = true;
}

void DisarmStop()
{
    StopArmed = false;
}

void ClearStop()
{
    StopArmed = StopRequested = false;
}

void RequestStop()
{
    if (!StopArmed || StopRequested)
        return;
    StopRequested = true;
    DelayMs(kStopMs);
}

bool ProcedureRunning()
{
    return running;
}

bool RunProcedure(const std::function<void()> &body)
{
    if (running || Quitting)
        return false;
    waiting = body;
    notBefore.reset();
    while (waiting && !Quitting) {
        const ScopedFlag scope(running);
        WaitOutStop();
        ForgetStop();
        std::exchange(waiting, nullptr)();  // after the wait: a click during it takes the place of the one before
    }
    return true;
}

void RunAfterStop(std::function<void()> action)
{
    if (Quitting)
        return;
    if (!running) {
        RunProcedure(action);
        return;
    }
    waiting = std::move(action);
    Abort = true;
    if (StopArmed && !StopRequested) {
        StopRequested = true;
        if (RealTimeDelays)
            notBefore.emplace(kStopMs);
    }
}

void WaitForOperator(const std::function<bool()> &done)
{
    while (!done() && !Abort)
        PumpEvents(kForever);
}

void WithExit(const std::function<void()> &work, const std::function<void()> &leave)
{
    try {
        work();
    } catch (const std::exception &) {
        Abort = true;
        leave();
        throw;
    }
    leave();
}

}  // namespace ombrix
