#include "support/page_test.h"

#include "model/range_tables.h"

#include "platform/text.h"
#include "session/journal.h"

#include <utility>

namespace ombrix::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kMeterType = 15;  // position on each of the three boards
constexpr const char *kSelect = "Select a meter type and click \"Save\"";
constexpr const char *kCommit = "Click \"Save\" to commit to Nonvolatile Memory";
constexpr const char *kChange = "Change meter type if desired and click \"Save\"";

int Chosen()
{
    return ScriptedOperator::IsOn("optMeterType(0)") ? 0 : ScriptedOperator::IsOn("optMeterType(1)") ? 1 : -1;
}

class SimulatedMeterType : public SimulatedPage
{
protected:
    std::vector<JournalEvent> events;
    int listener = -1;

    void SetUp() override
    {
        SimulatedPage::SetUp();
        listener = ListenToJournal([this](const JournalEvent &event) {
            if (event.kind == "meter type")
                events.push_back(event);
        });
    }
    void TearDown() override
    {
        StopListening(listener);
        SimulatedPage::TearDown();
    }

    /// A meter of this board whose board byte was left like this by what came before.
    void Opens(int board, const char *byte)
    {
        if (board == kTc)
            Establishes(0x31, 0x41);
        else if (board == kTemp)
            Establishes(0x01, 0x41);
        else
            Establishes(0x41, 0x50);
        ASSERT_EQ(SCType, board);
        SimNvm[16] = static_cast<std::uint16_t>(HexValue(byte));
        person->Clicks(StepButton(kMeterType)).WaitsFor("cmdSetup");
        ASSERT_TRUE(person->Runs());
    }
};

struct EntryRow {
    int board;
    const char *found;
    int after;
    int choice;
    const char *prompt;
};

constexpr EntryRow kEntries[] = {
    {kTemp, "60", 0x60, 0, kChange},  {kTemp, "65", 0x60, 0, kChange},  {kTemp, "41", 0x41, 1, kChange},
    {kTemp, "40", 0x41, 1, kChange},  {kTc, "65", 0x60, 0, kChange},    {kTc, "4B", 0x41, 1, kChange},
    {kTc, "60", 0x60, 0, kChange},    {kRtd, "50", 0x50, 0, kChange},   {kRtd, "57", 0x50, 0, kChange},
    {kRtd, "E0", 0xE1, 1, kChange},   {kRtd, "E1", 0xE1, 1, kChange},   {kRtd, "60", 0x60, -1, kSelect},
    {kTemp, "00", 0x00, -1, kSelect}, {kTemp, "50", 0x50, -1, kSelect},
};

class MeterTypeEntry : public SimulatedMeterType, public testing::WithParamInterface<EntryRow>
{
};

TEST_P(MeterTypeEntry, PutsAByteOfAKnownFirstDigitRightWithoutAskingAndShowsTheType)
{
    const EntryRow &row = GetParam();
    Opens(row.board, row.found);
    EXPECT_EQ(SimNvm[16], row.after);
    EXPECT_EQ(Chosen(), row.choice);
    EXPECT_EQ(Text("lblInst(4)"), row.prompt);
    EXPECT_FALSE(IsEnabled("cmdSaveMeterType"));
    EXPECT_TRUE(IsEnabled("optMeterType(1)"));
    EXPECT_EQ(Text("optMeterType(0)"), row.board == kRtd ? "RTD" : "DC Meter");
    EXPECT_EQ(Text("optMeterType(1)"), row.board == kRtd ? "Ohms" : "Temperature Meter");
    const bool corrected = row.after != static_cast<int>(HexValue(row.found));
    ASSERT_EQ(events.size(), corrected ? 1u : 0u);
    if (corrected) {
        EXPECT_EQ(TextOf(events[0], "before"), row.found);
        EXPECT_EQ(TextOf(events[0], "verdict"), "taken");
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, MeterTypeEntry, testing::ValuesIn(kEntries));

TEST_F(SimulatedMeterType, TheStoredOptionAfterTheOtherOneHasNothingToSave)
{
    Opens(kTemp, "60");
    person->Clicks("optMeterType(1)").Does([] {
        EXPECT_EQ(Text("lblInst(4)"), kCommit);
        EXPECT_TRUE(IsEnabled("cmdSaveMeterType"));
    });
    person->Clicks("optMeterType(0)").Does([] {
        EXPECT_EQ(Text("lblInst(4)"), kChange);
        EXPECT_FALSE(IsEnabled("cmdSaveMeterType"));
        EXPECT_TRUE(HasFocus("optMeterType(0)"));
    });
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimNvm[16], 0x60);
}

