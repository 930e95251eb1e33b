// The small text under an option that stands for a port: the device behind it, and why it can't be used.
#pragma once

class QColor;
class QLabel;
class QRadioButton;
class QWidget;

namespace ombrix {

/// Of words that tell why something can't be used.
QColor TroubleColour();
/// Forgets the notes of an earlier window.
void DropPortNotes();
/// Makes the note of an option inside `parent`. Port 0 is the calibrator's UUT port.
QLabel *AddPortNote(QWidget *parent, QRadioButton *option, int port);
/// Looks at the ports and says what it finds.
void ShowPortNotes();

}  // namespace ombrix
