// What an operator handles on a board: trimmers, resistors, test points and a jumper, drawn in a row as jumpers are. The
// row says what they look like and which of them are in work, not where on the board they lie.
#pragma once

#include "session/page_frame.h"

#include <QRectF>
#include <QSize>

#include <string>
#include <vector>

class QFontMetrics;
class QPainter;

namespace ombrix {

/// Natural size of the picture in logical pixels.
QSize BoardPartsSize(const std::vector<BoardPart> &parts, const QFontMetrics &metrics);

/// Where the picture of a part stands, and its name below it.
QRectF PictureOfPart(const std::vector<BoardPart> &parts, std::size_t index, const QFontMetrics &metrics);
QRectF NameOfPart(const std::vector<BoardPart> &parts, std::size_t index, const QFontMetrics &metrics);

/// The names of those in work, "(TP1,R3)"; "" for none.
std::string PartsInWork(const std::vector<BoardPart> &parts);

void PaintBoardParts(QPainter &painter, const std::vector<BoardPart> &parts);

}  // namespace ombrix
