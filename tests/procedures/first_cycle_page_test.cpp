#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "support/journal_events.h"
#include "support/page_test.h"

namespace ombrix::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char *kGreen = "#00ff00";
constexpr const char *kRed = "#ff0000";

std::vector<std::string> Heads(const std::string &grid)
{
    std::vector<std::string> heads;
    for (int row = 0; row < ScriptedOperator::Rows(grid); ++row)
        heads.push_back(ScriptedOperator::Cell(grid, row, 0));
    return heads;
}

std::vector<std::string> Row(const std::string &grid, int row)
{
    std::vector<std::string> cells;
    for (int column = 1; column < ScriptedOperator::Columns(grid); ++column)
        cells.push_back(ScriptedOperator::Cell(grid, row, column));
    return cells;
}

bool IsBlank(const std::string &grid)
{
    for (int row = 0; row < ScriptedOperator::Rows(grid); ++row)
        for (const std::string &cell : Row(grid, row))
            if (!cell.empty())
                return false;
    return true;
}

bool HasEnded()
{
    return ScriptedOperator::IsEnabled("cmdFCReady");
}

// ---- in simulation ----

using SimulatedFirstCycle = SimulatedPage;

TEST_F(SimulatedFirstCycle, WaitsForReadyWithItsPointsAndBlankCells)
{
    Establishes();
    person->Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(Sees("fraCalib(3)"));
    EXPECT_EQ(Text("lblAA(2)"), "FIRST CYCLE CORRECTION");
    EXPECT_EQ(Text("cmdFCReady"), "Ready");
    EXPECT_TRUE(HasFocus("cmdFCReady"));
    EXPECT_FALSE(IsEnabled("cmdFCCancel"));
    EXPECT_TRUE(IsEnabled("cmdDone(1)"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
    EXPECT_EQ(Text("lblInst(2)"), "Set jumpers and apply input\nas shown, then click \"Ready\"");
    EXPECT_EQ(Fill("shpInst(2)"), kCyan);
    EXPECT_THAT(Heads("msgFCAvg"), ElementsAre("+200 mV", "+100 mV", "0 V", "-100 mV", "-200 mV"));
    EXPECT_THAT(Heads("msgFC"), ElementsAre("TGND", "GNDT", "TQD", "QDT", "TREF", "REFT"));
    EXPECT_TRUE(IsBlank("msgFCAvg"));
    EXPECT_TRUE(IsBlank("msgFC"));
    EXPECT_TRUE(Sees("fraJumperBlock(0)"));
}

TEST_F(SimulatedFirstCycle, FindsMTwoAndBFiveFromCountsThatAreAllTheSame)
{
    Establishes();
    person->Clicks(ButtonOf(Step::FirstCycle))
        .WaitsFor("cmdFCReady")
        .Clicks("cmdFCReady")
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    for (int point = 0; point < 5; ++point)
        EXPECT_THAT(Row("msgFCAvg", point),
                    ElementsAre("0", "0", "0", "0", "0", "0", "12336", "12336", "12336", "12336"));
    EXPECT_EQ(Text("lblM"), "M = 2");
    EXPECT_EQ(Text("lblB"), "B = 5");
    EXPECT_EQ(Text("lblInst(2)"), "M and B entered into Nonvolatile Memory");
    EXPECT_EQ(Fill("shpInst(2)"), kGreen);
    EXPECT_EQ(SimNvm[51], 0x0205);
    EXPECT_EQ(SimNvm[18], 0x21D1);
    EXPECT_EQ(SimNvm[16], 0x0060);
    EXPECT_EQ(SimNvm[3], 0x0004);
    EXPECT_EQ(Text("cmdFCReady"), "Repeat");
    EXPECT_TRUE(HasFocus("cmdDone(1)"));
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(SimulatedFirstCycle, RepeatBlanksTheGridsBeforeItBegins)
{
    Establishes();
    bool blank = false;
    person->Clicks(ButtonOf(Step::FirstCycle))
        .WaitsFor("cmdFCReady")
        .Clicks("cmdFCReady")
        .WaitsUntil("it has ended", HasEnded);
    person->Clicks("cmdFCReady")
        .WaitsUntil("it runs", [] { return !HasEnded(); })
        .Does([&] { blank = Text("lblM") == "M" && IsBlank("msgFC"); })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(blank);
    EXPECT_EQ(Text("lblM"), "M = 2");
}

TEST_F(SimulatedFirstCycle, DoneOpensTheNextStep)
{
    Establishes();
    person->Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdDone(1)").Clicks("cmdDone(1)").WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepId, Step::Gnd);
}

TEST_F(SimulatedFirstCycle, OnTheAcTabTakesThreePointsAndHasNothingToGoOnTo)
{
    Establishes(0x02, 0x80);
    person->Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Does([] {
        EXPECT_THAT(Heads("msgFCAvg"), ElementsAre("200 mV", "100 mV", "1 mV"));
        EXPECT_FALSE(Sees("cmdDone(1)"));
    });
    person->Clicks("cmdFCReady").WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SCType, kAc);
    EXPECT_FALSE(Sees("cmdDone(1)"));
    EXPECT_TRUE(HasFocus("cmdFCReady"));
    EXPECT_EQ(Text("cmdFCReady"), "Repeat");
    EXPECT_EQ(Text("lblOutput"), "1.0 mV");
    person->ClicksTab(0).WaitsFor(StepButton(1)).Clicks(StepButton(1)).WaitsFor("cmdDone(1)");
    EXPECT_TRUE(person->Runs()) << "on another tab it has";
}

// ---- on the bench ----

class WiredFirstCycle : public WiredPage
{
protected:
    void SetUp() override { Begins(kDc); }

    void Begins(int board)
    {
        Stands({.board = board});
        Establishes();
    }

    ScriptedOperator &Opens()
    {
        return person->Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Does([this] { Forget(); });
    }
    ScriptedOperator &Collects() { return Opens().Clicks("cmdFCReady").WaitsUntil("it has ended", HasEnded); }

    // Whatever went wrong: the meter runs as before, nothing stands, and the operator can try again.
    void ExpectRestored()
    {
        EXPECT_FALSE(Operates());
        EXPECT_EQ(WordOf(18), 0x21D1);
        EXPECT_EQ(WordOf(3), 4);
        EXPECT_TRUE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(IsEnabled("cmdFCCancel"));
    }
    void ExpectFailed(const std::string &words)
    {
        ExpectRestored();
        EXPECT_EQ(WordOf(51), 0x0000);
        EXPECT_EQ(Text("lblInst(2)"), words);
        EXPECT_EQ(Fill("shpInst(2)"), kRed);
        EXPECT_EQ(Text("cmdFCReady"), "Retry");
        EXPECT_TRUE(IsBlank("msgFCAvg"));
        EXPECT_TRUE(IsBlank("msgFC"));
        EXPECT_EQ(Text("lblM"), "M");
    }
};

TEST_F(WiredFirstCycle, PutsTheMeterOnItsStreamAndBackAgain)
{
    const std::uint16_t filter = WordOf(17);
    Collects();
    ASSERT_TRUE(person->Runs());
    const std::string setup = "0150" + HexText(filter, 4) + "0060";
    const std::string found = HexText(WordOf(51), 4);
    EXPECT_THAT(ToMeter(), ElementsAre("*1X414", "*1W305000000100001Z", "*1W1330000Z", "*1W312" + setup, "*1V6", "*1C0",
                                       "*1A1", "*1W11221D1Z", "*1W305000000100004", "*1W133" + found, "*1X133"));
    EXPECT_EQ(found, bench->TruthOf("First Cycle").idealHex);
    EXPECT_THAT(ToCalibrator(), testing::IsSupersetOf({"OUT +200 mV ; OPER ; *WAI", "OUT +100 mV ; OPER ; *WAI",
                                                       "OUT 0 V ; OPER ; *WAI", "OUT -100 mV ; OPER ; *WAI",
                                                       "OUT -200 mV ; OPER ; *WAI"}));
    ExpectRestored();
    EXPECT_THAT(Row("msgFC", 0), Not(Contains("")));
}

TEST_F(WiredFirstCycle, CountsAtAPointOnlyWhatWasMeasuredThere)
{
    Collects();
    ASSERT_TRUE(person->Runs());
    std::vector<std::string> signal;
    for (int point = 0; point < 5; ++point)
        signal.push_back(Row("msgFCAvg", point).back());
    EXPECT_THAT(signal, ElementsAre("17440", "18720", "20000", "21280", "22560")) << "1280 for 100 mV";
}

TEST_F(WiredFirstCycle, OnAThermocoupleMeterKeepsTheWordsBetween)
{
    Begins(kTc);
    const std::string between = HexText(WordOf(20), 4) + HexText(WordOf(19), 4);
    const std::string filter = HexText(WordOf(17), 4);
    Collects();
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), Contains("*1W6150001" + between + "0150" + filter + "0060"));
    EXPECT_EQ(HexText(WordOf(20), 4) + HexText(WordOf(19), 4), between);
    EXPECT_EQ(WordOf(51), HexValue(bench->TruthOf("First Cycle").idealHex));
}

