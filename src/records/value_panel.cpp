#include "records/value_panel.h"

#include "model/memory_values.h"
#include "session/page_frame.h"
#include "session/state.h"
#include "widgets/widgets.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

namespace ombrix {
namespace {

constexpr int kColumns = 4;
constexpr int kRows = 7;

QPointer<QFrame> fraNVMemVals;  // of the window that stands
std::array<QLabel *, kValueLabels> lblMemVal{};

void ShowLabels(const ValueLabels &labels)
{
    for (std::size_t index = 0; index < labels.size(); ++index) {
        QLabel *label = lblMemVal[index];
        QFont font = label->font();
        font.setBold(labels[index].bold);
        label->setFont(font);
        label->setText(Caption(labels[index].text));
        label->setVisible(labels[index].shown);
    }
}

void Prepare(QFrame *place)
{
    if (!fraNVMemVals)
        return;
    if (!place->layout())
        (new QVBoxLayout(place))->setContentsMargins(0, 0, 0, 0);
    place->layout()->addWidget(fraNVMemVals);
    ShowLabels(EmptyValueLabels());
    fraNVMemVals->show();
}

void Show(const std::string &image)
{
    if (!fraNVMemVals)
        return;
    ShowLabels(DescribeImage(image, SCType, CalibTab));
    fraNVMemVals->show();
}

void Hide()
{
    if (fraNVMemVals)
        fraNVMemVals->hide();
}

}  // namespace

void FillValuePanelHooks()
{
    frameHooks.prepareFileValues = Prepare;
    frameHooks.showFileValues = Show;
    frameHooks.hideFileValues = Hide;
}

// Down one column, then the next; "(extended)" stands behind the board.
void BuildValuePanel(QWidget *window)
{
    fraNVMemVals = new QFrame(window);
    fraNVMemVals->setObjectName("fraNVMemVals");
    fraNVMemVals->setFrameShape(QFrame::StyledPanel);
    auto *grid = new QGridLayout(fraNVMemVals);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(3);
    for (int index = 0; index < kValueLabels; ++index)
        lblMemVal[static_cast<std::size_t>(index)] = Label(fraNVMemVals, Indexed("lblMemVal", index));
    auto *board = new QHBoxLayout;
    board->addWidget(lblMemVal.front());
    board->addWidget(lblMemVal.back());
    board->addStretch(1);
    grid->addLayout(board, 0, 0);
    for (int index = 1; index < kValueLabels - 1; ++index)
        grid->addWidget(lblMemVal[static_cast<std::size_t>(index)], index % kRows, index / kRows);
    for (int column = 0; column < kColumns; ++column)
        grid->setColumnStretch(column, 1);
    ShowLabels(EmptyValueLabels());
    fraNVMemVals->hide();
}

}  // namespace ombrix
