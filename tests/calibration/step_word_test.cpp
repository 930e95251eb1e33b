#include "calibration/step_fixture.h"

#include "links/meter_operations.h"
#include "platform/text.h"

namespace ombrix::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

enum Rule { Offset, Ratio, Slope };

struct WordRow {
    const char *hex;
    std::int32_t plain;
    std::int32_t offset;
};

class StepWord : public OnSimulator
{
protected:
    /// A step of its own making: the rule's inputs, and a word of the DC board's 2 V range in the simulated meter.
    void Takes(Rule rule, const std::string &hex, std::int32_t target, float slope = 0)
    {
        Opens(kDc, 4);
        step.OffsetStep = rule == Offset;
        step.ProportionalStep = rule == Ratio;
        step.WordMin = rule == Offset ? -32768 : 0;
        step.WordMax = rule == Offset ? 32767 : 65535;
        step.TurnoverStep = false;
        step.TargetCounts = target;
        step.TargetCountsF = static_cast<float>(target);
        step.NominalSlope = slope;
        step.StepWordHex = hex;
    }

    static void Reads(std::int32_t plus, std::int32_t minus = 0, bool turnover = false)
    {
        step.TurnoverStep = turnover;
        step.Readings[0] = plus;
        step.Readings[1] = minus;
        step.ReadingsF[0] = static_cast<float>(plus);
        step.ReadingsF[1] = static_cast<float>(minus);
    }
};

TEST_F(StepWord, IsSignedOnAnOffsetStepAlone)
{
    const WordRow rows[] = {
        {"0000", 0, 0},          {"007F", 127, 127},    {"7FFF", 32767, 32767}, {"8000", 32768, -32768},
        {"8001", 32769, -32767}, {"FF2D", 65325, -211}, {"FFFF", 65535, -1},    {"", 0, 0}};
    for (const WordRow &row : rows) {
        step.OffsetStep = false;
        EXPECT_EQ(HexWordToNumber(row.hex), row.plain) << row.hex;
        step.OffsetStep = true;
        EXPECT_EQ(HexWordToNumber(row.hex), row.offset) << row.hex;
    }
}

TEST_F(StepWord, AsTextIsItsLowSixteenBits)
{
    const std::pair<std::int32_t, const char *> rows[] = {{0, "0000"},     {5, "0005"},     {127, "007F"},
                                                          {-1, "FFFF"},    {-211, "FF2D"},  {-32768, "8000"},
                                                          {32767, "7FFF"}, {32768, "8000"}, {65535, "FFFF"}};
    for (const auto &[number, hex] : rows)
        EXPECT_EQ(HexText(number, 4), hex) << number;
}

struct RatioRow {
    const char *word;
    std::int32_t target, plus, minus;
    bool turnover;
    const char *corrected;
    bool limited;
};

TEST_F(StepWord, ByTheRatioRuleScalesTheGainRegister)
{
    const RatioRow rows[] = {
        {"8948", 80000, 79990, -79996, true, "895F", false},
        {"7628", 80000, 80040, -80012, true, "75D4", false},
        {"8000", 80000, 80000, -80000, true, "8000", false},
        {"52A7", 80000, 79871, -79930, true, "53DF", false},
        {"9E84", 80000, 82301, 0, false, "8108", false},  // 33032.5 goes to the even 33032
        {"4D72", 80000, 81396, -81395, true, "3CC2", false},
        {"7F5D", 26400, 26391, -26402, true, "7F80", false},
        {"0A00", 72000, 71950, 0, false, "0AA1", false},
        {"ACA9", 20000, 20011, -20003, true, "AC49", false},
        {"0B27", 80000, 78590, 0, false, "1B6E", false},
        {"FFFF", 80000, 70000, -70000, true, "FFFF", true},
        {"0000", 80000, 90000, -90000, true, "0000", true},
        {"8000", 80000, -80000, 80000, true, "FFFF", true},  // reversed leads: the mean is 0
        {"8000", 80000, 0, 0, true, "FFFF", true},           // a dead input
        {"8000", 80000, 1, 0, false, "FFFF", true},          // 2E10, beyond any integer
        {"8000", 80000, -5, 0, false, "0000", true},
        // One count beside what arithmetic in 64 bits gives.
        {"FFF6", 80000, 80286, 0, false, "FBDC", false},
        {"A20A", 80000, 79914, 0, false, "A32E", false},
        {"5885", 80000, 80245, 0, false, "5584", false},
    };
    for (const RatioRow &row : rows) {
        SCOPED_TRACE(std::string(row.word) + " at " + std::to_string(row.plus));
        Takes(Ratio, row.word, row.target);
        Reads(row.plus, row.minus, row.turnover);
        EXPECT_EQ(ComputeCorrectedWord(true), row.corrected);
        EXPECT_EQ(step.CorrectionLimited, row.limited);
        EXPECT_EQ(step.StepWordHex, row.corrected);
        EXPECT_EQ(HexText(SimNvm[32], 4), row.corrected);
    }
}

