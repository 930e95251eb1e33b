#include "records/diagrams.h"

#include "model/connection_tables.h"
#include "platform/text.h"
#include "records/board_parts.h"
#include "records/cable.h"
#include "records/connector_drawing.h"
#include "records/diagram_cards.h"
#include "records/diagram_painting.h"
#include "records/dual_converter.h"
#include "records/jumper_drawing.h"
#include "session/page_frame.h"
#include "session/state.h"
#include "widgets/widgets.h"

#include <QFontMetrics>
#include <QFrame>
#include <QLabel>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

namespace ombrix {
namespace {

constexpr int kAnalogBlock = 5;
constexpr int kFirstDrawnKind = 2;  // 0 and 1 have no drawing

// The rows of positions on each block. A block's labels take its letters in the order in which they stand here.
struct BlockRow {
    int block;
    const char *picture;
    const char *positions;
    int pinColumns;
    std::array<const char *, 3> labels;
};
constexpr BlockRow kBlockRows[] = {
    {0, "imgDCE1", "AB", 3, {"lblJmprE(0)"}},
    {0, "imgDCE2", "abcde fgh", 1, {"lblJmprE(1)"}},
    {0, "imgDCE3", "ab", 1, {"lblJmprE(2)"}},
    {1, "imgACE1", "abcde fgh", 1, {"lblJmprA(0)"}},
    {1, "imgACE2", "jkm", 1, {"lblJmprA(1)"}},
    {2, "imgLC", "abcde", 1, {"lblJmprLC"}},
    {3, "imgTC", "j", 1, {"lblJmprE(3)"}},
    {4, "imgVF", "ab", 1, {"lblJmprVF"}},
    {5, "imgAna", "ab", 1, {"lblJmprAna"}},
    {6, "imgAC3E1", "ghijklm", 1, {"lblAC3E(0)"}},
    {6, "imgAC3E2", "abcdef", 1, {"lblAC3E(1)"}},
    {7, "imgTemp", "ab cd ef", 1, {"lblJmprTemp(0)", "lblJmprTemp(1)", "lblJmprTemp(2)"}},
    {8, "imgRTD", "abcdef", 1, {"lblJmprRTD"}},
};

struct Picture {
    Canvas *canvas = nullptr;
    std::vector<QLabel *> labels;
    QLabel *none = nullptr;  // the words for a row without a jumper
    JumperRow row;
};

struct Block {
    QFrame *frame = nullptr;
    QLabel *caption = nullptr;
    std::vector<Picture> pictures;
};

struct Inputs {
    QFrame *card = nullptr;
    QFrame *frame = nullptr;
    QLabel *caption = nullptr;
    Canvas *canvas = nullptr;
    std::array<QLabel *, kPlaces> places{};
};

// Of the window that stands; `column` is null once it is gone, and the rest is then not touched.
QPointer<QWidget> column;
QScrollArea *cards = nullptr;
Inputs inputs;
std::array<Block, kJumperBlocks> blocks;
Canvas *dualConverter = nullptr;

// The row of parts that are handled by hand.
struct Parts {
    QFrame *card = nullptr;
    QLabel *caption = nullptr;
    Canvas *canvas = nullptr;
};
Parts parts;

void BuildInputs(QWidget *parent)
{
    inputs = Inputs();
    inputs.card = AddCard(parent, "fraInputsCard");
    auto *row = new QHBoxLayout(inputs.card);
    row->setContentsMargins(0, kCardEdge, 0, kCardEdge);
    row->setSpacing(0);
    inputs.frame = new QFrame(inputs.card);
    inputs.frame->setObjectName("fraInputs");
    row->addStretch();
    row->addWidget(inputs.frame);
    row->addStretch();
    Stack(inputs.frame, 0);
    inputs.caption = AddHeading(inputs.frame, "lblInput");
    inputs.canvas = new Canvas(inputs.frame, "imgInputs");
    inputs.frame->layout()->addWidget(inputs.canvas);
    for (int place = 0; place < kPlaces; place++) {
        inputs.places[place] = PaperLabel(inputs.canvas, Indexed("lblInp", place));
        inputs.places[place]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
}

void BuildPicture(Block &block, const BlockRow &blockRow)
{
    Picture picture;
    picture.row.positions = blockRow.positions;
    picture.row.pinColumns = blockRow.pinColumns;
    picture.canvas = new Canvas(block.frame, blockRow.picture);
    for (const char *name : blockRow.labels) {
        if (name)
            picture.labels.push_back(BoldLabel(picture.canvas, name));
    }
    picture.none = BoldLabel(picture.canvas, QString("lblNone") + blockRow.picture);
    picture.none->setText("no jumper");
    block.frame->layout()->addWidget(picture.canvas);
    block.pictures.push_back(picture);
}

void BuildBlock(QWidget *parent, int index)
{
    Block &block = blocks[index];
    block = Block();
    block.frame = AddCard(parent, Indexed("fraJumperBlock", index));
    Stack(block.frame, kCardEdge);
    block.caption = AddHeading(block.frame, Indexed("lblRange", index));
    for (const BlockRow &row : kBlockRows) {
        if (row.block == index)
            BuildPicture(block, row);
    }
}

void BuildParts(QWidget *parent)
{
    parts = Parts();
    parts.card = AddCard(parent, "fraBoardParts");
    Stack(parts.card, kCardEdge);
    parts.caption = AddHeading(parts.card, "lblBoardParts");
    parts.canvas = new Canvas(parts.card, "imgBoardParts");
    parts.card->layout()->addWidget(parts.canvas);
}

// ---- what they show ----

void ShowPlaces(int kind)
{
    const QFontMetrics metrics = inputs.canvas->fontMetrics();
    for (int place = 0; place < kPlaces; place++) {
        const std::string text = PinLabel(kind, place);
        inputs.places[place]->setText(Caption(text));
        inputs.canvas->Place(inputs.places[place], PlaceLabelRect(place, metrics));
        inputs.places[place]->setVisible(!text.empty());
    }
}

void ShowInputs(int kind)
{
    const QFontMetrics metrics = inputs.canvas->fontMetrics();
    const int room = InputsWidth(kind, metrics);
    ShowHeading(inputs.caption,
                std::string(KindIsAc(kind) ? "AC " : "DC ") + (KindIsCurrent(kind) ? "Current" : "Voltage"), room);
    inputs.canvas->Show(ConnectorSize(kind, metrics), room,
                        [kind](QPainter &painter) { PaintConnector(painter, kind); });
    ShowPlaces(kind);
    // The frame takes its part of the card: what is left stands half at each side.
    auto *row = static_cast<QHBoxLayout *>(inputs.card->layout());
    const int left = CardRoom(metrics) - room;
    row->setStretch(0, left);
    row->setStretch(1, 2 * room);
    row->setStretch(2, left);
    inputs.card->show();
}

// Puts one label's letters in brackets over its picture; no letters, no label.
void ShowLetters(QLabel *label, const Picture &picture, const std::string &letters)
{
    constexpr int kSpare = 4;  // at each side: large letters aren't exactly in proportion
    const std::string text = letters.empty() ? "" : "(" + letters + ")";
    const QFontMetrics metrics = picture.canvas->fontMetrics();
    const QFontMetrics bold(BoldFont(picture.canvas->font()));
    label->setText(Caption(text));
    picture.canvas->Place(label, QRectF(LabelLeft(picture.row, text, metrics, bold) - kSpare, 0,
                                        bold.horizontalAdvance(label->text()) + 2 * kSpare, metrics.height()));
    label->setVisible(!text.empty());
}

// The words stand in the middle of the card, over the row.
void ShowNone(const Picture &picture, bool none)
{
    const QFontMetrics metrics = picture.canvas->fontMetrics();
    const double middle = JumperRowSize(picture.row, metrics).width() / 2.0;
    const double room = CardRoom(metrics) - 2;  // what is rounded up stays on the card
    picture.canvas->Place(picture.none, QRectF(middle - room / 2, 0, room, metrics.height()));
    picture.none->setVisible(none);
}

void ShowPicture(Picture &picture, std::span<const std::string> letters)
{
    const QFontMetrics metrics = picture.canvas->fontMetrics();
    picture.row.set.clear();
    for (const std::string &told : letters)
        picture.row.set += told;
    picture.canvas->Show(JumperRowSize(picture.row, metrics), CardRoom(metrics),
                         [row = picture.row](QPainter &painter) { PaintJumperRow(painter, row); });
    for (std::size_t i = 0; i < picture.labels.size(); i++)
        ShowLetters(picture.labels[i], picture, i < letters.size() ? letters[i] : "");
    ShowNone(picture, !letters.empty() && picture.row.set.empty());
}

void ShowBlock(int index, const std::string &caption, const std::vector<std::string> &letters)
{
    Block &block = blocks[index];
    ShowHeading(block.caption, caption, CardRoom(block.frame->fontMetrics()));
    std::span<const std::string> rest(letters);
    for (Picture &picture : block.pictures) {
        const std::size_t own = std::min(picture.labels.size(), rest.size());
        ShowPicture(picture, rest.first(own));
        rest = rest.subspan(own);
    }
    block.frame->show();
    cards->show();
}

// ---- what pages ask for ----

void HideDiagrams()
{
    if (!column)
        return;
    cards->hide();
    inputs.card->hide();
    parts.card->hide();
    for (Block &block : blocks)
        block.frame->hide();
}

void ShowConnection(int row)
{
    HideDiagrams();
    const int kind = DiagramKind(row);
    if (!column || kind < kFirstDrawnKind || CalibTab == kTabAnaCal)
        return;
    ShowInputs(kind);
    ShowBlock(JumperBlockOfBoard(SCType), RangeCaption(SCType, row), JumperLetters(SCType, row));
}

void ShowAnalog(int row, bool dual)
{
    HideDiagrams();
    if (!column)
        return;
    dualConverter->setVisible(dual);
    ShowBlock(kAnalogBlock, RangeCaption(kAn, row), JumperLetters(kAn, row));
}

void ShowParts(const std::vector<BoardPart> &row)
{
    if (!column)
        return;
    const QFontMetrics metrics = parts.canvas->fontMetrics();
    ShowHeading(parts.caption, Trim("On the board " + PartsInWork(row)), CardRoom(metrics));
    parts.canvas->Show(BoardPartsSize(row, metrics), CardRoom(metrics),
                       [row](QPainter &painter) { PaintBoardParts(painter, row); });
    parts.card->show();
    cards->show();
}

}  // namespace

void FillDiagramHooks()
{
    frameHooks.showConnectionDiagram = ShowConnection;
    frameHooks.hideConnectionDiagram = HideDiagrams;
    frameHooks.showAnalogDiagram = ShowAnalog;
    frameHooks.showBoardParts = ShowParts;
    frameHooks.cableMessage = MessageOfCable;
    frameHooks.cableConnected = RememberCable;
}

void BuildDiagrams(QWidget *parent)
{
    cards = BuildCardList(parent);
    QWidget *list = cards->widget();
    BuildInputs(list);
    for (int index = 0; index < kJumperBlocks; index++)
        BuildBlock(list, index);
    BuildParts(list);
    QFrame *analog = blocks[kAnalogBlock].frame;
    dualConverter = BuildDualConverter(analog, CardRoom(analog->fontMetrics()));
    analog->layout()->addWidget(dualConverter);
    static_cast<QVBoxLayout *>(list->layout())->addStretch(1);
    // A scroll bar narrows the cards, never below their least width.
    cards->setMinimumWidth(analog->minimumWidth() + cards->verticalScrollBar()->sizeHint().width());
    column = parent;
    ForgetCable();
}

}  // namespace ombrix
