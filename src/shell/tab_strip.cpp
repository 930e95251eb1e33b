#include "shell/tab_strip.h"

#include "links/calibrator.h"
#include "links/meter_identity.h"
#include "model/range_tables.h"
#include "platform/fault.h"
#include "session/kept_remarks.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_chooser.h"
#include "shell/main_window.h"
#include "shell/navigation_lock.h"
#include "shell/setup_page.h"
#include "shell/step_buttons.h"
#include "shell/visit.h"
#include "widgets/widgets.h"

#include <QGuiApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTabBar>
#include <QWheelEvent>

#include <utility>

namespace ombrix {
namespace {

// A turn of the wheel is no click: it would leave the board in work by accident.
class Strip : public QTabBar
{
public:
    using QTabBar::QTabBar;

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};

QTabBar *tabCalib = nullptr;
int stripTab = 0;  // where the strip stood last, also when nothing followed

bool CarriesFamily(int tab)
{
    return tab == kTabAc || tab == kTabTc;
}

int BoardLastUsedOn(int tab)
{
    switch (tab) {
    case kTabAc:
        return LastAcBoard;
    case kTabTc:
        return LastTempBoard;
    default:
        return tab;
    }
}

// For a meter that has just said who it is.
void PrepareTab()
{
    if (const auto prepare = RecordOfTab(CalibTab).prepare)
        prepare();
}

// Board and mismatch of the tab in front. On a tab that isn't the meter's own the board is the one last used there.
void TakeTab()
{
    CalibTab = tabCalib->currentIndex();
    TabMismatch = false;
    if (CalibTab >= kTabAnaCal)
        return;
    TabMismatch = MeterTab != CalibTab;
    SCType = TabMismatch ? BoardLastUsedOn(CalibTab) : MeterSCType;
    if (CalibTab == kTabAc)
        LastAcBoard = SCType;
    else if (CalibTab == kTabTc)
        LastTempBoard = SCType;
}

void EnterTab()
{
    RequestStop();
    if (Automatic)
        CalibratorStandby();
    LeaveTab();
    std::string trouble;
    if (ReadIdentityOnTabChange && !ReadIdentity())
        trouble = Abort ? "Stopped before the meter told its identity" : kMeterSilent;
    else if (ReadIdentityOnTabChange)
        BeginVisit();
    TakeTab();
    ApplyBoard();
    if (trouble.empty())
        PrepareTab();
    if (TabMismatch && CarriesFamily(CalibTab))
        ShowBoardChooser(true);
    ShowMeterTrouble(trouble);
    if (!trouble.empty())
        ShowPage(kSetupPage);
}

void ClickTab(int previous)
{
    if (TabEventsMuted)
        return;
    if (!TabChangeAllowed) {
        PutStripOn(previous);
        return;
    }
    RunAfterStop([] {
        const NavigationLock lock;
        EnterTab();
    });
}

// The strip moved: by a click, by a key, or by code, which mutes.
void tabCalib_Change(int tab)
{
    const int previous = std::exchange(stripTab, tab);
    ClickTab(previous);
}

// A click on the tab in front moves nothing, and counts all the same.
void tabCalib_Press(int tab)
{
    if (tab == tabCalib->currentIndex() && QGuiApplication::mouseButtons() == Qt::LeftButton)
        ClickTab(tab);
}

}  // namespace

QWidget *BuildTabStrip(QWidget *parent)
{
    tabCalib = new Strip(parent);
    tabCalib->setObjectName("tabCalib");
    for (const char *caption : {"DC", "AC", "LC", "TC", "VF", "AnaCal"})
        tabCalib->addTab(caption);
    tabCalib->setExpanding(false);
    QFont font = tabCalib->font();
    font.setPointSize(font.pointSize() + 2);
    tabCalib->setFont(font);
    stripTab = tabCalib->currentIndex();
    QObject::connect(tabCalib, &QTabBar::currentChanged, tabCalib,
                     [](int tab) { RunHandler([tab] { tabCalib_Change(tab); }); });
    QObject::connect(tabCalib, &QTabBar::tabBarClicked, tabCalib,
                     [](int tab) { RunHandler([tab] { tabCalib_Press(tab); }); });
    return tabCalib;
}

void ShowTabsAllowed(bool on)
{
    if (!frmOmbrix)
        return;
    const QPalette page = frmOmbrix->palette();
    const QColor text = page.color(QPalette::Active, QPalette::WindowText);
    QPalette palette = page;
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, on ? text : Mix(text, page.color(QPalette::Active, QPalette::Window), 0.4));
    tabCalib->setPalette(on ? QPalette() : palette);
    tabCalib->setAttribute(Qt::WA_Hover, on);
}

void PutStripOn(int tab)
{
    const ScopedFlag muted(TabEventsMuted);
    tabCalib->setCurrentIndex(tab);
}

void PutStripOnOpenTab()
{
    PutStripOn(CalibTab);
}

void OpenBoardTab()
{
    const int tab = TabOfBoard(SCType);
    if (tabCalib->currentIndex() == tab) {
        TakeTab();
        ApplyBoard();
        PrepareTab();
        return;
    }
    PutStripOn(tab);
    const ScopedFlag identityIsKnown(ReadIdentityOnTabChange, false);
    EnterTab();
}

bool ReadIdentity()
{
    const KnownMeter before = MeterAsKnown();
    const bool answered = ReadMeterIdentity();
    if (!answered)
        TakeMeter(before);
    lblRev->setText(Caption("Rev\r\n" + MeterRevText));
    MeterTab = TabOfBoard(MeterSCType);
    return answered;
}

void RemarkOnBoard()
{
    const bool other = SCType != MeterSCType;
    const std::string own = MeterSCType < 0 ? "without a known board" : "identified as " + BoardName(MeterSCType);
    KeepRemarkOn(Subject::Board, other ? "Meter " + own + ", working as " + BoardName(SCType) : "");
}

void ApplyBoard()
{
    CaptionBoardTab();
    RemarkOnBoard();
    FillStepTable();
    SelectStep(-1);
    ShowCalPanel(CalibTab < kTabAnaCal);
}

void LeaveTab()
{
    if (const auto leave = RecordOfTab(CalibTab).leave)
        leave();
}

void CaptionBoardTab()
{
    if (CalibTab < kTabVf)
        tabCalib->setTabText(CalibTab, Caption(BoardName(SCType)));
}

}  // namespace ombrix
