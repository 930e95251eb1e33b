// The analog output of the meter on the station: its ten words, what it puts out, and what of the meter's settings the
// work on it borrows.
//
// To put out a value the meter gets a range, a mode and a DAC word of its own (and a counter the value itself). What
// stood there is read before and written back behind the work.
#pragma once

#include "calibration/analog_points.h"
#include "model/nvm_map.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

struct AnalogOutput {
    std::array<std::uint16_t, kAnalogWords> words{};    ///< now in the meter
    std::array<std::uint16_t, kAnalogWords> nominal{};  ///< what the station has learned
    std::string image;                                  ///< the nominal words as 40 digits
    int dacType = kDacXmtr;
    bool bipolarDone = false;  ///< a bipolar point was calibrated in this session
    bool dualDone = false;     ///< a point of the second output was
};
extern AnalogOutput analog;

/// Nothing known of any meter, nothing borrowed.
void InitAnalogOutput();

/// "200" or "4000" as a number.
int AnalogCurrentPoint();

// ---- what the station keeps ----

/// Image, nominal words and DAC type from what is stored.
void LoadAnalogNominal();
/// DAC type 1 and the built-in image, stored.
void ResetAnalogNominal();
/// Moves the nominal words towards the meter's and stores the image; the words of a group that wasn't calibrated stay.
void BlendAnalogNominal();
/// The groups that Accept learns from: the highest point of each and how many there are, downward.
struct AnalogGroup {
    int point;
    int count;
};
constexpr AnalogGroup kAnalogGroups[] = {{3, 4}, {5, 2}, {9, 4}};
/// Whether a group takes part in what is learned and restored.
bool AnalogGroupDone(const AnalogGroup &group);

// ---- the meter's words ----

/// Whether the meter holds the words that it should; not when it did not answer or the wait was stopped.
enum class WordsHeld { Yes, No, Silent };

/// WriteNvmWords and ReadNvmWords. Without Z a meter that is no counter gets 700 ms more; a counter is always written
/// and read without.
void WriteAnalogNvm(int word, std::string_view hex, std::string_view suffix);
std::string ReadAnalogNvm(int word, int count, std::string_view suffix);

/// Each restarts the meter, so what it put out is gone.
void SetAnalogMode(AnalogKind kind);
void WriteAnalogPoint(int point, std::string_view hex, std::string_view suffix);
void PrepareAnalogTest(std::string_view suffix);

/// 0 to 16777215; 20000 is full scale, in a counter 100000.
void OutputAnalogValue(std::int32_t value, std::string_view suffix);
void OutputAnalogPoint(int point, std::string_view suffix);
/// Value 0 without any wait: the end of the program's last word to the output. Nothing while nothing is borrowed.
void ZeroAnalogOutput();

/// Prepares the meter and writes the nominal words of points 0 to 3 into it, of the other groups if they are done. What
/// was written: a stop ends it between two writes.
std::vector<WordRun> RestoreAnalogWords();
/// The same, then they are read back. With `allOfDac` each group that the meter's DAC has, calibrated or not: the meter
/// may be blank.
struct AnalogRestored {
    std::array<std::uint16_t, kAnalogWords> before{};
    std::vector<WordRun> runs;
    WordsHeld held = WordsHeld::Silent;
};
AnalogRestored RestoreAndCheckAnalogWords(bool allOfDac);
/// The ten words out of the meter into analog.words. False, with nothing changed, when it did not answer.
bool ReadAnalogWords();
/// Whether the meter holds analog.words in the groups that are done. After a No they are what it does hold.
WordsHeld CheckAnalogWords();
/// The same for the word of one point.
WordsHeld CheckAnalogWord(int point);
/// Words that the operator has written into the meter by hand: those of the ten are taken over, and a borrowed one stays
/// as it was written.
void TakeOverAnalogWords(int word, std::string_view hex);

// ---- what is borrowed ----

/// Reads the words that the work overwrites. False when the meter did not answer. Nothing when they are at hand.
bool BorrowAnalogSettings();
bool AnalogSettingsBorrowed();

enum class GivenBack {
    Yes,
    Silent,      ///< the meter did not answer; the words are kept for another try
    Stopped,     ///< before they were read back; likewise
    OtherMeter,  ///< its words are neither those found nor those written: nothing was written into it
    NotTaken,    ///< what was written doesn't read back; the words are kept for another try
};
/// Output 0, the words as they were found, one restart; then they are read back. Yes when nothing was borrowed.
GivenBack GiveBackAnalogSettings();

/// Which words are borrowed, as the operator knows them: "14 to 12, 20, 240". Those of this kind of meter while none are.
std::string AnalogSettingsNames();
/// What was found in them, in their order; empty while none are borrowed.
std::vector<std::string> AnalogSettingsFound();
/// What to tell the operator of words with these names; "" for Yes.
std::string WhyNotGivenBack(GivenBack given, const std::string &names);

}  // namespace ombrix
