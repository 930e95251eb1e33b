// The input connector with its six places, and what is wired to it: source, resistance, excitation.
//
// What a place carries is read off its label: "3 - SIG", "4 SIG HI", "5 + EXC". `kind` is DiagramKind's, 2..10.
#pragma once

#include <QRectF>
#include <QSize>

class QFontMetrics;
class QPainter;

namespace ombrix {

constexpr int kPlaces = 6;

/// Which signal a kind of connector takes.
bool KindIsAc(int kind);
bool KindIsCurrent(int kind);

/// Natural width of the input frame in logical pixels.
int InputsWidth(int kind, const QFontMetrics &metrics);

/// Natural size of the picture, labels included.
QSize ConnectorSize(int kind, const QFontMetrics &metrics);

/// Where the label of place 0..5 stands.
QRect PlaceLabelRect(int place, const QFontMetrics &metrics);

/// The screw of place 0..5.
QRectF TerminalOf(int place, const QFontMetrics &metrics);

void PaintConnector(QPainter &painter, int kind);

}  // namespace ombrix
