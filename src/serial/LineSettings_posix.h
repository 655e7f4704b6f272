#pragma once
// The line format applied to an open tty. Settings the platform cannot do make it fail,
// as Windows rejects a device control block it cannot apply.

#include "serial/AwComm.h"
#include "serial/PortError.h"

namespace orbline {

// False when the format cannot be applied; then `why`, if given, says what refused it (at the
// step LineSettings).
bool ApplyLineFormat(int fd, const LineFormat& format, PortFailure* why = nullptr);

// A failed call of the system as a port failure at the given step.
PortFailure FailureOfErrno(PortStep step, int code, std::string detail = {});

// Rates without a Bxxx constant (7200, 14400, ...): Linux only, through termios2. 0 when set;
// the errno of the call that failed; -1 when the driver did not keep the rate.
int SetCustomRate(int fd, std::uint32_t rate);

}  // namespace orbline
