// View NVM: the meter's words by name, changed and written back. fraCalib(7), on the VF tab fraCalib(15).
//
// The boxes of fraCalib(15) are lent to other pages: ShowWordBoxes of session/page_frame.h.
#pragma once

namespace ombrix {

void RegisterNvmPage();
/// Fills what session/page_frame.h promises of the word boxes.
void FillNvmHooks();

}  // namespace ombrix
