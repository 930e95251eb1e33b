#include "tour/tour.h"

#include "links/meter_simulator.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/state.h"
#include "shell/station.h"
#include "support/bench_station.h"
#include "support/samples.h"
#include "support/scripted_operator.h"
#include "support/station.h"

#include <QDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace ombrix::tour {
namespace {

using test::RangePositions;
using test::ScriptedOperator;

constexpr int kQuietMs = 1100;  // then the status line says what is, not what was
constexpr const char *kGuidesRange = "20 V";
constexpr int kRounds = 3;  // Ready and two Repeats: the simulator's noise falls with each correction

struct RangeResult {
    std::string title;
    int rows = 0;
    double error = 0;  // counts between the last reading and its target
    double noise = 0;  // what the simulator may scatter at that moment
    bool accepted = false;
};

std::string OneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', '/');
    return text;
}

void PrintRow(int row)
{
    std::string line = "   ";
    for (int column = 0; column < ScriptedOperator::Columns("msgCalibGrid"); ++column)
        line += " " + OneLine(ScriptedOperator::Cell("msgCalibGrid", row, column));
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::string ButtonOf(int position)
{
    return "cmdCalib(" + std::to_string(position) + ")";
}

// Half a count of rounding on each of the readings that a turnover row averages.
RangeResult Judge(int position)
{
    RangeResult result;
    result.title = StepName(StepIdAtPosition(position));
    result.rows = ScriptedOperator::Rows("msgCalibGrid");
    result.error = std::fabs(
        Val(ScriptedOperator::Cell("msgCalibGrid", result.rows - 1, ScriptedOperator::Columns("msgCalibGrid") - 1)));
    result.noise = static_cast<double>(SimNoise) + 1;
    return result;
}

class Pictures
{
public:
    explicit Pictures(const QString &folder) : m_folder(folder)
    {
        if (!folder.isEmpty())
            QDir().mkpath(folder);
    }
    /// What to wait before one is taken.
    int QuietMs() const { return m_folder.isEmpty() ? 0 : kQuietMs; }
    void Take(const QString &name) const
    {
        if (!m_folder.isEmpty())
            ScriptedOperator::TakesPicture(QDir(m_folder).filePath(name + ".png"));
    }

private:
    QString m_folder;
};

void ScriptRange(ScriptedOperator &person, int position, const std::string &progress, const Pictures &pictures,
                 std::vector<RangeResult> &results)
{
    const QString name = QString("range-%1").arg(position, 2, 10, QChar('0'));
    person.Clicks(ButtonOf(position)).WaitsFor("cmdReady").Waits(pictures.QuietMs()).Does([=, &pictures] {
        std::printf("%s: %s\n", progress.c_str(), StepName(StepIdAtPosition(position)).c_str());
        std::fflush(stdout);
        pictures.Take(name + "-jumpers");
    });
    for (int round = 0; round < kRounds; ++round)
        person.Clicks(round == 0 ? "cmdReady" : "cmdRepeat")
            .WaitsUntil("the round has ended",
                        [round] {
                            return ScriptedOperator::Rows("msgCalibGrid") > round &&
                                   ScriptedOperator::IsEnabled("cmdRepeat");
                        })
            .Does([round] { PrintRow(round); });
    person.Waits(pictures.QuietMs()).Does([=, &pictures, &results] {
        results.push_back(Judge(position));
        pictures.Take(name);
        if (results.back().title == kGuidesRange)
            pictures.Take("range-page");
    });
    person.Clicks("cmdAccept");
    test::LeavesRange(person);
    person.Does([&results] { results.back().accepted = true; });
}

// One range verified, a word changed and given back, four words by their number.
void ScriptRecords(ScriptedOperator &person, const Pictures &pictures)
{
    const auto take = [&person, &pictures](const QString &name) {
        person.Waits(pictures.QuietMs()).Does([&pictures, name] { pictures.Take(name); });
    };
    person.Clicks(test::ButtonOf(Step::Verify))
        .WaitsFor("chkTempFile")
        .Types("txtDpmID", "A1234")
        .Clicks("chkTempFile");
    person.Clicks("cmdVfyReady").Clicks("cmdVfyOK").WaitsFor("cmdVfyOK");
    take("verify");
    person.Clicks("cmdVfyOK").WaitsFor("cmdVfyReady").Clicks("cmdVfyDone").WaitsFor("cmdVfyReady");
    person.Clicks(test::ButtonOf(Step::ViewNvm)).WaitsFor("txtNVM(7)").Types("txtNVM(7)", "8A2F");
    take("view-nvm");
    person.Clicks("cmdNVMcancel(0)").Clicks("cmdNVMWord(0)").Types("txtNVMWord(0)", "28").Clicks("optNVMLen(3)");
    person.Clicks("cmdNVMWord(2)").WaitsFor("txtNVMWord(1)");
    take("raw-words");
    person.Clicks("cmdNVMWord(5)").WaitsFor("txtNVM(7)").Does([] { std::printf("Verify, View NVM and raw words\n"); });
}

// The factory image goes into the meter before any range is calibrated.
void ScriptInit(ScriptedOperator &person, const Pictures &pictures)
{
    person.Clicks(test::ButtonOf(Step::InitNvm))
        .WaitsFor("cmdInitStartRetry")
        .Waits(pictures.QuietMs())
        .Does([&] { pictures.Take("init"); })
        .Clicks("cmdInitStartRetry")
        .WaitsForText("lblInitStatus", "NVM Initialized Successfully")
        .Waits(pictures.QuietMs())
        .Does([&] { pictures.Take("init-done"); });
}

// A configuration behind the calibration, and the test of its range.
void ScriptSendFile(ScriptedOperator &person, const Pictures &pictures)
{
    person.Clicks(test::ButtonOf(Step::SendFile))
        .WaitsFor("cmdSendFile")
        .Waits(pictures.QuietMs())
        .Does([&] { pictures.Take("send-file"); })
        .Clicks("cmdSendFile")
        .WaitsFor("cmdSFSkipOK")
        .Waits(pictures.QuietMs())
        .Does([&] { pictures.Take("send-file-jumpers"); })
        .Clicks("cmdSendFile")
        .WaitsForText("cmdSFSkipOK", "OK")
        .Waits(2 * pictures.QuietMs())
        .Does([&] { pictures.Take("send-file-test"); })
        .Clicks("cmdSFSkipOK")
        .WaitsForText("lblSFStatus(0)", "Send File operation complete")
        .Waits(pictures.QuietMs())
        .Does([&] { pictures.Take("send-file-done"); });
}

bool Report(const std::vector<RangeResult> &results, std::size_t expected)
{
    bool good = results.size() == expected;
    for (const RangeResult &result : results) {
        const bool inside = result.accepted && result.rows == kRounds && result.error <= result.noise;
        good = good && inside;
        std::printf("%-14s %s, error %g of at most %.1f counts\n", result.title.c_str(), inside ? "accepted" : "FAILED",
                    result.error, result.noise);
    }
    std::printf("%zu of %zu ranges\n", results.size(), expected);
    return good;
}

}  // namespace

