// What the pages show alike: a title, buttons on and off, an instruction in its shape.
#pragma once

#include <QColor>
#include <QString>

#include <functional>
#include <initializer_list>
#include <string>

class QFrame;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace ombrix {

/// Calls it when the frame is destroyed.
void AtEndOf(QFrame *frame, std::function<void()> call);

/// What a page knows or shows begins anew with its frame, and ends with it.
template <class Data> void LivesWith(QFrame *frame, Data &data)
{
    data = Data();
    AtEndOf(frame, [&data] { data = Data(); });
}

template <class... Widgets> void Enable(Widgets *...widgets)
{
    (widgets->setEnabled(true), ...);
}

template <class... Widgets> void Disable(Widgets *...widgets)
{
    (widgets->setEnabled(false), ...);
}

/// The button is deaf to Enter and Space for a moment, also when it had the focus already: see key_guard.h.
void EnableAndFocus(QWidget *button);

/// Takes the focus off a button that is about to go off. Else the next button gets it, and an impatient second Enter
/// would press that.
void DropFocus(QWidget *page);

/// While the widget is hidden its place stays empty, so nothing moves under the operator's hand.
void KeepPlace(QWidget *widget);

/// A label for the name of what the page has in work.
QLabel *Title(QWidget *parent, const QString &name);

/// A button of a page's bottom row: large enough to be hit without looking twice.
void MakeLarge(QWidget *button);
/// That row: its buttons made large, from the left.
QHBoxLayout *ButtonRow(std::initializer_list<QPushButton *> buttons);

/// cmdDone(index), "Done", in a page's bottom row.
QPushButton *DoneButton(QWidget *parent, int index, std::function<void()> click);

/// A status bar: "shp" + stem with "lbl" + stem in its middle, as wide as its place and `lines` lines high. Hidden
/// while it says nothing.
QFrame *StatusBar(QWidget *parent, const QString &stem, int lines);
void ShowStatusBar(QFrame *bar, const std::string &text, const QColor &colour);

/// shpInst(index) with lblInst(index): the status bar that says what to do.
QFrame *Instruction(QWidget *parent, int index, int lines);
void ShowInstruction(QFrame *instruction, const std::string &text, const QColor &colour);

}  // namespace ombrix
