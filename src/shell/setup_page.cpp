#include "shell/setup_page.h"

#include "links/calibrator.h"
#include "links/output_switch.h"
#include "model/settings.h"
#include "platform/port_check.h"
#include "platform/widgets.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/establish.h"
#include "shell/navigation_lock.h"
#include "shell/output_panel.h"
#include "shell/step_buttons.h"
#include "shell/tab_strip.h"

#include <QApplication>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>

#include <array>
#include <vector>

namespace ombrix {
namespace {

constexpr int kGroups = 4;

QPointer<QFrame> shpAA;  // null as long as no page stands
std::array<QGroupBox *, kGroups> fraAA{};
QRadioButton *optAutomatic = nullptr;
QRadioButton *optManual = nullptr;
QRadioButton *optCAL_COM1 = nullptr;
QRadioButton *optCAL_COM2 = nullptr;
QRadioButton *optDPM_COM1 = nullptr;
QRadioButton *optDPM_COM2 = nullptr;
QRadioButton *optDPM_CAL = nullptr;
QRadioButton *optSwYes = nullptr;
QRadioButton *optSwNo = nullptr;
QPushButton *cmdEstablish = nullptr;
QFrame *shpStatus = nullptr;
QLabel *lblStatus = nullptr;

// The small text under an option that stands for a port; port 0 is the calibrator's UUT port.
struct PortNote {
    QRadioButton *option;
    int port;
    QLabel *label;
};
std::vector<PortNote> portNotes;

// ---- options ----

// A choice of the operator: makes the other options fit, then takes them all over.
void Choose(void (*fitOthers)())
{
    if (OptionEventsMuted)
        return;
    RunProcedure([fitOthers] {
        {
            const ScopedFlag muted(OptionEventsMuted);
            fitOthers();
        }
        ApplySetupOptions();
    });
}

void optAutomatic_Click()
{
    Choose([] {
        if (optDPM_COM1->isChecked())
            SetOption(optCAL_COM2, true);
        else if (optDPM_COM2->isChecked())
            SetOption(optCAL_COM1, true);
    });
}

void optManual_Click()
{
    Choose([] {
        SetOption(optCAL_COM1, false);
        SetOption(optCAL_COM2, false);
        if (optDPM_CAL->isChecked())
            SetOption(optDPM_COM1, true);
    });
}

// The calibrator goes to one port: the meter, if it stood there, to the other.
void MoveMeter(QRadioButton *from, QRadioButton *to)
{
    if (optManual->isChecked()) {
        SetOption(optAutomatic, true);
        SetOption(to, true);
    } else if (from->isChecked()) {
        SetOption(to, true);
    }
}

void optCAL_COM1_Click()
{
    Choose([] { MoveMeter(optDPM_COM1, optDPM_COM2); });
}

void optCAL_COM2_Click()
{
    Choose([] { MoveMeter(optDPM_COM2, optDPM_COM1); });
}

void optDPM_CAL_Click()
{
    Choose([] {
        if (optManual->isChecked()) {
            SetOption(optAutomatic, true);
            SetOption(optCAL_COM1, true);
        }
    });
}

void optDPM_COM1_Click()
{
    Choose([] {
        if (optCAL_COM1->isChecked())
            SetOption(optCAL_COM2, true);
    });
}

void optDPM_COM2_Click()
{
    Choose([] {
        if (optCAL_COM2->isChecked())
            SetOption(optCAL_COM1, true);
    });
}

void ChooseSwitch(bool use)
{
    if (OptionEventsMuted)
        return;
    RunProcedure([use] {
        UseSwitch = use;
        if (!use)
            outlets.showSwitch(false);
        if (!Established)
            return;
        const NavigationLock lock;
        if (use)
            OpenOutputSwitch();
        SaveCommSettings();
    });
}

void ShowOptionsInForce()
{
    const ScopedFlag muted(OptionEventsMuted);
    for (QRadioButton *option : {optManual, optCAL_COM1, optCAL_COM2, optDPM_CAL, optDPM_COM1, optDPM_COM2})
        SetOption(option, false);
    SetOption(UseSwitch ? optSwYes : optSwNo, true);
    if (Automatic) {
        SetOption(optAutomatic, true);
        SetOption(CalPort == 1 ? optCAL_COM1 : optCAL_COM2, true);
    } else {
        SetOption(optManual, true);
    }
    if (Automatic && MeterPort == 0)
        SetOption(optDPM_CAL, true);
    else
        SetOption(MeterPort == 1 ? optDPM_COM1 : optDPM_COM2, true);
}

// ---- layout ----

QGridLayout *AddGroup(int index, const char *caption)
{
    fraAA[index] = Group(shpAA, Indexed("fraAA", index), caption);
    shpAA->layout()->addWidget(fraAA[index]);
    auto *grid = new QGridLayout(fraAA[index]);
    grid->setVerticalSpacing(2);
    grid->setRowStretch(1, 1);
    return grid;
}

QRadioButton *AddOption(int group, const char *name, const char *caption, Handler click)
{
    auto *grid = qobject_cast<QGridLayout *>(fraAA[group]->layout());
    const int column = grid->count();
    QRadioButton *option = Option(fraAA[group], name, caption, std::move(click));
    grid->addWidget(option, 0, column);
    grid->setColumnStretch(column, 1);
    return option;
}

void AddPortNote(int group, int column, QRadioButton *option, int port)
{
    QLabel *label = Label(fraAA[group], Indexed("lblPort", static_cast<int>(portNotes.size())));
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    label->setWordWrap(true);
    label->setContentsMargins(20, 0, 0, 0);  // under the option's words
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    qobject_cast<QGridLayout *>(fraAA[group]->layout())->addWidget(label, 1, column);
    portNotes.push_back({option, port, label});
}

void BuildGroups(QFrame *page)
{
    shpAA = Shape(page, "shpAA(0)");
    new QVBoxLayout(shpAA);
    AddGroup(0, "Mode");
    optAutomatic = AddOption(0, "optAutomatic", "Automatic", optAutomatic_Click);
    optManual = AddOption(0, "optManual", "Manual", optManual_Click);
    AddGroup(2, "Calibrator Communications");
    optCAL_COM1 = AddOption(2, "optCAL_COM1", "Calibrator on COM1", optCAL_COM1_Click);
    optCAL_COM2 = AddOption(2, "optCAL_COM2", "Calibrator on COM2", optCAL_COM2_Click);
    AddGroup(3, "Meter Communications");
    optDPM_COM1 = AddOption(3, "optDPM_COM1", "Meter on COM1", optDPM_COM1_Click);
    optDPM_COM2 = AddOption(3, "optDPM_COM2", "Meter on COM2", optDPM_COM2_Click);
    optDPM_CAL = AddOption(3, "optDPM_CAL", "Meter on Calibrator", optDPM_CAL_Click);
    AddGroup(1, "Use Meter2 As Output Switch");
    optSwYes = AddOption(1, "optSwYes", "Yes", [] { ChooseSwitch(true); });
    optSwNo = AddOption(1, "optSwNo", "No", [] { ChooseSwitch(false); });
    portNotes.clear();
    AddPortNote(2, 0, optCAL_COM1, 1);
    AddPortNote(2, 1, optCAL_COM2, 2);
    AddPortNote(3, 0, optDPM_COM1, 1);
    AddPortNote(3, 1, optDPM_COM2, 2);
    AddPortNote(3, 2, optDPM_CAL, 0);
}

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
    BuildGroups(page);
    cmdEstablish = Button(page, "cmdEstablish", "Establish", cmdEstablish_Click);
    cmdEstablish->setMinimumSize(200, 44);
    BuildStatus(page);
    auto *column = new QVBoxLayout(page);
    column->addWidget(shpAA);
    column->addSpacing(12);
    column->addWidget(cmdEstablish, 0, Qt::AlignHCenter);
    column->addSpacing(12);
    column->addWidget(shpStatus);
    column->addStretch(1);
}

// ---- port notes ----

std::string TroubleOf(int port)
{
    const std::string device = PortDevice(port);
    if (SameDevice(device, PortDevice(3 - port)))
        return "COM1 and COM2 lead to one device: name another in section Ports of Ombrix.ini.";
    return PortTrouble(device);
}

struct PortState {
    std::string text;
    bool trouble = false;
};

PortState StateOfPort(int port)
{
    if (!HardwareMode)
        return {"simulated"};
    if (port == 0)
        return {"through the calibrator's UUT port"};
    const std::string trouble = TroubleOf(port);
    const std::string device = PortDevice(port);
    return trouble.empty() ? PortState{device} : PortState{device + "\r\n" + trouble, true};
}

QColor TroubleColour()
{
    return IsDark(QApplication::palette()) ? QColor(255, 150, 140) : QColor(170, 0, 0);
}

}  // namespace

