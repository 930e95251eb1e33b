#include "shell/port_notes.h"

#include "model/settings.h"
#include "platform/port_check.h"
#include "session/state.h"
#include "widgets/widgets.h"

#include <QApplication>
#include <QLabel>
#include <QRadioButton>

#include <array>
#include <vector>

namespace ombrix {
namespace {

struct PortNote {
    QRadioButton *option;
    int port;
    QLabel *label;
};
std::vector<PortNote> portNotes;

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

}  // namespace

QColor TroubleColour()
{
    return IsDark(QApplication::palette()) ? QColor(255, 150, 140) : QColor(170, 0, 0);
}

void DropPortNotes()
{
    portNotes.clear();
}

QLabel *AddPortNote(QWidget *parent, QRadioButton *option, int port)
{
    QLabel *label = Label(parent, Indexed("lblPort", static_cast<int>(portNotes.size())));
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    label->setWordWrap(true);
    label->setContentsMargins(20, 0, 0, 0);  // under the option's words
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    portNotes.push_back({option, port, label});
    return label;
}

void ShowPortNotes()
{
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

}  // namespace ombrix
