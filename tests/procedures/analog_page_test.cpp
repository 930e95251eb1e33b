#include "procedures/analog_fixture.h"

#include "calibration/analog_points.h"
#include "model/analog_settings.h"
#include "model/ini_store.h"
#include "session/journal.h"
#include "session/outlets.h"

#include <QLineEdit>

#include <algorithm>
#include <cmath>

using namespace ombrix;
using namespace ombrix::test;
using testing::ElementsAre;
using testing::HasSubstr;

// ---- the tab ----

TEST_F(AnalogPages, TheTabReadsWhatItWillOverwriteBeforeItWrites)
{
    Stands({.board = kDc});
    Establishes();
    person->ClicksTab(kTabAnaCal).WaitsFor("cmdUp");
    ASSERT_TRUE(person->Runs());
    const std::vector<std::string> said = ToMeter();
    const auto at = [&](const std::string &frame) { return std::find(said.begin(), said.end(), frame) - said.begin(); };
    EXPECT_LT(at("*1X43FZ"), at("*1W30E004E20000000Z"));
    EXPECT_LT(at("*1X914Z"), at("*1W30E004E20000000Z"));
    EXPECT_LT(at("*1X1F0Z"), at("*1W1F0525C"));
    EXPECT_EQ(analog.words[1], WordOf(61));
    EXPECT_FALSE(Sees("fraCalOut"));
    EXPECT_EQ(Text("lblAnalogPoint"), "Analog Output");
    EXPECT_FALSE(IsEnabled("txtRead"));
}

TEST_F(AnalogPages, TheStepsOfTheDacInUseAreOn)
{
    Opens();
    const char *const kSteps[] = {"0 2 3 4 5 15 16", "0 2 3 4 5 15 16", "0 2 3 4 5 7 8 15 16",
                                  "0 2 3 4 5 10 11 12 13 15 16"};
    for (int dac = 0; dac < 4; ++dac) {
        Chooses("optDAC(" + std::to_string(dac) + ")");
        std::string on;
        for (int position = 0; position < kPositions; ++position)
            if (IsEnabled(StepButton(position)))
                on += (on.empty() ? "" : " ") + std::to_string(position);
        EXPECT_EQ(on, kSteps[dac]) << "DAC type " << dac;
        EXPECT_EQ(HexText(WordOf(240), 4), std::vector<std::string>({"0000", "525C", "535C", "545C"})[dac]);
        EXPECT_EQ(DacTypeText, std::to_string(dac));
        for (int point = 0; point < kAnalogWords; ++point)
            EXPECT_EQ(Sees("txtLast(" + std::to_string(point) + ")"), HasAnalogPoint(dac, point)) << point;
    }
}

TEST_F(AnalogPages, ASilentMeterIsToldInRedAndTheStepTriesAgain)
{
    Opens();
    Leaves("cmdAnaCal(1)");
    bench->SwitchFault("silent-meter", true);
    Leaves(StepButton(kVoltOffsetAt));
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("The meter did not answer"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    EXPECT_FALSE(IsEnabled("txtRead"));
    bench->SwitchFault("silent-meter", false);
    OpensPoint(kVoltOffsetAt);
    EXPECT_EQ(bench->AnalogOut(1).unit, "mV");
}

// ---- a point ----

TEST_F(AnalogPages, APointIsPutOutAndAsksForItsReading)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    EXPECT_EQ(Text("lblAnalogPoint"), "Voltage Gain");
    EXPECT_EQ(Text("lblEnter"), "Enter AnaOut Reading in mV");
    EXPECT_EQ(Text("lblDesired"), "Desired AnaOut Reading = 10000 mV +/- 1.25 mV");
    EXPECT_THAT(ToMeter(), ElementsAre("*1W1140201", "*1X13DZ", "*1F68F004E20600000"));
    EXPECT_TRUE(HasFocus("txtRead"));
    EXPECT_TRUE(ScriptedOperator::IsOn("optAnaMode(0)"));
    EXPECT_NEAR(bench->AnalogOut(1).value, 10000, 100);
    Forget();
    OpensPoint(kVoltOffsetAt);
    EXPECT_THAT(ToMeter(), ElementsAre("*1X13CZ", "*1F68F000000600000")) << "the mode is the same";
}