bool RunSimulation(const Options &options)
{
    const QString pictureFolder = options.pictures.isEmpty() ? "" : QDir(options.pictures).absolutePath();
    const test::WorkFolder folder;  // the tour's own settings, not the station's
    WriteFile("Ombrix.ini", "[Look]\nTheme=" + options.theme.toStdString() + "\n");
    test::PutSamples();
    test::OpenWholeStation();

    const Pictures pictures(pictureFolder);
    std::vector<RangeResult> results;
    std::size_t expected = 0;
    ScriptedOperator person;
    person.Within(60);
    person.Does([&] { pictures.Take("setup"); }).DoubleClicks("lblCalOut").Clicks("cmdEstablish");
    person.WaitsFor("cmdCalib(2)").Waits(pictures.QuietMs()).Does([&] {
        std::printf("%s\n", ScriptedOperator::Text("lblStatus").c_str());
        pictures.Take("established");
    });
    bool good = person.Runs();
    ScriptInit(person, pictures);
    const std::vector<int> positions = RangePositions();
    expected = positions.size();
    for (std::size_t i = 0; i < expected; ++i)
        ScriptRange(person, positions[i], std::to_string(i + 1) + " of " + std::to_string(expected), pictures, results);
    ScriptRecords(person, pictures);
    ScriptSendFile(person, pictures);
    good = good && person.Runs();
    if (!good)
        std::printf("%s\n", person.Trouble().c_str());
    good = Report(results, expected) && good;
    CloseStation();
    return good;
}

}  // namespace ombrix::tour
