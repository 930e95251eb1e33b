// What both drawings share: colours out of the palette, a font that stays readable, a widget that only paints.
#pragma once

#include <QColor>
#include <QFont>
#include <QWidget>

#include <functional>

class QPainter;
class QPalette;
class QRectF;

namespace ombrix {

/// Colours of a drawing. All that carries text or meaning stands out from `paper` by 4.5 to 1 at least.
struct Ink {
    QColor paper;   ///< the ground, also the text on accent
    QColor line;    ///< what is used
    QColor dim;     ///< what is not used
    QColor body;    ///< housings, just off the paper
    QColor accent;  ///< what the operator must set
    QColor plus;    ///< positive side of a signal
};
Ink InkOf(const QPalette &palette);

/// Ratio of the brighter to the darker of two colours, 1..21, as the eye takes it.
double Contrast(const QColor &one, const QColor &other);

/// The font itself, or the same at 9 points where it is smaller.
QFont ReadableFont(const QFont &font);

constexpr double kThin = 1.2;   ///< outlines
constexpr double kThick = 2.0;  ///< wires and what is set

/// A screw terminal: filled where it is used, otherwise an empty outline.
void PaintScrew(QPainter &painter, const QRectF &place, bool used, const QColor &colour, const Ink &ink);

/// A picture: calls `paint`, anti-aliased, in its own font, whenever it must be drawn.
class Canvas : public QWidget
{
public:
    Canvas(QWidget *parent, const QString &name);
    std::function<void(QPainter &)> paint;

protected:
    void paintEvent(QPaintEvent *event) override;
};

}  // namespace ombrix
