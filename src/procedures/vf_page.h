// The page on which a counter's input is calibrated: gain and offset, fitted again until both ends are within limits.
#pragma once

namespace ombrix {

void RegisterVfPage();

}  // namespace ombrix
