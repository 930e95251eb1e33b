#include "links/links_fixture.h"

#include "platform/text.h"

using namespace ombrix;
using namespace ombrix::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MeterLink : public LinksTest
{
protected:
    void MeterAnswers(const std::string &setup, const std::string &type)
    {
        meter.Answers("*1G232\r", setup + "\r", 10);
        meter.Answers("*1X16DZ\r", type + "\r", 10);
    }
};

TEST_F(MeterLink, OpensThePortLooksForTheMeterAndSetsItsSetupBit)
{
    MeterAnswers("4565", "3201");
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(MeterError, "");
    EXPECT_EQ(MeterName, "DPM");
    EXPECT_THAT(meter.log, ElementsAre("open", "RTS on", "DTR on", "RTS on", "read", "write *1A1\r", "read", "RTS on",
                                       "read", "write *1G232\r", "read", "RTS off", "RTS on", "read", "write *1X16DZ\r",
                                       "read", "RTS off", "RTS on", "read", "write *1W1126565\r"));
    EXPECT_THAT(meter.writeTimes, ElementsAre(0, 200, 700, 710));
    EXPECT_EQ(clock.Elapsed(), 200 + 500 + 10 + 1750) << "the restart is the last wait";
}

TEST_F(MeterLink, TheSetupBitIsTheBitOfValue2OfTheFirstDigit)
{
    const struct {
        char before;
        char after;
    } rows[] = {{'0', '2'}, {'1', '3'}, {'2', '2'}, {'3', '3'}, {'4', '6'}, {'5', '7'}, {'6', '6'}, {'7', '7'},
                {'8', 'A'}, {'9', 'B'}, {'A', 'A'}, {'B', 'B'}, {'C', 'E'}, {'D', 'F'}, {'E', 'E'}, {'F', 'F'}};
    for (const auto &row : rows) {
        FakeLine &line = meter;
        line.Forget();
        line.onWrite = [&line, row](const std::string &bytes) {
            if (bytes == "*1G232\r")
                line.Says(std::string(1, row.before) + "1D1\r");
            if (bytes == "*1X16DZ\r")
                line.Says("3201\r");
        };
        EXPECT_EQ(OpenMeterLink(), 0);
        EXPECT_EQ(line.Writes().back(), std::string("*1W112") + row.after + "1D1\r") << row.before;
    }
}

TEST_F(MeterLink, NoSetupIsWrittenWhenTheFirstCharacterIsNoUpperCaseDigit)
{
    for (const char *answer : {"a1D1", "g1D1", "?1D1", " 1D1"}) {
        meter.Forget();
        meter.onWrite = [this, answer](const std::string &bytes) {
            if (bytes == "*1G232\r")
                meter.Says(std::string(answer) + "\r");
            if (bytes == "*1X16DZ\r")
                meter.Says("3201\r");
        };
        EXPECT_EQ(OpenMeterLink(), 0) << answer;
        EXPECT_EQ(meter.Writes().back(), "*1X16DZ\r") << answer;
    }
}

TEST_F(MeterLink, AGarbledSetupIsNotWrittenBack)
{
    MeterAnswers("4?65", "3201");
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(meter.Writes().back(), "*1X16DZ\r");
}

TEST_F(MeterLink, ACounterTakesItsSetupInWord30)
{
    MeterAnswers("6565", "3203");
    meter.Answers("*1W11E6565\r", "!", 800);
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(meter.Writes().back(), "*1W11E6565\r");
    EXPECT_EQ(clock.Elapsed(), 200 + 500 + 10 + 800) << "the restart ends with the counter's sign of life";
}

TEST_F(MeterLink, AnUnknownTypeStillCountsAsFound)
{
    meter.Answers("*1G232\r", "6565\r", 10);
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(MeterKind, -1);
    EXPECT_EQ(MeterName, "???");
    EXPECT_EQ(meter.Writes().back(), "*1W1126565\r");
    EXPECT_EQ(clock.Elapsed(), 200 + 500 + 1000 + 1750);
}

TEST_F(MeterLink, ASilentMeterIsNotFound)
{
    EXPECT_EQ(OpenMeterLink(), 99);
    EXPECT_EQ(MeterError, "Meter not found");
    EXPECT_EQ(clock.Elapsed(), 200 + 1500);
    EXPECT_EQ(meter.Heard(), "*1A1\r*1G232\r");
}

TEST_F(MeterLink, AMeterThatStillStreamsItsCountsIsStoppedAndFound)
{
    for (const std::string &stream : {std::string("$\x12\x0D\x20\xFF$\x12\x34\x0D\xFF"), std::string(5000, '$')}) {
        bool streaming = true;
        meter.onWrite = [&](const std::string &bytes) {
            if (bytes == "*1C0\r")
                streaming = false;
            if (bytes == "*1G232\r")
                meter.Says(streaming ? stream : "6565\r");
            if (bytes == "*1X16DZ\r")
                meter.Says("3201\r");
        };
        EXPECT_EQ(OpenMeterLink(), 0);
        EXPECT_THAT(meter.Heard(), testing::HasSubstr("*1A1\r*1G232\r*1C0\r*1G232\r"));
        meter.Forget();
    }
}

