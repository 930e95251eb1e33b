// What the status line keeps saying for as long as it is so. Each subject has one remark; those of several subjects
// stand beside each other.
#pragma once

#include <string>

namespace ombrix {

/// In this order: where there is no room for all, the first ones are seen.
enum class Subject { Guard, Settings, Board, Journal, Trace, TraceText, Attempts, Theme };

/// Nothing is kept.
void InitKeptRemarks();
/// Keeps a remark on a subject in place of the one before; "" takes it away and leaves those of other subjects.
void KeepRemarkOn(Subject subject, const std::string &text);
/// The remark that stands on a subject, "" when none does.
std::string KeptRemarkOn(Subject subject);

}  // namespace ombrix
