// A meter's life in one session: it comes blank from the soldering bench and leaves with a customer's configuration. It
// is named, initialised, calibrated, verified, its table is printed, a file is sent, its words are looked at. The bench
// knows what it showed and how good it became.

#include "journeys/blank_meter.h"
#include "journeys/page_loops.h"
#include "journeys/shown_readings.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/outlets.h"
#include "session/state.h"
#include "support/factory_images.h"
#include "support/samples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>

#include <array>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

using namespace ombrix;
using namespace ombrix::test;

namespace {

constexpr const char *kCyan = "#00ffff";
constexpr double kGood = 3;  // counts that a calibrated meter may be off
constexpr const char *kHeader660V = "INPUT   200mV    2V      20V    200V    660V     2mA    20mA    200mA    5A";
constexpr const char *kHeader600V = "INPUT   200mV    2V      20V    200V    600V     2mA    20mA    200mA    5A";
constexpr const char *kHeaderLc = "INPUT   20mV    50mV    100mV   250mV   500mV";

// A range as its button says it, and what a good meter shows of its value, in counts.
struct Range {
    const char *name;
    int counts;
};
const std::vector<Range> kDcRanges = {{"200 mV", 20000}, {"2 V", 20000},    {"20 V", 20000},
                                      {"200 V", 20000},  {"660 V", 6600},   {"2 mA", 20000},
                                      {"20 mA", 20000},  {"200 mA", 20000}, {"5 A", 5000}};
const std::vector<Range> kAc2Ranges = {{"200 mV", 20000}, {"2 V", 20000},    {"20 V", 20000},
                                       {"200 V", 20000},  {"600 V", 6000},   {"2 mA", 20000},
                                       {"20 mA", 20000},  {"200 mA", 20000}, {"5 A", 5000}};
const std::vector<Range> kLcRanges = {
    {"20 mV", 20000}, {"50 mV", 50000}, {"100 mV", 10000}, {"250 mV", 25000}, {"500 mV", 50000}};

struct Life {
    const char *name;
    int board;
    int option;  // of the dialog that asks for the board
    Route route;
    std::vector<Range> ranges;
    const char *header;  // of the printed table
};

void PrintTo(const Life &life, std::ostream *out)
{
    *out << life.name;
}

std::string Slotted(const char *name, int slot)
{
    return std::string(name) + "(" + std::to_string(slot) + ")";
}

std::string Path(const std::string &file)
{
    return QDir::current().filePath(QString::fromStdString(file)).toStdString();
}

class MeterLife : public testing::TestWithParam<Life>
{
protected:
    MeterLife() : station(WiringOf()), file(162, ' ') {}

    static Wiring WiringOf()
    {
        Wiring wiring = WiringOfBlank(GetParam().board);
        wiring.bench.uut = GetParam().route == Route::Uut;
        wiring.manual = GetParam().route == Route::Manual;
        return wiring;
    }
    static bool TwoPolarities() { return GetParam().board == kDc || GetParam().board == kLc; }
    static int Buttons() { return static_cast<int>(GetParam().ranges.size()); }
    ScriptedOperator &Person() { return station.person; }
    void Runs() { ASSERT_TRUE(Person().Runs()) << Person().Trouble(); }
    std::string Words(int top, int count) const
    {
        std::string text;
        for (int word = top; word > top - count; --word)
            text += HexText(station.bench.Nvm().at(static_cast<std::size_t>(word)), 4);
        return text;
    }

    void IsNamedAndInitialised()
    {
        Erase(station, GetParam().board);
        ASSERT_NO_FATAL_FAILURE(EstablishesAndNamesTheBoard(station, {GetParam().board, GetParam().option}));
        Person().Clicks(ButtonOf(Step::InitNvm)).Clicks("cmdInitStartRetry").WaitsFor("cmdDone(0)");
        ASSERT_NO_FATAL_FAILURE(Runs());
        EXPECT_EQ(ScriptedOperator::Text("lblInitStatus"), "NVM Initialized Successfully");
        EXPECT_EQ(Words(56, 57), FactoryImageOf(GetParam().board));
        EXPECT_EQ(Words(117, 1), "0000");
    }