TEST_F(AnalogPages, EnterIsAllThatAReadingNeeds)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    const double off = bench->AnalogOut(1).value - 10000;
    const std::string typed = Shown();
    ASSERT_GT(std::fabs(off), 1.25);
    Forget();
    Types(typed);
    EXPECT_THAT(ToMeter(), ElementsAre("*1W13D" + HexText(WordOf(61), 4), "*1X13DZ", "*1F68F004E20600000"));
    EXPECT_EQ(analog.words[1], WordOf(61));
    EXPECT_LT(std::fabs(bench->AnalogOut(1).value - 10000), 1.25);
    EXPECT_TRUE(HasFocus("txtRead"));
    EXPECT_EQ(Text("txtRead"), "");
    EXPECT_EQ(Text("txtLast(1)"), typed);
    EXPECT_EQ(Text("lblDistance"), (off > 0 ? "+" : "") + Format(Val(typed) - 10000, 2) + " mV");
    EXPECT_THAT(Text("lblDistanceMark"), HasSubstr("outside"));
    Types(Shown());
    EXPECT_EQ(Text("lblDistanceMark"), "inside +/- 1.25 mV");
    EXPECT_EQ(Fill("lblDistanceMark"), "#00ff00");
    EXPECT_EQ(Text("lblInst(12)"), "The meter holds word " + HexText(WordOf(61), 4) +
                                       ". The reading was inside:\ngo on with \"Up\", or type another one");
    EXPECT_EQ(Fill("shpInst(12)"), "#00ff00");
}

TEST_F(AnalogPages, BehindTheLastPointItSaysWhatIsMissing)
{
    Opens();
    OpensPoint(kCurrentGainAt);
    for (int reading = 0; reading < 2; ++reading)
        Types(Shown());
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("not inside yet: VO VG CO"));
    Leaves("cmdAnaCal(0)");
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("Not read inside: VO VG CO"));
    for (const int position : {kVoltOffsetAt, kVoltageGainAt, kCurrentOffsetAt, kCurrentGainAt}) {
        OpensPoint(position);
        for (int reading = 0; reading < 2; ++reading)
            Types(Shown());
    }
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("all points are inside, click \"Accept\""));
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(Text("lblInst(12)"), "Accepted: the station has learned from this meter's words");
    EXPECT_EQ(Fill("shpInst(12)"), "#00ff00");
}

TEST_F(AnalogPages, AReadingThatIsNoNumberIsToldAndChangesNothing)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Forget();
    for (const char *const text : {"", "10,012", "10,012.5"}) {
        Types(text);
        EXPECT_EQ(Fill("shpInst(12)"), "#ff0000") << text;
        EXPECT_THAT(ToMeter(), testing::IsEmpty());
        EXPECT_TRUE(HasFocus("txtRead"));
    }
    EXPECT_EQ(Text("txtLast(1)"), "");
    Types("10012,5");
    EXPECT_EQ(Text("lblDistance"), "+12.50 mV") << "a comma is a decimal sign";
}

TEST_F(AnalogPages, AReadingOutOfRangeGetsABoxAndChangesNothing)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Forget();
    std::string box;
    person->Types("txtRead", "16001").PressesAtOnce(Qt::Key_Return).WaitsUntil("the box stands", [] {
        return !ScriptedOperator::BoxText().empty();
    });
    person->Does([&] { box = ScriptedOperator::BoxTitle() + ": " + ScriptedOperator::BoxText(); }).AnswersBox("OK");
    person->WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(box, "Value Out of Range: Value cannot exceed 16000\nPlease re-enter value.");
    EXPECT_THAT(ToMeter(), testing::IsEmpty());
    EXPECT_EQ(Text("txtLast(1)"), "");
    EXPECT_TRUE(HasFocus("txtRead")) << "the keys are its own when the box has gone";
}

