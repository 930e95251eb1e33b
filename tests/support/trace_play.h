// A trace of real instruments, played back to the links: a trace that somebody sends becomes a test.
#pragma once

#include "links/wire_meaning.h"
#include "support/fake_line.h"

#include <string>
#include <vector>

namespace ombrix::test {

/// The rows of a trace in tests/links/traces. Fails the test when there are none.
std::vector<WireRow> TraceNamed(const std::string &name);

/// From now on the far end of a line answers each command as it did in the trace, in its order and with its delays. What
/// was dropped comes too, as it did then.
void Plays(FakeLine &line, const std::vector<WireRow> &rows, TraceLine which);

}  // namespace ombrix::test
