// What a session leaves in the journal, and what the window shows of it.

#include "session/journal.h"

#include "platform/file_faults.h"
#include "platform/text.h"
#include "session/outlets.h"
#include "session/state.h"
#include "shell/station.h"
#include "support/bench_station.h"
#include "support/journal_events.h"
#include "testbench/boards.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPlainTextEdit>

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr int k2Volts = 4;  // position on the DC board

bool Flag(const JournalEvent &event, const std::string &name)
{
    const JournalValue *value = FieldOf(event, name);
    return value != nullptr && std::get<bool>(value->is);
}

// What passed on both lines, and when.
using Passed = std::vector<std::pair<std::int64_t, std::string>>;

Passed Calibrated(bool recorded)
{
    UseJournal(recorded);
    BenchStation station(Wiring{});
    const std::int64_t start = NowMicros();
    EXPECT_TRUE(station.Establishes());
    EXPECT_TRUE(station.Calibrates(k2Volts, 2));
    Passed passed;
    for (const auto &line : station.bench.Transcript())
        passed.emplace_back(line.time - start, line.text);
    UseJournal(true);
    return passed;
}

// What the operator reads there.
std::string SummaryOf(BenchStation &station)
{
    std::string text;
    station.person.Clicks("cmdSummary").WaitsFor("cmdSummaryCopy").Does([&text] {
        text = qobject_cast<QPlainTextEdit *>(ScriptedOperator::Find("txtSummary"))->toPlainText().toStdString();
    });
    EXPECT_TRUE(station.person.Clicks("cmdSummaryClose").Runs());
    return text;
}

std::string MarkOf(int position)
{
    return ScriptedOperator::Text("lblStepMark(" + std::to_string(position) + ")");
}

}  // namespace

TEST(JournalOfASession, HoldsTheVisitTheStepsTheRoundsAndWhatWasLearned)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    const int found = station.bench.Nvm()[32];
    ASSERT_TRUE(station.Calibrates(k2Volts, 2));

    const auto visits = EventsOf("visit");
    ASSERT_EQ(visits.size(), 1U);
    EXPECT_EQ(TextOf(visits[0], "meter"), "DPM");
    EXPECT_EQ(TextOf(visits[0], "board"), "DC");
    EXPECT_EQ(TextOf(visits[0], "route"), "COM1");
    EXPECT_FALSE(Flag(visits[0], "simulated"));

    const auto opened = EventsOf("step opened");
    ASSERT_EQ(opened.size(), 2U) << "2 V, and the step that follows Accept";
    EXPECT_EQ(TextOf(opened[0], "step"), "2 V");
    EXPECT_EQ(std::stoi(TextOf(opened[0], "found"), nullptr, 16), found);
    EXPECT_NE(visits[0].visit, "");
    EXPECT_EQ(opened[0].visit, visits[0].visit);

    const auto rounds = EventsOf("round");
    ASSERT_EQ(rounds.size(), 2U);
    EXPECT_TRUE(Flag(rounds[0], "asFound"));
    EXPECT_FALSE(Flag(rounds[1], "asFound"));
    EXPECT_EQ(TextOf(rounds[0], "wordBefore"), TextOf(opened[0], "found"));
    EXPECT_EQ(TextOf(rounds[1], "wordBefore"), TextOf(rounds[0], "wordAfter"));
    EXPECT_EQ(std::get<std::vector<std::string>>(FieldOf(rounds[0], "asked")->is),
              (std::vector<std::string>{"2 V", "-2 V"}));
    EXPECT_EQ(std::get<std::vector<std::string>>(FieldOf(rounds[0], "reported")->is),
              (std::vector<std::string>{"2.0 V", "-2.0 V"}));

    const auto ends = EventsOf("step ended");
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(TextOf(ends[0], "how"), "accepted");
    EXPECT_EQ(std::stoi(TextOf(ends[0], "stays"), nullptr, 16), station.bench.Nvm()[32]);
    EXPECT_FALSE(EventsOf("learned").empty());
}

