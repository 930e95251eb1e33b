// The ten points of the analog output: what the meter puts out there, what an output meter should read, and how the
// point's word follows from what it does read. Pure; in 32-bit floats, one rounding for each operation.
#pragma once

#include "model/analog_words.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrix {

/// What the output delivers.
enum AnalogKind { kVoltageOutput = 0, kCurrentOutput = 1, kBipolarOutput = 2 };
/// What is built in, as optDAC counts it.
enum DacType { kDac12Bit = 0, kDacXmtr = 1, kDacBipolar = 2, kDacDual = 3 };

// ---- the table ----

/// The point of a step button of the AnaCal tab, -1 for a button that is none; and back.
int AnalogPointAtPosition(int position);
int PositionOfAnalogPoint(int point);
/// Whether a meter with this DAC has the point.
bool HasAnalogPoint(int dacType, int point);
/// The next point of a meter with this DAC, forward (1) or backward (-1), -1 beyond the ends. Forward from -1: the first.
int NextAnalogPoint(int dacType, int point, int direction);
/// 1, or 2 for a point of a dual DAC's second output.
int AnalogConnector(int point);
AnalogKind AnalogPointKind(int point);
/// "Offset" or "Gain".
std::string AnalogPointTitle(int point);
/// The word that is trimmed. A counter keeps its words elsewhere.
int AnalogWordAddress(int point, bool counter);
/// What the meter is told to put out; `currentPoint` is the current offset point in uA, 200 or 4000.
std::int32_t AnalogOutputValue(int point, int currentPoint, bool counter);
/// What an output meter should read then, in mV or uA.
int AnalogTarget(int point, int currentPoint);
/// " mV" or " uA".
std::string AnalogUnit(int point);
/// How far off the reading may be, in the point's unit.
std::string AnalogToleranceText(int point);
float AnalogTolerance(int point);
bool IsInsideAnalogTolerance(int point, float error);
/// How far off a reading is, as "+12.50 mV".
std::string AnalogDistanceText(int point, float error);

/// What an output meter should read when a value is put out in a mode, as "5000 mV".
std::string ExpectedAnalogReading(std::int32_t value, AnalogKind kind, bool counter);

// ---- what is asked of the operator ----

/// "Enter AnaOut Reading in mV".
std::string AnalogEnterText(int point);
/// "Desired AnaOut Reading = 10000 mV +/- 1.25 mV".
std::string AnalogDesiredText(int point, int currentPoint);
/// Which cable to connect; 0 the UniPolar one, 1 and 2 with a connector's number, 3 the BiPolar one, 4 to either
/// connector of a dual DAC.
std::string AnalogCableText(int choice);
/// The choice for a mode of a meter with this DAC; none when there is nothing to choose.
std::optional<int> AnalogCableChoice(AnalogKind kind, int dacType);
/// The cable that must be connected for a point, as a choice; none where every meter's is the same.
std::optional<int> AnalogCableOfPoint(int point, int dacType);

/// A reading as it was typed. A comma is a decimal sign as the point is; with three digits behind it it could stand
/// between thousands, and the text is refused.
struct TypedReading {
    float value = 0;
    std::string trouble;  ///< why the text is none; "" when it is
};
TypedReading ParseTypedReading(const std::string &text);

// ---- the correction ----

struct AnalogCorrection {
    std::uint16_t word = 0;
    std::string refused;   ///< why the reading can't be one of this point; then there is no word
    std::string overflow;  ///< what the box says of a word that was held at a limit; its title
    std::string overflowTitle;
};
/// The word with which the point's reading should be right, from a typed reading and the word now in the meter.
AnalogCorrection CorrectAnalogWord(int point, float reading, std::uint16_t word, int currentPoint);

/// A nominal word goes a tenth of the way to an accepted one.
std::uint16_t BlendAnalogWord(std::uint16_t word, std::uint16_t nominal);

}  // namespace ombrix
