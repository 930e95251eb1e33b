#include "fuzz/support/instruments.h"

#include "links/calibrator_line.h"
#include "links/meter_link.h"
#include "links/meter_protocol.h"
#include "session/outlets.h"
#include "session/procedure.h"
#include "session/state.h"

namespace ombrix::fuzz {

Instruments::Instruments()
{
    InitSessionState();
    ClearStop();
    InitLinks();
    outlets = Outlets();
    OpenMeterPort("meter");
    OpenCalibratorPort("calibrator");
}

Instruments::~Instruments()
{
    CloseLinks();
    outlets = Outlets();
    InitSessionState();
}

void Instruments::UseUutRoute()
{
    MeterPort = 0;
}

void SayInPieces(test::FakeLine &line, const std::vector<std::string> &pieces, int afterMs, int gapMs)
{
    for (const std::string &piece : pieces) {
        line.Says(piece, afterMs);
        afterMs += gapMs;
    }
}

}  // namespace ombrix::fuzz
