// The page of the first cycle correction: the meter's raw counts at five (or three) known inputs give M and B.
#pragma once

namespace ombrix {

/// Registers the page and its step; the station does so once at start.
void RegisterFirstCyclePage();

}  // namespace ombrix
