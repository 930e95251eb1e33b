// What all drawings share: their colours, a font that stays readable, a picture that grows with its widget.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QPainter;
class QRectF;

namespace ombrix {

/// Colours of a drawing, the same in every theme: a red plus and a black minus need a light ground. All that carries
/// text or meaning stands out from `paper` by 4.5 to 1 at least.
struct Ink {
    QColor paper = QColor(252, 252, 249);  ///< the ground, also the text on accent
    QColor line = QColor(0, 0, 0);         ///< what is used, the negative side of a signal
    QColor dim = QColor(105, 105, 105);    ///< what is not used
    QColor body = QColor(236, 236, 233);   ///< housings, just off the paper
    QColor accent = QColor(32, 96, 176);   ///< what the operator must set
    QColor plus = QColor(200, 24, 24);     ///< positive side of a signal
};

/// The colours of a card: paper as its ground, black text.
QPalette PaperPalette();

/// The font itself, or the same at 9 points where it is smaller.
QFont ReadableFont(const QFont &font);

constexpr double kThin = 1.2;   ///< outlines
constexpr double kThick = 2.0;  ///< wires and what is set

/// How many times its natural size a picture may grow.
constexpr double kLargestZoom = 400.0 / 260.0;

/// A screw terminal: filled where it is used, otherwise an empty outline.
void PaintScrew(QPainter &painter, const QRectF &place, bool used, const QColor &colour);

/// A picture in the middle of its widget, with the labels that stand on it. It grows with the width: where the widget
/// is `room` wide, the picture has its natural size, in the widget's own font.
class Canvas : public QWidget
{
public:
    Canvas(QWidget *parent, const QString &name);

    /// Calls `paint`, anti-aliased, in the canvas's font and in natural coordinates, whenever it must be drawn.
    void Show(const QSize &picture, int room, std::function<void(QPainter &)> paint);

    /// Puts a child of the canvas at a place of the picture. Its font is the canvas's, bold or not as it was.
    void Place(QLabel *label, const QRectF &place);

    /// Widget pixels for one natural pixel, and where a point of the picture stands in the widget.
    double Zoom() const;
    QPointF Shown(const QPointF &point) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Placed {
        QLabel *label;
        QRectF place;
    };
    void Arrange(const Placed &placed) const;

    QSize m_picture = QSize(1, 1);
    int m_room = 1;
    std::function<void(QPainter &)> m_paint;
    std::vector<Placed> m_placed;
};

}  // namespace ombrix
