#include "testbench/calibrator.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "platform/text.h"
#include "testbench/temperature.h"

namespace ombrix::bench {
namespace {

constexpr double kMostVolts = 1020;
constexpr double kMostAmps = 20.5;
constexpr double kMostOhms = 1.1e9;
constexpr std::size_t kLongestQueue = 16;
constexpr std::string_view kThermocouples = "JKENTRSBC";

// One head of a command and what follows it: "OUT 200 mV" is "OUT" and "200 mV".
struct Command {
    std::string head;
    std::string argument;
};

Command SplitCommand(std::string_view text)
{
    const std::string command = Trim(text);
    const std::size_t blank = command.find(' ');
    if (blank == std::string::npos)
        return {command, ""};
    return {command.substr(0, blank), Trim(command.substr(blank))};
}

bool IsPossible(const Value &value)
{
    const double size = std::fabs(value.number);
    if (value.unit == "V")
        return size <= kMostVolts;
    if (value.unit == "A")
        return size <= kMostAmps;
    if (value.unit == "OHM")
        return value.number >= 0 && size <= kMostOhms;
    const double celsius = value.unit == "FAR" ? CelsiusOfFahrenheit(value.number) : value.number;
    return celsius >= -250 && celsius <= 2316;
}

bool IsElectrical(const Value &value)
{
    return value.unit == "V" || value.unit == "A";
}

// One digit, a point, six digits, an exponent with its sign: 0.2 is "2.000000E-01".
std::string Scientific(double value)
{
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, 6);
    std::string number(text, end.ptr);
    number[number.find('e')] = 'E';
    return number;
}

}  // namespace

Calibrator::Calibrator(int operateDelayMs) : m_delay(operateDelayMs * Micros{1000})
{
    ComeIntoForce(0);
}

std::optional<std::string> Calibrator::Execute(std::string_view line, Micros now)
{
    std::string reply;
    const bool refused = Refuses(line);
    for (const std::string &command : Split(line, ';'))
        if (!Trim(command).empty())
            ExecuteOne(command, refused, now, reply);
    if (m_due && *m_due <= now)
        Run(now);
    return reply.empty() ? std::nullopt : std::optional(reply);
}

// A line that asks for an output and not for standby.
bool Calibrator::Refuses(std::string_view line)
{
    if (!m_refuses || !m_remote)
        return false;
    bool output = false;
    for (const std::string &text : Split(line, ';')) {
        const std::string head = SplitCommand(text).head;
        if (head == "STBY" || head == "*RST")
            return false;
        output = output || head == "OUT" || head == "OPER";
    }
    if (output) {
        QueueError(502, "Output refused");
        m_refused = true;
    }
    return output;
}

void Calibrator::ExecuteOne(std::string_view text, bool refused, Micros now, std::string &reply)
{
    const Command command = SplitCommand(text);
    if (ExecuteQuery(command.head, reply) || ExecuteSetting(command.head, command.argument))
        return;
    const bool oper = command.head == "OPER";
    if (refused && (oper || command.head == "OUT"))
        return;
    if (command.head == "OUT") {
        if (IsRemote(text))
            SetOutput(command.argument);
    } else if (oper || command.head == "STBY") {
        if (!IsRemote(text))
            return;
        m_wanted.operate = oper;
    } else {
        AddError(104, "Unknown command", std::string(text));
        return;
    }
    m_due = now + m_delay;
}

bool Calibrator::ExecuteQuery(std::string_view head, std::string &reply)
{
    std::string answer;
    if (head == "ERR?")
        answer = NextError();
    else if (head == "OPER?")
        answer = m_now.operate ? "1" : "0";
    else if (head == "OUT?")
        answer = OutputReply();
    else if (head == "*IDN?")
        answer = "TESTBENCH,CALIBRATOR,0,1.0";
    else
        return false;
    reply += (reply.empty() ? "" : ";") + answer;
    return true;
}

bool Calibrator::ExecuteSetting(std::string_view head, const std::string &argument)
{
    const auto refuse = [&] { AddError(110, "Bad argument", std::string(head) + " " + argument); };
    if (head == "*RST") {
        Reset();
    } else if (head == "*CLS") {
        m_errors.clear();
    } else if (head == "*WAI") {
        // OPER? tells when the output is there.
    } else if (head == "REMOTE" || head == "LOCAL") {
        m_remote = head == "REMOTE";
    } else if (head == "TSENS_TYPE") {
        if (argument != "TC" && argument != "RTD")
            refuse();
        else
            m_rtd = argument == "RTD";
    } else if (head == "TC_TYPE") {
        if (argument.size() != 1 || kThermocouples.find(argument[0]) == std::string_view::npos)
            refuse();
        else
            m_thermocouple = argument[0];
    } else if (head == "RTD_TYPE") {
        if (argument != "PT385")
            refuse();
    } else if (head == "ZCOMP") {
        if (argument != "NONE" && argument != "WIRE2" && argument != "WIRE4")
            refuse();
        else
            m_sensing = argument;
    } else {
        return false;
    }
    return true;
}

