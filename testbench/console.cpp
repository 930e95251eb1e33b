#include "testbench/console.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/text.h"
#include "testbench/faults.h"

namespace ombrix::bench {
namespace {

constexpr const char *kHelp =
    "fault NAME[=N] [on|off]    switch a fault; without on or off the other way round\n"
    "fault NAME[=N] at N [stay] from exchange N on, until its first effect or to stay\n"
    "faults                     names of all faults, those in force marked\n"
    "truth [STEP]               what each word should be and what error remains\n"
    "analog [200|4000]          the same for the analog output\n"
    "output                     what an output meter shows at the analog output's connectors\n"
    "apply VALUE                put a signal on the terminals by hand: apply 200 mV\n"
    "remove                     take it away\n"
    "leads swapped|straight     the input leads\n"
    "jumper in|out              the DC jumper of an AC board\n"
    "trim NAME COUNTS           R9, R10, R12, R13/R14 or R38 by display counts,\n"
    "                           R3 by mV at TP1, R25 by percent; adjust is the same\n"
    "add R13|R14 MEGOHMS        solder a resistor across it\n"
    "board                      what an external meter shows at TP1, and the duty cycle\n"
    "stream NAME|sound          what is wrong with the stream of counts\n"
    "ratio COUNTS               what the bridge reads on a right board\n"
    "word N [HEX]               show or replace a word of the meter's memory\n"
    "errors                     what the station did that no right station does\n"
    "log [N]                    the last lines that were said, 20 at first\n"
    "history                    everything the calibrator put out\n"
    "status                     the line that shows once a second\n"
    "quit                       end";

// Words between blanks.
std::vector<std::string> SplitWords(std::string_view line)
{
    std::vector<std::string> words;
    for (const std::string &word : Split(line, ' '))
        if (!Trim(word).empty())
            words.push_back(Trim(word));
    return words;
}

std::string WordAt(const std::vector<std::string> &words, std::size_t index)
{
    return index < words.size() ? words[index] : "";
}

bool IsNumber(const std::string &text)
{
    return text.find_first_of("0123456789") != std::string::npos &&
           text.find_first_not_of("+-.0123456789") == std::string::npos;
}

// Held at the limits: whoever types more means all of them, or none.
int WholeNumber(const std::string &text)
{
    return RoundHalfEven(std::trunc(Val(text)));
}

std::string Joined(const std::vector<std::string> &lines)
{
    std::string text;
    for (const std::string &line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

std::string SetFault(Bench &bench, const std::vector<std::string> &words)
{
    const std::string name = WordAt(words, 1);
    const std::string how = WordAt(words, 2);
    if (how == "at") {
        if (!IsNumber(WordAt(words, 3)))
            return "which exchange? fault NAME at N [stay]";
        const int exchange = WholeNumber(words[3]);
        const bool stays = WordAt(words, 4) == "stay";
        return bench.FaultAtExchange(name, exchange, stays) ? name + " at exchange " + words[3]
                                                            : "no fault has the name '" + name + "'";
    }
    if (!how.empty() && how != "on" && how != "off")
        return "on, off or at N, not '" + how + "'";
    const bool on = how.empty() ? !bench.FaultIsOn(name) : how == "on";
    if (!bench.SwitchFault(name, on))
        return "no fault has the name '" + name + "'; faults lists them";
    return name + (on ? " is on" : " is off");
}

std::string ListFaults(const Bench &bench)
{
    std::vector<std::string> lines;
    for (const std::string &name : Bench::FaultNames())
        lines.push_back((bench.FaultIsOn(name) ? "* " : "  ") + name);
    return Joined(lines);
}

std::string TellTruth(const Bench &bench, const std::string &title)
{
    std::vector<std::string> lines;
    for (const RangeTruth &truth : bench.Truths())
        if (truth.title.starts_with(title))
            lines.push_back(TruthText(truth));
    return lines.empty() ? "no step has the title '" + title + "'" : Joined(lines);
}

std::string TellAnalog(const Bench &bench, const std::string &point)
{
    if (!point.empty() && point != "200" && point != "4000")
        return "the current offset point is 200 or 4000";
    std::vector<std::string> lines;
    for (const RangeTruth &truth : bench.AnalogTruths(point == "4000" ? 4000 : 200))
        lines.push_back(TruthText(truth));
    return Joined(lines);
}

std::string OutputText(const Bench &bench, int connector)
{
    const AnalogReading reading = bench.AnalogOut(connector);
    return "output " + std::to_string(connector) + " " + Format(reading.value, 2) + " " + reading.unit;
}

// The output meter alone: what an operator would read, and nothing of the truth behind it.
std::string ReadOutputMeter(const Bench &bench)
{
    return Joined({OutputText(bench, 1), OutputText(bench, 2)});
}

std::string TurnTrimmer(Bench &bench, const std::vector<std::string> &words, Micros now)
{
    if (!IsNumber(WordAt(words, 2)))
        return "by how many counts? trim R10 -20";
    return bench.Trim(words[1], Val(words[2]), now) ? words[1] + " by " + words[2] + " counts"
                                                    : "no trimmer has the name '" + words[1] + "'";
}

std::string ShowOrSetWord(Bench &bench, const std::vector<std::string> &words)
{
    const int word = IsNumber(WordAt(words, 1)) ? WholeNumber(words[1]) : -1;
    if (word < 0 || word >= kWords)
        return "which word, 0 to 255?";
    const std::string hex = WordAt(words, 2);
    if (!hex.empty()) {
        if (!IsHexText(hex) || hex.size() > 4)
            return "'" + hex + "' is no word: four hexadecimal digits";
        bench.SetWord(word, static_cast<std::uint16_t>(HexValue(hex)));
    }
    return "word " + words[1] + " is " + HexText(bench.Nvm()[static_cast<std::size_t>(word)], 4);
}

std::string TellHistory(const Bench &bench)
{
    std::vector<std::string> lines;
    for (const OutputEvent &event : bench.OutputHistory())
        lines.push_back(Format(static_cast<double>(event.time) / 1e6, 3) + "  " + (event.operate ? "OPER " : "STBY ") +
                        event.text);
    return Joined(lines);
}

// What the operator does with his hands; nothing when it is another command.
std::optional<std::string> UseHands(Bench &bench, const std::vector<std::string> &words, const std::string &rest,
                                    Micros now)
{
    const std::string &command = words[0];
    const std::string what = WordAt(words, 1);
    if (command == "apply")
        return bench.Apply(rest, now) ? "applied: " + SignalText(bench.Terminals())
                                      : "'" + rest + "' is no value; apply 200 mV, apply 2 V, 300 Hz, apply 100 OHM";
    if (command == "remove") {
        bench.Remove(now);
        return "removed";
    }
    if (command == "leads" && (what == "swapped" || what == "straight")) {
        bench.SwapLeads(what == "swapped", now);
        return "leads " + what;
    }
    if (command == "jumper" && (what == "in" || what == "out")) {
        bench.InstallDcJumper(what == "in", now);
        return "jumper " + what;
    }
    if (command == "add")
        return IsNumber(WordAt(words, 2)) && bench.AddResistor(what, Val(words[2]), now)
                   ? what + " has " + words[2] + "M across it"
                   : "which resistor? add R13 4.3, add R14 10";
    if (command == "board")
        return "TP1 " + Format(bench.Tp1(), 2) + " mV, duty cycle off by " + Format(bench.DutyCycle(), 2) + " %";
    if (command == "trim" || command == "adjust")
        return TurnTrimmer(bench, words, now);
    if (command == "stream" && bench.SpoilStream(what == "sound" ? "" : what))
        return "the stream: " + what;
    if (command == "ratio" && IsNumber(what)) {
        bench.SetRatioReading(Val(what));
        return "the bridge reads " + what;
    }
    return std::nullopt;
}

std::optional<std::string> AnswerQuestion(Bench &bench, const std::vector<std::string> &words, const std::string &rest,
                                          Micros now)
{
    const std::string &command = words[0];
    if (command == "fault")
        return SetFault(bench, words);
    if (command == "faults")
        return ListFaults(bench);
    if (command == "truth")
        return TellTruth(bench, rest);
    if (command == "analog")
        return TellAnalog(bench, rest);
    if (command == "output")
        return ReadOutputMeter(bench);
    if (command == "word")
        return ShowOrSetWord(bench, words);
    if (command == "errors")
        return bench.ProtocolErrors().empty() ? "none" : Joined(bench.ProtocolErrors());
    if (command == "log")
        return Trim(bench.LastWords(IsNumber(rest) ? static_cast<std::size_t>(std::max(0, WholeNumber(rest))) : 20));
    if (command == "history")
        return TellHistory(bench);
    if (command == "status")
        return StatusText(bench, now);
    if (command == "help")
        return ConsoleHelp();
    return std::nullopt;
}

}  // namespace

ConsoleAnswer RunConsoleLine(Bench &bench, std::string_view line, Micros now)
{
    const auto words = SplitWords(line);
    if (words.empty())
        return {};
    if (words[0] == "quit")
        return {"", true};
    const std::string rest = Trim(Trim(line).substr(words[0].size()));
    if (const auto answer = UseHands(bench, words, rest, now))
        return {*answer};
    if (const auto answer = AnswerQuestion(bench, words, rest, now))
        return {*answer};
    return {"unknown: '" + Trim(line) + "'; help lists the commands"};
}

std::string ConsoleHelp()
{
    return std::string(kHelp) + "\n\nfaults:\n" + Faults::Help();
}

std::string StatusText(Bench &bench, Micros now)
{
    bench.NextDue(now);
    const CalibratorState calibrator = bench.CalibratorNow();
    std::string text = "input " + SignalText(bench.Terminals()) + "   display " + Trim(bench.DisplayTextAt(now)) +
                       "   range " + HexText(bench.RangeCode(), 2) + "   restarts " + std::to_string(bench.Restarts()) +
                       "   calibrator " + (calibrator.operating ? "OPER " : "STBY ") + calibrator.output;
    if (bench.AnalogIsWorkedOn())
        text += "   " + OutputText(bench, 1) + "   " + OutputText(bench, 2);
    for (const std::string &name : Bench::FaultNames())
        if (bench.FaultIsOn(name))
            text += "   " + name;
    return text;
}

}  // namespace ombrix::bench
