#include "testbench/laws.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/range_records.h"
#include "model/range_tables.h"
#include "platform/text.h"
#include "session/state.h"
#include "testbench/boards.h"
#include "testbench/temperature.h"
#include "testbench/truth.h"

namespace ombrix::bench {
namespace {

Hardware UnitOf(int board)
{
    Hardware hardware;
    hardware.board = board;
    hardware.unit = DrawUnit(board, 3);
    return hardware;
}

// Words with which the unit is right on every range.
Words RightWords(const Hardware &hardware)
{
    Words words = StartWords(hardware.board, 1, 3);
    for (int word = 25; word <= 50; ++word)
        words[word] = static_cast<std::uint16_t>(static_cast<int>(std::lround(hardware.unit.ideal[word])));
    return words;
}

Signal Volts(double volts, double hertz = 0)
{
    return {Quantity::Volts, volts, hertz, 0};
}

// The counts that the station's tables tell, at the scale that the station sets, are what an ideal board shows.
TEST(Laws, GiveTheTargetOfEveryStepAtItsScale)
{
    int steps = 0;
    for (int board = 0; board < board::kCount; ++board) {
        SCType = board;
        for (const RangeRecord &record : RecordsOfBoard(board)) {
            if (record.word == 0 || board == board::kVf)
                continue;
            const Value value = *ParseValue(record.value);
            const Quantity quantity = value.unit == "A"     ? Quantity::Amps
                                      : value.unit == "OHM" ? Quantity::Ohms
                                                            : Quantity::Volts;
            const Signal signal{quantity, value.number, board::IsAc(board) ? 300.0 : 0, 0};
            const double ideal = IdealCounts(board, static_cast<int>(HexValue(record.code)), signal);
            EXPECT_NEAR(ideal * SampleCountForStep(record.stepId), record.target, 0.5)
                << BoardName(board) << " " << StepName(record.stepId);
            ++steps;
        }
    }
    InitSessionState();
    EXPECT_GT(steps, 60);
}

TEST(Laws, ShowTheTargetWithIdealWordsOnEveryRange)
{
    for (int board = 0; board < board::kCount; ++board) {
        if (board == board::kVf)
            continue;
        const Hardware hardware = UnitOf(board);
        for (const RangeTruth &truth : TruthsOf(hardware, RightWords(hardware))) {
            const bool range = truth.word >= 25 && truth.word <= 47 && truth.title != "RTD Current";
            if (!range || truth.title.starts_with("Gain"))
                continue;
            EXPECT_LT(std::fabs(truth.error), 1.0) << BoardName(board) << " " << TruthText(truth);
        }
    }
}

TEST(Laws, MakeAReadingProportionalToItsGainWordAbove229376)
{
    const Hardware hardware = UnitOf(board::kDc);
    Words words = RightWords(hardware);
    words[26] = static_cast<std::uint16_t>(static_cast<int>(hardware.unit.ideal[26]));
    words[32] = 30000;
    const double low = NaturalCounts(hardware, words, 0x61, Volts(2));
    words[32] = 40000;
    const double high = NaturalCounts(hardware, words, 0x61, Volts(2));
    EXPECT_NEAR(high / low, (40000 + 229376.0) / (30000 + 229376.0), 1e-5);
}

TEST(Laws, LetBothGainWordsActOnTheReferenceRange)
{
    const Hardware hardware = UnitOf(board::kDc);
    Words words = RightWords(hardware);
    const double before = NaturalCounts(hardware, words, 0x60, Volts(0.2));
    words[25] = static_cast<std::uint16_t>(words[25] + 500);
    const double with25 = NaturalCounts(hardware, words, 0x60, Volts(0.2));
    words[31] = static_cast<std::uint16_t>(words[31] + 500);
    const double withBoth = NaturalCounts(hardware, words, 0x60, Volts(0.2));
    EXPECT_GT(with25, before + 20);
    EXPECT_GT(withBoth, with25 + 20);
}

TEST(Laws, LetAGainWordActOnNoOtherRange)
{
    const Hardware hardware = UnitOf(board::kDc);
    Words words = RightWords(hardware);
    const double before = NaturalCounts(hardware, words, 0x61, Volts(2));
    for (const int word : {25, 31, 33, 34, 35, 37, 38, 39, 40})
        words[word] = 12345;
    EXPECT_DOUBLE_EQ(NaturalCounts(hardware, words, 0x61, Volts(2)), before);
}

TEST(Laws, GiveTwentyOhmsAndEveryThermometerItsWord)
{
    const Hardware hardware = UnitOf(board::kRtd);
    const Words right = RightWords(hardware);
    struct Row {
        int code;
        double ohms;
        int word;
        double tenths;
    };
    // Points and temperatures at which a finished meter is tried.
    constexpr Row kRows[] = {{0x50, 387.55, 37, 15440}, {0x51, 387.55, 37, 8400},  {0x52, 391.391, 38, 15440},
                             {0x53, 391.391, 38, 8400}, {0x54, 366.531, 39, 4820}, {0x55, 366.531, 39, 2500},
                             {0x56, 18.72, 40, 4820},   {0x57, 18.72, 40, 2500}};
    for (const Row &row : kRows) {
        const Signal signal{Quantity::Ohms, row.ohms, 0, 0};
        EXPECT_NEAR(NaturalCounts(hardware, right, row.code, signal), row.tenths, 3) << row.code;
        Words words = right;
        words[row.word] = static_cast<std::uint16_t>(words[row.word] + 1000);
        EXPECT_GT(std::fabs(NaturalCounts(hardware, words, row.code, signal) - row.tenths), 10) << row.code;
    }
}

TEST(Laws, MoveAPt100ReadingByOneAndAHalfTimesItsGain)
{
    const Hardware hardware = UnitOf(board::kRtd);
    Words words = RightWords(hardware);
    const Signal signal{Quantity::Ohms, 345.28, 0, 0};
    const double before = NaturalCounts(hardware, words, 0x50, signal);
    const double gainBefore = words[37] + 229376.0;
    words[37] = static_cast<std::uint16_t>(words[37] + 500);
    const double moved = NaturalCounts(hardware, words, 0x50, signal) / before - 1;
    EXPECT_NEAR(moved, 500 / gainBefore / 0.6444, 2e-5);
}

TEST(Laws, ReadNoSteadyInputOnAcBoardsWithoutTheDcJumper)
{
    Hardware hardware = UnitOf(board::kAc2);
    const Words words = RightWords(hardware);
    EXPECT_LT(std::fabs(NaturalCounts(hardware, words, 0x80, Volts(0.2))), 5);
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x80, Volts(0.2, 300)), 20000, 3);
    hardware.dcJumper = true;
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x80, Volts(0.2)), 20000, 20);
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x80, Volts(-0.2)), 20000 * (1 + hardware.unit.negativeGain), 20);
}

