#include "shell/output_panel.h"

#include "session/state.h"
#include "shell/simulation_switch.h"
#include "widgets/readout.h"
#include "widgets/widgets.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

namespace ombrix {
namespace {

QPointer<QFrame> fraCalOut;
QLabel *lblCalOut = nullptr;
QFrame *shpOutput = nullptr;
QLabel *lblOutput = nullptr;
QFrame *shpFlag = nullptr;
QLabel *lblFlag = nullptr;
QLabel *lblAssumed = nullptr;
QLabel *lblSwitch = nullptr;

struct Flag {
    const char *word;
    QColor colour;
};

Flag FlagOf(Danger level)
{
    switch (level) {
    case Danger::Safe:
        return {"SAFE", Green()};
    case Danger::Warning:
        return {"WARNING", Yellow()};
    case Danger::Danger:
        break;
    }
    return {"DANGER", Red()};
}

QColor OutputColour()
{
    return QApplication::palette().color(QPalette::Base);
}

// A label in the middle of its shape, wide enough for `widest` so that the panel stands still.
QLabel *LargeLabel(QFrame *shape, const QString &name, const QString &widest, bool bold)
{
    QLabel *label = Label(shape, name);
    QFont font = label->font();
    font.setPointSize(kRoomPoints);
    font.setBold(bold);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    label->setMinimumWidth(QFontMetrics(font).horizontalAdvance(widest));
    auto *layout = new QHBoxLayout(shape);
    layout->setContentsMargins(12, 2, 12, 2);
    layout->addWidget(label);
    return label;
}

// Hidden, it keeps its room, so that nothing around it moves.
void KeepRoom(QWidget *widget)
{
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

void ShowAssumed()
{
    lblAssumed->setVisible(!Automatic && !lblCalOut->isHidden());
}

}  // namespace

QWidget *BuildOutputPanel(QWidget *parent)
{
    fraCalOut = new QFrame(parent);
    fraCalOut->setObjectName("fraCalOut");
    lblCalOut = Label(fraCalOut, "lblCalOut", "Calibrator Output");
    lblCalOut->setWordWrap(true);
    OnDoubleClick(lblCalOut, SwitchSimulation);
    lblAssumed = Label(fraCalOut, "lblAssumed", "(assumed)");
    lblSwitch = Label(fraCalOut, "lblSwitch");
    shpOutput = Shape(fraCalOut, "shpOutput");
    lblOutput = LargeLabel(shpOutput, "lblOutput", "-200.0 mV", false);
    shpFlag = Shape(fraCalOut, "shpFlag");
    lblFlag = LargeLabel(shpFlag, "lblFlag", "WARNING", true);

    auto *captions = new QVBoxLayout;
    captions->setSpacing(0);
    captions->addWidget(lblCalOut);
    captions->addWidget(lblAssumed);
    captions->addWidget(lblSwitch);
    auto *layout = new QHBoxLayout(fraCalOut);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(captions);
    layout->addWidget(shpOutput);
    layout->addWidget(shpFlag);
    for (QWidget *widget :
         {static_cast<QWidget *>(lblAssumed), static_cast<QWidget *>(lblSwitch), static_cast<QWidget *>(fraCalOut)})
        KeepRoom(widget);
    ClearOutputPanel();
    return fraCalOut;
}

void ShowOutput(const std::string &text)
{
    if (!fraCalOut)
        return;
    lblOutput->setText(Caption(text));
    ShowAssumed();
}

void ShowDangerFlag(Danger level)
{
    if (!fraCalOut)
        return;
    const Flag flag = FlagOf(level);
    lblFlag->setText(flag.word);
    SetFill(shpFlag, flag.colour);
}

void ShowSwitchText(const std::string &text)
{
    if (fraCalOut)
        lblSwitch->setText(Caption(text));
}

void ShowSwitch(bool on)
{
    if (fraCalOut)
        lblSwitch->setVisible(on);
}

void ClearOutputPanel()
{
    if (!fraCalOut)
        return;
    lblOutput->clear();
    lblFlag->clear();
    SetFill(shpOutput, OutputColour());
    SetFill(shpFlag, OutputColour());
}

void HideAssumed()
{
    if (fraCalOut)
        lblAssumed->hide();
}

void ShowPanel(bool on)
{
    if (!fraCalOut)
        return;
    for (QWidget *control : {static_cast<QWidget *>(lblCalOut), static_cast<QWidget *>(shpOutput),
                             static_cast<QWidget *>(shpFlag), static_cast<QWidget *>(lblAssumed)})
        control->setVisible(on);
    ShowAssumed();
    fraCalOut->setVisible(on);
}

}  // namespace ombrix
