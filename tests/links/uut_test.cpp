#include "links/links_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;

class Uut : public LinksTest
{
protected:
    void SetUp() override
    {
        LinksTest::SetUp();
        UseUutRoute();
    }
};

// ---- sending ----

TEST_F(Uut, AFrameGoesOutAsADefiniteLengthBlock)
{
    const struct {
        const char *frame;
        const char *command;
    } rows[] = {
        {"*1B1\r", "UUT_SEND #205*1B1\r\n"},
        {"*1A1\r", "UUT_SEND #205*1A1\r\n"},
        {"*1C0\r", "UUT_SEND #205*1C0\r\n"},
        {"*1CZ\r", "UUT_SEND #205*1CZ\r\n"},
        {"*1V6\r", "UUT_SEND #205*1V6\r\n"},
        {"*1G232\r", "UUT_SEND #207*1G232\r\n"},
        {"*1X16DZ\r", "UUT_SEND #208*1X16DZ\r\n"},
        {"*2W305002B67100000\r", "UUT_SEND #219*2W305002B67100000\r\n"},
        {"*1X111\r", "UUT_SEND #207*1X111\r\n"},
        {"*1W11000\r", "UUT_SEND #209*1W11000\r\n"},
        {"*1W305000000100004\r", "UUT_SEND #219*1W305000000100004\r\n"},
    };
    for (const auto &row : rows) {
        calibrator.Forget();
        UutSend(row.frame);
        EXPECT_EQ(calibrator.Heard(), row.command);
    }
}

TEST_F(Uut, TheLengthHasAtLeastTwoDigits)
{
    const struct {
        std::size_t bytes;
        const char *head;
    } rows[] = {{1, "#201"},    {9, "#209"},    {10, "#210"},   {99, "#299"},
                {100, "#3100"}, {150, "#3150"}, {999, "#3999"}, {1000, "#41000"}};
    for (const auto &row : rows) {
        calibrator.Forget();
        const std::string frame(row.bytes, 'x');
        UutSend(frame);
        EXPECT_EQ(calibrator.Heard(), std::string("UUT_SEND ") + row.head + frame + "\n");
    }
}

TEST_F(Uut, AFrameOf9BytesIs209AFrameOf10Is210AFrameOf100Is3100)
{
    for (const auto &[bytes, head] : {std::pair(9, "#209x"), {10, "#210x"}, {100, "#3100x"}}) {
        calibrator.Forget();
        UutSend(std::string(static_cast<std::size_t>(bytes), 'x'));
        EXPECT_TRUE(calibrator.Heard().starts_with(std::string("UUT_SEND ") + head)) << bytes;
    }
}

TEST_F(Uut, SetupAndFlushAreCommands)
{
    UutSetup("9600");
    UutFlush();
    EXPECT_THAT(calibrator.Writes(), ElementsAre("UUT_SET 9600,XON,DBIT8,SBIT1,PNONE\n", "UUT_FLUSH\n"));
}

// ---- the block ----

TEST(UutBlock, NeedsMoreUntilItsEndCame)
{
    for (const char *buffer : {"", "#", "#2", "#20", "#205", "#20565", "#2056565\r", "#2056565\r\r", "#0", "#06565\r"})
        EXPECT_EQ(ParseUutBlock(buffer).state, UutState::NeedsMore) << buffer;
}

TEST(UutBlock, IsWholeWithItsEnd)
{
    const struct {
        const char *buffer;
        std::size_t start;
        std::size_t length;
    } rows[] = {{"#2056565\r\r\n", 4, 5},      {"#200\r\n", 4, 0},     {"#15abcde\r\n", 3, 5},
                {"#9000000003abc\r\n", 11, 3}, {"#06565\r\r\n", 2, 5}, {"#0\r\n", 2, 0}};
    for (const auto &row : rows) {
        const UutBlock block = ParseUutBlock(row.buffer);
        EXPECT_EQ(block.state, UutState::Whole) << row.buffer;
        EXPECT_EQ(block.start, row.start) << row.buffer;
        EXPECT_EQ(block.length, row.length) << row.buffer;
    }
}