TEST_F(StepWord, OfPt100ScalesOnlyItsShareOfTheSpan)
{
    const RatioRow rows[] = {
        {"8000", 12920, 12920, 0, false, "8000", false}, {"8000", 12920, 12910, 0, false, "8083", false},
        {"8000", 12920, 12930, 0, false, "7F7D", false}, {"7400", 12920, 12955, 0, false, "723D", false},
        {"FFFF", 12920, 12000, 0, false, "FFFF", true},  {"0000", 12920, 14000, 0, false, "0000", true},
        {"C000", 12920, 12827, 0, false, "C512", false}, {"4000", 12920, 12999, 0, false, "3C3B", false},
        {"1233", 12920, 12964, 0, false, "1032", false},  // 1033 in 64 bits
        {"8000", 12920, 0, 0, false, "FFFF", true},
    };
    for (const RatioRow &row : rows) {
        SCOPED_TRACE(std::string(row.word) + " at " + std::to_string(row.plus));
        Opens(kRtd, 3);
        step.StepWordHex = row.word;
        Reads(row.plus);
        EXPECT_EQ(ComputeCorrectedWord(true), row.corrected);
        EXPECT_EQ(step.CorrectionLimited, row.limited);
    }
}

TEST_F(StepWord, ByTheRatioRuleTouchesNoPreviousPoint)
{
    Takes(Ratio, "8000", 80000);
    step.PrevWord = 7;
    step.PrevReading = 9;
    Reads(80100);
    ComputeCorrectedWord(true);
    EXPECT_EQ(step.PrevWord, 7.0f);
    EXPECT_EQ(step.PrevReading, 9.0f);
    EXPECT_EQ(step.FirstPointWord, 32768.0f);
    EXPECT_EQ(step.FirstPointReading, 80100.0f);
}

struct SlopeRow {
    const char *what;
    Rule rule;
    const char *word;
    std::int32_t target, reading;
    float slope;
    bool first;
    float prevWord, prevReading;
    const char *corrected;
    bool limited;
};

constexpr SlopeRow kSlopeRows[] = {
    {"DC GND, first", Offset, "0000", 0, -13, 9.737f, true, 0, 0, "007F", false},
    {"DC GND, second, by the secant", Offset, "007F", 0, 2, 9.737f, false, 0, -13, "006E", false},
    {"no change of the reading keeps the nominal slope", Offset, "007F", 0, -13, 9.737f, false, 0, -13, "00FE", false},
    {"a negative word", Offset, "FFF0", 0, 20, 9.737f, true, 0, 0, "FF2D", false},
    {"held high", Offset, "7FFF", 0, -100, 9.737f, true, 0, 0, "7FFF", true},
    {"held low", Offset, "8000", 0, 100, 9.737f, true, 0, 0, "8000", true},
    {"AC GND", Offset, "0100", 4000, 4010, 31.4f, true, 0, 0, "FFC6", false},
    {"AC2 GND", Offset, "0000", 800, 793, 31.4f, true, 0, 0, "00DC", false},
    {"LC OFF", Offset, "0000", 0, -7, 12.2f, true, 0, 0, "0055", false},
    {"LC GND", Offset, "FFFE", 0, 3, 4.7f, true, 0, 0, "FFF0", false},
    {"Temp gain, second", Slope, "8009", 80000, 80002, 3.0945f, false, 32768, 79997, "8005", false},
    {"Temp gain, held", Slope, "FFFF", 80000, 79000, 3.0945f, true, 0, 0, "FFFF", true},
    {"100.5 goes to 100", Offset, "0065", 0, 1, 9.737f, false, 100, -1, "0064", false},
    {"101.5 goes to 102", Offset, "0066", 0, 1, 9.737f, false, 101, -1, "0066", false},
    {"-101.5 goes to -102", Offset, "FF9B", 0, -1, 9.737f, false, -102, 1, "FF9A", false},
    {"a secant of one count", Offset, "0200", 0, 500, 9.737f, false, 0, 499, "8000", true},
};

