#include "records/jumper_drawing.h"

#include "records/diagram_painting.h"
#include "records/painted_texts.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <string>

namespace ombrix {
namespace {

QFontMetrics Metrics()
{
    return QFontMetrics(QApplication::font());
}

QImage Picture(const JumperRow &row, double scale)
{
    const QSize size = JumperRowSize(row, Metrics());
    const Ink ink;
    QImage image(size * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(ink.paper);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(QApplication::font());
    PaintJumperRow(painter, row);
    return image;
}

QColor At(const QImage &image, const QPointF &point)
{
    return image.pixelColor((point * image.devicePixelRatio()).toPoint());
}

TEST(JumperRowGeometry, PositionsStandInTheirOrderWithoutTouching)
{
    const JumperRow row{"abcde fgh", 1, ""};
    const std::string letters = "abcdefgh";
    const QRectF room(QPointF(0, 0), JumperRowSize(row, Metrics()));
    for (std::size_t i = 0; i < letters.size(); i++) {
        const QRectF cap = CapOf(row, letters[i], Metrics());
        const QRectF letter = LetterOf(row, letters[i], Metrics());
        EXPECT_TRUE(room.contains(cap)) << letters[i];
        EXPECT_TRUE(room.contains(letter)) << letters[i];
        EXPECT_GT(letter.top(), cap.bottom()) << letters[i];
        EXPECT_DOUBLE_EQ(letter.center().x(), cap.center().x()) << letters[i];
        if (i == 0)
            continue;
        EXPECT_GT(cap.left(), CapOf(row, letters[i - 1], Metrics()).right()) << letters[i];
        EXPECT_GE(letter.left(), LetterOf(row, letters[i - 1], Metrics()).right()) << letters[i];
    }
}

TEST(JumperRowGeometry, ABlankIsAGap)
{
    const JumperRow row{"ab c", 1, ""};
    const double step = CapOf(row, 'b', Metrics()).left() - CapOf(row, 'a', Metrics()).left();
    EXPECT_GT(CapOf(row, 'c', Metrics()).left() - CapOf(row, 'b', Metrics()).left(), step);
}

TEST(JumperRowGeometry, AWideCapCoversItsColumns)
{
    EXPECT_GT(CapOf({"AB", 3, ""}, 'A', Metrics()).width(), 2 * CapOf({"AB", 1, ""}, 'A', Metrics()).width());
}

TEST(JumperRowGeometry, ALetterThatTheRowDoesNotHaveHasNoPlace)
{
    const JumperRow row{"ab cd", 1, ""};
    for (const char letter : {'x', ' ', ',', 'A'}) {
        EXPECT_TRUE(CapOf(row, letter, Metrics()).isNull()) << letter;
        EXPECT_TRUE(LetterOf(row, letter, Metrics()).isNull()) << letter;
    }
}

TEST(JumperRowGeometry, ALabelStandsWithItsFirstLetterOverThePosition)
{
    const JumperRow row{"abcde fgh", 1, ""};
    QFont bold = QApplication::font();
    bold.setBold(true);
    for (const QFont &font : {QApplication::font(), bold}) {
        const QFontMetrics label(font);
        for (const std::string text : {"(b)", "(e,g)", "(d,g)", "(f)"}) {
            const double middle = LabelLeft(row, text, Metrics(), label) + label.horizontalAdvance('(') +
                                  label.horizontalAdvance(text[1]) / 2.0;
            EXPECT_NEAR(middle, CapOf(row, text[1], Metrics()).center().x(), 1.0) << text;
        }
    }
}

TEST(JumperRowGeometry, ALabelNeverLeavesThePicture)
{
    const JumperRow row{"ab", 1, ""};
    const int room = JumperRowSize(row, Metrics()).width();
    const auto right = [&](const std::string &text) {
        return LabelLeft(row, text, Metrics(), Metrics()) + Metrics().horizontalAdvance(QString::fromStdString(text));
    };
    EXPECT_EQ(right("(b,a,b)"), room);
    EXPECT_EQ(LabelLeft(row, "(b,a,b,a,b,a,b,a,b,a)", Metrics(), Metrics()), 0);
    EXPECT_EQ(LabelLeft(row, "", Metrics(), Metrics()), 0);
    EXPECT_EQ(LabelLeft(row, "(x)", Metrics(), Metrics()), 0);
}

TEST(JumperRowPicture, FillsThePositionsToSetAndNoOther)
{
    const JumperRow rows[] = {
        {"abcde fgh", 1, "a,b,g"}, {"AB", 3, "B"}, {"jkm", 1, "m"}, {"ghijklm", 1, "l,k"}, {"ab", 1, ""}};
    const Ink ink;
    for (const JumperRow &row : rows) {
        for (const double scale : {1.0, 1.25, 2.0}) {
            const QImage image = Picture(row, scale);
            for (const char letter : row.positions) {
                if (letter == ' ')
                    continue;
                const bool set = row.set.find(letter) != std::string::npos;
                const QRectF chip = LetterOf(row, letter, Metrics());
                EXPECT_EQ(At(image, CapOf(row, letter, Metrics()).center()), set ? ink.accent : ink.body)
                    << row.positions << " " << letter << " at " << scale;
                EXPECT_EQ(At(image, QPointF(chip.left() + 2, chip.center().y())), set ? ink.accent : ink.paper)
                    << row.positions << " " << letter << " at " << scale;
            }
        }
    }
}

TEST(JumperRowPicture, WritesEachLetterUnderItsPosition)
{
    const Ink ink;
    for (const JumperRow &row : {JumperRow{"abcde fgh", 1, "a,b,g"}, JumperRow{"AB", 3, "B"}, JumperRow{"ab", 1, ""}}) {
        std::string written;
        const auto paint = [&](QPainter &painter) { PaintJumperRow(painter, row); };
        for (const PaintedText &letter : TextsPaintedBy(paint, QApplication::font())) {
            ASSERT_EQ(letter.text.size(), 1u);
            const bool set = row.set.find(letter.text) != std::string::npos;
            EXPECT_TRUE(LetterOf(row, letter.text[0], Metrics()).contains(letter.middle)) << letter.text;
            EXPECT_EQ(letter.colour, set ? ink.paper : ink.dim) << letter.text;
            written += letter.text;
        }
        std::string expected = row.positions;
        std::erase(expected, ' ');
        EXPECT_EQ(written, expected);
    }
}

TEST(JumperRowPicture, ShowsThePinsThroughTheCap)
{
    const Ink ink;
    const JumperRow row{"ab", 1, "b"};
    const QImage image = Picture(row, 2);
    for (const char letter : row.positions) {
        const QRectF cap = CapOf(row, letter, Metrics());
        bool pin = false;
        for (double y = cap.top(); y < cap.center().y(); y += 0.5)
            pin |= At(image, QPointF(cap.center().x() - 2.5, y)) == (letter == 'b' ? ink.paper : ink.dim);
        EXPECT_TRUE(pin) << letter;
    }
}

TEST(JumperRowPicture, ABracketJoinsThePositionsToSet)
{
    const Ink ink;
    const JumperRow row{"abcdef", 1, "b,e"};
    const QPointF between(CapOf(row, 'c', Metrics()).center().x(), Metrics().height() + 2);
    EXPECT_EQ(At(Picture(row, 2), between), ink.accent);
    EXPECT_EQ(At(Picture({"abcdef", 1, "b"}, 2), between), ink.paper);
}

}  // namespace
}  // namespace ombrix
