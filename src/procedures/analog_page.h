// The analog output of a meter, calibrated from an operator's readings of an output meter.
#pragma once

namespace ombrix {

/// Registers the AnaCal tab, its page and its steps.
void RegisterAnalogPage();

}  // namespace ombrix
