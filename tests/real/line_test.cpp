// Instruments that are switched off in the middle, on real pseudo-terminals and in real time.

#include "platform/clock.h"
#include "session/state.h"
#include "shell/station.h"
#include "support/bench_program.h"
#include "support/scripted_operator.h"
#include "support/station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>

#include <string>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int k200Volts = 6;  // position on the DC board
constexpr unsigned kSeed = 3;

}  // namespace

TEST(RealLine, ThatGoesUnder200VoltsIsToldWithinASecondAndStopAndQuitEndSoon)
{
    const WorkFolder folder;
    BenchProgram bench(OMBRIX_TESTBENCH, QDir::currentPath(), "dc", kSeed);
    ASSERT_TRUE(bench.Stands());
    OpenWholeStation();
    std::int64_t gone = 0;
    std::int64_t told = 0;
    std::int64_t left = 0;
    std::int64_t quit = 0;
    std::string words;
    testing::internal::CaptureStderr();
    {
        ScriptedOperator person;
        person.Within(60).Clicks("cmdEstablish").WaitsUntil("it is established", [] {
            return Established && NavigationIsFree();
        });
        person.Clicks(StepButton(k200Volts))
            .WaitsFor("cmdReady")
            .Clicks("cmdReady")
            .WaitsForText("lblOutput", "200.0 V");
        person.Does([&] {
            bench.Dies();
            gone = NowMicros();
        });
        person.WaitsUntil("the alert stands", [] { return ScriptedOperator::Sees("lblAlert"); }).Does([&] {
            told = NowMicros();
            words = ScriptedOperator::Text("lblAlert");
            EXPECT_EQ(ScriptedOperator::Text("lblFlag"), "DANGER");
        });
        person.Does([&] {
            if (ScriptedOperator::IsEnabled("cmdStopReset"))
                person.Clicks("cmdStopReset");
            person.WaitsUntil("navigation is free", NavigationIsFree).Does([&] { left = NowMicros(); });
            person.Clicks("cmdQuit").AnswersBox("OK").WaitsUntil("it quits", [] { return Quitting; });
            person.Does([&] { quit = NowMicros(); });
        });
        person.Runs();
        EXPECT_EQ(person.Trouble(), "");
    }
    CloseStation();
    EXPECT_THAT(words, testing::HasSubstr("not confirmed: 200.0 V may be on the terminals."));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("200.0 V may be on the terminals."));
    EXPECT_LE(told - gone, 1'000'000);
    EXPECT_LE(left - told, 5'000'000);
    EXPECT_LE(quit - left, 5'000'000);
}
