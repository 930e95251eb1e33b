#include "shell/setup_page.h"

#include "links/calibrator.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/establish.h"
#include "shell/navigation_lock.h"
#include "shell/output_panel.h"
#include "shell/setup_options.h"
#include "shell/tab_strip.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace ombrix {
namespace {

QPushButton *cmdEstablish = nullptr;
QFrame *shpStatus = nullptr;
QLabel *lblStatus = nullptr;

void BuildStatus(QFrame *page)
{
    shpStatus = Shape(page, "shpStatus");
    lblStatus = Label(shpStatus, "lblStatus");
    lblStatus->setAlignment(Qt::AlignCenter);
    lblStatus->setWordWrap(true);
    QFont font = lblStatus->font();
    font.setPointSize(font.pointSize() + 4);
    lblStatus->setFont(font);
    auto *layout = new QVBoxLayout(shpStatus);
    layout->setContentsMargins(20, 10, 20, 10);
    layout->addWidget(lblStatus);
}

void BuildSetupPage(QFrame *page)
{
    QFrame *options = BuildSetupOptions(page);
    cmdEstablish = Button(page, "cmdEstablish", "Establish", cmdEstablish_Click);
    cmdEstablish->setMinimumSize(200, 44);
    BuildStatus(page);
    auto *column = new QVBoxLayout(page);
    column->addWidget(options);
    column->addSpacing(12);
    column->addWidget(cmdEstablish, 0, Qt::AlignHCenter);
    column->addSpacing(12);
    column->addWidget(shpStatus);
    column->addStretch(1);
}

}  // namespace

void RegisterSetupPage()
{
    RegisterPage(kSetupPage, BuildSetupPage);
}

void cmdSetup_Click()
{
    RunAfterStop([] {
        const NavigationLock lock;
        PutStripOnOpenTab();
        OpenSetup();
    });
}

void OpenSetup()
{
    RequestStop();
    ShowBoardChooser(false);
    if (Established)
        RemoveInput();
    HighlightStep(-1);
    SetSetupGroupsVisible(true);
    ShowOptionsInForce();
    ShowPage(kSetupPage);
    if (Established) {
        cmdEstablish->setEnabled(false);
    } else {
        HideStatus();
        FocusEstablish();
    }
}

void SetSetupGroupsVisible(bool on)
{
    SetOptionGroupsVisible(on);
    cmdEstablish->setVisible(on);
}

void EnableSetupControls(bool on)
{
    EnableSetupOptions(on);
    cmdEstablish->setEnabled(on && !Established);
}

void FocusEstablish()
{
    cmdEstablish->setFocus();
}

void ShowStatus(const std::string &text, const QColor &colour)
{
    SetFill(shpStatus, colour);
    lblStatus->setText(Caption(text));
    shpStatus->show();
    lblStatus->show();
}

void HideStatus()
{
    shpStatus->hide();
    lblStatus->hide();
}

void ResetSession()
{
    Established = false;
    cmdEstablish->setEnabled(true);
    UpdateNavigation();
    ClearOutputPanel();
}

}  // namespace ombrix
