#include "records/board_parts.h"

#include "records/diagram_cards.h"
#include "records/diagram_painting.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace ombrix {
namespace {

constexpr int kMargin = 6;     // from the edge of the picture to the first part
constexpr double kSide = 28;   // of the square in which a part is drawn
constexpr int kNameGap = 4;    // from that to the name
constexpr int kNameEdge = 3;   // beside the name
constexpr double kBold = 1.2;  // a bold name is at most so much wider
constexpr double kPin = 5;     // side of a jumper's pin

QString Name(const BoardPart &part)
{
    return QString::fromStdString(part.name);
}

double WidthOf(const BoardPart &part, const QFontMetrics &metrics)
{
    const double name = kBold * metrics.horizontalAdvance(Name(part)) + 2 * kNameEdge;
    return std::max(kSide, name) + 2 * kNameEdge;
}

QRectF ColumnOf(const std::vector<BoardPart> &parts, std::size_t index, const QFontMetrics &metrics)
{
    double left = kMargin;
    for (std::size_t i = 0; i < index; ++i)
        left += WidthOf(parts[i], metrics);
    return QRectF(left, kMargin, WidthOf(parts[index], metrics), kSide + kNameGap + metrics.height() + 2);
}

// A square with the head of a screw in it.
void PaintTrimmer(QPainter &painter, const QRectF &place)
{
    painter.drawRoundedRect(place.adjusted(2, 2, -2, -2), 3, 3);
    const QRectF head = place.adjusted(7, 7, -7, -7);
    painter.drawEllipse(head);
    painter.drawLine(head.center() - QPointF(4, 4), head.center() + QPointF(4, 4));
}

// A body on its two wires.
void PaintResistor(QPainter &painter, const QRectF &place)
{
    const double middle = place.center().y();
    painter.drawLine(QPointF(place.left(), middle), QPointF(place.left() + 5, middle));
    painter.drawLine(QPointF(place.right() - 5, middle), QPointF(place.right(), middle));
    painter.drawRoundedRect(QRectF(place.left() + 5, middle - 5, place.width() - 10, 10), 3, 3);
}

// A ring to clip on.
void PaintTestPoint(QPainter &painter, const QRectF &place)
{
    painter.drawEllipse(place.adjusted(6, 6, -6, -6));
    painter.drawEllipse(place.adjusted(11, 11, -11, -11));
}

// Two pins, under a cap where it is in.
void PaintJumper(QPainter &painter, const QRectF &place, bool installed)
{
    if (installed)
        painter.drawRoundedRect(place.adjusted(7, 1, -7, -1), 3, 3);
    for (const double y : {-7.0, 7.0})
        painter.drawRect(QRectF(place.center().x() - kPin / 2, place.center().y() + y - kPin / 2, kPin, kPin));
}

void PaintPicture(QPainter &painter, const BoardPart &part, const QRectF &place, const Ink &ink)
{
    painter.setPen(QPen(part.inWork ? ink.paper : ink.dim, part.inWork ? kThick : kThin));
    painter.setBrush(part.inWork ? ink.accent : ink.body);
    switch (part.kind) {
    case BoardPart::Kind::Trimmer:
        PaintTrimmer(painter, place);
        break;
    case BoardPart::Kind::Resistor:
        PaintResistor(painter, place);
        break;
    case BoardPart::Kind::TestPoint:
        PaintTestPoint(painter, place);
        break;
    case BoardPart::Kind::Jumper:
        PaintJumper(painter, place, part.inWork);
        break;
    }
}

void PaintPart(QPainter &painter, const std::vector<BoardPart> &parts, std::size_t index)
{
    const Ink ink;
    const QFontMetrics metrics = painter.fontMetrics();
    const BoardPart &part = parts[index];
    const QRectF name = NameOfPart(parts, index, metrics);
    painter.save();
    if (part.inWork) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink.accent);
        painter.drawRoundedRect(PictureOfPart(parts, index, metrics), 3, 3);
        painter.drawRoundedRect(name, 3, 3);
        painter.setFont(BoldFont(painter.font()));
    }
    PaintPicture(painter, part, PictureOfPart(parts, index, metrics), ink);
    painter.setPen(part.inWork ? ink.paper : ink.dim);
    painter.drawText(name, Qt::AlignCenter, Name(part));
    painter.restore();
}

}  // namespace

QSize BoardPartsSize(const std::vector<BoardPart> &parts, const QFontMetrics &metrics)
{
    if (parts.empty())
        return QSize(1, 1);
    const QRectF last = ColumnOf(parts, parts.size() - 1, metrics);
    return QSize(static_cast<int>(last.right()) + kMargin, static_cast<int>(last.bottom()) + kMargin);
}

QRectF PictureOfPart(const std::vector<BoardPart> &parts, std::size_t index, const QFontMetrics &metrics)
{
    const QRectF column = ColumnOf(parts, index, metrics);
    return QRectF(column.center().x() - kSide / 2, column.top(), kSide, kSide);
}

QRectF NameOfPart(const std::vector<BoardPart> &parts, std::size_t index, const QFontMetrics &metrics)
{
    const QRectF column = ColumnOf(parts, index, metrics);
    return column.adjusted(kNameEdge, kSide + kNameGap, -kNameEdge, 0);
}

std::string PartsInWork(const std::vector<BoardPart> &parts)
{
    std::string names;
    for (const BoardPart &part : parts)
        if (part.inWork)
            names += (names.empty() ? "" : ",") + part.name;
    return names.empty() ? "" : "(" + names + ")";
}

void PaintBoardParts(QPainter &painter, const std::vector<BoardPart> &parts)
{
    for (std::size_t i = 0; i < parts.size(); ++i)
        PaintPart(painter, parts, i);
}

}  // namespace ombrix
