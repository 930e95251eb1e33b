#include "shell/main_window.h"

#include "platform/fault.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/output_panel.h"
#include "shell/quit.h"
#include "shell/setup_page.h"
#include "shell/simulation_switch.h"
#include "shell/status_line.h"
#include "shell/step_buttons.h"
#include "shell/tab_strip.h"
#include "version.h"
#include "widgets/widgets.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

#include <array>

namespace ombrix {

QMainWindow *frmOmbrix = nullptr;
QPushButton *cmdSetup = nullptr;
QPushButton *cmdQuit = nullptr;
QLabel *lblRev = nullptr;
QStackedWidget *pageStack = nullptr;

namespace {

constexpr QSize kDefaultSize(1100, 760);

std::array<QFrame *, kPages> pages{};
QVBoxLayout *sideColumn = nullptr;

class StationWindow : public QMainWindow
{
protected:
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
        place->setWidget(pages[index]);
        pageStack->addWidget(place);
    }
}

QWidget *BuildMiddle(QWidget *parent)
{
    auto *middle = new QWidget(parent);
    BuildPageFrames(middle);
    auto *column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(BuildBoardChooser(middle));
    column->addWidget(pageStack, 1);
    return middle;
}

QWidget *BuildSide(QWidget *parent)
{
    auto *side = new QWidget(parent);
    side->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    sideColumn = new QVBoxLayout(side);
    sideColumn->setContentsMargins(0, 0, 0, 0);
    return side;
}

// Setup and Quit. Quit never takes the focus by itself: a button that goes off passes its focus on, and the next
// Enter must not end the program.
QWidget *BuildCommands(QWidget *parent)
{
    auto *commands = new QWidget(parent);
    cmdSetup = Button(commands, "cmdSetup", "Setup", cmdSetup_Click);
    cmdQuit = Button(commands, "cmdQuit", "Quit", [] { Quit(QuitBy::Operator); });
    cmdQuit->setFocusPolicy(Qt::NoFocus);
    cmdQuit->setShortcut(QKeySequence("Ctrl+Q"));
    cmdQuit->setToolTip("Ctrl+Q");
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
    work->addWidget(BuildMiddle(centre), 3);
    work->addWidget(BuildSide(centre), 1);
    auto *right = new QVBoxLayout;
    right->setSpacing(8);
    right->addLayout(work, 1);
    right->addWidget(BuildBottom(centre));
    auto *below = new QHBoxLayout;
    below->setSpacing(10);
    below->addWidget(BuildStepButtons(centre));
    below->addLayout(right, 1);
    auto *all = new QVBoxLayout(centre);
    all->setContentsMargins(8, 6, 8, 4);
    all->addWidget(BuildTabStrip(centre));
    all->addLayout(below, 1);
}

// Not larger than the screen, as long as the smallest window fits there at all.
QSize FirstSize()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QSize room = screen ? screen->availableSize() : kDefaultSize;
    const QSize least = frmOmbrix->minimumSizeHint();
    const bool fits = room.width() >= least.width() && room.height() >= least.height();
    return fits ? kDefaultSize.boundedTo(room) : kDefaultSize;
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
    frmOmbrix->resize(FirstSize());
}

void BuildPages()
{
    for (int index = 0; index < kPages; index++) {
        if (const auto build = BuilderOfPage(index))
            build(pages[index]);
    }
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
    sideColumn = nullptr;
}

QWidget *AddSideFrame(const QString &name)
{
    auto *frame = new QWidget(frmOmbrix);
    frame->setObjectName(name);
    sideColumn->addWidget(frame);
    return frame;
}

QFrame *PageFrame(int index)
{
    return index >= 0 && index < kPages ? pages[index] : nullptr;
}

QString VersionText(int major, int minor, int revision)
{
    const QString text = QString(" %1.%2").arg(major).arg(minor);
    return revision == 0 ? text : text + QString(".%1").arg(revision);
}

}  // namespace ombrix
