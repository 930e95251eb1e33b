// What is said on the lines, in a window beside the work: what was sent and came, when, and what it means.
//
// While it is closed it costs nothing; open it looks at most ten times a second, and holds the last rows alone.
#pragma once

namespace ombrix {

/// Rows that the window holds.
constexpr int kTraceRows = 10'000;

/// F12: opens the window, or brings it to the front. It opens on the run before when that ended without goodbye and
/// nothing has been said yet.
void ShowTraceWindow();
/// While a procedure stands nothing is saved: the box for the name would keep the operator from its Stop.
void BarSave(bool procedureStands);

}  // namespace ombrix
