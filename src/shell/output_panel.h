// The output panel: what stands on the input terminals, and a flag that says how dangerous that is.
//
// What it shows is worked out in links/cal_output.h. The caption lblCalOut also carries the simulation switch.
#pragma once

#include "session/outlets.h"

#include <string>

class QWidget;

namespace ombrix {

/// Makes fraCalOut inside `parent` and returns it.
QWidget *BuildOutputPanel(QWidget *parent);

/// lblOutput; with it the mark "(assumed)" of Manual mode.
void ShowOutput(const std::string &text);
void ShowDangerFlag(Danger level);
void ShowSwitchText(const std::string &text);
void ShowSwitch(bool on);
/// No value and no flag, as before a first output.
void ClearOutputPanel();
void HideAssumed();
/// The panel with its controls.
void ShowPanel(bool on);

}  // namespace ombrix