TEST(Laws, ReadNoAlternatingInputOnDcBoards)
{
    const Hardware hardware = UnitOf(board::kDc);
    EXPECT_LT(std::fabs(NaturalCounts(hardware, RightWords(hardware), 0x61, Volts(2, 300))), 1);
}

TEST(Laws, ReadNothingOnTheWrongQuantityOrCode)
{
    const Hardware hardware = UnitOf(board::kDc);
    const Words words = RightWords(hardware);
    EXPECT_LT(std::fabs(NaturalCounts(hardware, words, 0x71, Volts(2))), 1);
    EXPECT_LT(std::fabs(NaturalCounts(hardware, words, 0x61, {Quantity::Amps, 0.02, 0, 0})), 1);
    EXPECT_EQ(NaturalCounts(hardware, words, 0x80, Volts(2)), 0);
}

TEST(Laws, OverloadBeyondFiveQuartersOfTheRange)
{
    const Hardware hardware = UnitOf(board::kDc);
    const Words words = RightWords(hardware);
    EXPECT_TRUE(std::isfinite(NaturalCounts(hardware, words, 0x61, Volts(2.4))));
    EXPECT_EQ(NaturalCounts(hardware, words, 0x61, Volts(2.6)), INFINITY);
    EXPECT_EQ(NaturalCounts(hardware, words, 0x61, Volts(-2.6)), -INFINITY);
    EXPECT_TRUE(std::isfinite(NaturalCounts(hardware, words, 0x64, Volts(660))));
}

TEST(Laws, OverloadOnOpenResistancesAndThermocouples)
{
    const Hardware rtd = UnitOf(board::kRtd);
    EXPECT_EQ(NaturalCounts(rtd, RightWords(rtd), 0xE1, {}), INFINITY);
    EXPECT_EQ(NaturalCounts(rtd, RightWords(rtd), 0x50, {}), INFINITY);
    const Hardware temp = UnitOf(board::kTemp);
    EXPECT_EQ(NaturalCounts(temp, RightWords(temp), 0x41, {}), INFINITY);
}

