// Who the meter is: kind, revision, board. Read from words 109, 21 and 16, and written there.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

extern int MeterKind;             ///< 1 DPM, 2 WtMtr, 3 CTR, -1 unknown
extern bool XmtrFlag;             ///< the meter is a transmitter
extern int MeterRevNumber;        ///< high byte of word 109, -1 unknown
extern std::string MeterRevText;  ///< letter and digit made of it: 50 is "X2"
extern int MeterSCType;           ///< board found in the meter, -1 unknown
extern std::string BoardCode;     ///< low byte of word 21, two hex digits
extern std::string MeterName;     ///< "DPM", "WtMtr", "CTR", with " Xmtr"; "???" unknown

/// Nothing is known of any meter.
void InitMeterIdentity();

/// True when the meter answered with four digits. The meter restarts.
bool ReadMeterType();
/// Takes word 109 apart; a text that isn't 4 characters leaves kind and revision unknown.
void DecodeMeterType(std::string_view word);
void BuildMeterName();
/// True when the meter answered each question. False on silence and on Abort: nothing more is asked then, and what is
/// known of the meter is half old and half unknown until somebody puts it right (TakeMeter).
bool ReadMeterIdentity();
/// Ends after the exchange in work on Abort; then the identity in here is no longer the meter's either.
void WriteMeterIdentity(int kind, bool xmtr, int board, const std::string &code);

/// Who the meter is, as one value: kept before a reading, taken again when the meter was silent.
struct KnownMeter {
    int kind;
    bool xmtr;
    int revNumber;
    std::string revText;
    int board;
    std::string boardCode;
    std::string name;
};
KnownMeter MeterAsKnown();
void TakeMeter(const KnownMeter &meter);

/// Low byte of word 16, two hex digits; "" when it can't be read, so that silence is no code. The meter restarts.
std::string ReadBoardCodeByte();
void WriteBoardCodeByte(std::string_view twoDigits);
/// The board byte that belongs to a board, "" when none does.
std::string BoardCodeByteFor(int board);
/// Replaces the low byte of a word; nothing and false when it can't be read or `twoDigits` isn't two characters.
bool SetWordLowByte(int word, std::string_view twoDigits);
/// TC: board code and board byte in one block of six words at 21; nothing and false when the words between can't be read.
bool WriteBoardConfigWords(std::string_view boardByte);

}  // namespace ombrix
