// The meter in the hands of the analog output's page: taken, given the nominal words, given back. Inside a procedure.
#pragma once

#include <string>

namespace ombrix {

/// The words that the work overwrites are read before the first of them is written. Nothing when the meter is in hand
/// already; else whatever was done before was done at another meter, as far as anybody knows, and is forgotten. False
/// when the page has told why it could not be read.
bool TakeMeter();
/// The same, and a meter that was not in hand is prepared for its DAC.
bool PrepareMeter();
/// Gives the meter its own settings back, or tells the operator why not in a box.
void GiveMeterBack();

/// Writes the nominal words into the meter, so what was read at their points is forgotten. False when the page has to
/// tell, as analogPage.told, why they aren't known to be in it. `step` is the button that leads here.
bool RestoreNominalWords(const std::string &step, bool allOfDac);

}  // namespace ombrix
