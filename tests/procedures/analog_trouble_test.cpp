// What the analog output's page does when work is stopped, a word gets lost, or something else has written it.

#include "procedures/analog_fixture.h"

#include "calibration/analog_points.h"

using namespace ombrix;
using namespace ombrix::test;
using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char *kZero = "*1F68F000000600000";

class AnalogTrouble : public AnalogPages
{
protected:
    void TearDown() override
    {
        StopListening(m_listener);
        AnalogPages::TearDown();
    }
    void Listens()
    {
        m_listener = ListenToJournal([this](const JournalEvent &event) { events.push_back(event); });
    }
    /// Esc so many milliseconds behind the click, then until navigation is free.
    void StopsBehind(const std::string &button, int ms)
    {
        person->Clicks(button).Waits(ms).Presses(Qt::Key_Escape);
        person->WaitsUntil("navigation is free", [] { return IsEnabled("cmdSetup"); });
        ASSERT_TRUE(person->Runs()) << person->Trouble();
    }
    void ExpectsNoPoint()
    {
        EXPECT_EQ(Text("lblAnalogPoint"), "Analog Output");
        EXPECT_FALSE(IsEnabled("txtRead"));
        EXPECT_EQ(CurrentStepButton, -1);
    }

    std::vector<JournalEvent> events;

private:
    int m_listener = -1;
};

}  // namespace

// ---- no meter in hand ----

TEST_F(AnalogTrouble, WithoutAMeterInHandNothingIsOnThatWritesIntoIt)
{
    Opens();
    Leaves("cmdAnaCal(1)");
    Leaves(StepButton(kZeroInitFileAt));
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("built-in ones again"));
    for (const char *const name : {"optDAC(0)", "optDAC(2)", "optCalVfy(1)", "optCOffCalibPt(1)", "optAnaMode(0)",
                                   "cmdAnaCal(0)", "cmdNVMWord(6)", "txtRead"})
        EXPECT_FALSE(IsEnabled(name)) << name;
    EXPECT_EQ(bench->Nvm(), before);
    person->Clicks("cmdUp").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(AnalogSettingsBorrowed()) << "the first point takes the meter";
    Leaves("cmdAnaCal(1)");
    EXPECT_EQ(bench->Nvm(), before);
}

TEST_F(AnalogTrouble, AnotherMeterBehindDoneBeginsAfresh)
{
    Opens();
    Chooses("optDAC(2)");
    person->Clicks(StepButton(kMinus10VoltsAt)).WaitsFor("cmdModal").Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    Types(Shown());
    EXPECT_TRUE(analog.bipolarDone);
    Leaves("cmdAnaCal(1)");
    person->Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal").Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_FALSE(analog.bipolarDone) << "nobody has calibrated its bipolar words";
    EXPECT_EQ(Text("txtLast(4)"), "");
}

// ---- a word that got lost ----

TEST_F(AnalogTrouble, APointOfASilentMeterIsNotOpened)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    bench->SwitchFault("silent-meter", true);
    Leaves(StepButton(kVoltOffsetAt));
    ExpectsNoPoint();
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    bench->SwitchFault("silent-meter", false);
    OpensPoint(kVoltOffsetAt);
    EXPECT_NEAR(bench->AnalogOut(1).value, 0, 100);
}

TEST_F(AnalogTrouble, AWordThatTheMeterDidNotTakeIsToldAndTheNextCorrectionBeginsWithWhatItHolds)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    const std::uint16_t found = WordOf(61);
    Listens();
    person->Types("txtRead", "10012.5").PressesAtOnce(Qt::Key_Return).Waits(1900).Does([&] {
        bench->SetWord(61, found);
    });
    person->WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("did not take word"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    EXPECT_EQ(analog.words[1], found);
    Types("10010");
    EXPECT_EQ(WordOf(61), CorrectAnalogWord(1, 10010, found, 200).word);
    const auto rounds = Of(events, "round");
    ASSERT_EQ(rounds.size(), 2U);
    EXPECT_EQ(TextOf(rounds[0], "readBack"), "other words");
    EXPECT_EQ(TextOf(rounds[1], "wordBefore"), HexText(found, 4));
}

TEST_F(AnalogTrouble, AWordNobodyKnowsIsReadBeforeTheNextCorrection)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    bench->SwitchFault("silent-meter", true);
    Types("10012.5");
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("isn't known"));
    const std::uint16_t held = WordOf(61);
    Forget();
    Types("10010");
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("the reading was not used"));
    EXPECT_THAT(ToMeter(), testing::Each(testing::StartsWith("*1X"))) << "nothing is written on a guess";
    bench->SwitchFault("silent-meter", false);
    bench->SetWord(61, static_cast<std::uint16_t>(held - 100));
    Types("10010");
    EXPECT_EQ(WordOf(61), CorrectAnalogWord(1, 10010, static_cast<std::uint16_t>(held - 100), 200).word);
}

// ---- stopped ----

