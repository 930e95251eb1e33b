#include "records/diagram_cards.h"

#include "records/diagram_painting.h"
#include "records/diagrams_fixture.h"

#include <QApplication>
#include <QFontInfo>
#include <QFrame>
#include <QLabel>
#include <QPalette>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <iterator>
#include <vector>

namespace ombrix {
namespace {

class DiagramCards : public Diagrams
{
protected:
    // The cards in sight, as they stand in the column.
    std::vector<QRect> Cards()
    {
        std::vector<QRect> found;
        for (auto *card : Find("fraDiagramCards")->findChildren<QFrame *>()) {
            const bool block = card->objectName().startsWith("fraJumperBlock");
            if ((block || card->objectName() == "fraInputsCard") && card->isVisibleTo(column.get()))
                found.emplace_back(card->mapTo(column.get(), QPoint()), card->size());
        }
        return found;
    }
};

TEST_F(DiagramCards, CardsHaveOneWidthWhateverTheyShow)
{
    for (const int width : {280, 340, 420}) {
        int cards = 0;
        for (const Range &range : kRanges) {
            Show(range.board, range.row);
            LayOut(width, 800);
            for (const QRect &card : Cards()) {
                EXPECT_EQ(card.width(), std::min(width, 402)) << range.board << " row " << range.row;
                cards++;
            }
        }
        EXPECT_EQ(cards, 2 * static_cast<int>(std::size(kRanges)));
    }
}

TEST_F(DiagramCards, PicturesAndTheirTextsGrowWithTheColumn)
{
    Show(kDc, 8);
    LayOut(280, 800);
    const auto *canvas = static_cast<Canvas *>(Find("imgDCE2"));
    const double zoom = canvas->Zoom();
    const double points = Find("lblJmprE(1)")->font().pointSizeF();
    const double caption = Find("lblRange(0)")->font().pointSizeF();
    LayOut(420, 800);
    EXPECT_NEAR(canvas->Zoom() / zoom, 400.0 / 278.0, 0.01);
    EXPECT_NEAR(Find("lblJmprE(1)")->font().pointSizeF() / points, 400.0 / 278.0, 0.01);
    EXPECT_NEAR(Find("lblRange(0)")->font().pointSizeF() / caption, 400.0 / 278.0, 0.01);
}

TEST_F(DiagramCards, ALowWindowScrollsThemAndCutsNothing)
{
    Show(kDc, 8);
    LayOut(280, 200);
    EXPECT_LE(column->minimumSizeHint().height(), 200);
    auto *cards = Find<QScrollArea>("fraDiagramCards");
    EXPECT_GT(cards->verticalScrollBar()->maximum(), 0);
    for (const QRect &card : Cards()) {
        EXPECT_GE(card.width(), 260);
        EXPECT_LE(card.right(), cards->viewport()->width());
    }
    EXPECT_GE(static_cast<Canvas *>(Find("imgDCE2"))->Zoom(), 1.0);
}

TEST_F(DiagramCards, TakeNoRoomWhileNothingIsShown)
{
    EXPECT_EQ(column->sizeHint().width(), 0);
    Show(kDc, 0);
    EXPECT_GE(column->sizeHint().width(), 400);
    EXPECT_GE(column->minimumSizeHint().width(), 260);
    EXPECT_LE(column->minimumSizeHint().width(), 280);
    HideConnectionDiagram();
    EXPECT_EQ(column->sizeHint().width(), 0);
}

TEST_F(DiagramCards, EachTextHasItsRoomInEveryWidth)
{
    for (const int width : {280, 300, 360, 420}) {
        for (const Range &range : kRanges) {
            Show(range.board, range.row);
            LayOut(width, 800);
            for (const QLabel *label : column->findChildren<QLabel *>()) {
                if (!label->isVisible())
                    continue;
                EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString() << " at " << width;
                EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()))
                    << label->text().toStdString() << " at " << width;
            }
        }
    }
}

TEST_F(DiagramCards, AreReadableInATinyFont)
{
    column = std::make_unique<QWidget>();
    column->setFont(QFont(column->font().family(), 5));
    BuildDiagrams(column.get());
    Show(kRtd, 1);
    LayOut(280, 800);
    for (const char *name : {"lblInp(2)", "lblJmprRTD", "imgRTD", "imgInputs", "lblRange(8)"})
        EXPECT_GE(QFontInfo(Find(name)->font()).pointSizeF(), 8.8) << name;
}

TEST_F(DiagramCards, EveryRangeFitsTheColumn)
{
    for (const Range &range : kRanges) {
        Show(range.board, range.row);
        LayOut(280, 500);
        EXPECT_EQ(Find<QScrollArea>("fraDiagramCards")->verticalScrollBar()->maximum(), 0)
            << range.board << " row " << range.row;
    }
}

// What the program does with its theme, for as long as it lives.
class Themed
{
public:
    explicit Themed(const QPalette &palette) { QApplication::setPalette(palette); }
    Themed(const Themed &) = delete;
    Themed &operator=(const Themed &) = delete;
    ~Themed() { QApplication::setPalette(m_before); }

private:
    QPalette m_before = QApplication::palette();
};

TEST_F(DiagramCards, StayOnLightPaperInADarkTheme)
{
    Show(kRtd, 1);
    LayOut(280, 800);
    const auto cards = [this] {
        std::vector<QImage> pictures;
        const QImage image = Picture();
        for (const QRect &card : Cards())
            pictures.push_back(image.copy(card.adjusted(2, 2, -2, -2)));  // inside the line, which is the theme's
        return pictures;
    };
    const std::vector<QImage> light = cards();
    ASSERT_EQ(light.size(), 2u);
    for (const QImage &card : light)
        EXPECT_EQ(card.pixelColor(1, card.height() - 2), Ink().paper);

    const Themed dark(QPalette(QColor(62, 62, 66), QColor(40, 40, 43)));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(cards(), light);
    MakeColumn();  // one that is made in the dark
    Show(kRtd, 1);
    LayOut(280, 800);
    EXPECT_EQ(cards(), light);
}

}  // namespace
}  // namespace ombrix
