#include "platform/widgets.h"

#include "platform/fault.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <utility>

namespace ombrix
{
namespace
{

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

} // namespace

QString Caption(const std::string &text)
{
    return QString::fromStdString(text).replace("\r\n", "\n");
}

QString Indexed(const char *name, int index)
{
    return QString("%1(%2)").arg(name).arg(index);
}

QPushButton *Button(QWidget *parent, const QString &name, const std::string &caption, Handler click)
{
    auto *button = Clickable(new QPushButton(Caption(caption), parent), name, std::move(click));
    button->setAutoDefault(true); // Enter works the focused button, as Space does
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

void SetFill(QWidget *widget, const QColor &colour)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, colour);
    palette.setColor(QPalette::Button, colour);
    palette.setColor(QPalette::WindowText, TextOn(colour));
    palette.setColor(QPalette::ButtonText, TextOn(colour));
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
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
    const bool groupExclusive = group && group->exclusive();
    option->setAutoExclusive(on && exclusive);
    if (group)
        group->setExclusive(on && groupExclusive);
    option->setChecked(on);
    option->setAutoExclusive(exclusive);
    if (group)
        group->setExclusive(groupExclusive);
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

} // namespace ombrix
