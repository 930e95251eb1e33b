#include "shell/simulation_switch.h"

#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/meter_protocol.h"
#include "model/nominals.h"
#include "shell/setup_page.h"
#include "shell/shell_fixture.h"

using namespace ombrix;
using namespace ombrix::test;

namespace {

class SimulationSwitch : public ShellTest
{
protected:
    void ExpectTheMarkIsDeaf()
    {
        DoublyClicks("lblSim").Does([] { EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr); });
        EXPECT_TRUE(person.Runs());
    }
};

}  // namespace

TEST_F(SimulationSwitch, ADoubleClickOnTheCaptionGoesOverAndBack)
{
    EXPECT_FALSE(Sees("lblSim"));
    DoubleClick("lblCalOut");
    EXPECT_FALSE(HardwareMode);
    EXPECT_FALSE(RealTimeDelays);
    EXPECT_TRUE(Sees("lblSim"));
    EXPECT_TRUE(Sees("shpSim"));
    EXPECT_EQ(Text("lblSim"), "S");
    DoubleClick("lblCalOut");
    EXPECT_TRUE(HardwareMode);
    EXPECT_TRUE(RealTimeDelays);
    EXPECT_FALSE(Sees("lblSim"));
    EXPECT_FALSE(Sees("shpSim"));
}

TEST_F(SimulationSwitch, ADoubleClickAfterTheFirstEstablishDoesNothingEvenAfterAReset)
{
    EstablishSimulated();
    DoubleClick("lblCalOut");
    EXPECT_FALSE(HardwareMode);
    EXPECT_TRUE(Established);
    ResetSession();
    DoubleClick("lblCalOut");
    EXPECT_FALSE(HardwareMode);
}

TEST_F(SimulationSwitch, GoingBackHidesTheSimulatedSwitchAndTheStatus)
{
    DoubleClick("lblCalOut");
    outlets.showSwitch(true);
    ShowStatus("words", Red());
    DoubleClick("lblCalOut");
    EXPECT_FALSE(Sees("lblSwitch"));
    EXPECT_FALSE(Sees("lblStatus"));
    EXPECT_FALSE(Sees("shpStatus"));
}

TEST_F(SimulationSwitch, ADoubleClickOnTheMarkInHardwareModeDoesNothing)
{
    EstablishOnLines();
    ExpectTheMarkIsDeaf();
}

TEST_F(SimulationSwitch, ADoubleClickOnTheMarkAsksForTheSimulatedMeter)
{
    EstablishSimulated();
    person.DoubleClicks("lblSim").WaitsFor("dlgSCType").Clicks("optSC(2)").Clicks("OKButton");
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(ShowSCDialogFull, 0);
    EXPECT_EQ(SimNvm[21] & 0xFF, 0x03);
    EXPECT_EQ(SCType, kDc) << "the session follows at the next tab";
    ClickTab(kTabLc);
    EXPECT_EQ(SCType, kLc);
    EXPECT_FALSE(TabMismatch);
}

TEST_F(SimulationSwitch, TheSimulatedMeterIsPickedBeforeTheFirstEstablishAsWell)
{
    DoubleClick("lblCalOut");
    person.DoubleClicks("lblSim").WaitsFor("dlgSCType").Clicks("optSC(2)").Clicks("OKButton");
    person.Clicks("cmdEstablish");
    ASSERT_TRUE(person.Runs());
    EXPECT_TRUE(Established);
    EXPECT_EQ(SCType, kLc);
    EXPECT_EQ(CalibTab, kTabLc);
}

TEST_F(SimulationSwitch, TheMarkIsDeafWhileAPageHasLockedNavigation)
{
    EstablishSimulated();
    SetNavigation(Navigation::Held);
    ExpectTheMarkIsDeaf();
    EXPECT_FALSE(IsEnabled(StepButton(0))) << "the page's lock stands";
}

