#include "records/diagram_painting.h"

#include "platform/fault.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontInfo>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace ombrix {
namespace {

QPalette Colours(const QColor &base, const QColor &text, const QColor &highlight)
{
    QPalette palette;
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, highlight);
    return palette;
}

TEST(DiagramInk, ContrastIsThatOfTheEye)
{
    EXPECT_NEAR(Contrast(Qt::black, Qt::white), 21.0, 0.01);
    EXPECT_NEAR(Contrast(Qt::white, Qt::black), 21.0, 0.01);
    EXPECT_DOUBLE_EQ(Contrast(Qt::red, Qt::red), 1.0);
    EXPECT_NEAR(Contrast(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
}

TEST(DiagramInk, StandsOutFromThePaperInLightAndDark)
{
    const QPalette palettes[] = {
        Colours(Qt::white, Qt::black, QColor(48, 140, 198)),
        Colours(QColor(30, 30, 32), QColor(230, 230, 230), QColor(48, 140, 198)),
        Colours(Qt::white, Qt::black, QColor(250, 250, 200)),  // a highlight paler than can be read
        Colours(Qt::black, Qt::white, QColor(20, 20, 60)),     // and one darker
    };
    for (const QPalette &palette : palettes) {
        const Ink ink = InkOf(palette);
        EXPECT_GE(Contrast(ink.line, ink.paper), 4.5);
        EXPECT_GE(Contrast(ink.dim, ink.paper), 4.5);
        EXPECT_GE(Contrast(ink.accent, ink.paper), 4.5);
        EXPECT_GE(Contrast(ink.plus, ink.paper), 4.5);
        EXPECT_GE(Contrast(ink.line, ink.body), 4.5);
        EXPECT_GE(Contrast(ink.plus, ink.body), 3.0);
        EXPECT_NE(ink.accent, ink.dim);
    }
}

TEST(DiagramInk, PlusIsRedBesideAMinusThatIsNot)
{
    const QPalette palettes[] = {
        Colours(Qt::white, Qt::black, QColor(32, 96, 176)),
        Colours(QColor(30, 30, 32), QColor(230, 230, 230), QColor(48, 140, 198)),
        Colours(QColor(72, 72, 78), QColor(240, 240, 240), QColor(64, 128, 208)),
    };
    for (const QPalette &palette : palettes) {
        const Ink ink = InkOf(palette);
        EXPECT_GE(ink.plus.red() - std::max(ink.plus.green(), ink.plus.blue()), 80) << ink.paper.red();
        EXPECT_LT(std::abs(ink.line.red() - ink.line.green()), 10) << ink.paper.red();
    }
}

TEST(DiagramInk, AReadableHighlightStaysAsItIs)
{
    const QColor deep(0, 60, 140);
    EXPECT_EQ(InkOf(Colours(Qt::white, Qt::black, deep)).accent, deep);
}

TEST(DiagramFont, IsNeverBelowNinePoints)
{
    QFont font = QApplication::font();
    font.setPointSizeF(6);
    EXPECT_NEAR(QFontInfo(ReadableFont(font)).pointSizeF(), 9.0, 0.2);
    font.setPixelSize(5);
    EXPECT_NEAR(QFontInfo(ReadableFont(font)).pointSizeF(), 9.0, 0.2);
    font.setPointSizeF(14);
    EXPECT_EQ(ReadableFont(font), font);
}

TEST(DiagramCanvas, PaintsWhatItIsGiven)
{
    Canvas canvas(nullptr, "imgTest");
    canvas.resize(20, 20);
    EXPECT_EQ(canvas.objectName(), "imgTest");
    canvas.grab();  // nothing to paint yet
    canvas.paint = [](QPainter &painter) { painter.fillRect(QRect(0, 0, 20, 20), Qt::green); };
    EXPECT_EQ(canvas.grab().toImage().pixelColor(10, 10), QColor(Qt::green));
}

TEST(DiagramCanvas, AFaultInAPictureEndsAtTheHandlersEdge)
{
    std::string told;
    const auto before = FaultOutlet;
    FaultOutlet = [&told](const std::string &words) { told = words; };
    Canvas canvas(nullptr, "imgTest");
    canvas.resize(20, 20);
    canvas.paint = [](QPainter &) { throw std::runtime_error("no ink"); };
    canvas.grab();
    FaultOutlet = before;
    EXPECT_EQ(told, "no ink");
}

TEST(DiagramScrew, IsFilledOnlyWhenUsed)
{
    const Ink ink = InkOf(Colours(Qt::white, Qt::black, Qt::blue));
    for (const bool used : {true, false}) {
        QImage image(20, 20, QImage::Format_RGB32);
        image.fill(Qt::yellow);
        QPainter painter(&image);
        PaintScrew(painter, QRectF(2, 2, 16, 16), used, ink.plus, ink);
        painter.end();
        EXPECT_EQ(image.pixelColor(13, 13), used ? ink.plus : ink.paper);
        EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::yellow));
    }
}

}  // namespace
}  // namespace ombrix