TEST_F(WiredFirstCycle, TellsHowFarItIs)
{
    std::vector<std::string> told;
    Opens().Clicks("cmdFCReady").WaitsUntil("point 2 of 5, frame 7", [] {
        return Text("lblFCProgress") == "Point 2 of 5: +100 mV, 7 of 15 frames";
    });
    person->Does([] {
        EXPECT_EQ(Text("lblInst(2)"), "Click \"Cancel\" to stop collecting data");
        EXPECT_EQ(Fill("shpInst(2)"), kCyan);
        EXPECT_TRUE(HasFocus("cmdFCCancel"));
        EXPECT_FALSE(IsEnabled("cmdSetup"));
        EXPECT_FALSE(IsEnabled("cmdDone(1)"));
        EXPECT_EQ(Row("msgFCAvg", 0).size(), 10u);
        EXPECT_THAT(Row("msgFCAvg", 0), Not(Contains("")));
        EXPECT_THAT(Row("msgFCAvg", 1), Contains(""));
    });
    person->WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblFCProgress"), "");
}

TEST_F(WiredFirstCycle, CancelEndsItWithinASecondAndPutsTheMeterBack)
{
    std::int64_t clicked = 0;
    std::int64_t ended = 0;
    Opens()
        .Clicks("cmdFCReady")
        .WaitsUntil("point 3", [] { return Text("lblFCProgress").starts_with("Point 3"); })
        .Does([&] {
            bench->SpoilStream("stops");
            clicked = station->clock.Elapsed();
        })
        .Clicks("cmdFCCancel")
        .WaitsUntil("the stream is ended", [this] { return !TimesOf("*1C0").empty(); })
        .Does([&] { ended = station->clock.Elapsed(); })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_LE(ended - clicked, 1100);
    ExpectFailed("First Cycle Correction Aborted");
    EXPECT_TRUE(HasFocus("cmdDone(1)"));
}

