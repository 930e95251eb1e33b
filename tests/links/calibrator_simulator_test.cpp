#include "links/links_fixture.h"
#include "links/value_rows.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::IsEmpty;

class SimulatedCalibrator : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        Simulate();
    }

    static std::string Reply(std::string_view text) { return SimulateCalibratorCommand(text).value_or("nothing"); }
};

TEST_F(SimulatedCalibrator, HasNoErrors)
{
    EXPECT_EQ(Reply("ERR?"), "0,\"No Error\"");
}

TEST_F(SimulatedCalibrator, RemembersOutputAndState)
{
    SimulateCalibratorCommand("OUT 200 mV ; OPER ; *WAI");
    EXPECT_EQ(SimCalOut, "200 mV ; OPER ; *WAI");
    EXPECT_EQ(Reply("OPER?"), "1");
    SimulateCalibratorCommand("OUT 0 V ; STBY ; *WAI");
    EXPECT_EQ(Reply("OPER?"), "0");
    SimulateCalibratorCommand("OUT 2 V");
    EXPECT_EQ(Reply("OPER?"), "0") << "a line without a state keeps it";
}

TEST_F(SimulatedCalibrator, AnswersOutIn200mVAsARealOne)
{
    SimulateCalibratorCommand("OUT 200 mV ; OPER ; *WAI");
    EXPECT_EQ(Reply("OUT?"), "2.0000E-01,V,0E+00,0,0.00E+00");
}

TEST_F(SimulatedCalibrator, AnswersEachValueInEitherState)
{
    for (const ValueRow &row : kValueRows)
        for (const std::string mode : {"OPER", "STBY"}) {
            SimulateCalibratorCommand("OUT " + std::string(row.value) + " ; " + mode + " ; *WAI");
            EXPECT_EQ(Reply("OUT?"), row.reply) << row.value;
        }
}

TEST_F(SimulatedCalibrator, AnswersBeforeAnyOutput)
{
    EXPECT_EQ(Reply("OPER?"), "0");
    EXPECT_EQ(Reply("OUT?"), "0.0000E00,A,0E+00,0,0.00E+00");
}

TEST_F(SimulatedCalibrator, OtherCommandsDoNothing)
{
    for (const char *text : {"*RST ; *CLS", "REMOTE", "LOCAL", "TSENS_TYPE TC", "ZCOMP WIRE4", "UUT_RECV?", ""})
        EXPECT_EQ(Reply(text), "nothing") << text;
    EXPECT_THAT(SimCalOut, IsEmpty());
}
