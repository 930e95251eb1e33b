// The quasi-diode, which stands for the cold junction of a TC or Temp meter: its gain word and its offset word, trimmed
// by the reading of a thermocouple at 0 degrees. Arithmetic in 32-bit floats, one rounding for each operation.
#pragma once

#include <string>

namespace ombrix {

/// The thermocouples that share one pair of words.
struct DiodeGroup {
    const char *name;
    const char *type;  ///< of the thermocouple that is applied
    int rangeIndex;    ///< row of the board's range codes, and of the calibrator's thermocouples
    int gainWord;
    int offsetWord;
    float nominalGain;
};
constexpr int kDiodeGroups = 2;
/// 0 "J, K, E, N", 1 "T, R, S".
const DiodeGroup &DiodeGroupOf(int type);

/// A word as the clicks move it.
struct DiodeWord {
    float now = 0;
    float before = 0;         ///< at the click before
    float readingBefore = 0;  ///< likewise
    bool first = true;        ///< no click yet
};

struct DiodeCorrection {
    float value = 0;  ///< as computed
    std::string hex;  ///< as it is to be written, four digits
    bool limited = false;
};
/// The next gain word for a reading in display units: along the nominal slope at the first click and when the reading
/// has not moved, else along the secant to 0. Held to 0..65535.
DiodeCorrection CorrectDiodeGain(DiodeWord &gain, float nominal, float reading);
/// The next offset word, likewise to the target. Held to -32767..32767.
DiodeCorrection CorrectDiodeOffset(DiodeWord &offset, float target, float reading);

/// A reading that an offset is computed from lies within -25 and 25, both included.
bool DiodeReadingIsOut(float reading);
/// The nearer end for one that doesn't.
float HoldDiodeReading(float reading);

// ---- the simulator ----

void StirDiodeSimulator();             ///< readings with one decimal, 2.0 to either side
void AimDiodeSimulator(float target);  ///< about the target
void CalmDiodeSimulator();             ///< four fifths as far with each correction

}  // namespace ombrix
