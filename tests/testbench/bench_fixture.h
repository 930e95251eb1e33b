// A bench with the test in the station's place, and with the station itself on it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <memory>
#include <string>

#include "calibration/learning.h"
#include "calibration/readings.h"
#include "calibration/step_context.h"
#include "calibration/step_state.h"
#include "calibration/step_word.h"
#include "links/calibrator.h"
#include "links/meter_identity.h"
#include "links/meter_link.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/output_switch.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"
#include "support/bench_lines.h"
#include "support/virtual_clock.h"
#include "testbench/bench.h"
#include "testbench/boards.h"
#include "testbench/meter.h"

namespace ombrix::bench {

inline constexpr Micros kMs = 1000;
inline constexpr Micros kSecond = 1'000'000;

/// Bytes go in and out at times that the test tells.
class BenchTest : public testing::Test
{
protected:
    void Stands(const BenchSetup &setup)
    {
        bench = std::make_unique<Bench>(setup);
        now = 1000 * kSecond;
    }
    void SetUp() override { Stands({}); }

    /// Sends, waits, and gives back all that came meanwhile.
    std::string Ask(Line line, std::string_view bytes, Micros wait = 500 * kMs)
    {
        bench->Receive(line, bytes, now);
        now += wait;
        return bench->Collect(line, now);
    }
    std::string AskMeter(const std::string &payload, Micros wait = 500 * kMs)
    {
        return Ask(Line::Meter, "*1" + payload + "\r", wait);
    }
    std::string AskCalibrator(const std::string &command, Micros wait = 500 * kMs)
    {
        return Ask(Line::Calibrator, command + "\n", wait);
    }
    /// Puts a value on the terminals and waits until the display has settled.
    void Applies(const std::string &value)
    {
        AskCalibrator("REMOTE");
        AskCalibrator("OUT " + value + " ; OPER ; *WAI", 2 * kSecond);
    }
    /// Puts the meter on a range with a scale.
    void Ranges(const std::string &code, int scale)
    {
        AskMeter("W110" + ("00" + code) + "Z");
        AskMeter("W30500000010" + HexText(scale, 4), 2 * kSecond);
    }
    void Waits(Micros time)
    {
        now += time;
        bench->NextDue(now);
    }
    /// The number that the display shows, without its point.
    long Counts()
    {
        std::string text = AskMeter("B1");
        std::erase(text, '.');
        return std::lround(Val(text));
    }

    std::unique_ptr<Bench> bench;
    Micros now = 0;
};

/// The station's own links and range engine on the bench, on virtual time.
class StationOnBench : public testing::Test
{
protected:
    void Stands(const BenchSetup &setup)
    {
        lines.reset();
        QFile::remove("Ombrix.ini");
        InitSessionState();
        InitTables();
        ClearStop();
        outlets = Outlets();
        HardwareMode = RealTimeDelays = true;
        UseSwitch = false;
        CalPort = setup.uut ? 1 : 2;
        MeterPort = setup.uut ? 0 : 1;
        bench = std::make_unique<Bench>(setup);
        lines = std::make_unique<test::BenchLines>(clock, *bench, PortDevice(setup.uut ? 2 : 1),
                                                   PortDevice(setup.uut ? 1 : 2));
        SCType = setup.board;
        CalibTab = TabOfBoard(setup.board);
    }
    void TearDown() override
    {
        CloseLinks();
        lines.reset();
        outlets = Outlets();
        InitSessionState();
    }
    /// Both links as the station opens them. A failure tells its words.
    void Establishes()
    {
        ASSERT_EQ(OpenCalibratorLink(), 0) << CalError << bench->LastWords();
        ASSERT_EQ(OpenMeterLink(), 0) << MeterError << bench->LastWords();
        ReadMeterIdentity();
    }
    /// Some rounds of one range, as the range page makes them.
    void Calibrates(int position, int rounds)
    {
        LoadStep(position, StepIdAtPosition(position));
        ApplyStepToMeter();
        for (int round = 0; round < rounds; ++round) {
            TakesReadings();
            ComputeCorrectedWord(round == 0);
        }
        RemoveInput();
    }
    void TakesReadings()
    {
        ApplyInputValue(step.CalValue);
        MeterCommandCZ();
        TakeReading(0);
        if (!step.TurnoverStep)
            return;
        ApplyInputValue("-" + step.CalValue);
        MeterCommandCZ();
        TakeReading(1);
    }

    test::VirtualClock clock;
    std::unique_ptr<Bench> bench;
    std::unique_ptr<test::BenchLines> lines;
};

}  // namespace ombrix::bench
