#include "records/connector_drawing.h"

#include "model/connection_tables.h"
#include "records/diagram_painting.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kFirstKind = 2;
constexpr int kLastKind = 10;
constexpr int kResistanceKind = 10;

constexpr int kEdge = 8;        // free at all sides of the picture
constexpr int kGap = 6;         // from a label to the connector
constexpr int kBodyWidth = 24;  // of the connector
constexpr int kWire = 22;       // from the connector to the nearest box
constexpr double kScrew = 7;    // radius
constexpr double kPost = 3.5;

int Pitch(const QFontMetrics &metrics)
{
    return metrics.height() + 5;
}

// One width for all kinds, so that the connector doesn't jump from range to range.
int LabelWidth(const QFontMetrics &metrics)
{
    int widest = 0;
    for (int kind = kFirstKind; kind <= kLastKind; kind++) {
        for (int place = 0; place < kPlaces; place++)
            widest = std::max(widest, metrics.horizontalAdvance(QString::fromStdString(PinLabel(kind, place))));
    }
    return widest;
}

struct Pin {
    bool used = false;
    bool positive = false;
    bool excitation = false;  // excitation or its sense line
    double y = 0;
};

Pin PinAt(int kind, int place, const QFontMetrics &metrics)
{
    const std::string label = PinLabel(kind, place);
    const auto says = [&label](const char *text) { return label.find(text) != std::string::npos; };
    return {!label.empty(), says("+") || says("HI"), says("EXC") || says("SENS"),
            TerminalOf(place, metrics).center().y()};
}

QColor ColourOf(const Pin &pin, const Ink &ink)
{
    if (!pin.used)
        return ink.dim;
    return pin.positive ? ink.plus : ink.line;
}

double BodyRight(const QFontMetrics &metrics)
{
    return kEdge + LabelWidth(metrics) + kGap + kBodyWidth;
}

void PaintBody(QPainter &painter, int kind, const Ink &ink)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const double left = BodyRight(metrics) - kBodyWidth;
    painter.setPen(QPen(ink.dim, kThin));
    painter.setBrush(ink.body);
    painter.drawRoundedRect(QRectF(left + 0.5, kEdge + 0.5, kBodyWidth - 1, kPlaces * Pitch(metrics) - 1), 4, 4);
    for (int place = 0; place < kPlaces; place++) {
        const Pin pin = PinAt(kind, place, metrics);
        PaintScrew(painter, TerminalOf(place, metrics), pin.used, ColourOf(pin, ink));
    }
}

QString UnitOf(int kind)
{
    if (kind == kResistanceKind)
        return QString(QChar(0x03A9));  // capital omega
    return KindIsCurrent(kind) ? "A" : "V";
}

// "V" or "A" over the sign of direct or alternating current, or the unit of resistance over a resistor.
void PaintSignalSymbol(QPainter &painter, const QRectF &room, int kind, const Ink &ink)
{
    const double letterHeight = painter.fontMetrics().height();
    const QPointF centre = room.center();
    painter.setPen(ink.line);
    painter.drawText(QRectF(room.left(), centre.y() - letterHeight + 2, room.width(), letterHeight), Qt::AlignCenter,
                     UnitOf(kind));
    painter.setPen(QPen(ink.line, kThin));
    painter.setBrush(Qt::NoBrush);
    const QPointF sign(centre.x(), centre.y() + 8);
    if (kind == kResistanceKind) {
        painter.drawRect(QRectF(sign.x() - 9, sign.y() - 3, 18, 7));
        painter.drawLine(sign + QPointF(-14, 0.5), sign + QPointF(-9, 0.5));
        painter.drawLine(sign + QPointF(9, 0.5), sign + QPointF(14, 0.5));
    } else if (KindIsAc(kind)) {
        QPainterPath wave(sign + QPointF(-8, 0));
        wave.cubicTo(sign + QPointF(-5, -8), sign + QPointF(-3, -8), sign);
        wave.cubicTo(sign + QPointF(3, 8), sign + QPointF(5, 8), sign + QPointF(8, 0));
        painter.drawPath(wave);
    } else {
        painter.drawLine(sign + QPointF(-8, -2), sign + QPointF(8, -2));
        for (double x : {-8.0, -2.0, 4.0})
            painter.drawLine(sign + QPointF(x, 2), sign + QPointF(x + 4, 2));
    }
}

enum class Serves { Signal, Excitation };

// The pins that lead to one box. A resistance carries its excitation and its signal on the same four wires.
std::vector<Pin> PinsServed(int kind, Serves serves, const QFontMetrics &metrics)
{
    std::vector<Pin> pins;
    for (int place = 0; place < kPlaces; place++) {
        const Pin pin = PinAt(kind, place, metrics);
        const bool toExcitation = pin.excitation && kind != kResistanceKind;
        if (pin.used && toExcitation == (serves == Serves::Excitation))
            pins.push_back(pin);
    }
    return pins;
}

