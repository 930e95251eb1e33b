// The step buttons of the board in work, as tests name them.
#pragma once

#include <string>
#include <vector>

namespace ombrix::test {

/// Positions of the present board that trim a word.
std::vector<int> RangePositions();

/// Where a step stands on the present board, -1 where it has none.
int PositionOfStep(int stepId);

/// Name of a step button, by its position and by its step.
std::string StepButton(int position);
std::string ButtonOf(int stepId);

}  // namespace ombrix::test
