// One row of jumper positions: two pins for each, a cap over those to set, the letter below.
//
// Above the row stays room for the label with the letters, and for a bracket from it down to the caps.
#pragma once

#include <QRectF>
#include <QSize>

#include <string>

class QFontMetrics;
class QPainter;

namespace ombrix {

struct JumperRow {
    std::string positions;  ///< letters from left to right, a blank is a gap
    int pinColumns = 1;     ///< columns of pins under one cap
    std::string set;        ///< letters of the positions that carry a cap; other characters don't matter
};

/// Natural size of the picture in logical pixels.
QSize JumperRowSize(const JumperRow &row, const QFontMetrics &metrics);

/// Where the cap of a position lies, or would lie. Null for a letter that the row doesn't have.
QRectF CapOf(const JumperRow &row, char letter, const QFontMetrics &metrics);

/// Where the letter below a position stands. Null for a letter that the row doesn't have.
QRectF LetterOf(const JumperRow &row, char letter, const QFontMetrics &metrics);

/// Left end of a label "(x,y)" in its own font, so that its first letter stands over that letter's position.
int LabelLeft(const JumperRow &row, const std::string &text, const QFontMetrics &metrics, const QFontMetrics &label);

void PaintJumperRow(QPainter &painter, const JumperRow &row);

}  // namespace ombrix
