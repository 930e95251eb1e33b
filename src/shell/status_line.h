// The thin line at the window's foot: what the station waits for and for how long, and the last remark.
#pragma once

#include <string>

class QStatusBar;

namespace ombrix {

void BuildStatusLine(QStatusBar *line);
/// From now on the widgets of an earlier window are not touched.
void DropStatusLine();

/// What is waited for, "" nothing. The line looks at it once a second and only while something is waited for, so
/// waits that follow each other closely do not flicker.
void ShowWait(const std::string &text);
void ShowRemark(const std::string &text);

}  // namespace ombrix
