#include "widgets/key_guard.h"

#include "platform/clock.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>

#include <optional>

namespace ombrix {
namespace {

bool PressesAButton(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space || key == Qt::Key_Select;
}

bool IsTheOperators(Qt::FocusReason reason)
{
    return reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

class KeyGuard : public QObject
{
public:
    explicit KeyGuard(QAbstractButton *button) : QObject(button)
    {
        button->installEventFilter(this);
        // A widget that goes off hands its focus on as if Tab had been pressed.
        QObject::connect(qApp, &QApplication::focusChanged, this, [this, button](QWidget *old, QWidget *now) {
            if (now == button && old != nullptr && !(old->isEnabled() && old->isVisible()))
                Deafen();
        });
    }

    void Deafen() { m_deaf.emplace(kDeafMs); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn && !IsTheOperators(static_cast<QFocusEvent *>(event)->reason()))
            Deafen();
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!PressesAButton(key->key()))
            return false;
        if (key->isAutoRepeat() || (m_deaf && !m_deaf->Passed()))
            return true;
        Deafen();
        return false;
    }

private:
    std::optional<Deadline> m_deaf;
};

}  // namespace

void GuardKeys(QAbstractButton *button)
{
    new KeyGuard(button);
}

void DeafenToKeys(QWidget *button)
{
    for (QObject *child : button->children()) {
        if (auto *guard = dynamic_cast<KeyGuard *>(child))
            guard->Deafen();
    }
}

}  // namespace ombrix
