#include "links/operations_fixture.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- filter, display setup, range ----

TEST(EncodeFilterCode, FollowsItsWeights)
{
    const struct {
        const char *code;
        const char *text;
    } rows[] = {{"00108", "28"}, {"00116", "36"}, {"00117", "37"}, {"00118", "38"},  {"00106", "26"}, {"00107", "27"},
                {"00008", "08"}, {"10000", "80"}, {"11119", "F9"}, {"1111A", "FA"},  {"0000B", "08"}, {"00AX8", "38"},
                {"9999A", "FA"}, {"00000", "00"}, {"0010", "38"},  {"001080", "38"}, {"", "38"},      {" 0108", "A8"}};
    for (const auto &row : rows)
        EXPECT_EQ(EncodeFilterCode(row.code), row.text) << row.code;
}

TEST(EncodeFilterCode, Of4CharactersIs38)
{
    EXPECT_EQ(EncodeFilterCode("0010"), "38");
}

TEST_F(MeterOperations, TheFilterCodeGoesBehindByte48)
{
    Answers("G130", "4A");
    WriteFilterCode("00116");
    EXPECT_THAT(Payloads(), ElementsAre("G130", "W1114A36"));
    EXPECT_EQ(clock.Elapsed(), 500 + 1750);
}

TEST_F(MeterOperations, TheFilterCodeIsNotWrittenWhenByte48IsNotRead)
{
    WriteFilterCode("00116");
    EXPECT_THAT(Payloads(), ElementsAre("G130"));
}

TEST_F(MeterOperations, TheDisplaySetupIsWrittenInHexadecimal)
{
    const struct {
        int value;
        const char *data;
    } rows[] = {{0, "000000100000"},     {1, "000000100001"},   {2, "000000100002"},   {4, "000000100004"},
                {8, "000000100008"},     {10, "00000010000A"},  {15, "00000010000F"},  {16, "000000100010"},
                {100, "000000100064"},   {255, "0000001000FF"}, {256, "000000100100"}, {4096, "000000101000"},
                {32767, "000000107FFF"}, {-1, "00000010FFFF"}};
    for (const auto &row : rows) {
        Start();
        WriteDisplaySetupWords(row.value);
        EXPECT_THAT(Payloads(), ElementsAre(std::string("W305") + row.data));
        EXPECT_EQ(LastDisplaySetup, row.value);
        EXPECT_EQ(clock.Elapsed(), 1750);
    }
}

TEST_F(MeterOperations, TheDisplaySetupOfACounterIsTheCustomersAndSoIsThatOfAnUnknownMeter)
{
    for (const int kind : {-1, 1, 2, 3})
        for (const int session : {-1, 1, 2, 3}) {
            MeterKind = kind;
            SessionMeterKind = session;
            Start();
            WriteDisplaySetupForward(1);
            const bool plain = (kind == kDpm || kind == kWtMtr) && session != kCtr;
            const auto expected = plain ? std::vector<std::string>{"W305000000100001"} : std::vector<std::string>{};
            EXPECT_EQ(Payloads(), expected) << kind << " " << session;
        }
}

TEST_F(MeterOperations, ARangeIsSetWithOneRestartAtItsEnd)
{
    SCType = kDc;
    Answers("G130", "65");
    WriteRangeSetup("00108", "61", 4);
    EXPECT_THAT(Payloads(), ElementsAre("G130", "W21165280061Z", "W305000000100004"));
    EXPECT_EQ(clock.Elapsed(), 500 + 2 * 8 + 1750);
    EXPECT_EQ(LastDisplaySetup, 4);
}

TEST_F(MeterOperations, ARangeIsNotSetUpWhenTheLineGoesMeanwhile)
{
    Answers("G130", "65");
    CallAfter(800, [this] { meter.HangsUp(); });
    EXPECT_FALSE(WriteRangeSetup("00108", "80", 4));
}

TEST_F(MeterOperations, OnTcARangeKeepsTheWordsBetween)
{
    SCType = kTc;
    Answers("G130", "65");
    Answers("X314", "0503ABCD21D1");
    WriteRangeSetup("00108", "61", 4);
    EXPECT_THAT(Payloads(), ElementsAre("G130", "X314",
                                        "W615"
                                        "0001"
                                        "0503ABCD21D1"
                                        "6528"
                                        "0061"
                                        "Z",
                                        "W305000000100004"));
    EXPECT_EQ(clock.Elapsed(), 500 + (500 + 1750) + 6 * 8 + 1750);
    Start();
    WriteRangeSetup("00118", "40", 8);
    EXPECT_EQ(Payloads()[2], "W615"
                             "0031"
                             "0503ABCD21D1"
                             "6538"
                             "0040"
                             "Z");
}

TEST_F(MeterOperations, AFailedReadLeavesTheRangeAlone)
{
    SCType = kTc;
    LastDisplaySetup = 10;
    WriteRangeSetup("00108", "61", 4);
    EXPECT_THAT(Payloads(), ElementsAre("G130"));
    Answers("G130", "65");
    for (const char *line : {"", "0503", "0503ABCD21D", "0503ABCD21D1FFFF", "0503ABCD21?1"}) {
        Start();
        Answers("X314", line);
        WriteRangeSetup("00108", "61", 4);
        EXPECT_THAT(Payloads(), ElementsAre("G130", "X314")) << line;
    }
    EXPECT_EQ(LastDisplaySetup, 10);
}

TEST_F(MeterOperations, ACodeOfTheWrongLengthLeavesTheRangeAlone)
{
    SCType = kDc;
    Answers("G130", "65");
    WriteRangeSetup("0010", "61", 4);
    WriteRangeSetup("", "61", 4);
    WriteRangeSetup("00108", "", 4);
    EXPECT_THAT(Payloads(), ElementsAre("G130", "G130", "G130"));
}

TEST_F(MeterOperations, TheFactorySetupIsWord18ThenFilterThenDisplay)
{
    Answers("G130", "65");
    LoadFactoryMeterSetup();
    EXPECT_THAT(Payloads(), ElementsAre("W11221D1", "G130", "W1116536", "W305000000100004"));
    EXPECT_EQ(clock.Elapsed(), 1750 + 500 + 1750 + 1750);
}

TEST_F(MeterOperations, BareCommandsHoldTheirPauses)
{
    const struct {
        void (*command)();
        const char *payload;
        int ms;
    } rows[] = {{MeterCommandA1, "A1", 200},
                {MeterCommandC0, "C0", 500},
                {MeterCommandCZ, "CZ", 1000},
                {MeterCommandV6, "V6", 0}};
    for (const auto &row : rows) {
        Start();
        row.command();
        EXPECT_THAT(Payloads(), ElementsAre(row.payload));
        EXPECT_EQ(clock.Elapsed(), row.ms) << row.payload;
    }
}

TEST_F(MeterOperations, TheEndOfTheProgramLeavesAWaitAtOnce)
{
    CallAfter(100, [] { RequestShutdown(); });
    EXPECT_THROW(WriteNvmWords(200, "00C8", ""), Shutdown);
    EXPECT_EQ(clock.Elapsed(), 100);
}
