// The ten analog output words as one image, as the analog page writes and keeps them.
#pragma once

#include <string>

namespace ombrix {

/// Fills the words from section AnaCal; those that it lacks come from the older InitFile, else from the built-in image.
void LoadAnaCalWords();

/// The stored words as an image of 40 digits, each at its AnalogWordOffset.
std::string StoredAnalogImage();
/// Takes the ten words out of an image of 40 digits and saves them in both their sections. Another text does nothing.
void StoreAnalogWordsHex(const std::string &image);

}  // namespace ombrix