TEST_F(WiredFirstCycle, EscIsCancel)
{
    Opens()
        .Clicks("cmdFCReady")
        .WaitsUntil("point 1", [] { return Text("lblFCProgress").starts_with("Point 1"); })
        .Presses(Qt::Key_Escape)
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    ExpectFailed("First Cycle Correction Aborted");
}

TEST_F(WiredFirstCycle, CancelWhileTheMeterIsPreparedAppliesNoInput)
{
    Opens().Clicks("cmdFCReady").WaitsUntil("word 51 is written", [this] { return !TimesOf("*1W1330000Z").empty(); });
    person->Clicks("cmdFCCancel").WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    ExpectFailed("First Cycle Correction Aborted");
    EXPECT_THAT(ToCalibrator(), Not(Contains(HasSubstr("OPER ; *WAI"))));
}

TEST_F(WiredFirstCycle, CancelBeforeTheMeterToldItsWordBackSaysSoAndLeavesTheFocusOnReady)
{
    Opens().Clicks("cmdFCReady").WaitsUntil("the meter is put back", [this] { return !TimesOf("*1A1").empty(); });
    person->Clicks("cmdFCCancel").WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(2)"),
              "Cancelled before the meter told M and B back:\nit may hold them or not, click \"Retry\"");
    EXPECT_EQ(Fill("shpInst(2)"), kRed);
    EXPECT_EQ(Text("cmdFCReady"), "Retry");
    EXPECT_TRUE(HasFocus("cmdFCReady"));
    ExpectRestored();
}

TEST_F(WiredFirstCycle, EndsWithoutAWriteWhenTheMeterDoesNotTellItsSetup)
{
    bench->SetWord(51, 0x1234);
    bench->AnswerNext(bench::Line::Meter, "01500060\r", "X414");
    Collects();
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(2)"), "Timeout waiting for First Cycle data");
    EXPECT_EQ(WordOf(51), 0x1234);
    EXPECT_THAT(ToMeter(), ElementsAre("*1X414", "*1C0", "*1A1", "*1W11221D1Z", "*1W305000000100004"));
    ExpectRestored();
}

struct StreamRow {
    const char *trouble;
    const char *words;
};

