#include "testbench/uut_port.h"

#include "bench_fixture.h"

namespace ombrix::bench {
namespace {

std::vector<std::string> LinesOf(std::string_view bytes)
{
    CommandReader reader;
    std::vector<std::string> lines;
    for (const char byte : bytes)
        if (const auto line = reader.Take(byte))
            lines.push_back(*line);
    return lines;
}

TEST(CommandReader, EndsALineAtItsLf)
{
    EXPECT_THAT(LinesOf("ERR?\nOUT 0 V ; STBY ; *WAI\nOP"), testing::ElementsAre("ERR?", "OUT 0 V ; STBY ; *WAI"));
}

TEST(CommandReader, CountsTheBytesOfABlockWhateverTheyAre)
{
    EXPECT_THAT(LinesOf("UUT_SEND #205*1B1\r\nERR?\n"), testing::ElementsAre("UUT_SEND #205*1B1\r", "ERR?"));
    EXPECT_THAT(LinesOf("UUT_SEND #204a\nb\n\nERR?\n"), testing::ElementsAre("UUT_SEND #204a\nb\n", "ERR?"));
}

TEST(CommandReader, EndsABlockThatIsNoneAtItsLf)
{
    EXPECT_THAT(LinesOf("UUT_SEND hello\nUUT_SEND #2x5abc\nERR?\n"),
                testing::ElementsAre("UUT_SEND hello", "UUT_SEND #2x5abc", "ERR?"));
}

TEST(BlockData, IsWhatStandsBehindTheLength)
{
    EXPECT_EQ(BlockData("#205*1B1\r"), "*1B1\r");
    EXPECT_EQ(BlockData("#15*1B1\r"), "*1B1\r");
    EXPECT_EQ(BlockData("#10"), "");
    for (const char *text : {"", "#", "#2", "#2x5abcde", "#205*1B", "#205*1B1\rx", "205*1B1\r", "#0abc"})
        EXPECT_FALSE(BlockData(text)) << text;
}

TEST(UutPort, WritesItsBlocksInEachOfTheThreeForms)
{
    UutPort port;
    std::vector<std::string> blocks;
    for (int i = 0; i < 3; ++i) {
        port.Hear("12.5\r");
        blocks.push_back(port.TakeBlock());
    }
    EXPECT_THAT(blocks, testing::ElementsAre("#1512.5\r", "#20512.5\r", "#012.5\r"));
}

TEST(UutPort, NeverSendsALineEndOpenEnded)
{
    UutPort port;
    port.UseForm(BlockForm::OpenEnded);
    port.Hear("a\r\nb");
    EXPECT_EQ(port.TakeBlock(), "#14a\r\nb");
    port.Hear("a\rb\n");
    EXPECT_EQ(port.TakeBlock(), "#0a\rb\n");
}

TEST(UutPort, AnswersAnEmptyBlockWhenNothingCame)
{
    UutPort port;
    EXPECT_EQ(port.TakeBlock(), "#10");
    EXPECT_EQ(port.TakeBlock(), "#200");
    EXPECT_EQ(port.TakeBlock(), "#0");
}

class Tunnel : public BenchTest
{
protected:
    void SetUp() override { Stands({.uut = true}); }
};

TEST_F(Tunnel, CarriesAFrameToTheMeterAndItsReplyBack)
{
    AskCalibrator("UUT_SET 9600,XON,DBIT8,SBIT1,PNONE");
    AskCalibrator("UUT_FLUSH");
    EXPECT_EQ(AskCalibrator("UUT_SEND #208*1X16DZ\r"), "") << "the reply waits";
    EXPECT_EQ(AskCalibrator("UUT_RECV?"), "#153201\r\r\n");
    EXPECT_EQ(AskCalibrator("UUT_RECV?"), "#200\r\n");
    EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
}

TEST_F(Tunnel, TakesTheTimeOfBothLines)
{
    const std::string command = "UUT_SEND #208*1X16DZ\r\n";
    bench->Receive(Line::Calibrator, command, now);
    now += static_cast<Micros>(command.size()) * kByteMicros + 8 * kByteMicros + kMeterThinksMicros + 4 * kByteMicros +
           500;
    bench->Receive(Line::Calibrator, "UUT_RECV?\n", now - 10 * kByteMicros);
    now += kSecond;
    EXPECT_THAT(bench->Collect(Line::Calibrator, now), testing::HasSubstr("3201"))
        << "without its CR, still on the way";
}

TEST_F(Tunnel, DropsWhatWaitsOnAFlush)
{
    AskCalibrator("UUT_SEND #208*1X16DZ\r");
    AskCalibrator("UUT_FLUSH");
    EXPECT_EQ(AskCalibrator("UUT_RECV?"), "#10\r\n");
}

TEST_F(Tunnel, LeavesTheOtherLineDead)
{
    EXPECT_EQ(AskMeter("X16DZ"), "");
    EXPECT_EQ(bench->Transcript().back().note, "nothing is on this line");
}

TEST_F(Tunnel, RefusesBlocksAndSettingsThatAreNone)
{
    AskCalibrator("UUT_SEND *1B1\r");
    AskCalibrator("UUT_SET 300,XON");
    EXPECT_EQ(bench->ProtocolErrors().size(), 2u);
    EXPECT_EQ(AskCalibrator("ERR?"), "111,\"Bad block\"\r\n");
    EXPECT_EQ(AskCalibrator("ERR?"), "110,\"Bad argument\"\r\n");
}

TEST_F(StationOnBench, ReachesEachBoardThroughTheCalibratorInEveryBlockForm)
{
    for (const BlockForm form : {BlockForm::Shortest, BlockForm::TwoDigits, BlockForm::OpenEnded}) {
        for (const int board : {board::kDc, board::kTc, board::kVf}) {
            Stands({.board = board, .uut = true});
            bench->UseBlockForm(form);
            Establishes();
            EXPECT_EQ(MeterSCType, board) << bench->LastWords();
            EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
            CloseLinks();
        }
    }
}

TEST_F(StationOnBench, CalibratesARangeThroughTheCalibrator)
{
    Stands({.board = board::kDc, .uut = true});
    Establishes();
    Calibrates(4, 3);
    EXPECT_LE(std::fabs(bench->RemainingError("2 V")), 2.0) << bench->LastWords();
}

}  // namespace
}  // namespace ombrix::bench
