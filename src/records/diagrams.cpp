#include "records/diagrams.h"

#include "model/connection_tables.h"
#include "model/step_ids.h"
#include "records/connector_drawing.h"
#include "records/diagram_painting.h"
#include "records/dual_converter.h"
#include "records/jumper_drawing.h"
#include "session/page_frame.h"
#include "session/state.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

#include <array>
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
    JumperRow row;
};

struct Block {
    QFrame *frame = nullptr;
    QLabel *caption = nullptr;
    std::vector<Picture> pictures;
};

struct Inputs {
    QFrame *frame = nullptr;
    QLabel *caption = nullptr;
    Canvas *canvas = nullptr;
    std::array<QLabel *, kPlaces> places{};
};

// Of the window that stands; `column` is null once it is gone, and the rest is then not touched.
QPointer<QWidget> column;
Inputs inputs;
std::array<Block, kJumperBlocks> blocks;
QWidget *dualConverter = nullptr;

Cable lastCable;

// A card of paper, on which pictures and labels stand one below the other.
QFrame *Card(QWidget *parent, const QString &name)
{
    QFrame *card = Shape(parent, name);
    card->setBackgroundRole(QPalette::Base);
    card->setAutoFillBackground(true);
    card->setFont(ReadableFont(parent->font()));
    auto *layout = new QVBoxLayout(card);
    layout->setContentsMargins(0, 6, 0, 6);
    layout->setSpacing(4);
    card->hide();
    parent->layout()->addWidget(card);
    parent->layout()->setAlignment(card, Qt::AlignHCenter);
    return card;
}

QLabel *PaperLabel(QWidget *parent, const QString &name, bool bold)
{
    QLabel *label = Label(parent, name);
    label->setForegroundRole(QPalette::Text);
    QFont font = label->font();
    font.setBold(bold);
    label->setFont(font);
    return label;
}

QLabel *CardCaption(QFrame *card, const QString &name)
{
    QLabel *caption = PaperLabel(card, name, true);
    caption->setAlignment(Qt::AlignCenter);
    card->layout()->addWidget(caption);
    return caption;
}

void BuildInputs(QWidget *parent)
{
    inputs = Inputs();
    inputs.frame = Card(parent, "fraInputs");
    inputs.caption = CardCaption(inputs.frame, "lblInput");
    inputs.canvas = new Canvas(inputs.frame, "imgInputs");
    inputs.frame->layout()->addWidget(inputs.canvas);
    for (int place = 0; place < kPlaces; place++) {
        inputs.places[place] = PaperLabel(inputs.canvas, Indexed("lblInp", place), false);
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
            picture.labels.push_back(PaperLabel(picture.canvas, name, true));
    }
    block.frame->layout()->addWidget(picture.canvas);
    block.frame->layout()->setAlignment(picture.canvas, Qt::AlignHCenter);
    block.pictures.push_back(picture);
}

void BuildBlock(QWidget *parent, int index)
{
    Block &block = blocks[index];
    block = Block();
    block.frame = Card(parent, Indexed("fraJumperBlock", index));
    block.frame->setMinimumWidth(kDiagramColumnWidth);
    block.caption = CardCaption(block.frame, Indexed("lblRange", index));
    for (const BlockRow &row : kBlockRows) {
        if (row.block == index)
            BuildPicture(block, row);
    }
}

void ShowInputs(int kind)
{
    const QFontMetrics metrics = inputs.canvas->fontMetrics();
    inputs.canvas->paint = [canvas = inputs.canvas, kind](QPainter &painter) {
        PaintConnector(painter, kind, canvas->palette());
    };
    inputs.caption->setText(
        Caption(std::string(KindIsAc(kind) ? "AC " : "DC ") + (KindIsCurrent(kind) ? "Current" : "Voltage")));
    for (int place = 0; place < kPlaces; place++) {
        const std::string text = PinLabel(kind, place);
        inputs.places[place]->setText(Caption(text));
        inputs.places[place]->setGeometry(PlaceLabelRect(place, metrics));
        inputs.places[place]->setVisible(!text.empty());
    }
    inputs.canvas->setFixedSize(ConnectorSize(kind, metrics));
    inputs.frame->setFixedWidth(InputsWidth(kind, metrics));
    inputs.canvas->update();
    inputs.frame->show();
}

