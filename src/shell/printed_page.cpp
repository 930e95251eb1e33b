#include "shell/printed_page.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <string>

namespace ombrix {
namespace {

QFont PrintFont(double points)
{
    QFont font("Courier New");
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPointSizeF(points);
    return font;
}

double WidthOf(const std::vector<PrintedLine> &lines, const QFont &font, QPaintDevice *paper)
{
    const QFontMetricsF metrics(font, paper);
    double width = 0;
    for (const PrintedLine &line : lines)
        width = std::max(width, metrics.horizontalAdvance(QString::fromStdString(line.text)));
    return width;
}

QFont FittingFont(const std::vector<PrintedLine> &lines, int points, const QPainter &painter)
{
    const double width = WidthOf(lines, PrintFont(points), painter.device());
    const double room = painter.viewport().width();
    return PrintFont(width > room ? points * room / width : points);
}

}  // namespace

bool PaintLines(QPainter &painter, const std::vector<PrintedLine> &lines, int points,
                const std::function<bool()> &newPage)
{
    QFont font = FittingFont(lines, points, painter);
    const QFontMetricsF metrics(font, painter.device());
    double top = 0;
    for (const PrintedLine &line : lines) {
        if (top + metrics.height() > painter.viewport().height()) {
            if (!newPage())
                return false;
            top = 0;
        }
        font.setUnderline(line.underlined);
        painter.setFont(font);
        painter.drawText(QPointF(0, top + metrics.ascent()), QString::fromStdString(line.text));
        top += metrics.lineSpacing();
    }
    return true;
}

}  // namespace ombrix
