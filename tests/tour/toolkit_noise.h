// What the toolkit says on standard error of every run off screen, and that means nothing.
#pragma once

namespace ombrix::tour {

/// From now on three remarks of the toolkit are dropped: that its screenless window takes no size hints and can't be
/// raised, and that XDG_RUNTIME_DIR isn't set. Everything else is said as before. Call it before there is an application.
void DropToolkitNoise();

}  // namespace ombrix::tour
