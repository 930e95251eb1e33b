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
/// The green bar of a session.
void ShowEstablished(const std::string &text);
/// In a session: the bar turns red and says why the meter's identity isn't known; "" and it is green again.
void ShowMeterTrouble(const std::string &trouble);
/// In the status line's place, without its colours: what Establish does, with the seconds gone from the third on.
void ShowEstablishProgress(const std::string &text);
/// Takes away the bar, or the progress in its place.
void HideStatus();

constexpr char kMeterSilent[] = "The meter did not answer";

/// No link is established: steps and tabs off, cmdEstablish on, the output panel empty.
void ResetSession();

}  // namespace ombrix
