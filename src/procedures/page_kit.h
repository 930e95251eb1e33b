// What the procedure pages do alike: buttons on and off, an instruction in its shape, waiting for the operator, and
// one way out of a procedure whatever ended it.
#pragma once

#include <functional>
#include <string>

class QColor;
class QFrame;
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

/// A button of a page's bottom row: large enough to be hit without looking twice.
void MakeLarge(QWidget *button);

/// shpInst(index) with lblInst(index) in its middle, as wide as its place and `lines` lines high.
QFrame *Instruction(QWidget *parent, int index, int lines);
void ShowInstruction(QFrame *instruction, const std::string &text, const QColor &colour);

/// Sleeps until `done` holds or Abort is set. Flags change only in handlers, so it looks again after each event.
void WaitForOperator(const std::function<bool()> &done);

/// Runs `work`, then `leave`, whatever ended `work`: its own end, a stop, or a fault, which sets Abort first and goes
/// on to the handler's edge after `leave`. Only the end of the program passes by `leave`: then the instruments have
/// had their last words already.
void WithExit(const std::function<void()> &work, const std::function<void()> &leave);

}  // namespace ombrix
