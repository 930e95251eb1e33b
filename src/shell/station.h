// The station as a whole: what joins its modules, and its start and end.
#pragma once

#include <string>

namespace ombrix {

/// Joins the modules below the window to the window.
void FillOutlets();
/// Tells the window of every page and its steps.
void RegisterPages();

/// Program start, up to the Setup page: fills tables and settings of the current folder, makes and shows the window.
void OpenStation();
/// Starts the guard that puts the calibrator in standby when the program dies. When that can't be done, the status line
/// and standard error say so, and the station works without.
void OpenGuard(const std::string &program);
/// Takes everything away again; another OpenStation may follow.
void CloseStation();

}  // namespace ombrix
