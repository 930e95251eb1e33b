#include "calibration/step_fixture.h"

#include "links/meter_operations.h"
#include "platform/text.h"

namespace ombrix::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

enum Rule { Offset, Ratio, Slope };
constexpr bool kOnce = false, kTwice = true;     // readings at + alone, or at + and -
constexpr bool kSingle = false, kTriple = true;  // a word alone, or with companions

struct StepRow {
    int board;
    int position;
    int id;
    const char *name;
    const char *code;
    int word;
    const char *calValue;
    std::int32_t target;
    bool turnover;
    Rule rule;
    float spanFraction;
    bool triple;
    float slope;
    int samples;
    const char *setup;    // 12 digits of the display setup words
    const char *filter;   // five characters
    const char *encoded;  // as it stands in word 17
};

// clang-format off
constexpr StepRow kSteps[] = {
    {kDc, 2, 2, "GND", "60", 26, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 9.737f, 10, "00000010000A", "00108", "28"},
    {kDc, 3, 3, "REF (200 mV)", "60", 25, "200 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.296f, 4, "000000100004", "00108", "28"},
    {kDc, 4, 5, "2 V", "61", 32, "2 V", 80000, kTwice, Ratio, 1.0f, kSingle, 3.35f, 4, "000000100004", "00108", "28"},
    {kDc, 5, 6, "20 V", "62", 33, "20 V", 80000, kTwice, Ratio, 1.0f, kSingle, 3.153f, 4, "000000100004", "00108", "28"},
    {kDc, 6, 7, "200 V", "63", 34, "200 V", 80000, kTwice, Ratio, 1.0f, kSingle, 3.317f, 4, "000000100004", "00108", "28"},
    {kDc, 7, 8, "660 V", "64", 35, "660 V", 26400, kTwice, Ratio, 1.0f, kSingle, 9.91f, 4, "000000100004", "00108", "28"},
    {kDc, 8, 9, "2 mA", "70", 37, "2 mA", 80000, kTwice, Ratio, 1.0f, kSingle, 3.242f, 4, "000000100004", "00108", "28"},
    {kDc, 9, 10, "20 mA", "71", 38, "20 mA", 80000, kTwice, Ratio, 1.0f, kSingle, 3.274f, 4, "000000100004", "00108", "28"},
    {kDc, 10, 11, "200 mA", "72", 39, "200 mA", 80000, kTwice, Ratio, 1.0f, kSingle, 3.174f, 4, "000000100004", "00108", "28"},
    {kDc, 11, 12, "5 A", "73", 40, "5 A", 20000, kTwice, Ratio, 1.0f, kSingle, 14.11f, 4, "000000100004", "00108", "28"},
    {kDc, 14, 4, "200 mV", "60", 31, "200 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.226f, 4, "000000100004", "00108", "28"},
    {kAc, 1, 2, "GND", "81", 26, "100 mV, 300 Hz", 4000, kOnce, Offset, 1.0f, kSingle, 31.4f, 4, "000000100004", "00108", "28"},
    {kAc, 2, 5, "2 V", "81", 32, "1.8 V, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 4.8f, 4, "000000100004", "00108", "28"},
    {kAc, 3, 2, "GND", "81", 26, "100 mV, 300 Hz", 4000, kOnce, Offset, 1.0f, kSingle, 31.4f, 4, "000000100004", "00108", "28"},
    {kAc, 4, 5, "2 V", "81", 32, "1.8 V, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 4.8f, 4, "000000100004", "00108", "28"},
    {kAc, 5, 4, "200 mV", "80", 31, "180 mV, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 3.25f, 4, "000000100004", "00108", "28"},
    {kAc, 6, 6, "20 V", "82", 33, "18 V, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 3.35f, 4, "000000100004", "00108", "28"},
    {kAc, 7, 7, "200 V", "83", 34, "180 V, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 3.5f, 4, "000000100004", "00108", "28"},
    {kAc, 8, 8, "660 V", "84", 35, "660 V, 300 Hz", 26400, kOnce, Ratio, 1.0f, kSingle, 6.6f, 4, "000000100004", "00108", "28"},
    {kAc, 9, 9, "2 mA", "90", 37, "1.8 mA, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 4.1f, 4, "000000100004", "00108", "28"},
    {kAc, 10, 10, "20 mA", "91", 38, "18 mA, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 4.4f, 4, "000000100004", "00108", "28"},
    {kAc, 11, 11, "200 mA", "92", 39, "180 mA, 300 Hz", 72000, kOnce, Ratio, 1.0f, kSingle, 3.1f, 4, "000000100004", "00108", "28"},
    {kAc, 12, 12, "5 A", "93", 40, "3.5 A, 300 Hz", 56000, kOnce, Ratio, 1.0f, kSingle, 3.7f, 16, "000000100010", "00108", "28"},
    {kLc, 2, 17, "GND (.5 V)", "D4", 26, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 4.7f, 10, "00000010000A", "00108", "28"},
    {kLc, 3, 18, "OFF (20 mV)", "D0", 30, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 12.2f, 10, "00000010000A", "00108", "28"},
    {kLc, 4, 19, "REF (20 mV)", "D0", 25, "20 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.277f, 4, "000000100004", "00108", "28"},
    {kLc, 5, 21, "50 mV", "D1", 32, "40 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.218f, 2, "000000100002", "00108", "28"},
    {kLc, 6, 22, "100 mV", "D2", 33, "100 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.217f, 8, "000000100008", "00108", "28"},
    {kLc, 7, 23, "250 mV", "D3", 34, "200 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.241f, 4, "000000100004", "00108", "28"},
    {kLc, 8, 24, "500 mV", "D4", 35, "400 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.408f, 2, "000000100002", "00108", "28"},
    {kLc, 14, 20, "Touch-Up", "D0", 31, "20 mV", 80000, kTwice, Ratio, 1.0f, kSingle, 3.277f, 4, "000000100004", "00108", "28"},
    {kTc, 2, 25, "Lo-Gain GND", "60", 26, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 11.3f, 10, "00000010000A", "00106", "26"},
    {kTc, 3, 53, "56.7 mV", "60", 33, "56.7 mV", 60000, kTwice, Ratio, 1.0f, kTriple, 3.0945f, 4, "000000100004", "00106", "26"},
    {kTc, 4, 28, "Hi-Gain GND", "65", 47, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 11.3f, 10, "00000010000A", "00106", "26"},
    {kTc, 5, 54, "17.475 mV", "65", 36, "17.475 mV", 60000, kTwice, Ratio, 1.0f, kTriple, 3.1399f, 4, "000000100004", "00106", "26"},
    {kVf, 2, 33, "VF 4-20 mA", "81", 195, "20 mA", 0, kOnce, Ratio, 1.0f, kSingle, 0.0f, 4, "000000100004", "00108", "28"},
    {kVf, 3, 34, "VF 0-1 mA", "91", 198, "1 mA", 0, kOnce, Ratio, 1.0f, kSingle, 0.0f, 4, "000000100004", "00108", "28"},
    {kVf, 4, 35, "VF 0-10 V", "A1", 201, "10 V", 0, kOnce, Ratio, 1.0f, kSingle, 0.0f, 4, "000000100004", "00108", "28"},
    {kAc2, 3, 2, "GND", "80", 26, "2 mV, 300 Hz", 800, kOnce, Offset, 1.0f, kSingle, 31.4f, 4, "000000100004", "00106", "26"},
    {kAc2, 4, 4, "200 mV", "80", 31, "200 mV, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.25f, 4, "000000100004", "00106", "26"},
    {kAc2, 5, 5, "2 V", "81", 32, "2 V, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 4.8f, 4, "000000100004", "00106", "26"},
    {kAc2, 6, 6, "20 V", "82", 33, "20 V, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.35f, 4, "000000100004", "00106", "26"},
    {kAc2, 7, 7, "200 V", "83", 34, "200 V, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.5f, 4, "000000100004", "00106", "26"},
    {kAc2, 8, 52, "600 V", "84", 35, "600 V, 300 Hz", 24000, kOnce, Ratio, 1.0f, kSingle, 6.6f, 4, "000000100004", "00106", "26"},
    {kAc2, 9, 9, "2 mA", "90", 37, "2 mA, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 4.1f, 4, "000000100004", "00106", "26"},
    {kAc2, 10, 10, "20 mA", "91", 38, "20 mA, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 4.4f, 4, "000000100004", "00106", "26"},
    {kAc2, 11, 11, "200 mA", "92", 39, "200 mA, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.1f, 4, "000000100004", "00106", "26"},
    {kAc2, 12, 12, "5 A", "93", 40, "3.5 A, 300 Hz", 56000, kOnce, Ratio, 1.0f, kSingle, 3.7f, 16, "000000100010", "00106", "26"},
    {kAc3, 3, 2, "GND", "80", 26, "2 mV, 300 Hz", 800, kOnce, Offset, 1.0f, kSingle, 31.4f, 4, "000000100004", "00117", "37"},
    {kAc3, 4, 4, "200 mV", "80", 31, "200 mV, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.25f, 4, "000000100004", "00117", "37"},
    {kAc3, 5, 5, "2 V", "81", 32, "2 V, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 4.8f, 4, "000000100004", "00117", "37"},
    {kAc3, 7, 6, "20 V", "82", 33, "20 V, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.35f, 4, "000000100004", "00117", "37"},
    {kAc3, 8, 7, "200 V", "83", 34, "200 V, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.5f, 4, "000000100004", "00117", "37"},
    {kAc3, 9, 52, "600 V", "84", 35, "600 V, 300 Hz", 24000, kOnce, Ratio, 1.0f, kSingle, 6.6f, 4, "000000100004", "00117", "37"},
    {kAc3, 10, 9, "2 mA", "90", 37, "2 mA, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 4.1f, 4, "000000100004", "00117", "37"},
    {kAc3, 11, 10, "20 mA", "91", 38, "20 mA, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 4.4f, 4, "000000100004", "00117", "37"},
    {kAc3, 12, 11, "200 mA", "92", 39, "200 mA, 300 Hz", 80000, kOnce, Ratio, 1.0f, kSingle, 3.1f, 4, "000000100004", "00117", "37"},
    {kAc3, 13, 12, "5 A", "93", 40, "3.5 A, 300 Hz", 56000, kOnce, Ratio, 1.0f, kSingle, 3.7f, 16, "000000100010", "00117", "37"},
    {kTemp, 2, 25, "Lo-Gain GND", "60", 26, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 11.3f, 10, "00000010000A", "00108", "28"},
    {kTemp, 3, 26, "75.6 mV", "60", 33, "75.6 mV", 80000, kTwice, Slope, 1.0f, kTriple, 3.0945f, 4, "000000100004", "00108", "28"},
    {kTemp, 5, 28, "Hi-Gain GND", "65", 47, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 11.3f, 10, "00000010000A", "00108", "28"},
    {kTemp, 6, 29, "23.3 mV", "65", 36, "23.3 mV", 80000, kTwice, Slope, 1.0f, kTriple, 3.1399f, 4, "000000100004", "00108", "28"},
    {kRtd, 2, 2, "GND", "E0", 26, "0 V", 0, kOnce, Offset, 1.0f, kSingle, 11.3f, 10, "00000010000A", "00106", "26"},
    {kRtd, 3, 55, "Pt100", "50", 37, "345.28 OHM", 12920, kOnce, Ratio, 0.6444f, kTriple, 3.0945f, 1, "000000100001", "00106", "26"},
    {kRtd, 4, 56, "20 Ohms", "E0", 31, "20 OHM", 80000, kOnce, Ratio, 1.0f, kTriple, 3.0945f, 4, "000000100004", "00106", "26"},
    {kRtd, 5, 57, "200 Ohms", "E1", 32, "200 OHM", 80000, kOnce, Ratio, 1.0f, kSingle, 3.0945f, 4, "000000100004", "00106", "26"},
    {kRtd, 6, 58, "2 kOhms", "E2", 33, "2 KOHM", 80000, kOnce, Ratio, 1.0f, kSingle, 3.0945f, 4, "000000100004", "00106", "26"},
    {kRtd, 7, 59, "20 kOhms", "E3", 34, "20 KOHM", 80000, kOnce, Ratio, 1.0f, kSingle, 3.1399f, 4, "000000100004", "00106", "26"},
    {kRtd, 8, 60, "200 kOhms", "E4", 35, "100 KOHM", 40000, kOnce, Ratio, 1.0f, kSingle, 3.1399f, 4, "000000100004", "00106", "26"},
};
// clang-format on

std::string NameOf(const StepRow &row)
{
    return BoardName(row.board) + " " + std::to_string(row.position) + " " + row.name;
}

class LoadedStep : public OnSimulator
{
};

TEST_F(LoadedStep, HoldsWhatTheTablesSayOnEveryBoard)
{
    for (const StepRow &row : kSteps) {
        SCOPED_TRACE(NameOf(row));
        Opens(row.board, row.position);
        ASSERT_EQ(StepIdAtPosition(row.position), row.id);
        EXPECT_EQ(StepName(row.id), row.name);
        EXPECT_EQ(step.RangeCode, row.code);
        EXPECT_EQ(RangeCodeText(GetRangeCodeIndex()), row.code);
        EXPECT_EQ(step.StepNvmWord, row.word);
        EXPECT_EQ(GetCalValue(), row.calValue);
        EXPECT_EQ(GetTargetCounts(), row.target);
        EXPECT_EQ(step.TargetCountsF, static_cast<float>(row.target));
        EXPECT_EQ(step.SampleCount, row.samples);
        EXPECT_EQ(step.FilterCode, row.filter);
        EXPECT_EQ(step.NominalSlope, row.slope);
        EXPECT_EQ(GetTurnoverStep(), row.turnover);
        EXPECT_EQ(step.TripleWordStep, row.triple);
    }
}

TEST_F(LoadedStep, KnowsItsRuleAndTheLimitsOfItsWord)
{
    for (const StepRow &row : kSteps) {
        SCOPED_TRACE(NameOf(row));
        Opens(row.board, row.position);
        EXPECT_EQ(step.OffsetStep, row.rule == Offset);
        EXPECT_EQ(step.ProportionalStep, row.rule == Ratio);
        EXPECT_EQ(step.WordMin, row.rule == Offset ? -32768 : 0);
        EXPECT_EQ(step.WordMax, row.rule == Offset ? 32767 : 65535);
        EXPECT_EQ(step.SpanFraction, row.spanFraction);
        EXPECT_EQ(step.SpanRemainder, 1.0f - row.spanFraction);
    }
}

TEST_F(LoadedStep, KeepsNothingOfTheStepBefore)
{
    Opens(kRtd, 3);  // Pt100
    step.StepWordHex = "1234";
    step.CorrectionLimited = true;
    step.PrevReading = 5;
    Opens(kDc, 2);  // GND
    EXPECT_EQ(GetStepWordHex(), "");
    EXPECT_FALSE(step.CorrectionLimited);
    EXPECT_FALSE(step.TripleWordStep);
    EXPECT_EQ(step.SpanFraction, 1.0f);
    EXPECT_EQ(step.PrevReading, 0.0f);
}

TEST_F(LoadedStep, StartsTheSimulatedErrorAtTwentyCounts)
{
    SimNoise = 3;
    Opens(kDc, 4);
    EXPECT_EQ(SimNoise, 20.0f);
}

TEST_F(LoadedStep, NeverHasTurnoverOnTheAcTabNorOnRtdAndVf)
{
    for (const StepRow &row : kSteps) {
        Opens(row.board, row.position);
        if (CalibTab == kTabAc || row.board == kRtd || row.board == kVf) {
            EXPECT_FALSE(step.TurnoverStep) << NameOf(row);
        }
    }
}

TEST_F(LoadedStep, WithATargetOfZeroNeverUsesTheRatioRule)
{
    for (const StepRow &row : kSteps) {
        Opens(row.board, row.position);
        if (row.target == 0 && row.board != kVf) {
            EXPECT_FALSE(step.ProportionalStep) << NameOf(row);
        }
    }
}

TEST_F(LoadedStep, OfAGainOnTempUsesTheSlopeRuleUnlikeAllOtherBoards)
{
    for (const StepRow &row : kSteps) {
        Opens(row.board, row.position);
        if (!step.OffsetStep) {
            EXPECT_EQ(step.ProportionalStep, row.board != kTemp) << NameOf(row);
        }
    }
}

TEST_F(LoadedStep, OnVfKnowsTheValueOfItsLowPoint)
{
    Opens(kVf, 2);
    EXPECT_EQ(GetZeroValue(), "4 mA");
    Opens(kVf, 3);
    EXPECT_EQ(GetZeroValue(), "0 mA");
    Opens(kVf, 4);
    EXPECT_EQ(GetZeroValue(), "0 V");
    Opens(kDc, 9);  // 20 mA, but no VF
    EXPECT_EQ(GetZeroValue(), "");
}

class AppliedStep : public OnLine
{
};

TEST_F(AppliedStep, PutsTheMeterOnItsRangeAndReadsItsWord)
{
    for (const StepRow &row : kSteps) {
        if (row.board == kTc || row.board == kVf)
            continue;  // TC has its own sequence, VF pages never send this one
        SCOPED_TRACE(NameOf(row));
        Opens(row.board, row.position);
        const std::string word = HexText(row.word, 2);
        Meter().Answers("*1G130\r", "65\r");
        Meter().Answers("*1X1" + word + "\r", "8123\r");
        Meter().Forget();
        ApplyStepToMeter();
        EXPECT_EQ(GetStepWordHex(), "8123");
        const std::string range = std::string("65") + row.encoded + "00" + row.code;
        EXPECT_THAT(Meter().Writes(), ElementsAre("*1G130\r", "*1W211" + range + "Z\r",
                                                  std::string("*1W305") + row.setup + "\r", "*1X1" + word + "\r"));
    }
}

TEST_F(AppliedStep, OnTcKeepsTheWordsBetweenBoardCodeAndRange)
{
    Opens(kTc, 5);  // 17.475 mV, range 65
    Meter().Answers("*1G130\r", "65\r");
    Meter().Answers("*1X314\r", "0503AAAA21D1\r");
    Meter().Answers("*1X124\r", "7400\r");
    ApplyStepToMeter();
    EXPECT_EQ(GetStepWordHex(), "7400");
    EXPECT_THAT(Meter().Writes(), ElementsAre("*1G130\r", "*1X314\r",
                                              "*1W6150001"
                                              "0503AAAA21D1"
                                              "6526"
                                              "0065Z\r",
                                              "*1W305000000100004\r", "*1X124\r"));
}

TEST_F(AppliedStep, HasNoWordWhenTheMeterIsSilent)
{
    Opens(kDc, 4);
    ApplyStepToMeter();
    EXPECT_EQ(GetStepWordHex(), "");
}

TEST_F(AppliedStep, HasNoWordWhenTheMeterCouldNotBePutOnTheRange)
{
    Opens(kDc, 4);
    Meter().Answers("*1X120\r", "8948\r");
    ApplyStepToMeter();
    EXPECT_EQ(GetStepWordHex(), "");
    EXPECT_THAT(Meter().Writes(), ElementsAre("*1G130\r"));
}

TEST_F(AppliedStep, HasNoWordWhenTheReplyIsShort)
{
    Opens(kDc, 4);
    Meter().Answers("*1G130\r", "65\r");
    Meter().Answers("*1X120\r", "812\r");
    ApplyStepToMeter();
    EXPECT_EQ(GetStepWordHex(), "");
}

}  // namespace
}  // namespace ombrix::test
