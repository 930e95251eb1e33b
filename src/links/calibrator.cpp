#include "links/calibrator.h"

#include "links/cal_output.h"
#include "links/calibrator_simulator.h"
#include "links/meter_protocol.h"
#include "model/connection_tables.h"
#include "model/settings.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/state.h"

namespace ombrix {

SerialPort comCAL;
std::string CalError;
bool CalHzFlag = false;
bool CalStandbyFlag = false;
int CalWaitMs = 1000;
std::string CalReply;

namespace {

constexpr int kNotFound = 99;
constexpr int kAttempts = 5;
constexpr int kPolls = 5;
constexpr int kPollPauseMs = 500;
constexpr int kSilentReads = 10;  // of one poll: a calibrator that settles may hold its answer back
constexpr int kErrorReads = 32;   // no error queue is longer
constexpr int kThermocouples = 6;
constexpr char kFullStandby[] = "0 V, 0 Hz";  // resets the frequency of an AC output too
constexpr std::string_view kReplyEnd = "\r\n";

std::string OutputLine(const std::string &value, std::string_view mode)
{
    return "OUT " + value + " ; " + std::string(mode) + " ; *WAI";
}

// One question and its answer. A late answer to an earlier question would be taken for this one's.
std::string AskCalibrator(std::string_view question)
{
    if (HardwareMode)
        comCAL.ReadAll();
    SendCalibratorCommand(question);
    return ReadCalibratorLine();
}

std::string PollOperate()
{
    DelayMs(kPollPauseMs);
    std::string state = AskCalibrator("OPER?");
    for (int reads = 1; state.empty() && reads < kSilentReads && !Abort; ++reads)
        state = ReadCalibratorLine();
    return Trim(state);
}

// True when the calibrator says that it is in the state.
bool ReachState(const std::string &value, std::string_view mode)
{
    const bool operate = mode == "OPER";
    const std::string wanted = operate ? "1" : "0";
    for (int attempt = 0; attempt < kAttempts && !Abort; ++attempt) {
        CheckCalibratorErrors();
        if (operate) {
            if (Abort)  // a stop while the errors were read: nothing is switched on after it
                return false;
            RaiseDangerFlag(DangerOfValue(value));
        }
        SendCalibratorCommand(OutputLine(value, mode));
        const WaitNote note(operate ? "Calibrator: waiting for OPER" : "Calibrator: waiting for STBY");
        for (int poll = 0; poll < kPolls && !Abort; ++poll)
            if (PollOperate() == wanted)
                return true;
    }
    return false;
}

// Fields between commas. A line without one answers an OPER? that was given up: the real answer is behind it.
std::string ReadOutput()
{
    std::string reply = AskCalibrator("OUT?");
    if (reply.empty() || Holds(reply, ","))
        return reply;
    const std::string next = ReadCalibratorLine();
    return next.empty() ? reply : next;
}

void ShowReadBack(const std::string &value, bool confirmed)
{
    const WaitNote note("Calibrator: waiting for reply");
    const std::string reply = ReadOutput();
    if (reply.find_first_of("0123456789") == std::string::npos) {
        ShowUnansweredOutput(value, confirmed);
        return;
    }
    const auto fields = Split(reply, ',');
    UpdateCalOutputPanel(Val(fields[0]), fields.size() > 1 ? Trim(fields[1]) : "");
}

int LookForCalibrator()
{
    comCAL.Open(PortDevice(CalPort));
    ResetCalibrator();
    CalibratorRemote();
    if (!CheckCalibratorErrors().empty())
        return 0;
    CalError = "Calibrator not found";
    return kNotFound;
}

}  // namespace

int OpenCalibratorLink()
{
    CalHzFlag = CalStandbyFlag = false;
    CalError.clear();
    ForgetDangerFlag();
    if (!HardwareMode || CalPort == 0)
        return 0;
    try {
        return LookForCalibrator();
    } catch (const RuntimeFault &fault) {
        CalError = fault.what();
        return fault.Number();
    }
}

void ResetCalibrator()
{
    if (CalPort == 0)
        return;
    SendCalibratorCommand("*RST ; *CLS");
    CalStandbyFlag = true;
}

void CalibratorRemote()
{
    SendCalibratorCommand("REMOTE");
}

void CalibratorLocal()
{
    SendCalibratorCommand("LOCAL");
}

void SendCalibratorCommand(std::string_view text)
{
    if (CalPort == 0)
        return;
    if (HardwareMode)
        comCAL.Write(std::string(text) + "\n");
    else
        SimulateCalibratorCommand(text);
}

std::string ReceiveCalibratorChunk()
{
    if (!HardwareMode)
        return "";
    const Deadline limit(CalWaitMs);
    while (comCAL.BytesWaiting() == 0 && !limit.Passed())
        PumpEvents(limit.LeftMs());
    return comCAL.ReadAll();
}

std::string ReceiveCalibratorChunk1s()
{
    CalWaitMs = 1000;
    return ReceiveCalibratorChunk();
}

std::string ReceiveCalibratorChunk5s()
{
    CalWaitMs = 5000;
    return ReceiveCalibratorChunk();
}

std::string ReadCalibratorLine()
{
    if (!HardwareMode)
        return CalReply;
    CalReply.clear();
    std::string reply;
    while (!Abort && !Holds(reply, kReplyEnd) && reply.size() <= kReplyLimit) {
        const std::string chunk = ReceiveCalibratorChunk1s();
        if (chunk.empty())
            break;
        reply += chunk;
    }
    const std::size_t end = reply.find(kReplyEnd);
    return CalReply = end == std::string::npos ? "" : reply.substr(0, end);
}

std::string CheckCalibratorErrors()
{
    const WaitNote note("Calibrator: waiting for reply");
    std::string first = AskCalibrator("ERR?");
    std::string reply = first;
    for (int reads = 1; !reply.empty() && !reply.starts_with("0,") && !Abort && reads < kErrorReads; ++reads)
        reply = AskCalibrator("ERR?");
    return first;
}

bool SetCalibratorOutput(const std::string &value, std::string_view mode)
{
    if (Quitting) {  // the last word: nobody waits for an answer any more
        SendCalibratorCommand(OutputLine(kFullStandby, "STBY"));
        return true;
    }
    if (CalPort == 0)
        return true;
    CalStandbyFlag = false;
    const bool confirmed = ReachState(value, mode);
    if (Abort)
        return false;
    ShowReadBack(value, confirmed);
    return !Abort;
}

void ApplyInput(const std::string &value)
{
    CalHzFlag = Holds(value, "Hz");
    if (CalPort != 0) {
        SetCalibratorOutput(value, "OPER");
        return;
    }
    outlets.promptOperator("Apply an accurate input signal of " + value + " to the Meter", "Apply Input Signal");
    const OutputValue applied = ParseOutputValue(value);
    UpdateCalOutputPanel(applied.number, applied.unit);
    CalStandbyFlag = false;
}

void ApplyInputValue(const std::string &value)
{
    ApplyInput(value);
    if (Holds(value, "OHM"))
        SetZComp("WIRE4");
}

void RemoveInput()
{
    const bool lastWord = Quitting && CalPort != 0;
    if (CalStandbyFlag && !lastWord)
        return;
    if (CalPort != 0) {
        CalStandbyFlag = SetCalibratorOutput(CalHzFlag ? "1 mV" : "0 V", "STBY");
        return;
    }
    outlets.promptOperator("Remove any input signal from the meter", "Remove Input");
    UpdateCalOutputPanel(0, "V");
    CalStandbyFlag = true;
}

void CalibratorStandby()
{
    if (CalPort == 0) {
        CalHzFlag = false;
        RemoveInput();
    } else if (!CalStandbyFlag || CalHzFlag || Quitting) {
        CalHzFlag = false;
        CalStandbyFlag = SetCalibratorOutput(kFullStandby, "STBY");
    }
}

void SelectThermocouple(int index)
{
    if (index < 0 || index >= kThermocouples)
        return;
    SendCalibratorCommand("TSENS_TYPE TC");
    SendCalibratorCommand("TC_TYPE " + Left(ThermocoupleName(index), 1));
    ApplyInput("0 CEL");
}

void SelectRtd()
{
    SendCalibratorCommand("TSENS_TYPE RTD");
    SendCalibratorCommand("RTD_TYPE PT385");
    SetZComp("WIRE4");
}

void ApplyFahrenheit(const std::string &number)
{
    ApplyInput(number + " FAR");
    SetZComp("WIRE4");
}

void SetZComp(std::string_view text)
{
    SendCalibratorCommand("ZCOMP " + std::string(text));
}

}  // namespace ombrix
