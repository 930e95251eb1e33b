#include "platform/clock.h"

#include "platform/fault.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <QTimer>

#include <algorithm>
#include <ctime>
#include <limits>
#include <poll.h>
#include <stdexcept>

using namespace ombrix;
using ombrix::test::VirtualClock;

namespace {

// Waits on the real clock and tells how long it took, in microseconds.
std::int64_t WaitReal(int ms)
{
    const std::int64_t start = NowMicros();
    const Deadline end(ms);
    while (!end.Passed())
        PumpEvents(end.LeftMs());
    return NowMicros() - start;
}

double CpuSeconds()
{
    timespec spent{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &spent);
    return static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) / 1e9;
}

// How late the machine lets anybody wake just now, in microseconds.
std::int64_t SleepLateness()
{
    constexpr int kSleepMs = 8;
    const std::int64_t start = NowMicros();
    poll(nullptr, 0, kSleepMs);
    return NowMicros() - start - kSleepMs * 1000;
}

}  // namespace

// A busy machine may be late at any time; that one of several tries is as punctual as a bare sleep shows what the pump
// can do. None may ever be early.
template <class Try> void ExpectPunctual(Try lateness)
{
    std::int64_t best = std::numeric_limits<std::int64_t>::max();
    for (int tries = 0; tries < 20 && best > 2000; ++tries) {
        const std::int64_t late = lateness();
        ASSERT_GE(late, 0) << "microseconds too short";
        best = std::min(best, late - SleepLateness());
    }
    EXPECT_LE(best, 2000) << "microseconds";
}

TEST(RealClock, AWaitIsNeverShorterThanToldAndAtMostTwoMillisecondsLonger)
{
    for (int ms : {1, 8, 50, 300})
        ExpectPunctual([ms] { return WaitReal(ms) - ms * 1000; });
}

TEST(RealClock, WaitsInsideWaitsKeepTheirLengths)
{
    ExpectPunctual([] {
        std::int64_t inner = 0;
        std::int64_t innermost = 0;
        QTimer::singleShot(5, Qt::PreciseTimer, [&] {
            QTimer::singleShot(5, Qt::PreciseTimer, [&] { innermost = WaitReal(20) - 20'000; });
            inner = WaitReal(40) - 40'000;
        });
        const std::int64_t outer = WaitReal(80) - 80'000;
        EXPECT_GE(std::min(inner, innermost), 0) << "microseconds too short";
        return std::max({inner, innermost, outer});
    });
}

TEST(RealClock, AnOuterWaitThatIsOverEndsWithTheInnerOne)
{
    ExpectPunctual([] {
        std::int64_t innerEnd = 0;
        QTimer::singleShot(10, Qt::PreciseTimer, [&] {
            WaitReal(40);
            innerEnd = NowMicros();
        });
        const std::int64_t outer = WaitReal(20);
        EXPECT_GE(outer, 50'000);
        return NowMicros() - innerEnd;
    });
}

TEST(RealClock, WaitingTakesNoProcessorTime)
{
    const double before = CpuSeconds();
    WaitReal(400);
    EXPECT_LT(CpuSeconds() - before, 0.02);
}

TEST(VirtualClock, JumpsToTheNextThingThatHappens)
{
    VirtualClock clock;
    std::string order;
    CallAfter(300, [&] { order += "c"; });
    CallAfter(100, [&] { order += "a"; });
    CallAfter(100, [&] { order += "b"; });
    const Deadline end(1000);
    while (!end.Passed())
        PumpEvents(end.LeftMs());
    EXPECT_EQ(order, "abc");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST(VirtualClock, AWaitInsideAWaitSeesEachEventOnce)
{
    VirtualClock clock;
    int calls = 0;
    CallAfter(10, [&] {
        ++calls;
        const Deadline inner(50);
        while (!inner.Passed())
            PumpEvents(inner.LeftMs());
    });
    const Deadline outer(20);
    while (!outer.Passed())
        PumpEvents(outer.LeftMs());
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(clock.Elapsed(), 60) << "the outer wait ends when the inner one has";
}

TEST(Deadline, TellsWhatIsLeftRoundedUp)
{
    VirtualClock clock;
    Deadline limit(1000);
    EXPECT_EQ(limit.LeftMs(), 1000);
    clock.Advance(999);
    EXPECT_FALSE(limit.Passed());
    EXPECT_EQ(limit.LeftMs(), 1);
    clock.Advance(1);
    EXPECT_TRUE(limit.Passed());
    EXPECT_EQ(limit.LeftMs(), 0);
    limit.Restart();
    EXPECT_EQ(limit.LeftMs(), 1000);
}

TEST(Deadline, NeverTellsZeroWhileMicrosecondsAreLeft)
{
    class MicroClock : public Clock
    {
    public:
        std::int64_t NowMicros() override { return now; }
        void Pump(int) override {}
        void CallAfter(int, std::function<void()>) override {}
        std::int64_t now = 0;
    } clock;
    UseClock(&clock);
    const Deadline limit(10);
    clock.now = 9'999;
    EXPECT_FALSE(limit.Passed());
    EXPECT_EQ(limit.LeftMs(), 1) << "a wait of 0 would spin";
    UseClock(nullptr);
}

TEST(Shutdown, IsThrownByThePumpAlone)
{
    VirtualClock clock;
    RequestShutdown();
    EXPECT_THROW(PumpEvents(0), Shutdown);
    {
        const NoShutdownScope quiet;
        EXPECT_NO_THROW(PumpEvents(1));
    }
    EXPECT_THROW(PumpEvents(0), Shutdown);
    RequestShutdown(false);
    EXPECT_NO_THROW(PumpEvents(0));
}

TEST(Shutdown, LetsNoWaitBegin)
{
    VirtualClock clock;
    int events = 0;
    CallAfter(0, [&] { ++events; });
    RequestShutdown();
    EXPECT_THROW(PumpEvents(kForever), Shutdown);
    RequestShutdown(false);
    EXPECT_EQ(events, 0);
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST(Shutdown, UnwindsEveryLevelOfHandlers)
{
    VirtualClock clock;
    std::string levels;
    CallAfter(10, [&] {
        RunHandler([&] {
            CallAfter(10, [&] { RunHandler([] { RequestShutdown(); }); });
            try {
                PumpEvents(1000);
                PumpEvents(1000);
            } catch (const Shutdown &) {
                levels += "inner ";
                throw;
            }
            levels += "went on ";
        });
    });
    RunHandler([&] {
        try {
            PumpEvents(1000);
        } catch (const Shutdown &) {
            levels += "outer";
            throw;
        }
    });
    EXPECT_EQ(levels, "inner outer");
    RequestShutdown(false);
}

TEST(RunHandler, GivesAFaultToItsOutletAndLetsNothingThrough)
{
    std::string told;
    FaultOutlet = [&](const std::string &words) { told = words; };
    EXPECT_NO_THROW(RunHandler([] { throw RuntimeFault(9, "Subscript out of range"); }));
    EXPECT_EQ(told, "Subscript out of range");
    FaultOutlet = [](const std::string &) {};
}

TEST(RunHandler, StartsNothingWhileHandlersAreClosed)
{
    int runs = 0;
    CloseHandlers();
    RunHandler([&] { ++runs; });
    EXPECT_EQ(runs, 0);
    CloseHandlers(false);
    RunHandler([&] { ++runs; });
    EXPECT_EQ(runs, 1);
}

TEST(RunHandler, StartsNothingWhileTheProgramEnds)
{
    bool ran = false;
    RequestShutdown();
    RunHandler([&] { ran = true; });
    RequestShutdown(false);
    EXPECT_FALSE(ran);
}
