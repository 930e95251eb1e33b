#include "records/diagrams.h"

#include "model/connection_tables.h"
#include "model/step_ids.h"
#include "records/connector_drawing.h"
#include "records/diagram_painting.h"
#include "records/jumper_drawing.h"
#include "session/page_frame.h"
#include "session/state.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QWidget>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrix {
namespace {

// One range as the operator sees it: caption, and the letters of each label of the block.
struct Range {
    int board;
    int row;
    const char *caption;
    std::vector<std::string> letters;
    int kind;
};

const Range kRanges[] = {
    {kDc, 0, "200 mV DC", {"(A)", "(f)", "(b)"}, 2},
    {kDc, 1, "2 V DC", {"(A)", "(f)", "(a)"}, 2},
    {kDc, 2, "20 V DC", {"(B)", "(h)", "(b)"}, 2},
    {kDc, 3, "200 V DC", {"(B)", "(h)", "(a)"}, 2},
    {kDc, 4, "660 V DC", {"(B)", "(g)", "(a)"}, 2},
    {kDc, 5, "2 mA DC", {"(A)", "(e,g)", "(b)"}, 3},
    {kDc, 6, "20 mA DC", {"(A)", "(d,g)", "(b)"}, 3},
    {kDc, 7, "200 mA DC", {"(A)", "(c,g)", "(b)"}, 3},
    {kDc, 8, "5 A DC", {"(A)", "(a,b,g)", "(b)"}, 3},
    {kAc, 0, "200 mV AC", {"(g)", "(k)"}, 6},
    {kAc, 1, "2 V AC", {"(g)", "(j)"}, 6},
    {kAc, 2, "20 V AC", {"(h)", "(k)"}, 5},
    {kAc, 3, "200 V AC", {"(h)", "(j)"}, 5},
    {kAc, 4, "660 V AC", {"(f)", "(j)"}, 5},
    {kAc, 5, "2 mA AC", {"(e,f)", "(k)"}, 7},
    {kAc, 6, "20 mA AC", {"(d,f)", "(k)"}, 7},
    {kAc, 7, "200 mA AC", {"(c,f)", "(k)"}, 7},
    {kAc, 8, "5 A AC", {"(a,b,f)", "(m)"}, 7},
    {kAc, 9, "600 V AC", {"(f)", "(j)"}, 5},
    {kAc2, 0, "200 mV AC", {"(g)", "(k)"}, 6},
    {kAc2, 1, "2 V AC", {"(g)", "(j)"}, 6},
    {kAc2, 5, "2 mA AC", {"(e,f)", "(k)"}, 7},
    {kAc2, 8, "5 A AC", {"(a,b,f)", "(m)"}, 7},
    {kAc2, 9, "600 V AC", {"(f)", "(j)"}, 5},
    {kAc2, 10, "200 mV AC", {"", ""}, 6},
    {kAc3, 0, "200 mV AC", {"(j)", ""}, 6},
    {kAc3, 1, "2 V AC", {"(g,h)", "(c)"}, 5},
    {kAc3, 2, "20 V AC", {"(i)", "(c)"}, 5},
    {kAc3, 3, "200 V AC", {"(k)", "(c)"}, 5},
    {kAc3, 4, "660 V AC", {"", ""}, 5},
    {kAc3, 5, "2 mA AC", {"(l,k)", ""}, 7},
    {kAc3, 6, "20 mA AC", {"(m)", "(b)"}, 7},
    {kAc3, 7, "200 mA AC", {"(m)", "(a)"}, 7},
    {kAc3, 8, "5 A AC", {"(m)", "(c,d,e)"}, 7},
    {kAc3, 9, "600 V AC", {"(m)", "(c)"}, 5},
    {kAc3, 10, "200 mV AC", {"(j)", "(f)"}, 6},
    {kLc, 0, "20 mV", {"(e)"}, 8},
    {kLc, 1, "50 mV", {"(a)"}, 8},
    {kLc, 2, "100 mV", {"(b)"}, 8},
    {kLc, 3, "250 mV", {"(c)"}, 8},
    {kLc, 4, "500 mV", {"(d)"}, 8},
    {kTc, 0, "J,K,E,N", {""}, 2},
    {kTc, 1, "T,R,S", {"(j)"}, 2},
    {kTc, 2, "J,K,E,N °F", {""}, 2},
    {kTc, 3, "J,K,E,N °C", {""}, 2},
    {kTc, 4, "T,R,S °F", {"(j)"}, 2},
    {kTc, 5, "T,R,S °C", {"(j)"}, 2},
    {kTemp, 0, "J,K,E,N", {"(e)", "", ""}, 2},
    {kTemp, 1, "T,R,S", {"(f)", "", ""}, 2},
    {kTemp, 2, "J,K,E,N °F", {"(e)", "", ""}, 2},
    {kTemp, 3, "J,K,E,N °C", {"(e)", "", ""}, 2},
    {kTemp, 4, "T,R,S °F", {"(f)", "", ""}, 2},
    {kTemp, 5, "T,R,S °C", {"(f)", "", ""}, 2},
    {kTemp, 6, "Upscale", {"", "(c)", ""}, 2},
    {kTemp, 7, "Downscale", {"", "(d)", ""}, 2},
    {kTemp, 8, "4-wire", {"", "", "(b,e)"}, 2},
    {kTemp, 9, "3-wire", {"", "", "(a,e)"}, 2},
    {kRtd, 0, "4-Wire", {""}, 10},
    {kRtd, 1, "DIN385 °F", {"(a)"}, 10},
    {kRtd, 2, "DIN385 °C", {"(a)"}, 10},
    {kRtd, 3, "ANSI3902 °F", {"(a)"}, 10},
    {kRtd, 4, "ANSI3902 °C", {"(a)"}, 10},
    {kRtd, 5, "Ni120 °F", {"(a)"}, 10},
    {kRtd, 6, "Ni120 °C", {"(a)"}, 10},
    {kRtd, 7, "Cu10 °F", {"(b)"}, 10},
    {kRtd, 8, "Cu10 °C", {"(b)"}, 10},
    {kRtd, 9, "20 Ohms", {"(b)"}, 10},
    {kRtd, 10, "200 Ohms", {"(c)"}, 10},
    {kRtd, 11, "2 kOhms", {"(d)"}, 10},
    {kRtd, 12, "20 kOhms", {"(e)"}, 10},
    {kRtd, 13, "200 kOhms", {"(f)"}, 10},
    {kVf, 0, "VF 4-20 mA", {"(b)"}, 3},
    {kVf, 1, "VF 0-1 mA", {"(a)"}, 3},
    {kVf, 2, "VF 0-10 V", {""}, 2},
};

// fraJumperBlock's index and its labels, by board.
struct BlockOf {
    int index;
    std::vector<std::string> labels;
};
const std::map<int, BlockOf> kBlockOf = {
    {kDc, {0, {"lblJmprE(0)", "lblJmprE(1)", "lblJmprE(2)"}}},
    {kAc, {1, {"lblJmprA(0)", "lblJmprA(1)"}}},
    {kAc2, {1, {"lblJmprA(0)", "lblJmprA(1)"}}},
    {kAc3, {6, {"lblAC3E(0)", "lblAC3E(1)"}}},
    {kLc, {2, {"lblJmprLC"}}},
    {kTc, {3, {"lblJmprE(3)"}}},
    {kTemp, {7, {"lblJmprTemp(0)", "lblJmprTemp(1)", "lblJmprTemp(2)"}}},
    {kRtd, {8, {"lblJmprRTD"}}},
    {kVf, {4, {"lblJmprVF"}}},
};

struct Connector {
    const char *input;
    int units;
    std::vector<std::string> pins;
};
const std::map<int, Connector> kConnectors = {
    {2, {"DC Voltage", 1400, {"", "", "3 - SIG", "4 + SIG", "", ""}}},
    {3, {"DC Current", 1400, {"", "", "3 - SIG", "4 + SIG", "", ""}}},
    {4, {"DC Voltage", 2000, {"1 - EXC", "", "3 - SIG", "4 + SIG", "", ""}}},
    {5, {"AC Voltage", 1400, {"1 SIG HI", "", "3 SIG LO", "", "", ""}}},
    {6, {"AC Voltage", 1400, {"", "", "3 SIG LO", "4 SIG HI", "", ""}}},
    {7, {"AC Current", 1400, {"", "", "3 SIG LO", "4 SIG HI", "", ""}}},
    {8, {"DC Voltage", 1400, {"", "", "3 - SIG", "4 + SIG", "", ""}}},
    {9, {"DC Voltage", 2000, {"1 - EXC", "2 -SENS", "3 - SIG", "4 + SIG", "5 + EXC", "6 +SENS"}}},
    {10, {"DC Voltage", 1700, {"1 - EXC", "2 + EXC", "3 - SIG", "4 + SIG", "", ""}}},
};

class Diagrams : public testing::Test
{
protected:
    void SetUp() override
    {
        InitSessionState();
        FillDiagramHooks();
        MakeColumn();
        CurrentStepId = Step::Range2V;
    }

