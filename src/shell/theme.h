// The colours of the whole program: the desktop's own, or a light or dark set that the settings name.
#pragma once

#include <string>

namespace ombrix {

/// "light" or "dark"; any other text gives the desktop's palette.
void ApplyTheme(const std::string &name);

}  // namespace ombrix
