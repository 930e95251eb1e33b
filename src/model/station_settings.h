// The settings themselves: what the pages show, use and change. Load and save them with settings.h.
#pragma once

#include <array>
#include <string>

namespace ombrix {

/// Ratio page: index of the range option and the reading to reach, for the DC family and for the load cells.
extern int DcRatioRange;  ///< 0 200 mV, 1 2 V, 2 20 V
extern float DcRatioReading;
extern int StrainRange;  ///< 0 20 mV, 1 50 mV, 2 100 mV, 3 250 mV, 4 500 mV
extern float StrainReading;

extern std::string RtdDesiredText;  ///< "" until the operator has given one
extern std::string QDTargetText;
extern std::string VFLow;  ///< error limits in counts, "" until the operator has given them
extern std::string VFHigh;

/// File that Send File opens first, by board 0..8; "" for VF.
extern std::array<std::string, 9> SendFileDefaults;

}  // namespace ombrix
