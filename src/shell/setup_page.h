// The Setup page, fraCalib(1): how the instruments are wired, and whether the links are established.
#pragma once

#include <string>

class QColor;

namespace ombrix {

constexpr int kSetupPage = 1;

void RegisterSetupPage();

/// What a click on cmdSetup does, as soon as nothing else runs.
void cmdSetup_Click();
/// Takes the input away, leaves the step and shows the page with the choices in force.
void OpenSetup();

/// Shows or hides the four groups, their frame, and cmdEstablish.
void SetSetupGroupsVisible(bool on);
/// The choices and cmdEstablish; cmdEstablish only as long as no link is established.
void EnableSetupControls(bool on);
void FocusEstablish();

/// lblStatus with its shape filled.
void ShowStatus(const std::string &text, const QColor &colour);
void HideStatus();

/// No link is established: steps and tabs off, cmdEstablish on, the output panel empty.
void ResetSession();

}  // namespace ombrix
