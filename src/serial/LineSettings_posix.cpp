#include "serial/LineSettings_posix.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>

#include <array>
#include <utility>

namespace orbline {
namespace {

speed_t StandardSpeed(std::uint32_t rate) {
    static constexpr std::array<std::pair<std::uint32_t, speed_t>, 30> speeds{{
        {50, B50},           {75, B75},           {110, B110},         {134, B134},
        {150, B150},         {200, B200},         {300, B300},         {600, B600},
        {1200, B1200},       {1800, B1800},       {2400, B2400},       {4800, B4800},
        {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
        {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
        {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000},
        {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000},
        {3500000, B3500000}, {4000000, B4000000},
    }};
    for (const auto& [value, speed] : speeds) {
        if (value == rate) return speed;
    }
    return B0;
}

bool CharacterSize(std::uint8_t byteSize, tcflag_t& flag) {
    switch (byteSize) {
        case 5:
            flag = CS5;
            return true;
        case 6:
            flag = CS6;
            return true;
        case 7:
            flag = CS7;
            return true;
        case 8:
            flag = CS8;
            return true;
        default:
            return false;
    }
}

bool ParityFlags(std::uint8_t parity, tcflag_t& flags) {
    switch (parity) {
        case 0:
            flags = 0;
            return true;
        case 1:
            flags = PARENB | PARODD;
            return true;
        case 2:
            flags = PARENB;
            return true;
        case 3:
            flags = PARENB | PARODD | CMSPAR;
            return true;
        case 4:
            flags = PARENB | CMSPAR;
            return true;
        default:
            return false;
    }
}

// A pseudo-terminal slave (majors 136 to 143) has no line. It keeps eight bits without parity
// whatever it is told (and the C library then reports the call as failed), so there the format
// is checked but not applied.
bool IsPseudoTerminal(int fd) {
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISCHR(info.st_mode)) return false;
    const unsigned int deviceMajor = major(info.st_rdev);
    return deviceMajor >= 136 && deviceMajor <= 143;
}

}  // namespace

bool ApplyLineFormat(int fd, const LineFormat& format) {
    tcflag_t size = 0;
    tcflag_t parity = 0;
    if (format.BaudRate == 0 || !CharacterSize(format.ByteSize, size) ||
        !ParityFlags(format.Parity, parity)) {
        return false;
    }
    // One and a half stop bits exist only as a 16550 quirk of 5-bit words; Linux cannot ask.
    if (format.StopBits != 0 && format.StopBits != 2) return false;
    // No DTR/DSR flow control in termios.
    if ((format.Flags & (dcb::fOutxDsrFlow | dcb::fDtrControlHandshake | dcb::fDsrSensitivity)) !=
        0) {
        return false;
    }
    const bool softwareFlow = (format.Flags & (dcb::fOutX | dcb::fInX)) != 0;
    // Windows refuses equal Xon and Xoff characters; here a 0 would switch the character off.
    if (softwareFlow && format.XonChar == format.XoffChar) return false;
    const bool hardwareFlow = (format.Flags & (dcb::fOutxCtsFlow | dcb::fRtsControlHandshake)) != 0;

    termios settings{};
    if (tcgetattr(fd, &settings) != 0) return false;
    cfmakeraw(&settings);
    settings.c_cflag &= ~(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
    settings.c_cflag |= CREAD | CLOCAL | size | parity;
    const bool noLine = IsPseudoTerminal(fd);
    if (noLine) settings.c_cflag = (settings.c_cflag & ~(CSIZE | PARENB | PARODD | CMSPAR)) | CS8;
    if (format.StopBits == 2) settings.c_cflag |= CSTOPB;
    if (hardwareFlow) settings.c_cflag |= CRTSCTS;
    settings.c_iflag &= ~(IXON | IXOFF | IXANY | INPCK);
    if ((format.Flags & dcb::fOutX) != 0) settings.c_iflag |= IXON;
    if ((format.Flags & dcb::fInX) != 0) settings.c_iflag |= IXOFF;
    settings.c_cc[VSTART] = static_cast<cc_t>(format.XonChar);
    settings.c_cc[VSTOP] = static_cast<cc_t>(format.XoffChar);
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;

    const speed_t speed = StandardSpeed(format.BaudRate);
    if (speed != B0) {
        cfsetispeed(&settings, speed);
        cfsetospeed(&settings, speed);
    }
    if (tcsetattr(fd, TCSANOW, &settings) != 0) return false;
    if (speed == B0 && !SetCustomRate(fd, format.BaudRate)) return false;

    // A driver may accept the call and quietly keep what it cannot do.
    termios applied{};
    if (tcgetattr(fd, &applied) != 0) return false;
    const tcflag_t checked = CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS;
    if (!noLine && (applied.c_cflag & checked) != (settings.c_cflag & checked)) return false;

    // The DTR and RTS lines follow the control modes; a line that the device lacks is no
    // failure (a pseudo-terminal has none).
    const int dtr = TIOCM_DTR;
    const int rts = TIOCM_RTS;
    const bool dtrOn = (format.Flags & dcb::fDtrControlEnable) != 0;
    const bool rtsOn = (format.Flags & dcb::fRtsControlEnable) != 0;
    (void)ioctl(fd, dtrOn ? TIOCMBIS : TIOCMBIC, &dtr);
    if (!hardwareFlow) (void)ioctl(fd, rtsOn ? TIOCMBIS : TIOCMBIC, &rts);
    return true;
}

}  // namespace orbline