bool Calibrator::IsRemote(std::string_view command)
{
    if (!m_remote)
        AddError(203, "Not in remote", std::string(command));
    return m_remote;
}

void Calibrator::SetOutput(const std::string &text)
{
    const auto value = ParseValue(text);
    if (!value || !IsPossible(*value)) {
        AddError(value ? 501 : 110, value ? "Value out of range" : "Bad argument", "OUT " + text);
        return;
    }
    m_wanted.value = *value;
    m_wanted.text = text;
    // A frequency stays until another one is told; "0 Hz" makes the output steady again.
    if (value->hertz)
        m_wanted.hertz = *value->hertz;
    if (!IsElectrical(*value))
        m_wanted.hertz = 0;
}

void Calibrator::Reset()
{
    m_wanted = Output();
    m_rtd = false;
    m_thermocouple = 'K';
    m_sensing = "NONE";
    m_due = 0;  // at once
}

std::optional<Micros> Calibrator::NextDue() const
{
    if (m_due && m_tripDue)
        return std::min(*m_due, *m_tripDue);
    return m_due ? m_due : m_tripDue;
}

void Calibrator::Run(Micros now)
{
    if (m_tripDue && now >= *m_tripDue) {
        m_tripDue.reset();
        m_tripped = true;
        m_now.operate = false;
        if (!m_due)
            m_wanted.operate = false;
        Tell(now);
    }
    if (!m_due || now < *m_due)
        return;
    m_due.reset();
    ComeIntoForce(now);
}

void Calibrator::ComeIntoForce(Micros now)
{
    m_now = m_wanted;
    if (m_now.operate && m_neverOperates) {
        m_now.operate = false;
        m_keptFromOperating = true;
    }
    m_tripDue.reset();
    if (m_now.operate && m_tripDelay)
        m_tripDue = now + *m_tripDelay;
    Tell(now);
}

void Calibrator::TripsAfter(std::optional<Micros> delay, Micros now)
{
    if (delay == m_tripDelay)
        return;
    m_tripDelay = delay;
    m_tripDue.reset();
    if (m_now.operate && delay)
        m_tripDue = now + *delay;
}

bool Calibrator::HasRefused()
{
    return std::exchange(m_refused, false);
}

bool Calibrator::HasTripped()
{
    return std::exchange(m_tripped, false);
}

void Calibrator::Tell(Micros now)
{
    m_history.push_back({now, m_now.text, m_now.value.number, m_now.value.unit, m_now.hertz, m_now.operate});
}

bool Calibrator::WasKeptFromOperating()
{
    return std::exchange(m_keptFromOperating, false);
}

Signal Calibrator::Terminals() const
{
    if (!m_now.operate)
        return {};
    const Value &value = m_now.value;
    if (value.unit == "V")
        return {Quantity::Volts, value.number, m_now.hertz, 0};
    if (value.unit == "A")
        return {Quantity::Amps, value.number, m_now.hertz, 0};
    const double leads = m_sensing == "WIRE4" ? 0 : kLeadOhms;
    if (value.unit == "OHM")
        return {Quantity::Ohms, value.number + leads, 0, 0};
    const double celsius = value.unit == "FAR" ? CelsiusOfFahrenheit(value.number) : value.number;
    if (m_rtd)
        return {Quantity::Ohms, OhmsOfCelsius(Rtd::Din385, celsius) + leads, 0, 0};
    return {Quantity::Thermocouple, celsius, 0, m_thermocouple};
}

CalibratorState Calibrator::State() const
{
    return {m_now.operate, m_now.text, m_remote, m_sensing, {m_errors.begin(), m_errors.end()}};
}

std::string Calibrator::OutputReply() const
{
    return Scientific(m_now.value.number) + "," + m_now.value.unit + ",0E+00,0," + Scientific(m_now.hertz);
}

std::string Calibrator::NextError()
{
    if (m_errors.empty())
        return "0,\"No Error\"";
    std::string error = m_errors.front();
    m_errors.pop_front();
    return error;
}

void Calibrator::QueueError(int number, const std::string &words)
{
    if (m_errors.size() < kLongestQueue)
        m_errors.push_back(std::to_string(number) + ",\"" + words + "\"");
}

void Calibrator::AddError(int number, const std::string &words, const std::string &command)
{
    QueueError(number, words);
    if (onStationError)
        onStationError(words + ": " + Trim(command));
}

}  // namespace ombrix::bench
