#include "links/operations_fixture.h"

#include "platform/text.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// Words of four digits, each holding its own number, from `address` downward.
std::string NumberedWords(int address, int count)
{
    std::string hex;
    for (int i = 0; i < count; ++i)
        hex += HexText(address - i, 4);
    return hex;
}

}  // namespace

// ---- reading words ----

TEST_F(MeterOperations, ReadsOfWordsAsk)
{
    const struct {
        int address;
        int count;
        const char *suffix;
        std::vector<std::string> payloads;
    } rows[] = {
        {200, 1, "", {"X1C8"}},
        {200, 2, "", {"X2C8"}},
        {200, 4, "", {"X4C8"}},
        {200, 9, "", {"X9C8"}},
        {200, 34, "", {"XYC8"}},
        {200, 35, "", {"XZC8"}},
        {200, 36, "", {"XIB6Z", "XIC8"}},
        {200, 37, "", {"XIB5Z", "XJC8"}},
        {200, 38, "", {"XJB5Z", "XJC8"}},
        {200, 39, "", {"XKB5Z", "XJC8"}},
        {200, 57, "", {"XSABZ", "XTC8"}},
        {200, 58, "", {"XTABZ", "XTC8"}},
        {200, 69, "", {"XYA5Z", "XZC8"}},
        {200, 70, "", {"XZA5Z", "XZC8"}},
        {200, 71, "", {"X1A5Z", "XZC8"}},
        {200, 72, "", {"X1A4Z", "X1C8"}},
        {200, 1, "Z", {"X1C8Z"}},
        {200, 2, "Z", {"X2C8Z"}},
        {200, 4, "Z", {"X4C8Z"}},
        {200, 9, "Z", {"X9C8Z"}},
        {200, 34, "Z", {"XYC8Z"}},
        {200, 35, "Z", {"XZC8Z"}},
        {200, 36, "Z", {"XIB6Z", "XIC8Z"}},
        {200, 37, "Z", {"XIB5Z", "XJC8Z"}},
        {200, 38, "Z", {"XJB5Z", "XJC8Z"}},
        {200, 39, "Z", {"XKB5Z", "XJC8Z"}},
        {200, 57, "Z", {"XSABZ", "XTC8Z"}},
        {200, 58, "Z", {"XTABZ", "XTC8Z"}},
        {200, 69, "Z", {"XYA5Z", "XZC8Z"}},
        {200, 70, "Z", {"XZA5Z", "XZC8Z"}},
        {200, 71, "Z", {"X1A5Z", "XZC8Z"}},
        {200, 72, "Z", {"X1A4Z", "X1C8Z"}},
        {56, 57, "", {"XS1BZ", "XT38"}},
        {117, 1, "Z", {"X175Z"}},
        {201, 9, "Z", {"X9C9Z"}},
        {49, 6, "Z", {"X631Z"}},
        {40, 23, "Z", {"XN28Z"}},
        {17, 18, "", {"XI11"}},
        {63, 20, "Z", {"XK3FZ"}},
        {43, 19, "", {"XJ2B"}},
        {49, 25, "Z", {"XP31Z"}},
        {24, 25, "", {"XP18"}},
        {50, 4, "", {"X432"}},
        {20, 4, "", {"X414"}},
        {20, 3, "", {"X314"}},
        {21, 1, "Z", {"X115Z"}},
        {16, 1, "", {"X110"}},
        {109, 1, "", {"X16D"}},
    };
    for (const auto &row : rows) {
        Start();
        ReadNvmWords(row.address, row.count, row.suffix);
        EXPECT_EQ(Payloads(), row.payloads) << row.address << " " << row.count;
    }
}

TEST_F(MeterOperations, Count36Asks18WordsAtTheAddressMinus18WithZThen18AtTheAddress)
{
    Answers("XIB6Z", NumberedWords(182, 18), 10);
    Answers("XIC8", NumberedWords(200, 18), 10);
    EXPECT_EQ(ReadNvmWords(200, 36, ""), NumberedWords(200, 36)) << "the second reply stands in front";
    EXPECT_THAT(Payloads(), ElementsAre("XIB6Z", "XIC8"));
    EXPECT_EQ(clock.Elapsed(), 500 + 500 + 1750);
}

