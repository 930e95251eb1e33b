// What the station does with a meter: read the display, read and write its memories, put it on a range.
//
// Words are 16 bits, told as four hexadecimal digits; a run of words is one text, addressed by its highest word and
// running downward. A read or write that ends with Z lets the meter go on; without Z it restarts, and the operation
// waits for that. Chain writes with Z and leave Z off the last one.
#pragma once

#include <string>
#include <string_view>

namespace ombrix {

/// The last value given to the display setup words.
extern int LastDisplaySetup;

/// Nothing written, nothing restarting.
void InitMeterOperations();

/// count words from `address` downward, 4 digits each, upper-case; "" on silence, a wrong length or a character that is
/// no hexadecimal digit. Without Z the meter restarts.
std::string ReadNvmWords(int address, int count, std::string_view suffix);
/// Writes the words of a text from `address` downward. A text that is no positive multiple of 4 hexadecimal digits is
/// not sent: what went wrong in a read must not end in a meter.
void WriteNvmWords(int address, std::string_view text, std::string_view suffix);
/// count bytes of working memory, 2 digits each; "" on silence. A wrong reply is read again, 20 times at most.
std::string ReadRamBytes(int address, int count);
/// A text that is no positive multiple of 2 hexadecimal digits is not sent.
void WriteRamBytes(int address, std::string_view text);

/// One try to read the display, trimmed; "" on silence and for any line that is no reading. On a line that has gone a
/// try ends at once, and the next one waits until 1000 ms after it, or until Abort or a stop comes.
std::string ReadDisplayRaw();
/// What the last try found was a display that shows no digit: it is over range, not silent.
bool DisplayIsOverRange();
/// Repeats until a reading comes; "" after Abort.
std::string ReadDisplay();
/// ReadDisplay without its ".".
std::string ReadDisplayDigits();

/// What is left of a restart at most, by the clock since the last command without Z: 1750 ms; for a CTR that has given
/// no sign of life 5000 ms. 0 when none is under way.
int RestartLeftMs();
/// Waits for the end of a restart that nobody waits for any more, at most so long.
void WaitOutRestart(int longestMs);

/// Waits while the meter restarts: 1750 ms; a CTR gives a sign of life within 5000 ms, which is dropped. Through UUT
/// 5000 ms: a late reply can't be told from that sign.
void WaitMeterRestart();
/// The same for a meter that is no CTR: 1750 ms.
void WaitPlainRestart();

/// False, with nothing written, when the meter did not answer or on Abort.
bool WriteFilterCode(std::string_view filterCode);
/// Five flags and digits to the two hex digits of word 17's low byte: "00116" is "36". "38" for another length.
std::string EncodeFilterCode(std::string_view filterCode);
/// Words 5, 4, 3 with the value in word 3's end.
void WriteDisplaySetupWords(int value);
/// The same, and nothing on a counter, where these words are the customer's, nor on a meter of unknown kind.
void WriteDisplaySetupForward(int value);
/// Puts the meter on a range, with one restart at the end: filter code (5 characters), range code (2 hex digits),
/// value of the display setup words. False, with nothing written, when a code or the meter's answer has the wrong
/// length; false also when its line goes meanwhile.
bool WriteRangeSetup(std::string_view filterCode, std::string_view rangeCode, int value);
/// Ends after the exchange in work on Abort. False then, and when the meter did not answer.
bool LoadFactoryMeterSetup();

void MeterCommandA1();  ///< first command after opening the link; 200 ms
void MeterCommandC0();  ///< 500 ms
void MeterCommandCZ();  ///< 1000 ms
void MeterCommandV6();  ///< starts the first cycle stream; no wait

}  // namespace ombrix
