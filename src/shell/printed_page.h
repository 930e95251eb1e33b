// How printed lines stand on paper: in a fixed pitch, so that columns stay columns.
#pragma once

#include "session/outlets.h"

#include <functional>
#include <vector>

class QPainter;

namespace ombrix {

/// Paints the lines in 'Courier New' at `points`, smaller where the longest would not fit the width: no column is cut.
/// `newPage` is asked where the height ends. False when it had none.
bool PaintLines(QPainter &painter, const std::vector<PrintedLine> &lines, int points,
                const std::function<bool()> &newPage);

}  // namespace ombrix
