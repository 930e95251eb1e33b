#include "records/connector_drawing.h"

#include "records/diagram_painting.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <string>

namespace ombrix {
namespace {

constexpr int kKinds[] = {2, 3, 4, 5, 6, 7, 8, 9, 10};

// For each place: '-' and '+' used with that polarity, '.' unused.
std::string Polarities(int kind)
{
    switch (kind) {
    case 4:
        return "-.-+..";
    case 5:
        return "+.-...";
    case 9:
        return "---+++";
    case 10:
        return "-+-+..";
    default:
        return "..-+..";
    }
}

QImage Picture(int kind, double scale, const QFont &font)
{
    QImage image(ConnectorSize(kind, QFontMetrics(font)) * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(InkOf(QPalette()).paper);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    PaintConnector(painter, kind, QPalette());
    return image;
}

QColor At(const QImage &image, const QPointF &point)
{
    return image.pixelColor((point * image.devicePixelRatio()).toPoint());
}

QColor ColourOf(char polarity)
{
    const Ink ink = InkOf(QPalette());
    return polarity == '+' ? ink.plus : polarity == '-' ? ink.line : ink.paper;
}

TEST(ConnectorKinds, TellCurrentAndAc)
{
    for (const int kind : kKinds) {
        EXPECT_EQ(KindIsAc(kind), kind >= 5 && kind <= 7) << kind;
        EXPECT_EQ(KindIsCurrent(kind), kind == 3 || kind == 7) << kind;
    }
}

TEST(ConnectorGeometry, WidthsAreInTheProportionOf1400And1700And2000)
{
    QFont font = QApplication::font();
    for (const double points : {9.0, 11.0, 16.0}) {
        font.setPointSizeF(points);
        const QFontMetrics metrics(font);
        const int narrow = InputsWidth(2, metrics);
        for (const int kind : kKinds) {
            const int units = kind == 4 || kind == 9 ? 2000 : kind == 10 ? 1700 : 1400;
            EXPECT_EQ(InputsWidth(kind, metrics) * 1400, narrow * units) << kind << " at " << points;
        }
    }
}

TEST(ConnectorGeometry, LabelsStandBesideTheirScrews)
{
    const QFontMetrics metrics(QApplication::font());
    for (int place = 0; place < kPlaces; place++) {
        const QRect label = PlaceLabelRect(place, metrics);
        const QRectF screw = TerminalOf(place, metrics);
        EXPECT_LT(label.right(), screw.left()) << place;
        EXPECT_NEAR(label.top() + label.height() / 2.0, screw.center().y(), 0.5) << place;
        EXPECT_GT(screw.top(), place == 0 ? 0 : TerminalOf(place - 1, metrics).bottom()) << place;
    }
}

TEST(ConnectorPicture, FillsTheUsedPlacesInTheColourOfTheirPolarity)
{
    for (const double points : {9.0, 13.0}) {
        QFont font = QApplication::font();
        font.setPointSizeF(points);
        const QFontMetrics metrics(font);
        for (const int kind : kKinds) {
            for (const double scale : {1.0, 1.25, 2.0}) {
                const QImage image = Picture(kind, scale, font);
                for (int place = 0; place < kPlaces; place++) {
                    const QPointF beside = TerminalOf(place, metrics).center() + QPointF(3, 3);  // off the slot
                    EXPECT_EQ(At(image, beside), ColourOf(Polarities(kind)[place])) << kind << " " << place;
                }
            }
        }
    }
}

TEST(ConnectorPicture, AWireLeavesEachUsedPlaceAndNoOther)
{
    const QFontMetrics metrics(QApplication::font());
    for (const int kind : kKinds) {
        const QImage image = Picture(kind, 2, QApplication::font());
        for (int place = 0; place < kPlaces; place++) {
            const QRectF screw = TerminalOf(place, metrics);
            const QPointF outside(screw.right() + 16, screw.center().y());
            EXPECT_EQ(At(image, outside), ColourOf(Polarities(kind)[place])) << kind << " " << place;
        }
    }
}

TEST(ConnectorPicture, ExcitationHasABoxOfItsOwn)
{
    // At the right edge, on the row of the uppermost place, only kinds 4 and 9 have something: the box of excitation;
    // kind 10 has the resistance there, kind 5 its source.
    const QFontMetrics metrics(QApplication::font());
    const Ink ink = InkOf(QPalette());
    for (const int kind : kKinds) {
        const QImage image = Picture(kind, 2, QApplication::font());
        const QPointF inside(ConnectorSize(kind, metrics).width() - 12, TerminalOf(0, metrics).center().y() - 7);
        const bool box = kind == 4 || kind == 5 || kind == 9 || kind == 10;
        EXPECT_EQ(At(image, inside), box ? ink.body : ink.paper) << kind;
    }
}

}  // namespace
}  // namespace ombrix
