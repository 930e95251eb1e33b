#include "shell/board_chooser.h"

#include "model/range_tables.h"
#include "session/state.h"
#include "shell/step_buttons.h"
#include "shell/tab_strip.h"
#include "widgets/widgets.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QRadioButton>

#include <array>

namespace ombrix {
namespace {

constexpr int kChoices = 3;

QGroupBox *fraTabSelect = nullptr;
std::array<QRadioButton *, kChoices> optTabSelect{};

std::array<Board, kChoices> BoardsOfTab()
{
    return CalibTab == kTabAc ? std::array{kAc, kAc2, kAc3} : std::array{kTemp, kTc, kRtd};
}

void optTabSelect_Click(int index)
{
    if (!TabSelectShown)
        return;
    const Board board = BoardsOfTab()[static_cast<std::size_t>(index)];
    if (board == SCType)
        return;
    SCType = board;
    (CalibTab == kTabAc ? LastAcBoard : LastTempBoard) = board;
    CaptionBoardTab();
    RemarkOnBoard();
    FillStepTable();
}

}  // namespace

QWidget *BuildBoardChooser(QWidget *parent)
{
    fraTabSelect = Group(parent, "fraTabSelect", "");
    auto *row = new QHBoxLayout(fraTabSelect);
    row->setSpacing(24);
    for (int index = 0; index < kChoices; index++) {
        optTabSelect[index] =
            Option(fraTabSelect, Indexed("optTabSelect", index), "", [index] { optTabSelect_Click(index); });
        row->addWidget(optTabSelect[index]);
    }
    row->addStretch(1);
    fraTabSelect->hide();
    return fraTabSelect;
}

void ShowBoardChooser(bool on)
{
    TabSelectShown = false;  // the guard: what code sets here is no choice
    fraTabSelect->setVisible(on);
    if (!on)
        return;
    for (std::size_t index = 0; index < kChoices; index++) {
        const Board board = BoardsOfTab()[index];
        optTabSelect[index]->setText(Caption(BoardName(board)));
        SetOption(optTabSelect[index], board == SCType);
    }
    TabSelectShown = true;
}

void EnableBoardChooser(bool on)
{
    fraTabSelect->setEnabled(on);
}

}  // namespace ombrix
