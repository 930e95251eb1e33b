#include "links/operations_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MeterIdentity : public MeterOperations
{
protected:
    void SetUp() override
    {
        MeterOperations::SetUp();
        MeterKind = -1;
    }
};

// ---- word 109 ----

TEST_F(MeterIdentity, TheRevisionIsALetterAndADigitFromTheSecondRoundOn)
{
    const struct {
        const char *byte;
        const char *text;
    } rows[] = {{"00", "@"},  {"01", "A"},  {"02", "B"},   {"19", "Y"},  {"1A", "Z"},  {"1B", "A2"},
                {"1C", "B2"}, {"32", "X2"}, {"34", "Z2"},  {"35", "A3"}, {"4E", "Z3"}, {"4F", "A4"},
                {"68", "Z4"}, {"69", "A5"}, {"FE", "T10"}, {"FF", "U10"}};
    for (const auto &row : rows) {
        DecodeMeterType(std::string(row.byte) + "01");
        EXPECT_EQ(MeterRevText, row.text) << row.byte;
    }
}

TEST_F(MeterIdentity, RevisionByte1AIsZAnd1BIsA2)
{
    DecodeMeterType("1A01");
    EXPECT_EQ(MeterRevText, "Z");
    DecodeMeterType("1B01");
    EXPECT_EQ(MeterRevText, "A2");
}

TEST_F(MeterIdentity, TheTypeWordTellsKindRevisionAndTransmitter)
{
    const struct {
        const char *word;
        int number;
        const char *revision;
        int kind;
        bool xmtr;
        const char *name;
    } rows[] = {
        {"3201", 50, "X2", 1, false, "DPM"},
        {"3202", 50, "X2", 2, false, "WtMtr"},
        {"3203", 50, "X2", 3, false, "CTR"},
        {"3205", 50, "X2", 1, true, "DPM Xmtr"},
        {"3206", 50, "X2", 2, true, "WtMtr Xmtr"},
        {"3207", 50, "X2", 3, true, "CTR Xmtr"},
        {"3200", 50, "X2", -1, false, "???"},
        {"3204", 50, "X2", -1, false, "???"},
        {"3208", 50, "X2", -1, false, "???"},
        {"32FF", 50, "X2", -1, false, "???"},
        {"0001", 0, "@", 1, false, "DPM"},
        {"FF07", 255, "U10", 3, true, "CTR Xmtr"},
        {"", -1, "", -1, false, "???"},
        {"320", -1, "", -1, false, "???"},
        {"32010", -1, "", -1, false, "???"},
    };
    for (const auto &row : rows) {
        MeterRevText = "old";
        MeterKind = kCtr;
        XmtrFlag = true;
        DecodeMeterType(row.word);
        EXPECT_EQ(MeterRevNumber, row.number) << row.word;
        EXPECT_EQ(MeterRevText, row.revision) << row.word;
        EXPECT_EQ(MeterKind, row.kind) << row.word;
        EXPECT_EQ(XmtrFlag, row.xmtr) << row.word;
        EXPECT_EQ(MeterName, row.name) << row.word;
    }
}

TEST_F(MeterIdentity, LowByte4Or8LeavesTheKindUnknownAndTheNameIsQuestionMarks)
{
    for (const char *word : {"3204", "3208"}) {
        DecodeMeterType(word);
        EXPECT_EQ(MeterKind, -1);
        EXPECT_EQ(MeterName, "???");
    }
}

TEST_F(MeterIdentity, TheTypeIsReadWithoutZAndTheRestartWaitedOut)
{
    Answers("X16D", "3201");
    ReadMeterType();
    EXPECT_THAT(Payloads(), ElementsAre("X16D"));
    EXPECT_EQ(MeterName, "DPM");
    EXPECT_EQ(clock.Elapsed(), 500 + 1750);
}

// ---- board ----

TEST_F(MeterIdentity, TheBoardFollowsWord21AndWord16)
{
    const struct {
        const char *word21;
        const char *word16;
        int board;
    } rows[] = {
        {"0001", "0040", kTemp}, {"0001", "0050", kTemp}, {"0001", "004D", kTemp}, {"0001", "0060", kDc},
        {"0001", "0001", kDc},   {"0002", "0080", kAc},   {"0012", "0080", kAc2},  {"0022", "0080", kAc3},
        {"0003", "00C0", kLc},   {"0031", "0040", kTc},   {"0041", "0050", kRtd},  {"0000", "0060", -1},
        {"00FF", "0060", -1},    {"0011", "0040", -1},    {"0101", "0160", kDc},
    };
    for (const auto &row : rows) {
        meter.Forget();
        meter.onWrite = [this, &row](const std::string &bytes) {
            if (bytes == "*1X16D\r")
                meter.Says("3201\r", 10);
            if (bytes == "*1X115Z\r")
                meter.Says(std::string(row.word21) + "\r", 10);
            if (bytes == "*1X110\r")
                meter.Says(std::string(row.word16) + "\r", 10);
        };
        clock.Restart();
        EXPECT_TRUE(ReadMeterIdentity());
        EXPECT_EQ(MeterSCType, row.board) << row.word21 << " " << row.word16;
        EXPECT_EQ(BoardCode, std::string(row.word21).substr(2));
        EXPECT_THAT(Payloads(), ElementsAre("X16D", "X115Z", "X110"));
        EXPECT_EQ(clock.Elapsed(), (500 + 1750) + 500 + (500 + 1750));
    }
    meter.onWrite = nullptr;
}

