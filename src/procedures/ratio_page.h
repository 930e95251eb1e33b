// The page of a meter in ratio mode: its ground correction and its reference divider correction, trial by trial.
#pragma once

namespace ombrix {

/// Registers the page and its step; the station does so once at start.
void RegisterRatioPage();

}  // namespace ombrix
