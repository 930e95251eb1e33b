#include "shell/port_notes.h"

#include "model/ini_store.h"
#include "platform/port_check.h"
#include "shell/shell_fixture.h"

using namespace ombrix;
using namespace ombrix::test;

namespace {

class PortNotes : public ShellTest
{
};

}  // namespace

TEST_F(PortNotes, SaysUnderEachPortWhichDeviceItIsAndWhatAilsIt)
{
    const auto expected = [](int port) {
        const std::string trouble = PortTrouble(PortDevice(port));
        return trouble.empty() ? PortDevice(port) : PortDevice(port) + "\n" + trouble;
    };
    EXPECT_EQ(Text("lblPort(0)"), expected(1));
    EXPECT_EQ(Text("lblPort(1)"), expected(2));
    EXPECT_EQ(Text("lblPort(2)"), expected(1));
    EXPECT_EQ(Text("lblPort(3)"), expected(2));
    EXPECT_EQ(Text("lblPort(4)"), "through the calibrator's UUT port");
    DoubleClick("lblCalOut");
    EXPECT_EQ(Text("lblPort(0)"), "simulated");
    EXPECT_EQ(Text("lblPort(4)"), "simulated");
}

TEST_F(PortNotes, AreLookedAtAgainWhenThePageIsShown)
{
    IniSet("Ports", "COM1", "/nowhere/one");
    LoadPorts();
    ShowPage(0);
    ShowPage(1);
    EXPECT_EQ(Text("lblPort(0)"), "/nowhere/one\n" + PortTrouble("/nowhere/one"));
    EXPECT_EQ(Text("lblPort(2)"), Text("lblPort(0)"));
}

TEST_F(PortNotes, TroubleIsMarkedWhereItIsChosenAndNowhereElse)
{
    IniSet("Ports", "COM1", "/nowhere/one");
    IniSet("Ports", "COM2", "/nowhere/two");
    LoadPorts();
    ShowPortNotes();
    const auto colour = [](const char *name) {
        return ScriptedOperator::Find(name)->palette().color(QPalette::Active, QPalette::WindowText);
    };
    ASSERT_TRUE(IsOn("optCAL_COM2"));
    EXPECT_NE(colour("lblPort(1)"), colour("lblPort(0)"));
    EXPECT_EQ(colour("lblPort(0)"), colour("lblPort(4)"));
    Click("optCAL_COM1");
    EXPECT_NE(colour("lblPort(0)"), colour("lblPort(1)"));
    EXPECT_EQ(colour("lblPort(1)"), colour("lblPort(4)"));
}

TEST_F(PortNotes, TwoPortsOnOneDeviceAreTold)
{
    IniSet("Ports", "COM1", "/dev/null");
    IniSet("Ports", "COM2", "/dev/../dev/null");
    LoadPorts();
    ShowPortNotes();
    EXPECT_THAT(Text("lblPort(0)"), testing::HasSubstr("COM1 and COM2 lead to one device"));
    EXPECT_THAT(Text("lblPort(1)"), testing::HasSubstr("COM1 and COM2 lead to one device"));
}
