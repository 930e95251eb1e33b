// The range page in the station's real window.
#pragma once

#include "calibration/step_context.h"
#include "calibration/step_state.h"
#include "calibration/step_word.h"
#include "links/meter_simulator.h"
#include "model/nominals.h"
#include "platform/text.h"
#include "procedures/fake_instruments.h"
#include "session/procedure.h"
#include "session/state.h"
#include "support/station.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTableWidget>

#include <functional>
#include <memory>
#include <string>

namespace ombrix::test {

class RangeStation : public testing::Test
{
protected:
    std::unique_ptr<Station> station;
    ScriptedOperator *person = nullptr;

    void SetUp() override { OpensStation(); }

    /// A station whose simulated readings are the same in each run.
    void OpensStation()
    {
        station = std::make_unique<Station>();
        person = &station->person;
        SeedMeterSimulator(1);
    }

    void TearDown() override { station.reset(); }

    /// What a script waits for: a round that is shown live, and a step.
    static std::function<bool()> Watches(int round)
    {
        return [round] { return Rows() == round && StopArmed; };
    }
    static std::function<bool()> StandsAt(int position)
    {
        return [position] { return CurrentStepButton == position; };
    }

    static constexpr const char *kCyan = "#00ffff";
    static QTableWidget *TheGrid() { return qobject_cast<QTableWidget *>(ScriptedOperator::Find("msgCalibGrid")); }
    /// Of a cell's background, "" the palette's own.
    static std::string Colour(int row, int column)
    {
        const QBrush brush = TheGrid()->item(row, column)->background();
        return brush.style() == Qt::NoBrush ? "" : brush.color().name().toStdString();
    }

    static std::string Cell(int row, int column) { return ScriptedOperator::Cell("msgCalibGrid", row, column); }
    static int Rows() { return ScriptedOperator::Rows("msgCalibGrid"); }
    static std::string Text(const std::string &name) { return ScriptedOperator::Text(name); }
    static bool IsEnabled(const std::string &name) { return ScriptedOperator::IsEnabled(name); }
    static bool HasFocus(const std::string &name) { return ScriptedOperator::HasFocus(name); }
    static bool Sees(const std::string &name) { return ScriptedOperator::Sees(name); }
};

/// In simulation.
class SimulatedRange : public RangeStation
{
protected:
    /// A simulated meter with this board code and this board byte in word 16, established.
    void Establishes(std::uint16_t boardCode = 0x01, std::uint16_t boardByte = 0x60)
    {
        SimNvm[21] = boardCode;
        SimNvm[16] = boardByte;
        ASSERT_TRUE(station->EstablishesInSimulation());
    }

    ScriptedOperator &Opens(int position) { return person->Clicks(StepButton(position)).WaitsFor("cmdReady"); }

    /// Opens the step of a DC meter and lets one round pass.
    ScriptedOperator &Calibrates(int position)
    {
        Establishes();
        return Opens(position).Clicks("cmdReady").WaitsFor("cmdRepeat");
    }
};

/// On real lines, with instruments that a test holds in its hand.
class WiredRange : public RangeStation
{
protected:
    std::unique_ptr<FakeInstruments> bench;

    void SetUp() override
    {
        RangeStation::SetUp();
        bench = std::make_unique<FakeInstruments>(station->clock);
        bench->words[32] = 0x8948;
        person->Clicks("cmdEstablish").WaitsUntil("it is established", [] { return Established; });
        ASSERT_TRUE(person->Runs());
        bench->log.clear();
    }

    void TearDown() override
    {
        RangeStation::TearDown();
        bench.reset();
    }

    /// The 2 V range of a DC meter.
    ScriptedOperator &Opens() { return person->Clicks(StepButton(4)).WaitsFor("cmdReady"); }
    ScriptedOperator &Calibrates() { return Opens().Clicks("cmdReady").WaitsFor("cmdRepeat"); }
};

}  // namespace ombrix::test
