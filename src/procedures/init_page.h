// The page of the initialisation, fraCalib(2): the board's factory image goes into the meter and is proven there.
#pragma once

namespace ombrix {

/// Offers the page, and the entry of its step.
void RegisterInitPage();

}  // namespace ombrix
