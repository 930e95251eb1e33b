#include "testbench/analog_output.h"

#include <cmath>

#include "bench_fixture.h"

namespace ombrix::bench {
namespace {

// Words and modes by kind of meter.
struct AnalogRow {
    const char *name;
    int board;
    int modeWord;
    int dacWord;
    const char *modes[3];  // voltage, current, bipolar
    int fullScale;
};

constexpr AnalogRow kRows[] = {
    {"DPM", board::kDc, 20, 240, {"0201", "0001", "0601"}, 20000},
    {"CTR", board::kVf, 36, 144, {"5555", "5511", "550D"}, 100000},
};

class Analog : public StationOnBench, public testing::WithParamInterface<AnalogRow>
{
protected:
    bool IsCounter() const { return GetParam().board == board::kVf; }

    void Prepares(int unit, const std::string &dac)
    {
        Stands({.board = GetParam().board, .seed = static_cast<unsigned>(unit)});
        Establishes();
        WriteNvmWords(IsCounter() ? 26 : 14, IsCounter() ? "0186A0000000" : "004E20000000", "Z");
        WriteNvmWords(GetParam().dacWord, dac, "");
    }
    void Outputs(int value)
    {
        if (IsCounter())
            WriteNvmWords(17, HexText(value, 6) + "000000", "");
        else
            WriteRamBytes(143, HexText(value, 6) + "600000");
        DelayMs(100);
    }
    // What the operator's meter shows while a share of full scale is put out.
    double Reads(int point, double share, int connector)
    {
        Outputs(static_cast<int>(std::lround(share * GetParam().fullScale)));
        const AnalogReading reading = bench->AnalogOut(connector);
        EXPECT_EQ(reading.unit, point / 2 == 1 || point / 2 == 4 ? "uA" : "mV");
        return reading.value;
    }
    double Word(int point) { return HexValue(ReadNvmWords(AnalogWordOf(point, IsCounter()), 1, "Z")); }
    void Writes(int point, double value)
    {
        WriteNvmWords(AnalogWordOf(point, IsCounter()), HexText(RoundHalfEven(value), 4), "");
        if (!IsCounter())
            DelayMs(700);
    }
    void CorrectsOffset(int point, double share, double wanted, double step, int connector)
    {
        const double error = Reads(point, share, connector) - wanted;
        Writes(point, Word(point) - error / step);
    }
    void CorrectsGain(int point, double wanted, double base, int connector)
    {
        const double reading = Reads(point, 1, connector) + base;
        Writes(point, (wanted + base) / reading * Word(point));
    }
};

TEST_P(Analog, VoltageCurrentAndBipolarOutputsConverge)
{
    for (const int unit : {1, 2, 3}) {
        Prepares(unit, "535C");
        WriteNvmWords(GetParam().modeWord, GetParam().modes[0], "");
        for (int round = 0; round < 2; ++round) {
            CorrectsOffset(0, 0, 0, 0.15625, 1);
            CorrectsGain(1, 10000, 0, 1);
        }
        WriteNvmWords(GetParam().modeWord, GetParam().modes[1], "");
        for (int round = 0; round < 3; ++round) {
            CorrectsOffset(2, 0.01, 200, 0.3125, 1);
            CorrectsGain(3, 20000, 0, 1);
        }
        WriteNvmWords(GetParam().modeWord, GetParam().modes[2], "");
        for (int round = 0; round < 2; ++round) {
            CorrectsOffset(4, 0, -10000, 0.3125, 1);
            CorrectsGain(5, 10000, 10000, 1);
        }
        const auto truths = bench->AnalogTruths(200);
        for (std::size_t point = 0; point < 6; ++point) {
            const double tolerance = point / 2 == 1 ? 2.5 : 1.25;  // uA, mV
            EXPECT_LE(std::fabs(truths[point].error), tolerance) << GetParam().name << " " << TruthText(truths[point]);
        }
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        CloseLinks();
    }
}

TEST_P(Analog, ASecondOutputOfADualConverterHasWordsOfItsOwn)
{
    Prepares(1, "545C");
    WriteNvmWords(GetParam().modeWord, GetParam().modes[0], "");
    for (int round = 0; round < 2; ++round) {
        CorrectsOffset(6, 0, 0, 0.15625, 2);
        CorrectsGain(7, 10000, 0, 2);
    }
    const auto truths = bench->AnalogTruths(200);
    EXPECT_EQ(truths[6].title, "DD Volt Offset");
    EXPECT_LE(std::fabs(truths[6].error), 1.25);
    EXPECT_LE(std::fabs(truths[7].error), 1.25);
    EXPECT_GT(std::fabs(truths[1].error), 5) << "the first output's words are as they were";
}

TEST_P(Analog, AOneOutputConverterGivesNothingAtTheSecondConnector)
{
    Prepares(1, "525C");
    WriteNvmWords(GetParam().modeWord, GetParam().modes[0], "");
    Outputs(GetParam().fullScale);
    EXPECT_NEAR(bench->AnalogOut(1).value, 10000, 100);
    EXPECT_EQ(bench->AnalogOut(2).value, 0);
}

TEST_P(Analog, OnlyABipolarConverterReachesBelowZero)
{
    for (const char *const converter : {"0000", "525C", "545C"}) {
        Prepares(1, converter);
        WriteNvmWords(GetParam().modeWord, GetParam().modes[2], "");
        Outputs(GetParam().fullScale);
        EXPECT_EQ(bench->AnalogOut(1).value, 0) << converter;
        CloseLinks();
    }
}

TEST_P(Analog, IsWorkedOnAsLongAsAValueIsPutOut)
{
    Stands({.board = GetParam().board});
    Establishes();
    EXPECT_FALSE(bench->AnalogIsWorkedOn());
    Outputs(0);
    EXPECT_TRUE(bench->AnalogIsWorkedOn()) << "with a plain converter too";
}

INSTANTIATE_TEST_SUITE_P(Kinds, Analog, testing::ValuesIn(kRows), [](const auto &info) { return info.param.name; });

}  // namespace
}  // namespace ombrix::bench
