// The step buttons of the board in work, as tests name them.
#pragma once

#include <string>
#include <vector>

namespace ombrix::test {

/// Positions of the present board that trim a word.
std::vector<int> RangePositions();

/// Name of a step button.
std::string StepButton(int position);

}  // namespace ombrix::test
