#include "records/dual_converter.h"

#include "records/diagram_painting.h"
#include "widgets/widgets.h"

#include <QFontMetrics>
#include <QLabel>
#include <QPainter>

namespace ombrix {
namespace {

// Pins from the top: those of the first connector, then those of the second.
constexpr const char *kPins[kDualPins] = {"0 - 20 mA  1", "0 - 10 V  2", "Gnd  3", "Gnd  1", "+/- 10 V  2"};
constexpr int kPinsOfFirst = 3;
constexpr int kRows = 5;  // two of titles, three of pins

constexpr int kEdge = 8;  // free at the sides
constexpr int kGap = 6;   // from a pin's label to its screw
constexpr double kScrew = 14;

double RowHeight(const QFontMetrics &metrics)
{
    return metrics.height() + 4;
}

// The half of the picture in which a connector stands, one row high.
QRectF RowOf(bool second, int row, int room, const QFontMetrics &metrics)
{
    const double half = room / 2.0;
    return QRectF(second ? half : 0, row * RowHeight(metrics), half, RowHeight(metrics));
}

QRectF RowOfPin(int pin, int room, const QFontMetrics &metrics)
{
    const bool second = pin >= kPinsOfFirst;
    return RowOf(second, 2 + (second ? pin - kPinsOfFirst : pin), room, metrics);
}

void PlaceText(Canvas *canvas, const QString &name, const char *text, const QRectF &place, Qt::Alignment alignment)
{
    QLabel *label = Label(canvas, name, text);
    label->setForegroundRole(QPalette::Text);
    label->setAlignment(alignment | Qt::AlignVCenter);
    canvas->Place(label, place);
}

void PlaceTexts(Canvas *canvas, int room, const QFontMetrics &metrics)
{
    const QRectF first = RowOf(false, 1, room, metrics);
    const QRectF second = RowOf(true, 1, room, metrics);
    PlaceText(canvas, "lblDAC(2)", "Dual DAC", QRectF(0, 0, room, RowHeight(metrics)), Qt::AlignHCenter);
    PlaceText(canvas, "lblDAC(0)", "DAC1", first, Qt::AlignHCenter);
    PlaceText(canvas, "lblDAC(1)", "DAC2", second, Qt::AlignHCenter);
    for (int pin = 0; pin < kDualPins; pin++) {
        const QRectF row = RowOfPin(pin, room, metrics);
        const double right = DualScrew(pin, room, metrics).left() - kGap;
        PlaceText(canvas, Indexed("lblDACPin", pin), kPins[pin], QRectF(row.topLeft(), QPointF(right, row.bottom())),
                  Qt::AlignRight);
    }
}

}  // namespace

Canvas *BuildDualConverter(QWidget *parent, int room)
{
    auto *canvas = new Canvas(parent, "imgDualDAC");
    const QFontMetrics metrics = canvas->fontMetrics();
    canvas->Show(QSize(room, static_cast<int>(kRows * RowHeight(metrics))), room, [room](QPainter &painter) {
        for (int pin = 0; pin < kDualPins; pin++)
            PaintScrew(painter, DualScrew(pin, room, painter.fontMetrics()), true, Ink().line);
    });
    PlaceTexts(canvas, room, metrics);
    canvas->hide();
    return canvas;
}

QRectF DualScrew(int pin, int room, const QFontMetrics &metrics)
{
    const QRectF row = RowOfPin(pin, room, metrics);
    QRectF screw(0, 0, kScrew, kScrew);
    screw.moveCenter(QPointF(row.right() - kEdge - kScrew / 2, row.center().y()));
    return screw;
}

}  // namespace ombrix
