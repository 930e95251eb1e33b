// Whatever way the analog output's page is left: the output is 0, and the meter has its own words again.

#include "procedures/analog_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using testing::Contains;
using testing::HasSubstr;

namespace {

constexpr const char *kZero = "*1F68F000000600000";
constexpr const char *kCounterZero = "*1W311000000000000";

class AnalogLeaving : public AnalogPages
{
protected:
    void CalibratesAPoint()
    {
        OpensPoint(kVoltageGainAt);
        Types(Shown());
        ASSERT_GT(bench->AnalogOut(1).value, 9000);
        Forget();
    }
    /// Its memory is as before but for the word that was calibrated.
    void ExpectsTheMetersOwnWords(std::size_t calibrated)
    {
        bench::Words expected = before;
        expected[calibrated] = analog.words[1];
        EXPECT_EQ(bench->Nvm(), expected);
        EXPECT_FALSE(AnalogSettingsBorrowed());
    }
};

}  // namespace

TEST_F(AnalogLeaving, ByDone)
{
    Opens();
    CalibratesAPoint();
    Leaves("cmdAnaCal(1)");
    ExpectsTheMetersOwnWords(61);
    EXPECT_THAT(ToMeter(), Contains(kZero));
    EXPECT_EQ(CurrentStepButton, -1);
    EXPECT_TRUE(Sees("fraCalib(0)"));
    EXPECT_TRUE(IsEnabled(StepButton(kVoltOffsetAt)));
    OpensPoint(kVoltOffsetAt);
    EXPECT_TRUE(AnalogSettingsBorrowed()) << "a point opened again takes the meter again";
}

TEST_F(AnalogLeaving, ByAnotherTab)
{
    Opens();
    CalibratesAPoint();
    person->ClicksTab(kTabDc).WaitsUntil("the tab is open", [] { return IsEnabled("cmdSetup"); });
    ASSERT_TRUE(person->Runs());
    ExpectsTheMetersOwnWords(61);
    EXPECT_EQ(CalibTab, kTabDc);
}

TEST_F(AnalogLeaving, ByTheSameTab)
{
    Opens();
    CalibratesAPoint();
    person->ClicksTab(kTabAnaCal).WaitsFor("cmdUp");
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(ToMeter(), Contains(kZero));
    Leaves("cmdAnaCal(1)");
    ExpectsTheMetersOwnWords(61);
}

TEST_F(AnalogLeaving, BySetup)
{
    Opens();
    CalibratesAPoint();
    Leaves("cmdSetup");
    ExpectsTheMetersOwnWords(61);
    EXPECT_TRUE(Sees("fraCalib(1)"));
}

TEST_F(AnalogLeaving, OfACounterToo)
{
    Opens(kVf);
    CalibratesAPoint();
    Leaves("cmdAnaCal(1)");
    ExpectsTheMetersOwnWords(189);
    EXPECT_THAT(ToMeter(), Contains(kCounterZero));
}

TEST_F(AnalogLeaving, ByQuitSendsOnlyTheZero)
{
    Opens();
    CalibratesAPoint();
    person->Clicks("cmdQuit");
    person->Runs();
    const std::vector<std::string> said = ToMeter();
    ASSERT_FALSE(said.empty());
    EXPECT_EQ(said.front(), kZero);
    for (const std::string &frame : said)
        EXPECT_TRUE(frame == kZero || frame.starts_with("*1W305")) << frame << " is neither it nor the display's setup";
}

TEST_F(AnalogLeaving, ByQuitOfACounterSendsOnlyTheZero)
{
    Opens(kVf);
    CalibratesAPoint();
    person->Clicks("cmdQuit");
    person->Runs();
    EXPECT_THAT(ToMeter(), testing::ElementsAre(kCounterZero));
}

TEST_F(AnalogLeaving, ByQuitWhileTheCableIsAskedFor)
{
    Opens();
    Chooses("optDAC(2)");
    Forget();
    person->Clicks(StepButton(kVoltOffsetAt)).WaitsFor("cmdModal").Clicks("cmdQuit");
    person->Runs();
    EXPECT_TRUE(Quitting);
    EXPECT_THAT(ToMeter(), testing::IsSupersetOf({"*1W1140201", kZero}));
}

TEST_F(AnalogLeaving, AMeterThatDoesNotTellItsIdentityIsNotPrepared)
{
    Opens();
    Leaves("cmdAnaCal(1)");
    Forget();
    bench->SwitchFault("silent-meter", true);
    person->ClicksTab(kTabAnaCal).WaitsUntil("the tab is open", [] { return IsEnabled("cmdSetup"); });
    ASSERT_TRUE(person->Runs());
    EXPECT_TRUE(Sees("fraCalib(1)"));
    EXPECT_FALSE(AnalogSettingsBorrowed());
    EXPECT_THAT(ToMeter(), testing::Not(Contains("*1W30E004E20000000Z")));
    bench->SwitchFault("silent-meter", false);
}

TEST_F(AnalogLeaving, AfterDoneQuitSaysNothingToTheOutput)
{
    Opens();
    Leaves("cmdAnaCal(1)");
    Forget();
    person->Clicks("cmdQuit");
    person->Runs();
    EXPECT_THAT(ToMeter(), testing::Not(Contains(kZero)));
}

TEST_F(AnalogLeaving, OfASilentMeterIsToldAndDoneAgain)
{
    Opens();
    CalibratesAPoint();
    bench->SwitchFault("silent-meter", true);
    std::string box;
    person->onBox = [&](const std::string &, const std::string &text) { box = text; };
    person->Clicks("cmdAnaCal(1)").WaitsUntil("it is given up", [] { return IsEnabled("cmdAnaCal(1)"); });
    ASSERT_TRUE(person->Runs());
    EXPECT_THAT(box, HasSubstr("14 to 12, 20, 240"));
    EXPECT_EQ(Fill("shpInst(12)"), "#ff0000");
    bench->SwitchFault("silent-meter", false);
    Leaves("cmdAnaCal(1)");
    ExpectsTheMetersOwnWords(61);
    EXPECT_TRUE(Sees("fraCalib(0)"));
}

TEST_F(AnalogLeaving, WhatWasNotGivenBackIsWhenTheTabIsOpenedAgain)
{
    Opens();
    CalibratesAPoint();
    bench->SwitchFault("silent-meter", true);
    person->onBox = [](const std::string &, const std::string &) {};
    Leaves("cmdSetup");
    EXPECT_TRUE(AnalogSettingsBorrowed());
    bench->SwitchFault("silent-meter", false);
    OpensTab();
    Leaves("cmdAnaCal(1)");
    ExpectsTheMetersOwnWords(61);
}

TEST_F(AnalogLeaving, AMeterInItsPlaceIsLeftAlone)
{
    Opens();
    CalibratesAPoint();
    bench->SetWord(20, 0x0777);
    const bench::Words other = bench->Nvm();
    std::string box;
    person->onBox = [&](const std::string &, const std::string &text) { box = text; };
    Leaves("cmdSetup");
    EXPECT_THAT(box, HasSubstr("another meter"));
    EXPECT_EQ(bench->Nvm(), other);
    EXPECT_THAT(ToMeter(), testing::Not(Contains(kZero)));
}
