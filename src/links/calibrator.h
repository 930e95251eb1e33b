// The programmable calibrator: what stands on the meter's terminals.
//
// SetCalibratorOutput is the one place where an output is set. In Manual mode the same operations become prompts to
// the operator; in simulation they are answered inside the station.
#pragma once

#include "platform/serial_port.h"

#include <string>
#include <string_view>

namespace ombrix {

extern SerialPort comCAL;
extern std::string CalError;  ///< the failure word of OpenCalibratorLink
extern bool CalHzFlag;        ///< the last requested output is AC
extern bool CalStandbyFlag;   ///< the calibrator is known to be in standby
extern int CalWaitMs;         ///< the receive wait in force
extern std::string CalReply;  ///< the last reply line

/// 0 open; 99 "Calibrator not found" in CalError; otherwise the number of a run-time fault with its words there.
/// In Manual mode and in simulation it succeeds without speaking.
int OpenCalibratorLink();
void ResetCalibrator();
void CalibratorRemote();
void CalibratorLocal();

/// Text + LF. Nothing when no calibrator port is chosen or it is closed.
void SendCalibratorCommand(std::string_view text);
/// One wait of CalWaitMs for any bytes. "" at once in simulation.
std::string ReceiveCalibratorChunk();
std::string ReceiveCalibratorChunk1s();
std::string ReceiveCalibratorChunk5s();
/// One reply line without its CR LF; "" on silence (1000 ms) and on Abort.
std::string ReadCalibratorLine();
/// Empties the error queue and returns its first entry; "" means no answer at all.
std::string CheckCalibratorErrors();

/// Sets the output and shows what the calibrator says it delivers. value as the calibrator takes it ("200 mV",
/// "2 V, 300 Hz"), mode "OPER" or "STBY". At most 5 attempts of 5 polls; no error when none confirms.
/// False when it was aborted. While Quitting it sends standby at 0 V once and returns at once.
bool SetCalibratorOutput(const std::string &value, std::string_view mode);

/// Applies a value, or asks the operator to.
void ApplyInput(const std::string &value);
/// ApplyInput, then four-wire sensing for a resistance.
void ApplyInputValue(const std::string &value);
/// Standby at zero (an AC output at 1 mV), or asks the operator to remove the input. Nothing when already in standby;
/// while Quitting a calibrator always gets its standby.
void RemoveInput();
/// The same with a full reset of an AC output's frequency: sent in standby too as long as CalHzFlag says AC.
void CalibratorStandby();

/// index 0..5 into the thermocouple input names; others do nothing.
void SelectThermocouple(int index);
void SelectRtd();
/// number text in degrees Fahrenheit.
void ApplyFahrenheit(const std::string &number);
void SetZComp(std::string_view text);

}  // namespace ombrix
