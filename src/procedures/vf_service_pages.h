// What goes with a counter's calibration: its gains checked, its configuration kept before and restored after.
#pragma once

namespace ombrix {

void RegisterVfServicePages();

}  // namespace ombrix
