#include "platform/clock.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <utility>

namespace ombrix {
namespace {

class RealClock : public Clock
{
public:
    std::int64_t NowMicros() override
    {
        using namespace std::chrono;
        return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
    }

    void Pump(int maxWaitMs) override
    {
        if (maxWaitMs == 0) {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            return;
        }
        QTimer timer;  // wakes the wait at the limit; has nothing to call
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        if (maxWaitMs > 0)
            timer.start(maxWaitMs);
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }

    void CallAfter(int ms, std::function<void()> call) override
    {
        QTimer::singleShot(ms, Qt::PreciseTimer, QCoreApplication::instance(), std::move(call));
    }
};

RealClock realClock;
Clock *clockInForce = &realClock;
bool shutdownRequested = false;
int noShutdownDepth = 0;

}  // namespace

void UseClock(Clock *clock)
{
    clockInForce = clock ? clock : &realClock;
}

std::int64_t NowMicros()
{
    return clockInForce->NowMicros();
}

void CallAfter(int ms, std::function<void()> call)
{
    clockInForce->CallAfter(ms, std::move(call));
}

void PumpEvents(int maxWaitMs)
{
    const auto endNow = [] { return shutdownRequested && noShutdownDepth == 0; };
    if (endNow())
        throw Shutdown();
    clockInForce->Pump(maxWaitMs);
    if (endNow())
        throw Shutdown();
}

int Deadline::LeftMs() const
{
    const std::int64_t left = m_start + m_length - NowMicros();
    return left <= 0 ? 0 : static_cast<int>((left + 999) / 1000);
}

void RequestShutdown(bool on)
{
    shutdownRequested = on;
}

bool ShutdownRequested()
{
    return shutdownRequested;
}

NoShutdownScope::NoShutdownScope()
{
    ++noShutdownDepth;
}

NoShutdownScope::~NoShutdownScope()
{
    --noShutdownDepth;
}

}  // namespace ombrix
