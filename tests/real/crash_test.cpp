// The station crashes while it speaks to a meter: what it leaves behind, and what the next start says of it. On real
// pseudo-terminals, in real time.

#include "links/wire_meaning.h"
#include "platform/safe_file.h"
#include "shell/station.h"
#include "shell/trace_start.h"
#include "support/bench_program.h"
#include "support/scripted_operator.h"
#include "support/station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <functional>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;
using testing::HasSubstr;

namespace {

constexpr int kPatienceMs = 60'000;  // from the start to a question, on a machine with much else to do
constexpr unsigned kSeed = 5;

std::vector<WireRow> RowsIn(const char *file)
{
    return WireRows(ReadTraceBytes(ReadFile(file).value_or("")));
}

bool AsksForTheType(const WireRow &row)
{
    return row.way == ByteWay::Sent && row.meaning == "read word 109";
}

bool Until(const std::function<bool()> &done)
{
    QElapsedTimer timer;
    for (timer.start(); !done() && timer.elapsed() < kPatienceMs;)
        QThread::msleep(10);
    return done();
}

}  // namespace

TEST(Crash, LeavesItsBacktraceAndTheLastCommandsAndTheNextStartSaysSo)
{
    const WorkFolder folder;
    const BenchProgram bench(OMBRIX_TESTBENCH, QDir::currentPath(), "dc", kSeed);
    ASSERT_TRUE(bench.Stands());
    QProcess station;
    station.start(OMBRIX_TOUR, {"--until-killed", OMBRIX_GUARD});
    ASSERT_TRUE(Until([] {
        const auto rows = RowsIn("Ombrix.trace");  // as the station writes it
        return std::any_of(rows.begin(), rows.end(), AsksForTheType);
    })) << station.readAll().toStdString();
    ASSERT_EQ(::kill(static_cast<pid_t>(station.processId()), SIGSEGV), 0);
    ASSERT_TRUE(station.waitForFinished(kPatienceMs));
    EXPECT_EQ(station.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(station.exitCode(), SIGSEGV) << "it dies of what it met";

    const std::string note = ReadFile("Ombrix.crash").value_or("none");
    EXPECT_THAT(note, HasSubstr("Died of SIGSEGV"));
    EXPECT_THAT(note, HasSubstr("\nBacktrace:\n"));
    EXPECT_THAT(note, HasSubstr("ombrix-tour("));
    EXPECT_THAT(note, HasSubstr("  meter       sent      *1X16DZ\\r\n")) << "among the last that was said";

    OpenWholeStation();
    BeginTrace(".");
    EXPECT_EQ(
        ScriptedOperator::Text("lblRemark"),
        "The last run ended without goodbye: F12 shows its trace (Ombrix.trace.old), Ombrix.crash.old tells where "
        "it stood");
    const auto rows = RowsIn("Ombrix.trace.old");
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), AsksForTheType));
    CloseStation();
}