TEST(UutBlock, IsBadWithALengthThatIsNoNumber)
{
    for (const char *buffer :
         {"#2x56565\r\r\n", "#25x6565\r\r\n", "#A056565\r\r\n", "#y#2056565\r\r\n", "# 05abcde\r\n"}) {
        EXPECT_EQ(ParseUutBlock(buffer).state, UutState::Bad) << buffer;
        EXPECT_EQ(ParseUutBlock(buffer).length, 0u) << buffer;
    }
}

TEST(UutBlock, TellsItsLengthBeforeItsEndCame)
{
    const UutBlock block = ParseUutBlock("#2056565\r");
    EXPECT_EQ(block.start, 4u);
    EXPECT_EQ(block.length, 5u);
}

// ---- receiving ----

TEST_F(Uut, BlocksAreReceivedInChunks)
{
    const struct {
        std::vector<std::string> chunks;
        const char *data;
        bool done;
    } rows[] = {
        {{"#2056565\r\r\n"}, "6565\r", true},
        {{"#15abcde\r\n"}, "abcde", true},
        {{"#200\r\n"}, "", true},
        {{"#3005", "12345", "\r\n"}, "12345", true},
        {{"#", "2", "05", "6565\r", "\r\n"}, "6565\r", true},
        {{"noise#2056565\r\r\n"}, "6565\r", true},
        {{"noise", "#2056565\r\r\n"}, "6565\r", true},
        {{"\r\n", "#2056565\r\r\n"}, "6565\r", true},
        {{"#0", "6565\r", "\r\n"}, "6565\r", true},
        {{"#06565\r\r\n"}, "6565\r", true},
        {{"#0\r\n"}, "", true},
        {{"#2056565\r"}, "6565\r", false},
        {{"#2056565\r", "\r"}, "6565\r", false},
        {{"#205*1B"}, "*1B", false},
        {{"#2x56565\r\r\n"}, "", false},
        {{"#A056565\r\r\n"}, "", false},
        {{"x#y#2056565\r\r\n"}, "", false},
        {{"#2056565\r\r\n#2031A\r\r\n"}, "6565\r", true},
        {{"#205AB\r\nC\r\n"}, "AB\r\nC", true},
        {{"#9000000003abc\r\n"}, "abc", true},
        {{"#2"}, "", false},
        {{"#20"}, "", false},
        {{}, "", false},
        {{"abc", "def"}, "", false},
        {{"#20412345\r\n"}, "1234", true},
        {{"#210-0012.345\r\r\n"}, "-0012.345\r", true},
        {{"#210-0012", "345\r", "\r\n"}, "-0012345\r\r", false},
    };
    int number = 0;
    for (const auto &row : rows) {
        calibrator.Forget();
        clock.Restart();
        int at = 0;
        for (const std::string &chunk : row.chunks)
            calibrator.Says(chunk, at += 10);
        EXPECT_EQ(UutReceive(), row.data) << number;
        EXPECT_EQ(clock.Elapsed(), at + (row.done ? 0 : 1000)) << number;
        EXPECT_EQ(calibrator.Heard(), "UUT_RECV?\n");
        ++number;
    }
}

TEST_F(Uut, GarbageBeforeTheBlockIsDropped)
{
    calibrator.Says("\x01garbage\r\n#2056565\r\r\n", 5);
    EXPECT_EQ(UutReceive(), "6565\r");
}

TEST_F(Uut, AReplyInSeveralChunksIsGathered)
{
    calibrator.SaysByteByByte("#2056565\r\r\n", 100, 900);
    EXPECT_EQ(UutReceive(), "6565\r");
    EXPECT_EQ(clock.Elapsed(), 100 + 10 * 900);
}

TEST_F(Uut, ABlockWithANonDigitInItsLengthIsNeverAccepted)
{
    calibrator.Says("#2x56565\r\r\n", 10);
    calibrator.Says("#2056565\r\r\n", 500);
    EXPECT_EQ(UutReceive(), "");
    EXPECT_EQ(clock.Elapsed(), 1500) << "ends at the next silent chunk";
}

