// What the pages show alike: a title, buttons on and off, an instruction in its shape.
#pragma once

#include <QString>

#include <string>

class QColor;
class QFrame;
class QLabel;
class QWidget;

namespace ombrix {

template <class... Widgets> void Enable(Widgets *...widgets)
{
    (widgets->setEnabled(true), ...);
}

template <class... Widgets> void Disable(Widgets *...widgets)
{
    (widgets->setEnabled(false), ...);
}

void EnableAndFocus(QWidget *button);

/// Takes the focus off a button that is about to go off. Else the next button gets it, and an impatient second Enter
/// would press that.
void DropFocus(QWidget *page);

/// A label for the name of what the page has in work.
QLabel *Title(QWidget *parent, const QString &name);

/// A button of a page's bottom row: large enough to be hit without looking twice.
void MakeLarge(QWidget *button);

/// shpInst(index) with lblInst(index) in its middle, as wide as its place and `lines` lines high.
QFrame *Instruction(QWidget *parent, int index, int lines);
void ShowInstruction(QFrame *instruction, const std::string &text, const QColor &colour);

}  // namespace ombrix
