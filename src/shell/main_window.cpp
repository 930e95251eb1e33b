#include "shell/main_window.h"

#include "platform/fault.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/alert_bar.h"
#include "shell/board_chooser.h"
#include "shell/input_gate.h"
#include "shell/operator_guide.h"
#include "shell/output_panel.h"
#include "shell/quit.h"
#include "shell/setup_page.h"
#include "shell/simulation_switch.h"
#include "shell/status_line.h"
#include "shell/step_buttons.h"
#include "shell/tab_strip.h"
#include "shell/trace_window.h"
#include "shell/window_icon.h"
#include "version.h"
#include "widgets/page_kit.h"
#include "widgets/widgets.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFrame>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace ombrix {

QMainWindow *frmOmbrix = nullptr;
QPushButton *cmdSetup = nullptr;
QPushButton *cmdQuit = nullptr;
QLabel *lblRev = nullptr;
QStackedWidget *pageStack = nullptr;

namespace {

constexpr QSize kDefaultSize(1100, 760);
constexpr int kTitleBar = 36;        // what the desktop puts above the window
constexpr int kPageWidth = 1200;     // wider, the eye loses its row
constexpr int kSideWidth = 420;      // as wide as what stands beside the page gets
constexpr double kSideShare = 0.24;  // of the window

std::array<QFrame *, kPages> pages{};
QWidget *side = nullptr;
QLabel *lblNoPage = nullptr;

// Beside the page: no room while nothing stands there, else its share of the window.
class Side : public QWidget
{
public:
    using QWidget::QWidget;

    QSize sizeHint() const override
    {
        const QSize least = minimumSizeHint();
        if (least.width() <= 0)
            return least;
        const int share = std::min(static_cast<int>(frmOmbrix->width() * kSideShare), kSideWidth);
        return {std::max(share, least.width()), QWidget::sizeHint().height()};
    }
};

// Scrolls up and down where its content finds no room; as wide as that.
class Shaft : public QScrollArea
{
public:
    Shaft(QWidget *parent, QWidget *content) : QScrollArea(parent)
    {
        setWidget(content);
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    }

    QSize sizeHint() const override { return {Width(), QScrollArea::sizeHint().height()}; }
    QSize minimumSizeHint() const override { return {Width(), QScrollArea::minimumSizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QScrollArea::resizeEvent(event);
        updateGeometry();
    }

private:
    int Width() const
    {
        const bool scrolls = height() < widget()->minimumSizeHint().height();
        return widget()->sizeHint().width() + (scrolls ? verticalScrollBar()->sizeHint().width() : 0);
    }
};

class StationWindow : public QMainWindow
{
protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QMainWindow::resizeEvent(event);
        side->updateGeometry();
    }

    void closeEvent(QCloseEvent *event) override
    {
        event->ignore();
        RunHandler([] { Quit(QuitBy::Operator); });
    }

    // A held Esc counts once: what it repeats would break off the removal of the input too.
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() != Qt::Key_Escape || Quitting)
            QMainWindow::keyPressEvent(event);
        else if (!event->isAutoRepeat())
            PressEscape();
    }
};

void BuildPageFrames(QWidget *parent)
{
    pageStack = new QStackedWidget(parent);
    pageStack->setObjectName("fraPages");
    for (int index = 0; index < kPages; index++) {
        auto *place = new QScrollArea(pageStack);
        place->setWidgetResizable(true);
        place->setFrameShape(QFrame::NoFrame);
        place->setFocusPolicy(Qt::NoFocus);
        pages[index] = new QFrame;
        pages[index]->setObjectName(Indexed("fraCalib", index));
        pages[index]->setMaximumWidth(kPageWidth);
        place->setAlignment(Qt::AlignHCenter);
        place->setWidget(pages[index]);
        pageStack->addWidget(place);
    }
}

// What stands where a step has no page yet.
void BuildEmptyPage(QFrame *page)
{
    lblNoPage = Title(page, "lblNoPage");
    lblNoPage->setAlignment(Qt::AlignCenter);
    lblNoPage->setWordWrap(true);
    auto *column = new QVBoxLayout(page);
    column->addWidget(lblNoPage);
}

QWidget *BuildMiddle(QWidget *parent)
{
    auto *middle = new QWidget(parent);
    BuildPageFrames(middle);
    BuildEmptyPage(pages[0]);
    auto *column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(BuildBoardChooser(middle));
    column->addWidget(pageStack, 1);
    return middle;
}

QWidget *BuildSide(QWidget *parent)
{
    side = new Side(parent);
    auto *column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    return side;
}

// A key of the whole program, also while a box is up.
void Everywhere(QWidget *parent, const char *keys, Handler handler)
{
    auto *shortcut = new QShortcut(QKeySequence(keys), parent);
    shortcut->setContext(Qt::ApplicationShortcut);
    shortcut->setAutoRepeat(false);
    KeepOpen(shortcut);
    QObject::connect(shortcut, &QShortcut::activated, parent, [handler = std::move(handler)] { RunHandler(handler); });
}

