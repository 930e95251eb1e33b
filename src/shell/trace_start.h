// The trace of the lines from the program's start to its end: where it stands, and what is offered of the run before.
#pragma once

#include <string>

namespace ombrix {

/// Traces into a folder from here on. When the run before ended without goodbye, a remark names what it left there, trace
/// and note of the crash, which is kept beside the new. Without a file the status line says so.
void BeginTrace(const std::string &folder);
/// The goodbye.
void EndTrace();

/// The trace of the run before, or of the last one that ended without goodbye; "" when there is none.
std::string OldTracePath();
/// The run before ended without goodbye, and that is its trace.
bool OldTraceIsNews();

}  // namespace ombrix
