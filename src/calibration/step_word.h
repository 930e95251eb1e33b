// The word of the step in work: corrected from the readings, written with its companions.
#pragma once

#include <string>

namespace ombrix {

/// Computes the new word from the readings, writes it and returns it; `first` in the first round.
std::string ComputeCorrectedWord(bool first);
/// The last computed word was held at a limit.
bool GetCorrectionLimited();

/// Writes the step's word and its companions; the meter restarts with it.
void WriteStepWord(const std::string &hex);

}  // namespace ombrix