TEST_F(AnalogPages, AWordAtItsLimitIsToldAndWritten)
{
    Opens();
    OpensPoint(kVoltOffsetAt);
    std::string box;
    person->Types("txtRead", "1999").PressesAtOnce(Qt::Key_Return).WaitsUntil("the box stands", [] {
        return !ScriptedOperator::BoxText().empty();
    });
    person->Does([&] { box = ScriptedOperator::BoxTitle() + ": " + ScriptedOperator::BoxText(); }).AnswersBox("OK");
    person->WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(box, "Offset Correction Overflow: Offset Correction is less than 0.\nIt has been set to 0.");
    EXPECT_EQ(WordOf(60), 0);
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
}

TEST_F(AnalogPages, ALineThatIsGoneIsToldInRed)
{
    Opens();
    OpensPoint(kVoltOffsetAt);
    bench->SwitchFault("meter-port-gone", true);
    Types("3.5");
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("line is gone"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    bench->SwitchFault("meter-port-gone", false);
}

TEST_F(AnalogPages, LeavingTheFieldWritesNothing)
{
    Opens();
    OpensPoint(kVoltOffsetAt);
    Forget();
    person->Types("txtRead", "12").Presses(Qt::Key_Tab).Waits(1000);
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), testing::IsEmpty());
}

TEST_F(AnalogPages, TheCurrentOffsetPointMovesTheOutput)
{
    Opens();
    OpensPoint(kCurrentOffsetAt);
    EXPECT_EQ(Text("lblDesired"), "Desired AnaOut Reading = 200 uA +/- 2.5 uA");
    Forget();
    Chooses("optCOffCalibPt(1)");
    EXPECT_EQ(Text("lblDesired"), "Desired AnaOut Reading = 4000 uA +/- 2.5 uA");
    EXPECT_THAT(ToMeter(), ElementsAre("*1F68F000FA0600000"));
    EXPECT_EQ(CurrentOffsetPoint, "4000");
}

TEST_F(AnalogPages, UpAndDownGoOverThePointsOfTheMeterAndNotBeyond)
{
    Opens();
    Chooses("optDAC(1)");
    for (const int position : {2, 3, 4, 5, 5}) {
        person->Clicks("cmdUp").WaitsFor("txtRead");
        ASSERT_TRUE(person->Runs());
        EXPECT_EQ(CurrentStepButton, position);
    }
    for (const int position : {4, 3, 2, 2}) {
        person->Clicks("cmdDown").WaitsFor("txtRead");
        ASSERT_TRUE(person->Runs());
        EXPECT_EQ(CurrentStepButton, position);
    }
}

// ---- cable ----

TEST_F(AnalogPages, TheCableIsAskedForWithABeepAndAllElseIsOff)
{
    Opens();
    Chooses("optDAC(2)");
    int beeps = 0;
    outlets.beep = [&] { ++beeps; };
    person->Clicks(StepButton(kMinus10VoltsAt)).WaitsFor("cmdModal").Does([&] {
        EXPECT_EQ(Text("lblModal"),
                  "Connect the BiPolar cable between the Analog Output Connector and the Output Meter.");
        EXPECT_EQ(beeps, 1);
        for (const char *const name : {"cmdSetup", "txtRead", "cmdUp", "cmdAnaCal(0)", "cmdAnaCal(1)", "optDAC(0)",
                                       "optCalVfy(1)", "cmdCalib(2)"})
            EXPECT_FALSE(IsEnabled(name)) << name;
        EXPECT_TRUE(IsEnabled("cmdQuit"));
        EXPECT_TRUE(HasFocus("cmdModal"));
    });
    person->Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_NEAR(bench->AnalogOut(1).value, -10000, 100);
    person->Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal").Does([] {
        EXPECT_EQ(Text("lblModal"),
                  "Connect the UniPolar cable between the Analog Output Connector and the Output Meter.");
    });
    person->Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
}

