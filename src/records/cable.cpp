#include "records/cable.h"

#include "model/connection_tables.h"
#include "session/state.h"

namespace ombrix {
namespace {

Cable lastCable;

Cable CableOf(int row)
{
    return SCType == kAc3 && CalibTab != kTabAnaCal ? Ac3Cable(row) : Cable();
}

}  // namespace

std::string MessageOfCable(int row)
{
    const Cable needed = CableOf(row);
    if (needed == Cable() || needed == lastCable)
        return "";
    return "Verify that the " + needed.pins + "-pin cable is connected between\r\nthe Calibrator's " + needed.signal +
           " pins and the AC board.";
}

void RememberCable(int row)
{
    if (const Cable connected = CableOf(row); connected != Cable())
        lastCable = connected;
}

void ForgetCable()
{
    lastCable = Cable();
}

}  // namespace ombrix
