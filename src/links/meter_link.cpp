#include "links/meter_link.h"

#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/calibrator_simulator.h"
#include "links/meter_identity.h"
#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "links/meter_simulator.h"
#include "links/output_switch.h"
#include "links/uut.h"
#include "model/settings.h"
#include "platform/fault.h"
#include "session/live_output.h"
#include "session/state.h"

#include <string_view>

namespace ombrix {

std::string MeterError;

namespace {

constexpr int kNotFound = 99;
constexpr std::size_t kAnswerDigits = 4;  // two bytes of working memory

// Sets the bit of value 2 in the first digit of the bytes that the meter answered, and writes them to its setup word.
void SetSetupBit(const std::string &answer)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    constexpr std::string_view kBitOfTwoSet = "23236767ABABEFEF";
    const std::size_t digit = kDigits.find(answer.front());
    if (digit != std::string_view::npos)
        WriteNvmWords(MeterKind == kCtr ? 30 : 18, kBitOfTwoSet[digit] + answer.substr(1), "");
}

void OpenRoute()
{
    if (!HardwareMode)
        return;
    if (MeterPort == 0)
        UutSetup("9600");
    else
        OpenMeterPort(PortDevice(MeterPort));
}

std::string AskSetup()
{
    return MeterQuery('G', 50, 2, "");
}

int LookForMeter()
{
    OpenRoute();
    MeterCommandA1();
    std::string answer = AskSetup();
    if (answer.size() != kAnswerDigits && MeterStreams() && !Abort) {
        MeterCommandC0();  // ends the stream
        answer = AskSetup();
    }
    if (answer.size() != kAnswerDigits) {
        MeterError = "Meter not found";
        return kNotFound;
    }
    SendMeterCommand("X16DZ");
    DecodeMeterType(ReadMeterLine());
    if (!Abort)  // a stop while the type was asked for: nothing is written after it
        SetSetupBit(answer);
    return 0;
}

}  // namespace

int OpenMeterLink()
{
    Abort = false;
    SetMeterAddress("1");
    MeterError.clear();
    const ScopedFlag faults(SimAddressFaults);
    try {
        return LookForMeter();
    } catch (const RuntimeFault &fault) {
        MeterError = fault.what();
        return fault.Number();
    }
}

void InitLinks()
{
    CloseLinks();
    MeterError.clear();
    InitLiveOutput();
    InitCalibratorLine();
    InitCalibrator();
    InitCalibratorSimulator();
    InitMeterProtocol();
    InitMeterIdentity();
    InitMeterOperations();
    InitMeterSimulator();
    InitOutputSwitch();
}

void CloseLinks()
{
    comCAL.Close();
    comDPM.Close();
}

}  // namespace ombrix
