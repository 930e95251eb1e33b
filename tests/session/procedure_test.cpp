#include "session/procedure.h"

#include "platform/clock.h"
#include "platform/fault.h"
#include "session/delays.h"
#include "session/page_frame.h"
#include "session/state.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace ombrix;

namespace {

class Procedures : public testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        ClearStop();
    }
    void TearDown() override
    {
        frameHooks = FrameHooks();
        SetNavigation(Navigation::Free);
        InitSessionState();
    }

    // A live reading loop: looks every 300 ms until it is stopped.
    void LiveLoop(const std::string &name)
    {
        order += name + " ";
        ArmStop();
        while (!StopRequested && !Abort)
            DelayMs(300);
        DisarmStop();
        order += name + "-ended ";
    }

    test::VirtualClock clock;
    std::string order;
};

}  // namespace

TEST_F(Procedures, RequestStopDoesNothingUnlessArmed)
{
    RequestStop();
    EXPECT_FALSE(StopRequested);
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Procedures, RequestStopReturnsAtOnceAndTheSecondCountsFromTheClick)
{
    ArmStop();
    RequestStop();
    EXPECT_TRUE(StopRequested);
    EXPECT_EQ(clock.Elapsed(), 0);
    DelayMs(400);
    RequestStop();
    WaitOutStop();
    EXPECT_EQ(clock.Elapsed(), 1000) << "a second click does not wait anew";
    WaitOutStop();
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(Procedures, NothingIsWaitedOutWithoutAStop)
{
    WaitOutStop();
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Procedures, ArmStopForgetsAnOlderRequest)
{
    StopRequested = true;
    ArmStop();
    EXPECT_TRUE(StopArmed);
    EXPECT_FALSE(StopRequested);
    DisarmStop();
    EXPECT_FALSE(StopArmed);
}

TEST_F(Procedures, NothingStartsOnTopOfARunningProcedure)
{
    EXPECT_TRUE(RunProcedure([&] {
        EXPECT_TRUE(ProcedureRunning());
        EXPECT_FALSE(RunProcedure([&] { order += "second"; }));
    }));
    EXPECT_EQ(order, "");
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(Procedures, NothingStartsWhileTheProgramQuits)
{
    Quitting = true;
    EXPECT_FALSE(RunProcedure([&] { order += "started"; }));
    RunAfterStop([&] { order += "navigated"; });
    EXPECT_EQ(order, "");
}

TEST_F(Procedures, NothingFollowsAProcedureThatTheQuitEnds)
{
    RunProcedure([&] {
        RunAfterStop([&] { order += "navigated"; });
        Quitting = true;
        Abort = false;
        RunAfterStop([&] { order += "navigated"; });
        EXPECT_FALSE(Abort) << "Quit speaks its last words undisturbed";
    });
    EXPECT_EQ(order, "");
}

TEST_F(Procedures, NavigationRunsAtOnceWhenNothingRuns)
{
    Abort = true;
    RunAfterStop([&] {
        EXPECT_TRUE(ProcedureRunning());
        EXPECT_FALSE(Abort);
        order += "navigated";
    });
    EXPECT_EQ(order, "navigated");
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(Procedures, NavigationStopsALiveLoopAndFollowsWhenItHasUnwound)
{
    CallAfter(500, [&] { RunAfterStop([&] { order += "navigated"; }); });
    RunProcedure([&] { LiveLoop("loop"); });
    EXPECT_EQ(order, "loop loop-ended navigated");
    EXPECT_EQ(clock.Elapsed(), 1500) << "1000 ms counted from the click";
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(Procedures, NavigationAfterAProcedureThatIsSlowToEndWaitsNoLonger)
{
    CallAfter(100, [&] { RunAfterStop([&] { order += "navigated"; }); });
    RunProcedure([&] {
        LiveLoop("loop");
        DelayMs(3000);
    });
    EXPECT_EQ(clock.Elapsed(), 3300);
    EXPECT_EQ(order, "loop loop-ended navigated");
}

TEST_F(Procedures, NavigationAbortsAProcedureWithoutALiveLoop)
{
    CallAfter(100, [&] { RunAfterStop([&] { order += "navigated"; }); });
    RunProcedure([&] {
        while (!Abort)
            DelayMs(300);
        order += "aborted ";
    });
    EXPECT_EQ(order, "aborted navigated");
    EXPECT_EQ(clock.Elapsed(), 300) << "no live loop was stopped, so none is waited for";
    EXPECT_FALSE(Abort);
}

TEST_F(Procedures, NavigationInSimulationDoesNotWaitForTheStoppedLoop)
{
    RealTimeDelays = false;
    CallAfter(500, [&] { RunAfterStop([&] { order += "navigated"; }); });
    RunProcedure([&] {
        ArmStop();
        while (!StopRequested)
            DelayAlways(300);
    });
    EXPECT_EQ(order, "navigated");
    EXPECT_EQ(clock.Elapsed(), 600);
}

TEST_F(Procedures, TheLastOfSeveralNavigationsCounts)
{
    CallAfter(100, [&] { RunAfterStop([&] { order += "first"; }); });
    CallAfter(200, [&] { RunAfterStop([&] { order += "second"; }); });
    RunProcedure([&] { LiveLoop("loop"); });
    EXPECT_EQ(order, "loop loop-ended second");
}

TEST_F(Procedures, ANavigationDuringTheWaitOfAnotherTakesItsPlace)
{
    CallAfter(100, [&] { RunAfterStop([&] { order += "first"; }); });
    CallAfter(800, [&] { RunAfterStop([&] { order += "second"; }); });
    RunProcedure([&] { LiveLoop("loop"); });
    EXPECT_EQ(order, "loop loop-ended second");
    EXPECT_EQ(clock.Elapsed(), 1100) << "the stopped loop's 1000 ms, once";
    EXPECT_FALSE(Abort);
}

TEST_F(Procedures, ALeftOverStopDoesNotReachTheNextProcedure)
{
    RunProcedure([] {
        ArmStop();
        StopRequested = Abort = true;  // and nobody clears them
    });
    RunProcedure([&] {
        EXPECT_FALSE(Abort);
        EXPECT_FALSE(StopArmed);
        EXPECT_FALSE(StopRequested);
        order += "ran";
    });
    EXPECT_EQ(order, "ran");
}

TEST_F(Procedures, WhatNavigationStartsMayNavigateItself)
{
    RunAfterStop([&] {
        order += "one ";
        RunAfterStop([&] { order += "two "; });
        order += "end-of-one ";
    });
    EXPECT_EQ(order, "one end-of-one two ");
}

TEST_F(Procedures, AFaultEndsTheProcedureAndLeavesTheStationFree)
{
    EXPECT_THROW(RunProcedure([] { throw RuntimeFault(5, "Input/output error"); }), RuntimeFault);
    EXPECT_FALSE(ProcedureRunning());
    EXPECT_TRUE(RunProcedure([] {}));
}

TEST_F(Procedures, AFaultIsToldAndDoesNotHoldUpTheNavigationThatWaits)
{
    FaultOutlet = [this](const std::string &words) { order += words + " "; };
    EXPECT_TRUE(RunProcedure([this] {
        RunAfterStop([this] {
            EXPECT_FALSE(Abort);
            order += "navigated";
        });
        throw RuntimeFault(5, "broken");
    }));
    FaultOutlet = [](const std::string &) {};
    EXPECT_EQ(order, "broken navigated");
}

TEST_F(Procedures, AFaultTakesThePagesOwnWishWithIt)
{
    EXPECT_THROW(RunProcedure([this] {
                     RunAfterProcedure([this] { order += "next"; });
                     Abort = true;
                     throw RuntimeFault(5, "broken");
                 }),
                 RuntimeFault);
    EXPECT_FALSE(Abort);
    RunProcedure([] {});
    EXPECT_EQ(order, "");
}

TEST_F(Procedures, AnExitIsToldTheWordsOfTheFaultThatEndedTheWork)
{
    const auto leave = [this](Ended) { order += FaultWords() + "."; };
    EXPECT_THROW(RunPageProcedure([] { throw RuntimeFault(5, "broken"); }, leave), RuntimeFault);
    RunPageProcedure([] {}, leave);
    EXPECT_EQ(order, "broken..");
}

TEST_F(Procedures, TheEndOfTheProgramUnwindsAProcedureAndDropsWhatWaits)
{
    CallAfter(100, [&] { RunAfterStop([&] { order += "navigated"; }); });
    CallAfter(200, [] { RequestShutdown(); });
    EXPECT_THROW(RunProcedure([&] { DelayMs(1000); }), Shutdown);
    RequestShutdown(false);
    EXPECT_FALSE(ProcedureRunning());
    EXPECT_TRUE(RunProcedure([] {}));
    EXPECT_EQ(order, "");
}

TEST_F(Procedures, WaitForTheOperatorUntilTheFlag)
{
    bool clicked = false;
    CallAfter(3'600'000, [&clicked] { clicked = true; });
    WaitForOperator([&clicked] { return clicked; });
    EXPECT_EQ(clock.Elapsed(), 3'600'000);
}

TEST_F(Procedures, WaitForTheOperatorNoLongerThanUntilAStop)
{
    CallAfter(5000, [] { Abort = true; });
    WaitForOperator([] { return false; });
    EXPECT_EQ(clock.Elapsed(), 5000);
}

TEST_F(Procedures, WaitForNobodyWhenTheFlagStands)
{
    WaitForOperator([] { return true; });
    EXPECT_EQ(clock.Elapsed(), 0);
}

// ---- a page's procedure ----

TEST_F(Procedures, APageIsLeftAfterItsWorkHoweverThatEnds)
{
    RunPageProcedure([this] { order += "work "; },
                     [this](Ended ended) { order += ended == Ended::Done ? "done" : "?"; });
    EXPECT_EQ(order, "work done");
    order.clear();
    RunPageProcedure([] { StopWork(); }, [this](Ended ended) { order += ended == Ended::Stopped ? "stopped" : "?"; });
    EXPECT_EQ(order, "stopped");
    order.clear();
    const auto fails = [] { throw RuntimeFault(5, "Input/output error"); };
    const auto leaves = [this](Ended ended) { order += ended == Ended::Fault ? "fault" : "?"; };
    EXPECT_THROW(RunPageProcedure(fails, leaves), RuntimeFault);
    EXPECT_EQ(order, "fault");
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(Procedures, NoStopReachesWorkNorExitNorWhatFollows)
{
    Abort = StopRequested = true;
    RunPageProcedure(
        [] {
            EXPECT_FALSE(Abort);
            EXPECT_FALSE(StopRequested);
            ArmStop();
            StopRequested = Abort = true;
        },
        [](Ended) {
            EXPECT_FALSE(Abort) << "an exit reaches the instruments";
            EXPECT_FALSE(StopArmed);
            EXPECT_FALSE(StopRequested);
            Abort = StopRequested = true;
        });
    EXPECT_FALSE(Abort);
    EXPECT_FALSE(StopRequested);
}

TEST_F(Procedures, APageIsLeftWhenTheStoppedLoopHasHadItsSecond)
{
    CallAfter(500, [] { RequestStop(); });
    std::int64_t left = 0;
    RunPageProcedure([this] { LiveLoop("loop"); }, [&](Ended) { left = clock.Elapsed(); });
    EXPECT_EQ(left, 1500);
}

TEST_F(Procedures, AnotherStopInAnExitCountsOnlyAfterItsFirstSecond)
{
    const std::function<void()> asks[] = {StopWork, RequestStop, [] { PressEscape(); }, [] { RunAfterStop([] {}); }};
    for (const auto &ask : asks) {
        const std::function<void()> stops[] = {StopWork, [] { PressEscape(); }, [] { RunAfterStop([] {}); }};
        for (const auto &stop : stops) {
            clock.Restart();
            CallAfter(300, stop);
            CallAfter(1200, stop);
            RunPageProcedure(ask, [](Ended) {
                while (!Abort)
                    DelayMs(100);
            });
            EXPECT_EQ(clock.Elapsed(), 1200);
            EXPECT_FALSE(Abort);
        }
    }
}

TEST_F(Procedures, AStopInTheExitOfWhatEndedByItselfCountsAtOnceAndEndsItsWaitsOnly)
{
    CallAfter(300, StopWork);
    RunPageProcedure([] {},
                     [](Ended ended) {
                         EXPECT_EQ(ended, Ended::Done);
                         while (!Abort)
                             DelayMs(100);
                     });
    EXPECT_EQ(clock.Elapsed(), 300);
    EXPECT_FALSE(Abort);
}

TEST_F(Procedures, TheSecondOfAnExitIsOverWithIt)
{
    RunPageProcedure(StopWork, [](Ended) {});
    RunProcedure([] {
        StopWork();
        EXPECT_TRUE(Abort);
    });
    EXPECT_THROW(RunPageProcedure(StopWork, [](Ended) { throw RuntimeFault(5, "broken"); }), RuntimeFault);
    RunPageProcedure(
        [] {
            StopWork();
            EXPECT_TRUE(Abort);
        },
        [](Ended) {});
}

TEST_F(Procedures, ASecondPageIsRefusedWhileOneRuns)
{
    RunPageProcedure(
        [this] { EXPECT_FALSE(RunPageProcedure([this] { order += "second"; }, [this](Ended) { order += "left"; })); },
        [](Ended) {});
    EXPECT_EQ(order, "");
}

TEST_F(Procedures, TheEndOfTheProgramPassesByTheExit)
{
    const auto quits = [this] {
        order += "work ";
        RequestShutdown();
        PumpEvents(kForever);
    };
    const auto notes = [this] { order += "noted "; };
    EXPECT_THROW(RunPageProcedure(
                     quits, [this](Ended) { order += "left"; }, notes),
                 Shutdown);
    RequestShutdown(false);
    EXPECT_EQ(order, "work noted ");
    EXPECT_THROW(RunPageProcedure([] {}, [quits](Ended) { quits(); }, notes), Shutdown);
    RequestShutdown(false);
    EXPECT_EQ(order, "work noted work noted ");
    RunPageProcedure([] {}, [](Ended) {}, notes);
    EXPECT_FALSE(ProcedureRunning());
}

TEST_F(Procedures, APagesWishFollowsItsExit)
{
    RunPageProcedure([this] { RunAfterProcedure([this] { order += "next"; }); }, [this](Ended) { order += "left "; });
    EXPECT_EQ(order, "left next");
    RunAfterProcedure([this] { order += " at-once"; });
    EXPECT_EQ(order, "left next at-once");
}

TEST_F(Procedures, NavigationThatTheOperatorAskedForGoesBeforeAPagesWish)
{
    RunPageProcedure([this] { RunAfterStop([this] { order += "navigated"; }); },
                     [this](Ended) { RunAfterProcedure([this] { order += "next"; }); });
    EXPECT_EQ(order, "navigated");
}

// ---- Esc ----

TEST_F(Procedures, EscStopsWorkEndsAFollowedReadingAndLeavesAWaitingPageAlone)
{
    EXPECT_FALSE(PressEscape()) << "nothing runs";
    EXPECT_FALSE(Abort);
    RunPageProcedure(
        [this] {
            CallAfter(100, [] { EXPECT_TRUE(PressEscape()); });
            CallAfter(200, [] { EXPECT_TRUE(PressEscape()); });
            LiveLoop("loop");
            WaitOutStop();
            EXPECT_FALSE(Abort) << "only the reading ends, also when the key is pressed twice";
            CallAfter(100, [] { EXPECT_TRUE(PressEscape()); });
            bool clicked = false;
            CallAfter(5000, [&clicked] { clicked = true; });
            WaitForOperator([&clicked] { return clicked; });
            EXPECT_FALSE(Abort) << "the page waits for its buttons";
            PressEscape();
            EXPECT_TRUE(Abort) << "work is stopped";
        },
        [](Ended ended) { EXPECT_EQ(ended, Ended::Stopped); });
}

// ---- navigation ----

TEST_F(Procedures, NavigationIsOffWhileAProcedureRunsAndNobodySwitchesItBack)
{
    bool on = false;
    frameHooks.enableSteps = [&on](bool wanted) { on = wanted; };
    Established = true;
    UpdateNavigation();
    EXPECT_TRUE(on);
    RunPageProcedure([&on] { EXPECT_FALSE(on); }, [&on](Ended) { EXPECT_FALSE(on); });
    EXPECT_TRUE(on);
    EXPECT_THROW(RunPageProcedure([] { throw RuntimeFault(5, "broken"); }, [](Ended) {}), RuntimeFault);
    EXPECT_TRUE(on);
}

TEST_F(Procedures, NavigationIsWhatThePageInFrontSaysAndFreeOnTheNextPage)
{
    bool on = false;
    frameHooks.enableSteps = [&on](bool wanted) { on = wanted; };
    Established = true;
    RunPageProcedure([] {}, [](Ended) { SetNavigation(Navigation::Held); });
    EXPECT_FALSE(on) << "held between two clicks";
    RunPageProcedure(
        [&on] {
            SetNavigation(Navigation::Open);
            EXPECT_TRUE(on) << "open while it runs";
        },
        [](Ended) {});
    SetNavigation(Navigation::Held);
    ShowPage(3);
    EXPECT_TRUE(on);
}

TEST_F(Procedures, TheWindowHearsWhetherOneStands)
{
    std::string heard;
    frameHooks.procedureStands = [&heard](bool stands) { heard += stands ? "stands " : "ended "; };
    RunPageProcedure([&heard] { EXPECT_EQ(heard, "stands "); }, [&heard](Ended) { EXPECT_EQ(heard, "stands "); });
    EXPECT_EQ(heard, "stands ended ");
    EXPECT_THROW(RunProcedure([] { throw RuntimeFault(5, "broken"); }), RuntimeFault);
    EXPECT_EQ(heard, "stands ended stands ended ");
}

TEST_F(Procedures, NavigationIsOffWithoutASession)
{
    bool on = true;
    frameHooks.enableSteps = [&on](bool wanted) { on = wanted; };
    RunPageProcedure([] {}, [](Ended) {});
    EXPECT_FALSE(on);
}

TEST_F(Procedures, DelayMsPumpsOnceWithRealTimeDelaysOff)
{
    RealTimeDelays = false;
    DelayMs(1000);
    EXPECT_EQ(clock.Elapsed(), 0);
    DelayAlways(1000);
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(Procedures, DelaysDoNotEndOnAbort)
{
    Abort = true;
    DelayMs(500);
    EXPECT_EQ(clock.Elapsed(), 500);
}

TEST_F(Procedures, EscStopsAWaitDuringWhichAnInputStands)
{
    RunProcedure([this] {
        CallAfter(100, [] { EXPECT_TRUE(PressEscape()); });
        WaitForOperator([] { return false; }, Escape::Stops);
        EXPECT_TRUE(Abort);
        EXPECT_EQ(clock.Elapsed(), 100);
    });
    EXPECT_FALSE(Abort);
}
