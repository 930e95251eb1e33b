#include "links/calibrator.h"

#include "links/cal_output.h"
#include "links/calibrator_line.h"
#include "links/line_wait.h"
#include "model/connection_tables.h"
#include "model/settings.h"
#include "platform/fault.h"
#include "platform/text.h"
#include "session/live_output.h"
#include "session/outlets.h"
#include "session/state.h"

#include <optional>

namespace ombrix {

std::string CalError;
bool CalHzFlag = false;
bool CalStandbyFlag = false;

namespace {

constexpr int kNotFound = 99;
constexpr int kAttempts = 5;
constexpr int kPolls = 5;
constexpr int kPollPauseMs = 500;
constexpr int kErrorReads = 32;  // no error queue is longer
constexpr int kThermocouples = 6;
constexpr char kFullStandby[] = "0 V, 0 Hz";  // resets the frequency of an AC output too

std::string OutputLine(const std::string &value, std::string_view mode)
{
    return "OUT " + value + " ; " + std::string(mode) + " ; *WAI";
}

CalOutput Describe(const std::string &value)
{
    const OutputValue parsed = ParseOutputValue(value);
    return DescribeCalOutput(parsed.number, parsed.unit);
}

bool IsError(const std::string &answer)
{
    return IsAnswer(CalibratorQuestion::Errors, answer) && Val(answer.substr(0, answer.find(','))) != 0;
}

void TellOutput(const std::string &value, bool operate)
{
    if (operate) {
        const CalOutput asked = Describe(value);
        NoteOutputAsked(asked.text, asked.level);
    } else {
        NoteStandbyAsked();
    }
    BeginCalibratorOutput();
    SendCalibratorCommand(OutputLine(value, operate ? "OPER" : "STBY"));
}

enum class Poll { Confirmed, NotYet, Silent };

Poll PollOperate(bool operate)
{
    PauseForInstrument(comCAL, kPollPauseMs);
    const CalibratorAnswer answer = AskCalibrator(CalibratorQuestion::Operate);
    if (answer.line == (operate ? "1" : "0"))
        return Poll::Confirmed;
    return answer.silent ? Poll::Silent : Poll::NotYet;
}

// One attempt. Nothing when another one may do better.
std::optional<bool> TryToReach(const std::string &value, bool operate)
{
    if (!Abort)
        CheckCalibratorErrors();
    if (operate && (Abort || CalibratorLineIsGone()))
        return false;  // a stop while the errors were read: nothing is switched on after it
    TellOutput(value, operate);
    const WaitNote note(operate ? "Calibrator: waiting for OPER" : "Calibrator: waiting for STBY");
    for (int poll = 0; poll < kPolls && !Abort; ++poll) {
        const Poll state = PollOperate(operate);
        if (state == Poll::Confirmed)
            return true;
        if (state == Poll::Silent || CalibratorLineIsGone())
            return false;
    }
    return std::nullopt;
}

// True when the calibrator says that it is in the state.
bool ReachState(const std::string &value, bool operate)
{
    for (int attempt = 0; attempt < kAttempts && (attempt == 0 || !Abort); ++attempt)
        if (const auto reached = TryToReach(value, operate))
            return *reached;
    return false;
}

// What the calibrator says that it delivers; without an answer what was requested. Nobody looks safer than he was while
// the state isn't confirmed.
void ShowReadBack(const std::string &value, bool confirmed)
{
    const WaitNote note("Calibrator: waiting for reply");
    const auto readBack = ParseReadBack(AskCalibrator(CalibratorQuestion::Output).line);
    const OutputValue output = readBack.value_or(ParseOutputValue(value));
    const CalOutput shown = DescribeCalOutput(output.number, output.unit);
    if (!confirmed && (!readBack || shown.level == Danger::Safe || shown.level < ShownDanger()))
        return;  // the worse of what was asked and what stood before it is shown already
    UpdateCalOutputPanel(output.number, output.unit);
    NoteOutputSeen(shown.text, shown.level);
}

int LookForCalibrator()
{
    OpenCalibratorPort(PortDevice(CalPort));
    ResetCalibrator();
    CalibratorRemote();
    const std::string answer = CheckCalibratorErrors();
    CalStandbyFlag = IsAnswer(CalibratorQuestion::Errors, answer);
    if (answer.empty()) {
        CalError = "Calibrator not found";
        return kNotFound;
    }
    NoteStandbyAsked();  // by its reset
    if (CalStandbyFlag) {
        NoteOutputConfirmed();
        ForgetLiveOutput();
    }
    return 0;
}

// Nothing is switched on while nobody knows what stands on the terminals.
bool TerminalsAreKnown()
{
    if (!HardwareMode || AlertText().empty())
        return true;
    CalStandbyFlag = false;
    if (CalibratorStandby())
        return true;
    Abort = true;
    return false;
}

// Once the operator is asked he may do it: the flag rises before the box opens.
bool ApplyByHand(const std::string &value)
{
    RaiseDangerFlag(DangerOfValue(value));
    CalStandbyFlag = false;
    if (!outlets.promptOperator("Apply an accurate input signal of " + value + " to the Meter", "Apply Input Signal")) {
        Abort = true;
        return false;
    }
    const OutputValue applied = ParseOutputValue(value);
    UpdateCalOutputPanel(applied.number, applied.unit);
    return true;
}

bool RemoveByHand()
{
    if (!outlets.promptOperator("Remove any input signal from the meter", "Remove Input"))
        return false;
    NoteStandbyAsked();
    NoteOutputConfirmed();
    UpdateCalOutputPanel(0, "V");
    return true;
}

}  // namespace

void InitCalibrator()
{
    CalError.clear();
    CalHzFlag = CalStandbyFlag = false;
}

int OpenCalibratorLink()
{
    CalHzFlag = CalStandbyFlag = false;
    CalError.clear();
    if (!HardwareMode || CalPort == 0) {
        ForgetLiveOutput();
        return 0;
    }
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

std::string CheckCalibratorErrors()
{
    const WaitNote note("Calibrator: waiting for reply");
    CalibratorAnswer answer = AskCalibrator(CalibratorQuestion::Errors);
    std::string first = answer.line.empty() ? answer.other : answer.line;
    if (IsError(first))
        outlets.showRemark("Calibrator: " + first);
    for (int reads = 1; IsError(answer.line) && !Abort && reads < kErrorReads; ++reads)
        answer = AskCalibrator(CalibratorQuestion::Errors);
    return first;
}

bool SetCalibratorOutput(const std::string &value, std::string_view mode)
{
    if (Quitting) {  // the last word: nobody waits for an answer any more
        TellOutput(kFullStandby, false);
        return false;
    }
    if (CalPort == 0)
        return true;
    CalStandbyFlag = false;
    const bool confirmed = ReachState(value, mode == "OPER");
    if (confirmed)
        NoteOutputConfirmed();
    if (Abort || CalibratorLineIsGone())
        return false;
    ShowReadBack(value, confirmed);
    return confirmed && !Abort;
}

bool ApplyInput(const std::string &value)
{
    if (!TerminalsAreKnown())
        return false;
    CalHzFlag = Holds(value, "Hz");
    if (CalPort == 0)
        return ApplyByHand(value);
    SetCalibratorOutput(value, "OPER");
    if (CalibratorLineIsGone())
        Abort = true;  // what follows would read an input that nobody knows
    return !Abort;
}

bool ApplyInputValue(const std::string &value)
{
    if (!ApplyInput(value))
        return false;
    if (Holds(value, "OHM"))
        SetZComp("WIRE4");
    return true;
}

bool InputStands()
{
    return !HardwareMode || CalPort == 0 || AskedOutputStands();
}

bool RemoveInput()
{
    const bool lastWord = Quitting && CalPort != 0;
    if (CalStandbyFlag && !lastWord)
        return true;
    if (CalPort != 0)
        CalStandbyFlag = SetCalibratorOutput(CalHzFlag ? "1 mV" : "0 V", "STBY");
    else if (RemoveByHand())
        CalStandbyFlag = true;
    return CalStandbyFlag;
}

bool CalibratorStandby()
{
    if (CalPort == 0) {
        CalHzFlag = false;
        return RemoveInput();
    }
    if (!CalStandbyFlag || CalHzFlag || Quitting) {
        CalHzFlag = false;
        CalStandbyFlag = SetCalibratorOutput(kFullStandby, "STBY");
    }
    return CalStandbyFlag;
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

bool ApplyFahrenheit(const std::string &number)
{
    if (!ApplyInput(number + " FAR"))
        return false;
    SetZComp("WIRE4");
    return true;
}

void SetZComp(std::string_view text)
{
    SendCalibratorCommand("ZCOMP " + std::string(text));
}

}  // namespace ombrix