void RegisterSetupPage()
{
    RegisterPage(kSetupPage, BuildSetupPage);
}

void ShowPortNotes()
{
    if (!shpAA)
        return;
    const std::array<PortState, 3> states = {StateOfPort(0), StateOfPort(1), StateOfPort(2)};
    for (const PortNote &note : portNotes) {
        const PortState &state = states[note.port];
        note.label->setText(Caption(state.text));
        QPalette palette;  // trouble matters on the port that is chosen
        if (state.trouble && note.option->isChecked())
            palette.setColor(QPalette::Active, QPalette::WindowText, TroubleColour());
        note.label->setPalette(palette);
    }
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

void ApplySetupOptions()
{
    int cal = 0;
    if (optCAL_COM1->isChecked())
        cal = 1;
    else if (optCAL_COM2->isChecked())
        cal = 2;
    int meter = 2;
    if (optDPM_CAL->isChecked())
        meter = 0;
    else if (optDPM_COM1->isChecked())
        meter = 1;
    const bool automatic = optAutomatic->isChecked();
    if (cal == CalPort && meter == MeterPort && automatic == Automatic)
        return;
    ResetSession();
    CalPort = cal;
    MeterPort = meter;
    Automatic = automatic;
    HideStatus();
    ShowPortNotes();
    FocusEstablish();
}

void SetSetupGroupsVisible(bool on)
{
    shpAA->setVisible(on);
    for (QGroupBox *group : fraAA)
        group->setVisible(on);
    cmdEstablish->setVisible(on);
}

void EnableSetupControls(bool on)
{
    if (!shpAA)
        return;
    for (QGroupBox *group : fraAA)
        group->setEnabled(on);
    cmdEstablish->setEnabled(on && !Established);
}

void FocusEstablish()
{
    if (shpAA)
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
    if (!shpAA)
        return;
    shpStatus->hide();
    lblStatus->hide();
}

void ResetSession()
{
    Established = false;
    if (shpAA)
        cmdEstablish->setEnabled(true);
    EnableSteps(false);
    ClearOutputPanel();
}

}  // namespace ombrix
