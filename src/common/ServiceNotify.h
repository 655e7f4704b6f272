#pragma once
// What the process tells a service manager that started it (systemd on Linux): that the link
// is up, that the logic thread still runs, that the process is ending. Platform code; free of
// Qt so that the Windows file can be checked by the cross compiler.
//
// Nothing happens unless a service manager started the process and asked for it (on Linux the
// variables NOTIFY_SOCKET and WATCHDOG_USEC); a process started by its parent sends nothing.

#include <chrono>

namespace orbline {

enum class ServiceState {
    Ready,     // the session's port is open and the dialogue waits for the instrument
    Alive,     // the logic thread came round to its events again
    Stopping,  // the process is about to end
};

void NotifyService(ServiceState state);

// The time within which the service manager wants to hear Alive, or zero when it watches
// nothing.
std::chrono::microseconds ServiceWatchdogTimeout();

}  // namespace orbline
