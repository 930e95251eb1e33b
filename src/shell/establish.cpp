#include "shell/establish.h"

#include "links/calibrator.h"
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
#include "shell/setup_page.h"
#include "shell/tab_strip.h"
#include "widgets/widgets.h"

#include <QColor>

namespace ombrix {
namespace {

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

// Opens both links and identifies the meter. "" when all is there, otherwise the words for lblStatus.
std::string OpenLinks(const Wiring &wiring)
{
    CloseLinks();
    if (OpenCalibratorLink() != 0)
        return "Error on " + wiring.calText + ": " + CalError;
    if (OpenMeterLink() != 0)
        return MeterTrouble(wiring);
    IdentifyMeter();
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
    WriteNvmWords(16, "0060", "Z");
    LoadFactoryMeterSetup();
}

void TakeLinks(const Wiring &wiring)
{
    Established = true;
    if (UseSwitch)
        OpenOutputSwitch();
    const std::string calText = Automatic ? "Calibrator on " + wiring.calText + " and " : wiring.calText;
    PrepareMeter();
    SaveCommSettings();
    SimToggleAllowed = false;
    ShowStatus("Communications established  --  " + calText + SessionMeterName + " on " + wiring.meterText, Green());
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
    const std::string trouble = OpenLinks(wiring);
    if (trouble.empty()) {
        TakeLinks(wiring);
    } else {
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

void IdentifyMeter()
{
    ReadIdentity();
    if ((MeterKind < 0 || MeterSCType < 0) && !Abort) {  // Esc ends an Establish, it asks for no answer
        ShowSCDialogFull = 1;
        AskBoard();
        MeterTab = TabOfBoard(MeterSCType);
    }
    SessionXmtrFlag = XmtrFlag;
    SessionMeterKind = MeterKind;
    SessionMeterName = MeterName;
    SCType = MeterSCType;
}

}  // namespace ombrix
