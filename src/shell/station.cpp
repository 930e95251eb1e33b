#include "shell/station.h"

#include "calibration/analog_output.h"
#include "links/meter_link.h"
#include "model/ini_store.h"
#include "model/settings.h"
#include "platform/clock.h"
#include "platform/fault.h"
#include "platform/line_guard.h"
#include "platform/wire_trace.h"
#include "procedures/analog_page.h"
#include "procedures/first_cycle_page.h"
#include "procedures/init_page.h"
#include "procedures/meter_type_page.h"
#include "procedures/quasi_diode_page.h"
#include "procedures/range_page.h"
#include "procedures/ratio_page.h"
#include "procedures/rtd_page.h"
#include "procedures/trims_page.h"
#include "procedures/vf_page.h"
#include "procedures/vf_service_pages.h"
#include "procedures/zero_adjust_page.h"
#include "records/diagrams.h"
#include "records/nvm_page.h"
#include "records/send_file_page.h"
#include "records/value_panel.h"
#include "records/verify_page.h"
#include "session/journal.h"
#include "session/kept_remarks.h"
#include "session/live_output.h"
#include "session/outlets.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/alert_bar.h"
#include "shell/board_chooser.h"
#include "shell/main_window.h"
#include "shell/operator_boxes.h"
#include "shell/operator_dialogs.h"
#include "shell/output_panel.h"
#include "shell/page_frame.h"
#include "shell/quit.h"
#include "shell/setup_page.h"
#include "shell/simulation_switch.h"
#include "shell/status_line.h"
#include "shell/step_buttons.h"
#include "shell/step_marks.h"
#include "shell/summary_window.h"
#include "shell/tab_strip.h"
#include "shell/theme.h"
#include "shell/trace_start.h"
#include "version.h"

#include <QMainWindow>
#include <QPixmapCache>
#include <QSocketNotifier>
#include <QSysInfo>

#include <iostream>
#include <memory>

namespace ombrix {

namespace {

constexpr const char *kNoGuard = "No output guard: a kill leaves the output as it stands";

std::unique_ptr<QSocketNotifier> guardWatch;

void BeginJournal()
{
    FollowSteps(ShowStepMarks);
    OpenJournal(
        ".", QSysInfo::machineHostName().toStdString(),
        VersionText(OMBRIX_VERSION_MAJOR, OMBRIX_VERSION_MINOR, OMBRIX_VERSION_REVISION).trimmed().toStdString(),
        {IniFolderIsHeld(), GoodbyeOfTrace(".") / 1000});
    if (LastRunEndedWithoutGoodbye())
        ShowRemark("The last run ended without goodbye");
}

void EndJournal()
{
    if (const std::size_t lost = CloseJournal())
        std::cerr << "ombrix: " << lost << " events of the journal could not be recorded\n";
}

// One that dies under a line is replaced at once, not with the next line.
void WatchGuard()
{
    if (guardWatch) {
        guardWatch->setEnabled(false);
        guardWatch.release()->deleteLater();  // it may be the one that tells
    }
    if (GuardSocket() < 0)
        return;
    guardWatch = std::make_unique<QSocketNotifier>(GuardSocket(), QSocketNotifier::Read);
    QObject::connect(guardWatch.get(), &QSocketNotifier::activated, guardWatch.get(), RenewGuard);
}

void TellOfGuard(bool stands)
{
    if (!stands && KeptRemarkOn(Subject::Guard).empty())
        Record("warned", {{"of", kNoGuard}});
    KeepRemarkOn(Subject::Guard, stands ? "" : kNoGuard);
    WatchGuard();
}

}  // namespace

void FillOutlets()
{
    outlets.showOutput = ShowOutput;
    outlets.showDangerFlag = ShowDangerFlag;
    outlets.showAlert = ShowAlert;
    outlets.showSwitchText = ShowSwitchText;
    outlets.showSwitch = ShowSwitch;
    outlets.showWait = ShowWait;
    outlets.showRemark = ShowRemark;
    outlets.keepRemark = KeepRemark;
    outlets.beep = Beep;
    outlets.promptOperator = PromptOperator;
    outlets.warnOperator = WarnOperator;
    outlets.askOperator = AskOperator;
    outlets.chooseFile = ChooseFile;
    outlets.nameFile = NameFile;
    outlets.print = PrintLines;
    FaultOutlet = [](const std::string &words) {
        ShowRemark(words);
        Record("fault", {{"words", words}});
    };
    SetSummarySource(StepSummary);
    FillDiagramHooks();
    FillNvmHooks();
    FillValuePanelHooks();
}

void RegisterPages()
{
    if (!pageTables.pages.empty())
        return;
    RegisterSetupPage();
    RegisterInitPage();
    RegisterRangePage();
    RegisterNvmPage();
    RegisterVerifyPage();
    RegisterSendFilePage();
    RegisterAnalogPage();
    RegisterMeterTypePage();
    RegisterQuasiDiodePage();
    RegisterRtdPage();
    RegisterVfPage();
    RegisterVfServicePages();
    RegisterFirstCyclePage();
    RegisterRatioPage();
    RegisterZeroAdjustPage();
    RegisterTrimsPage();
}

void OpenStation()
{
    InitSessionState();
    InitKeptRemarks();
    ClearStop();
    CloseHandlers(false);
    SilenceBoxes(false);
    InitLinks();
    InitAnalogOutput();
    // The toolkit keeps the name of each picture that it ever kept, and a button's has another one with each change of
    // colour: memory grew all day. It draws them anew instead, 0.03 ms a button.
    QPixmapCache::setCacheLimit(0);
    BuildMainWindow();
    ShowBoardChooser(false);
    InitTables();
    ApplyTheme(IniGet("Look", "Theme"));
    ShowSwitch(false);
    HideAssumed();
    BlankSteps();
    FillFrameHooks();
    BuildDiagrams(AddSideFrame("fraDiagrams"));
    BuildValuePanel(frmOmbrix);
    FillPage(kSetupPage);
    ShowSimFlag(false);
    frmOmbrix->show();
    ResetSession();
    HideStatus();
    TabEventsMuted = true;
    PutStripOn(kTabDc);
    OpenSetup();
    BeginJournal();
}

void OpenGuard(const std::string &program)
{
    UseGuardNews(TellOfGuard);
    const bool started = StartGuard(program);
    TellOfGuard(started);
    if (!started)
        std::fprintf(stderr, "ombrix: %s (%s can't be started)\n", kNoGuard, program.c_str());
}

void CloseStation()
{
    CloseLinks();
    guardWatch.reset();
    EndGuard();
    UseGuardNews(nullptr);
    StopFollowingSteps();
    EndJournal();
    EndTrace();
    frameHooks = FrameHooks();  // before the window that they reach
    DestroyMainWindow();
    outlets = Outlets();
    FaultOutlet = [](const std::string &) {};
    CloseHandlers(false);
}

}  // namespace ombrix
