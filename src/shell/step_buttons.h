// cmdCalib(0..16): the steps of the board in work.
#pragma once

#include <array>

class QPushButton;
class QWidget;

namespace ombrix {

/// Makes the column of step buttons, blank and off.
QWidget *BuildStepButtons(QWidget *parent);

/// Blank, off, in the button's own colour; none highlighted.
void BlankSteps();
/// Fills caption, colour and state of all buttons for SCType; keeps the last calibration position for NextStep.
void FillStepTable();
/// Puts the focus on a step button: the highlighted one, else the first.
void FocusSteps();

/// What the click on a step button does: EnterStep, as soon as nothing else runs.
void ClickStep(int index);
/// Opens a step with the focus parked and the other choices off meanwhile; inside a procedure.
void EnterStep(int index);
/// The same for who doesn't click: nothing where its button could not be on; below 0 no step is the one in work.
void EnterAllowedStep(int index);
/// The next allowed calibration step, wrapping to position 0; nothing when none is allowed. Nothing behind the last
/// calibration position.
void EnterNextStep();

/// Marks a step, stops what is applied on the TC tab, and opens the step's page. -1 leaves all steps and shows the
/// empty page.
void SelectStep(int index);
/// Paints the button in the colour of what is in work, and the one before back. -1 none.
void MarkStep(int index);

/// Draws the marks of accepted steps anew.
void ShowStepMarks();

/// The captioned buttons that are allowed, cmdSetup, and whether a click on a tab is taken.
void EnableSteps(bool on);

}  // namespace ombrix
