#include "session/procedure.h"

#include "platform/clock.h"
#include "platform/fault.h"
#include "session/delays.h"
#include "session/state.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

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

TEST_F(Procedures, RequestStopWaits1000MillisecondsFromTheClick)
{
    ArmStop();
    RequestStop();
    EXPECT_TRUE(StopRequested);
    EXPECT_EQ(clock.Elapsed(), 1000);
    RequestStop();
    EXPECT_EQ(clock.Elapsed(), 1000) << "a second click does not wait again";
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

TEST_F(Procedures, LeaveAfterTheWork)
{
    WithExit([this] { order += "work "; }, [this] { order += Abort ? "leave stopped" : "leave"; });
    EXPECT_EQ(order, "work leave");
}

TEST_F(Procedures, LeaveAsStoppedAfterAFaultAndTellIt)
{
    const auto fails = [this] {
        order += "work ";
        throw RuntimeFault(5, "Input/output error");
    };
    EXPECT_THROW(WithExit(fails, [this] { order += Abort ? "leave stopped" : "leave"; }), RuntimeFault);
    EXPECT_EQ(order, "work leave stopped");
}

TEST_F(Procedures, LeaveNothingAtTheEndOfTheProgram)
{
    const auto quits = [this] {
        order += "work ";
        RequestShutdown();
        PumpEvents(kForever);
    };
    EXPECT_THROW(WithExit(quits, [this] { order += "leave"; }), Shutdown);
    RequestShutdown(false);
    EXPECT_EQ(order, "work ");
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