TEST_F(StepWord, BySlopeRuleFollowsTheNominalSlopeAndThenTheSecant)
{
    for (const SlopeRow &row : kSlopeRows) {
        SCOPED_TRACE(row.what);
        Takes(row.rule, row.word, row.target, row.slope);
        Reads(row.reading);
        step.PrevWord = row.prevWord;
        step.PrevReading = row.prevReading;
        const auto before = static_cast<float>(HexWordToNumber(row.word));
        EXPECT_EQ(ComputeCorrectedWord(row.first), row.corrected);
        EXPECT_EQ(step.CorrectionLimited, row.limited);
        EXPECT_EQ(step.PrevWord, before);
        EXPECT_EQ(step.PrevReading, static_cast<float>(row.reading));
    }
}

TEST_F(StepWord, OfATempGainTakesTheMeanOfBothPolarities)
{
    Opens(kTemp, 3);
    step.StepWordHex = "8000";
    Reads(80004, -79990, true);
    EXPECT_EQ(ComputeCorrectedWord(true), "8009");
    EXPECT_EQ(step.PrevReading, 79997.0f);
}

TEST_F(StepWord, TurnoverMeanUsesTheSizeOfTheNegativeReadingButTheSignOfThePositive)
{
    Takes(Ratio, "8000", 80000);
    Reads(80000, 80000, true);  // the negative input read positive
    EXPECT_EQ(ComputeCorrectedWord(true), "8000");
    Takes(Ratio, "8000", 80000);
    Reads(-80000, -80000, true);
    EXPECT_EQ(ComputeCorrectedWord(true), "FFFF");
    EXPECT_TRUE(step.CorrectionLimited);
}

TEST_F(StepWord, ComputedAnewMakesTheSimulatedErrorSmaller)
{
    Takes(Ratio, "8000", 80000);
    Reads(80000);
    ComputeCorrectedWord(true);
    EXPECT_EQ(SimNoise, 20.0f * 0.8f);
    ComputeCorrectedWord(false);
    EXPECT_EQ(SimNoise, 20.0f * 0.8f * 0.8f);
}

TEST_F(StepWord, ClearsCorrectionLimitedWithTheNextGoodCorrection)
{
    Takes(Ratio, "8000", 80000);
    Reads(0);
    ComputeCorrectedWord(true);
    EXPECT_TRUE(step.CorrectionLimited);
    Reads(90000);
    ComputeCorrectedWord(false);
    EXPECT_FALSE(step.CorrectionLimited);
}

class WrittenWord : public OnLine
{
};

TEST_F(WrittenWord, GoesToItsPlaceWithItsCompanions)
{
    struct Row {
        int board, word;
        bool triple;
        const char *hex;
        std::vector<std::string> frames;
    };
    const Row rows[] = {
        {kDc, 32, false, "1234", {"*1W1201234\r"}},
        {kTc, 33, true, "1234", {"*1W12E1234Z\r", "*1W321123412341234\r"}},
        {kTemp, 33, true, "1234", {"*1W12E1234Z\r", "*1W321123412341234\r"}},
        {kTc, 36, true, "1234", {"*1W324123412341234\r"}},
        {kTemp, 36, true, "1234", {"*1W324123412341234\r"}},
        {kRtd, 31, true, "1234", {"*1W1281234Z\r", "*1W11F1234\r"}},
        {kRtd, 37, true, "1234", {"*1W327123412341234\r"}},
        {kRtd, 32, false, "1234", {"*1W1201234\r"}},
        {kTc, 26, false, "1234", {"*1W11A1234\r"}},
        {kTc, 47, false, "1234", {"*1W12F1234\r"}},
        {kTc, 31, false, "1234", {"*1W11F1234\r"}},
        {kVf, 198, false, "FFD9B81028F6", {"*1W3C6FFD9B81028F6\r"}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(BoardName(row.board) + " " + std::to_string(row.word));
        SCType = row.board;
        step = StepContext();
        step.StepNvmWord = row.word;
        step.TripleWordStep = row.triple;
        Meter().Forget();
        clock.Restart();
        WriteStepWord(row.hex);
        EXPECT_THAT(Meter().Writes(), ElementsAreArray(row.frames));
        EXPECT_EQ(step.StepWordHex, row.hex);
        EXPECT_EQ(step.StepNvmWord, row.word);
        EXPECT_GE(clock.Elapsed(), 1750) << "the meter restarts with the new word";
    }
}

}  // namespace
}  // namespace ombrix::test