TEST(JournalOfASession, TellsAStopAndTheWordThatStays)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(StepButton(k2Volts)).Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdStopReset");
    station.person.WaitsFor("cmdReady");
    ASSERT_TRUE(station.person.Runs());
    const auto ends = EventsOf("step ended");
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(TextOf(ends[0], "how"), "stopped");
    EXPECT_EQ(std::stoi(TextOf(ends[0], "stays"), nullptr, 16), station.bench.Nvm()[32]);
    EXPECT_TRUE(EventsOf("learned").empty());
}

TEST(JournalOfASession, TellsAStepThatQuitEnded)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    station.person.Clicks(StepButton(k2Volts)).Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdQuit");
    station.person.Runs();
    const auto ends = EventsOf("step ended");
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(TextOf(ends[0], "how"), "quit");
    EXPECT_EQ(std::stoi(TextOf(ends[0], "stays"), nullptr, 16), station.bench.Nvm()[32]);
}

struct QuitRow {
    int board;
    int position;
    const char *start;   // button
    const char *detail;  // kind of the event that comes before the step's end
    const char *stays;   // the word, where the page writes one
};

TEST(JournalOfASession, TellsOfEachPageThatQuitEnded)
{
    const QuitRow rows[] = {{kDc, 1, "cmdFCReady", "first cycle", "0000"},
                            {kAc3, 1, "cmdZeroAdj", "zero adjust", ""},
                            {kAc3, 2, "cmdTrimStart", "trim", ""},
                            {kDc, 12, "cmdOffset", "ratio trial", nullptr}};
    for (const QuitRow &row : rows) {
        SCOPED_TRACE(row.detail);
        Wiring wiring;
        wiring.bench.board = row.board;
        BenchStation station(wiring);
        ASSERT_TRUE(station.Establishes());
        station.person.Clicks(StepButton(row.position)).WaitsFor(row.start).Clicks(row.start).Waits(6000);
        station.person.Clicks("cmdQuit");
        station.person.Runs();
        const auto ends = EventsOf("step ended");
        ASSERT_EQ(ends.size(), 1U) << station.person.Trouble();
        EXPECT_EQ(TextOf(ends[0], "how"), "quit");
        EXPECT_EQ(EventsOf(row.detail).size(), 1U);
        if (row.stays != nullptr) {
            EXPECT_EQ(TextOf(ends[0], "stays"), row.stays);
        }
    }
}

TEST(JournalOfASession, KeepsTheRoundThatAStopBrokeOffBehindItsWriteAndCallsNoLaterOneAsFound)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    const int found = station.bench.Nvm()[32];
    station.person.Clicks(StepButton(k2Volts)).WaitsFor("cmdReady").Clicks("cmdReady");
    station.person.WaitsUntil("the word is written", [&] { return station.bench.Nvm()[32] != found; });
    station.person.Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(station.person.Runs());
    const int written = station.bench.Nvm()[32];
    station.person.Clicks("cmdReady").WaitsFor("cmdRepeat").Clicks("cmdStopReset").WaitsFor("cmdReady");
    ASSERT_TRUE(station.person.Runs());

    const auto rounds = EventsOf("round");
    ASSERT_EQ(rounds.size(), 2U);
    EXPECT_TRUE(Flag(rounds[0], "asFound"));
    EXPECT_EQ(std::stoi(TextOf(rounds[0], "wordAfter"), nullptr, 16), written);
    EXPECT_EQ(FieldOf(rounds[0], "error"), nullptr) << "nothing was read with the new word";
    EXPECT_FALSE(Flag(rounds[1], "asFound"));
    EXPECT_NE(FieldOf(rounds[1], "error"), nullptr);
    EXPECT_EQ(std::stoi(TextOf(rounds[1], "wordBefore"), nullptr, 16), written);
}