TEST_F(AnalogTrouble, AStopWhileAPointOpensAsksForNoCableAndPutsNothingOut)
{
    Opens();
    Chooses("optDAC(2)");
    Forget();
    StopsBehind(StepButton(kMinus10VoltsAt), 300);
    ExpectsNoPoint();
    EXPECT_FALSE(Sees("fraModal"));
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("Stopped"));
    EXPECT_EQ(ToMeter().back(), kZero);
    person->Clicks(StepButton(kMinus10VoltsAt)).WaitsFor("cmdModal").Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs()) << "the cable is asked for when the point opens after all";
    EXPECT_NEAR(bench->AnalogOut(1).value, -10000, 100);
}

TEST_F(AnalogTrouble, AStopOfVerifyModesFirstStepLeavesIt)
{
    Opens();
    Chooses("optDAC(3)");
    StopsBehind("optCalVfy(1)", 300);
    ExpectsNoPoint();
    EXPECT_TRUE(ScriptedOperator::IsOn("optCalVfy(0)"));
    EXPECT_FALSE(IsEnabled("txtMeterVal"));
    EXPECT_TRUE(IsEnabled(StepButton(kVoltOffsetAt)));
}

TEST_F(AnalogTrouble, AStopOfAReadingLeavesNoPointPutOut)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Forget();
    Listens();
    person->Types("txtRead", "10010").PressesAtOnce(Qt::Key_Return).Waits(300).Presses(Qt::Key_Escape);
    person->WaitsUntil("navigation is free", [] { return IsEnabled("cmdSetup"); });
    ASSERT_TRUE(person->Runs());
    ExpectsNoPoint();
    EXPECT_NEAR(bench->AnalogOut(1).value, 0, 100);
    EXPECT_THAT(ToMeter(), Not(Contains("*1F68F004E20600000")));
    ASSERT_EQ(Of(events, "round").size(), 1U) << "the word was written";
    EXPECT_EQ(TextOf(Of(events, "round")[0], "readBack"), "stopped");
}

TEST_F(AnalogTrouble, AStopOfReCalibrateOpensNoPoint)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    StopsBehind(StepButton(kReCalibrateAt), 300);
    ExpectsNoPoint();
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("Stopped"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
}

TEST_F(AnalogTrouble, ReCalibrateOfASilentMeterIsToldAndOpensNoPoint)
{
    Opens();
    bench->SwitchFault("silent-meter", true);
    Leaves(StepButton(kReCalibrateAt));
    ExpectsNoPoint();
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("did not answer"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    bench->SwitchFault("silent-meter", false);
}

TEST_F(AnalogTrouble, AStoppedAcceptLearnsNothingAndKeepsThePoint)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    const auto nominal = analog.nominal;
    StopsBehind("cmdAnaCal(0)", 200);
    EXPECT_EQ(analog.nominal, nominal);
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("Stopped: nothing was accepted"));
    EXPECT_TRUE(IsEnabled("txtRead"));
    EXPECT_NEAR(bench->AnalogOut(1).value, 10000, 100);
}

TEST_F(AnalogTrouble, AStoppedDoneIsNoSilentMeterAndIsDoneAgain)
{
    Opens();
    std::string box;
    person->onBox = [&](const std::string &, const std::string &text) { box = text; };
    StopsBehind("cmdAnaCal(1)", 100);
    EXPECT_THAT(box, HasSubstr("Stopped before the meter's words 14 to 12, 20, 240 were read back"));
    EXPECT_TRUE(AnalogSettingsBorrowed());
    Leaves("cmdAnaCal(1)");
    EXPECT_EQ(bench->Nvm(), before);
    EXPECT_TRUE(Sees("fraCalib(0)"));
}

TEST_F(AnalogTrouble, DoneAtAnotherMeterHasNothingLeftToDo)
{
    Opens();
    bench->SetWord(20, 0x0777);
    std::string box;
    person->onBox = [&](const std::string &, const std::string &text) { box = text; };
    Leaves("cmdAnaCal(1)");
    EXPECT_THAT(box, HasSubstr("another meter"));
    EXPECT_TRUE(Sees("fraCalib(0)"));
}

// ---- words that something else has written ----

TEST_F(AnalogTrouble, InitNvmemForgetsTheReadingsOfTheWordsItHasReplaced)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    Listens();
    Leaves(StepButton(kInitNvmemAt));
    EXPECT_EQ(Text("txtLast(1)"), "");
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(Text("lblStepMark(3)"), "") << "nobody has read the word that stands there";
    const auto ended = Of(events, "step ended");
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(TextOf(ended[0], "how"), "left");
    OpensPoint(kCurrentOffsetAt);
    Types(Shown());
    EXPECT_EQ(FieldOf(Of(events, "round")[0], "asFound")->is, JournalValue(false).is) << "the word was written before";
}

TEST_F(AnalogTrouble, AWordSavedByHandForgetsItsReading)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    Listens();
    person->Clicks("cmdNVMWord(6)").WaitsFor("cmdNVMWord(2)").Types("txtNVMWord(0)", "3D").Clicks("cmdNVMWord(2)");
    person->WaitsFor("txtNVMWord(1)").Types("txtNVMWord(1)", "9ABC").Clicks("cmdNVMWord(3)").WaitsFor("cmdNVMWord(5)");
    person->Clicks("cmdNVMWord(5)").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("txtLast(1)"), "");
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(Text("lblStepMark(3)"), "");
    ASSERT_EQ(Of(events, "step ended").size(), 1U);
    EXPECT_EQ(TextOf(Of(events, "step ended")[0], "how"), "left");
}