TEST_F(MeterIdentity, ACounterCarriesTheVfBoardAndNothingElseIsAsked)
{
    BoardCode = "41";
    meter.onWrite = [this](const std::string &bytes) {
        if (bytes == "*1X16D\r") {
            meter.Says("3203\r", 10);
            meter.Says("!", 1300);
        }
    };
    EXPECT_TRUE(ReadMeterIdentity());
    meter.onWrite = nullptr;
    EXPECT_EQ(MeterSCType, kVf);
    EXPECT_EQ(BoardCode, "41") << "keeps what it was";
    EXPECT_THAT(Payloads(), ElementsAre("X16D"));
    EXPECT_EQ(clock.Elapsed(), 1300);
}

TEST_F(MeterIdentity, OfASilentMeterIsUnknown)
{
    MeterSCType = kRtd;
    BoardCode = "41";
    EXPECT_FALSE(ReadMeterIdentity());
    EXPECT_EQ(MeterKind, -1);
    EXPECT_EQ(MeterSCType, -1);
    EXPECT_EQ(MeterName, "???");
    EXPECT_EQ(BoardCode, "41");
    EXPECT_THAT(Payloads(), ElementsAre("X16D")) << "nothing more is asked";
    EXPECT_EQ(clock.Elapsed(), 1500 + 1750);
}

TEST_F(MeterIdentity, IsUnansweredWhenOneAnswerIsMissingOrNoWord)
{
    const std::vector<std::string> questions = {"X16D", "X115Z", "X110"};
    const std::vector<std::vector<std::string>> rows = {
        {"32"}, {"32O1"}, {"3201", ""}, {"3201", "01"}, {"3201", "0001", ""}, {"3201", "0001", "00"}};
    for (const auto &answers : rows) {
        Start();
        meter.onWrite = [&](const std::string &frame) {
            for (std::size_t i = 0; i < answers.size(); ++i)
                if (frame == "*1" + questions[i] + "\r")
                    meter.Says(answers[i] + "\r");
        };
        EXPECT_FALSE(ReadMeterIdentity()) << answers.back() << " to question " << answers.size();
        EXPECT_EQ(MeterSCType, -1);
        EXPECT_EQ(Payloads().size(), answers.size()) << "the next one is not asked";
    }
}

TEST_F(MeterIdentity, ComesBackAsItWasKnown)
{
    DecodeMeterType("3207");
    MeterSCType = kVf;
    BoardCode = "41";
    const KnownMeter known = MeterAsKnown();
    EXPECT_FALSE(ReadMeterIdentity());
    TakeMeter(known);
    EXPECT_EQ(MeterKind, kCtr);
    EXPECT_TRUE(XmtrFlag);
    EXPECT_EQ(MeterRevNumber, 0x32);
    EXPECT_EQ(MeterRevText, "X2");
    EXPECT_EQ(MeterSCType, kVf);
    EXPECT_EQ(BoardCode, "41");
    EXPECT_EQ(MeterName, "CTR Xmtr");
}

TEST_F(MeterIdentity, TheBoardByteIsNoCodeWhenItCannotBeRead)
{
    EXPECT_EQ(ReadBoardCodeByte(), "");
    for (const char *line : {"006", "0", "00800080", "0000", "0080"})
        Answers("X110", line);
    for (const char *byte : {"", "", "", "00", "80"})
        EXPECT_EQ(ReadBoardCodeByte(), byte);
}

TEST_F(MeterIdentity, EachBoardHasItsByte)
{
    const char *bytes[] = {"60", "80", "C0", "40", "", "80", "80", "40", "50", ""};
    for (int board = 0; board < kBoards; ++board)
        EXPECT_EQ(BoardCodeByteFor(board), bytes[board]) << board;
    EXPECT_EQ(BoardCodeByteFor(-1), "");
    EXPECT_EQ(BoardCodeByteFor(10), "");
}

