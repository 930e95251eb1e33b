// The thin line at the window's foot: how far the work is, what the station waits for and for how long, the last remark,
// the one that is kept, and the way to the summary.
#pragma once

#include <string>

class QStatusBar;

namespace ombrix {

void BuildStatusLine(QStatusBar *line);
/// From now on the widgets of an earlier window are not touched.
void DropStatusLine();

/// What is waited for, "" nothing. The line looks at it once a second and only while something is waited for, so
/// waits that follow each other closely do not flicker. A wait that comes to the front again counts from its own start.
void ShowWait(const std::string &text);
/// How far the work is ("range 4 of 11"); "" nothing.
void ShowProgress(const std::string &text);
/// Takes the place of the remark before.
void ShowRemark(const std::string &text);
/// Stands at the right, whatever is remarked later; "" takes it away.
void KeepRemark(const std::string &text);

}  // namespace ombrix