TEST_F(SimulationSwitch, TheCaptionIsDeafWhileAProcedureRuns)
{
    int looks = 0;
    person.Clicks("cmdEstablish").Waits(300).Does([&] {
        ++looks;
        EXPECT_FALSE(Established);
        EXPECT_TRUE(SimToggleAllowed);
    });
    person.DoubleClicks("lblCalOut").Does([] { EXPECT_TRUE(HardwareMode); });
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(looks, 1);
    EXPECT_TRUE(HardwareMode);
    EXPECT_TRUE(Established);
}

TEST_F(SimulationSwitch, ClosesBothPortsAndAnOpenCalibratorHearsStandbyAndLocalFirst)
{
    bench->SwitchFault("silent-meter", true);
    Click("cmdEstablish");
    ASSERT_FALSE(Established);
    ASSERT_TRUE(comCAL.IsOpen());
    Forget();
    DoubleClick("lblCalOut");
    EXPECT_THAT(ToCalibrator(), testing::ElementsAre("OUT 0 V, 0 Hz ; STBY ; *WAI", "LOCAL"));
    EXPECT_GE(clock.Elapsed(), 100) << "the last bytes have left before the port closes";
    EXPECT_FALSE(comCAL.IsOpen());
    EXPECT_FALSE(comDPM.IsOpen());
    EXPECT_FALSE(HardwareMode);
    EXPECT_FALSE(Quitting);
    EXPECT_EQ(CalPort, 2);
}

TEST_F(SimulationSwitch, NothingCanBeChosenWhileTheLinesClose)
{
    bench->SwitchFault("silent-meter", true);
    Click("cmdEstablish");
    ASSERT_TRUE(comCAL.IsOpen());
    DoublyClicks("lblCalOut").Waits(50).Does([] {
        EXPECT_TRUE(comCAL.IsOpen());
        EXPECT_FALSE(IsEnabled("cmdEstablish"));
        EXPECT_FALSE(IsEnabled("optManual"));
    });
    ASSERT_TRUE(person.Runs());
    EXPECT_FALSE(comCAL.IsOpen());
    EXPECT_TRUE(IsEnabled("cmdEstablish"));
    EXPECT_TRUE(IsEnabled("optManual"));
}

TEST_F(SimulationSwitch, ACalibratorThatIsNoLongerChosenHearsThemToo)
{
    bench->SwitchFault("silent-meter", true);
    Click("cmdEstablish");
    Click("optManual");
    Forget();
    DoubleClick("lblCalOut");
    EXPECT_THAT(ToCalibrator(), testing::ElementsAre("OUT 0 V, 0 Hz ; STBY ; *WAI", "LOCAL"));
    EXPECT_EQ(CalPort, 0);
}

TEST_F(SimulationSwitch, GoingBackReturnsToWhatRealMetersTaught)
{
    const std::string word = NominalWordOf(kDc, 25);
    DoubleClick("lblCalOut");
    SetNominalSlopeOf(kDc, 25, 9.5f);
    SetNominalWordOf(kDc, 25, "1234");
    DoubleClick("lblCalOut");
    EXPECT_EQ(NominalSlopeOf(kDc, 25), DefaultSlopeOf(kDc, 25));
    EXPECT_EQ(NominalWordOf(kDc, 25), word);
}

TEST_F(SimulationSwitch, TheMarkIsDeafWhileAProcedureRuns)
{
    EstablishSimulated();
    RegisterProbe(Step::Range2V, [] {
        SetNavigation(Navigation::Open);  // a page that leaves navigation open
        DelayAlways(2000);
    });
    person.Clicks(StepButton(4)).Waits(500).Does([] { EXPECT_TRUE(TabChangeAllowed); });
    ExpectTheMarkIsDeaf();
    EXPECT_EQ(ScriptedOperator::Find("dlgSCType"), nullptr);
    DoublyClicks("lblSim").WaitsFor("dlgSCType").Clicks("OKButton");
    EXPECT_TRUE(person.Runs()) << "it hears again";
}
