// A station that has read nothing yet: what Ombrix.ini and the older files fill is as it was before the start.
#pragma once

#include "model/analog_words.h"
#include "model/ini_store.h"
#include "model/nominals.h"
#include "model/range_tables.h"
#include "model/station_settings.h"
#include "session/state.h"

namespace ombrix::test {

inline void ForgetSettings()
{
    LoadIni("no such file");
    IniReady = IniDirty = WordsDirty = false;
    InitNominals();
    ClearFilterCodes();
    StoredAnalogWords.fill("");
    DacTypeText = CurrentOffsetPoint = "";
    DcRatioRange = StrainRange = 0;
    DcRatioReading = StrainReading = 0;
    RtdDesiredText = QDTargetText = VFLow = VFHigh = "";
    SendFileDefaults.fill("");
}

}  // namespace ombrix::test
