#include "shell/setup_options.h"

#include "links/output_switch.h"
#include "model/settings.h"
#include "session/journal.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/navigation_lock.h"
#include "shell/port_notes.h"
#include "shell/setup_page.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace ombrix {
namespace {

constexpr int kGroups = 4;

QFrame *shpAA = nullptr;
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

// Tab enters a group at the option in force; where none is, at the first.
void SetTabStops()
{
    for (QGroupBox *group : fraAA) {
        const auto options = group->findChildren<QRadioButton *>();
        const auto inForce =
            std::find_if(options.begin(), options.end(), [](auto *option) { return option->isChecked(); });
        QRadioButton *stop = inForce == options.end() ? options.first() : *inForce;
        for (QRadioButton *option : options)
            option->setFocusPolicy(option == stop ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void RecordChoices()
{
    Record("settings",
           {{"automatic", Automatic}, {"calibrator", CalPort}, {"meter", MeterPort}, {"switch", UseSwitch}});
}

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
        SetTabStops();
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
        RecordChoices();
        SetTabStops();
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

// ---- layout ----

void AddGroup(QBoxLayout *place, int index, const char *caption)
{
    fraAA[index] = Group(shpAA, Indexed("fraAA", index), caption);
    place->addWidget(fraAA[index]);
    new QHBoxLayout(fraAA[index]);
}

QVBoxLayout *AddColumn(int group)
{
    auto *column = new QVBoxLayout;
    column->setSpacing(2);
    qobject_cast<QHBoxLayout *>(fraAA[group]->layout())->addLayout(column, 1);
    return column;
}

QRadioButton *AddOption(int group, const char *name, const char *caption, Handler click)
{
    QRadioButton *option = Option(fraAA[group], name, caption, std::move(click));
    AddColumn(group)->addWidget(option);
    return option;
}

// With the device of its port below.
QRadioButton *AddPortOption(int group, const char *name, const char *caption, int port, Handler click)
{
    QRadioButton *option = Option(fraAA[group], name, caption, std::move(click));
    QVBoxLayout *column = AddColumn(group);
    column->addWidget(option);
    column->addWidget(AddPortNote(fraAA[group], option, port), 1);
    return option;
}

}  // namespace

QFrame *BuildSetupOptions(QFrame *page, QWidget *command)
{
    shpAA = Shape(page, "shpAA(0)");
    auto *rows = new QVBoxLayout(shpAA);
    DropPortNotes();
    AddGroup(rows, 0, "Mode");
    optAutomatic = AddOption(0, "optAutomatic", "Automatic", optAutomatic_Click);
    optManual = AddOption(0, "optManual", "Manual", optManual_Click);
    AddGroup(rows, 2, "Calibrator Communications");
    optCAL_COM1 = AddPortOption(2, "optCAL_COM1", "Calibrator on COM1", 1, optCAL_COM1_Click);
    optCAL_COM2 = AddPortOption(2, "optCAL_COM2", "Calibrator on COM2", 2, optCAL_COM2_Click);
    AddGroup(rows, 3, "Meter Communications");
    optDPM_COM1 = AddPortOption(3, "optDPM_COM1", "Meter on COM1", 1, optDPM_COM1_Click);
    optDPM_COM2 = AddPortOption(3, "optDPM_COM2", "Meter on COM2", 2, optDPM_COM2_Click);
    optDPM_CAL = AddPortOption(3, "optDPM_CAL", "Meter on Calibrator", 0, optDPM_CAL_Click);
    auto *last = new QHBoxLayout;  // the command stands beside the last group: a small screen holds the page then
    rows->addLayout(last);
    AddGroup(last, 1, "Use Meter2 As Output Switch");
    optSwYes = AddOption(1, "optSwYes", "Yes", [] { ChooseSwitch(true); });
    optSwNo = AddOption(1, "optSwNo", "No", [] { ChooseSwitch(false); });
    last->setStretch(0, 1);
    last->addWidget(command, 1, Qt::AlignHCenter | Qt::AlignBottom);
    QWidget::setTabOrder(optSwNo, command);
    return shpAA;
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
    SetTabStops();
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
    RecordChoices();
    HideStatus();
    ShowPortNotes();
    FocusEstablish();
}

void EnableSetupOptions(bool on)
{
    for (QGroupBox *group : fraAA)
        group->setEnabled(on);
}

void SetOptionGroupsVisible(bool on)
{
    shpAA->setVisible(on);
    for (QGroupBox *group : fraAA)
        group->setVisible(on);
}

}  // namespace ombrix