TEST_F(SimulatedMeterType, SaveWritesTheCodeOfTheChoice)
{
    for (const auto &[board, code, code21] : {std::tuple{kTemp, 0x41, 0x01}, {kRtd, 0xE1, 0x41}, {kTc, 0x41, 0x31}}) {
        SCOPED_TRACE(board);
        TearDown();
        SetUp();
        events.clear();
        Opens(board, board == kRtd ? "50" : "60");
        person->Clicks("optMeterType(1)").Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
        ASSERT_TRUE(person->Runs());
        EXPECT_EQ(SimNvm[16], code);
        EXPECT_EQ(SimNvm[21], code21);
        EXPECT_EQ(Text("lblInst(4)"), kChange);
        EXPECT_FALSE(IsEnabled("cmdSaveMeterType"));
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(TextOf(events[0], "written"), HexText(code, 2));
        EXPECT_EQ(TextOf(events[0], "after"), HexText(code, 2));
    }
}

TEST_F(SimulatedMeterType, AnUnknownByteWaitsForAChoice)
{
    Opens(kRtd, "60");
    person->Clicks("optMeterType(0)").WaitsFor("cmdSaveMeterType").Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimNvm[16], 0x50);
    EXPECT_EQ(Text("lblInst(4)"), kChange);
}

// ---- on the wire ----

class WiredMeterType : public WiredPage
{
protected:
    void Opens(int board, std::uint16_t word)
    {
        Stands({.board = board});
        Establishes();
        ASSERT_EQ(SCType, board);
        bench->SetWord(16, word);
        Forget();
        person->Clicks(StepButton(kMeterType)).WaitsFor("cmdSetup");
    }
};

TEST_F(WiredMeterType, ATypeThatIsRightIsOnlyRead)
{
    Opens(kTemp, 0x41);
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Said(), ElementsAre("*1X110"));
    EXPECT_EQ(Chosen(), 1);
}

TEST_F(WiredMeterType, ATempMeterGetsItsByteAndIsAskedForIt)
{
    Opens(kTemp, 0x0065);
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Said(), ElementsAre("*1X110", "*1W1100060", "*1X110Z"));
    EXPECT_EQ(WordOf(16), 0x60);
}

TEST_F(WiredMeterType, ATcMeterGetsItsBoardCodeInTheSameBlock)
{
    Opens(kTc, 0x004B);
    bench->SetWord(20, 0x1234);
    bench->SetWord(17, 0x5678);
    bench->SetWord(21, 0x0001);
    person->Clicks("optMeterType(0)").Does([this] { Forget(); });
    person->Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    const std::vector<std::string> said = Said();
    ASSERT_EQ(said.size(), 3u);
    EXPECT_EQ(said[0], "*1X414");
    EXPECT_EQ(said[1].substr(0, 14), "*1W61500011234");
    EXPECT_EQ(said[1].substr(22), "56780060");
    EXPECT_EQ(said[2], "*1X110Z");
    EXPECT_EQ(WordOf(21), 0x0001);
    EXPECT_EQ(WordOf(16), 0x0060);
}

