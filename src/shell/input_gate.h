// What keeps the operator at a box: while one is up the window behind it takes no input, except what is always open.
//
// The toolkit's own modality would close the window's close box and Quit as well.
#pragma once

class QObject;
class QWidget;

namespace ombrix {

/// A widget or shortcut of the main window that works while a box is up: Quit, the summary, the guide.
void KeepOpen(QObject *widget);

/// While one stands, `window` and what belongs to it take input, and the main window only where it is kept open. Of
/// several the last one counts.
class InputGate
{
public:
    explicit InputGate(QWidget *window);
    ~InputGate();
    InputGate(const InputGate &) = delete;
    InputGate &operator=(const InputGate &) = delete;
};

}  // namespace ombrix