TEST_F(MeterLink, AnAnswerOfAnotherLengthIsNotFound)
{
    for (const char *answer : {"656", "65656", ""}) {
        meter.Answers("*1G232\r", std::string(answer) + "\r", 1);
        EXPECT_EQ(OpenMeterLink(), 99) << answer;
        EXPECT_EQ(MeterError, "Meter not found");
    }
}

TEST_F(MeterLink, ClearsAbortAndTheAddress)
{
    Abort = true;
    SetMeterAddress("2");
    MeterAnswers("6565", "3201");
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_FALSE(Abort);
    EXPECT_EQ(meter.Writes().front(), "*1A1\r");
}

TEST_F(MeterLink, AbortInTheMiddleEndsWithinASecond)
{
    AbortsAfter(750);
    EXPECT_EQ(OpenMeterLink(), 99);
    EXPECT_LE(clock.Elapsed(), 1750);
}

TEST_F(MeterLink, ABusyPortIsAFaultWithItsNumberAndWords)
{
    meter.RefusesToOpen(16, "Device or resource busy");
    EXPECT_EQ(OpenMeterLink(), 16);
    EXPECT_EQ(MeterError, "Device or resource busy");
    EXPECT_FALSE(comDPM.IsOpen());
    EXPECT_EQ(clock.Elapsed(), 0);
    meter.RefusesToOpen(0, "");
    MeterAnswers("6565", "3201");
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(MeterError, "") << "the words of the last attempt are gone";
}

TEST_F(MeterLink, ASecondOpeningReopensThePort)
{
    MeterAnswers("6565", "3201");
    EXPECT_EQ(OpenMeterLink(), 0);
    meter.Forget();
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(meter.log[0], "close");
    EXPECT_EQ(meter.log[1], "open");
}

TEST_F(MeterLink, PortsChangePlacesOnceBothAreClosed)
{
    MeterAnswers("6565", "3201");
    CalibratorAnswers("1", "0,V");
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(OpenMeterLink(), 0);

    CalPort = 1;
    MeterPort = 2;
    EXPECT_EQ(OpenCalibratorLink(), 16) << "the meter's link still holds the port";
    CloseLinks();
    meter.onWrite = [this](const std::string &bytes) {
        if (bytes == "ERR?\n")
            meter.Says(kNoError);
    };
    EXPECT_EQ(OpenCalibratorLink(), 0);
    EXPECT_EQ(OpenMeterLink(), 99) << "no meter there, but the port opens";
}

TEST_F(MeterLink, ThroughTheCalibratorThePortStaysClosed)
{
    UseUutRoute();
    std::string asked;
    calibrator.onWrite = [&](const std::string &bytes) {
        if (Holds(bytes, "UUT_SEND"))
            asked = bytes;
        if (bytes == "UUT_RECV?\n" && Holds(asked, "G232"))
            calibrator.Says("#2056565\r\r\n", 5);
        if (bytes == "UUT_RECV?\n" && Holds(asked, "X16DZ"))
            calibrator.Says("#2053201\r\r\n", 5);
    };
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_FALSE(comDPM.IsOpen());
    EXPECT_THAT(meter.log, IsEmpty());
    EXPECT_THAT(calibrator.Writes(),
                ElementsAre("UUT_SET 9600,XON,DBIT8,SBIT1,PNONE\n", "UUT_SEND #205*1A1\r\n", "UUT_FLUSH\n",
                            "UUT_SEND #207*1G232\r\n", "UUT_RECV?\n", "UUT_SEND #208*1X16DZ\r\n", "UUT_RECV?\n",
                            "UUT_SEND #211*1W1126565\r\n"));
    EXPECT_EQ(clock.Elapsed(), 200 + 500 + 5 + 5 + 1750);
}

TEST_F(MeterLink, ThroughASilentCalibratorTheMeterIsNotFound)
{
    UseUutRoute();
    EXPECT_EQ(OpenMeterLink(), 99);
    EXPECT_EQ(MeterError, "Meter not found");
    EXPECT_EQ(clock.Elapsed(), 200 + 500 + 1000);
}

TEST_F(MeterLink, InSimulationFindsTheSimulatedMeter)
{
    Simulate();
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(MeterName, "DPM");
    EXPECT_EQ(MeterRevText, "X2");
    EXPECT_EQ(SimNvm[18], 0x6565);
    EXPECT_THAT(meter.log, IsEmpty());
    EXPECT_EQ(clock.Elapsed(), 0);
    EXPECT_FALSE(SimAddressFaults);
}

TEST_F(MeterLink, OnlyWhileItOpensAWordOutsideTheSimulatedMemoryIsAFault)
{
    Simulate();
    bool during = false;
    CallAfter(0, [&during] { during = SimAddressFaults; });
    OpenMeterLink();
    EXPECT_TRUE(during);
    EXPECT_FALSE(SimAddressFaults);
}

TEST_F(MeterLink, InSimulationACounterTakesItsSetupInWord30)
{
    Simulate();
    SimNvm[109] = 0x3203;
    EXPECT_EQ(OpenMeterLink(), 0);
    EXPECT_EQ(SimNvm[30], 0x6565);
    EXPECT_EQ(SimNvm[18], 0x21D1);
}
