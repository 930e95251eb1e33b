// One meter on the station, as the journal has it.
#pragma once

namespace ombrix {

/// The meter's identity was just read: what is recorded from here on belongs to it.
void BeginVisit();

}  // namespace ombrix
