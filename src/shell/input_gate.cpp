#include "shell/input_gate.h"

#include "shell/main_window.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>

#include <memory>
#include <vector>

namespace ombrix {
namespace {

constexpr char kKeptOpen[] = "keptOpen";

std::vector<QWidget *> gates;

bool IsInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

// What belongs to the box, or to no window of the station (a menu, a list that drops down), is free.
bool IsBarred(const QObject *target)
{
    for (const QObject *at = target; at; at = at->parent()) {
        if (at == gates.back() || at->property(kKeptOpen).toBool())
            return false;
        if (at == frmOmbrix)
            return true;
    }
    return false;
}

class Gatekeeper : public QObject
{
public:
    bool eventFilter(QObject *target, QEvent *event) override
    {
        if (gates.empty() || !IsInput(event->type()) || !IsBarred(target))
            return false;
        if (event->type() == QEvent::MouseButtonPress) {
            gates.back()->raise();
            gates.back()->activateWindow();
        }
        return true;
    }
};

std::unique_ptr<Gatekeeper> keeper;  // stands only while a box does: no event is asked for nothing

}  // namespace

void KeepOpen(QObject *widget)
{
    widget->setProperty(kKeptOpen, true);
}

InputGate::InputGate(QWidget *window)
{
    gates.push_back(window);
    if (keeper)
        return;
    keeper = std::make_unique<Gatekeeper>();
    qApp->installEventFilter(keeper.get());
}

InputGate::~InputGate()
{
    gates.pop_back();
    if (gates.empty())
        keeper.reset();
}

}  // namespace ombrix