    void IsCalibrated()
    {
        for (const int position : RangePositions()) {
            SCOPED_TRACE(StepName(StepIdAtPosition(position)));
            ASSERT_TRUE(station.Calibrates(position, 3)) << Person().Trouble();
            EXPECT_LE(std::abs(station.bench.RemainingError(position)), 2.0);
        }
    }

    void OpensTheFile()
    {
        Person().Clicks(ButtonOf(Step::Verify)).WaitsFor("cmdFileSpec").Types("txtDpmID", "A1234");
        Person().Clicks("cmdFileSpec").ChoosesFile(Path("unit.vfy")).WaitsFor("cmdVfyReady");
    }

    // Its record in the file: two for each range of DC and LC, one behind the eighteenth for each of the others.
    void IsKept(int button, int polarity)
    {
        const int record = TwoPolarities() ? 2 * button + polarity : 18 + button;
        const std::string came = LastShown(station.bench);
        file.replace(static_cast<std::size_t>(record) * 6, 6, came);
        EXPECT_EQ(ReadFile("unit.vfy"), file);
        const int counts = GetParam().ranges[static_cast<std::size_t>(button)].counts;
        EXPECT_NEAR(Val(came), polarity == 0 ? counts : -counts, kGood);
        rows[static_cast<std::size_t>(polarity)] += "  " + came;
    }

    void ARangeIsVerified(int button)
    {
        const std::string name = GetParam().ranges[static_cast<std::size_t>(button)].name;
        Person().Does([button, name] {
            EXPECT_EQ(ScriptedOperator::Fill(Slotted("cmdVfyRng", button)), kCyan);
            EXPECT_EQ(ScriptedOperator::Text(Slotted("cmdVfyRng", button)),
                      TwoPolarities() ? "+" + name + "\n-" + name : name);
        });
        Person().Clicks("cmdVfyReady");
        for (int polarity = 0; polarity < (TwoPolarities() ? 2 : 1); ++polarity) {
            const std::string shape = Slotted("shpVfyRdg", 2 * button + polarity);
            Person().WaitsUntil("the input stands", [shape] {
                return ScriptedOperator::IsEnabled("cmdVfyOK") && ScriptedOperator::Fill(shape) == kCyan;
            });
            Person()
                .Clicks("cmdVfyOK")
                .WaitsUntil("it was read", [shape] { return ScriptedOperator::Fill(shape) != kCyan; })
                .Does([this, button, polarity] { IsKept(button, polarity); });
        }
        Person().WaitsFor("cmdVfyReady");
        Runs();
    }

    // Left behind two ranges and gone on with later.
    void IsVerifiedInTwoGoes()
    {
        OpensTheFile();
        for (int button = 0; button < Buttons() && !HasFatalFailure(); ++button) {
            if (button == 2) {
                Person().Clicks("cmdVfyDone").WaitsFor("cmdSetup").Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("cmdSetup");
                OpensTheFile();
            }
            ARangeIsVerified(button);
        }
        EXPECT_EQ(ScriptedOperator::Fill(Slotted("cmdVfyRng", 0)), kCyan) << "behind the last comes the first";
    }

    void IsPrinted()
    {
        std::vector<PrintedLine> printed;
        outlets.print = [&printed](const std::string &, const std::vector<PrintedLine> &lines, int) {
            printed = lines;
            return std::string();
        };
        Person().Clicks("cmdVfyPrint").WaitsFor("cmdVfyDone").Clicks("cmdVfyDone").WaitsFor("cmdSetup");
        Runs();
        std::vector<std::string> wanted = {
            "", "", "DPM ID = A1234                                           File Name = unit.vfy", "",
            GetParam().header};
        wanted.push_back((TwoPolarities() ? " +DC " : "  AC ") + rows[0]);
        if (TwoPolarities())
            wanted.push_back(" -DC " + rows[1]);
        std::vector<std::string> lines;
        for (const PrintedLine &line : printed)
            lines.push_back(line.text.substr(0, line.text.find_last_not_of(' ') + 1));
        EXPECT_EQ(lines, wanted);
    }

