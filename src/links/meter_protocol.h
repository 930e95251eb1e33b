// One command to the meter, one line back.
//
// A frame is `*`, the meter's address, a payload and CR; a reply is text ended by CR. This module knows bytes, routes
// and waits. What a command means, meter_operations.h knows.
#pragma once

#include "platform/serial_port.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ombrix {

extern SerialPort comDPM;
/// Who is spoken to: "1" the meter under calibration, "2" the meter that serves as output switch.
extern std::string MeterAddr;
/// The last reply line; in simulation what the simulator left.
extern std::string MeterReply;

void SetMeterAddress(const std::string &address);

/// Sends one payload over the route in force: simulator, UUT tunnel or port. Waits for nothing.
void SendMeterCommand(std::string_view payload);

/// One wait of at most 1000 ms for any bytes; returns all that wait, "" when none came, "" at once in simulation.
std::string ReceiveMeterChunk();

/// More than this without an end of line is no reply, on either link.
constexpr std::size_t kReplyLimit = 4096;

/// Gathers one reply line and returns it without its CR. "" when 1000 ms pass in silence before a CR came, on Abort,
/// and when 4096 characters came without a CR.
std::string ReadMeterLine();

/// Drops what waits on the route.
void FlushMeterInput();

/// Flush, command (letter, count, address, text), 500 ms, reply line.
std::string MeterQuery(char letter, int address, int count, std::string_view text);

/// When the meter under calibration was last sent a read or write without Z, at which it restarts.
extern std::int64_t LastRestartMicros;

/// Command without flush, wait or reply.
void MeterSend(char letter, int address, int count, std::string_view text);

/// Characters of the counts 1 to 35.
constexpr std::string_view kCountAlphabet = "123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// The count's character; any count outside 1 to 35 is "1".
char CountChar(int count);

/// letter + count character + two hex digits of the address + text.
std::string MeterPayload(char letter, int address, int count, std::string_view text);

/// True when a reply holds its CR; what stands before the first one, "" without one.
bool HoldsLine(std::string_view reply);
std::string LineOf(std::string_view reply);

}  // namespace ombrix
