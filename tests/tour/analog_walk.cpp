// The analog output of a meter on the bench: an operator types what the bench's output meter shows. On virtual time with
// its pages, and one point in real time.

#include "tour/tour.h"

#include "platform/text.h"
#include "session/state.h"
#include "shell/station.h"
#include "shell/theme.h"
#include "support/bench_program.h"
#include "support/bench_station.h"

#include <QDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace ombrix::tour {
namespace {

using test::BenchStation;
using test::ScriptedOperator;
using test::StepButton;

constexpr int kQuietMs = 1100;  // then the status line says what is, not what was
constexpr unsigned kSeed = 7;
constexpr int kVoltageGain = 3;
constexpr int kMinus10Volts = 7;
constexpr double kTarget = 10000;
constexpr double kTolerance = 1.25;
constexpr int kReadings = 3;
constexpr int kLookMs = 300;  // until an operator looks at the output meter
constexpr const char *kOutputMeter = "output 1 ";

test::Wiring AnalogMeter()
{
    test::Wiring wiring;
    wiring.bench.xmtr = true;
    wiring.bench.seed = kSeed;
    wiring.painted = test::Painted::Yes;
    return wiring;
}

class Walk
{
public:
    explicit Walk(const Options &options)
        : m_pictures(options.pictures.isEmpty() ? "" : QDir(options.pictures).absolutePath()), m_station(AnalogMeter())
    {
        ApplyTheme(options.theme.toStdString());
    }

    bool Goes()
    {
        if (!m_station.Establishes())
            return false;
        m_station.person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp");
        Takes("analog-tab");
        m_station.person.Clicks(StepButton(kVoltageGain)).WaitsFor("txtRead");
        if (!m_station.person.Runs())
            return false;
        Types();
        Takes("analog-outside");
        Types();
        Takes("analog-inside");
        m_station.person.Clicks("optDAC(2)").WaitsFor("txtRead").Clicks(StepButton(kMinus10Volts)).WaitsFor("cmdModal");
        Takes("analog-cable");
        m_station.person.Clicks("cmdModal").WaitsFor("txtRead").Clicks("optCalVfy(1)").WaitsFor("txtMeterVal");
        m_station.person.Types("txtMeterVal", "10000").PressesAtOnce(Qt::Key_Return).WaitsFor("txtMeterVal");
        Takes("analog-verify");
        m_station.person.Clicks("cmdAnaCal(1)").WaitsFor("cmdSetup");
        return m_station.person.Runs() && std::fabs(m_last - kTarget) <= kTolerance;
    }

    const std::string &Trouble() const { return m_station.person.Trouble(); }

private:
    void Types()
    {
        m_last = m_station.bench.AnalogOut(1).value;
        std::printf("    %s mV\n", Format(m_last, 2).c_str());
        m_station.person.Types("txtRead", Format(m_last, 2)).PressesAtOnce(Qt::Key_Return).WaitsFor("txtRead");
        m_station.person.Runs();
    }
    void Takes(const std::string &name)
    {
        if (m_pictures.isEmpty())
            return;
        QDir().mkpath(m_pictures);
        const QString file = QDir(m_pictures).filePath(QString::fromStdString(name) + ".png");
        m_station.person.Waits(kQuietMs).Does([file] { ScriptedOperator::TakesPicture(file); });
    }

    QString m_pictures;
    BenchStation m_station;
    double m_last = 0;
};

// Reads the console's output meter, "output 1 9999.98 mV", and types what it shows.
void TypesOutputMeter(ScriptedOperator &person, test::BenchProgram &bench, std::string &shown)
{
    person.Waits(kLookMs).Does([&] {
        const std::string told = bench.Answers("output", kOutputMeter);
        shown = told.substr(std::min(told.size(), std::string(kOutputMeter).size()));
        std::printf("    %s\n", shown.c_str());
        std::fflush(stdout);
        person.Types("txtRead", shown.substr(0, shown.find(' '))).PressesAtOnce(Qt::Key_Return).WaitsFor("txtRead");
    });
}

// True when the last of three readings was inside.
bool CalibratesVoltageGain(test::BenchProgram &bench)
{
    ScriptedOperator person;
    std::string shown;
    person.Within(120).Clicks("cmdEstablish").WaitsUntil("it is established", [] {
        return Established && ScriptedOperator::IsEnabled("cmdSetup");
    });
    person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp").Clicks(StepButton(kVoltageGain)).WaitsFor("txtRead");
    bool good = person.Runs();
    for (int reading = 0; good && reading < kReadings; ++reading) {
        TypesOutputMeter(person, bench, shown);
        good = person.Runs();
    }
    person.Clicks("cmdAnaCal(1)").WaitsFor("cmdSetup");
    good = good && person.Runs() && std::fabs(Val(shown) - kTarget) <= kTolerance;
    if (!person.Trouble().empty())
        std::printf("%s\n", person.Trouble().c_str());
    return good;
}

}  // namespace

bool RunAnalogBench(const Options &options)
{
    std::printf("A point of the analog output of the meter '%s' on pseudo-terminals, in real time\n",
                qPrintable(options.board));
    std::fflush(stdout);
    const test::WorkFolder folder;
    test::BenchProgram bench(options.testbench, QDir::currentPath(), options.board, kSeed);
    if (!bench.Stands()) {
        std::printf("ombrix-testbench doesn't start\n");
        return false;
    }
    test::OpenWholeStation();
    const bool good = CalibratesVoltageGain(bench);
    CloseStation();
    return good;
}

bool RunAnalogWalk(const Options &options)
{
    std::printf("The analog output of a meter on the bench\n");
    Walk walk(options);
    const bool good = walk.Goes();
    if (!good)
        std::printf("%s\n", walk.Trouble().c_str());
    return good;
}

}  // namespace ombrix::tour
