// The summary of what was done with this meter: a window beside the work, with a text that can be copied.
#pragma once

#include <functional>
#include <string>

class QPushButton;
class QWidget;

namespace ombrix {

/// Where the text comes from, asked each time the window is opened. Without a source there is no button.
void SetSummarySource(std::function<std::string()> source);

/// cmdSummary, which opens the window at any time, also while a procedure runs or a box is up.
QPushButton *BuildSummaryButton(QWidget *parent);

}  // namespace ombrix
