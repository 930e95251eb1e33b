#include "calibration/analog_points.h"

#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/text.h"
#include "session/state.h"

#include <gtest/gtest.h>

namespace ombrix::test {
namespace {

// ---- the correction ----

struct CorrectionRow {
    int point;
    const char *typed;
    int word;
    int currentPoint;
    const char *hex;
    const char *refused;
    const char *overflow;
};

constexpr const char *kBelow = "Offset Correction is less than 0.\r\nIt has been set to 0.";
constexpr const char *kOffsetAbove = "Offset Correction is greater than 65535.\r\nIt has been set to 65535.";
constexpr const char *kGainAbove = "Gain Correction is greater than 65535.\r\nIt has been set to 65535.";

const CorrectionRow kCorrections[] = {
    {0, "3.5", 72, 200, "0032", "", ""},
    {0, "-3.5", 72, 200, "005E", "", ""},
    {0, "0.078125", 72, 200, "0048", "", ""},
    {0, "1.328125", 72, 200, "0040", "", ""},
    {0, "20", 72, 200, "0000", "", kBelow},
    {0, "2000.5", 72, 200, "", "Value must be between -2000 and 2000", ""},
    {1, "10012.5", 64880, 200, "FD1F", "", ""},
    {1, "9800", 64880, 200, "FFFF", "", kGainAbove},
    {1, "16001", 64880, 200, "", "Value cannot exceed 16000", ""},
    {1, "0", 64880, 200, "", "Value cannot be Zero or Negative", ""},
    {1, "-5", 64880, 200, "", "Value cannot be Zero or Negative", ""},
    {2, "201.25", 480, 200, "01DC", "", ""},
    {2, "4010", 480, 4000, "01C0", "", ""},
    {2, "2300", 480, 200, "", "Value must be between -1800 and 2200", ""},
    {3, "20020", 64032, 200, "F9E0", "", ""},
    {3, "30000", 64032, 200, "A6C0", "", ""},
    {3, "30000.5", 64032, 200, "", "Value cannot exceed 30000", ""},
    {4, "-10003", 72, 200, "0052", "", ""},
    {4, "-9990", 72, 200, "0028", "", ""},
    {4, "-7999", 72, 200, "", "Value must be between -12000 and -8000", ""},
    {5, "10010", 64880, 200, "FD50", "", ""},
    {5, "9000", 64880, 200, "FFFF", "", kGainAbove},
    {6, "-2000", 65000, 200, "FFFF", "", kOffsetAbove},
    {9, "19990", 64032, 200, "FA40", "", ""},
};

TEST(AnalogCorrections, MoveTheWordByWhatTheReadingIsOff)
{
    for (const CorrectionRow &row : kCorrections) {
        SCOPED_TRACE("point " + std::to_string(row.point) + " reads " + row.typed);
        const AnalogCorrection correction = CorrectAnalogWord(row.point, ParseTypedReading(row.typed).value,
                                                              static_cast<std::uint16_t>(row.word), row.currentPoint);
        const std::string refused = row.refused;
        EXPECT_EQ(correction.refused, refused.empty() ? "" : refused + "\r\nPlease re-enter value.");
        EXPECT_EQ(correction.overflow, row.overflow);
        if (refused.empty()) {
            EXPECT_EQ(HexText(correction.word, 4), row.hex);
        }
    }
}

TEST(AnalogCorrections, NameTheirBoxAfterTheKindOfWord)
{
    EXPECT_EQ(CorrectAnalogWord(0, 20, 72, 200).overflowTitle, "Offset Correction Overflow");
    EXPECT_EQ(CorrectAnalogWord(1, 9800, 64880, 200).overflowTitle, "Gain Correction Overflow");
    EXPECT_EQ(CorrectAnalogWord(1, 10000, 64880, 200).overflowTitle, "");
}

TEST(AnalogCorrections, TakeAReadingAtEachEndOfItsRange)
{
    for (const float reading : {-2000.0F, 2000.0F})
        EXPECT_EQ(CorrectAnalogWord(0, reading, 72, 200).refused, "") << reading;
    for (const float reading : {2000.0F, 6000.0F})
        EXPECT_EQ(CorrectAnalogWord(8, reading, 480, 4000).refused, "") << reading;
    EXPECT_EQ(CorrectAnalogWord(5, 16000, 64880, 200).refused, "");
    EXPECT_NE(CorrectAnalogWord(5, 0, 64880, 200).refused, "");
}

TEST(AnalogCorrections, HoldAWordThatIsJustBeyondItsLimit)
{
    const AnalogCorrection correction = CorrectAnalogWord(1, 9999.95F, 65535, 200);
    EXPECT_EQ(correction.word, 65535);
    EXPECT_EQ(correction.overflow, kGainAbove) << "what is beyond counts before it is rounded";
}

struct BlendRow {
    int word, nominal;
    const char *blended;
};

TEST(AnalogNominals, GoATenthOfTheWay)
{
    const BlendRow rows[] = {
        {94, 72, "004A"},   {50, 72, "0046"},       {64799, 64880, "FD68"}, {64880, 64880, "FD70"},
        {480, 485, "01E4"}, {65535, 64032, "FAB6"}, {0, 72, "0041"},        {77, 72, "0048"},
    };
    for (const BlendRow &row : rows)
        EXPECT_EQ(
            HexText(BlendAnalogWord(static_cast<std::uint16_t>(row.word), static_cast<std::uint16_t>(row.nominal)), 4),
            row.blended)
            << row.word;
}

// ---- the table ----

struct ButtonRow {
    int position;
    int step;
    const char *name;
    int word, counterWord;
};

TEST(AnalogPoints, StandBehindTheirButtonsAndTrimTheirWords)
{
    const ButtonRow rows[kAnalogWords] = {
        {2, Step::VoltOffset, "VO", 60, 188},       {3, Step::VoltageGain, "VG", 61, 189},
        {4, Step::CurrentOffset, "CO", 62, 190},    {5, Step::CurrentGain, "CG", 63, 191},
        {7, Step::Minus10Volts, "BPM", 241, 145},   {8, Step::Plus10Volts, "BPP", 242, 146},
        {10, Step::VoltOffset, "DVO", 243, 147},    {11, Step::VoltageGain, "DVG", 244, 148},
        {12, Step::CurrentOffset, "DCO", 245, 149}, {13, Step::CurrentGain, "DCG", 246, 150},
    };
    CalibTab = kTabAnaCal;
    for (int point = 0; point < kAnalogWords; ++point) {
        const ButtonRow &row = rows[point];
        EXPECT_EQ(AnalogPointAtPosition(row.position), point);
        EXPECT_EQ(PositionOfAnalogPoint(point), row.position);
        EXPECT_EQ(StepIdAtPosition(row.position), row.step);
        EXPECT_EQ(AnalogWordName(point), row.name);
        EXPECT_EQ(AnalogWordAddress(point, false), row.word);
        EXPECT_EQ(AnalogWordAddress(point, true), row.counterWord);
    }
    InitSessionState();
    for (const int position : {-1, 0, 1, 6, 9, 14, 15, 16, 17})
        EXPECT_EQ(AnalogPointAtPosition(position), -1) << position;
}

TEST(AnalogPoints, AreThereWithTheDacThatHasThem)
{
    const char *const kPointsOf[] = {"0123", "0123", "012345", "01236789"};
    for (int dac = 0; dac < 4; ++dac) {
        std::string points;
        for (int point = -1; point <= kAnalogWords; ++point)
            if (HasAnalogPoint(dac, point))
                points += std::to_string(point);
        EXPECT_EQ(points, kPointsOf[dac]) << "DAC type " << dac;
    }
}

TEST(AnalogPoints, FollowOneAnotherOverThoseThatTheMeterHas)
{
    const char *const kOrder[] = {"0123", "0123", "012345", "01236789"};
    for (int dac = 0; dac < 4; ++dac) {
        std::string forward;
        int last = -1;
        for (int point = NextAnalogPoint(dac, -1, 1); point >= 0; point = NextAnalogPoint(dac, point, 1))
            forward += std::to_string(last = point);
        EXPECT_EQ(forward, kOrder[dac]) << "DAC type " << dac;
        std::string backward = std::to_string(last);
        for (int point = NextAnalogPoint(dac, last, -1); point >= 0; point = NextAnalogPoint(dac, point, -1))
            backward += std::to_string(point);
        EXPECT_EQ(std::string(backward.rbegin(), backward.rend()), kOrder[dac]);
        EXPECT_EQ(NextAnalogPoint(dac, -1, -1), -1);
    }
}

TEST(AnalogPoints, AreInsideUpToTheirToleranceAndTellTheirDistance)
{
    EXPECT_TRUE(IsInsideAnalogTolerance(0, -1.25F));
    EXPECT_FALSE(IsInsideAnalogTolerance(0, 1.26F));
    EXPECT_TRUE(IsInsideAnalogTolerance(9, 2.5F));
    EXPECT_FALSE(IsInsideAnalogTolerance(9, -2.51F));
    EXPECT_EQ(AnalogDistanceText(1, 12.5F), "+12.50 mV");
    EXPECT_EQ(AnalogDistanceText(3, -0.5F), "-0.50 uA");
    EXPECT_EQ(AnalogDistanceText(3, 0), "0.00 uA");
}

TEST(AnalogPoints, PutOutTheirValue)
{
    const int kSmall[] = {0, 20000, 200, 20000, 0, 20000, 0, 20000, 200, 20000};
    for (int point = 0; point < kAnalogWords; ++point) {
        EXPECT_EQ(AnalogOutputValue(point, 200, false), kSmall[point]) << point;
        EXPECT_EQ(AnalogOutputValue(point, 200, true), 5 * kSmall[point]) << point;
    }
    EXPECT_EQ(AnalogOutputValue(2, 4000, false), 4000);
    EXPECT_EQ(AnalogOutputValue(8, 4000, true), 20000);
}

TEST(AnalogPoints, BelongToAModeAndAConnector)
{
    const int kKinds[] = {0, 0, 1, 1, 2, 2, 0, 0, 1, 1};
    for (int point = 0; point < kAnalogWords; ++point) {
        EXPECT_EQ(AnalogPointKind(point), kKinds[point]);
        EXPECT_EQ(AnalogConnector(point), point < 6 ? 1 : 2);
    }
}

// ---- words ----

TEST(AnalogPoints, SayWhatToEnterAndWhatIsDesired)
{
    const char *const kTargets[] = {"0", "10000", "200", "20000", "-10000", "10000", "0", "10000", "200", "20000"};
    for (int point = 0; point < kAnalogWords; ++point) {
        const bool current = AnalogPointKind(point) == kCurrentOutput;
        const std::string unit = current ? " uA" : " mV";
        EXPECT_EQ(AnalogEnterText(point), "Enter AnaOut Reading in" + unit);
        EXPECT_EQ(AnalogDesiredText(point, 200), std::string("Desired AnaOut Reading = ") + kTargets[point] + unit +
                                                     " +/- " + (current ? "2.5" : "1.25") + unit);
    }
    EXPECT_EQ(AnalogDesiredText(8, 4000), "Desired AnaOut Reading = 4000 uA +/- 2.5 uA");
}

TEST(AnalogCable, IsNamedWithItsConnector)
{
    const char *const kTexts[] = {
        "Connect the UniPolar cable between the Analog Output Connector and the Output Meter.",
        "Connect the UniPolar cable between Analog Output Connector 1 and the Output Meter.",
        "Connect the UniPolar cable between Analog Output Connector 2 and the Output Meter.",
        "Connect the BiPolar cable between the Analog Output Connector and the Output Meter.",
        "Connect the UniPolar cable between Analog Output Connector 1 or 2 and the Output Meter.",
    };
    for (int choice = 0; choice < 5; ++choice)
        EXPECT_EQ(AnalogCableText(choice), kTexts[choice]);
}

TEST(AnalogCable, IsAskedForWhereThereIsAChoice)
{
    for (const int dac : {kDac12Bit, kDacXmtr}) {
        EXPECT_EQ(AnalogCableChoice(kVoltageOutput, dac), std::nullopt);
        EXPECT_EQ(AnalogCableChoice(kCurrentOutput, dac), std::nullopt);
    }
    for (int dac = 0; dac < 4; ++dac)
        EXPECT_EQ(AnalogCableChoice(kBipolarOutput, dac), 3);
    for (const AnalogKind kind : {kVoltageOutput, kCurrentOutput}) {
        EXPECT_EQ(AnalogCableChoice(kind, kDacBipolar), 0);
        EXPECT_EQ(AnalogCableChoice(kind, kDacDual), 4);
    }
}

TEST(AnalogCable, IsKnownForEachPoint)
{
    for (int point = 0; point < 4; ++point) {
        EXPECT_EQ(AnalogCableOfPoint(point, kDacXmtr), std::nullopt);
        EXPECT_EQ(AnalogCableOfPoint(point, kDacBipolar), 0);
        EXPECT_EQ(AnalogCableOfPoint(point, kDacDual), 1);
        EXPECT_EQ(AnalogCableOfPoint(point + 6, kDacDual), 2);
    }
    EXPECT_EQ(AnalogCableOfPoint(4, kDacBipolar), 3);
}

TEST(ExpectedAnalogReadings, FollowTheModeAndTheScale)
{
    EXPECT_EQ(ExpectedAnalogReading(10000, kVoltageOutput, false), "5000 mV");
    EXPECT_EQ(ExpectedAnalogReading(10000, kCurrentOutput, false), "10000 uA");
    EXPECT_EQ(ExpectedAnalogReading(5000, kBipolarOutput, false), "-5000 mV");
    EXPECT_EQ(ExpectedAnalogReading(25000, kVoltageOutput, true), "2500 mV");
    EXPECT_EQ(ExpectedAnalogReading(1, kVoltageOutput, false), "0.5 mV");
}

// ---- what is typed ----

TEST(TypedReadings, MayHaveAPointOrAComma)
{
    struct {
        const char *text;
        float value;
    } const rows[] = {{"201.25", 201.25F}, {"201,25", 201.25F}, {"-3,5", -3.5F}, {"10012", 10012},     {".5", 0.5F},
                      {"0,125", 0.125F},   {" 20000 ", 20000},  {"+7.5", 7.5F},  {"10012,5", 10012.5F}};
    for (const auto &row : rows) {
        EXPECT_EQ(ParseTypedReading(row.text).value, row.value) << row.text;
        EXPECT_EQ(ParseTypedReading(row.text).trouble, "") << row.text;
    }
}

TEST(TypedReadings, WithASignThatCouldStandBetweenThousandsAreRefused)
{
    EXPECT_EQ(ParseTypedReading("10,012").trouble,
              "\"10,012\" can be read in two ways:\r\ntype a point as the decimal sign");
    for (const char *const text : {"10,012.5", "10.012,5", "1.000.000", "20,000,5"})
        EXPECT_NE(ParseTypedReading(text).trouble.find("more than one decimal sign"), std::string::npos) << text;
}

TEST(TypedReadings, ThatAreNoNumberAreRefused)
{
    EXPECT_NE(ParseTypedReading("").trouble, "");
    for (const char *const text : {"-", ".", ",", "1-2", "--3", "3-", "+-1"})
        EXPECT_EQ(ParseTypedReading(text).trouble, std::string("\"") + text + "\" is no number");
}

}  // namespace
}  // namespace ombrix::test
