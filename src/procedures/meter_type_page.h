// The page on which a Temp, TC or RTD meter is told which of its two kinds it is.
#pragma once

namespace ombrix {

void RegisterMeterTypePage();

}  // namespace ombrix
