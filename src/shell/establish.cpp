#include "shell/establish.h"

#include "links/calibrator.h"
#include "links/calibrator_line.h"
#include "links/meter_identity.h"
#include "links/meter_link.h"
#include "links/meter_operations.h"
#include "links/output_switch.h"
#include "model/range_tables.h"
#include "model/settings.h"
#include "session/page_frame.h"
#include "session/procedure.h"
#include "session/state.h"
#include "shell/board_dialog.h"
#include "shell/navigation_lock.h"
#include "shell/quit.h"
#include "shell/setup_page.h"
#include "shell/tab_strip.h"
#include "shell/visit.h"
#include "widgets/widgets.h"

#include <QColor>

namespace ombrix {
namespace {

constexpr char kStopped[] = "Stopped";

int openCalPort = 0;  // where the calibrator's link was opened last

// The wiring that is being verified, in the words of the status line.
struct Wiring {
    std::string calText;
    std::string meterText;
    bool uut;
};

std::string PortName(int port)
{
    return "COM" + std::to_string(port);
}

Wiring ChosenWiring()
{
    return {CalPort == 0 ? "" : PortName(CalPort), MeterPort == 0 ? "Calibrator" : PortName(MeterPort), MeterPort == 0};
}

std::string MeterTrouble(const Wiring &wiring)
{
    return wiring.uut ? MeterError + " on Calibrator UUT port" : "Error on " + wiring.meterText + ": " + MeterError;
}

// A calibrator that the operator has wired otherwise since keeps no output behind the station's back.
void CloseOldLinks()
{
    if (comCAL.IsOpen() && CalPort != openCalPort)
        ReleaseLinks();
    CloseLinks();
    openCalPort = CalPort;
}

// Opens both links and identifies the meter. "" when all is there, otherwise the words for lblStatus.
std::string OpenLinks(const Wiring &wiring)
{
    CloseOldLinks();
    if (CalPort != 0)
        ShowEstablishProgress("Calibrator: reset ...");
    const int calibrator = OpenCalibratorLink();
    if (Abort)  // before the meter's link opens, which forgets it
        return kStopped;
    if (calibrator != 0)
        return "Error on " + wiring.calText + ": " + CalError;
    ShowEstablishProgress("Meter: first answer ...");
    const int meter = OpenMeterLink();
    if (Abort)
        return kStopped;
    if (meter != 0)
        return MeterTrouble(wiring);
    ShowEstablishProgress("Meter: identity ...");
    if (!IdentifyMeter())
        return Abort ? kStopped : kMeterSilent;
    if (SCType < 0) {
        MeterError = "Meter not found";
        return MeterTrouble(wiring);
    }
    return "";
}

// Brings the meter to one known state before work begins.
void PrepareMeter()
{
    if (SCType == kVf)
        return;
    ShowEstablishProgress("Meter: setup ...");
    WriteNvmWords(16, "0060", "Z");
    if (!Abort)
        LoadFactoryMeterSetup();
}

// What follows when both links are there. False when the operator stopped it.
bool TakeLinks(const Wiring &wiring)
{
    Established = true;
    BeginVisit();
    if (UseSwitch) {
        ShowEstablishProgress("Output switch: reset ...");
        OpenOutputSwitch();
    }
    if (!Abort)
        PrepareMeter();
    if (Abort)
        return false;
    const std::string calText = Automatic ? "Calibrator on " + wiring.calText + " and " : wiring.calText;
    SaveCommSettings();
    SimToggleAllowed = false;
    ShowEstablished("Communications established  --  " + calText + SessionMeterName + " on " + wiring.meterText);
    return true;
}

void OpenFirstTab()
{
    OpenBoardTab();
    SetSetupGroupsVisible(true);
    ShowPage(kSetupPage);
}

void Establish()
{
    const NavigationLock lock;
    HideStatus();
    const Wiring wiring = ChosenWiring();
    std::string trouble = OpenLinks(wiring);
    if (trouble.empty() && !TakeLinks(wiring))
        trouble = kStopped;
    if (!trouble.empty()) {
        ResetSession();
        ShowStatus(trouble, Red());
    }
    TabEventsMuted = false;
    if (Established)
        OpenFirstTab();
}

}  // namespace

void cmdEstablish_Click()
{
    RunProcedure(Establish);
}

bool IdentifyMeter()
{
    if (!ReadIdentity())
        return false;
    if (MeterKind < 0 || MeterSCType < 0) {
        ShowSCDialogFull = 1;
        AskBoard();
        MeterTab = TabOfBoard(MeterSCType);
    }
    if (Abort)  // the meter is half written: it is no session's
        return false;
    SessionXmtrFlag = XmtrFlag;
    SessionMeterKind = MeterKind;
    SessionMeterName = MeterName;
    SCType = MeterSCType;
    return true;
}

}  // namespace ombrix
