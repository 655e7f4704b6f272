#include "serial/LineSettings_posix.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>

#include <array>
#include <cerrno>
#include <string>
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

PortFailure FailureOfErrno(PortStep step, int code, std::string detail) {
    OsError os = TranslateOsError(code);
    // A call that failed is a failure even if errno says nothing.
    const PortError kind = os.kind == PortError::None ? PortError::Other : os.kind;
    return {kind, step, code, std::move(os.text), std::move(detail)};
}

namespace {

PortFailure TryLineFormat(int fd, const LineFormat& format) {
    // What this platform cannot do is refused before any call, so no errno says it.
    const auto refuse = [](std::string setting) {
        return PortFailure{
            PortError::FormatRefused, PortStep::LineSettings, 0, {}, std::move(setting)};
    };
    const auto failed = [](int code, std::string detail = {}) {
        return FailureOfErrno(PortStep::LineSettings, code, std::move(detail));
    };
    tcflag_t size = 0;
    tcflag_t parity = 0;
    if (format.BaudRate == 0) return refuse("rate 0");
    if (!CharacterSize(format.ByteSize, size))
        return refuse(std::to_string(format.ByteSize) + " data bits");
    if (!ParityFlags(format.Parity, parity))
        return refuse("parity " + std::to_string(format.Parity));
    // One and a half stop bits exist only as a 16550 quirk of 5-bit words; Linux cannot ask.
    if (format.StopBits == 1) return refuse("one and a half stop bits");
    if (format.StopBits != 0 && format.StopBits != 2)
        return refuse("stop bits " + std::to_string(format.StopBits));
    // No DTR/DSR flow control in termios.
    if ((format.Flags & (dcb::fOutxDsrFlow | dcb::fDtrControlHandshake | dcb::fDsrSensitivity)) !=
        0) {
        return refuse("DTR/DSR handshake");
    }
    const bool softwareFlow = (format.Flags & (dcb::fOutX | dcb::fInX)) != 0;
    // Windows refuses equal Xon and Xoff characters; here a 0 would switch the character off.
    if (softwareFlow && format.XonChar == format.XoffChar)
        return refuse("Xon/Xoff handshake with equal Xon and Xoff characters");
    const bool hardwareFlow = (format.Flags & (dcb::fOutxCtsFlow | dcb::fRtsControlHandshake)) != 0;

    termios settings{};
    if (tcgetattr(fd, &settings) != 0) return failed(errno);
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
    if (tcsetattr(fd, TCSANOW, &settings) != 0) return failed(errno);
    if (speed == B0) {
        const std::string rate = std::to_string(format.BaudRate) + " baud";
        const int result = SetCustomRate(fd, format.BaudRate);
        if (result < 0) return refuse(rate + " not kept by the driver");
        if (result > 0) return failed(result, rate);
    }

    // A driver may accept the call and quietly keep what it cannot do.
    termios applied{};
    if (tcgetattr(fd, &applied) != 0) return failed(errno);
    if (!noLine) {
        const tcflag_t lost = (applied.c_cflag ^ settings.c_cflag);
        std::string names;
        const auto name = [&](tcflag_t bits, const char* setting) {
            if ((lost & bits) != 0) names += (names.empty() ? "" : ", ") + std::string(setting);
        };
        name(CSIZE, "data bits");
        name(PARENB | PARODD | CMSPAR, "parity");
        name(CSTOPB, "stop bits");
        name(CRTSCTS, "RTS/CTS handshake");
        if (!names.empty()) return refuse(names + " not kept by the driver");
    }

    // The DTR and RTS lines follow the control modes; a line that the device lacks is no
    // failure (a pseudo-terminal has none).
    const int dtr = TIOCM_DTR;
    const int rts = TIOCM_RTS;
    const bool dtrOn = (format.Flags & dcb::fDtrControlEnable) != 0;
    const bool rtsOn = (format.Flags & dcb::fRtsControlEnable) != 0;
    (void)ioctl(fd, dtrOn ? TIOCMBIS : TIOCMBIC, &dtr);
    if (!hardwareFlow) (void)ioctl(fd, rtsOn ? TIOCMBIS : TIOCMBIC, &rts);
    return {};
}

}  // namespace

bool ApplyLineFormat(int fd, const LineFormat& format, PortFailure* why) {
    PortFailure failure = TryLineFormat(fd, format);
    if (failure.kind == PortError::None) return true;
    if (why != nullptr) *why = std::move(failure);
    return false;
}

}  // namespace orbline
