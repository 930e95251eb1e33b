// An operator who follows a script in the real window.
//
// The script is told first (Clicks, WaitsFor, Does ...) and then Runs. It acts from inside the pump, so it goes on
// while a procedure stands inside a handler. On the virtual clock waits take no time; on the real clock the script is
// looked at every few milliseconds. Widgets are found by objectName, array members as "cmdCalib(4)".
#pragma once

#include <QObject>
#include <QString>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

class QMessageBox;
class QWidget;

namespace ombrix::test {

class VirtualClock;

class ScriptedOperator
{
public:
    /// Without a virtual clock the script runs in real time.
    explicit ScriptedOperator(VirtualClock *clock = nullptr);
    ~ScriptedOperator();
    ScriptedOperator(const ScriptedOperator &) = delete;
    ScriptedOperator &operator=(const ScriptedOperator &) = delete;

    // ---- the script ----
    ScriptedOperator &Clicks(const std::string &name);
    ScriptedOperator &DoubleClicks(const std::string &name);
    ScriptedOperator &ClicksTab(int index);
    /// Row and column of a grid, data row 1 being row 0.
    ScriptedOperator &ClicksCell(const std::string &grid, int row, int column);
    /// Puts text into a field, key by key, in place of what stood there.
    ScriptedOperator &Types(const std::string &name, const std::string &text);
    /// A key to the widget that has the focus. Enter and Space come after the moment in which a button is deaf to them.
    ScriptedOperator &Presses(int key);
    /// The same with no moment between.
    ScriptedOperator &PressesAtOnce(int key);
    /// Clicks the button of the open message box that carries this caption.
    ScriptedOperator &AnswersBox(const std::string &caption);
    /// Types a path into the open file dialog and accepts it; "" cancels the dialog.
    ScriptedOperator &ChoosesFile(const std::string &path);
    /// Prints to a file in the open print dialog; "" cancels the dialog.
    ScriptedOperator &PrintsTo(const std::string &path);
    /// Until the widget is seen and enabled.
    ScriptedOperator &WaitsFor(const std::string &name);
    ScriptedOperator &WaitsForText(const std::string &name, const std::string &text);
    ScriptedOperator &WaitsUntil(const std::string &what, std::function<bool()> condition);
    ScriptedOperator &Waits(int ms);
    ScriptedOperator &Does(std::function<void()> action);
    /// The most time one step may take; a step that takes longer fails the script. 10 minutes at first.
    ScriptedOperator &Within(int seconds);

    /// Called for each message box, before OK is clicked. Without it a box stays until the script clicks it.
    std::function<void(const std::string &title, const std::string &text)> onBox;

    /// Follows the script to its end, and what it started to its end. A procedure that then still waits is unwound as
    /// by the end of the program. False, with a failure told, when a step never became possible.
    bool Runs();

    /// What went wrong, "" when all went well.
    const std::string &Trouble() const { return m_trouble; }

    // ---- what the operator sees ----
    static QWidget *Find(const std::string &name);
    static bool Sees(const std::string &name);
    static bool IsEnabled(const std::string &name);
    static bool HasFocus(const std::string &name);
    static bool IsOn(const std::string &name);
    static std::string Text(const std::string &name);
    static std::string Cell(const std::string &grid, int row, int column);
    static int Rows(const std::string &grid);
    static int Columns(const std::string &grid);
    /// The colour a shape or button is filled with, "#rrggbb".
    static std::string Fill(const std::string &name);
    /// The message box in front, null when none is open.
    static QMessageBox *Box();
    /// Text of the open message box, "" when none is open.
    static std::string BoxText();
    static std::string BoxTitle();
    /// A picture of the main window as it stands. False when it can't be had, also of a window that isn't painted.
    static bool TakesPicture(const QString &file);

private:
    struct Step {
        std::string what;
        std::function<bool()> ready;
        std::function<void()> action;  // empty for a pure wait
    };
    ScriptedOperator &Then(const std::string &what, std::function<bool()> ready, std::function<void()> action);
    bool Tick();
    static QWidget *Search(const std::string &name);
    void TicksLater();
    bool ObeysBox();
    void Fails(const std::string &why);
    std::string Waiting() const;

    VirtualClock *m_clock;
    QObject m_ticks;  // owns what is still to tick: nothing comes after the operator has gone
    std::deque<Step> m_script;
    std::int64_t m_limitMicros = 600'000'000;
    std::int64_t m_stepStart = 0;
    std::string m_trouble;
    bool m_running = false;
    bool m_ending = false;
    int m_depth = 0;  // handlers that the script's clicks have on the stack
};

}  // namespace ombrix::test