class SpoiltStream : public WiredFirstCycle, public testing::WithParamInterface<StreamRow>
{
};

TEST_P(SpoiltStream, EndsWithItsWordsAndTheMeterPutBackAndCanBeTriedAgain)
{
    Opens().Clicks("cmdFCReady").WaitsUntil("point 2", [] { return Text("lblFCProgress").starts_with("Point 2"); });
    person->Does([this] { ASSERT_TRUE(bench->SpoilStream(GetParam().trouble)); }).WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    ExpectFailed(GetParam().words);
    bench->SpoilStream("");
    person->Clicks("cmdFCReady").WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(bench->RemainingError("First Cycle"), 0);
}

INSTANTIATE_TEST_SUITE_P(Streams, SpoiltStream,
                         testing::Values(StreamRow{"stops", "Timeout waiting for First Cycle data"},
                                         StreamRow{"no-ends", "Timeout waiting for First Cycle data"},
                                         StreamRow{"no-start", "Unable to synchronize First Cycle data"},
                                         StreamRow{"jumps", "First Cycle data error"},
                                         StreamRow{"loses-bytes", "First Cycle data error"}),
                         [](const auto &info) {
                             std::string name = info.param.trouble;
                             std::erase(name, '-');
                             return name;
                         });

class SurvivedStream : public WiredFirstCycle, public testing::WithParamInterface<const char *>
{
};

TEST_P(SurvivedStream, StillGivesTheRightWord)
{
    Opens().Clicks("cmdFCReady").WaitsUntil("point 2", [] { return Text("lblFCProgress").starts_with("Point 2"); });
    person->Does([this] { ASSERT_TRUE(bench->SpoilStream(GetParam())); }).WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Fill("shpInst(2)"), kGreen) << Text("lblInst(2)");
    EXPECT_EQ(bench->RemainingError("First Cycle"), 0);
}

INSTANTIATE_TEST_SUITE_P(Streams, SurvivedStream,
                         testing::Values("noise", "jump", "lost-byte", "mid-record", "end-bytes", "full-speed"),
                         [](const auto &info) {
                             std::string name = info.param;
                             std::erase(name, '-');
                             return name;
                         });

TEST_F(WiredFirstCycle, AByteLostInTheMiddleOfAPointHasThePointGatheredAgain)
{
    bool again = false;
    Opens().Clicks("cmdFCReady").WaitsUntil("frame 7", [] {
        return Text("lblFCProgress").ends_with("7 of 15 frames");
    });
    person->Does([this] { bench->SpoilStream("lost-byte"); })
        .WaitsUntil("attempt 2", [] { return Text("lblFCProgress").ends_with("attempt 2"); })
        .Does([&again] { again = true; })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(again);
    EXPECT_EQ(Fill("shpInst(2)"), kGreen) << Text("lblInst(2)");
    EXPECT_EQ(bench->RemainingError("First Cycle"), 0);
}

TEST_F(WiredFirstCycle, ALostLineEndsItAtOnce)
{
    std::int64_t gone = 0;
    Opens().Clicks("cmdFCReady").WaitsUntil("point 2", [] { return Text("lblFCProgress").starts_with("Point 2"); });
    person
        ->Does([&] {
            bench->SwitchFault("meter-port-gone", true);
            gone = station->clock.Elapsed();
        })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(2)"), "Timeout waiting for First Cycle data");
    EXPECT_LE(station->clock.Elapsed() - gone, 20000);
    EXPECT_FALSE(Operates());
    EXPECT_TRUE(IsEnabled("cmdSetup"));
}

TEST_F(WiredFirstCycle, APointThatTheCalibratorRefusesEndsItInsteadOfBeingTheOneBefore)
{
    Opens()
        .Clicks("cmdFCReady")
        .WaitsUntil("point 2", [] { return Text("lblFCProgress").starts_with("Point 2"); })
        .Does([this] { bench->SwitchFault("refuses-output", true); })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    ExpectFailed("The calibrator has not confirmed 0 V:\nlook at it, then try again");
    ASSERT_EQ(EventsOf("step ended").size(), 1u);
    EXPECT_EQ(TextOf(EventsOf("step ended")[0], "how"), "no input");
}

