// The thin line at the window's foot: what the station waits for and for how long, the last remark, and
// the one that is kept.
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
/// Takes the place of the remark before.
void ShowRemark(const std::string &text);
/// Stands at the right, whatever is remarked later; "" takes it away.
void KeepRemark(const std::string &text);

}  // namespace ombrix
