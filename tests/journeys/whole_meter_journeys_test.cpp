// Thermocouple meters, thermometers and counters from the soldering bench to their last step, each page leading to the
// next one. The bench's truth is the judge, at the end, so a step that spoils what one before it did is found.

#include "journeys/blank_meter.h"
#include "journeys/process_meters.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr int kRounds = 3;

class FromBlank : public testing::TestWithParam<BlankMeter>
{
};

void CalibratesTheRange(BenchStation &station)
{
    station.person.Clicks("cmdReady");
    for (int round = 1; round < kRounds; ++round) {
        station.person.WaitsUntil("a round has ended", [round] {
            return ScriptedOperator::Rows("msgCalibGrid") >= round && ScriptedOperator::IsEnabled("cmdRepeat");
        });
        station.person.Clicks("cmdRepeat");
    }
    station.person
        .WaitsUntil("the last round has ended",
                    [] {
                        return ScriptedOperator::Rows("msgCalibGrid") >= kRounds &&
                               ScriptedOperator::IsEnabled("cmdAccept");
                    })
        .Clicks("cmdAccept");
}

void TrimsBothDiodes(BenchStation &station)
{
    for (const std::string type : {"0", "1"}) {
        TrimsTheDiode(station, type);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    }
    station.person.Clicks("cmdQDDone");
}

// What the operator does on the page that stands before him, until the next one has come.
void WorksOn(BenchStation &station, int step)
{
    const int position = CurrentStepButton;
    switch (step) {
    case Step::InitNvm:
        station.person.Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)").Clicks("cmdDone(0)");
        break;
    case Step::FirstCycle:
        station.person.Clicks("cmdFCReady").WaitsFor("cmdDone(1)").Clicks("cmdDone(1)");
        break;
    case Step::Nominalize:
        station.person.WaitsFor("cmdDone(3)").Clicks("cmdDone(3)");
        break;
    case Step::RtdCurrent:
        TrimsTheCurrent(station);
        ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
        break;
    case Step::GainOffset:
        TrimsBothDiodes(station);
        break;
    case Step::Vf4To20mA:
    case Step::Vf0To1mA:
    case Step::Vf0To10V:
        station.person.Clicks("cmdVFRdyRpt").WaitsFor("cmdVFRdyRpt");
        station.person.Clicks(position < StepButtonCount() ? StepButton(position + 1) : ButtonOf(Step::GetConfig));
        break;
    default:
        CalibratesTheRange(station);
    }
    station.person.WaitsUntil("the next step stands there",
                              [position] { return CurrentStepButton != position && NavigationIsFree(); });
    ASSERT_TRUE(station.person.Runs()) << "on " << StepName(step) << ": " << station.person.Trouble();
}

// The last step of such a meter: then it says itself what it is.
void SavesTheType(BenchStation &station, int board)
{
    station.person.Clicks(ButtonOf(Step::MeterType)).WaitsFor("optMeterType(1)");
    station.person.Clicks(board == kRtd ? "optMeterType(0)" : "optMeterType(1)").Does([&station] {
        if (ScriptedOperator::IsEnabled("cmdSaveMeterType"))
            station.person.Clicks("cmdSaveMeterType");
        station.person.WaitsForText("lblInst(4)", "Change meter type if desired and click \"Save\"");
        station.person.WaitsFor("cmdSetup").ClicksTab(kTabTc).WaitsFor("cmdSetup");
    });
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_EQ(MeterTab, kTabTc);
    EXPECT_EQ(SCType, board);
    EXPECT_FALSE(TabMismatch);
}

double PromisedError(const std::string &title)
{
    if (title == "First Cycle")
        return 0;
    return title.starts_with("VF") ? 4 : 2;  // counts, and the display's flicker
}

}  // namespace

TEST_P(FromBlank, EveryStepLeadsToTheNextOneAndNoneSpoilsAnother)
{
    const int board = GetParam().board;
    BenchStation station(WiringOf(board, Route::Direct, 6));
    Erase(station, board);
    ASSERT_NO_FATAL_FAILURE(EstablishesAndNamesTheBoard(station, GetParam()));
    VFLow = VFHigh = "3";
    station.person.Clicks(StepButton(0)).WaitsFor("cmdInitStartRetry");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    while (CurrentStepId != Step::SendFile && CurrentStepId != Step::GetConfig) {
        const int position = CurrentStepButton;
        ASSERT_NO_FATAL_FAILURE(WorksOn(station, CurrentStepId));
        ASSERT_GT(CurrentStepButton, position) << "each leads further";
    }
    if (board != kVf)
        SavesTheType(station, board);
    for (const auto &truth : station.bench.Truths()) {
        EXPECT_LE(std::fabs(truth.error), PromisedError(truth.title)) << TruthText(truth);
        EXPECT_TRUE(truth.companionsAgree) << TruthText(truth);
    }
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfABoard, FromBlank,
                         testing::Values(BlankMeter{kTc, 3}, BlankMeter{kTemp, 6}, BlankMeter{kRtd, 7},
                                         BlankMeter{kVf, -1}),
                         [](const auto &info) { return BoardName(info.param.board); });

TEST(OffsetOnly, BringsADiodeThatIsTrimmedToTheTypedTargetAndLeavesTheGainAlone)
{
    BenchStation station(WiringOf(kTc, Route::Direct, 2));
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(ButtonOf(Step::GainOffset)).WaitsFor("cmdQDReady");
    TrimsTheDiode(station, "0");
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    const std::string gain = WordsOf(station, 29, 1);
    station.person.Clicks(ButtonOf(Step::OffsetOnly)).WaitsFor("cmdQDReady").Types("txtQDTarget(1)", "0.5");
    station.person.Presses(Qt::Key_Return).Clicks("cmdQDReady").WaitsFor("cmdQDOffset");
    ClicksUntil(station, "cmdQDOffset", "lblQDDistance", 0.05, 0,
                [&station] { station.person.Clicks("cmdQDStop(0)").WaitsFor("cmdSetup"); });
    ASSERT_TRUE(station.person.Runs()) << station.person.Trouble();
    EXPECT_EQ(QDTargetText, "0.50");
    EXPECT_EQ(WordsOf(station, 29, 1), gain);
    EXPECT_NEAR(station.bench.RemainingError("Gain/Offset J"), 5, 1) << "half a degree, in tenths";
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
}
