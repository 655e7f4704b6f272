#include "common/ServiceNotify.h"

namespace orbline {

// A Windows service wrapper (or the parent) watches the process itself; it has no channel
// for these messages.
void NotifyService(ServiceState /*state*/) {}

std::chrono::microseconds ServiceWatchdogTimeout() {
    return std::chrono::microseconds(0);
}

}  // namespace orbline
