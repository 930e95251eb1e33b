#include "links/meter_operations.h"

#include "links/calibrator_line.h"
#include "links/line_wait.h"
#include "links/meter_frame.h"
#include "links/meter_identity.h"
#include "links/meter_protocol.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "session/delays.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace ombrix {

int LastDisplaySetup = 0;

namespace {

constexpr int kRestartMs = 1750;
constexpr int kTryMs = 1000;         // from one try on a gone line to the next
constexpr int kCtrRestartMs = 5000;  // the longest until a counter gives its sign of life
constexpr int kMaxBlock = 35;        // what one count character can tell
constexpr int kRamReads = 20;
constexpr int kMsPerWord = 8;
constexpr int kMsPerByte = 4;
constexpr std::size_t kWordDigits = 4;
constexpr std::size_t kByteDigits = 2;

std::optional<Deadline> nextTry;  // at a display whose line has gone
bool overRange = false;
std::int64_t aliveSince = -1;  // the restart, by its beginning, after which a counter gave its sign of life

// False when a stop or Abort has ended the wait.
bool MayTryDisplay()
{
    const bool stopped = StopRequested;
    while (nextTry && !nextTry->Passed()) {
        PumpEvents(nextTry->LeftMs());
        if (Abort || StopRequested != stopped)
            return false;
    }
    return true;
}

// A run in two blocks: `low` goes first, to the addresses below `high`.
struct Halves {
    int low;
    int high;
};

Halves HalvesOf(int count)
{
    const int low = count > kMaxBlock ? RoundHalfEven(count / 2.0) : 0;
    return {low, count - low};
}

// Upper-case; "" when a character is no hexadecimal digit.
std::string HexDigits(std::string_view text)
{
    std::string digits(text);
    for (char &c : digits)
        if (c >= 'a' && c <= 'f')
            c = static_cast<char>(c - 'a' + 'A');
    return IsHexText(digits) ? digits : "";
}

// One or two questions for a run of words or bytes; what came, whatever its length.
std::string QueryRun(char letter, int address, int count, std::string_view lowSuffix, std::string_view suffix)
{
    const Halves halves = HalvesOf(count);
    std::string low;
    if (halves.low > 0)
        low = MeterQuery(letter, address - halves.high, halves.low, lowSuffix);
    return MeterQuery(letter, address, halves.high, suffix) + low;
}

std::size_t DigitsOf(int count, std::size_t itemDigits)
{
    return count > 0 ? static_cast<std::size_t>(count) * itemDigits : 0;
}

std::string DisplaySetupData(int value)
{
    const std::string hex = Hex(value & 0xFFFF);
    return Left("000000100000", 12 - hex.size()) + hex;
}

void SendAndWait(std::string_view payload, int ms)
{
    SendMeterCommand(payload);
    DelayMs(ms);
}

}  // namespace

void InitMeterOperations()
{
    LastDisplaySetup = 0;
    nextTry.reset();
    overRange = false;
    aliveSince = -1;
}

std::string ReadNvmWords(int address, int count, std::string_view suffix)
{
    std::string hex = HexDigits(QueryRun('X', address, count, "Z", suffix));
    if (suffix.empty())
        WaitMeterRestart();
    return hex.size() == DigitsOf(count, kWordDigits) ? hex : "";
}

void WriteNvmWords(int address, std::string_view text, std::string_view suffix)
{
    const std::string hex = HexDigits(text);
    if (hex.empty() || hex.size() % kWordDigits != 0)
        return;
    const Halves halves = HalvesOf(static_cast<int>(hex.size() / kWordDigits));
    const std::size_t highDigits = DigitsOf(halves.high, kWordDigits);
    // The low block goes first: the last one, when without Z, restarts the meter with all of it.
    if (halves.low > 0) {
        MeterSend('W', address - halves.high, halves.low, hex.substr(highDigits) + "Z");
        DelayMs(halves.low * kMsPerWord);
    }
    MeterSend('W', address, halves.high, hex.substr(0, highDigits) + std::string(suffix));
    if (suffix.empty())
        WaitMeterRestart();
    else
        DelayMs(halves.high * kMsPerWord);
}

std::string ReadRamBytes(int address, int count)
{
    for (int tries = 0; tries < kRamReads && !Abort; ++tries) {
        const std::string reply = QueryRun('G', address, count, "", "");
        if (reply.empty())
            return "";
        std::string hex = HexDigits(reply);
        if (hex.size() == DigitsOf(count, kByteDigits))
            return hex;
    }
    return "";
}

void WriteRamBytes(int address, std::string_view text)
{
    const std::string hex = HexDigits(text);
    if (hex.empty() || hex.size() % kByteDigits != 0)
        return;
    const Halves halves = HalvesOf(static_cast<int>(hex.size() / kByteDigits));
    const std::size_t highDigits = DigitsOf(halves.high, kByteDigits);
    if (halves.low > 0) {
        MeterSend('F', address - halves.high, halves.low, hex.substr(highDigits));
        DelayMs(halves.low * kMsPerByte);
    }
    MeterSend('F', address, halves.high, hex.substr(0, highDigits));
    DelayMs(halves.high * kMsPerByte);
}

