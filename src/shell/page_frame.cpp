#include "session/page_frame.h"

#include "shell/main_window.h"
#include "shell/port_notes.h"
#include "shell/setup_page.h"

#include <QFrame>
#include <QMainWindow>
#include <QStackedWidget>

namespace ombrix {

void ShowPage(int index)
{
    if (!frmOmbrix || !PageFrame(index))
        return;
    pageStack->setCurrentIndex(index);
    HideConnectionDiagram();
    if (auto *values = frmOmbrix->findChild<QWidget *>("fraNVMemVals"))
        values->hide();
    if (index == kSetupPage)
        ShowPortNotes();
}

}  // namespace ombrix
