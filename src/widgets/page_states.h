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

struct Prompt {
    std::string text;
    bool trouble = false;  ///< in red
};

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
    QFrame *instruction = nullptr;  ///< shpInst(0), which shows the prompt
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
