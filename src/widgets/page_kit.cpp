#include "widgets/page_kit.h"

#include "widgets/key_guard.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace ombrix {

void AtEndOf(QFrame *frame, std::function<void()> call)
{
    QObject::connect(frame, &QObject::destroyed, std::move(call));
}

void EnableAndFocus(QWidget *button)
{
    button->setEnabled(true);
    button->setFocus();
    DeafenToKeys(button);
}

void DropFocus(QWidget *page)
{
    page->setFocus();
}

void KeepPlace(QWidget *widget)
{
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

QLabel *Title(QWidget *parent, const QString &name)
{
    QLabel *title = Label(parent, name);
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    title->setFont(font);
    return title;
}

void MakeLarge(QWidget *button)
{
    const QFontMetrics metrics = button->fontMetrics();
    button->setMinimumSize(metrics.averageCharWidth() * 20, metrics.height() * 5 / 2);
}

QHBoxLayout *ButtonRow(std::initializer_list<QPushButton *> buttons)
{
    auto *row = new QHBoxLayout;
    for (QPushButton *button : buttons) {
        MakeLarge(button);
        row->addWidget(button);
    }
    row->addStretch();
    return row;
}

QPushButton *DoneButton(QWidget *parent, int index, std::function<void()> click)
{
    QPushButton *button = Button(parent, Indexed("cmdDone", index), "Done", std::move(click));
    MakeLarge(button);
    return button;
}

QFrame *StatusBar(QWidget *parent, const QString &stem, int lines)
{
    QFrame *shape = Shape(parent, "shp" + stem);
    QLabel *label = Label(shape, "lbl" + stem);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setMinimumHeight(label->fontMetrics().lineSpacing() * lines);
    auto *layout = new QVBoxLayout(shape);
    layout->addWidget(label);
    shape->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    shape->hide();
    return shape;
}

void ShowStatusBar(QFrame *bar, const std::string &text, const QColor &colour)
{
    bar->findChild<QLabel *>()->setText(Caption(text));
    SetFill(bar, colour);
    bar->setVisible(!text.empty());
}

QFrame *Instruction(QWidget *parent, int index, int lines)
{
    return StatusBar(parent, Indexed("Inst", index), lines);
}

void ShowInstruction(QFrame *instruction, const std::string &text, const QColor &colour)
{
    ShowStatusBar(instruction, text, colour);
}

}  // namespace ombrix
