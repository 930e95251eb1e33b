// What the analog output's page tells the journal.
//
// Kinds: "step opened", "round" and "step ended" as of a range, with board "AN"; "analog words" when the nominal words
// were written into the meter or have learned from it, with "words written" (memory_journal.h) when they were written;
// "analog image" when the station's own were set back; "analog settings" when the meter's settings were borrowed, with
// what was found in them, when they were given back, and when Quit left them; "settings" for a choice of the operator.
#pragma once

#include "calibration/analog_output.h"

#include <string>
#include <string_view>

namespace ombrix {

/// A point has been put out; the word found in the meter is in analog.words.
void RecordAnalogOpened(int point);

/// A point's word, or the words of a run, were written: no later reading finds the meter as it came. True for the first
/// time in a visit.
bool NoteAnalogWordWritten(int point);
void NoteAnalogWordsWritten(const WordRun &run);

/// As it is now: a stop that has ended the wait is told as such, until it is forgotten.
std::string TextOf(WordsHeld held);

/// One typed reading, the word that was written for it, and what reading it back told.
struct AnalogRound {
    int number = 1;
    std::string typed;
    std::uint16_t before = 0;
    std::uint16_t word = 0;
    bool limited = false;
    bool asFound = false;  ///< the first of a visit to write the word
    std::string readBack = "not read";
};
void RecordAnalogRound(int point, const AnalogRound &round);

/// How a point ended ("accepted", "left", "quit"), with the last reading that was typed and how far off it was.
void RecordAnalogEnded(int point, const std::string &how, const std::string &typed, float error);

/// The nominal words were written into the meter, by which step.
void RecordAnalogRestored(std::string_view by, const AnalogRestored &restored);
/// Accept has learned ("accepted") or not, from which image, and what reading the meter's words back told.
void RecordAnalogAccepted(const std::string &how, const std::string &imageBefore, WordsHeld held);
/// The station's nominal words are the built-in ones again.
void RecordAnalogZeroed(const std::string &imageBefore);

/// What has become of the meter's own settings: "borrowed", "left", or as GivenBack says.
void RecordAnalogSettings(const std::string &how, const std::string &names, const std::vector<std::string> &found);
std::string TextOf(GivenBack given);

/// DAC type and current offset point as they are now chosen.
void RecordAnalogChoices();

}  // namespace ombrix
