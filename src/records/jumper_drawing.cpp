#include "records/jumper_drawing.h"

#include "records/diagram_painting.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace ombrix {
namespace {

constexpr int kMargin = 6;        // from the edge of the picture to the housing
constexpr int kPinPitch = 14;     // from pin to pin, down and, under a wide cap, across
constexpr int kBracket = 9;       // from the label to the housing
constexpr int kHousing = 36;      // height of the housing
constexpr int kLetterGap = 2;     // from the housing to the letters
constexpr double kPin = 5;        // side of a pin
constexpr double kCapMargin = 5;  // from the pins' centres to the edge of the cap

int PositionWidth(const JumperRow &row, const QFontMetrics &metrics)
{
    return std::max(metrics.height() + 10, row.pinColumns * kPinPitch + 12);
}

int HousingTop(const QFontMetrics &metrics)
{
    return metrics.height() + kBracket;
}

// Left edge of the position at `index` in the text of positions; at its length, the right end of the housing.
int PositionLeft(const JumperRow &row, std::size_t index, const QFontMetrics &metrics)
{
    const int width = PositionWidth(row, metrics);
    int left = kMargin;
    for (std::size_t i = 0; i < index; i++)
        left += row.positions[i] == ' ' ? width / 2 : width;
    return left;
}

bool Has(const std::string &letters, char letter)
{
    return letter != ' ' && letters.find(letter) != std::string::npos;
}

QRectF Column(const JumperRow &row, char letter, const QFontMetrics &metrics)
{
    if (!Has(row.positions, letter))
        return QRectF();
    return QRectF(PositionLeft(row, row.positions.find(letter), metrics), HousingTop(metrics),
                  PositionWidth(row, metrics), kHousing);
}

// One housing for each run of positions between gaps.
void PaintHousings(QPainter &painter, const JumperRow &row, const Ink &ink)
{
    const QFontMetrics metrics = painter.fontMetrics();
    painter.setPen(QPen(ink.dim, kThin));
    painter.setBrush(ink.body);
    for (std::size_t first = 0; first < row.positions.size();) {
        const std::size_t end = std::min(row.positions.find(' ', first), row.positions.size());
        const double left = PositionLeft(row, first, metrics);
        const double right = PositionLeft(row, end, metrics);
        painter.drawRoundedRect(QRectF(left + 0.5, HousingTop(metrics) + 0.5, right - left - 1, kHousing - 1), 3, 3);
        first = end + 1;
    }
}

void PaintPins(QPainter &painter, const QRectF &cap, int columns, const QColor &colour, const QColor &fill)
{
    painter.setPen(QPen(colour, kThin));
    painter.setBrush(fill);
    for (int column = 0; column < columns; column++) {
        for (int line = 0; line < 2; line++) {
            const QPointF centre = cap.topLeft() + QPointF(kCapMargin + 1 + column * kPinPitch, kCapMargin + 1) +
                                   QPointF(0, line * kPinPitch);
            painter.drawRect(QRectF(centre.x() - kPin / 2, centre.y() - kPin / 2, kPin, kPin));
        }
    }
}

void PaintPosition(QPainter &painter, const JumperRow &row, char letter, const Ink &ink)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const QRectF cap = CapOf(row, letter, metrics);
    const QRectF place = LetterOf(row, letter, metrics);
    const bool set = Has(row.set, letter);
    QFont font = painter.font();
    painter.save();
    if (set) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink.accent);
        painter.drawRoundedRect(cap, 3, 3);
        painter.drawRoundedRect(place, 3, 3);
        PaintPins(painter, cap, row.pinColumns, ink.paper, ink.accent);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(ink.paper);
    } else {
        PaintPins(painter, cap, row.pinColumns, ink.dim, ink.paper);
        painter.setPen(ink.dim);
    }
    painter.drawText(place, Qt::AlignCenter, QString(letter));
    painter.restore();
}

// From the line of the label down to every cap, so that the eye finds them together.
void PaintBracket(QPainter &painter, const JumperRow &row, const Ink &ink)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const double top = metrics.height() + 2;
    double left = 1e9;
    double right = -1e9;
    painter.setPen(QPen(ink.accent, kThick, Qt::SolidLine, Qt::RoundCap));
    for (char letter : row.positions) {
        if (!Has(row.set, letter))
            continue;
        const QRectF cap = CapOf(row, letter, metrics);
        left = std::min(left, cap.center().x());
        right = std::max(right, cap.center().x());
        painter.drawLine(QPointF(cap.center().x(), top), QPointF(cap.center().x(), cap.top()));
    }
    if (left < right)
        painter.drawLine(QPointF(left, top), QPointF(right, top));
}

}  // namespace

QSize JumperRowSize(const JumperRow &row, const QFontMetrics &metrics)
{
    return QSize(PositionLeft(row, row.positions.size(), metrics) + kMargin,
                 HousingTop(metrics) + kHousing + kLetterGap + metrics.height() + 3);
}

QRectF CapOf(const JumperRow &row, char letter, const QFontMetrics &metrics)
{
    const QRectF column = Column(row, letter, metrics);
    if (column.isNull())
        return column;
    QRectF cap(0, 0, (row.pinColumns - 1) * kPinPitch + 2 * (kCapMargin + 1), kPinPitch + 2 * (kCapMargin + 1));
    cap.moveCenter(column.center());
    return cap;
}

QRectF LetterOf(const JumperRow &row, char letter, const QFontMetrics &metrics)
{
    const QRectF column = Column(row, letter, metrics);
    if (column.isNull())
        return column;
    const double width = metrics.height() + 4;
    return QRectF(column.center().x() - width / 2, column.bottom() + kLetterGap, width, metrics.height() + 2);
}

int LabelLeft(const JumperRow &row, const std::string &text, const QFontMetrics &metrics, const QFontMetrics &label)
{
    const std::size_t first = text.find_first_not_of('(');
    if (first == std::string::npos || !Has(row.positions, text[first]))
        return 0;
    const QString shown = QString::fromStdString(text);
    const int before = label.horizontalAdvance(shown.left(first)) + label.horizontalAdvance(shown[first]) / 2;
    const int wanted = static_cast<int>(Column(row, text[first], metrics).center().x()) - before;
    const int room = JumperRowSize(row, metrics).width() - label.horizontalAdvance(shown);
    return std::clamp(wanted, 0, std::max(0, room));
}

void PaintJumperRow(QPainter &painter, const JumperRow &row)
{
    const Ink ink;
    PaintHousings(painter, row, ink);
    PaintBracket(painter, row, ink);
    for (char letter : row.positions) {
        if (letter != ' ')
            PaintPosition(painter, row, letter, ink);
    }
}

}  // namespace ombrix
