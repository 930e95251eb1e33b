#include "links/wire_meaning.h"

#include "links/cal_output.h"
#include "links/calibrator_line.h"
#include "links/meter_frame.h"
#include "links/uut.h"
#include "platform/text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace ombrix {
namespace {

constexpr std::size_t kLongestOfStream = 256;  // a meter that streams ends no line
constexpr std::size_t kWordDigits = 4;
constexpr std::size_t kByteDigits = 2;

// "20..17", or "109" for one.
std::string Run(int address, int count)
{
    const std::string first = std::to_string(address);
    return count == 1 ? first : first + ".." + std::to_string(address - count + 1);
}

std::string UpperCase(std::string_view text)
{
    std::string upper(text);
    for (char &c : upper)
        if (c >= 'a' && c <= 'f')
            c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

// "7F3A 0001"; "" when it isn't so many hexadecimal items.
std::string Items(std::string_view text, int count, std::size_t digits)
{
    const std::string hex = UpperCase(text);
    if (!IsHexText(hex) || hex.size() != static_cast<std::size_t>(count) * digits)
        return "";
    std::string items;
    for (std::size_t at = 0; at < hex.size(); at += digits)
        items += (at == 0 ? "" : " ") + hex.substr(at, digits);
    return items;
}

// No instrument and no station says anything else; what else came means nothing that could be shown.
bool IsPrintable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::string Words(int count)
{
    return count == 1 ? "word " : "words ";
}

std::string Bytes(int count)
{
    return count == 1 ? "byte " : "bytes ";
}

// A command that moves words or bytes: what stands behind its address.
std::string MeaningOfMemory(char letter, int address, int count, std::string_view text)
{
    const bool words = letter == 'X' || letter == 'W';
    const bool writes = letter == 'W' || letter == 'F';
    const bool goesOn = !words || text.ends_with('Z');
    if (words && goesOn)
        text.remove_suffix(1);
    const std::string what = (words ? Words(count) : Bytes(count)) + Run(address, count);
    const std::string end = goesOn ? "" : ", restart";
    if (!writes)
        return text.empty() ? "read " + what + end : "";
    const std::string items = Items(text, count, words ? kWordDigits : kByteDigits);
    return items.empty() ? "" : "write " + what + " = " + items + end;
}

std::string MeaningOfWord(std::string_view payload)
{
    constexpr std::pair<std::string_view, std::string_view> kCommands[] = {
        {"A1", "first command"},        {"B1", "read the display"},           {"C0", "end the stream"},
        {"CZ", "begin to settle anew"}, {"V6", "begin the stream of counts"},
    };
    for (const auto &[command, meaning] : kCommands)
        if (payload == command)
            return std::string(meaning);
    return "";
}

// ---- the calibrator ----

std::string OutputText(const OutputValue &output)
{
    return DescribeCalOutput(output.number, output.unit).text;
}

// "OUT 200 mV ; OPER ; *WAI"
std::string MeaningOfOutput(std::string_view command)
{
    const auto parts = Split(command, ';');
    if (parts.size() != 3 || Trim(parts[2]) != "*WAI")
        return "";
    const std::string mode = Trim(parts[1]);
    if (mode != "OPER" && mode != "STBY")
        return "";
    return Trim(parts[0]) + (mode == "OPER" ? ", operate" : ", standby");
}

std::string MeaningOfCommand(std::string_view text)
{
    if (!IsPrintable(text))
        return "";
    const std::string command = Trim(text);
    constexpr std::pair<std::string_view, std::string_view> kCommands[] = {
        {"ERR?", "read the next error"},
        {"OPER?", "does it operate?"},
        {"OUT?", "read the output"},
        {"*RST ; *CLS", "reset"},
        {"REMOTE", "remote control"},
        {"LOCAL", "local control"},
        {"UUT_FLUSH", "drop what the meter has said"},
        {"UUT_RECV?", "what has the meter said?"},
        {"ZCOMP WIRE4", "compensation over four wires"},
        {"TSENS_TYPE RTD", "sensor: RTD"},
        {"TSENS_TYPE TC", "sensor: thermocouple"},
        {"RTD_TYPE PT385", "RTD PT385"},
    };
    for (const auto &[known, meaning] : kCommands)
        if (command == known)
            return std::string(meaning);
    if (command.starts_with("OUT "))
        return MeaningOfOutput(command);
    if (command.starts_with("TC_TYPE "))
        return "thermocouple " + command.substr(8);
    if (command.starts_with("UUT_SET "))
        return "the meter's line: " + Split(command.substr(8), ',')[0] + " baud";
    return "";
}

std::string MeaningOfReply(std::string_view text)
{
    const std::string line = Trim(text);
    if (IsAnswer(CalibratorQuestion::Operate, line))
        return line == "1" ? "operates" : "stands by";
    if (IsAnswer(CalibratorQuestion::Output, line))
        return "OUT " + OutputText(*ParseReadBack(line));
    if (!IsAnswer(CalibratorQuestion::Errors, line))
        return "";
    const std::string number = Trim(Split(line, ',')[0]);
    return Val(number) == 0 ? "no error" : "error " + number;
}

// Bytes up to the end of the first line; nothing when it hasn't come.
std::optional<std::size_t> EndOfLine(const WireRow &row)
{
    const std::string &bytes = row.bytes;
    const bool meter = row.line == TraceLine::Meter;
    const bool received = row.way != ByteWay::Sent;
    if (!meter && received && bytes.starts_with('#')) {
        const UutBlock block = ParseUutBlock(bytes);
        if (block.state == UutState::Whole)
            return bytes.find("\r\n", block.start + block.length) + 2;
        if (block.state == UutState::NeedsMore)
            return std::nullopt;
    }
    const std::string_view end = meter ? "\r" : received ? "\r\n" : "\n";
    const std::size_t place = bytes.find(end);
    return place == std::string::npos ? std::nullopt : std::optional(place + end.size());
}

std::string_view WithoutEnd(std::string_view line)
{
    while (line.ends_with('\r') || line.ends_with('\n'))
        line.remove_suffix(1);
    return line;
}

}  // namespace

// `*`, address, payload, CR.
std::string WireReader::MeaningOfFrame(Side &side, std::string_view frame)
{
    side.asked = {};
    side.answer.clear();
    const std::string_view line = WithoutEnd(frame);
    if (line.size() < 4 || line[0] != '*' || !IsPrintable(line))
        return "";
    const std::string whom = line[1] == '1'   ? ""
                             : line[1] == '2' ? "output switch: "
                                              : "meter " + Left(line.substr(1), 1) + ": ";
    const std::string_view payload = line.substr(2);
    side.asked.letter = payload[0];
    std::string meaning = MeaningOfWord(payload);
    const std::size_t count = kCountAlphabet.find(payload[1]);
    if (meaning.empty() && payload.size() >= 4 && std::string_view("XWGF").find(payload[0]) != std::string_view::npos &&
        count != std::string_view::npos && IsHexText(payload.substr(2, 2))) {
        side.asked.count = static_cast<int>(count) + 1;
        side.asked.address = static_cast<int>(HexValue(payload.substr(2, 2)));
        meaning = MeaningOfMemory(payload[0], side.asked.address, side.asked.count, payload.substr(4));
    }
    return meaning.empty() ? "" : whom + meaning;
}

std::string WireReader::MeaningOfAnswer(Side &side, std::string_view line)
{
    const Question asked = std::exchange(side.asked, {});
    const std::string text = Trim(line);
    if (asked.letter == 'B' && IsReading(text))
        return "display " + text;
    if (asked.letter == 'B' && IsOverRange(text))
        return "display over range: " + text;
    if (asked.letter == 'V' || asked.letter == 'C') {
        side.asked = asked;
        return line.find(kRecordEnd) == std::string_view::npos ? "" : "counts";
    }
    const bool words = asked.letter == 'X';
    if (!words && asked.letter != 'G')
        return "";
    const std::string items = Items(line, asked.count, words ? kWordDigits : kByteDigits);
    const std::string what = words ? Words(asked.count) : Bytes(asked.count);
    return items.empty() ? "" : what + Run(asked.address, asked.count) + " = " + items;
}

// A frame on its way through the calibrator: "UUT_SEND #205*1B1\r".
std::string WireReader::MeaningOfTunnel(Side &side, std::string_view block)
{
    const std::string ended = std::string(block) + "\r\n";
    const UutBlock found = ParseUutBlock(ended);
    if (found.state != UutState::Whole || found.start + found.length != block.size())
        return "";
    const std::string meaning = MeaningOfFrame(side, block.substr(found.start, found.length));
    return meaning.empty() ? "" : "to the meter: " + meaning;
}

// What the calibrator heard of the meter so far; a line of the meter may come in several.
std::string WireReader::MeaningOfBlock(Side &side, std::string_view block)
{
    const UutBlock found = ParseUutBlock(block);
    if (found.state != UutState::Whole)
        return "";
    if (found.length == 0)
        return "the meter has said nothing";
    side.answer += block.substr(found.start, found.length);
    if (!HoldsLine(side.answer))
        return "";
    const std::string line = LineOf(std::exchange(side.answer, ""));
    const std::string meaning = MeaningOfAnswer(side, line);
    return meaning.empty() ? "" : "from the meter: " + meaning;
}

std::string WireReader::Meaning(Side &side)
{
    const WireRow &row = side.open;
    const std::string_view bytes = row.bytes;
    if (row.way == ByteWay::Dropped)
        return "";
    const bool sent = row.way == ByteWay::Sent;
    if (row.line == TraceLine::Meter)
        return sent ? MeaningOfFrame(side, bytes) : MeaningOfAnswer(side, WithoutEnd(bytes));
    constexpr std::string_view kTunnel = "UUT_SEND ";
    if (sent && bytes.starts_with(kTunnel))
        return MeaningOfTunnel(side, bytes.substr(kTunnel.size(), bytes.size() - kTunnel.size() - 1));
    if (sent)
        return MeaningOfCommand(WithoutEnd(bytes));
    return bytes.starts_with('#') ? MeaningOfBlock(side, bytes) : MeaningOfReply(WithoutEnd(bytes));
}

// The row goes as it stands.
void WireReader::Leave(Side &side, std::vector<WireRow> &rows)
{
    if (!side.open.bytes.empty())
        rows.push_back(std::exchange(side.open, {}));
}

void WireReader::Take(const TraceRecord &record, std::vector<WireRow> &rows)
{
    Side &side = m_sides[static_cast<std::size_t>(record.line)];
    if (side.open.way != record.way || record.way == ByteWay::Mark)
        Leave(side, rows);
    if (side.open.bytes.empty())
        side.open = {record.micros, record.line, record.way, "", ""};
    side.open.bytes += record.bytes;
    if (record.way == ByteWay::Mark)
        return Leave(side, rows);
    for (auto end = EndOfLine(side.open); end && !side.open.bytes.empty(); end = EndOfLine(side.open)) {
        WireRow rest = side.open;
        rest.micros = record.micros;
        rest.bytes.erase(0, *end);
        side.open.bytes.resize(*end);
        side.open.meaning = Meaning(side);
        Leave(side, rows);
        side.open = std::move(rest);
    }
    if (side.open.bytes.size() >= (record.line == TraceLine::Meter ? kLongestOfStream : kReplyLimit)) {
        const bool counts = side.open.way == ByteWay::Received && side.open.bytes.find(kRecordEnd) != std::string::npos;
        side.open.meaning = counts && side.asked.letter != 0 ? MeaningOfAnswer(side, side.open.bytes) : "";
        Leave(side, rows);
    }
}

void WireReader::TakeRest(std::vector<WireRow> &rows)
{
    for (Side &side : m_sides)
        Leave(side, rows);
}

std::vector<WireRow> WireRows(const std::vector<TraceRecord> &records)
{
    WireReader reader;
    std::vector<WireRow> rows;
    for (const TraceRecord &record : records)
        reader.Take(record, rows);
    reader.TakeRest(rows);
    return rows;
}

}  // namespace ombrix
