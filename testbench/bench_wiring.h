// What stands on a bench and how it is joined. Only the bench's own sources look in here.
#pragma once

#include <functional>

#include "testbench/bench.h"
#include "testbench/faults.h"
#include "testbench/meter.h"
#include "testbench/stream_trouble.h"

namespace ombrix::bench {

class Bench::Parts
{
public:
    explicit Parts(const BenchSetup &wanted);

    /// Lets everything happen that is due up to now, in its order.
    void Advance(Micros now);
    std::optional<Micros> NextDue() const;

    Wire &In(Line line) { return line == Line::Meter ? m_meterIn : m_calibratorIn; }
    Wire &Out(Line line) { return line == Line::Meter ? m_meterOut : m_calibratorOut; }

    void SwitchFault(const WantedFault &wanted, bool on);
    /// The next reply of a line's instrument to something that holds a text is this instead.
    void AnswerNext(Line line, const std::string &bytes, const std::string &to);
    bool ApplyByHand(const std::string &value, Micros now);
    void RemoveByHand(Micros now);
    /// Something that leads to the meter's terminals has changed.
    void SignalChanged(Micros now);
    Signal Terminals() const;
    char SwitchPosition() const;

    BenchSetup setup;
    Meter meter;
    Calibrator calibrator;
    UutPort uutPort;
    Faults faults;
    StreamSpoiler stream;
    std::optional<Value> byHand;
    std::vector<OutputEvent> handHistory;
    bool leadsSwapped = false;
    int exchanges = 0;
    std::vector<std::string> protocolErrors;
    std::vector<TranscriptLine> transcript;

private:
    struct Happening {
        Micros due;
        std::function<void(Micros)> run;
    };
    std::optional<Happening> NextHappening();

    void TakeMeterByte(Micros now);
    void TakeCalibratorByte(Micros now);
    void TakeTunnelByte(Micros now);
    void RunCalibrator(Micros now);
    void RunMeter(Meter &which, Micros now);
    void RestartMeter(Micros now);
    /// Tells the instruments which faults are in force.
    void ApplyFaults(Micros now);

    /// True when a command that has arrived over a line is lost with its port.
    bool BeginExchange(Line line, Micros now);
    void HearFrame(const Frame &frame, Micros now);
    void ExecuteFrame(Meter &which, const MeterCommand &command, Micros now);
    void HearCommand(const std::string &line, Micros now);
    /// True when it was one for the meter behind the calibrator.
    bool HearTunnelCommand(const std::string &line, Micros now);
    void MeterSays(const std::string &bytes, Micros from);
    void MeterReplies(const std::string &reply, Micros now);
    void CalibratorReplies(const std::string &reply, Micros now);
    void Say(Line line, Wire &out, const std::string &reply, Micros from);
    std::optional<std::string> PlannedAnswer(Line line);
    void DropLostPorts();

    void Note(Micros time, Line line, bool fromStation, std::string_view bytes, const std::string &note);
    void NoteLast(const std::string &note);
    void StationError(Micros now, const std::string &what);

    struct Answer {
        Line line;
        std::string bytes;
        std::string to;
    };
    std::vector<Answer> m_answers;
    std::string m_heard[2];               // from the station: the last frame, the last command
    std::optional<Micros> m_nextRestart;  // of a meter that restarts by itself
    Meter m_switch;                       // the meter at address 2
    bool m_switchUsed = false;
    FrameReader m_frames;
    CommandReader m_commands;
    Wire m_meterIn;
    Wire m_meterOut;
    Wire m_calibratorIn;
    Wire m_calibratorOut;
    Wire m_tunnelIn;  // from the calibrator to the meter behind it
    Wire m_tunnelOut;
    Micros m_now = 0;
};

}  // namespace ombrix::bench
