#include "links/meter_identity.h"

#include "links/meter_operations.h"
#include "links/meter_protocol.h"
#include "model/nvm_map.h"
#include "platform/text.h"
#include "session/state.h"

#include <array>

namespace ombrix {

int MeterKind = -1;
bool XmtrFlag = false;
int MeterRevNumber = -1;
std::string MeterRevText;
int MeterSCType = -1;
std::string BoardCode;
std::string MeterName;

namespace {

constexpr int kTypeWord = 109;
constexpr int kBoardWord = 21;
constexpr int kRangeWord = 16;
constexpr int kXmtrBit = 4;
constexpr int kLetters = 26;

struct CodeRow {
    std::string_view code;
    int board;
};

// Low byte of word 21. Temp shares DC's code; word 16 tells them apart.
constexpr CodeRow kBoardCodes[] = {
    {"01", kDc}, {"02", kAc}, {"12", kAc2}, {"22", kAc3}, {"03", kLc}, {"31", kTc}, {"41", kRtd},
};

int BoardOf(std::string_view code, char rangeDigit)
{
    if (code == "01" && (rangeDigit == '4' || rangeDigit == '5'))
        return kTemp;
    for (const CodeRow &row : kBoardCodes)
        if (row.code == code)
            return row.board;
    return -1;
}

std::string RevisionText(int number)
{
    int digit = 1;
    for (; number > kLetters; number -= kLetters)
        ++digit;
    const std::string letter(1, static_cast<char>(number + 64));  // 0 gives "@"
    return digit > 1 ? letter + std::to_string(digit) : letter;
}

}  // namespace

void InitMeterIdentity()
{
    TakeMeter({-1, false, -1, "", -1, "", ""});
}

bool ReadMeterType()
{
    const std::string word = MeterQuery('X', kTypeWord, 1, "");
    DecodeMeterType(word);
    WaitMeterRestart();
    return IsWordText(word);
}

void DecodeMeterType(std::string_view word)
{
    MeterRevNumber = MeterKind = -1;
    MeterRevText.clear();
    XmtrFlag = false;
    if (word.size() == 4) {
        MeterRevNumber = static_cast<int>(HexValue(word.substr(0, 2)));
        MeterRevText = RevisionText(MeterRevNumber);
        const int code = static_cast<int>(HexValue(word.substr(2)));
        if (code >= kDpm && code <= kCtr) {
            MeterKind = code;
        } else if (code >= kDpm + kXmtrBit && code <= kCtr + kXmtrBit) {
            XmtrFlag = true;
            MeterKind = code - kXmtrBit;
        }
    }
    BuildMeterName();
}

void BuildMeterName()
{
    static const std::array<std::string, 3> kNames = {"DPM", "WtMtr", "CTR"};
    if (MeterKind < kDpm || MeterKind > kCtr)
        MeterName = "???";
    else
        MeterName = kNames[static_cast<std::size_t>(MeterKind - kDpm)] + (XmtrFlag ? " Xmtr" : "");
}

bool ReadMeterIdentity()
{
    MeterSCType = -1;
    if (!ReadMeterType() || Abort)
        return false;
    if (MeterKind == kCtr) {
        MeterSCType = kVf;
        return true;
    }
    const std::string word = ReadNvmWords(kBoardWord, 1, "Z");
    if (word.empty() || Abort)
        return false;
    const std::string range = ReadNvmWords(kRangeWord, 1, "");  // its byte tells Temp from DC: silence is none of both
    if (range.empty() || Abort)
        return false;
    BoardCode = Right(word, 2);
    MeterSCType = BoardOf(BoardCode, Right(range, 2).front());
    return true;
}

KnownMeter MeterAsKnown()
{
    return {MeterKind, XmtrFlag, MeterRevNumber, MeterRevText, MeterSCType, BoardCode, MeterName};
}

void TakeMeter(const KnownMeter &meter)
{
    MeterKind = meter.kind;
    XmtrFlag = meter.xmtr;
    MeterRevNumber = meter.revNumber;
    MeterRevText = meter.revText;
    MeterSCType = meter.board;
    BoardCode = meter.boardCode;
    MeterName = meter.name;
}

void WriteMeterIdentity(int kind, bool xmtr, int board, const std::string &code)
{
    const int type = kind + (xmtr ? kXmtrBit : 0);
    SetWordLowByte(kTypeWord, "0" + Right(std::to_string(type), 1));
    if (kind != kCtr) {
        const std::string boardByte = BoardCodeByteFor(board);
        if (!boardByte.empty() && !Abort)
            WriteBoardCodeByte(boardByte);
        if (!Abort)
            SetWordLowByte(kBoardWord, code);
    }
    MeterKind = kind;
    XmtrFlag = xmtr;
    MeterSCType = board;
    BoardCode = code;
    BuildMeterName();
}

std::string ReadBoardCodeByte()
{
    return Right(ReadNvmWords(kRangeWord, 1, ""), 2);
}

void WriteBoardCodeByte(std::string_view twoDigits)
{
    WriteNvmWords(kRangeWord, "00" + std::string(twoDigits), "");
}

std::string BoardCodeByteFor(int board)
{
    switch (board) {
    case kDc:
        return "60";
    case kAc:
    case kAc2:
    case kAc3:
        return "80";
    case kLc:
        return "C0";
    case kTc:
    case kTemp:
        return "40";
    case kRtd:
        return "50";
    default:
        return "";
    }
}

bool SetWordLowByte(int word, std::string_view twoDigits)
{
    if (twoDigits.size() != 2)
        return false;
    const std::string now = ReadNvmWords(word, 1, "");
    if (now.empty() || Abort)
        return false;
    WriteNvmWords(word, Left(now, 2) + std::string(twoDigits), "");
    return true;
}

bool WriteBoardConfigWords(std::string_view boardByte)
{
    const std::string code = boardByte.starts_with("6") ? "0001" : "0031";
    const std::string between = ReadNvmWords(20, 4, "");
    if (between.empty() || Abort)
        return false;
    WriteNvmWords(kBoardWord, code + between + "00" + std::string(boardByte), "");
    return true;
}

}  // namespace ombrix
