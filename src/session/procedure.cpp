#include "session/procedure.h"

#include "platform/clock.h"
#include "platform/fault.h"
#include "session/delays.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/state.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace ombrix {

bool StopArmed = false;
bool StopRequested = false;

namespace {

constexpr int kStopMs = 1000;      // what a stopped loop gets to end
constexpr int kPatienceMs = 1000;  // a stop so soon after an exit has begun belongs to the one that led there

bool running = false;
bool waitsForOperator = false;
bool escaped = false;  // Esc has ended the followed reading: a second Esc at once means nothing more
Navigation navigation = Navigation::Free;
std::function<void()> waiting;     // what runs next, when the running procedure has unwound
bool waitsAsWish = false;          // it is the page's own, and goes with what ends in a fault
std::string faultWords;            // of the work that is left
std::optional<Deadline> stopEnd;   // of the 1000 ms, counted from the click
std::optional<Deadline> patience;  // while a page is left that the operator has ended
bool asked = false;                // by the operator, to end what is in work

// A stop that came too late for what went before doesn't reach what follows.
void ForgetStop()
{
    ClearStop();
    patience.reset();
    Abort = false;
}

// A stop of the work. In an exit only a later one counts: an impatient second one would break off the removal of the
// input before it is confirmed.
void Interrupt()
{
    asked = true;
    if (!patience || patience->Passed())
        Abort = true;
}

// The one procedure on the stack, and navigation off as long as it stands there.
class OnTheStack
{
public:
    OnTheStack()
    {
        running = true;
        Show();
    }
    ~OnTheStack()
    {
        running = false;
        if (!ShutdownRequested())
            Show();
    }
    OnTheStack(const OnTheStack &) = delete;
    OnTheStack &operator=(const OnTheStack &) = delete;

private:
    static void Show()
    {
        UpdateNavigation();
        frameHooks.procedureStands(running);
    }
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

// What waits, as one procedure. A fault goes on to the handler's edge; but where the operator has asked for something
// meanwhile, it is told here and that runs.
void RunWaiting()
{
    waitsAsWish = false;
    try {
        std::exchange(waiting, nullptr)();
    } catch (const std::exception &fault) {
        if (!waiting || waitsAsWish || Quitting) {
            waiting = nullptr;
            throw;
        }
        FaultOutlet(fault.what());
    }
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
        RunWaiting();  // after the wait: a click during it takes the place of the one before
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
    asked = true;
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

namespace {

// How `work` ended; a fault is kept for later.
Ended EndOf(const std::function<void()> &work, std::exception_ptr &fault)
{
    faultWords.clear();
    asked = false;
    try {
        work();
    } catch (const std::exception &thrown) {
        fault = std::current_exception();
        faultWords = thrown.what();
    }
    if (fault)
        return Ended::Fault;
    return Abort ? Ended::Stopped : Ended::Done;
}

void WorkAndLeave(const std::function<void()> &work, const std::function<void(Ended)> &leave)
{
    std::exception_ptr fault;
    const Ended ended = EndOf(work, fault);
    WaitOutStop();
    ForgetStop();
    if (asked)
        patience.emplace(kPatienceMs);
    leave(ended);
    ForgetStop();
    if (fault)
        std::rethrow_exception(fault);
}

}  // namespace

bool RunPageProcedure(const std::function<void()> &work, const std::function<void(Ended)> &leave,
                      const std::function<void()> &noteQuit)
{
    return RunAlone([&] {
        try {
            WorkAndLeave(work, leave);
        } catch (const Shutdown &) {
            if (noteQuit)
                noteQuit();
            throw;
        }
    });
}

std::string FaultWords()
{
    return faultWords;
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
    waitsAsWish = false;
    Interrupt();
    if (StopArmed && !StopRequested)
        NoteStop();
}

void RunAfterProcedure(std::function<void()> action)
{
    if (!running) {
        RunAlone(action);
    } else if (!waiting) {
        waiting = std::move(action);
        waitsAsWish = true;
    }
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
    if (running)
        Interrupt();
}

bool PressEscape()
{
    if (!running)
        return false;
    if (StopArmed && !StopRequested) {
        RequestStop();
        escaped = true;
    } else if (!waitsForOperator && !escaped) {
        Interrupt();
    }
    return true;
}

void SetNavigation(Navigation wanted)
{
    navigation = wanted;
    UpdateNavigation();
}

Navigation NavigationWanted()
{
    return navigation;
}

void UpdateNavigation()
{
    const bool free = navigation == Navigation::Open || (navigation == Navigation::Free && !running);
    frameHooks.enableSteps(Established && free);
}

}  // namespace ombrix
