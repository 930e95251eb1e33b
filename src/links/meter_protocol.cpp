#include "links/meter_protocol.h"

#include "links/calibrator_line.h"
#include "links/line_wait.h"
#include "links/meter_frame.h"
#include "links/meter_simulator.h"
#include "links/uut.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "platform/wire_trace.h"
#include "session/outlets.h"
#include "session/state.h"

namespace ombrix {

SerialPort comDPM;
std::string MeterAddr = "1";
std::string MeterReply;
std::int64_t LastRestartMicros = 0;

namespace {

constexpr int kSilenceMs = 1000;
constexpr int kReplyPauseMs = 500;  // what a meter gets to answer a question
constexpr char kCr = '\r';

bool streams = false;

// RTS frames an exchange: on before the frame, off after the reply, whatever ended the wait.
class RtsEnd
{
public:
    RtsEnd() = default;
    ~RtsEnd() { comDPM.SetRts(false); }
    RtsEnd(const RtsEnd &) = delete;
    RtsEnd &operator=(const RtsEnd &) = delete;
};

void SwitchSignalsOn()
{
    comDPM.SetRts(true);
    comDPM.SetDtr(true);
}

bool OpenMeterPortAgain()
{
    if (!comDPM.OpenAgain())
        return false;
    SwitchSignalsOn();
    return true;
}

const SerialPort &LineOfRoute()
{
    return MeterPort == 0 ? comCAL : comDPM;
}

// A trace is read for what went wrong. After a stop nobody waited long enough to know.
void MarkReply(const std::string &reply)
{
    if (Abort || HoldsLine(reply))
        return;
    const char *words = streams             ? "The meter streams, no answer"
                        : MeterLineIsGone() ? "The meter did not answer: its line has gone"
                        : reply.empty()     ? "The meter did not answer"
                                            : "The meter did not end its answer";
    MarkTrace(MeterPort == 0 ? TraceLine::Calibrator : TraceLine::Meter, words);
}

}  // namespace

void InitMeterProtocol()
{
    SetMeterAddress("1");
    MeterReply.clear();
    streams = false;
    LastRestartMicros = 0;
    comDPM.onBytes = [](ByteWay way, std::string_view bytes) { Trace(TraceLine::Meter, way, bytes); };
}

bool Simulated()
{
    return !HardwareMode;
}

bool MeterLineIsGone()
{
    return HardwareMode && LineOfRoute().IsGone();
}

void OpenMeterPort(const std::string &device)
{
    comDPM.Open(device);
    SwitchSignalsOn();
}

void SetMeterAddress(const std::string &address)
{
    MeterAddr = address;
}

void SendMeterCommand(std::string_view payload)
{
    if (!HardwareMode) {
        if (const auto reply = SimulateMeterCommand(payload, MeterAddr))
            MeterReply = *reply;
        return;
    }
    const std::string frame = "*" + MeterAddr + std::string(payload) + kCr;
    if (MeterPort == 0) {
        UutSend(frame);
        return;
    }
    if (comDPM.IsGone() && !OpenMeterPortAgain())
        return;
    comDPM.SetRts(true);
    comDPM.Drop();
    comDPM.Write(frame);
}

std::string ReceiveMeterChunk()
{
    if (!HardwareMode)
        return "";
    if (MeterPort == 0)
        return UutReceive();
    return ReceiveChunk(comDPM, kSilenceMs);
}

std::string ReadMeterLine()
{
    if (!HardwareMode)
        return MeterReply;

    const WaitNote note("Meter: waiting for reply");
    const RtsEnd rtsEnd;
    MeterReply.clear();
    std::string reply;
    Deadline silence(kSilenceMs);
    while (!Abort && !HoldsLine(reply) && reply.size() <= kReplyLimit) {
        const std::string chunk = ReceiveMeterChunk();
        if (!chunk.empty())
            silence.Restart();
        else if (silence.Passed() || MeterLineIsGone())
            break;
        reply += chunk;
    }
    streams = reply.size() > kReplyLimit || reply.find(kRecordEnd) != std::string::npos;
    MarkReply(reply);
    return MeterReply = LineOf(reply);
}

bool MeterStreams()
{
    return streams;
}

void FlushMeterInput()
{
    if (!HardwareMode)
        return;
    if (MeterPort == 0)
        UutFlush();
    else
        comDPM.Drop();
}

std::string MeterQuery(char letter, int address, int count, std::string_view text)
{
    const WaitNote note("Meter: waiting for reply");
    FlushMeterInput();
    MeterSend(letter, address, count, text);
    PauseForInstrument(LineOfRoute(), kReplyPauseMs);
    return ReadMeterLine();
}

void MeterSend(char letter, int address, int count, std::string_view text)
{
    SendMeterCommand(MeterPayload(letter, address, count, text));
    if ((letter == 'X' || letter == 'W') && !text.ends_with('Z') && MeterAddr == "1")
        LastRestartMicros = NowMicros();
}

}  // namespace ombrix
