#include "records/diagram_cards.h"

#include "records/connector_drawing.h"
#include "records/diagram_painting.h"
#include "widgets/widgets.h"

#include <QFontMetrics>
#include <QFrame>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace ombrix {

int CardRoom(const QFontMetrics &metrics)
{
    constexpr int kWidest = 9;
    return InputsWidth(kWidest, metrics);
}

QScrollArea *BuildCardList(QWidget *parent)
{
    auto *layout = new QVBoxLayout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *area = new QScrollArea(parent);
    area->setObjectName("fraDiagramCards");
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    auto *list = new QWidget;
    auto *stack = new QVBoxLayout(list);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(8);
    area->setWidget(list);
    layout->addWidget(area);
    area->hide();
    return area;
}

QFrame *AddCard(QWidget *list, const QString &name)
{
    QFrame *card = Shape(list, name);
    card->setPalette(PaperPalette());
    card->setAutoFillBackground(true);
    card->setFont(ReadableFont(list->font()));
    const int line = 2 * card->frameWidth();
    const int room = CardRoom(card->fontMetrics());
    card->setMinimumWidth(room + line);
    card->setMaximumWidth(static_cast<int>(room * kLargestZoom) + line);
    card->hide();
    list->layout()->addWidget(card);
    return card;
}

QVBoxLayout *Stack(QFrame *frame, int edge)
{
    auto *layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, edge, 0, edge);
    layout->setSpacing(4);
    return layout;
}

QFont BoldFont(const QFont &font)
{
    QFont bold = font;
    bold.setBold(true);
    return bold;
}

QLabel *PaperLabel(QWidget *parent, const QString &name)
{
    QLabel *label = Label(parent, name);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

QLabel *BoldLabel(QWidget *parent, const QString &name)
{
    QLabel *label = PaperLabel(parent, name);
    label->setFont(BoldFont(label->font()));
    return label;
}

QLabel *AddHeading(QFrame *frame, const QString &name)
{
    auto *heading = new Canvas(frame, "img" + name);
    frame->layout()->addWidget(heading);
    return BoldLabel(heading, name);
}

void ShowHeading(QLabel *caption, const std::string &text, int room)
{
    auto *heading = static_cast<Canvas *>(caption->parentWidget());
    const QSize size(room, heading->fontMetrics().height() + 2);
    heading->Show(size, room, {});
    heading->Place(caption, QRectF(QPointF(), size));
    caption->setText(Caption(text));
}

}  // namespace ombrix
