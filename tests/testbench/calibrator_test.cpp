#include "testbench/calibrator.h"

#include "bench_fixture.h"

namespace ombrix::bench {
namespace {

using Calibrators = BenchTest;

TEST_F(Calibrators, AnswerEachQuestionWithOneLine)
{
    EXPECT_EQ(AskCalibrator("ERR?"), "0,\"No Error\"\r\n");
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
    EXPECT_EQ(AskCalibrator("OUT?"), "0.000000E+00,V,0E+00,0,0.000000E+00\r\n");
    EXPECT_EQ(AskCalibrator("*IDN?"), "TESTBENCH,CALIBRATOR,0,1.0\r\n");
    for (const char *command : {"*RST ; *CLS", "REMOTE", "TSENS_TYPE TC", "TC_TYPE J", "TSENS_TYPE RTD",
                                "RTD_TYPE PT385", "ZCOMP WIRE4", "OUT 200 mV ; OPER ; *WAI", "LOCAL"})
        EXPECT_EQ(AskCalibrator(command), "") << command;
    EXPECT_EQ(AskCalibrator("ERR?"), "0,\"No Error\"\r\n");
    EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
}

TEST_F(Calibrators, OperateAfterTheirDelay)
{
    Stands({.operateDelayMs = 800});
    AskCalibrator("REMOTE");
    AskCalibrator("OUT 200 mV ; OPER ; *WAI", 25 * 1042 + 799 * kMs);
    EXPECT_FALSE(bench->CalibratorNow().operating);
    EXPECT_EQ(bench->Terminals().quantity, Quantity::None);
    Waits(2 * kMs);
    EXPECT_TRUE(bench->CalibratorNow().operating);
    EXPECT_EQ(bench->Terminals(), (Signal{Quantity::Volts, 0.2, 0, 0}));
    EXPECT_EQ(AskCalibrator("OPER?"), "1\r\n");
    EXPECT_EQ(AskCalibrator("OUT?"), "2.000000E-01,V,0E+00,0,0.000000E+00\r\n");
}

TEST_F(Calibrators, StandOpenInStandby)
{
    Applies("2 V");
    AskCalibrator("OUT 0 V ; STBY ; *WAI");
    EXPECT_EQ(bench->Terminals().quantity, Quantity::None);
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
}

struct OutputRow {
    const char *value;
    const char *readBack;
};

TEST_F(Calibrators, TellWhatTheyDeliver)
{
    constexpr OutputRow kRows[] = {
        {"-200 mV", "-2.000000E-01,V,0E+00,0,0.000000E+00\r\n"},
        {"660 V, 300 Hz", "6.600000E+02,V,0E+00,0,3.000000E+02\r\n"},
        {"18 mA, 300 Hz", "1.800000E-02,A,0E+00,0,3.000000E+02\r\n"},
        {"100 KOHM", "1.000000E+05,OHM,0E+00,0,0.000000E+00\r\n"},
        {"391.391 OHM", "3.913910E+02,OHM,0E+00,0,0.000000E+00\r\n"},
        {"0 CEL", "0.000000E+00,CEL,0E+00,0,0.000000E+00\r\n"},
        {"1356.4 FAR", "1.356400E+03,FAR,0E+00,0,0.000000E+00\r\n"},
    };
    for (const OutputRow &row : kRows) {
        Applies(row.value);
        EXPECT_EQ(AskCalibrator("OUT?"), row.readBack) << row.value;
    }
}

TEST_F(Calibrators, KeepAFrequencyUntilAnotherIsTold)
{
    Applies("2 V, 300 Hz");
    Applies("1 mV");
    EXPECT_EQ(bench->Terminals().hertz, 300);
    Applies("0 V, 0 Hz");
    EXPECT_EQ(bench->Terminals().hertz, 0);
    Applies("2 V, 300 Hz");
    Applies("20 OHM");
    Applies("2 V");
    EXPECT_EQ(bench->Terminals().hertz, 0);
}

TEST_F(Calibrators, GiveATemperatureAsTheSensorThatWasChosen)
{
    AskCalibrator("TSENS_TYPE TC");
    AskCalibrator("TC_TYPE T");
    Applies("32 FAR");
    EXPECT_EQ(bench->Terminals(), (Signal{Quantity::Thermocouple, 0, 0, 'T'}));
    AskCalibrator("TSENS_TYPE RTD");
    AskCalibrator("RTD_TYPE PT385");
    AskCalibrator("ZCOMP WIRE4");
    Applies("212 FAR");
    EXPECT_EQ(bench->Terminals().quantity, Quantity::Ohms);
    EXPECT_NEAR(bench->Terminals().value, 138.51, 0.01);
}

TEST_F(Calibrators, AddTheLeadsToAResistanceThatIsNotSensedWithFourWires)
{
    Applies("20 OHM");
    EXPECT_NEAR(bench->Terminals().value, 20.25, 1e-9);
    AskCalibrator("ZCOMP WIRE4");
    EXPECT_NEAR(bench->Terminals().value, 20, 1e-9);
    EXPECT_EQ(bench->CalibratorNow().sensing, "WIRE4");
    AskCalibrator("*RST ; *CLS");
    EXPECT_EQ(bench->CalibratorNow().sensing, "NONE");
}

TEST_F(Calibrators, QueueTheirErrorsAndTellThemOneByOne)
{
    AskCalibrator("REMOTE");
    AskCalibrator("FROB 1");
    AskCalibrator("OUT 5000 V ; OPER ; *WAI");
    AskCalibrator("TC_TYPE 7");
    EXPECT_EQ(bench->CalibratorNow().errors.size(), 3u);
    EXPECT_EQ(AskCalibrator("ERR?"), "104,\"Unknown command\"\r\n");
    EXPECT_EQ(AskCalibrator("ERR?"), "501,\"Value out of range\"\r\n");
    EXPECT_EQ(AskCalibrator("ERR?"), "110,\"Bad argument\"\r\n");
    EXPECT_EQ(AskCalibrator("ERR?"), "0,\"No Error\"\r\n");
    EXPECT_EQ(bench->ProtocolErrors().size(), 3u);
    EXPECT_THAT(bench->ProtocolErrors()[1], testing::HasSubstr("Value out of range: OUT 5000 V"));
}

TEST_F(Calibrators, RefuseAnArgumentThatTheyDoNotKnowAndStayAsTheyAre)
{
    AskCalibrator("REMOTE");
    AskCalibrator("ZCOMP WIRE4");
    for (const char *command : {"TSENS_TYPE DIODE", "TC_TYPE J2", "RTD_TYPE PT100", "ZCOMP WIRE3"}) {
        AskCalibrator(command);
        EXPECT_EQ(AskCalibrator("ERR?"), "110,\"Bad argument\"\r\n") << command;
    }
    EXPECT_EQ(bench->CalibratorNow().sensing, "WIRE4");
}

TEST_F(Calibrators, ForgetTheirErrorsOnCls)
{
    AskCalibrator("FROB");
    AskCalibrator("*RST ; *CLS");
    EXPECT_EQ(AskCalibrator("ERR?"), "0,\"No Error\"\r\n");
}

TEST_F(Calibrators, SetNothingInLocal)
{
    AskCalibrator("OUT 200 mV ; OPER ; *WAI", kSecond);
    EXPECT_FALSE(bench->CalibratorNow().operating);
    EXPECT_THAT(AskCalibrator("ERR?"), testing::HasSubstr("Not in remote"));
    AskCalibrator("REMOTE");
    EXPECT_TRUE(bench->CalibratorNow().remote);
    AskCalibrator("LOCAL");
    EXPECT_FALSE(bench->CalibratorNow().remote);
}

TEST_F(Calibrators, RememberEverythingTheyPutOut)
{
    Applies("2 V, 300 Hz");
    AskCalibrator("OUT 1 mV ; STBY ; *WAI");
    const auto history = bench->OutputHistory();
    ASSERT_EQ(history.size(), 3u);
    EXPECT_FALSE(history[0].operate) << "in standby from the start";
    EXPECT_EQ(history[1].text, "2 V, 300 Hz");
    EXPECT_EQ(history[1].value, 2);
    EXPECT_EQ(history[1].unit, "V");
    EXPECT_EQ(history[1].hertz, 300);
    EXPECT_TRUE(history[1].operate);
    EXPECT_EQ(history[2].text, "1 mV");
    EXPECT_FALSE(history[2].operate);
    EXPECT_GT(history[2].time, history[1].time);
}

}  // namespace
}  // namespace ombrix::bench
