#include "links/wire_meaning.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ombrix;

namespace {

TraceRecord ToMeter(const std::string &bytes)
{
    return {1, TraceLine::Meter, ByteWay::Sent, bytes};
}

TraceRecord FromMeter(const std::string &bytes, std::int64_t micros = 2)
{
    return {micros, TraceLine::Meter, ByteWay::Received, bytes};
}

TraceRecord ToCalibrator(const std::string &bytes)
{
    return {3, TraceLine::Calibrator, ByteWay::Sent, bytes};
}

TraceRecord FromCalibrator(const std::string &bytes)
{
    return {4, TraceLine::Calibrator, ByteWay::Received, bytes};
}

// Of the last row.
std::string Meaning(const std::vector<TraceRecord> &records)
{
    const auto rows = WireRows(records);
    return rows.empty() ? "no row" : rows.back().meaning;
}

std::vector<std::string> Texts(const std::vector<TraceRecord> &records)
{
    std::vector<std::string> texts;
    for (const WireRow &row : WireRows(records))
        texts.push_back(row.bytes);
    return texts;
}

using Lines = std::vector<std::string>;

}  // namespace

TEST(WireMeaning, OfWhatAMeterIsTold)
{
    const struct {
        const char *frame;
        const char *meaning;
    } rows[] = {
        {"*1A1\r", "first command"},
        {"*1B1\r", "read the display"},
        {"*1C0\r", "end the stream"},
        {"*1CZ\r", "begin to settle anew"},
        {"*1V6\r", "begin the stream of counts"},
        {"*1X414Z\r", "read words 20..17"},
        {"*1X16D\r", "read word 109, restart"},
        {"*1XZ23Z\r", "read words 35..1"},
        {"*1G232\r", "read bytes 50..49"},
        {"*1W11136AfZ\r", "write word 17 = 36AF"},
        {"*1W21165360012\r", "write words 17..16 = 6536 0012, restart"},
        {"*1F12FA7\r", "write byte 47 = A7"},
        {"*2W305000000100000\r", "output switch: write words 5..3 = 0000 0010 0000, restart"},
        {"*3B1\r", "meter 3: read the display"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Meaning({ToMeter(row.frame)}), row.meaning) << row.frame;
}

TEST(WireMeaning, OfWhatIsNotUnderstoodIsNone)
{
    for (const char *frame : {"\r", "*1\r", "*1B\r", "*1B2\r", "B1\r", "*1X014Z\r", "*1X4G4Z\r", "*1W111Z\r",
                              "*1W111360Z\r", "*1W111XXXXZ\r", "*1X414ZZ\r", "*1G2320\r", "*1Q414\r"})
        EXPECT_EQ(Meaning({ToMeter(frame)}), "") << frame;
    for (const char *command : {"\n", "OUT 1 V\n", "OUT 1 V ; OPER\n", "OUT 1 V ; ON ; *WAI\n", "*IDN?\n",
                                "UUT_SEND *1B1\r\n", "UUT_SEND #3\n", "UUT_SEND #209*1B1\r\n"})
        EXPECT_EQ(Meaning({ToCalibrator(command)}), "") << command;
    for (const char *reply : {"\r\n", "2\r\n", "garbage\r\n", "1 V\r\n", "x1\r\n", "#x12\r\n", "#205999\r\n"})
        EXPECT_EQ(Meaning({FromCalibrator(reply)}), "") << reply;
}

TEST(WireMeaning, OfACommandThatCannotBeShownIsNone)
{
    EXPECT_EQ(Meaning({ToCalibrator("UUT_SET \xFF\xFE,XON\n")}), "");
    EXPECT_EQ(Meaning({ToCalibrator("TC_TYPE \x01\n")}), "");
    EXPECT_EQ(Meaning({ToCalibrator("OUT 2\t\x7F V ; OPER ; *WAI\n")}), "");
    EXPECT_EQ(Meaning({ToMeter("*\xFF"
                               "B1\r")}),
              "");
    EXPECT_EQ(Meaning({ToCalibrator("TC_TYPE K \n")}), "thermocouple K") << "no blank at the end of a saved row";
}

TEST(WireMeaning, OfAMetersAnswerIsWhatItWasAskedLast)
{
    const struct {
        const char *asked;
        const char *answer;
        const char *meaning;
    } rows[] = {
        {"*1B1\r", " 199.87\r", "display 199.87"},
        {"*1B1\r", "-.5\r", "display -.5"},
        {"*1B1\r", "HHHH\r", "display over range: HHHH"},
        {"*1B1\r", "7F3A\r", ""},
        {"*1X414Z\r", "050300ff21D16536\r", "words 20..17 = 0503 00FF 21D1 6536"},
        {"*1X414Z\r", "0503\r", ""},
        {"*1X16DZ\r", "32O1\r", ""},
        {"*1X16DZ\r", "199.87\r", ""},
        {"*1G232\r", "21D1\r", "bytes 50..49 = 21 D1"},
        {"*1W11136AF\r", "36AF\r", ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Meaning({ToMeter(row.asked), FromMeter(row.answer)}), row.meaning) << row.asked << row.answer;
    EXPECT_EQ(Meaning({FromMeter("199.87\r")}), "") << "nobody has asked";
    EXPECT_EQ(Meaning({ToMeter("*1B1\r"), FromMeter("1.0\r"), FromMeter("2.0\r")}), "") << "one question, one answer";
}

TEST(WireMeaning, OfWhatTheCalibratorIsToldAndSays)
{
    const struct {
        const char *command;
        const char *meaning;
    } commands[] = {
        {"OUT 200 mV ; OPER ; *WAI\n", "OUT 200 mV, operate"},
        {"OUT 0 V, 0 Hz ; STBY ; *WAI\n", "OUT 0 V, 0 Hz, standby"},
        {"ERR?\n", "read the next error"},
        {"*RST ; *CLS\n", "reset"},
        {"TC_TYPE K\n", "thermocouple K"},
        {"UUT_SET 9600,XON,DBIT8,SBIT1,PNONE\n", "the meter's line: 9600 baud"},
    };
    for (const auto &row : commands)
        EXPECT_EQ(Meaning({ToCalibrator(row.command)}), row.meaning);
    const struct {
        const char *reply;
        const char *meaning;
    } replies[] = {
        {"0,\"No Error\"\r\n", "no error"},
        {"511,\"No such output\"\r\n", "error 511"},
        {"1\r\n", "operates"},
        {"0\r\n", "stands by"},
        {"2.0E-01,V,0,0\r\n", "OUT 200.0 mV"},
        {"660,V,300\r\n", "OUT 660.0 V"},
    };
    for (const auto &row : replies)
        EXPECT_EQ(Meaning({FromCalibrator(row.reply)}), row.meaning) << row.reply;
}

TEST(WireMeaning, OfAMeterBehindTheCalibratorIsFoundInItsBlocks)
{
    const TraceRecord asked = ToCalibrator("UUT_SEND #208*1X16DZ\r\n");
    EXPECT_EQ(Meaning({asked}), "to the meter: read word 109");
    EXPECT_EQ(Meaning({asked, FromCalibrator("#2053201\r\r\n")}), "from the meter: word 109 = 3201");
    EXPECT_EQ(Meaning({asked, FromCalibrator("#03201\r\r\n")}), "from the meter: word 109 = 3201");
    EXPECT_EQ(Meaning({asked, FromCalibrator("#200\r\n")}), "the meter has said nothing");
    EXPECT_EQ(Meaning({asked, FromCalibrator("#1232\r\n"), ToCalibrator("UUT_RECV?\n"), FromCalibrator("#1301\r\r\n")}),
              "from the meter: word 109 = 3201")
        << "in two blocks";
}

TEST(WireLines, AreMadeOfTheBytesHoweverTheyCome)
{
    const std::vector<TraceRecord> split = {ToMeter("*1X16DZ\r"), FromMeter("3", 10), FromMeter("20", 20),
                                            FromMeter("1\r", 30)};
    const auto rows = WireRows(split);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1], (WireRow{10, TraceLine::Meter, ByteWay::Received, "3201\r", "word 109 = 3201"}))
        << "its time is that of its first byte";
    EXPECT_EQ(Texts({FromCalibrator("1\r\n0,\"No"), FromCalibrator(" Error\"\r"), FromCalibrator("\n1\r\n")}),
              Lines({"1\r\n", "0,\"No Error\"\r\n", "1\r\n"}));
}

