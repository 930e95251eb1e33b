// One command to the meter, one line back.
//
// This module knows routes and waits. What the bytes are, meter_frame.h knows; what a command means,
// meter_operations.h.
#pragma once

#include "platform/serial_port.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ombrix {

extern SerialPort comDPM;
/// Who is spoken to: "1" the meter under calibration, "2" the meter that serves as output switch.
extern std::string MeterAddr;
/// The last reply line; in simulation what the simulator left.
extern std::string MeterReply;

/// Address "1", no reply, nothing restarting.
void InitMeterProtocol();

void SetMeterAddress(const std::string &address);

/// The station answers for the meter, and for the calibrator.
bool Simulated();
/// With hardware: the line over which the meter is spoken to has gone, the calibrator's on the route through it.
bool MeterLineIsGone();

/// Opens the meter's own port with RTS and DTR on. Throws RuntimeFault.
void OpenMeterPort(const std::string &device);

/// Sends one payload over the route in force: simulator, UUT tunnel or port. Waits for nothing. A port whose line has
/// gone is opened again first; when that fails nothing is sent.
void SendMeterCommand(std::string_view payload);

/// One wait of at most 1000 ms for any bytes; returns all that wait, "" when none came, "" at once in simulation and on
/// a line that has gone.
std::string ReceiveMeterChunk();

/// Gathers one reply line and returns it without its CR. "" when 1000 ms pass in silence before a CR came, on Abort,
/// when 4096 characters came without a CR, and at once when the line has gone.
std::string ReadMeterLine();

/// What ReadMeterLine found last was no answer: a meter was sending its stream of counts, as after a first cycle correction
/// that was cut off.
bool MeterStreams();

/// Drops what waits on the route, also what the system still holds.
void FlushMeterInput();

/// Flush, command (letter, count, address, text), 500 ms, reply line. Ends at once when the line has gone.
std::string MeterQuery(char letter, int address, int count, std::string_view text);

/// When the meter under calibration was last sent a read or write without Z, at which it restarts.
extern std::int64_t LastRestartMicros;

/// Command without flush, wait or reply.
void MeterSend(char letter, int address, int count, std::string_view text);

}  // namespace ombrix
