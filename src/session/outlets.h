// How the modules below the window reach the operator. main fills them once; the defaults do nothing, so links and
// procedures run without a window.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace ombrix {

/// Danger levels of the output panel.
enum class Danger { Safe = 0, Warning = 1, Danger = 2 };

/// A line of a printed page, in a fixed pitch.
struct PrintedLine {
    std::string text;
    bool underlined = false;
};

/// Every outlet that asks returns when the operator has answered; events are delivered meanwhile. Where a box is taken
/// away by the end of the program, the answer is the careful one: not done, no, none.
struct Outlets {
    using Say = std::function<void(const std::string &text)>;
    using Ask = std::function<bool(const std::string &text, const std::string &title)>;

    // ---- what is shown ----

    /// lblOutput: what stands on the input terminals, e.g. "200.0 mV".
    Say showOutput = [](const std::string &) {};
    /// lblFlag and shpFlag.
    std::function<void(Danger level)> showDangerFlag = [](Danger) {};
    /// The alert over the whole width; "" takes it away.
    Say showAlert = [](const std::string &) {};
    /// lblSwitch: shows the simulated output switch; showSwitch(false) hides it.
    Say showSwitchText = [](const std::string &) {};
    std::function<void(bool on)> showSwitch = [](bool) {};
    /// The status line: what the station waits for; "" when it waits for nothing.
    Say showWait = [](const std::string &) {};
    /// A remark that stays on the status line until the next one.
    Say showRemark = [](const std::string &) {};
    /// A remark that no later one takes the place of; "" when it holds no more.
    Say keepRemark = [](const std::string &) {};
    /// A short sound.
    std::function<void()> beep = [] {};

    // ---- what is asked ----

    /// A message with an exclamation mark and OK alone, for something that the operator must do. False: Esc said that
    /// it was not done.
    Ask promptOperator = [](const std::string &, const std::string &) { return true; };
    /// A message with a stop sign and OK.
    std::function<void(const std::string &text, const std::string &title)> warnOperator = [](const std::string &,
                                                                                             const std::string &) {};
    /// A question with OK and Cancel; Esc is Cancel.
    Ask askOperator = [](const std::string &, const std::string &) { return false; };
    /// An Open dialog that begins at a file; `filter` as "Meter files (*.dpm)". The path, "" when it was cancelled.
    std::function<std::string(const std::string &title, const std::string &filter, const std::string &start)>
        chooseFile = [](const std::string &, const std::string &, const std::string &) { return std::string(); };
    /// The same for a file that may be new: readings will be written into it.
    std::function<std::string(const std::string &title, const std::string &filter, const std::string &start)> nameFile =
        [](const std::string &, const std::string &, const std::string &) { return std::string(); };
    /// A print dialog, then the page in 'Courier New' at `points`. "" when it was printed or cancelled, otherwise why it
    /// could not be.
    std::function<std::string(const std::string &title, const std::vector<PrintedLine> &lines, int points)> print =
        [](const std::string &, const std::vector<PrintedLine> &, int) { return std::string(); };
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
