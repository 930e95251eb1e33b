// The page on which the excitation current of a Temp meter's thermometer is trimmed.
#pragma once

namespace ombrix {

void RegisterRtdPage();

}  // namespace ombrix
