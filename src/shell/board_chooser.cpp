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

int OptionOfBoard(int board)
{
    switch (board) {
    case kAc:
    case kTemp:
        return 0;
    case kTc:
    case kAc2:
        return 1;
    case kAc3:
    case kRtd:
        return 2;
    default:
        return -1;
    }
}

void optTabSelect_Click(int index)
{
    if (!TabSelectShown)
        return;
    const int board = BoardIndex(optTabSelect[index]->text().toStdString());
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
    const std::array<const char *, kChoices> acBoards = {"AC", "AC2", "AC3"};
    const std::array<const char *, kChoices> tempBoards = {"Temp", "TC", "RTD"};
    for (int index = 0; index < kChoices; index++) {
        optTabSelect[index]->setText((CalibTab == kTabAc ? acBoards : tempBoards)[index]);
        SetOption(optTabSelect[index], false);
    }
    if (const int option = OptionOfBoard(SCType); option >= 0)
        SetOption(optTabSelect[option], true);
    TabSelectShown = true;
}

void EnableBoardChooser(bool on)
{
    fraTabSelect->setEnabled(on);
}

}  // namespace ombrix
