// The picture of the station on the desktop: a panel meter that reads zero.
#pragma once

#include <QIcon>

class QPainter;

namespace ombrix {

constexpr int kIconSide = 64;
/// Paints it onto a square of this side.
void PaintIcon(QPainter &painter);

QIcon WindowIcon();

}  // namespace ombrix