TEST_F(AnalogPages, ADualMeterNamesTheConnector)
{
    Opens();
    Chooses("optDAC(3)");
    person->Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal").Does([] {
        EXPECT_EQ(Text("lblModal"),
                  "Connect the UniPolar cable between Analog Output Connector 1 or 2 and the Output Meter.");
        EXPECT_EQ(Text("lblModalPoint"), "This point is at connector 1.");
    });
    person->Clicks("cmdModal").WaitsFor("txtRead").Clicks(StepButton(kSecondVoltOffsetAt)).WaitsFor("cmdModal");
    person->Does([] {
        EXPECT_EQ(Text("lblModal"),
                  "Connect the UniPolar cable between Analog Output Connector 2 and the Output Meter.");
    });
    person->Clicks("cmdModal").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Text("lblAnalogPoint"), "Volt Offset, output 2");
}

// ---- verifying ----

TEST_F(AnalogPages, VerifyingPutsOutTypedValuesAndChangesNoWord)
{
    Opens();
    OpensPoint(kVoltOffsetAt);
    const auto words = analog.words;
    person->Clicks("optCalVfy(1)").WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(HasFocus("txtMeterVal"));
    EXPECT_EQ(Text("lblSetMeter"), "Set Meter To");
    for (const int position : {2, 3, 4, 5, 15})
        EXPECT_FALSE(IsEnabled(StepButton(position))) << position;
    for (const char *const name : {"lblPL(0)", "lblPL(1)", "cmdUp", "cmdAnaCal(0)"})
        EXPECT_FALSE(IsEnabled(name)) << name;
    for (int kind = 0; kind < 3; ++kind)
        EXPECT_TRUE(IsEnabled("optAnaMode(" + std::to_string(kind) + ")"));
    EXPECT_TRUE(qobject_cast<QLineEdit *>(ScriptedOperator::Find("txtLast(0)"))->isReadOnly());
    Forget();
    person->Types("txtMeterVal", "10000").PressesAtOnce(Qt::Key_Return).WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), ElementsAre("*1F68F002710600000"));
    EXPECT_EQ(Text("lblInst(12)"), "The output meter should show 5000 mV");
    EXPECT_NEAR(bench->AnalogOut(1).value, 5000, 60);
    person->Clicks("optAnaMode(1)").WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(bench->AnalogOut(1).unit, "uA");
    EXPECT_TRUE(HasFocus("txtMeterVal"));
    EXPECT_EQ(analog.words, words);
    Chooses("optCalVfy(0)");
    EXPECT_FALSE(Sees("txtMeterVal"));
    EXPECT_TRUE(IsEnabled(StepButton(kReCalibrateAt)));
}

TEST_F(AnalogPages, VerifyingChoosesAModeWhereNoneIs)
{
    Opens();
    person->Clicks("optCalVfy(1)").WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(ScriptedOperator::IsOn("optAnaMode(0)"));
    EXPECT_EQ(WordOf(20), 0x0201);
    person->Types("txtMeterVal", "16777216").PressesAtOnce(Qt::Key_Return).Waits(100);
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000") << "one more than the highest value";
}

TEST_F(AnalogPages, VerifyingADualMeterAsksForTheCableOnce)
{
    Opens();
    Chooses("optDAC(3)");
    person->Clicks("optCalVfy(1)").WaitsFor("cmdModal").Clicks("cmdModal").WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs());
    person->Clicks("optCalVfy(0)").WaitsFor("cmdUp").Clicks("optCalVfy(1)").WaitsFor("cmdModal").Does([] {
        EXPECT_EQ(Text("lblModal"),
                  "Connect the UniPolar cable between Analog Output Connector 1 or 2 and the Output Meter.");
    });
    person->Clicks("cmdModal").WaitsFor("txtMeterVal");
    ASSERT_TRUE(person->Runs());
}

