#include <cerrno>
#include <cstring>

#include "serial/PortError.h"

namespace orbline {
namespace {

// strerror_r is the GNU one (returns the text) or the XSI one (fills the buffer), by the C
// library; both are taken.
[[maybe_unused]] const char* TextOf(const char* gnu, const char* /*buffer*/) {
    return gnu;
}
[[maybe_unused]] const char* TextOf(int xsi, const char* buffer) {
    return xsi == 0 ? buffer : nullptr;
}

PortError KindOf(int code) {
    switch (code) {
        case 0:
            return PortError::None;
        case ENOENT:
        case ENOTDIR:
        case ENODEV:
        case ENXIO:
            return PortError::NoSuchDevice;
        case EACCES:
        case EPERM:
            return PortError::PermissionDenied;
        // EBUSY from an open refused by TIOCEXCL, EWOULDBLOCK from the lock.
        case EBUSY:
        case EWOULDBLOCK:
#if EAGAIN != EWOULDBLOCK
        case EAGAIN:
#endif
            return PortError::Busy;
        // What tcsetattr and the termios2 call answer to a format the driver cannot do.
        case EINVAL:
        case EOPNOTSUPP:
            return PortError::FormatRefused;
        // A tty whose line hung up, or a USB adapter pulled out, answers EIO.
        case EIO:
            return PortError::DeviceGone;
        default:
            return PortError::Other;
    }
}

}  // namespace

OsError TranslateOsError(int code) {
    char buffer[256] = {};
    const char* text = TextOf(strerror_r(code, buffer, sizeof buffer), buffer);
    return {KindOf(code), text != nullptr ? text : "error " + std::to_string(code)};
}

}  // namespace orbline
