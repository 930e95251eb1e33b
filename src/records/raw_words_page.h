// One to four words of the meter by their number: fraCalib(18).
#pragma once

namespace ombrix {

void RegisterRawWordsPage();
/// Fills what session/page_frame.h promises of the raw words.
void FillRawWordsHooks();

/// From View NVM: "Back" reads the meter's words afresh.
void EnterRawPage();

}  // namespace ombrix
