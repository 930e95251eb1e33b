#include "testbench/faults.h"

#include "bench_fixture.h"

namespace ombrix::bench {
namespace {

using OnTheBench = BenchTest;

TEST_F(OnTheBench, EveryFaultHasItsName)
{
    EXPECT_THAT(Bench::FaultNames(),
                testing::IsSupersetOf({"silent-meter", "silent-calibrator", "garbage", "lost-cr", "split", "slow-reply",
                                       "wrong-length", "never-operating", "never-settling", "port-gone"}));
    for (const std::string &name : Bench::FaultNames()) {
        EXPECT_TRUE(bench->SwitchFault(name, true)) << name;
        EXPECT_TRUE(bench->FaultIsOn(name)) << name;
        EXPECT_TRUE(bench->SwitchFault(name, false)) << name;
        EXPECT_FALSE(bench->FaultIsOn(name)) << name;
    }
    EXPECT_FALSE(bench->SwitchFault("broken", true));
    EXPECT_FALSE(bench->FaultAtExchange("broken", 0, true));
}

TEST_F(OnTheBench, ASilentMeterCarriesOutAndSaysNothing)
{
    bench->SwitchFault("silent-meter", true);
    EXPECT_EQ(AskMeter("X16DZ"), "");
    AskMeter("W1330102Z");
    EXPECT_EQ(bench->Nvm()[51], 0x0102);
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n") << "the other instrument speaks";
    bench->SwitchFault("silent-meter", false);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
}

TEST_F(OnTheBench, ASilentCounterGivesNoSignOfLife)
{
    Stands({.board = board::kVf});
    bench->SwitchFault("silent-meter", true);
    EXPECT_EQ(AskMeter("W11C0081", 4 * kSecond), "");
}

TEST_F(OnTheBench, ASilentCalibratorCarriesOutAndSaysNothing)
{
    Applies("200 mV");
    bench->SwitchFault("silent-calibrator", true);
    EXPECT_EQ(AskCalibrator("OPER?"), "");
    AskCalibrator("OUT 0 V ; STBY ; *WAI");
    EXPECT_FALSE(bench->CalibratorNow().operating);
    bench->SwitchFault("silent-calibrator", false);
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
}

TEST_F(OnTheBench, GarbageStandsBeforeAndInAReply)
{
    bench->SwitchFault("garbage", true);
    for (int i = 0; i < 20; ++i) {
        const std::string reply = AskMeter("X16DZ");
        EXPECT_GT(reply.size(), 5u);
        EXPECT_EQ(reply.back(), '\r');
        EXPECT_EQ(reply.find("3201"), std::string::npos) << Readable(reply);
    }
}

TEST_F(OnTheBench, ALostCrLeavesTheRestOfTheReply)
{
    bench->SwitchFault("lost-cr", true);
    EXPECT_EQ(AskMeter("X16DZ"), "3201");
    EXPECT_EQ(AskCalibrator("OPER?"), "0\n");
}

TEST_F(OnTheBench, ASplitReplyComesByteByByte)
{
    bench->SwitchFault("split", true);
    const std::string frame = "*1X16DZ\r";
    bench->Receive(Line::Meter, frame, now);
    Micros due = now + 8 * kByteMicros + kMeterThinksMicros;
    for (const char *byte : {"3", "2", "0", "1", "\r"}) {
        due += 50 * kMs + kByteMicros;
        EXPECT_EQ(bench->Collect(Line::Meter, due - 1), "");
        EXPECT_EQ(bench->Collect(Line::Meter, due), byte);
    }
}

TEST_F(OnTheBench, ASlowReplyComes700MsLater)
{
    bench->SwitchFault("slow-reply", true);
    bench->Receive(Line::Meter, "*1X16DZ\r", now);
    const Micros usual = now + 8 * kByteMicros + kMeterThinksMicros + kByteMicros;
    EXPECT_EQ(bench->Collect(Line::Meter, usual + 700 * kMs - 1), "");
    EXPECT_EQ(bench->Collect(Line::Meter, usual + 700 * kMs), "3");
}

TEST_F(OnTheBench, AWrongLengthIsOneCharacterTooFewOrTooMany)
{
    bench->SwitchFault("wrong-length", true);
    int longer = 0;
    for (int i = 0; i < 30; ++i) {
        const std::size_t length = AskMeter("X16DZ").size();
        EXPECT_TRUE(length == 4 || length == 6) << length;
        longer += length == 6 ? 1 : 0;
    }
    EXPECT_GT(longer, 0);
    EXPECT_LT(longer, 30);
}

TEST_F(OnTheBench, AWrongLengthIsNotMadeGoodOnTheWayThroughTheCalibrator)
{
    Stands({.uut = true});
    bench->UseBlockForm(BlockForm::OpenEnded);
    bench->SwitchFault("wrong-length", true);
    for (int i = 0; i < 30; ++i) {
        AskCalibrator("UUT_SEND #208*1X16DZ\r");
        const std::size_t length = AskCalibrator("UUT_RECV?").size();
        constexpr std::size_t kRight = 2 + 5 + 2;  // "#0", "3201" with its CR, CR LF
        EXPECT_TRUE(length == kRight - 1 || length == kRight + 1) << length;
    }
}

TEST_F(OnTheBench, ACalibratorThatNeverOperatesStaysInStandby)
{
    bench->SwitchFault("never-operating", true);
    Applies("200 mV");
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
    EXPECT_EQ(bench->Terminals().quantity, Quantity::None);
    bench->SwitchFault("never-operating", false);
    Applies("200 mV");
    EXPECT_EQ(AskCalibrator("OPER?"), "1\r\n");
}

TEST_F(OnTheBench, ADisplayThatNeverSettlesMovesBySeveralCounts)
{
    Applies("200 mV");
    bench->SwitchFault("never-settling", true);
    long before = Counts();
    for (int i = 0; i < 30; ++i) {
        const long now = Counts();
        EXPECT_GE(std::labs(now - before), 3);
        EXPECT_NEAR(static_cast<double>(now), bench->DisplayCounts(this->now), 10);
        before = now;
    }
}

TEST_F(OnTheBench, ALostPortLosesWhatIsOnTheWayAndComesBack)
{
    bench->Receive(Line::Meter, "*1X16DZ\r", now);
    Waits(8 * kByteMicros + kMeterThinksMicros + 2 * kByteMicros);
    bench->SwitchFault("port-gone", true);
    EXPECT_TRUE(bench->PortGone(Line::Meter));
    EXPECT_TRUE(bench->PortGone(Line::Calibrator));
    EXPECT_EQ(AskMeter("X16DZ"), "");
    EXPECT_EQ(AskCalibrator("OPER?"), "");
    const int exchanges = bench->Exchanges();
    bench->SwitchFault("port-gone", false);
    EXPECT_FALSE(bench->PortGone(Line::Meter));
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(bench->Exchanges(), exchanges + 1) << "nothing arrived while the port was gone";
}

TEST_F(OnTheBench, OnePortCanBeLostAlone)
{
    bench->SwitchFault("meter-port-gone", true);
    EXPECT_TRUE(bench->PortGone(Line::Meter));
    EXPECT_FALSE(bench->PortGone(Line::Calibrator));
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
}

TEST_F(OnTheBench, ExchangesAreCountedOverBothLines)
{
    AskMeter("A1");
    AskCalibrator("REMOTE");
    Ask(Line::Meter, "broken\r");
    EXPECT_EQ(bench->Exchanges(), 3);
}

TEST_F(OnTheBench, AFaultBeginsAtItsExchangeAndStays)
{
    bench->FaultAtExchange("lost-cr", 2, true);
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
    EXPECT_EQ(AskMeter("X16DZ"), "3201");
    EXPECT_EQ(AskMeter("X16DZ"), "3201");
    EXPECT_TRUE(bench->FaultIsOn("lost-cr"));
}

TEST_F(OnTheBench, APassingFaultEndsAfterItsFirstEffect)
{
    bench->FaultAtExchange("lost-cr", 0, false);
    EXPECT_EQ(AskMeter("A1"), "") << "no reply, no effect";
    EXPECT_TRUE(bench->FaultIsOn("lost-cr"));
    EXPECT_EQ(AskMeter("X16DZ"), "3201");
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
}

TEST_F(OnTheBench, APassingSilenceSwallowsOneReply)
{
    bench->FaultAtExchange("silent-meter", 0, false);
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
    EXPECT_EQ(AskMeter("X16DZ"), "");
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
}

TEST_F(OnTheBench, APassingRefusalToOperateHoldsForOneOutput)
{
    AskCalibrator("REMOTE");
    bench->FaultAtExchange("never-operating", 1, false);
    AskCalibrator("OUT 200 mV ; OPER ; *WAI", kSecond);
    EXPECT_EQ(AskCalibrator("OPER?"), "0\r\n");
    AskCalibrator("OUT 200 mV ; OPER ; *WAI", kSecond);
    EXPECT_EQ(AskCalibrator("OPER?"), "1\r\n");
}

TEST_F(OnTheBench, APassingPortLossTakesTheLineOfItsExchangeForTwoSeconds)
{
    bench->FaultAtExchange("port-gone", 0, false);
    EXPECT_EQ(AskMeter("X16DZ", 100 * kMs), "");
    EXPECT_TRUE(bench->PortGone(Line::Meter));
    EXPECT_FALSE(bench->PortGone(Line::Calibrator));
    Waits(2 * kSecond);
    EXPECT_FALSE(bench->PortGone(Line::Meter));
    EXPECT_EQ(AskMeter("X16DZ"), "3201\r");
}

TEST_F(OnTheBench, TwoFaultsMayBeginAtOneExchange)
{
    bench->FaultAtExchange("lost-cr", 0, true);
    bench->FaultAtExchange("slow-reply", 0, true);
    EXPECT_EQ(AskMeter("X16DZ"), "");
    Waits(kSecond);
    EXPECT_EQ(bench->Collect(Line::Meter, now), "3201");
}

}  // namespace
}  // namespace ombrix::bench
