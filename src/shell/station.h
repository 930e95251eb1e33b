// The station as a whole: what joins its modules, and its start and end.
#pragma once

namespace ombrix {

/// Joins the modules below the window to the window.
void FillOutlets();
/// Tells the window of every page and its steps.
void RegisterPages();

/// Program start, up to the Setup page: fills tables and settings of the current folder, makes and shows the window.
void OpenStation();
/// Takes everything away again; another OpenStation may follow.
void CloseStation();

}  // namespace ombrix
