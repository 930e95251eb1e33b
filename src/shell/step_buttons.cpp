#include "shell/step_buttons.h"

#include "links/calibrator.h"
#include "links/meter_simulator.h"
#include "model/range_tables.h"
#include "model/step_ids.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/main_window.h"
#include "shell/navigation_lock.h"
#include "shell/tab_strip.h"
#include "widgets/widgets.h"

#include <QPushButton>
#include <QVBoxLayout>

namespace ombrix {
namespace {

constexpr int kLastPosition = kPositions - 1;

std::array<QPushButton *, kPositions> cmdCalib{};
std::array<QColor, kPositions> StepButtonColours;  // kept so that the highlight can be taken off
int LastCalPosition = 0;

bool IsPosition(int index)
{
    return index >= 0 && index < kPositions;
}

// A captioned button may still have a reason to stay off.
bool MayBeOn(int position)
{
    if (cmdCalib[position]->text().isEmpty() || !StepAllowed(position))
        return false;
    if (StepIds[position] == Step::FirstCycle && MeterPort == 0)
        return false;  // the stream can't pass the calibrator
    const bool restores = position == kLastPosition && cmdCalib[position]->text() == "Rest Config";
    return !(restores && RestConfigImage.empty());
}

void Colour(int position, const QColor &colour)
{
    StepButtonColours[position] = colour;
    SetFill(cmdCalib[position], colour);
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
        button->setFixedWidth(button->fontMetrics().horizontalAdvance("Current Offset") + 28);
        layout->addWidget(button);
        cmdCalib[position] = button;
    }
    return column;
}

void BlankSteps()
{
    CurrentStepButton = -1;
    for (int position = 0; position < kPositions; position++) {
        cmdCalib[position]->setText("");
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
        if (caption.empty())
            Colour(position, ButtonFace());
        else
            Colour(position, position <= LastCalPosition ? InfoBackground() : ScrollBarColour());
        cmdCalib[position]->setEnabled(MayBeOn(position) && !NavigationLock::Stands());
        cmdCalib[position]->setVisible(CalibTab <= kTabAnaCal);
    }
}

void FocusSteps()
{
    const int position = IsPosition(CurrentStepButton) ? CurrentStepButton : 0;
    cmdCalib[position]->setFocus();
}

void ClickStep(int index)
{
    RunAfterStop([index] {
        const NavigationLock lock;
        PutStripOnOpenTab();
        SelectStep(index);
    });
}

void SelectStep(int index)
{
    RequestStop();
    ClearStop();
    Abort = false;  // a left-over one would empty every read of the step
    SimOneDecimal = false;
    ShowBoardChooser(false);
    HighlightStep(index);
    CurrentStepId = IsPosition(index) ? StepIds[index] : -1;
    if (CalibTab == kTabTc && CurrentStepId != Step::GainOffset && CurrentStepId != Step::OffsetOnly)
        CalibratorStandby();
    if (const StepEntry enter = EntryOfStep(CurrentStepId))
        enter();
    else
        ShowPage(0);
}

void HighlightStep(int index)
{
    if (!frmOmbrix)
        return;
    if (IsPosition(CurrentStepButton))
        SetFill(cmdCalib[CurrentStepButton], StepButtonColours[CurrentStepButton]);
    CurrentStepButton = index;
    if (IsPosition(index))
        SetFill(cmdCalib[index], Cyan());
}

void EnableSteps(bool on)
{
    TabChangeAllowed = on;
    NavigationLock::PageHasSpoken();
    if (!frmOmbrix)
        return;
    for (int position = 0; position < kPositions; position++)
        cmdCalib[position]->setEnabled(on && MayBeOn(position));
    cmdSetup->setEnabled(on);
}

void NextStep()
{
    if (!frmOmbrix || CurrentStepButton > LastCalPosition)
        return;
    int next = CurrentStepButton + 1;
    while (next <= LastCalPosition && !cmdCalib[next]->isEnabled())
        ++next;
    ClickStep(next > LastCalPosition ? 0 : next);
}

}  // namespace ombrix
