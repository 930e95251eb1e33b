// The bench of the link tests: a virtual clock, the far ends of both lines, and what the operator is shown.
#pragma once

#include "links/cal_output.h"
#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/calibrator_simulator.h"
#include "links/meter_frame.h"
#include "links/meter_identity.h"
#include "links/meter_link.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/meter_simulator.h"
#include "links/output_switch.h"
#include "links/uut.h"
#include "model/settings.h"
#include "platform/clock.h"
#include "session/delays.h"
#include "session/live_output.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"
#include "support/fake_line.h"
#include "support/virtual_clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ombrix::test {

inline const std::string kCrLf = "\r\n";
inline const std::string kNoError = "0,\"No Error\"\r\n";

/// Calibrator on port 2, meter on port 1, nothing open.
class LinksTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        ClearStop();
        InitLinks();
        outlets = Outlets();
        outlets.showOutput = [this](const std::string &text) { panel = text; };
        outlets.showDangerFlag = [this](Danger level) { flags.push_back(level); };
        outlets.promptOperator = [this](const std::string &text, const std::string &title) {
            prompts.push_back(title + ": " + text);
            return true;
        };
        outlets.showAlert = [this](const std::string &text) {
            alert = text;
            alertTimes.push_back(clock.Elapsed());
        };
        outlets.showRemark = [this](const std::string &text) { remarks.push_back(text); };
        outlets.showSwitchText = [this](const std::string &text) { switchText = text; };
        outlets.showSwitch = [this](bool on) { switchShown = on; };
        outlets.showWait = [this](const std::string &text) {
            if (waits.empty() || waits.back() != text)
                waits.push_back(text);
        };
    }

    void TearDown() override
    {
        RequestShutdown(false);
        CloseLinks();
        outlets = Outlets();
        InitSessionState();
    }

    void OpenMeterPort()
    {
        comDPM.Open(PortDevice(1));
        Start();
    }

    void OpenCalibratorPort()
    {
        comCAL.Open(PortDevice(2));
        Start();
    }

    /// Both ports as the wiring through the calibrator has them.
    void UseUutRoute()
    {
        MeterPort = 0;
        OpenCalibratorPort();
    }

    void Simulate()
    {
        HardwareMode = RealTimeDelays = false;
        Start();
    }

    /// From here on time, writes and shown waits count.
    void Start()
    {
        meter.Forget();
        calibrator.Forget();
        waits.clear();
        clock.Restart();
    }

    /// A calibrator that answers each question at once and reaches each state.
    void CalibratorAnswers(const std::string &operate, const std::string &output)
    {
        calibrator.Answers("ERR?\n", kNoError);
        calibrator.Answers("OPER?\n", operate + kCrLf);
        calibrator.Answers("OUT?\n", output + kCrLf);
    }

    void AbortsAfter(int ms)
    {
        CallAfter(ms, [] { Abort = true; });
    }

    FakeLine &LineAtPort(int port)
    {
        LoadPorts();
        return lines[PortDevice(port)];
    }

    Danger Flag() const { return flags.empty() ? Danger::Safe : flags.back(); }

    VirtualClock clock;
    FakeLines lines{clock};
    FakeLine &meter = LineAtPort(1);
    FakeLine &calibrator = LineAtPort(2);

    std::string panel;
    std::vector<Danger> flags;
    std::vector<std::string> prompts;
    std::vector<std::string> remarks;
    std::string alert;
    std::vector<std::int64_t> alertTimes;  // of each change
    std::string switchText;
    bool switchShown = false;
    std::vector<std::string> waits;
};

}  // namespace ombrix::test
