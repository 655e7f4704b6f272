#include "common/ServiceNotify.h"

#include <systemd/sd-daemon.h>

#include <cstdint>

namespace orbline {

namespace {

const char* Message(ServiceState state) {
    switch (state) {
        case ServiceState::Ready:
            return "READY=1";
        case ServiceState::Alive:
            return "WATCHDOG=1";
        case ServiceState::Stopping:
            return "STOPPING=1";
    }
    return "";
}

}  // namespace

void NotifyService(ServiceState state) {
    // Without NOTIFY_SOCKET this does nothing. A lost message costs nothing here: a missing
    // READY or WATCHDOG shows up in systemd as a start or watchdog time-out.
    sd_notify(0, Message(state));
}

std::chrono::microseconds ServiceWatchdogTimeout() {
    std::uint64_t usec = 0;
    // Checks WATCHDOG_PID too, so that a child that inherited the variables does not answer
    // for its parent.
    if (sd_watchdog_enabled(0, &usec) <= 0) return std::chrono::microseconds(0);
    return std::chrono::microseconds(usec);
}

}  // namespace orbline