TEST_F(MeterOperations, Count37SplitsInto18And19AndCount39Into20And19)
{
    ReadNvmWords(200, 37, "Z");
    ReadNvmWords(200, 39, "Z");
    EXPECT_THAT(Payloads(), ElementsAre("XIB5Z", "XJC8Z", "XKB5Z", "XJC8Z"));
}

TEST_F(MeterOperations, AReadWithZCostsItsQuestionAlone)
{
    Answers("X16DZ", "3201", 20);
    EXPECT_EQ(ReadNvmWords(109, 1, "Z"), "3201");
    EXPECT_EQ(clock.Elapsed(), 500);
}

TEST_F(MeterOperations, AReadWithoutZAddsTheRestart)
{
    Answers("X16D", "3201", 20);
    EXPECT_EQ(ReadNvmWords(109, 1, ""), "3201");
    EXPECT_EQ(clock.Elapsed(), 500 + 1750);
    EXPECT_THAT(waits, ElementsAre("Meter: waiting for reply", "", "Meter restarts", ""));
}

TEST_F(MeterOperations, ASilentReadWaitsOutTheRestartToo)
{
    EXPECT_EQ(ReadNvmWords(109, 1, ""), "");
    EXPECT_EQ(clock.Elapsed(), 1500 + 1750);
}

TEST_F(MeterOperations, ASilentLongReadCostsBothQuestions)
{
    EXPECT_EQ(ReadNvmWords(200, 36, ""), "");
    EXPECT_EQ(clock.Elapsed(), 2 * 1500 + 1750);
}

TEST_F(MeterOperations, AReadOfTheWrongLengthIsEmpty)
{
    for (const char *line : {"320", "32010", "", "32013201"}) {
        Answers("X16DZ", line);
        EXPECT_EQ(ReadNvmWords(109, 1, "Z"), "") << line;
    }
    Answers("XIB6Z", NumberedWords(182, 18));
    EXPECT_EQ(ReadNvmWords(200, 36, "Z"), "") << "one half alone";
}

TEST_F(MeterOperations, AGarbledReadIsEmpty)
{
    Answers("X16DZ", "32?1");
    EXPECT_EQ(ReadNvmWords(109, 1, "Z"), "");
}

TEST_F(MeterOperations, LowerCaseIsTakenAndTurnedUpper)
{
    Answers("X16DZ", "ab0f");
    EXPECT_EQ(ReadNvmWords(109, 1, "Z"), "AB0F");
}

TEST_F(MeterOperations, InTheSimulatorReadsHaveTheirLengths)
{
    Simulate();
    for (int count : {1, 2, 4, 9, 34, 35, 36, 37, 38, 39, 57, 58, 69, 70})
        for (const char *suffix : {"", "Z"})
            EXPECT_EQ(ReadNvmWords(200, count, suffix).size(), static_cast<std::size_t>(4 * count)) << count;
    EXPECT_EQ(ReadNvmWords(200, 71, ""), "") << "a count of 36 is asked as 1";
    EXPECT_EQ(ReadNvmWords(200, 72, "Z"), "");
    EXPECT_EQ(clock.Elapsed(), 0);
}

// ---- writing words ----

TEST_F(MeterOperations, WritesOfWordsSplitTheTextLowBlockFirst)
{
    struct Block {
        const char *head;
        int word;
        int count;
    };
    const struct {
        int words;
        Block low;
        Block high;
    } rows[] = {
        {1, {"", 0, 0}, {"W1C8", 200, 1}},           {2, {"", 0, 0}, {"W2C8", 200, 2}},
        {35, {"", 0, 0}, {"WZC8", 200, 35}},         {36, {"WIB6", 0xB6, 18}, {"WIC8", 200, 18}},
        {37, {"WIB5", 0xB5, 18}, {"WJC8", 200, 19}}, {39, {"WKB5", 0xB5, 20}, {"WJC8", 200, 19}},
        {57, {"WSAB", 0xAB, 28}, {"WTC8", 200, 29}}, {70, {"WZA5", 0xA5, 35}, {"WZC8", 200, 35}},
        {71, {"W1A5", 0xA5, 36}, {"WZC8", 200, 35}}, {72, {"W1A4", 0xA4, 36}, {"W1C8", 200, 36}},
    };
    for (const auto &row : rows) {
        for (const std::string suffix : {"", "Z"}) {
            Start();
            WriteNvmWords(200, NumberedWords(200, row.words), suffix);
            std::vector<std::string> expected;
            std::vector<std::int64_t> times;
            if (row.low.count > 0) {
                expected.push_back(row.low.head + NumberedWords(row.low.word, row.low.count) + "Z");
                times.push_back(0);
            }
            expected.push_back(row.high.head + NumberedWords(row.high.word, row.high.count) + suffix);
            times.push_back(8 * row.low.count);
            EXPECT_EQ(Payloads(), expected) << row.words;
            EXPECT_EQ(meter.writeTimes, times) << row.words;
            EXPECT_EQ(clock.Elapsed(), 8 * row.low.count + (suffix == "Z" ? 8 * row.high.count : 1750)) << row.words;
        }
    }
}