// Puts one label's letters in brackets over its picture; no letters, no label.
void ShowLetters(QLabel *label, const Picture &picture, const std::string &letters)
{
    const std::string text = letters.empty() ? "" : "(" + letters + ")";
    label->setText(Caption(text));
    label->adjustSize();
    label->move(LabelLeft(picture.row, text, picture.canvas->fontMetrics(), label->fontMetrics()), 0);
    label->setVisible(!text.empty());
}

void ShowBlock(int index, const std::string &caption, const std::vector<std::string> &letters)
{
    Block &block = blocks[index];
    block.caption->setText(Caption(caption));
    std::size_t entry = 0;
    for (Picture &picture : block.pictures) {
        picture.row.set.clear();
        picture.canvas->setFixedSize(JumperRowSize(picture.row, picture.canvas->fontMetrics()));
        for (QLabel *label : picture.labels) {
            const std::string set = entry < letters.size() ? letters[entry] : "";
            ShowLetters(label, picture, set);
            picture.row.set += set;
            entry++;
        }
        picture.canvas->paint = [canvas = picture.canvas, row = picture.row](QPainter &painter) {
            PaintJumperRow(painter, row, canvas->palette());
        };
        picture.canvas->update();
    }
    block.frame->show();
}

// These pages have no place for the cable message: the next range page must still say it.
bool PageTellsCable()
{
    switch (CurrentStepId) {
    case Step::FirstCycle:
    case Step::Verify:
    case Step::ZeroAdjust:
    case Step::TrimR13R14:
    case Step::MinusGainTrim:
    case Step::TrimR38:
        return false;
    default:
        return true;
    }
}

std::string CableMessage(int row)
{
    if (SCType != kAc3 || CalibTab == kTabAnaCal || !PageTellsCable())
        return "";
    const Cable needed = Ac3Cable(row);
    if (needed == Cable() || needed == lastCable)
        return "";
    lastCable = needed;
    return "Verify that the " + needed.pins + "-pin cable is connected between\r\nthe Calibrator's " + needed.signal +
           " pins and the AC board.";
}

void DrawConnectionDiagram(int row)
{
    HideConnectionDiagram();
    const int kind = DiagramKind(row);
    if (kind < kFirstDrawnKind || CalibTab == kTabAnaCal)
        return;
    ShowInputs(kind);
    ShowBlock(JumperBlockOfBoard(SCType), RangeCaption(SCType, row), JumperLetters(SCType, row));
}

}  // namespace

void BuildDiagrams(QWidget *parent)
{
    auto *layout = new QVBoxLayout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    BuildInputs(parent);
    for (int index = 0; index < kJumperBlocks; index++)
        BuildBlock(parent, index);
    dualConverter = BuildDualConverter(blocks[kAnalogBlock].frame);
    blocks[kAnalogBlock].frame->layout()->addWidget(dualConverter);
    layout->addStretch(1);
    column = parent;
    ForgetCable();
}

std::string ShowConnectionDiagram(int row)
{
    if (column)
        DrawConnectionDiagram(row);
    return CableMessage(row);
}

void HideConnectionDiagram()
{
    if (!column)
        return;
    inputs.frame->hide();
    for (Block &block : blocks)
        block.frame->hide();
}

void ShowAnalogDiagram(int row, bool dual)
{
    if (!column)
        return;
    HideConnectionDiagram();
    dualConverter->setVisible(dual);
    ShowBlock(kAnalogBlock, RangeCaption(kAn, row), JumperLetters(kAn, row));
}

void ForgetCable()
{
    lastCable = Cable();
}

}  // namespace ombrix
