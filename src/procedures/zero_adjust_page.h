// The page that leads through zero adjust and gain balance of the AC boards: trimmers, no words.
#pragma once

namespace ombrix {

/// Registers the page and its step; the station does so once at start.
void RegisterZeroAdjustPage();

}  // namespace ombrix
