// The whole station on virtual time, wired to the bench, for the tests of the shell.
#pragma once

#include "links/calibrator_line.h"
#include "links/meter_simulator.h"
#include "model/settings.h"
#include "model/step_ids.h"
#include "platform/clock.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/station.h"
#include "support/bench_lines.h"
#include "support/bench_log.h"
#include "support/station.h"
#include "testbench/bench.h"
#include "testbench/boards.h"
#include "widgets/widgets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFrame>
#include <QMouseEvent>
#include <QTabBar>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrix::test {

class ShellTest : public ::testing::Test
{
protected:
    ShellTest() { Stands({}); }
    ~ShellTest() override { pageTables = m_registered; }

    static bool Sees(const std::string &name) { return ScriptedOperator::Sees(name); }
    static bool IsOn(const std::string &name) { return ScriptedOperator::IsOn(name); }
    static bool IsEnabled(const std::string &name) { return ScriptedOperator::IsEnabled(name); }
    static bool HasFocus(const std::string &name) { return ScriptedOperator::HasFocus(name); }
    static std::string Text(const std::string &name) { return ScriptedOperator::Text(name); }
    static std::string Fill(const std::string &name) { return ScriptedOperator::Fill(name); }

    /// A click as the operator makes it; what it starts runs to its end.
    void Click(const std::string &name)
    {
        person.Clicks(name);
        EXPECT_TRUE(person.Runs());
    }

    void ClickTab(int tab)
    {
        person.ClicksTab(tab);
        EXPECT_TRUE(person.Runs());
    }

    void Press(int key)
    {
        person.Presses(key);
        EXPECT_TRUE(person.Runs());
    }

    /// A double click that reaches the widget whether it can be seen or not.
    void DoubleClick(const std::string &name)
    {
        DoublyClicks(name);
        EXPECT_TRUE(person.Runs());
    }

    /// The same as a step of the script.
    ScriptedOperator &DoublyClicks(const std::string &name)
    {
        return person.Does([name] {
            QMouseEvent event(QEvent::MouseButtonDblClick, {1, 1}, {1, 1}, Qt::LeftButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(ScriptedOperator::Find(name), &event);
        });
    }

    static QTabBar *Strip() { return qobject_cast<QTabBar *>(ScriptedOperator::Find("tabCalib")); }
    static std::string TabText(int tab) { return Strip()->tabText(tab).toStdString(); }

    /// Page in front, -1 when not exactly one is.
    static int Page()
    {
        int shown = -1;
        for (int index = 0; index < kPages; index++) {
            if (Sees("fraCalib(" + std::to_string(index) + ")"))
                shown = shown == -1 ? index : kPages;
        }
        return shown == kPages ? -1 : shown;
    }

    void EstablishSimulated() { EXPECT_TRUE(station.EstablishesInSimulation()) << person.Trouble(); }

    /// The instruments on the two lines. The meter doesn't stand on the range on which Establish leaves it.
    void Stands(const bench::BenchSetup &setup)
    {
        lines.reset();
        bench = std::make_unique<bench::Bench>(setup);
        lines = std::make_unique<BenchLines>(clock, *bench, PortDevice(1), PortDevice(2));
        bench->SetWord(kRangeWord, 0x1364);
    }

    /// The meter says that it holds a board with this code in the low byte of its board word.
    void HasBoardCode(std::uint16_t code) { bench->SetWord(kBoardWord, code); }

    /// Establishes over both lines. The waits of that are over, and what was sent is forgotten.
    void EstablishOnLines()
    {
        Click("cmdEstablish");
        ASSERT_TRUE(Established) << Text("lblStatus") << bench->LastWords();
        Forget();
    }

    void Forget()
    {
        clock.Restart();
        m_since = clock.NowMicros();
    }

    /// What the station has sent since the last Forget, frame by frame.
    std::vector<std::string> ToMeter() const { return FramesTo(*bench, bench::Line::Meter, m_since); }
    std::vector<std::string> ToCalibrator() const { return FramesTo(*bench, bench::Line::Calibrator, m_since); }
    /// When it was sent, in milliseconds since then.
    std::vector<std::int64_t> TimesOf(const std::string &frame) const { return test::TimesOf(*bench, frame, m_since); }
    /// How often each line was opened.
    int MeterOpened() const { return lines->Opened(bench::Line::Meter); }
    int CalibratorOpened() const { return lines->Opened(bench::Line::Calibrator); }

    std::uint16_t WordOf(std::size_t word) const { return bench->Nvm().at(word); }

    /// Puts a probe in the place of a step's page until the test ends.
    void RegisterProbe(int stepId, std::function<void()> enter) { pageTables.steps[stepId].enter = std::move(enter); }
    void RegisterProbe(int stepId, std::function<void()> enter, std::function<bool(int position)> allowed)
    {
        RegisterProbe(stepId, std::move(enter));
        pageTables.steps[stepId].allowed = std::move(allowed);
    }

    Station station;
    VirtualClock &clock = station.clock;
    ScriptedOperator &person = station.person;
    std::unique_ptr<bench::Bench> bench;
    std::unique_ptr<BenchLines> lines;

    static constexpr int kRangeWord = 16;
    static constexpr int kBoardWord = 21;
    static constexpr int kTypeWord = 109;

private:
    PageTables m_registered = pageTables;  // the station's own, put back after the test
    std::int64_t m_since = 0;
};

}  // namespace ombrix::test
