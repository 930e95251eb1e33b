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
#include <functional>
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

// ---- a choice, and what the others become by it ----

constexpr int kOnCalibrator = 0;  // the meter's port

struct Choice {
    bool automatic = true;
    int calibrator = 2;  // its port, 0 without one
    int meter = 1;
};

int OtherPort(int port)
{
    return port == 1 ? 2 : 1;
}

// The session's, as the page shows it.
Choice InForce()
{
    if (!Automatic)
        return {false, 0, MeterPort == 1 ? 1 : 2};
    return {true, CalPort == 1 ? 1 : 2, MeterPort == kOnCalibrator || MeterPort == 1 ? MeterPort : 2};
}

void ShowChoice(const Choice &choice)
{
    const ScopedFlag muted(OptionEventsMuted);
    SetOption(optAutomatic, choice.automatic);
    SetOption(optManual, !choice.automatic);
    SetOption(optCAL_COM1, choice.calibrator == 1);
    SetOption(optCAL_COM2, choice.calibrator == 2);
    SetOption(optDPM_CAL, choice.meter == kOnCalibrator);
    SetOption(optDPM_COM1, choice.meter == 1);
    SetOption(optDPM_COM2, choice.meter == 2);
    SetTabStops();
}

// A changed mode or port costs the established session.
void TakeChoice(const Choice &choice)
{
    if (choice.calibrator == CalPort && choice.meter == MeterPort && choice.automatic == Automatic)
        return;
    ResetSession();
    CalPort = choice.calibrator;
    MeterPort = choice.meter;
    Automatic = choice.automatic;
    RecordChoices();
    HideStatus();
    ShowPortNotes();
    FocusEstablish();
}

void Choose(const std::function<void(Choice &)> &change)
{
    if (OptionEventsMuted)
        return;
    RunProcedure([&change] {
        Choice choice = InForce();
        change(choice);
        ShowChoice(choice);
        TakeChoice(choice);
    });
}

void ChooseAutomatic(Choice &choice)
{
    choice.automatic = true;
    if (choice.calibrator == 0 || choice.meter == choice.calibrator)
        choice.calibrator = OtherPort(choice.meter);
}

void ChooseManual(Choice &choice)
{
    choice = {false, 0, choice.meter == kOnCalibrator ? 1 : choice.meter};
}

void ChooseCalibrator(Choice &choice, int port)
{
    if (!choice.automatic || choice.meter == port)
        choice.meter = OtherPort(port);
    choice.automatic = true;
    choice.calibrator = port;
}

void ChooseMeter(Choice &choice, int port)
{
    choice.meter = port;
    if (choice.calibrator == port)
        choice.calibrator = OtherPort(port);
}

void ChooseMeterOnCalibrator(Choice &choice)
{
    choice.calibrator = choice.automatic ? choice.calibrator : 1;
    choice.automatic = true;
    choice.meter = kOnCalibrator;
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
    optAutomatic = AddOption(0, "optAutomatic", "Automatic", [] { Choose(ChooseAutomatic); });
    optManual = AddOption(0, "optManual", "Manual", [] { Choose(ChooseManual); });
    AddGroup(rows, 2, "Calibrator Communications");
    optCAL_COM1 = AddPortOption(2, "optCAL_COM1", "Calibrator on COM1", 1,
                                [] { Choose([](Choice &choice) { ChooseCalibrator(choice, 1); }); });
    optCAL_COM2 = AddPortOption(2, "optCAL_COM2", "Calibrator on COM2", 2,
                                [] { Choose([](Choice &choice) { ChooseCalibrator(choice, 2); }); });
    AddGroup(rows, 3, "Meter Communications");
    optDPM_COM1 = AddPortOption(3, "optDPM_COM1", "Meter on COM1", 1,
                                [] { Choose([](Choice &choice) { ChooseMeter(choice, 1); }); });
    optDPM_COM2 = AddPortOption(3, "optDPM_COM2", "Meter on COM2", 2,
                                [] { Choose([](Choice &choice) { ChooseMeter(choice, 2); }); });
    optDPM_CAL =
        AddPortOption(3, "optDPM_CAL", "Meter on Calibrator", kOnCalibrator, [] { Choose(ChooseMeterOnCalibrator); });
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
    {
        const ScopedFlag muted(OptionEventsMuted);
        SetOption(UseSwitch ? optSwYes : optSwNo, true);
    }
    ShowChoice(InForce());
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
