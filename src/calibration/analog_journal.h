// What the analog output's page tells the journal.
//
// Kinds: "step opened", "round" and "step ended" as of a range, with board "AN"; "analog words" when all of them were
// written or accepted, with "words written" when they were written; "analog settings" when the meter's own settings were
// given back.
#pragma once

#include "calibration/analog_output.h"

#include <string>

namespace ombrix {

/// A point has been put out; the word found in the meter is in analog.words.
void RecordAnalogOpened(int point);

/// One typed reading and the word that was written for it.
struct AnalogRound {
    int number = 1;
    std::string typed;
    std::uint16_t before = 0;
    std::uint16_t word = 0;
    bool limited = false;
};
void RecordAnalogRound(int point, const AnalogRound &round);

/// How a point ended ("accepted", "left"), with the last reading that was typed and how far off it was.
void RecordAnalogEnded(int point, const std::string &how, const std::string &typed, float error);

/// What was done with the words ("restored", "accepted"), the image before it, and what reading them back told.
void RecordAnalogWords(const std::string &how, const std::string &imageBefore, WordsHeld held);
void RecordAnalogGivenBack(GivenBack given);

/// Writes the nominal words into the meter, reads them back and records both. A group that the meter's DAC has gets its
/// words too, whether it was calibrated or not: the meter may be blank.
WordsHeld RestoreForDac();

}  // namespace ombrix
