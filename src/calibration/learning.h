// What the station learns from an accepted step: the nominal slope and the nominal word of its word go a tenth of the
// way to what the meter showed.
#pragma once

#include <string>

namespace ombrix {

/// The size of a reading: of both polarities the mean of their sizes. `minus` is "" without turnover.
float ReadingSize(const std::string &plus, const std::string &minus);

/// `size` of the accepted reading. Nothing when word or reading are those of the first round: no slope shows in them.
void UpdateNominalSlope(float size);
void UpdateNominalWord();
/// The same for a word that isn't the step's.
void UpdateNominalWordFor(int word, const std::string &hex, bool offset);

}  // namespace ombrix
