// The page of the trims of the AC boards that a person makes: R13/R14, negative gain, R38.
#pragma once

namespace ombrix {

/// Registers the page and its steps; the station does so once at start.
void RegisterTrimsPage();

}  // namespace ombrix
