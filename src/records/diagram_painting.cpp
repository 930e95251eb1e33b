#include "records/diagram_painting.h"

#include "platform/fault.h"

#include <QFontInfo>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace ombrix {
namespace {

constexpr double kReadable = 4.5;
constexpr double kSmallestPoints = 9;

// Relative luminance by the sRGB curve.
double Luminance(const QColor &colour)
{
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

QColor Mix(const QColor &one, const QColor &other, double share)
{
    const auto between = [share](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
    return QColor(between(one.red(), other.red()), between(one.green(), other.green()),
                  between(one.blue(), other.blue()));
}

// The colour itself, or as much nearer to the text colour as it takes to be read on the paper.
QColor Readable(const QColor &colour, const QColor &paper, const QColor &text)
{
    QColor result = colour;
    for (int step = 1; step <= 10 && Contrast(result, paper) < kReadable; step++)
        result = Mix(colour, text, step / 10.0);
    return result;
}

}  // namespace

double Contrast(const QColor &one, const QColor &other)
{
    const double a = Luminance(one) + 0.05;
    const double b = Luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

Ink InkOf(const QPalette &palette)
{
    const QColor paper = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    Ink ink;
    ink.paper = paper;
    ink.line = text;
    ink.dim = Readable(Mix(paper, text, 0.45), paper, text);
    ink.body = Mix(paper, text, 0.07);
    ink.accent = Readable(palette.color(QPalette::Highlight), paper, text);
    // What is mixed with a pale text turns pale: a dark ground starts from a lighter red.
    const bool dark = Luminance(paper) < Luminance(text);
    ink.plus = Readable(dark ? QColor(255, 110, 100) : QColor(214, 48, 48), paper, text);
    return ink;
}

QFont ReadableFont(const QFont &font)
{
    QFont readable = font;
    if (QFontInfo(font).pointSizeF() < kSmallestPoints)
        readable.setPointSizeF(kSmallestPoints);
    return readable;
}

void PaintScrew(QPainter &painter, const QRectF &place, bool used, const QColor &colour, const Ink &ink)
{
    painter.setPen(QPen(colour, kThin));
    painter.setBrush(used ? colour : ink.paper);
    painter.drawEllipse(place);
    painter.setPen(QPen(used ? ink.paper : colour, kThin));
    const QPointF slot(place.width() / 4, -place.height() / 4);
    painter.drawLine(place.center() - slot, place.center() + slot);
}

Canvas::Canvas(QWidget *parent, const QString &name) : QWidget(parent)
{
    setObjectName(name);
}

void Canvas::paintEvent(QPaintEvent *)
{
    RunHandler([this] {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setFont(font());
        if (paint)
            paint(painter);
    });
}

}  // namespace ombrix
