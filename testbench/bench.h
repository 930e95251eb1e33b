// One meter and one calibrator on a bench: what the station's two lines lead to.
//
// Nothing here reads a clock or a port: bytes and the time go in, bytes come out. Time is microseconds of any steady
// clock and never goes back.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "testbench/analog_output.h"
#include "testbench/calibrator.h"
#include "testbench/lines.h"
#include "testbench/transcript.h"
#include "testbench/truth.h"
#include "testbench/uut_port.h"
#include "testbench/wire.h"

namespace ombrix::bench {

struct BenchSetup {
    int board = 0;  ///< SCType of the meter's board
    int kind = 1;   ///< 1 DPM, 2 WtMtr, 3 CTR (only with the VF board, which is always one)
    bool xmtr = false;
    unsigned seed = 1;              ///< draws the unit's hidden errors and its noise
    bool uut = false;               ///< the meter hangs on the calibrator's UUT port
    bool calibrator = true;         ///< false: signals are applied by hand
    bool outputSwitch = true;       ///< a second meter at address 2 answers and switches the signal
    int operateDelayMs = 200;       ///< from OUT ... OPER or STBY to the state in force
    std::string signOfLife = "\r";  ///< what a counter says when it has restarted
};

class Bench
{
public:
    explicit Bench(const BenchSetup &setup);
    ~Bench();
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

    // ---- the lines ----

    /// Bytes that the station sends from now on. They take their time on the line: 1.042 ms each.
    void Receive(Line line, std::string_view bytes, Micros now);
    /// Bytes that have come from the instrument up to now, 1.042 ms each.
    std::string Collect(Line line, Micros now);
    /// When the next byte of a line arrives or the next thing happens; nothing when only input can change anything.
    std::optional<Micros> NextDue(Micros now);
    /// The line leads nowhere: its carrier hangs up, and is back when this is false again.
    bool PortGone(Line line) const;

    // ---- faults, by name (the console's help tells what each does); some take a number: "trips=200" ----

    static std::vector<std::string> FaultNames();
    /// A name that can be switched.
    static bool IsFault(const std::string &name);
    /// False for an unknown name. A fault begins at the time that the bench heard of last.
    bool SwitchFault(const std::string &name, bool on);
    bool FaultIsOn(const std::string &name) const;
    /// From the exchange of this number on, counted from 0. A fault that isn't lasting ends after its first effect; a
    /// port comes back after 2 s. False for an unknown name.
    bool FaultAtExchange(const std::string &name, int exchange, bool lasting);
    /// Frames and calibrator commands that have arrived, over both lines.
    int Exchanges() const;

    /// The meter's stream of counts from now on, by name (stream_trouble.h); "" is a sound one. False for another name.
    bool SpoilStream(const std::string &name);

    // ---- the operator's hands ----

    /// A signal on the terminals in place of the calibrator's, until it is removed. False when the text is no value.
    bool Apply(const std::string &value, Micros now);
    void Remove(Micros now);
    void SwapLeads(bool swapped, Micros now);
    /// On AC boards steady inputs are read while it is in.
    void InstallDcJumper(bool installed, Micros now);
    /// Turns a trimmer or changes its resistors: "R9" or "R10" moves the +10 mV reading, "R12" or "R13/R14" the
    /// -200 mV reading, "R38" the 2 V reading at 10 kHz, by display counts; "R3" what an external meter shows at TP1, by
    /// mV, "R25" the duty cycle, by percent. False for another name.
    bool Trim(const std::string &name, double counts, Micros now);
    /// Solders a resistor of so many megohms across R13 or R14: the one makes a negative reading larger, the other smaller.
    /// False for another name.
    bool AddResistor(const std::string &name, double megohms, Micros now);
    /// What an external meter shows at TP1, in mV, and how far the duty cycle is from equal, in percent.
    double Tp1() const;
    double DutyCycle() const;
    /// What the bridge of the ratio steps reads on a right board, 16390 at first.
    void SetRatioReading(double counts);
    /// Replaces one word of the meter's memory; it takes effect with the next restart.
    void SetWord(int word, std::uint16_t value);
    /// From now on a word of the memory takes nothing that is written to it.
    void WearOut(int word);
    /// Blocks of the UUT port in one form only; otherwise each of the three in turn.
    void UseBlockForm(BlockForm form);

    // ---- what a test says in the instruments' place ----

    /// The next reads of the display are answered with these texts, as they are; the last one stays. None gives the
    /// display back.
    void ShowNext(const std::vector<std::string> &texts);
    /// The next reply of a line's instrument, to a frame or command that holds `to`, is these bytes instead; none is
    /// silence. Several wait their turn. No fault touches them.
    void AnswerNext(Line line, const std::string &bytes, const std::string &to = "");

    // ---- what the bench knows ----

    /// What no right station does: broken frames, frames to a meter that restarts, commands the calibrator refuses.
    std::vector<std::string> ProtocolErrors() const;
    /// Ranges and trims of the board, in the order of their steps.
    std::vector<RangeTruth> Truths() const;
    /// The first truth of a position; an empty title when it has none.
    RangeTruth TruthOf(int position) const;
    /// The first truth whose title begins with this one.
    RangeTruth TruthOf(const std::string &title) const;
    /// Error in display counts; not a number when there is no such truth.
    double RemainingError(int position) const { return ErrorOf(TruthOf(position)); }
    double RemainingError(const std::string &title) const { return ErrorOf(TruthOf(title)); }
    /// The analog output's words, with the current offset point in uA: 200 or 4000.
    std::vector<RangeTruth> AnalogTruths(int currentPoint) const;
    /// What an output meter shows at connector 1 or 2.
    AnalogReading AnalogOut(int connector) const;
    /// Whether the station, or somebody, works on the analog output.
    bool AnalogIsWorkedOn() const;

    double DisplayCounts(Micros now) const;       ///< without noise; an infinity is an overload
    std::string DisplayTextAt(Micros now) const;  ///< without noise
    Signal Terminals() const;                     ///< what stands on the meter's terminals
    int RangeCode() const;                        ///< that the meter works with
    int Restarts() const;
    Words Nvm() const;
    std::array<std::uint8_t, 256> Ram() const;
    char SwitchPosition() const;  ///< 'V' or 'A'
    CalibratorState CalibratorNow() const;
    /// Of the calibrator and of the operator's hands, in the order of time.
    std::vector<OutputEvent> OutputHistory() const;
    const std::vector<TranscriptLine> &Transcript() const;
    /// The last lines of the transcript, for a failure's message.
    std::string LastWords(std::size_t lines = 20) const;

private:
    static double ErrorOf(const RangeTruth &truth);
    class Parts;
    std::unique_ptr<Parts> m_parts;
};

}  // namespace ombrix::bench
