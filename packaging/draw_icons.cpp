// Draws the icon for the desktop: ombrix-icons FOLDER SIZE... makes FOLDER/ombrix.svg and FOLDER/SIZE/ombrix.png.

#include "shell/window_icon.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>

#include <cstdio>

namespace {

int Refuse(const QString &file)
{
    std::fprintf(stderr, "ombrix-icons: %s can't be written\n", qPrintable(file));
    return 1;
}

bool DrawSvg(const QString &file)
{
    QSvgGenerator svg;
    svg.setFileName(file);
    svg.setTitle("Ombrix");
    svg.setDescription("A panel meter that reads zero");
    svg.setSize({ombrix::kIconSide, ombrix::kIconSide});
    svg.setViewBox(QRect(0, 0, ombrix::kIconSide, ombrix::kIconSide));
    QPainter painter;
    if (!painter.begin(&svg))
        return false;
    ombrix::PaintIcon(painter);
    return painter.end();
}

bool DrawPng(const QString &file, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(static_cast<double>(size) / ombrix::kIconSide, static_cast<double>(size) / ombrix::kIconSide);
    ombrix::PaintIcon(painter);
    painter.end();
    return image.save(file);
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fputs("Usage: ombrix-icons FOLDER SIZE...\n", stderr);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    if (!QDir().mkpath(folder) || !DrawSvg(folder + "/ombrix.svg"))
        return Refuse(folder + "/ombrix.svg");
    for (int i = 2; i < argc; ++i) {
        const QString file = folder + "/" + argv[i] + "/ombrix.png";
        if (!QDir().mkpath(folder + "/" + argv[i]) || !DrawPng(file, QString(argv[i]).toInt()))
            return Refuse(file);
    }
    return 0;
}