TEST_F(WiredFirstCycle, AWordWrittenIntoALostLineIsNotSaidToBeEntered)
{
    Opens()
        .Clicks("cmdFCReady")
        .WaitsUntil("the meter is put back", [this] { return !TimesOf("*1W305000000100004").empty(); })
        .Does([this] { bench->SwitchFault("meter-port-gone", true); })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(WordOf(51), 0x0000);
    EXPECT_EQ(Fill("shpInst(2)"), kRed);
    EXPECT_THAT(Text("lblInst(2)"), HasSubstr("M and B may not be in its memory"));
    EXPECT_EQ(Text("cmdFCReady"), "Retry");
    EXPECT_EQ(Text("lblM"), "M");
    EXPECT_EQ(Text("lblStepMark(1)"), "");
    ASSERT_EQ(EventsOf("step ended").size(), 1u);
    EXPECT_EQ(TextOf(EventsOf("step ended")[0], "how"), "line lost");
}

TEST_F(WiredFirstCycle, AWordThatTheMeterDidNotTakeIsNotSaidToBeEntered)
{
    bench->SetWord(51, 0x1234);
    bench->WearOut(51);
    Collects();
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(WordOf(51), 0x1234);
    EXPECT_EQ(Fill("shpInst(2)"), kRed);
    EXPECT_THAT(Text("lblInst(2)"), HasSubstr("did not take M and B"));
    EXPECT_EQ(Text("cmdFCReady"), "Retry");
    EXPECT_EQ(Text("lblStepMark(1)"), "");
    ASSERT_EQ(EventsOf("step ended").size(), 1u);
    EXPECT_EQ(TextOf(EventsOf("step ended")[0], "how"), "not taken");
    EXPECT_EQ(TextOf(EventsOf("step ended")[0], "stays"), "1234");
}

TEST_F(WiredFirstCycle, TellsTheJournalHowItEnded)
{
    Opens().Clicks("cmdFCReady").WaitsUntil("point 1", [] { return Text("lblFCProgress").starts_with("Point 1"); });
    person->Clicks("cmdFCCancel").WaitsUntil("it has ended", HasEnded);
    person->Does([this] { bench->SpoilStream("no-start"); }).Clicks("cmdFCReady").WaitsUntil("it has ended", HasEnded);
    person->Does([this] { bench->SpoilStream(""); })
        .Clicks("cmdFCReady")
        .WaitsUntil("point 1", [] { return Text("lblFCProgress").starts_with("Point 1"); })
        .Does([this] { bench->SwitchFault("calibrator-port-gone", true); })
        .WaitsUntil("it has ended", HasEnded);
    ASSERT_TRUE(person->Runs());
    std::vector<std::string> hows;
    for (const JournalEvent &event : EventsOf("step ended")) {
        hows.push_back(TextOf(event, "how"));
        EXPECT_EQ(TextOf(event, "stays"), "0000");
    }
    EXPECT_THAT(hows, ElementsAre("stopped", "Unable to synchronize First Cycle data", "line lost"));
    EXPECT_EQ(EventsOf("step opened").size(), 1u);
}

TEST_F(WiredFirstCycle, GoesIntoTheJournalWithItsCountsAndItsWord)
{
    bench->SetWord(51, 0x0102);
    Collects();
    ASSERT_TRUE(person->Runs());
    const auto events = EventsOf("first cycle");
    ASSERT_EQ(events.size(), 1u);
    const JournalEvent &event = events[0];
    EXPECT_EQ(TextOf(event, "step"), "First Cycle");
    EXPECT_EQ(TextOf(event, "wordAfter"), HexText(WordOf(51), 4));
    EXPECT_EQ(NumberOf(event, "status"), 2);
    EXPECT_EQ(TextOf(event, "found").size(), 16u);
    const auto averages = std::get<std::vector<std::string>>(FieldOf(event, "averages")->is);
    ASSERT_EQ(averages.size(), 5u);
    std::string shown;
    for (const std::string &cell : Row("msgFCAvg", 4))
        shown += (shown.empty() ? "" : " ") + cell;
    EXPECT_EQ(averages[4], shown);
    EXPECT_THAT(std::get<std::vector<std::string>>(FieldOf(event, "reported")->is),
                ElementsAre("200.0 mV", "100.0 mV", "0.0 V", "-100.0 mV", "-200.0 mV"));
    const auto ends = EventsOf("step ended");
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_EQ(TextOf(ends[0], "how"), "accepted");
    EXPECT_EQ(TextOf(ends[0], "stays"), HexText(WordOf(51), 4));
    EXPECT_EQ(Text("lblStepMark(1)"), "✓") << "its error isn't known";
}

}  // namespace
}  // namespace ombrix::test
