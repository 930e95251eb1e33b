#include "procedures/step_rules.h"

#include "model/step_ids.h"
#include "session/page_frame.h"
#include "session/state.h"

namespace ombrix {

void RegisterStepRules()
{
    StepRecord firstCycle;
    firstCycle.allowed = [](int) { return MeterPort != 0; };  // its stream can't pass the calibrator
    RegisterSteps({Step::FirstCycle}, firstCycle);
}

}  // namespace ombrix
