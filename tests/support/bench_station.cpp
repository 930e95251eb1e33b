#include "support/bench_station.h"

#include <QAbstractButton>

#include "platform/clock.h"
#include "platform/safe_file.h"
#include "platform/text.h"
#include "session/state.h"
#include "shell/main_window.h"
#include "shell/station.h"

#include <QMainWindow>

#include <string>

namespace ombrix::test {
namespace {

constexpr const char *kMeterDevice = "/bench/meter";
constexpr const char *kCalibratorDevice = "/bench/calibrator";

void WriteWiring(const Wiring &wiring)
{
    const std::string calibrator = wiring.manual ? "0" : "2";
    const std::string meter = wiring.bench.uut ? "0" : "1";
    WriteFile("Ombrix.ini", std::string("[Ports]\nCOM1=") + kMeterDevice + "\nCOM2=" + kCalibratorDevice +
                                "\n[Comms]\nCALPort=" + calibrator + "\nDPMPort=" + meter +
                                "\nSwitch=" + (wiring.useSwitch ? "1" : "0") + "\n" +
                                (wiring.theme.empty() ? "" : "[Look]\nTheme=" + wiring.theme + "\n"));
}

bench::BenchSetup SetupOf(const Wiring &wiring)
{
    bench::BenchSetup setup = wiring.bench;
    setup.calibrator = !wiring.manual;
    setup.outputSwitch = wiring.useSwitch;
    return setup;
}

// The operator in Manual mode: does on the bench what the box asks for.
void ObeyBox(bench::Bench &bench, const std::string &title, const std::string &text)
{
    const std::string before = "Apply an accurate input signal of ";
    const std::string behind = " to the Meter";
    if (title == "Apply Input Signal")
        bench.Apply(text.substr(before.size(), text.size() - before.size() - behind.size()), NowMicros());
    else if (title == "Remove Input")
        bench.Remove(NowMicros());
}

}  // namespace

void LeavesRange(ScriptedOperator &person)
{
    person
        .WaitsUntil(
            "the range is left",
            [] { return ScriptedOperator::IsEnabled("cmdSetup") || ScriptedOperator::IsEnabled("cmdRatioDone"); })
        .Does([] {
            if (!ScriptedOperator::IsEnabled("cmdSetup"))
                qobject_cast<QAbstractButton *>(ScriptedOperator::Find("cmdRatioDone"))->click();
        })
        .WaitsFor("cmdSetup");
}

std::string WordsOf(const BenchStation &station, int top, int count)
{
    const auto words = station.bench.Nvm();
    std::string text;
    for (int word = top; word > top - count; --word)
        text += HexText(words[static_cast<std::size_t>(word)], 4);
    return text;
}

BenchStation::BenchStation(const Wiring &wiring)
    : bench(SetupOf(wiring)), lines(clock, bench, kMeterDevice, kCalibratorDevice), person(&clock)
{
    WriteWiring(wiring);
    if (wiring.manual)
        person.onBox = [this](const std::string &title, const std::string &text) { ObeyBox(bench, title, text); };
    OpenWholeStation(wiring.painted);
}

BenchStation::~BenchStation()
{
    CloseStation();
}

bool BenchStation::Establishes()
{
    person.Clicks("cmdEstablish").WaitsUntil("Establish has ended", [] {
        return ScriptedOperator::Sees("lblStatus") && (!Established || ScriptedOperator::IsEnabled("cmdSetup"));
    });
    return person.Runs() && Established;
}

bool BenchStation::Calibrates(int position, int rounds)
{
    person.Clicks(StepButton(position)).WaitsFor("cmdReady").Clicks("cmdReady").WaitsFor("cmdRepeat");
    for (int round = 1; round < rounds; ++round)
        person.Clicks("cmdRepeat").WaitsUntil("the next round has ended", [round] {
            return ScriptedOperator::Rows("msgCalibGrid") > round && ScriptedOperator::IsEnabled("cmdRepeat");
        });
    person.Clicks("cmdAccept");
    LeavesRange(person);
    return person.Runs();
}

}  // namespace ombrix::test
