#include "shell/step_buttons.h"

#include "links/calibrator.h"
#include "links/meter_simulator.h"
#include "model/range_tables.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/main_window.h"
#include "shell/navigation_lock.h"
#include "shell/status_line.h"
#include "shell/step_marks.h"
#include "shell/tab_strip.h"
#include "widgets/widgets.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace ombrix {
namespace {

std::array<QPushButton *, kPositions> cmdCalib{};
std::array<QLabel *, kPositions> lblStepMark{};
std::array<QColor, kPositions> StepButtonColours;  // kept so that the highlight can be taken off
int LastCalPosition = 0;

bool IsPosition(int index)
{
    return index >= 0 && index < kPositions;
}

// A position with a step may still have a reason to stay off: its page knows.
bool IsAllowed(int position)
{
    return !StepName(StepIds[position]).empty() && StepIsAllowed(StepIds[position], position);
}

void ShowAllowed(int position)
{
    cmdCalib[position]->setEnabled(TabChangeAllowed && IsAllowed(position));
}

// Beside the caption, which stays as it is told. A click on it is one on the button.
QLabel *BuildMark(QPushButton *button, int position)
{
    QLabel *mark = Label(button, Indexed("lblStepMark", position));
    mark->setAttribute(Qt::WA_TransparentForMouseEvents);
    mark->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont font = mark->font();
    font.setBold(true);
    mark->setFont(font);
    auto *layout = new QHBoxLayout(button);
    layout->setContentsMargins(4, 0, 6, 0);
    layout->addStretch(1);
    layout->addWidget(mark);
    return mark;
}

// The step in work keeps its colour and stands out in bold, also while it is off because it works.
void ShowInWork(int position, bool on)
{
    QPushButton *button = cmdCalib[position];
    QFont font = button->font();
    font.setBold(on);
    button->setFont(font);
    SetFill(button, on ? Cyan() : StepButtonColours[position]);
    if (!on)
        return;
    QPalette palette = button->palette();
    for (const auto role : {QPalette::Button, QPalette::ButtonText, QPalette::WindowText})
        palette.setColor(QPalette::Disabled, role, palette.color(QPalette::Active, role));
    button->setPalette(palette);
}

// Which of the board's ranges is in work, of how many.
std::string RangeProgress()
{
    if (CalibTab == kTabAnaCal)
        return "";  // its points are no ranges
    int ranges = 0;
    int now = 0;
    for (int position = 0; position < kPositions; position++) {
        if (NvmWordAtPosition(position) <= 0)
            continue;
        ++ranges;
        if (position == CurrentStepButton)
            now = ranges;
    }
    return now == 0 ? "" : "range " + std::to_string(now) + " of " + std::to_string(ranges);
}

bool HasNavigationFocus()
{
    const QWidget *focus = frmOmbrix->focusWidget();
    return focus == cmdSetup || std::find(cmdCalib.begin(), cmdCalib.end(), focus) != cmdCalib.end();
}

void Colour(int position, const QColor &colour)
{
    StepButtonColours[position] = colour;
    SetFill(cmdCalib[position], colour);
}

// Nothing of the page that is left can be clicked any more.
void LeavePage()
{
    ShowNoPage("");
    ShowPage(0);
}

}  // namespace

QWidget *BuildStepButtons(QWidget *parent)
{
    auto *column = new QWidget(parent);
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (int position = 0; position < kPositions; position++) {
        QPushButton *button = Button(column, Indexed("cmdCalib", position), "", [position] { ClickStep(position); });
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
        button->setMinimumHeight(button->fontMetrics().height() + 4);
        button->setFixedWidth(button->fontMetrics().horizontalAdvance("REF (200 mV)  ✓ -88") + 40);
        layout->addWidget(button);
        cmdCalib[position] = button;
        lblStepMark[position] = BuildMark(button, position);
    }
    return column;
}

void BlankSteps()
{
    CurrentStepButton = -1;
    for (int position = 0; position < kPositions; position++) {
        StepIds[position] = -1;
        cmdCalib[position]->setText("");
        cmdCalib[position]->setFlat(true);
        cmdCalib[position]->setEnabled(false);
        Colour(position, ButtonFace());
    }
}

void FillStepTable()
{
    LastCalPosition = StepButtonCount();
    for (int position = 0; position < kPositions; position++) {
        StepIds[position] = StepIdAtPosition(position);
        const std::string caption = StepName(StepIds[position]);
        cmdCalib[position]->setText(Caption(caption));
        cmdCalib[position]->setFlat(caption.empty());  // no step, no button
        if (caption.empty())
            Colour(position, ButtonFace());
        else
            Colour(position, position <= LastCalPosition ? InfoBackground() : ScrollBarColour());
        ShowAllowed(position);
        cmdCalib[position]->setVisible(CalibTab <= kTabAnaCal);
    }
    ShowStepMarks();
}

void FocusSteps()
{
    const int position = IsPosition(CurrentStepButton) ? CurrentStepButton : 0;
    cmdCalib[position]->setFocus();
}

void ClickStep(int index)
{
    RunAfterStop([index] { EnterStep(index); });
}

void EnterStep(int index)
{
    const NavigationLock lock;
    PutStripOnOpenTab();
    SelectStep(index);
}

void EnterAllowedStep(int index)
{
    if (index < 0 || (IsPosition(index) && IsAllowed(index)))
        EnterStep(index);
}

void EnterNextStep()
{
    if (CurrentStepButton > LastCalPosition)
        return;
    const int count = LastCalPosition + 1;
    for (int ahead = 1; ahead <= count; ++ahead) {
        const int next = (CurrentStepButton + ahead) % count;
        if (IsAllowed(next))
            return EnterStep(next);
    }
}

void SelectStep(int index)
{
    SimOneDecimal = false;
    ShowBoardChooser(false);
    HighlightStep(index);
    CurrentStepId = IsPosition(index) ? StepIds[index] : -1;
    const StepRecord record = RecordOfStep(CurrentStepId);
    // A line that went may be back: then the alert ends here.
    if ((CalibTab == kTabTc && !record.takesInput) || GetLiveOutput().LineGone) {
        LeavePage();
        CalibratorStandby();
    }
    FillPage(record.page);
    if (record.enter)
        record.enter();
    else
        ShowPage(0);
    ShowNoPage(record.enter ? "" : StepName(CurrentStepId));
}

void MarkStep(int index)
{
    if (IsPosition(CurrentStepButton))
        ShowInWork(CurrentStepButton, false);
    CurrentStepButton = index;
    if (IsPosition(index))
        ShowInWork(index, true);
    ShowProgress(RangeProgress());
}

void ShowStepMarks()
{
    for (int position = 0; position < kPositions; position++)
        lblStepMark[position]->setText(Caption(MarkOfStep(BoardName(CalibTab == kTabAnaCal ? kAn : SCType), position)));
}

void EnableSteps(bool on)
{
    TabChangeAllowed = on;
    if (!on && HasNavigationFocus())
        KeepFocusSafe();
    for (int position = 0; position < kPositions; position++)
        ShowAllowed(position);
    cmdSetup->setEnabled(on);
    ShowTabsAllowed(on);
    if (!ProcedureRunning())
        GiveFocusBack();
}

}  // namespace ombrix
