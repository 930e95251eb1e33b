#include "records/connector_drawing.h"

#include "records/diagram_painting.h"
#include "records/painted_texts.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
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
    image.fill(Ink().paper);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    PaintConnector(painter, kind);
    return image;
}

QColor At(const QImage &image, const QPointF &point)
{
    return image.pixelColor((point * image.devicePixelRatio()).toPoint());
}

QColor ColourOf(char polarity)
{
    const Ink ink;
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

std::vector<PaintedText> TextsOf(int kind)
{
    return TextsPaintedBy([&](QPainter &painter) { PaintConnector(painter, kind); }, QApplication::font());
}

// The word that the box writes at the end of a place's wire, "" for none.
std::string WordAtWireOf(int kind, int place)
{
    const QFontMetrics metrics(QApplication::font());
    std::string found;
    for (const PaintedText &word : TextsOf(kind)) {
        const bool sign = word.text == "+" || word.text == "\u2212" || word.text == "HI" || word.text == "LO";
        if (sign && std::abs(word.middle.y() - TerminalOf(place, metrics).center().y()) < metrics.height() / 2.0)
            found += word.text;
    }
    return found;
}

TEST(ConnectorPicture, EachWireEndsAtTheSignOfItsPolarity)
{
    for (const int kind : kKinds) {
        const bool ac = kind >= 5 && kind <= 7;
        const std::string plus = ac ? "HI" : "+";
        const std::string minus = ac ? "LO" : "\u2212";
        for (int place = 0; place < kPlaces; place++) {
            const char polarity = Polarities(kind)[place];
            EXPECT_EQ(WordAtWireOf(kind, place), polarity == '+'   ? plus
                                                 : polarity == '-' ? minus
                                                                   : "")
                << kind << " " << place;
        }
    }
}

TEST(ConnectorPicture, ASignHasTheColourOfItsWire)
{
    for (const int kind : kKinds) {
        for (const PaintedText &word : TextsOf(kind)) {
            const bool plus = word.text == "+" || word.text == "HI";
            EXPECT_EQ(word.colour, ColourOf(plus ? '+' : '-')) << kind << " " << word.text;
        }
    }
}

TEST(ConnectorPicture, TheSourceSaysWhatItGives)
{
    const std::string units[] = {"V", "A", "\u03a9", "EXC"};
    for (const int kind : kKinds) {
        std::string said;
        for (const PaintedText &word : TextsOf(kind)) {
            if (std::find(std::begin(units), std::end(units), word.text) != std::end(units))
                said += word.text + " ";
        }
        const bool current = kind == 3 || kind == 7;
        const bool ratio = kind == 4 || kind == 9;
        EXPECT_EQ(said, kind == 10 ? "\u03a9 " : ratio ? "EXC V " : current ? "A " : "V ") << kind;
    }
}

// The longest level stroke in the colour of the signs, right of the wires and off their heights.
int LongestStroke(const QImage &image)
{
    const QFontMetrics metrics(QApplication::font());
    const QColor line = Ink().line;
    int longest = 0;
    for (int y = 0; y < image.height(); y++) {
        int run = 0;
        for (int x = static_cast<int>(2 * (TerminalOf(0, metrics).right() + 30)); x < image.width(); x++) {
            run = image.pixelColor(x, y) == line ? run + 1 : 0;
            longest = std::max(longest, run);
        }
    }
    return longest;
}

TEST(ConnectorPicture, OnlyDirectCurrentHasTheLevelStrokeOfItsSign)
{
    for (const int kind : {2, 3, 8})
        EXPECT_GE(LongestStroke(Picture(kind, 2, QApplication::font())), 28) << kind;
    for (const int kind : {5, 6, 7})
        EXPECT_LT(LongestStroke(Picture(kind, 2, QApplication::font())), 20) << kind;
}

// How many boxes a line meets on its way from beside the connector to the right edge, between two places.
int BoxesBetween(const QImage &image, int upperPlace)
{
    const QFontMetrics metrics(QApplication::font());
    const QRectF upper = TerminalOf(upperPlace, metrics);
    const double y = TerminalOf(upperPlace + 1, metrics).center().y() - 6;  // off the wires
    const QColor paper = Ink().paper;
    int boxes = 0;
    bool onPaper = true;
    for (double x = upper.right() + 8; x < image.width() / image.devicePixelRatio() - 1; x += 0.5) {
        const bool nowOnPaper = At(image, QPointF(x, y)) == paper;
        boxes += onPaper && !nowOnPaper ? 1 : 0;
        onPaper = nowOnPaper;
    }
    return boxes;
}

TEST(ConnectorPicture, ExcitationHasABoxOfItsOwn)
{
    for (const int kind : kKinds) {
        const QImage image = Picture(kind, 2, QApplication::font());
        // Here stands the source, on kind 9 with the excitation's tall box behind it; that of kind 5 ends above.
        EXPECT_EQ(BoxesBetween(image, 2), kind == 9 ? 2 : kind == 5 ? 0 : 1) << kind;
        // Between places 0 and 1 the source of kind 5, the box of kind 9, the resistance of kind 10.
        EXPECT_EQ(BoxesBetween(image, 0), kind == 5 || kind == 9 || kind == 10 ? 1 : 0) << kind;
    }
}

TEST(ConnectorPicture, AResistanceIsOneBoxForItsFourWires)
{
    const QFontMetrics metrics(QApplication::font());
    const Ink ink;
    const QImage image = Picture(10, 2, QApplication::font());
    const double x = ConnectorSize(10, metrics).width() - 14;
    for (double y = TerminalOf(0, metrics).center().y(); y <= TerminalOf(3, metrics).center().y(); y += 0.5)
        EXPECT_EQ(At(image, QPointF(x, y)), ink.body) << y;
}

TEST(ConnectorPicture, TheExcitationOfARatioStandsAtTheRightEdge)
{
    const QFontMetrics metrics(QApplication::font());
    const Ink ink;
    const QImage image = Picture(4, 2, QApplication::font());
    const double x = ConnectorSize(4, metrics).width() - 11;
    EXPECT_EQ(At(image, QPointF(x, TerminalOf(0, metrics).center().y() - 7)), ink.body);
    EXPECT_EQ(At(image, QPointF(x, TerminalOf(2, metrics).center().y() - 7)), ink.paper);
}

}  // namespace
}  // namespace ombrix
