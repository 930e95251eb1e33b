#include "procedures/analog_meter.h"

#include "calibration/analog_journal.h"
#include "calibration/analog_output.h"
#include "procedures/analog_view.h"
#include "procedures/analog_work.h"
#include "session/outlets.h"
#include "session/state.h"

#include <vector>

namespace ombrix {
namespace {

AnalogPage &page = analogPage;

}  // namespace

bool TakeMeter()
{
    if (AnalogSettingsBorrowed())
        return true;
    page.kind = kNoMode;
    page.cable.reset();
    ForgetPointWork();
    analog.bipolarDone = analog.dualDone = false;
    LoadAnalogNominal();
    if (ReadAnalogWords() && BorrowAnalogSettings()) {
        RecordAnalogSettings("borrowed", AnalogSettingsNames(), AnalogSettingsFound());
        return true;
    }
    if (Abort)
        ShowAnalogState(kAnalogSilent, {"Stopped before the meter was read", true});
    else
        ShowAnalogState(kAnalogSilent);
    return false;
}

bool PrepareMeter()
{
    const bool prepared = AnalogSettingsBorrowed();
    if (!TakeMeter())
        return false;
    if (!prepared)
        PrepareAnalogTest("");
    return true;
}

void GiveMeterBack()
{
    if (!AnalogSettingsBorrowed())
        return;
    ShowAnalogState(kAnalogLeaving);
    EndPoints("left");
    const std::string names = AnalogSettingsNames();
    const std::vector<std::string> found = AnalogSettingsFound();
    const GivenBack given = GiveBackAnalogSettings();
    RecordAnalogSettings(TextOf(given), names, found);
    page.kind = kNoMode;
    if (const std::string why = WhyNotGivenBack(given, names); !why.empty())
        outlets.warnOperator(why, "Analog Output");
}

bool RestoreNominalWords(const std::string &step, bool allOfDac)
{
    EndPoints("left");
    ForgetPointWork();
    ShowPoint();
    const AnalogRestored restored = RestoreAndCheckAnalogWords(allOfDac);
    RecordAnalogRestored(step, restored);
    if (Abort)
        page.told = {"Stopped: which of the nominal words are in the meter isn't known", true};
    else if (restored.held == WordsHeld::No)
        page.told = {"The meter did not take all nominal words:\r\nclick \"" + step + "\" again", true};
    else if (restored.held == WordsHeld::Silent)
        page.told = {"The meter did not answer:\r\nwhether it holds the nominal words isn't known", true};
    return restored.held == WordsHeld::Yes;
}

}  // namespace ombrix
