// Calibrators that answer late, or with junk before each answer: no answer is taken for another question's.
#include "links/calibrator_fixture.h"

#include <cstdint>

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;

namespace {

const std::string k660Volts = "6.6000E+02,V,0E+00,0,0.00E+00";
const std::string kNoVolts = "0.0000E+00,V,0E+00,0,0.00E+00";

}  // namespace

TEST(CalibratorAnswer, HasTheFormOfItsQuestion)
{
    const struct {
        const char *line;
        bool errors, operate, output;
    } rows[] = {
        {"0,\"No Error\"", true, false, false},
        {"-113,\"Undefined header\"", true, false, false},
        {"1", false, true, false},
        {" 0 ", false, true, false},
        {"0,V", false, false, true},
        {"6.6000E+02,V,0E+00,0,0.00E+00", false, false, true},
        {"2.0000E-01 , V", false, false, true},
        {"10", false, false, false},
        {"01", false, false, false},
        {"", false, false, false},
        {"x1", false, false, false},
        {"x0,\"No Error\"", false, false, false},
        {"x6.6E+02,V", false, false, false},
        {"6.6E,V", false, false, false},
        {"6.6E+02", false, false, false},
        {",V", false, false, false},
        {"\xF0\x83\x01\x07"
         "6.6E+02,V",
         false, false, false},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(IsAnswer(CalibratorQuestion::Errors, row.line), row.errors) << row.line;
        EXPECT_EQ(IsAnswer(CalibratorQuestion::Operate, row.line), row.operate) << row.line;
        EXPECT_EQ(IsAnswer(CalibratorQuestion::Output, row.line), row.output) << row.line;
    }
}

TEST(CalibratorAnswer, HoldsANumberInEachOfItsForms)
{
    for (const char *line : {"1,V", "+1,V", "-1.,V", ".5,V", "1.5,V", "1E3,V", "+.5e-3,V", "1.E+03,V"})
        EXPECT_TRUE(IsAnswer(CalibratorQuestion::Output, line)) << line;
    for (const char *line : {".,V", "+,V", "--1,V", "E5,V", ".E5,V", "1E,V", "1E+,V", "1.2.3,V", "1 2,V", "1E2.5,V"})
        EXPECT_FALSE(IsAnswer(CalibratorQuestion::Output, line)) << line;
}

TEST(CalibratorAnswer, IsToldOfALineOfAnyLength)
{
    const std::string digits(1'000'000, '1');
    EXPECT_TRUE(IsAnswer(CalibratorQuestion::Output, digits + ",V"));
    EXPECT_FALSE(IsAnswer(CalibratorQuestion::Output, digits + "~,V"));
    EXPECT_TRUE(IsAnswer(CalibratorQuestion::Errors, digits + ",\"Error\""));
}

/// A calibrator that does what it is told and says so in its own time.
class SlowCalibrator : public Calibrator
{
protected:
    void SetUp() override
    {
        Calibrator::SetUp();
        calibrator.onWrite = [this](const std::string &bytes) {
            const int operateAt = operateDelay;
            if (bytes.starts_with("OUT ")) {
                const bool operate = bytes.find("OPER ;") != std::string::npos;
                output = bytes.find("660") != std::string::npos ? k660Volts : kNoVolts;
                CallAfter(operateAt, [this, operate] { operating = operate; });
            }
            if (bytes == "ERR?\n")
                Says("0,\"No Error\"");
            if (bytes == "OPER?\n")
                Says(operating ? "1" : "0");
            if (bytes == "OUT?\n")
                Says(output);
        };
    }

    // In the order in which it was asked.
    void Says(const std::string &answer)
    {
        const std::int64_t now = NowMicros() / 1000;
        lineFree = std::max(lineFree, std::max(now + late, awake));
        const std::string line = junk + answer + kCrLf;
        calibrator.SaysByteByByte(line, static_cast<int>(lineFree - now), 1);
        lineFree += static_cast<std::int64_t>(line.size());
    }

