#include "records/diagram_painting.h"

#include "platform/fault.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontInfo>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace ombrix {
namespace {

// Ratio of the brighter to the darker of two colours, 1..21, as the eye takes it: by the relative luminance of sRGB.
double Luminance(const QColor &colour)
{
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double Contrast(const QColor &one, const QColor &other)
{
    const double a = Luminance(one) + 0.05;
    const double b = Luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

TEST(DiagramInk, StandsOutFromThePaper)
{
    const Ink ink;
    ASSERT_NEAR(Contrast(Qt::black, Qt::white), 21.0, 0.01);
    for (const QColor &colour : {ink.line, ink.dim, ink.accent, ink.plus})
        EXPECT_GE(Contrast(colour, ink.paper), 4.5) << colour.name().toStdString();
    EXPECT_GE(Contrast(ink.line, ink.body), 4.5);
    EXPECT_GE(Contrast(ink.plus, ink.body), 4.5);
    EXPECT_NE(ink.accent, ink.dim);
}

TEST(DiagramInk, IsARedPlusAndABlackMinusOnWhitePaper)
{
    const Ink ink;
    EXPECT_GE(ink.plus.red() - std::max(ink.plus.green(), ink.plus.blue()), 150);
    EXPECT_EQ(ink.line, QColor(Qt::black));
    EXPECT_GE(std::min({ink.paper.red(), ink.paper.green(), ink.paper.blue()}), 240);
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

// A canvas with a picture of 40 by 20 that is shown in its natural size where the canvas is 50 wide.
void ShowGreen(Canvas &canvas)
{
    canvas.Show(QSize(40, 20), 50, [](QPainter &painter) { painter.fillRect(QRect(0, 0, 40, 20), Qt::green); });
}

TEST(DiagramCanvas, PaintsItsPictureInTheMiddleAndAsLargeAsItsWidthAllows)
{
    Canvas canvas(nullptr, "imgTest");
    EXPECT_EQ(canvas.objectName(), "imgTest");
    canvas.resize(50, 20);
    canvas.grab();  // nothing to paint yet
    ShowGreen(canvas);
    for (const int times : {1, 2, 3}) {
        canvas.resize(50 * times, 20 * times);
        const QImage image = canvas.grab().toImage();
        const auto green = [&](double x, double y) {
            return image.pixelColor(static_cast<int>(x * times), static_cast<int>(y * times)) == QColor(Qt::green);
        };
        EXPECT_TRUE(green(5.5, 0.5) && green(44.4, 19.4)) << times;
        EXPECT_FALSE(green(4.4, 10) || green(45.5, 10)) << times;
        EXPECT_EQ(canvas.Shown(QPointF(20, 10)), QPointF(25, 10) * times);
    }
}

TEST(DiagramCanvas, IsAsHighAsItsPictureInAnyWidth)
{
    Canvas canvas(nullptr, "imgTest");
    ShowGreen(canvas);
    EXPECT_EQ(canvas.minimumSizeHint(), QSize(50, 20));
    EXPECT_EQ(canvas.heightForWidth(50), 20);
    EXPECT_EQ(canvas.heightForWidth(75), 30);
    EXPECT_TRUE(canvas.sizePolicy().hasHeightForWidth());
}

TEST(DiagramCanvas, ShrinksThePictureRatherThanCutsIt)
{
    Canvas canvas(nullptr, "imgTest");
    ShowGreen(canvas);
    canvas.resize(100, 30);
    EXPECT_DOUBLE_EQ(canvas.Zoom(), 1.5);
    EXPECT_EQ(canvas.Shown(QPointF(20, 20)), QPointF(50, 30));
}

TEST(DiagramCanvas, ALabelKeepsItsPlaceAndGrowsWithThePicture)
{
    Canvas canvas(nullptr, "imgTest");
    canvas.resize(50, 20);
    ShowGreen(canvas);
    auto *label = new QLabel("A", &canvas);
    canvas.Place(label, QRectF(10, 5, 20, 10));
    EXPECT_EQ(label->geometry(), QRect(15, 5, 20, 10));
    const double points = label->font().pointSizeF();
    canvas.resize(100, 40);
    canvas.grab();
    EXPECT_EQ(label->geometry(), QRect(30, 10, 40, 20));
    EXPECT_DOUBLE_EQ(label->font().pointSizeF(), 2 * points);
}

TEST(DiagramCanvas, AFaultInAPictureEndsAtTheHandlersEdge)
{
    std::string told;
    const auto before = FaultOutlet;
    FaultOutlet = [&told](const std::string &words) { told = words; };
    Canvas canvas(nullptr, "imgTest");
    canvas.resize(20, 20);
    canvas.Show(QSize(20, 20), 20, [](QPainter &) { throw std::runtime_error("no ink"); });
    canvas.grab();
    FaultOutlet = before;
    EXPECT_EQ(told, "no ink");
}

TEST(DiagramScrew, IsFilledOnlyWhenUsed)
{
    const Ink ink;
    for (const bool used : {true, false}) {
        QImage image(20, 20, QImage::Format_RGB32);
        image.fill(Qt::yellow);
        QPainter painter(&image);
        PaintScrew(painter, QRectF(2, 2, 16, 16), used, ink.plus);
        painter.end();
        EXPECT_EQ(image.pixelColor(13, 13), used ? ink.plus : ink.paper);
        EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::yellow));
    }
}

}  // namespace
}  // namespace ombrix
