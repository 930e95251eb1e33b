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

/// What the click on a step button does: SelectStep, as soon as nothing else runs.
void ClickStep(int index);

/// Marks a step, stops what is applied on the TC tab, and opens the step's page. -1 leaves all steps and shows the
/// empty page.
void SelectStep(int index);

}  // namespace ombrix
