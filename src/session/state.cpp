#include "session/state.h"

namespace ombrix {

bool HardwareMode = true;
bool RealTimeDelays = true;
bool Automatic = true;
int CalPort = 2;
int MeterPort = 1;
bool UseSwitch = true;
bool Abort = false;
bool Quitting = false;

int CalibTab = kTabDc;
int SCType = -1;
int SessionMeterKind = -1;
bool SessionXmtrFlag = false;
std::string SessionMeterName;
int ShowSCDialogFull = 0;

bool Established = false;
bool SimToggleAllowed = true;
bool OptionEventsMuted = false;
bool TabEventsMuted = true;
bool TabChangeAllowed = false;
bool ReadIdentityOnTabChange = true;
bool TabMismatch = false;
bool TabSelectShown = false;
int LastAcBoard = kAc3;
int LastTempBoard = kTc;
int MeterTab = kTabDc;

int CurrentStepButton = -1;
int CurrentStepId = -1;
std::array<int, kPositions> StepIds{};
std::string RestConfigImage;

void InitSessionState()
{
    HardwareMode = RealTimeDelays = true;
    Automatic = true;
    CalPort = 2;
    MeterPort = 1;
    UseSwitch = true;
    Abort = Quitting = false;

    CalibTab = kTabDc;
    SCType = -1;
    SessionMeterKind = -1;
    SessionXmtrFlag = false;
    SessionMeterName.clear();
    ShowSCDialogFull = 0;

    Established = false;
    SimToggleAllowed = true;
    OptionEventsMuted = false;
    TabEventsMuted = true;
    TabChangeAllowed = false;
    ReadIdentityOnTabChange = true;
    TabMismatch = TabSelectShown = false;
    LastAcBoard = kAc3;
    LastTempBoard = kTc;
    MeterTab = kTabDc;

    CurrentStepButton = CurrentStepId = -1;
    StepIds.fill(-1);
    RestConfigImage.clear();
}

}  // namespace ombrix