TEST(WireLines, ABlockEndsByItsLengthWhateverIsInIt)
{
    EXPECT_EQ(Texts({FromCalibrator("#16AB\r\nCD\r\n1\r\n")}), Lines({"#16AB\r\nCD\r\n", "1\r\n"}));
}

TEST(WireLines, ALongBlockIsOneHoweverItComes)
{
    const std::string data(900, 'A');
    EXPECT_EQ(Texts({FromCalibrator("#3900" + data.substr(0, 500)), FromCalibrator(data.substr(500) + "\r\n1\r\n")}),
              Lines({"#3900" + data + "\r\n", "1\r\n"}));
}

TEST(WireLines, OfOneLineAndWayDoNotMixWithOthers)
{
    EXPECT_EQ(Texts({FromMeter("32"), FromCalibrator("1\r\n"), FromMeter("01\r")}), Lines({"1\r\n", "3201\r"}));
    EXPECT_EQ(Texts({FromMeter("32"), ToMeter("*1B1\r"), FromMeter("01\r")}), Lines({"32", "*1B1\r", "01\r"}));
}

TEST(WireLines, WithoutAnEndStandAsTheyAreAndMeanNothing)
{
    const auto rows = WireRows({ToMeter("*1B1\r"), FromMeter("199.8")});
    EXPECT_EQ(rows.back(), (WireRow{2, TraceLine::Meter, ByteWay::Received, "199.8", ""}));
}

TEST(WireLines, DroppedBytesAnswerNothing)
{
    const auto rows =
        WireRows({ToMeter("*1B1\r"), {2, TraceLine::Meter, ByteWay::Dropped, "1.0\r"}, FromMeter("2.0\r")});
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[1].meaning, "");
    EXPECT_EQ(rows[2].meaning, "display 2.0");
}

TEST(WireLines, AMarkStandsWhereItWasSetBehindWhatHadCome)
{
    EXPECT_EQ(Texts({FromMeter("32"), {5, TraceLine::Meter, ByteWay::Mark, "did not answer"}, FromMeter("01\r")}),
              Lines({"32", "did not answer", "01\r"}));
}

TEST(WireLines, OfAMeterThatStreamsAreItsCountsInPieces)
{
    std::vector<TraceRecord> records = {ToMeter("*1V6\r")};
    for (int i = 0; i < 200; ++i)
        records.push_back(FromMeter(std::string("!\0\x12\x34\xFF", 5)));
    const auto rows = WireRows(records);
    ASSERT_GT(rows.size(), 3u);
    std::string joined;
    for (std::size_t i = 1; i < rows.size(); ++i)
        joined += rows[i].bytes;
    EXPECT_EQ(joined.size(), 1000u);
    EXPECT_EQ(rows[1].meaning, "counts");
    EXPECT_EQ(rows[2].meaning, "counts");
}
