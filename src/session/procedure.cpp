#include "session/procedure.h"

#include "platform/clock.h"
#include "session/delays.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/state.h"

#include <exception>
#include <optional>
#include <utility>

namespace ombrix {

bool StopArmed = false;
bool StopRequested = false;

namespace {

constexpr int kStopMs = 1000;  // what a stopped loop gets to end

bool running = false;
bool waitsForOperator = false;
bool escaped = false;  // Esc has ended the followed reading: a second Esc at once means nothing more
Navigation navigation = Navigation::Free;
std::function<void()> waiting;    // what runs next, when the running procedure has unwound
std::optional<Deadline> stopEnd;  // of the 1000 ms, counted from the click

// A stop that came too late for what went before doesn't reach what follows.
void ForgetStop()
{
    ClearStop();
    Abort = false;
}

// The one procedure on the stack, and navigation off as long as it stands there.
class OnTheStack
{
public:
    OnTheStack()
    {
        running = true;
        UpdateNavigation();
    }
    ~OnTheStack()
    {
        running = false;
        if (!ShutdownRequested())
            UpdateNavigation();
    }
    OnTheStack(const OnTheStack &) = delete;
    OnTheStack &operator=(const OnTheStack &) = delete;
};

// At the end of a procedure, however it ends: no stop outlives it, and what it left on the terminals is told.
class Telling
{
public:
    Telling() = default;
    ~Telling()
    {
        if (ShutdownRequested())
            return;
        if (!waiting)
            ForgetStop();
        TellLiveOutput();
    }
    Telling(const Telling &) = delete;
    Telling &operator=(const Telling &) = delete;
};

void NoteStop()
{
    StopRequested = true;
    if (RealTimeDelays)
        stopEnd.emplace(kStopMs);
}

// Runs `body`, then what waits for its end, one after the other.
bool RunAlone(const std::function<void()> &body)
{
    if (running || Quitting)
        return false;
    waiting = body;
    ClearStop();
    while (waiting && !Quitting) {
        const OnTheStack procedure;
        WaitOutStop();
        ForgetStop();
        const Telling telling;
        std::exchange(waiting, nullptr)();  // after the wait: a click during it takes the place of the one before
    }
    return true;
}

}  // namespace

void ArmStop()
{
    ClearStop();
    StopArmed = true;
}

void DisarmStop()
{
    StopArmed = false;
}

void ClearStop()
{
    StopArmed = StopRequested = escaped = false;
    stopEnd.reset();
}

void RequestStop()
{
    if (StopArmed && !StopRequested)
        NoteStop();
}

void WaitOutStop()
{
    while (stopEnd && !stopEnd->Passed())
        PumpEvents(stopEnd->LeftMs());
    escaped = false;
}

bool ProcedureRunning()
{
    return running;
}

bool RunProcedure(const std::function<void()> &body)
{
    return RunAlone(body);
}

bool RunPageProcedure(const std::function<void()> &work, const std::function<void(Ended)> &leave)
{
    return RunAlone([&work, &leave] {
        std::exception_ptr fault;
        try {
            work();
        } catch (const std::exception &) {
            fault = std::current_exception();
        }
        Ended ended = Abort ? Ended::Stopped : Ended::Done;
        if (fault)
            ended = Ended::Fault;
        WaitOutStop();
        ForgetStop();
        leave(ended);
        ForgetStop();
        if (fault)
            std::rethrow_exception(fault);
    });
}

void RunAfterStop(std::function<void()> action)
{
    if (Quitting)
        return;
    if (!running) {
        RunAlone(action);
        return;
    }
    waiting = std::move(action);
    Abort = true;
    if (StopArmed && !StopRequested)
        NoteStop();
}

void RunAfterProcedure(std::function<void()> action)
{
    if (!running)
        RunAlone(action);
    else if (!waiting)
        waiting = std::move(action);
}

void WaitForOperator(const std::function<bool()> &done, Escape escape)
{
    const ScopedFlag scope(waitsForOperator, escape == Escape::Ignored);
    while (!done() && !Abort)
        PumpEvents(kForever);
}

void WaitForOperatorOrEscape(const std::function<bool()> &done)
{
    while (!done() && !Abort)
        PumpEvents(kForever);
}

void StopWork()
{
    Abort = Abort || running;
}

bool PressEscape()
{
    if (!running)
        return false;
    if (StopArmed && !StopRequested) {
        RequestStop();
        escaped = true;
    } else if (!waitsForOperator && !escaped) {
        Abort = true;
    }
    return true;
}

void SetNavigation(Navigation wanted)
{
    navigation = wanted;
    UpdateNavigation();
}

void UpdateNavigation()
{
    const bool free = navigation == Navigation::Open || (navigation == Navigation::Free && !running);
    frameHooks.enableSteps(Established && free);
}

}  // namespace ombrix