TEST_F(MeterOperations, AWriteOfMoreThan70WordsSends1AsItsCount)
{
    WriteNvmWords(200, NumberedWords(200, 71), "Z");
    EXPECT_EQ(Payloads()[0].substr(0, 2), "W1");
}

TEST_F(MeterOperations, AWriteReadsNothingBack)
{
    WriteNvmWords(200, "00C8", "Z");
    EXPECT_THAT(meter.log, ElementsAre("RTS on", "read", "write *1W1C800C8Z\r")) << "RTS stays on";
}

TEST_F(MeterOperations, WhatIsNoRunOfWordsIsNotSent)
{
    for (const char *text : {"", "0A", "ABCDEF", "0123456789", "12G4", "????", "STOP", "12 4"})
        WriteNvmWords(10, text, "");
    EXPECT_THAT(Payloads(), IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0) << "and nothing restarts";
}

TEST_F(MeterOperations, LowerCaseIsSentUpper)
{
    WriteNvmWords(10, "ab0f", "Z");
    EXPECT_THAT(Payloads(), ElementsAre("W10AAB0FZ"));
}

// ---- working memory ----

TEST_F(MeterOperations, BytesAreReadWithoutRestart)
{
    Answers("G130", "65", 20);
    EXPECT_EQ(ReadRamBytes(48, 1), "65");
    EXPECT_EQ(clock.Elapsed(), 500);
}

TEST_F(MeterOperations, ALongReadOfBytesIsSplitWithoutSuffix)
{
    Answers("GI1E", std::string(36, '1'));
    Answers("GI30", std::string(36, '2'));
    EXPECT_EQ(ReadRamBytes(48, 36), std::string(36, '2') + std::string(36, '1'));
    EXPECT_THAT(Payloads(), ElementsAre("GI1E", "GI30"));
}

TEST_F(MeterOperations, ASilentReadOfBytesIsNotRepeated)
{
    EXPECT_EQ(ReadRamBytes(48, 1), "");
    EXPECT_THAT(Payloads(), ElementsAre("G130"));
    EXPECT_EQ(clock.Elapsed(), 1500);
}

TEST_F(MeterOperations, AReadOfBytesOfTheWrongLengthIsRepeated)
{
    Answers("G130", "6");
    Answers("G130", "656");
    Answers("G130", "6?");
    Answers("G130", "3F");
    EXPECT_EQ(ReadRamBytes(48, 1), "3F");
    EXPECT_EQ(meter.Writes().size(), 4u);
}

TEST_F(MeterOperations, AReadOfBytesGivesUpAfter20WrongReplies)
{
    Answers("G130", "6");
    EXPECT_EQ(ReadRamBytes(48, 1), "");
    EXPECT_EQ(meter.Writes().size(), 20u);
    EXPECT_EQ(clock.Elapsed(), 20 * 500);
}

TEST_F(MeterOperations, AbortEndsTheRepeats)
{
    Answers("G130", "6");
    AbortsAfter(1200);
    EXPECT_EQ(ReadRamBytes(48, 1), "");
    EXPECT_EQ(clock.Elapsed(), 1500);
}

TEST_F(MeterOperations, AfterAbortNoBytesAreAskedFor)
{
    Abort = true;
    EXPECT_EQ(ReadRamBytes(48, 1), "");
    EXPECT_THAT(Payloads(), IsEmpty());
}