TEST(JournalOfASession, ChangesNothingOnTheWireNorItsTimes)
{
    const Passed recorded = Calibrated(true);
    const Passed silent = Calibrated(false);
    ASSERT_GT(recorded.size(), 40U);
    EXPECT_EQ(recorded, silent);
}

TEST(JournalOfASession, TellsTheNextStartThatTheLastRunEndedWithoutGoodbye)
{
    namespace fs = std::filesystem;
    const WorkFolder folder;
    VirtualClock clock;
    OpenWholeStation(Painted::No);
    EXPECT_EQ(ScriptedOperator::Text("lblRemark"), "");
    fs::copy("Journal", "as it was", fs::copy_options::recursive);
    CloseStation();
    OpenWholeStation(Painted::No);
    EXPECT_EQ(ScriptedOperator::Text("lblRemark"), "") << "it ended cleanly";
    CloseStation();
    fs::remove_all("Journal");
    fs::rename("as it was", "Journal");  // as a kill would have left it
    OpenWholeStation(Painted::No);
    EXPECT_EQ(ScriptedOperator::Text("lblRemark"), "The last run ended without goodbye");
    CloseStation();
}

TEST(StepMarks, StandOnAcceptedStepsUntilTheirWordIsWrittenAgainOrAnotherMeterComes)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    EXPECT_EQ(MarkOf(k2Volts), "");
    ASSERT_TRUE(station.Calibrates(k2Volts, 3));
    EXPECT_THAT(MarkOf(k2Volts), testing::StartsWith("✓ "));
    EXPECT_EQ(ScriptedOperator::Text(StepButton(k2Volts)), "2 V") << "the caption stays";
    station.person.Clicks(StepButton(k2Volts)).Clicks("cmdReady").WaitsFor("cmdRepeat").Does([] {
        EXPECT_EQ(MarkOf(k2Volts), "") << "a round has written its word";
    });
    station.person.Clicks("cmdAccept").WaitsUntil("the range is left", [] {
        return ScriptedOperator::IsEnabled("cmdSetup");
    });
    ASSERT_TRUE(station.person.Runs());
    EXPECT_THAT(MarkOf(k2Volts), testing::StartsWith("✓ "));
    station.person.ClicksTab(0).WaitsUntil("the tab is read", [] { return ScriptedOperator::IsEnabled("cmdSetup"); });
    ASSERT_TRUE(station.person.Runs());
    EXPECT_EQ(MarkOf(k2Volts), "") << "no meter can tell its number: this may be another one";
}

// A full disk takes neither events nor settings: the meter is calibrated all the same, and the operator knows.
TEST(JournalOfASession, ThatFindsNoRoomIsMissedAndTheRangeIsCalibratedAllTheSame)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    const std::size_t before = ReadJournal(".").size();
    UseFileFaults([](FileCall call) { return FileFault{call == FileCall::Write ? ENOSPC : 0, 0}; });
    ASSERT_TRUE(station.Calibrates(k2Volts, 3)) << station.person.Trouble();
    EXPECT_LE(std::abs(station.bench.RemainingError(k2Volts)), 2.0);
    EXPECT_EQ(ScriptedOperator::Text("lblKeptRemark"), "not recorded");
    EXPECT_EQ(MarkOf(k2Volts), "") << "no mark without its event";
    EXPECT_EQ(ReadJournal(".").size(), before);
    UseFileFaults(nullptr);
    station.person.Clicks(StepButton(k2Volts)).WaitsFor("cmdReady");
    ASSERT_TRUE(station.person.Runs());
    EXPECT_EQ(ScriptedOperator::Text("lblKeptRemark"), "");
    EXPECT_THAT(MarkOf(k2Volts), StartsWith("✓ "));
    const auto ends = EventsOf("step ended");
    ASSERT_EQ(ends.size(), 1U) << "what waited is on file, once";
    EXPECT_EQ(TextOf(ends[0], "how"), "accepted");
}

