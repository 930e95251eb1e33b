// What keeps a key from doing two things: pressed for one button, it meets another that has taken its place.
#pragma once

class QAbstractButton;
class QWidget;

namespace ombrix {

/// How long a button is deaf to Enter and Space: a hand that meant the button before can't be faster than this twice.
constexpr int kDeafMs = 400;

/// From now on the button ignores Enter and Space while they are held, for kDeafMs after it took the focus by program
/// (a click, Tab and a shortcut are the operator's), and for kDeafMs after one of them has pressed it. A mouse click
/// always counts.
void GuardKeys(QAbstractButton *button);

/// A guarded button is deaf from now on, as if it had just taken the focus: it means something else now. Nothing for
/// any other widget.
void DeafenToKeys(QWidget *button);

}  // namespace ombrix
