#include "widgets/page_states.h"

#include "widgets/page_kit.h"
#include "widgets/widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFrame>

#include <algorithm>
#include <stdexcept>

namespace ombrix {
namespace {

bool Holds(const std::vector<QWidget *> &widgets, const QWidget *wanted)
{
    return std::find(widgets.begin(), widgets.end(), wanted) != widgets.end();
}

const PageState &RowOf(const PageStates &states, int state)
{
    for (const PageState &row : states.rows)
        if (row.state == state)
            return row;
    throw std::logic_error("a page state that stands in no row");
}

QColor ColourOf(const Prompt &prompt)
{
    if (prompt.trouble)
        return Red();
    return prompt.tone == Tone::Works ? Cyan() : prompt.tone == Tone::Well ? Green() : InfoBackground();
}

void ShowControls(const PageStates &states, const PageState &now)
{
    for (const PageState &row : states.rows) {
        for (QWidget *control : row.on)
            control->setEnabled(Holds(now.on, control));
        for (QWidget *control : row.away)
            control->setVisible(!Holds(now.away, control));
    }
    for (const auto &[button, caption] : now.captions)
        button->setText(caption);
}

}  // namespace

Prompt PromptOfFault(const std::string &words)
{
    return {"A fault ended this: " + words, true};
}

Prompt PromptOfRefusal(const std::string &value)
{
    return {"The calibrator has not confirmed " + value + ":\r\nlook at it, then try again", true};
}

void ShowPageState(PageStates &states, int state)
{
    ShowPageState(states, state, RowOf(states, state).prompt);
}

void ShowPageState(PageStates &states, int state, const Prompt &prompt)
{
    const PageState &row = RowOf(states, state);
    states.now = state;
    QWidget *keys = QApplication::focusWidget();
    const bool stays = row.keysStay && Holds(row.on, keys);
    if (!stays && states.page->isAncestorOf(keys))
        DropFocus(states.page);  // else a button that goes off hands the keys to its neighbour
    ShowControls(states, row);
    if (!stays && row.focus)
        EnableAndFocus(row.focus);
    ShowPrompt(states, prompt);
    SetNavigation(row.navigation);
}

void ShowPrompt(const PageStates &states, const Prompt &prompt)
{
    ShowInstruction(states.instruction, prompt.text, ColourOf(prompt));
}

}  // namespace ombrix
