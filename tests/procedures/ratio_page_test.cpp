#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
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

constexpr const char *kRed = "#ff0000";

std::string Cell(const std::string &grid, int row, int column)
{
    return ScriptedOperator::Cell(grid, row, column);
}

int Rows(const std::string &grid)
{
    return ScriptedOperator::Rows(grid);
}

std::function<bool()> HasTried(const std::string &grid, int rows)
{
    return [=] { return Rows(grid) == rows && ScriptedOperator::IsEnabled("cmdOffset"); };
}

// ---- in simulation ----

class SimulatedRatio : public SimulatedPage
{
protected:
    ScriptedOperator &Opens() { return person->Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdOffset"); }
};

TEST_F(SimulatedRatio, BeginsWithItsOffsetAndHoldsTheNavigation)
{
    Establishes();
    SimNvm[50] = 0x0660;
    SimNvm[48] = 0x3400;
    Opens();
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(Sees("fraCalib(5)"));
    EXPECT_EQ(Text("lblCALBGND"), "0660");
    EXPECT_EQ(Text("lblCALBRDN"), "3400");
    EXPECT_EQ(Text("cmdOffset"), "Start");
    EXPECT_TRUE(HasFocus("cmdOffset"));
    EXPECT_FALSE(IsEnabled("cmdGain"));
    EXPECT_FALSE(IsEnabled("cmdRatioSave"));
    EXPECT_FALSE(Sees("cmdRatioSelect"));
    EXPECT_FALSE(IsEnabled("cmdSetup")) << "the way out is Done";
    EXPECT_EQ(Fill("shpInst(6)"), kCyan);
    EXPECT_THAT(Text("lblInst(6)"), HasSubstr("calibrator as an excitation source.  Click \"Start\" to begin."));
    EXPECT_EQ(Text("optRange(0)"), "0.2 V");
    EXPECT_TRUE(Sees("optRange(2)"));
    EXPECT_FALSE(Sees("optRange(3)"));
    EXPECT_EQ(SimNvm[47] & 0xFF, 0x9C);
    EXPECT_EQ(SimNvm[3], 1);
}

TEST_F(SimulatedRatio, ReadsAboutItsTargets)
{
    Establishes();
    Opens().Clicks("cmdOffset").WaitsUntil("tried", HasTried("msgOffset", 2));
    person->Clicks("cmdGain").WaitsUntil("tried", HasTried("msgGain", 2));
    ASSERT_TRUE(person->Runs());
    for (int row = 0; row < 2; ++row) {
        EXPECT_NEAR(Val(Cell("msgOffset", row, 2)), 80000, 11);
        EXPECT_NEAR(Val(Cell("msgOffset", row, 3)), 80000, 11);
        EXPECT_NEAR(Val(Cell("msgGain", row, 2)), 16390, 11);
    }
    EXPECT_THAT(Cell("msgOffset", 0, 2), Not(HasSubstr("+"))) << "no turnover here";
}

TEST_F(SimulatedRatio, KeepsRangeAndReadingForTheFamily)
{
    Establishes();
    Opens().Clicks("optRange(2)").Types("txtReading", "20000").Clicks("cmdRatioSave");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(DcRatioRange, 2);
    EXPECT_EQ(DcRatioReading, 20000);
    EXPECT_EQ(StrainReading, 16390);
    EXPECT_FALSE(IsEnabled("cmdRatioSave"));
    person->Clicks("optRange(1)").Does([] { EXPECT_TRUE(IsEnabled("cmdRatioSave")); }).Clicks("optRange(2)").Does([] {
        EXPECT_FALSE(IsEnabled("cmdRatioSave"));
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(SimulatedRatio, ARangeBeginsTheTrialsAnew)
{
    Establishes();
    Opens().Clicks("cmdOffset").WaitsUntil("tried", HasTried("msgOffset", 2)).Clicks("optRange(1)");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Rows("msgOffset"), 0);
    EXPECT_EQ(Text("cmdOffset"), "Start");
    EXPECT_FALSE(IsEnabled("cmdGain"));
    EXPECT_EQ(Text("lblRange(0)"), "2 V DC");
}

// ---- on the bench ----

class WiredRatio : public WiredPage
{
protected:
    void SetUp() override { Begins(kDc); }

    void Begins(int board)
    {
        Stands({.board = board});
        Establishes();
    }

    ScriptedOperator &Opens() { return person->Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdOffset"); }
    ScriptedOperator &Offsets(int rows)
    {
        return person->Clicks("cmdOffset").WaitsUntil("tried", HasTried("msgOffset", rows));
    }
    ScriptedOperator &Gains(int rows)
    {
        return person->Clicks("cmdGain").WaitsUntil("tried", HasTried("msgGain", rows));
    }
    /// The next readings, each until it has settled.
    void Shows(const std::vector<std::string> &readings)
    {
        std::vector<std::string> texts;
        for (const std::string &reading : readings)
            texts.insert(texts.end(), 3, reading);
        bench->ShowNext(texts);
    }
    /// Values that were applied and words that were written, in their order.
    std::vector<std::string> Deeds() const
    {
        std::vector<std::string> deeds;
        for (const std::string &said : Said()) {
            if (said.starts_with("OUT ") && said.find("OPER") != std::string::npos)
                deeds.push_back(said.substr(4, said.find(" ;") - 4));
            if (said.starts_with("*1W"))
                deeds.push_back(said.substr(2));
        }
        return deeds;
    }
};

TEST_F(WiredRatio, EntryReadsTheWordsAndSwitchesRatioModeOn)
{
    bench->SetWord(47, 0x0000);
    person->Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdOffset");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Said(), ElementsAre("*1X110Z", "*1X432", "*1W12F009CZ", "*1W305000000100001"));
}

TEST_F(WiredRatio, EntryLeavesAModeThatIsOnAlone)
{
    bench->SetWord(47, 0x009C);
    person->Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdOffset");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Said(), ElementsAre("*1X110Z", "*1X432", "*1W305000000100001"));
}

TEST_F(WiredRatio, AMeterThatDoesNotTellItsWordsIsNotWrittenTo)
{
    bench->AnswerNext(bench::Line::Meter, "", "X432");
    person->Clicks(ButtonOf(Step::Ratio))
        .WaitsUntil("it says so", [] { return Fill("shpInst(6)") == kRed; })
        .WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), ElementsAre("*1X110Z", "*1X432"));
    EXPECT_FALSE(IsEnabled("cmdOffset"));
}

TEST_F(WiredRatio, TheFirstOffsetClickMakesTwoRowsAndEachLaterOneBeginsWhereTheLastEnded)
{
    bench->SetWord(50, 0x0660);
    bench->SetWord(16, 0x00A0);
    Opens().Does([this] { Forget(); });
    person->Does([this] { Shows({" 80000.", " 80010.", " 80000.", " 80005.", " 80001.", " 80002."}); });
    Offsets(2).Does([this] {
        EXPECT_THAT(Deeds(), ElementsAre("+11 V", "+5.5 V", "W132074F", "+11 V"));
        EXPECT_EQ(Cell("msgOffset", 0, 1), "0660");
        EXPECT_EQ(Cell("msgOffset", 0, 2), "80000");
        EXPECT_EQ(Cell("msgOffset", 0, 3), "80010");
        EXPECT_EQ(Cell("msgOffset", 1, 1), "074F");
        EXPECT_EQ(Cell("msgOffset", 1, 3), "80000") << "read where the first trial ended";
        EXPECT_EQ(Cell("msgOffset", 1, 2), "80005");
        EXPECT_EQ(Text("lblCALBGND"), "074F");
        EXPECT_EQ(Text("cmdOffset"), "Repeat");
        EXPECT_TRUE(IsEnabled("cmdGain"));
        Forget();
    });
    Offsets(3).Does([this] {
        const std::vector<std::string> deeds = Deeds();
        ASSERT_EQ(deeds.size(), 2u);
        EXPECT_THAT(deeds[0], testing::StartsWith("W132"));
        EXPECT_EQ(deeds[1], "+5.5 V");
        Forget();
    });
    Offsets(4).Does([this] { EXPECT_EQ(Deeds().back(), "+11 V"); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, AfterAGainTrialTheOffsetBeginsAtElevenVolts)
{
    bench->SetWord(16, 0x00A0);
    Opens();
    Offsets(2).Does([this] { Forget(); });
    Gains(2).Does([this] {
        const std::vector<std::string> deeds = Deeds();
        ASSERT_EQ(deeds.size(), 2u);
        EXPECT_EQ(deeds[0], "+10 V");
        EXPECT_THAT(deeds[1], testing::StartsWith("W130"));
        EXPECT_EQ(TimesOf("*1CZ").size(), 1u);
        Forget();
    });
    person->Clicks("cmdGain").WaitsUntil("it runs", [] { return !IsEnabled("cmdOffset"); }).Does([] {
        EXPECT_EQ(Text("lblRatioProgress"), "Reading at +10 V\nEsc stops the trial");
    });
    person->WaitsUntil("tried", HasTried("msgGain", 3)).Does([this] {
        EXPECT_EQ(Text("lblRatioProgress"), "");
        EXPECT_EQ(Deeds().size(), 1u) << "the excitation stands";
        EXPECT_EQ(Rows("msgGain"), 3);
        Forget();
    });
    Offsets(3).Does([this] {
        const std::vector<std::string> deeds = Deeds();
        ASSERT_EQ(deeds.size(), 3u);
        EXPECT_EQ(deeds[0], "+11 V");
        EXPECT_THAT(deeds[1], testing::StartsWith("W132"));
        EXPECT_EQ(deeds[2], "+5.5 V");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, ARangeIsSentOnceWhenItIsNotTheStoredOne)
{
    bench->SetWord(16, 0x0060);
    Opens().Clicks("optRange(1)").Does([this] { Forget(); });
    Offsets(2).Does([this] {
        EXPECT_EQ(WordOf(16), 0x00A1);
        Forget();
    });
    Offsets(3).Does([this] { EXPECT_THAT(ToMeter(), Not(Contains(HasSubstr("W110")))); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, ReadingsThatGiveNoCorrectionKeepTheWordAndSayIt)
{
    bench->SetWord(50, 0x0660);
    Opens().Does([this] { Shows({" 80000.", " 40000.", " 80000."}); });
    Offsets(2).Does([] {
        EXPECT_EQ(Text("lblInst(6)"), "Required correction exceeds allowable range");
        EXPECT_EQ(Fill("shpInst(6)"), kRed);
        EXPECT_EQ(Cell("msgOffset", 1, 1), "0660");
    });
    EXPECT_TRUE(person->Runs());
    EXPECT_EQ(WordOf(50), 0x0660);
}

TEST_F(WiredRatio, ACorrectionBeyondTheLimitIsHeldAtItUntilTheNextTrial)
{
    bench->SetWord(50, 0x7FBC);
    Opens().Does([this] { Shows({" 79990.", " 80010.", " 80000."}); });
    Offsets(2).Does([this] {
        EXPECT_EQ(Cell("msgOffset", 1, 1), "7FFF");
        EXPECT_EQ(Fill("shpInst(6)"), kRed);
        EXPECT_EQ(WordOf(50), 0x7FFF);
    });
    Offsets(3).Does([] { EXPECT_FALSE(Sees("shpInst(6)")); });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, TheRedWordsOfALimitOutlastALookAtTheRows)
{
    bench->SetWord(50, 0x7FBC);
    Opens().Does([this] { Shows({" 79990.", " 80010.", " 80000."}); });
    Offsets(2)
        .ClicksCell("msgOffset", 0, 1)
        .WaitsFor("cmdRatioSelect")
        .Does([] { EXPECT_EQ(Fill("shpInst(6)"), kCyan); })
        .ClicksCell("msgOffset", 1, 1)
        .Does([] {
            EXPECT_EQ(Text("lblInst(6)"), "Required correction exceeds allowable range");
            EXPECT_EQ(Fill("shpInst(6)"), kRed);
        });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, ALineLostUnderATrialsWriteLeavesNoWordThatNobodyKnows)
{
    bench->SetWord(50, 0x0660);
    bench->SetWord(16, 0x00A0);
    Opens().Does([this] {
        Forget();
        Shows({" 80000.", " 80010.", " 80000."});
    });
    person->Clicks("cmdOffset")
        .WaitsUntil("the word is written", [this] { return !TimesOf("*1W132074F").empty(); })
        .Does([this] { bench->SwitchFault("meter-port-gone", true); })
        .WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Operates()) << "the excitation is removed";
    EXPECT_EQ(Fill("shpInst(6)"), kRed);
    EXPECT_THAT(Text("lblInst(6)"), HasSubstr("click the step again"));
    EXPECT_FALSE(IsEnabled("cmdOffset"));
    bench->SwitchFault("meter-port-gone", false);
    bench->ShowNext({});
    Opens();
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblCALBGND"), HexText(WordOf(50), 4)) << "read again";
    EXPECT_EQ(Rows("msgOffset"), 0);
}

TEST_F(WiredRatio, AGroundOfFFFFIsShownAsItIsAndCountsAsMinusOne)
{
    bench->SetWord(50, 0xFFFF);
    Opens().Does([this] {
        EXPECT_EQ(Text("lblCALBGND"), "FFFF");
        Shows({" 80005.", " 79998.", " 80000."});
    });
    Offsets(2).Does([] {
        EXPECT_EQ(Cell("msgOffset", 0, 1), "FFFF");
        EXPECT_EQ(Cell("msgOffset", 1, 1), "FF57");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, AnEarlierRowIsStoredBySelect)
{
    bench->SetWord(50, 0x0660);
    Opens();
    Offsets(2).ClicksCell("msgOffset", 0, 1).WaitsFor("cmdRatioSelect").Does([this] {
        EXPECT_EQ(Text("lblInst(6)"), "Click \"Select\" to store highlighted value\nof CALBGND in Nonvolatile Memory.");
        EXPECT_EQ(Fill("shpInst(6)"), kCyan);
        Forget();
    });
    person->ClicksCell("msgOffset", 1, 2)
        .Does([] { EXPECT_FALSE(Sees("cmdRatioSelect")) << "this one is stored"; })
        .ClicksCell("msgOffset", 0, 3)
        .Clicks("cmdRatioSelect")
        .WaitsFor("cmdOffset");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), ElementsAre("*1W1320660"));
    EXPECT_EQ(Text("lblCALBGND"), "0660");
    EXPECT_FALSE(Sees("cmdRatioSelect"));
    EXPECT_FALSE(Sees("shpInst(6)"));
}

TEST_F(WiredRatio, AnEarlierDividerIsStoredBySelectToo)
{
    bench->SetWord(48, 0x3400);
    Opens();
    Offsets(2);
    Gains(2).ClicksCell("msgGain", 0, 1).WaitsFor("cmdRatioSelect").Does([this] {
        EXPECT_THAT(Text("lblInst(6)"), HasSubstr("CALBRDN"));
        Forget();
    });
    person->Clicks("cmdRatioSelect").WaitsFor("cmdOffset");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), ElementsAre("*1W1303400"));
    EXPECT_EQ(Text("lblCALBRDN"), "3400");
}

TEST_F(WiredRatio, DoneRemovesTheExcitationLearnsAndGoesOn)
{
    const std::string ground = GetNominalWord(50);
    Opens();
    Offsets(2);
    Gains(2).Does([this] { Forget(); }).Clicks("cmdRatioDone").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(Operates());
    EXPECT_NE(GetNominalWord(50), ground);
    EXPECT_EQ(WordOf(18), 0x21D1);
    EXPECT_EQ(WordOf(3), 4);
    EXPECT_EQ(CurrentStepId, Step::SendFile);
}

TEST_F(WiredRatio, DoneWithoutBothTrialsLearnsNothing)
{
    const std::string ground = GetNominalWord(50);
    Opens();
    Offsets(2).Clicks("cmdRatioDone").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(GetNominalWord(50), ground);
    EXPECT_FALSE(Operates());
}

TEST_F(WiredRatio, EscEndsATrialOnASilentMeterAndNothingIsWrittenAfterIt)
{
    Opens();
    Offsets(2)
        .Does([this] {
            bench->SwitchFault("silent-meter", true);
            Forget();
        })
        .Clicks("cmdOffset")
        .Waits(20000)
        .Does([this] {
            EXPECT_FALSE(IsEnabled("cmdOffset"));
            EXPECT_THAT(Text("lblInst(6)"), HasSubstr("The meter does not answer"));
            EXPECT_EQ(Fill("shpInst(6)"), kRed);
            Forget();
        })
        .Presses(Qt::Key_Escape)
        .WaitsFor("cmdOffset");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), Not(Contains(HasSubstr("*1W"))));
    EXPECT_FALSE(Operates()) << "the excitation is removed";
    EXPECT_EQ(Fill("shpInst(6)"), kRed);
    EXPECT_EQ(Text("cmdOffset"), "Repeat");
    EXPECT_TRUE(IsEnabled("cmdGain"));
    bench->SwitchFault("silent-meter", false);
    person->Does([this] { Forget(); });
    Offsets(5).Does([this] {
        const std::vector<std::string> deeds = Deeds();
        ASSERT_EQ(deeds.size(), 4u) << "two readings come before the next correction: those of before are half a pair";
        EXPECT_EQ(deeds[0], "+11 V");
        EXPECT_EQ(deeds[1], "+5.5 V");
        EXPECT_THAT(deeds[2], testing::StartsWith("W132"));
        EXPECT_EQ(deeds[3], "+11 V");
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, AGainTrialWithoutAReadingToReachAsksForIt)
{
    Opens();
    Offsets(2).Types("txtReading", "0").Does([this] { Forget(); }).Clicks("cmdGain").Does([this] {
        EXPECT_EQ(Text("lblInst(6)"), "Type the reading to reach first");
        EXPECT_THAT(Said(), IsEmpty());
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, LoadCellsHaveFiveRangesAndConditionsOfTheirOwn)
{
    Begins(kLc);
    StrainRange = 2;
    Opens();
    Offsets(2).Does([this] {
        EXPECT_EQ(Text("optRange(0)"), "20 mV");
        EXPECT_EQ(Text("optRange(4)"), "500 mV");
        EXPECT_TRUE(ScriptedOperator::IsOn("optRange(2)"));
        EXPECT_EQ(WordOf(16), 0x00C2);
    });
    EXPECT_TRUE(person->Runs());
}

TEST_F(WiredRatio, GoesIntoTheJournalTrialByTrial)
{
    bench->SetWord(50, 0x0660);
    bench->SetWord(16, 0x00A0);
    Opens().Does([this] { Shows({" 80000.", " 80010.", " 80000.", " 80005."}); });
    Offsets(2);
    ASSERT_TRUE(person->Runs());
    const auto trials = EventsOf("ratio trial");
    ASSERT_EQ(trials.size(), 1u);
    const auto list = [&](const char *name) {
        return std::get<std::vector<std::string>>(FieldOf(trials[0], name)->is);
    };
    EXPECT_EQ(TextOf(trials[0], "name"), "CALBGND");
    EXPECT_EQ(TextOf(trials[0], "wordBefore"), "0660");
    EXPECT_EQ(TextOf(trials[0], "wordAfter"), "074F");
    EXPECT_THAT(list("asked"), ElementsAre("+11 V", "+5.5 V", "+11 V"));
    EXPECT_THAT(list("reported"), ElementsAre("11.0 V", "5.5 V", "11.0 V"));
    EXPECT_THAT(list("reading"), ElementsAre("80000", "80010", "80000", "80005"));
    EXPECT_EQ(TextOf(trials[0], "how"), "done");
}

TEST_F(WiredRatio, AStoppedTrialTellsTheJournalWhichWordItHasWritten)
{
    bench->SetWord(50, 0x0660);
    bench->SetWord(16, 0x00A0);
    Opens().Does([this] { Shows({" 80000.", " 80010."}); });
    person->Clicks("cmdOffset")
        .WaitsUntil("the word is written", [this] { return !TimesOf("*1W132074F").empty(); })
        .Presses(Qt::Key_Escape)
        .WaitsFor("cmdOffset");
    ASSERT_TRUE(person->Runs());
    const auto trials = EventsOf("ratio trial");
    ASSERT_EQ(trials.size(), 1u);
    EXPECT_EQ(TextOf(trials[0], "wordBefore"), "0660");
    EXPECT_EQ(TextOf(trials[0], "wordAfter"), "074F");
    EXPECT_EQ(TextOf(trials[0], "how"), "stopped");
    EXPECT_EQ(WordOf(50), 0x074F);
}

}  // namespace
}  // namespace ombrix::test
