#include "records/diagrams.h"

#include "records/connector_drawing.h"
#include "records/diagram_painting.h"
#include "records/diagrams_fixture.h"
#include "records/jumper_drawing.h"

#include <QFontMetrics>
#include <QFrame>
#include <QImage>
#include <QLabel>

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>
#include <vector>

namespace ombrix {
namespace {

TEST_F(Diagrams, NothingIsInSightUntilARangeIsShown)
{
    EXPECT_FALSE(Shown("fraInputs"));
    EXPECT_EQ(BlockInSight(), -1);
}

TEST_F(Diagrams, EveryRangeShowsItsCaptionAndLettersOnTheBlockOfItsBoard)
{
    for (const Range &range : kRanges) {
        SCOPED_TRACE(std::to_string(range.board) + " row " + std::to_string(range.row));
        Show(range.board, range.row);
        const BlockOf &block = kBlockOf.at(range.board);
        EXPECT_EQ(BlockInSight(), block.index);
        EXPECT_EQ(Text("lblRange(" + std::to_string(block.index) + ")"), range.caption);
        ASSERT_EQ(range.letters.size(), block.labels.size());
        for (std::size_t i = 0; i < block.labels.size(); i++) {
            EXPECT_EQ(Text(block.labels[i]), range.letters[i]) << block.labels[i];
            EXPECT_EQ(Shown(block.labels[i]), !range.letters[i].empty()) << block.labels[i];
        }
    }
}

TEST_F(Diagrams, EveryRangeShowsItsConnector)
{
    for (const Range &range : kRanges) {
        SCOPED_TRACE(std::to_string(range.board) + " row " + std::to_string(range.row));
        Show(range.board, range.row);
        ExpectConnector(range.kind);
    }
}

TEST_F(Diagrams, RatioAndRtdCurrentHaveConnectorsOfTheirOwn)
{
    Show(kDc, 0, Step::Ratio);
    ExpectConnector(4);
    Show(kLc, 0, Step::Ratio);
    ExpectConnector(9);
    Show(kTemp, 8, Step::RtdCurrent);
    ExpectConnector(10);
    EXPECT_EQ(Text("lblJmprTemp(2)"), "(b,e)");
}

TEST_F(Diagrams, PlaceOneIsHiddenOnTheDcRatioWhateverWasShownBefore)
{
    Show(kRtd, 0);
    EXPECT_TRUE(Shown("lblInp(1)"));
    Show(kDc, 0, Step::Ratio);
    EXPECT_FALSE(Shown("lblInp(1)"));
}

TEST_F(Diagrams, WidthOfTheInputsFollowsTheKind)
{
    const auto expectWidth = [this](int board, int row, int step, int units) {
        Show(board, row, step);
        LayOut(420, 800);
        EXPECT_NEAR(Find("fraInputs")->width(), Find("fraInputsCard")->contentsRect().width() * units / 2000.0, 1.0);
    };
    for (const Range &range : {kRanges[0], kRanges[13], kRanges[60]})
        expectWidth(range.board, range.row, Step::Range2V, kConnectors.at(range.kind).units);
    expectWidth(kDc, 0, Step::Ratio, 2000);
    expectWidth(kLc, 0, Step::Ratio, 2000);
    expectWidth(kTemp, 8, Step::RtdCurrent, 1700);
}

// The pictures in sight over which stands that no jumper is to be set.
std::vector<std::string> BarePictures(QWidget *column)
{
    std::vector<std::string> found;
    for (const QLabel *label : column->findChildren<QLabel *>()) {
        if (label->text() == "no jumper" && label->isVisibleTo(column))
            found.push_back(label->parentWidget()->objectName().toStdString());
    }
    return found;
}

TEST_F(Diagrams, ARowWithoutAJumperSaysSo)
{
    using Names = std::vector<std::string>;
    const auto bare = [this](int board, int row) {
        Show(board, row);
        return BarePictures(column.get());
    };
    EXPECT_EQ(bare(kRtd, 0), Names{"imgRTD"});
    EXPECT_EQ(bare(kVf, 2), Names{"imgVF"});
    EXPECT_EQ(bare(kAc3, 0), Names{"imgAC3E2"});
    EXPECT_EQ(bare(kAc3, 5), Names{"imgAC3E2"});
    for (const int row : {0, 2, 3, 6, 9})
        EXPECT_EQ(bare(kTc, row), Names{"imgTC"}) << row;
    for (const int row : {1, 4, 5})
        EXPECT_EQ(bare(kTc, row), Names()) << row;
    for (const int board : {kDc, kAc, kTemp, kLc})
        EXPECT_EQ(bare(board, 0), Names()) << board;
}

TEST_F(Diagrams, NothingIsSaidOfTheJumpersOfARowThatIsNoRangeOfTheBoard)
{
    Show(kAc3, 4);
    EXPECT_TRUE(BarePictures(column.get()).empty());
    Show(kAc2, 10);
    EXPECT_TRUE(BarePictures(column.get()).empty());
    Show(kVf, 3);
    EXPECT_TRUE(BarePictures(column.get()).empty());
}

TEST_F(Diagrams, ARowBelowZeroShowsNothing)
{
    for (const int tab : {kTabDc, kTabLc}) {
        CalibTab = tab;
        Show(kDc, 0);
        EXPECT_EQ(BlockInSight(), 0);
        Show(kDc, -1);
        EXPECT_FALSE(Shown("fraInputs"));
        EXPECT_EQ(BlockInSight(), -1);
    }
}

TEST_F(Diagrams, TheAnalogTabAndItsBoardShowNothing)
{
    Show(kDc, 0);
    CalibTab = kTabAnaCal;
    Show(kDc, 0);
    EXPECT_FALSE(Shown("fraInputs"));
    EXPECT_EQ(BlockInSight(), -1);
    CalibTab = kTabDc;
    Show(kAn, 0);
    EXPECT_EQ(BlockInSight(), -1);
    Show(-1, 0);
    EXPECT_FALSE(Shown("fraInputs"));
    EXPECT_EQ(BlockInSight(), -1);
}

TEST_F(Diagrams, HideTakesBothAway)
{
    Show(kAc3, 8);
    HideConnectionDiagram();
    EXPECT_FALSE(Shown("fraInputs"));
    EXPECT_EQ(BlockInSight(), -1);
}

TEST_F(Diagrams, AnalogBlockShowsItsLetter)
{
    Show(kDc, 0);
    ShowAnalogDiagram(0, false);
    EXPECT_FALSE(Shown("fraInputs"));
    EXPECT_EQ(BlockInSight(), 5);
    EXPECT_EQ(Text("lblRange(5)"), "UniPolar");
    EXPECT_EQ(Text("lblJmprAna"), "(a)");
    EXPECT_FALSE(Shown("lblDAC(0)"));
    ShowAnalogDiagram(1, false);
    EXPECT_EQ(Text("lblRange(5)"), "BiPolar");
    EXPECT_EQ(Text("lblJmprAna"), "(b)");
}

TEST_F(Diagrams, OnlyADualConverterShowsItsConnectors)
{
    for (const bool dual : {true, false}) {
        ShowAnalogDiagram(0, dual);
        EXPECT_EQ(Shown("lblDAC(2)"), dual);
        EXPECT_EQ(Shown("lblDACPin(4)"), dual);
        EXPECT_TRUE(Shown("lblJmprAna"));
    }
}

TEST_F(Diagrams, Ac3HasTwoPictures)
{
    Show(kAc3, 1);
    EXPECT_TRUE(Shown("imgAC3E1"));
    EXPECT_TRUE(Shown("imgAC3E2"));
    EXPECT_EQ(Find("lblAC3E(0)")->parentWidget(), Find("imgAC3E1"));
    EXPECT_EQ(Find("lblAC3E(1)")->parentWidget(), Find("imgAC3E2"));
}

// The pictures of a block, and which entries of a range's letters each of them draws.
struct PictureOf {
    int board;
    const char *name;
    JumperRow row;
    std::vector<std::size_t> entries;
};
const PictureOf kPictures[] = {
    {kDc, "imgDCE1", {"AB", 3, ""}, {0}},
    {kDc, "imgDCE2", {"abcde fgh", 1, ""}, {1}},
    {kDc, "imgDCE3", {"ab", 1, ""}, {2}},
    {kAc, "imgACE1", {"abcde fgh", 1, ""}, {0}},
    {kAc, "imgACE2", {"jkm", 1, ""}, {1}},
    {kAc2, "imgACE1", {"abcde fgh", 1, ""}, {0}},
    {kAc2, "imgACE2", {"jkm", 1, ""}, {1}},
    {kAc3, "imgAC3E1", {"ghijklm", 1, ""}, {0}},
    {kAc3, "imgAC3E2", {"abcdef", 1, ""}, {1}},
    {kLc, "imgLC", {"abcde", 1, ""}, {0}},
    {kTc, "imgTC", {"j", 1, ""}, {0}},
    {kVf, "imgVF", {"ab", 1, ""}, {0}},
    {kTemp, "imgTemp", {"ab cd ef", 1, ""}, {0, 1, 2}},
    {kRtd, "imgRTD", {"abcdef", 1, ""}, {0}},
};

// Every position of one picture in the window: filled where its letter is told, empty where not. Returns how many of
// them are filled.
int ExpectPicture(QWidget *column, const QImage &image, const PictureOf &picture, const std::string &told)
{
    const auto *canvas = static_cast<Canvas *>(column->findChild<QWidget *>(picture.name));
    const QColor accent = Ink().accent;
    int filled = 0;
    for (const char letter : picture.row.positions) {
        if (letter == ' ')
            continue;
        const QPointF centre = CapOf(picture.row, letter, canvas->fontMetrics()).center();
        const QPointF place = (canvas->mapTo(column, QPoint()) + canvas->Shown(centre)) * image.devicePixelRatio();
        const bool set = told.find(letter) != std::string::npos;
        EXPECT_EQ(image.pixelColor(place.toPoint()) == accent, set) << picture.name << " " << letter;
        filled += set ? 1 : 0;
    }
    return filled;
}

int CountLetters(const std::string &told)
{
    return static_cast<int>(std::count_if(told.begin(), told.end(), [](unsigned char c) { return std::isalpha(c); }));
}

TEST_F(Diagrams, EveryRangeIsDrawnWithItsPositionsFilledAndNoOther)
{
    const std::pair<int, double> sizes[] = {{280, 1.0}, {420, 1.25}};
    for (const auto &[width, scale] : sizes) {
        for (const Range &range : kRanges) {
            SCOPED_TRACE(std::to_string(range.board) + " row " + std::to_string(range.row));
            Show(range.board, range.row);
            LayOut(width, 800);
            const QImage image = Picture(scale);
            for (const PictureOf &picture : kPictures) {
                if (picture.board != range.board)
                    continue;
                std::string told;
                for (const std::size_t entry : picture.entries)
                    told += range.letters[entry];
                EXPECT_EQ(ExpectPicture(column.get(), image, picture, told), CountLetters(told));
            }
        }
    }
}

TEST_F(Diagrams, EveryRangeIsDrawnWithItsPlacesFilledAndNoOther)
{
    const auto *canvas = static_cast<Canvas *>(Find("imgInputs"));
    const QColor paper = Ink().paper;
    for (const Range &range : kRanges) {
        Show(range.board, range.row);
        LayOut(350, 800);
        const QImage image = Picture();
        for (int place = 0; place < kPlaces; place++) {
            const QPointF beside = TerminalOf(place, canvas->fontMetrics()).center() + QPointF(3, 3);  // off the slot
            const QPoint point = (canvas->mapTo(column.get(), QPoint()) + canvas->Shown(beside)).toPoint();
            EXPECT_EQ(image.pixelColor(point) != paper, !kConnectors.at(range.kind).pins[place].empty())
                << range.board << " row " << range.row << " place " << place;
        }
    }
}

TEST_F(Diagrams, AnOldWindowIsStillDrawnAfterANewOneIsMade)
{
    const std::unique_ptr<QWidget> old = std::move(column);
    Show(kDc, 8);
    column = std::make_unique<QWidget>();
    BuildDiagrams(column.get());
    Show(kLc, 0, Step::Ratio);
    const QImage before = old->grab().toImage();
    column.reset();
    EXPECT_EQ(old->grab().toImage(), before);
}

TEST_F(Diagrams, ALabelStandsOverThePositionOfItsFirstLetter)
{
    Show(kDc, 5);
    for (const int width : {280, 420}) {
        LayOut(width, 800);
        auto *label = Find<QLabel>("lblJmprE(1)");
        const auto *canvas = static_cast<Canvas *>(Find("imgDCE2"));
        const QFontMetrics metrics = label->fontMetrics();
        const double text = label->geometry().center().x() - metrics.horizontalAdvance("(e,g)") / 2.0;
        const double letter = text + metrics.horizontalAdvance("(") + metrics.horizontalAdvance("e") / 2.0;
        const JumperRow row{"abcde fgh", 1, "e,g"};
        EXPECT_NEAR(letter, canvas->Shown(CapOf(row, 'e', canvas->fontMetrics()).center()).x(), 2.0) << width;
    }
}

TEST_F(Diagrams, WithoutAWindowNothingIsDrawn)
{
    column.reset();
    Show(kAc3, 0);
    HideConnectionDiagram();
    ShowAnalogDiagram(0, true);
    EXPECT_NE(CableMessage(0), "");
}

TEST_F(Diagrams, ASecondWindowHasDiagramsOfItsOwn)
{
    MakeColumn();
    Show(kRtd, 13);
    EXPECT_EQ(BlockInSight(), 8);
    EXPECT_EQ(Text("lblJmprRTD"), "(f)");
}

TEST(DiagramHooks, DoNothingUntilTheyAreFilled)
{
    ASSERT_EQ(SCType, -1);
    SCType = kAc3;
    ShowConnectionDiagram(0);
    ShowAnalogDiagram(0, true);
    HideConnectionDiagram();
    CableConnected(0);
    EXPECT_EQ(CableMessage(0), "");
    InitSessionState();
}

}  // namespace
}  // namespace ombrix
