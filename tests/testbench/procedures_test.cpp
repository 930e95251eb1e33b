// The procedures beyond the ranges, as a station makes them: each must find what the unit hides.

#include <cmath>

#include "bench_fixture.h"
#include "model/nvm_map.h"

namespace ombrix::bench {
namespace {

using Procedures = StationOnBench;

std::int32_t WordAt(int word)
{
    return static_cast<std::int32_t>(HexValue(ReadNvmWords(word, 1, "Z")));
}

void WriteWord(int word, double value)
{
    WriteNvmWords(word, HexText(RoundHalfEven(value), 4), "");
}

double DisplayNow()
{
    return Val(ReadDisplay());
}

double DigitsNow()
{
    return Val(ReadDisplayDigits());
}

// ---- ratio ----

double RatioAt(const std::string &excitation)
{
    ApplyInput(excitation);
    MeterCommandCZ();
    return Val(ReadSettledReading());
}

void TrimRatio(int boardByte)
{
    WriteBoardCodeByte(HexText(boardByte, 2));
    WriteDisplaySetupWords(1);
    double ground = static_cast<std::int16_t>(WordAt(50));
    for (int trial = 0; trial < 3; ++trial) {
        const double r0 = RatioAt("+11 V");
        const double r1 = RatioAt("+5.5 V");
        ground -= (r1 - r0) * 10534804.5 / (5.5 * r0 - 11 * r1);
        WriteWord(50, ground);
    }
    constexpr double kTarget = 16390;
    double divider = WordAt(48);
    for (int trial = 0; trial < 3; ++trial) {
        const double reading = RatioAt("+10 V");
        divider = kTarget / reading * divider + (kTarget - reading) / reading * 229869;
        WriteWord(48, divider);
    }
}

TEST_F(Procedures, RatioGainAndOffsetConverge)
{
    for (const auto &[board, code] : {std::pair{board::kDc, 0xA0}, {board::kLc, 0xC2}}) {
        for (const unsigned seed : {1u, 2u, 3u}) {
            Stands({.board = board, .seed = seed});
            Establishes();
            EXPECT_GT(std::fabs(bench->RemainingError("Ratio Offset")), 8);
            TrimRatio(code);
            EXPECT_LE(std::fabs(bench->RemainingError("Ratio Offset")), 2) << TruthText(bench->TruthOf("Ratio Offset"));
            EXPECT_LE(std::fabs(bench->RemainingError("Ratio Gain")), 2) << TruthText(bench->TruthOf("Ratio Gain"));
            EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
            CloseLinks();
        }
    }
}

TEST_F(Procedures, RatioReadsWhatTheBridgeIsSetTo)
{
    Stands({.board = board::kDc});
    Establishes();
    bench->SetRatioReading(50000);
    WriteBoardCodeByte("A1");
    WriteDisplaySetupWords(1);
    EXPECT_NEAR(RatioAt("+10 V"), 50000, 1500);
}

// ---- RTD current ----

TEST_F(Procedures, RtdCurrentConverges)
{
    for (const unsigned seed : {1u, 2u, 3u}) {
        Stands({.board = board::kTemp, .seed = seed});
        Establishes();
        SelectRtd();
        ApplyFahrenheit("1356.4");
        WriteNvmWords(42, "800080008000800080008000", "");
        WriteRangeSetup("00107", "50", 1);
        double current = WordAt(30);
        for (int click = 0; click < 3; ++click) {
            current += RoundHalfEven((13564 - DigitsNow()) * 12.25);
            WriteWord(30, current);
        }
        EXPECT_LE(std::fabs(bench->RemainingError("RTD Current")), 2) << TruthText(bench->TruthOf("RTD Current"));
        EXPECT_EQ(bench->CalibratorNow().sensing, "WIRE4");
        CloseLinks();
    }
}

// ---- quasi-diode ----

void TrimDiodeGain(int gainWord, double nominal)
{
    WriteNvmWords(gainWord - 1, "0000", "");
    double word = WordAt(gainWord);
    double previousWord = 0, previousReading = 0;
    for (int click = 0; click < 4; ++click) {
        DelayMs(2000);
        const double reading = DisplayNow();
        if (std::fabs(reading) < 0.15)
            return;  // an operator who sees zero clicks no further
        const bool secant = click > 0 && reading != previousReading;
        const double next =
            secant ? word - reading * (word - previousWord) / (reading - previousReading) : reading * 106.5 + nominal;
        previousWord = word;
        previousReading = reading;
        word = next;
        WriteWord(gainWord, word);
    }
}

void TrimDiodeOffset(int offsetWord, double target)
{
    double word = static_cast<std::int16_t>(WordAt(offsetWord));
    for (int click = 0; click < 2; ++click) {
        DelayMs(2000);
        word += (DisplayNow() - target) / 0.003711;
        WriteWord(offsetWord, word);
    }
}

struct DiodeRow {
    int board;
    int index;
    const char *code;
    int gainWord;
    double nominal;
    const char *title;
};

class Diodes : public Procedures, public testing::WithParamInterface<DiodeRow>
{
};

TEST_P(Diodes, QuasiDiodeGainAndOffsetConverge)
{
    const DiodeRow &row = GetParam();
    for (const unsigned seed : {1u, 2u, 3u}) {
        Stands({.board = row.board, .seed = seed});
        Establishes();
        WriteDisplaySetupWords(4);
        if (row.board == board::kTc)
            WriteBoardConfigWords(row.code);
        else
            WriteNvmWords(16, "00" + std::string(row.code), "");
        SelectThermocouple(row.index);
        TrimDiodeGain(row.gainWord, row.nominal);
        EXPECT_LE(std::fabs(bench->RemainingError(row.title)), 2) << TruthText(bench->TruthOf(row.title));
        TrimDiodeOffset(row.gainWord - 1, 1.5);
        EXPECT_NEAR(bench->RemainingError(row.title), 15, 2) << "the offset moves the reading to its target of 1.5";
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        CloseLinks();
    }
}

INSTANTIATE_TEST_SUITE_P(Groups, Diodes,
                         testing::Values(DiodeRow{board::kTc, 3, "41", 29, 28432, "Gain/Offset J"},
                                         DiodeRow{board::kTc, 5, "49", 45, 28136, "Gain/Offset T"},
                                         DiodeRow{board::kTemp, 3, "41", 29, 28432, "Gain/Offset J"},
                                         DiodeRow{board::kTemp, 5, "49", 45, 28136, "Gain/Offset T"}));

// ---- VF ----

struct VfRow {
    const char *code;
    int word;
    const char *low;
    const char *high;
    double lowInput, highInput, zeroInput, countsPerUnit;
    const char *title;
};

double VfReading(const std::string &value)
{
    ApplyInput(value);
    MeterCommandCZ();
    return Val(ReadSettledReading());
}

void FitVf(const VfRow &row)
{
    const std::string hex = ReadNvmWords(row.word, 3, "Z");
    double gain = Hex6ToLong(hex.substr(6)) / 1048576.0;
    double offset = Hex6ToSigned(hex.substr(0, 6));
    for (int pass = 0; pass < 3; ++pass) {
        const double low = VfReading(row.low);
        const double high = VfReading(row.high);
        const double a = (high - low) / (row.highInput - row.lowInput);
        const double next = gain * row.countsPerUnit / a;
        offset = -(a * row.zeroInput + (low - a * row.lowInput) - offset) * next / gain;
        gain = next;
        WriteNvmWords(row.word,
                      FloatToHex6Signed(static_cast<float>(offset)) + FloatToHex6(static_cast<float>(gain * 1048576)),
                      "");
    }
}

TEST_F(Procedures, VfTwoPointFitConverges)
{
    constexpr VfRow kRows[] = {{"81", 195, "4 mA", "20 mA", 4, 20, 4, 6250, "VF 4-20 mA"},
                               {"91", 198, "0 mA", "1 mA", 0, 1, 0, 100000, "VF 0-1 mA"},
                               {"A1", 201, "0 V", "10 V", 0, 10, 0, 10000, "VF 0-10 V"}};
    for (const unsigned seed : {1u, 2u, 3u}) {
        Stands({.board = board::kVf, .seed = seed});
        Establishes();
        WriteNvmWords(201, "FF77451428F6FFD9B81028F6FFD9B8100000", "");
        for (const VfRow &row : kRows) {
            EXPECT_GT(std::fabs(bench->RemainingError(row.title)), 50);
            SetWordLowByte(28, row.code);
            FitVf(row);
            EXPECT_LE(std::fabs(bench->RemainingError(row.title)), 2) << TruthText(bench->TruthOf(row.title));
        }
        EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        CloseLinks();
    }
}

// ---- first cycle ----

struct Point {
    double channel[11] = {};
};

std::string CollectStream(std::size_t bytes)
{
    FlushMeterInput();
    std::string stream;
    while (stream.size() < bytes)
        stream += ReceiveMeterChunk();
    return stream;
}

int Byte(const std::string &record, std::size_t place)
{
    return static_cast<unsigned char>(record[place]);
}

// Records of fifteen frames from the first group on.
std::vector<std::string> RecordsOf(const std::string &stream)
{
    std::vector<std::string> records;
    bool synced = false;
    for (std::size_t place = 0; place + 6 <= stream.size();) {
        const std::string record = stream.substr(place, 5);
        const bool whole = Byte(record, 4) == 255;
        synced = synced || (whole && record[0] == '!');
        if (whole && synced)
            records.push_back(record);
        place += whole ? 5 : 1;
    }
    return records;
}

double Difference(const std::string &a, const std::string &b)
{
    const auto low = [](const std::string &record) { return Byte(record, 2) * 256 + Byte(record, 3); };
    return static_cast<std::int16_t>(low(a) - low(b));
}

double HighValue(const std::string &record)
{
    return Byte(record, 1) * 256 + Byte(record, 2);
}

Point AverageOf(const std::vector<std::string> &records)
{
    Point point;
    for (std::size_t group = 0; group < 5; ++group)
        for (std::size_t frame = 0; frame < 3; ++frame) {
            const std::string *word = &records[(group * 3 + frame) * 18];
            point.channel[1 + 2 * frame] += Difference(word[0], word[1]);
            point.channel[2 + 2 * frame] += Difference(word[2], word[3]);
            point.channel[7 + frame] += HighValue(word[1]);
            if (frame == 0)
                point.channel[10] += HighValue(word[3]);
        }
    for (double &channel : point.channel)
        channel = RoundHalfEven((channel + 2.5) / 5);
    return point;
}

// M and B from the averages, two hexadecimal digits each.
std::string CorrectionOf(const std::vector<Point> &points)
{
    const std::size_t count = points.size();
    double sumM = 0, sumB = 0;
    for (std::size_t row = 1; row <= 6; ++row) {
        const std::size_t j = 6 + (row + 1) / 2;
        const double s = row % 2 == 1 ? -1 : 1;
        const auto e = [&](std::size_t p) { return points[p].channel[j] - points[p].channel[10]; };
        double m = 0, b = 0;
        for (std::size_t p = 0; p + 1 < count; ++p)
            m += 256 * s * (points[p].channel[row] - points[p + 1].channel[row]) / (e(p) - e(p + 1));
        m /= static_cast<double>(count - 1);
        const auto y = [&](std::size_t p) { return points[p].channel[row] - e(p) * s * m / 256; };
        const double last = y(count - 1);
        for (std::size_t p = 0; p + 1 < count; ++p)
            b += y(p) - last;
        b = last + b / static_cast<double>(count);
        sumM += m;
        sumB += row <= 2 ? 2 * b : b;
    }
    const double m = std::floor(sumM / 6 + 0.5);
    const double b = m == 0 ? 0 : std::floor(sumB / (8 * m) + 0.5);
    return HexText(static_cast<int>(m), 2) + HexText(static_cast<int>(b), 2);
}

struct CycleRow {
    int board;
    const char *code;
    std::vector<std::string> points;
};

class FirstCycles : public Procedures, public testing::WithParamInterface<CycleRow>
{
};

TEST_P(FirstCycles, FirstCycleStreamLeadsToTheHiddenMAndB)
{
    for (const bool uut : {false, true})
        for (unsigned seed = 1; seed <= 6; ++seed) {
            Stands({.board = GetParam().board, .seed = seed, .uut = uut});
            Establishes();
            const std::string words = ReadNvmWords(20, 4, "");
            WriteNvmWords(5, "000000100001", "Z");
            WriteNvmWords(51, "0000", "Z");
            WriteNvmWords(18, "0150" + words.substr(12) + "00" + GetParam().code, "");
            DelayMs(500);
            MeterCommandV6();
            std::vector<Point> points;
            for (const std::string &value : GetParam().points) {
                ApplyInput(value);
                const auto records = RecordsOf(CollectStream(22 * 18 * 5));
                ASSERT_GE(records.size(), 15u * 18);
                points.push_back(AverageOf(records));
            }
            MeterCommandC0();
            MeterCommandA1();
            const std::string found = CorrectionOf(points);
            EXPECT_EQ(found, bench->TruthOf("First Cycle").idealHex) << "seed " << seed;
            WriteNvmWords(51, found, "");
            EXPECT_EQ(bench->RemainingError("First Cycle"), 0);
            EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
            CloseLinks();
        }
}

INSTANTIATE_TEST_SUITE_P(
    Boards, FirstCycles,
    testing::Values(CycleRow{board::kDc, "60", {"+200 mV", "+100 mV", "0 V", "-100 mV", "-200 mV"}},
                    CycleRow{board::kLc, "D3", {"+200 mV", "+100 mV", "0 V", "-100 mV", "-200 mV"}},
                    CycleRow{board::kAc, "80", {"200 mV, 300 Hz", "100 mV, 300 Hz", "1 mV, 300 Hz"}},
                    CycleRow{board::kTc, "60", {"+56 mV", "+28 mV", "0 V", "-28 mV", "-56 mV"}},
                    CycleRow{board::kTemp, "60", {"+76 mV", "+38 mV", "0 V", "-38 mV", "-76 mV"}},
                    CycleRow{board::kRtd, "E0", {"76 mV", "38 mV", "0 V"}}),
    [](const auto &info) { return BoardName(info.param.board); });

// ---- trims by hand ----

double TrimReading(const std::string &value)
{
    ApplyInput(value);
    MeterCommandCZ();
    return Val(ReadSettledReading());
}

TEST_F(Procedures, TrimsOfAcBoardsConverge)
{
    Stands({.board = board::kAc3});
    Establishes();
    WriteRangeSetup("00117", "80", 4);
    EXPECT_LT(std::fabs(TrimReading("200 mV")), 100) << "no DC jumper, no reading";
    bench->InstallDcJumper(true, NowMicros());
    for (int turn = 0; turn < 3; ++turn) {
        const double plus = TrimReading("+10 mV");
        bench->Trim("R9", (TrimReading("-10 mV") - plus) / 2, NowMicros());
    }
    EXPECT_LE(std::fabs(bench->RemainingError("Zero Adjust")), 2);
    for (int turn = 0; turn < 3; ++turn) {
        const double plus = TrimReading("200 mV");
        bench->Trim("R12", plus - TrimReading("-200 mV"), NowMicros());
    }
    EXPECT_LE(std::fabs(bench->RemainingError("- Gain Trim")), 2);
    WriteRangeSetup("00118", "81", 4);
    for (int turn = 0; turn < 3; ++turn)
        bench->Trim("R38", 79990 - TrimReading("2 V, 10 KHz"), NowMicros());
    EXPECT_LE(std::fabs(bench->RemainingError("R38 Trim")), 2);
    EXPECT_FALSE(bench->Trim("R99", 1, NowMicros()));
}

TEST_F(Procedures, AnR13R14UnitReadsItsNegativeInputMore)
{
    Stands({.board = board::kAc2});
    Establishes();
    bench->InstallDcJumper(true, NowMicros());
    WriteRangeSetup("00108", "80", 4);
    const double plus = TrimReading("200 mV");
    const double minus = TrimReading("-200 mV");
    EXPECT_GT(std::fabs(minus / plus - 1), 0.0005);
    EXPECT_LT(std::fabs(minus / plus - 1), 0.012);
    EXPECT_NEAR(minus - plus, bench->RemainingError("R13/R14 Trim"), 3);
}

}  // namespace
}  // namespace ombrix::bench
