// Establish: verifies both links, identifies the meter, and opens its tab.
#pragma once

namespace ombrix {

void cmdEstablish_Click();

/// Reads who the meter is, asks the operator what it can't say, and takes it over into the session. False when the
/// meter did not answer or the operator stopped it; the session keeps what it knew.
bool IdentifyMeter();

}  // namespace ombrix
