#include "widgets/page_kit.h"

#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

namespace ombrix {

void EnableAndFocus(QWidget *button)
{
    button->setEnabled(true);
    button->setFocus();
}

void DropFocus(QWidget *page)
{
    page->setFocus();
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

QFrame *Instruction(QWidget *parent, int index, int lines)
{
    QFrame *shape = Shape(parent, Indexed("shpInst", index));
    QLabel *label = Label(shape, Indexed("lblInst", index));
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    label->setFont(font);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setMinimumHeight(label->fontMetrics().lineSpacing() * lines);
    auto *layout = new QVBoxLayout(shape);
    layout->addWidget(label);
    shape->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return shape;
}

void ShowInstruction(QFrame *instruction, const std::string &text, const QColor &colour)
{
    instruction->findChild<QLabel *>()->setText(Caption(text));
    SetFill(instruction, colour);
    instruction->setVisible(!text.empty());
}

}  // namespace ombrix
