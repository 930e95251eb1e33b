// What a page that calibrates the step in work tells the journal of it.
//
// Kinds: "step opened", "round", "step ended", "learned". Each names step, board, position and word.
#pragma once

#include "session/journal_line.h"
#include "session/procedure.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ombrix {

/// An event of a kind of the page's own: step, board, position and word, then what the page tells.
void RecordOfStep(std::string_view kind, int position, const JournalFields &more);

/// The step's page has put the meter on its range; the word found in it is GetStepWordHex, "" when it did not answer.
void RecordStepOpened(int position);

/// The round in work has written the step's word: whatever becomes of it, no later one finds the meter as it came.
void NoteStepWordWritten();

/// One round, as it came; one that was broken off behind its correction too. The first of a visit to write this word
/// holds the as-found reading.
struct RoundRecord {
    int number = 1;
    std::vector<std::string> asked;     ///< values for the calibrator, of each polarity
    std::vector<std::string> reported;  ///< what it said that it delivers; "" where it confirmed nothing
    std::vector<std::string> before;    ///< readings that the correction began with
    std::string wordBefore;
    std::string word;
    bool limited = false;
    std::vector<std::string> reading;  ///< with the new word; "" where none was taken, then it has no error
    std::int32_t error = 0;            ///< counts
};
void RecordRound(int position, const RoundRecord &round);

/// How a procedure ended that was not accepted: "fault", "line lost" while the meter's or the calibrator's is gone, else
/// "stopped".
std::string HowEnded(Ended ended);
/// What ended because the calibrator had not confirmed its input.
constexpr const char *kNoInput = "no input";

/// How a step ended, and the word that stays in the meter. "accepted" comes with the reading and the error as left where
/// the step has them.
struct StepEnd {
    std::string how;  ///< "accepted", "quit" at the end of the program, kNoInput, or as HowEnded says
    std::string word;
    std::vector<std::string> reading;
    std::int32_t error = 0;
};
void RecordStepEnded(int position, const StepEnd &end);

}  // namespace ombrix
