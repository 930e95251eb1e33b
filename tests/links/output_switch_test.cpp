#include "links/links_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OutputSwitch : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        OpenMeterPort();
    }
};

TEST_F(OutputSwitch, OpensOnVoltage)
{
    SwitchState = "A";
    OpenOutputSwitch();
    EXPECT_EQ(meter.Heard(), "*2W605000000100000001000001000\r");
    EXPECT_EQ(SwitchState, "V");
    EXPECT_EQ(MeterAddr, "1");
    EXPECT_EQ(clock.Elapsed(), 1750);
    EXPECT_FALSE(switchShown) << "its label belongs to the simulation";
    EXPECT_THAT(waits, ElementsAre("Meter restarts", ""));
}

TEST_F(OutputSwitch, SwitchesToCurrentAndBack)
{
    SetOutputSwitch("A");
    EXPECT_EQ(meter.Heard(), "*2W305002B67100000\r");
    EXPECT_EQ(SwitchState, "A");
    EXPECT_EQ(clock.Elapsed(), 1750);
    Start();
    SetOutputSwitch("V");
    EXPECT_EQ(meter.Heard(), "*2W305000000100000\r");
    EXPECT_EQ(clock.Elapsed(), 1750);
}

TEST_F(OutputSwitch, DoesNothingWhenItStandsThere)
{
    SetOutputSwitch("V");
    EXPECT_EQ(meter.Heard(), "");
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(OutputSwitch, RestartsAsAPlainMeterUnderACounter)
{
    MeterKind = kCtr;
    meter.Says("!", 100);
    SetOutputSwitch("A");
    EXPECT_EQ(clock.Elapsed(), 1750);
    EXPECT_EQ(MeterKind, kCtr);
}

TEST_F(OutputSwitch, WhatRunsDuringItsRestartSpeaksToTheMeter)
{
    CallAfter(500, [] {
        SendMeterCommand("B1");
        MeterKind = kWtMtr;  // an identification
    });
    SetOutputSwitch("A");
    EXPECT_EQ(meter.Heard(), "*2W305002B67100000\r*1B1\r");
    EXPECT_EQ(MeterKind, kWtMtr);
}

TEST_F(OutputSwitch, TheEndOfTheProgramNeverLeavesItsAddressInForce)
{
    CallAfter(500, [] { RequestShutdown(); });
    EXPECT_THROW(SetOutputSwitch("A"), Shutdown);
    EXPECT_EQ(MeterAddr, "1");
}

TEST_F(OutputSwitch, IsReachedThroughTheCalibratorToo)
{
    UseUutRoute();
    SetOutputSwitch("A");
    EXPECT_EQ(calibrator.Heard(), "UUT_SEND #219*2W305002B67100000\r\n");
}

TEST_F(OutputSwitch, InSimulationShowsItsLabel)
{
    Simulate();
    const auto before = SimNvm;
    OpenOutputSwitch();
    EXPECT_TRUE(switchShown);
    EXPECT_EQ(switchText, "0");
    SetOutputSwitch("A");
    EXPECT_EQ(switchText, "11111");
    SetOutputSwitch("V");
    EXPECT_EQ(switchText, "0");
    EXPECT_EQ(SimNvm, before);
}

TEST_F(OutputSwitch, FollowsTheValue)
{
    Simulate();
    const struct {
        const char *value;
        const char *from;
        const char *to;
    } rows[] = {
        {"2 V", "A", "V"},           {"200 mV, 300 Hz", "A", "V"}, {"20 mA", "V", "A"},    {"5 A", "V", "A"},
        {"3.5 A, 300 Hz", "V", "A"}, {"32 FAR", "V", "V"},         {"32 FAR", "A", "A"},   {"1356.4 FAR", "V", "V"},
        {"0 CEL", "A", "A"},         {"20 OHM", "A", "A"},         {"100 KOHM", "V", "V"}, {"", "A", "A"},
    };
    for (const auto &row : rows) {
        SwitchState = row.from;
        ApplySwitched(row.value);
        EXPECT_EQ(SwitchState, row.to) << row.value;
    }
}

TEST_F(OutputSwitch, FollowsNothingWithoutASwitch)
{
    UseSwitch = false;
    ApplySwitched("20 mA");
    EXPECT_EQ(SwitchState, "V");
    EXPECT_THAT(meter.log, IsEmpty());
}

TEST_F(OutputSwitch, IsNotBelievedToHaveTurnedOverALineThatWent)
{
    meter.HangsUp();
    SetOutputSwitch("A");
    meter.ComesBack();
    meter.Forget();
    SetOutputSwitch("A");
    EXPECT_EQ(meter.Heard(), "*2W305002B67100000\r") << "asked again, it turns";
    EXPECT_EQ(SwitchState, "A");
    meter.Forget();
    SetOutputSwitch("A");
    EXPECT_EQ(meter.Heard(), "");
}
