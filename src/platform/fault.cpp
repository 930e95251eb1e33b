#include "platform/fault.h"

#include "platform/clock.h"

namespace ombrix {

std::function<void(const std::string &)> FaultOutlet = [](const std::string &) {};

namespace {

bool handlersClosed = false;

}  // namespace

void RunHandler(const std::function<void()> &body)
{
    if (handlersClosed || ShutdownRequested())
        return;
    try {
        try {
            body();
        } catch (const std::exception &fault) {
            FaultOutlet(fault.what());  // may pump, so Shutdown can come from here too
        }
    } catch (const Shutdown &) {
        // On its way down: the pump below throws again.
    }
}

void CloseHandlers(bool on)
{
    handlersClosed = on;
}

}  // namespace ombrix
