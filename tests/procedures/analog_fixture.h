// The analog output's page on the bench, whose output meter the operator reads.
#pragma once

#include "calibration/analog_output.h"
#include "platform/text.h"
#include "session/journal.h"
#include "support/page_test.h"

#include <string>
#include <vector>

namespace ombrix::test {

inline constexpr int kVoltOffsetAt = 2;
inline constexpr int kVoltageGainAt = 3;
inline constexpr int kCurrentOffsetAt = 4;
inline constexpr int kCurrentGainAt = 5;
inline constexpr int kMinus10VoltsAt = 7;
inline constexpr int kSecondVoltOffsetAt = 10;
inline constexpr int kInitNvmemAt = 0;
inline constexpr int kReCalibrateAt = 15;
inline constexpr int kZeroInitFileAt = 16;

class AnalogPages : public WiredPage
{
protected:
    /// A DC meter or a counter, established, the AnaCal tab open.
    void Opens(int board = kDc)
    {
        Stands({.board = board, .kind = board == kVf ? kCtr : kDpm, .xmtr = board == kDc});
        Establishes();
        before = bench->Nvm();
        OpensTab();
    }
    void OpensTab()
    {
        person->ClicksTab(kTabAnaCal).WaitsFor("cmdUp");
        ASSERT_TRUE(person->Runs());
        Forget();
    }
    void OpensPoint(int position)
    {
        person->Clicks(StepButton(position)).WaitsFor("txtRead");
        ASSERT_TRUE(person->Runs());
    }
    void Types(const std::string &text)
    {
        person->Types("txtRead", text).PressesAtOnce(Qt::Key_Return).WaitsFor("txtRead");
        ASSERT_TRUE(person->Runs());
    }
    /// What the output meter shows, as the operator writes it down.
    std::string Shown(int connector = 1) const { return Format(bench->AnalogOut(connector).value, 2); }
    /// Chooses what is in the meter, and waits until it is told so.
    void Chooses(const std::string &option)
    {
        person->Clicks(option).WaitsFor("cmdUp");
        ASSERT_TRUE(person->Runs());
    }
    void Leaves(const std::string &button)
    {
        person->Clicks(button).WaitsUntil("the page is left", [] { return IsEnabled("cmdSetup"); });
        ASSERT_TRUE(person->Runs());
    }
    /// Answers the cable's prompt in a script.
    void ConnectsTheCable() { person->WaitsFor("cmdModal").Clicks("cmdModal"); }

    /// The events of one kind among those that were told.
    static std::vector<JournalEvent> Of(const std::vector<JournalEvent> &events, const std::string &kind)
    {
        std::vector<JournalEvent> found;
        for (const JournalEvent &event : events)
            if (event.kind == kind)
                found.push_back(event);
        return found;
    }

    bench::Words before{};  ///< the meter's memory before the tab was opened
};

}  // namespace ombrix::test
