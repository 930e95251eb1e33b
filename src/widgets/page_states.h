// The states of a page as a table: what the operator can do in each, where the keys go, what the page says.
#pragma once

#include "session/procedure.h"

#include <string>
#include <utility>
#include <vector>

class QAbstractButton;
class QFrame;
class QWidget;

namespace ombrix {

/// What a prompt says by its colour when it tells no trouble: what to do, what is in work (cyan), what went well (green).
enum class Tone { Asks, Works, Well };

struct Prompt {
    std::string text;
    bool trouble = false;  ///< in red
    Tone tone = Tone::Asks;
};

/// What a page says when a run-time fault has ended its work.
Prompt PromptOfFault(const std::string &words);
/// And when the calibrator has refused a value that two readings are compared at, or doesn't operate.
Prompt PromptOfRefusal(const std::string &value);

struct PageState {
    int state;
    std::vector<QWidget *> on;  ///< all other controls of the table are off
    QWidget *focus;             ///< null: nothing of the page has the keys
    Prompt prompt;
    std::vector<QWidget *> away = {};                                       ///< not to be seen
    std::vector<std::pair<QAbstractButton *, const char *>> captions = {};  ///< of buttons that change theirs
    Navigation navigation = Navigation::Free;
    bool keysStay = false;  ///< a control that stays on keeps the keys; without one that has them, they go to `focus`
};

/// A page's table and where the page stands in it. Its controls are all that stand in a row.
struct PageStates {
    QFrame *page = nullptr;
    QFrame *instruction = nullptr;  ///< the status bar that shows the prompt: shpInst(0) mostly
    std::vector<PageState> rows;
    int now = -1;
};

/// Draws a state: controls, captions, focus, prompt, navigation.
void ShowPageState(PageStates &states, int state);
/// The same with another prompt than the table's.
void ShowPageState(PageStates &states, int state, const Prompt &prompt);
/// Another prompt in the present state.
void ShowPrompt(const PageStates &states, const Prompt &prompt);

}  // namespace ombrix