// ---- Accept ----

TEST_F(AnalogPages, AcceptLearnsFromWordsThatReadBack)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    const auto nominal = analog.nominal;
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(analog.nominal[1], BlendAnalogWord(analog.words[1], nominal[1]));
    EXPECT_EQ(StoredAnalogImage(), analog.image);
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("Accepted"));
    EXPECT_THAT(Text("lblStepMark(3)"), HasSubstr("✓"));
    EXPECT_TRUE(HasFocus("txtRead")) << "the point stays open";
}

TEST_F(AnalogPages, AcceptLearnsNothingFromAMeterThatHoldsOtherWords)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    bench->SetWord(61, 0x1234);
    const auto nominal = analog.nominal;
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(analog.nominal, nominal);
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    EXPECT_EQ(analog.words[1], 0x1234) << "the next correction begins with what the meter holds";
    EXPECT_EQ(Text("txtLast(1)"), "") << "what was read of another word";
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(Text("lblStepMark(3)"), "") << "no reading stands behind the word";
    LoadAnalogNominal();
    const auto learned = analog.nominal;
    bench->SwitchFault("silent-meter", true);
    Leaves("cmdAnaCal(0)");
    EXPECT_EQ(analog.nominal, learned);
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("did not answer"));
    bench->SwitchFault("silent-meter", false);
}

// ---- the steps beside the points ----

TEST_F(AnalogPages, InitNvmemGivesABlankMeterTheWordsOfItsDac)
{
    Opens();
    Chooses("optDAC(3)");
    for (const int word : {60, 61, 62, 63, 243, 244, 245, 246})
        bench->SetWord(word, 0xFFFF);
    Leaves(StepButton(kInitNvmemAt));
    for (const int point : {0, 1, 2, 3, 6, 7, 8, 9})
        EXPECT_EQ(WordOf(static_cast<std::size_t>(AnalogWordAddress(point, false))),
                  analog.nominal[static_cast<std::size_t>(point)])
            << point;
    EXPECT_EQ(Text("lblInst(12)"), "The nominal words are in the meter");
    EXPECT_FALSE(analog.dualDone) << "nothing was calibrated";
}

