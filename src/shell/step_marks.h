// What was done with the steps of the meter on the station, as the journal tells it: a mark for each accepted step, and
// a summary to read and copy. Another meter begins with none.
#pragma once

#include <functional>
#include <string>

namespace ombrix {

/// Listens to the journal from now on; `changed` is told when a mark has come or gone.
void FollowSteps(std::function<void()> changed);
void StopFollowingSteps();

/// "✓" and the last error of an accepted step, "✓ -3"; "" for a step that isn't accepted.
std::string MarkOfStep(const std::string &board, int position);

/// The meter and its steps, a line each.
std::string StepSummary();

}  // namespace ombrix
