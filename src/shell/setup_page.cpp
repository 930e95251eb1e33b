#include "shell/setup_page.h"

#include "links/calibrator.h"
#include "platform/clock.h"
#include "session/kept_remarks.h"
#include "session/live_output.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/establish.h"
#include "shell/folder_note.h"
#include "shell/main_window.h"
#include "shell/navigation_lock.h"
#include "shell/output_panel.h"
#include "shell/setup_options.h"
#include "shell/tab_strip.h"
#include "widgets/widgets.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace ombrix {
namespace {

QPushButton *cmdEstablish = nullptr;
QFrame *shpStatus = nullptr;
QLabel *lblStatus = nullptr;
QFrame *shpProgress = nullptr;
QLabel *lblProgress = nullptr;

constexpr int kContentWidth = 900;  // on a wide screen too an option stands near the next one
constexpr int kLookMs = 1000;
constexpr int kUntoldSeconds = 2;

std::string establishedText;

// What Establish does now, and since when.
struct Progress {
    std::string text;
    std::int64_t start = 0;
    int number = 0;  // tells a look planned for an earlier one
};
Progress progress;

QLabel *StatusLabel(QFrame *shape, const QString &name)
{
    QLabel *label = Label(shape, name);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSize(font.pointSize() + 4);
    label->setFont(font);
    auto *layout = new QVBoxLayout(shape);
    layout->setContentsMargins(20, 10, 20, 10);
    layout->addWidget(label);
    return label;
}

void BuildSetupPage(QFrame *page)
{
    auto *content = new QFrame(page);
    content->setMaximumWidth(kContentWidth);
    cmdEstablish = Button(content, "cmdEstablish", "Establish", cmdEstablish_Click);
    cmdEstablish->setMinimumSize(200, 44);
    QFrame *options = BuildSetupOptions(content, cmdEstablish);
    shpStatus = Shape(content, "shpStatus");
    lblStatus = StatusLabel(shpStatus, "lblStatus");
    shpProgress = Shape(content, "shpEstablishing");
    lblProgress = StatusLabel(shpProgress, "lblEstablishing");
    shpProgress->hide();
    ++progress.number;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(options);
    column->addSpacing(4);
    column->addWidget(shpStatus);
    column->addWidget(shpProgress);
    column->addStretch(1);
    column->addWidget(BuildFolderNote(content));
    auto *row = new QHBoxLayout(page);
    row->addStretch(1);
    row->addWidget(content, 1000);
    row->addStretch(1);
}

// Where the page is higher than its place it is scrolled to what it has to say.
void ComeIntoView(QFrame *bar)
{
    bar->show();
    QWidget *place = bar;
    while (place && !qobject_cast<QScrollArea *>(place))
        place = place->parentWidget();
    if (!place)
        return;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    qobject_cast<QScrollArea *>(place)->ensureWidgetVisible(bar, 0, 4);
}

void HideProgress()
{
    ++progress.number;
    shpProgress->hide();
}

// Looks again each second, as long as nothing else has taken its place.
void LookAtProgress()
{
    const auto seconds = (NowMicros() - progress.start) / 1'000'000;
    const std::string gone = seconds > kUntoldSeconds ? "  " + std::to_string(seconds) + " s" : "";
    lblProgress->setText(Caption(progress.text + gone));
    CallAfter(kLookMs, [number = progress.number] {
        if (number == progress.number && frmOmbrix)
            LookAtProgress();
    });
}

}  // namespace

void RegisterSetupPage()
{
    RegisterPage(kSetupPage, BuildSetupPage);
}

void cmdSetup_Click()
{
    RunAfterStop([] {
        const NavigationLock lock;
        PutStripOnOpenTab();
        LeaveTab();
        OpenSetup();
    });
}

void OpenSetup()
{
    RequestStop();
    ShowBoardChooser(false);
    if (Established)
        RemoveInput();
    HighlightStep(-1);
    SetSetupGroupsVisible(true);
    ShowOptionsInForce();
    ShowPage(kSetupPage);
    if (Established) {
        cmdEstablish->setEnabled(false);
    } else {
        HideStatus();
        FocusEstablish();
    }
}

void SetSetupGroupsVisible(bool on)
{
    SetOptionGroupsVisible(on);
    cmdEstablish->setVisible(on);
}

void EnableSetupControls(bool on)
{
    EnableSetupOptions(on);
    cmdEstablish->setEnabled(on && !Established);
}

void FocusEstablish()
{
    cmdEstablish->setFocus();
}

void ShowEstablishProgress(const std::string &text)
{
    progress = {text, NowMicros(), progress.number + 1};
    shpStatus->hide();
    LookAtProgress();
    ComeIntoView(shpProgress);
}

void ShowEstablished(const std::string &text)
{
    establishedText = text;
    ShowStatus(text, Green());
}

void ShowMeterTrouble(const std::string &trouble)
{
    if (trouble.empty())
        ShowStatus(establishedText, Green());
    else
        ShowStatus(trouble, Red());
}

void ShowStatus(const std::string &text, const QColor &colour)
{
    HideProgress();
    SetFill(shpStatus, colour);
    lblStatus->setText(Caption(text));
    lblStatus->show();
    ComeIntoView(shpStatus);
}

void HideStatus()
{
    HideProgress();
    shpStatus->hide();
    lblStatus->hide();
}

void ResetSession()
{
    Established = false;
    cmdEstablish->setEnabled(true);
    UpdateNavigation();
    ClearOutputPanel();
    RepeatAlert();
    KeepRemarkOn(Subject::Board, "");
}

}  // namespace ombrix
