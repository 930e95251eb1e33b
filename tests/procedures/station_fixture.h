// The whole station with its range page in the real window, on the virtual clock.
#pragma once

#include "links/calibrator.h"
#include "links/meter_simulator.h"
#include "model/nominals.h"
#include "platform/text.h"
#include "procedures/range_engine.h"
#include "procedures/range_page.h"
#include "session/state.h"
#include "shell/station.h"
#include "support/fake_line.h"
#include "support/scripted_operator.h"
#include "support/virtual_clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include <string>

namespace ombrix::test
{

class Station : public testing::Test
{
protected:
    VirtualClock clock;
    ScriptedOperator person{&clock};

    void SetUp() override
    {
        QFile::remove("Ombrix.ini");
        FillOutlets();
        RegisterPages();
        RegisterRangePage();
        OpenStation();
    }

    void TearDown() override { CloseStation(); }

    /// A simulated meter with a board code, established.
    void EstablishesSimulated(const char *boardCode = "01", int boardByte = 0x60)
    {
        SimNvm[21] = static_cast<std::uint16_t>(HexValue(boardCode));
        SimNvm[16] = static_cast<std::uint16_t>(boardByte);
        person.DoubleClicks("lblCalOut").Clicks("cmdEstablish").WaitsFor("cmdCalib(0)");
    }

    ScriptedOperator &OpensStep(int position)
    {
        return person.Clicks("cmdCalib(" + std::to_string(position) + ")").WaitsFor("cmdReady");
    }

    ScriptedOperator &OpensSimulated(int position)
    {
        EstablishesSimulated();
        return OpensStep(position);
    }

    static std::string Cell(int row, int column) { return ScriptedOperator::Cell("msgCalibGrid", row, column); }
    static int Rows() { return ScriptedOperator::Rows("msgCalibGrid"); }
    static std::string Text(const std::string &name) { return ScriptedOperator::Text(name); }
    static bool IsOn(const std::string &name) { return ScriptedOperator::IsEnabled(name); }
};

} // namespace ombrix::test
