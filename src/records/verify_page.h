// Verify: each range applied in turn, its settled reading kept in a file and printed from it. fraCalib(6).
#pragma once

namespace ombrix {

void RegisterVerifyPage();

}  // namespace ombrix