TEST_F(MeterOperations, BytesAreWrittenWithoutSuffixOrRestart)
{
    WriteRamBytes(53, "80");
    EXPECT_THAT(Payloads(), ElementsAre("F13580"));
    EXPECT_EQ(clock.Elapsed(), 4);
}

TEST_F(MeterOperations, ALongWriteOfBytesWaits4msForEach)
{
    std::string hex;
    for (int address = 100; address > 100 - 37; --address)
        hex += HexText(address, 2);
    WriteRamBytes(100, hex);
    EXPECT_THAT(Payloads(), ElementsAre("FI51" + hex.substr(38), "FJ64" + hex.substr(0, 38)));
    EXPECT_THAT(meter.writeTimes, ElementsAre(0, 72));
    EXPECT_EQ(clock.Elapsed(), 72 + 76);
}

TEST_F(MeterOperations, WhatIsNoRunOfBytesIsNotSent)
{
    for (const char *text : {"", "8", "800", "8G"})
        WriteRamBytes(53, text);
    EXPECT_THAT(Payloads(), IsEmpty());
}

// ---- display ----

TEST_F(MeterOperations, OneTryAtTheDisplayIsTrimmed)
{
    meter.Says("stale\r");
    meter.Answers("*1B1\r", "  -12.34 \r", 30);
    EXPECT_EQ(ReadDisplayRaw(), "-12.34");
    EXPECT_EQ(clock.Elapsed(), 30) << "no pause of 500 ms";
}

TEST_F(MeterOperations, OneTryAtASilentDisplayIsEmpty)
{
    EXPECT_EQ(ReadDisplayRaw(), "");
    EXPECT_EQ(clock.Elapsed(), 1000);
}

TEST_F(MeterOperations, TheDisplayIsReadUntilAReadingComes)
{
    for (const char *line : {"", "OVERLOAD", "x12.34", "12,34", "12.34"})
        Answers("B1", line, 10);
    EXPECT_EQ(ReadDisplay(), "12.34");
    EXPECT_EQ(meter.Writes().size(), 5u);
    EXPECT_EQ(clock.Elapsed(), 50);
}

TEST_F(MeterOperations, OneTryThatBringsNoReadingIsEmpty)
{
    for (const char *line : {"1234", "12.34.", "12..34", "--12.34", "+-1.", "1-2.3", "12.34V", "1.2E3",
                             "\x01"
                             "12.34",
                             "."}) {
        meter.onWrite = [this, line](const std::string &) { meter.Says(line + std::string("\r")); };
        EXPECT_EQ(ReadDisplayRaw(), "") << line;
    }
}

TEST_F(MeterOperations, AnOverloadedDisplayIsToldApartFromASilentMeter)
{
    const auto isOverRange = [this](const std::string &bytes) {
        meter.onWrite = [this, bytes](const std::string &) { meter.Says(bytes); };
        EXPECT_EQ(ReadDisplayRaw(), "") << bytes;
        return DisplayIsOverRange();
    };
    for (const char *shown : {"OVERLOAD\r", " -----.\r", " .    \r", "EEEEEE\r"})
        EXPECT_TRUE(isOverRange(shown)) << shown;
    for (const char *shown : {"", "\r", "     \r", "OVERLOAD", "12..3\r", "\xF0\x83.\r", "1\r"})
        EXPECT_FALSE(isOverRange(shown)) << shown;
    isOverRange("OVERLOAD\r");
    meter.onWrite = nullptr;
    Answers("B1", "12.34");
    EXPECT_EQ(ReadDisplayRaw(), "12.34");
    EXPECT_FALSE(DisplayIsOverRange()) << "it was the try before";
}

TEST_F(MeterOperations, AnOverloadedDisplayIsToldWhileItIsReadAgain)
{
    Answers("B1", "OVERLOAD", 10);
    Answers("B1", "12.34", 10);
    outlets.showWait = [this](const std::string &text) { waits.push_back(text); };
    EXPECT_EQ(ReadDisplay(), "12.34");
    EXPECT_THAT(waits, ElementsAre("Meter: waiting for reply", "", "Meter: the display is over range",
                                   "Meter: waiting for reply", "Meter: the display is over range", ""));
}

