#include "shell/window_icon.h"

#include <QPainter>
#include <QPixmap>

namespace ombrix {

// The bezel, the window of the display, the digits as segments, the terminals below.
void PaintIcon(QPainter &painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(58, 64, 74));
    painter.drawRoundedRect(QRectF(2, 10, 60, 36), 6, 6);
    painter.setBrush(QColor(12, 16, 20));
    painter.drawRoundedRect(QRectF(7, 15, 50, 26), 3, 3);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 230, 230), 4, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    for (const double left : {13.0, 28.0, 43.0})
        painter.drawRect(QRectF(left, 20, 8, 16));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 230, 230));
    painter.drawRect(QRectF(23.5, 35, 3, 3));
    painter.setBrush(QColor(210, 40, 40));
    painter.drawEllipse(QRectF(14, 50, 10, 10));
    painter.setBrush(QColor(58, 64, 74));
    painter.drawEllipse(QRectF(40, 50, 10, 10));
}

QIcon WindowIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(static_cast<double>(size) / kIconSide, static_cast<double>(size) / kIconSide);
        PaintIcon(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace ombrix