TEST(Summary, TellsTheMeterAndWhatEachStepHasLeftInIt)
{
    BenchStation station(Wiring{});
    EXPECT_EQ(SummaryOf(station), "No meter was identified yet.");
    ASSERT_TRUE(station.Establishes());
    EXPECT_THAT(SummaryOf(station), AllOf(HasSubstr(" with DC board, "), HasSubstr("No step has ended yet.")));
    ASSERT_TRUE(station.Calibrates(k2Volts, 2));
    const std::string inTheMeter = HexText(station.bench.Nvm()[32], 4);
    EXPECT_THAT(SummaryOf(station), HasSubstr("\nDC  2 V: accepted, word 20 = " + inTheMeter + ", reading "));
    EXPECT_THAT(SummaryOf(station), Not(HasSubstr("No step")));
}

TEST(JournalOfASession, AnEarlierWordThatCannotBeWrittenIsNotAccepted)
{
    BenchStation station(Wiring{});
    ASSERT_TRUE(station.Establishes());
    ScriptedOperator &person = station.person;
    person.Clicks(StepButton(k2Volts)).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    person.Does([&station] {
        station.bench.ShowNext({" 81000.", " 81000.", " 81000.", "-81000.", "-81000.", "-81000."});
    });
    person.Clicks("cmdRepeat").WaitsUntil("round 2 has ended", [] {
        return ScriptedOperator::Rows("msgCalibGrid") == 2 && ScriptedOperator::IsEnabled("cmdRepeat");
    });
    person.ClicksCell("msgCalibGrid", 0, 1).Clicks("cmdRepeat").WaitsUntil("round 3 has ended", [] {
        return ScriptedOperator::Rows("msgCalibGrid") == 3 && ScriptedOperator::IsEnabled("cmdRepeat");
    });
    person.ClicksCell("msgCalibGrid", 0, 1)
        .Does([&station] { station.bench.SwitchFault("meter-port-gone", true); })
        .Clicks("cmdAccept")
        .WaitsFor("cmdReady");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(CurrentStepButton, k2Volts) << "no next step";
    EXPECT_THAT(ScriptedOperator::Text("lblInst(0)"), StartsWith("Not accepted"));
    EXPECT_EQ(ScriptedOperator::Fill("shpInst(0)"), "#ff0000");
    EXPECT_THAT(EventsOf("learned"), IsEmpty());
    const auto ended = EventsOf("step ended");
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(TextOf(ended[0], "how"), "line lost");
    EXPECT_EQ(TextOf(ended[0], "stays"), HexText(station.bench.Nvm()[32], 4)) << "what the meter holds";
    EXPECT_NE(TextOf(ended[0], "stays"), TextOf(EventsOf("round")[0], "wordAfter")) << "the test needs two words";
    EXPECT_EQ(MarkOf(k2Volts).find("✓"), std::string::npos);
}

TEST(StepMarks, OfTwoStepsThatShareAWordGoWhenTheOtherLeavesAnotherValueInIt)
{
    constexpr int k200mV = 1;  // on the AC board it shares its word with the step two below
    BenchStation station(Wiring{.bench = {.board = bench::board::kAc}});
    ASSERT_TRUE(station.Establishes());
    ASSERT_TRUE(station.Calibrates(k200mV, 2));
    ASSERT_THAT(MarkOf(k200mV), testing::StartsWith("✓ "));
    const JournalEvent accepted = EventsOf("step ended").back();
    const auto ends = [&accepted](const std::string &stays) {
        Record("step ended", {{"step", "20 V"},
                              {"board", TextOf(accepted, "board")},
                              {"position", k200mV + 2},
                              {"word", TextOf(accepted, "word")},
                              {"how", "stopped"},
                              {"stays", stays}});
    };
    ends(TextOf(accepted, "stays"));
    EXPECT_THAT(MarkOf(k200mV), testing::StartsWith("✓ "));
    ends("1234");
    EXPECT_EQ(MarkOf(k200mV), "");
}