    void StallsFor(int ms) { awake = NowMicros() / 1000 + ms; }

    std::string output = kNoVolts;
    std::string junk;
    bool operating = false;
    int operateDelay = 100;
    int late = 0;
    std::int64_t awake = 0;
    std::int64_t lineFree = 0;
};

TEST_F(SlowCalibrator, WhateverItsDelayThePanelNeverSaysSafeWhile660VStand)
{
    for (late = 0; late <= 6000; late += 370) {
        SCOPED_TRACE(late);
        calibrator.Forget();
        CalStandbyFlag = false;
        outlets.showOutput = [this](const std::string &text) {
            panel = text;
            EXPECT_TRUE(!operating || text == "660.0 V") << text;
        };
        outlets.showDangerFlag = [this](Danger level) {
            flags.push_back(level);
            EXPECT_TRUE(!operating || level == Danger::Danger);
        };
        for (int i = 0; i < 2; ++i)
            ApplyInput("660 V");
        EXPECT_EQ(panel, "660.0 V");
        EXPECT_EQ(Flag(), Danger::Danger);
        if (RemoveInput()) {
            EXPECT_FALSE(operating);
            EXPECT_EQ(panel, "0.0 V");
        }
        DelayAlways(20'000);  // the last of its late answers
    }
}

TEST_F(SlowCalibrator, AnAnswerAfterASecondAndAHalfIsUnderstood)
{
    late = 1500;
    EXPECT_TRUE(SetCalibratorOutput("660 V", "OPER"));
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_TRUE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_EQ(panel, "0.0 V");
    EXPECT_EQ(Flag(), Danger::Safe);
}

TEST_F(SlowCalibrator, WithJunkBeforeEachReplyTheRequestedValueStays)
{
    junk = "\xF0\x83\x01\x07";
    EXPECT_FALSE(SetCalibratorOutput("660 V", "OPER"));
    EXPECT_EQ(panel, "660.0 V");
    EXPECT_EQ(Flag(), Danger::Danger);
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_EQ(panel, "660.0 V") << "nobody has understood that it is in standby";
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(SlowCalibrator, TheLateZeroOfThePollBeforeIsNoStandby)
{
    late = 2600;
    operateDelay = 600;
    AbortsAfter(1600);  // after the first poll, which found it not yet operating
    EXPECT_FALSE(SetCalibratorOutput("660 V", "OPER"));
    Abort = false;
    operateDelay = 600'000;  // and now it doesn't go to standby
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_TRUE(operating);
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(SlowCalibrator, AStallWhereverItBeginsLeavesNoOldAnswerForANewOutput)
{
    for (int begins = 0; begins <= 3000; begins += 250)
        for (const int stall : {900, 1700, 3300, 7100, 13'000}) {
            SCOPED_TRACE(std::to_string(begins) + " " + std::to_string(stall));
            ASSERT_TRUE(SetCalibratorOutput("0 V", "OPER"));
            CallAfter(begins, [this, stall] { StallsFor(stall); });
            SetCalibratorOutput("0 V", "OPER");
            SetCalibratorOutput("660 V", "OPER");
            EXPECT_EQ(panel, "660.0 V");
            EXPECT_EQ(Flag(), Danger::Danger);
            DelayAlways(20'000);
            ASSERT_TRUE(SetCalibratorOutput("0 V", "STBY"));
            EXPECT_FALSE(operating);
            EXPECT_EQ(panel, "0.0 V");
        }
}

TEST_F(SlowCalibrator, TheRestOfALateAnswerIsNoAnswer)
{
    operating = true;
    calibrator.onWrite = nullptr;
    EXPECT_EQ(AskCalibrator(CalibratorQuestion::Output).line, "");
    calibrator.Says("6.6000E+02,V,0E+00,0,0.00E+0");
    calibrator.Says("0\r\n", 20);
    calibrator.Says("1\r\n", 40);
    EXPECT_EQ(AskCalibrator(CalibratorQuestion::Operate).line, "1");
}

TEST_F(SlowCalibrator, ALateAnswerThatTheSystemStillHoldsIsKnownToo)
{
    calibrator.onWrite = nullptr;
    EXPECT_EQ(AskCalibrator(CalibratorQuestion::Operate).line, "");
    BeginCalibratorOutput();
    calibrator.SaysUnseen("0\r\n");
    calibrator.Answers("OPER?\n", "1\r\n", 20);
    EXPECT_EQ(AskCalibrator(CalibratorQuestion::Operate).line, "1") << "the question before has its answer";
    EXPECT_EQ(AskCalibrator(CalibratorQuestion::Output).line, "");
    calibrator.SaysUnseen("6.6000E+02,V,0E+00,0,0.00E+0");
    calibrator.Says("0\r\n", 10);
    EXPECT_EQ(AskCalibrator(CalibratorQuestion::Operate).line, "1") << "the rest of a line is none";
}

TEST_F(SlowCalibrator, AnAnswerThatWasLostCostsOnePollAndNoMore)
{
    AskCalibrator(CalibratorQuestion::Operate);
    calibrator.Vanishes();
    AskCalibrator(CalibratorQuestion::Operate);
    calibrator.ComesBack();
    Start();
    EXPECT_TRUE(SetCalibratorOutput("660 V", "OPER"));
    EXPECT_EQ(Count("OPER?\n"), 1) << "the errors were answered behind it";
    AskCalibrator(CalibratorQuestion::Output);
    calibrator.Vanishes();
    for (const auto question : {CalibratorQuestion::Errors, CalibratorQuestion::Operate, CalibratorQuestion::Output})
        AskCalibrator(question);
    calibrator.ComesBack();
    Start();
    EXPECT_TRUE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_EQ(Count("OPER?\n"), 2);
    EXPECT_EQ(panel, "0.0 V");
    Start();
    EXPECT_TRUE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_THAT(calibrator.Writes(), ElementsAre("ERR?\n", "OUT 0 V ; STBY ; *WAI\n", "OPER?\n", "OUT?\n"));
    EXPECT_LE(clock.Elapsed(), 600);
}

TEST_F(SlowCalibrator, AMinuteOfJunkCostsOnePollAndNoMore)
{
    EXPECT_TRUE(SetCalibratorOutput("660 V", "OPER"));
    junk = "\xF0\x83\x01\x07";
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    junk.clear();
    Start();
    EXPECT_TRUE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_LE(Count("OPER?\n"), 2);
    EXPECT_EQ(panel, "0.0 V");
}

TEST_F(SlowCalibrator, JunkBeforeALateAnswerMakesItNobodyElsesAnswer)
{
    late = 2600;
    operateDelay = 600;
    junk = "\xF0\x83\x01\x07\r\n";  // a line of its own
    AbortsAfter(1600);
    EXPECT_FALSE(SetCalibratorOutput("660 V", "OPER"));
    Abort = false;
    operateDelay = 600'000;  // it doesn't go to standby
    EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_TRUE(operating);
    EXPECT_EQ(Flag(), Danger::Danger);
}

TEST_F(SlowCalibrator, WhatALongSilenceLeftOpenIsForgottenAfter20Seconds)
{
    EXPECT_TRUE(SetCalibratorOutput("660 V", "OPER"));
    calibrator.Vanishes();
    for (int tries = 0; tries < 5; ++tries)
        EXPECT_FALSE(SetCalibratorOutput("0 V", "STBY"));
    calibrator.ComesBack();
    DelayAlways(20'001);
    Start();
    EXPECT_TRUE(SetCalibratorOutput("0 V", "STBY"));
    EXPECT_EQ(Count("OPER?\n"), 1);
}
