// Boxes that stand in the operator's way until they are answered. Each is shown and pumped: the program's one way to
// wait stays the only one, and Quit stays open.
#pragma once

#include <string>

class QDialog;

namespace ombrix {

/// With an exclamation mark and OK, the value that the text names in large letters. False when it was taken away by
/// Esc, its close box or the end of the program: not done.
bool PromptOperator(const std::string &text, const std::string &title);
/// With a stop sign and OK.
void WarnOperator(const std::string &text, const std::string &title);
/// With OK and Cancel. True for OK alone.
bool AskOperator(const std::string &text, const std::string &title);

/// Shows a dialog and waits until it is gone. True when it was accepted; false at once while boxes are silenced.
bool ShowAndWait(QDialog *dialog);

/// Takes away every box and dialog that is up; whoever waits for one goes on with the careful answer.
void CloseBoxes();
/// From now on (until `false`) no box comes up: nobody is there to answer it.
void SilenceBoxes(bool on);

}  // namespace ombrix
