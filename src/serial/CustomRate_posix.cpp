// Kept apart: <asm/termbits.h> and <termios.h> cannot share one translation unit.
#include <cerrno>
#include <cstdint>

#ifdef __linux__
#include <asm/termbits.h>
#include <sys/ioctl.h>
#endif

namespace orbline {

int SetCustomRate(int fd, std::uint32_t rate) {
#ifdef __linux__
    struct termios2 settings {};
    if (ioctl(fd, TCGETS2, &settings) != 0) return errno;
    settings.c_cflag &= ~CBAUD;
    settings.c_cflag |= BOTHER;
    settings.c_ispeed = rate;
    settings.c_ospeed = rate;
    if (ioctl(fd, TCSETS2, &settings) != 0) return errno;
    struct termios2 check {};
    if (ioctl(fd, TCGETS2, &check) != 0) return errno;
    return check.c_ospeed == rate ? 0 : -1;
#else
    (void)fd;
    (void)rate;
    return EINVAL;
#endif
}

}  // namespace orbline