// ---- writing ----

TEST_F(MeterIdentity, TheBoardByteIsWrittenBehind00)
{
    WriteBoardCodeByte("80");
    EXPECT_THAT(Payloads(), ElementsAre("W1100080"));
    EXPECT_EQ(clock.Elapsed(), 1750);
}

TEST_F(MeterIdentity, ALowByteIsReplacedWithTwoRestarts)
{
    Answers("X115", "AB01");
    SetWordLowByte(21, "41");
    EXPECT_THAT(Payloads(), ElementsAre("X115", "W115AB41"));
    EXPECT_EQ(clock.Elapsed(), (500 + 1750) + 1750);
}

TEST_F(MeterIdentity, ALowByteIsNotWrittenWhenItsWordIsNotRead)
{
    SetWordLowByte(21, "41");
    EXPECT_THAT(Payloads(), ElementsAre("X115"));
    Start();
    Answers("X115", "AB0");
    SetWordLowByte(21, "41");
    EXPECT_THAT(Payloads(), ElementsAre("X115"));
}

TEST_F(MeterIdentity, ALowByteOfAnotherLengthDoesNothing)
{
    SetWordLowByte(21, "");
    SetWordLowByte(21, "1");
    SetWordLowByte(21, "041");
    EXPECT_THAT(Payloads(), IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(MeterIdentity, IsWrittenAsTypeBoardByteAndBoardCode)
{
    Answers("X16D", "3201");
    Answers("X115", "0000");
    WriteMeterIdentity(kWtMtr, true, kAc2, "12");
    EXPECT_THAT(Payloads(), ElementsAre("X16D", "W16D3206", "W1100080", "X115", "W1150012"));
    EXPECT_EQ(MeterKind, kWtMtr);
    EXPECT_TRUE(XmtrFlag);
    EXPECT_EQ(MeterSCType, kAc2);
    EXPECT_EQ(BoardCode, "12");
    EXPECT_EQ(MeterName, "WtMtr Xmtr");
    EXPECT_EQ(clock.Elapsed(), (500 + 1750) + 1750 + 1750 + (500 + 1750) + 1750);
}

TEST_F(MeterIdentity, OfACounterIsItsTypeAlone)
{
    Answers("X16D", "3201");
    WriteMeterIdentity(kCtr, false, kVf, "01");
    EXPECT_THAT(Payloads(), ElementsAre("X16D", "W16D3203"));
    EXPECT_EQ(MeterName, "CTR");
    EXPECT_EQ(MeterSCType, kVf);
}

TEST_F(MeterIdentity, OfABoardWithoutByteSkipsWord16)
{
    Answers("X16D", "3201");
    Answers("X115", "0000");
    WriteMeterIdentity(kDpm, false, kAn, "41");
    EXPECT_THAT(Payloads(), ElementsAre("X16D", "W16D3201", "X115", "W1150041"));
}

TEST_F(MeterIdentity, BoardConfigurationKeepsTheWordsBetween)
{
    Answers("X414", "0503ABCD21D16536");
    WriteBoardConfigWords("60");
    EXPECT_THAT(Payloads(), ElementsAre("X414", "W615"
                                                "0001"
                                                "0503ABCD21D16536"
                                                "0060"));
    EXPECT_EQ(clock.Elapsed(), (500 + 1750) + 1750);
    Start();
    WriteBoardConfigWords("40");
    EXPECT_EQ(Payloads()[1], "W615"
                             "0031"
                             "0503ABCD21D16536"
                             "0040");
}

TEST_F(MeterIdentity, BoardConfigurationIsNotWrittenWhenTheWordsBetweenAreNotRead)
{
    for (const char *line : {"", "0503", "0503ABCD21D1653", "0503ABCD21D165360000", "0503ABCD21D1653?"}) {
        Start();
        Answers("X414", line);
        WriteBoardConfigWords("60");
        EXPECT_THAT(Payloads(), ElementsAre("X414")) << line;
    }
}

TEST_F(MeterIdentity, InSimulationIsADpmWithADcBoard)
{
    Simulate();
    ReadMeterIdentity();
    EXPECT_EQ(MeterName, "DPM");
    EXPECT_EQ(MeterRevText, "X2");
    EXPECT_EQ(MeterSCType, kDc);
    EXPECT_EQ(BoardCode, "01");
    WriteMeterIdentity(kDpm, true, kRtd, "41");
    ReadMeterIdentity();
    EXPECT_EQ(MeterName, "DPM Xmtr");
    EXPECT_EQ(MeterSCType, kRtd);
    ClearSimWord21();
    ReadMeterIdentity();
    EXPECT_EQ(MeterSCType, -1);
}
