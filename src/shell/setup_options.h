// The choices of the Setup page: mode, ports, output switch. The operator can't reach a forbidden combination.
#pragma once

class QFrame;
class QWidget;

namespace ombrix {

/// Makes the four groups inside their frame, shpAA(0), with the page's command beside the last one. Returns the frame.
QFrame *BuildSetupOptions(QFrame *page, QWidget *command);

/// Sets the options as the session has them.
void ShowOptionsInForce();
void EnableSetupOptions(bool on);
void SetOptionGroupsVisible(bool on);

}  // namespace ombrix
