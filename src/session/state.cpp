#include "session/state.h"

namespace ombrix {

bool HardwareMode;
bool RealTimeDelays;
bool Automatic;
int CalPort;
int MeterPort;
bool UseSwitch;
bool Abort;
bool Quitting;

int CalibTab;
int SCType;
int SessionMeterKind;
bool SessionXmtrFlag;
std::string SessionMeterName;
int ShowSCDialogFull;

bool Established;
bool SimToggleAllowed;
bool OptionEventsMuted;
bool TabEventsMuted;
bool TabChangeAllowed;
bool ReadIdentityOnTabChange;
bool TabMismatch;
bool TabSelectShown;
int LastAcBoard;
int LastTempBoard;
int MeterTab;

int CurrentStepButton;
int CurrentStepId;
std::array<int, kPositions> StepIds;
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

namespace {

// The start values stand once, above; they are there before main too.
[[maybe_unused]] const bool kStartValuesSet = (InitSessionState(), true);

}  // namespace

}  // namespace ombrix