TEST_F(AnalogPages, InitNvmemTellsThatTheMeterDidNotTakeAWord)
{
    Opens();
    Chooses("optDAC(3)");
    bench->SetWord(61, 0xFFFF);
    bench->WearOut(61);
    Leaves(StepButton(kInitNvmemAt));
    EXPECT_THAT(Text("lblInst(12)"), HasSubstr("did not take all nominal words"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
}

TEST_F(AnalogPages, ReCalibrateStartsTheRoundOver)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    person->Clicks(StepButton(kReCalibrateAt)).WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(CurrentStepButton, kVoltOffsetAt);
    EXPECT_EQ(Text("txtLast(1)"), "");
    EXPECT_EQ(WordOf(61), analog.nominal[1]);
    EXPECT_TRUE(ScriptedOperator::IsOn("optCalVfy(0)"));
}

TEST_F(AnalogPages, ZeroInitFileBringsTheBuiltInWordsBackIntoTheStation)
{
    Opens();
    Chooses("optDAC(3)");
    Forget();
    Leaves(StepButton(kZeroInitFileAt));
    EXPECT_EQ(StoredAnalogImage(), "FA2001E0FD700048FD700048FA2001E0FD700048");
    EXPECT_TRUE(ScriptedOperator::IsOn("optDAC(1)"));
    EXPECT_FALSE(IsEnabled(StepButton(kSecondVoltOffsetAt)));
    EXPECT_EQ(WordOf(240), 0x525C) << "the meter works with the type that is shown";
}

// ---- what stays ----

TEST_F(AnalogPages, TheJournalTellsEachReadingAndHowItEnded)
{
    Opens();
    std::vector<JournalEvent> events;
    const int number = ListenToJournal([&](const JournalEvent &event) { events.push_back(event); });
    OpensPoint(kVoltageGainAt);
    const std::string found = HexText(WordOf(61), 4);
    const std::string typed = Shown();
    Types(typed);
    Leaves("cmdAnaCal(0)");
    Leaves("cmdAnaCal(1)");
    StopListening(number);
    std::vector<std::string> kinds;
    for (const JournalEvent &event : events)
        kinds.push_back(event.kind);
    ASSERT_THAT(kinds, ElementsAre("step opened", "round", "analog words", "step ended", "analog settings"));
    EXPECT_EQ(TextOf(events[1], "readBack"), "held");
    EXPECT_EQ(TextOf(events[0], "found"), found);
    EXPECT_EQ(TextOf(events[1], "wordBefore"), found);
    EXPECT_EQ(TextOf(events[1], "wordAfter"), HexText(WordOf(61), 4));
    EXPECT_EQ(FieldOf(events[1], "before")->is, JournalValue(std::vector{typed}).is);
    EXPECT_EQ(TextOf(events[2], "readBack"), "held");
    EXPECT_EQ(TextOf(events[3], "how"), "accepted");
    EXPECT_EQ(TextOf(events[4], "how"), "given back");
}

TEST_F(AnalogPages, AnAcceptedPointLosesItsMarkWhenItsWordIsWrittenAgain)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    Types(Shown());
    Leaves("cmdAnaCal(0)");
    EXPECT_NE(Text("lblStepMark(3)"), "");
    Leaves(StepButton(kInitNvmemAt));
    EXPECT_EQ(Text("lblStepMark(3)"), "");
}

TEST_F(SimulatedPage, TheAnalogOutputWorksWithoutAMeterAndTeachesNothingThatStays)
{
    Establishes();
    person->ClicksTab(kTabAnaCal).WaitsFor("cmdUp").Clicks(StepButton(kVoltageGainAt)).WaitsFor("txtRead");
    person->Types("txtRead", "10012.5").PressesAtOnce(Qt::Key_Return).WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(SimNvm[61], 64799) << "64880 was in it";
    const std::string kept = IniGet("AnaCal", "VGain");
    person->Clicks("cmdAnaCal(0)").WaitsFor("cmdAnaCal(1)").Clicks("cmdAnaCal(1)").WaitsFor("cmdSetup");
    ASSERT_TRUE(person->Runs());
    EXPECT_EQ(IniGet("AnaCal", "VGain"), kept);
    EXPECT_NE(StoredAnalogWords[1], kept) << "in this session it was learned";
}

TEST_F(AnalogPages, TheRawWordsAreOneClickAwayAndWhatIsSavedThereIsThePagesWordToo)
{
    Opens();
    OpensPoint(kVoltageGainAt);
    person->Clicks("cmdNVMWord(6)").WaitsFor("cmdNVMWord(2)").Types("txtNVMWord(0)", "3D").Clicks("cmdNVMWord(2)");
    person->WaitsFor("txtNVMWord(1)").Types("txtNVMWord(1)", "9ABC").Clicks("cmdNVMWord(3)").WaitsFor("cmdNVMWord(5)");
    person->Does([this] { EXPECT_EQ(WordOf(61), 0x9ABC); });
    person->Clicks("cmdNVMWord(5)").WaitsFor("txtRead");
    ASSERT_TRUE(person->Runs()) << person->Trouble();
    EXPECT_EQ(analog.words[1], 0x9ABC);
    EXPECT_EQ(Text("lblAnalogPoint"), "Voltage Gain");
    EXPECT_EQ(bench->AnalogOut(1).unit, "mV");
    EXPECT_GT(bench->AnalogOut(1).value, 5000.0) << "the point is put out again";
}
