// A page in the station's real window: in simulation, or on the bench, whose log and truth the test asks.
#pragma once

#include "links/meter_simulator.h"
#include "model/settings.h"
#include "session/state.h"
#include "support/bench_lines.h"
#include "support/bench_log.h"
#include "support/station.h"
#include "testbench/bench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ombrix::test {

class PageTest : public testing::Test
{
protected:
    std::unique_ptr<Station> station;
    ScriptedOperator *person = nullptr;

    void SetUp() override { OpensStation(); }
    void TearDown() override { station.reset(); }

    /// A station whose simulated readings are the same in each run.
    void OpensStation()
    {
        station = std::make_unique<Station>();
        person = &station->person;
        SeedMeterSimulator(1);
    }

    /// What a script waits for: a step whose button says that it is in work.
    static std::function<bool()> StandsAt(int position)
    {
        return [position] { return Fill(StepButton(position)) == kCyan; };
    }
    static constexpr const char *kCyan = "#00ffff";

    static std::string Text(const std::string &name) { return ScriptedOperator::Text(name); }
    static std::string Fill(const std::string &name) { return ScriptedOperator::Fill(name); }
    static bool IsEnabled(const std::string &name) { return ScriptedOperator::IsEnabled(name); }
    static bool HasFocus(const std::string &name) { return ScriptedOperator::HasFocus(name); }
    static bool Sees(const std::string &name) { return ScriptedOperator::Sees(name); }
};

/// In simulation.
class SimulatedPage : public PageTest
{
protected:
    /// A simulated meter with this board code and this board byte in word 16, established.
    void Establishes(std::uint16_t boardCode = 0x01, std::uint16_t boardByte = 0x60)
    {
        SimNvm[21] = boardCode;
        SimNvm[16] = boardByte;
        ASSERT_TRUE(station->EstablishesInSimulation());
    }
};

/// On the bench: its meter on COM1, its calibrator on COM2.
class WiredPage : public PageTest
{
protected:
    std::unique_ptr<bench::Bench> bench;
    std::unique_ptr<BenchLines> lines;

    void SetUp() override {}

    void TearDown() override
    {
        if (bench) {
            EXPECT_THAT(bench->ProtocolErrors(), testing::IsEmpty());
        }
        lines.reset();
        bench.reset();
        PageTest::TearDown();
    }

    /// A fresh station whose lines lead to these instruments.
    void Stands(const bench::BenchSetup &setup)
    {
        lines.reset();
        bench.reset();
        station.reset();
        OpensStation();
        bench = std::make_unique<bench::Bench>(setup);
        lines = std::make_unique<BenchLines>(station->clock, *bench, PortDevice(1), PortDevice(2));
    }

    /// Establishes over both lines. What was said for that is forgotten.
    void Establishes()
    {
        person->Clicks("cmdEstablish").WaitsFor("cmdSetup");
        ASSERT_TRUE(person->Runs());
        ASSERT_TRUE(Established) << Text("lblStatus") << bench->LastWords();
        Forget();
    }

    /// What was said until now isn't asked for any more.
    void Forget()
    {
        m_said = bench->Transcript().size();
        m_since = station->clock.NowMicros();
    }

    /// Frames and commands that the station has sent since the last Forget: on both lines in their order, or on one.
    std::vector<std::string> Said() const
    {
        std::vector<std::string> said;
        for (std::size_t at = m_said; at < bench->Transcript().size(); ++at) {
            const bench::TranscriptLine &line = bench->Transcript()[at];
            if (line.fromStation)
                said.push_back(line.text.substr(0, line.text.size() - kLineEnd));
        }
        return said;
    }
    std::vector<std::string> ToMeter() const { return FramesTo(*bench, bench::Line::Meter, m_since); }
    std::vector<std::string> ToCalibrator() const { return FramesTo(*bench, bench::Line::Calibrator, m_since); }
    /// When it was sent, in milliseconds since then.
    std::vector<std::int64_t> TimesOf(const std::string &frame) const { return test::TimesOf(*bench, frame, m_since); }

    // ---- what the instruments know ----
    std::uint16_t WordOf(std::size_t word) const { return bench->Nvm().at(word); }
    bool Operates() const { return bench->CalibratorNow().operating; }
    /// The calibrator's value as it was asked for, "-2 V".
    std::string Output() const { return bench->CalibratorNow().output; }

private:
    static constexpr std::size_t kLineEnd = 2;  // a line end as the log writes it, "\r"

    std::size_t m_said = 0;
    std::int64_t m_since = 0;
};

}  // namespace ombrix::test