// In a box, from its left edge to what stands in its middle.
double SignRoom(const QFontMetrics &metrics)
{
    return kPost + 3 + metrics.horizontalAdvance("LO");
}

double BoxWidth(const QFontMetrics &metrics)
{
    return SignRoom(metrics) + metrics.horizontalAdvance("EXC") + 8;
}

QRectF BoxAround(const std::vector<Pin> &pins, double left, double right, const QFontMetrics &metrics)
{
    const double margin = metrics.height() / 2.0 + 3;
    return QRectF(QPointF(left, pins.front().y - margin), QPointF(right, pins.back().y + margin));
}

QString SignOf(const Pin &pin, bool highLow)
{
    constexpr char16_t kMinus = 0x2212;
    if (highLow)
        return pin.positive ? "HI" : "LO";
    return pin.positive ? QString("+") : QString(QChar(kMinus));
}

// The box and, for each pin, its wire, its post and its polarity.
void PaintBox(QPainter &painter, const QRectF &box, const std::vector<Pin> &pins, bool highLow, const Ink &ink)
{
    const QFontMetrics metrics = painter.fontMetrics();
    for (const Pin &pin : pins) {
        painter.setPen(QPen(ColourOf(pin, ink), kThick));
        painter.drawLine(QPointF(BodyRight(metrics) + 1, pin.y), QPointF(box.left(), pin.y));
    }
    painter.setPen(QPen(ink.dim, kThin));
    painter.setBrush(ink.body);
    painter.drawRoundedRect(box, 4, 4);
    for (const Pin &pin : pins) {
        const QColor colour = ColourOf(pin, ink);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(QPointF(box.left(), pin.y), kPost, kPost);
        painter.setPen(colour);
        painter.drawText(QRectF(box.left() + kPost + 3, pin.y - metrics.height() / 2.0, box.width(), metrics.height()),
                         Qt::AlignLeft | Qt::AlignVCenter, SignOf(pin, highLow));
    }
}

}  // namespace

bool KindIsAc(int kind)
{
    return kind == 5 || kind == 6 || kind == 7;
}

bool KindIsCurrent(int kind)
{
    return kind == 3 || kind == 7;
}

int InputsWidth(int kind, const QFontMetrics &metrics)
{
    // 2000, 1700 and 1400 in proportion; the unit grows with a font taller than usual.
    constexpr int kUnit = 13;
    constexpr int kUsualHeight = 16;
    const int unit = std::max(kUnit, kUnit * metrics.height() / kUsualHeight);
    if (kind == 4 || kind == 9)
        return 20 * unit;
    return (kind == kResistanceKind ? 17 : 14) * unit;
}

QSize ConnectorSize(int kind, const QFontMetrics &metrics)
{
    return QSize(InputsWidth(kind, metrics), kPlaces * Pitch(metrics) + 2 * kEdge);
}

QRect PlaceLabelRect(int place, const QFontMetrics &metrics)
{
    return QRect(kEdge, kEdge + place * Pitch(metrics), LabelWidth(metrics), Pitch(metrics));
}

QRectF TerminalOf(int place, const QFontMetrics &metrics)
{
    const QPointF centre(BodyRight(metrics) - kBodyWidth / 2.0, kEdge + (place + 0.5) * Pitch(metrics));
    return QRectF(centre - QPointF(kScrew, kScrew), QSizeF(2 * kScrew, 2 * kScrew));
}

void PaintConnector(QPainter &painter, int kind)
{
    const Ink ink;
    const QFontMetrics metrics = painter.fontMetrics();
    const double right = ConnectorSize(kind, metrics).width() - kEdge - 0.5;
    const double nearest = BodyRight(metrics) + kWire + 0.5;
    PaintBody(painter, kind, ink);

    const std::vector<Pin> excitation = PinsServed(kind, Serves::Excitation, metrics);
    if (!excitation.empty()) {
        const QRectF box = BoxAround(excitation, right - BoxWidth(metrics), right, metrics);
        PaintBox(painter, box, excitation, false, ink);
        painter.setPen(ink.line);
        painter.drawText(box.adjusted(SignRoom(metrics), 0, 0, 0), Qt::AlignCenter, "EXC");
    }
    const std::vector<Pin> signal = PinsServed(kind, Serves::Signal, metrics);
    if (signal.empty())
        return;
    // Excitation lines pass above and below the signal's box to their own.
    const QRectF box = BoxAround(signal, nearest, excitation.empty() ? right : nearest + BoxWidth(metrics), metrics);
    PaintBox(painter, box, signal, KindIsAc(kind), ink);
    PaintSignalSymbol(painter, box.adjusted(SignRoom(metrics), 0, 0, 0), kind, ink);
}

}  // namespace ombrix
