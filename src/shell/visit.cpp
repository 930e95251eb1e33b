#include "shell/visit.h"

#include "links/meter_identity.h"
#include "links/meter_protocol.h"
#include "model/range_tables.h"
#include "session/journal.h"
#include "session/state.h"

#include <string>

namespace ombrix {

void BeginVisit()
{
    OpenVisit({{"meter", MeterName},
               {"board", MeterSCType < 0 ? "" : BoardName(MeterSCType)},
               {"code", BoardCode},
               {"revision", MeterRevText},
               {"route", MeterPort == 0 ? std::string("UUT") : "COM" + std::to_string(MeterPort)},
               {"calibrator", CalPort == 0 ? std::string() : "COM" + std::to_string(CalPort)},
               {"simulated", Simulated()},
               {"manual", !Automatic},
               {"switch", UseSwitch}});
}

}  // namespace ombrix
