#include "widgets/widgets.h"

#include "platform/fault.h"
#include "widgets/key_guard.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QMouseEvent>
#include <QPalette>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>

#include <utility>

namespace ombrix {
namespace {

// Joins a click to its handler. Only the operator's clicks arrive: code that sets a button calls no handler.
template <class Widget> Widget *Clickable(Widget *widget, const QString &name, Handler click)
{
    widget->setObjectName(name);
    if (click)
        QObject::connect(widget, &QAbstractButton::clicked, widget, [click = std::move(click)] { RunHandler(click); });
    return widget;
}

QColor TextOn(const QColor &fill)
{
    // Perceived brightness by the weights of ITU-R BT.601.
    const double brightness = 0.299 * fill.red() + 0.587 * fill.green() + 0.114 * fill.blue();
    return brightness > 127 ? Qt::black : Qt::white;
}

// A push button paints its own face; filled behind it as well, its round corners would turn square.
bool PaintsItsFace(const QWidget *widget)
{
    return qobject_cast<const QPushButton *>(widget) != nullptr;
}

class ClickFilter : public QObject
{
public:
    ClickFilter(QObject *parent, QEvent::Type click, Handler handler)
        : QObject(parent), m_click(click), m_handler(std::move(handler))
    {}

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != m_click || static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
            return false;
        RunHandler(m_handler);
        return true;
    }

private:
    QEvent::Type m_click;
    Handler m_handler;
};

// Clicks at once, where the toolkit's own shortcut of a button would first show it pressed for a while. The focus goes
// along, so that a field that is left this way is left before the click.
void AddShortcut(QPushButton *button, const QString &keys)
{
    auto *shortcut = new QShortcut(QKeySequence(keys), button);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut, &QShortcut::activated, button, [button] {
        if (button->focusPolicy() != Qt::NoFocus)
            button->setFocus(Qt::ShortcutFocusReason);
        button->click();
    });
    button->setToolTip(keys);
}

}  // namespace

QString Caption(const std::string &text)
{
    return QString::fromStdString(text).replace("\r\n", "\n");
}

QString Indexed(const char *name, int index)
{
    return QString("%1(%2)").arg(name).arg(index);
}

QPushButton *Button(QWidget *parent, const QString &name, const std::string &caption, Handler click,
                    const char *shortcut)
{
    auto *button = Clickable(new QPushButton(Caption(caption), parent), name, std::move(click));
    button->setAutoDefault(true);  // Enter works the focused button, as Space does
    GuardKeys(button);
    if (*shortcut != '\0')
        AddShortcut(button, shortcut);
    return button;
}

QRadioButton *Option(QWidget *parent, const QString &name, const std::string &caption, Handler click)
{
    return Clickable(new QRadioButton(Caption(caption), parent), name, std::move(click));
}

QCheckBox *Check(QWidget *parent, const QString &name, const std::string &caption, Handler click)
{
    return Clickable(new QCheckBox(Caption(caption), parent), name, std::move(click));
}

QLabel *Label(QWidget *parent, const QString &name, const std::string &text)
{
    auto *label = new QLabel(Caption(text), parent);
    label->setObjectName(name);
    return label;
}

QFrame *Shape(QWidget *parent, const QString &name)
{
    auto *shape = new QFrame(parent);
    shape->setObjectName(name);
    shape->setFrameShape(QFrame::StyledPanel);
    return shape;
}

QGroupBox *Group(QWidget *parent, const QString &name, const std::string &caption)
{
    auto *group = new QGroupBox(Caption(caption), parent);
    group->setObjectName(name);
    return group;
}

void OnDoubleClick(QWidget *widget, Handler handler)
{
    widget->installEventFilter(new ClickFilter(widget, QEvent::MouseButtonDblClick, std::move(handler)));
}

void OnClick(QWidget *widget, Handler handler)
{
    widget->installEventFilter(new ClickFilter(widget, QEvent::MouseButtonPress, std::move(handler)));
}

void SetFill(QWidget *widget, const QColor &colour)
{
    const QColor dull = Mix(colour, QApplication::palette().color(QPalette::Window), 0.55);
    QPalette palette = widget->palette();
    for (const auto role : {QPalette::Window, QPalette::Button}) {
        palette.setColor(role, colour);
        palette.setColor(QPalette::Disabled, role, dull);
    }
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, TextOn(colour));
        palette.setColor(QPalette::Disabled, role, Mix(TextOn(colour), dull, 0.6));
    }
    widget->setPalette(palette);
    widget->setAutoFillBackground(!PaintsItsFace(widget));
}

void ClearFill(QWidget *widget)
{
    widget->setPalette(QPalette());
    widget->setAutoFillBackground(false);
}

void SetOption(QAbstractButton *option, bool on)
{
    const bool exclusive = option->autoExclusive();
    QButtonGroup *group = option->group();
    const bool groupExclusive = group != nullptr && group->exclusive();
    option->setAutoExclusive(on && exclusive);
    if (group)
        group->setExclusive(on && groupExclusive);
    option->setChecked(on);
    option->setAutoExclusive(exclusive);
    if (group)
        group->setExclusive(groupExclusive);
}

QColor Mix(const QColor &one, const QColor &other, double share)
{
    const auto part = [share](int of, int rest) { return static_cast<int>(of * share + rest * (1.0 - share)); };
    return QColor(part(one.red(), other.red()), part(one.green(), other.green()), part(one.blue(), other.blue()));
}

bool IsDark(const QPalette &palette)
{
    return TextOn(palette.color(QPalette::Window)) == QColor(Qt::white);
}

QColor InfoBackground()
{
    return IsDark(QApplication::palette()) ? Mix(QColor(255, 200, 60), ButtonFace(), 0.18)
                                           : Mix(QColor(255, 240, 130), ButtonFace(), 0.6);
}

QColor ScrollBarColour()
{
    return Mix(QColor(90, 130, 220), ButtonFace(), 0.35);
}

QColor ButtonFace()
{
    return QApplication::palette().color(QPalette::Active, QPalette::Button);
}

void ShowUse(QWidget *widget, Use use)
{
    switch (use) {
    case Use::InWork:
        return SetFill(widget, Cyan());
    case Use::Idle:
        return SetFill(widget, InfoBackground());
    case Use::NotInUse:
        return SetFill(widget, ButtonFace());
    }
}

QColor Cyan()
{
    return QColor(0, 255, 255);
}

QColor Red()
{
    return QColor(255, 0, 0);
}

QColor Green()
{
    return QColor(0, 255, 0);
}

QColor Yellow()
{
    return QColor(255, 255, 0);
}

}  // namespace ombrix
