// tabCalib: one tab for each family of boards, and what a click on it does.
#pragma once

class QWidget;

namespace ombrix {

QWidget *BuildTabStrip(QWidget *parent);

/// Tabs look as they are: off, they are dim and don't answer the mouse.
void ShowTabsAllowed(bool on);

/// Moves the strip without any reaction.
void PutStripOn(int tab);
/// The same to the tab that is open: an operator who clicked a tab and then something else has left it.
void PutStripOnOpenTab();

/// Opens the tab of the identified board; the identity was just read.
void OpenBoardTab();

/// Reads the meter's identity and shows its revision. False when the meter did not answer or the operator stopped it:
/// then the identity is what it was.
bool ReadIdentity();

/// Captions the open tab, fills the steps for SCType, leaves the step, shows or hides the output panel.
void ApplyBoard();
/// Lets the open tab put the meter back as it was, while that is still on the line.
void LeaveTab();
/// Keeps a remark as long as the board in work isn't the meter's own.
void RemarkOnBoard();
/// A tab of 0 to 3 is named after the board in work.
void CaptionBoardTab();

}  // namespace ombrix
