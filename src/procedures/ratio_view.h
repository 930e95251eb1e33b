// What the ratio page shows: its widgets, and the states in which they are on.
#pragma once

#include "widgets/fields.h"
#include "widgets/page_states.h"

#include <functional>
#include <string>
#include <vector>

class QFrame;

namespace ombrix {

enum RatioState {
    kRatioOpening,
    kRatioSilent,  ///< the meter has not answered, so nobody knows its words
    kRatioFresh,   ///< no trial was made
    kRatioWorking,
    kRatioTried,
    kRatioChosen,  ///< a row is chosen whose word isn't the stored one
};

/// The two words that are trimmed here, side by side.
enum class RatioSide { Offset, Gain };

/// What the page does when the operator uses a control.
struct RatioHandlers {
    std::function<void(RatioSide)> start;
    std::function<void(RatioSide, int row)> row;
    std::function<void(int)> range;
    Edited reading;  ///< txtReading
    std::function<void()> save, select, done;
};

void BuildRatioView(QFrame *frame, const RatioHandlers &handlers);

/// The same as ShowPageState and ShowPrompt.
void ShowRatioState(RatioState state);
void ShowRatioState(RatioState state, const Prompt &prompt);
void ShowRatioPrompt(const Prompt &prompt);
RatioState RatioStateNow();
/// cmdRatioSave, which no state switches.
void EnableRatioSave(bool on);

/// The ranges that are offered, the chosen one, and the reading to be reached.
void ShowRatioConditions(const std::vector<std::string> &ranges, int chosen, const std::string &reading);

/// The word that the meter holds.
void ShowStoredWord(RatioSide side, const std::string &word);
void ClearTrials(RatioSide side);
/// A row for the word of a trial, marked as the one in work.
void AddTrial(RatioSide side, int number, const std::string &word);
/// -1 none.
void MarkTrial(RatioSide side, int row);
/// A reading in the last row, at the excitation of that index.
void ShowTrialReading(RatioSide side, int excitation, const std::string &text);
/// Its button says "Repeat" and has the keys.
void OfferRepeat(RatioSide side);

/// What a trial does now, "" nothing; its last reading, large.
void ShowRatioProgress(const std::string &words);
void ShowRatioReading(const std::string &text);
void FreezeRatioReading();
void ClearRatioReading();

}  // namespace ombrix
