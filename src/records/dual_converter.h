// The two output connectors of a meter with a dual analog converter.
#pragma once

class QRectF;
class QFontMetrics;
class QWidget;

namespace ombrix {

class Canvas;

constexpr int kDualPins = 5;

/// Makes the picture and its labels in `parent`, hidden, `room` wide in its natural size.
Canvas *BuildDualConverter(QWidget *parent, int room);

/// The screw beside pin 0..4.
QRectF DualScrew(int pin, int room, const QFontMetrics &metrics);

}  // namespace ombrix
