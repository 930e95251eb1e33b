// What holds for steps that this version has no page for.
#pragma once

namespace ombrix {

void RegisterStepRules();

}  // namespace ombrix
