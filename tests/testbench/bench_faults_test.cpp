// Faults of the instruments themselves: what they do on their own, and what a test says in their place.

#include "bench_fixture.h"
#include "testbench/faults.h"

namespace ombrix::bench {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FaultyBench : public BenchTest
{
protected:
    // When the first byte of the reply to a calibrator's command comes, behind the command's last one.
    Micros ReplyTime(const std::string &command)
    {
        bench->Receive(Line::Calibrator, command + "\n", now);
        const Micros sent = now + static_cast<Micros>(command.size() + 1) * kByteMicros;
        for (now = sent; now < sent + 10 * kSecond; now += kMs)
            if (!bench->Collect(Line::Calibrator, now).empty())
                break;
        const Micros came = now - sent;
        Waits(kSecond);
        bench->Collect(Line::Calibrator, now);
        return came;
    }
    bool Operates() { return bench->CalibratorNow().operating; }
};

TEST_F(FaultyBench, AParameterStandsBehindTheName)
{
    EXPECT_TRUE(bench->SwitchFault("late-calibrator=3000", true));
    EXPECT_TRUE(bench->FaultIsOn("late-calibrator"));
    EXPECT_TRUE(bench->FaultIsOn("late-calibrator=10"));
    EXPECT_TRUE(bench->SwitchFault("late-calibrator", false));
    EXPECT_FALSE(bench->FaultIsOn("late-calibrator=3000"));
    for (const char *name : {"late-calibrator=", "trips=x", "trips=-5", "trips=0", "trips=7 ", "split=3", "=3"}) {
        EXPECT_FALSE(bench->SwitchFault(name, true)) << name;
        EXPECT_FALSE(bench->FaultAtExchange(name, 0, true)) << name;
        EXPECT_FALSE(Bench::IsFault(name)) << name;
    }
    EXPECT_TRUE(Bench::IsFault("drifting=40"));
}

TEST_F(FaultyBench, HelpTellsOfEveryFault)
{
    for (const std::string &name : Bench::FaultNames())
        EXPECT_THAT("\n" + Faults::Help(), HasSubstr("\n" + name));
    EXPECT_THAT(Faults::Help(), AllOf(HasSubstr("late-calibrator=MS"), HasSubstr("so much later, 1500 when")));
}

TEST_F(FaultyBench, ALateCalibratorGivesEachReplyLate)
{
    const Micros usual = ReplyTime("OPER?");
    EXPECT_LT(usual, 20 * kMs);
    bench->SwitchFault("late-calibrator", true);
    EXPECT_EQ(ReplyTime("OPER?"), usual + 1500 * kMs);
    EXPECT_EQ(ReplyTime("OUT?"), usual + 1500 * kMs);
    bench->SwitchFault("late-calibrator=4000", true);
    EXPECT_EQ(ReplyTime("OPER?"), usual + 4000 * kMs);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r") << "the meter is in time";
}

TEST_F(FaultyBench, TheLateRepliesOfTwoQuestionsComeInTheirOrder)
{
    bench->SwitchFault("late-calibrator", true);
    EXPECT_EQ(AskCalibrator("OPER?", kSecond), "");
    EXPECT_EQ(AskCalibrator("ERR?", kSecond), "0\r\n") << "the first one's";
    Waits(kSecond);
    EXPECT_EQ(bench->Collect(Line::Calibrator, now), "0,\"No Error\"\r\n");
}

TEST_F(FaultyBench, APassingLatenessIsOneReplys)
{
    bench->FaultAtExchange("late-calibrator=2000", 1, false);
    EXPECT_LT(ReplyTime("OPER?"), 20 * kMs);
    EXPECT_GT(ReplyTime("OPER?"), 2000 * kMs);
    EXPECT_LT(ReplyTime("OPER?"), 20 * kMs);
}

TEST_F(FaultyBench, JunkStandsBeforeAReplyThatIsWhole)
{
    bench->SwitchFault("junk", true);
    for (int i = 0; i < 50; ++i) {
        const std::string meter = AskMeter("X16DZ");
        ASSERT_EQ(meter.size(), 9u);
        EXPECT_EQ(meter.substr(4), "3201\r");
        EXPECT_EQ(meter.substr(0, 4).find_first_of("0123456789+-., \r\n#"), std::string::npos) << Readable(meter);
        const std::string calibrator = AskCalibrator("OPER?");
        ASSERT_EQ(calibrator.size(), 7u);
        EXPECT_EQ(calibrator.substr(4), "0\r\n");
    }
}

TEST_F(FaultyBench, PassingJunkStandsBeforeOneReply)
{
    bench->FaultAtExchange("junk", 0, false);
    EXPECT_EQ(AskMeter("X16DZ").size(), 9u);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
}

TEST_F(FaultyBench, ACalibratorThatRefusesQueuesAnErrorAndKeepsItsOutput)
{
    Applies("200 mV");
    bench->SwitchFault("refuses-output", true);
    AskCalibrator("OUT 660 V ; OPER ; *WAI", kSecond);
    EXPECT_EQ(bench->Terminals().value, 0.2);
    EXPECT_TRUE(Operates());
    AskCalibrator("OUT 20 V", kSecond);
    EXPECT_EQ(bench->Terminals().value, 0.2);
    EXPECT_EQ(AskCalibrator("ERR?"), "502,\"Output refused\"\r\n");
    EXPECT_EQ(AskCalibrator("ERR?"), "502,\"Output refused\"\r\n");
    EXPECT_EQ(AskCalibrator("ERR?"), "0,\"No Error\"\r\n");
    EXPECT_THAT(bench->ProtocolErrors(), IsEmpty()) << "the station did nothing wrong";
}

TEST_F(FaultyBench, ACalibratorThatRefusesInStandbyStaysThere)
{
    AskCalibrator("REMOTE");
    bench->SwitchFault("refuses-output", true);
    AskCalibrator("OUT 20 V ; OPER ; *WAI", kSecond);
    EXPECT_FALSE(Operates());
    EXPECT_THAT(AskCalibrator("OUT?"), HasSubstr("0.000000E+00,V"));
}

TEST_F(FaultyBench, StandbyIsNeverRefused)
{
    Applies("200 mV");
    bench->SwitchFault("refuses-output", true);
    AskCalibrator("OUT 0 V, 0 Hz ; STBY ; *WAI", kSecond);
    EXPECT_FALSE(Operates());
    EXPECT_THAT(bench->CalibratorNow().errors, IsEmpty());
}

TEST_F(FaultyBench, APassingRefusalIsOfOneOutput)
{
    AskCalibrator("REMOTE");
    bench->FaultAtExchange("refuses-output", 1, false);
    AskCalibrator("OUT 20 V ; OPER ; *WAI", kSecond);
    EXPECT_FALSE(Operates());
    AskCalibrator("OUT 20 V ; OPER ; *WAI", kSecond);
    EXPECT_TRUE(Operates());
}

TEST_F(FaultyBench, ACalibratorTripsSomeTimeAfterEachMomentItOperates)
{
    bench->SwitchFault("trips", true);
    for (int i = 0; i < 2; ++i) {
        Applies("200 mV");  // this waits longer than the trip does
        EXPECT_FALSE(Operates());
        const auto history = bench->OutputHistory();
        const OutputEvent &last = history.back();
        const OutputEvent &before = history.at(history.size() - 2);
        EXPECT_TRUE(before.operate);
        EXPECT_FALSE(last.operate);
        EXPECT_EQ(last.time - before.time, 700 * kMs);
        EXPECT_EQ(bench->Terminals().quantity, Quantity::None);
        EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
    }
    EXPECT_THAT(bench->CalibratorNow().errors, IsEmpty());
}

TEST_F(FaultyBench, ACalibratorThatOperatesAlreadyTripsFromTheSwitchOn)
{
    Applies("200 mV");
    bench->SwitchFault("trips=5000", true);
    Waits(4999 * kMs);
    EXPECT_TRUE(Operates());
    Waits(2 * kMs);
    EXPECT_FALSE(Operates());
}

TEST_F(FaultyBench, NothingTripsInStandbyOrWhenTheFaultIsGone)
{
    AskCalibrator("REMOTE");
    bench->SwitchFault("trips=2000", true);
    AskCalibrator("OUT 20 V ; OPER ; *WAI", kSecond);
    AskCalibrator("OUT 0 V, 0 Hz ; STBY ; *WAI", kSecond);
    const std::size_t events = bench->OutputHistory().size();
    Waits(5 * kSecond);
    EXPECT_EQ(bench->OutputHistory().size(), events);
    AskCalibrator("OUT 20 V ; OPER ; *WAI", kSecond);
    bench->SwitchFault("trips", false);
    Waits(5 * kSecond);
    EXPECT_TRUE(Operates());
}

TEST_F(FaultyBench, APassingTripIsOne)
{
    bench->FaultAtExchange("trips=300", 0, false);
    Applies("200 mV");
    EXPECT_FALSE(Operates());
    EXPECT_FALSE(bench->FaultIsOn("trips"));
    Applies("200 mV");
    EXPECT_TRUE(Operates());
}

TEST_F(FaultyBench, AMeterThatRestartsByItselfIsDeafAndTheStationCantKnow)
{
    Waits(0);
    bench->FaultAtExchange("meter-restarts", 0, false);
    EXPECT_EQ(AskMeter("X16DZ", 100 * kMs), "");
    AskMeter("W1330102Z", 100 * kMs);
    EXPECT_NE(bench->Nvm()[51], 0x0102) << "lost";
    Waits(kRestartMicros);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(bench->Restarts(), 1);
    EXPECT_THAT(bench->ProtocolErrors(), IsEmpty());
    EXPECT_THAT(bench->LastWords(), AllOf(HasSubstr("restarts by itself"), HasSubstr("lost: the meter restarts")));
}

TEST_F(FaultyBench, AMeterThatRestartsForgetsItsWorkingMemoryAndWorksWithItsWords)
{
    const std::string before = AskMeter("G1AA");
    AskMeter(before.starts_with("55") ? "F1AAAA" : "F1AA55");
    ASSERT_NE(AskMeter("G1AA"), before);
    bench->SwitchFault("meter-restarts", true);
    bench->SwitchFault("meter-restarts", false);
    Waits(kRestartMicros);
    EXPECT_EQ(AskMeter("G1AA"), before);
}

TEST_F(FaultyBench, AReplyOnItsWayEndsWithTheRestart)
{
    bench->Receive(Line::Meter, "*1X16DZ\r", now);
    Waits(8 * kByteMicros + kMeterThinksMicros + 2 * kByteMicros);
    bench->SwitchFault("meter-restarts", true);
    Waits(kSecond);
    EXPECT_EQ(bench->Collect(Line::Meter, now), "32");
}

TEST_F(FaultyBench, ALastingRestartComesAgainAndAgain)
{
    Waits(0);
    bench->SwitchFault("meter-restarts=10000", true);
    Waits(35 * kSecond);
    EXPECT_EQ(bench->Restarts(), 4);
    bench->SwitchFault("meter-restarts", false);
    Waits(35 * kSecond);
    EXPECT_EQ(bench->Restarts(), 4);
}

TEST_F(FaultyBench, AFrameToAMeterThatWasToldToRestartIsStillTheStationsError)
{
    bench->FaultAtExchange("meter-restarts", 1, false);
    AskMeter("X16D", 100 * kMs);
    AskMeter("X16DZ", 100 * kMs);
    EXPECT_THAT(bench->ProtocolErrors(), ElementsAre(HasSubstr("sent while the meter restarts")));
}

TEST_F(FaultyBench, AnOverRangeDisplayShowsNoDigit)
{
    Applies("200 mV");
    const std::string before = AskMeter("B1");
    bench->SwitchFault("over-range", true);
    EXPECT_EQ(AskMeter("B1"), " OVERLOAD\r");
    EXPECT_EQ(bench->DisplayTextAt(now), " OVERLOAD");
    bench->SwitchFault("over-range", false);
    EXPECT_EQ(AskMeter("B1").size(), before.size());
    bench->FaultAtExchange("over-range", bench->Exchanges(), false);
    EXPECT_EQ(AskMeter("B1"), " OVERLOAD\r");
    EXPECT_EQ(AskMeter("B1").size(), before.size());
}

TEST_F(FaultyBench, ADriftingDisplayMovesFromItsNextReadingOnWithoutEnd)
{
    Applies("200 mV");
    Ranges("60", 4);
    Waits(5 * kSecond);
    const double before = bench->DisplayCounts(now);
    bench->SwitchFault("drifting", true);
    EXPECT_NEAR(static_cast<double>(Counts()), before, 1.2);
    Waits(99'500 * kMs);
    EXPECT_NEAR(static_cast<double>(Counts()), before + 300, 2);
    bench->SwitchFault("drifting=50", true);
    Counts();
    Waits(9'500 * kMs);
    EXPECT_NEAR(static_cast<double>(Counts()), before + 500, 2);
    bench->SwitchFault("drifting", false);
    EXPECT_NEAR(static_cast<double>(Counts()), before, 1.2);
}

TEST_F(FaultyBench, APassingDriftEndsWithTheFirstReadingThatItMoved)
{
    Applies("200 mV");
    bench->FaultAtExchange("drifting=100", bench->Exchanges(), false);
    const long before = Counts();
    EXPECT_NEAR(static_cast<double>(Counts() - before), 50, 2);
    EXPECT_FALSE(bench->FaultIsOn("drifting"));
    EXPECT_NEAR(static_cast<double>(Counts() - before), 0, 2);
}

TEST_F(FaultyBench, ShowsTheTextsOfATestAndGivesTheDisplayBack)
{
    Applies("200 mV");
    const std::string before = AskMeter("B1");
    bench->ShowNext({" 79990.", "-OVERLOAD", "12.5"});
    EXPECT_EQ(bench->DisplayTextAt(now), " 79990.");
    for (const char *shown : {" 79990.\r", "-OVERLOAD\r", "12.5\r", "12.5\r"})
        EXPECT_EQ(AskMeter("B1"), shown);
    bench->ShowNext({});
    EXPECT_EQ(AskMeter("B1").size(), before.size());
}

TEST_F(FaultyBench, AnswersOnceWithTheBytesOfATest)
{
    bench->AnswerNext(Line::Meter, "rubbish\r", "B1");
    bench->AnswerNext(Line::Meter, "FFFF\r");
    bench->AnswerNext(Line::Calibrator, "", "OUT?");
    bench->SwitchFault("junk", true);
    EXPECT_EQ(AskMeter("X16DZ"), "FFFF\r");
    EXPECT_EQ(AskMeter("B1"), "rubbish\r");
    EXPECT_EQ(AskCalibrator("OUT?"), "");
    bench->SwitchFault("junk", false);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_THAT(AskCalibrator("OUT?"), HasSubstr(",V,"));
}

TEST_F(FaultyBench, AnAnswerBehindTheCalibratorComesThroughIt)
{
    Stands({.uut = true});
    bench->UseBlockForm(BlockForm::Shortest);
    bench->AnswerNext(Line::Meter, "FFFF\r", "X16D");
    AskCalibrator("UUT_SEND #208*1X16DZ\r");
    EXPECT_THAT(AskCalibrator("UUT_RECV?"), HasSubstr("FFFF"));
}

}  // namespace
}  // namespace ombrix::bench
