// The programmable calibrator: what stands on the meter's terminals.
//
// SetCalibratorOutput is the one place where an output is set. In Manual mode the same operations become prompts to
// the operator; in simulation they are answered inside the station.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

extern std::string CalError;  ///< the failure word of OpenCalibratorLink
extern bool CalHzFlag;        ///< the last requested output is AC
extern bool CalStandbyFlag;   ///< the calibrator has confirmed that it is in standby

void InitCalibrator();

/// 0 open; 99 "Calibrator not found" in CalError; otherwise the number of a run-time fault with its words there.
/// In Manual mode and in simulation it succeeds without speaking. An alert that stands goes when a calibrator was reset.
int OpenCalibratorLink();
void ResetCalibrator();
void CalibratorRemote();
void CalibratorLocal();

/// Empties the error queue and returns the first answer; "" means no answer at all. An error is told as a remark.
std::string CheckCalibratorErrors();

/// Sets the output and shows what the calibrator says it delivers. value as the calibrator takes it ("200 mV",
/// "2 V, 300 Hz"), mode "OPER" or "STBY". At most 5 attempts of 5 polls; one whole poll without a byte, and a line that
/// has gone, end them. No error when none confirms: live_output.h knows. Abort keeps an output from being switched on
/// and ends the waiting; a standby is sent all the same. True when the calibrator has confirmed the state. While
/// Quitting it sends standby at 0 V once and returns at once.
bool SetCalibratorOutput(const std::string &value, std::string_view mode);

/// Applies a value, or asks the operator to. While an alert stands standby is reached first. False when nothing was
/// applied, when it was stopped or when the line has gone under it; Abort is then set. An output that the calibrator
/// took and did not confirm counts as applied: InputStands tells.
bool ApplyInput(const std::string &value);
/// ApplyInput, then four-wire sensing for a resistance.
bool ApplyInputValue(const std::string &value);
/// What was applied last stands on the terminals, as far as anybody can know: without a calibrator the operator's word
/// counts.
bool InputStands();
/// Standby at zero (an AC output at 1 mV), or asks the operator to remove the input. Nothing when already in standby;
/// while Quitting a calibrator always gets its standby. True when it is known that nothing is applied any more.
bool RemoveInput();
/// The same with a full reset of an AC output's frequency: sent in standby too as long as CalHzFlag says AC.
bool CalibratorStandby();

/// index 0..5 into the thermocouple input names; others do nothing.
void SelectThermocouple(int index);
void SelectRtd();
/// number text in degrees Fahrenheit. As ApplyInput.
bool ApplyFahrenheit(const std::string &number);
void SetZComp(std::string_view text);

}  // namespace ombrix
