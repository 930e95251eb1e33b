// The page that loads a customer's configuration into a calibrated meter, fraCalib(8): a .dpm file is checked, written,
// and its range tried with the input that belongs to it.
#pragma once

namespace ombrix {

/// Offers the page, and the entry of its step.
void RegisterSendFilePage();

}  // namespace ombrix
