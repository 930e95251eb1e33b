#include "shell/output_panel.h"

#include "links/cal_output.h"
#include "links/calibrator.h"
#include "shell/setup_page.h"
#include "shell/shell_fixture.h"

using namespace ombrix;
using namespace ombrix::test;

namespace {

class OutputPanel : public ShellTest
{
protected:
    static void Shows(double value, const std::string &unit, const std::string &text, const std::string &flag)
    {
        UpdateCalOutputPanel(value, unit);
        EXPECT_EQ(Text("lblOutput"), text);
        EXPECT_EQ(Text("lblFlag"), flag);
    }
};

constexpr char kGreen[] = "#00ff00";
constexpr char kYellow[] = "#ffff00";
constexpr char kRed[] = "#ff0000";

}  // namespace

TEST_F(OutputPanel, ShowsValueAndFlagInWordAndColour)
{
    Shows(0, "V", "0.0 V", "SAFE");
    EXPECT_EQ(Fill("shpFlag"), kGreen);
    Shows(18, "V", "18.0 V", "WARNING");
    EXPECT_EQ(Fill("shpFlag"), kYellow);
    Shows(660, "V", "660.0 V", "DANGER");
    EXPECT_EQ(Fill("shpFlag"), kRed);
}

TEST_F(OutputPanel, AThousandVoltsAreOneKilovoltAndAWarning)
{
    Shows(1000, "V", "1.0 kV", "WARNING");
}

TEST_F(OutputPanel, AValueOfExactlyZeroKeepsTheBareUnit)
{
    Shows(0, "V", "0.0 V", "SAFE");
    Shows(0, "A", "0.0 A", "SAFE");
}

TEST_F(OutputPanel, TemperaturesAreWrittenWithTheirDegree)
{
    Shows(1356.4, "FAR", "1356.4 °F", "SAFE");
}

TEST_F(OutputPanel, NoFlagShowsBeforeAFirstOutput)
{
    EXPECT_EQ(Text("lblOutput"), "");
    EXPECT_EQ(Text("lblFlag"), "");
    EXPECT_EQ(Fill("shpFlag"), Fill("shpOutput"));
}

TEST_F(OutputPanel, ResetSessionEmptiesValueAndFlag)
{
    UpdateCalOutputPanel(660, "V");
    ResetSession();
    EXPECT_EQ(Text("lblOutput"), "");
    EXPECT_EQ(Text("lblFlag"), "");
    EXPECT_EQ(Fill("shpFlag"), Fill("shpOutput"));
}

TEST_F(OutputPanel, SaysAssumedInManualModeOnly)
{
    UpdateCalOutputPanel(2, "V");
    EXPECT_FALSE(Sees("lblAssumed"));
    Automatic = false;
    UpdateCalOutputPanel(2, "V");
    EXPECT_TRUE(Sees("lblAssumed"));
    EXPECT_EQ(Text("lblAssumed"), "(assumed)");
}

TEST_F(OutputPanel, HiddenItSaysNothingAndKeepsItsRoom)
{
    Automatic = false;
    const auto place = [] { return ScriptedOperator::Find("cmdQuit")->mapToGlobal(QPoint(0, 0)); };
    person.Waits(10);
    ASSERT_TRUE(person.Runs());
    const QPoint before = place();
    ShowCalPanel(false);
    EXPECT_FALSE(Sees("fraCalOut"));
    UpdateCalOutputPanel(2, "V");
    EXPECT_FALSE(Sees("lblAssumed"));
    person.Waits(10);
    ASSERT_TRUE(person.Runs());
    EXPECT_EQ(place(), before);
    ShowCalPanel(true);
    EXPECT_TRUE(Sees("lblCalOut"));
    EXPECT_TRUE(Sees("shpFlag"));
    EXPECT_TRUE(Sees("lblAssumed"));
    EXPECT_EQ(Text("lblCalOut"), "Calibrator Output");
}

TEST_F(OutputPanel, ShowsTheSimulatedSwitch)
{
    EXPECT_FALSE(Sees("lblSwitch"));
    outlets.showSwitch(true);
    outlets.showSwitchText("11111");
    EXPECT_TRUE(Sees("lblSwitch"));
    EXPECT_EQ(Text("lblSwitch"), "11111");
}

TEST_F(OutputPanel, FlagsCanBeReadAcrossARoom)
{
    EXPECT_GE(ScriptedOperator::Find("lblFlag")->font().pointSize(), 30);
    EXPECT_TRUE(ScriptedOperator::Find("lblFlag")->font().bold());
    EXPECT_GE(ScriptedOperator::Find("lblOutput")->font().pointSize(), 30);
}