    void TearDown() override
    {
        frameHooks = FrameHooks();
        InitSessionState();
    }

    void MakeColumn()
    {
        column = std::make_unique<QWidget>();
        BuildDiagrams(column.get());
    }

    template <class Widget = QWidget> Widget *Find(const std::string &name)
    {
        auto *widget = column->findChild<Widget *>(QString::fromStdString(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    std::string Text(const std::string &label) { return Find<QLabel>(label)->text().toStdString(); }
    bool Shown(const std::string &name) { return Find(name)->isVisibleTo(column.get()); }

    // Index of the one block in sight, -1 when there is none.
    int BlockInSight()
    {
        int found = -1;
        for (int index = 0; index < kJumperBlocks; index++) {
            if (!Shown("fraJumperBlock(" + std::to_string(index) + ")"))
                continue;
            EXPECT_EQ(found, -1) << "two blocks at once";
            found = index;
        }
        return found;
    }

    void Show(int board, int row, int step = Step::Range2V)
    {
        SCType = board;
        CurrentStepId = step;
        ShowConnectionDiagram(row);
    }

    // Everything at its place in a column of that size, as on the screen.
    void LayOut(int width, int height)
    {
        column->resize(width, height);
        column->show();
        for (int round = 0; round < 3; round++)
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    QImage Picture(double scale = 1)
    {
        QImage image(column->size() * scale, QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        column->render(&image);
        return image;
    }

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

    void ExpectConnector(int kind)
    {
        const Connector &connector = kConnectors.at(kind);
        EXPECT_TRUE(Shown("fraInputs"));
        EXPECT_EQ(Text("lblInput"), connector.input);
        for (int place = 0; place < 6; place++) {
            const std::string label = "lblInp(" + std::to_string(place) + ")";
            EXPECT_EQ(Shown(label), !connector.pins[place].empty()) << label;
            EXPECT_EQ(Text(label), connector.pins[place]) << label;
        }
    }

    std::unique_ptr<QWidget> column;
};

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

TEST_F(Diagrams, CardsHaveOneWidthWhateverTheyShow)
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

TEST_F(Diagrams, PicturesAndTheirTextsGrowWithTheColumn)
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

TEST_F(Diagrams, ALowWindowScrollsThemAndCutsNothing)
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

TEST_F(Diagrams, TakeNoRoomWhileNothingIsShown)
{
    EXPECT_EQ(column->sizeHint().width(), 0);
    Show(kDc, 0);
    EXPECT_GE(column->sizeHint().width(), 400);
    EXPECT_GE(column->minimumSizeHint().width(), 260);
    EXPECT_LE(column->minimumSizeHint().width(), 280);
    HideConnectionDiagram();
    EXPECT_EQ(column->sizeHint().width(), 0);
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
    const std::pair<int, double> sizes[] = {{280, 1.0}, {330, 1.25}, {420, 2.0}};
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

TEST_F(Diagrams, EachTextHasItsRoomInEveryWidth)
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

TEST_F(Diagrams, StayOnLightPaperInADarkTheme)
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

TEST_F(Diagrams, AreReadableInATinyFont)
{
    column = std::make_unique<QWidget>();
    column->setFont(QFont(column->font().family(), 5));
    BuildDiagrams(column.get());
    Show(kRtd, 1);
    LayOut(280, 800);
    for (const char *name : {"lblInp(2)", "lblJmprRTD", "imgRTD", "imgInputs", "lblRange(8)"})
        EXPECT_GE(QFontInfo(Find(name)->font()).pointSizeF(), 8.8) << name;
}

TEST_F(Diagrams, EveryRangeFitsTheColumn)
{
    for (const Range &range : kRanges) {
        Show(range.board, range.row);
        LayOut(280, 500);
        EXPECT_EQ(Find<QScrollArea>("fraDiagramCards")->verticalScrollBar()->maximum(), 0)
            << range.board << " row " << range.row;
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

// ---- the cable of the AC3 board ----

std::string MessageFor(const std::string &pins, const std::string &signal)
{
    return "Verify that the " + pins + "-pin cable is connected between\r\nthe Calibrator's " + signal +
           " pins and the AC board.";
}

class CableMessages : public Diagrams
{
protected:
    void SetUp() override
    {
        Diagrams::SetUp();
        SCType = kAc3;
    }

    // A range that is opened in full; what it asked for.
    static std::string Opens(int row)
    {
        std::string message = CableMessage(row);
        CableConnected(row);
        return message;
    }
};

TEST_F(CableMessages, TheFirstAc3RangeAsksForItsCable)
{
    EXPECT_EQ(CableMessage(0), "Verify that the 2-pin cable is connected between\r\n"
                               "the Calibrator's Voltage pins and the AC board.");
}

TEST_F(CableMessages, EachRowNeedsItsCable)
{
    const std::map<int, std::string> messages = {
        {0, MessageFor("2", "Voltage")}, {1, MessageFor("4", "Voltage")}, {2, MessageFor("4", "Voltage")},
        {3, MessageFor("4", "Voltage")}, {5, MessageFor("2", "Current")}, {6, MessageFor("2", "Current")},
        {7, MessageFor("2", "Current")}, {8, MessageFor("2", "Current")}, {9, MessageFor("4", "Voltage")},
    };
    for (const auto &[row, message] : messages)
        EXPECT_EQ(CableMessage(row), message) << row;
}

TEST_F(CableMessages, TwoRangesInARowOnTheSameCableGiveNoSecondCableMessage)
{
    EXPECT_EQ(Opens(1), MessageFor("4", "Voltage"));
    EXPECT_EQ(Opens(2), "");
    EXPECT_EQ(Opens(9), "");
    EXPECT_EQ(Opens(5), MessageFor("2", "Current"));
    EXPECT_EQ(Opens(8), "");
    EXPECT_EQ(Opens(1), MessageFor("4", "Voltage"));
}

TEST_F(CableMessages, ARangeThatWasNotOpenedAsksAgain)
{
    EXPECT_EQ(Opens(0), MessageFor("2", "Voltage"));
    EXPECT_EQ(CableMessage(5), MessageFor("2", "Current"));
    EXPECT_EQ(CableMessage(5), MessageFor("2", "Current"));
    EXPECT_EQ(CableMessage(0), "") << "the cable is still the one of the range that was opened";
}

TEST_F(CableMessages, TheDiagramAsksForNoCable)
{
    Show(kAc3, 5);
    EXPECT_EQ(CableMessage(5), MessageFor("2", "Current"));
    Opens(5);
    Show(kAc3, 0);
    EXPECT_EQ(CableMessage(5), "");
}

TEST_F(CableMessages, RowsOutsideTheListsGiveNoMessage)
{
    for (const int row : {-5, -1, 4, 10, 11, 99})
        EXPECT_EQ(Opens(row), "") << row;
    EXPECT_EQ(Opens(0), MessageFor("2", "Voltage"));
    for (const int row : {-1, 4, 10, 99})
        EXPECT_EQ(Opens(row), "") << row;
    EXPECT_EQ(Opens(0), "");  // still remembered
}

TEST_F(CableMessages, OtherBoardsGiveNoneAndLeaveTheMemoryAlone)
{
    EXPECT_EQ(Opens(0), MessageFor("2", "Voltage"));
    for (const int board : {kDc, kAc, kLc, kTc, kVf, kAc2, kTemp, kRtd}) {
        SCType = board;
        EXPECT_EQ(Opens(1), "") << board;
    }
    SCType = kAc3;
    EXPECT_EQ(Opens(0), "");
}

TEST_F(CableMessages, TheAnalogTabGivesNoneAndLeavesTheMemoryAlone)
{
    CalibTab = kTabAnaCal;
    EXPECT_EQ(Opens(0), "");
    CalibTab = kTabAc;
    EXPECT_NE(Opens(0), "");
}

TEST_F(CableMessages, ANewWindowAsksAnew)
{
    EXPECT_NE(Opens(0), "");
    MakeColumn();
    EXPECT_NE(Opens(0), "");
    EXPECT_EQ(Opens(0), "");
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
