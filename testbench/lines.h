// The two lines as the station sees them. Through the calibrator's meter port only its own line is used.
#pragma once

namespace ombrix::bench {

enum class Line { Calibrator, Meter };

}  // namespace ombrix::bench
