#include "testbench/console.h"

#include "bench_fixture.h"

namespace ombrix::bench {
namespace {

using testing::HasSubstr;

class Console : public BenchTest
{
protected:
    std::string Types(const std::string &line) { return RunConsoleLine(*bench, line, now).text; }
};

TEST_F(Console, SwitchesFaults)
{
    EXPECT_EQ(Types("fault silent-meter on"), "silent-meter is on");
    EXPECT_TRUE(bench->FaultIsOn("silent-meter"));
    EXPECT_THAT(Types("faults"), HasSubstr("* silent-meter"));
    EXPECT_EQ(Types("fault silent-meter"), "silent-meter is off");
    EXPECT_FALSE(bench->FaultIsOn("silent-meter"));
    EXPECT_THAT(Types("fault sulking on"), HasSubstr("no fault has the name 'sulking'"));
    EXPECT_THAT(Types("fault garbage maybe"), HasSubstr("not 'maybe'"));
    EXPECT_FALSE(bench->FaultIsOn("garbage"));
}

TEST_F(Console, PlansAFaultForAnExchange)
{
    EXPECT_EQ(Types("fault lost-cr at 1"), "lost-cr at exchange 1");
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(AskMeter("X16DZ"), "3201");
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_THAT(Types("fault lost-cr at"), HasSubstr("which exchange?"));
    EXPECT_THAT(Types("fault sulking at 3"), HasSubstr("no fault"));
}

TEST_F(Console, TakesNumbersOfAnySize)
{
    const std::string large(23, '9');
    AskMeter("X16DZ");
    EXPECT_EQ(Types("log " + large), Types("log 20"));
    EXPECT_EQ(Types("log -" + large), "");
    EXPECT_THAT(Types("word " + large), HasSubstr("which word"));
    EXPECT_THAT(Types("word -" + large), HasSubstr("which word"));
    EXPECT_EQ(Types("fault lost-cr at " + large), "lost-cr at exchange " + large);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r") << "an exchange that never comes";
}

TEST_F(Console, AppliesAndRemovesSignals)
{
    EXPECT_EQ(Types("apply 2 V, 300 Hz"), "applied: 2 V, 300 Hz");
    EXPECT_THAT(Types("status"), HasSubstr("input 2 V, 300 Hz"));
    EXPECT_EQ(Types("remove"), "removed");
    EXPECT_THAT(Types("status"), HasSubstr("input open"));
    EXPECT_THAT(Types("apply"), HasSubstr("is no value"));
}

TEST_F(Console, TellsTheTruth)
{
    EXPECT_EQ(Types("truth 2 V"), TruthText(bench->TruthOf("2 V")));
    EXPECT_THAT(Types("truth"), testing::AllOf(HasSubstr("REF (200 mV): word 25"), HasSubstr("Ratio Gain: word 48")));
    EXPECT_THAT(Types("truth nothing"), HasSubstr("no step has the title 'nothing'"));
    EXPECT_THAT(Types("analog"), HasSubstr("Current Gain: word 63"));
    EXPECT_THAT(Types("analog 300"), HasSubstr("200 or 4000"));
}

TEST_F(Console, ReadsTheOutputMeterAndTellsNoTruthWithIt)
{
    EXPECT_EQ(Types("output"), "output 1 " + Format(bench->AnalogOut(1).value, 2) + " uA\noutput 2 0.00 uA");
    EXPECT_THAT(Types("status"), testing::Not(HasSubstr("output"))) << "nobody works on it";
    AskMeter("W1140201Z");
    AskMeter("W30E004E20000000Z");
    AskMeter("W1F0545C", 2 * kSecond);
    AskMeter("F68F004E20600000");
    const double first = bench->AnalogOut(1).value;
    EXPECT_NEAR(first, 10000, 150);
    EXPECT_THAT(Types("status"), testing::AllOf(HasSubstr("output 1 " + Format(first, 2) + " mV"),
                                                HasSubstr("output 2 " + Format(bench->AnalogOut(2).value, 2))));
    AskMeter("W1F00000", 2 * kSecond);
    EXPECT_THAT(Types("status"), testing::Not(HasSubstr("output"))) << "a plain converter, and nothing is put out";
    AskMeter("F68F000000600000");
    EXPECT_THAT(Types("status"), HasSubstr("output 1 "));
}

TEST_F(Console, ShowsStatusLogErrorsAndHistory)
{
    AskMeter("X16DZ");
    Ask(Line::Meter, "rubbish\r");
    EXPECT_THAT(Types("status"), testing::AllOf(HasSubstr("display "), HasSubstr("range 60"), HasSubstr("restarts 0"),
                                                HasSubstr("calibrator STBY 0 V")));
    EXPECT_THAT(Types("log 1"), testing::AllOf(HasSubstr("rubbish"), testing::Not(HasSubstr("3201"))));
    EXPECT_THAT(Types("log"), HasSubstr("3201"));
    EXPECT_THAT(Types("errors"), HasSubstr("it has no *: rubbish"));
    EXPECT_EQ(Types("history"), "0.000  STBY 0 V");
}

TEST_F(Console, UsesTheOperatorsHands)
{
    EXPECT_EQ(Types("leads swapped"), "leads swapped");
    EXPECT_EQ(Types("jumper in"), "jumper in");
    EXPECT_EQ(Types("trim R10 -20"), "R10 by -20 counts");
    EXPECT_THAT(Types("trim R99 1"), HasSubstr("no trimmer"));
    EXPECT_THAT(Types("trim R10"), HasSubstr("how many counts?"));
    EXPECT_EQ(Types("adjust R3 2"), "R3 by 2 counts");
    EXPECT_EQ(Types("add R13 4.3"), "R13 has 4.3M across it");
    EXPECT_THAT(Types("add R15 4.3"), HasSubstr("which resistor?"));
    EXPECT_THAT(Types("board"), HasSubstr("TP1 "));
    EXPECT_EQ(Types("stream stops"), "the stream: stops");
    EXPECT_THAT(Types("stream dances"), HasSubstr("unknown"));
    EXPECT_EQ(Types("stream sound"), "the stream: sound");
    EXPECT_EQ(Types("ratio 20000"), "the bridge reads 20000");
    EXPECT_EQ(Types("word 26 FFFB"), "word 26 is FFFB");
    EXPECT_EQ(bench->Nvm()[26], 0xFFFB);
    EXPECT_THAT(Types("word 256"), HasSubstr("0 to 255"));
    EXPECT_THAT(Types("word 5 xyz"), HasSubstr("no word"));
}

TEST_F(Console, KnowsWhatItDoesNotKnow)
{
    EXPECT_THAT(Types("dance"), HasSubstr("unknown: 'dance'; help"));
    EXPECT_THAT(Types("leads"), HasSubstr("unknown"));
    EXPECT_EQ(Types(""), "");
    EXPECT_THAT(Types("help"), testing::AllOf(HasSubstr("fault NAME"), HasSubstr("trips=MS"), HasSubstr("700 when")));
    EXPECT_TRUE(RunConsoleLine(*bench, " quit ", now).quit);
    EXPECT_FALSE(RunConsoleLine(*bench, "status", now).quit);
}

}  // namespace
}  // namespace ombrix::bench