TEST(Laws, ReadVoltagesOnATcBoardUnderTheDcCodeOnly)
{
    const Hardware hardware = UnitOf(board::kTc);
    Words words = RightWords(hardware);
    words[21] = 0x0031;
    EXPECT_EQ(NaturalCounts(hardware, words, 0x60, Volts(0.0567)), 0);
    words[21] = 0x0001;
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x60, Volts(0.0567)), 15000, 2);
    EXPECT_EQ(NaturalCounts(hardware, words, 0x41, {Quantity::Thermocouple, 10, 0, 'J'}), 0);
}

TEST(Laws, ReadAThermocoupleOfTheTypeThatIsSet)
{
    Hardware hardware = UnitOf(board::kTemp);
    Words words = RightWords(hardware);
    words[28] = words[44] = 0;
    const Signal hundredJ{Quantity::Thermocouple, 100, 0, 'J'};
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x41, hundredJ), 1000, 1) << "degrees Celsius";
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x40, hundredJ), 2120, 2) << "degrees Fahrenheit";
    EXPECT_GT(std::fabs(NaturalCounts(hardware, words, 0x43, hundredJ) - 1000), 100) << "a K meter is wrong by far";
    words[31] = static_cast<std::uint16_t>(words[31] + 3000);
    EXPECT_GT(NaturalCounts(hardware, words, 0x41, hundredJ), 1005) << "each type has its gain word";
}

TEST(Laws, ReadEachThermocoupleByTheVoltsThatItGivesForADegree)
{
    const Hardware hardware = UnitOf(board::kTemp);
    Words words = RightWords(hardware);
    words[28] = words[44] = 0;
    constexpr struct {
        char type;
        int code;    // of the range in degrees Celsius
        double asJ;  // what a meter for J makes of 100 of its degrees, in tenths
    } kTypes[] = {{'J', 0x41, 1000}, {'K', 0x43, 784}, {'N', 0x45, 514}, {'E', 0x47, 1165},
                  {'T', 0x49, 768},  {'S', 0x4B, 107}, {'R', 0x4D, 105}};
    for (const auto &each : kTypes) {
        const Signal hundred{Quantity::Thermocouple, 100, 0, each.type};
        EXPECT_NEAR(NaturalCounts(hardware, words, each.code, hundred), 1000, 1) << each.type;
        EXPECT_NEAR(NaturalCounts(hardware, words, 0x41, hundred), each.asJ, 1) << each.type;
    }
    EXPECT_NEAR(NaturalCounts(hardware, words, 0x41, {Quantity::Thermocouple, 100, 0, 'C'}), 0, 1)
        << "a type that the bench doesn't know";
}

TEST(Units, AreTheSameForTheSameSeedAndDifferForAnother)
{
    EXPECT_EQ(DrawUnit(board::kDc, 5).ideal, DrawUnit(board::kDc, 5).ideal);
    EXPECT_NE(DrawUnit(board::kDc, 5).ideal, DrawUnit(board::kDc, 6).ideal);
    EXPECT_EQ(StartWords(board::kDc, 1, 5), StartWords(board::kDc, 1, 5));
    EXPECT_NE(StartWords(board::kDc, 1, 5), StartWords(board::kDc, 1, 6));
}

TEST(Units, HaveOffsetSlopesWithinATenthOfTheNominalOnes)
{
    for (unsigned seed = 1; seed <= 50; ++seed) {
        const Unit unit = DrawUnit(board::kDc, seed);
        const double slope = 1 / unit.offsetEffect[26] / OffsetStepScale(board::kDc);
        EXPECT_NEAR(slope, 9.737, 0.9737);
    }
}

TEST(Temperatures, GoBothWays)
{
    for (const Rtd type : {Rtd::Din385, Rtd::Ansi3902, Rtd::Nickel120, Rtd::Copper10})
        for (const double celsius : {-50.0, 0.0, 100.0, 250.0})
            EXPECT_NEAR(CelsiusOfOhms(type, OhmsOfCelsius(type, celsius)), celsius, 1e-9);
    EXPECT_NEAR(OhmsOfCelsius(Rtd::Din385, 700), 345.28, 0.01);
    EXPECT_TRUE(std::isnan(CelsiusOfOhms(Rtd::Din385, 5000)));
}

}  // namespace
}  // namespace ombrix::bench