TEST_F(MeterOperations, AbortEndsTheReadOfADisplayThatBringsNoReading)
{
    Answers("B1", "garbled", 70);
    AbortsAfter(1000);
    EXPECT_EQ(ReadDisplay(), "");
    EXPECT_EQ(clock.Elapsed(), 1050) << "the try in work is the last";
}

TEST_F(MeterOperations, ASilentMeterHoldsTheReadUntilTheStop)
{
    AbortsAfter(600'000);
    EXPECT_EQ(ReadDisplay(), "");
    EXPECT_EQ(clock.Elapsed(), 600'000);
    EXPECT_EQ(meter.Writes().size(), 600u) << "one try each second";
}

TEST_F(MeterOperations, AVanishedPortHoldsTheSamePace)
{
    meter.Vanishes();
    AbortsAfter(10'500);
    EXPECT_EQ(ReadDisplay(), "");
    EXPECT_EQ(clock.Elapsed(), 11'000);
}

TEST_F(MeterOperations, DigitsAreTheDisplayWithoutItsPoint)
{
    for (const char *shown : {"12.34", "80000.", "-.5"})
        Answers("B1", shown);
    for (const char *digits : {"1234", "80000", "-5"})
        EXPECT_EQ(ReadDisplayDigits(), digits);
    Abort = true;
    EXPECT_EQ(ReadDisplayDigits(), "");
}

// ---- restart ----

TEST_F(MeterOperations, ARestartIsWaitedOut)
{
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 1750);
    EXPECT_THAT(waits, ElementsAre("Meter restarts", ""));
}

TEST_F(MeterOperations, BytesDoNotShortenTheRestartOfAPlainMeter)
{
    meter.Says("!", 100);
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 1750);
}

TEST_F(MeterOperations, ACounterEndsItsRestartWithASignOfLifeThatIsDropped)
{
    MeterKind = kCtr;
    meter.Says("!", 2345);
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 2345);
    EXPECT_EQ(comDPM.BytesWaiting(), 0u);
    EXPECT_THAT(waits, ElementsAre("Meter restarts", ""));
}

TEST_F(MeterOperations, AReplyThatAStopLeavesUnreadIsNoSignOfLife)
{
    MeterKind = kCtr;
    CallAfter(100, [] { Abort = true; });
    meter.Says("0000", 10);
    meter.Says("!", 2345);
    EXPECT_EQ(ReadNvmWords(200, 1, ""), "");
    EXPECT_EQ(clock.Elapsed(), 2345);

    RequestShutdown(false);
    Abort = false;
    CallAfter(100, [] { RequestShutdown(); });
    clock.Restart();
    meter.Says("0000", 10);
    meter.Says("!", 2345);
    EXPECT_THROW(ReadNvmWords(200, 1, ""), Shutdown);
    RequestShutdown(false);
    WaitOutRestart(5000);
    EXPECT_EQ(clock.Elapsed(), 2345) << "nor behind the last words";
}

TEST_F(MeterOperations, ASilentCounterIsWaitedForUpTo5000ms)
{
    MeterKind = kCtr;
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 5000);
    clock.Restart();
    CallAfter(1000, [this] { meter.Vanishes(); });
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 5000) << "also when its line is pulled";
}

TEST_F(MeterOperations, ThroughTheCalibratorACountersRestartIsOneLongChunk)
{
    MeterKind = kCtr;
    UseUutRoute();
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 5000);
    clock.Restart();
    calibrator.Says("!", 3000);
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 3000);
    EXPECT_EQ(comCAL.BytesWaiting(), 0u);
    EXPECT_THAT(calibrator.Writes(), IsEmpty());
}

TEST_F(MeterOperations, ThroughTheCalibratorALateReplyDoesNotEndACountersRestart)
{
    MeterKind = kCtr;
    UseUutRoute();
    calibrator.Says("#14ABCD\r\n", 1500);
    WriteNvmWords(200, "00C8", "");
    EXPECT_GE(clock.Elapsed(), 5000);
    EXPECT_EQ(RestartLeftMs(), 0);
}