TEST_F(AnalogTrouble, AValueIsNotShownAnyMoreWhenTheRawWordsHaveRestartedTheMeter)
{
    Opens();
    person->Clicks("optCalVfy(1)").WaitsFor("txtMeterVal").Types("txtMeterVal", "10000").PressesAtOnce(Qt::Key_Return);
    person->WaitsFor("txtMeterVal").Clicks("cmdNVMWord(6)").WaitsFor("cmdNVMWord(2)").Clicks("cmdNVMWord(2)");
    person->WaitsFor("cmdNVMWord(5)").Clicks("cmdNVMWord(5)").WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_NEAR(bench->AnalogOut(1).value, 0, 100);
    EXPECT_EQ(Text("txtMeterVal"), "");
}

// ---- cables ----

TEST_F(AnalogTrouble, AfterVerifyingADualMeterItsCableIsAskedForAgain)
{
    Opens();
    Chooses("optDAC(3)");
    person->Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal").Clicks("cmdModal").WaitsFor("txtRead");
    person->Clicks("optCalVfy(1)").WaitsFor("cmdModal").Clicks("cmdModal").WaitsFor("txtMeterVal");
    person->Clicks("optCalVfy(0)").WaitsFor("cmdUp").Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal").Does([] {
        EXPECT_EQ(Text("lblModal"),
                  "Connect the UniPolar cable between Analog Output Connector 1 and the Output Meter.");
    });
    person->Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
}

TEST_F(AnalogTrouble, ADacThatNeedsAnotherCableAsksForItInTheSameMode)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    person->Clicks("optDAC(2)").WaitsFor("txtRead").Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal");
    person->Clicks("cmdModal").WaitsFor("txtRead").Clicks(StepButton(kVoltageGainAt)).WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs()) << "once";
}

TEST_F(AnalogTrouble, SettingsThatAreStillOwedAreToldAsSuch)
{
    Opens();
    bench->SwitchFault("silent-meter", true);
    person->onBox = [](const std::string &, const std::string &) {};
    Leaves("cmdAnaCal(1)");
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("own settings are not back"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    EXPECT_TRUE(IsEnabled("cmdAnaCal(1)"));
    EXPECT_FALSE(IsEnabled("cmdAnaCal(0)"));
    bench->SwitchFault("silent-meter", false);
}

// ---- the journal ----

TEST_F(AnalogTrouble, TheJournalKeepsTheSettingsThatWereFoundAlsoBehindQuit)
{
    Stands({.board = kDc, .xmtr = true});
    Establishes();
    Listens();
    const std::string range = HexText(WordOf(14), 4) + HexText(WordOf(13), 4) + HexText(WordOf(12), 4);
    const JournalValue found = std::vector{range, HexText(WordOf(20), 4), HexText(WordOf(240), 4)};
    OpensTab();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    person->Clicks("cmdQuit");
    person->Runs();
    const auto settings = Of(events, "analog settings");
    ASSERT_EQ(settings.size(), 2U);
    EXPECT_EQ(TextOf(settings[0], "how"), "borrowed");
    EXPECT_EQ(FieldOf(settings[0], "found")->is, found.is);
    EXPECT_EQ(TextOf(settings[1], "how"), "left");
    EXPECT_EQ(FieldOf(settings[1], "found")->is, found.is);
    ASSERT_EQ(Of(events, "step ended").size(), 1U);
    EXPECT_EQ(TextOf(Of(events, "step ended")[0], "how"), "quit");
}

TEST_F(AnalogTrouble, TheJournalHasTheRoundThatQuitBrokeOff)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Listens();
    person->Types("txtRead", "10010").PressesAtOnce(Qt::Key_Return).Waits(500).Clicks("cmdQuit");
    person->Runs();
    ASSERT_EQ(Of(events, "round").size(), 1U);
    EXPECT_EQ(TextOf(Of(events, "round")[0], "readBack"), "not read");
    ASSERT_EQ(Of(events, "step ended").size(), 1U);
    EXPECT_EQ(TextOf(Of(events, "step ended")[0], "stays"), TextOf(Of(events, "round")[0], "wordAfter"));
}

TEST_F(AnalogTrouble, TheJournalTellsChoicesAndNoVerdictThatNobodyHasReached)
{
    Opens();
    Listens();
    Chooses("optDAC(2)");
    Chooses("optCOffCalibPt(1)");
    Leaves(StepButton(kZeroInitFileAt));
    const auto choices = Of(events, "settings");
    ASSERT_EQ(choices.size(), 2U);
    EXPECT_EQ(TextOf(choices[0], "dacType"), "2");
    EXPECT_EQ(TextOf(choices[1], "currentOffsetPoint"), "4000");
    ASSERT_EQ(Of(events, "analog image").size(), 1U);
    EXPECT_EQ(FieldOf(Of(events, "analog image")[0], "readBack"), nullptr);
}
