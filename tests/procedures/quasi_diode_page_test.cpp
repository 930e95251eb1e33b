#include "support/page_test.h"

#include "model/nominals.h"
#include "model/station_settings.h"
#include "platform/text.h"
#include "session/journal.h"
#include "testbench/boards.h"

namespace ombrix::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kTcGainOffset = 6;  // positions
constexpr int kTempGainOffset = 7;
constexpr int kOffsetOnly = 14;

/// On the bench, with the operator's hand on the display.
class WiredDiode : public WiredPage
{
protected:
    std::vector<JournalEvent> events;
    int listener = -1;

    void TearDown() override
    {
        if (listener >= 0)
            StopListening(listener);
        WiredPage::TearDown();
    }

    void Opens(int position = kTcGainOffset, int board = bench::board::kTc)
    {
        Stands({.board = board});
        Establishes();
        listener = ListenToJournal([this](const JournalEvent &event) { events.push_back(event); });
        bench->SetWord(29, 0x6F10);
        bench->SetWord(28, 100);
        bench->SetWord(45, 0x6D00);
        bench->SetWord(44, 0xFFF0);
        Forget();
        person->Clicks(StepButton(position)).WaitsFor("cmdQDReady");
    }

    ScriptedOperator &Ready(const std::string &reading, const char *button = "cmdQDGain")
    {
        person->Does([this] { Forget(); }).Clicks("cmdQDReady");
        return Sees(reading, button);
    }
    /// The display shows a reading from now on, and the button may use it.
    ScriptedOperator &Sees(const std::string &reading, const std::string &button)
    {
        return person->Does([this, reading] { bench->ShowNext({reading}); }).WaitsUntil("it reads " + reading, [=] {
            return Text("lblQDReading") == Trim(reading) && Text("lblQDReadingMark") == "live" && IsEnabled(button);
        });
    }
    /// A click on Gain or Offset that uses this reading.
    ScriptedOperator &Clicks(const std::string &reading, const std::string &button)
    {
        return Sees(reading, button).Clicks(button).WaitsUntil("it is done", [] {
            return Text("lblQDReadingMark") == "live" && (IsEnabled("cmdQDOffset") || IsEnabled("cmdQDGain"));
        });
    }
    std::vector<std::string> Writes() const
    {
        std::vector<std::string> writes = ToMeter();
        std::erase_if(writes, [](const std::string &frame) { return frame[2] != 'W'; });
        return writes;
    }
    std::vector<std::string> Kinds() const
    {
        std::vector<std::string> kinds;
        for (const JournalEvent &event : events)
            kinds.push_back(event.kind);
        return kinds;
    }
    void Runs() { ASSERT_TRUE(person->Runs()) << person->Trouble(); }
};

TEST_F(WiredDiode, EntryPutsATcMeterOnTypeJAndReadsBothWords)
{
    Opens();
    bench->SetWord(20, 0x1234);
    bench->SetWord(17, 0x5678);
    Runs();
    const std::vector<std::string> said = Said();
    ASSERT_EQ(said.size(), 3u);
    EXPECT_EQ(said[0], "*1X414");
    EXPECT_EQ(said[1].substr(0, 10), "*1W6150031");
    EXPECT_EQ(said[1].substr(26), "0041");
    EXPECT_EQ(said[2], "*1X21D");
    EXPECT_EQ(Text("lblQDTitle"), "QUASI-DIODE GAIN AND OFFSET");
    EXPECT_EQ(Text("lblQDGain"), "6F10");
    EXPECT_EQ(Text("lblQDOffset"), "0064");
    EXPECT_EQ(Text("txtQDTarget(0)"), "0.0");
    EXPECT_EQ(Text("txtQDTarget(1)"), "0.0");
    EXPECT_EQ(Text("lblInst(5)"),
              "Select alternate T/C type, or set jumpers as shown and connect input\nto Calibrator, "
              "using Type J Thermocouple.  Then click \"Ready\".");
    EXPECT_TRUE(HasFocus("cmdQDReady"));
    for (const char *off : {"cmdQDGain", "cmdQDOffset", "cmdQDStop(0)", "cmdQDStop(1)"})
        EXPECT_FALSE(IsEnabled(off)) << off;
    EXPECT_TRUE(PageTest::Sees("fraJumperBlock(3)"));
}

