// What was said on the bench, as a test asks for it.
#pragma once

#include "testbench/bench.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ombrix::test {

/// Frames or commands that the station sent over a line, without their line end, from a moment on (NowMicros). What
/// went to the meter through the calibrator is the meter's too. Other bytes than text are readable, "\x02".
std::vector<std::string> FramesTo(const bench::Bench &bench, bench::Line line, std::int64_t fromMicros = 0);

/// When the station began to send this frame or command: whole milliseconds from a moment on.
std::vector<std::int64_t> TimesOf(const bench::Bench &bench, const std::string &frame, std::int64_t fromMicros = 0);

}  // namespace ombrix::test
