#include "shell/simulation_switch.h"

#include "model/settings.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_dialog.h"
#include "shell/main_window.h"
#include "shell/navigation_lock.h"
#include "shell/port_notes.h"
#include "shell/quit.h"
#include "shell/setup_page.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

namespace ombrix {
namespace {

QFrame *shpSim = nullptr;
QLabel *lblSim = nullptr;

// The operator picks the simulated meter; the session follows at the next Establish or tab. Where a page has locked
// navigation, its meter is not changed beneath it.
void lblSim_DoubleClick()
{
    if (HardwareMode || (Established && !TabChangeAllowed))
        return;
    RunProcedure([] {
        const NavigationLock lock;
        ShowSCDialogFull = 0;
        AskBoard();
    });
}

}  // namespace

QWidget *BuildSimulationMark(QWidget *parent)
{
    auto *fraSim = new QFrame(parent);
    fraSim->setObjectName("fraSim");
    lblRev = Label(fraSim, "lblRev");
    lblRev->setAlignment(Qt::AlignCenter);
    lblRev->setMinimumWidth(lblRev->fontMetrics().horizontalAdvance("Rev A2"));
    shpSim = Shape(fraSim, "shpSim");
    SetFill(shpSim, Cyan());
    lblSim = Label(shpSim, "lblSim", "S");
    lblSim->setToolTip("Simulation: the station answers for meter and calibrator");
    QFont font = lblSim->font();
    font.setPointSize(font.pointSize() + 6);
    font.setBold(true);
    lblSim->setFont(font);
    auto *mark = new QHBoxLayout(shpSim);
    mark->setContentsMargins(8, 2, 8, 2);
    mark->addWidget(lblSim);
    mark->addWidget(Label(shpSim, "lblSimulated", "SIMULATED"));
    OnDoubleClick(lblSim, lblSim_DoubleClick);
    auto *row = new QHBoxLayout(fraSim);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(lblRev);
    row->addWidget(shpSim);
    return fraSim;
}

void ShowSimFlag(bool on)
{
    shpSim->setVisible(on);
    lblSim->setVisible(on);
}

void SwitchSimulation()
{
    if (!SimToggleAllowed)
        return;
    RunProcedure([] {
        const NavigationLock lock;  // what is clicked while the lines close would do nothing
        ReleaseLinks();
        ResetSession();
        if (HardwareMode)
            SetLearnedAside();
        HardwareMode = !HardwareMode;
        if (HardwareMode) {
            TakeLearnedBack();
            outlets.showSwitch(false);
        }
        ShowSimFlag(!HardwareMode);
        RealTimeDelays = HardwareMode;
        HideStatus();
        ShowPortNotes();
    });
}

}  // namespace ombrix
