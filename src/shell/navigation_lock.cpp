#include "shell/navigation_lock.h"

#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/main_window.h"
#include "shell/setup_page.h"
#include "shell/step_buttons.h"

#include <QMainWindow>
#include <QPointer>
#include <QStackedWidget>

#include <utility>

namespace ombrix {
namespace {

int locks = 0;
bool focusWaits = false;
QPointer<QWidget> focusBefore;

bool FocusIsParked()
{
    const QWidget *focus = frmOmbrix->focusWidget();
    return focus == nullptr || focus == pageStack;
}

void ReturnFocus(QWidget *before)
{
    if (before && before->isEnabled() && before->isVisible())
        before->setFocus();
    else if (Established)
        FocusSteps();
    else
        FocusEstablish();
}

}  // namespace

NavigationLock::NavigationLock()
{
    if (++locks > 1)
        return;
    KeepFocusSafe();
    EnableSetupControls(false);
    EnableBoardChooser(false);
}

NavigationLock::~NavigationLock()
{
    if (--locks > 0)
        return;
    EnableSetupControls(true);
    EnableBoardChooser(true);
}

void KeepFocusSafe()
{
    if (focusWaits)
        return;
    focusWaits = true;
    focusBefore = frmOmbrix->focusWidget();
    pageStack->setFocus();
}

void GiveFocusBack()
{
    if (std::exchange(focusWaits, false) && FocusIsParked())
        ReturnFocus(focusBefore);
}

}  // namespace ombrix
