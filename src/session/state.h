// The state of one session at the station, shared by every module.
//
// Plain variables with their start values. What belongs to one link or page alone lives with it: the meter's identity
// in links/meter_operations.h, the calibrator's flags in links/calibrator.h, the step context in
// calibration/step_state.h.
#pragma once

#include <array>
#include <string>

namespace ombrix {

/// Boards by index, as SCType counts them.
enum Board { kDc = 0, kAc = 1, kLc = 2, kTc = 3, kVf = 4, kAc2 = 5, kAc3 = 6, kTemp = 7, kRtd = 8, kAn = 9 };
constexpr int kBoards = 10;

/// Tabs of tabCalib, as CalibTab counts them.
enum Tab { kTabDc = 0, kTabAc = 1, kTabLc = 2, kTabTc = 3, kTabVf = 4, kTabAnaCal = 5 };

/// Kinds of meter, as MeterKind counts them; -1 is unknown.
enum Kind { kDpm = 1, kWtMtr = 2, kCtr = 3 };

/// Step buttons: positions 0..16.
constexpr int kPositions = 17;

extern bool HardwareMode;    ///< true: real instruments; false: the station answers for meter and calibrator
extern bool RealTimeDelays;  ///< true: DelayMs waits; false: it pumps once. Follows HardwareMode
extern bool Automatic;       ///< true: a calibrator is driven; false: the operator applies each signal by hand
extern int CalPort;          ///< 1, 2: the calibrator's port; 0: none
extern int MeterPort;        ///< 1, 2: the meter's port; 0: through the calibrator's UUT port
extern bool UseSwitch;       ///< a second meter at address 2 serves as output switch
extern bool Abort;           ///< ends every wait loop of both links
extern bool Quitting;        ///< Quit has begun: only the last words to the instruments are spoken

extern int CalibTab;  ///< open tab
extern int SCType;    ///< board in work, -1 until identified
extern int SessionMeterKind;
extern bool SessionXmtrFlag;
extern std::string SessionMeterName;
/// Named backwards by habit: 0 shows dlgSCType with the meter's type, 1 without it (unless the kind is unknown).
extern int ShowSCDialogFull;

extern bool Established;              ///< both links verified
extern bool SimToggleAllowed;         ///< a double click on lblCalOut may switch the simulation
extern bool OptionEventsMuted;        ///< code sets the options of the Setup page
extern bool TabEventsMuted;           ///< a change of tab has no effect
extern bool TabChangeAllowed;         ///< a click on a tab is taken
extern bool ReadIdentityOnTabChange;  ///< a tab change reads the meter's identity first
extern bool TabMismatch;              ///< the open tab isn't the family of the identified board
extern bool TabSelectShown;           ///< the board chooser is up
extern int LastAcBoard;               ///< board last used on the AC tab
extern int LastTempBoard;             ///< board last used on the TC tab
extern int MeterTab;                  ///< tab of the identified board

extern int CurrentStepButton;                ///< highlighted position, -1 none
extern int CurrentStepId;                    ///< its step id, -1 none
extern std::array<int, kPositions> StepIds;  ///< step id of each button
extern std::string RestConfigImage;          ///< configuration kept by "Get Config" for "Rest Config"

/// Every variable above at its start value.
void InitSessionState();

/// While one stands, `flag` is true; then it is what it was.
class ScopedFlag
{
public:
    explicit ScopedFlag(bool &flag, bool value = true) : m_flag(flag), m_before(flag) { m_flag = value; }
    ~ScopedFlag() { m_flag = m_before; }
    ScopedFlag(const ScopedFlag &) = delete;
    ScopedFlag &operator=(const ScopedFlag &) = delete;

private:
    bool &m_flag;
    bool m_before;
};

}  // namespace ombrix
