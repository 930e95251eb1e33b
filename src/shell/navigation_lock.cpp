#include "shell/navigation_lock.h"

#include "session/page_frame.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/main_window.h"
#include "shell/setup_page.h"
#include "shell/step_buttons.h"

#include <QMainWindow>
#include <QStackedWidget>

#include <exception>

namespace ombrix {
namespace {

int locks = 0;
bool pageHasSpoken = false;

// A button that goes off hands its focus to whatever comes next. Here it waits in a quiet place instead.
void ParkFocus()
{
    pageStack->setFocus();
}

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

NavigationLock::NavigationLock() : m_exceptions(std::uncaught_exceptions()), m_focus(frmOmbrix->focusWidget())
{
    ++locks;
    ParkFocus();
    EnableSteps(false);
    EnableSetupControls(false);
    EnableBoardChooser(false);
    pageHasSpoken = false;
}

NavigationLock::~NavigationLock()
{
    if (--locks > 0)
        return;
    EnableSetupControls(true);
    EnableBoardChooser(true);
    if (!pageHasSpoken || std::uncaught_exceptions() > m_exceptions)
        EnableSteps(Established);
    if (FocusIsParked())
        ReturnFocus(m_focus);
}

bool NavigationLock::Stands()
{
    return locks > 0;
}

void NavigationLock::PageHasSpoken()
{
    pageHasSpoken = true;
}

}  // namespace ombrix
