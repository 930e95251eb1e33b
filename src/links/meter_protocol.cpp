#include "links/meter_protocol.h"

#include "links/meter_simulator.h"
#include "links/uut.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/delays.h"
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

// RTS frames an exchange: on before the frame, off after the reply, whatever ended the wait.
class RtsEnd
{
public:
    RtsEnd() = default;
    ~RtsEnd() { comDPM.SetRts(false); }
    RtsEnd(const RtsEnd &) = delete;
    RtsEnd &operator=(const RtsEnd &) = delete;
};

}  // namespace

void SetMeterAddress(const std::string &address)
{
    MeterAddr = address;
}

void SendMeterCommand(std::string_view payload)
{
    if (!HardwareMode) {
        SimulateMeterCommand(payload);
        return;
    }
    const std::string frame = "*" + MeterAddr + std::string(payload) + kCr;
    if (MeterPort == 0) {
        UutSend(frame);
        return;
    }
    comDPM.SetRts(true);
    comDPM.ReadAll();
    comDPM.Write(frame);
}

std::string ReceiveMeterChunk()
{
    if (!HardwareMode)
        return "";
    if (MeterPort == 0)
        return UutReceive();
    const Deadline limit(kSilenceMs);
    while (comDPM.BytesWaiting() == 0 && !limit.Passed())
        PumpEvents(limit.LeftMs());
    return comDPM.ReadAll();
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
        else if (silence.Passed())
            break;
        reply += chunk;
    }
    return MeterReply = LineOf(reply);
}

void FlushMeterInput()
{
    if (!HardwareMode)
        return;
    if (MeterPort == 0)
        UutFlush();
    else
        comDPM.ReadAll();
}

std::string MeterQuery(char letter, int address, int count, std::string_view text)
{
    const WaitNote note("Meter: waiting for reply");
    FlushMeterInput();
    MeterSend(letter, address, count, text);
    DelayMs(kReplyPauseMs);
    return ReadMeterLine();
}

void MeterSend(char letter, int address, int count, std::string_view text)
{
    SendMeterCommand(MeterPayload(letter, address, count, text));
    if ((letter == 'X' || letter == 'W') && !text.ends_with('Z') && MeterAddr == "1")
        LastRestartMicros = NowMicros();
}

char CountChar(int count)
{
    return count >= 1 && count <= static_cast<int>(kCountAlphabet.size())
               ? kCountAlphabet[static_cast<std::size_t>(count - 1)]
               : '1';
}

std::string MeterPayload(char letter, int address, int count, std::string_view text)
{
    return std::string(1, letter) + CountChar(count) + HexText(address, 2) + std::string(text);
}

bool HoldsLine(std::string_view reply)
{
    return reply.find(kCr) != std::string_view::npos;
}

std::string LineOf(std::string_view reply)
{
    return HoldsLine(reply) ? std::string(reply.substr(0, reply.find(kCr))) : "";
}

}  // namespace ombrix
