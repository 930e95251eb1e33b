#include "page_runs.h"

#include "loop_watch.h"
#include "simulated_run.h"

#include "model/range_tables.h"
#include "model/station_settings.h"
#include "model/step_ids.h"
#include "session/state.h"
#include "support/bench_station.h"
#include "support/samples.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace ombrix::benchmarks {
namespace {

using test::BenchStation;
using test::ButtonOf;
using test::ScriptedOperator;
using test::StepButton;

constexpr int kLook = 3000;  // milliseconds in which a display settles before his eyes
constexpr int kVfRange = 2;  // positions
constexpr int kRestore = 16;
constexpr int kVoltageGain = 3;

struct Page {
    const char *name;
    int board;
    void (*works)(ScriptedOperator &person);
};

void Establish(ScriptedOperator &person)
{
    person.Clicks("cmdSetup").WaitsFor("optManual").Clicks("optManual").Clicks("optAutomatic");
    person.Clicks("cmdEstablish");
}

void Init(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::InitNvm)).WaitsFor("cmdInitStartRetry").Clicks("cmdInitStartRetry");
    person.WaitsFor("cmdDone(0)");
}

void Range(ScriptedOperator &person)
{
    CalibrateRange(person, test::PositionOfStep(Step::Ref200mV), 2);
}

void FirstCycle(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::FirstCycle)).WaitsFor("cmdFCReady").Clicks("cmdFCReady").WaitsFor("cmdFCReady");
}

void Ratio(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::Ratio)).WaitsFor("cmdOffset").Clicks("cmdOffset").WaitsFor("cmdGain");
    person.Clicks("cmdGain").WaitsFor("cmdRatioDone").Clicks("cmdRatioDone");
}

void ZeroAdjust(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::ZeroAdjust)).WaitsFor("cmdZeroAdj").Clicks("cmdZeroAdj").Waits(kLook);
    person.Presses(Qt::Key_Escape);
}

void Trim(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::TrimR13R14)).WaitsFor("cmdTrimStart").Clicks("cmdTrimStart");
    person.WaitsFor("cmdTrimOK").Waits(kLook).Clicks("cmdTrimOK").WaitsFor("cmdTrimOK").Waits(kLook);
    person.Presses(Qt::Key_Escape);
}

void QuasiDiode(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::GainOffset)).WaitsFor("cmdQDReady").Clicks("cmdQDReady").WaitsFor("cmdQDGain");
    person.Clicks("cmdQDGain").WaitsFor("cmdQDOffset").Clicks("cmdQDOffset").WaitsFor("cmdQDStop(0)");
    person.Clicks("cmdQDStop(0)");
}

void RtdCurrent(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::RtdCurrent)).WaitsFor("cmdISCalib").Clicks("cmdISCalib").WaitsFor("cmdISDone");
    person.WaitsFor("cmdISCalib").Clicks("cmdISDone");
}

void MeterType(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::MeterType)).WaitsFor("optMeterType(0)").Does([&person] {
        person.Clicks(ScriptedOperator::IsOn("optMeterType(0)") ? "optMeterType(1)" : "optMeterType(0)");
        person.Clicks("cmdSaveMeterType").WaitsFor("cmdSetup");
    });
}

void Vf(ScriptedOperator &person)
{
    VFLow = VFHigh = "3";
    CalibrateVfRange(person, kVfRange);
    person.Clicks("cmdSetup").WaitsFor("optManual");
}

void Nominalize(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::Nominalize)).WaitsFor("cmdDone(3)");
}

void Configuration(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::GetConfig)).WaitsFor(StepButton(kRestore)).Clicks(StepButton(kRestore));
    person.WaitsFor("cmdNVMsave(1)").Clicks("cmdNVMsave(1)");
}

void Verify(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::Verify)).Clicks("chkTempFile").Clicks("cmdVfyReady").Clicks("cmdVfyOK");
    person.WaitsFor("cmdVfyOK").Clicks("cmdVfyOK").WaitsFor("cmdVfyReady").Clicks("cmdVfyDone");
}

void Editor(ScriptedOperator &person)
{
    person.Clicks(ButtonOf(Step::ViewNvm)).WaitsFor("txtNVM(14)").Types("txtNVM(14)", "1234");
    person.Clicks("cmdNVMsave(0)").WaitsFor("cmdNVMWord(0)").Clicks("cmdNVMWord(0)");
    person.Types("txtNVMWord(0)", "27").Clicks("cmdNVMWord(2)").WaitsFor("txtNVMWord(1)");
    person.Types("txtNVMWord(1)", "1235").Clicks("cmdNVMWord(3)").WaitsFor("cmdNVMWord(5)").Clicks("cmdNVMWord(5)");
}

void SendFile(ScriptedOperator &person)
{
    test::PutSamples();
    person.Clicks(ButtonOf(Step::SendFile)).WaitsFor("cmdSendFile").Clicks("cmdSendFile").WaitsFor("cmdSFSkipOK");
    person.Clicks("cmdSendFile").Waits(kLook).WaitsFor("cmdSFSkipOK").Clicks("cmdSFSkipOK");
}

void Analog(ScriptedOperator &person)
{
    person.onBox = [](const std::string &, const std::string &) {};
    person.ClicksTab(kTabAnaCal).WaitsFor("cmdUp").Clicks(StepButton(kVoltageGain)).WaitsFor("txtRead");
    person.Types("txtRead", "10010").PressesAtOnce(Qt::Key_Return).WaitsFor("cmdAnaCal(1)").Clicks("cmdAnaCal(1)");
}

const Page kPages[] = {
    {"Establish", kDc, Establish},
    {"Init NVM", kDc, Init},
    {"range", kDc, Range},
    {"first cycle", kDc, FirstCycle},
    {"ratio", kDc, Ratio},
    {"zero adjust", kAc2, ZeroAdjust},
    {"trim of R13/R14", kAc2, Trim},
    {"quasi-diode", kTc, QuasiDiode},
    {"RTD current", kTemp, RtdCurrent},
    {"meter type", kTc, MeterType},
    {"VF range", kVf, Vf},
    {"nominalize", kVf, Nominalize},
    {"configuration kept, restored", kVf, Configuration},
    {"verify", kDc, Verify},
    {"View NVM, raw words", kDc, Editor},
    {"Send File", kDc, SendFile},
    {"analog output", kDc, Analog},
};

double LongestBlockOf(const Page &page)
{
    test::Wiring wiring;
    wiring.bench.board = page.board;
    wiring.bench.kind = page.board == kVf ? kCtr : kDpm;
    wiring.painted = test::Painted::Yes;
    BenchStation station(wiring);
    if (!station.Establishes())
        throw std::runtime_error(std::string("no meter for ") + page.name);
    const LoopWatch watch;
    page.works(station.person);
    station.person.WaitsUntil("navigation is free", test::NavigationIsFree);
    if (!station.person.Runs())
        throw std::runtime_error(std::string(page.name) + " stopped: " + station.person.Trouble());
    return watch.LongestMs();
}

}  // namespace

std::vector<PageRun> RunEachPage()
{
    std::vector<PageRun> runs;
    for (const Page &page : kPages) {
        std::array<double, 3> times{};
        for (double &time : times)
            time = LongestBlockOf(page);
        std::sort(times.begin(), times.end());
        runs.push_back({page.name, times[1]});
    }
    return runs;
}

}  // namespace ombrix::benchmarks