TEST_F(WiredMeterType, ASilentMeterIsToldFromAMeterWithoutAType)
{
    Opens(kTemp, 0x0000);
    person->Does([this] {
        EXPECT_EQ(Text("lblInst(4)"), kSelect);
        bench->SwitchFault("silent-meter", true);
    });
    person->Clicks(StepButton(kMeterType)).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(4)"), "The meter did not answer");
    EXPECT_EQ(Fill("shpInst(4)"), "#ff0000");
    EXPECT_EQ(Chosen(), -1);
    EXPECT_FALSE(IsEnabled("cmdSaveMeterType"));
    EXPECT_FALSE(IsEnabled("optMeterType(0)"));
    EXPECT_EQ(WordOf(16), 0) << "silence is no reason to write";
}

TEST_F(WiredMeterType, AMeterThatFallsSilentWhileItIsSavedIsNotBelieved)
{
    Opens(kTemp, 0x0060);
    person->Clicks("optMeterType(1)").Does([this] { bench->SwitchFault("silent-meter", true); });
    person->Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(4)"), "The meter did not answer");
    EXPECT_EQ(Chosen(), 1) << "what was to be saved stands";
    EXPECT_FALSE(IsEnabled("cmdSaveMeterType"));
}

TEST_F(WiredMeterType, AMeterThatKeepsItsOldTypeIsToldAndMaySaveAgain)
{
    Opens(kTemp, 0x0060);
    person->Clicks("optMeterType(1)").Does([this] { bench->AnswerNext(bench::Line::Meter, "0060\r", "1X110Z"); });
    person->Clicks("cmdSaveMeterType").WaitsFor("cmdSetup").Does([] {
        EXPECT_EQ(Text("lblInst(4)"), "The meter did not take the type");
        EXPECT_EQ(Fill("shpInst(4)"), "#ff0000");
    });
    person->WaitsFor("cmdSaveMeterType").Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblInst(4)"), kChange);
}

TEST_F(WiredMeterType, AMeterThatKeepsAByteThatIsToBePutRightIsTold)
{
    std::vector<JournalEvent> told;
    const int listener = ListenToJournal([&told](const JournalEvent &event) { told.push_back(event); });
    Opens(kTemp, 0x0065);
    bench->WearOut(16);
    ASSERT_TRUE(person->Runs());
    StopListening(listener);
    EXPECT_EQ(Text("lblInst(4)"), "The meter did not take the type");
    EXPECT_EQ(Fill("shpInst(4)"), "#ff0000");
    EXPECT_EQ(Chosen(), -1);
    EXPECT_FALSE(IsEnabled("cmdSaveMeterType")) << "nothing is chosen yet";
    EXPECT_TRUE(IsEnabled("optMeterType(0)"));
    ASSERT_GE(told.size(), 2u);
    EXPECT_EQ(told[told.size() - 2].kind, "step opened");
    EXPECT_EQ(TextOf(told[told.size() - 2], "found"), "65");
    EXPECT_EQ(TextOf(told.back(), "verdict"), "not taken");
}

TEST_F(WiredMeterType, EscAtTheFirstAnswerWritesNothing)
{
    Opens(kTemp, 0x0065);
    bench->SetWord(16, 0x0065);
    person->Does([this] {
        bench->SetWord(16, 0x0065);
        Forget();
    });
    person->Clicks(StepButton(kMeterType)).Waits(200).Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Said(), ElementsAre("*1X110"));
    EXPECT_EQ(Text("lblInst(4)"), "Stopped before the meter had answered: click the step again");
    EXPECT_EQ(WordOf(16), 0x0065);
}

TEST_F(WiredMeterType, ASavedTypeIsTheMetersWhenItIsIdentifiedAgain)
{
    for (const auto &[option, board] : {std::pair{1, kTemp}, {0, kDc}}) {
        Opens(kTemp, option == 1 ? 0x0060 : 0x0041);
        person->Clicks("optMeterType(" + std::to_string(option) + ")").Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
        person->ClicksTab(kTabTc).WaitsFor("cmdSetup");
        ASSERT_TRUE(person->Runs());
        EXPECT_EQ(MeterTab, TabOfBoard(board));
    }
}

}  // namespace
}  // namespace ombrix::test
