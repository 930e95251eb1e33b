#include "shell/page_frame.h"

#include "session/page_frame.h"
#include "shell/main_window.h"
#include "shell/output_panel.h"
#include "shell/port_notes.h"
#include "shell/setup_page.h"
#include "shell/step_buttons.h"
#include "shell/trace_window.h"

#include <QFrame>
#include <QStackedWidget>

namespace ombrix {
namespace {

void BringToFront(int index)
{
    if (!PageFrame(index))
        return;
    FillPageFrame(index);
    pageStack->setCurrentIndex(index);
    HideConnectionDiagram();
    HideFileValues();
    if (index == kSetupPage)
        ShowPortNotes();
}

}  // namespace

void FillFrameHooks()
{
    frameHooks.fillPage = FillPageFrame;
    frameHooks.showPage = BringToFront;
    frameHooks.openStep = EnterAllowedStep;
    frameHooks.openNextStep = EnterNextStep;
    frameHooks.highlightStep = MarkStep;
    frameHooks.showCalPanel = ShowPanel;
    frameHooks.enableSteps = EnableSteps;
    frameHooks.procedureStands = BarSave;
}

}  // namespace ombrix
