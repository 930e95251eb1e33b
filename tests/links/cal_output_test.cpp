#include "links/links_fixture.h"
#include "links/value_rows.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CalOutputPanel : public LinksTest
{
};

// ---- pure ----

TEST(DescribeCalOutput, ScalesAndJudges)
{
    const struct {
        double value;
        const char *unit;
        const char *text;
        Danger level;
    } rows[] = {
        {0.0, "V", "0.0 V", Danger::Safe},
        {0.0, "A", "0.0 A", Danger::Safe},
        {0.0, "OHM", "0.0 Ohm", Danger::Safe},
        {0.001, "V", "1.0 mV", Danger::Safe},
        {0.00199, "V", "2.0 mV", Danger::Safe},
        {0.002, "V", "2.0 mV", Danger::Warning},
        {0.0018, "A", "1.8 mA", Danger::Safe},
        {0.002, "A", "2.0 mA", Danger::Warning},
        {0.02, "A", "20.0 mA", Danger::Warning},
        {0.2, "V", "200.0 mV", Danger::Warning},
        {0.999, "V", "999.0 mV", Danger::Warning},
        {1.0, "V", "1.0 V", Danger::Warning},
        {1.8, "V", "1.8 V", Danger::Warning},
        {4.99, "V", "5.0 V", Danger::Warning},
        {5.0, "V", "5.0 V", Danger::Warning},
        {18.0, "V", "18.0 V", Danger::Warning},
        {19.99, "V", "20.0 V", Danger::Warning},
        {20.0, "V", "20.0 V", Danger::Danger},
        {200.0, "V", "200.0 V", Danger::Danger},
        {660.0, "V", "660.0 V", Danger::Danger},
        {999.9, "V", "999.9 V", Danger::Danger},
        {1000.0, "V", "1.0 kV", Danger::Warning},
        {4999.0, "V", "5.0 kV", Danger::Warning},
        {5000.0, "V", "5.0 kV", Danger::Danger},
        {3.5, "A", "3.5 A", Danger::Warning},
        {4.99, "A", "5.0 A", Danger::Warning},
        {5.0, "A", "5.0 A", Danger::Danger},
        {-0.2, "V", "-200.0 mV", Danger::Warning},
        {-2.0, "V", "-2.0 V", Danger::Warning},
        {-20.0, "V", "-20.0 V", Danger::Danger},
        {-0.0005, "V", "-0.5 mV", Danger::Safe},
        {0.5, "mV", "0.5 mV", Danger::Safe},
        {200.0, "mV", "200.0 mV", Danger::Warning},
        {1.99, "mV", "2.0 mV", Danger::Safe},
        {2.0, "mV", "2.0 mV", Danger::Warning},
        {1000.0, "mV", "1.0 kmV", Danger::Warning},
        {0.0001, "mV", "0.0 mV", Danger::Safe},
        {345.28, "OHM", "345.3 Ohm", Danger::Safe},
        {0.5, "OHM", "500.0 mOhm", Danger::Safe},
        {2000.0, "OHM", "2.0 kOhm", Danger::Safe},
        {100000.0, "OHM", "100.0 kOhm", Danger::Safe},
        {1000000.0, "OHM", "1000.0 kOhm", Danger::Safe},
        {2.0, "KOHM", "2.0 kOhm", Danger::Safe},
        {0.0, "CEL", "0.0 °C", Danger::Safe},
        {250.0, "CEL", "250.0 °C", Danger::Safe},
        {1356.4, "FAR", "1356.4 °F", Danger::Safe},
        {-40.0, "FAR", "-40.0 °F", Danger::Safe},
        {1500.0, "FAR", "1500.0 °F", Danger::Safe},
        {7.0, "", "7.0 ", Danger::Danger},
    };
    for (const auto &row : rows) {
        const CalOutput output = DescribeCalOutput(row.value, row.unit);
        EXPECT_EQ(output.text, row.text) << row.value << " " << row.unit;
        EXPECT_EQ(output.level, row.level) << row.value << " " << row.unit;
    }
}

TEST(DescribeCalOutput, Of1000VShowsKilovoltsAndIsAWarning)
{
    const CalOutput output = DescribeCalOutput(1000, "V");
    EXPECT_EQ(output.text, "1.0 kV");
    EXPECT_EQ(output.level, Danger::Warning) << "the scaled unit no longer is V";
}

