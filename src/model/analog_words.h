// The ten words of the analog output and how the station names and keeps them.
#pragma once

#include <array>
#include <string>

namespace ombrix {

constexpr int kAnalogWords = 10;

extern std::array<std::string, kAnalogWords> StoredAnalogWords;  ///< 4 hex digits each
extern bool WordsDirty;
extern std::string DacTypeText;         ///< "0" to "3"
extern std::string CurrentOffsetPoint;  ///< "200" or "4000"

std::string AnalogWordName(int index);   ///< "VO", "VG", ...
std::string AnalogWordTitle(int index);  ///< "VOffset", "VGain", ...
int AnalogWordOffset(int index);         ///< place (from 1) in a 40-digit image
int AnalogWordIndex(const std::string &shortName);

}  // namespace ombrix
