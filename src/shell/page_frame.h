// The window's half of session/page_frame.h.
#pragma once

namespace ombrix {

/// Lets the pages reach the window that stands; CloseStation empties the hooks again.
void FillFrameHooks();

}  // namespace ombrix
