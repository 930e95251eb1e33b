// The calibrator's line: commands, reply lines, and whose answer a line is.
//
// A calibrator answers in the order in which it was asked. An answer may come late, when its question was given up long
// ago, or with junk before it: so a line counts only when it has the form of its question and no older question of that
// kind is still open. A question is open no more when its answer came spoilt by junk before it, or after 20 s.
#pragma once

#include "platform/serial_port.h"

#include <string>
#include <string_view>

namespace ombrix {

extern SerialPort comCAL;
extern int CalWaitMs;         ///< the receive wait in force
extern std::string CalReply;  ///< the last reply line

void InitCalibratorLine();

/// Throws RuntimeFault.
void OpenCalibratorPort(const std::string &device);

/// Text + LF. Nothing when no calibrator port is chosen or it is closed. A line that has gone is opened again first, and
/// the calibrator is told REMOTE; when that fails nothing is sent.
void SendCalibratorCommand(std::string_view text);
/// One wait of CalWaitMs for any bytes. "" at once in simulation and on a line that has gone.
std::string ReceiveCalibratorChunk();
std::string ReceiveCalibratorChunk1s();
std::string ReceiveCalibratorChunk5s();
/// The next reply line without its CR LF; "" on silence (1000 ms) and on Abort.
std::string ReadCalibratorLine();
/// Drops what waits on the line, also what the system still holds.
void DropCalibratorInput();

/// With hardware: the calibrator's line has gone.
bool CalibratorLineIsGone();

enum class CalibratorQuestion { Errors, Operate, Output };

struct CalibratorAnswer {
    std::string line;    ///< an answer to this question, trimmed; "" when none came
    std::string other;   ///< the last line that was passed over: another form, or an answer to an older question
    bool silent = true;  ///< not one byte came
};

/// ERR?, OPER? or OUT?. Waits 1000 ms for the answer, OPER? ten times as long (a calibrator that settles may hold it
/// back); after a line that was passed over 1000 ms for the next one. Nothing is waited for after Abort.
CalibratorAnswer AskCalibrator(CalibratorQuestion question);
/// A new output is told to the calibrator: an answer to an earlier OPER? or OUT? says nothing about it.
void BeginCalibratorOutput();

/// Pure: what a line answers. ERR?: whole number, comma, text. OPER?: 0 or 1. OUT?: number, comma, a unit that the
/// panel knows, whatever follows.
bool IsAnswer(CalibratorQuestion question, std::string_view text);

}  // namespace ombrix
