// The colours of the whole program: the desktop's own, or a light or dark set that the settings name.
#pragma once

#include <string>

namespace ombrix {

/// "light" or "dark"; "" gives the desktop's palette. So does any other text, and the operator is told.
void ApplyTheme(const std::string &name);

}  // namespace ombrix
