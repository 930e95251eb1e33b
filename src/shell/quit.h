// The way out: standby, local, settings saved, from whatever the station is doing.
#pragma once

#include <string>

namespace ombrix {

enum class QuitBy { Operator, Signal };

/// Ends the session and then, through the pump, every procedure on the stack; the event loop if one runs. Once.
/// The operator is asked first about what he has changed and not saved; a second Quit answers that. By a signal nobody is
/// asked anything.
void Quit(QuitBy by);

/// Closes both ports. A calibrator whose port is open gets standby and local first, each said once, whatever is chosen
/// on the Setup page by now; nobody waits for its answer.
void ReleaseLinks();

/// SIGTERM, SIGINT and SIGHUP take the same road.
void WatchSignals();
void StopWatchingSignals();

}  // namespace ombrix