std::string ReadDisplayRaw()
{
    overRange = false;
    if (!MayTryDisplay())
        return "";
    const Deadline next(kTryMs);
    FlushMeterInput();
    SendMeterCommand("B1");
    std::string text = Trim(ReadMeterLine());
    nextTry = MeterLineIsGone() ? std::optional(next) : std::nullopt;
    overRange = IsOverRange(text);
    if (IsReading(text))
        return text;
    PumpEvents(0);  // who asks again can be stopped, however fast the wrong answers come
    return "";
}

bool DisplayIsOverRange()
{
    return overRange;
}

std::string ReadDisplay()
{
    std::optional<WaitNote> note;
    while (!Abort) {
        std::string text = ReadDisplayRaw();
        if (!text.empty())
            return text;
        if (!overRange)
            note.reset();
        else if (!note)
            note.emplace("Meter: the display is over range");
    }
    return "";
}

std::string ReadDisplayDigits()
{
    std::string text = ReadDisplay();
    const std::size_t point = text.find('.');
    return point == std::string::npos ? "" : text.erase(point, 1);
}

int RestartLeftMs()
{
    const bool counter = MeterKind == kCtr;
    const int longest = counter ? kCtrRestartMs : kRestartMs;
    const std::int64_t gone = (NowMicros() - LastRestartMicros) / 1000;
    const bool over = !HardwareMode || gone < 0 || gone >= longest;
    return over || (counter && aliveSince == LastRestartMicros) ? 0 : static_cast<int>(longest - gone);
}

void WaitOutRestart(int longestMs)
{
    const int left = std::min(RestartLeftMs(), longestMs);
    if (left > 0 && MeterKind == kCtr && MeterPort != 0) {
        comDPM.Drop();  // a reply that nobody has read is no sign of life
        ReceiveChunk(comDPM, left);
    } else if (left > 0) {
        DelayMs(left);
    }
}

void WaitMeterRestart()
{
    if (!HardwareMode || MeterKind != kCtr)
        return WaitPlainRestart();
    const WaitNote note("Meter restarts");
    if (MeterPort != 0) {
        if (Abort)
            comDPM.Drop();  // a reply that a stop has left unread is no sign of life
        if (!ReceiveChunk(comDPM, kCtrRestartMs).empty())
            aliveSince = LastRestartMicros;
        return;
    }
    ReceiveCalibratorChunk5s();
    if (!Abort)  // what came was the calibrator's own, late, and tells nothing about the meter
        PauseForInstrument(comCAL, RestartLeftMs());
}

void WaitPlainRestart()
{
    const WaitNote note("Meter restarts");
    DelayMs(kRestartMs);
}

bool WriteFilterCode(std::string_view filterCode)
{
    const std::string byte = ReadRamBytes(48, 1);
    if (byte.empty() || Abort)
        return false;
    WriteNvmWords(17, byte + EncodeFilterCode(filterCode), "");
    return true;
}

std::string EncodeFilterCode(std::string_view filterCode)
{
    if (filterCode.size() != 5)
        return "38";
    int flags = 0;
    for (char flag : filterCode.substr(0, 4))
        flags = flags * 2 + (flag != '0' ? 1 : 0);
    const char last = filterCode.back();
    return HexText(flags, 1) + (Holds("0123456789A", std::string_view(&last, 1)) ? last : '8');
}

void WriteDisplaySetupWords(int value)
{
    LastDisplaySetup = value;
    WriteNvmWords(5, DisplaySetupData(value), "");
}

void WriteDisplaySetupForward(int value)
{
    const bool counter = MeterKind == kCtr || SessionMeterKind == kCtr;
    if (MeterKind >= kDpm && !counter)
        WriteDisplaySetupWords(value);
}

bool WriteRangeSetup(std::string_view filterCode, std::string_view rangeCode, int value)
{
    const std::string byte = ReadRamBytes(48, 1);
    if (filterCode.size() != 5 || rangeCode.size() != 2 || byte.empty())
        return false;
    const std::string filterAndRange = byte + EncodeFilterCode(filterCode) + "00" + std::string(rangeCode);
    if (SCType != kTc) {
        WriteNvmWords(17, filterAndRange, "Z");
    } else {
        const std::string between = ReadNvmWords(20, 3, "");
        if (between.empty())
            return false;
        const std::string board = rangeCode.front() == '6' ? "0001" : "0031";
        WriteNvmWords(21, board + between + filterAndRange, "Z");
    }
    if (MeterLineIsGone())
        return false;  // nobody knows what the meter heard, and a line that is back by then doesn't tell
    WriteDisplaySetupWords(value);
    return !MeterLineIsGone();
}

bool LoadFactoryMeterSetup()
{
    WriteNvmWords(18, "21D1", "");
    const bool heard = !Abort && WriteFilterCode("00116");
    if (!Abort)
        WriteDisplaySetupWords(4);
    return heard && !Abort;
}

void MeterCommandA1()
{
    SendAndWait("A1", 200);
}

void MeterCommandC0()
{
    SendAndWait("C0", 500);
}

void MeterCommandCZ()
{
    SendAndWait("CZ", 1000);
}

void MeterCommandV6()
{
    SendMeterCommand("V6");
}

}  // namespace ombrix
