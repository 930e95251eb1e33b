// The step in work on the station's own simulator, and on a serial line whose meter a test writes.
#pragma once

#include "calibration/learning.h"
#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_state.h"
#include "calibration/step_word.h"
#include "links/meter_protocol.h"
#include "links/meter_simulator.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "session/procedure.h"
#include "session/state.h"
#include "support/fake_line.h"
#include "support/virtual_clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include <deque>
#include <string>
#include <vector>

namespace ombrix::test {

class OnSimulator : public testing::Test
{
protected:
    VirtualClock clock;

    void SetUp() override
    {
        QFile::remove("Ombrix.ini");
        InitSessionState();
        ClearStop();
        InitMeterSimulator();
        InitTables();
        HardwareMode = RealTimeDelays = false;
        step = StepContext();
    }

    void TearDown() override { InitSessionState(); }

    void Opens(int board, int position)
    {
        SCType = board;
        CalibTab = TabOfBoard(board);
        LoadStep(position, StepIdAtPosition(position));
    }
};

class OnLine : public OnSimulator
{
protected:
    FakeLines lines{clock};
    std::string device;

    void SetUp() override
    {
        OnSimulator::SetUp();
        HardwareMode = RealTimeDelays = true;
        UseSwitch = false;
        MeterPort = 1;
        device = PortDevice(MeterPort);
        lines[device];
        Meter().onWrite = [this](const std::string &frame) { AnswersDisplay(frame); };
        comDPM.Open(device);
        clock.Restart();
    }

    void TearDown() override
    {
        comDPM.Close();
        OnSimulator::TearDown();
    }

    FakeLine &Meter() { return lines[device]; }

    /// What the next reads of the display find, one after the other; then the meter is silent.
    void Shows(const std::vector<std::string> &texts) { m_display.assign(texts.begin(), texts.end()); }

private:
    std::deque<std::string> m_display;

    void AnswersDisplay(const std::string &frame)
    {
        if (frame != "*1B1\r" || m_display.empty())
            return;
        Meter().Says(m_display.front() + "\r");
        m_display.pop_front();
    }
};

}  // namespace ombrix::test