// Tab comes to Setup and Quit behind the page, whenever that was filled.
void KeepCommandsLast()
{
    QWidget *last = frmOmbrix->previousInFocusChain();
    while (last->focusPolicy() == Qt::NoFocus && last != frmOmbrix)
        last = last->previousInFocusChain();
    QWidget::setTabOrder(last, cmdSetup);
    QWidget::setTabOrder(cmdSetup, cmdQuit);
}

// Setup and Quit. Quit never takes the focus by itself: a button that goes off passes its focus on, and the next
// Enter must not end the program.
QWidget *BuildCommands(QWidget *parent)
{
    auto *commands = new QWidget(parent);
    cmdSetup = Button(commands, "cmdSetup", "Setup", cmdSetup_Click);
    cmdSetup->setToolTip("Removes the input and goes back to the wiring");
    cmdQuit = Button(commands, "cmdQuit", "Quit", [] { Quit(QuitBy::Operator); });
    cmdQuit->setFocusPolicy(Qt::NoFocus);
    cmdQuit->setToolTip("Standby, then the end of the program (Ctrl+Q)");
    KeepOpen(cmdQuit);
    Everywhere(cmdQuit, "Ctrl+Q", [] { Quit(QuitBy::Operator); });
    auto *row = new QHBoxLayout(commands);
    row->setContentsMargins(0, 0, 0, 0);
    for (QPushButton *button : {cmdSetup, cmdQuit}) {
        button->setMinimumSize(76, 40);
        row->addWidget(button);
    }
    return commands;
}

QWidget *BuildBottom(QWidget *parent)
{
    auto *bottom = new QWidget(parent);
    auto *row = new QHBoxLayout(bottom);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(BuildOutputPanel(bottom));
    row->addStretch(1);
    row->addWidget(BuildSimulationMark(bottom));
    row->addWidget(BuildCommands(bottom));
    return bottom;
}

void BuildLayout(QWidget *centre)
{
    auto *work = new QHBoxLayout;
    work->setSpacing(10);
    work->addWidget(BuildMiddle(centre), 1);
    work->addWidget(BuildSide(centre));
    auto *above = new QHBoxLayout;
    above->setSpacing(10);
    above->addWidget(new Shaft(centre, BuildStepButtons(centre)));
    above->addLayout(work, 1);
    auto *all = new QVBoxLayout(centre);
    all->setContentsMargins(8, 6, 8, 4);
    all->addWidget(BuildTabStrip(centre));
    all->addLayout(above, 1);
    all->addWidget(BuildAlertBar(centre));
    all->addWidget(BuildBottom(centre));
}

}  // namespace

void BuildMainWindow()
{
    frmOmbrix = new StationWindow;
    frmOmbrix->setObjectName("frmOmbrix");
    frmOmbrix->setWindowTitle("Ombrix - Version" +
                              VersionText(OMBRIX_VERSION_MAJOR, OMBRIX_VERSION_MINOR, OMBRIX_VERSION_REVISION));
    auto *centre = new QWidget(frmOmbrix);
    BuildLayout(centre);
    frmOmbrix->setCentralWidget(centre);
    BuildStatusLine(frmOmbrix->statusBar());
    frmOmbrix->setWindowIcon(WindowIcon());
    Everywhere(frmOmbrix, "F1", [] { OpenGuide(QCoreApplication::applicationDirPath()); });
    Everywhere(frmOmbrix, "F12", ShowTraceWindow);
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        frmOmbrix->resize(FirstSize(screen->availableSize()));
}

void FillPageFrame(int index)
{
    QFrame *page = PageFrame(index);
    const auto build = BuilderOfPage(index);
    if (!page || !build || page->layout())
        return;
    const Navigation before = NavigationWanted();
    build(page);
    SetNavigation(before);  // the page's first state holds when it is shown
    KeepCommandsLast();
}

void DestroyMainWindow()
{
    DropStatusLine();
    delete frmOmbrix;
    frmOmbrix = nullptr;
    cmdSetup = cmdQuit = nullptr;
    lblRev = nullptr;
    pageStack = nullptr;
    pages = {};
    side = nullptr;
    lblNoPage = nullptr;
}

QWidget *AddSideFrame(const QString &name)
{
    auto *frame = new QWidget(frmOmbrix);
    frame->setObjectName(name);
    side->layout()->addWidget(frame);
    return frame;
}

QFrame *PageFrame(int index)
{
    return index >= 0 && index < kPages ? pages[index] : nullptr;
}

void ShowNoPage(const std::string &step)
{
    if (lblNoPage)
        lblNoPage->setText(step.empty() ? "" : Caption(step + "\r\nThis version has no page for this step."));
}

QSize FirstSize(const QSize &room)
{
    return kDefaultSize.boundedTo(room - QSize(0, kTitleBar));
}

QString VersionText(int major, int minor, int revision)
{
    const QString text = QString(" %1.%2").arg(major).arg(minor);
    return revision == 0 ? text : text + QString(".%1").arg(revision);
}

}  // namespace ombrix
