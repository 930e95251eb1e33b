// What a page gets from the window around it, and what it gives: its builder and its steps.
//
// The shell defines the first group; records defines the diagrams. A page registers itself once at start, so nobody
// needs its header.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

class QFrame;

namespace ombrix {

constexpr int kPages = 19;  ///< fraCalib(0..18); 0 is empty, 1 is Setup, 4 is the range page

// ---- defined by the shell ----

/// Shows fraCalib(index) and hides the others, the diagrams and the values panel.
void ShowPage(int index);
/// Enables or disables the captioned step buttons and cmdSetup, and says whether a click on a tab is taken.
void EnableSteps(bool on);
/// Opens the next enabled calibration step, wrapping to position 0. Nothing behind the last calibration position.
void NextStep();
/// Marks a step button, -1 none.
void HighlightStep(int index);
/// Shows or hides the output panel's controls.
void ShowCalPanel(bool on);

// ---- defined by the diagrams ----

/// Shows input connector and jumper block for a row of the board's range list. Returns the cable message of an AC3
/// board when the cable changes, otherwise "".
std::string ShowConnectionDiagram(int row);
/// Hides both.
void HideConnectionDiagram();

// ---- the tables that pages fill ----

using StepEntry = std::function<void()>;

/// `entry` opens the page of each of these step ids.
void RegisterSteps(std::initializer_list<int> stepIds, const StepEntry &entry);
/// The entry of a step id, empty when no page has registered.
StepEntry EntryOfStep(int stepId);

/// `build` fills fraCalib(index), once, when the window is made.
void RegisterPage(int index, std::function<void(QFrame *page)> build);
std::function<void(QFrame *page)> BuilderOfPage(int index);

/// `prepare` makes a tab ready when a board is applied on it, after its step buttons are filled.
void RegisterTab(int tab, std::function<void()> prepare);
std::function<void()> PreparationOfTab(int tab);

/// A page's say in EnableSteps(true): a position for which it returns false stays off. All may be on at first.
extern std::function<bool(int position)> StepAllowed;

}  // namespace ombrix