TEST_F(Uut, AbortGivesNothingAndEndsAtTheEndOfTheChunk)
{
    calibrator.SaysByteByByte("#2056565\r\r\n", 400, 400);
    AbortsAfter(2100);
    EXPECT_EQ(UutReceive(), "");
    EXPECT_EQ(clock.Elapsed(), 2400);
}

TEST_F(Uut, AStreamWithoutAnyBlockEndsToo)
{
    CallAfter(1, [this] {
        for (int i = 0; i < 100; ++i)
            calibrator.Says(std::string(100, 'x'), 100 * i + 1);
    });
    EXPECT_EQ(UutReceive(), "");
    EXPECT_EQ(clock.Elapsed(), 4002);
}

TEST_F(Uut, AVanishedCalibratorIsPacedSilence)
{
    calibrator.Vanishes();
    EXPECT_EQ(UutReceive(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

// ---- a meter behind it ----

TEST_F(Uut, AWholeQuestionTakesFlushSend500msAndReceive)
{
    calibrator.Answers("UUT_RECV?\n", "#2053201\r\r\n", 15);
    EXPECT_EQ(MeterQuery('X', 109, 1, ""), "3201");
    EXPECT_THAT(calibrator.Writes(), ElementsAre("UUT_FLUSH\n", "UUT_SEND #207*1X16D\r\n", "UUT_RECV?\n"));
    EXPECT_THAT(calibrator.writeTimes, ElementsAre(0, 0, 500));
    EXPECT_EQ(clock.Elapsed(), 515);
    EXPECT_TRUE(meter.log.empty());
}

TEST_F(Uut, AReplyInTwoBlocksIsAskedForTwice)
{
    calibrator.Answers("UUT_RECV?\n", "#20232\r\n", 15);
    calibrator.Answers("UUT_RECV?\n", "#20301\r\r\n", 15);
    SendMeterCommand("X16DZ");
    EXPECT_EQ(ReadMeterLine(), "3201");
    EXPECT_EQ(clock.Elapsed(), 30);
}

TEST_F(Uut, EmptyBlocksCountAsSilence)
{
    calibrator.Answers("UUT_RECV?\n", "#200\r\n", 150);
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 7 * 150) << "asked again until a second without data has passed";
}

TEST_F(Uut, ALateReplyAnswersNoLaterQuestion)
{
    calibrator.Answers("UUT_RECV?\n", "#2053201\r\r\n", 1200);
    calibrator.Answers("UUT_RECV?\n", "#2050001\r\r\n", 20);
    calibrator.Answers("UUT_RECV?\n", "#2050060\r\r\n", 20);
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "");
    EXPECT_EQ(MeterQuery('X', 21, 1, "Z"), "0001");
    EXPECT_EQ(MeterQuery('X', 16, 1, "Z"), "0060");
}

TEST_F(Uut, TheReplyOfAStoppedReadAnswersNoLaterQuestion)
{
    calibrator.Answers("UUT_RECV?\n", "#20612.34\r\r\n", 300);
    SendMeterCommand("B1");
    AbortsAfter(100);
    calibrator.Says("#", 200);  // ends the chunk, so the rest comes when nobody reads
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 200);
    Abort = false;
    calibrator.onWrite = [this](const std::string &bytes) {
        if (bytes == "UUT_RECV?\n")
            calibrator.Says("#2053201\r\r\n");
    };
    EXPECT_EQ(MeterQuery('X', 109, 1, "Z"), "3201");
}

TEST_F(Uut, DataRestartTheSilence)
{
    for (int i = 0; i < 6; ++i)
        calibrator.Answers("UUT_RECV?\n", i == 4 ? "#20232\r\n" : "#200\r\n", 150);
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 5 * 150 + 7 * 150) << "a second without data after the fifth block";
}

TEST_F(Uut, TotalSilenceCostsOneSecond)
{
    EXPECT_EQ(ReadMeterLine(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
    EXPECT_EQ(calibrator.Heard(), "UUT_RECV?\n");
}

TEST_F(Uut, FlushingIsTheCalibratorsWork)
{
    FlushMeterInput();
    EXPECT_EQ(calibrator.Heard(), "UUT_FLUSH\n");
}
