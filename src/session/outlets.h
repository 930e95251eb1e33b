// How the modules below the window reach the operator. main fills them once; the defaults do nothing, so links and
// procedures run without a window.
#pragma once

#include <functional>
#include <string>

namespace ombrix {

/// Danger levels of the output panel.
enum class Danger { Safe = 0, Warning = 1, Danger = 2 };

struct Outlets {
    /// lblOutput: what stands on the input terminals, e.g. "200.0 mV".
    std::function<void(const std::string &text)> showOutput = [](const std::string &) {};
    /// lblFlag and shpFlag.
    std::function<void(Danger level)> showDangerFlag = [](Danger) {};
    /// A message with an exclamation mark and OK alone. Returns when the operator has confirmed.
    std::function<void(const std::string &text, const std::string &title)> promptOperator = [](const std::string &,
                                                                                               const std::string &) {};
    /// The same with a stop sign.
    std::function<void(const std::string &text, const std::string &title)> warnOperator = [](const std::string &,
                                                                                             const std::string &) {};
    /// lblSwitch: shows the simulated output switch; showSwitch(false) hides it.
    std::function<void(const std::string &text)> showSwitchText = [](const std::string &) {};
    std::function<void(bool on)> showSwitch = [](bool) {};
    /// The status line: what the station waits for; "" when it waits for nothing.
    std::function<void(const std::string &text)> showWait = [](const std::string &) {};
    /// A remark that stays on the status line until the next one.
    std::function<void(const std::string &text)> showRemark = [](const std::string &) {};
    /// A remark that no later one takes the place of; "" when it holds no more.
    std::function<void(const std::string &text)> keepRemark = [](const std::string &) {};
};

extern Outlets outlets;

/// While one stands, the status line says what is waited for; then what the wait around it says.
class WaitNote
{
public:
    explicit WaitNote(const char *text);
    ~WaitNote();
    WaitNote(const WaitNote &) = delete;
    WaitNote &operator=(const WaitNote &) = delete;

private:
    const char *m_before;
};

}  // namespace ombrix
