// Factory images: the whole memory of a board as it leaves initialisation.
#pragma once

#include <string>

namespace ombrix {

/// Words 56..0 of a board (228 digits), with words 50..25 as learned; VF: 188 digits, words 49..44, 40..18, 17..0.
std::string BoardInitImage(int board);
/// The same before any learning.
std::string DefaultInitImage(int board);

}  // namespace ombrix
