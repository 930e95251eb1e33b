// A DC meter from Establish to its last range, looked at from all sides: the waits, what was learned and kept, and what
// stood on the terminals when.

#include "model/nominals.h"
#include "model/range_tables.h"
#include "platform/clock.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/state.h"
#include "support/bench_station.h"
#include "support/wait_audit.h"
#include "testbench/signal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kRef = 3;     // 200 mV
constexpr int k5Amps = 11;  // the last one in sequence
constexpr int kTouchUp = 14;
constexpr int kRefWord = 25;
const std::vector<int> kRanges = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 14};

// What the page shows of a range of two rounds when Accept is clicked.
struct Grid {
    std::string firstReadings, firstWord, lastWord, lastReadings;
};

struct RangeWindow {
    int position;
    std::int64_t ready;
    std::int64_t accept;
};

double MeanSize(const std::string &readings)
{
    const auto lines = Split(readings, '\n');
    double sum = 0;
    for (const auto &line : lines)
        sum += std::fabs(Val(line));
    return sum / static_cast<double>(lines.size());
}

class DcRun : public testing::Test
{
protected:
    DcRun() : station(Wiring{}) {}

    void Runs() { ASSERT_TRUE(station.person.Runs()) << station.person.Trouble(); }

    void Marks(std::vector<std::int64_t> &marks)
    {
        station.person.Does([&marks] { marks.push_back(NowMicros()); });
    }

    // Everything, at the operator's pace: he looks at each result a little longer than at the one before.
    void CalibratesAllRanges()
    {
        begins.push_back(NowMicros());
        ASSERT_TRUE(station.Establishes());
        for (const int position : kRanges) {
            SCOPED_TRACE(position);
            if (position == kRanges.front() || position == kTouchUp) {  // Accept opens the others
                Marks(begins);
                station.person.Clicks(StepButton(position));
            }
            ASSERT_NO_FATAL_FAILURE(CalibratesOpenRange(position));
        }
    }

    void CalibratesOpenRange(int position)
    {
        station.person.WaitsFor("cmdReady");
        Marks(begins);
        station.person.Clicks("cmdReady").WaitsFor("cmdRepeat").Waits(100 * position);
        Marks(stops);
        station.person.Clicks("cmdRepeat").WaitsUntil("the second round has ended", [] {
            return ScriptedOperator::Rows("msgCalibGrid") == 2 && ScriptedOperator::IsEnabled("cmdRepeat");
        });
        if (position != kRef)
            station.person.Waits(150 * position);
        else
            station.person.Does([this] { ref = SeenGrid(); });
        Marks(stops);
        station.person.Clicks("cmdAccept");
        LeavesRange(station.person);
        Runs();
        windows.push_back({position, begins.back(), stops.back()});
    }

    static Grid SeenGrid()
    {
        const auto cell = [](int row, int column) { return ScriptedOperator::Cell("msgCalibGrid", row, column); };
        return {cell(0, 2), cell(0, 3), cell(1, 4), cell(1, 5)};
    }

    const RangeWindow *WindowOf(const bench::OutputEvent &event) const
    {
        const auto window = std::find_if(windows.begin(), windows.end(), [&event](const RangeWindow &each) {
            return each.ready <= event.time && event.time <= each.accept;
        });
        return window == windows.end() ? nullptr : &*window;
    }

    BenchStation station;
    std::vector<std::int64_t> begins, stops;  // the operator's clicks
    std::vector<RangeWindow> windows;
    Grid ref;
};

}  // namespace

TEST_F(DcRun, WaitsForEachCommandWhatItNeedsAndNoLonger)
{
    CalibratesAllRanges();
    const WaitAudit audit = AuditWaits(station.bench.Transcript(), begins, stops);
    EXPECT_THAT(audit.trouble, testing::IsEmpty());
    EXPECT_GT(audit.commands, 500);
    EXPECT_GE(audit.lateMicros, 0);
    EXPECT_LE(audit.lateMicros, audit.commands * 1000);
    EXPECT_LE(std::abs(NowMicros() - audit.endMicros), 1000) << "nothing is waited for behind the last command";
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

TEST_F(DcRun, LearnsATenthOfEachWordAndSlopeAndKeepsItAtQuit)
{
    CalibratesAllRanges();
    for (const int position : kRanges) {
        const int word = NvmWordAtPosition(position);
        EXPECT_NE(NominalWordOf(kDc, word), DefaultNominalWordOf(kDc, word)) << word;
        EXPECT_NE(NominalSlopeOf(kDc, word), DefaultSlopeOf(kDc, word)) << word;
    }
    const auto hex = [](const std::string &text) {
        return static_cast<double>(std::strtol(text.c_str(), nullptr, 16));
    };
    const double oldSlope = static_cast<double>(DefaultSlopeOf(kDc, kRefWord));
    const double shown =
        (hex(ref.lastWord) - hex(ref.firstWord)) / (MeanSize(ref.lastReadings) - MeanSize(ref.firstReadings));
    const double slope = (9 * oldSlope + shown) / 10;
    EXPECT_NEAR(static_cast<double>(NominalSlopeOf(kDc, kRefWord)), slope, 2e-5);
    const double word = (9 * hex(DefaultNominalWordOf(kDc, kRefWord)) + hex(ref.lastWord)) / 10;
    EXPECT_EQ(hex(NominalWordOf(kDc, kRefWord)), std::nearbyint(word));

    station.person.Clicks("cmdQuit");
    station.person.Runs();
    const std::string ini = ReadFile("Ombrix.ini").value_or("");
    EXPECT_THAT(ini, testing::HasSubstr("\nDC.19=" + Format(slope, 4)));
    EXPECT_THAT(ini, testing::HasSubstr("\nDC.19=" + HexText(static_cast<int>(std::nearbyint(word)), 4)));
}

TEST_F(DcRun, GivesOutEachInputOnlyBetweenItsReadyAndItsAcceptAndEndsInStandby)
{
    CalibratesAllRanges();
    std::vector<int> seen;
    for (const bench::OutputEvent &event : station.bench.OutputHistory()) {
        if (!event.operate)
            continue;
        const RangeWindow *window = WindowOf(event);
        ASSERT_NE(window, nullptr) << event.text << " at " << event.time;
        const auto value = bench::ParseValue(CalValueAtPosition(window->position));
        ASSERT_TRUE(value);
        EXPECT_EQ(std::fabs(event.value), value->number);
        EXPECT_EQ(event.unit, value->unit);
        if (seen.empty() || seen.back() != window->position)
            seen.push_back(window->position);
    }
    EXPECT_EQ(seen, kRanges);
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    EXPECT_FALSE(station.bench.OutputHistory().back().operate);
}

TEST_F(DcRun, TakesEachInputAwayWithinThreeSecondsOfItsAccept)
{
    CalibratesAllRanges();
    for (const RangeWindow &window : windows) {
        bool standby = false;
        for (const bench::OutputEvent &event : station.bench.OutputHistory())
            standby =
                standby || (!event.operate && event.time > window.accept && event.time < window.accept + 3'000'000);
        EXPECT_TRUE(standby) << window.position;
    }
}