    void GetsTheCustomersFile()
    {
        const std::string name = SendFileDefaults.at(static_cast<std::size_t>(GetParam().board));
        customers = Sample(name).replace(102, 6, "300064").replace(114, 6, "0004D2");
        ASSERT_EQ(WriteFile(name, customers + "\n"), "");
        Person().Clicks(ButtonOf(Step::SendFile)).WaitsFor("cmdSendFile").Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
        Person().Clicks("cmdSendFile").WaitsForText("cmdSFSkipOK", "OK").Waits(5000).Does([this] {
            EXPECT_NEAR(Val(ScriptedOperator::Text("lblSFReading(1)")), Val(station.bench.DisplayTextAt(NowMicros())),
                        0.5);
            EXPECT_NE(station.bench.Terminals().value, 0);
        });
        Person().Clicks("cmdSFSkipOK").WaitsForText("lblSFStatus(0)", "Send File operation complete");
        Runs();
    }

    void ShowsItsWordsAndTakesAnother()
    {
        Person().Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("cmdSetup").Does([this] {
            for (int field = 5; field <= 21; ++field) {
                const auto word = static_cast<int>(HexValue(ScriptedOperator::Text(Slotted("lblAddr", field))));
                EXPECT_EQ(ScriptedOperator::Text(Slotted("txtNVM", field)), Words(word, 1)) << word;
            }
        });
        Person().WaitsFor("txtNVM(14)").Types("txtNVM(14)", "1234").Clicks("cmdNVMsave(0)").WaitsFor("cmdSetup");
        Runs();
        EXPECT_EQ(Words(39, 1), "1234");
    }

    // The end of the program leaves its own in the display setup words 5 to 3.
    void HoldsTheCustomersFile(const std::string &displaySetup)
    {
        EXPECT_EQ(Words(24, 19), customers.substr(20, 76));
        EXPECT_EQ(Words(5, 3), displaySetup);
        EXPECT_EQ(Words(2, 3), customers.substr(108, 12));
        EXPECT_EQ(Words(56, 2), customers.substr(120, 8));
        EXPECT_EQ(Words(118, 13), customers.substr(128, 52));
    }

    BenchStation station;
    std::string file;                 // what the meter showed, range by range
    std::array<std::string, 2> rows;  // the same as the table has it
    std::string customers;            // the file that was sent
};

}  // namespace

TEST_P(MeterLife, FromBlankToVerifiedAndConfiguredInOneSession)
{
    ASSERT_NO_FATAL_FAILURE(IsNamedAndInitialised());
    ASSERT_NO_FATAL_FAILURE(IsCalibrated());
    ASSERT_NO_FATAL_FAILURE(IsVerifiedInTwoGoes());
    ASSERT_NO_FATAL_FAILURE(IsPrinted());
    ASSERT_NO_FATAL_FAILURE(GetsTheCustomersFile());
    ASSERT_NO_FATAL_FAILURE(ShowsItsWordsAndTakesAnother());
    HoldsTheCustomersFile(customers.substr(96, 12));
    EXPECT_FALSE(station.bench.CalibratorNow().operating);
    Person().Clicks("cmdQuit");
    Runs();
    HoldsTheCustomersFile("000000100001");
    EXPECT_THAT(station.bench.ProtocolErrors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfA, MeterLife,
                         testing::Values(Life{"Dc", kDc, 0, Route::Direct, kDcRanges, kHeader660V},
                                         Life{"Ac", kAc, 1, Route::Direct, kDcRanges, kHeader660V},
                                         Life{"LcByHand", kLc, 2, Route::Manual, kLcRanges, kHeaderLc},
                                         Life{"Ac2", kAc2, 4, Route::Direct, kAc2Ranges, kHeader600V},
                                         Life{"Ac3ThroughUut", kAc3, 5, Route::Uut, kAc2Ranges, kHeader600V}),
                         [](const auto &info) { return info.param.name; });