TEST_F(WiredDiode, TheOtherTypePutsATempMeterOnItsOwnWords)
{
    Opens(kTempGainOffset, bench::board::kTemp);
    person->Does([this] { Forget(); }).Clicks("optTCType(1)").WaitsFor("cmdQDReady").Does([this] {
        EXPECT_THAT(Said(), ElementsAre("*1W1100049", "*1X22D"));
        EXPECT_EQ(Text("lblQDGain"), "6D00");
        EXPECT_EQ(Text("lblQDOffset"), "FFF0");
        EXPECT_THAT(Text("lblInst(5)"), testing::HasSubstr("using Type T Thermocouple."));
        Forget();
    });
    person->Clicks("cmdQDReady").WaitsFor("cmdQDGain").Does([this] {
        EXPECT_THAT(ToCalibrator(), testing::IsSupersetOf({"TSENS_TYPE TC", "TC_TYPE T", "OUT 0 CEL ; OPER ; *WAI"}));
        EXPECT_THAT(Writes(), ElementsAre("*1W12C0000"));
    });
    person->Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
}

TEST_F(WiredDiode, GainOffsetAndGainAgainGoThroughTheirPhases)
{
    Opens();
    Ready(" 1.2").Does([] {
        EXPECT_EQ(Text("lblInst(5)"), "Click \"Gain\" when the DPM reading has settled.");
        EXPECT_EQ(Text("lblQDOffset"), "0000");
        EXPECT_FALSE(IsEnabled("cmdQDOffset"));
        EXPECT_FALSE(IsEnabled("cmdQDStop(0)"));
        EXPECT_FALSE(IsEnabled("txtQDTarget(1)"));
        EXPECT_FALSE(IsEnabled("optTCType(1)"));
    });
    Clicks(" 1.2", "cmdQDGain").Does([] {
        EXPECT_EQ(Text("lblQDGain"), "6F90");
        EXPECT_EQ(Text("lblQDPrevGain"), "6F10");
        EXPECT_TRUE(HasFocus("cmdQDOffset"));
        EXPECT_TRUE(IsEnabled("cmdQDStop(0)"));
        EXPECT_EQ(Fill("cmdQDGain"), kCyan);
        EXPECT_NE(Fill("cmdQDOffset"), kCyan);
        EXPECT_THAT(Text("lblInst(5)"), testing::StartsWith("Wait until the DPM reading has settled, then click "
                                                            "\"Offset\" to make fine\nadjustment of QD offset"));
    });
    Clicks(" 1.5", "cmdQDOffset").Does([] {
        EXPECT_EQ(Text("lblQDOffset"), "0194");
        EXPECT_EQ(Text("lblQDPrevOffset"), "0000");
        EXPECT_EQ(Fill("cmdQDOffset"), kCyan);
        EXPECT_THAT(Text("lblInst(5)"), testing::HasSubstr("click \"Offset\" to repeat the\noffset correction"));
    });
    Clicks(" 0.9", "cmdQDGain").Does([] {
        EXPECT_EQ(Text("lblQDGain"), "6F90") << "the gain is not touched yet";
        EXPECT_EQ(Text("lblQDOffset"), "0000");
        EXPECT_FALSE(IsEnabled("cmdQDOffset"));
        EXPECT_FALSE(IsEnabled("cmdQDStop(0)"));
        EXPECT_EQ(Text("lblInst(5)"), "Click \"Gain\" when the DPM reading has settled.");
    });
    Clicks(" 0.3", "cmdQDGain").Clicks("cmdQDStop(0)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_THAT(Writes(), ElementsAre("*1W11C0000", "*1W11D6F90", "*1W11C0194", "*1W11C0000", "*1W11D6F30"));
    EXPECT_EQ(WordOf(29), 0x6F30);
    EXPECT_EQ(Text("lblInst(5)"), "Click \"Ready\" to start over, or select alternate T/C type.");
    EXPECT_EQ(Text("lblQDReading"), "");
    EXPECT_EQ(Text("lblQDPrevGain"), "");
    EXPECT_FALSE(Operates());
}

TEST_F(WiredDiode, ASecondGainGoesAlongTheSecantAndTheNominalWordLearnsATenth)
{
    Opens();
    SetNominalWord(29, "6F10");
    Ready(" 1.2");
    Clicks(" 1.2", "cmdQDGain");
    Clicks(" 0.3", "cmdQDGain").Clicks("cmdQDStop(0)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(WordOf(29), 0x6FBB);
    EXPECT_EQ(GetNominalWord(29), "6F21") << "28432 and 28603, nine to one";
    EXPECT_THAT(Kinds(),
                ElementsAre("step opened", "words written", "round", "round", "quasi-diode", "step ended", "learned"));
    EXPECT_EQ(TextOf(events[0], "found"), "6F10");
    EXPECT_EQ(TextOf(events[1], "before"), "0064") << "the offset that was cleared";
    EXPECT_EQ(TextOf(events[1], "to"), "0000");
    EXPECT_EQ(TextOf(events[3], "wordAfter"), "6FBB");
    EXPECT_EQ(TextOf(events[5], "how"), "accepted");
    EXPECT_EQ(TextOf(events[5], "stays"), "6FBB");
}

TEST_F(WiredDiode, AReadingThatStandsIsCorrectedAlongTheNominalSlope)
{
    Opens();
    Ready(" 1.2");
    Clicks(" 1.2", "cmdQDGain");
    Clicks(" 0.3", "cmdQDGain");
    Clicks(" 0.3", "cmdQDGain").Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(WordOf(29), 0x6F30);
}

TEST_F(WiredDiode, CancelLeavesTheWordsWrittenLastAndTeachesNothing)
{
    Opens();
    const std::string nominal = GetNominalWord(29);
    Ready(" 1.2").Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_THAT(Writes(), ElementsAre("*1W11C0000"));
    EXPECT_EQ(WordOf(29), 0x6F10);
    EXPECT_EQ(WordOf(28), 0);
    EXPECT_EQ(GetNominalWord(29), nominal);
    EXPECT_EQ(TextOf(events.back(), "how"), "stopped");
    EXPECT_EQ(TextOf(events.back(), "stays"), "6F10");
    EXPECT_FALSE(Operates());
}

TEST_F(WiredDiode, OffsetOnlyBeginsWithTheWordInTheMeterAndNeverWritesTheGain)
{
    Opens(kOffsetOnly);
    const std::string nominal = GetNominalWord(29);
    bench->SetWord(28, 0);
    person->Clicks("optTCType(0)").WaitsFor("cmdQDReady");
    Ready(" 1.5", "cmdQDOffset").Does([] {
        EXPECT_EQ(Text("lblInst(5)"), "Click \"Offset\" when the DPM reading has settled.");
        EXPECT_FALSE(IsEnabled("cmdQDGain"));
    });
    Clicks(" 1.5", "cmdQDOffset").Does([] {
        EXPECT_EQ(Text("lblInst(5)"),
                  "To repeat the offset correction, click \"Offset\"\nwhen the DPM reading has settled.");
    });
    Clicks(" 0.2", "cmdQDOffset").Clicks("cmdQDStop(0)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_THAT(Writes(), ElementsAre("*1W11C0194", "*1W11C01D2"));
    EXPECT_EQ(WordOf(29), 0x6F10);
    EXPECT_EQ(GetNominalWord(29), nominal);
    EXPECT_EQ(TextOf(events.back(), "stays"), "01D2");
}

struct EdgeRow {
    const char *reading;
    std::uint16_t offset;
    const char *shown, *error, *word;
};
constexpr EdgeRow kEdges[] = {
    {" 25.0", 0, "25.0", "", "1A51"},
    {"-25.0", 0, "-25.0", "", "E5AF"},
    {" 25.1", 0, "25", "Out of Range", "1A51"},
    {"-30.0", 0, "-25", "Out of Range", "E5AF"},
    {" 25.0", 30000, "25.0", "CALQDOF Overflow", "7FFF"},
    {"-25.0", 35536, "-25.0", "CALQDOF Overflow", "8001"},
};

TEST_F(WiredDiode, AReadingBeyond25AndAWordAtItsEndAreTold)
{
    for (const EdgeRow &row : kEdges) {
        SCOPED_TRACE(std::string(row.reading) + " " + row.word);
        Opens(kOffsetOnly);
        bench->SetWord(28, row.offset);
        person->Clicks("optTCType(0)").WaitsFor("cmdQDReady");
        Ready(row.reading, "cmdQDOffset").Clicks("cmdQDOffset");
        person->WaitsUntil("the word is written", [&row] { return Text("lblQDOffset") == row.word; }).Does([&row] {
            EXPECT_EQ(Text("lblQDReading"), row.shown);
            EXPECT_EQ(Text("lblQDReadingMark"), "frozen");
        });
        const char *beyond = *row.reading == '-' ? " 1.0" : "-1.0";  // the word comes back from its end
        Sees(beyond, "cmdQDOffset").Does([&row] {
            EXPECT_EQ(Text("lblQDError"), row.error) << "until the next click";
            EXPECT_EQ(PageTest::Sees("shpQDError"), *row.error != '\0');
        });
        Clicks(beyond, "cmdQDOffset").Does([] { EXPECT_FALSE(PageTest::Sees("shpQDError")); });
        person->Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
        Runs();
        StopListening(std::exchange(listener, -1));
    }
}

TEST_F(WiredDiode, ShowsHowFarTheReadingIsFromItsTarget)
{
    Opens(kOffsetOnly);
    person->Types("txtQDTarget(1)", "0.5").Presses(Qt::Key_Return).Does([] {
        EXPECT_EQ(Text("txtQDTarget(1)"), "0.50");
        EXPECT_EQ(QDTargetText, "0.50");
    });
    Ready(" 1.2", "cmdQDOffset").Does([] { EXPECT_EQ(Text("lblQDDistance"), "0.70"); });
    person->Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
}

TEST_F(WiredDiode, ASilentMeterIsToldAndNothingIsComputedFromItsLastReading)
{
    Opens();
    Ready(" 1.2").Does([this] { bench->SwitchFault("silent-meter", true); });
    person->WaitsUntil("it is told", [] { return Text("lblQDReadingMark") == "silent"; }).Does([this] {
        EXPECT_EQ(Text("lblInst(5)"), "The meter fell silent: check its line,\nor click \"Cancel\"");
        EXPECT_EQ(Fill("shpInst(5)"), "#ff0000");
        EXPECT_FALSE(IsEnabled("cmdQDGain"));
        EXPECT_TRUE(IsEnabled("cmdQDStop(1)"));
        bench->SwitchFault("silent-meter", false);
    });
    Sees(" 0.8", "cmdQDGain").Does([this] {
        bench->SwitchFault("over-range", true);
        bench->ShowNext({});
    });
    person->WaitsUntil("it is told", [] { return Text("lblQDReadingMark") == "over range"; }).Does([this] {
        EXPECT_FALSE(IsEnabled("cmdQDGain"));
    });
    person->Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_THAT(Writes(), ElementsAre("*1W11C0000"));
}

TEST_F(WiredDiode, AMeterThatTellsNoWordsCannotBeTrimmed)
{
    Opens();
    Runs();
    bench->SwitchFault("silent-meter", true);
    person->Clicks("optTCType(1)").WaitsFor("cmdSetup").Does([] {
        EXPECT_EQ(Text("lblInst(5)"), "The meter did not answer:\ncheck its line, then select a T/C type again");
        EXPECT_EQ(Fill("shpInst(5)"), "#ff0000");
        EXPECT_FALSE(IsEnabled("cmdQDReady"));
        EXPECT_EQ(Text("lblQDGain"), "");
    });
    person->Does([this] { bench->SwitchFault("silent-meter", false); }).Clicks("optTCType(1)").WaitsFor("cmdQDReady");
    Runs();
    EXPECT_EQ(Text("lblQDGain"), "6D00");
}

TEST_F(WiredDiode, EscIsCancelWhileTheReadingIsFollowed)
{
    Opens();
    Ready(" 1.2");
    Clicks(" 1.2", "cmdQDGain").Presses(Qt::Key_Escape).WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(TextOf(events.back(), "how"), "stopped");
    EXPECT_TRUE(IsEnabled("cmdQDReady"));
    EXPECT_FALSE(Operates());
}

TEST_F(WiredDiode, ACancelBehindAnAcceptWinsAndTeachesNothing)
{
    Opens();
    const std::string nominal = GetNominalWord(29);
    Ready(" 1.2");
    Clicks(" 1.2", "cmdQDGain").Clicks("cmdQDStop(0)").Waits(300).Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(TextOf(events.back(), "how"), "stopped");
    EXPECT_EQ(GetNominalWord(29), nominal);
    EXPECT_FALSE(Operates());
}

TEST_F(WiredDiode, QuitIsToldToTheJournal)
{
    Opens();
    Ready(" 1.2");
    Clicks(" 1.2", "cmdQDGain").Clicks("cmdQuit");
    person->Runs();
    EXPECT_EQ(TextOf(events.back(), "how"), "quit");
    EXPECT_EQ(TextOf(events.back(), "stays"), "6F90");
}

TEST_F(WiredDiode, ACancelWhileAWordIsWrittenHoldsWhenItIsWritten)
{
    Opens();
    Ready(" 1.2").Clicks("cmdQDGain").Waits(1500).Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(WordOf(29), 0x6F90);
    EXPECT_THAT(Writes(), ElementsAre("*1W11C0000", "*1W11D6F90"));
    EXPECT_FALSE(Operates());
}

TEST_F(WiredDiode, DoneAfterACancelGoesToTheNextStepWithoutInput)
{
    Opens();
    Ready(" 1.2").Clicks("cmdQDStop(1)").WaitsFor("cmdSetup");
    person->Clicks("cmdQDDone").WaitsUntil("the next step", StandsAt(kTcGainOffset + 1)).WaitsFor("cmdSetup");
    Runs();
    EXPECT_FALSE(Operates());
}

TEST_F(WiredDiode, DoneStaysOnOffsetOnly)
{
    Opens(kOffsetOnly);
    person->Clicks("cmdQDDone").WaitsFor("cmdSetup");
    Runs();
    EXPECT_EQ(CurrentStepButton, kOffsetOnly);
    EXPECT_TRUE(IsEnabled("cmdQDReady"));
}

// ---- in simulation ----

class SimulatedDiode : public SimulatedPage
{
};

TEST_F(SimulatedDiode, ReadsTenthsAboutTheTargetAndLessFarWithEachCorrection)
{
    Establishes(0x31, 0x41);
    person->Clicks(StepButton(kTcGainOffset)).WaitsFor("cmdQDReady").Types("txtQDTarget(1)", "12.5");
    person->Clicks("cmdQDReady").WaitsFor("cmdQDGain").Does([] {
        EXPECT_LE(std::abs(Val(Text("lblQDReading"))), 2.05);
        EXPECT_EQ(SimNoise, 2.0f);
        EXPECT_EQ(Text("lblQDReading").find('.') + 2, Text("lblQDReading").size());
    });
    person->Clicks("cmdQDGain").WaitsFor("cmdQDOffset").Does([] { EXPECT_EQ(SimNoise, 1.6f); });
    person->Clicks("cmdQDOffset").WaitsUntil("offset", [] { return IsEnabled("cmdQDOffset"); }).Does([] {
        EXPECT_NEAR(Val(Text("lblQDReading")), 12.5, 1.4);
        EXPECT_EQ(SimNvm[28], HexValue(Text("lblQDOffset")));
        EXPECT_EQ(SimNvm[29], HexValue(Text("lblQDGain")));
    });
    person->Clicks("cmdQDStop(0)").WaitsFor("cmdSetup").Clicks(StepButton(2)).WaitsFor("cmdReady");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_FALSE(SimOneDecimal) << "other steps read whole counts";
}

}  // namespace
}  // namespace ombrix::test
