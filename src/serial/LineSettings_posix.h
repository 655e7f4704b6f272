#pragma once
// The line format applied to an open tty. Settings the platform cannot do make it fail,
// as Windows rejects a device control block it cannot apply.

#include "serial/AwComm.h"

namespace orbline {

bool ApplyLineFormat(int fd, const LineFormat& format);

// Rates without a Bxxx constant (7200, 14400, ...): Linux only, through termios2.
bool SetCustomRate(int fd, std::uint32_t rate);

}  // namespace orbline