TEST(DescribeCalOutput, OfExactlyZeroKeepsTheBareUnit)
{
    EXPECT_EQ(DescribeCalOutput(0, "V").text, "0.0 V");
    EXPECT_EQ(DescribeCalOutput(0, "A").text, "0.0 A");
    EXPECT_EQ(DescribeCalOutput(0, "mA").text, "0.0 mA");
    EXPECT_EQ(DescribeCalOutput(0, "").text, "0.0 ");
}

TEST(ParseOutputValue, TakesNumberAndUnitApart)
{
    for (const ValueRow &row : kValueRows) {
        const OutputValue value = ParseOutputValue(row.value);
        EXPECT_EQ(value.number, row.number) << row.value;
        EXPECT_EQ(value.unit, row.unit) << row.value;
    }
}

TEST(ParseOutputValue, OfATextWithoutUnitHasNone)
{
    EXPECT_EQ(ParseOutputValue("12").unit, "");
    EXPECT_EQ(ParseOutputValue("").unit, "");
    EXPECT_EQ(ParseOutputValue("").number, 0);
}

TEST(DangerOfValue, IsTheLevelThatTheValueWillHave)
{
    for (const ValueRow &row : kValueRows)
        EXPECT_EQ(DangerOfValue(row.value), row.level) << row.value;
}

// ---- on the panel ----

TEST_F(CalOutputPanel, ShowsEachValueAppliedByHand)
{
    Automatic = false;
    CalPort = 0;
    for (const ValueRow &row : kValueRows) {
        ApplyInput(row.value);
        EXPECT_EQ(panel, row.byHand) << row.value;
        EXPECT_EQ(Flag(), row.level) << row.value;
    }
}

TEST_F(CalOutputPanel, ShowsEachValueThatTheSimulatedCalibratorDelivers)
{
    Simulate();
    for (const ValueRow &row : kValueRows) {
        ApplyInput(row.value);
        EXPECT_EQ(panel, row.driven) << row.value;
        EXPECT_EQ(Flag(), row.level) << row.value;
    }
}

TEST_F(CalOutputPanel, TheFlagIsRaisedButNotLowered)
{
    SetDangerFlag(Danger::Warning);
    RaiseDangerFlag(Danger::Safe);
    RaiseDangerFlag(Danger::Warning);
    EXPECT_THAT(flags, ElementsAre(Danger::Warning));
    RaiseDangerFlag(Danger::Danger);
    EXPECT_THAT(flags, ElementsAre(Danger::Warning, Danger::Danger));
}

TEST_F(CalOutputPanel, NoFlagIsRaisedBeforeAFirstDangerousOutput)
{
    RaiseDangerFlag(Danger::Safe);
    EXPECT_THAT(flags, IsEmpty());
}

TEST_F(CalOutputPanel, ANewSessionForgetsTheLevel)
{
    SetDangerFlag(Danger::Danger);
    ForgetLiveOutput();
    RaiseDangerFlag(Danger::Warning);
    EXPECT_EQ(Flag(), Danger::Warning);
}

TEST_F(CalOutputPanel, InSimulationATemperatureIsWhatTheMeterReads)
{
    Simulate();
    SimNominal = 80000;
    UpdateCalOutputPanel(1356.4, "FAR");
    EXPECT_TRUE(SimOneDecimal);
    EXPECT_EQ(SimNominal, 1356.4f);
    UpdateCalOutputPanel(0, "CEL");
    EXPECT_TRUE(SimOneDecimal);
    EXPECT_EQ(SimNominal, 0.0f);
}

TEST_F(CalOutputPanel, InSimulationAnotherUnitLeavesTheReadingToTheProcedure)
{
    Simulate();
    SimOneDecimal = true;
    SimNominal = 80000;
    UpdateCalOutputPanel(2, "V");
    EXPECT_FALSE(SimOneDecimal);
    EXPECT_EQ(SimNominal, 80000.0f);
    UpdateCalOutputPanel(7, "");
    EXPECT_FALSE(SimOneDecimal);
}

TEST_F(CalOutputPanel, WithHardwareTheSimulatorIsLeftAlone)
{
    SimNominal = 5;
    UpdateCalOutputPanel(1356.4, "FAR");
    EXPECT_FALSE(SimOneDecimal);
    EXPECT_EQ(SimNominal, 5.0f);
}
