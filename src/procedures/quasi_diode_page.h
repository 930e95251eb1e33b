// The page on which gain and offset of the quasi-diode are trimmed, step by step, by the reading that the operator
// watches.
#pragma once

namespace ombrix {

void RegisterQuasiDiodePage();

}  // namespace ombrix
