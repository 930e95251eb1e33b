#include "support/positions.h"

#include "model/range_tables.h"
#include "session/state.h"

namespace ombrix::test {

std::vector<int> RangePositions()
{
    std::vector<int> positions;
    for (int position = 0; position < kPositions; ++position)
        if (NvmWordAtPosition(position) > 0)
            positions.push_back(position);
    return positions;
}

int PositionOfStep(int stepId)
{
    for (int position = 0; position < kPositions; ++position)
        if (StepIdAtPosition(position) == stepId)
            return position;
    return -1;
}

std::string StepButton(int position)
{
    return "cmdCalib(" + std::to_string(position) + ")";
}

std::string ButtonOf(int stepId)
{
    return StepButton(PositionOfStep(stepId));
}

}  // namespace ombrix::test
