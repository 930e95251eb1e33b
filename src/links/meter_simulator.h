// The meter inside the station: 256 words of memory and a display that scatters about what the procedure expects.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrix {

extern std::array<std::uint16_t, 256> SimNvm;
extern float SimNominal;    ///< what the simulated input reads, in display counts
extern float SimNoise;      ///< half width of its scatter
extern float SimReading;    ///< the last reading
extern bool SimOneDecimal;  ///< readings carry one decimal

/// SimNominal by its other name.
inline float &SimTarget = SimNominal;

/// While the link opens: a word outside 0..255 is a fault.
extern bool SimAddressFaults;

/// Random seed, the start words, nothing at the input.
void InitMeterSimulator();
/// The scatter from here on is that of this seed.
void SeedMeterSimulator(unsigned seed);
/// The reply to a payload; nothing for a command that has none. What is written to another address than "1" shows as
/// the output switch. Throws RuntimeFault 9, "Subscript out of range", for a word outside 0..255 while the link opens;
/// else such a word reads "0000" and a write is dropped.
std::optional<std::string> SimulateMeterCommand(std::string_view payload, std::string_view address = "1");
/// A simulated meter without a board code.
void ClearSimWord21();

}  // namespace ombrix