TEST_F(MeterOperations, WhatIsLeftOfARestartIsKnownByTheClock)
{
    std::vector<int> left;
    const auto looksAt = [&](int ms) { CallAfter(ms, [&left] { left.push_back(RestartLeftMs()); }); };
    EXPECT_EQ(RestartLeftMs(), 0);
    looksAt(700);
    looksAt(1749);
    WriteNvmWords(200, "00C8", "");
    EXPECT_THAT(left, ElementsAre(1050, 1));
    EXPECT_EQ(RestartLeftMs(), 0);

    left.clear();
    Answers("X16D", "3201", 20);
    looksAt(100);
    looksAt(600);
    ReadNvmWords(109, 1, "");
    EXPECT_THAT(left, ElementsAre(1650, 1150));

    left.clear();
    looksAt(100);
    ReadMeterType();
    EXPECT_THAT(left, ElementsAre(1650));

    left.clear();
    looksAt(3);
    WriteNvmWords(200, "00C8", "Z");
    EXPECT_THAT(left, ElementsAre(0)) << "with Z nothing restarts";
}

TEST_F(MeterOperations, ACountersRestartIsOverWithItsSignOfLife)
{
    MeterKind = kCtr;
    std::vector<int> left;
    CallAfter(1900, [&left] { left.push_back(RestartLeftMs()); });
    meter.Says("!", 2345);
    WriteNvmWords(200, "00C8", "");
    EXPECT_THAT(left, ElementsAre(3100));
    EXPECT_EQ(RestartLeftMs(), 0);
    WriteNvmWords(200, "00C8", "");
    EXPECT_EQ(RestartLeftMs(), 0) << "5000 ms without a sign";
}

TEST_F(MeterOperations, ARestartThatNobodyWaitsForAnyMoreIsWaitedOut)
{
    CallAfter(250, [] { RequestShutdown(); });
    EXPECT_THROW(WriteNvmWords(200, "00C8", ""), Shutdown);
    RequestShutdown(false);
    clock.Restart();
    WaitOutRestart(2500);
    EXPECT_EQ(clock.Elapsed(), 1500);
    WaitOutRestart(2500);
    EXPECT_EQ(clock.Elapsed(), 1500) << "it is over";

    MeterKind = kCtr;
    CallAfter(250, [] { RequestShutdown(); });
    EXPECT_THROW(WriteNvmWords(200, "00C8", ""), Shutdown);
    RequestShutdown(false);
    clock.Restart();
    WaitOutRestart(1000);
    EXPECT_EQ(clock.Elapsed(), 1000) << "no longer than asked for";
    meter.Says("!", 700);
    WaitOutRestart(2500);
    EXPECT_EQ(clock.Elapsed(), 1700) << "its sign of life ends the wait";
}

TEST_F(MeterOperations, ARestartGoesOnWhenTheEndOfTheProgramLeavesItsWait)
{
    CallAfter(250, [] { RequestShutdown(); });
    EXPECT_THROW(WriteNvmWords(200, "00C8", ""), Shutdown);
    EXPECT_EQ(RestartLeftMs(), 1500);
    RequestShutdown(false);
    DelayAlways(1500);
    EXPECT_EQ(RestartLeftMs(), 0);
}

TEST_F(MeterOperations, ASimulatedMeterNeverRestarts)
{
    Simulate();
    RealTimeDelays = true;
    int left = 9;
    CallAfter(100, [&left] { left = RestartLeftMs(); });
    WriteNvmWords(200, "00C8", "");
    EXPECT_EQ(left, 0);
}

TEST_F(MeterOperations, InSimulationEveryKindRestartsTheSame)
{
    HardwareMode = false;  // with real waits, so that the length shows
    for (int kind : {-1, static_cast<int>(kDpm), static_cast<int>(kWtMtr), static_cast<int>(kCtr)}) {
        MeterKind = kind;
        clock.Restart();
        WaitMeterRestart();
        EXPECT_EQ(clock.Elapsed(), 1750) << kind;
    }
    RealTimeDelays = false;
    clock.Restart();
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 0);
}

TEST_F(MeterOperations, AbortDoesNotShortenARestart)
{
    AbortsAfter(100);
    WaitMeterRestart();
    EXPECT_EQ(clock.Elapsed(), 1750);
}
