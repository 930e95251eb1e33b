#include "records/board_parts.h"

#include "records/diagram_cards.h"
#include "records/diagram_painting.h"
#include "records/diagrams_fixture.h"
#include "records/painted_texts.h"

#include <QFontMetrics>
#include <QFrame>

namespace ombrix {
namespace {

using enum BoardPart::Kind;

const std::vector<BoardPart> kParts = {
    {TestPoint, "TP1", true}, {Trimmer, "R3", true}, {Jumper, "DC"}, {Resistor, "R13"}, {Trimmer, "R12 (B)"}};

QImage PictureOf(const std::vector<BoardPart> &parts)
{
    const QFont font;
    QImage image(BoardPartsSize(parts, QFontMetrics(font)), QImage::Format_RGB32);
    image.fill(Ink().paper);
    QPainter painter(&image);
    painter.setFont(font);
    PaintBoardParts(painter, parts);
    return image;
}

bool HasAccent(const QImage &image, const QRectF &place)
{
    for (int y = static_cast<int>(place.top()); y < static_cast<int>(place.bottom()); ++y)
        for (int x = static_cast<int>(place.left()); x < static_cast<int>(place.right()); ++x)
            if (image.pixelColor(x, y) == Ink().accent)
                return true;
    return false;
}

TEST(BoardParts, StandSideBySideEachOverItsName)
{
    const QFontMetrics metrics{QFont()};
    const auto texts = TextsPaintedBy([](QPainter &painter) { PaintBoardParts(painter, kParts); }, QFont());
    ASSERT_EQ(texts.size(), kParts.size());
    for (std::size_t i = 0; i < kParts.size(); ++i) {
        EXPECT_EQ(texts[i].text, kParts[i].name);
        EXPECT_TRUE(NameOfPart(kParts, i, metrics).contains(texts[i].middle)) << texts[i].text;
        EXPECT_LT(PictureOfPart(kParts, i, metrics).bottom(), NameOfPart(kParts, i, metrics).top());
        EXPECT_GE(NameOfPart(kParts, i, metrics).width(),
                  QFontMetrics(BoldFont(QFont())).horizontalAdvance(QString::fromStdString(kParts[i].name)));
        if (i > 0) {
            EXPECT_LE(NameOfPart(kParts, i - 1, metrics).right(), NameOfPart(kParts, i, metrics).left());
        }
    }
    EXPECT_GE(BoardPartsSize(kParts, metrics).width(), NameOfPart(kParts, kParts.size() - 1, metrics).right());
}

TEST(BoardParts, InWorkAreFilledAndNamedInBrackets)
{
    const QFontMetrics metrics{QFont()};
    const QImage image = PictureOf(kParts);
    for (std::size_t i = 0; i < kParts.size(); ++i)
        EXPECT_EQ(HasAccent(image, PictureOfPart(kParts, i, metrics)), kParts[i].inWork) << kParts[i].name;
    EXPECT_EQ(PartsInWork(kParts), "(TP1,R3)");
    EXPECT_EQ(PartsInWork({{Trimmer, "R38"}}), "");
}

TEST(BoardParts, OfEachKindLookDifferent)
{
    std::vector<QImage> pictures;
    for (const BoardPart::Kind kind : {Trimmer, Resistor, TestPoint, Jumper})
        for (const bool inWork : {false, true})
            pictures.push_back(PictureOf({{kind, "R1", inWork}}));
    for (std::size_t i = 0; i < pictures.size(); ++i)
        for (std::size_t k = i + 1; k < pictures.size(); ++k)
            EXPECT_NE(pictures[i], pictures[k]) << i << " and " << k;
}

TEST_F(Diagrams, BoardPartsStandBelowTheJumpersUntilAnotherDiagramIsShown)
{
    Show(kAc3, 0);
    EXPECT_FALSE(Shown("fraBoardParts"));
    ShowBoardParts({{Trimmer, "R12 (B)", true}});
    LayOut(420, 800);
    EXPECT_TRUE(Shown("fraBoardParts"));
    EXPECT_EQ(Text("lblBoardParts"), "On the board (R12 (B))");
    EXPECT_GT(Find("fraBoardParts")->y(), Find("fraJumperBlock(6)")->y());
    Show(kAc3, 10);
    EXPECT_FALSE(Shown("fraBoardParts"));
    ShowBoardParts({{Trimmer, "R12 (B)"}});
    EXPECT_EQ(Text("lblBoardParts"), "On the board");
    HideConnectionDiagram();
    EXPECT_FALSE(Shown("fraBoardParts"));
}

TEST_F(Diagrams, TheLongestRowOfPartsHasItsRoomOnTheNarrowestCard)
{
    const std::vector<BoardPart> longest = {
        {TestPoint, "TP1", true}, {Trimmer, "R3", true}, {Jumper, "DC", true}, {Trimmer, "R10"}, {Trimmer, "R25"}};
    Show(kAc2, 0);
    ShowBoardParts(longest);
    const auto *card = Find<QFrame>("fraBoardParts");
    EXPECT_LE(BoardPartsSize(longest, card->fontMetrics()).width(), CardRoom(card->fontMetrics()));
}

}  // namespace
}  // namespace ombrix
