// The page of the range calibration, fraCalib(4): rounds of reading and correcting one range until the operator
// accepts it.
#pragma once

namespace ombrix {

/// Offers the page, and the entry of every step that is calibrated on it.
void RegisterRangePage();

}  // namespace ombrix
